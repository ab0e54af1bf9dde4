#include "common/xml/Refusal.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "common/SeededHash.h"
#include "common/xml/Xml.h"

namespace vyr::xml {
namespace {

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

// Shorter than this nothing can be too much: 257 times "<a xmlns=''/>" without what goes between them,
// 1,025 times " a=''" (or as many comparisons in several tags), 16,385 different names of tags and attributes.
constexpr std::size_t k_namespacesNeed = (k_maxNamespaces + 1) * 9;
constexpr std::size_t k_attributeNeeds = 5;
constexpr std::size_t k_attributesNeed = (k_maxAttributes + 1) * k_attributeNeeds;
constexpr std::size_t k_namesNeed = (k_maxNames + 1) * 5;

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

using TText = std::string_view;

struct SNameHash {
    std::size_t operator()(TText name) const { return CSeededHash().Add(name).Value(); }
};

bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Letters beyond ASCII are not told from other characters: libxml2 ends a name there, or finds none, and
/// reads what follows as text up to the next "<", as markup of no kind that has an effect.
bool IsNameStart(char c)
{
    return IsLetter(c) || c == '_' || c == ':' || static_cast<unsigned char>(c) >= 0x80;
}

bool IsNameChar(char c)
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

bool IsPubidChar(char c)
{
    return c && (IsLetter(c) || IsDigit(c) || std::strchr(" \r\n-'()+,./:=?;!*#@$_%", c));
}

/// The code point at `at` and its length; length 0 for what no document may hold.
std::uint32_t CodePoint(TText text, std::size_t at, std::size_t* length)
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
bool Append(std::uint32_t code, std::string* out)
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
TText LegalPart(TText text)
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
bool BeginsInstruction(TText text, std::size_t at)
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

bool Contains(TText text, char c)
{
    return text.find(c) != TText::npos;
}

/// Blanks, comments and instructions outside the root. Null, or the reason to refuse.
const char* SkipMisc(CCursor& in)
{
    static constexpr TText k_catalog = "<?oasis-xml-catalog";
    std::size_t catalogs = 0;
    do {
        in.Blanks();
        catalogs += in.Sees(k_catalog) && !IsNameChar(in.Peek(k_catalog.size()));
    } while (in.Aside());
    return catalogs > k_maxCatalogs ? k_catalogs : in.Done() || in.Sees("<?") ? k_malformed : nullptr;
}

/// The exact scan. Every step returns false once the document is refused.
class CExactScan {
  public:
    /// From behind the XML declaration at `begin`.
    const char* Document(TText text, std::size_t begin)
    {
        CCursor in(text, begin);
        m_maxComparisons = k_comparisons + k_comparisonsOfByte * text.size();
        m_reason = SkipMisc(in);
        if (!m_reason && in.Take("<!DOCTYPE") && m_Type(in)) {
            m_reason = SkipMisc(in);
        }
        if (!m_reason && m_Content(text, in.At(), true)) {
            m_Entities();
        }
        return m_reason;
    }

  private:
    /// What the subset says of the attributes of an element.
    struct SElement {
        std::size_t defaults = 0, bytes = 0, namespaces = 0, ids = 0, identifiers = 0;
    };

    struct SEntity {
        std::string text;  // the replacement text: character references are resolved
        std::size_t bytes = 0, references = 0;
        int nesting = 0;
        enum { UNKNOWN, BEING_ADDED, KNOWN } state = UNKNOWN;
    };

    bool m_Refuse(const char* reason)
    {
        m_reason = reason;
        return false;
    }

    bool m_Within(std::size_t count, std::size_t most, const char* reason) { return count <= most || m_Refuse(reason); }

    bool m_Count(TText name)
    {
        // Most names were met shortly before.
        TText& recent = m_recent[(name.size() * 7 + static_cast<unsigned char>(name.back()) * 3 +
                                  static_cast<unsigned char>(name.front())) %
                                 m_recent.size()];
        if (recent == name) {
            return true;
        }
        recent = name;
        const std::size_t colon = name.find(':');
        m_names.insert(name.substr(0, colon));
        if (colon != TText::npos) {
            m_names.insert(name.substr(colon + 1));
        }
        return m_Within(m_names.size(), k_maxNames, k_names);
    }

    /// A name that is required here; the blanks before it too.
    bool m_Name(CCursor& in, TText* name)
    {
        *name = in.Blanks() ? in.Name() : TText();
        return !name->empty() ? m_Count(*name) : m_Refuse(k_malformed);
    }

    bool m_End(CCursor& in)
    {
        in.Blanks();
        return in.Take(">") || m_Refuse(k_malformed);
    }

    /// Behind "<!DOCTYPE".
    bool m_Type(CCursor& in)
    {
        // libxml2 does without blanks here.
        in.Blanks();
        const TText name = in.Name();
        if (name.empty() || !m_Count(name)) {
            return !m_reason && m_Refuse(k_malformed);
        }
        in.Blanks();
        if ((in.Sees("SYSTEM") || in.Sees("PUBLIC")) && !m_External(in, true)) {
            return false;
        }
        in.Blanks();
        // libxml2 also takes a subset behind the end.
        const bool ended = in.Take(">");
        if (!in.Take("[")) {
            return ended || m_Refuse(k_malformed);
        }
        for (;;) {
            in.Blanks();
            if (in.Take("]")) {
                return m_End(in);
            }
            if (in.Sees("%")) {
                return m_Refuse(k_parameters);
            }
            if (!in.Aside() && !m_Declaration(in)) {
                return false;
            }
        }
    }

    bool m_Declaration(CCursor& in)
    {
        if (in.Take("<!ENTITY")) {
            return m_Entity(in);
        }
        if (in.Take("<!ATTLIST")) {
            return m_AttributeList(in);
        }
        TText name;
        if (in.Take("<!NOTATION")) {
            if (!m_Name(in, &name) || !in.Blanks() || !m_External(in, false)) {
                return !m_reason && m_Refuse(k_malformed);
            }
            return m_End(in);
        }
        if (!in.Take("<!ELEMENT")) {
            return m_Refuse(k_malformed);
        }
        if (!m_Name(in, &name)) {
            return false;
        }
        while (in.Peek() != '>') {
            name = in.Token();
            if (!name.empty() && !m_Count(name)) {
                return false;
            }
            if (name.empty() && !in.Blanks()) {
                const char c = in.Peek();
                if (!c || !std::strchr("()|,*+?#", c)) {
                    return m_Refuse(c == '%' ? k_parameters : k_malformed);
                }
                in.Take(TText(&c, 1));
            }
        }
        return m_End(in);
    }

    /// An external identifier; `whole`: with a system identifier in any case. In a public one libxml2 stops
    /// at the first character that is not allowed, and could go on with a declaration.
    bool m_External(CCursor& in, bool whole)
    {
        TText value;
        if (in.Take("PUBLIC")) {
            if (!in.Blanks() || !in.Literal(&value) || !std::all_of(value.begin(), value.end(), IsPubidChar)) {
                return m_Refuse(k_malformed);
            }
            CCursor ahead = in;
            if (ahead.Blanks() && ahead.Literal(&value)) {
                in = ahead;
                return true;
            }
            return !whole || m_Refuse(k_malformed);
        }
        return (in.Take("SYSTEM") && in.Blanks() && in.Literal(&value)) || m_Refuse(k_malformed);
    }

    /// Behind "<!ENTITY".
    bool m_Entity(CCursor& in)
    {
        CCursor ahead = in;
        ahead.Blanks();
        if (ahead.Sees("%")) {
            return m_Refuse(k_parameters);
        }
        TText name;
        TText value;
        if (!m_Name(in, &name)) {
            return false;
        }
        if (!in.Blanks()) {
            return m_Refuse(k_malformed);
        }
        SEntity entity;
        if (in.Literal(&value)) {
            // A "%" in a value can only refer to a parameter entity.
            if (Contains(value, '%')) {
                return m_Refuse(k_parameters);
            }
            if (!m_Resolve(value, &entity.text)) {
                return m_Refuse(k_malformed);
            }
        } else {
            if (!m_External(in, true)) {
                return false;
            }
            if (in.Blanks() && in.Take("NDATA") && !m_Name(in, &value)) {
                return false;
            }
        }
        m_entities.emplace(name, std::move(entity));  // the first of a name holds
        return m_End(in);
    }

    /// Copies the value with its character references resolved.
    static bool m_Resolve(TText value, std::string* out)
    {
        for (std::size_t i = 0; i < value.size();) {
            const std::size_t reference = std::min(value.find("&#", i), value.size());
            out->append(value, i, reference - i);
            i = reference;
            if (i == value.size()) {
                break;
            }
            i += 2;
            const bool hex = i < value.size() && value[i] == 'x';
            i += hex;
            const std::size_t begin = i;
            std::uint32_t code = 0;
            for (; i < value.size() && value[i] != ';'; ++i) {
                const char c = value[i];
                const char lower = static_cast<char>(c | 0x20);
                if (!IsDigit(c) && !(hex && lower >= 'a' && lower <= 'f')) {
                    return false;
                }
                const int digit = IsDigit(c) ? c - '0' : lower - 'a' + 10;
                code = std::min(code * (hex ? 16u : 10u) + static_cast<std::uint32_t>(digit), 0x110000u);
            }
            if (i == begin || i == value.size() || !Append(code, out)) {
                return false;
            }
            ++i;
        }
        return true;
    }

    /// Behind "<!ATTLIST".
    bool m_AttributeList(CCursor& in)
    {
        TText element;
        TText name;
        if (!m_Name(in, &element)) {
            return false;
        }
        for (;;) {
            CCursor ahead = in;
            ahead.Blanks();
            if (ahead.Sees(">")) {
                return m_End(in);
            }
            if (!m_Name(in, &name)) {
                return false;
            }
            TText type;
            if (!in.Blanks() || (in.Peek() != '(' && (type = in.Name()).empty())) {
                return m_Refuse(k_malformed);
            }
            static constexpr TText k_types[] = {"",       "CDATA",    "ID",      "IDREF",    "IDREFS",
                                                "ENTITY", "ENTITIES", "NMTOKEN", "NMTOKENS", "NOTATION"};
            if (std::find(std::begin(k_types), std::end(k_types), type) == std::end(k_types) ||
                (type == "NOTATION" && !in.Blanks())) {
                return m_Refuse(k_malformed);
            }
            if ((type.empty() || type == "NOTATION") && !m_Enumeration(in)) {
                return false;
            }
            if (type == "ID" || type == "IDREF" || type == "IDREFS") {
                SElement& declared = m_elements[element];
                ++declared.identifiers;
                declared.ids += type == "ID";
                if (!m_Within(declared.ids, k_maxIdsOfElement, k_identifiers)) {
                    return false;
                }
            }
            if (!in.Blanks()) {
                return m_Refuse(k_malformed);
            }
            if (in.Take("#REQUIRED") || in.Take("#IMPLIED")) {
                continue;
            }
            TText value;
            if ((in.Take("#FIXED") && !in.Blanks()) || !in.Literal(&value) || Contains(value, '<')) {
                return m_Refuse(k_malformed);
            }
            SElement& declared = m_elements[element];
            ++declared.defaults;
            declared.bytes += value.size();
            declared.namespaces += m_IsNamespace(name);
            if (!m_Within(++m_defaults, k_maxDefaults, k_defaults)) {
                return false;
            }
        }
    }

    bool m_Enumeration(CCursor& in)
    {
        if (!in.Take("(")) {
            return m_Refuse(k_malformed);
        }
        do {
            in.Blanks();
            if (in.Token().empty()) {
                return m_Refuse(k_malformed);
            }
            in.Blanks();
            if (!m_Within(++m_enumerated, k_maxEnumerated, k_enumerated)) {
                return false;
            }
        } while (in.Take("|"));
        return in.Take(")") || m_Refuse(k_malformed);
    }

    static bool m_IsNamespace(TText name)
    {
        return name.compare(0, 5, "xmlns") == 0 && (name.size() == 5 || name[5] == ':');
    }

    /// The document from its root on, to the end of the root, or the text of an entity. There, what is
    /// broken need not matter: the entity may stand in attributes only, or nowhere. libxml2 takes it for
    /// text, up to the next "<".
    bool m_Content(TText text, std::size_t begin, bool document)
    {
        CCursor in(text, begin);
        std::size_t depth = 0;
        bool sections = true;  // another CDATA section may end
        if (document && !in.Sees("<")) {
            return m_Refuse(k_malformed);
        }
        while (in.Find('<')) {
            if (in.Aside()) {
                continue;
            }
            begin = in.At();
            bool whole = false;
            if (in.Take("<![CDATA[")) {
                whole = sections = sections && in.Behind("]]>");
            } else if (in.Take("</")) {
                in.Name();
                in.Blanks();
                whole = in.Take(">");
                depth -= depth > 0;
            } else {
                in.Take("<");
                bool empty = false;
                whole = m_Tag(in, &empty);
                depth += whole && !empty;
            }
            if (m_reason) {
                return false;
            }
            if (document && (!whole || depth == 0)) {
                return whole || m_Refuse(k_malformed);
            }
            if (!whole) {
                in = CCursor(text, begin + 1);
                in.Find('<');
                const TText broken = text.substr(begin, in.At() - begin);
                const auto quotes =
                    std::count(broken.begin(), broken.end(), '"') + std::count(broken.begin(), broken.end(), '\'');
                if (!m_Compare(static_cast<std::size_t>(quotes) / 2, 0)) {
                    return false;
                }
            }
        }
        return !document || m_Refuse(k_malformed);
    }

    /// Behind the "<" of a start tag. False when it is broken, too.
    bool m_Tag(CCursor& in, bool* empty)
    {
        const TText name = in.Name();
        if (name.empty() || !m_Count(name)) {
            return false;
        }
        std::size_t attributes = 0;
        while (in.Blanks() && IsNameStart(in.Peek())) {
            const TText attribute = in.Name();
            in.Blanks();
            TText value;
            if (!in.Take("=") || !m_Count(attribute)) {
                return false;
            }
            in.Blanks();
            if (!in.Literal(&value) || Contains(value, '<')) {
                return false;
            }
            ++attributes;
            m_namespaces += m_IsNamespace(attribute);
            m_identifiers += attribute == "xml:id";
        }
        *empty = in.Take("/");
        if (!in.Take(">")) {
            return false;
        }
        std::size_t defaults = 0;
        const auto declared = m_elements.empty() ? m_elements.end() : m_elements.find(name);
        if (declared != m_elements.end()) {
            const SElement& element = declared->second;
            m_defaulting += element.bytes + element.defaults * (64 + element.defaults);
            m_namespaces += element.namespaces;
            m_identifiers += std::min(attributes, element.identifiers);
            defaults = element.defaults;
        }
        return m_Compare(attributes, defaults) && m_Within(m_namespaces, k_maxNamespaces, k_namespaces) &&
               m_Within(m_identifiers, k_maxIdentifiers, k_identifiers) &&
               (m_defaulting <= k_maxDefaulting || m_Refuse(k_defaults));
    }

    /// Whether a tag may have so many attributes: each is compared with each and with those it has by default.
    bool m_Compare(std::size_t attributes, std::size_t defaults)
    {
        m_comparisons += std::uint64_t{attributes} * (attributes + 2 * defaults);
        return m_Within(attributes, k_maxAttributes, k_tooMany) &&
               (m_comparisons <= m_maxComparisons || m_Refuse(k_compared));
    }

    /// What all entities expand to, and what stands in them.
    bool m_Entities()
    {
        for (auto& entity : m_entities) {
            if (!m_Expand(entity.second, 0) || !m_Content(entity.second.text, 0, false)) {
                return false;
            }
        }
        return true;
    }

    bool m_Expand(SEntity& entity, int depth)
    {
        if (entity.state == SEntity::KNOWN) {
            return true;
        }
        if (entity.state == SEntity::BEING_ADDED || depth > k_maxNesting) {
            return m_Refuse(k_expansion);
        }
        entity.state = SEntity::BEING_ADDED;
        entity.references = 1;
        CCursor in(entity.text);
        for (std::size_t begin = 0; !in.Done(); begin = in.At()) {
            in.Find('&');
            entity.bytes += in.At() - begin;
            if (!in.Take("&")) {
                break;
            }
            if (in.Take("#")) {
                in.Token();
                ++entity.bytes;
            }
            const auto other = m_entities.find(in.Name());
            if (other == m_entities.end()) {
                ++entity.references;
            } else if (!m_Expand(other->second, depth + 1)) {
                return false;
            } else {
                entity.bytes += other->second.bytes;
                entity.references += other->second.references;
                entity.nesting = std::max(entity.nesting, other->second.nesting + 1);
            }
            in.Take(";");
            if (!m_Within(entity.bytes, k_maxExpansion, k_expansion) ||
                !m_Within(entity.references, k_maxExpansion, k_expansion)) {
                return false;
            }
        }
        entity.state = SEntity::KNOWN;
        return m_Within(entity.bytes, k_maxExpansion, k_expansion) &&
               (entity.nesting <= k_maxNesting || m_Refuse(k_expansion));
    }

    const char* m_reason = nullptr;
    std::unordered_map<TText, SElement, SNameHash> m_elements;
    std::unordered_map<TText, SEntity, SNameHash> m_entities;
    std::unordered_set<TText, SNameHash> m_names;
    std::array<TText, 256> m_recent;
    std::size_t m_namespaces = 0, m_identifiers = 0, m_enumerated = 0, m_defaults = 0;
    std::uint64_t m_defaulting = 0, m_comparisons = 0, m_maxComparisons = 0;
};

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

const char* Refusal(TText text, bool* plain)
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
    in.Take("\xEF\xBB\xBF");
    if (!DeclaredEncoding(in, &encoding)) {
        return k_malformed;
    }
    if (big || little) {
        if (!encoding.empty() && !IsAny(encoding, {"UTF-16", "UTF16", big ? "UTF-16BE" : "UTF-16LE"})) {
            return k_encoding;
        }
    } else if (!encoding.empty() && !IsAny(encoding, {"UTF-8", "UTF8"})) {
        // The name holds over a byte order mark. Up to here each byte is a character.
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
        reason = CExactScan().Document(LegalPart(text), begin);
    }
    *plain = !reason && !typed && !big && !little && encoding.empty();
    return reason;
}

}  // namespace

const char* RefusalOf(const char* data, std::size_t size, bool* plain)
{
    bool isPlain = false;
    const char* reason = Refusal(TText(data, size), &isPlain);
    if (plain) {
        *plain = isPlain && !std::memchr(data, 0, size);
    }
    return reason;
}

}  // namespace vyr::xml
