#pragma once

#include <functional>
#include <string>

#include "Judged.h"
#include "Packets.h"

/// A sound broadcast of one service by ROUTE, to be broken: signalling on 239.255.7.1:7001, in every second of which
/// once each the service list, the package, and of two LCT sessions an initialization segment and a media segment of
/// four packets.
struct SBroadcast : SJudged {
    struct SPart {
        unsigned second;
        unsigned tsi;  ///< 10: video, 20: audio
        unsigned toi;  ///< 99: the initialization segment
        unsigned part;
    };

    std::string services =
        "<Service serviceId='1' globalServiceID='urn:g' serviceCategory='1' majorChannelNo='5' minorChannelNo='1' "
        "protected='false' shortServiceName='One'><BroadcastSvcSignaling slsProtocol='1' "
        "slsDestinationIpAddress='239.255.7.1' slsDestinationUdpPort='7001'/></Service>";
    std::string usbd =
        "<BundleDescriptionROUTE><UserServiceDescription serviceId='1' globalServiceID='urn:g'><DeliveryMethod>"
        "<BroadcastAppService><BasePattern>video</BasePattern><BasePattern>audio</BasePattern></BroadcastAppService>"
        "</DeliveryMethod></UserServiceDescription></BundleDescriptionROUTE>\n";
    std::string stsid = "<S-TSID><RS dIpAddr='239.255.7.1' dPort='7001'>" + Lct("10", "video", "v") +
                        Lct("20", "audio", "a") + "</RS></S-TSID>\n";
    std::string mpd =
        "<MPD xmlns='urn:mpeg:dash:schema:mpd:2011' type='dynamic' publishTime='2027-01-15T08:00:00Z' "
        "availabilityStartTime='2027-01-15T08:00:00Z'><Period id='1'>" +
        Set("video", "v", "") + Set("audio", "a", "lang='en'") + "</Period></MPD>\n";
    unsigned listVersion = 1;
    unsigned seconds = 12;
    unsigned cutTo = 65535;            ///< what is captured of a packet
    unsigned ports[2] = {7001, 7001};  ///< of the LCT sessions
    std::function<bool(const SPart&)> keep = [](const SPart&) { return true; };
    std::function<void(unsigned second, SBroadcast&)> change = [](unsigned, SBroadcast&) {};
    std::function<void(unsigned second, packets::CCapture&)> more = [](unsigned, packets::CCapture&) {};

    static std::string Lct(const std::string& tsi, const std::string& type, const std::string& id)
    {
        return "<LS tsi='" + tsi +
               "' bw='10'><SrcFlow rt='true'><EFDT><FDT-Instance Expires='4294944000' fileTemplate='" + type +
               "-$TOI$.m4s'><File Content-Location='" + type +
               "-init.mp4' TOI='99'/></FDT-Instance></EFDT><ContentInfo><MediaInfo contentType='" + type + "' repId='" +
               id + "'/></ContentInfo></SrcFlow></LS>";
    }
    static std::string Set(const std::string& type, const std::string& id, const std::string& more)
    {
        return "<AdaptationSet contentType='" + type + "' " + more + "><SegmentTemplate media='" + type +
               "-$Number$.m4s' initialization='" + type + "-init.mp4'/><Representation id='" + id +
               "' bandwidth='9000'/></AdaptationSet>";
    }
    /// Replaces a text that stands in one of the documents.
    SBroadcast& Edit(const std::string& from, const std::string& to)
    {
        bool found = false;
        for (std::string* text : {&services, &usbd, &stsid, &mpd}) {
            for (std::size_t at = text->find(from); at != std::string::npos; at = text->find(from, at + to.size())) {
                text->replace(at, from.size(), to);
                found = true;
            }
        }
        EXPECT_TRUE(found) << from;
        return *this;
    }
    std::string Bytes() override
    {
        packets::CCapture capture(1, cutTo);
        std::string package;
        unsigned toi = 0;
        for (unsigned second = 0; second < seconds; ++second) {
            change(second, *this);
            const std::string now = usbd + stsid + mpd;
            toi += now != package ? 1 : 0;
            package = now;
            capture.At(second, 40000);
            capture.AddLls(packets::Number(0x01000000 + listVersion, 4) + "<SLT bsid='5'>" + services + "</SLT>");
            m_Send(capture, {second, 0, toi, 0}, 7001, package, 1);
            for (unsigned i = 0; i < 2; ++i) {
                m_Send(capture, {second, 10 + 10 * i, 99, 0}, ports[i], std::string(40, 'i'), 1);
                m_Send(capture, {second, 10 + 10 * i, second + 1, 0}, ports[i], std::string(800, 'm'), 4);
            }
            more(second, capture);
        }
        return capture.Bytes();
    }

  private:
    void m_Send(packets::CCapture& capture, SPart part, unsigned port, const std::string& object, unsigned parts) const
    {
        const std::size_t size = object.size() / parts;
        for (; part.part < parts; ++part.part) {
            if (keep(part)) {
                const std::size_t start = part.part * size;
                capture.AddSession(packets::Lct({part.toi, static_cast<std::uint32_t>(start),
                                                 static_cast<int>(object.size()), false, part.tsi},
                                                object.substr(start, size)),
                                   port);
            }
        }
    }
};

using SBreach = SBreachOf<SBroadcast>;

/// Replaces texts of the documents.
inline std::function<void(SBroadcast&)> Edits(const std::vector<std::pair<std::string, std::string>>& edits)
{
    return [edits](SBroadcast& broadcast) {
        for (const auto& [from, to] : edits) {
            broadcast.Edit(from, to);
        }
    };
}
/// Sends what it says alone.
inline std::function<void(SBroadcast&)> Keep(const std::function<bool(const SBroadcast::SPart&)>& keep)
{
    return [keep](SBroadcast& broadcast) { broadcast.keep = keep; };
}
inline std::function<void(SBroadcast&)> Lasts(unsigned seconds)
{
    return [seconds](SBroadcast& broadcast) { broadcast.seconds = seconds; };
}
/// Sends something besides.
inline std::function<void(SBroadcast&)> More(const std::function<void(unsigned, packets::CCapture&)>& more)
{
    return [more](SBroadcast& broadcast) { broadcast.more = more; };
}
/// Sends audio to the port.
inline std::function<void(SBroadcast&)> Audio(unsigned port)
{
    return [port](SBroadcast& broadcast) { broadcast.ports[1] = port; };
}
template <class... TBreaches>
std::function<void(SBroadcast&)> All(TBreaches... breaches)
{
    return [=](SBroadcast& broadcast) { (breaches(broadcast), ...); };
}
