#include "follow/GuideFollower.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "GuideObjects.h"
#include "content/LibraryPort.h"
#include "support/Gzip.h"

namespace {

using namespace vyr::inspect;
using guide::Fragment;
using packets::Number;

SView Bytes(const std::string& text)
{
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

/// Keeps what is new of each object, the guides ("NEWS: Late, Talk") and the faults.
class CRecordingWriter : public IReportWriter {
  public:
    void Table(const STable&) override {}
    void Signalling(const SSignalling&) override {}
    void GuideObject(const SGuideObject& object) override { lines.emplace_back(StatusName(object.status)); }
    void Guide(const SGuide& guide) override
    {
        std::string line = "guide";
        for (const SGuideService& service : guide.services) {
            line += ' ' + service.fragmentId + ':';
            for (const SProgramme& programme : service.programmes) {
                line += (programme.titles.empty() ? "-" : programme.titles[0].text) + ',';
            }
        }
        lines.push_back(line);
    }
    void Finding(const SFinding& finding) override { lines.push_back(RuleName(finding.rule)); }
    void Message(const SMessage&) override {}
    void Summary(const SSummary&) override {}

    std::vector<std::string> lines;
};

using TLines = std::vector<std::string>;

class GuideFollower : public testing::Test {
  protected:
    void SetUp() override { InstallPlatform(LOG_PRIORITY_SILENT, {}); }
    TLines m_Take(unsigned toi, const std::string& object, const std::string& file = {}, const std::string& type = {})
    {
        m_writer.lines.clear();
        m_follower.Take(SGuidePlace{"1.2.3.4:5", 20, {0, toi}, file, type, {}}, Bytes(object), {});
        return m_writer.lines;
    }
    TLines m_Finish()
    {
        m_writer.lines.clear();
        m_follower.Finish("file");
        return m_writer.lines;
    }

    CRecordingWriter m_writer;
    CReport m_report{m_writer, false};
    CGuideFollower m_follower{m_report, {3, 2000, 3000}};
};

std::string Content(const std::string& id, int version, const std::string& name)
{
    return Fragment("Content", id, version, guide::Text("Name", "en", name));
}

TEST_F(GuideFollower, NewerVersionsReplaceOlderOnes)
{
    EXPECT_EQ(m_Take(1, Content("a", 2, "Two")), TLines({"new"}));
    EXPECT_EQ(m_Take(2, Content("a", 1, "One")), TLines({"new"})) << "an older one changes nothing";
    EXPECT_EQ(m_Take(1, Content("a", 2, "Two")), TLines({"guide :Two,"})) << "comes again: shown once";
    EXPECT_EQ(m_Take(1, Content("a", 2, "Two")), TLines());
    EXPECT_EQ(m_Take(3, Content("a", 3, "Three")), TLines({"new"}));
    EXPECT_EQ(m_Take(4, Content("a", 3, "Four")), TLines({"new", "changed-without-version"}));
    EXPECT_EQ(m_Finish(), TLines({"guide :Four,"}));
    EXPECT_EQ(m_Finish(), TLines()) << "it stands as it was shown";
}

TEST_F(GuideFollower, FilesAreKnownByTheirPlaceAndTheirToi)
{
    EXPECT_EQ(m_Take(1, Content("a", 1, "A"), "f"), TLines({"new"}));
    EXPECT_EQ(m_Take(2, Content("a", 1, "A"), "f"), TLines({"new-version-same-content"}));
    EXPECT_EQ(m_Take(3, Content("a", 2, "B"), "f"), TLines({"changed"}));
    EXPECT_EQ(m_Take(3, Content("a", 3, "C"), "f"), TLines({"changed-without-version", "changed-without-version"}));
    const std::string gzip = Gzip(Content("a", 3, "C"));
    EXPECT_EQ(m_Take(3, gzip, "f"), TLines({"guide :C,"})) << "gzip makes no other object";
    EXPECT_EQ(m_Take(3, gzip, "f"), TLines());
    EXPECT_EQ(m_Take(0, gzip, "f"), TLines({"new-version-same-content"})) << "of the last one, not that of TOI 2";
    EXPECT_EQ(m_Take(0, Content("a", 4, "D"), "other").size(), 2u);
    EXPECT_EQ(m_Take(8, Content("a", 4, "D"), "f"), TLines({"new"})) << "the latest of its name is no more";
    EXPECT_EQ(m_Take(9, Content("a", 4, "D"), "other"), TLines({"new-version-same-content"}));
    EXPECT_EQ(m_Take(6, "content-Type: a/b\r\nETag: 1\r\n\r\n" + Gzip(Content("b", 1, "B"))), TLines({"new"}));
    EXPECT_EQ(m_Take(7, "Content-Type: a/b\r\n" + Content("b", 1, "B")), TLines()) << "no empty line";
    EXPECT_EQ(m_Take(4, "png", "i.png", "image/png"), TLines());
    EXPECT_EQ(m_Take(4, "png", "i.png", "image/png"), TLines());
    EXPECT_EQ(m_Take(5, "\x1F\x8B\x08?", "g", "application/vnd.oma.bcast.sgdu"), TLines({"guide-not-parsed"}));
    EXPECT_EQ(m_Take(5, "\x1F\x8B\x08?", "g", "application/vnd.oma.bcast.sgdu"), TLines());
}

TEST_F(GuideFollower, HoldsABoundedGuide)
{
    for (const char* id : {"a", "b", "c"}) {
        EXPECT_EQ(m_Take(static_cast<unsigned>(*id), Content(id, 1, id)), TLines({"new"}));
    }
    m_Take('a', Content("a", 2, "newer"));
    EXPECT_EQ(m_Take('d', Content("d", 1, "d")), TLines({"new", "guide-too-large"})) << "b is the oldest now";
    EXPECT_EQ(m_Take('e', Content("e", 1, "e")), TLines({"new"})) << "told once";
    EXPECT_EQ(m_Finish(), TLines({"guide :newer,d,e,"}));
    EXPECT_EQ(m_Take('f', Content("f", 1, std::string(1500, 'x'))), TLines({"new"}));
    EXPECT_EQ(m_Take('g', Content("g", 1, std::string(1500, 'x'))), TLines({"new"}));
    EXPECT_EQ(m_Take('h', Content("h", 1, "h")), TLines({"new"}));
    std::string many = guide::Reference("Service", "s");
    for (int i = 0; i < 60; ++i) {
        many += "<ContentReference idRef='h'/>";
    }
    m_Take('t', Fragment("Schedule", "t", 1, many));
    EXPECT_EQ(m_Finish().at(1), "guide-too-large") << "a short schedule makes a long list";
    EXPECT_LT(m_report.Summary().guide.programmes, 60u);
    EXPECT_EQ(m_Take('i', Content("i", 1, std::string(2001, 'x'))), TLines({"new"}));
    EXPECT_FALSE(m_follower.Holds()) << "one that is too large alone pushes all out";
}

TEST_F(GuideFollower, ServicesOfTheListAreJoinedWheneverTheyCome)
{
    SListedService listed;
    listed.serviceId = 7;
    listed.globalServiceId = "urn:x:2";
    m_follower.Announce({}, {listed});
    EXPECT_EQ(m_Take(1, guide::k_service2), TLines({"new"}));
    EXPECT_EQ(m_Finish(), TLines({"guide s2:"}));
    m_follower.Announce({}, {listed});
    EXPECT_EQ(m_Finish(), TLines());
    listed.majorChannelNo = 9;
    m_follower.Announce({}, {listed});
    EXPECT_EQ(m_Finish(), TLines({"guide s2:"}));
}

TEST(GuideReader, KnowsObjectsByTheirContent)
{
    const auto unit = [](unsigned count, unsigned offset, const std::string& rest) {
        return Number(0, 6) + Number(count, 3) + Number(0, 12) + (count > 1 ? Number(0, 8) + Number(offset, 4) : "") +
               rest;
    };
    const std::string one("\0\x03", 2);
    const struct {
        std::string bytes;
        int kind;
    } cases[] = {
        {unit(1, 0, one), 0},
        {unit(1, 0, std::string("\0\x09", 2)), 0},
        {unit(1, 0, std::string("\0\x0A", 2)), -1},
        {unit(1, 0, std::string("\0\0", 2)), -1},
        {unit(1, 0, "\x03?"), 0},
        {unit(1, 0, "\x04?"), -1},
        {unit(1, 0, one.substr(1)), -1},
        {unit(0, 0, one), -1},
        {unit(2, 3, one + "<" + one), 0},
        {unit(2, 2, one + "<" + one), -1},
        {unit(2, 5, one + "<" + one), 0},
        {unit(2, 6, one + "<" + one), -1},
        {unit(2, 3, one + "<"), -1},
        {Number(0, 6) + Number(0xFFFFFF, 3) + Number(0, 20), -1},
        {std::string("\0\0\1", 3) + Number(20, 4) + Number(1, 1) + Number(0, 20), -1},
        {"<ServiceGuideDeliveryDescriptor/>", 1},
        {"\xEF\xBB\xBF <?xml?><!-- <a> --><!DOCTYPE x>\n<b:SGResponse>", 2},
        {"<Service>", 3},
        {"<Content", 3},
        {"<x:Schedule\n", 3},
        {"<Services>", -1},
        {"<SLT><Service/></SLT>", -1},
        {"<!-- <Service>", -1},
        {"Service", -1},
        {"<", -1},
        {"", -1},
    };
    for (const auto& test : cases) {
        const auto kind = GuideKind(Bytes(test.bytes));
        EXPECT_EQ(kind ? static_cast<int>(*kind) : -1, test.kind) << testing::PrintToString(test.bytes);
    }
}

TEST(GuideReader, TellsOfUnitsThatCannotBeReadToTheEnd)
{
    const std::string a = Content("a", 1, "A");
    const std::string unit = guide::Unit({{2, a}, {2, a}, {2, a}});
    const std::size_t second = 9 + 3 * 12 + 2 + a.size();
    std::string lies = unit;
    lies.replace(9 + 2 * 12 + 8, 4, 4, '\0');
    std::string encoded = unit;
    encoded[second] = 3;
    std::string table = unit;
    table[8] = 100;
    const struct {
        std::string bytes;
        std::size_t fragments;
        TLines faults;
    } cases[] = {
        {unit, 3, {}},
        {lies, 1, {"fragment 2 of 3 has no place in the unit: it and those behind it are lost"}},
        {encoded,
         1,
         {"fragment 2 is of encoding 3, not XML: what stands behind it is not found",
          "fragment 3 is of encoding 2, not XML: what stands behind it is not found"}},
        {unit.substr(0, second + 1), 1, {"fragment 2 of 3 has no place in the unit: it and those behind it are lost"}},
        {unit.substr(0, unit.size() - 1), 2, {"fragment 3 (Content) did not parse: "}},
        {table, 0, {"its table of fragments does not fit"}},
    };
    for (const auto& test : cases) {
        for (const std::string& sent : {test.bytes, Gzip(test.bytes)}) {
            const SGuideRead read = ReadGuideObject(EGuideObject::DELIVERY_UNIT, Bytes(sent), Bytes(test.bytes));
            EXPECT_EQ(read.fragments.size(), test.fragments) << testing::PrintToString(test.faults);
            ASSERT_EQ(read.faults.size(), test.faults.size()) << testing::PrintToString(read.faults);
            for (std::size_t i = 0; i < test.faults.size(); ++i) {
                EXPECT_EQ(read.faults[i].rfind(test.faults[i], 0), 0u) << read.faults[i];
            }
        }
    }
}

}  // namespace
