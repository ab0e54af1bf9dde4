// Tells which emergency alerts a receiver shows, and when they end. Usage: alerts TABLE…, each the payload of one
// datagram of 224.0.23.60:4937, in the order in which they were received.
#include <lls/ParseAEAT.h>

#include <cstdio>
#include <map>

#include "Files.h"

namespace {

std::map<std::string, std::string> s_shown;  // alerts on the screen, and the text of each

/// Here a product asks its settings: its language, and whether the alert's locations are where it stands.
std::string TextOf(const SParseAEAT::SAEAInfo& alert)
{
    for (const SParseAEAT::SText& text : alert.texts) {
        if (text.lang.empty() || text.lang.compare(0, 2, "en") == 0) {
            return text.text;
        }
    }
    return alert.eventDescs.empty() ? alert.eventCode : alert.eventDescs.front().text;
}

void End(const std::string& id, const char* why)
{
    if (s_shown.erase(id) != 0) {
        std::printf("  ends   %s: %s\n", id.c_str(), why);
    }
}

void Show(const SParseAEAT::SAEAInfo& alert)
{
    if (alert.aeaType == AEA_TYPE_CANCEL) {
        return End(alert.retAEAId, "cancelled");
    }
    if (alert.aeaType == AEA_TYPE_UPDATE) {
        End(alert.retAEAId, "updated");
    }
    if (alert.audience != AEA_AUDIENCE_PUBLIC) {
        return;
    }
    const std::string text = TextOf(alert);
    std::string& shown = s_shown[alert.aeaId];
    if (shown != text) {
        shown = text;
        std::printf("  shows  %s, priority %d%s, until %s: %s\n", alert.aeaId.c_str(), alert.priority,
                    alert.wakeup ? ", wakes" : "", alert.expires.c_str(), text.c_str());
    }
}

/// An alert ends when the newest table does not have it any more. (Here a product's clock ends it at `expires`, too.)
void EndOthers(const CParseAEAT& table)
{
    std::map<std::string, std::string> gone = s_shown;
    for (int i = 0; i < table.AEACount(); ++i) {
        gone.erase(table.GetAEA(i)->aeaId);
    }
    for (const auto& alert : gone) {
        End(alert.first, "not in the table any more");
    }
}

}  // namespace

int main(int argc, char** argv)
{
    CParseAEAT aeat;
    if (!aeat.Create(nullptr)) {
        return 1;
    }
    aeat.SetReplace(true);  // else the alerts of all tables pile up
    for (int i = 1; i < argc; ++i) {
        const std::string bytes = ReadFile(argv[i]);
        IParse::SItem item = Item(bytes);
        std::printf("%s\n", argv[i]);
        if (!aeat.Parse(&item) || !Reason().empty()) {
            continue;  // a repeat, or broken: what is shown stays
        }
        for (int k = 0; k < aeat.AEACount(); ++k) {
            Show(*aeat.GetAEA(k));
        }
        EndOthers(aeat);
    }
    aeat.Destroy();
    return 0;
}
