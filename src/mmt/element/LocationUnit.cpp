#include "mmt/element/LocationUnit.h"

#include <algorithm>

#include "common/BitReader.h"
#include "common/OutOfMemory.h"
#include "platform/Log.h"

namespace {

/// The numbers, by their place in EField.
constexpr struct {
    unsigned int bits;
    const char* name;
} k_numbers[] = {
    {16, "destination port"}, {16, "network id"}, {16, "transport stream id"}, {16, "packet id"}, {16, "message id"},
    {3, "reserved"},          {13, "PID"}};

template <class T>
bool Answer(bool has, T* out, unsigned int value, VYR_CALLER)
{
    if (!has) {
        return false;
    }
    if (!out) {
        return vyr::AssertFailed(here, "out");
    }
    *out = static_cast<T>(value);
    return true;
}

bool Answer(bool has, unsigned short* out, const std::array<unsigned short, 8>& words)
{
    if (has && out) {
        std::copy(words.begin(), words.end(), out);
    }
    return has && out;
}

bool Answer(bool has, std::string& out, const vyr::CBytes& text, VYR_CALLER)
try {
    if (has) {
        out.assign(text ? text.Text() : "", text.Length());
    }
    return has;
} catch (...) {
    return vyr::OutOfMemory(here);
}

}  // namespace

CLocationUnitBase::~CLocationUnitBase() = default;

void CLocationUnitBase::m_ReadAddress(vyr::CBitReader& reader, TWords& address)
{
    if (m_Has(FIELD_IPV4)) {
        const unsigned int value = reader.Value(32);
        address[0] = static_cast<unsigned short>(value >> 16);
        address[1] = static_cast<unsigned short>(value);
        return;
    }
    for (unsigned short& word : address) {
        reader.Field(16, word);
    }
}

bool CLocationUnitBase::Parse(SItem* item)
try {
    vyr::CBitReader reader(item);
    if (m_Has(FIELD_IPV4) || m_Has(FIELD_IPV6)) {
        m_ReadAddress(reader, m_source);
        m_ReadAddress(reader, m_destination);
    }
    for (unsigned int i = 0; i < NUMBER_COUNT; ++i) {
        if (m_Has(i)) {
            reader.Field(k_numbers[i].bits, m_numbers[i]);
            // A flow that is cut leaves what is behind it as it was.
            if (i == FIELD_DST_PORT && !reader.Valid()) {
                return false;
            }
        }
    }
    if (m_Has(FIELD_URL) || m_Has(FIELD_PRIVATE_INFO)) {
        m_text.Clear();
        const unsigned int length = reader.Value(m_Has(FIELD_URL) ? 8 : 16);
        // An empty text takes no memory: there can be 255 in every asset.
        if (reader.Valid() && reader.Bytes(0) && length > 0) {
            reader.Keep(length, m_text);
        }
    }
    return m_fields == 0 || reader.Valid();
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CLocationUnitBase::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    if (m_Has(FIELD_IPV4)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "source [0x%04x%04x] destination [0x%04x%04x]", m_source[0], m_source[1],
                m_destination[0], m_destination[1]);
    } else if (m_Has(FIELD_IPV6)) {
        for (const TWords* words : {&m_source, &m_destination}) {
            const TWords& w = *words;
            VYR_LOG(LOG_PRIORITY_DEBUG, "%s [%x:%x:%x:%x:%x:%x:%x:%x]", words == &m_source ? "source" : "destination",
                    w[0], w[1], w[2], w[3], w[4], w[5], w[6], w[7]);
        }
    }
    for (unsigned int i = 0; i < NUMBER_COUNT; ++i) {
        if (m_Has(i)) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "%s [%u]", k_numbers[i].name, m_numbers[i]);
        }
    }
    if (m_Has(FIELD_URL)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "URL [%s]", m_text ? m_text.Text() : "");
    } else if (m_Has(FIELD_PRIVATE_INFO)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "private location info, bytes [%u]", m_text.Length());
    }
}

bool CLocationUnitBase::GetPacketId(unsigned int* packetId) const
{
    return Answer(m_Has(FIELD_PACKET_ID), packetId, m_numbers[FIELD_PACKET_ID]);
}

bool CLocationUnitBase::GetDstPort(unsigned short* port) const
{
    return Answer(m_Has(FIELD_DST_PORT), port, m_numbers[FIELD_DST_PORT]);
}

bool CLocationUnitBase::GetNetworkId(unsigned short* networkId) const
{
    return Answer(m_Has(FIELD_NETWORK_ID), networkId, m_numbers[FIELD_NETWORK_ID]);
}

bool CLocationUnitBase::GetMPEG2TsId(unsigned short* transportStreamId) const
{
    return Answer(m_Has(FIELD_TRANSPORT_STREAM_ID), transportStreamId, m_numbers[FIELD_TRANSPORT_STREAM_ID]);
}

bool CLocationUnitBase::GetMPEG2PID(unsigned short* pid) const
{
    return Answer(m_Has(FIELD_PID), pid, m_numbers[FIELD_PID]);
}

bool CLocationUnitBase::GetMsgId(unsigned short* messageId) const
{
    return Answer(m_Has(FIELD_MESSAGE_ID), messageId, m_numbers[FIELD_MESSAGE_ID]);
}

unsigned int CLocationUnitBase::m_Ipv4(const TWords& address) const
{
    const auto swapped = [](unsigned int word) { return (word << 8 | word >> 8) & 0xFFFF; };
    const unsigned int high = address[0];
    const unsigned int low = address[1];
    return m_Has(FIELD_SWAPPED) ? swapped(low) << 16 | swapped(high) : high << 16 | low;
}

bool CLocationUnitBase::GetIpv4SrcAddr(unsigned int* address) const
{
    return Answer(m_Has(FIELD_IPV4), address, m_Ipv4(m_source));
}

bool CLocationUnitBase::GetIpv4DstAddr(unsigned int* address) const
{
    return Answer(m_Has(FIELD_IPV4), address, m_Ipv4(m_destination));
}

bool CLocationUnitBase::GetIpv6SrcAddr(unsigned short* address) const
{
    return Answer(m_Has(FIELD_IPV6), address, m_source);
}

bool CLocationUnitBase::GetIpv6DstAddr(unsigned short* address) const
{
    return Answer(m_Has(FIELD_IPV6), address, m_destination);
}

bool CLocationUnitBase::GetUrl(std::string& url) const
{
    return Answer(m_Has(FIELD_URL), url, m_text);
}

bool CLocationUnitBase::GetPrivateLocationInfo(std::string& info) const
{
    return Answer(m_Has(FIELD_PRIVATE_INFO), info, m_text);
}
