#include <gtest/gtest.h>

#include "Broadcast.h"

namespace {

using namespace packets;

/// A second service on a session of its own, which is announced and not sent: rules of the list alone are looked at.
std::string Another(const std::string& attributes, unsigned port = 5001, unsigned protocol = 1)
{
    return "<Service protected=\"false\" hidden=\"false\" broadbandAccessRequired=\"false\" " + attributes +
           "><BroadcastSvcSignaling slsProtocol=\"" + std::to_string(protocol) +
           "\" slsDestinationIpAddress=\"239.255.7.1\" slsDestinationUdpPort=\"" + std::to_string(port) +
           "\"/></Service>";
}

/// What the list says of its service, changed.
auto List(const std::string& part, const std::string& other)
{
    return [=](SBroadcast& b) { b.services = With(b.services, part, other); };
}

/// Another list from the sixth round on.
auto NextList(const std::string& part, const std::string& other, const std::string& part2 = {},
              const std::string& other2 = {})
{
    return [=](SBroadcast& b) {
        const std::string next = "<SLT bsid=\"5\">" + With(With(b.services, part, other), part2, other2) + "</SLT>";
        b.change = [next](SSent& sent) {
            if (sent.table == 1 && sent.round >= 6) {
                sent.data = sent.data.substr(0, 3) + Number(2, 1) + next;
            }
            return true;
        };
    };
}

/// A list of another group in place of the system time.
auto OtherList(const std::string& attributes)
{
    return [=](SBroadcast& b) {
        b.change = [=](SSent& sent) {
            if (sent.table == 3) {
                sent.data = Number(1, 1) + Number(1, 1) + Number(1, 1) + Number(1, 1) + "<SLT bsid=\"5\">" +
                            Another(attributes) + "</SLT>";
            }
            return true;
        };
    };
}

/// A list of group 1 in place of the system time, until that round: service 2 is in the list of group 0 from one round
/// on, and in that of group 1 until another.
auto TwoLists(unsigned comes, unsigned leaves, unsigned gone = 99, unsigned groupsLeft = 0)
{
    return [=](SBroadcast& b) {
        const std::string first = b.services;
        const std::string second = Another("serviceId=\"2\" serviceCategory=\"4\"");
        const std::string third = Another("serviceId=\"3\" serviceCategory=\"4\"", 5003);
        b.change = [=](SSent& sent) {
            const bool changed = sent.round >= (sent.table == 1 ? comes : leaves);
            const std::string list = sent.table == 1 ? first + (changed ? second : "") : changed ? third : second;
            if (sent.kind == SSent::LLS) {
                sent.data = Number(1, 1) + Number(sent.table / 2, 1) + Number(sent.round < gone ? 1 : groupsLeft, 1) +
                            Number(changed ? 2 : 1, 1) + "<SLT bsid=\"5\">" + list + "</SLT>";
            }
            return sent.table != 3 || sent.round < gone;
        };
    };
}

auto Without(unsigned table, unsigned from, unsigned to)
{
    return [=](SBroadcast& b) {
        b.change = [=](SSent& sent) { return sent.table != table || sent.round < from || sent.round >= to; };
    };
}

/// The service list in a signed multi-table, but for the rounds between.
auto Wrapped(unsigned from, unsigned to)
{
    return [=](SBroadcast& b) {
        b.change = [=](SSent& sent) {
            if (sent.table == 1) {
                const std::string list = sent.data.substr(4);
                sent.data = Number(0xFE000001, 4) + Number(0x010101, 3) + Number(list.size(), 2) + list + Number(0, 2);
            }
            return sent.table != 1 || sent.round < from || sent.round >= to;
        };
    };
}

TEST(Rules, ServiceLists)
{
    const auto more = [](const std::string& service) { return [=](SBroadcast& b) { b.services += service; }; };
    const std::string quiet = "--ignore no-signalling";
    CheckRules({
        {"sound", {}, [](SBroadcast&) {}},
        {"no multicast", {{"not-multicast", 1}, {"no-signalling", 1}}, List("239.255.7.1", "192.0.2.1")},
        {"an id twice",
         {{"service-id-twice", 1}},
         more(Another("serviceId=\"1\" majorChannelNo=\"7\" minorChannelNo=\"2\" serviceCategory=\"1\"")),
         quiet},
        {"two ids",
         {},
         more(Another("serviceId=\"2\" majorChannelNo=\"7\" minorChannelNo=\"2\" serviceCategory=\"1\"")),
         quiet},
        {"an id in two lists", {{"service-id-twice", 1}}, OtherList("serviceId=\"1\" serviceCategory=\"4\""), quiet},
        {"a service that goes over to another list", {}, TwoLists(6, 6), quiet},
        {"that is in both for a while", {{"service-id-twice", 1}}, TwoLists(6, 8), quiet},
        {"that is in both from the begin", {{"service-id-twice", 1}}, TwoLists(0, 99), quiet},
        {"that goes over, and there is no other group any more", {}, TwoLists(3, 99, 3), quiet},
        {"5 s before the end",
         {},
         [](SBroadcast& b) {
             TwoLists(3, 99, 3)(b);
             b.rounds = 8;
         },
         quiet},
        {"and there is, by the tables", {{"table-interval", 1}}, TwoLists(3, 99, 3, 1), quiet},
        {"another group that there was not before",
         {},
         [](SBroadcast& b) {
             TwoLists(99, 99)(b);
             b.change = [both = b.change](SSent& sent) {
                 const bool is = both(sent) && (sent.table != 3 || sent.round >= 7);
                 if (sent.kind == SSent::LLS && sent.round < 7) {
                     sent.data[2] = 0;
                 }
                 return is;
             };
         },
         quiet},
        {"two lists", {}, OtherList("serviceId=\"2\" serviceCategory=\"4\""), quiet},
        {"a channel twice",
         {{"channel-twice", 1}},
         more(Another("serviceId=\"2\" majorChannelNo=\"7\" minorChannelNo=\"1\" serviceCategory=\"1\"")),
         quiet},
        {"none twice",
         {},
         more(Another("serviceId=\"2\" serviceCategory=\"4\"") +
              Another("serviceId=\"3\" serviceCategory=\"4\"", 5002)),
         quiet},
        {"two protocols",
         {{"session-two-protocols", 1}, {"mmtp-malformed", 1}},
         more(Another("serviceId=\"2\" serviceCategory=\"4\"", 5000, 2)),
         quiet},
        {"two protocols of two sources",
         {},
         more(With(Another("serviceId=\"2\" serviceCategory=\"4\"", 5000, 2), "slsProtocol",
                   "slsSourceIpAddress=\"192.0.2.11\" slsProtocol")),
         quiet},
        {"one session",
         {{"session-shared", 1}},
         more(Another("serviceId=\"2\" majorChannelNo=\"7\" minorChannelNo=\"2\" serviceCategory=\"1\"", 5000)),
         quiet},
        {"category", {{"category-unknown", 1}}, List("serviceCategory=\"1\"", "serviceCategory=\"99\"")},
        {"protocol", {{"protocol-unknown", 1}}, more(Another("serviceId=\"2\" serviceCategory=\"4\"", 5001, 3)), quiet},
        {"version",
         {{"protocol-version-unknown", 1}},
         List("MajorProtocolVersion=\"1\"", "MajorProtocolVersion=\"2\"")},
        {"minor version", {}, List("MinorProtocolVersion=\"0\"", "MinorProtocolVersion=\"1\"")},
        {"URL type",
         {{"url-type-unknown", 1}},
         List("</Service>", "<SvcInetUrl urlType=\"99\">http://a/</SvcInetUrl></Service>")},
        {"known URL", {}, List("</Service>", "<SvcInetUrl urlType=\"1\">http://a/</SvcInetUrl></Service>")},
        {"broadband",
         {{"broadband-without-url", 1}},
         List("broadbandAccessRequired=\"false\"", "broadbandAccessRequired=\"true\""),
         "--set db/menu/broadcasting/atsc3_bb_option=1"},
        {"broadband and URL",
         {},
         [](SBroadcast& b) {
             b.services = "<SLTInetUrl urlType=\"1\">http://a/</SLTInetUrl>" +
                          With(b.services, "Required=\"false\"", "Required=\"true\"");
         },
         "--set db/menu/broadcasting/atsc3_bb_option=1"},
        {"broadband, not listed",
         {{"service-left-out", 1}},
         List("broadbandAccessRequired=\"false\"", "broadbandAccessRequired=\"true\"")},
        {"long name", {{"name-too-long", 1}}, List("NEWS", "NEWSNEWS")},
        {"seven characters", {}, List("NEWS", "N\xC3\x89WSN\xC3\x89W")},
        {"hidden", {{"hidden-linear", 1}}, List("hidden=\"false\"", "hidden=\"true\"")},
        {"changed, same number", {{"sequence-unchanged", 1}}, NextList("NEWS", "NEWS2")},
        {"changed, next number",
         {},
         NextList("sltSvcSeqNum=\"1\" protected=\"false\"", "sltSvcSeqNum=\"2\" protected=\"true\""),
         "--ignore no-signalling --ignore protection-missing"},
        {"next number, for an element that is not read",
         {},
         [](SBroadcast& b) {
             b.services = With(b.services, "</Service>", "<OtherBsid type=\"1\">7</OtherBsid></Service>");
             NextList("\"1\" protected=\"false\"", "\"2\" protected=\"false\"", ">7<", ">8<")(b);
         }},
        {"next number alone", {{"sequence-changed", 1}}, NextList("sltSvcSeqNum=\"1\"", "sltSvcSeqNum=\"2\"")},
    });
}

TEST(Rules, WhenTablesCome)
{
    CheckRules({
        {"a gap of 6 s", {{"table-interval", 1}}, Without(1, 3, 8)},
        {"a gap of 5 s", {}, Without(1, 3, 7)},
        {"a gap of 5 s, and a limit of 4", {{"table-interval", 1}}, Without(1, 3, 7), "--max-interval 4"},
        {"not in the end", {{"table-interval", 1}}, Without(1, 5, 12)},
        {"not in the beginning", {{"table-interval", 1}}, Without(1, 0, 6), "--ignore no-signalling"},
        {"a gap of another table", {}, Without(3, 3, 10)},
        {"another table once", {{"table-once", 1}}, Without(3, 1, 12)},
        {"another table at the end", {}, Without(3, 0, 8)},
        {"in a signed table that comes again", {}, Wrapped(0, 0), "--ignore bad-signature --ignore unsigned-sibling"},
        {"in one that stays away",
         {{"table-interval", 1}},
         Wrapped(3, 8),
         "--ignore bad-signature --ignore unsigned-sibling"},
    });
}

TEST(Rules, Time)
{
    const auto time = [](const std::string& part, const std::string& other) {
        return [=](SBroadcast& b) { b.systemTime = With(b.systemTime, part, other); };
    };
    const auto next = [](const std::string& attributes) {
        return [=](SBroadcast& b) {
            b.change = [=](SSent& sent) {
                if (sent.table == 3 && sent.round >= 6) {
                    sent.data = Number(3, 1) + Number(0, 2) + Number(2, 1) + "<SystemTime currentUtcOffset=\"37\" " +
                                attributes + "/>";
                }
                return true;
            };
        };
    };
    CheckRules({
        {"TAI", {{"tai-offset", 1}}, time("\"37\"", "\"36\"")},
        {"no zone", {{"utc-offset", 1}}, time("-PT5H", "PT15H")},
        {"a quarter", {}, time("-PT5H", "PT5H45M")},
        {"ten minutes", {{"utc-offset", 1}}, time("-PT5H", "-PT5H10M")},
        {"the east", {}, time("-PT5H", "PT14H")},
        {"epoch", {{"system-time", 1}}, time("currentUtcOffset", "ptpPrepend=\"1\" currentUtcOffset")},
        {"summer begins", {}, next("utcLocalOffset=\"-PT4H\" dsStatus=\"true\"")},
        {"summer without its hour", {{"daylight-saving", 1}}, next("utcLocalOffset=\"-PT5H\" dsStatus=\"true\"")},
        {"an hour without summer", {{"daylight-saving", 1}}, next("utcLocalOffset=\"-PT4H\" dsStatus=\"false\"")},
        {"an hour back in summer", {{"daylight-saving", 1}}, next("utcLocalOffset=\"-PT6H\" dsStatus=\"true\"")},
    });
}

}  // namespace
