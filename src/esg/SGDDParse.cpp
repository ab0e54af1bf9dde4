#include "esg/SGDDParse.h"

#include "common/XmlParser.h"
#include "esg/ESGKind.h"

CSGDDParse::CSGDDParse() : m(nullptr) {}

CSGDDParse::~CSGDDParse()
{
    VYR_ASSERT(!m, "!m");
}

bool CSGDDParse::Create()
{
    return vyr::CreateXmlParser(
        m, 5, "[CSGDDParse::Create]", VYR_HERE,
        [this] {
            static constexpr vyr::SElementHandler<CSGDDParse> k_handlers[] = {
                {"DescriptorEntry", sm_CbDescriptorEntry, "sm_CbDescriptorEntry"},
            };
            return vyr::AddHandlers(m->hashCallback, k_handlers, VYR_HERE);
        },
        LOG_PRIORITY_INFO);
}

void CSGDDParse::Destroy()
{
    if (m) {
        m->descriptorEntries.clear();
    }
    vyr::DestroyXmlParser(*this, m, "[CSGDDParse::Destroy]", VYR_HERE, LOG_PRIORITY_INFO);
}

void CSGDDParse::SetCompress(bool compressed)
{
    t_compressed = compressed;
}

/// Lets go of what an earlier parse left, while its document lives.
bool CSGDDParse::m_Begin()
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    m->id.reset();
    m->version = 0;
    m->ns.reset();
    m->descriptorEntries.clear();
    return true;
}

bool CSGDDParse::Parse(const char* buffer, unsigned int length, bool compressed)
{
    return m_Begin() && XMLBase::Parse(buffer, length, compressed);
}

bool CSGDDParse::Parse(void* doc, void* root)
{
    return m_Begin() && XMLBase::Parse(doc, root);
}

bool CSGDDParse::m_ProcessParse(void* root)
{
    void* node = vyr::FindElement(root, "ServiceGuideDeliveryDescriptor");
    if (!node) {
        return false;
    }
    vyr::ReadAttribute(node, "id", m->id);
    vyr::ReadAttribute(node, "version", m->version);
    m->ns = vyr::Namespace(t_xml, node);
    vyr::DispatchChildren(this, m->hashCallback, node, vyr::LOG_NO_CHILDREN, "%s", VYR_HERE);
    return true;
}

void CSGDDParse::sm_CbDescriptorEntry(CSGDDParse* root, void* curr)
{
    static constexpr vyr::SChildSteps k_steps = {"entry->Create(root->t_xml.Doc(), curr)", "entry->Parse()"};
    vyr::Build(root->m->descriptorEntries, root->t_xml.Doc(), curr, k_steps, VYR_HERE);
}
