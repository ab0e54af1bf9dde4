#include "esg/SGResponse.h"

#include "common/XmlParser.h"
#include "esg/ESGKind.h"

struct CSGResponse::SState : vyr::TXmlState<SSGResponse> {
    CSGDDParse::TNamespaces namespaces;  // of the document, while it is parsed

    bool m_ProcessParse(void* root) override;

    static void sm_CbSupportedVersionEntry(SState* m, void* node);
    static void sm_CbSGDDEntry(SState* m, void* node);
    static void sm_CbResponseValidityEntry(SState* m, void* node);
    static void sm_CbPrivateExtEntry(SState* m, void* node);
};

CSGResponse::~CSGResponse()
{
    VYR_ASSERT(!State(), "!m");
}

bool CSGResponse::Create()
{
    const bool created = CXmlElement::Create();
    if (created) {
        t_compressed = false;
    }
    return created;
}

void CSGResponse::SetCompress(bool compressed)
{
    if (VYR_ASSERT(State(), "m")) {
        t_compressed = compressed;
    }
}

bool CSGResponse::SState::m_ProcessParse(void* root)
{
    static constexpr vyr::SElementHandler<SState> k_handlers[] = {
        {"SupportedVersion", sm_CbSupportedVersionEntry},
        {"ServiceGuideDeliveryDescriptor", sm_CbSGDDEntry},
        {"ResponseValidity", sm_CbResponseValidityEntry},
        {"PrivateExt", sm_CbPrivateExtEntry},
    };
    void* node = vyr::FindElement(root, "SGResponse");
    if (!node) {
        return false;
    }
    vyr::Renew(*this);
    vyr::ReadAttribute(node, "status", values.status);
    vyr::ReadAttribute(node, "lastResponseVersion", values.lastResponseVersion);
    namespaces.clear();
    vyr::DispatchChildren(this, k_handlers, node);
    namespaces.clear();
    return true;
}

void CSGResponse::SState::sm_CbSupportedVersionEntry(SState* m, void* node)
{
    if (vyr::CNodeText::Content(node).HasText()) {
        vyr::ReadContent(node, m->values.supportedVersions);
    }
}

void CSGResponse::SState::sm_CbSGDDEntry(SState* m, void* node)
{
    TOwned<CSGDDParse> entry =
        vyr::BuildXmlChild<CSGDDParse>(*m, node, {"entry->Create()", "entry->Parse(root->t_xml.Doc(), curr)"},
                                       [m](CSGDDParse& fresh) { return fresh.m_Share(&m->namespaces); });
    if (entry) {
        m->values.descriptors.push_back(std::move(entry));
    }
}

void CSGResponse::SState::sm_CbResponseValidityEntry(SState* m, void* node)
{
    SResponseValidity& validity = vyr::Fresh(m->values.responseValidity);
    vyr::ReadAttribute(node, "expirationTime", validity.expirationTime);
    vyr::ReadAttribute(node, "timeWindow", validity.timeWindow);
}

void CSGResponse::SState::sm_CbPrivateExtEntry(SState* m, void* node)
{
    vyr::ReadContent(node, m->values.privateExt);
}

vyr::SXmlKind CSGResponse::t_Kind() const
{
    return vyr::XmlKind<SState>("CSGResponse", LOG_PRIORITY_INFO);
}
