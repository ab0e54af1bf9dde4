#include <cstring>
#include <unordered_map>

#include "common/xml/LibXml.h"
#include "common/xml/Xml.h"

namespace vyr::xml {

namespace {

/// Adds up what the texts and attributes of a document expand to. References inside an entity are
/// counted once per entity and remembered, so that nesting costs nothing.
class CExpansion {
  public:
    /// False when the limit is passed.
    static bool WithinLimit(xmlDocPtr doc)
    {
        CExpansion expansion(doc);
        return !Exceeds(expansion.m_List(doc->children, 0));
    }

  private:
    struct SCost {
        std::size_t bytes = 0;
        std::size_t references = 0;
    };

    static constexpr int k_maxDepth = 64;

    explicit CExpansion(xmlDocPtr doc) : m_doc(doc) {}

    static bool Exceeds(const SCost& cost) { return cost.bytes > k_maxExpansion || cost.references > k_maxExpansion; }

    static void Add(SCost& sum, const SCost& cost)
    {
        sum.bytes += cost.bytes;
        sum.references += cost.references;
    }

    SCost m_Entity(xmlNodePtr reference, int depth)
    {
        const xmlEntityPtr entity = xmlGetDocEntity(m_doc, reference->name);
        if (!entity) {
            return {reference->content ? std::strlen(AsText(reference->content)) : 0, 1};
        }
        const auto known = m_known.find(entity);
        if (known != m_known.end()) {
            return known->second;
        }
        // Endless until proved otherwise: a loop is met here.
        m_known[entity] = {k_maxExpansion + 1, 0};
        SCost cost{0, 1};
        if (entity->children) {
            Add(cost, m_List(entity->children, depth + 1));
        } else if (entity->content) {
            cost.bytes = std::strlen(AsText(entity->content));
        }
        m_known[entity] = cost;
        return cost;
    }

    SCost m_List(xmlNodePtr node, int depth)
    {
        SCost sum;
        if (depth > k_maxDepth) {
            sum.bytes = k_maxExpansion + 1;
            return sum;
        }
        // Elements are walked without recursion; only entities nest calls.
        const xmlNodePtr parent = node ? node->parent : nullptr;
        while (node && !Exceeds(sum)) {
            if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE) {
                sum.bytes += node->content ? std::strlen(AsText(node->content)) : 0;
            } else if (node->type == XML_ENTITY_REF_NODE) {
                Add(sum, m_Entity(node, depth));
            } else if (node->type == XML_ELEMENT_NODE) {
                for (xmlAttrPtr attribute = node->properties; attribute; attribute = attribute->next) {
                    Add(sum, m_List(attribute->children, depth + 1));
                }
                if (node->children) {
                    node = node->children;
                    continue;
                }
            }
            while (node && !node->next && node->parent != parent) {
                node = node->parent;
            }
            node = node ? node->next : nullptr;
        }
        return sum;
    }

    xmlDocPtr m_doc;
    std::unordered_map<xmlEntityPtr, SCost> m_known;
};

}  // namespace

bool ExpandsWithinLimit(void* document)
{
    const xmlDocPtr doc = AsDoc(document);
    return !doc || !doc->intSubset || !doc->intSubset->entities || CExpansion::WithinLimit(doc);
}

}  // namespace vyr::xml
