// Callbacks that do what they please: call the object that called them, take services and callbacks away, throw.
#include <functional>
#include <stdexcept>

#include "common/ChannelMap.h"
#include "lls/ParseRRT.h"
#include "lls/ParseSLT.h"
#include "lls/RRTMap.h"
#include "mmt/msg/MMTMsgPa.h"
#include "mmt/msg/MMTMsgSmm.h"
#include "route/SLS/EFDT.h"
#include "route/SLS/MPD.h"
#include "route/SLS/STSID.h"
#include "route/SLSManager.h"
#include "support/MmtBuilder.h"
#include "support/ParserTest.h"
#include "support/Seed.h"
#include "support/Show.h"
#include "support/Tables.h"

namespace {

using TAct = std::function<void()>;

/// A callback of any kind, whose user data is what is to be done.
template <class... T>
void Act(void* act, T... /*arguments*/)
{
    (*static_cast<TAct*>(act))();
}

/// One class that calls back: how its object is made, made to call back, and destroyed.
struct SCaller {
    const char* name;
    TAct create;
    std::function<bool()> parse;
    TAct destroy;
    const char* refused = "!m->parsing; !m->parsing";
};

const std::string k_slt =
    "<SLT bsid='1'><Service serviceId='7' protected='false' hidden='false' broadbandAccessRequired='false' "
    "majorChannelNo='5' minorChannelNo='1' serviceCategory='1' globalServiceID='g' shortServiceName='N'/>"
    "<Service serviceId='8' serviceCategory='1'/></SLT>";

class CallbackTest : public CRecorder {
  protected:
    TAct m_act = [] {};
    CChannelMap m_map;
};

/// In each callback of each class: a parse and Destroy of the same object are refused, and an exception leaves
/// an object that parses the next input and can be destroyed.
TEST_F(CallbackTest, TheObjectThatCallsIsSafe)
{
    ASSERT_TRUE(m_map.Create());
    CParseSLT slt;
    CParseRRT rrt;
    CSTSID stsid;
    CEFDT efdt;
    CMPD mpd;
    CSLSManager manager;
    CMMTMsgPa pa;
    const std::string rrtXml = Seed("lls_tables/rrt", 5), stsidXml = Seed("route_documents/stsid", 1),
                      efdtXml = Seed("route_documents/efdt", 1), mpdXml = Seed("mpd/template-timeline", 0),
                      package = Seed("sls_manager/every-kind", 1) + "\n", paBytes = Seed("mmt_message/pa", 0);
    const auto createSlt = [this, &slt](bool result, bool drop, bool map) {
        const CParseSLT::SCallback callback = {&m_act, Act};
        const CParseSLT::SDropCallback dropCallback = {&m_act, Act};
        const CChannelMap::SCallback mapCallback = {&m_act, Act};
        slt.Create(&m_map, result ? &callback : nullptr);
        slt.SetLenient(true);
        slt.SetDropCallback(drop ? &dropCallback : nullptr);
        m_map.SetCallback(map ? &mapCallback : nullptr);
    };
    const auto parseSlt = [&slt] { return FeedXml(slt, k_slt); };
    const auto destroySlt = [&slt] { slt.Destroy(); };
    std::vector<SCaller> callers = {
        {"SLT, result", [&] { createSlt(true, false, false); }, parseSlt, destroySlt},
        {"SLT, drop", [&] { createSlt(false, true, false); }, parseSlt, destroySlt},
        {"SLT, channel map", [&] { createSlt(false, false, true); }, parseSlt, destroySlt},
        {"SLT, services",
         [&] {
             createSlt(false, false, false);
             parseSlt();
         },
         [&] { return slt.GetService(Act, &m_act) && parseSlt(); }, destroySlt},
        {"PA message", [] {},
         [&] {
             const bool parsed = SFed(pa, paBytes).result;
             pa.GetDescriptors(Act, &m_act);
             return parsed;
         },
         [] {}, "!m_visiting"},
        {"table of a PA message", [] {},
         [&] {
             const bool parsed = SFed(pa, paBytes).result;
             for (int i = 0; i < pa.TableCount() && pa.Table(i); ++i) {
                 pa.Table(i)->GetDescriptors(Act, &m_act);
             }
             return parsed;
         },
         [] {}, "!m_visiting"},
    };
    const auto add = [&](const char* name, auto& parser, const auto& callback, const std::function<bool()>& parse) {
        const auto create = [&parser, callback] {
            parser.Create();
            parser.SetCallback(&callback);
        };
        callers.push_back({name, create, parse, [&parser] { parser.Destroy(); }});
    };
    const auto parseMpd = [&] { return ParseXml(mpd, mpdXml) && mpd.GetMPDInfo(); };
    add("RRT", rrt, CParseRRT::SCallback{&m_act, Act}, [&] { return FeedXml(rrt, rrtXml); });
    add("S-TSID", stsid, CLS::SCallback{&m_act, Act}, [&] { return ParseXml(stsid, stsidXml); });
    add("EFDT", efdt, SEFDTInfoCallback{&m_act, Act}, [&] { return ParseXml(efdt, efdtXml); });
    add("MPD", mpd, CMPD::SCallback{&m_act, Act, nullptr}, parseMpd);
    add("MPD, ratings", mpd, CMPD::SCallback{&m_act, nullptr, Act}, parseMpd);
    using TManaged = CSLSManager::SCallback;
    const struct {
        const char* name;
        void (*set)(TManaged& callback);
        const std::string& text;
    } k_managed[] = {
        {"package, session", [](TManaged& c) { c.cbLctSession = Act; }, stsidXml},
        {"package, EFDT", [](TManaged& c) { c.cbEFDTInfo = Act; }, stsidXml},
        {"package, USBD", [](TManaged& c) { c.cbUSBDInfo = Act; }, package},
        {"package, EFDT of its own", [](TManaged& c) { c.cbDirectEFDTInfo = Act; }, package},
        {"package, MPD", [](TManaged& c) { c.cbMPDInfo = Act; }, package},
        {"package, ratings", [](TManaged& c) { c.cbRatingInfo = Act; }, package},
        {"package, text of an MPD", [](TManaged& c) { c.cbMPDData = Act; }, package},
        {"package, application data", [](TManaged& c) { c.cbAppData = Act; }, package},
        {"package, RSAT", [](TManaged& c) { c.cbRSAT = Act; }, package},
    };
    for (const auto& managed : k_managed) {
        const auto create = [&manager, &managed, this] {
            TManaged callback{};
            callback.pUserData = &m_act;
            managed.set(callback);
            manager.Create(&callback);
        };
        const auto parse = [&manager, &managed] {
            const CSLSManager::SSessionInfo session{};
            manager.Parse(reinterpret_cast<const unsigned char*>(managed.text.data()),
                          static_cast<unsigned int>(managed.text.size()), &session, false);
            return true;
        };
        callers.push_back({managed.name, create, parse, [&manager] { manager.Destroy(); }});
    }
    for (const SCaller& caller : callers) {
        SCOPED_TRACE(caller.name);
        int calls = 0;
        m_act = [] {};
        caller.create();
        m_act = [&] {
            if (++calls == 1) {
                caller.parse();
                caller.destroy();
            }
        };
        EXPECT_TRUE(caller.parse());
        EXPECT_GE(calls, 1);
        EXPECT_EQ(TakeAssertions(), caller.refused);
        m_act = [] { throw std::runtime_error("of the caller"); };
        EXPECT_THROW(caller.parse(), std::runtime_error);
        m_act = [&] { ++calls; };
        calls = 0;
        EXPECT_TRUE(caller.parse());
        EXPECT_GE(calls, 1);
        caller.destroy();
    }
    m_map.SetCallback(nullptr);
    m_map.Destroy();
}

TEST_F(CallbackTest, AServiceMayBeRemovedByWhoIsToldOfIt)
{
    ASSERT_TRUE(m_map.Create());
    const CChannelMap::SCallback callback = {
        &m_map, [](void* map, void* service) { EXPECT_TRUE(static_cast<CChannelMap*>(map)->RemoveService(service)); }};
    EXPECT_TRUE(m_map.SetCallback(&callback));
    CParseSLT slt;
    ASSERT_TRUE(slt.Create(&m_map, nullptr));
    slt.SetLenient(true);
    EXPECT_TRUE(FeedXml(slt, k_slt));
    void* service = this;
    EXPECT_TRUE(slt.GetService(0, service));
    EXPECT_EQ(service, nullptr);
    // A service that is gone is asserted, in whatever it is used.
    m_map.SetCallback(nullptr);
    service = m_map.AddService(nullptr, 1, 2, 3, 4, 5, 6, 7, false, nullptr);
    std::string text;
    EXPECT_TRUE(m_map.RemoveService(service));
    EXPECT_EQ(
        Each({m_map.SetServiceName(service, "n", 1), m_map.GetSvcInetUrl(service, text), m_map.RemoveService(service),
              m_map.DeleteClonedService(service), m_map.CloneService(service) != nullptr}),
        "00000");
    EXPECT_EQ(TakeAssertions(), "obj; obj; obj; obj");
    slt.Destroy();
    m_map.Destroy();
}

TEST_F(CallbackTest, TheMapSurvivesWhatItsCallbacksDo)
{
    ASSERT_TRUE(m_map.Create());
    static CChannelMap* s_map;
    static int s_calls;
    s_map = &m_map;
    s_calls = 0;
    const auto add = [this](int id) { return m_map.AddService(nullptr, 1, id, 3, 4, 5, 6, 7, false, nullptr); };
    // One that registers itself anew is told once, whether it then lies before or behind what it was; the last
    // handle cannot be destroyed.
    static const CChannelMap::SCallback s_again = {nullptr, [](void*, void*) {
                                                       ++s_calls;
                                                       s_map->SetCallback(&s_again);
                                                       s_map->Destroy();
                                                   }};
    EXPECT_TRUE(m_map.SetCallback(&s_again));
    for (int round = 1; round < 9; ++round) {
        EXPECT_NE(add(1), nullptr);
        EXPECT_EQ(s_calls, round);
        EXPECT_EQ(TakeAssertions(), "!m->visited");
    }
    // Another handle can, with what it registered.
    CChannelMap other;
    ASSERT_TRUE(other.Create());
    static CChannelMap* s_other;
    s_other = &other;
    const CChannelMap::SCallback leave = {nullptr, [](void*, void*) { s_other->Destroy(); }};
    m_map.SetCallback(nullptr);
    EXPECT_TRUE(other.SetCallback(&leave));
    EXPECT_NE(add(2), nullptr);
    EXPECT_NE(add(2), nullptr);
    // A walk goes on over what is removed and added, and past an exception.
    for (int id = 3; id < 40; ++id) {
        add(id);
    }
    EXPECT_TRUE(m_map.GetServiceList(
        [](void*, void* service) {
            s_map->RemoveService(service);
            s_map->Destroy();
        },
        nullptr));
    EXPECT_EQ(TakeAssertions().size(), std::string("!m->visited; ").size() * 39 - 2);
    add(1);
    EXPECT_THROW(m_map.GetServiceList([](void*, void*) { throw std::runtime_error("x"); }, nullptr),
                 std::runtime_error);
    m_map.Destroy();
    EXPECT_EQ(m_map.AddService(nullptr, 1, 2, 3, 4, 5, 6, 7, false, nullptr), nullptr);
    EXPECT_EQ(TakeAssertions(), "m");
}

TEST_F(CallbackTest, OtherCallbacksMayTakeAwayWhatTheyAreGiven)
{
    CRRTMap ratings;
    ASSERT_TRUE(ratings.Create());
    char text[] = "text";
    EXPECT_EQ(Each({ratings.Add(1, 2), ratings.SetDimension(1, 3, true), ratings.SetRatingVal(1, 4),
                    ratings.SetRatingValAbbrev(1, text, text), ratings.SetRatingValStr(1, text, text)}),
              "11111");
    EXPECT_TRUE(ratings.GetProgramRating(
        1, 3, text, text, [](void* map, char*) { EXPECT_TRUE(static_cast<CRRTMap*>(map)->Remove(1)); }, &ratings));
    ratings.Destroy();

    const std::string bytes = Seed("mmt_message/signed-mpt", 0);
    struct SHost {
        CMMTMsgSmm message;
        const std::string* bytes;
        int calls = 0;
    } host;
    host.bytes = &bytes;
    EXPECT_TRUE(SFed(host.message, bytes).result);
    EXPECT_TRUE(host.message.GetDescriptors(
        [](void* user, CMMTDesc*) {
            SHost& h = *static_cast<SHost*>(user);
            h.calls += SFed(h.message, *h.bytes).result;
        },
        &host));
    EXPECT_GT(host.calls, 0);
}

/// What the log is told of may be asked and changed from there: nothing is locked around it.
TEST_F(CallbackTest, TheLogMayCallBack)
{
    static CChannelMap* s_map;
    static CRRTMap* s_ratings;
    static bool s_inside;
    CRRTMap ratings;
    s_map = &m_map;
    s_ratings = &ratings;
    s_inside = true;
    const SPlatform platform = {[](int, const char*, const char*, va_list) {
                                    if (!s_inside) {
                                        s_inside = true;
                                        s_map->AddService(nullptr, 1, 99, 3, 4, 5, 6, 7, false, nullptr);
                                        s_map->GetServiceList([](void*, void*) {}, nullptr);
                                        s_ratings->Add(1, 2);
                                        s_inside = false;
                                    }
                                },
                                nullptr};
    SetPlatform(&platform);
    ASSERT_EQ(Each({m_map.Create(), ratings.Create()}), "11");
    s_inside = false;
    CParseSLT slt;
    ASSERT_TRUE(slt.Create(&m_map, nullptr));
    slt.SetLenient(true);
    EXPECT_TRUE(FeedXml(slt, k_slt));
    EXPECT_FALSE(ratings.SetRegionIdText(1, nullptr, nullptr));
    slt.Destroy();
    EXPECT_EQ(TakeAssertions(), "first && second");
    s_inside = true;
    ratings.Destroy();
    m_map.Destroy();
}

}  // namespace
