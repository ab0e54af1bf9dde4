#include "esg/SGDDParse.h"

#include <cstring>

#include "common/XmlParser.h"
#include "esg/ESGKind.h"

struct CSGDDParse::SState : vyr::TXmlState<SSGDDParse> {
    TNamespaces* namespaces = nullptr;  // of the document, while it is parsed with others of its kind

    bool m_ProcessParse(void* root) override;

    static void sm_CbDescriptorEntry(SState* m, void* node);
};

CSGDDParse::~CSGDDParse()
{
    VYR_ASSERT(!State(), "!m");
}

void CSGDDParse::SetCompress(bool compressed)
{
    t_compressed = compressed;
}

bool CSGDDParse::m_Share(TNamespaces* namespaces)
{
    t_State<SState>()->namespaces = namespaces;
    return true;
}

bool CSGDDParse::SState::m_ProcessParse(void* root)
{
    static constexpr vyr::SElementHandler<SState> k_handlers[] = {{"DescriptorEntry", sm_CbDescriptorEntry}};
    void* node = vyr::FindElement(root, "ServiceGuideDeliveryDescriptor");
    if (!node) {
        return false;
    }
    vyr::Renew(*this);
    vyr::ReadAttribute(node, "id", values.id);
    vyr::ReadAttribute(node, "version", values.version);
    // The declaration may stand once above a thousand descriptors, and be as long as them all.
    TNamespaces own;
    TNamespaces& shared = namespaces ? *namespaces : own;
    namespaces = nullptr;
    const char* ns = vyr::NodeNamespace(node);
    values.ns = ns ? shared[ns] : nullptr;
    if (ns && !values.ns) {
        values.ns = shared[ns] = vyr::NewText(ns, std::strlen(ns));
    }
    vyr::DispatchChildren(this, k_handlers, node);
    return true;
}

void CSGDDParse::SState::sm_CbDescriptorEntry(SState* m, void* node)
{
    static constexpr vyr::SChildSteps k_steps = {"entry->Create(root->t_xml.Doc(), curr)", "entry->Parse()"};
    vyr::Build(m->values.descriptorEntries, node, k_steps);
}

vyr::SXmlKind CSGDDParse::t_Kind() const
{
    return vyr::XmlKind<SState>("CSGDDParse", LOG_PRIORITY_INFO);
}
