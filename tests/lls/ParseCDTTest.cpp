#include "lls/ParseCDT.h"

#include <cstring>

#include "support/ParserTest.h"
#include "support/Show.h"
#include "support/Tables.h"

namespace {

class ParseCDTTest : public TParserTest<CParseCDT> {
  protected:
    /// Every stored value in one text.
    std::string State()
    {
        std::string current, next, cms, all;
        long from = 0, until = 0;
        int refresh = 0;
        std::list<std::string> certificates, responses;
        EXPECT_EQ(Join(m_parser.GetCurrentCert(current), m_parser.GetCertReplacement(next, from, until),
                       m_parser.GetOCSPRefresh(refresh), m_parser.GetCMSSignedData(cms),
                       m_parser.GetCertificates(certificates), m_parser.GetOCSPResponse(responses)),
                  "1|1|1|1|1|1");
        for (const std::string& text : certificates) {
            all += "c:" + text + " ";
        }
        for (const std::string& text : responses) {
            all += "r:" + text + " ";
        }
        return all + current + " " + next + " " + std::to_string(from) + " " + std::to_string(until) + " " +
               std::to_string(refresh) + " " + cms;
    }

    std::string ToBeSigned()
    {
        std::string text;
        EXPECT_TRUE(m_parser.GetToBeSignedData(text));
        return text;
    }

    const SZone m_zone{"UTC0"};
};

TEST_F(ParseCDTTest, WhatEachTableLeaves)
{
    static const struct {
        const char *content, *state;
    } k_tables[] = {
        {"<ToBeSignedData "
         "OCSPRefresh='PT1H'><Certificates>a</Certificates><Certificates>b</Certificates><CurrentCert>cc</CurrentCert>"
         "<CertReplacement NextCert='nn' NextCertFrom='2027-01-15T12:30:45Z' CurrentCertUntil='1970-01-01T00:00:00Z'/>"
         "<OCSPResponse>o</OCSPResponse></ToBeSignedData><CMSSignedData>sig</CMSSignedData>",
         "c:a c:b r:o cc nn 1800016246 1 3600 sig"},
        // A second element resets both lists and nothing else; what is absent leaves what was there.
        {"<ToBeSignedData><Certificates>x</Certificates></ToBeSignedData><OCSPResponse>p</OCSPResponse>"
         "<ToBeSignedData><Certificates>y</Certificates><CertReplacement "
         "CurrentCertUntil='1970-01-01T00:00:09'/></ToBeSignedData>"
         "<OCSPResponse>q</OCSPResponse>",
         "c:y r:q cc nn 1800016246 10 3600 sig"},
        {"<OCSPRefresh OCSPRefresh='77'/><Certificates>z</Certificates>", "c:y c:z r:q cc nn 1800016246 10 77 sig"},
        {"<OCSPRefresh>5</OCSPRefresh>", "c:y c:z r:q cc nn 1800016246 10 77 sig"},
        {"<CertReplacement NextCert='mm'/>", "c:y c:z r:q cc mm 1800016246 10 77 sig"},
    };
    for (const auto& table : k_tables) {
        FeedXml(m_parser, std::string("<CertificationData>") + table.content + "</CertificationData>");
        EXPECT_EQ(State(), table.state) << table.content;
    }
    EXPECT_EQ(Logged("[CParseCDT::sm_CbOCSPRefresh] spec violation no OCSP Refresh time !!!"), 1);
    EXPECT_EQ(Logged("[CParseCDT::sm_CbOCSPRefresh] Refresh Time[77]"), 2);
    EXPECT_EQ(Logged("[CParseCDT::sm_CbToBeSignedData] Name[Certificates]"), 4);
    EXPECT_EQ(Logged("[CParseCDT::m_ProcessParseCDT] Name[CMSSignedData]"), 1);
    const std::string state = State();
    FeedXml(m_parser, "<SLT><CurrentCert>no</CurrentCert></SLT>");
    EXPECT_EQ(Logged(", m_ProcessParseCDT(root)"), 1);
    EXPECT_EQ(Logged("[CParseCDT::m_DumpCDT] End Dump !!!"), 5);
    EXPECT_EQ(ChangingPrefixes(m_parser, "<CertificationData><CurrentCert>no</CurrentCert></CertificationData>",
                               [this] { return State(); }),
              0);
}

/// "text=seconds", "text=?" for no time, "-" for none.
std::string Text(const std::optional<SGivenTime>& given)
{
    return !given ? "-" : given->text + "=" + (given->seconds ? std::to_string(*given->seconds) : "?");
}

// The required times go wrong with daylight saving, where the given ones do not.
TEST_F(ParseCDTTest, TimesAsTheyAreGivenInEveryZone)
{
    static const struct {
        const char *zone, *time, *given;
        long long required;
    } k_cases[] = {
        {"UTC0", "2027-07-01T12:00:00Z", "2027-07-01T12:00:00Z=1814443200.000000", 1814443201},
        {"Europe/Berlin", "2027-03-28T00:59:59Z", "2027-03-28T00:59:59Z=1806195599.000000", 1806195600},
        {"Europe/Berlin", "2027-07-01T12:00:00Z", "2027-07-01T12:00:00Z=1814443200.000000", 1814446801},
        {"Europe/Berlin", "2027-07-01T12:00:00.5+02:00", "2027-07-01T12:00:00.5+02:00=1814436000.500000", 1814446801},
        {"America/New_York", "2027-01-15T12:00:00", "2027-01-15T12:00:00=1800014400.000000", 1800014401},
        {"America/New_York", "2027-07-01T12:00:00Z", "2027-07-01T12:00:00Z=1814443200.000000", 1814446801},
        {"UTC0", "2027-7-1", "2027-7-1=?", 1814400001},
    };
    EXPECT_FALSE(m_parser.Given()->nextCertFrom);
    EXPECT_FALSE(m_parser.Given()->ocspRefresh);
    for (const auto& test : k_cases) {
        setenv("TZ", test.zone, 1);
        tzset();
        FeedXml(m_parser, std::string("<CertificationData><CertReplacement NextCertFrom='") + test.time +
                              "'/></CertificationData>");
        EXPECT_EQ(Text(m_parser.Given()->nextCertFrom), test.given) << test.zone;
        std::string next;
        long long from = 0, until = 0;
        EXPECT_EQ(Join(m_parser.GetCertReplacement(next, from, until), from, until), Join(1, test.required, 0));
    }
    EXPECT_EQ(Text(m_parser.Given()->currentCertUntil), "-");
    static const struct {
        const char *element, *given;
        int seconds;
    } k_refreshes[] = {
        {"<ToBeSignedData OCSPRefresh='PT2147483647S'/>", "PT2147483647S=2147483647.000000", 2147483647},
        {"<ToBeSignedData OCSPRefresh='PT2147483648S'/>", "PT2147483648S=2147483648.000000", -2147483648},
        {"<ToBeSignedData OCSPRefresh='P1D'/>", "P1D=86400.000000", 0},
        {"<OCSPRefresh OCSPRefresh='77'/>", "77=?", 77},
        {"<OCSPRefresh/>", "77=?", 77},
    };
    for (const auto& test : k_refreshes) {
        FeedXml(m_parser, std::string("<CertificationData>") + test.element + "</CertificationData>");
        int seconds = 0;
        EXPECT_EQ(Join(m_parser.GetOCSPRefresh(seconds), seconds), Join(1, test.seconds)) << test.element;
        EXPECT_EQ(Text(m_parser.Given()->ocspRefresh), test.given);
    }
}

TEST_F(ParseCDTTest, TheSignedTextIsTheElementAsItStood)
{
    static const char* const k_elements[] = {
        "<ToBeSignedData/>",
        "<ToBeSignedData OCSPRefresh=\"PT1H\" b=\"&lt;&amp;&quot;\">\n  "
        "<Certificates>a&amp;b</Certificates>\n</ToBeSignedData>",
        "<ToBeSignedData xmlns:x=\"u:x\" x:a=\"1\"><x:Certificates>\xED\x95\x9C\xC3\xA9</x:Certificates><!-- c --><?p "
        "d?></ToBeSignedData>",
        "<p:ToBeSignedData a=\"\"><Certificates><![CDATA[<raw>]]></Certificates></p:ToBeSignedData>",
    };
    for (const char* element : k_elements) {
        FeedXml(m_parser, std::string("<CertificationData xmlns:p=\"u:p\">") + element + "</CertificationData>");
        EXPECT_EQ(ToBeSigned(), element);
        EXPECT_EQ(Logged("[CParseCDT::m_DumpToBeSigendData] Size[" + std::to_string(std::strlen(element)) + "]"), 1);
    }
}

// Certificates, OCSP response and a detached signature over the element's exact bytes, by OpenSSL.
TEST_F(ParseCDTTest, RealTable)
{
    ASSERT_TRUE(Feed(m_parser, ReadData("lls/openssl-cdt.bin")));
    const std::string xml = ReadData("lls/openssl-cdt.xml");
    const std::size_t begin = xml.find("<ToBeSignedData");
    const std::string closing = "</ToBeSignedData>";
    EXPECT_EQ(ToBeSigned(), xml.substr(begin, xml.find(closing) + closing.size() - begin));
    std::list<std::string> certificates, responses;
    ASSERT_TRUE(m_parser.GetCertificates(certificates));
    EXPECT_EQ(certificates.size(), 3u);
    ASSERT_TRUE(m_parser.GetOCSPResponse(responses));
    EXPECT_EQ(responses.size(), 1u);
    std::string next, cms;
    long long from = 0, until = 0;
    int refresh = 0;
    EXPECT_EQ(Join(m_parser.GetCertReplacement(next, from, until), from, until), "1|1809129601|1810384201");
    EXPECT_EQ(Join(m_parser.GetOCSPRefresh(refresh), refresh), "1|604800");
    ASSERT_TRUE(m_parser.GetCMSSignedData(cms));
    EXPECT_GT(cms.size(), 1000u);
}

}  // namespace
