#include "common/xml/SpareNodes.h"

#include <pthread.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

// The fields are known of 2.9 alone. VYR_XML_PLAIN leaves out this short cut and that of Document.cpp; every test
// runs on a library built with it as well.
#if !defined(VYR_XML_PLAIN) && LIBXML_VERSION >= 20900 && LIBXML_VERSION < 21000

#if defined(__has_feature)
#define VYR_HAS_FEATURE(feature) __has_feature(feature)
#else
#define VYR_HAS_FEATURE(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || VYR_HAS_FEATURE(address_sanitizer)
#include <sanitizer/asan_interface.h>
#define VYR_ASAN 1
#else
#define VYR_ASAN 0
#endif

namespace vyr::xml {

namespace {

class CSpareNodes {
  public:
    /// The calling thread's nodes. Null when none can be kept, when it has none and none are to be made, when memory
    /// or keys are out, and when the libxml2 that is loaded is not of the headers' kind.
    static CSpareNodes* Mine(bool make)
    {
        struct SKey {
            pthread_key_t key;
            bool made;
        };
        // Not thread_local: that ends the program when memory is out, and documents may outlive it.
        static const SKey s_key = [] {
            SKey key{};
            key.made = std::strncmp(xmlParserVersion, "209", 3) == 0 && pthread_key_create(&key.key, End) == 0;
            return key;
        }();
        if (!s_key.made || xmlFree != std::free || xmlMalloc != std::malloc || xmlDeregisterNodeDefaultValue) {
            return nullptr;
        }
        CSpareNodes* mine = static_cast<CSpareNodes*>(pthread_getspecific(s_key.key));
        if (!mine && make) {
            std::unique_ptr<CSpareNodes> fresh(new (std::nothrow) CSpareNodes);
            if (fresh && pthread_setspecific(s_key.key, fresh.get()) == 0) {
                mine = fresh.release();
            }
        }
        return mine;
    }

    /// Lends the nodes to a context.
    void Lend(xmlParserCtxtPtr context)
    {
        m_Forbid(false);
        m_Swap(context);
    }

    /// Takes back what is left.
    void TakeBack(xmlParserCtxtPtr context)
    {
        m_Swap(context);
        m_Forbid(true);
    }

    /// From the leaves up, without recursion.
    void TakeAll(xmlDocPtr doc)
    {
        xmlNodePtr node = doc->children;
        doc->children = doc->last = nullptr;
        while (node) {
            if (node->type == XML_ELEMENT_NODE && node->children) {
                node = node->children;
                continue;
            }
            const xmlNodePtr next = node->next;
            const xmlNodePtr parent = node->parent;
            if (node->type == XML_ELEMENT_NODE) {
                m_TakeElement(doc->dict, node);
            } else if (node->type == XML_TEXT_NODE) {
                m_TakeText(doc->dict, node);
            } else {
                xmlFreeNode(node);
            }
            node = next ? next : reinterpret_cast<xmlDocPtr>(parent) != doc ? parent : nullptr;
            if (!next && node) {
                node->children = nullptr;
            }
        }
    }

  private:
    // The most that a thread keeps of each: 1,024 nodes of 120 bytes, as many attributes of 96.
    static constexpr int k_most = 1024;

    template <class T>
    struct SList {
        T* first = nullptr;
        int count = 0;

        void Take(T* node)
        {
            if (count >= k_most) {
                xmlFree(node);
                return;
            }
            node->next = first;
            first = node;
            ++count;
            Mark(node, true);
        }

        void Free()
        {
            while (T* node = first) {
                first = node->next;
                std::free(node);
            }
        }

        void Forbid(bool forbid)
        {
            for (T* node = first; VYR_ASAN && node; node = node->next) {
                Mark(node, forbid);
            }
        }

        /// Under AddressSanitizer what is kept is as forbidden as what is freed, but for the link.
        static void Mark(T* node, bool forbid)
        {
#if VYR_ASAN
            const auto mark = forbid ? __asan_poison_memory_region : __asan_unpoison_memory_region;
            mark(node, offsetof(T, next));
            mark(&node->next + 1, sizeof *node - offsetof(T, next) - sizeof node->next);
#else
            static_cast<void>(node);
            static_cast<void>(forbid);
#endif
        }
    };

    static void End(void* mine)
    {
        const std::unique_ptr<CSpareNodes> spare(static_cast<CSpareNodes*>(mine));
        spare->m_nodes.Free();
        spare->m_attributes.Free();
    }

    static void FreeText(xmlDictPtr dict, const xmlChar* text)
    {
        if (text && !xmlDictOwns(dict, text)) {
            xmlFree(const_cast<xmlChar*>(text));
        }
    }

    void m_Forbid(bool forbid)
    {
        m_nodes.Forbid(forbid);
        m_attributes.Forbid(forbid);
    }

    void m_Swap(xmlParserCtxtPtr context)
    {
        std::swap(context->freeElems, m_nodes.first);
        std::swap(context->freeElemsNr, m_nodes.count);
        std::swap(context->freeAttrs, m_attributes.first);
        std::swap(context->freeAttrsNr, m_attributes.count);
    }

    void m_TakeText(xmlDictPtr dict, xmlNodePtr text)
    {
        // Short texts lie in fields that texts have no other use for.
        if (text->content != reinterpret_cast<xmlChar*>(&text->properties)) {
            FreeText(dict, text->content);
        }
        m_nodes.Take(text);
    }

    void m_TakeElement(xmlDictPtr dict, xmlNodePtr element)
    {
        for (xmlAttrPtr attribute = element->properties; attribute;) {
            const xmlAttrPtr next = attribute->next;
            const xmlNodePtr value = attribute->children;
            if (value && !value->next && value->type == XML_TEXT_NODE) {
                m_TakeText(dict, value);
            } else if (value) {
                xmlFreeNodeList(value);
            }
            FreeText(dict, attribute->name);
            m_attributes.Take(attribute);
            attribute = next;
        }
        if (element->nsDef) {
            xmlFreeNsList(element->nsDef);
        }
        FreeText(dict, element->name);
        m_nodes.Take(element);
    }

    SList<xmlNode> m_nodes;
    SList<xmlAttr> m_attributes;
};

}  // namespace

void LendNodes(xmlParserCtxtPtr context)
{
    if (CSpareNodes* spare = CSpareNodes::Mine(true)) {
        spare->Lend(context);
    }
}

void TakeBackNodes(xmlParserCtxtPtr context)
{
    if (CSpareNodes* spare = CSpareNodes::Mine(false)) {
        spare->TakeBack(context);
    }
}

void KeepNodes(xmlDocPtr doc)
{
    if (doc->intSubset || doc->extSubset || doc->ids || doc->refs || !doc->dict) {
        return;
    }
    if (CSpareNodes* spare = CSpareNodes::Mine(false)) {
        spare->TakeAll(doc);
    }
}

}  // namespace vyr::xml

#else

namespace vyr::xml {

void LendNodes(xmlParserCtxtPtr /*context*/) {}
void TakeBackNodes(xmlParserCtxtPtr /*context*/) {}
void KeepNodes(xmlDocPtr /*doc*/) {}

}  // namespace vyr::xml

#endif
