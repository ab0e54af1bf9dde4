// What would be quadratic does not end in time.
#include <ctime>

#include "common/ChannelMap.h"
#include "common/CoreOS/PtrArray.h"
#include "common/RSAT.h"
#include "esg/ESGFragmentMap.h"
#include "esg/SGResponse.h"
#include "lls/ParseCDT.h"
#include "platform/Platform.h"
#include "support/ParserTest.h"
#include "support/Patience.h"
#include "support/Show.h"
#include "support/Tables.h"

namespace {

std::string Repeat(const std::string& text, int times)
{
    std::string all;
    while (times-- > 0) {
        all += text;
    }
    return all;
}

class GrowthTest : public CRecorder {
  protected:
    void SetUp() override
    {
        CRecorder::SetUp();
        SetLogPriority(LOG_PRIORITY_INFO);
    }
    void TearDown() override
    {
        SetLogPriority(LOG_PRIORITY_DEBUG);
        CRecorder::TearDown();
    }
};

TEST_F(GrowthTest, LongListsEnd)
{
    static const struct {
        const char* name;
        int n;
        void (*run)(int n);
    } k_cases[] = {
        {"Append", 2000000,
         [](int n) {
             CCPtrArray array(CCPtrArray::DummyCallback, nullptr);
             for (int i = 0; i < n; ++i) {
                 array.Add(&array);
             }
             EXPECT_EQ(array.Size(), n);
         }},
        {"Set one by one", 2000000,
         [](int n) {
             CCPtrArray array(CCPtrArray::DummyCallback, nullptr);
             for (int i = 0; i < n; ++i) {
                 array.Set(i, &array);
             }
             EXPECT_EQ(array.ValidCount(), n);
         }},
        {"Updates", 200000,
         [](int n) {
             CRSAT rsat;
             rsat.Create();
             EXPECT_TRUE(ParseXml(rsat, "<RSAT timestamp=''><Service>" + Repeat("<Update/>", n - 1) +
                                            "<Update validFrom='z'/></Service></RSAT>"));
             SRSATUpdateInfo info;
             for (int i = 0; i < rsat.NumOfUpdate(0); ++i) {
                 EXPECT_TRUE(rsat.GetUpdateInfo(0, i, &info));
             }
             EXPECT_EQ(info.validFrom, "z");
             EXPECT_FALSE(rsat.GetUpdateInfo(0, n, &info));
             rsat.Destroy();
         }},
        {"Services that come and go", 300000,
         [](int n) {
             SCreated<CChannelMap> map;
             std::vector<void*> services;
             for (int i = 0; i < n; ++i) {
                 services.push_back(map.AddService(nullptr, 1, i, 1, 1, 0, 0, 0, false, nullptr));
             }
             for (int i = n; i-- > 0;) {
                 EXPECT_TRUE(map.RemoveService(services[static_cast<std::size_t>(i)]));
             }
         }},
        {"Fragments", 200000,
         [](int n) {
             SCreated<CESGFragmentMap> map;
             for (int i = 0; i < n; ++i) {
                 map.Add(std::to_string(i).c_str());
             }
             for (int i = n; i-- > 0;) {
                 EXPECT_EQ(Each({map.isExisted(std::to_string(i).c_str()), map.Remove(std::to_string(i).c_str())}),
                           "11");
             }
         }},
        {"References", 200000,
         [](int n) {
             CXML xml;
             // Newer libxml2 itself refuses many that are shorter than five bytes.
             const std::string text = "<!DOCTYPE a [<!ENTITY ent 'y'>]><a b='" + Repeat("x&ent;", n) + "'/>";
             ASSERT_TRUE(xml.Create(text.data(), static_cast<int>(text.size()), false));
             void* root = nullptr;
             xml.MoveRoot(&root);
             EXPECT_EQ(xml.getStringProp(root, "b", nullptr), Repeat("xy", n));
             xml.Destroy();
         }},
        {"Namespaces", 6000,
         [](int n) {
             CSGResponse response;
             response.Create();
             EXPECT_TRUE(ParseXml(response, "<SGResponse xmlns='" + std::string(static_cast<std::size_t>(30 * n), 'u') +
                                                "'>" + Repeat("<ServiceGuideDeliveryDescriptor/>", n) +
                                                "</SGResponse>"));
             const auto& descriptors = response.State()->descriptors;
             EXPECT_EQ(descriptors.size(), static_cast<std::size_t>(n));
             EXPECT_EQ(descriptors.back()->State()->ns, descriptors.front()->State()->ns);
             response.Destroy();
         }},
    };
    for (const auto& c : k_cases) {
        const CPatience patience(c.name);
        c.run(c.n);
    }
}

/// Elements in elements are not written out at every level.
TEST_F(GrowthTest, SignedDataInSignedData)
{
    constexpr int k_levels = 240;
    SCreated<CParseCDT> cdt;
    const std::string signedData = Repeat("<ToBeSignedData>", k_levels) +
                                   Repeat("<CurrentCert>c</CurrentCert>", 18000) + "<Certificates>d</Certificates>" +
                                   Repeat("</ToBeSignedData>", k_levels);
    const CPatience patience("levels");
    for (int i = 0; i < 20; ++i) {
        FeedXml(cdt, "<CertificationData>" + signedData + "</CertificationData>");
    }
    std::string text;
    std::list<std::string> certificates;
    EXPECT_EQ(Join(cdt.GetToBeSignedData(text), text), "1|" + signedData);
    EXPECT_TRUE(cdt.GetCertificates(certificates));
    EXPECT_EQ(certificates, std::list<std::string>{"d"});
}

}  // namespace
