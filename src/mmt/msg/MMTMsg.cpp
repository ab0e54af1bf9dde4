#include "mmt/msg/MMTMsg.h"

#include <iterator>

#include "common/BitReader.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"

CMMTMsg::CMMTMsg(EClassType classType) : m_classType(classType) {}

unsigned short CMMTMsg::MessageId(const unsigned char* data)
{
    return VYR_ASSERT(data, "data") ? static_cast<unsigned short>(data[0] << 8 | data[1]) : 0xFFFF;
}

bool CMMTMsg::Parse(SItem* item)
{
    const vyr::CEntry entry;
    if (!VYR_ASSERT(item, "item") || !VYR_ASSERT(item->buffer, "item->buffer")) {
        return false;
    }
    vyr::CBitReader reader(item);
    reader.Field(16, m_id);
    reader.Field(8, m_version);
    return reader.Valid();
}

bool CMMTMsg::t_ParseHeader(SItem* item, unsigned int bits, const char* format)
{
    if (!CMMTMsg::Parse(item)) {
        return false;
    }
    vyr::CBitReader reader(item);
    reader.Field(bits, m_length);
    if (!reader.Valid()) {
        return false;
    }
    if (reader.Left() < m_length) {
        return VYR_FAIL(FAILURE_SIZE, format, item->size, m_length);
    }
    return true;
}

void CMMTMsg::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMMTMsg::Dump] MSGID:%d, VER:%d LENGTH:%u", m_id, m_version, m_length);
}

const char* CMMTMsg::ClassString() const
{
    static constexpr const char* k_names[] = {
        "CLASS_TYPE_PA",          "CLASS_TYPE_MPI",   "CLASS_TYPE_MPT", "CLASS_TYPE_CRI",   "CLASS_TYPE_DCI",
        "CLASS_TYPE_SSWR",        "CLASS_TYPE_ALFEC", "CLASS_TYPE_LS",  "CLASS_TYPE_LR",    "CLASS_TYPE_HRBM",
        "CLASS_TYPE_HRBMREMOVAL", "CLASS_TYPE_MC",    "CLASS_TYPE_AC",  "CLASS_TYPE_AF",    "CLASS_TYPE_RQF",
        "CLASS_TYPE_NAM",         "CLASS_TYPE_LDC",   "CLASS_TYPE_ADC", "CLASS_TYPE_ATSC3", "CLASS_TYPE_SMM"};
    const unsigned int type = static_cast<unsigned int>(m_classType);
    return type < std::size(k_names) ? k_names[type] : "UNKONWN CLASS TYPE";
}
