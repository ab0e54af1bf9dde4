// One MMT message, through the factory; licence revocation, which the factory does not make, directly.
// Sources: src/mmt
#include <memory>

#include "MmtWalk.h"
#include "Mutate.h"
#include "mmt/desc/MMTUsbd.h"
#include "mmt/msg/MMTMsgAc.h"
#include "mmt/msg/MMTMsgAdc.h"
#include "mmt/msg/MMTMsgAtsc3.h"
#include "mmt/msg/MMTMsgCri.h"
#include "mmt/msg/MMTMsgDci.h"
#include "mmt/msg/MMTMsgFactory.h"
#include "mmt/msg/MMTMsgLdc.h"
#include "mmt/msg/MMTMsgLr.h"
#include "mmt/msg/MMTMsgLs.h"
#include "mmt/msg/MMTMsgMpi.h"
#include "mmt/msg/MMTMsgMpt.h"
#include "mmt/msg/MMTMsgPa.h"
#include "mmt/msg/MMTMsgSmm.h"

namespace {

void TouchMessage(CMMTMsg& msg, int depth);

void TouchMessage(CMMTMsgPa& pa)
{
    unsigned char id = 0;
    unsigned char version = 0;
    unsigned short length = 0;
    for (int i = 0; i < pa.TableCount(); ++i) {
        Require(pa.GetTableInfo(i, id, version, length));
        Touch(*pa.Table(i));
    }
}

void TouchMessage(CMMTMsgAc& ac)
{
    for (const CMMTMsgAc::SEntry& entry : ac.Entries()) {
        Require(entry.serverAddress.empty() || entry.serverAddress.size() == 4 || entry.serverAddress.size() == 16);
        Touch(entry.serverAddress.data(), entry.serverAddress.size());
    }
}

void TouchMessage(CMMTMsgLicence& licences)
{
    for (int i = 0; i < licences.LicenceCount(); ++i) {
        Touch(licences.Licence(i)->assetId);
        Touch(licences.Licence(i)->data.Data(), licences.Licence(i)->data.Length());
    }
}

void TouchMessage(CMMTMsgAtsc3& atsc)
{
    Require(atsc.GetContent([](void*, unsigned char* data, unsigned int length) { Touch(data, data ? length : 0); },
                            nullptr));
    char* id = nullptr;
    unsigned short serviceId = 0;
    Require(atsc.GetServiceInfo(&id, serviceId) && serviceId == atsc.ServiceId());
    Touch(id, id ? std::string_view(id).size() : 0);
    Touch(atsc.Uri(), atsc.Uri() ? std::string_view(atsc.Uri()).size() : 0);
    Require(atsc.UserServiceBundleDescription() && atsc.RSAT() && atsc.SITable());
}

void TouchMessage(CMMTMsgSmm& smm, int depth)
{
    Require(depth < 4);
    Touch(smm.MessageData().data(), smm.MessageData().size());
    Touch(smm.SignedBlock().data(), smm.SignedBlock().size());
    Touch(smm.Signature().data(), smm.Signature().size());
    if (smm.Message()) {
        TouchMessage(*smm.Message(), depth + 1);
    }
}

/// Everything of a message that parsed.
void TouchMessage(CMMTMsg& msg, int depth)
{
    msg.Dump();
    Require(msg.Process() || msg.ClassType() == CMMTMsg::CLASS_TYPE_MPI);
    TouchDescriptors(msg);
    if (auto* bounded = dynamic_cast<CMMTMsgPayload*>(&msg)) {
        Require(bounded->PayloadLength() == msg.Length());
        Touch(bounded->Payload(), bounded->PayloadLength());
    }
    switch (msg.ClassType()) {
        case CMMTMsg::CLASS_TYPE_PA:
            TouchMessage(dynamic_cast<CMMTMsgPa&>(msg));
            break;
        case CMMTMsg::CLASS_TYPE_MPI: {
            auto& mpi = dynamic_cast<CMMTMsgMpi&>(msg);
            Touch(static_cast<CMMTTbl&>(*mpi.MPITable()));
            Touch(static_cast<CMMTTbl&>(*mpi.MPTable()));
            break;
        }
        case CMMTMsg::CLASS_TYPE_MPT:
            Touch(static_cast<CMMTTbl&>(*dynamic_cast<CMMTMsgMpt&>(msg).MPTable()));
            break;
        case CMMTMsg::CLASS_TYPE_CRI:
            Touch(static_cast<CMMTTbl&>(*dynamic_cast<CMMTMsgCri&>(msg).CRITable()));
            break;
        case CMMTMsg::CLASS_TYPE_DCI:
            Touch(static_cast<CMMTTbl&>(*dynamic_cast<CMMTMsgDci&>(msg).DCITable()));
            break;
        case CMMTMsg::CLASS_TYPE_AC:
            TouchMessage(dynamic_cast<CMMTMsgAc&>(msg));
            break;
        case CMMTMsg::CLASS_TYPE_ADC:
            Require(dynamic_cast<CMMTMsgAdc&>(msg).Fields().flowLabel.value_or(0) < 128);
            break;
        case CMMTMsg::CLASS_TYPE_LS:
        case CMMTMsg::CLASS_TYPE_LR:
            TouchMessage(dynamic_cast<CMMTMsgLicence&>(msg));
            break;
        case CMMTMsg::CLASS_TYPE_LDC:
            Require(msg.Length() >= 19 || !dynamic_cast<CMMTMsgLdc&>(msg).Fields().defaultSampleFlags ||
                    !dynamic_cast<CMMTMsgLdc&>(msg).Fields().periodOfIntrapicture);
            break;
        case CMMTMsg::CLASS_TYPE_ATSC3:
            TouchMessage(dynamic_cast<CMMTMsgAtsc3&>(msg));
            break;
        default:
            TouchMessage(dynamic_cast<CMMTMsgSmm&>(msg), depth);
            break;
    }
}

}  // namespace

VYR_MUTATOR(MutateBinary)

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::vector<unsigned char> bytes(data, data + size);
    SetLogging(size > 2 && data[2] & 1);
    const unsigned int length = static_cast<unsigned int>(size);
    // The XML documents of ATSC 3.0 messages may lack what is asserted; signed messages may wrap those.
    const unsigned int id = size < 2 ? 0u : data[0] * 256u + data[1];
    g_mayAssert = size == 0 || id == 0x8100 || id == 0x8101;
    std::shared_ptr<CMMTMsg> msg = CMMTMsgFactory::CreateMessage(bytes.data(), length);
    if (id == 0x020C) {
        Require(!msg);
        msg = std::make_shared<CMMTMsgLr>();
    }
    if (!msg) {
        return 0;
    }
    IParse::SItem item = {bytes.data(), length, length * 8, 0, true};
    if (msg->Parse(&item)) {
        Require(item.bitpos / 8 <= size);
        TouchMessage(*msg, 0);
    }
    // What failed, and a second parse of the same object, must be safe to have and to free.
    g_mayAssert = true;
    for (int i = 0; i < 2; ++i) {
        msg->Dump();
        msg->Process();
        TouchDescriptors(*msg);
        IParse::SItem again = {bytes.data(), length, length * 8, 0, true};
        msg->Parse(&again);
    }
    return 0;
}
