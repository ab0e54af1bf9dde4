#include "lls/ParseCDT.h"

#include <cstring>

#include "support/ParserTest.h"
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
        EXPECT_TRUE(m_parser.GetCurrentCert(current) && m_parser.GetCertReplacement(next, from, until) &&
                    m_parser.GetOCSPRefresh(refresh) && m_parser.GetCMSSignedData(cms) &&
                    m_parser.GetCertificates(certificates) && m_parser.GetOCSPResponse(responses));
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
    EXPECT_EQ(Logged("[CParseCDT::m_DumpCDT] End Dump !!!"), 4);
    EXPECT_EQ(ChangingPrefixes(m_parser, "<CertificationData><CurrentCert>no</CurrentCert></CertificationData>",
                               [this] { return State(); }),
              0);
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
    EXPECT_TRUE(m_parser.GetCertificates(certificates) && certificates.size() == 3);
    EXPECT_TRUE(m_parser.GetOCSPResponse(responses) && responses.size() == 1);
    std::string next, cms;
    long long from = 0, until = 0;
    int refresh = 0;
    EXPECT_TRUE(m_parser.GetCertReplacement(next, from, until) && from == 1809129600 + 1 && until == 1810384200 + 1);
    EXPECT_TRUE(m_parser.GetOCSPRefresh(refresh) && refresh == 604800);
    EXPECT_TRUE(m_parser.GetCMSSignedData(cms) && cms.size() > 1000);
}

TEST_F(ParseCDTTest, Misuse)
{
    CParseCDT other;
    std::string text = "kept";
    EXPECT_FALSE(other.GetCurrentCert(text) || other.GetToBeSignedData(text) || m_parser.Create());
    other.Destroy();
    EXPECT_EQ(text, "kept");
    EXPECT_EQ(TakeAssertions(), "m; m; !m; m");
}

}  // namespace
