#pragma once

#include <string>

#include "../../common/Bytes.h"
#include "../MMTParser.h"

namespace vyr {
class CBitReader;
}

/// What follows location_type in MMT_general_location_info (ISO/IEC 23008-1): one class per type, which says what
/// fields the type has. A getter answers false, its output untouched, unless the type has that field; a null
/// output is asserted. Packet, message and PID numbers are as on the wire; ports are UDP ports. What was not
/// parsed is 0 or empty.
class VYR_API CLocationUnitBase : public IMMTParser {
  public:
    ~CLocationUnitBase() override = 0;
    CLocationUnitBase(const CLocationUnitBase&) = delete;
    CLocationUnitBase& operator=(const CLocationUnitBase&) = delete;

    /// Reads the fields; false: the data ended.
    bool Parse(SItem* item) override;
    /// Logs the fields, at debug priority.
    virtual void Dump() const;

    /// packet_id.
    virtual bool GetPacketId(unsigned int* packetId) const;
    /// UDP destination port.
    virtual bool GetDstPort(unsigned short* port) const;
    /// network_id of MPEG-2 signalling.
    virtual bool GetNetworkId(unsigned short* networkId) const;
    /// MPEG-2_transport_stream_id.
    virtual bool GetMPEG2TsId(unsigned short* transportStreamId) const;
    /// MPEG-2_PID, 13 bits.
    virtual bool GetMPEG2PID(unsigned short* pid) const;
    /// message_id.
    virtual bool GetMsgId(unsigned short* messageId) const;
    /// Required: a.b.c.d is a x 2^24 + b x 2^16 + c x 2^8 + d from CLocationUnit1, and the reverse, a being
    /// the lowest byte, from CLocationUnitA and CLocationUnitC.
    virtual bool GetIpv4SrcAddr(unsigned int* address) const;
    /// As GetIpv4SrcAddr.
    virtual bool GetIpv4DstAddr(unsigned int* address) const;
    /// Eight 16-bit words, the first one first; a null array gives false.
    virtual bool GetIpv6SrcAddr(unsigned short* address) const;
    /// As GetIpv6SrcAddr.
    virtual bool GetIpv6DstAddr(unsigned short* address) const;
    /// The URL, as it was sent.
    virtual bool GetUrl(std::string& url) const;
    /// What a private location says, as it was sent.
    virtual bool GetPrivateLocationInfo(std::string& info) const;

  protected:
    /// What a type can have, numbers first and in wire order.
    enum EField {
        FIELD_DST_PORT,
        FIELD_NETWORK_ID,
        FIELD_TRANSPORT_STREAM_ID,
        FIELD_PACKET_ID,
        FIELD_MESSAGE_ID,
        FIELD_RESERVED,
        FIELD_PID,
        NUMBER_COUNT,
        FIELD_IPV4 = NUMBER_COUNT,  ///< source and destination, in front of the numbers
        FIELD_IPV6,                 ///< the same
        FIELD_SWAPPED,              ///< the getters give the bytes of IPv4 addresses in reverse
        FIELD_URL,
        FIELD_PRIVATE_INFO
    };

    /// A unit of a type with these fields.
    template <class... TField>
    explicit CLocationUnitBase(TField... fields) : m_fields(static_cast<unsigned short>((0u | ... | (1u << fields))))
    {
    }

  private:
    /// Numbers, in wire order and without those that the type does not have, or the words of both IPv4 addresses
    /// and then at most three numbers. There can be 255 units in every asset: they are kept small.
    static constexpr unsigned int k_words = 7;

    bool m_Has(unsigned int field) const { return (m_fields >> field & 1u) != 0; }
    unsigned int m_Slot(unsigned int number) const;
    unsigned int m_Number(unsigned int number) const;
    unsigned int m_Ipv4(unsigned int slot) const;
    void m_ReadAddresses(vyr::CBitReader& reader);

    unsigned short m_fields;
    unsigned short m_words[k_words] = {};
    vyr::CBytes m_bytes;  // both IPv6 addresses, or the text
};

/// Location type 0x00: the packet flow that carries the location info.
class VYR_API CLocationUnit0 : public CLocationUnitBase {
  public:
    CLocationUnit0() : CLocationUnitBase(FIELD_PACKET_ID) {}
};

/// Location type 0x01: an MMTP packet flow over IPv4.
class VYR_API CLocationUnit1 : public CLocationUnitBase {
  public:
    CLocationUnit1() : CLocationUnitBase(FIELD_IPV4, FIELD_DST_PORT, FIELD_PACKET_ID) {}
};

/// Location type 0x02: an MMTP packet flow over IPv6.
class VYR_API CLocationUnit2 : public CLocationUnitBase {
  public:
    CLocationUnit2() : CLocationUnitBase(FIELD_IPV6, FIELD_DST_PORT, FIELD_PACKET_ID) {}
};

/// Location type 0x03: an elementary stream of an MPEG-2 transport stream in a broadcast network.
class VYR_API CLocationUnit3 : public CLocationUnitBase {
  public:
    CLocationUnit3() : CLocationUnitBase(FIELD_NETWORK_ID, FIELD_TRANSPORT_STREAM_ID, FIELD_RESERVED, FIELD_PID) {}
};

/// Location type 0x04: an elementary stream of an MPEG-2 transport stream over IPv6.
class VYR_API CLocationUnit4 : public CLocationUnitBase {
  public:
    CLocationUnit4() : CLocationUnitBase(FIELD_IPV6, FIELD_DST_PORT, FIELD_RESERVED, FIELD_PID) {}
};

/// Location type 0x05: a URL.
class VYR_API CLocationUnit5 : public CLocationUnitBase {
  public:
    CLocationUnit5() : CLocationUnitBase(FIELD_URL) {}
};

/// Location type 0x06: private location information.
class VYR_API CLocationUnit6 : public CLocationUnitBase {
  public:
    CLocationUnit6() : CLocationUnitBase(FIELD_PRIVATE_INFO) {}
};

/// Location type 0x07: the signalling message itself.
class VYR_API CLocationUnit7 : public CLocationUnitBase {};

/// Location type 0x08: a signalling message of the same packet flow.
class VYR_API CLocationUnit8 : public CLocationUnitBase {
  public:
    CLocationUnit8() : CLocationUnitBase(FIELD_MESSAGE_ID) {}
};

/// Location type 0x09: a signalling message of another packet flow.
class VYR_API CLocationUnit9 : public CLocationUnitBase {
  public:
    CLocationUnit9() : CLocationUnitBase(FIELD_PACKET_ID, FIELD_MESSAGE_ID) {}
};

/// Location type 0x0A: a signalling message of an MMTP packet flow over IPv4.
class VYR_API CLocationUnitA : public CLocationUnitBase {
  public:
    CLocationUnitA() : CLocationUnitBase(FIELD_IPV4, FIELD_SWAPPED, FIELD_DST_PORT, FIELD_PACKET_ID, FIELD_MESSAGE_ID)
    {
    }
};

/// Location type 0x0B: a signalling message of an MMTP packet flow over IPv6.
class VYR_API CLocationUnitB : public CLocationUnitBase {
  public:
    CLocationUnitB() : CLocationUnitBase(FIELD_IPV6, FIELD_DST_PORT, FIELD_PACKET_ID, FIELD_MESSAGE_ID) {}
};

/// Location type 0x0C: an elementary stream of an MPEG-2 transport stream over IPv4.
class VYR_API CLocationUnitC : public CLocationUnitBase {
  public:
    CLocationUnitC() : CLocationUnitBase(FIELD_IPV4, FIELD_SWAPPED, FIELD_DST_PORT, FIELD_RESERVED, FIELD_PID) {}
};
