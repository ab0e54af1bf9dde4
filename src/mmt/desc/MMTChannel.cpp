#include "mmt/desc/MMTChannel.h"

#include <utility>

#include "common/XmlNode.h"
#include "common/XmlParser.h"
#include "platform/Log.h"

using vyr::CNodeText;

CMMTChannel::CMMTChannel() : m(nullptr) {}

CMMTChannel::~CMMTChannel() = default;

bool CMMTChannel::Create()
{
    return vyr::CreateXmlParser(m, "[CMMTChannel::Create]", VYR_HERE);
}

void CMMTChannel::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CMMTChannel::Destroy]", VYR_HERE);
}

bool CMMTChannel::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    SChannel channel;
    CNodeText::Attribute(root, "serviceGenre").CopyTo(channel.serviceGenre);
    CNodeText::Attribute(root, "serviceIcon").CopyTo(channel.serviceIcon);
    *m = std::move(channel);
    return true;
}
