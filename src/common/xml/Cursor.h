#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

// How the scan walks a text, and the limits that it holds it to.

namespace vyr::xml {

using TText = std::string_view;

constexpr std::size_t k_maxAttributes = 1024;
constexpr std::uint64_t k_comparisons = k_maxAttributes * k_maxAttributes;
constexpr std::uint64_t k_comparisonsOfByte = 64;
constexpr std::size_t k_maxNamespaces = 256;
constexpr std::size_t k_maxNames = 16384;
constexpr std::size_t k_maxIdentifiers = 16384;
constexpr std::size_t k_maxIdsOfElement = 8;
constexpr std::size_t k_maxCatalogs = 1024;
constexpr std::size_t k_maxEnumerated = 1024;
constexpr std::size_t k_maxDefaults = 1024;
constexpr std::uint64_t k_maxDefaulting = 4u << 20;
constexpr int k_maxNesting = 64;

constexpr char k_tooMany[] = "more than 1024 attributes";
constexpr char k_compared[] = "too many attributes to compare";
constexpr char k_namespaces[] = "more than 256 namespace declarations";
constexpr char k_names[] = "more than 16384 names";
constexpr char k_identifiers[] = "too many identifiers";
constexpr char k_catalogs[] = "more than 1024 catalogs";
constexpr char k_parameters[] = "parameter entity";
constexpr char k_expansion[] = "entities could expand to more than 524288 bytes";
constexpr char k_enumerated[] = "more than 1024 enumerated values";
constexpr char k_defaults[] = "attribute defaults";
constexpr char k_encoding[] = "encoding";
constexpr char k_malformed[] = "not well-formed";

inline bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

inline bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

inline bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Letters beyond ASCII are not told from other characters: libxml2 ends a name there, or finds none, and
/// reads what follows as text up to the next "<", as markup of no kind that has an effect.
inline bool IsNameStart(char c)
{
    return IsLetter(c) || c == '_' || c == ':' || static_cast<unsigned char>(c) >= 0x80;
}

inline bool IsNameChar(char c)
{
    static const std::array<bool, 256> s_table = [] {
        std::array<bool, 256> table{};
        for (std::size_t i = 0; i < table.size(); ++i) {
            const char each = static_cast<char>(i);
            table[i] = IsNameStart(each) || IsDigit(each) || each == '-' || each == '.';
        }
        return table;
    }();
    return s_table[static_cast<unsigned char>(c)];
}

inline bool IsPubidChar(char c)
{
    return c && (IsLetter(c) || IsDigit(c) || std::strchr(" \r\n-'()+,./:=?;!*#@$_%", c));
}

/// The code point at `at` and its length; length 0 for what no document may hold.
inline std::uint32_t CodePoint(TText text, std::size_t at, std::size_t* length)
{
    const auto byte = [text, at](std::size_t i) -> std::uint32_t {
        return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0;
    };
    const std::uint32_t first = byte(0);
    if (first < 0x80) {
        *length = first >= 0x20 || first == '\t' || first == '\n' || first == '\r';
        return first;
    }
    const std::size_t count = first < 0xC2 || first > 0xF4 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    std::uint32_t code = first & (0x7Fu >> count);
    bool legal = count != 0;
    for (std::size_t i = 1; i < count; ++i) {
        legal = legal && (byte(i) & 0xC0) == 0x80;
        code = code << 6 | (byte(i) & 0x3F);
    }
    static constexpr std::uint32_t k_least[] = {0, 0, 0x80, 0x800, 0x10000};
    legal = legal && code >= k_least[count] && code <= 0x10FFFF && !(code >= 0xD800 && code < 0xE000) &&
            code != 0xFFFE && code != 0xFFFF;
    *length = legal ? count : 0;
    return code;
}

/// Appends the code point as UTF-8; false for what no document may hold.
inline bool Append(std::uint32_t code, std::string* out)
{
    std::string bytes;
    if (code < 0x80) {
        bytes = static_cast<char>(code);
    } else {
        const int more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
        bytes = static_cast<char>((0xFF00u >> (more + 1) & 0xFF) | code >> 6 * more);
        for (int i = more - 1; i >= 0; --i) {
            bytes += static_cast<char>(0x80 | (code >> 6 * i & 0x3F));
        }
    }
    std::size_t length = 0;
    CodePoint(bytes, 0, &length);
    *out += bytes;
    return length == bytes.size();
}

/// What stands before the first thing that no document may hold.
inline TText LegalPart(TText text)
{
    std::size_t i = 0;
    for (std::size_t length = 1; i < text.size(); i += length) {
        if (static_cast<unsigned char>(text[i] - 0x20) >= 0x60) {
            CodePoint(text, i, &length);
            if (length == 0) {
                break;
            }
        } else {
            length = 1;
        }
    }
    return text.substr(0, i);
}

/// Whether an instruction's name may begin here: where it may not, libxml2 reads the rest as content.
inline bool BeginsInstruction(TText text, std::size_t at)
{
    if (at >= text.size() || static_cast<unsigned char>(text[at]) < 0x80) {
        return at < text.size() && IsNameStart(text[at]);
    }
    static constexpr std::uint32_t k_ranges[][2] = {
        {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},   {0x37F, 0x1FFF},  {0x200C, 0x200D},
        {0x2070, 0x218F}, {0x2C00, 0x2FEF}, {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
    std::size_t length = 0;
    const std::uint32_t code = CodePoint(text, at, &length);
    return length && std::any_of(std::begin(k_ranges), std::end(k_ranges),
                                 [code](const auto& range) { return code >= range[0] && code <= range[1]; });
}

/// A place in a text. What is looked for and not there leaves the place as it is.
class CCursor {
  public:
    explicit CCursor(TText text, std::size_t at = 0) : m_text(text), m_at(at) {}

    std::size_t At() const { return m_at; }
    bool Done() const { return m_at >= m_text.size(); }
    char Peek(std::size_t i = 0) const { return m_at + i < m_text.size() ? m_text[m_at + i] : '\0'; }
    bool Sees(TText mark) const { return m_text.compare(m_at, mark.size(), mark) == 0; }
    bool Take(TText mark)
    {
        const bool sees = Sees(mark);
        m_at += sees ? mark.size() : 0;
        return sees;
    }

    bool Blanks()
    {
        const std::size_t begin = m_at;
        while (IsBlank(Peek())) {
            ++m_at;
        }
        return m_at != begin;
    }

    /// Empty when there is none.
    TText Token()
    {
        const std::size_t begin = m_at;
        while (IsNameChar(Peek())) {
            ++m_at;
        }
        return m_text.substr(begin, m_at - begin);
    }

    TText Name() { return IsNameStart(Peek()) ? Token() : TText(); }

    /// Goes to the next `c`, or the end.
    bool Find(char c)
    {
        m_at = std::min(m_text.find(c, m_at), m_text.size());
        return !Done();
    }

    /// Goes behind the next mark.
    bool Behind(TText mark)
    {
        const std::size_t found = m_text.find(mark, m_at);
        m_at = found == TText::npos ? m_text.size() : found + mark.size();
        return found != TText::npos;
    }

    /// A quoted value.
    bool Literal(TText* value)
    {
        const char quote = Peek();
        if (quote != '"' && quote != '\'') {
            return false;
        }
        const std::size_t end = m_text.find(quote, m_at + 1);
        if (end == TText::npos) {
            return false;
        }
        *value = m_text.substr(m_at + 1, end - m_at - 1);
        m_at = end + 1;
        return true;
    }

    /// Goes behind a comment or an instruction; what has no end goes to the end. False when there is none.
    bool Aside()
    {
        if (Take("<!--")) {
            Behind("-->");
            return true;
        }
        const bool instruction = Sees("<?") && BeginsInstruction(m_text, m_at + 2);
        if (instruction) {
            Behind("?>");
        }
        return instruction;
    }

  private:
    TText m_text;
    std::size_t m_at;
};

inline bool Contains(TText text, char c)
{
    return text.find(c) != TText::npos;
}

/// Blanks, comments and instructions outside the root. Null, or the reason to refuse.
inline const char* SkipMisc(CCursor& in)
{
    static constexpr TText k_catalog = "<?oasis-xml-catalog";
    std::size_t catalogs = 0;
    do {
        in.Blanks();
        catalogs += in.Sees(k_catalog) && !IsNameChar(in.Peek(k_catalog.size()));
    } while (in.Aside());
    return catalogs > k_maxCatalogs ? k_catalogs : in.Done() || in.Sees("<?") ? k_malformed : nullptr;
}

}  // namespace vyr::xml
