#include "mmt/desc/MMTComponentInfo.h"

#include <utility>

#include "common/XmlNode.h"
#include "common/XmlParser.h"
#include "platform/Log.h"

using vyr::CNodeText;

CMMTComponentInfo::CMMTComponentInfo() : m(nullptr) {}

CMMTComponentInfo::~CMMTComponentInfo() = default;

bool CMMTComponentInfo::Create()
{
    return vyr::CreateXmlParser(m, "[CMMTComponentInfo::Create]", VYR_HERE);
}

void CMMTComponentInfo::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CMMTComponentInfo::Destroy]", VYR_HERE);
}

bool CMMTComponentInfo::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    SComponentInfo info;
    info.componentType = static_cast<unsigned char>(CNodeText::Attribute(root, "componentType").Int(0));
    info.componentRole = static_cast<unsigned char>(CNodeText::Attribute(root, "componentRole").Int(0));
    const CNodeText protectedFlag = CNodeText::Attribute(root, "componentProtectedFlag");
    info.componentProtectedFlag =
        VYR_ASSERT(protectedFlag.Found(), "tempComponentProtectedFlag != nullptr") && protectedFlag.Bool();
    CNodeText::Attribute(root, "componentId").CopyTo(info.componentId);
    CNodeText::Attribute(root, "componentName").CopyTo(info.componentName);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTComponentInfo] component Type [%d], component role [%d]", info.componentType,
            info.componentRole);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTComponentInfo] component protected flag [%d]", info.componentProtectedFlag);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTComponentInfo] component ID [%s]", info.componentId.c_str());
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTComponentInfo] component NAME [%s]", info.componentName.c_str());
    *m = std::move(info);
    return true;
}
