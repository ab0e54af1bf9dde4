#include "wire/Interface.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <linux/if_link.h>
#include <linux/if_packet.h>
#include <net/if.h>

#include <cstring>
#include <memory>

#include "wire/Input.h"

namespace vyr::inspect {

CInterface::CInterface(const std::string& name) : m_index(if_nametoindex(name.c_str()))
{
    if (m_index == 0 || !m_Read(true)) {
        throw CInputError(ERule::INPUT_MISSING, "no such interface");
    }
    if (!m_up) {
        throw CInputError(ERule::INPUT_UNREADABLE, "the interface is down");
    }
    m_watched = std::chrono::steady_clock::now();
}

bool CInterface::Exists(const std::string& name)
{
    return if_nametoindex(name.c_str()) != 0;
}

void CInterface::Watch(bool now)
{
    const auto time = std::chrono::steady_clock::now();
    if (!now && time - m_watched < std::chrono::seconds(1)) {
        return;
    }
    m_watched = time;
    if (!m_Read(false)) {
        throw CInputError(ERule::INTERFACE_LOST, "the interface is gone");
    }
    if (!m_up) {
        throw CInputError(ERule::INTERFACE_LOST, "the interface went down");
    }
}

std::uint64_t CInterface::Lost()
{
    m_Read(false);
    return m_lost;
}

/// False: it is not there. Its name may have changed.
bool CInterface::m_Read(bool first)
{
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0) {
        return !first;  // a machine that has no memory now says nothing of the interface
    }
    const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> freed(list, freeifaddrs);
    char name[IF_NAMESIZE] = "";
    if (if_indextoname(m_index, name) == nullptr) {
        return false;
    }
    m_addresses.clear();
    for (const ifaddrs* each = list; each != nullptr; each = each->ifa_next) {
        if (each->ifa_addr == nullptr || std::strcmp(each->ifa_name, name) != 0) {
            continue;
        }
        if (each->ifa_addr->sa_family == AF_INET) {
            sockaddr_in address{};
            std::memcpy(&address, each->ifa_addr, sizeof address);
            m_addresses.insert(ntohl(address.sin_addr.s_addr));
        } else if (each->ifa_addr->sa_family == AF_PACKET) {
            m_up = (each->ifa_flags & IFF_UP) != 0;
            if (each->ifa_data != nullptr) {
                rtnl_link_stats counts{};
                std::memcpy(&counts, each->ifa_data, sizeof counts);
                const std::uint32_t counter = counts.rx_missed_errors + counts.rx_fifo_errors;
                m_lost += first ? 0 : static_cast<std::uint32_t>(counter - m_counter);
                m_counter = counter;
            }
        }
    }
    return true;
}

}  // namespace vyr::inspect
