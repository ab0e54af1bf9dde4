#include "content/Roots.h"

#include <string_view>

namespace vyr::inspect {

namespace {

using TView = std::string_view;

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

}  // namespace vyr::inspect
