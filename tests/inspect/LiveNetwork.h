#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "Tool.h"
#include "support/Places.h"
#include "wire/Input.h"
#include "wire/LinkLayer.h"

/// A network of the test's own: a namespace of which the loopback is all, unless more is made.
namespace live {

/// Waits until it is so, which is soon or never.
inline bool Until(const std::function<bool()>& condition)
{
    using namespace std::chrono_literals;
    const auto end = std::chrono::steady_clock::now() + 30s;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(5ms);
    }
    return true;
}

/// False: this machine does not allow it.
inline bool SwitchOn(const char* interface, bool up)
{
    ifreq request{};
    std::strncpy(request.ifr_name, interface, IFNAMSIZ - 1);
    const int any = socket(AF_INET, SOCK_DGRAM, 0);
    bool done = ioctl(any, SIOCGIFFLAGS, &request) == 0;
    request.ifr_flags = static_cast<short>(up ? request.ifr_flags | IFF_UP : request.ifr_flags & ~IFF_UP);
    done = done && ioctl(any, SIOCSIFFLAGS, &request) == 0;
    close(any);
    return done;
}

/// One more address of the loopback.
inline bool AddAddress(int number, const char* address)
{
    ifreq request{};
    std::strncpy(request.ifr_name, ("lo:" + std::to_string(number)).c_str(), IFNAMSIZ - 1);
    sockaddr_in place{};
    place.sin_family = AF_INET;
    inet_pton(AF_INET, address, &place.sin_addr);
    std::memcpy(&request.ifr_addr, &place, sizeof place);
    const int any = socket(AF_INET, SOCK_DGRAM, 0);
    const bool done = ioctl(any, SIOCSIFADDR, &request) == 0;
    close(any);
    return done;
}

/// False: an emulator of another machine, for instance, which knows no groups.
inline bool HasGroups()
{
    ip_mreqn request{};
    request.imr_ifindex = static_cast<int>(if_nametoindex("lo"));
    const int any = socket(AF_INET, SOCK_DGRAM, 0);
    const bool has = setsockopt(any, IPPROTO_IP, IP_MULTICAST_IF, &request, sizeof request) == 0;
    close(any);
    return has;
}

/// Each test in a namespace of its own, with three senders: 192.0.2.10, .11 and .12.
inline bool EnterNetwork()
{
    const std::string user = std::to_string(getuid());
    bool entered = unshare(CLONE_NEWNET) == 0;
    if (!entered && unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0) {
        entered = static_cast<bool>(std::ofstream("/proc/self/uid_map") << "0 " + user + " 1" << std::flush);
    }
    return entered && SwitchOn("lo", true) && AddAddress(1, "192.0.2.10") && AddAddress(2, "192.0.2.11") &&
           AddAddress(3, "192.0.2.12") && HasGroups();
}

#define VYR_NETWORK_OR_SKIP()                                                                           \
    if (!live::EnterNetwork()) {                                                                        \
        GTEST_SKIP() << "NOT TESTED: no network of its own can be made here: " << std::strerror(errno); \
    }

struct SToSend {
    std::uint32_t destination;
    std::uint16_t port;
    std::string payload;
    double at = 0;  ///< seconds behind the first
    std::uint32_t source = 0xC000020A;
};

class CSender {
  public:
    void Send(const SToSend& sent)
    {
        int& out = m_sockets[sent.source];
        if (out == 0) {
            out = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
            sockaddr_in own{};
            own.sin_family = AF_INET;
            own.sin_addr.s_addr = htonl(sent.source);
            ip_mreqn request{};
            request.imr_ifindex = static_cast<int>(if_nametoindex("lo"));
            ASSERT_EQ(bind(out, reinterpret_cast<sockaddr*>(&own), sizeof own), 0) << std::strerror(errno);
            ASSERT_EQ(setsockopt(out, IPPROTO_IP, IP_MULTICAST_IF, &request, sizeof request), 0);
        }
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_addr.s_addr = htonl(sent.destination);
        to.sin_port = htons(sent.port);
        const ssize_t count =
            sendto(out, sent.payload.data(), sent.payload.size(), 0, reinterpret_cast<sockaddr*>(&to), sizeof to);
        ASSERT_EQ(count, static_cast<ssize_t>(sent.payload.size())) << std::strerror(errno);
    }
    ~CSender()
    {
        for (const auto& [source, out] : m_sockets) {
            close(out);
        }
    }

  private:
    std::map<std::uint32_t, int> m_sockets;
};

/// What a capture has.
inline std::vector<SToSend> Datagrams(const std::string& file)
{
    std::vector<SToSend> all;
    vyr::inspect::CInput input(file);
    vyr::inspect::SPacket packet;
    double first = -1;
    vyr::inspect::CPacketDecoder decoder(input.LinkType(), [&](const vyr::inspect::SDatagram& datagram) {
        const double time = vyr::inspect::Seconds(*packet.time);
        first = first < 0 ? time : first;
        all.push_back({datagram.destination, datagram.destinationPort,
                       std::string(reinterpret_cast<const char*>(datagram.payload.data), datagram.payload.size),
                       time - first});
    });
    while (input.Next(packet)) {
        decoder.Decode(packet.bytes, packet.cut);
    }
    return all;
}

/// The groups that somebody has joined.
inline std::set<std::uint32_t> Joined()
{
    std::set<std::uint32_t> groups;
    std::ifstream list("/proc/net/igmp");
    for (std::string line; std::getline(list, line);) {
        unsigned group = 0;
        if (line.rfind("\t\t\t\t", 0) == 0 && std::sscanf(line.c_str(), "%X", &group) == 1) {
            groups.insert(ntohl(group));
        }
    }
    groups.erase(0xE0000001);  // that of every machine
    return groups;
}

/// The tool while it runs.
class CTool {
  public:
    explicit CTool(const std::vector<std::string>& arguments, bool privileged = true)
    {
        m_pid = fork();
        if (m_pid == 0) {
            if (!privileged) {
                prctl(PR_CAPBSET_DROP, CAP_NET_RAW);
                prctl(PR_CAPBSET_DROP, CAP_NET_ADMIN);
            }
            if (std::freopen(m_out.Name().c_str(), "w", stdout) == nullptr) {
                _exit(126);
            }
            if (std::freopen(m_err.Name().c_str(), "w", stderr) == nullptr) {
                _exit(126);
            }
            std::vector<char*> words = {const_cast<char*>(k_inspect)};
            for (const std::string& argument : arguments) {
                words.push_back(const_cast<char*>(argument.c_str()));
            }
            words.push_back(nullptr);
            execv(k_inspect, words.data());
            _exit(127);
        }
    }
    ~CTool()
    {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
    }
    CTool(const CTool&) = delete;
    CTool& operator=(const CTool&) = delete;

    /// Whether it has begun to receive, which its progress shows: for tools with --progress.
    bool Begun() const
    {
        return Until([this] { return ReadFile(m_err.Name()).find(" packet") != std::string::npos; });
    }
    bool Told(const std::string& text) const
    {
        return Until([&] { return ReadFile(m_out.Name()).find(text) != std::string::npos; });
    }
    /// Whether it has read so many packets.
    bool Read(std::uint64_t packets) const
    {
        const std::string text = ": " + std::to_string(packets) + " packet";
        return Until([&] { return ReadFile(m_err.Name()).find(text) != std::string::npos; });
    }
    void Signal(int signal) const { kill(m_pid, signal); }
    SResult Wait()
    {
        SResult result;
        int status = 0;
        const bool ended = Until([&] { return waitpid(m_pid, &status, WNOHANG) == m_pid; });
        EXPECT_TRUE(ended) << "it goes on";
        result.status = ended && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        m_pid = ended ? -1 : m_pid;
        result.out = ReadFile(m_out.Name());
        result.err = ReadFile(m_err.Name());
        return result;
    }
    SResult End(int signal = SIGINT)
    {
        Signal(signal);
        return Wait();
    }

  private:
    const CTemporary m_out;
    const CTemporary m_err;
    pid_t m_pid = -1;
};

}  // namespace live
