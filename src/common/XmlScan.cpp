#include "common/XmlScan.h"

#include <strings.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace vyr {
namespace {

constexpr std::size_t k_maxAttributes = 1024;
// Shortest attribute with the blank before it, and so the shortest tag that has too many of them.
constexpr std::size_t k_suspiciousTag = (k_maxAttributes + 1) * 5;
// Bound of (document size x elements) once attribute defaults may multiply.
constexpr std::uint64_t k_maxDefaulting = 4u << 20;

constexpr char k_tooMany[] = "more than 1024 attributes";
constexpr char k_encoding[] = "encoding";
constexpr char k_malformed[] = "not well-formed";
constexpr char k_defaults[] = "attribute defaults";

enum EUnits { UTF8_BYTES, OTHER_BYTES, UTF16_LITTLE, UTF16_BIG };

/// The document as code units of one or two bytes. Past the end every unit is 0.
class CUnits {
  public:
    CUnits(const char* data, std::size_t size, EUnits kind)
        : m_data(reinterpret_cast<const unsigned char*>(data)),
          m_size(kind < UTF16_LITTLE ? size : size / 2),
          m_kind(kind)
    {
    }

    std::size_t Size() const { return m_size; }

    unsigned At(std::size_t i) const
    {
        if (i >= m_size) {
            return 0;
        }
        if (m_kind < UTF16_LITTLE) {
            return m_data[i];
        }
        const unsigned a = m_data[2 * i];
        const unsigned b = m_data[2 * i + 1];
        return m_kind == UTF16_BIG ? a << 8 | b : b << 8 | a;
    }

    bool Starts(std::size_t i, const char* text) const
    {
        while (*text && At(i) == static_cast<unsigned char>(*text)) {
            ++i;
            ++text;
        }
        return !*text;
    }

    /// Index of the next `unit` from i on, or the size.
    std::size_t Find(std::size_t i, char unit) const
    {
        if (m_kind < UTF16_LITTLE) {
            const void* hit = i < m_size ? std::memchr(m_data + i, unit, m_size - i) : nullptr;
            return hit ? static_cast<std::size_t>(static_cast<const unsigned char*>(hit) - m_data) : m_size;
        }
        while (i < m_size && At(i) != static_cast<unsigned char>(unit)) {
            ++i;
        }
        return i;
    }

    /// False for what no document may hold, and what makes libxml2 leave a comment early.
    bool Legal(std::size_t i) const
    {
        const unsigned unit = At(i);
        if (unit < 0x20) {
            return unit == '\t' || unit == '\n' || unit == '\r';
        }
        if (m_kind == UTF8_BYTES && unit >= 0xED) {
            // Surrogates, U+FFFE and U+FFFF, beyond U+10FFFF.
            const unsigned next = At(i + 1);
            return !((unit == 0xED && next >= 0xA0) || (unit == 0xEF && next == 0xBF && At(i + 2) >= 0xBE) ||
                     (unit == 0xF4 && next >= 0x90) || unit > 0xF4);
        }
        return unit < 0xFFFE;
    }

  private:
    const unsigned char* m_data;
    std::size_t m_size;
    EUnits m_kind;
};

bool IsBlank(unsigned unit)
{
    return unit == ' ' || unit == '\t' || unit == '\n' || unit == '\r';
}

bool Is(const char* name, const char* prefix)
{
    return strncasecmp(name, prefix, std::strlen(prefix)) == 0;
}

/// Encodings of eight-bit units in which the bytes of markup stand for nothing else.
bool KeepsMarkup(const char* name)
{
    static const char* const k_prefixes[] = {
        "US-ASCII", "ASCII",     "ISO-8859-",   "ISO8859-", "ISO_8859", "LATIN",   "WINDOWS-125", "CP125", "KOI8",
        "EUC",      "SHIFT_JIS", "SJIS",        "CP932",    "GB2312",   "GBK",     "GB18030",     "CP936", "BIG5",
        "CP950",    "KS_C_5601", "WINDOWS-31J", "CP949",    "UHC",      "TIS-620", "WINDOWS-949"};
    return std::any_of(std::begin(k_prefixes), std::end(k_prefixes),
                       [name](const char* prefix) { return Is(name, prefix); });
}

/// Settles the units of a document that names its encoding. False: they cannot be told. libxml2 takes the
/// name over what it has detected, from somewhere in the document on.
bool TakeEncoding(const char* name, EUnits* kind)
{
    switch (*kind) {
        case UTF16_LITTLE:
            return strcasecmp(name, "UTF-16") == 0 || strcasecmp(name, "UTF-16LE") == 0;
        case UTF16_BIG:
            return strcasecmp(name, "UTF-16") == 0 || strcasecmp(name, "UTF-16BE") == 0;
        default:
            *kind = Is(name, "UTF-8") || Is(name, "UTF8") ? UTF8_BYTES : OTHER_BYTES;
            return *kind == UTF8_BYTES || KeepsMarkup(name);
    }
}

/// Copies the encoding that the XML declaration at `*i` names, empty without one, and moves `*i` behind
/// the declaration. False when it is none that libxml2 would take.
bool DeclaredEncoding(const CUnits& units, std::size_t* at, char (&name)[40])
{
    name[0] = 0;
    std::size_t i = *at;
    if (!units.Starts(i, "<?xml") || !IsBlank(units.At(i + 5))) {
        return true;
    }
    const auto skipBlanks = [&units, &i] {
        while (IsBlank(units.At(i))) {
            ++i;
        }
    };
    i += 5;
    for (;;) {
        skipBlanks();
        if (units.Starts(i, "?>")) {
            *at = i + 2;
            return true;
        }
        const bool encoding = units.Starts(i, "encoding");
        while (units.At(i) >= 'a' && units.At(i) <= 'z') {
            ++i;
        }
        skipBlanks();
        if (units.At(i++) != '=') {
            return false;
        }
        skipBlanks();
        const unsigned quote = units.At(i++);
        if (quote != '"' && quote != '\'') {
            return false;
        }
        std::size_t length = 0;
        for (unsigned unit = units.At(i); unit != quote; unit = units.At(++i)) {
            if (unit <= ' ' || unit > '~' || length + 1 >= sizeof name) {
                return false;
            }
            if (encoding) {
                name[length++] = static_cast<char>(unit);
                name[length] = 0;
            }
        }
        ++i;
    }
}

/// One past the end mark; past the size when something illegal or the end comes first.
std::size_t SkipTo(const CUnits& units, std::size_t i, const char* mark)
{
    for (; i < units.Size() && units.Legal(i); ++i) {
        if (units.Starts(i, mark)) {
            return i + std::strlen(mark);
        }
    }
    return units.Size() + 1;
}

/// Whether something at i is a comment, a CDATA section or a processing instruction; `*i` is moved
/// behind it, or past the size when it is broken.
bool SkipOther(const CUnits& units, std::size_t* i)
{
    if (units.Starts(*i, "<!--")) {
        *i = SkipTo(units, *i + 4, "-->");
    } else if (units.Starts(*i, "<![CDATA[")) {
        *i = SkipTo(units, *i + 9, "]]>");
    } else if (units.Starts(*i, "<?")) {
        const unsigned start = units.At(*i + 2);
        const bool named = start >= 0x80 || (start >= 'a' && start <= 'z') || (start >= 'A' && start <= 'Z') ||
                           start == '_' || start == ':';
        *i = named ? SkipTo(units, *i + 2, "?>") : units.Size() + 1;
    } else {
        return false;
    }
    return true;
}

/// Scan of a document without a DTD that has a suspiciously long tag, or what looks like one. It must
/// take comments, CDATA sections and processing instructions for what libxml2 takes them for; where
/// the document is not well-formed the two could part ways, so it is refused at once.
const char* ScanTags(const CUnits& units)
{
    for (std::size_t i = units.Find(0, '<'); i < units.Size(); i = units.Find(i, '<')) {
        if (SkipOther(units, &i)) {
            if (i > units.Size()) {
                return k_malformed;
            }
            continue;
        }
        if (units.At(i + 1) == '!') {
            return k_malformed;
        }
        std::size_t values = 0;
        unsigned quote = 0;
        for (++i; i < units.Size() && units.At(i) != '<' && (quote || units.At(i) != '>'); ++i) {
            const unsigned unit = units.At(i);
            if (quote) {
                quote = unit == quote ? 0 : quote;
            } else if (unit == '"' || unit == '\'') {
                quote = unit;
                ++values;
            }
        }
        if (values > k_maxAttributes) {
            return k_tooMany;
        }
    }
    return nullptr;
}

/// Whether too many attributes stand between one "<" and the next, or in the `whole` document; nothing is
/// stepped over, and a character reference counts like an attribute's "=".
bool HasTooMany(const CUnits& units, bool whole)
{
    std::size_t count = 0;
    for (std::size_t i = 0; i < units.Size(); ++i) {
        const unsigned unit = units.At(i);
        if (unit == '<' && !whole) {
            count = 0;
        } else if ((unit == '=' || (unit == '&' && units.At(i + 1) == '#')) && ++count > k_maxAttributes) {
            return true;
        }
    }
    return false;
}

/// Scan of a document with a DTD, whose entities can hold tags too, spelt in part with character
/// references, and put together from parameter entities.
const char* ScanWithDtd(const CUnits& units)
{
    const bool parameters = units.Find(0, '%') < units.Size();
    if (HasTooMany(units, parameters)) {
        return k_tooMany;
    }
    bool defaults = parameters;
    std::uint64_t elements = 0;
    for (std::size_t i = 0; i < units.Size(); ++i) {
        const unsigned next = units.At(i + 1);
        elements +=
            (units.At(i) == '<' && next != '!' && next != '?' && next != '/') || (units.At(i) == '&' && next == '#');
        defaults = defaults || units.Starts(i, "<!ATTLIST");
    }
    return defaults && units.Size() * elements > k_maxDefaulting ? k_defaults : nullptr;
}

}  // namespace

const char* RefusalOf(const char* data, std::size_t size, bool* plain)
{
    const CUnits bytes(data, size, OTHER_BYTES);
    const unsigned first = bytes.At(0) << 8 | bytes.At(1);
    EUnits kind = UTF8_BYTES;
    if (first == 0xFEFF || (first == 0x003C && bytes.At(2) == 0 && bytes.At(3) == '?')) {
        kind = UTF16_BIG;
    } else if ((first == 0xFFFE && (bytes.At(2) || bytes.At(3))) ||
               (first == 0x3C00 && bytes.At(2) == '?' && bytes.At(3) == 0)) {
        kind = UTF16_LITTLE;
    } else if (bytes.At(0) == 0 || bytes.At(1) == 0 || first == 0xFFFE || first == 0x4C6F) {
        return k_encoding;
    }
    std::size_t begin = 0;
    if (bytes.Starts(0, "\xEF\xBB\xBF")) {
        begin = 3;
    } else if (first == 0xFEFF || first == 0xFFFE) {
        begin = 1;
    }
    char encoding[40];
    if (!DeclaredEncoding(CUnits(data, size, kind), &begin, encoding)) {
        return k_malformed;
    }
    if (encoding[0] && !TakeEncoding(encoding, &kind)) {
        return k_encoding;
    }
    const CUnits units(data, size, kind);
    if (plain) {
        *plain =
            kind == UTF8_BYTES && (!encoding[0] || strcasecmp(encoding, "UTF-8") == 0) && !std::memchr(data, 0, size);
    }

    std::size_t i = begin;
    do {
        while (IsBlank(units.At(i))) {
            ++i;
        }
        if (units.Starts(i, "<!D")) {
            if (plain) {
                *plain = false;
            }
            return ScanWithDtd(units);
        }
    } while (SkipOther(units, &i));
    if (i > units.Size()) {
        return k_malformed;
    }

    if (units.Size() - i < k_suspiciousTag) {
        return nullptr;
    }
    // No attribute value holds a "<": a tag that is too rich reaches at least this far without one.
    for (i = units.Find(i, '<'); i < units.Size();) {
        const std::size_t next = units.Find(i + 1, '<');
        if (next - i >= k_suspiciousTag) {
            // Other encodings can spell what makes libxml2 leave a comment early: there, none is stepped over.
            return kind != OTHER_BYTES ? ScanTags(units) : HasTooMany(units, false) ? k_tooMany : nullptr;
        }
        i = next;
    }
    return nullptr;
}

}  // namespace vyr
