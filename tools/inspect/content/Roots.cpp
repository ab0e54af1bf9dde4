#include "content/Roots.h"

#include <string_view>

namespace vyr::inspect {

namespace {

using TView = std::string_view;

constexpr char k_header[] =
    "without its LLS header: a table is read behind the four bytes that name it, its group and its version";
constexpr char k_notRead[] = "which the tool does not read";
constexpr char k_prefix[] = "whose name has a prefix: it is looked for without one";

/// Documents that are known, by their root elements.
constexpr struct SRoot {
    TView name;
    const char* what;
    const char* why;
    bool signalling = false;
} k_roots[] = {
    {"SLT", "a service list table (SLT)", k_header},
    {"RatingRegionTables", "a rating region table (RRT)", k_header},
    {"SystemTime", "a system time table", k_header},
    {"AEAT", "an emergency alert table (AEAT)", k_header},
    {"OnscreenMessageNotification", "an onscreen message notification", k_header},
    {"CertificationData", "a certification data table (CDT)", k_header},
    {"metadataEnvelope", "a metadata envelope alone", "which says nothing without the documents that it names", true},
    {"DWD", "a distribution window description (DWD)", k_notRead, true},
    {"FDT-Instance", "an FDT instance alone", "which is read in an EFDT", true},
    {"BundleDescriptionMMT", "a service description of MMTP (USBD)", "which is read in its ATSC 3.0 message"},
    {"bundleDescriptionMMT", "a service description of MMTP (USBD)", "which is read in its ATSC 3.0 message"},
    {"Patch", "a patch of an MPD", k_notRead, true},
    {"Access", "an Access fragment of the service guide", k_notRead},
    {"PurchaseItem", "a PurchaseItem fragment of the service guide", k_notRead},
    {"PurchaseData", "a PurchaseData fragment of the service guide", k_notRead},
    {"PurchaseChannel", "a PurchaseChannel fragment of the service guide", k_notRead},
    {"PreviewData", "a PreviewData fragment of the service guide", k_notRead},
    {"InteractivityData", "an InteractivityData fragment of the service guide", k_notRead},
    {"ClassificationScheme", "a classification scheme", "which is read with --genres"},
    {"BundleDescriptionROUTE", "a service description of ROUTE (USBD)", k_prefix},
    {"S-TSID", "an S-TSID", k_prefix},
    {"EFDT", "an EFDT", k_prefix},
    {"MPD", "an MPD", k_prefix},
    {"ApplicationList", "an application list", k_prefix},
    {"HELD", "a HELD", k_prefix},
    {"RSAT", "an RSAT", k_prefix},
};

bool BeginsWith(TView text, TView start)
{
    return text.substr(0, start.size()) == start;
}

}  // namespace

std::string RootElement(SView bytes)
{
    constexpr std::size_t k_longest = 64;
    constexpr TView k_blank = " \t\r\n";
    TView text(reinterpret_cast<const char*>(bytes.data), bytes.size);
    text.remove_prefix(BeginsWith(text, "\xEF\xBB\xBF") ? 3 : 0);
    for (;;) {
        const std::size_t begin = text.find_first_not_of(k_blank);
        if (begin == TView::npos || text[begin] != '<') {
            return {};
        }
        text.remove_prefix(begin);
        const TView end = BeginsWith(text, "<?") ? "?>" : BeginsWith(text, "<!--") ? "-->" : ">";
        if (end == ">" && !BeginsWith(text, "<!")) {
            const TView name = text.substr(1, text.find_first_of(" \t\r\n/<>", 1) - 1);
            return std::string(name.substr(0, k_longest));
        }
        const std::size_t last = text.find(end);
        if (last == TView::npos) {
            return {};
        }
        text.remove_prefix(last + end.size());
    }
}

SKnownDocument KnownDocument(SView text)
{
    constexpr TView k_playlist = "#EXTM3U";
    if (BeginsWith({reinterpret_cast<const char*>(text.data), text.size}, k_playlist)) {
        return {std::string("an HLS playlist, ") + k_notRead, true};
    }
    const std::string root = RootElement(text);
    const std::size_t colon = root.find(':');
    for (const SRoot& known : k_roots) {
        const bool prefixed = known.why == k_prefix;
        if ((!prefixed || colon != std::string::npos) && root.substr(colon + 1) == known.name) {
            return {std::string(known.what) + (known.why == k_header ? " " : ", ") + known.why, known.signalling};
        }
    }
    return {};
}

}  // namespace vyr::inspect
