#pragma once

#include <array>
#include <string>

#include "../MMTBytes.h"
#include "../MMTParser.h"

/// What follows location_type in MMT_general_location_info (ISO/IEC 23008-1): one class per type. A getter
/// answers false, its output untouched, unless the type has that field; a null output is asserted.
/// Packet, message and PID numbers are as on the wire; ports are UDP ports.
class VYR_API CLocationUnitBase : public IMMTParser {
  public:
    CLocationUnitBase() = default;
    ~CLocationUnitBase() override;
    CLocationUnitBase(const CLocationUnitBase&) = delete;
    CLocationUnitBase& operator=(const CLocationUnitBase&) = delete;

    /// Reads the fields; false: the data ended.
    bool Parse(SItem* item) override = 0;
    /// Logs the fields, at debug priority.
    virtual void Dump() const = 0;

    virtual bool GetPacketId(unsigned int* packetId) const;
    virtual bool GetDstPort(unsigned short* port) const;
    virtual bool GetNetworkId(unsigned short* networkId) const;
    virtual bool GetMPEG2TsId(unsigned short* transportStreamId) const;
    virtual bool GetMPEG2PID(unsigned short* pid) const;
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
    virtual bool GetUrl(std::string& url) const;
    virtual bool GetPrivateLocationInfo(std::string& info) const;
};

/// Location type 0x00: the packet flow that carries the location info.
class VYR_API CLocationUnit0 : public CLocationUnitBase {
  public:
    bool Parse(SItem* item) override;
    void Dump() const override;
    bool GetPacketId(unsigned int* packetId) const override;

  private:
    unsigned short m_packetId = 0;
};

/// Common part of the types with an IPv4 flow: source, destination and port.
class VYR_API CLocationUnitIpv4 : public CLocationUnitBase {
  public:
    void Dump() const override;
    bool GetDstPort(unsigned short* port) const override;
    bool GetIpv4SrcAddr(unsigned int* address) const override;
    bool GetIpv4DstAddr(unsigned int* address) const override;

  protected:
    explicit CLocationUnitIpv4(bool swapped) : m_swapped(swapped) {}
    /// Reads the three fields; false: the data ended.
    bool t_ReadFlow(SItem* item);

  private:
    bool m_swapped;  // the getters give the addresses' bytes in reverse
    unsigned short m_dstPort = 0;
    unsigned int m_srcAddr = 0;
    unsigned int m_dstAddr = 0;
};

/// Common part of the types with an IPv6 flow: source, destination and port.
class VYR_API CLocationUnitIpv6 : public CLocationUnitBase {
  public:
    void Dump() const override;
    bool GetDstPort(unsigned short* port) const override;
    bool GetIpv6SrcAddr(unsigned short* address) const override;
    bool GetIpv6DstAddr(unsigned short* address) const override;

  protected:
    /// Reads the three fields; false: the data ended.
    bool t_ReadFlow(SItem* item);

  private:
    using CWords = std::array<unsigned short, 8>;

    CWords m_Read(SItem* item);

    unsigned short m_dstPort = 0;
    CWords m_srcAddr = {};
    CWords m_dstAddr = {};
};

/// Location type 0x01: an MMTP packet flow over IPv4.
class VYR_API CLocationUnit1 : public CLocationUnitIpv4 {
  public:
    CLocationUnit1() : CLocationUnitIpv4(false) {}
    bool Parse(SItem* item) override;
    void Dump() const override;
    bool GetPacketId(unsigned int* packetId) const override;

  private:
    unsigned short m_packetId = 0;
};

/// Location type 0x02: an MMTP packet flow over IPv6.
class VYR_API CLocationUnit2 : public CLocationUnitIpv6 {
  public:
    bool Parse(SItem* item) override;
    void Dump() const override;
    bool GetPacketId(unsigned int* packetId) const override;

  private:
    unsigned short m_packetId = 0;
};

/// Location type 0x03: an elementary stream of an MPEG-2 transport stream in a broadcast network.
class VYR_API CLocationUnit3 : public CLocationUnitBase {
  public:
    bool Parse(SItem* item) override;
    void Dump() const override;
    bool GetNetworkId(unsigned short* networkId) const override;
    bool GetMPEG2TsId(unsigned short* transportStreamId) const override;
    bool GetMPEG2PID(unsigned short* pid) const override;

  private:
    unsigned short m_networkId = 0;
    unsigned short m_transportStreamId = 0;
    unsigned char m_reserved = 0;
    unsigned short m_pid = 0;
};

/// Location type 0x04: an elementary stream of an MPEG-2 transport stream over IPv6.
class VYR_API CLocationUnit4 : public CLocationUnitIpv6 {
  public:
    bool Parse(SItem* item) override;
    void Dump() const override;
    bool GetMPEG2PID(unsigned short* pid) const override;

  private:
    unsigned char m_reserved = 0;
    unsigned short m_pid = 0;
};

/// Location type 0x05: a URL.
class VYR_API CLocationUnit5 : public CLocationUnitBase {
  public:
    bool Parse(SItem* item) override;
    void Dump() const override;
    bool GetUrl(std::string& url) const override;

  private:
    vyr::CBytes m_url;
};

/// Location type 0x06: private location information.
class VYR_API CLocationUnit6 : public CLocationUnitBase {
  public:
    bool Parse(SItem* item) override;
    void Dump() const override;
    bool GetPrivateLocationInfo(std::string& info) const override;

  private:
    vyr::CBytes m_info;
};

/// Location type 0x07: the signalling message itself.
class VYR_API CLocationUnit7 : public CLocationUnitBase {
  public:
    bool Parse(SItem* item) override;
    void Dump() const override;
};

/// Location type 0x08: a signalling message of the same packet flow.
class VYR_API CLocationUnit8 : public CLocationUnitBase {
  public:
    bool Parse(SItem* item) override;
    void Dump() const override;
    bool GetMsgId(unsigned short* messageId) const override;

  private:
    unsigned short m_messageId = 0;
};

/// Location type 0x09: a signalling message of another packet flow.
class VYR_API CLocationUnit9 : public CLocationUnitBase {
  public:
    bool Parse(SItem* item) override;
    void Dump() const override;
    bool GetPacketId(unsigned int* packetId) const override;
    bool GetMsgId(unsigned short* messageId) const override;

  private:
    unsigned short m_packetId = 0;
    unsigned short m_messageId = 0;
};

/// Location type 0x0A: a signalling message of an MMTP packet flow over IPv4.
class VYR_API CLocationUnitA : public CLocationUnitIpv4 {
  public:
    CLocationUnitA() : CLocationUnitIpv4(true) {}
    bool Parse(SItem* item) override;
    void Dump() const override;
    bool GetPacketId(unsigned int* packetId) const override;
    bool GetMsgId(unsigned short* messageId) const override;

  private:
    unsigned short m_packetId = 0;
    unsigned short m_messageId = 0;
};

/// Location type 0x0B: a signalling message of an MMTP packet flow over IPv6.
class VYR_API CLocationUnitB : public CLocationUnitIpv6 {
  public:
    bool Parse(SItem* item) override;
    void Dump() const override;
    bool GetPacketId(unsigned int* packetId) const override;
    bool GetMsgId(unsigned short* messageId) const override;

  private:
    unsigned short m_packetId = 0;
    unsigned short m_messageId = 0;
};

/// Location type 0x0C: an elementary stream of an MPEG-2 transport stream over IPv4.
class VYR_API CLocationUnitC : public CLocationUnitIpv4 {
  public:
    CLocationUnitC() : CLocationUnitIpv4(true) {}
    bool Parse(SItem* item) override;
    void Dump() const override;
    bool GetMPEG2PID(unsigned short* pid) const override;

  private:
    unsigned char m_reserved = 0;
    unsigned short m_pid = 0;
};
