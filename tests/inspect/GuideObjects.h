#pragma once

#include <string>
#include <utility>
#include <vector>

#include "Packets.h"

/// Builders of the service guide's objects.
namespace guide {

constexpr unsigned k_evening = 1795300200u + 2208988800u;  ///< NTP seconds of 2026-11-21T22:30:00Z
constexpr unsigned k_hour = 3600;

inline std::string Fragment(const std::string& element, const std::string& id, int version,
                            const std::string& children = {})
{
    return "<" + element + " xmlns='urn:oma:xml:bcast:sg:fragments:1.0' id='" + id + "' version='" +
           std::to_string(version) + "' validFrom='" + std::to_string(k_evening) + "'>" + children + "</" + element +
           ">";
}

inline std::string Text(const std::string& element, const std::string& lang, const std::string& text)
{
    return "<" + element + " xml:lang='" + lang + "'>" + text + "</" + element + ">";
}

inline std::string Reference(const std::string& element, const std::string& id, const std::string& children = {})
{
    return "<" + element + "Reference idRef='" + id + "'>" + children + "</" + element + "Reference>";
}

inline std::string Window(unsigned start, unsigned end)
{
    return "<PresentationWindow startTime='" + std::to_string(start) + "' endTime='" + std::to_string(end) + "'/>";
}

/// A delivery unit of XML fragments: type and text of each.
inline std::string Unit(const std::vector<std::pair<int, std::string>>& fragments)
{
    using packets::Number;
    std::string table = Number(0, 6) + Number(fragments.size(), 3);
    std::string bytes;
    unsigned id = 100;
    for (const auto& [type, text] : fragments) {
        table += Number(id++, 4) + Number(1, 4) + Number(bytes.size(), 4);
        bytes += Number(0, 1) + Number(static_cast<unsigned>(type), 1) + text;
    }
    return table + bytes;
}

const std::string k_service1 =
    Fragment("Service", "s1", 1,
             Text("Name", "en", "NEWS") + Text("Name", "es", "NOTICIAS") + Text("Description", "en", "All day") +
                 "<Genre>urn:tva:metadata:cs:ContentCS:1</Genre><PrivateExt><ATSC3ServiceExtension>"
                 "<MajorChannelNum>7</MajorChannelNum><MinorChannelNum>1</MinorChannelNum></ATSC3ServiceExtension>"
                 "</PrivateExt>");
const std::string k_service2 = "<Service id='s2' version='1' globalServiceID='urn:x:2'><Name>Movies</Name></Service>";
const std::string k_content1 = Fragment(
    "Content", "c1", 1,
    Text("Name", "en", "Late news") + Text("Name", "es", "Noticias de la noche") +
        Text("Description", "en", "The day.\nAnd the &#x9b;night.") +
        "<AudioLanguage languageSDPTag='en'>English</AudioLanguage><TextLanguage>es</TextLanguage>"
        "<ContentAdvisoryRatings><RegionIdentifier>1</RegionIdentifier><RatingDescription>TV-PG</RatingDescription>"
        "</ContentAdvisoryRatings><Genre href='urn:g'>urn:tva:metadata:cs:ContentCS:2</Genre>");
const std::string k_content2 = Fragment("Content", "c2", 1, Text("Name", "en", "Weather"));
const std::string k_content3 =
    Fragment("Content", "c3", 1, Reference("Service", "s2") + Text("Name", "en", "On demand"));
/// Over midnight; then by start and duration alone; then a content that does not come.
const std::string k_schedule1 =
    Fragment("Schedule", "t1", 1,
             Reference("Service", "s1") + Reference("Content", "c1", Window(k_evening, k_evening + 2 * k_hour)) +
                 Reference("Content", "c2",
                           "<PresentationWindow><StartTime>" + std::to_string(k_evening - k_hour) +
                               "</StartTime><Duration>90</Duration></PresentationWindow>") +
                 Reference("Content", "c9", Window(k_evening + 2 * k_hour, k_evening + 3 * k_hour)) +
                 Reference("Content", "c2"));
const std::string k_schedule2 =
    Fragment("Schedule", "t2", 1, Reference("Service", "s9") + Reference("Content", "c2", Window(10, 20)));

/// Everything above, and fragments that are not read between those that are.
inline std::string WholeUnit()
{
    return Unit({{1, k_service1},
                 {2, "<Content id='bad'><Name></Content>"},
                 {1, k_service2},
                 {2, "<Content version='1'/>"},
                 {2, k_content1},
                 {3, k_content1},
                 {2, k_content2},
                 {2, k_content3},
                 {4, "<Access id='a'/>"},
                 {3, k_schedule1},
                 {77, "<Other/>"},
                 {3, k_schedule2}});
}

const std::string k_descriptor =
    "<?xml version='1.0'?><!-- > --><ServiceGuideDeliveryDescriptor xmlns='urn:sgdd' id='d1' version='3'>"
    "<DescriptorEntry type='1'><GroupingCriteria><TimeGroupingCriteria startTime='" +
    std::to_string(k_evening) + "' endTime='" + std::to_string(k_evening + k_hour) +
    "'/><ServiceCriteria>s1</ServiceCriteria></GroupingCriteria>"
    "<Transport ipAddress='239.255.7.1' port='6004' srcIpAddress='192.0.2.10' transmissionSessionID='20' "
    "hasFDT='true'/>"
    "<AlternativeAccessURL>http://a/</AlternativeAccessURL>"
    "<ServiceGuideDeliveryUnit transportObjectID='5' contentLocation='g.sgdu' validFrom='" +
    std::to_string(k_evening) +
    "'><Fragment transportID='100' id='s1' fragmentEncoding='0' fragmentType='1'/>"
    "<Fragment transportID='101' id='c1' fragmentEncoding='0' fragmentType='2' validTo='" +
    std::to_string(k_evening) +
    "'/></ServiceGuideDeliveryUnit></DescriptorEntry><DescriptorEntry/></ServiceGuideDeliveryDescriptor>";
const std::string k_response =
    "<SGResponse status='1' lastResponseVersion='2'><SupportedVersion>1.0</SupportedVersion><ResponseValidity "
    "expirationTime='60' timeWindow='7'/>" +
    k_descriptor.substr(k_descriptor.find("<Service")) + "<PrivateExt>p</PrivateExt></SGResponse>";

}  // namespace guide
