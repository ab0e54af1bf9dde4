#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "Broadcast.h"
#include "Tool.h"
#include "support/Places.h"

namespace {

using TNames = std::set<std::string>;

/// The names that the record gives to numbers, and the documents that are in it.
void Names(const nlohmann::json& record, TNames& names)
{
    for (const auto& [key, value] : record.items()) {
        if (key.rfind("Name") != std::string::npos && value.is_string()) {
            names.insert(key + ' ' + value.get<std::string>());
        } else if (record.is_object() && value.is_object()) {
            names.insert(key);
        }
        if (value.is_structured()) {
            Names(value, names);
        }
    }
}

void ExpectRecorded(const std::string& file, const std::string& bytes)
{
    if (std::getenv("VYR_RECORD") != nullptr) {
        std::ofstream(file, std::ios::binary) << bytes;
    }
    EXPECT_FALSE(bytes.empty());
    EXPECT_TRUE(bytes == ReadFile(file)) << file << ": VYR_RECORD=1 makes it anew";
}

TEST(Sample, IsWhatItsDescriptionsSay)
{
    const CTemporary made;
    ASSERT_EQ(
        std::system(
            ("'" + std::string(k_makeBroadcast) + "' '" + DataFile("broadcast' > '") + made.Name() + '\'').c_str()),
        0);
    ExpectRecorded(DataFile("broadcast.pcap"), ReadFile(made.Name()));
}

TEST(Sample, HasThePageThatIsShown)
{
    const CTemporary page;
    setenv("SOURCE_DATE_EPOCH", "1795309230", 1);
    Inspect("--quiet --html " + page.Name() + " broadcast.pcap");
    unsetenv("SOURCE_DATE_EPOCH");
    std::string html = ReadFile(page.Name());
    const std::size_t name = html.find(page.Name());
    ASSERT_NE(name, std::string::npos);
    ExpectRecorded(TreeFile("docs/sample-report.html"), html.replace(name, page.Name().size(), "sample-report.html"));
}

TEST(Sample, HoldsEverythingThatIsRead)
{
    TNames names;
    TNames changed;
    for (const nlohmann::json& line : Lines(Inspect("--json --full broadcast.pcap").out)) {
        Names(line, names);
        if (line.value("status", "") == "changed") {
            changed.insert(line.value("LLS_table_idName", line.value("message_idName", line.value("name", "SLS"))));
        }
    }
    for (const char* table :
         {"SLT", "RRT", "SystemTime", "AEAT", "OnscreenMessageNotification", "CertificationData", "SignedMultiTable"}) {
        EXPECT_EQ(names.count(std::string("LLS_table_idName ") + table), 1) << table;
        EXPECT_EQ(changed.count(table), 1) << table;
    }
    for (const char* document : {"BundleDescriptionROUTE", "S-TSID", "EFDT", "MPD", "ApplicationList", "HELD", "RSAT",
                                 "BundleDescriptionMMT", "ServiceGuideDeliveryDescriptor", "SGDU", "SGResponse"}) {
        EXPECT_EQ(names.count(document), 1) << document;
    }
    for (const char* message :
         {"PA", "MPI", "MPT", "CRI", "DCI", "AC", "ADC", "LS", "LR", "LDC", "ATSC 3.0", "signed message"}) {
        EXPECT_EQ(names.count(std::string("message_idName ") + message), 1) << message;
    }
    for (const char* table : {"PA", "MPI", "MP", "CRI", "DCI", "SI"}) {
        EXPECT_EQ(names.count(std::string("table_idName ") + table), 1) << table;
    }
    for (const char* descriptor :
         {"clock relation", "MPU timestamp", "dependency", "security information", "video stream properties",
          "caption assets", "audio stream properties", "security properties", "licence servers", "low delay"}) {
        EXPECT_EQ(names.count(std::string("descriptor_tagName ") + descriptor), 1) << descriptor;
    }
    for (const char* fragment : {"Service", "Content", "Schedule"}) {
        EXPECT_EQ(names.count(std::string("fragmentTypeName ") + fragment), 1) << fragment;
    }
    for (const char* status : {"PA", "MPT", "ATSC 3.0", "SGDU", "SLS"}) {
        EXPECT_EQ(changed.count(status), 1) << status;
    }
}

TEST(Sample, HasTheFaultsThatItIsToHaveAndNoOthers)
{
    const std::map<std::string, unsigned> faults = {
        {"session-not-sent", 1},         // the French sound of 2002
        {"many-objects-incomplete", 1},  // 2003 loses packets
        {"no-mpd", 1},                   // 2005
        {"unsigned-sibling", 1},         // 2005
        {"unsignalled-traffic", 1},      // 239.255.99.1:9999
        {"guide-without-content", 1},    // 2002
        {"guide-hole", 1},               // 2005
        {"certificate-ends-soon", 1},
    };
    const packets::SFound found = packets::FindingsOf(ReadFile(DataFile("broadcast.pcap")));
    EXPECT_EQ(found.rules, faults) << found.text;
}

}  // namespace
