// A document through CXML and through plain libxml2: the same is taken, apart from what is refused for a reason that
// is true, and the same tree comes of it, names, attributes, texts and both serialisations.
// Sources: src/common/xml src/common/XML.cpp
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "Fuzz.h"
#include "Mutate.h"
#include "XmlAcceptance.h"
#include "common/XML.h"
#include "platform/Platform.h"

namespace {

struct SFreeDoc {
    void operator()(xmlDocPtr doc) const { xmlFreeDoc(doc); }
};

struct SFreeText {
    void operator()(xmlChar* text) const { xmlFree(text); }
};
using TPlainText = std::unique_ptr<xmlChar, SFreeText>;
using TText = std::unique_ptr<char[]>;

/// `text` is "" where libxml2 has none.
void RequireSame(const char* text, const xmlChar* plain)
{
    const char* wanted = plain ? reinterpret_cast<const char*>(plain) : "";
    if (!text || std::strcmp(text, wanted) != 0) {
        std::fprintf(stderr, "%.500s\nis not: %.500s\n", text ? text : "(null)", wanted);
        std::abort();
    }
}

void CompareNode(const CXML& xml, void* node, xmlNodePtr plain)
{
    bool found = false;
    Require(!xml.Name(node) == !plain->name);
    RequireSame(plain->name ? xml.Name(node) : "", plain->name);
    RequireSame(TText(xml.Content(node, &found)).get(), TPlainText(xmlNodeGetContent(plain)).get());
    if (plain->type != XML_ELEMENT_NODE) {
        return;
    }
    RequireSame(TText(xml.Ns(node, &found)).get(), plain->ns ? plain->ns->href : nullptr);
    Require(found == (plain->ns && plain->ns->href));
    int left = 50;
    for (xmlAttrPtr attribute = plain->properties; attribute && left-- > 0; attribute = attribute->next) {
        const TText value(xml.PropStr(node, reinterpret_cast<const char*>(attribute->name), &found));
        RequireSame(value.get(), TPlainText(xmlGetProp(plain, attribute->name)).get());
        Require(found);
    }
    const TText none(xml.PropStr(node, "no such", &found));
    Require(!found);
}

/// Depth first; the deepest tree that libxml2 makes is of 256 levels.
void CompareTree(const CXML& xml, void* node, xmlNodePtr plain, int* left)
{
    for (; node && plain && --*left > 0; node = xml.MoveNext(node), plain = plain->next) {
        CompareNode(xml, node, plain);
        // What is below a reference is the entity's own.
        if (plain->type == XML_ELEMENT_NODE) {
            CompareTree(xml, xml.MoveChild(node), plain->children, left);
        }
    }
    Require(*left <= 0 || (!node && !plain));
}

void CompareDumps(const CXML& xml, void* root, xmlDocPtr plain)
{
    int size = 0;
    xmlChar* text = nullptr;
    int plainSize = 0;
    xmlDocDumpMemory(plain, &text, &plainSize);
    const TPlainText whole(text);
    const TText dumped(xml.Dump(xml.Doc(), &size));
    Require(size == plainSize && std::memcmp(dumped.get(), whole.get(), static_cast<std::size_t>(size)) == 0);
    const std::unique_ptr<xmlBuffer, decltype(&xmlBufferFree)> buffer(xmlBufferCreate(), xmlBufferFree);
    xmlNodeDump(buffer.get(), plain, xmlDocGetRootElement(plain), 0, 0);
    RequireSame(TText(xml.NodeDump(root, &size)).get(), xmlBufferContent(buffer.get()));
}

}  // namespace

VYR_MUTATOR(MutateXml)

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    if (size < 2) {
        return 0;
    }
    const std::vector<unsigned char> bytes(data, data + size);
    const char* text = reinterpret_cast<const char*>(bytes.data());
    CXML xml;
    const bool created = xml.Create(text, static_cast<int>(size), false);
    RequireSameAcceptance(std::string(text, size), created);
    if (!created) {
        return 0;
    }
    const int quiet = XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    const std::unique_ptr<xmlDoc, SFreeDoc> plain(xmlReadMemory(text, static_cast<int>(size), nullptr, nullptr, quiet));
    void* root = nullptr;
    Require(plain && xml.MoveRoot(&root));
    int left = 2000;
    CompareTree(xml, root, xmlDocGetRootElement(plain.get()), &left);
    CompareDumps(xml, root, plain.get());
    xml.Destroy();
    return 0;
}
