#include "esg/SGResponse.h"

#include "common/XmlParser.h"
#include "esg/ESGKind.h"

struct CSGResponse::SState : vyr::SHandlers {
    SSGResponse values;
    CSGDDParse::TNamespaces namespaces;  // of the document, while it is parsed
};

CSGResponse::CSGResponse() : m(nullptr)
{
    t_keepsDocument = false;
}

CSGResponse::~CSGResponse()
{
    VYR_ASSERT(!m, "!m");
}

bool CSGResponse::Create()
{
    const bool created = vyr::CreateXmlParser(
        m, "[CSGResponse::Create]", VYR_HERE, [this] { return t_CreateCallback(); }, LOG_PRIORITY_INFO);
    if (created) {
        t_compressed = false;
    }
    return created;
}

bool CSGResponse::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CSGResponse> k_handlers[] = {
        {"SupportedVersion", sm_CbSupportedVersionEntry},
        {"ServiceGuideDeliveryDescriptor", sm_CbSGDDEntry},
        {"ResponseValidity", sm_CbResponseValidityEntry},
        {"PrivateExt", sm_CbPrivateExtEntry},
    };
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CSGResponse::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CSGResponse::Destroy]", VYR_HERE, LOG_PRIORITY_INFO);
}

void CSGResponse::SetCompress(bool compressed)
{
    if (VYR_ASSERT(m, "m")) {
        t_compressed = compressed;
    }
}

bool CSGResponse::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    void* node = vyr::FindElement(root, "SGResponse");
    if (!node) {
        return false;
    }
    vyr::Renew(t_replace, m->values);
    vyr::ReadAttribute(node, "status", m->values.status);
    vyr::ReadAttribute(node, "lastResponseVersion", m->values.lastResponseVersion);
    m->namespaces.clear();
    vyr::DispatchChildren(this, m->handlers, node, vyr::LOG_NO_CHILDREN, "%s", VYR_HERE);
    m->namespaces.clear();
    return true;
}

void CSGResponse::sm_CbSupportedVersionEntry(CSGResponse* root, void* curr)
{
    if (vyr::CNodeText::Content(curr).HasText()) {
        vyr::ReadContent(curr, root->m->values.supportedVersions);
    }
}

void CSGResponse::sm_CbSGDDEntry(CSGResponse* root, void* curr)
{
    static constexpr vyr::SChildSteps k_steps = {"entry->Create()", "entry->Parse(root->t_xml.Doc(), curr)"};
    if (auto entry =
            vyr::BuildXmlChild<CSGDDParse>(root->t_xml.Doc(), curr, k_steps, VYR_HERE,
                                           [root](CSGDDParse& fresh) { return fresh.m_Share(&root->m->namespaces); })) {
        root->m->values.descriptors.push_back(std::move(entry));
    }
}

void CSGResponse::sm_CbResponseValidityEntry(CSGResponse* root, void* curr)
{
    SResponseValidity& validity = vyr::Fresh(root->m->values.responseValidity);
    vyr::ReadAttribute(curr, "expirationTime", validity.expirationTime);
    vyr::ReadAttribute(curr, "timeWindow", validity.timeWindow);
}

void CSGResponse::sm_CbPrivateExtEntry(CSGResponse* root, void* curr)
{
    vyr::ReadContent(curr, root->m->values.privateExt);
}

const CSGResponse::SSGResponse* CSGResponse::State() const
{
    return m ? &m->values : nullptr;
}
