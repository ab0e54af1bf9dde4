#include "route/SLSManager.h"

#include <cstring>
#include <map>
#include <new>
#include <nlohmann/json.hpp>
#include <sstream>

#include "common/RSAT.h"
#include "route/SLS/EFDT.h"
#include "route/SLS/MPD.h"
#include "route/SLS/ROUTEUsbd.h"
#include "route/SLS/STSID.h"
#include "support/Recorder.h"
#include "support/Show.h"

namespace {

using TJson = nlohmann::json;

const CSLSManager::SSessionInfo k_session = {77, 1, 2, 3};

/// Records every callback as a line.
class SLSManagerTest : public CRecorder {
  protected:
    void SetUp() override
    {
        CRecorder::SetUp();
        const CSLSManager::SCallback callback = {this,  OnLct,     OnEfdt,    OnUsbd, OnDirectEfdt,
                                                 OnMpd, OnMpdInfo, OnAppData, OnRsat, OnRatings};
        ASSERT_TRUE(m_manager.Create(&callback));
    }

    void TearDown() override
    {
        m_manager.Destroy();
        CRecorder::TearDown();
    }

    /// What the buffer made the manager report.
    std::string Parse(const std::string& text, bool skipMpdParse = false,
                      const CSLSManager::SSessionInfo* session = &k_session)
    {
        m_lines.str("");
        const std::vector<unsigned char> block = Exact(text);
        m_manager.Parse(block.data(), static_cast<unsigned>(block.size()), session, skipMpdParse);
        return m_lines.str();
    }

    static std::ostream& Line(void* user) { return static_cast<SLSManagerTest*>(user)->m_lines; }

    static void OnLct(void* user, CSLSManager::SLctSession* session)
    {
        Line(user) << "lct " << std::hex << session->sIpAddr << '>' << session->dIpAddr << std::dec << ':'
                   << session->dPort << " bsid " << session->bsid << " tsi " << session->tsi << " id "
                   << session->contentId << " aea " << session->aeaId << " rt " << session->rt << '\n';
        static_cast<SLSManagerTest*>(user)->m_lctEfdt = session->efdtInfo;
    }

    static void OnEfdt(void* user, unsigned int tsi, SEFDTInfo* info)
    {
        Line(user) << "efdt " << tsi << " version " << static_cast<int>(info->version) << '\n';
        static_cast<SLSManagerTest*>(user)->m_efdt = info;
    }

    static void OnUsbd(void* user, CSLSManager::SUSBDInfo* info)
    {
        Line(user) << "usbd " << info->globalServiceId << ' ' << info->serviceId << " link " << info->linkServiceId
                   << ' ' << info->serviceCategory << ' ' << info->linkageType << ' ' << info->activationTime << '-'
                   << info->deActivationTime << " status " << info->serviceStatus;
        for (const std::string& pattern : info->basePatterns) {
            Line(user) << ' ' << pattern;
        }
        Line(user) << '\n';
    }

    static void OnDirectEfdt(void* user, unsigned int sessionId, SEFDTInfo* info,
                             const CSLSManager::SSessionInfo* session)
    {
        EXPECT_EQ(session, &k_session);
        Line(user) << "direct " << sessionId << " tsi " << info->tsi << '\n';
        static_cast<SLSManagerTest*>(user)->m_efdt = info;
    }

    static void OnMpd(void* user, const char* mpd, unsigned int length, unsigned short serviceId)
    {
        Line(user) << "mpd " << serviceId << ' ' << std::string(mpd, std::min(length, 40u)) << '\n';
    }

    static void OnMpdInfo(void* user, SMPDInfo* info) { Line(user) << "info " << (info->id ? info->id : "-") << '\n'; }

    static void OnAppData(void* user, const char* data, unsigned int length, const CSLSManager::SSessionInfo* session)
    {
        Line(user) << "app " << std::string(data, length) << (session ? " session\n" : " -\n");
    }

    static void OnRsat(void* user, CRSAT* rsat)
    {
        std::string timestamp;
        rsat->GetTimestamp(timestamp);
        Line(user) << "rsat " << timestamp << '\n';
        static_cast<SLSManagerTest*>(user)->m_rsat = rsat;
    }

    static void OnRatings(void* user, const CSLSManager::TRatings& ratings)
    {
        for (const auto& [scheme, value] : ratings) {
            Line(user) << "rating " << scheme << '=' << value << '\n';
        }
    }

    CSLSManager m_manager;
    std::ostringstream m_lines;
    SEFDTInfo* m_efdt = nullptr;
    SEFDTInfo* m_lctEfdt = nullptr;
    CRSAT* m_rsat = nullptr;
};

const char k_usbd[] = "<BundleDescriptionROUTE><UserServiceDescription serviceId='5'/></BundleDescriptionROUTE> ";

TEST_F(SLSManagerTest, OneBufferOfEveryDocumentInTheOrderOfTheKinds)
{
    EXPECT_EQ(Parse("garbage<RSAT timestamp='t'/></RSAT>"), "");  // cut at the tags, and then not well-formed
    EXPECT_EQ(Logged("m->rsat.Parse((const char*)buffer, size)"), 1);
    EXPECT_EQ(
        Parse("--b\n<RSAT timestamp='t'></RSAT>\n<HELD>h</HELD>\n<ApplicationList>a</ApplicationList>\n"
              "<MPD id='m'><Period><AdaptationSet><Rating schemeIdUri='s' value='2'/><Rating schemeIdUri='s' "
              "value='1'/><Rating schemeIdUri='s' value='2'/></AdaptationSet></Period></MPD>\n"
              "<S-TSID><RS dIpAddr='1.2.3.4' sIpAddr='5.6.7.8' dPort='9'><LS tsi='2'><SrcFlow rt='true'><EFDT "
              "version='1'/>"
              "<ContentInfo>c<AEAMedia AEAId='A'/></ContentInfo></SrcFlow></LS>"
              "<LS tsi='1'><SrcFlow><EFDT version='2'/></SrcFlow></LS>"
              "<LS tsi='2'><SrcFlow><EFDT version='3'/></SrcFlow></LS></RS></S-TSID>\n"
              "<bundleDescriptionROUTE><userServiceDescription globalServiceID='G' serviceId='65541' serviceStatus='1'>"
              "<deliveryMethod><UnicastAppService><BasePattern>u1</BasePattern><BasePattern>u2</BasePattern>"
              "</UnicastAppService><BroadcastAppService><BasePattern>b</BasePattern></BroadcastAppService>"
              "</deliveryMethod><deliveryMethod><UnicastAppService><BasePattern>u3</BasePattern></UnicastAppService>"
              "</deliveryMethod><serviceLinkage serviceId='6' serviceCategory='7' linkageType='8' activationTime='x' "
              "deActivationTime='y'/></userServiceDescription></bundleDescriptionROUTE>\n"),
        "usbd G 5 link 6 7 8 x-y status 1 u1 u2 u3\n"
        "lct 5060708>1020304:9 bsid 65535 tsi 2 id c aea A rt 1\n"
        "lct 5060708>1020304:9 bsid 65535 tsi 1 id  aea  rt 0\n"
        "lct 5060708>1020304:9 bsid 65535 tsi 2 id  aea  rt 0\n"
        "efdt 1 version 2\nefdt 2 version 1\n"
        "mpd 5 <MPD id='m'><Period><AdaptationSet><Rati\ninfo m\nrating s=1\nrating s=2\n"
        "app <ApplicationList>a</ApplicationList>\n session\napp <HELD>h</HELD>\n session\nrsat t\n");
    EXPECT_EQ(Logged("ratingListSize[2]"), 1);
    // A nested EFDT is none of the buffer's own.
    EXPECT_EQ(Logged("direct EFDT data not included !!!"), 1);

    // Records stay good while other kinds, and nothing, come.
    EXPECT_EQ(Parse("nothing"), "");
    for (const char* text : {"USBD data", "direct EFDT data", "MPD data", "APP data[</ApplicationList>]",
                             "APP data[</HELD>]", "RSAT data"}) {
        EXPECT_EQ(Logged("[CSLSManager::Parse] " + std::string(text) + " not included !!!"), text[0] == 'R' ? 1 : 2)
            << text;
    }
    EXPECT_EQ(Join(m_efdt->version, m_lctEfdt->version, m_rsat->NumOfService()), "1|3|0");
    EXPECT_EQ(m_manager.Stsid()->NumberOfLctSessions(0), 3);
    EXPECT_EQ(m_manager.Usbd()->ServiceId(), 5);
}

TEST_F(SLSManagerTest, DirectEfdtNeedsASession)
{
    const std::string efdt = "<EFDT tsi='4'><FDT-Instance/></EFDT>";
    EXPECT_EQ(Parse(efdt, false, nullptr), "");
    EXPECT_EQ(Parse(efdt), "direct 77 tsi 4\n");
    EXPECT_TRUE(m_efdt->fdtGlobal);
    EXPECT_EQ(Parse("<S-TSID broken " + efdt), "");  // taken for a nested one
    EXPECT_EQ(m_efdt->tsi, 4u);
    EXPECT_EQ(Parse("<EFDT/></EFDT>"), "");
    EXPECT_EQ(Logged("m->efdt.Parse((const char*)buffer, size)"), 1);
    EXPECT_EQ(Parse("<EFDT></EFDT>"), "direct 77 tsi 4294967295\n");
    EXPECT_EQ(Parse("<ApplicationList></ApplicationList>", false, nullptr),
              "app <ApplicationList></ApplicationList>" + std::string(1, '\0') + " -\n");
}

TEST_F(SLSManagerTest, MpdTextGoesOutWhileAUsbdIsHeld)
{
    EXPECT_EQ(Parse("<MPD id='a'></MPD>"), "info a\n");
    EXPECT_EQ(Parse("<MPD id='a'></MPD>", true), "");
    EXPECT_EQ(Parse(k_usbd), "usbd  5 link 65535 -1 -1 - status 0\n");
    EXPECT_EQ(Parse("<MPD id='b'></MPD>\n", true), "mpd 5 <MPD id='b'></MPD>\n\n");
    EXPECT_EQ(Parse("<MPD id='c'></MPD>"), "mpd 5 <MPD id='c'></MPD>" + std::string(1, '\0') + "\ninfo c\n");
    EXPECT_EQ(Parse("<MPD id='d'><Period></MPD>\n"), "mpd 5 <MPD id='d'><Period></MPD>\n\n");
    EXPECT_EQ(Logged("m->mpd.Parse((const char*)buffer, size)"), 1);
    // A USBD that fails leaves none. Either end tag ends either start tag: what is between is no document then.
    EXPECT_EQ(Parse("<bundleDescriptionROUTE></BundleDescriptionROUTE> "), "");
    EXPECT_EQ(Logged("PARSE NEW USBD buf1"), 2);
    EXPECT_EQ(Parse(k_usbd), "usbd  5 link 65535 -1 -1 - status 0\n");
    EXPECT_EQ(Parse("<bundleDescriptionROUTE><x></bundleDescriptionROUTE> <MPD id='e'></MPD> "), "info e\n");
    EXPECT_EQ(m_manager.Usbd(), nullptr);
    EXPECT_EQ(Logged("m->usbd.Parse((const char*)buffer, size)"), 2);
}

TEST_F(SLSManagerTest, EachDocumentStandsAlone)
{
    // What follows an end tag belongs to the document, except behind a direct EFDT.
    EXPECT_EQ(Parse("<MPD></MPD>x<RSAT timestamp='1'></RSAT><"), "");
    EXPECT_EQ(Parse("<EFDT tsi='1'></EFDT>x<RSAT timestamp='2'></RSAT>\t"), "direct 77 tsi 1\nrsat 2\n");
    EXPECT_EQ(Parse("<MPD id='m'></MPD>" + std::string(1, '\0') + "<RSAT timestamp='3'></RSAT>"), "info m\n");
    // No end tag, behind the start tag: nothing.
    EXPECT_EQ(Parse("</MPD></RSAT><MPD><S-TSID><HELD>" + std::string(k_usbd)), "usbd  5 link 65535 -1 -1 - status 0\n");
    EXPECT_EQ(Parse("<S-TSID><RS></S-TSID>\n<RSAT timestamp='4'></RSAT>\n<mpd></mpd><rsat></rsat><held></held>"),
              "rsat 4\n");
    EXPECT_EQ(m_manager.Stsid(), nullptr);
    EXPECT_EQ(Logged("m->stsid.Parse((const char*)buffer, size)"), 1);
}

TEST_F(SLSManagerTest, LengthLimitHoldsToTheByte)
{
    static const struct {
        const char* before;
        const char* after;
        int extra;
        const char* report;
    } k_cases[] = {
        {"<MPD x='", "'></MPD>", 1, "info -\n"},
        {"<bundleDescriptionROUTE x='", "'></bundleDescriptionROUTE>", 1, "usbd  65535 link 65535 -1 -1 - status 1\n"},
        {"<S-TSID x='", "'><RS><LS tsi='1'/></RS></S-TSID>", 1,
         "lct ffffffff>ffffffff:65535 bsid 65535 tsi 1 id  aea  rt 0\n"},
        {"<EFDT tsi='2' x='", "'></EFDT>", 0, "direct 77 tsi 2\n"},
        {"<RSAT timestamp='t' x='", "'></RSAT>", 1, "rsat t\n"},
    };
    for (const auto& test : k_cases) {
        const std::size_t shell =
            std::strlen(test.before) + std::strlen(test.after) + static_cast<std::size_t>(test.extra);
        for (const std::size_t size : {131071u, 131072u}) {
            const std::string text = "\n" + (test.before + std::string(size - shell, 'x')) + test.after + "\n";
            EXPECT_EQ(Parse(text), size == 131071 ? test.report : "") << test.before << size;
        }
    }
    EXPECT_EQ(Logged("length = 131072"), 5);
    const std::string list = "<ApplicationList>" + std::string(131071 - 36, 'x') + "</ApplicationList>\n";
    EXPECT_EQ(Parse(list).size(), std::strlen("app ") + 131071 + std::strlen(" session\n"));
    EXPECT_EQ(Parse("<HELD>" + std::string(131072 - 14, 'x') + "</HELD>\n"), "");
}

TEST_F(SLSManagerTest, PackagesOfAnotherProgram)
{
    const TJson all = TJson::parse(ReadData("route/expected.json"));
    ASSERT_GT(all.size(), 10u);
    for (const auto& [name, expected] : all.items()) {
        std::ostringstream wanted;
        for (const TJson& part : expected["parts"]) {
            const std::string root = part.value("root", TJson()).is_string() ? part["root"].get<std::string>() : "";
            if (root == "BundleDescriptionROUTE") {
                const std::string id = part["decoded"][0].value("serviceId", "65535");
                wanted << "usbd  " << id << " link 65535 -1 -1 - status 0\n";
            } else if (root == "S-TSID") {
                std::map<unsigned, std::string> versions;
                for (const TJson& rs : part["decoded"]) {
                    for (const TJson& ls : rs["LS"]) {
                        std::string id;
                        for (const TJson& child :
                             ls.value("ContentInfo", TJson::object()).value("children", TJson::array())) {
                            id = child["attributes"].value("repId", "");
                        }
                        unsigned address[4];
                        std::sscanf(rs["dIpAddr"].get<std::string>().c_str(), "%u.%u.%u.%u", address, address + 1,
                                    address + 2, address + 3);
                        wanted << "lct c000020a>" << std::hex
                               << (address[0] << 24 | address[1] << 16 | address[2] << 8 | address[3]) << std::dec
                               << ':' << rs["dPort"].get<std::string>() << " bsid 65535 tsi "
                               << ls["tsi"].get<std::string>() << " id " << id << " aea  rt "
                               << (ls["SrcFlow"]["rt"] == "true") << '\n';
                        versions.emplace(std::stoul(ls["tsi"].get<std::string>()),
                                         ls["EFDT"].value("attributes", TJson::object()).value("version", "-1"));
                    }
                }
                for (const auto& [tsi, version] : versions) {
                    wanted << "efdt " << tsi << " version " << version << '\n';
                }
            }
        }
        const std::string report = Parse(ReadData("route/" + name));
        EXPECT_EQ(report.substr(0, wanted.str().size()), wanted.str()) << name;
        const bool mpd = name.find("hls") == std::string::npos && name.find("nrt") == std::string::npos;
        EXPECT_EQ(report.find("info -\n") != std::string::npos, mpd) << name;
    }
}

TEST_F(SLSManagerTest, Misuse)
{
    EXPECT_EQ(Parse(""), "");
    m_manager.Parse(nullptr, 5, nullptr, false);
    EXPECT_EQ(Logged("[CSLSManager::Parse] buffer error buffer[0x"), 2);
    EXPECT_FALSE(m_manager.Create(nullptr));
    CSLSManager other;
    other.Destroy();
    other.Parse(nullptr, 0, nullptr, false);
    EXPECT_EQ(Each({other.Usbd() != nullptr, other.Stsid() != nullptr}), "00");
    EXPECT_EQ(TakeAssertions(), "!m; m; m; m; m");

    ASSERT_TRUE(other.Create(nullptr));
    const std::string all = std::string(k_usbd) + ReadData("route/gpac-a1-single-service-sls3.mime");
    other.Parse(reinterpret_cast<const unsigned char*>(all.data()), static_cast<unsigned>(all.size()), &k_session,
                false);
    EXPECT_EQ(other.Stsid()->NumberOfRouteSessions(), 1);
    other.Destroy();

    // Gone without Destroy; what it held stays reachable for the leak check.
    alignas(CSLSManager) static unsigned char s_memory[sizeof(CSLSManager)];
    auto* gone = new (s_memory) CSLSManager;
    ASSERT_TRUE(gone->Create(nullptr));
    gone->~CSLSManager();
    EXPECT_EQ(TakeAssertions(), "!m");
}

}  // namespace
