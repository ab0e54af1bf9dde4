#include "route/SLS/EFDT.h"

#include "support/Recorder.h"

namespace {

class EFDTTest : public CRecorder {
  protected:
    void SetUp() override
    {
        CRecorder::SetUp();
        ASSERT_TRUE(m_efdt.Create());
        const SEFDTInfoCallback callback = {&m_told, [](void* context, SEFDTInfo* info) {
                                                static_cast<std::vector<SEFDTInfo*>*>(context)->push_back(info);
                                            }};
        ASSERT_TRUE(m_efdt.SetCallback(&callback));
    }

    void TearDown() override
    {
        m_efdt.Destroy();
        CRecorder::TearDown();
    }

    bool Parse(const std::string& text)
    {
        const std::vector<unsigned char> block = Exact(text);
        return m_efdt.XMLBase::Parse(reinterpret_cast<const char*>(block.data()), static_cast<unsigned>(block.size()),
                                     false);
    }

    /// The files in one text.
    std::string Files()
    {
        std::string all;
        const CCPtrArray& files = m_efdt.GetEFDTInfo()->fdtGlobal->files;
        for (int i = 0; i < files.Size(); ++i) {
            const auto* file = static_cast<const SFDTFile*>(files.Data(i));
            all += file->contentLocation + "," + std::to_string(file->toi) + "," +
                   std::to_string(file->transferLength) + "," + std::to_string(file->contentLength) + "," +
                   file->contentType + "," + file->contentEncoding;
            for (const std::string& id : file->appContextIdList) {
                all += "<" + id + ">";
            }
            all += ";";
        }
        return all;
    }

    CEFDT m_efdt;
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
    const SEFDTInfo& info = *m_efdt.GetEFDTInfo();
    EXPECT_EQ(m_told, std::vector<SEFDTInfo*>{m_efdt.GetEFDTInfo()});
    EXPECT_TRUE(info.tsi == 7 && info.version == 2 && info.maxExpiresDelta == 3 && info.maxTransportSize == 0xFFFFFFFF);
    EXPECT_STREQ(info.idRef, "id");
    EXPECT_STREQ(info.fileTemplate, "t$TOI$");
    const SFDTGlobal& global = *info.fdtGlobal;
    EXPECT_TRUE(global.expires == 4000000000 && global.efdtVersion == 9);
    EXPECT_TRUE(global.fileTemplate == "n$TOI$" && global.maxExpiresDelta == 0 &&
                global.maxTransportSize == 4294967296);
    EXPECT_STREQ(global.contentType, "text/xml");
    EXPECT_STREQ(global.contentEncoding, "gzip");
    EXPECT_EQ(global.appContextIdList, (std::list<std::string>{"a", "b", "", "c"}));
    // A number too great for 63 bits is the greatest.
    EXPECT_EQ(Files(), "l,9223372036854775807,5,6,ct,ce<d>;,18446744073709551615,-1,-1,,;");
    EXPECT_EQ(Logged("[CEFDT::sm_CbFile] location[l], exist[1]"), 1);
    EXPECT_EQ(Logged("[CEFDT::sm_CbFile] contentEncoding = [], exist = 0"), 1);
    EXPECT_EQ(Logged("[CFDTParameters::m_OnFDTParameters] Add afdt:appContextIdList:c"), 1);
    EXPECT_EQ(Logged("[CFDTParameters::m_OnFDTParameters] File"), 2);
}

TEST_F(EFDTTest, DefaultsOrderAndReplacement)
{
    EXPECT_EQ(m_efdt.GetEFDTInfo(), nullptr);
    ASSERT_TRUE(Parse("<any><File TOI='1'/><FDTParameters/><File TOI='2'/></any>"));
    const SEFDTInfo& info = *m_efdt.GetEFDTInfo();
    EXPECT_TRUE(info.tsi == 0xFFFFFFFF && info.version == 0xFFFFFFFF && !info.fileTemplate);
    EXPECT_STREQ(info.idRef, "");
    EXPECT_TRUE(info.fdtGlobal->expires == -1 && !info.fdtGlobal->contentType && info.fdtGlobal->efdtVersion == -1);
    EXPECT_TRUE(info.fdtGlobal->fileTemplate.empty() && info.fdtGlobal->maxExpiresDelta == -1 &&
                info.fdtGlobal->maxTransportSize == -1);
    EXPECT_EQ(Files(), ",2,-1,-1,,;");  // the file before any instance has nothing to join
    EXPECT_EQ(Logged("[CEFDT::sm_CbFile] no FDT instance before the file"), 1);
    EXPECT_EQ(Logged("not exist!!"), 4);
    // An instance inside another takes its place, files and all.
    ASSERT_TRUE(
        Parse("<E><FDT-Instance><File TOI='1'/><FDT-Instance Expires='5'/><File TOI='3'/></FDT-Instance>"
              "<FileTemplate>a</FileTemplate><FileTemplate/></E>"));
    EXPECT_EQ(m_efdt.GetEFDTInfo()->fdtGlobal->expires, 5);
    EXPECT_EQ(Files(), ",3,-1,-1,,;");
    EXPECT_STREQ(m_efdt.GetEFDTInfo()->fileTemplate, "");
    EXPECT_TRUE(m_efdt.SetCallback(nullptr));
    ASSERT_TRUE(Parse("<E/>"));
    EXPECT_EQ(m_efdt.GetEFDTInfo()->fdtGlobal, nullptr);
    EXPECT_FALSE(Parse("<E"));  // the record of the last good one stays
    EXPECT_NE(m_efdt.GetEFDTInfo(), nullptr);
    EXPECT_EQ(m_told.size(), 2u);
}

}  // namespace
