#include "common/xml/ExactScan.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

#include "common/SeededHash.h"
#include "common/xml/Cursor.h"
#include "common/xml/Xml.h"

namespace vyr::xml {
namespace {

struct SNameHash {
    std::size_t operator()(TText name) const { return CSeededHash().Add(name).Value(); }
};

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
        if (!m_reason && m_Content(text, in.At(), true) && m_Entities()) {
            m_CountBehind(text, "&");
            m_CountBehind(text, "<?");
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

    /// The names behind all such marks: references and instructions, wherever they stand.
    bool m_CountBehind(TText text, TText mark)
    {
        CCursor in(text);
        while (!m_reason && in.Behind(mark)) {
            const TText name = in.Name();
            if (!name.empty() && !m_Count(name)) {
                return false;
            }
        }
        return !m_reason;
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
            if (in.Blanks() && in.Take("NDATA")) {
                // libxml2 does without the name.
                if (!in.Blanks()) {
                    return m_Refuse(k_malformed);
                }
                value = in.Name();
                if (!value.empty() && !m_Count(value)) {
                    return false;
                }
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
            // libxml2 keeps these in front of an element's others, and walks past them for each of those.
            const std::size_t colon = name.find(':');
            m_declaredNamespaces += m_IsNamespace(name) || (colon != TText::npos && name.substr(colon + 1) == "xmlns");
            if (!m_Within(m_declaredNamespaces, k_maxNamespaces, k_namespaces)) {
                return false;
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
    std::size_t m_namespaces = 0, m_declaredNamespaces = 0, m_identifiers = 0, m_enumerated = 0, m_defaults = 0;
    std::uint64_t m_defaulting = 0, m_comparisons = 0, m_maxComparisons = 0;
};

}  // namespace

const char* ScanExactly(std::string_view text, std::size_t begin)
{
    return CExactScan().Document(text, begin);
}

}  // namespace vyr::xml
