#include "route/SLS/EFDT.h"

#include "support/ParserTest.h"
#include "support/Show.h"

SHOW(SFDTFile, s.contentLocation, s.toi, s.transferLength, s.contentLength, s.contentType, s.contentEncoding,
     s.appContextIdList)
SHOW(SFDTGlobal, s.expires, s.contentType, s.contentEncoding, s.efdtVersion, s.appContextIdList)
SHOW(SEFDTInfo, s.tsi, s.idRef, s.version, s.maxExpiresDelta, s.maxTransportSize, s.fileTemplate, s.fdtGlobal)

namespace {

class EFDTTest : public TParserTest<CEFDT> {
  protected:
    void SetUp() override
    {
        TParserTest::SetUp();
        const SEFDTInfoCallback callback = {&m_told, [](void* context, SEFDTInfo* info) {
                                                static_cast<std::vector<SEFDTInfo*>*>(context)->push_back(info);
                                            }};
        ASSERT_TRUE(m_parser.SetCallback(&callback));
    }

    /// The files in one text.
    std::string Files()
    {
        std::string all;
        const CCPtrArray& files = m_parser.GetEFDTInfo()->fdtGlobal->files;
        for (int i = 0; i < files.Size(); ++i) {
            all += Show(*static_cast<const SFDTFile*>(files.Data(i))) + ";";
        }
        return all;
    }

    std::vector<SEFDTInfo*> m_told;
};

TEST_F(EFDTTest, EveryField)
{
    ASSERT_TRUE(
        Parse("<EFDT tsi='7' idRef='id' version='2' maxExpiresDelta='3' maxTransportSize='4294967295'>"
              "<FileTemplate>t$TOI$</FileTemplate><x:FDT-Instance xmlns:x='u:x' xmlns:a='u:a' Expires='4000000000' "
              "Content-Type='text/xml' Content-Encoding='gzip' a:appContextIdList='a b  c ' a:efdtVersion='9' "
              "a:fileTemplate='n$TOI$' a:maxExpiresDelta='0' "
              "a:maxTransportSize='4294967296'>"
              "<File Content-Location='l' TOI='18446744073709551615' Transfer-Length='5' Content-Length='6' "
              "Content-Type='ct' Content-Encoding='ce' appContextIdList='d'/><File/></x:FDT-Instance></EFDT>"));
    EXPECT_EQ(m_told, std::vector<SEFDTInfo*>{m_parser.GetEFDTInfo()});
    EXPECT_EQ(Show(m_told[0]), "7|id|2|3|4294967295|t$TOI$|4000000000|text/xml|gzip|9|[a b  c]");
    const SFDTGlobal& global = *m_told[0]->fdtGlobal;
    EXPECT_EQ(Join(global.fileTemplate, global.maxExpiresDelta, global.maxTransportSize), "n$TOI$|0|4294967296");
    // A number too great for 63 bits is the greatest.
    EXPECT_EQ(Files(), "l|9223372036854775807|5|6|ct|ce|[d];|18446744073709551615|-1|-1|||[];");
    EXPECT_EQ(Logged("[CEFDT::sm_CbFile] location[l], exist[1]"), 1);
    EXPECT_EQ(Logged("[CEFDT::sm_CbFile] contentEncoding = [], exist = 0"), 1);
    EXPECT_EQ(Logged("[CFDTParameters::m_OnFDTParameters] Add afdt:appContextIdList:c"), 1);
    EXPECT_EQ(Logged("[CFDTParameters::m_OnFDTParameters] File"), 2);
}

TEST_F(EFDTTest, DefaultsOrderAndReplacement)
{
    EXPECT_EQ(m_parser.GetEFDTInfo(), nullptr);
    ASSERT_TRUE(Parse("<any><File TOI='1'/><FDTParameters/><File TOI='2'/></any>"));
    EXPECT_EQ(Show(m_parser.GetEFDTInfo()), "4294967295||4294967295|4294967295|4294967295|-|-1|-|-|-1|[]");
    EXPECT_EQ(Files(), "|2|-1|-1|||[];");  // the file before any instance has nothing to join
    const SFDTGlobal& global = *m_parser.GetEFDTInfo()->fdtGlobal;
    EXPECT_EQ(Join(global.fileTemplate.empty(), global.maxExpiresDelta, global.maxTransportSize), "1|-1|-1");
    EXPECT_EQ(Logged("[CEFDT::sm_CbFile] no FDT instance before the file"), 1);
    EXPECT_EQ(Logged("not exist!!"), 4);
    // An instance inside another takes its place, files and all.
    ASSERT_TRUE(
        Parse("<E><FDT-Instance><File TOI='1'/><FDT-Instance Expires='5'/><File TOI='3'/></FDT-Instance>"
              "<FileTemplate>a</FileTemplate><FileTemplate/></E>"));
    EXPECT_EQ(m_parser.GetEFDTInfo()->fdtGlobal->expires, 5);
    EXPECT_EQ(Files(), "|3|-1|-1|||[];");
    EXPECT_STREQ(m_parser.GetEFDTInfo()->fileTemplate, "");
    EXPECT_TRUE(m_parser.SetCallback(nullptr));
    ASSERT_TRUE(Parse("<E/>"));
    EXPECT_EQ(m_parser.GetEFDTInfo()->fdtGlobal, nullptr);
    EXPECT_FALSE(Parse("<E"));  // the record of the last good one stays
    EXPECT_NE(m_parser.GetEFDTInfo(), nullptr);
    EXPECT_EQ(m_told.size(), 2u);
}

TEST_F(EFDTTest, ApplicationContextsHaveAMost)
{
    const auto kept = [this](std::size_t contexts) {  // of no character each, before those of the files
        EXPECT_TRUE(Parse("<E><FDT-Instance appContextIdList='" + std::string(contexts, ' ') +
                          "'><File appContextIdList='a b'/><File appContextIdList='c'/></FDT-Instance></E>"));
        return Join(m_parser.GetEFDTInfo()->fdtGlobal->appContextIdList.size(), Files());
    };
    const std::string file = "|18446744073709551615|-1|-1||";
    EXPECT_EQ(kept(65534), "65534|" + file + "|[a b];" + file + "|[];");
    EXPECT_EQ(kept(65533), "65533|" + file + "|[a b];" + file + "|[c];");  // each parse counts its own
    EXPECT_EQ(kept(65538), "65536|" + file + "|[];" + file + "|[];");
    EXPECT_EQ(Logged("more than 65536 application contexts: the others are left out"), 2);
}

}  // namespace
