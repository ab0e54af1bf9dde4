#pragma once

#include <libxml/SAX2.h>
#include <libxml/parser.h>

#include <algorithm>
#include <cstring>
#include <string>

// libxml2 tells of these fields that they are not for everyone; nothing else tells what they do.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

/// What plain libxml2 makes of a document, counted while it parses and in its tree, one node after the other.
struct SXmlTruth {
    bool accepted = false;
    bool parameters = false;     ///< a parameter entity is declared or referred to
    bool endless = false;        ///< an entity is part of itself, or nests too deep
    std::size_t attributes = 0;  ///< of the richest element, with its namespace declarations
    std::size_t compared = 0;    ///< attributes of an element with each other and its defaults, of all elements
    std::size_t namespaces = 0;  ///< declarations in the document
    std::size_t enumerated = 0;  ///< values of enumerated attribute types
    std::size_t defaults = 0;    ///< attribute defaults
    std::size_t expansion = 0;   ///< of the entity that expands to most, in bytes

    explicit SXmlTruth(const std::string& text)
    {
        xmlSetGenericErrorFunc(nullptr, Quiet);
        const xmlParserCtxtPtr context = xmlNewParserCtxt();
        context->options = 0;
        context->_private = this;
        context->sax->attributeDecl = Declared;
        const xmlDocPtr doc =
            xmlCtxtReadMemory(context, text.data(), static_cast<int>(text.size()), nullptr, nullptr, XML_PARSE_COMPACT);
        accepted = doc != nullptr;
        if (doc) {
            parameters = context->hasPErefs || (doc->intSubset && doc->intSubset->pentities);
            Walk(doc->children);
            xmlFreeDoc(doc);
        }
        xmlFreeParserCtxt(context);
    }

    /// Whether the reason for a refusal holds, as far as it is counted here.
    bool Says(const char* reason) const
    {
        const auto is = [reason](const char* part) { return std::strstr(reason, part) != nullptr; };
        return (!is("1024 attributes") || attributes > 1024) && (!is("compare") || compared > 1024 * 1024) &&
               (!is("namespace") || namespaces > 256) && (!is("parameter") || parameters) &&
               (!is("could expand") || endless || expansion > 524288) && (!is("enumerated") || enumerated > 1024) &&
               (!is("defaults") || defaults > 0) && (!is("not well-formed") || !accepted);
    }

    bool WithinLimits() const
    {
        return attributes <= 1024 && namespaces <= 256 && !parameters && !endless && expansion <= 524288 &&
               enumerated <= 1024 && defaults <= 1024;
    }

  private:
    static void Quiet(void* /*context*/, const char* /*format*/, ...) {}

    /// Also those that the tree does not keep, as another of the name came first.
    static void Declared(void* context, const xmlChar* element, const xmlChar* name, int type, int kind,
                         const xmlChar* value, xmlEnumerationPtr tree)
    {
        SXmlTruth& truth = *static_cast<SXmlTruth*>(static_cast<xmlParserCtxtPtr>(context)->_private);
        for (xmlEnumerationPtr entry = tree; entry; entry = entry->next) {
            ++truth.enumerated;
        }
        truth.defaults += value != nullptr;
        xmlSAX2AttributeDecl(context, element, name, type, kind, value, tree);
    }

    void Walk(xmlNodePtr node)
    {
        for (; node; node = node->next) {
            if (node->type == XML_ELEMENT_NODE) {
                std::size_t count = 0;
                for (xmlNsPtr ns = node->nsDef; ns; ns = ns->next) {
                    ++count;
                }
                namespaces += count;
                for (xmlAttrPtr attribute = node->properties; attribute; attribute = attribute->next) {
                    ++count;
                }
                attributes = std::max(attributes, count);
                compared += count * count;
            } else if (node->type == XML_ENTITY_DECL) {
                expansion = std::max(expansion, Expansion(reinterpret_cast<xmlEntityPtr>(node), 0));
            }
            if (node->type == XML_ELEMENT_NODE || node->type == XML_DTD_NODE || node->type == XML_ENTITY_DECL) {
                Walk(node->children);
            }
        }
    }

    std::size_t Expansion(xmlEntityPtr entity, int depth)
    {
        endless = endless || depth > 64;
        std::size_t sum = 0;
        const char* at = entity->content && !endless ? reinterpret_cast<const char*>(entity->content) : "";
        while (*at && sum <= 524288) {
            const char* end = *at == '&' ? std::strchr(at, ';') : nullptr;
            const std::string name = end ? std::string(at + 1, end) : std::string();
            const xmlEntityPtr other =
                end ? xmlGetDocEntity(entity->doc, reinterpret_cast<const xmlChar*>(name.c_str())) : nullptr;
            sum += other ? Expansion(other, depth + 1) : 1;
            at = other ? end + 1 : at + 1;
        }
        return sum;
    }
};

#pragma GCC diagnostic pop
