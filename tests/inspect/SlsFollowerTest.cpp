#include "follow/SlsFollower.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "content/LibraryPort.h"
#include "support/Gzip.h"
#include "support/Show.h"

namespace {

using namespace vyr::inspect;

/// Keeps what is new of each object, and of its documents: "S-TSID changed", "MPD new refused".
class CRecordingWriter : public IReportWriter {
  public:
    void Table(const STable&) override {}
    void Signalling(const SSignalling& signalling) override
    {
        std::string line = StatusName(signalling.status);
        for (const SSlsDocument& document : signalling.documents) {
            line += std::string("; ") + DocumentName(document.kind) + ' ' + DocumentStatusName(document.status) +
                    (document.parsed ? "" : " refused");
        }
        lines.push_back(line);
    }
    void Message(const SMessage&) override {}
    void Finding(const SFinding& finding) override
    {
        lines.push_back(std::string(SeverityName(finding.severity)) + ": " + RuleName(finding.rule));
    }
    void GuideObject(const SGuideObject&) override {}
    void Guide(const SGuide&) override {}
    void Summary(const SSummary&) override {}

    std::vector<std::string> lines;
};

using TLines = std::vector<std::string>;

class SlsFollower : public testing::Test {
  protected:
    void SetUp() override { InstallPlatform(LOG_PRIORITY_SILENT, {}); }
    TLines m_Take(unsigned toi, const std::string& object)
    {
        m_writer.lines.clear();
        m_follower.Take(TToi(0, toi), {reinterpret_cast<const unsigned char*>(object.data()), object.size()}, {});
        return m_writer.lines;
    }

    CRecordingWriter m_writer;
    CReport m_report{m_writer, false};
    const SFollowed m_followed{{}, "1.2.3.4:5", {}, {}};
    CSlsFollower m_follower{m_followed, m_report};
};

const std::string k_stsid = "<S-TSID></S-TSID>\n";
const std::string k_mpd = "<MPD></MPD>\n";

TEST_F(SlsFollower, WhatIsNewOfEachObject)
{
    EXPECT_EQ(m_Take(1, Gzip(k_stsid)), TLines({"new; S-TSID new"}));
    EXPECT_EQ(m_Take(1, k_stsid), TLines()) << "compressed or not, it is the same";
    EXPECT_EQ(m_Take(2, k_mpd), TLines({"new; MPD new"})) << "documents may come in objects of their own";
    EXPECT_EQ(m_Take(1, k_stsid), TLines());
    EXPECT_EQ(m_Take(3, k_stsid + k_mpd), TLines({"new-version-same-content; S-TSID unchanged; MPD unchanged"}));
    EXPECT_EQ(m_Take(4, k_stsid + "<MPD ></MPD>\n"), TLines({"changed; S-TSID unchanged; MPD changed"}));
    EXPECT_EQ(m_Take(4, k_mpd), TLines({"changed-without-version; MPD changed", "error: changed-without-version"}));
    EXPECT_EQ(m_report.Summary().signalling.byStatus[static_cast<std::size_t>(EStatus::REPEATED)], 2u);
}

TEST_F(SlsFollower, AnObjectThatComesAgainCountsAgainstWhatHolds)
{
    const auto usbd = [](int service, const char* more) {
        return "<BundleDescriptionROUTE><UserServiceDescription serviceId=\"" + std::to_string(service) + "\"" + more +
               "/></BundleDescriptionROUTE>\n";
    };
    const std::string first = k_stsid + k_mpd;
    const std::string second = k_stsid + "<MPD ></MPD>\n";
    const TLines changed = {"changed; S-TSID unchanged; MPD changed"};
    m_Take(1, first);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(m_Take(2, second), changed);
        EXPECT_EQ(m_Take(2, Gzip(second)), TLines());
        EXPECT_EQ(m_Take(1, first), changed) << "the service has gone back";
        EXPECT_EQ(m_Take(1, first), TLines());
    }
    // Documents that do not replace each other take turns in quiet.
    m_Take(3, usbd(1, ""));
    m_Take(4, usbd(2, "") + second);
    m_Take(5, "no document");
    for (const auto& [toi, object] : {std::pair(1u, first), {3u, usbd(1, "")}, {4u, usbd(2, "") + second}}) {
        EXPECT_EQ(m_Take(toi, object), TLines()) << toi;
    }
    EXPECT_EQ(m_Take(5, "no document"), TLines()) << "told of once";
    EXPECT_EQ(m_Take(6, usbd(2, " other=\"1\"")), TLines({"changed; BundleDescriptionROUTE changed"}));
    EXPECT_EQ(m_Take(3, usbd(1, "")), TLines());
    EXPECT_EQ(m_Take(4, usbd(2, "") + second),
              TLines({"changed; BundleDescriptionROUTE changed; S-TSID unchanged; MPD unchanged"}));
}

TEST_F(SlsFollower, NothingOfAnEarlierPackageIsShownAgain)
{
    m_Take(1, k_stsid + k_mpd);
    EXPECT_EQ(m_Take(2, k_mpd + "<S-TSID>"),
              TLines({"changed; S-TSID changed refused; MPD unchanged", "error: document-not-parsed"}));
    EXPECT_EQ(m_Take(3, "<MPD></a></MPD>\n"), TLines({"changed; MPD changed refused", "error: document-not-parsed"}));
    EXPECT_EQ(m_Take(4, "<MPD></a></MPD>\n "), TLines({"new-version-same-content; MPD unchanged refused"}))
        << "a broken document is told of once";
    // The library takes documents of up to 131,071 bytes, the byte behind the end tag included.
    const std::string end = "</S-TSID>\n";
    const std::string longest = "<S-TSID>" + std::string(131071 - 8 - end.size(), ' ') + end;
    EXPECT_EQ(m_Take(5, longest), TLines({"changed; S-TSID changed"}));
    EXPECT_EQ(m_Take(6, " " + longest.substr(0, 8) + ' ' + longest.substr(8)),
              TLines({"changed; S-TSID changed refused", "error: document-not-parsed"}));
}

TEST_F(SlsFollower, PartsThatAreNotRead)
{
    const auto package = [](const std::string& location, const std::string& more) {
        return "Content-Type: multipart/related; boundary=x\n\n--x\n\n<metadataEnvelope><item metadataURI='a'/>"
               "</metadataEnvelope>\n--x\nContent-Location: " +
               location + "\n\n<DWD/>\n" + more + "--x--\n";
    };
    const std::string mpd = "--x\nContent-Location: a\n\n" + k_mpd;
    EXPECT_EQ(m_Take(1, package("a", "")), TLines({"new", "note: object-passed-over"}));
    EXPECT_EQ(m_Take(1, package("a", "")), TLines());
    EXPECT_EQ(m_Take(2, package("a", mpd)), TLines({"changed; MPD new"}));
    EXPECT_EQ(m_Take(3, package("a ", mpd)), TLines({"new-version-same-content; MPD unchanged"}));
    EXPECT_EQ(m_Take(4, package("b", "--x\n\n#EXTM3U\n" + mpd)),
              TLines({"changed; MPD unchanged", "note: part-without-item"}))
        << "a playlist is new";
    EXPECT_EQ(m_Take(5, package("b", "--x\n\n#EXTM3V\n" + mpd)), TLines({"changed; MPD unchanged"})) << "told of once";
    EXPECT_EQ(m_Take(6, package("b", "")),
              TLines({"changed", "note: object-passed-over", "note: item-without-part", "note: part-without-item"}));
    EXPECT_EQ(m_follower.LastFinding(), "object 1 of TSI 0 holds no document that is read");
    EXPECT_EQ(m_Take(7, "<DWD/>"), TLines({"note: object-passed-over"}));
    EXPECT_EQ(m_Take(8, "<DWDs/>"), TLines({"error: object-not-read"}));
    EXPECT_EQ(m_Take(9, "<SLT/>"), TLines({"error: object-not-read"})) << "which does not belong here";
}

TEST_F(SlsFollower, RemembersABoundedNumberOfObjects)
{
    for (unsigned toi = 0; toi < 64; ++toi) {
        m_Take(toi, k_mpd);
    }
    EXPECT_TRUE(m_follower.Has({0, 0}, k_mpd.size()));
    EXPECT_FALSE(m_follower.Has({0, 0}, k_mpd.size() + 1));
    m_Take(0, k_mpd);
    m_Take(64, k_mpd);
    EXPECT_FALSE(m_follower.Has({0, 1}, {})) << "the one that came longest ago";
    EXPECT_EQ(Join(m_follower.Has({0, 0}, {}), m_follower.Has({0, 2}, {}), m_follower.Has({0, 64}, {})), "1|1|1");
}

TEST_F(SlsFollower, InflatesUpTo8MiB)
{
    EXPECT_EQ(m_Take(1, Gzip(k_mpd + std::string(8388608 - k_mpd.size(), ' '))), TLines({"new; MPD new"}));
    EXPECT_EQ(m_Take(2, Gzip(k_mpd + std::string(8388609 - k_mpd.size(), ' '))), TLines({"error: object-not-read"}));
    const std::string whole = Gzip(k_stsid);
    for (std::size_t size = 2; size < whole.size(); ++size) {
        m_Take(3, whole.substr(0, size));
        EXPECT_EQ(m_report.Summary().findings[ERule::OBJECT_NOT_READ], size);
    }
    EXPECT_EQ(m_Take(3, whole), TLines({"changed-without-version; S-TSID new", "error: changed-without-version"}));
    EXPECT_EQ(m_Take(4, Gzip("")), TLines({"error: object-not-read"}));
}

}  // namespace
