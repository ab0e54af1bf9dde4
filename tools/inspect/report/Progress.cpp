#include "report/Progress.h"

#include <cstdio>

#include "base/Text.h"

namespace vyr::inspect {

namespace {

constexpr std::chrono::milliseconds k_interval(170);

}  // namespace

void CProgress::Show(const std::string& file, std::uint64_t packets)
{
    // The clock is not asked for every packet.
    if (packets % 64 == 0) {
        ShowNow(file, packets);
    }
}

void CProgress::ShowNow(const std::string& file, std::uint64_t packets)
{
    if (!m_enabled) {
        return;
    }
    const auto now = std::chrono::steady_clock::now();
    if (now - m_last < k_interval) {
        return;
    }
    m_last = now;
    m_shown = true;
    std::fprintf(stderr, "\r%s: %s\033[K", Printable(file).c_str(), Counted(packets, "packet").c_str());
    std::fflush(stderr);
}

void CProgress::Clear()
{
    if (m_shown) {
        std::fputs("\r\033[K", stderr);
        std::fflush(stderr);
        m_shown = false;
    }
}

}  // namespace vyr::inspect
