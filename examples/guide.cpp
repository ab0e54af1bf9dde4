// Prints the programmes of a day, service by service. Usage: guide YYYY-MM-DD UTC-OFFSET UNIT…, the offset in hours,
// each UNIT a delivery unit of the guide, gzip or not.
#include <esg/ESGContentFragment.h>
#include <esg/ESGScheduleFragment.h>
#include <esg/ESGServiceFragment.h>
#include <esg/SGDUParse.h>

#include <cstdio>
#include <cstdlib>
#include <map>

#include "Files.h"

namespace {

std::map<std::string, std::string> s_services;  // id of the fragment, and the name to show
std::map<std::string, std::string> s_contents;
std::map<std::string, std::map<long long, std::pair<long long, std::string>>> s_grid;  // service, begin, end, content

std::string Text(const TESGText& text)
{
    return text ? text.get() : "";
}

/// The attribute "text" where a name has it, else what stands in the element. Here a product looks for its language.
template <class TNames>
std::string Shown(const TNames& names)
{
    if (names.empty()) {
        return "?";
    }
    const std::string text = Text(names.front()->State()->text);
    return text.empty() ? Text(names.front()->State()->content) : text;
}

void Take(const CESGScheduleFragment::SESGScheduleFragment& schedule)
{
    constexpr long long k_ntp = 2208988800;  // seconds from 1900 to 1970
    for (const auto& reference : schedule.contentRefs) {
        for (const auto& element : reference->State()->presentationWindows) {
            const CPresentationWindow::SPresentationWindow& window = *element->State();
            const long long begin = (window.startTime != 0 ? window.startTime : window.startTimeElement) - k_ntp;
            const long long end = (window.endTime != 0 ? window.endTime : window.endTimeElement) - k_ntp;
            s_grid[Text(schedule.serviceRefId)][begin] = {end > begin ? end : begin + window.duration,
                                                          Text(reference->State()->idRef)};
        }
    }
}

/// "23:30" of seconds since midnight, of whatever day.
std::string Clock(long long seconds)
{
    const long long minutes = (seconds / 60 % 1440 + 1440) % 1440;
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d", static_cast<int>(minutes / 60), static_cast<int>(minutes % 60));
    return text;
}

void Take(const CSGDUParse::SSGDUParse& unit)
{
    for (const auto& held : unit.arrayFragment) {
        // Copied, as the unit goes with the next one. Here a product lets go of older versions, and of what is not
        // valid any more.
        CESGFragmentBase* fragment = held->fragment.get();
        if (const auto* service = dynamic_cast<const CESGServiceFragment*>(fragment)) {
            s_services[Text(service->State()->id)] = Shown(service->State()->names);
        } else if (const auto* content = dynamic_cast<const CESGContentFragment*>(fragment)) {
            s_contents[Text(content->State()->id)] = Shown(content->State()->names);
        } else if (const auto* schedule = dynamic_cast<const CESGScheduleFragment*>(fragment)) {
            Take(*schedule->State());
        }
    }
}

}  // namespace

int main(int argc, char** argv)
{
    CSGDUParse parser;
    int year = 0;
    int month = 0;
    int day = 0;
    if (argc < 3 || std::sscanf(argv[1], "%d-%d-%d", &year, &month, &day) != 3 || !parser.Create()) {
        return 1;
    }
    parser.SetReplace(true);            // else a second unit is cut with the offsets of the first
    parser.SetInflateLimit(16u << 20);  // a unit may inflate to as much as memory holds otherwise
    for (int i = 3; i < argc; ++i) {
        const std::string bytes = ReadFile(argv[i]);
        IParse::SItem item = Item(bytes);
        parser.SetCompress(bytes.compare(0, 2, "\x1F\x8B") == 0);
        if (parser.Parse(&item)) {
            Take(*parser.State());
        } else {
            std::printf("%s is no delivery unit\n", argv[i]);
        }
    }
    parser.Destroy();

    // Days since 1970 of a day of the Gregorian calendar; years begin in March.
    const int y = month < 3 ? year - 1 : year;
    const int m = month < 3 ? month + 9 : month - 3;
    const long long days = 365LL * y + y / 4 - y / 100 + y / 400 + (153 * m + 2) / 5 + day - 1 - 719468;
    // Here a product takes what the SystemTime table says (CParseSystemTime::UtcLocalOffset).
    const long long midnight = days * 86400 - std::atoi(argv[2]) * 3600LL;
    for (const auto& row : s_grid) {
        const auto service = s_services.find(row.first);
        std::printf("%s\n", service != s_services.end() ? service->second.c_str() : row.first.c_str());
        for (const auto& entry : row.second) {
            const long long begin = entry.first - midnight;
            const long long end = entry.second.first - midnight;
            if (begin < 86400 && end > 0) {
                const auto content = s_contents.find(entry.second.second);
                std::printf("  %s-%s  %s\n", Clock(begin).c_str(), Clock(end).c_str(),
                            content != s_contents.end() ? content->second.c_str() : "(not received yet)");
            }
        }
    }
    return 0;
}
