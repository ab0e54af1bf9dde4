#include "common/xml/Refusal.h"

#include <libxml/xmlversion.h>
#include <strings.h>

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <string>

#include "common/xml/Cursor.h"
#include "common/xml/ExactScan.h"
#include "common/xml/Xml.h"

namespace vyr::xml {
namespace {

// Shorter than this nothing can be too much: 257 times "<a xmlns=''/>" without what goes between them,
// 1,025 times " a=''" (or as many comparisons in several tags), 16,385 different names of tags and attributes.
constexpr std::size_t k_namespacesNeed = (k_maxNamespaces + 1) * 9;
constexpr std::size_t k_attributeNeeds = 5;
constexpr std::size_t k_attributesNeed = (k_maxAttributes + 1) * k_attributeNeeds;
constexpr std::size_t k_namesNeed = (k_maxNames + 1) * 5;

constexpr bool k_markHolds = LIBXML_VERSION >= 21000;

bool IsAscii(char c)
{
    return (static_cast<unsigned char>(c) & 0x80) == 0;
}

/// One value of the XML declaration; empty without one of this name.
TText DeclaredValue(CCursor& in, TText name)
{
    CCursor ahead = in;
    TText value;
    if (ahead.Blanks() && ahead.Take(name)) {
        ahead.Blanks();
        if (ahead.Take("=")) {
            ahead.Blanks();
            if (ahead.Literal(&value) && !value.empty()) {
                in = ahead;
                return value;
            }
        }
    }
    return {};
}

/// Copies the encoding that the XML declaration at the cursor names, empty without one, and goes behind the
/// declaration. False when it is none that libxml2 would take.
bool DeclaredEncoding(CCursor& in, std::string* encoding)
{
    if (!in.Sees("<?xml") || !IsBlank(in.Peek(5))) {
        return true;
    }
    in.Take("<?xml");
    const TText version = DeclaredValue(in, "version");
    const TText name = DeclaredValue(in, "encoding");
    const TText alone = DeclaredValue(in, "standalone");
    in.Blanks();
    *encoding = name;
    return version.size() >= 2 && version[1] == '.' &&
           std::count_if(version.begin(), version.end(), IsDigit) == static_cast<std::ptrdiff_t>(version.size()) - 1 &&
           (alone.empty() || alone == "yes" || alone == "no") && in.Take("?>") && (name.empty() || IsLetter(name[0])) &&
           std::all_of(name.begin(), name.end(),
                       [](char c) { return IsLetter(c) || IsDigit(c) || c == '.' || c == '_' || c == '-'; });
}

bool IsAny(const std::string& name, std::initializer_list<const char*> names)
{
    return std::any_of(names.begin(), names.end(),
                       [&name](const char* other) { return strcasecmp(name.c_str(), other) == 0; });
}

/// Whether ASCII is part of the encoding: each of its characters stands for itself, and no shift or escape
/// changes that. Backslash and tilde, which some replace, are part of no markup.
bool IncludesAscii(const std::string& encoding)
{
    std::string all =
        "\x0E"
        "0!\x0F\x1B$B0!\x1B(B\t\n\r";
    for (char c = ' '; c < '~'; ++c) {
        if (c != '\\') {
            all += c;
        }
    }
    std::string decoded;
    return DecodeXml(encoding.c_str(), (all + "~ ").data(), all.size() + 2, &decoded) &&
           decoded.size() > all.size() + 1 && decoded.compare(0, all.size(), all) == 0 && decoded.back() == ' ';
}

/// Whether the exact scan is needed for a document without document type, whose root begins at the cursor.
bool IsSuspicious(TText text, std::size_t begin)
{
    const std::size_t rest = text.size() - begin;
    if (rest < k_namespacesNeed) {
        return false;
    }
    if (rest >= k_namesNeed) {
        return true;
    }
    std::size_t namespaces = 0;
    for (std::size_t i = text.find('x', begin); i != TText::npos; i = text.find('x', i + 1)) {
        namespaces += text.compare(i, 5, "xmlns") == 0;
    }
    if (namespaces > k_maxNamespaces) {
        return true;
    }
    // No attribute value holds a "<": a tag that is too rich reaches at least this far without one.
    std::uint64_t comparisons = 0;
    for (std::size_t i = text.find('<', begin); i != TText::npos && rest >= k_attributesNeed;) {
        const std::size_t next = std::min(text.find('<', i + 1), text.size());
        const std::uint64_t most = (next - i) / k_attributeNeeds;
        comparisons += most * most;
        i = next < text.size() ? next : TText::npos;
    }
    return comparisons > k_comparisons;
}

const char* Refusal(TText text, ETextForm* form)
{
    const auto byte = [text](std::size_t i) {
        return i < text.size() ? static_cast<unsigned>(static_cast<unsigned char>(text[i])) : 0u;
    };
    const unsigned first = byte(0) << 8 | byte(1);
    const bool big = first == 0xFEFF || (first == 0x003C && byte(2) == 0 && byte(3) == '?');
    const bool little = (first == 0xFFFE && (byte(2) || byte(3))) || (first == 0x3C00 && byte(2) == '?' && !byte(3));
    std::string decoded;
    std::string encoding;
    if (big || little) {
        text.remove_prefix(first == 0xFEFF || first == 0xFFFE ? 2 : 0);
        if (!DecodeXml(big ? "UTF-16BE" : "UTF-16LE", text.data(), text.size(), &decoded)) {
            return k_encoding;
        }
        text = decoded;
    } else if (byte(0) == 0 || byte(1) == 0 || first == 0xFFFE || first == 0x4C6F) {
        return k_encoding;
    }
    CCursor in(text);
    const bool marked = in.Take("\xEF\xBB\xBF");
    if (!DeclaredEncoding(in, &encoding)) {
        return k_malformed;
    }
    if (big || little) {
        if (!encoding.empty() && !IsAny(encoding, {"UTF-16", "UTF16", big ? "UTF-16BE" : "UTF-16LE"})) {
            return k_encoding;
        }
    } else if (!encoding.empty() && !IsAny(encoding, {"UTF-8", "UTF8"})) {
        // The name holds over a byte order mark; for newer libxml2 the mark does, and on ASCII they agree.
        if (k_markHolds && marked && !std::all_of(text.begin() + 3, text.end(), IsAscii)) {
            return k_encoding;
        }
        // Up to here each byte is a character.
        if (!IncludesAscii(encoding) ||
            !DecodeXml(encoding.c_str(), text.data() + in.At(), text.size() - in.At(), &decoded)) {
            return k_encoding;
        }
        text = decoded;
        in = CCursor(text);
    } else {
        encoding.clear();
    }
    const std::size_t begin = in.At();
    const char* reason = SkipMisc(in);
    const bool typed = in.Sees("<!");
    if (!reason && (typed || IsSuspicious(text, in.At()))) {
        reason = ScanExactly(LegalPart(text), begin);
    }
    *form = big || little || !encoding.empty() ? TEXT_OTHER : typed ? TEXT_TYPED : TEXT_UNTYPED;
    return reason;
}

}  // namespace

const char* RefusalOf(const char* data, std::size_t size, ETextForm* form)
{
    ETextForm found = TEXT_OTHER;
    const char* reason = Refusal(TText(data, size), &found);
    if (form) {
        *form = std::memchr(data, 0, size) ? TEXT_OTHER : found;
    }
    return reason;
}

}  // namespace vyr::xml
