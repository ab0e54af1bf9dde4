#include "esg/SGDDParse.h"

#include <cstring>

#include "common/XmlParser.h"
#include "esg/ESGKind.h"

struct CSGDDParse::SState : vyr::SHandlers {
    SSGDDParse values;
    TNamespaces* namespaces = nullptr;  // of the document, while it is parsed with others of its kind
};

CSGDDParse::CSGDDParse() : m(nullptr)
{
    t_keepsDocument = false;
}

CSGDDParse::~CSGDDParse()
{
    VYR_ASSERT(!m, "!m");
}

bool CSGDDParse::Create()
{
    return vyr::CreateXmlParser(
        m, "[CSGDDParse::Create]", VYR_HERE,
        [this] {
            static constexpr vyr::SElementHandler<CSGDDParse> k_handlers[] = {
                {"DescriptorEntry", sm_CbDescriptorEntry},
            };
            return vyr::AddHandlers(m->handlers, k_handlers);
        },
        LOG_PRIORITY_INFO);
}

void CSGDDParse::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CSGDDParse::Destroy]", VYR_HERE, LOG_PRIORITY_INFO);
}

void CSGDDParse::SetCompress(bool compressed)
{
    t_compressed = compressed;
}

bool CSGDDParse::m_Share(TNamespaces* namespaces)
{
    m->namespaces = namespaces;
    return true;
}

bool CSGDDParse::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    void* node = vyr::FindElement(root, "ServiceGuideDeliveryDescriptor");
    if (!node) {
        return false;
    }
    vyr::Renew(t_replace, m->values);
    vyr::ReadAttribute(node, "id", m->values.id);
    vyr::ReadAttribute(node, "version", m->values.version);
    // The declaration may stand once above a thousand descriptors, and be as long as them all.
    TNamespaces own;
    TNamespaces& namespaces = m->namespaces ? *m->namespaces : own;
    m->namespaces = nullptr;
    const char* ns = vyr::NodeNamespace(node);
    m->values.ns = ns ? namespaces[ns] : nullptr;
    if (ns && !m->values.ns) {
        m->values.ns = namespaces[ns] = vyr::NewText(ns, std::strlen(ns));
    }
    vyr::DispatchChildren(this, m->handlers, node, vyr::LOG_NO_CHILDREN, "%s", VYR_HERE);
    return true;
}

void CSGDDParse::sm_CbDescriptorEntry(CSGDDParse* root, void* curr)
{
    static constexpr vyr::SChildSteps k_steps = {"entry->Create(root->t_xml.Doc(), curr)", "entry->Parse()"};
    vyr::Build(root->m->values.descriptorEntries, root->t_xml.Doc(), curr, k_steps, VYR_HERE);
}

const CSGDDParse::SSGDDParse* CSGDDParse::State() const
{
    return m ? &m->values : nullptr;
}
