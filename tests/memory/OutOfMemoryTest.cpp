// What happens when the n-th allocation fails, for every n, in every kind of entry: nothing is thrown, what
// fails says so, what was held before is held, and the object does it rightly at the next call.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <functional>
#include <set>
#include <sstream>
#include <string>

#include "entries/Entries.h"
#include "esg/GenreNameParse.h"
#include "lls/ParseAEAT.h"
#include "memory/FailingAllocator.h"
#include "mmt/desc/MMTUsbd.h"
#include "mmt/msg/MMTMsgAtsc3.h"
#include "platform/BaseParser.h"
#include "platform/Platform.h"
#include "route/SLS/ContentInfo.h"
#include "route/SLS/ContentRating.h"
#include "route/SLS/LS.h"
#include "route/SLS/MediaInfo.h"
#include "route/SLS/ROUTEUsbd.h"
#include "route/SLS/RS.h"
#include "route/SLS/STSID.h"
#include "route/SLS/SrcFlow.h"
#include "support/Show.h"

namespace {

int s_told = 0;    // lines that say so
int s_failed = 0;  // lines of what failed: libxml2 does not always tell why
std::string* s_dump = nullptr;

void Log(int /*priority*/, const char* /*tag*/, const char* format, va_list arguments)
{
    const memory::CPause pause;
    char line[1024];
    std::vsnprintf(line, sizeof line, format, arguments);
    s_told += std::string(line).find("out of memory: src/") != std::string::npos;
    s_failed += std::strstr(line, "_CHECK FAIL: src/") || std::strstr(line, "nodeDump does not exist");
    if (s_dump) {
        const std::string text = line;
        *s_dump += text.substr(std::min(text.size(), text.find(" > "))) + '\n';
    }
}

std::set<std::string> Lines(const std::string& text)
{
    std::set<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.insert(line);
    }
    return lines;
}

/// Whether all lines of the one stand in the other: what piles up is there, and what a failed parse left.
bool Holds(const std::string& text, const std::string& good)
{
    const std::set<std::string> all = Lines(text);
    const std::set<std::string> wanted = Lines(good);
    return std::includes(all.begin(), all.end(), wanted.begin(), wanted.end());
}

std::string Digest(const SEntry& entry)
{
    std::string dumped;
    s_dump = &dumped;
    const std::string digest = entry.digest();
    s_dump = nullptr;
    return digest.empty() ? dumped : digest;
}

/// Reads into a store that all threads share.
SEntryKind GenreKind()
{
    struct SNames : CGenreNameParse {
        SNames() { SGenreNameParse::refMap.clear(); }
        void Destroy()
        {
            CGenreNameParse::Destroy();
            SGenreNameParse::refMap.clear();
        }
    };
    return DocumentKind<SNames>("esg_documents/genre-scheme", 1,
                                [](const SNames&) { return std::to_string(SGenreNameParse::refMap.size()); });
}

TEntryKinds Kinds()
{
    TEntryKinds kinds = {GenreKind()};
    for (const auto& family : {LlsEntries(), RouteEntries(), MmtEntries(), GuideEntries(), StoreEntries()}) {
        kinds.insert(kinds.end(), family.begin(), family.end());
    }
    return kinds;
}

class OutOfMemoryTest : public testing::TestWithParam<SEntryKind> {
  protected:
    void SetUp() override
    {
        memory::Install();
        const SPlatform platform = {Log, nullptr};
        SetPlatform(&platform);
        SetLogPriority(LOG_PRIORITY_DEBUG);
        SetFileRoot("/nowhere");
    }
};

TEST_P(OutOfMemoryTest, TheNthAllocationFails)
{
    const auto& make = GetParam().make;
    std::string good;
    for (int i = 0; i < 2; ++i) {  // what is made once in a process is made in the first
        const SEntry whole = make();
        ASSERT_EQ(Each({whole.create(), whole.parse()}), "11");
        good = Digest(whole);
        memory::Arm(1, true);
        whole.destroy();
        EXPECT_EQ(memory::Disarm(), 0) << "Destroy allocates";
    }
    s_told = 0;
    long failed = 0;
    for (const bool all : {false, true}) {
        for (long n = 1;; ++n) {
            SCOPED_TRACE(testing::Message() << "allocation " << n << (all ? " and all behind it" : ""));
            const SEntry trial = make();
            bool created = false;
            bool parsed = false;
            const int told = s_told + s_failed;
            memory::Arm(n, all);
            try {
                created = trial.create();
                parsed = created && trial.parse();
            } catch (...) {
                memory::Disarm();
                FAIL() << "an exception came out";
            }
            const long hit = memory::Disarm();
            failed += hit > 0 && !parsed;
            if (hit == 0) {
                EXPECT_TRUE(parsed);
            } else if (parsed && !Holds(Digest(trial), good)) {
                EXPECT_GT(s_told + s_failed, told) << "lost without a word";
            }
            if (!created) {
                created = trial.create();
                ASSERT_TRUE(created) << "not to be created any more";
            }
            if (n % 4 != 0) {
                const bool whole = parsed && (hit == 0 || !trial.mayLose || Holds(Digest(trial), good));
                ASSERT_TRUE(whole || trial.parse()) << "not to be parsed any more";
                ASSERT_TRUE(Holds(Digest(trial), good)) << Digest(trial) << " is not " << good;
            }
            trial.destroy();
            if (hit == 0) {
                break;
            }
        }
    }
    EXPECT_GT(failed, 1);
    EXPECT_GT(s_told, 0);
}

INSTANTIATE_TEST_SUITE_P(Every, OutOfMemoryTest, testing::ValuesIn(Kinds()), NameOfKind);

/// A description that cannot be read for want of memory leaves an id that can.
template <class T>
void ReadIdAgain(const std::string& root)
{
    memory::Install();
    T usbd;
    ASSERT_TRUE(usbd.Create());
    XMLBase& base = usbd;
    const std::string begin = '<' + root + "><UserServiceDescription globalServiceI", end = "/></" + root + '>';
    const std::string first = begin + "D='the first of them'" + end, second = begin + "d='the second of them'" + end;
    for (long n = 1, hit = 1; hit > 0; ++n) {
        ASSERT_TRUE(base.Parse(first.data(), static_cast<unsigned int>(first.size()), false));
        memory::Arm(n, false);
        const bool parsed = base.Parse(second.data(), static_cast<unsigned int>(second.size()), false);
        hit = memory::Disarm();
        const std::string id = TextOf(usbd.GlobalServiceId());
        EXPECT_TRUE(id == "the second of them" || (!parsed && id == "the first of them")) << n << ": " << id;
    }
    usbd.Destroy();
}

TEST(OutOfMemoryAgainTest, IdsOfDescriptionsStayReadable)
{
    ReadIdAgain<CROUTEUsbd>("BundleDescriptionROUTE");
    ReadIdAgain<CMMTUsbd>("BundleDescriptionMMT");
}

/// Gives its output a text that must be allocated.
using TGetter = std::function<bool(std::string& out)>;

template <class T>
void ParsePlainly(T& parser, const std::string& text)
{
    XMLBase& base = parser;
    ASSERT_TRUE(base.Parse(text.data(), static_cast<unsigned int>(text.size()), false));
}

TEST(OutOfMemoryAgainTest, GettersLeaveTheirOutput)
{
    memory::Install();
    const std::string v = "longer than what a string holds in itself";
    CParseAEAT aeat;
    CMMTUsbd usbd;
    CSTSID stsid;
    ASSERT_TRUE(aeat.Create(nullptr) && usbd.Create() && stsid.Create());
    const std::string alert = "\x04\x01\x01\x01<AEAT><AEA aeaId='" + v + "' retAEAId='" + v + "' issuer='" + v +
                              "'><Header effective='" + v + "' expires='" + v + "'><EventCode type='" + v + "'>" + v +
                              "</EventCode></Header></AEA></AEAT>";
    ASSERT_TRUE(FeedItem(aeat, TBytes(alert.begin(), alert.end())) && aeat.AEACount() == 1);
    ParsePlainly(usbd, "<BundleDescriptionMMT><UserServiceDescription><ROUTEComponent sTSIDUri='" + v +
                           "'/><BroadbandComponent fullMPDUri='" + v +
                           "'/><ComponentInfo componentProtectedFlag='true'"
                           " componentId='" +
                           v + "' componentName='" + v +
                           "'/></UserServiceDescription>"
                           "</BundleDescriptionMMT>");
    ParsePlainly(stsid, "<S-TSID><RS><LS tsi='1'><SrcFlow><ContentInfo><AEAMedia AEAId='" + v +
                            "'/><MediaInfo repId='" + v + "'><ContentRating value='" + v +
                            "'/></MediaInfo></ContentInfo></SrcFlow></LS></RS></S-TSID>");
    const CSrcFlow& flow = *stsid.State()->routeSessions.Get(0)->State()->ls.Get(0)->State()->srcFlows.Get(0);
    const CContentInfo& content = *flow.State()->contentInfo;
    const CMediaInfo& media = *content.State()->mediaInfo;
    std::string other;
    const TGetter k_getters[] = {
        [&](std::string& out) { return aeat.GetAEAId(0, out, other); },
        [&](std::string& out) { return aeat.GetAEAId(0, other, out); },
        [&](std::string& out) { return aeat.GetAEAIssuer(0, out); },
        [&](std::string& out) { return aeat.GetAEATimeInfo(0, out, other); },
        [&](std::string& out) { return aeat.GetAEATimeInfo(0, other, out); },
        [&](std::string& out) { return aeat.GetAEAEventCode(0, out, other); },
        [&](std::string& out) { return aeat.GetAEAEventCode(0, other, out); },
        [&](std::string& out) { return usbd.GetsTSIDUri(out); },
        [&](std::string& out) { return usbd.GetFullMPDUri(out); },
        [&](std::string& out) { return usbd.GetComponentId(0, out); },
        [&](std::string& out) { return usbd.GetComponentName(0, out); },
        [&](std::string& out) { return stsid.GetContentRating(0, 0, 0, out); },
        [&](std::string& out) { return flow.GetContentId(out); },
        [&](std::string& out) { return content.GetContentId(out); },
        [&](std::string& out) { return media.GetRepId(out); },
        [&](std::string& out) { return media.GetContentRating(0, out); },
        [&](std::string& out) { return media.State()->contentRatings.Get(0)->GetContentRating(out); },
    };
    for (const TGetter& get : k_getters) {
        SCOPED_TRACE(testing::Message() << "getter " << &get - k_getters);
        std::string out = "kept";
        other = v;  // has room
        memory::Arm(1, false);
        const bool got = get(out);
        const long hit = memory::Disarm();
        EXPECT_EQ(Join(got, hit, out), "0|1|kept");
        EXPECT_TRUE(get(out));
        EXPECT_EQ(out, v);
    }
    for (const std::function<std::string()>& get : {std::function<std::string()>([&] { return stsid.GetAEAId(0, 0); }),
                                                    std::function<std::string()>([&] { return content.GetAEAId(); })}) {
        memory::Arm(1, false);
        const std::string id = get();
        EXPECT_EQ(Join(memory::Disarm(), id, get()), "1||" + v);
    }
    aeat.Destroy();
    usbd.Destroy();
    stsid.Destroy();
}

/// A message that had no memory for its state is one without content, and has its state when it is parsed.
TEST(OutOfMemoryAgainTest, AMessageWithoutState)
{
    memory::Install();
    memory::Arm(1, true);
    CMMTMsgAtsc3 message;
    EXPECT_GT(memory::Disarm(), 0);
    char* id = nullptr;
    unsigned short service = 7;
    const auto visit = [](void*, CMMTDesc*) {};
    const auto take = [](void*, unsigned char*, unsigned int) {};
    message.Dump();
    EXPECT_EQ(Join(message.ServiceId(), message.ContentType(), message.ContentVersion(), message.ContentCompression(),
                   message.Uri(), message.ContentLength(), message.UserServiceBundleDescription() != nullptr,
                   message.RSAT() != nullptr, message.SITable() != nullptr, message.GetDescriptors(visit, nullptr),
                   message.GetContent(take, nullptr), message.GetServiceInfo(&id, service), service),
              "0|0|0|0|-|0|0|0|0|0|0|0|7");
    const std::string bytes = Seed("mmt_message/atsc-usbd-gzip", 0);
    EXPECT_TRUE(FeedItem(message, TBytes(bytes.begin(), bytes.end())) && message.GetServiceInfo(&id, service) && id);
}

}  // namespace

/// Assertions are no failure here: what stands behind a failed creation is asserted.
void _TCParserAssert(const char* /*expression*/, const char* /*file*/, unsigned /*line*/) {}
