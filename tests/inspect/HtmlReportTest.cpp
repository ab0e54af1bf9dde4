#include "report/HtmlReport.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <fstream>
#include <string>
#include <vector>

#include "Markup.h"
#include "Pictures.h"
#include "base/Json.h"
#include "model/Content.h"
#include "report/Html.h"
#include "report/HtmlGuide.h"
#include "support/Places.h"
#include "support/Programs.h"

namespace {

using namespace vyr::inspect;

using pictures::k_hostile;

std::size_t Count(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

TEST(Html, BroadcastTextIsNoMarkup)
{
    EXPECT_EQ(HtmlText("<a href=\"x\">'&amp;'</a>"), "&lt;a href=&quot;x&quot;&gt;&#39;&amp;amp;&#39;&lt;/a&gt;");
    EXPECT_EQ(HtmlText("a\xE2\x80\xAE\x80\n日"), "a\\u202E\\x80\\x0A日");
    EXPECT_EQ(HtmlIsolated("x", "en-US"), "<bdi lang=\"en-US\">x</bdi>");
    EXPECT_EQ(HtmlIsolated("x", "en\" onclick=\"a"), "<bdi>x</bdi>");
    EXPECT_EQ(HtmlClipped("é日", 4), "é…") << "no character is cut";
    EXPECT_EQ(HtmlClipped("é日", 5), "é日");
}

TEST(Html, TreeShowsAnyJson)
{
    TJson json = {{"slsProtocol", 1},
                  {"slsProtocolName", "ROUTE"},
                  {"hidden", false},
                  {"rate", 0.5},
                  {"none", nullptr},
                  {"empty", ""},
                  {"text", k_hostile},
                  {"ids", {1, 2}},
                  {"nothing", TJson::array()},
                  {"EventDesc", {{{"lang", "en"}, {"text", "Flood"}}, {{"text", "?"}}}},
                  {"signature", {{"signers", 1}, {"digest", "SHA512"}}},
                  {"File", {{{"TOI", 1}}, {{"TOI", 2}, {"Type", "<b>"}}}},
                  {"Name", {{"lang", "eng"}, {"deep", {{"er", {{"x", {1, {2}}}}}}}}},
                  {"List", {{1, {2}}, 3}}};
    const std::string html = HtmlTree(json);
    EXPECT_EQ(MarkupFault(html), "");
    for (const char* part :
         {"<dt>sls<wbr>Protocol</dt><dd>1 <span class=\"muted\">ROUTE</span></dd>", "<dt>hidden</dt><dd>no</dd>",
          "<dt>rate</dt><dd>0.5</dd>", "<dt>none</dt><dd>\u2013</dd>", "<dt>ids</dt><dd>1, 2</dd>",
          "&lt;script&gt;alert(1)", "<bdi lang=\"en\">Flood</bdi> <small>en</small><br><bdi>?</bdi>",
          "<span class=\"key\">signers</span> 1, <span class=\"key\">digest</span> <bdi>SHA512</bdi>",
          "<th scope=\"col\">TOI</th><th scope=\"col\">Type</th>", "<tr><td>1</td><td></td></tr>",
          "<td><bdi>&lt;b&gt;</bdi></td>", "<summary>Name ", "<summary>deep ", "<span class=\"key\">List</span> 3"}) {
        EXPECT_NE(html.find(part), std::string::npos) << part << '\n' << html;
    }
    EXPECT_EQ(html.find("slsProtocolName"), std::string::npos);

    TJson rows = TJson::array();
    for (int i = 0; i < 201; ++i) {
        rows.push_back({{"i", i}});
    }
    EXPECT_NE(HtmlTree({{"rows", rows}}).find("\u2026 1 row more"), std::string::npos);
    EXPECT_LT(HtmlTree({{"rows", rows}}, 2000).size(), 2600u);
    EXPECT_NE(HtmlTree({{"rows", rows}}, 2000).find("left out here"), std::string::npos);
    TJson deep = {{"a", 1}, {"b", {{"c", TJson::array({TJson::array({1})})}}}};
    for (int i = 0; i < 40; ++i) {
        deep = {{"a", TJson::object({{"x", deep}, {"y", deep.size()}})}};
    }
    EXPECT_NE(HtmlTree(deep).find("nested too deep"), std::string::npos);
    EXPECT_EQ(MarkupFault(HtmlTree(deep)), "");
}

STable Alert(unsigned char version, const std::vector<std::string>& ids, const std::string& text)
{
    STable table;
    table.source = {"a.pcap", version, STime{1800000000 + version, 0}};
    table.stream = "224.0.23.60:4937";
    table.header = {4, 0, 0, version};
    table.status = version == 1 ? EStatus::NEW : EStatus::CHANGED;
    table.parserExists = true;
    table.content.emplace().headline = "alerts";
    table.content->json["AEA"] = TJson::array();
    for (const std::string& id : ids) {
        table.content->json["AEA"].push_back({{"aeaId", id},
                                              {"issuer", k_hostile},
                                              {"EventDesc", {{{"lang", "en"}, {"text", "Flood " + id}}}},
                                              {"AEAText", {{{"lang", "en"}, {"text", text}}}}});
    }
    return table;
}

TEST(HtmlReport, AlertsThatAreGoneStay)
{
    CHtmlReport report;
    report.Table(Alert(1, {"A", "B"}, "Leave."));
    report.Table(Alert(2, {"B"}, "Stay."));
    report.Summary({});
    const std::string& page = report.Page();
    EXPECT_EQ(MarkupFault(page), "");
    EXPECT_EQ(Count(page, "in the last table"), 1u);
    EXPECT_EQ(Count(page, "no longer sent"), 1u);
    EXPECT_NE(page.find("<bdi lang=\"en\">Flood B</bdi></b> <span class=\"badge bad\">in the last"), std::string::npos);
    EXPECT_EQ(Count(page, "<bdi lang=\"en\">Leave.</bdi>"), 1u) << "of B, only the last text";
    EXPECT_EQ(Count(page, "2 versions, the last: packet 2, <time datetime=\"2027-01-15T08:00:02.000Z\">08:00:02.000<"),
              2u);
}

TEST(HtmlReport, LeavesOutWhatIsEmptyAndNamesInputs)
{
    CHtmlReport empty(false, {"", 0});
    empty.Summary({});
    EXPECT_EQ(Count(empty.Page(), "<section"), 1u);
    EXPECT_EQ(Count(empty.Page(), "<li>"), 1u) << "nor is it in the contents";
    EXPECT_NE(empty.Page().find("1970-01-01T00:00:00Z</p></footer>"), std::string::npos);

    STable list;
    list.source = {"a/" + std::string(300, 'a') + ".pcap", 1, STime{1800000000, 5}};
    list.stream = "224.0.23.60:4937";
    list.header = {1, 0, 0, 1};
    list.parserExists = true;
    CHtmlReport refused(false, {"inspect '<b>'", 1800000000});
    refused.Table(list);
    SSummary summary;
    summary.times = {{list.source.file, STime{1800000000, 0}, STime{1800000009, 0}}};
    refused.Summary(summary);
    const std::string& page = refused.Page();
    EXPECT_NE(page.find("1 service list came and did not parse"), std::string::npos);
    EXPECT_NE(page.find("<p class=\"muted\">2027-01-15T08:00:00.000Z to 2027-01-15T08:00:09.000Z</p></header>"),
              std::string::npos);
    EXPECT_NE(page.find(", 2027-01-15T08:00:00Z</p><p><bdi>inspect &#39;&lt;b&gt;&#39;</bdi></p></footer>"),
              std::string::npos);
    EXPECT_EQ(MarkupFault(page), "");

    SParseSLT::SService service{};
    service.serviceId = 7;
    list.slt.emplace().services.push_back({service, {}});
    for (const char* second : {"", "b.pcap"}) {
        CHtmlReport report;
        report.Table(list);
        SFinding fault = {ERule::NO_SLT, "", {*second != '\0' ? second : list.source.file, 0, {}}};
        report.Finding(fault);
        report.Summary({});
        EXPECT_EQ(report.Page().find("did not parse"), std::string::npos);
        EXPECT_EQ(Count(report.Page(), "<b>7</b> <bdi>-</bdi> <small>\u00b7 <bdi>a/aaa"), *second != '\0' ? 1u : 0u);
        EXPECT_EQ(MarkupFault(report.Page()), "");
    }
}

TEST(HtmlReport, ComponentsOfAService)
{
    SSignalling signalling;
    signalling.source = {"a.pcap", 1, {}};
    signalling.session = "1.2.3.4:5";
    const auto add = [&](ESlsDocument kind, const TJson& json) {
        SSlsDocument& document = signalling.documents.emplace_back();
        document.kind = kind;
        document.content.emplace().json = json;
    };
    const auto lct = [](int tsi, const char* content, const TJson& media) {
        TJson flow = {{"ContentInfo", {{"contentId", content}}}};
        if (!media.is_null()) {
            flow["ContentInfo"]["MediaInfo"] = media;
        }
        return TJson({{"tsi", tsi}, {"bw", 90 + tsi}, {"SrcFlow", TJson::array({flow})}});
    };
    add(ESlsDocument::STSID,
        {{"RS",
          {{{"dIpAddr", "1.2.3.4"},
            {"dPort", 5},
            {"LS", {lct(1, "v", nullptr), lct(2, "v", {{"repId", "a"}, {"lang", "de"}, {"contentType", "audio"}})}}},
           {{"LS", {lct(3, "V", nullptr), {{"tsi", 4}}}}}}}});
    const TJson video = {{"codecs", "avc1"}, {"Representation", {{{"id", "v"}, {"bandwidth", 7}}}}};
    const TJson audio = {
        {"lang", "en"},
        {"contentType", "audio"},
        {"Representation", {{{"id", "a"}, {"codecs", "<ac-4>"}}, {{"id", "net"}, {"codecs", "mp4a"}}}}};
    const TJson period = {{"AdaptationSet", {video, audio}}};
    add(ESlsDocument::MPD, {{"Period", {period, period}}});
    CHtmlReport report;
    report.Signalling(signalling);
    report.Summary({});
    const std::string& page = report.Page();
    const std::size_t at = page.find("<h4>Components</h4>");
    std::string rows;
    bool markup = false;
    for (const char c : page.substr(at, page.find("</table>", at) - at)) {
        markup = c == '<' || markup;
        rows += markup ? "" : std::string(1, c);
        rows += c == '>' && (rows.empty() || rows.back() != '|') ? "|" : "";
        markup = c != '>' && markup;
    }
    EXPECT_EQ(rows,
              "|Components|TSI|address|kbit/s|type|codec|bit/s|language|representation|"
              "1|1.2.3.4:5|91|avc1|7|v|2|1.2.3.4:5|92|audio|&lt;ac-4&gt;|en|a|3|93|4|audio|mp4a|en|net|");
    EXPECT_EQ(MarkupFault(page), "");
    // What holds counts: a presentation that does not parse has no representations.
    signalling.documents[1].content.reset();
    report.Signalling(signalling);
    report.Summary({});
    EXPECT_EQ(report.Page().find("avc1"), std::string::npos);
    // Not more rows than the page takes, however they are joined.
    TJson many = {{"RS", TJson::array({{{"LS", TJson::array()}}})}};
    TJson same = {{"Representation", TJson::array()}};
    for (int i = 0; i < 300; ++i) {
        many["RS"][0]["LS"].push_back(lct(i, "v", nullptr));
        same["Representation"].push_back({{"id", "v"}, {"bandwidth", i}});
    }
    signalling.documents.clear();
    add(ESlsDocument::STSID, many);
    add(ESlsDocument::MPD, {{"Period", {{{"AdaptationSet", TJson::array({same})}}}}});
    report.Signalling(signalling);
    report.Summary({});
    EXPECT_NE(report.Page().find("and 39800 components more"), std::string::npos);
    EXPECT_EQ(MarkupFault(report.Page()), "");
}

TEST(HtmlReport, HoldsNoMoreThanItsLimits)
{
    CHtmlReport report;
    report.Received(1 << 20);
    STable table = Alert(1, {}, "");
    for (int i = 0; i < 400; ++i) {
        table.content->json["rows"].push_back({{"text", std::string(1000, 'x')}});
    }
    for (unsigned i = 0; i < 5000; ++i) {
        table.stream = "stream " + std::to_string(i);
        report.Table(table);
        if (i == 400) {
            table.content->json = TJson::object();
        }
        report.Finding({ERule::BAD_ADDRESS, k_hostile, table.source});
    }
    report.Summary({});
    EXPECT_LT(report.Page().size(), 36u << 20);
    EXPECT_GT(report.Page().size(), 30u << 20);
    EXPECT_EQ(Count(report.Page(), "and 4000 lines more"), 2u) << "of what changed, and of the problems";
    EXPECT_EQ(Count(report.Page(), "parts left out"), 1u);
    EXPECT_EQ(MarkupFault(report.Page()), "");
}

SProgramme Programme(const std::string& title, std::optional<std::int64_t> start, std::optional<std::int64_t> end)
{
    SProgramme programme;
    programme.contentId = "bcast://c/" + title;
    programme.start = start;
    programme.end = end;
    programme.titles = {{"en", title}};
    programme.descriptions = {{"en", "About " + title + std::string(200, '-')}, {"ko", "설명"}};
    programme.genres = {"News", k_hostile};
    programme.ratings = {"TV-PG"};
    programme.audioLanguages = {"en", "ko"};
    return programme;
}

/// A guide of two days, with what programmes can do to a grid.
SGuide Guide()
{
    constexpr std::int64_t k_evening = 1800057600;  // 2027-01-16T00:00:00Z
    const std::int64_t t = k_evening - 3 * 3600;
    SGuide guide;
    guide.source.file = "guide";
    guide.services.resize(2);
    SGuideService& news = guide.services[0];
    news.serviceId = 2001;
    news.majorChannelNo = 7;
    news.minorChannelNo = 1;
    news.names = {{"en", "NEWS-1"}};
    news.programmes = {Programme("Evening", t, t + 1800),
                       Programme(k_hostile, t + 1800, t + 3600),
                       Programme("Overlaps", t + 2700, t + 5400),
                       Programme("Over midnight", t + 5400, t + 4 * 3600),
                       Programme("Open end", t + 14400, std::nullopt),
                       Programme("Unscheduled", std::nullopt, t)};
    SGuideService& movie = guide.services[1];
    movie.names = {{"ar", "قناة الأفلام"}};
    movie.programmes = {Programme("Seconds", t + 90, t + 100), Programme("Backwards", t + 3600, t),
                        Programme("Before time", -5, 9), Programme("After time", 1LL << 60, (1LL << 60) + 5)};
    return guide;
}

TEST(HtmlGuide, LocalTimeAndLimit)
{
    setenv("TZ", "EST5", 1);
    tzset();
    const std::string local = HtmlGuide(Guide(), "g", true, 1 << 20);
    unsetenv("TZ");
    tzset();
    EXPECT_NE(local.find("<h3>Friday 2027-01-15</h3>"), std::string::npos);
    EXPECT_NE(local.find("<small>16:00\u201316:30</small>"), std::string::npos);
    EXPECT_NE(local.find("17:30\u201320:00"), std::string::npos) << "not over midnight there";
    EXPECT_EQ(local.find("<h3>Saturday"), std::string::npos);
    EXPECT_NE(local.find("Times are EST (-05:00)."), std::string::npos);
    const std::string utc = HtmlGuide(Guide(), "g", false, 6000);
    EXPECT_NE(utc.find("22:30\u20132027-01-16 01:00"), std::string::npos);
    EXPECT_NE(utc.find("left out here"), std::string::npos);
    EXPECT_LT(utc.size(), 8000u);
    EXPECT_EQ(MarkupFault(utc), "");
}

TEST(HtmlGuide, DaysAndLanes)
{
    constexpr std::int64_t k_noon = 1800014400;
    SGuide guide;
    guide.services.resize(1);
    guide.services[0].programmes = {Programme("Marathon", k_noon, k_noon + 2 * 86400)};
    for (int i = 0; i < 9; ++i) {
        guide.services[0].programmes.push_back(Programme("Parallel", k_noon, k_noon + 3600));
    }
    const std::string html = HtmlGuide(guide, "g", false, 1 << 20);
    EXPECT_EQ(Count(html, "class=\"box\""), 8u + 2u) << "eight lanes of the first day, and two days more";
    EXPECT_EQ(Count(html, "2 programmes more"), 1u);
    EXPECT_EQ(Count(html, "<h3>"), 3u);
    guide.services[0].programmes = {Programme("For ever", k_noon, 1LL << 37)};
    EXPECT_EQ(Count(HtmlGuide(guide, "g", false, 1 << 20), "<h3>"), 8u);
}

/// Pages in a directory of their own, and what a browser measures of them at two widths.
class HtmlPage : public testing::Test {
  protected:
    void m_Write(const std::string& name, const std::string& bytes)
    {
        std::ofstream(m_folder.Of(name), std::ios::binary) << bytes;
    }

    /// The measurements as JSON; null, and a failed test, without a browser.
    nlohmann::json m_Measure(const std::vector<std::string>& pages, bool dark)
    {
        std::string frames;
        for (const std::string& page : pages) {
            for (const char* width : {"360", "1280"}) {
                frames +=
                    "<iframe width=" + std::string(width) + " height=800 style='border:0' src='" + page + "'></iframe>";
            }
        }
        std::ifstream script(TreeFile("tests/inspect/measure.js"));
        m_Write("wrapper.html", "<!DOCTYPE html><meta charset=utf-8><body>" + frames + "<script>" +
                                    std::string(std::istreambuf_iterator<char>(script), {}) + "</script>");
        const std::string command =
            "timeout 50 chromium-headless-shell --headless --no-sandbox --disable-gpu --disable-quic --no-first-run "
            "--disable-background-networking --disable-component-update --disable-sync --allow-file-access-from-files "
            "--enable-logging=stderr --virtual-time-budget=5000 --blink-settings=preferredColorScheme=" +
            std::string(dark ? "0" : "1") + " --user-data-dir='" + m_folder.Of("profile' --dump-dom 'file://") +
            m_folder.Of("wrapper.html' 2> '") + m_folder.Of("err'");
        const auto [dom, status] = Shell(command);
        const std::string log = ReadFile(m_folder.Of("err"));
        EXPECT_EQ(status, 0) << "is chromium-headless-shell installed? " << log;
        EXPECT_EQ(log.find("CONSOLE"), std::string::npos) << log;
        const std::size_t begin = dom.find("<pre>");
        const std::size_t end = dom.find("</pre>");
        EXPECT_NE(end, std::string::npos) << dom;
        return end == std::string::npos ? nlohmann::json()
                                        : nlohmann::json::parse(dom.substr(begin + 5, end - begin - 5));
    }

    const CTemporaryFolder m_folder;
};

TEST_F(HtmlPage, InABrowser)
{
    CHtmlReport report;
    report.Table(Alert(1, {"A", k_hostile}, std::string(300, 'W')));
    report.Guide(Guide());
    report.Finding({ERule::NO_SIGNALLING, k_hostile, {"a.pcap", 7, {}}});
    report.Finding({ERule::NO_SIGNALLING, k_hostile, {"long/" + std::string(200, 'p'), 7, {}}});
    std::vector<SFlowDelivery> flows;
    for (unsigned i = 0; i < 8; ++i) {
        flows.push_back(pictures::Flow(i, k_hostile, {2000000000 - i, 1}));
    }
    SDelivery delivery = pictures::Delivery({pictures::Session(5000, {1}, flows)}, 5000000);
    delivery.binSeconds = 8192;
    SArrivalLine line;
    line.place = "239.255.7.1:5000";
    line.marks = {{0, 1, 0}, {1e6, 1, 0}, {2e6, 1, 1}, {3e6, 1, 0}, {5e6, 1, 1}};
    delivery.arrivals.lines.assign(13, line);
    report.Delivery(delivery);
    SSummary summary;
    summary.errors = summary.findings[ERule::NO_SIGNALLING] = 1;
    report.Summary(summary);
    EXPECT_EQ(MarkupFault(report.Page()), "");
    m_Write("guide.html", report.Page());
    const std::string command = "cd '" + DataFile() + "' && '" + k_inspect + "' -q --html '" +
                                m_folder.Of("capture.html' pcap/gpac-a2-multi-service.pcap lls/openssl-cdt.bin");
    ASSERT_EQ(Shell(command).status, 0);
    for (const bool dark : {false, true}) {
        const nlohmann::json pages = m_Measure({"guide.html", "capture.html"}, dark);
        ASSERT_EQ(pages.size(), 4u);
        for (std::size_t i = 0; i < pages.size(); ++i) {
            const nlohmann::json& page = pages[i];
            SCOPED_TRACE(page.dump());
            const bool wide = i % 2 == 1;
            EXPECT_EQ(page["width"], wide ? 1280 : 360);
            EXPECT_LE(page["scrollWidth"], page["width"]) << "nothing scrolls sideways but tables in their own place";
            EXPECT_EQ(page["sections"], i < 2 ? "overview guide alerts delivery rates arrivals tables problems changes"
                                              : "verdicts overview services signalling delivery rates arrivals tables "
                                                "certificates problems changes");
            EXPECT_EQ(page["overrun"], "") << "no text leaves its cell";
            EXPECT_EQ(page["shadowless"], 0) << "what scrolls shows that it does";
            EXPECT_EQ(page["scrolling"] > 0, !wide) << "a phone shows tables and pictures so";
            EXPECT_EQ(page["charts"], i < 2 ? 1 : 4);
            EXPECT_EQ(page["lines"], i < 2 ? 15 : 6) << "with the axes";
            EXPECT_EQ(page["pictureFaults"], "");
            EXPECT_EQ(page["active"], 0) << "scripts, images, frames, forms, handlers";
            EXPECT_EQ(page["brokenLinks"], 0);
            EXPECT_EQ(page["doubleIds"], 0);
            EXPECT_GE(page["contrast"], 4.5);
            EXPECT_EQ(page["dark"], dark);
            const bool grid = wide && i < 2;
            // Minutes from the first hour on, and lengths; behind the lane of their service.
            EXPECT_EQ(page["boxes"], grid ? "0+30/0 30+30/0 45+45/1 90+90/0 1+10/0 60+30/0 0+60/0 60+30/0" : "");
            EXPECT_EQ(page["opened"], grid) << "a box of the grid unfolds its programme";
            EXPECT_EQ(page["rows"], i < 2 ? 0 : 3) << "services in the list";
        }
    }
}

}  // namespace
