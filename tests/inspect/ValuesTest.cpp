#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "MmtCaptures.h"
#include "Packets.h"
#include "Tool.h"
#include "support/Show.h"

namespace {

using namespace packets;

/// The table in a file of its own, as the tool shows it; `json` gets its line.
std::string Shown(unsigned id, const std::string& xml, nlohmann::json& json)
{
    const std::string table = Number(id, 1) + std::string("\0\0\1", 3) + xml;
    json = Lines(Inspect("--json -", table).out).front();
    const std::string text = Inspect("--ignore utc-offset -", table).out;
    return text.substr(0, text.find("\n\n"));
}

TEST(Values, TimesAreWhatTheBroadcastSays)
{
    const struct {
        const char *attributes, *headline;
        nlohmann::json json;
    } k_times[] = {
        {"", "no times", {}},
        {"currentUtcOffset='0' ptpPrepend='0' leap59='false' dsStatus='0' dsDayOfMonth='0' dsHour='0'",
         "TAI-UTC 0 s",
         {{"currentUtcOffset", 0},
          {"ptpPrepend", 0},
          {"leap59", false},
          {"dsStatus", false},
          {"dsDayOfMonth", 0},
          {"dsHour", 0}}},
        {"dsStatus='1' leap61='true' dsDayOfMonth='14'",
         "daylight saving, leap second ahead, daylight saving changes on day 14",
         {{"leap61", true}, {"dsStatus", true}, {"dsDayOfMonth", 14}}},
        {"utcLocalOffset='PT16H'", "local time UTC+16", {{"utcLocalOffsetSeconds", 57600}}},
        {"utcLocalOffset='-PT16H'", "local time UTC-16", {{"utcLocalOffsetSeconds", -57600}}},
        {"utcLocalOffset='-PT960M1S'",
         "local time \"-PT960M1S\" (to a receiver UTC-16:00:01, which no zone has)",
         {{"utcLocalOffsetSeconds", -57601}}},
        {"utcLocalOffset='PT19H'",
         "local time \"PT19H\" (to a receiver UTC+19, which no zone has)",
         {{"utcLocalOffset", "PT19H"}, {"utcLocalOffsetSeconds", 68400}, {"utcLocalOffsetHours", 19.0}}},
        {"utcLocalOffset='P1D'", "local time \"P1D\" (to a receiver UTC+0)", {{"utcLocalOffsetSeconds", 0}}},
        {"utcLocalOffset='5'", "local time \"5\" (to a receiver UTC+0)", {{"utcLocalOffsetSeconds", 0}}},
    };
    nlohmann::json json;
    for (const auto& test : k_times) {
        const std::string text = Shown(3, std::string("<SystemTime ") + test.attributes + "/>", json);
        EXPECT_EQ(text, std::string("-: SystemTime (3) version 1 group 0: new, ") + test.headline);
        for (const char* key :
             {"currentUtcOffset", "ptpPrepend", "leap59", "leap61", "dsStatus", "dsDayOfMonth", "dsHour"}) {
            EXPECT_EQ(json.contains(key), test.json.contains(key)) << key << " of " << test.attributes;
        }
        for (const auto& [key, value] : test.json.items()) {
            EXPECT_EQ(json[key], value) << key;
        }
    }
    const struct {
        const char *zone, *content, *text;
        nlohmann::json replacement;
    } k_certificates[] = {
        {"Europe/Berlin",
         "<CertReplacement NextCert='n' NextCertFrom='2027-07-01T12:00:00Z' CurrentCertUntil='2027-01-15T12:00:00Z'/>",
         "next certificate: n, from 2027-07-01T12:00:00Z, the current one until 2027-01-15T12:00:00Z\n",
         {{"NextCert", "n"}, {"NextCertFrom", "2027-07-01T12:00:00Z"}, {"CurrentCertUntil", "2027-01-15T12:00:00Z"}}},
        {"Europe/Berlin",
         "<CertReplacement NextCertFrom='2027-03-28T00:59:59Z' NextCert='n'/>",
         "next certificate: n, from 2027-03-28T00:59:59Z\n",
         {{"NextCert", "n"}, {"NextCertFrom", "2027-03-28T00:59:59Z"}}},
        {"Europe/Berlin",
         "<CertReplacement NextCertFrom='2027-03-28T01:00:00Z'/>",
         "next certificate: from 2027-03-28T01:00:00Z\n",
         {{"NextCertFrom", "2027-03-28T01:00:00Z"}}},
        {"America/New_York",
         "<CertReplacement CurrentCertUntil='2027-07-01T08:00:00-04:00' NextCert='n'/>",
         "next certificate: n, the current one until 2027-07-01T12:00:00Z\n",
         {{"NextCert", "n"}, {"CurrentCertUntil", "2027-07-01T12:00:00Z"}}},
        {"UTC0",
         "<CertReplacement CurrentCertUntil='1970-01-01T00:00:00Z' NextCertFrom='soon'/>",
         "next certificate: from \"soon\" (no time), the current one until 1970-01-01T00:00:00Z\n",
         {{"NextCertFrom", "soon"}, {"CurrentCertUntil", "1970-01-01T00:00:00Z"}}},
        {"UTC0", "<CertReplacement NextCert='n'/>", "next certificate: n\n", {{"NextCert", "n"}}},
        {"UTC0", "<CertReplacement/>", nullptr, {}},
        {"UTC0", "<ToBeSignedData OCSPRefresh='PT2147483647S'/>", "renewed every 2147483647 s\n", {}},
        {"UTC0",
         "<ToBeSignedData OCSPRefresh='PT2147483648S'/>",
         "renewed every \"PT2147483648S\" (to a receiver -2147483648 s)\n",
         {}},
        {"UTC0", "<ToBeSignedData OCSPRefresh='P1D'/>", "renewed every \"P1D\" (to a receiver 0 s)\n", {}},
        {"UTC0", "<ToBeSignedData OCSPRefresh='PT0S'/>", "renewed every 0 s\n", {}},
        {"UTC0", "<ToBeSignedData/>", nullptr, {}},
    };
    for (const auto& test : k_certificates) {
        setenv("TZ", test.zone, 1);
        const std::string text =
            Shown(6, std::string("<CertificationData>") + test.content + "</CertificationData>", json) + '\n';
        EXPECT_EQ(json.value("CertReplacement", nlohmann::json()), test.replacement) << test.content;
        EXPECT_NE(text.find(test.text != nullptr ? test.text : "group 0: new, 0 certificates, 0 OCSP responses\n-:"),
                  std::string::npos)
            << text;
        EXPECT_EQ(json.contains("OCSPRefreshSeconds"), std::strstr(test.content, "OCSPRefresh") != nullptr);
    }
    unsetenv("TZ");
}

TEST(Values, WhatTheBroadcastDoesNotGiveIsNotShown)
{
    const std::string full =
        "<Service serviceId='1' serviceCategory='0' sltSvcSeqNum='0' majorChannelNo='0' minorChannelNo='0' "
        "protected='false' hidden='1' hideInGuide='true' broadbandAccessRequired='false' configuration='Broadband'>"
        "<BroadcastSvcSignaling slsProtocol='0' slsMajorProtocolVersion='0' slsMinorProtocolVersion='0' "
        "slsDestinationIpAddress='0.0.0.0' slsDestinationUdpPort='0'/></Service>";
    const std::string bare = "<Service serviceId='2'><BroadcastSvcSignaling/></Service>";
    const std::vector<nlohmann::json> lines = Lines(Inspect("--json -", Slt(full + bare, 1)).out);
    for (const char* key :
         {"sltSvcSeqNum", "protected", "majorChannelNo", "minorChannelNo", "serviceCategory", "hidden", "hideInGuide",
          "broadbandAccessRequired", "configuration", "slsProtocol", "slsMajorProtocolVersion",
          "slsMinorProtocolVersion", "slsDestinationIpAddress", "slsDestinationUdpPort"}) {
        EXPECT_TRUE(lines[1].contains(key)) << key;
        EXPECT_FALSE(lines[2].contains(key)) << key;
    }
    EXPECT_EQ(lines[1]["hidden"], true);
    const std::string text = Inspect("-", Slt(full + bare, 1)).out;
    EXPECT_NE(text.find("  1   0.0      -     0         0         0.0.0.0:0    -       hidden, hideInGuide, "
                        "configuration Broadband\n  2   -        -     -         -         -            -\n"),
              std::string::npos)
        << text;

    const std::string usbd = "<BundleDescriptionROUTE><UserServiceDescription serviceId='1' ";
    const struct {
        const char *attribute, *headline;
        nlohmann::json status;
    } k_statuses[] = {{"", "service 1\n", nullptr},
                      {"serviceStatus='1'", "service 1, active\n", true},
                      {"serviceStatus='true'", "service 1, active (to a receiver off)\n", true},
                      {"serviceStatus='0'", "service 1, off\n", false}};
    for (const auto& test : k_statuses) {
        const std::string document = usbd + test.attribute + "/></BundleDescriptionROUTE>";
        EXPECT_NE(Inspect("-", document).out.find(test.headline), std::string::npos) << test.attribute;
        const nlohmann::json json = Lines(Inspect("--json -", document).out)[0]["BundleDescriptionROUTE"];
        EXPECT_EQ(json.value("serviceStatus", nlohmann::json()), test.status);
    }
    const nlohmann::json flows =
        Lines(Inspect("--json -",
                      "<S-TSID><RS><LS tsi='1' startTime='2027-07-01T12:00:00+02:00' endTime='soon'>"
                      "<SrcFlow rt='false'><ContentInfo><MediaInfo startUp='0'/></ContentInfo></SrcFlow>"
                      "<SrcFlow><ContentInfo><MediaInfo/></ContentInfo></SrcFlow></LS></RS></S-TSID>")
                  .out)[0]["S-TSID"]["RS"][0]["LS"][0];
    EXPECT_EQ(flows["startTime"], "2027-07-01T10:00:00Z");
    EXPECT_EQ(flows["endTime"], "soon");
    EXPECT_EQ(flows["SrcFlow"][0]["rt"], false);
    EXPECT_EQ(flows["SrcFlow"][0]["ContentInfo"]["MediaInfo"]["startUp"], false);
    EXPECT_EQ(
        Join(flows["SrcFlow"][1].contains("rt"), flows["SrcFlow"][1]["ContentInfo"]["MediaInfo"].contains("startUp")),
        "0|0");
}

TEST(Values, AnInstantReadsTheSameEverywhere)
{
    const CTemporary page;
    CCapture capture(1, 65535, true);
    const std::string bytes = capture.AddLls(Slt(Service(1), 1)).Bytes();
    std::string odd = bytes;
    odd.replace(28, 4, Number(999999999, 4));  // the nanoseconds of the packet
    EXPECT_NE(Inspect("--html '" + page.Name() + "' -", odd).out.find("packet 1, 2027-01-15T08:00:00.999999999Z  SLT"),
              std::string::npos);
    EXPECT_NE(ReadFile(page.Name()).find("datetime=\"2027-01-15T08:00:00.999999999Z\">08:00:00.999999999<"),
              std::string::npos);
    EXPECT_EQ(Lines(Inspect("--json -", odd).out)[0]["source"]["time"], "2027-01-15T08:00:00.999999999Z");
}

}  // namespace
