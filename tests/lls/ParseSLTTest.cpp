#include "lls/ParseSLT.h"

#include "support/Services.h"
#include "support/Show.h"
#include "support/Tables.h"

namespace {

typedef SParseSLT::SService SService;

const char k_flags[] = " protected='false' hidden='false' broadbandAccessRequired='false' ";

class ParseSLTTest : public CRecorder {
  protected:
    void SetUp() override
    {
        CRecorder::SetUp();
        ASSERT_TRUE(m_map.Create());
        SetUpParser(false);
    }

    void SetUpParser(bool lenient)
    {
        const CParseSLT::SCallback callback = {&m_results,
                                               [](void* user, int result) { *static_cast<int*>(user) += result; }};
        ASSERT_TRUE(m_slt.Create(&m_map, &callback));
        const CParseSLT::SDropCallback drop = {
            &m_drops, [](void* user, const SService* service, CParseSLT::EDropReason why) {
                *static_cast<std::string*>(user) +=
                    std::to_string(service->serviceId) + ":" + std::to_string(why) + " ";
            }};
        m_slt.SetDropCallback(&drop);
        ASSERT_EQ(Each({m_slt.Start(this), m_slt.Stop()}), "11");
        m_slt.SetLenient(lenient);
    }

    void TearDown() override
    {
        m_slt.Destroy();
        m_map.Destroy();
        CRecorder::TearDown();
    }

    bool ParseTable(const std::string& table) { return Feed(m_slt, table); }

    /// A table of a version of its own; each parses, good or bad.
    void Parse(const std::string& xml)
    {
        EXPECT_TRUE(ParseTable(std::string("\1\0\0", 3) + static_cast<char>(++m_version) + xml));
    }

    /// A table of a group, of services with these ids and of as many URLs.
    void ParseIds(unsigned char group, const std::vector<int>& ids)
    {
        std::string xml = "<SLT>";
        for (const int id : ids) {
            xml += "<sltInetUrl>u</sltInetUrl><Service serviceId='" + std::to_string(id) + "'" + k_flags + "/>";
        }
        m_slt.AddLLSGroupId(group);
        EXPECT_TRUE(ParseTable(std::string("\1") + static_cast<char>(group) + '\0' + static_cast<char>(++m_version) +
                               xml + "</SLT>"));
    }

    /// Ids of the services in the map.
    std::string MapIds()
    {
        std::string ids;
        for (void* service : ServicesOf(m_map)) {
            int id = 0;
            m_map.GetServiceNumber(service, nullptr, &id, nullptr, nullptr, nullptr, nullptr, nullptr);
            ids += std::to_string(id) + " ";
        }
        return ids;
    }

    /// A table of one service of category 4 with these attributes besides the three flags.
    void ParseService(const std::string& attributes)
    {
        Parse("<SLT><Service " + std::string(k_flags) + attributes + "/></SLT>");
    }

    std::string Ids() const
    {
        std::string ids;
        for (int i = 0; i < m_slt.ServiceCount(); ++i) {
            ids += std::to_string(m_slt.GetServiceInfo(i)->serviceId) + " ";
        }
        return ids;
    }

    CChannelMap m_map;
    CParseSLT m_slt;
    int m_results = 0;
    std::string m_drops;
    int m_version = 0;
};

TEST_F(ParseSLTTest, EveryFieldReachesTheRecordAndTheMap)
{
    m_slt.AddLLSGroupId(9);
    m_slt.AddLLSGroupId(5);
    s_settings["db/menu/broadcasting/atsc3_bb_option"] = 1;
    Parse(
        "<s:SLT xmlns:s='u' bsid='801' sltCapabilities='cap'><sltInetUrl urlType='2'>http://a</sltInetUrl>"
        "<SLTInetUrl>http://b</SLTInetUrl><sltInetUrl urlType='1'/>"
        "<s:Service serviceId='70000' globalServiceId='low' globalServiceID='tag:x' sltSvcSeqNum='3' "
        "protected='trueish' "
        "majorChannelNo='999' minorChannelNo='1' serviceCategory='3' shortServiceName='A&amp;B' hidden='true' "
        "broadbandAccessRequired='true' svcCapabilities='sc' drmSystemID='urn:drm' hideInGuide='0' configuration='c'>"
        "<SimulcastTSID SimulcastTSID='11' simulcastMajorChannelNo='12' simulcastMinorChannelNo='13'/>"
        "<BroadcastSvcSignaling slsProtocol='2' slsMajorProtocolVersion='1' slsMinorProtocolVersion='4' "
        "slsDestinationIpAddress='224.0.23.60' slsDestinationUdpPort='4937' slsSourceIpAddress='10.1.2.3'/>"
        "<SvcInetUrl urlType='4'> </SvcInetUrl><svcInetUrl></svcInetUrl></s:Service></s:SLT>");
    EXPECT_EQ(m_results, 1);
    EXPECT_EQ(m_slt.Bsid(), 801);
    std::string text;
    EXPECT_EQ(Join(m_slt.GetSltCapability(text), text), "1|cap");
    ASSERT_EQ(m_slt.SltInetUrlCount(), 2);
    EATSC3UrlType type = ATSC3_URL_NONE;
    EXPECT_EQ(Join(m_slt.GetSltInetUrl(0, text, type), text, type), Join(1, "http://a", ATSC3_URL_ESG_SERVER));
    EXPECT_EQ(Join(m_slt.GetSltInetUrl(1, text, type), text, type), "1|http://b|-1");
    EXPECT_EQ(Join(m_slt.GetSltInetUrl(2, text, type), m_slt.GetSltInetUrl(-1, text, type)), "0|0");
    EXPECT_EQ(Logged("[CParseSLT::sm_CbSltInetUrl] sltInetUrl value is not exist !!!"), 1);
    EXPECT_EQ(Logged("[CParseSLT::sm_CbSvcInetUrl] svcInetUrl value is not exist !!!"), 1);
    EXPECT_EQ(Logged("[CParseSLT::sm_CbSvcInetUrl] svcUrl[ ], svcUrlType[4]"), 1);
    EXPECT_EQ(Logged("[CParseSLT::m_ProcessParseSLT] Name["), 4);

    ASSERT_EQ(m_slt.ServiceCount(), 1);
    const SService& s = *m_slt.GetServiceInfo(0);
    EXPECT_EQ(Join(s.groupId, s.serviceId, *s.globalServiceId, s.sltSvcSeqNum, s.isProtected, s.hidden,
                   s.broadbandAccessRequired, *s.shortServiceName, *s.svcCapabilities, s.hasBroadcastSvcSignaling,
                   s.slsMajorProtocolVersion, s.slsMinorProtocolVersion),
              "5|4464|tag:x|3|1|1|1|A&B|sc|1|1|4");
    EXPECT_EQ(Join(s.given, s.givenProtected, *s.givenHidden, *s.givenBroadband, *s.hideInGuide, *s.configuration),
              "511|-|1|1|0|c");
    void* service = nullptr;
    ASSERT_TRUE(m_slt.GetService(0, service));
    EXPECT_EQ(service, s.service);
    EXPECT_FALSE(m_slt.GetService(1, service));
    EXPECT_EQ(service, s.service);
    struct SSeen {
        void* service;
        int index;
    } seen{nullptr, -1};
    EXPECT_TRUE(m_slt.GetService(
        [](void* user, void* entry, int i) {
            *static_cast<SSeen*>(user) = {entry, i};
        },
        &seen));
    EXPECT_EQ(seen.service, service);
    EXPECT_EQ(seen.index, 0);

    EXPECT_EQ(m_map.Channel(service), this);
    EXPECT_EQ(ShowService(m_map, service),
              "5|[4464 999 1 11 12 13]|3758102332|4937|167838211|2|1|3|1|1|A&B|tag:x| |4|urn:drm");
    EXPECT_EQ(m_slt.GetLLSGroupIDs(), (std::set<unsigned char>{5, 9}));
    EXPECT_EQ(m_slt.LowestMinorChannelNo(), 1000);  // hidden

    // A second table: the group keeps its first bsid, the list its services.
    Parse("<SLT SLTCapabilities='two' bsid='802'/>");
    EXPECT_EQ(Join(m_slt.GetSltCapability(text), text), "1|two");
    EXPECT_EQ(m_slt.Bsid(), 802);
    EXPECT_EQ(m_slt.GetBsidByLLSGroupID(), (std::map<unsigned char, int>{{5, 801}}));
    EXPECT_EQ(m_slt.ServiceCount(), 1);
}

TEST_F(ParseSLTTest, DefaultsOfAbsentAttributes)
{
    ParseService("globalServiceId='low'");
    const SService& s = *m_slt.GetServiceInfo(0);
    EXPECT_EQ(*s.globalServiceId, "low");
    EXPECT_EQ(Join(s.serviceId, s.sltSvcSeqNum, s.majorChannelNo, s.minorChannelNo, s.simulcastTsid, s.serviceCategory,
                   s.shortServiceName, s.svcCapabilities, s.drmSystemID.empty(), s.hasBroadcastSvcSignaling,
                   s.svcInetUrl.present, s.groupId),
              "0|0|0|0|0|0|-|-|1|0|0|0");
    EXPECT_EQ(Join(s.given, *s.givenProtected, s.hideInGuide, s.configuration), "0|0|-|-");
    ParseService("serviceId='1' majorChannelNo='0' serviceCategory='0'");  // given, and equal to the default
    EXPECT_EQ(m_slt.GetServiceInfo(1)->given, unsigned{SService::GIVEN_MAJOR_CHANNEL | SService::GIVEN_CATEGORY});
    // Without signalling the map keeps its own defaults; with an empty one it gets zeros.
    unsigned int address = 0;
    unsigned short port = 0;
    EXPECT_EQ(Join(m_map.GetDestination(s.service, &address, &port), address, port), "1|4294967295|65535");
    Parse("<SLT><Service serviceId='2'" + std::string(k_flags) + "><BroadcastSvcSignaling/></Service></SLT>");
    void* service = nullptr;
    EXPECT_TRUE(m_slt.GetService(2, service));
    EXPECT_EQ(Join(m_map.GetDestination(service, &address, &port), address, port), "1|0|0");
    EXPECT_EQ(m_slt.Bsid(), 0);
}

TEST_F(ParseSLTTest, ServicesAreDroppedForEachReason)
{
    static const struct {
        const char* attributes;
        const char* drop;  // strict
        const char* assertion;
        const char* log;
        const char* lenient;
    } k_cases[] = {
        {"hidden='false' broadbandAccessRequired='false'", "1:0 ", "protected1 != nullptr", "", ""},
        {"protected='false' broadbandAccessRequired='false'", "1:1 ", "hidden1 != nullptr", "", ""},
        {"protected='false' hidden='false'", "1:2 ", "broadbandAccessRequired1 != nullptr", "", ""},
        {"protected='TRUE' hidden='' broadbandAccessRequired='1'", "", "", "", ""},
        {"F serviceCategory='1' majorChannelNo='1000' minorChannelNo='1'", "1:3 ", "",
         "mojor channel number ERROR major[1000]", "1:3 "},
        {"F serviceCategory='2' majorChannelNo='0' minorChannelNo='0'", "1:3 ", "",
         "mojor channel number ERROR major[0]", "1:3 "},
        {"F serviceCategory='3' majorChannelNo='999' minorChannelNo='1000'", "1:4 ", "",
         "minor channel number ERROR minor[1000]", "1:4 "},
        {"F serviceCategory='1' majorChannelNo='1'", "1:4 ", "", "minor channel number ERROR minor[0]", "1:4 "},
        {"F serviceCategory='1' majorChannelNo='999' minorChannelNo='999'", "", "", "", ""},
        {"F serviceCategory='4' majorChannelNo='1000' minorChannelNo='-1'", "", "", "", ""},
        {"B serviceCategory='2' majorChannelNo='1' minorChannelNo='1'", "1:5 ", "",
         "Broadband service is NOT supported !!!", "1:5 "},
        {"B serviceCategory='5'", "", "", "", ""},
    };
    for (const bool lenient : {false, true}) {
        for (const auto& c : k_cases) {
            SCOPED_TRACE(testing::Message() << (lenient ? "lenient " : "strict ") << c.attributes);
            std::string attributes = c.attributes;
            if (attributes[0] == 'F' || attributes[0] == 'B') {
                attributes = "protected='false' hidden='false' broadbandAccessRequired='" +
                             std::string(attributes[0] == 'F' ? "false" : "true") + "'" + attributes.substr(1);
            }
            m_drops.clear();
            s_log.clear();
            m_slt.Destroy();
            SetUpParser(lenient);
            Parse("<SLT><Service serviceId='1' " + attributes + "/><Service serviceId='2'" + k_flags + "/></SLT>");
            EXPECT_EQ(m_drops, lenient ? c.lenient : c.drop);
            EXPECT_EQ(TakeAssertions(), lenient ? "" : c.assertion);
            EXPECT_EQ(Ids(), m_drops.empty() ? "1 2 " : "2 ");  // the rest of the table goes on
            EXPECT_EQ(Logged("[CParseSLT::sm_CbService] " + std::string(c.log)), *c.log ? 1 : 0);
        }
    }
    s_settings["db/menu/broadcasting/atsc3_bb_option"] = 0;
    m_drops.clear();
    const std::string service =
        "<SLT><Service protected='false' hidden='false' broadbandAccessRequired='true' serviceId='3' "
        "serviceCategory='1' majorChannelNo='1' minorChannelNo='1'/></SLT>";
    Parse(service);
    EXPECT_EQ(m_drops, "3:5 ");
    s_settings["db/menu/broadcasting/atsc3_bb_option"] = -1;
    Parse(service);
    EXPECT_EQ(m_drops, "3:5 ");
}

TEST_F(ParseSLTTest, EqualServices)
{
    const auto copies = [](int n) {
        std::string text = "<SLT>";
        for (int i = 0; i < n; ++i) {
            text += "<Service serviceId='7' shortServiceName='" + std::to_string(i) + "'" + k_flags + "/>";
        }
        return text + "</SLT>";
    };
    Parse(copies(1));
    Parse(copies(1));  // the second table's service equals the one held
    EXPECT_EQ(Ids(), "7 ");
    EXPECT_EQ(*m_slt.GetServiceInfo(0)->shortServiceName, "0");
    EXPECT_EQ(m_drops, "7:6 ");
    // Three: the pairs list 1, 2, 2, which remove the elements at 1, 1 and 0.
    Parse(copies(2));
    EXPECT_EQ(Ids(), "");
    // Four: two more removals point below zero, and the array refuses them.
    Parse(copies(4));
    EXPECT_EQ(Ids(), "");
    EXPECT_EQ(TakeAssertions(), "0 <= index && index < m_size; 0 <= index && index < m_size");
    EXPECT_EQ(ServicesOf(m_map).size(), 1u);  // what the map has stays

    // Others before and after: 8 7 7 7 9 lists 2, 3, 3: at 2 a 7 goes, at 2 the next, at 1 the first.
    const std::string three = copies(3);
    const auto other = [](const char* id) { return "<Service serviceId='" + std::string(id) + "'" + k_flags + "/>"; };
    Parse("<SLT>" + other("8") + three.substr(5, three.size() - 11) + other("9") + "</SLT>");
    EXPECT_EQ(Ids(), "8 9 ");

    // Each compared value keeps two services apart; the others do not.
    static const struct {
        const char *service, *signalling;
        bool equal;
    } k_cases[] = {{"sltSvcSeqNum='1'", "", false},
                   {"majorChannelNo='1'", "", false},
                   {"minorChannelNo='1'", "", false},
                   {"serviceCategory='5'", "", false},
                   {"", "slsProtocol='2'", false},
                   {"", "slsMajorProtocolVersion='1'", false},
                   {"", "slsMinorProtocolVersion='1'", false},
                   {"", "slsDestinationIpAddress='1.2.3.4'", false},
                   {"", "slsDestinationUdpPort='1'", false},
                   {"", "slsSourceIpAddress='1.2.3.4'", false},
                   {"svcCapabilities='x' drmSystemID='y' globalServiceID='z'", "", true}};
    int id = 100;
    for (const auto& c : k_cases) {
        const std::string start = "<Service serviceId='" + std::to_string(++id) + "'" + k_flags;
        const int before = m_slt.ServiceCount();
        Parse("<SLT>" + start + "><BroadcastSvcSignaling/></Service>" + start + c.service + "><BroadcastSvcSignaling " +
              c.signalling + "/></Service></SLT>");
        EXPECT_EQ(m_slt.ServiceCount() - before, c.equal ? 1 : 2) << c.service << c.signalling;
    }
}

TEST_F(ParseSLTTest, ManyEqualServicesCostLittle)
{
    std::string text = "<SLT>";
    for (int i = 0; i < 4000; ++i) {
        text += std::string("<Service") + k_flags + "/>";
    }
    Parse(text + "</SLT>");
    EXPECT_EQ(m_slt.ServiceCount(), 3996);  // after four removals all indices are below zero
    EXPECT_EQ(s_assertions.size(), 4000u);  // of eight million
    s_assertions.clear();
}

TEST_F(ParseSLTTest, TablesPileUpAndAreOfferedAgain)
{
    int told = 0;
    const CChannelMap::SCallback callback = {&told, [](void* user, void*) { ++*static_cast<int*>(user); }};
    m_map.SetCallback(&callback);
    ParseService("serviceId='1' minorChannelNo='30'");
    EXPECT_EQ(m_slt.LowestMinorChannelNo(), 30);
    ParseService("serviceId='2' minorChannelNo='20'");
    ParseService("serviceId='3'");
    EXPECT_EQ(Ids(), "1 2 3 ");
    EXPECT_EQ(m_slt.LowestMinorChannelNo(), 20);
    EXPECT_EQ(told, 1 + 2 + 3);
    EXPECT_EQ(ServicesOf(m_map).size(), 3u);
    EXPECT_EQ(m_results, 3);

    // A failure leaves all as it was, and is not tried again at its version.
    const std::string bad = std::string("\1\0\0\x70", 4) + "<SLT><Service";
    EXPECT_TRUE(ParseTable(bad));
    EXPECT_FALSE(ParseTable(bad));
    Parse("<RRT/>");
    EXPECT_EQ(Logged(", m->xml.Create((const char*)buffer, size, t_DecompressLLS())"), 1);
    EXPECT_EQ(Logged(", m_ProcessParseSLT(root)"), 1);
    EXPECT_EQ(Ids(), "1 2 3 ");
    EXPECT_EQ(m_results, 3);
    EXPECT_EQ(told, 6);

    m_slt.Destroy();
    SetUpParser(false);
    EXPECT_EQ(m_slt.ServiceCount(), 0);
    EXPECT_EQ(ServicesOf(m_map).size(), 3u);
}

TEST_F(ParseSLTTest, MisplacedElementsAndMisuse)
{
    Parse(
        "<SLT><BroadcastSvcSignaling slsProtocol='1'/><SimulcastTSID/><svcInetUrl>u</svcInetUrl>"
        "<Service serviceId='1'" +
        std::string(k_flags) + "><Service serviceId='2'" + k_flags + "/><BroadcastSvcSignaling/></Service></SLT>");
    EXPECT_EQ(TakeAssertions(), "m->current; m->current; m->current; m->current");
    EXPECT_EQ(Ids(), "2 1 ");
    const CParseSLT::SCallback none = {nullptr, nullptr};
    EXPECT_FALSE(m_slt.Create(&m_map, &none));
    CParseSLT other;
    EXPECT_EQ(Each({other.Create(nullptr, nullptr), m_slt.GetService(nullptr, nullptr)}), "00");
    EXPECT_EQ(TakeAssertions(), "!m; channelMap; fn");
}

TEST_F(ParseSLTTest, EveryPrefixOfARealTable)
{
    const std::string table = ReadData("lls/gpac-a2-multi-service-slt.bin");
    const std::string plain = ReadData("lls/recompressed-plain-slt.bin");
    m_slt.SkipCheckVersion(1, 0, true);
    for (const std::string& whole : {table, plain}) {
        for (std::size_t size = 4; size < whole.size() - 2; ++size) {
            ParseTable(whole.substr(0, size));
            ASSERT_EQ(m_slt.ServiceCount(), 0) << size;
        }
    }
    EXPECT_EQ(m_results, 0);
}

// Tables by independent programs, with what an independent decoder shows of them.
TEST_F(ParseSLTTest, RealTables)
{
    static const struct {
        const char* file;
        bool lenient;
        int bsid, services;
        const char* last;
    } k_cases[] = {
        {"gpac-a2-multi-service-slt.bin", true, 2049, 3, "2003 RADIO 7.10 cat 2 1 efff0701:30102 c000020a"},
        {"recompressed-gnu-gzip-name-slt.bin", true, 2049, 3, "2003 RADIO 7.10 cat 2 1 efff0701:30102 c000020a"},
        {"recompressed-pigz-stored-slt.bin", true, 2049, 3, "2003 RADIO 7.10 cat 2 1 efff0701:30102 c000020a"},
        {"recompressed-plain-slt.bin", true, 2049, 3, "2003 RADIO 7.10 cat 2 1 efff0701:30102 c000020a"},
        {"openssl-slt-with-cms.bin", true, 2049, 3, "2003 RADIO 7.10 cat 2 1 efff0701:30102 c000020a"},
        {"gpac-a12-nonascii-name-slt.bin", true, 12, 1, "12 T\xC3\xA9l\xC3\xA9v 2.1 cat 1 1 e1010100:6000 c000020a"},
        {"lineup-bsid10017-slt.bin", true, 10017, 2, "2 FTBA3MT 28.2 cat 1 2 efff9202:41462 0"},
        {"lineup-bsid2090-slt.bin", true, 2090, 10, "5011 ROXi 3.21 cat 3 1 efff0315:5000 0"},
        {"recompressed-pigz-zlib-slt.bin", true, 0, 0, ""},
        {"gpac-a13-unescaped-name-slt.bin", true, 0, 0, ""},
    };
    for (const auto& c : k_cases) {
        SCOPED_TRACE(c.file);
        m_slt.Destroy();
        SetUpParser(c.lenient);
        m_slt.SkipCheckVersion(1, 0, true);  // an object remembers the last header for life
        s_settings["db/menu/broadcasting/atsc3_bb_option"] = 1;
        EXPECT_TRUE(ParseTable(ReadData(std::string("lls/") + c.file)));
        EXPECT_EQ(m_slt.Bsid(), c.bsid);
        ASSERT_EQ(m_slt.ServiceCount(), c.services);
        if (c.services > 0) {
            const SService& s = *m_slt.GetServiceInfo(c.services - 1);
            char text[128];
            std::snprintf(text, sizeof text, "%d %s %d.%d cat %d %d %x:%d %x", s.serviceId, s.shortServiceName->c_str(),
                          s.majorChannelNo, s.minorChannelNo, s.serviceCategory, s.slsProtocol,
                          s.slsDestinationIpAddress, s.slsDestinationUdpPort, s.slsSourceIpAddress);
            EXPECT_STREQ(text, c.last);
        }
    }
}

TEST_F(ParseSLTTest, ReplacesWhatItsGroupLeftWhenToldTo)
{
    ParseIds(1, {90});
    m_slt.SetReplace(true);
    ParseIds(1, {10, 11});
    ParseIds(2, {20});
    ParseIds(1, {11, 12});
    EXPECT_EQ(Ids(), "90 20 11 12 ") << "another group's stay, and what came before";
    EXPECT_EQ(m_slt.SltInetUrlCount(), 4);
    EXPECT_EQ(MapIds(), "90 10 11 20 12 ");
    EXPECT_EQ(m_drops, "10:" + std::to_string(CParseSLT::DROP_GONE) + " ");

    int told = 0;
    const CChannelMap::SCallback callback = {&told, [](void* user, void*) { ++*static_cast<int*>(user); }};
    m_map.SetCallback(&callback);
    m_slt.SetReplace(true, true);
    m_drops.clear();
    ParseIds(1, {12, 13, 13});
    EXPECT_EQ(Ids(), "90 20 12 13 ") << "of equal services in the table the first stays";
    EXPECT_EQ(MapIds(), "90 10 20 12 13 ");
    EXPECT_EQ(told, 4) << "all that are held are offered";
    EXPECT_EQ(m_drops, "13:6 11:" + std::to_string(CParseSLT::DROP_GONE) + " ");
    for (const char* bad : {"<SLT><Service", "<ATS/>"}) {
        Parse(bad);  // of group 1, and of no use
        EXPECT_EQ(Ids(), "90 20 12 13 ");
    }
    ParseIds(2, {});
    EXPECT_EQ(Ids() + "| " + MapIds(), "90 12 13 | 90 10 12 13 ");
    m_slt.Start(nullptr);
    ParseIds(1, {30});
    EXPECT_EQ(Ids(), "90 12 13 30 ") << "a group of another channel";
    m_slt.SetReplace(false);
    ParseIds(1, {31});
    ParseIds(1, {32});
    EXPECT_EQ(Ids(), "90 12 13 30 31 32 ");
}

TEST_F(ParseSLTTest, AGroupHoldsNoMoreThanItsMost)
{
    m_slt.SetReplace(true);
    std::vector<int> ids(TCParseLLS::k_maxPerGroup / 2);
    for (unsigned int i = 0; i < ids.size(); ++i) {
        ids[i] = static_cast<int>(i);
    }
    for (const int more : {0, 1}) {
        m_drops.clear();
        ids.resize(ids.size() + static_cast<unsigned int>(more), 9999);
        ParseIds(1, ids);
        EXPECT_EQ(m_slt.ServiceCount() + m_slt.SltInetUrlCount(), TCParseLLS::k_maxPerGroup);
        EXPECT_EQ(m_drops, more ? "9999:" + std::to_string(CParseSLT::DROP_LIMIT) + " " : "");
        EXPECT_EQ(Logged("records dropped"), more);
    }
    ParseIds(1, {1});
    for (int group = 2; group <= TCParseLLS::k_maxGroups; ++group) {
        ParseIds(static_cast<unsigned char>(group), {group});
    }
    EXPECT_EQ(m_slt.ServiceCount(), TCParseLLS::k_maxGroups);
    EXPECT_EQ(Logged("records dropped"), 1);
    ParseIds(100, {1000});
    EXPECT_EQ(m_slt.ServiceCount(), TCParseLLS::k_maxGroups);
    EXPECT_EQ(Logged("records dropped"), 2);
    ParseIds(2, {77});
    EXPECT_EQ(m_slt.ServiceCount(), TCParseLLS::k_maxGroups);
}

}  // namespace
