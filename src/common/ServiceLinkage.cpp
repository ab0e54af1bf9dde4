#include "common/ServiceLinkage.h"

#include "common/XmlNode.h"
#include "common/XmlParser.h"
#include "platform/Log.h"

using vyr::CNodeText;

struct CServiceLinkage::SState {
    SServiceLinkage values{};

    SState() = default;
    SState(const SState&) = delete;
    SState& operator=(const SState&) = delete;
    ~SState() { Clear(); }

    /// Lets go of the texts and returns to what Create made.
    void Clear()
    {
        for (const char* text :
             {values.activationTime, values.deActivationTime, values.svcCapabilities, values.linkageData}) {
            delete[] text;
        }
        values = SServiceLinkage{};
    }
};

CServiceLinkage::CServiceLinkage() : m(nullptr) {}

CServiceLinkage::~CServiceLinkage() = default;

bool CServiceLinkage::Create()
{
    return vyr::CreateXmlParser(m, "[CServiceLinkage::Create]", VYR_HERE);
}

void CServiceLinkage::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CServiceLinkage::Destroy]", VYR_HERE);
}

bool CServiceLinkage::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    const auto number = [root](const char* name) { return CNodeText::Attribute(root, name).Int(-1); };
    const auto text = [this, root](const char* name) -> const char* {
        bool found = false;
        char* copy = vyr::Allocated(t_xml.PropStr(root, name, &found));
        if (!found) {
            delete[] copy;
            copy = nullptr;
        }
        return copy;
    };
    m->Clear();
    SServiceLinkage& v = m->values;
    v.bsid = static_cast<unsigned short>(number("bsid"));
    v.LLSGroupId = static_cast<unsigned char>(number("LLSGroupId"));
    v.serviceId = static_cast<unsigned short>(number("serviceId"));
    v.serviceCategory = number("serviceCategory");
    v.linkageType = number("linkageType");
    v.activationTime = text("activationTime");
    v.deActivationTime = text("deActivationTime");
    v.svcCapabilities = text("svcCapabilities");
    if (!v.svcCapabilities) {
        v.svcCapabilities = text("SvcCapabilities");
    }
    v.linkageData = text("linkageData");
    // Required: the name is spelt without the second r.
    v.broadbandAccessRequired = CNodeText::Attribute(root, "broadbandAccessRequied").Bool();
    Dump();
    return true;
}

unsigned short CServiceLinkage::LinkServiceId() const
{
    return VYR_ASSERT(m, "m") ? m->values.serviceId : 0;
}

const char* CServiceLinkage::ActivationTime() const
{
    return VYR_ASSERT(m, "m") ? m->values.activationTime : nullptr;
}

const char* CServiceLinkage::DeActivationTime() const
{
    return VYR_ASSERT(m, "m") ? m->values.deActivationTime : nullptr;
}

int CServiceLinkage::ServiceCategory() const
{
    return VYR_ASSERT(m, "m") ? m->values.serviceCategory : 0;
}

int CServiceLinkage::LinkageType() const
{
    return VYR_ASSERT(m, "m") ? m->values.linkageType : 0;
}

const CServiceLinkage::SServiceLinkage* CServiceLinkage::State() const
{
    return m ? &m->values : nullptr;
}

void CServiceLinkage::Dump() const
{
    if (!VYR_ASSERT(m, "m")) {
        return;
    }
    const auto shown = [](const char* text) { return text ? text : ""; };
    const SServiceLinkage& v = m->values;
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CServiceLinkage::Dump] bsid [%u], LLSGroupId [%u] broadbandAccessRequied [%u]",
            v.bsid, v.LLSGroupId, v.broadbandAccessRequired);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CServiceLinkage::Dump] serviceId [%u], serviceCategory [%u] linkageType [%u]",
            v.serviceId, static_cast<unsigned int>(v.serviceCategory), static_cast<unsigned int>(v.linkageType));
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CServiceLinkage::Dump] activationTime [%s], deActivationTime [%s] ",
            shown(v.activationTime), shown(v.deActivationTime));
}
