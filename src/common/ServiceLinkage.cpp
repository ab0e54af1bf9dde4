#include "common/ServiceLinkage.h"

#include "common/XmlParser.h"
#include "common/XmlRead.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

struct SState : vyr::TXmlState<CServiceLinkage::SServiceLinkage> {
    TTextArray texts;  // what the record points to

    bool m_ProcessParse(void* root) override;
    const char* Text(void* node, const char* name);
};

void Dump(const CServiceLinkage::SServiceLinkage& v)
{
    const auto shown = [](const char* text) { return text ? text : ""; };
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CServiceLinkage::Dump] bsid [%u], LLSGroupId [%u] broadbandAccessRequied [%u]",
            v.bsid, v.LLSGroupId, v.broadbandAccessRequired);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CServiceLinkage::Dump] serviceId [%u], serviceCategory [%u] linkageType [%u]",
            v.serviceId, static_cast<unsigned int>(v.serviceCategory), static_cast<unsigned int>(v.linkageType));
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CServiceLinkage::Dump] activationTime [%s], deActivationTime [%s] ",
            shown(v.activationTime), shown(v.deActivationTime));
}

/// Copy of an attribute; null: it is not there.
const char* SState::Text(void* node, const char* name)
{
    const CNodeText text = CNodeText::Attribute(node, name);
    return text.Found() ? texts.Append(vyr::NewText(text)) : nullptr;
}

bool SState::m_ProcessParse(void* root)
{
    values = {};
    texts.RemoveAll();
    vyr::ReadAttribute(root, "bsid", values.bsid, -1);
    vyr::ReadAttribute(root, "LLSGroupId", values.LLSGroupId, -1);
    vyr::ReadAttribute(root, "serviceId", values.serviceId, -1);
    vyr::ReadAttribute(root, "serviceCategory", values.serviceCategory, -1);
    vyr::ReadAttribute(root, "linkageType", values.linkageType, -1);
    values.activationTime = Text(root, "activationTime");
    values.deActivationTime = Text(root, "deActivationTime");
    values.svcCapabilities = Text(root, "svcCapabilities");
    if (!values.svcCapabilities) {
        values.svcCapabilities = Text(root, "SvcCapabilities");
    }
    values.linkageData = Text(root, "linkageData");
    // Required: the name is spelt without the second r.
    values.broadbandAccessRequired = CNodeText::Attribute(root, "broadbandAccessRequied").Bool();
    Dump(values);
    return true;
}

}  // namespace

unsigned short CServiceLinkage::LinkServiceId() const
{
    return VYR_ASSERT(State(), "m") ? State()->serviceId : 0;
}

const char* CServiceLinkage::ActivationTime() const
{
    return VYR_ASSERT(State(), "m") ? State()->activationTime : nullptr;
}

const char* CServiceLinkage::DeActivationTime() const
{
    return VYR_ASSERT(State(), "m") ? State()->deActivationTime : nullptr;
}

int CServiceLinkage::ServiceCategory() const
{
    return VYR_ASSERT(State(), "m") ? State()->serviceCategory : 0;
}

int CServiceLinkage::LinkageType() const
{
    return VYR_ASSERT(State(), "m") ? State()->linkageType : 0;
}

void CServiceLinkage::Dump() const
{
    if (VYR_ASSERT(State(), "m")) {
        ::Dump(*State());
    }
}

vyr::SXmlKind CServiceLinkage::t_Kind() const
{
    return vyr::XmlKind<SState>("CServiceLinkage");
}
