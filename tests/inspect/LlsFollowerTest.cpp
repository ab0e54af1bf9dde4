#include "follow/LlsFollower.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Packets.h"
#include "common/ChannelMap.h"
#include "support/Gzip.h"

namespace {

using namespace vyr::inspect;
using packets::Number;

class CRecordingWriter : public IReportWriter {
  public:
    void Table(const STable& table) override { statuses.push_back(table.status); }
    void Signalling(const SSignalling&) override {}
    void Message(const SMessage&) override {}
    void Finding(const SFinding& finding) override { findings.push_back(finding.rule); }
    void GuideObject(const SGuideObject&) override {}
    void Guide(const SGuide&) override {}
    void Summary(const SSummary&) override {}

    std::vector<EStatus> statuses;
    std::vector<ERule> findings;
};

class LlsFollower : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(m_channelMap.Create()); }
    void TearDown() override { m_channelMap.Destroy(); }

    void m_Take(CLlsFollower& follower, const std::string& table)
    {
        follower.Take({reinterpret_cast<const unsigned char*>(table.data()), table.size()}, {});
    }
    /// A list of the services from `first` on.
    void m_TakeSlt(CLlsFollower& follower, unsigned group, unsigned version, int first, int count)
    {
        std::string xml = "<SLT>";
        for (int id = first; id < first + count; ++id) {
            xml += "<Service serviceId=\"" + std::to_string(id) + "\"/>";
        }
        m_Take(follower, Number(1, 1) + Number(group, 1) + Number(0, 1) + Number(version, 1) + xml + "</SLT>");
    }
    std::vector<int> m_InMap()
    {
        m_ids.clear();
        m_channelMap.GetServiceList(
            [](void* self, void* service) {
                auto* test = static_cast<LlsFollower*>(self);
                int id = 0;
                test->m_channelMap.GetServiceNumber(service, nullptr, &id, nullptr, nullptr, nullptr, nullptr, nullptr);
                test->m_ids.push_back(id);
            },
            this);
        return m_ids;
    }

    CRecordingWriter m_writer;
    CReport m_report{m_writer, false};
    CChannelMap m_channelMap;
    std::vector<int> m_ids;
};

TEST_F(LlsFollower, TheChannelMapHoldsTheCurrentLists)
{
    using TIds = std::vector<int>;
    CLlsFollower other("other", true, m_channelMap, m_report);
    m_TakeSlt(other, 0, 1, 1, 1);
    {
        CLlsFollower follower("stream", true, m_channelMap, m_report);
        m_TakeSlt(follower, 0, 1, 1, 2);
        m_TakeSlt(follower, 4, 1, 9, 1);
        EXPECT_EQ(m_InMap(), TIds({1, 1, 2, 9}));
        m_TakeSlt(follower, 0, 2, 2, 2);
        EXPECT_EQ(m_InMap(), TIds({1, 9, 2, 3}));
        m_Take(follower, std::string("\x01\x00\x00\x03<SLT>", 9));
        EXPECT_EQ(m_InMap(), TIds({1, 9, 2, 3})) << "a list holds until the next one that parses";
        EXPECT_EQ(follower.Services(), 3u);
    }
    EXPECT_EQ(m_InMap(), TIds({1}));
}

TEST_F(LlsFollower, HoldsABoundedNumberOfServices)
{
    CLlsFollower follower("stream", true, m_channelMap, m_report);
    m_TakeSlt(follower, 0, 1, 0, 8192);
    m_TakeSlt(follower, 1, 1, 0, 8192);
    EXPECT_EQ(follower.Services(), 16384u);
    EXPECT_EQ(m_writer.findings, std::vector<ERule>());
    m_TakeSlt(follower, 2, 1, 0, 1);
    EXPECT_EQ(follower.Services(), 8193u);
    EXPECT_EQ(m_writer.findings, std::vector<ERule>({ERule::TOO_MANY_SERVICES}));
    m_TakeSlt(follower, 2, 2, 0, 17000);
    EXPECT_EQ(follower.Services(), 17000u) << "a single list is held whole";
    EXPECT_EQ(m_InMap().size(), 17000u);
}

TEST_F(LlsFollower, HowATableIsCompressedIsNoContent)
{
    CLlsFollower follower("stream", true, m_channelMap, m_report);
    const std::string list = "<SLT bsid='1'/>";
    for (const std::string& payload : {list, Gzip(list), Gzip(list + ' '), list + ' ', list}) {
        m_Take(follower, std::string("\x01\x00\x00\x01", 4) + payload);
    }
    EXPECT_EQ(m_writer.statuses,
              std::vector<EStatus>({EStatus::NEW, EStatus::REPEATED, EStatus::CHANGED_WITHOUT_VERSION,
                                    EStatus::REPEATED, EStatus::CHANGED_WITHOUT_VERSION}));
}

TEST_F(LlsFollower, TheTimeStampOfGzipIsNoContent)
{
    CLlsFollower follower("stream", true, m_channelMap, m_report);
    const std::string header("\x02\x00\x00\x01\x1F\x8B\x08\x00", 8);
    for (const char* rest : {"1111ab", "2222ab", "2222bb", "222"}) {
        m_Take(follower, header + rest);
    }
    EXPECT_EQ(m_writer.statuses,
              std::vector<EStatus>({EStatus::NEW, EStatus::REPEATED, EStatus::CHANGED_WITHOUT_VERSION,
                                    EStatus::CHANGED_WITHOUT_VERSION}));
}

}  // namespace
