#include "mmt/element/LocationUnit.h"

#include <memory>

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

/// The index-th 16-bit word of an address; 0 when there is none.
unsigned short Word(const vyr::CBytes& bytes, unsigned int index)
{
    const unsigned char* word = bytes ? bytes.Data() + 2 * index : nullptr;
    return word ? static_cast<unsigned short>(word[0] << 8 | word[1]) : 0;
}

constexpr unsigned int k_ipv6Words = 8;

bool Answer(bool has, unsigned short* out, const vyr::CBytes& bytes, unsigned int first)
{
    for (unsigned int i = 0; has && out && i < k_ipv6Words; ++i) {
        out[i] = Word(bytes, first + i);
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

unsigned int CLocationUnitBase::m_Slot(unsigned int number) const
{
    unsigned int slot = m_Has(FIELD_IPV4) ? 4 : 0;
    for (unsigned int i = 0; i < number; ++i) {
        slot += m_Has(i);
    }
    return slot;
}

unsigned int CLocationUnitBase::m_Number(unsigned int number) const
{
    return m_Has(number) ? m_words[m_Slot(number)] : 0;
}

void CLocationUnitBase::m_ReadAddresses(vyr::CBitReader& reader)
{
    if (m_Has(FIELD_IPV4)) {
        for (unsigned int i = 0; i < 4; i += 2) {
            const unsigned int value = reader.Value(32);
            m_words[i] = static_cast<unsigned short>(value >> 16);
            m_words[i + 1] = static_cast<unsigned short>(value);
        }
    } else if (m_Has(FIELD_IPV6)) {
        constexpr unsigned int k_size = 2 * 2 * k_ipv6Words;
        auto bytes = std::make_unique<unsigned char[]>(k_size + 1);
        for (unsigned int i = 0; i < k_size; i += 2) {
            const unsigned int word = reader.Value(16);
            bytes[i] = static_cast<unsigned char>(word >> 8);
            bytes[i + 1] = static_cast<unsigned char>(word);
        }
        m_bytes.Take(bytes.release(), k_size);
    }
}

bool CLocationUnitBase::Parse(SItem* item)
try {
    vyr::CBitReader reader(item);
    m_ReadAddresses(reader);
    if (m_Has(FIELD_IPV6) && m_Has(FIELD_MESSAGE_ID) && !reader.Valid()) {
        return false;  // required of this one alone: what is behind its addresses stays as it was
    }
    unsigned int slot = m_Slot(0);
    for (unsigned int i = 0; i < NUMBER_COUNT; ++i) {
        if (m_Has(i)) {
            reader.Field(k_numbers[i].bits, m_words[slot++]);
        }
    }
    if (m_Has(FIELD_URL) || m_Has(FIELD_PRIVATE_INFO)) {
        m_bytes.Clear();
        const unsigned int length = reader.Value(m_Has(FIELD_URL) ? 8 : 16);
        // An empty text takes no memory: there can be 255 in every asset.
        if (reader.Valid() && reader.Bytes(0) && length > 0) {
            reader.Keep(length, m_bytes);
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
        VYR_DUMP("source [0x%04x%04x] destination [0x%04x%04x]", m_words[0], m_words[1], m_words[2], m_words[3]);
    } else if (m_Has(FIELD_IPV6)) {
        for (const unsigned int first : {0u, k_ipv6Words}) {
            const auto word = [this, first](unsigned int i) { return Word(m_bytes, first + i); };
            VYR_DUMP("%s [%x:%x:%x:%x:%x:%x:%x:%x]", first == 0 ? "source" : "destination", word(0), word(1), word(2),
                     word(3), word(4), word(5), word(6), word(7));
        }
    }
    for (unsigned int i = 0; i < NUMBER_COUNT; ++i) {
        if (m_Has(i)) {
            VYR_DUMP("%s [%u]", k_numbers[i].name, m_Number(i));
        }
    }
    if (m_Has(FIELD_URL)) {
        VYR_DUMP("URL [%s]", m_bytes ? m_bytes.Text() : "");
    } else if (m_Has(FIELD_PRIVATE_INFO)) {
        VYR_DUMP("private location info, bytes [%u]", m_bytes.Length());
    }
}

bool CLocationUnitBase::GetPacketId(unsigned int* packetId) const
{
    return Answer(m_Has(FIELD_PACKET_ID), packetId, m_Number(FIELD_PACKET_ID));
}

bool CLocationUnitBase::GetDstPort(unsigned short* port) const
{
    return Answer(m_Has(FIELD_DST_PORT), port, m_Number(FIELD_DST_PORT));
}

bool CLocationUnitBase::GetNetworkId(unsigned short* networkId) const
{
    return Answer(m_Has(FIELD_NETWORK_ID), networkId, m_Number(FIELD_NETWORK_ID));
}

bool CLocationUnitBase::GetMPEG2TsId(unsigned short* transportStreamId) const
{
    return Answer(m_Has(FIELD_TRANSPORT_STREAM_ID), transportStreamId, m_Number(FIELD_TRANSPORT_STREAM_ID));
}

bool CLocationUnitBase::GetMPEG2PID(unsigned short* pid) const
{
    return Answer(m_Has(FIELD_PID), pid, m_Number(FIELD_PID));
}

bool CLocationUnitBase::GetMsgId(unsigned short* messageId) const
{
    return Answer(m_Has(FIELD_MESSAGE_ID), messageId, m_Number(FIELD_MESSAGE_ID));
}

unsigned int CLocationUnitBase::m_Ipv4(unsigned int slot) const
{
    const auto swapped = [](unsigned int word) { return (word << 8 | word >> 8) & 0xFFFF; };
    const unsigned int high = m_words[slot];
    const unsigned int low = m_words[slot + 1];
    return m_Has(FIELD_SWAPPED) ? swapped(low) << 16 | swapped(high) : high << 16 | low;
}

bool CLocationUnitBase::GetIpv4SrcAddr(unsigned int* address) const
{
    return Answer(m_Has(FIELD_IPV4), address, m_Ipv4(0));
}

bool CLocationUnitBase::GetIpv4DstAddr(unsigned int* address) const
{
    return Answer(m_Has(FIELD_IPV4), address, m_Ipv4(2));
}

bool CLocationUnitBase::GetIpv6SrcAddr(unsigned short* address) const
{
    return Answer(m_Has(FIELD_IPV6), address, m_bytes, 0);
}

bool CLocationUnitBase::GetIpv6DstAddr(unsigned short* address) const
{
    return Answer(m_Has(FIELD_IPV6), address, m_bytes, k_ipv6Words);
}

bool CLocationUnitBase::GetUrl(std::string& url) const
{
    return Answer(m_Has(FIELD_URL), url, m_bytes);
}

bool CLocationUnitBase::GetPrivateLocationInfo(std::string& info) const
{
    return Answer(m_Has(FIELD_PRIVATE_INFO), info, m_bytes);
}
