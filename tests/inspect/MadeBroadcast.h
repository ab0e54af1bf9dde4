#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Packets.h"
#include "support/Gzip.h"

/// A made broadcast that is sound, for tests that break it in one place.
namespace packets {

/// The text with another one in place of a part of it, which it has.
inline std::string With(const std::string& text, const std::string& part, const std::string& other)
{
    const std::size_t at = text.find(part);
    if (at == std::string::npos) {
        throw std::logic_error("no " + part);
    }
    return text.substr(0, at) + other + text.substr(at + part.size());
}

/// What a packet of the broadcast is: a test changes it, or leaves it out.
struct SSent {
    enum EKind { LLS, SIGNALLING, INIT, MEDIA };

    EKind kind = LLS;
    unsigned round = 0;    ///< of the broadcast: one a second
    std::uint64_t at = 0;  ///< microseconds behind the begin
    unsigned table = 0;    ///< LLS_table_id
    SLct lct = {};
    std::string data = {};
    std::string datagram = {};  ///< in place of what is made of the data
    std::uint32_t destination = k_session;
    std::uint32_t source = SIpv4().source;
    unsigned port = 5000;
    bool compressed = false;  ///< its headers are, where the broadcast is captured on its own link layer
};

/// One service on ROUTE, with video (TSI 10) and audio (TSI 20), from 2027-01-15T08:00:00Z on: a round of everything
/// each second.
struct SBroadcast {
    std::string services =
        "<Service serviceId=\"1\" sltSvcSeqNum=\"1\" protected=\"false\" majorChannelNo=\"7\" minorChannelNo=\"1\" "
        "serviceCategory=\"1\" shortServiceName=\"NEWS\" hidden=\"false\" broadbandAccessRequired=\"false\">"
        "<BroadcastSvcSignaling slsProtocol=\"1\" slsMajorProtocolVersion=\"1\" slsMinorProtocolVersion=\"0\" "
        "slsDestinationIpAddress=\"239.255.7.1\" slsDestinationUdpPort=\"5000\" "
        "slsSourceIpAddress=\"192.0.2.10\"/></Service>";
    std::string systemTime = "<SystemTime currentUtcOffset=\"37\" utcLocalOffset=\"-PT5H\" dsStatus=\"false\"/>";
    std::string usbd =
        "<BundleDescriptionROUTE><UserServiceDescription serviceId=\"1\"><Name lang=\"en\">News</Name><DeliveryMethod>"
        "<BroadcastAppService><BasePattern>v</BasePattern><BasePattern>a</BasePattern></BroadcastAppService>"
        "</DeliveryMethod></UserServiceDescription></BundleDescriptionROUTE>";
    std::string stsid = "<S-TSID><RS dIpAddr=\"239.255.7.1\" dPort=\"5000\" sIpAddr=\"192.0.2.10\">" +
                        Lct(10, "v", "video", "", 100) + Lct(20, "a", "audio", " lang=\"en\"", 50) + "</RS></S-TSID>";
    std::string mpd =
        "<MPD type=\"dynamic\" availabilityStartTime=\"2027-01-15T07:00:00Z\" publishTime=\"2027-01-15T07:59:00Z\" "
        "minBufferTime=\"PT1S\"><Period id=\"p\" start=\"PT0S\">" +
        Set("v", "video", "", 16000) + Set("a", "audio", " lang=\"en\"", 8000) + "</Period></MPD>";
    unsigned rounds = 12;
    std::size_t cutTo = 65535;  ///< what is captured of a packet
    bool alp = false;           ///< captured on the link layer of ATSC 3.0
    /// Told each packet before it is sent; false: it is not.
    std::function<bool(SSent&)> change = [](SSent&) { return true; };

    /// An LS element with the files of one component.
    static std::string Lct(unsigned tsi, const std::string& id, const std::string& type, const std::string& lang,
                           unsigned bandwidth)
    {
        return "<LS tsi=\"" + std::to_string(tsi) + "\" bw=\"" + std::to_string(bandwidth) +
               "\"><SrcFlow rt=\"true\"><EFDT><FDT-Instance Expires=\"4294944000\" fileTemplate=\"" + id +
               "$TOI$.m4s\"><File Content-Location=\"" + id +
               "init.mp4\" TOI=\"4294967295\"/></FDT-Instance></EFDT><ContentInfo><MediaInfo repId=\"" + id +
               "\" contentType=\"" + type + "\"" + lang +
               "/></ContentInfo><Payload codePoint=\"128\" formatId=\"1\" frag=\"0\" order=\"true\"/></SrcFlow></LS>";
    }
    /// An AdaptationSet with one representation.
    static std::string Set(const std::string& id, const std::string& type, const std::string& lang, unsigned bandwidth)
    {
        return "<AdaptationSet contentType=\"" + type + "\" mimeType=\"" + type + "/mp4\"" + lang +
               "><SegmentTemplate media=\"" + id + "$Number$.m4s\" initialization=\"" + id +
               "init.mp4\" timescale=\"1\" duration=\"1\" startNumber=\"1\"/><Representation id=\"" + id +
               "\" bandwidth=\"" + std::to_string(bandwidth) + "\"/></AdaptationSet>";
    }
    std::string Package() const
    {
        const std::vector<std::pair<std::string, const std::string*>> parts = {
            {"usbd.xml", &usbd}, {"stsid.xml", &stsid}, {"m.mpd", &mpd}};
        std::string items;
        std::string rest;
        for (const auto& [name, text] : parts) {
            items += text->empty() ? "" : "<item metadataURI=\"" + name + "\" version=\"1\"/>";
            rest += text->empty() ? "" : "--x\r\nContent-Location: " + name + "\r\n\r\n" + *text + "\r\n";
        }
        return "Content-Type: multipart/related; boundary=\"x\"\r\n\r\n--x\r\nContent-Location: e.xml\r\n\r\n"
               "<metadataEnvelope>" +
               items + "</metadataEnvelope>\r\n" + rest + "--x--";
    }

    /// The packets of a round, in the order in which they are sent.
    void Round(CCapture& capture, unsigned round) const
    {
        const std::uint64_t begin = std::uint64_t{round} * 1000000;
        const auto send = [&](SSent sent, std::uint64_t offset) {
            sent.round = round;
            sent.at = begin + offset;
            if (change(sent)) {
                SIpv4 ip;
                ip.destination = sent.destination;
                ip.source = sent.source;
                const std::string payload = !sent.datagram.empty()    ? sent.datagram
                                            : sent.kind == SSent::LLS ? sent.data
                                                                      : packets::Lct(sent.lct, sent.data);
                const std::string packet = Ipv4(Udp(payload, sent.port), ip);
                const unsigned type = sent.compressed ? 0x4000 : 0;
                capture.At(sent.at).Add(alp ? Number(type | packet.size(), 2) + packet : Ethernet(packet));
            }
        };
        const auto table = [&](unsigned id, const std::string& text) {
            SSent sent;
            sent.table = id;
            sent.data = Number(id, 1) + Number(0, 2) + Number(1, 1) + text;
            sent.destination = k_lls;
            sent.port = 4937;
            send(sent, id);
        };
        table(1, "<SLT bsid=\"5\">" + services + "</SLT>");
        table(3, systemTime);
        const auto object = [&](SSent::EKind kind, unsigned tsi, unsigned toi, const std::string& bytes,
                                std::uint64_t offset) {
            const std::size_t half = std::min<std::size_t>(bytes.size() / 2 + 1, 1200);
            for (std::size_t at = 0; at < bytes.size(); at += half) {
                SSent sent;
                sent.kind = kind;
                sent.lct.tsi = tsi;
                sent.lct.toi = toi;
                sent.lct.start = static_cast<std::uint32_t>(at);
                sent.lct.length = static_cast<int>(bytes.size());
                sent.data = bytes.substr(at, half);
                sent.lct.close = at + half >= bytes.size();
                send(sent, offset + at);
            }
        };
        object(SSent::SIGNALLING, 0, 1, Gzip(Package()), 10000);
        for (const auto& [tsi, size] : {std::pair(10u, 2000u), std::pair(20u, 1000u)}) {
            object(SSent::INIT, tsi, 4294967295u, std::string(100, 'i'), 100000 + tsi * 1000);
            object(SSent::MEDIA, tsi, round + 1, std::string(size, 'm'), 300000 + tsi * 10000);
        }
    }
    std::string Bytes() const
    {
        CCapture capture(alp ? 289 : 1, cutTo);
        for (unsigned round = 0; round < rounds; ++round) {
            Round(capture, round);
        }
        return capture.Bytes();
    }
};

}  // namespace packets
