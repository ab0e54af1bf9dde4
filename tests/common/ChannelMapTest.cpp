#include "common/ChannelMap.h"

#include <malloc.h>

#include <functional>

#include "support/ParserTest.h"
#include "support/Services.h"
#include "support/Show.h"

namespace {

/// The nine values that AddService tells services apart by.
struct SNine {
    void* channel = nullptr;
    unsigned char group = 1;
    int numbers[6] = {2, 3, 4, 5, 6, 7};
    bool broadband = false;
};

void* Add(CChannelMap& map, const SNine& nine, bool* existed = nullptr)
{
    const int* n = nine.numbers;
    return map.AddService(nine.channel, nine.group, n[0], n[1], n[2], n[3], n[4], n[5], nine.broadband, existed);
}

using ChannelMapTest = TParserTest<CChannelMap>;

std::size_t Count(CChannelMap& map)
{
    return ServicesOf(map).size();
}

TEST_F(ChannelMapTest, ServicesAreToldApartByAllNineValues)
{
    std::vector<SNine> all(10);
    all[1].channel = this;
    all[2].group = 9;
    for (std::size_t i = 0; i < 6; ++i) {
        all[3 + i].numbers[i] = 99;
    }
    all[9].broadband = true;
    std::vector<void*> services;
    bool existed = true;
    for (const SNine& nine : all) {
        services.push_back(Add(m_parser, nine, &existed));
        EXPECT_FALSE(existed);
    }
    EXPECT_EQ(Count(m_parser), 10u);
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(Add(m_parser, all[i], &existed), services[i]);
        EXPECT_TRUE(existed);
    }
    EXPECT_EQ(Count(m_parser), 10u);
    EXPECT_EQ(m_parser.Channel(services[1]), this);
    EXPECT_TRUE(m_parser.GetServiceNumber(services[2], nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(ShowService(m_parser, services[2]).substr(0, 16), "9|[2 3 4 5 6 7]|");

    EXPECT_TRUE(m_parser.RemoveService(services[4]));
    EXPECT_FALSE(m_parser.RemoveService(services[4]));
    EXPECT_FALSE(m_parser.RemoveService(this));
    EXPECT_EQ(Count(m_parser), 9u);
    EXPECT_NE(Add(m_parser, all[4], &existed), nullptr);
    EXPECT_FALSE(existed);
}

TEST_F(ChannelMapTest, TheCategorySetterChangesWhatIsMatched)
{
    SNine nine;
    void* first = Add(m_parser, nine);
    EXPECT_TRUE(m_parser.SetServiceCategory(first, 3, true, true));
    bool existed = true;
    void* second = Add(m_parser, nine, &existed);
    EXPECT_FALSE(existed);
    EXPECT_TRUE(m_parser.SetServiceCategory(second, 1, true, false));
    nine.broadband = true;
    EXPECT_EQ(Add(m_parser, nine), first);  // of two that match, the older
    EXPECT_TRUE(m_parser.RemoveService(second));
    EXPECT_EQ(Add(m_parser, nine), first);
    EXPECT_TRUE(m_parser.RemoveService(first));
    EXPECT_NE(Add(m_parser, nine, &existed), nullptr);
    EXPECT_FALSE(existed);
}

TEST_F(ChannelMapTest, WhatAWalkRemovesLeavesNothing)
{
    SetLogPriority(LOG_PRIORITY_SILENT);  // the recorder keeps every line
    const auto held = [] { return mallinfo2().uordblks + mallinfo2().hblkhd; };
    std::size_t before = 0;
    for (int cycle = 0; cycle < 1000; ++cycle) {
        before = cycle == 100 ? held() : before;
        for (int i = 0; i < 100; ++i) {
            m_parser.AddService(nullptr, 1, i, 3, 4, 5, 6, 7, false, nullptr);
        }
        m_parser.GetServiceList(
            [](void* map, void* service) { static_cast<CChannelMap*>(map)->RemoveService(service); }, &m_parser);
    }
    EXPECT_LT(held(), before + 100000);
    EXPECT_EQ(Count(m_parser), 0);
}

TEST_F(ChannelMapTest, FieldsAndTheirDefaults)
{
    void* service = Add(m_parser, SNine());
    EXPECT_EQ(ShowService(m_parser, service), "1|[2 3 4 5 6 7]|4294967295|65535|4294967295|0|0|-1|0|0||||0|");
    EXPECT_TRUE(m_parser.SetDestination(service, 0xE000173C, 4937));
    EXPECT_EQ(Logged("address: 224.0.23.60, port: 4937"), 1);
    EXPECT_EQ(Each({m_parser.SetSource(service, 7), m_parser.SetProtected(service, true),
                    m_parser.SetDrmSystemID(service, "drm"), m_parser.SetSvcInetUrl(service, "http://u"),
                    m_parser.SetProtocolType(service, ATSC3_PROTOCOL_MMTP),
                    m_parser.SetSvcInetUrlType(service, ATSC3_URL_ESG_SERVER),
                    m_parser.SetServiceCategory(service, 4, true, true)}),
              "1111111");
    // A copy keeps all of it after the service is gone.
    void* clone = m_parser.CloneService(service);
    EXPECT_TRUE(m_parser.RemoveService(service));
    EXPECT_EQ(Count(m_parser), 0u);
    EXPECT_EQ(ShowService(m_parser, clone), "1|[2 3 4 5 6 7]|3758102332|4937|7|2|1|4|1|1|||http://u|2|drm");
    EXPECT_FALSE(m_parser.RemoveService(clone));
    EXPECT_TRUE(m_parser.DeleteClonedService(clone));
}

TEST_F(ChannelMapTest, TextLimits)
{
    void* service = Add(m_parser, SNine());
    const std::string big(1000001, 'x');
    EXPECT_FALSE(m_parser.SetGlobalServiceId(service, big.data(), 1000000));
    EXPECT_EQ(Logged("[CChannelMapST::SetGlobalServiceId] string size is too big size[1000000]"), 1);
    EXPECT_TRUE(m_parser.SetGlobalServiceId(service, big.data(), 999999));
    std::string text;
    EXPECT_TRUE(m_parser.GetGlobalServiceId(service, text));
    EXPECT_EQ(text.size(), 999999u);

    static const struct {
        int stored;
        unsigned short room, length;
    } k_cases[] = {{10, 4, 4}, {10, 10, 10}, {10, 11, 10}, {0, 5, 0}, {0, 0, 0}, {65540, 10, 4}, {65540, 4, 4}};
    for (const auto& c : k_cases) {
        SCOPED_TRACE(testing::Message() << c.stored << " bytes into " << c.room);
        EXPECT_TRUE(m_parser.SetServiceName(service, big.data(), c.stored));
        std::vector<unsigned char> buffer(c.room + 1u, '#');
        unsigned short length = c.room;
        EXPECT_TRUE(m_parser.GetServiceName(service, buffer.data(), length));
        EXPECT_EQ(length, c.length);
        EXPECT_EQ(std::string(buffer.begin(), buffer.end()),
                  std::string(length, 'x') + std::string(c.room + 1u - length, '#'));
    }
    EXPECT_EQ(Logged("!! ERROR service name is too long length = ["), 4);

    EXPECT_TRUE(m_parser.SetServiceName(service, big.data(), 1000000));
    void* clone = m_parser.CloneService(service);
    EXPECT_NE(clone, nullptr);
    EXPECT_TRUE(m_parser.DeleteClonedService(clone));
    EXPECT_TRUE(m_parser.SetServiceName(service, big.data(), 1000001));
    EXPECT_EQ(m_parser.CloneService(service), nullptr);
}

TEST_F(ChannelMapTest, NotificationsComeOutsideTheLock)
{
    struct SHost {
        CChannelMap* map;
        std::vector<void*> told;
    } host{&m_parser, {}};
    const CChannelMap::SCallback callback = {&host, [](void* user, void* service) {
                                                 SHost* h = static_cast<SHost*>(user);
                                                 h->told.push_back(service);
                                                 if (h->told.size() == 1) {
                                                     SNine other;
                                                     other.group = 77;
                                                     Add(*h->map, other);  // would deadlock under the lock
                                                 } else if (h->told.size() == 2) {
                                                     h->map->SetCallback(nullptr);
                                                 }
                                             }};
    CChannelMap second;
    ASSERT_TRUE(second.Create());
    EXPECT_TRUE(m_parser.SetCallback(&callback));
    EXPECT_TRUE(m_parser.SetCallback(&callback));  // replaces, does not add
    void* service = Add(m_parser, SNine());
    ASSERT_EQ(host.told.size(), 2u);
    EXPECT_EQ(host.told[0], service);
    EXPECT_FALSE(m_parser.SetCallback(nullptr));
    Add(m_parser, SNine());
    EXPECT_EQ(host.told.size(), 2u);

    // One record through two handles is told twice, of a repeat too; a destroyed handle is told no more.
    EXPECT_TRUE(m_parser.SetCallback(&callback));
    EXPECT_TRUE(second.SetCallback(&callback));
    Add(m_parser, SNine());
    EXPECT_EQ(host.told.size(), 4u);
    second.Destroy();
    Add(m_parser, SNine());
    EXPECT_EQ(host.told.size(), 5u);
}

/// Nobody is told by a record without a function; a service that its callback removes is not handed out, even if the
/// next one comes to its place in memory.
TEST_F(ChannelMapTest, CallbacksThatTellNobodyOrRemoveTheService)
{
    const CChannelMap::SCallback nobody = {this, nullptr};
    EXPECT_TRUE(m_parser.SetCallback(&nobody));
    void* const kept = Add(m_parser, SNine());
    EXPECT_NE(kept, nullptr);
    struct SHost {
        CChannelMap* map;
        void* other = nullptr;
    } host{&m_parser};
    const CChannelMap::SCallback callback = {&host, [](void* user, void* service) {
                                                 SHost* h = static_cast<SHost*>(user);
                                                 h->map->SetCallback(nullptr);
                                                 EXPECT_TRUE(h->map->RemoveService(service));
                                                 SNine other;
                                                 other.group = 88;
                                                 h->other = Add(*h->map, other);
                                             }};
    EXPECT_TRUE(m_parser.SetCallback(&callback));
    SNine nine;
    nine.group = 77;
    EXPECT_EQ(Add(m_parser, nine), nullptr);
    EXPECT_EQ(ServicesOf(m_parser), (std::vector<void*>{kept, host.other}));
}

TEST_F(ChannelMapTest, TheLastHandleFreesTheStore)
{
    CChannelMap second;
    ASSERT_TRUE(second.Create());
    void* service = Add(second, SNine());
    m_parser.Destroy();
    EXPECT_EQ(Count(second), 1u);
    EXPECT_EQ(Logged("m->refCnt[1]"), 2);
    second.Destroy();
    EXPECT_EQ(Logged("m->refCnt[0]"), 1);
    EXPECT_EQ(Add(m_parser, SNine()), nullptr);
    EXPECT_EQ(Each({m_parser.RemoveService(service), m_parser.SetCallback(nullptr)}), "00");
    m_parser.Destroy();
    EXPECT_EQ(s_assertions.back().file, "src/common/ChannelMap");
    EXPECT_EQ(TakeAssertions(), "m; m; m; m");
    ASSERT_TRUE(m_parser.Create());
    EXPECT_EQ(Count(m_parser), 0u);
    EXPECT_FALSE(m_parser.Create());
    EXPECT_EQ(TakeAssertions(), "!m");
    std::string text;
    EXPECT_EQ(Each({m_parser.GetDrmSystemID(nullptr, text), m_parser.RemoveService(nullptr),
                    m_parser.SetProtected(nullptr, true)}),
              "000");
    EXPECT_FALSE(m_parser.SetSvcInetUrl(nullptr, "u"));
    EXPECT_EQ(s_assertions.back().file, "src/common/ChannelMapST");
    EXPECT_EQ(TakeAssertions(), "obj; obj; obj");
}

TEST_F(ChannelMapTest, NoServiceAndNothingToGive)
{
    const auto call = [](auto member, auto... values) {
        return [=](CChannelMap& map, void* service) { return (map.*member)(service, values...); };
    };
    const struct {
        const char* log;  // empty for those that do not log
        std::function<bool(CChannelMap&, void*)> call;
    } k_calls[] = {
        {"SetDestination", call(&CChannelMap::SetDestination, 1u, std::uint16_t{2})},
        {"SetSource", call(&CChannelMap::SetSource, 1u)},
        {"SetProtected", call(&CChannelMap::SetProtected, true)},
        {"SetSvcInetUrlType", call(&CChannelMap::SetSvcInetUrlType, ATSC3_URL_NONE)},
        {"SetServiceCategory", call(&CChannelMap::SetServiceCategory, 1, true, true)},
        {"SetProtocolType", call(&CChannelMap::SetProtocolType, ATSC3_PROTOCOL_MMTP)},
        {"SetDrmSystemID", call(&CChannelMap::SetDrmSystemID, "d")},
        {"", call(&CChannelMap::GetDestination, nullptr, nullptr)},
        {"", call(&CChannelMap::GetSource, nullptr)},
        {"", call(&CChannelMap::GetProtected, nullptr)},
        {"", call(&CChannelMap::GetSvcInetUrlType, nullptr)},
        {"", call(&CChannelMap::GetServiceCategory, nullptr, nullptr, nullptr)},
        {"", call(&CChannelMap::GetProtocolType, nullptr)},
        {"", [](CChannelMap& map, void* service) { return map.DeleteClonedService(map.CloneService(service)); }},
    };
    CChannelMap none;
    void* const service = Add(m_parser, SNine());
    for (const auto& c : k_calls) {
        const std::string log = std::string("[CChannelMapST::") + c.log + "] service: ";
        EXPECT_TRUE(c.call(m_parser, service)) << &c - k_calls;
        EXPECT_EQ(Logged(log), *c.log ? 1 : 0) << log;
        s_log.clear();
        EXPECT_FALSE(c.call(m_parser, nullptr)) << &c - k_calls;
        EXPECT_EQ(Logged(log), 0) << log;
        EXPECT_FALSE(c.call(m_parser, this)) << &c - k_calls;
        EXPECT_FALSE(c.call(none, service)) << &c - k_calls;
        EXPECT_EQ(TakeAssertions(), &c == std::end(k_calls) - 1 ? "obj; obj; obj; obj; m; m" : "obj; obj; m");
    }
    unsigned short length = 3;
    unsigned char name[3];
    EXPECT_EQ(Each({m_parser.SetSvcInetUrl(service, nullptr), m_parser.SetGlobalServiceId(service, nullptr, 0),
                    m_parser.SetGlobalServiceId(service, "i", -1), m_parser.SetGlobalServiceId(nullptr, "i", 1),
                    m_parser.SetServiceName(service, nullptr, 0), m_parser.SetServiceName(service, "n", -1),
                    m_parser.SetServiceName(nullptr, "n", 1), m_parser.GetServiceName(service, nullptr, length),
                    m_parser.GetServiceName(nullptr, name, length), m_parser.GetServiceList(nullptr, nullptr)}),
              "0000000000");
    EXPECT_EQ(TakeAssertions(), "url; id; id; obj; name; name; obj; buffer; obj; fn");
}

/// The order stays, a walk survives removals and additions on its way, and a place that is free again is not
/// taken for the service that had it.
TEST_F(ChannelMapTest, RemovalsKeepTheOrder)
{
    std::vector<void*> services;
    SNine nine;
    const auto add = [&](int id) {
        nine.numbers[0] = id;
        services.push_back(Add(m_parser, nine));
    };
    for (int id = 0; id < 10; ++id) {
        add(id);
    }
    struct SWalk {
        CChannelMap& map;
        std::vector<void*>& services;
        std::string ids;
    } walk = {m_parser, services, ""};
    const auto visit = [](void* user, void* service) {
        auto* w = static_cast<SWalk*>(user);
        int id = 0;
        w->map.GetServiceNumber(service, nullptr, &id, nullptr, nullptr, nullptr, nullptr, nullptr);
        w->ids += std::to_string(id) + " ";
        if (id == 1) {  // its neighbours and itself, and more than half of all
            for (const std::size_t gone : {0u, 1u, 2u, 5u, 6u, 7u, 8u}) {
                EXPECT_TRUE(w->map.RemoveService(w->services[gone]));
            }
            EXPECT_FALSE(w->map.RemoveService(w->services[2]));
        }
    };
    m_parser.GetServiceList(visit, &walk);
    EXPECT_EQ(walk.ids, "0 1 3 4 9 ");
    EXPECT_TRUE(m_parser.RemoveService(services[9]));
    add(10);
    walk.ids.clear();
    m_parser.GetServiceList(visit, &walk);
    EXPECT_EQ(walk.ids, "3 4 10 ");
    EXPECT_EQ(Each({m_parser.RemoveService(services[3]), m_parser.RemoveService(services[4]),
                    m_parser.RemoveService(services[10]), Count(m_parser) == 0}),
              "1111");
    add(11);
    EXPECT_EQ(Count(m_parser), 1u);
    EXPECT_TRUE(m_parser.RemoveService(services[11]));
}

}  // namespace
