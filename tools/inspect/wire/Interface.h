#pragma once

#include <chrono>
#include <cstdint>
#include <set>
#include <string>

namespace vyr::inspect {

/// An interface of this machine, as the kernel has it.
class CInterface {
  public:
    /// Throws CInputError: there is none of the name, or it is down.
    explicit CInterface(const std::string& name);

    static bool Exists(const std::string& name);

    unsigned Index() const { return m_index; }
    /// Whether the address is one of its own.
    bool Has(std::uint32_t address) const { return m_addresses.count(address) != 0; }
    /// Looks at it again, `now` or once a second. Throws CInputError when it is gone, or down.
    void Watch(bool now = false);
    /// Packets of whatever kind that it lost since, for want of room.
    std::uint64_t Lost();

  private:
    bool m_Read(bool first);

    unsigned m_index;
    bool m_up = false;
    std::set<std::uint32_t> m_addresses;
    std::uint32_t m_counter = 0;
    std::uint64_t m_lost = 0;
    std::chrono::steady_clock::time_point m_watched;
};

}  // namespace vyr::inspect
