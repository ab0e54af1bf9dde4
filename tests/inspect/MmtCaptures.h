#pragma once

#include <string>

#include "Packets.h"
#include "support/Gzip.h"
#include "support/MmtBuilder.h"

/// Captures of MMT signalling.
namespace packets {

inline std::string Slt(const std::string& services, unsigned version, unsigned group = 0, unsigned groups = 1)
{
    return Number(1, 1) + Number(group, 1) + Number(groups - 1, 1) + Number(version, 1) + "<SLT bsid=\"5\">" +
           services + "</SLT>";
}

/// A service that MMTP, or ROUTE for protocol 1, carries, at 239.255.7.1; port 0: nowhere.
inline std::string MmtService(int id, unsigned port, int protocol = 2)
{
    return "<Service serviceId=\"" + std::to_string(id) +
           "\" serviceCategory=\"4\"><BroadcastSvcSignaling slsProtocol=\"" + std::to_string(protocol) +
           "\" slsDestinationIpAddress=\"" + (port != 0 ? "239.255.7.1" : "none") + "\" slsDestinationUdpPort=\"" +
           std::to_string(port) + "\"/></Service>";
}

/// Payload of an ATSC 3.0 message of service 1.
inline std::string MmtAtsc3(unsigned type, const std::string& content, unsigned version = 1, unsigned compression = 1)
{
    return CMmtBuilder()
        .Put(16, 1)
        .Put(16, type)
        .Put(8, version)
        .Put(8, compression)
        .Open(8)
        .Put("a/b")
        .Close()
        .Open(32)
        .Put(content)
        .Close()
        .Bytes();
}

/// Payload of a signed message that wraps another.
inline std::string MmtSigned(const std::string& message, const std::string& signature = "signature")
{
    return CMmtBuilder().Put(16, 1).Open(32).Put(message).Close().Open(16).Put(signature).Close().Bytes();
}

/// An MP table with a location of each type and a descriptor of each kind.
inline std::string MmtEverything()
{
    const auto ip6 = [](unsigned last) { return Number(0x20010DB800000000, 8) + Number(last, 8); };
    const std::string ip4 = Number(0x0A000001, 4) + Number(k_session, 4);
    const std::string id16 = "0123456789abcdef";
    const std::string a = MmtCountedId("A").Bytes();
    CMmtBuilder b;
    b.Put(8, 0xFC).Open(8).Put("p\x1B").Close().Put(16, 0).Put(8, 4);
    b.Put(8, 0).Put("urn ").Open(32).Put("v").Close().Put("hev1").Put(8, 2).Put(8, 13);
    b.Put(8, 0).Put(16, 1).Put(8, 1).Put(ip4).Put(16, 1000).Put(16, 2).Put(8, 2).Put(ip6(1) + ip6(2)).Put(16, 1001);
    b.Put(16, 3).Put(8, 3).Put(16, 4).Put(16, 5).Put(3, 7).Put(13, 6).Put(8, 4).Put(ip6(3) + ip6(4)).Put(16, 1002);
    b.Put(3, 7).Put(13, 7).Put(8, 5).Open(8).Put("http://u/").Close().Put(8, 6).Open(16).Put("\xFFp").Close();
    b.Put(8, 7).Put(8, 8).Put(16, 0x11).Put(8, 9).Put(16, 8).Put(16, 0x9000).Put(8, 10).Put(ip4).Put(16, 1003);
    b.Put(16, 9).Put(16, 0x8100).Put(8, 11).Put(ip6(5) + ip6(6)).Put(16, 1004).Put(16, 10).Put(16, 0).Put(8, 12);
    b.Put(ip4).Put(16, 1005).Put(3, 7).Put(13, 11);
    b.Open(16).Put(MmtCri(1)).Put(MmtDesc(1, Number(5, 4) + Number(0xEE3EF5A080000000, 8)));
    b.Put(MmtDesc(2, Number(1, 1) + MmtAssetId("base")));
    b.Put(MmtDesc(4, Number(1, 1) + id16 + Number(1, 1) + id16 + Number(2, 2) + "si"));
    b.Put(MmtDesc(5, MmtVideo())).Put(MmtDesc(9, MmtAudio()));
    b.Put(MmtDesc(8, Number(1, 1) + a + CMmtBuilder().Open(8).Put("en").Close().Put(16, 0x12D0).Bytes()));
    b.Put(MmtDesc(12, Number(1, 1) + a + "cenc" + id16 + Number(1, 1) + id16 + Number(1, 2) + "d"));
    b.Put(MmtDesc(13, Number(1, 1) + a + Number(1, 1) + Number(2, 1) + Number(9, 1) + "http://l/"));
    b.Put(MmtDesc(14, Number(7, 4) + Number(0x80, 1) + Number(8, 2) + Number(9, 4)))
        .Put(MmtUnknown() + MmtCri(2))
        .Close();
    b.Put(8, 2).Open(16).Put("^a").Close().Put("mp4a").Put(8, 0).Put(8, 0).Put(16, 0);
    b.Put(8, 3).Open(16).Put("r1").Close().Put(32, 1).Put(8, 2).Put(8, 0).Put(16, 0);
    b.Put(8, 9).Open(16).Put("\xFE").Close().Put("stpp").Put(8, 0).Put(8, 0).Put(16, 0);
    return MmtTable(0x20, b.Bytes());
}

/// Every message and every way in which one can come.
inline std::string EveryMessage()
{
    const std::string usbd =
        "<BundleDescriptionMMT><UserServiceDescription globalServiceID='urn:g' serviceId='1' serviceStatus='1'>"
        "<Name lang='en'>N</Name><ServiceLanguage>en</ServiceLanguage><Channel serviceGenre='g' serviceIcon='i'/>"
        "<MPUComponent mmtPackageId='pkg' contentIdSchemeIdUri='s' contentIdValue='v' nextMMTPackageId='np'/>"
        "<ROUTEComponent sTSIDUri='u' sTSIDDestinationIpAddress='239.255.10.1' sTSIDSourceIpAddress='none' "
        "sTSIDDestinationUdpPort='5000' sTSIDMajorProtocolVersion='1'/><BroadbandComponent fullMPDUri='m'/>"
        "<ComponentInfo componentType='1' componentRole='3' componentProtectedFlag='true' componentId='a' "
        "componentName='Video'/><ComponentInfo componentType='9'/><ServiceLinkage serviceId='7' linkageType='3'/>"
        "<ContentAdvisoryRatings><RegionIdentifier>1</RegionIdentifier><RatingDescription lang='en'>TV-G"
        "</RatingDescription><RatedDimensions>1</RatedDimensions><RatingDimVal><RatingDimension>1</RatingDimension>"
        "<RatingValueString lang='en'>G</RatingValueString></RatingDimVal></ContentAdvisoryRatings>"
        "</UserServiceDescription></BundleDescriptionMMT>";
    const std::string mpd =
        "<MPD xmlns='urn:mpeg:dash:schema:mpd:2011' type='dynamic'><Period id='1'><AdaptationSet mimeType='video/mp4'>"
        "<Rating schemeIdUri='s' value='r'/><Representation id='v' bandwidth='9'/></AdaptationSet></Period></MPD>";
    const std::string rsat = "<RSAT timestamp='2027-01-01T00:00:00Z'><Service majorChannelNo='7'/></RSAT>";
    CMmtBuilder mpi;
    mpi.Put(8, 0xF4)
        .Put(16, 0)
        .Put(8, 2)
        .Open(8)
        .Put("application/dash+xml")
        .Close()
        .Open(8)
        .Put("m")
        .Close()
        .Put(16, 0);
    mpi.Open(16)
        .Put(mpd)
        .Close()
        .Open(8)
        .Put("application/dash+xml")
        .Close()
        .Put(8, 0)
        .Put(16, 0)
        .Open(16)
        .Put("<MPD>")
        .Close();
    CMmtBuilder ac;
    ac.Put(8, 2).Put(16, 5).Put(32, 600).Put(8, 0).Put(32, 0x0A000001).Put(16, 900).Put(16, 6).Put(32, 1).Put(8, 0x80);
    ac.Put(64, 0x20010DB800000000).Put(64, 1).Put(16, 901);
    const std::string adc = Number(1, 4) + Number(2, 4) + Number(0xC0, 1) + Number(3, 4) + Number(4, 2) + Number(5, 1) +
                            Number(6, 1) + Number(0xC0, 1) + Number(7, 2) + Number(8, 2) + Number(9, 2) +
                            Number(10, 1) + Number(11, 1) + Number(24, 1);
    const std::string dci = Number(2, 1) + MmtAssetId("A") + Number(9, 1) + "video/mp4" + Number(1, 1) + Number(1, 2) +
                            Number(2, 2) + Number(3, 2) + Number(4, 2) + Number(5, 1) + Number(6, 2) + MmtAssetId("B") +
                            Number(9, 1) + "text/html" + Number(0, 1) + Number(7, 4);
    const std::string pa = MmtPaTable();
    const std::string list = Number(2, 1) + Number(0, 1) + Number(3, 1) + Number(pa.size(), 2) + Number(0x20, 1) +
                             Number(4, 1) + Number(0, 2) + pa + MmtMpTable(0x20);
    const std::string mpt = MmtMessage(0x20, 16, MmtEverything());
    CCapture capture(1);
    unsigned sequence = 0;
    const auto send = [&](const std::string& message, unsigned header = 0, unsigned flags = 0,
                          const std::string& options = {}) {
        capture.AddSession(Mmtp({++sequence, header, 7, flags}, message, options), 6001);
    };
    const auto version = [](std::string message, char to) {
        message[2] = to;
        return message;
    };
    capture.AddLls(Slt(MmtService(1, 6001), 1));
    send(MmtMessage(0, 32, list));
    send(mpt);
    send(mpt);
    send(version(mpt, 8));
    send(MmtMessage(0x20, 16, MmtMpTable(0x20)));
    send(version(MmtMessage(0x20, 16, MmtMpTable(0x11)), 8));
    // Two in a packet, then one in three packets and the second of them twice, and one that loses its second.
    const std::string first = MmtMessage(0x10, 32, Number(0xFE, 1) + MmtTable(0x10, mpi.Bytes()));
    const std::string both = MmtMessage(0x8100, 32, MmtAtsc3(1, usbd));
    send(CMmtBuilder().Open(16).Put(first).Close().Open(16).Put(both).Close().Bytes(), 0x0100);
    const std::string held = MmtMessage(0x8100, 32, MmtAtsc3(3, Gzip("<HELD>\n</HELD>"), 1, 2));
    send(held.substr(0, 9), 0x4000);
    send(held.substr(9, 9), 0x8000);
    --sequence;
    send(held.substr(9, 9), 0x8000);
    send(held.substr(18), 0xC000);
    send(held.substr(0, 9), 0x4000);
    ++sequence;
    send(held.substr(18), 0xC000);
    // With packet counter and extension; then the same content compressed anew.
    send(MmtMessage(0x8100, 32, MmtAtsc3(2, Gzip(mpd), 1, 2)), 0, 0x2200,
         Number(1, 4) + Number(1, 2) + Number(2, 2) + "ex");
    std::string anew = Gzip(mpd);
    anew[4] = '?';
    send(MmtMessage(0x8100, 32, MmtAtsc3(2, anew, 1, 2)));
    send(MmtMessage(0x8100, 32, MmtAtsc3(2, anew, 2, 2)));
    send(MmtMessage(0x8100, 32, MmtAtsc3(2, "<MPD></a>", 3)));
    send(MmtMessage(0x8100, 32, MmtAtsc3(1, "<a/>", 2)));
    send(MmtMessage(0x8100, 32, MmtAtsc3(11, rsat)));
    send(MmtMessage(0x8100, 32, MmtAtsc3(11, "<RSAT/>", 2)));
    send(MmtMessage(0x8100, 32, MmtAtsc3(8, MmtDesc(8, "\1" + MmtCountedId("A").Bytes()))));
    send(MmtMessage(0x8100, 32, MmtAtsc3(8, MmtDesc(8, "\1").substr(0, 4), 2)));
    send(MmtMessage(0x8100, 32, MmtAtsc3(99, "?")));
    send(MmtMessage(0x8100, 32, MmtAtsc3(4, "\x1F\x8B?")));
    send(MmtMessage(0x8101, 32, MmtSigned(MmtMessage(0x8100, 32, MmtAtsc3(11, rsat)))));
    send(MmtMessage(0x8101, 32, MmtSigned(MmtMessage(0x203, 16, "?"))));
    send(MmtMessage(0x8101, 32, "?"));
    send(MmtMessage(0x200, 16, MmtTable(0x21, Number(1, 1) + MmtCri(1))));
    send(MmtMessage(0x201, 16, MmtTable(0x22, dci)));
    send(MmtMessage(0x206, 16, ac.Bytes()));
    send(MmtMessage(0x209, 32, adc));
    send(MmtMessage(0x20B, 32, Number(1, 1) + MmtAssetId("A") + Number(2, 2) + "ab"));
    send(MmtMessage(0x20E, 16, Number(7, 4)));
    send(MmtMessage(0x203, 16, "AL-FEC"));
    send(MmtMessage(0x9000, 32, "a private message of 30 bytes."));
    send(MmtMessage(0x11, 16, "?"));
    send(MmtMessage(0, 32, Number(1, 1) + Number(0x30, 1) + Number(0, 3) + "?"));
    send(MmtMessage(0x200, 16, MmtTable(0x21, Number(1, 1) + Number(14, 4) + std::string(14, 0))));
    send("");
    capture.AddSession(Mmtp({1, 0, 8}, mpt), 6001).AddSession(Mmtp({1, 0, 8, 0, 0}, mpt), 6001);
    return capture.AddSession(Mmtp({1, 0, 8, 0x4000}, mpt), 6001).AddSession("?", 6001).Bytes();
}

/// Services whose signalling does not come, for every reason there is, and one whose signalling comes.
inline std::string NoMessages()
{
    const std::string mpt = MmtMessage(0x20, 16, MmtMpTable(0x20));
    std::string services;
    for (int id = 1; id <= 11; ++id) {
        services += MmtService(id, id == 11 ? 0 : 6001 + static_cast<unsigned>(id));
    }
    services += MmtService(12, 6002, 1);
    CCapture capture(1);
    capture.AddSession(Mmtp({}, mpt), 6001).AddLls(Slt(services, 1)).AddSession(Mmtp({}, mpt), 6002);
    capture.AddSession("??", 6004).AddSession(Mmtp({1, 0, 0, 0x4000}, mpt), 6005).AddSession("?", 6005);
    capture.AddSession(Mmtp({1, 0, 0, 0, 0}, mpt), 6006).AddSession(Mmtp({2, 0x8000}, mpt), 6007);
    capture.AddSession(Mmtp({}, MmtMessage(0x203, 16, "?")), 6008);
    capture.AddSession(Mmtp({}, MmtMessage(0x20, 16, "?")), 6009).AddSession(Mmtp({}, "?"), 6010);
    capture.AddSession(Mmtp({}, MmtMessage(0x8100, 32, MmtAtsc3(6, ""))), 6011);
    return capture.At(5250000).AddLls(Slt(services, 1)).Bytes();
}

}  // namespace packets
