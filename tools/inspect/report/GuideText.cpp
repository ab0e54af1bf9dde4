#include "report/GuideText.h"

#include <ctime>

#include "base/Text.h"

namespace vyr::inspect {

namespace {

class CClock {
  public:
    explicit CClock(bool local) : m_local(local) {}

    /// "Saturday 2026-11-21 (UTC)".
    std::string Day(std::int64_t time) const { return m_Text(time, "%A %Y-%m-%d (%Z)"); }
    /// "22:30", with the seconds where they are not 0.
    std::string OfDay(std::int64_t time) const { return m_Text(time, time % 60 != 0 ? "%H:%M:%S" : "%H:%M"); }
    /// "00:15", behind its date where that is not the date of the start.
    std::string End(std::int64_t start, std::int64_t end) const
    {
        const std::string date = m_Text(end, "%Y-%m-%d");
        return (date != m_Text(start, "%Y-%m-%d") ? date + ' ' : "") + OfDay(end);
    }

  private:
    std::string m_Text(std::int64_t time, const char* format) const
    {
        const std::time_t seconds = static_cast<std::time_t>(time);
        std::tm parts{};
        m_local ? localtime_r(&seconds, &parts) : gmtime_r(&seconds, &parts);
        parts.tm_zone = m_local ? parts.tm_zone : "UTC";
        char text[80];
        return std::string(text, std::strftime(text, sizeof text, format, &parts));
    }

    const bool m_local;
};

std::string Texts(const std::vector<SGuideText>& texts)
{
    std::vector<std::string> shown;
    for (const SGuideText& text : texts) {
        shown.push_back(Printable(text.text) + InLanguage(text.lang));
    }
    return Joined(shown);
}

std::string Texts(const std::vector<std::string>& texts)
{
    std::vector<std::string> shown;
    for (const std::string& text : texts) {
        shown.push_back(Printable(text));
    }
    return Joined(shown);
}

std::string ServiceText(const SGuideService& service)
{
    const std::string name = Texts(service.names);
    std::string text = "  service " + (name.empty() ? "-" : name);
    if (service.majorChannelNo && service.minorChannelNo) {
        text += ", " + std::to_string(*service.majorChannelNo) + '.' + std::to_string(*service.minorChannelNo);
    }
    text += service.serviceId ? ", service " + std::to_string(*service.serviceId) : "";
    text += service.globalServiceId.empty() ? "" : ", " + Printable(service.globalServiceId);
    text += ", " + Counted(service.programmes.size() + service.leftOut, "programme") + '\n';
    return text + Line("fragment", Printable(service.fragmentId)) + Line("about", Texts(service.descriptions)) +
           Line("genres", Texts(service.genres));
}

TRow ProgrammeRow(const SProgramme& programme, const CClock& clock)
{
    const std::string end = !programme.end    ? ""
                            : programme.start ? clock.End(*programme.start, *programme.end)
                                              : clock.OfDay(*programme.end);
    const std::string title = Texts(programme.titles);
    const std::string unnamed = programme.contentId.empty() ? "-" : Printable(programme.contentId);
    return {"    " + (programme.start ? clock.OfDay(*programme.start) : "-"),
            end,
            title.empty() ? unnamed : title,
            Texts(programme.genres),
            Texts(programme.ratings),
            Texts(programme.audioLanguages),
            Texts(programme.textLanguages)};
}

/// The programmes of a day: a table whose rows have their descriptions behind them.
class CDay {
  public:
    void Add(const SProgramme& programme, const CClock& clock)
    {
        m_rows.push_back(ProgrammeRow(programme, clock));
        std::string& text = m_descriptions.emplace_back();
        for (const SGuideText& description : programme.descriptions) {
            text += "          " + Printable(description.text) + InLanguage(description.lang) + '\n';
        }
    }
    std::string Text() const
    {
        const std::string table = TableText(m_rows);
        std::string text;
        std::size_t at = 0;
        for (const std::string& description : m_descriptions) {
            const std::size_t end = table.find('\n', at);
            text += table.substr(at, end + 1 - at) + description;
            at = end + 1;
        }
        return text;
    }

  private:
    std::vector<TRow> m_rows = {{"    start", "end", "title", "genres", "ratings", "audio", "text"}};
    std::vector<std::string> m_descriptions = {""};
};

std::string ProgrammesText(const std::vector<SProgramme>& programmes, const CClock& clock)
{
    std::string text;
    for (std::size_t i = 0; i < programmes.size();) {
        const auto title = [&](const SProgramme& programme) {
            return programme.start ? clock.Day(*programme.start) : "at no time";
        };
        const std::string day = title(programmes[i]);
        CDay table;
        for (; i < programmes.size() && title(programmes[i]) == day; ++i) {
            table.Add(programmes[i], clock);
        }
        text += "    " + day + '\n' + table.Text();
    }
    return text;
}

}  // namespace

std::string GuideText(const SGuide& guide, bool localTime)
{
    const CClock clock(localTime);
    std::size_t programmes = 0;
    std::string services;
    for (const SGuideService& service : guide.services) {
        programmes += service.programmes.size() + service.leftOut;
        services +=
            ServiceText(service) + ProgrammesText(service.programmes, clock) + MoreText("    ", service.leftOut, 0);
    }
    services += MoreText("  ", guide.leftOut, 0);
    std::string text = "guide: " + Counted(guide.services.size() + guide.leftOut, "service") + ", " +
                       Counted(programmes, "programme") + " of " + Counted(guide.fragments, "fragment");
    const auto add = [&text](std::size_t count, const char* what, const char* why) {
        text += count != 0 ? "; " + Counted(count, what) + why : "";
    };
    add(guide.unscheduledContents, "content", " in no schedule");
    add(guide.missingContents, "content", " of schedules missing");
    add(guide.missingServices, "service", " missing");
    return text + '\n' + services;
}

}  // namespace vyr::inspect
