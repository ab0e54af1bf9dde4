#include "common/xml/Xml.h"

#include <libxml/parserInternals.h>
#include <libxml/xmlerror.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include "common/OutOfMemory.h"
#include "common/XML.h"
#include "common/xml/LibXml.h"
#include "common/xml/SpareNodes.h"
#include "platform/FailureKeeping.h"

// A text is parsed where it lies. VYR_XML_PLAIN leaves out this short cut and that of SpareNodes.cpp.
#if !defined(VYR_XML_PLAIN) && (LIBXML_VERSION < 21000 || LIBXML_VERSION >= 21400)
#define VYR_XML_IN_PLACE 1
#else
#define VYR_XML_IN_PLACE 0
#endif

namespace vyr::xml {

namespace {

// Documents up to this size are copied to the stack to be zero-terminated.
constexpr std::size_t k_maxOnStack = 8191;
// Larger ones are parsed from libxml2's own copy, in which it looks no further.
constexpr std::size_t k_maxInPlace = XML_MAX_LOOKUP_LIMIT;

struct SDeleter {
    void operator()(xmlParserCtxtPtr context) const { xmlFreeParserCtxt(context); }
    void operator()(xmlCharEncodingHandlerPtr decoder) const { xmlCharEncCloseFunc(decoder); }
    void operator()(xmlBufferPtr buffer) const { xmlBufferFree(buffer); }
};
using TContext = std::unique_ptr<xmlParserCtxt, SDeleter>;
using TDecoder = std::unique_ptr<xmlCharEncodingHandler, SDeleter>;
using TBuffer = std::unique_ptr<xmlBuffer, SDeleter>;

/// The first fault that libxml2 tells of a document. It is why a document is not taken; one that is may have some.
/// A prefix that is not bound, or a colon astray, is never why.
struct SFault {
    int line;
    bool spaces;  // what comes next is of namespaces
    bool next;    // its words come next
    bool memory;  // one of them is that memory is out, which others may follow
    char text[160];

    void Hear(const char* words, int inLine)
    {
        if (text[0] == 0) {
            line = inLine;
            std::snprintf(text, sizeof text, "%.*s", static_cast<int>(std::strcspn(words, "\n")), words);
        }
    }
};
thread_local SFault t_fault;

/// A parser context that does what libxml2 does by default, whatever the process has set globally.
TContext NewContext()
{
    xmlInitParser();
    TContext context(Allocated(xmlNewParserCtxt()));
    // The defaults of the process leak into these, and options only ever add to them.
    context->options = 0;
    context->replaceEntities = 0;
    context->loadsubset = 0;
    context->validate = 0;
    context->pedantic = 0;
    context->keepBlanks = 1;
    if (context->sax) {
        context->sax->ignorableWhitespace = context->sax->characters;
        // Faults are shown at debug priority only; else nobody need put their place in the text into pieces.
        if (!LogEnabled(LOG_PRIORITY_DEBUG)) {
            context->sax->serror = [](void*, auto* error) {
                t_fault.memory |= error->code == XML_ERR_NO_MEMORY;
                if (error->level >= XML_ERR_ERROR && error->domain != XML_FROM_NAMESPACE) {
                    t_fault.Hear(error->message ? error->message : "", error->line);
                }
            };
        }
    }
    return context;
}

/// Parses text with a zero byte behind it where it lies. xmlCtxtReadMemory makes a copy, and asks that for more
/// at every turn near its end.
TDocument ParseInPlace(xmlParserCtxtPtr context, const char* text, std::size_t size, bool typed)
{
    xmlCtxtUseOptions(context, XML_PARSE_COMPACT);
    // Nobody asks for elements by their xml:id. (With a document type this would load external subsets.)
    context->loadsubset = typed ? 0 : XML_SKIP_IDS;
#if LIBXML_VERSION >= 21400
    const xmlParserInputFlags flags =
        static_cast<xmlParserInputFlags>(XML_INPUT_BUF_STATIC | XML_INPUT_BUF_ZERO_TERMINATED);
    const xmlParserInputPtr input = xmlNewInputFromMemory(nullptr, text, size, flags);
    return TDocument(input ? xmlCtxtParseDocument(context, input) : nullptr);
#else
    const xmlParserInputPtr input = xmlNewInputStream(context);
    if (!input) {
        return nullptr;
    }
    input->base = input->cur = AsName(text);
    input->end = input->base + size;
    input->length = static_cast<int>(size);
    if (inputPush(context, input) < 0) {
        xmlFreeInputStream(input);
        return nullptr;
    }
    if (typed) {
        xmlParseDocument(context);
    } else {
        LendNodes(context);
        xmlParseDocument(context);
        TakeBackNodes(context);
    }
    TDocument doc(std::exchange(context->myDoc, nullptr));
    if (!context->wellFormed) {
        doc = nullptr;
    }
    return doc;
#endif
}

/// libxml2 2.9 reads at null when memory is out at the moment in which it makes its own buffer of a text larger, so
/// what that can take is asked for before. Not a new expression, which compilers may leave out.
void CheckRoom(std::size_t size)
{
    ::operator delete(::operator new(4 * size + 65536));
}

/// The document; throws when memory was out on the way.
TDocument Whole(const CErrorsToLog& errors, xmlParserCtxtPtr context, TDocument doc)
{
    if (context->errNo == XML_ERR_NO_MEMORY || errors.MemoryOut()) {
        throw std::bad_alloc();
    }
    if (!doc && t_fault.text[0]) {
        KeepFailure(FAILURE_XML, t_fault.text, t_fault.line);
    }
    return doc;
}

}  // namespace

CErrorsToLog::CErrorsToLog()
{
    // The start of libxml2 is nothing for two threads at a time, and comes before its globals are looked at.
    static const bool s_started = (xmlInitParser(), true);
    static_cast<void>(s_started);
    m_handler = xmlGenericError;
    m_context = xmlGenericErrorContext;
    xmlSetGenericErrorFunc(nullptr, XmlError);
    xmlResetLastError();
    t_fault = {};
}

CErrorsToLog::~CErrorsToLog()
{
    xmlSetGenericErrorFunc(m_context, m_handler);
}

bool CErrorsToLog::MemoryOut() const
{
    const auto* error = xmlGetLastError();
    return t_fault.memory || (error && error->code == XML_ERR_NO_MEMORY);
}

/// "Entity: line 3: " (of namespaces without), "parser ", "error : ", the words, and where they are: a line of the
/// text, by "%s\n".
void HearPiece(const char* format, const char* piece)
{
    t_fault.memory |= std::strncmp(piece, "Memory allocation failed", 24) == 0 && std::strcmp(format, "%s") == 0;
    if (t_fault.next) {
        t_fault.Hear(piece, t_fault.line);
    } else if (t_fault.text[0] == 0 && std::strncmp(piece, "Entity: line ", 13) == 0) {
        t_fault.line = std::atoi(piece + 13);
    }
    t_fault.next = std::strcmp(piece, "error : ") == 0 && !t_fault.spaces;
    t_fault.spaces = std::strcmp(piece, "namespace ") == 0;
}

void SFreeDocument::operator()(void* document) const
{
    KeepNodes(AsDoc(document));
    xmlFreeDoc(AsDoc(document));
}

TDocument ParseText(const char* text, std::size_t size, ETextForm form, bool zeroBehind)
{
    const CErrorsToLog errors;
    const TContext holder = NewContext();
    const xmlParserCtxtPtr context = holder.get();
    if (!VYR_XML_IN_PLACE || form == TEXT_OTHER || size > k_maxInPlace) {
        CheckRoom(size);
        const auto parse = [context, text](std::size_t length) {
            return TDocument(
                xmlCtxtReadMemory(context, text, static_cast<int>(length), nullptr, nullptr, XML_PARSE_COMPACT));
        };
        TDocument doc = parse(size);
        // A zero byte behind the root is the end; newer libxml2 takes it for a fault. (Not in two bytes a character.)
        const void* zero = LIBXML_VERSION >= 21000 && !doc ? std::memchr(text, 0, size) : nullptr;
        if (zero && text[0] != 0 && static_cast<unsigned char>(text[0]) < 0xFE && text[1] != 0) {
            doc = parse(static_cast<std::size_t>(static_cast<const char*>(zero) - text));
        }
        return Whole(errors, context, std::move(doc));
    }
    const bool typed = form == TEXT_TYPED;
    if (zeroBehind) {
        return Whole(errors, context, ParseInPlace(context, text, size, typed));
    }
    if (size > k_maxOnStack) {
        const std::unique_ptr<char[]> copy(new char[size + 1]);
        std::memcpy(copy.get(), text, size);
        copy[size] = 0;
        return Whole(errors, context, ParseInPlace(context, copy.get(), size, typed));
    }
    char copy[k_maxOnStack + 1];
    std::memcpy(copy, text, size);
    copy[size] = 0;
    return Whole(errors, context, ParseInPlace(context, copy, size, typed));
}

TDocument ParseFile(const char* name)
{
    const CErrorsToLog errors;
    const TContext context = NewContext();
    CheckRoom(0);
    return Whole(errors, context.get(), TDocument(xmlCtxtReadFile(context.get(), name, nullptr, XML_PARSE_COMPACT)));
}

bool DecodeXml(const char* encoding, const char* data, std::size_t size, std::string* out)
{
    const CErrorsToLog errors;
#if LIBXML_VERSION >= 21400
    // It says nothing when memory is out, but returns it.
    constexpr int k_memoryOut = XML_ENC_ERR_MEMORY;
    xmlCharEncodingHandlerPtr found = nullptr;
    bool memoryOut = xmlOpenCharEncodingHandler(encoding, 0, &found) == XML_ERR_NO_MEMORY;
    const TDecoder decoder(found);
#else
    constexpr int k_memoryOut = INT_MIN;
    bool memoryOut = false;
    const TDecoder decoder(xmlFindCharEncodingHandler(encoding));
#endif
    if (!decoder) {
        if (memoryOut) {
            throw std::bad_alloc();
        }
        return false;
    }
    // It may do less than everything at a time, and stops for good before what it cannot decode.
    // A copy: for its message it reads four bytes from the wrong one on.
    const TBuffer text(Allocated(xmlBufferCreate()));
    const TBuffer rest(Allocated(xmlBufferCreateSize(size + 4)));
    memoryOut = xmlBufferAdd(rest.get(), reinterpret_cast<const xmlChar*>(data), static_cast<int>(size)) != 0;
    for (int before = INT_MAX; xmlBufferLength(rest.get()) > 0 && xmlBufferLength(rest.get()) < before;) {
        before = xmlBufferLength(rest.get());
        // It makes room as well, and would cut the text in silence where there is none.
        memoryOut |= xmlBufferGrow(text.get(), 2 * static_cast<unsigned>(before) + 2) < 0;
        memoryOut |= xmlCharEncInFunc(decoder.get(), text.get(), rest.get()) == k_memoryOut;
    }
    if (memoryOut || errors.MemoryOut()) {
        throw std::bad_alloc();
    }
    out->assign(AsText(xmlBufferContent(text.get())), static_cast<std::size_t>(xmlBufferLength(text.get())));
    return true;
}

}  // namespace vyr::xml
