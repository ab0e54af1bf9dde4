#include "mmt/element/LocationUnit.h"

#include <algorithm>
#include <cstdint>

#include "common/OutOfMemory.h"
#include "platform/Log.h"

namespace {

template <class T>
bool Answer(T* out, T value)
{
    if (!VYR_ASSERT(out, "out")) {
        return false;
    }
    *out = value;
    return true;
}

/// Whether the reads so far had their bytes; the first of them has asserted a null item.
bool Valid(const IParse::SItem* item)
{
    return item && item->valid;
}

std::uint32_t Swapped(std::uint32_t value)
{
    return value << 24 | (value & 0xFF00) << 8 | (value >> 8 & 0xFF00) | value >> 24;
}

void DumpWords(const char* name, const std::array<unsigned short, 8>& w)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "%s [%x:%x:%x:%x:%x:%x:%x:%x]", name, w[0], w[1], w[2], w[3], w[4], w[5], w[6], w[7]);
}

void DumpNumber(const char* name, unsigned int value)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "%s [%u]", name, value);
}

}  // namespace

CLocationUnitBase::~CLocationUnitBase() = default;

bool CLocationUnitBase::GetPacketId(unsigned int* /*packetId*/) const
{
    return false;
}

bool CLocationUnitBase::GetDstPort(unsigned short* /*port*/) const
{
    return false;
}

bool CLocationUnitBase::GetNetworkId(unsigned short* /*networkId*/) const
{
    return false;
}

bool CLocationUnitBase::GetMPEG2TsId(unsigned short* /*transportStreamId*/) const
{
    return false;
}

bool CLocationUnitBase::GetMPEG2PID(unsigned short* /*pid*/) const
{
    return false;
}

bool CLocationUnitBase::GetMsgId(unsigned short* /*messageId*/) const
{
    return false;
}

bool CLocationUnitBase::GetIpv4SrcAddr(unsigned int* /*address*/) const
{
    return false;
}

bool CLocationUnitBase::GetIpv4DstAddr(unsigned int* /*address*/) const
{
    return false;
}

bool CLocationUnitBase::GetIpv6SrcAddr(unsigned short* /*address*/) const
{
    return false;
}

bool CLocationUnitBase::GetIpv6DstAddr(unsigned short* /*address*/) const
{
    return false;
}

bool CLocationUnitBase::GetUrl(std::string& /*url*/) const
{
    return false;
}

bool CLocationUnitBase::GetPrivateLocationInfo(std::string& /*info*/) const
{
    return false;
}

bool CLocationUnitIpv4::t_ReadFlow(SItem* item)
{
    m_srcAddr = t_Value(item, 32);
    m_dstAddr = t_Value(item, 32);
    m_dstPort = static_cast<unsigned short>(t_Value(item, 16));
    return Valid(item);
}

void CLocationUnitIpv4::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "source [0x%08x] destination [0x%08x]", m_srcAddr, m_dstAddr);
    DumpNumber("destination port", m_dstPort);
}

bool CLocationUnitIpv4::GetDstPort(unsigned short* port) const
{
    return Answer(port, m_dstPort);
}

bool CLocationUnitIpv4::GetIpv4SrcAddr(unsigned int* address) const
{
    return Answer(address, m_swapped ? Swapped(m_srcAddr) : m_srcAddr);
}

bool CLocationUnitIpv4::GetIpv4DstAddr(unsigned int* address) const
{
    return Answer(address, m_swapped ? Swapped(m_dstAddr) : m_dstAddr);
}

CLocationUnitIpv6::CWords CLocationUnitIpv6::m_Read(SItem* item)
{
    CWords words = {};
    for (unsigned short& word : words) {
        word = static_cast<unsigned short>(t_Value(item, 16));
    }
    return words;
}

bool CLocationUnitIpv6::t_ReadFlow(SItem* item)
{
    m_srcAddr = m_Read(item);
    m_dstAddr = m_Read(item);
    m_dstPort = static_cast<unsigned short>(t_Value(item, 16));
    return Valid(item);
}

void CLocationUnitIpv6::Dump() const
{
    DumpWords("source", m_srcAddr);
    DumpWords("destination", m_dstAddr);
    DumpNumber("destination port", m_dstPort);
}

bool CLocationUnitIpv6::GetDstPort(unsigned short* port) const
{
    return Answer(port, m_dstPort);
}

bool CLocationUnitIpv6::GetIpv6SrcAddr(unsigned short* address) const
{
    if (address) {
        std::copy(m_srcAddr.begin(), m_srcAddr.end(), address);
    }
    return address != nullptr;
}

bool CLocationUnitIpv6::GetIpv6DstAddr(unsigned short* address) const
{
    if (address) {
        std::copy(m_dstAddr.begin(), m_dstAddr.end(), address);
    }
    return address != nullptr;
}

bool CLocationUnit0::Parse(SItem* item)
{
    m_packetId = static_cast<unsigned short>(t_Value(item, 16));
    return Valid(item);
}

void CLocationUnit0::Dump() const
{
    DumpNumber("packet id", m_packetId);
}

bool CLocationUnit0::GetPacketId(unsigned int* packetId) const
{
    return Answer<unsigned int>(packetId, m_packetId);
}

bool CLocationUnit1::Parse(SItem* item)
{
    if (!t_ReadFlow(item)) {
        return false;
    }
    m_packetId = static_cast<unsigned short>(t_Value(item, 16));
    return Valid(item);
}

void CLocationUnit1::Dump() const
{
    CLocationUnitIpv4::Dump();
    DumpNumber("packet id", m_packetId);
}

bool CLocationUnit1::GetPacketId(unsigned int* packetId) const
{
    return Answer<unsigned int>(packetId, m_packetId);
}

bool CLocationUnit2::Parse(SItem* item)
{
    if (!t_ReadFlow(item)) {
        return false;
    }
    m_packetId = static_cast<unsigned short>(t_Value(item, 16));
    return Valid(item);
}

void CLocationUnit2::Dump() const
{
    CLocationUnitIpv6::Dump();
    DumpNumber("packet id", m_packetId);
}

bool CLocationUnit2::GetPacketId(unsigned int* packetId) const
{
    return Answer<unsigned int>(packetId, m_packetId);
}

bool CLocationUnit3::Parse(SItem* item)
{
    m_networkId = static_cast<unsigned short>(t_Value(item, 16));
    m_transportStreamId = static_cast<unsigned short>(t_Value(item, 16));
    m_reserved = static_cast<unsigned char>(t_Value(item, 3));
    m_pid = static_cast<unsigned short>(t_Value(item, 13));
    return Valid(item);
}

void CLocationUnit3::Dump() const
{
    DumpNumber("network id", m_networkId);
    DumpNumber("transport stream id", m_transportStreamId);
    DumpNumber("reserved", m_reserved);
    DumpNumber("PID", m_pid);
}

bool CLocationUnit3::GetNetworkId(unsigned short* networkId) const
{
    return Answer(networkId, m_networkId);
}

bool CLocationUnit3::GetMPEG2TsId(unsigned short* transportStreamId) const
{
    return Answer(transportStreamId, m_transportStreamId);
}

bool CLocationUnit3::GetMPEG2PID(unsigned short* pid) const
{
    return Answer(pid, m_pid);
}

bool CLocationUnit4::Parse(SItem* item)
{
    if (!t_ReadFlow(item)) {
        return false;
    }
    m_reserved = static_cast<unsigned char>(t_Value(item, 3));
    m_pid = static_cast<unsigned short>(t_Value(item, 13));
    return Valid(item);
}

void CLocationUnit4::Dump() const
{
    CLocationUnitIpv6::Dump();
    DumpNumber("reserved", m_reserved);
    DumpNumber("PID", m_pid);
}

bool CLocationUnit4::GetMPEG2PID(unsigned short* pid) const
{
    return Answer(pid, m_pid);
}

bool CLocationUnit5::Parse(SItem* item)
try {
    m_url.Take(nullptr, 0);
    const unsigned int length = t_Value(item, 8);
    if (!Valid(item)) {
        return false;
    }
    m_url.Take(t_AllocAndCopy(item, length), length);
    return item->valid;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CLocationUnit5::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "URL [%s]", m_url ? m_url.Text() : "");
}

bool CLocationUnit5::GetUrl(std::string& url) const
try {
    url.assign(m_url ? m_url.Text() : "", m_url.Length());
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CLocationUnit6::Parse(SItem* item)
try {
    m_info.Take(nullptr, 0);
    const unsigned int length = t_Value(item, 16);
    if (!Valid(item)) {
        return false;
    }
    m_info.Take(t_AllocAndCopy(item, length), length);
    return item->valid;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CLocationUnit6::Dump() const
{
    DumpNumber("private location info, bytes", m_info.Length());
}

bool CLocationUnit6::GetPrivateLocationInfo(std::string& info) const
try {
    info.assign(m_info ? m_info.Text() : "", m_info.Length());
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CLocationUnit7::Parse(SItem* /*item*/)
{
    return true;
}

void CLocationUnit7::Dump() const {}

bool CLocationUnit8::Parse(SItem* item)
{
    m_messageId = static_cast<unsigned short>(t_Value(item, 16));
    return Valid(item);
}

void CLocationUnit8::Dump() const
{
    DumpNumber("message id", m_messageId);
}

bool CLocationUnit8::GetMsgId(unsigned short* messageId) const
{
    return Answer(messageId, m_messageId);
}

bool CLocationUnit9::Parse(SItem* item)
{
    m_packetId = static_cast<unsigned short>(t_Value(item, 16));
    m_messageId = static_cast<unsigned short>(t_Value(item, 16));
    return Valid(item);
}

void CLocationUnit9::Dump() const
{
    DumpNumber("packet id", m_packetId);
    DumpNumber("message id", m_messageId);
}

bool CLocationUnit9::GetPacketId(unsigned int* packetId) const
{
    return Answer<unsigned int>(packetId, m_packetId);
}

bool CLocationUnit9::GetMsgId(unsigned short* messageId) const
{
    return Answer(messageId, m_messageId);
}

bool CLocationUnitA::Parse(SItem* item)
{
    if (!t_ReadFlow(item)) {
        return false;
    }
    m_packetId = static_cast<unsigned short>(t_Value(item, 16));
    m_messageId = static_cast<unsigned short>(t_Value(item, 16));
    return Valid(item);
}

void CLocationUnitA::Dump() const
{
    CLocationUnitIpv4::Dump();
    DumpNumber("packet id", m_packetId);
    DumpNumber("message id", m_messageId);
}

bool CLocationUnitA::GetPacketId(unsigned int* packetId) const
{
    return Answer<unsigned int>(packetId, m_packetId);
}

bool CLocationUnitA::GetMsgId(unsigned short* messageId) const
{
    return Answer(messageId, m_messageId);
}

bool CLocationUnitB::Parse(SItem* item)
{
    if (!t_ReadFlow(item)) {
        return false;
    }
    m_packetId = static_cast<unsigned short>(t_Value(item, 16));
    m_messageId = static_cast<unsigned short>(t_Value(item, 16));
    return Valid(item);
}

void CLocationUnitB::Dump() const
{
    CLocationUnitIpv6::Dump();
    DumpNumber("packet id", m_packetId);
    DumpNumber("message id", m_messageId);
}

bool CLocationUnitB::GetPacketId(unsigned int* packetId) const
{
    return Answer<unsigned int>(packetId, m_packetId);
}

bool CLocationUnitB::GetMsgId(unsigned short* messageId) const
{
    return Answer(messageId, m_messageId);
}

bool CLocationUnitC::Parse(SItem* item)
{
    if (!t_ReadFlow(item)) {
        return false;
    }
    m_reserved = static_cast<unsigned char>(t_Value(item, 3));
    m_pid = static_cast<unsigned short>(t_Value(item, 13));
    return Valid(item);
}

void CLocationUnitC::Dump() const
{
    CLocationUnitIpv4::Dump();
    DumpNumber("reserved", m_reserved);
    DumpNumber("PID", m_pid);
}

bool CLocationUnitC::GetMPEG2PID(unsigned short* pid) const
{
    return Answer(pid, m_pid);
}
