#include "mmt/msg/MMTMsgFactory.h"

#include <map>
#include <mutex>
#include <utility>

#include "common/OutOfMemory.h"
#include "mmt/msg/MMTMsgAc.h"
#include "mmt/msg/MMTMsgAdc.h"
#include "mmt/msg/MMTMsgAtsc3.h"
#include "mmt/msg/MMTMsgCri.h"
#include "mmt/msg/MMTMsgDci.h"
#include "mmt/msg/MMTMsgLdc.h"
#include "mmt/msg/MMTMsgLr.h"
#include "mmt/msg/MMTMsgLs.h"
#include "mmt/msg/MMTMsgMpi.h"
#include "mmt/msg/MMTMsgMpt.h"
#include "mmt/msg/MMTMsgPa.h"
#include "mmt/msg/MMTMsgSmm.h"
#include "platform/Log.h"

namespace {

using TFactories = std::map<unsigned short, std::unique_ptr<MMTMsgAbstractFactory>>;

TFactories g_factories;  // by message_id
std::once_flag MMTFactoryInitFlag;

template <class T>
void Add(TFactories& factories, unsigned short last = T::k_messageId)
{
    for (unsigned short id = T::k_messageId; id <= last; ++id) {
        factories[id] = std::make_unique<MMTMsgFactory<T>>();
    }
}

}  // namespace

MMTMsgAbstractFactory::~MMTMsgAbstractFactory() = default;

MMTMsgFactoryUnsupported::MMTMsgFactoryUnsupported(unsigned short id, std::string name)
    : m_id(id), m_name(std::move(name))
{
}

std::shared_ptr<CMMTMsg> MMTMsgFactoryUnsupported::Create() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTMsgFactory::CreateMessage] UNSUPPORTED MESSAGE TYPE: 0x%0x [%s]!!!", m_id,
            m_name.c_str());
    return nullptr;
}

void CMMTMsgFactory::InitializeFactory()
{
    if (!g_factories.empty()) {
        return;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTMsgFactory::InitializeFactory] BEGIN");
    // Whole or not at all: one that memory was out for is filled at the next call.
    TFactories factories;
    const auto unsupported = [&factories](unsigned short id, const char* name) {
        factories[id] = std::make_unique<MMTMsgFactoryUnsupported>(id, name);
    };
    Add<CMMTMsgPa>(factories);
    Add<CMMTMsgMpi>(factories, CMMTMsgMpi::k_lastMessageId);
    Add<CMMTMsgMpt>(factories, CMMTMsgMpt::k_lastMessageId);
    Add<CMMTMsgCri>(factories);
    Add<CMMTMsgDci>(factories);
    unsupported(0x0202, "MMT_MSG_ID_SSWR");
    unsupported(0x0203, "MMT_MSG_ID_AL_FEC");
    unsupported(0x0204, "MMT_MSG_ID_HRBM");
    unsupported(0x0205, "MMT_MSG_ID_MC");
    Add<CMMTMsgAc>(factories);
    unsupported(0x0207, "MMT_MSG_ID_AF");
    unsupported(0x0208, "MMT_MSG_ID_RQF");
    Add<CMMTMsgAdc>(factories);
    unsupported(0x020A, "MMT_MSG_ID_HRBM_REMOVAL");
    Add<CMMTMsgLs>(factories);
    // Required: the class exists, and its messages are not made here.
    unsupported(CMMTMsgLr::k_messageId, "MMT_MSG_ID_LR");
    unsupported(0x020D, "MMT_MSG_ID_NAMF");
    Add<CMMTMsgLdc>(factories);
    Add<CMMTMsgAtsc3>(factories);
    Add<CMMTMsgSmm>(factories);
    g_factories.swap(factories);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTMsgFactory::InitializeFactory] END");
}

std::shared_ptr<CMMTMsg> CMMTMsgFactory::CreateMessage(const unsigned char* data, unsigned int length)
try {
    if (!VYR_ASSERT_AT(77, data, "data") || length < 2) {
        return nullptr;
    }
    std::call_once(MMTFactoryInitFlag, InitializeFactory);
    const unsigned short id = CMMTMsg::MessageId(data);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTMsgFactory::CreateMessage] type: 0x%0x", id);
    const auto found = g_factories.find(id);
    if (found != g_factories.end()) {
        return found->second->Create();
    }
    if (id >= 0x020F && id <= 0x6FFF) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTMsgFactory::CreateMessage] UNSUPPORTED MMT_MSG_ID_ISO_16 TYPE: 0x%0x !!!",
                id);
    } else if (id >= 0x7000 && id <= 0x7FFF) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTMsgFactory::CreateMessage] UNSUPPORTED MMT_MSG_ID_ISO_32 TYPE: 0x%0x !!!",
                id);
    } else {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTMsgFactory::CreateMessage] UNSUPPORTED MESSAGE TYPE: 0x%0x !!!", id);
    }
    return nullptr;
} catch (...) {
    return vyr::OutOfMemory<std::shared_ptr<CMMTMsg>>(VYR_HERE);
}
