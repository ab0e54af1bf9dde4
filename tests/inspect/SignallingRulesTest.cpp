#include "RouteBroadcast.h"

namespace {

using TRules = std::vector<std::string>;
using SPart = SBroadcast::SPart;

const std::string k_playlist =
    "Content-Type: multipart/related; boundary=x\n\n--x\nContent-Type: video/mpegurl\n\n#EXTM3U\n--x\n\n";

/// Another representation of audio.
std::string More(const std::string& media)
{
    return "<AdaptationSet contentType='audio' lang='es'><SegmentTemplate media='" + media +
           "'/><Representation id='b' bandwidth='9000'/></AdaptationSet></Period>";
}

void Unicast(SBroadcast& broadcast, const std::string& pattern)
{
    broadcast.Edit("</BroadcastAppService>", "</BroadcastAppService><UnicastAppService><BasePattern>" + pattern +
                                                 "</BasePattern></UnicastAppService>");
}

/// The MPD changes at these seconds to one of that publishTime.
void Publish(SBroadcast& broadcast, unsigned at, const std::string& time)
{
    const auto before = broadcast.change;
    broadcast.change = [before, at, time](unsigned second, SBroadcast& now) {
        before(second, now);
        const std::size_t place = now.mpd.find("publishTime='") + 13;
        if (second == at) {
            now.mpd.replace(place, now.mpd.find('\'', place) - place, time);
        }
    };
}

void NoMpd(SBroadcast& broadcast)
{
    broadcast.mpd = "";
}

/// Each breach with what is near to it and none.
const std::vector<SBreach> k_signalling = {
    {"another globalServiceID in the USBD",
     [](SBroadcast& b) { b.usbd.replace(b.usbd.find("urn:g"), 5, "urn:h"); },
     {"global-service-id"}},
    {"none in the USBD", [](SBroadcast& b) { b.usbd.replace(b.usbd.find("globalServiceID='urn:g'"), 23, ""); }, {}},
    {"the USBD of another service",
     [](SBroadcast& b) { b.usbd.replace(b.usbd.find("serviceId='1'"), 13, "serviceId='2'"); },
     {"no-signalling"}},
    {"no signalling for 5 s", All(Lasts(6), Keep([](const SPart& part) { return part.tsi != 0; })), {"no-signalling"}},
    {"too short to tell", All(Lasts(5), Keep([](const SPart& part) { return part.tsi != 0; })), {}},
    {"another service, listed at the end",
     [](SBroadcast& b) {
         b.change = [](unsigned second, SBroadcast& now) {
             if (second == 8) {
                 now.services +=
                     "<Service serviceId='2' serviceCategory='4'><BroadcastSvcSignaling slsProtocol='1' "
                     "slsDestinationIpAddress='239.255.7.1' slsDestinationUdpPort='7009'/></Service>";
                 now.listVersion = 2;
             }
         };
     },
     {}},
    {"no S-TSID",
     [](SBroadcast& b) {
         b.stsid = "";
         b.keep = [](const SPart& part) { return part.tsi == 0; };
     },
     {"no-s-tsid"}},
    {"an S-TSID late",
     [](SBroadcast& b) {
         const std::string stsid = b.stsid;
         b.stsid = "";
         b.change = [stsid](unsigned second, SBroadcast& now) { now.stsid = second == 4 ? stsid : now.stsid; };
     },
     {}},
    {"no S-TSID in 4 s",
     [](SBroadcast& b) {
         b.stsid = "";
         b.seconds = 5;
         b.keep = [](const SPart& part) { return part.tsi == 0; };
     },
     {}},
    {"one that does not parse", [](SBroadcast& b) { b.stsid = "<S-TSID></a></S-TSID>"; }, {"document-not-parsed"}},
    {"no MPD", NoMpd, {"no-mpd"}},
    {"of an application", All(NoMpd, Edits({{"serviceCategory='1'", "serviceCategory='3'"}})), {}},
    {"but a playlist",
     [](SBroadcast& b) {
         b.mpd = "";
         b.usbd = k_playlist + b.usbd;
     },
     {}},
    {"a TSI twice", Edits({{"</RS>", "<LS tsi='20'><SrcFlow/></LS></RS>"}}), {"tsi-twice"}},
    {"on two addresses",
     [](SBroadcast& b) {
         b.Edit("</RS>", "</RS><RS dPort='7002'>" + SBroadcast::Lct("20", "audio", "a") + "</RS>");
         b.more = [](unsigned second, packets::CCapture& capture) {
             capture.AddSession(packets::Lct({99, 0, 1, false, 20}, "i"), 7002);
             capture.AddSession(packets::Lct({second, 0, 1, false, 20}, "m"), 7002);
         };
     },
     {}},
    {"a repId that the MPD does not have",
     [](SBroadcast& b) {
         b.Edit("</RS>", SBroadcast::Lct("20", "audio", "b") + "</RS>");
         b.stsid.replace(b.stsid.rfind("tsi='20'"), 8, "tsi='30'");
         b.more = [](unsigned second, packets::CCapture& capture) {
             capture.AddSession(packets::Lct({second, 0, 1, false, 30}, "m"), 7001);
         };
     },
     {"rep-id-unknown"}},
    {"a representation that nothing carries",
     [](SBroadcast& b) { b.Edit("</Period>", More("es-$Number$.m4s")); },
     {"representation-not-carried"}},
    {"by unicast",
     [](SBroadcast& b) {
         b.Edit("</Period>", More("es-$Number$.m4s"));
         Unicast(b, "es-");
     },
     {}},
    {"in a period to come", Edits({{"</Period>", "</Period><Period start='PT60S'>" + More("es")}}), {}},
    {"in one that begins about now", Edits({{"</Period>", "</Period><Period start='PT12S'>" + More("es")}}), {}},
    {"in one that is over",
     All(Lasts(30),
         Edits({{"<Period id='1'>", "<Period start='PT0S'>" + More("es") + "<Period id='1' start='PT15S'>"}})),
     {}},
    {"in that which is on air",
     All(Lasts(30), Edits({{"<Period id='1'>", "<Period start='PT0S' duration='PT2S'/><Period id='1'>"},
                           {"</Period></MPD>", More("es") + "</MPD>"}})),
     {"representation-not-carried"}},
    {"in one of two without a time", Edits({{"</Period>", "</Period><Period>" + More("es")}}), {}},
    {"in both",
     Edits({{"</Period></MPD>", More("es") + "<Period>" + More("es") + "</MPD>"}}),
     {"representation-not-carried"}},
    {"not of this unicast",
     [](SBroadcast& b) {
         b.Edit("</Period>", More("es-$Number$.m4s"));
         Unicast(b, "fr-");
     },
     {"representation-not-carried"}},
    {"at a URL", [](SBroadcast& b) { b.Edit("</Period>", More("http://x/es-$Number$.m4s")); }, {}},
    {"among files of which no representation is said",
     [](SBroadcast& b) {
         b.Edit("</Period>", More("es-$Number$.m4s"));
         b.Edit("</RS>", "<LS tsi='30'><SrcFlow rt='true'/></LS></RS>");
         b.more = [](unsigned second, packets::CCapture& capture) {
             capture.AddSession(packets::Lct({second, 0, 1, false, 30}, "m"), 7001);
         };
     },
     {}},
    {"while the MPD is newer than the S-TSID",
     [](SBroadcast& b) {
         b.change = [](unsigned second, SBroadcast& now) {
             if (second == 9) {
                 now.Edit("</Period>", More("es-$Number$.m4s"));
                 now.stsid = now.usbd = "";
             }
         };
     },
     {}},
    {"a pattern of no file", Edits({{"<BasePattern>audio", "<BasePattern>sound"}}), {"base-pattern-unmatched"}},
    {"in a folder", Edits({{"<BasePattern>audio", "<BasePattern>http://x/y/audio-0"}}), {}},
    {"another language",
     Edits({{"contentType='audio' repId", "contentType='audio' lang='es' repId"}}),
     {"media-info-contradicts"}},
    {"a region of it", Edits({{"contentType='audio' repId", "contentType='audio' lang='EN-us' repId"}}), {}},
    {"three letters for two", Edits({{"contentType='audio' repId", "contentType='audio' lang='eng' repId"}}), {}},
    {"both codes of German",
     Edits({{"contentType='audio' repId", "contentType='audio' lang='ger' repId"}, {"lang='en'", "lang='deu'"}}),
     {}},
    {"another type", Edits({{"contentType='audio' repId", "contentType='video' repId"}}), {"media-info-contradicts"}},
    {"a type that says little",
     [](SBroadcast& b) {
         b.Edit("contentType='audio' repId", "contentType='subtitles' repId")
             .Edit("contentType='audio' lang", "contentType='application' lang");
     },
     {}},
    {"protected by the list alone", Edits({{"protected='false'", "protected='true'"}}), {"protection-missing"}},
    {"by the MPD alone",
     Edits({{"<Representation id='v'", "<ContentProtection schemeIdUri='s'/><Representation id='v'"}}),
     {"protection-unannounced"}},
    {"by both",
     Edits({{"protected='false'", "protected='true'"},
            {"<Representation id='v'", "<ContentProtection schemeIdUri='s'/><Representation id='v'"}}),
     {}},
    {"available in a minute",
     Edits({{"availabilityStartTime='2027-01-15T08:00", "availabilityStartTime='2027-01-15T08:01"}}),
     {"mpd-in-future"}},
    {"as clocks differ",
     Edits({{"availabilityStartTime='2027-01-15T08:00:00", "availabilityStartTime='2027-01-15T08:00:20"}}),
     {}},
    {"a static one",
     [](SBroadcast& b) {
         b.Edit("availabilityStartTime='2027-01-15T08:00", "availabilityStartTime='2027-01-15T08:01")
             .Edit("dynamic", "static");
     },
     {}},
    {"not updated", Edits({{"<MPD ", "<MPD minimumUpdatePeriod='PT2S' "}}), {"mpd-not-updated"}},
    {"updated once",
     [](SBroadcast& b) {
         b.Edit("<MPD ", "<MPD minimumUpdatePeriod='PT2S' ");
         Publish(b, 4, "2027-01-15T08:00:04Z");
     },
     {}},
    {"of a longer period", Edits({{"<MPD ", "<MPD minimumUpdatePeriod='PT3S' "}}), {}},
    {"publishTime goes back",
     [](SBroadcast& b) {
         Publish(b, 4, "2027-01-15T08:00:04Z");
         Publish(b, 6, "2027-01-15T08:00:03.9Z");
     },
     {"publish-time-back"}},
    {"goes on by little",
     [](SBroadcast& b) {
         Publish(b, 4, "2027-01-15T08:00:04Z");
         Publish(b, 6, "2027-01-15T08:00:04.1Z");
     },
     {}},
};

TEST(SignallingRules, EachHasItsBreachAndItsNearMiss)
{
    ExpectBroken(k_signalling);
}

TEST(SignallingRules, OfARawFileWhatItsDocumentsSayOfEachOther)
{
    const std::string stsid = SBroadcast().Edit("repId='a'", "repId='c'").stsid;
    const CTemporary file(SBroadcast().usbd + stsid + SBroadcast().mpd);
    TRules rules;
    for (const nlohmann::json& line : Lines(Inspect("--json " + file.Name()).out)) {
        if (line["type"] == "finding") {
            rules.push_back(line["rule"]);
        }
    }
    EXPECT_EQ(rules, TRules({"rep-id-unknown", "representation-not-carried"}));
}

}  // namespace
