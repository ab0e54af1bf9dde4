#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "Broadcast.h"
#include "Markup.h"
#include "Pictures.h"
#include "measure/Arrivals.h"
#include "report/HtmlReport.h"

namespace {

using namespace vyr::inspect;

/// The section of a page without its markup; what begins a text of its own is set apart.
std::string Section(const std::string& page, const std::string& id)
{
    const std::size_t begin = page.find("<section id=\"" + id + "\">");
    if (begin == std::string::npos) {
        return {};
    }
    std::string text;
    for (std::size_t at = page.find("</h2>", begin); page.compare(at, 10, "</section>") != 0; ++at) {
        if (page[at] == '<') {
            text += !text.empty() && text.back() != '|' && page[at + 1] != '/' && page[at + 1] != 'b' ? "|" : "";
            at = page.find('>', at);
        } else {
            text += page[at];
        }
    }
    return text;
}

std::string Page(const SDelivery& delivery)
{
    CHtmlReport report;
    report.Received(std::size_t{1} << 24);
    report.Delivery(delivery);
    report.Summary({});
    EXPECT_EQ(MarkupFault(report.Page()), "");
    return report.Page();
}

/// The pictures' names with their legends: "[Traffic without signalling] 239.255.7.1:5000 ROUTE: 2 bytes; ".
std::string Legends(const std::string& page)
{
    std::string text;
    for (std::size_t at = page.find("<section id=\"rates\">"); at != std::string::npos;) {
        const std::size_t title = page.find("<h4>", at);
        const std::size_t item = page.find("<li><span", at);
        at = std::min({title, item, page.find("</section>", at)});
        const std::size_t end = page.find(at == title ? "</h4>" : "</li>", at);
        if (at != title && at != item) {
            break;
        }
        std::string words;
        for (; at < end; ++at) {
            at = page[at] == '<' ? page.find('>', at) : at;
            words += page[at] == '>' ? "" : std::string(1, page[at]);
        }
        text += at >= title && title < item ? '[' + words + ']' : words + ';';
    }
    return text;
}

TEST(Pictures, RatesOfServices)
{
    const auto flow = [](std::uint64_t tsi, std::vector<unsigned> services, std::uint64_t bytes) {
        SFlowDelivery made = pictures::Flow(tsi, "x", {bytes, bytes});
        made.services = std::move(services);
        return made;
    };
    const struct {
        const char* name;
        std::vector<SSessionDelivery> sessions;
        std::string shown;
        double seconds = 2;
        bool namesKnown = true;
    } cases[] = {
        {"a flow is its services', or else its session's",
         {pictures::Session(5000, {1, 2}, {flow(1, {2, 3}, 125), flow(2, {}, 250)})},
         "[1] TSI 2 x: 500 bytes;[2] TSI 2 x: 500 bytes; TSI 1 x: 250 bytes;[3] TSI 1 x: 250 bytes;"},
        {"of several sessions",
         {pictures::Session(5000, {1}, {flow(1, {}, 1)}), pictures::Session(5001, {1}, {flow(1, {}, 2)})},
         "[1] 239.255.7.1:5001 TSI 1 x: 4 bytes; 239.255.7.1:5000 TSI 1 x: 2 bytes;"},
        {"sessions that are in no flow, and in part",
         {pictures::Session(5000, {1}, {}, {9, 9}), pictures::Session(5001, {2}, {flow(1, {}, 8)}, {9, 8}),
          pictures::Session(5002, {3}, {flow(1, {}, 8)}, {8, 8})},
         "[1] ROUTE: 18 bytes;[2] TSI 1 x: 16 bytes; what is in no flow: 1 byte;[3] TSI 1 x: 16 bytes;"},
        {"of no service, and of no name",
         {pictures::Session(5000, {}, {flow(1, {}, 8)}), pictures::Session(5001, {}, {}, {1, 2}, true)},
         "[LLS, and sessions of no service] 239.255.7.1:5000 ROUTE: 16 bytes;[Traffic without signalling] "
         "239.255.7.1:5001: 3 bytes;"},
        {"of names that are not all known",
         {pictures::Session(5001, {}, {}, {1, 2}, true)},
         "[Other sessions] 239.255.7.1:5001: 3 bytes;",
         2,
         false},
        {"nothing came", {pictures::Session(5000, {1}, {})}, "[1]"},
        {"nothing but in the last second", {pictures::Session(5000, {1}, {}, {0, 9})}, "[1]", 1.999},
        {"no second is whole", {pictures::Session(5000, {1}, {}, {9, 9})}, "", 0.999},
        {"one is", {pictures::Session(5000, {1}, {}, {9, 9})}, "[1] ROUTE: 18 bytes;", 1},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        SDelivery delivery = pictures::Delivery(test.sessions, test.seconds);
        delivery.namesKnown = test.namesKnown;
        const std::string page = Page(delivery);
        EXPECT_EQ(Legends(page), test.shown);
        EXPECT_EQ(page.find("<svg class=\"chart\"") != std::string::npos, test.shown.find(';') != std::string::npos);
    }
}

TEST(Pictures, RatesAreStackedOnTheirAxes)
{
    // kbit/s: 1, 0, 2 below, 1, 3, 0 above; the third second is of the next column's bins.
    SDelivery delivery = pictures::Delivery(
        {pictures::Session(5000, {1}, {pictures::Flow(1, "v", {125, 0, 500}), pictures::Flow(2, "a", {125, 375})})},
        3.5);
    std::string page = Page(delivery);
    EXPECT_NE(page.find("<path class=\"c0\" d=\"M76 133.5V133.5H250.7V170H425.3V24H600V170H425.3V170H250.7V170H76Z\">"),
              std::string::npos)
        << page;
    EXPECT_NE(page.find("<path class=\"c1\" d=\"M76 97V97H250.7V60.5H425.3V24H600V24H425.3V170H250.7V133.5H76Z\">"),
              std::string::npos);
    EXPECT_NE(page.find("The most, 4.0 kbit/s, came within 1 s from second 2 on."), std::string::npos);
    EXPECT_NE(page.find(">seconds since 2027-01-15T08:00:00.000Z<"), std::string::npos);
    // Bins that are too many for columns: 300 of 2 s in 100 columns of 3 bins.
    delivery =
        pictures::Delivery({pictures::Session(5000, {1}, {pictures::Flow(1, "v", {750, 0, 0, 0, 0, 1500})})}, 600);
    delivery.binSeconds = 2;
    delivery.clockSet = 1;
    page = Page(delivery);
    EXPECT_NE(page.find("d=\"M76 97V97H81.2V24H86.5V170H"), std::string::npos) << page;
    EXPECT_NE(page.find("The most, 2.0 kbit/s, came within 6 s from second 6 on."), std::string::npos);
    EXPECT_NE(page.find(">minutes since the capture began, without what its clock was set by<"), std::string::npos);
}

TEST(Pictures, RatesAreBounded)
{
    const auto flows = [](unsigned count, const std::string& name) {
        std::vector<SFlowDelivery> made;
        for (unsigned i = 0; i < count; ++i) {
            made.push_back(pictures::Flow(i, name, std::vector<std::uint64_t>(600, 1000 - i % 999)));
        }
        return made;
    };
    const std::string seven = Legends(Page(pictures::Delivery({pictures::Session(1, {1}, flows(7, "x"))}, 600)));
    EXPECT_NE(seven.find("TSI 6 x"), std::string::npos) << seven;
    const std::string eight = Legends(Page(pictures::Delivery({pictures::Session(1, {1}, flows(8, "x"))}, 600)));
    EXPECT_EQ(eight.find("TSI 6 x"), std::string::npos) << eight;
    EXPECT_NE(eight.find(" 2 others: 1192200 bytes;"), std::string::npos) << eight;

    std::vector<SSessionDelivery> sessions;
    for (unsigned i = 0; i < 64; ++i) {
        std::vector<unsigned> services;
        for (unsigned service = 0; service < 33; ++service) {
            services.push_back(service);
        }
        sessions.push_back(pictures::Session(static_cast<std::uint16_t>(i), services, flows(64, pictures::k_hostile)));
    }
    const std::string page = Page(pictures::Delivery(sessions, 600));
    EXPECT_NE(page.find("and 1 service more"), std::string::npos);
    EXPECT_EQ(page.find("<script"), std::string::npos);
    EXPECT_LT(page.size(), 3u << 20);
    for (SSessionDelivery& session : sessions) {
        session.services.pop_back();
    }
    EXPECT_EQ(Page(pictures::Delivery(sessions, 600)).find("service more"), std::string::npos);
}

TEST(Pictures, ArrivalsOfABroadcast)
{
    const struct {
        const char* name;
        std::function<bool(packets::SSent&)> change;
        std::string list;        ///< what is said of the line of service lists
        std::string signalling;  ///< of that of signalling
    } cases[] = {
        {"sound", [](packets::SSent&) { return true; }, "12 marks.|12|0|1", "12 marks.|12|0|1"},
        {"lists that are not sent for long",
         [](packets::SSent& sent) { return sent.table != 1 || sent.round < 4 || sent.round > 5; },
         "10 marks; silent from second 3 to 6.|10|0|3", "12 marks.|12|0|1"},
        {"for twice the usual time", [](packets::SSent& sent) { return sent.table != 1 || sent.round != 4; },
         "11 marks.|11|0|2", "12 marks.|12|0|1"},
        {"none at the end, and at the begin",
         [](packets::SSent& sent) {
             return (sent.table != 1 || sent.round < 9) && (sent.kind != packets::SSent::SIGNALLING || sent.round > 2);
         },
         "9 marks; silent from second 8 to 11.501.|9|0|1", "9 marks; silent from second 0 to 3.01.|9|0|1"},
        {"three of them tell nothing of the usual",
         [](packets::SSent& sent) { return sent.table != 1 || sent.round < 2 || sent.round == 11; }, "3 marks.|3|0|10",
         "12 marks.|12|0|1"},
        {"another list from then on",
         [](packets::SSent& sent) {
             if (sent.table == 1 && sent.round >= 6) {
                 sent.data[3] = '\2';
                 sent.data = packets::With(sent.data, "bsid=\"5\"", "bsid=\"6\"");
             }
             return true;
         },
         "12 marks; a change at second 6.|12|1|1", "12 marks.|12|0|1"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        packets::SBroadcast broadcast;
        broadcast.change = test.change;
        const CTemporary page;
        Inspect("-q --html '" + page.Name() + "' -", broadcast.Bytes());
        const std::string text = Section(ReadFile(page.Name()), "arrivals");
        EXPECT_NE(text.find("SLT (1) group 0: arrivals|" + test.list + "|"), std::string::npos) << text;
        EXPECT_NE(text.find("|239.255.7.1:5000 signalling, service 1: arrivals|" + test.signalling + "|"),
                  std::string::npos)
            << text;
        EXPECT_EQ(MarkupFault(ReadFile(page.Name())), "");
    }
}

/// Tables of a capture, at times in seconds.
class CTables {
  public:
    void Add(double at, unsigned line, EStatus status = EStatus::REPEATED, bool timed = true)
    {
        const auto microseconds = static_cast<std::int64_t>(at * 1e6);
        STable table;
        table.source = {
            "file", 1,
            STime{1800000000 + microseconds / 1000000, static_cast<std::int32_t>(microseconds % 1000000) * 1000}};
        if (!timed) {
            table.source.time.reset();
        }
        table.stream = "1.2.3.4:5";
        table.header = {static_cast<unsigned char>(1 + line / 256), static_cast<unsigned char>(line % 256), 0, 0};
        table.status = status;
        m_traffic.Take({1, 2, 3, 4, {}}, table.source.time);
        m_report.Table(table);
    }
    SArrivalLines Result() const { return m_arrivals.Result(); }

  private:
    CHtmlReport m_writer;
    CReport m_report{m_writer, true};
    CTraffic m_traffic;
    CArrivals m_arrivals{m_report, m_traffic};
};

TEST(Pictures, ArrivalsAreBounded)
{
    CTables tables;
    for (unsigned i = 0; i < 100000; ++i) {
        tables.Add(i * 0.1 + (i % 2 == 0 ? 0.3 : 0), 0, i % 1000 == 999 ? EStatus::CHANGED : EStatus::REPEATED);
    }
    tables.Add(0, 0, EStatus::NEW, false);
    for (unsigned another = 1; another < 300; ++another) {
        tables.Add(10000, another, EStatus::NEW);
    }
    EXPECT_EQ(tables.Result().lines.size(), CArrivals::k_mostLines);
    EXPECT_EQ(tables.Result().more, 44u);
    const SArrivalLine line = tables.Result().lines[0];
    EXPECT_EQ(line.came, 100001u);
    EXPECT_NEAR(line.gap.value_or(0), 0.2, 1e-5);
    EXPECT_EQ(line.changes, 100u);
    EXPECT_GE(line.marks.size(), 256u);
    EXPECT_LE(line.marks.size(), CArrivals::k_mostMarks);
    std::uint64_t came = 0;
    std::uint64_t changes = 0;
    double last = -1;
    for (const SArrivalMark& mark : line.marks) {
        EXPECT_GT(mark.at, last);
        last = mark.at;
        came += mark.count;
        changes += mark.changes;
    }
    EXPECT_EQ(came, 100000u) << "but for the one without time";
    EXPECT_EQ(changes, 100u);
    EXPECT_LT(last, 10000.1);
}

}  // namespace
