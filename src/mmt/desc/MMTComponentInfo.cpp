#include "mmt/desc/MMTComponentInfo.h"

#include "common/XmlParser.h"
#include "common/XmlRead.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

struct SState : vyr::TXmlState<CMMTComponentInfo::SComponentInfo> {
    bool m_ProcessParse(void* root) override
    {
        CMMTComponentInfo::SComponentInfo info;
        vyr::ReadAttribute(root, "componentType", info.componentType);
        vyr::ReadAttribute(root, "componentRole", info.componentRole);
        const CNodeText protectedFlag = CNodeText::Attribute(root, "componentProtectedFlag");
        info.componentProtectedFlag =
            VYR_ASSERT(protectedFlag.Found(), "tempComponentProtectedFlag != nullptr") && protectedFlag.Bool();
        vyr::ReadAttribute(root, "componentId", info.componentId);
        vyr::ReadAttribute(root, "componentName", info.componentName);
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTComponentInfo] component Type [%d], component role [%d]", info.componentType,
                info.componentRole);
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTComponentInfo] component protected flag [%d]", info.componentProtectedFlag);
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTComponentInfo] component ID [%s]", info.componentId.c_str());
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTComponentInfo] component NAME [%s]", info.componentName.c_str());
        values = std::move(info);
        return true;
    }
};

}  // namespace

vyr::SXmlKind CMMTComponentInfo::t_Kind() const
{
    return vyr::XmlKind<SState>("CMMTComponentInfo");
}
