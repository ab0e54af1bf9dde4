#include <arpa/inet.h>
#include <linux/sock_diag.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>
#include <deque>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "base/Text.h"
#include "wire/Input.h"
#include "wire/Interface.h"
#include "wire/Live.h"

namespace vyr::inspect {

namespace {

using TEndpoint = std::pair<std::uint32_t, std::uint16_t>;
using TClock = std::chrono::steady_clock;

constexpr std::size_t k_mostSockets = 256;
constexpr std::size_t k_mostFailed = 4096;          // endpoints that are remembered
constexpr std::size_t k_datagram = 65536;           // bytes
constexpr std::size_t k_mostAtOnce = 64;            // datagrams that are read from a socket
constexpr std::size_t k_mostHeld = 512;             // datagrams of all sockets, about
constexpr unsigned k_batch = 1024;                  // datagrams that are handed on
constexpr int k_bufferBytes = 8388608;              // of a socket
constexpr int k_wait = 100;                         // milliseconds
constexpr int k_settle = 2;                         // milliseconds until nothing comes that the kernel stamped before
constexpr double k_mostChanges = 64;                // joins and leaves at once
constexpr double k_changesPerSecond = 32;           // and in the long run: signalling may change with every packet
constexpr std::chrono::milliseconds k_often(1000);  // what is joined is looked at
constexpr std::chrono::milliseconds k_soon(50);     // the same, while changes are left to be made
constexpr std::chrono::seconds k_retry(10);         // of what failed
constexpr std::uint16_t k_firstUnprivileged = 1024;

bool IsMulticast(std::uint32_t address)
{
    return address >> 28 == 0xE;
}

sockaddr_in Address(std::uint32_t address, std::uint16_t port)
{
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_addr.s_addr = htonl(address);
    result.sin_port = htons(port);
    return result;
}

template <class TValue>
bool SetOption(int socket, int level, int name, const TValue& value)
{
    return setsockopt(socket, level, name, &value, sizeof value) == 0;
}

struct SArrival {
    STime time;
    std::uint32_t source = 0;
    std::uint16_t sourcePort = 0;
    std::vector<unsigned char> payload;
};

bool Before(const SArrival& one, const SArrival& other)
{
    return std::tie(one.time.seconds, one.time.nanoseconds) < std::tie(other.time.seconds, other.time.nanoseconds);
}

STime Now()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return {now.tv_sec, static_cast<std::int32_t>(now.tv_nsec)};
}

/// Whether nothing comes any more that came before; of what seems to come from the future, the clock was set.
bool IsSettled(const SArrival& arrival, const STime& now)
{
    const double age = Seconds(now) - Seconds(arrival.time);
    return age >= k_settle / 1e3 || age < -1;
}

/// The socket of one endpoint.
class CSocket {
  public:
    explicit CSocket(const TEndpoint& endpoint)
        : m_endpoint(endpoint), m_socket(socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0))
    {
    }
    ~CSocket()
    {
        if (m_socket >= 0) {
            close(m_socket);
        }
    }
    CSocket(const CSocket&) = delete;
    CSocket& operator=(const CSocket&) = delete;

    /// False: errno tells why.
    bool Open()
    {
        constexpr int k_on = 1;
        constexpr int k_off = 0;
        if (m_socket < 0) {
            return false;
        }
        // Others may receive the group, too; an address of the machine is not taken from a program that has it.
        if (IsMulticast(m_endpoint.first) && (!SetOption(m_socket, SOL_SOCKET, SO_REUSEADDR, k_on) ||
                                              !SetOption(m_socket, IPPROTO_IP, IP_MULTICAST_ALL, k_off))) {
            return false;
        }
        if (!SetOption(m_socket, SOL_SOCKET, SO_RCVBUFFORCE, k_bufferBytes)) {
            SetOption(m_socket, SOL_SOCKET, SO_RCVBUF, k_bufferBytes);  // the kernel gives what it may
        }
        SetOption(m_socket, SOL_SOCKET, SO_RXQ_OVFL, k_on);
        const sockaddr_in address = Address(m_endpoint.first, m_endpoint.second);
        return SetOption(m_socket, IPPROTO_IP, IP_PKTINFO, k_on) &&
               SetOption(m_socket, SOL_SOCKET, SO_TIMESTAMPNS, k_on) &&
               bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }
    /// Joins the group, or leaves it; of a source, or of any (0). False: errno tells why. That it is bound is enough of
    /// an address of the machine.
    bool Change(bool join, unsigned interface, std::uint32_t source) const
    {
        if (!IsMulticast(m_endpoint.first)) {
            return true;
        }
        const sockaddr_in groupAddress = Address(m_endpoint.first, 0);
        if (source == 0) {
            group_req request{};
            request.gr_interface = interface;
            std::memcpy(&request.gr_group, &groupAddress, sizeof groupAddress);
            return SetOption(m_socket, IPPROTO_IP, join ? MCAST_JOIN_GROUP : MCAST_LEAVE_GROUP, request);
        }
        const sockaddr_in sourceAddress = Address(source, 0);
        group_source_req request{};
        request.gsr_interface = interface;
        std::memcpy(&request.gsr_group, &groupAddress, sizeof groupAddress);
        std::memcpy(&request.gsr_source, &sourceAddress, sizeof sourceAddress);
        return SetOption(m_socket, IPPROTO_IP, join ? MCAST_JOIN_SOURCE_GROUP : MCAST_LEAVE_SOURCE_GROUP, request);
    }
    /// Reads some datagrams behind those that are held; those of other interfaces are passed over.
    void Read(unsigned interface, std::size_t most, unsigned char* room);
    /// Datagrams that the kernel dropped for want of room. The count that comes with a datagram leaves out those that
    /// were dropped behind it.
    std::uint64_t Dropped() const
    {
        std::uint32_t counts[SK_MEMINFO_VARS] = {};
        socklen_t size = sizeof counts;
        const bool told = getsockopt(m_socket, SOL_SOCKET, SO_MEMINFO, counts, &size) == 0;
        return std::max(m_dropped, told ? counts[SK_MEMINFO_DROPS] : 0);
    }
    const TEndpoint& Endpoint() const { return m_endpoint; }
    int Descriptor() const { return m_socket; }

    std::set<std::uint32_t> sources;  ///< that are joined; 0: any
    std::deque<SArrival> held;
    bool more = false;  ///< the kernel may have more

  private:
    void m_Take(const msghdr& message, std::size_t size, const unsigned char* bytes, unsigned interface);

    const TEndpoint m_endpoint;
    const int m_socket;
    std::uint32_t m_dropped = 0;
};

void CSocket::Read(unsigned interface, std::size_t most, unsigned char* room)
{
    struct SControl {
        alignas(cmsghdr) char bytes[256];
    };
    mmsghdr messages[k_mostAtOnce] = {};
    iovec places[k_mostAtOnce] = {};
    sockaddr_in senders[k_mostAtOnce] = {};
    SControl controls[k_mostAtOnce];
    for (std::size_t i = 0; i < most; ++i) {
        places[i] = {room + i * k_datagram, k_datagram};
        msghdr& message = messages[i].msg_hdr;
        message.msg_name = &senders[i];
        message.msg_namelen = sizeof senders[i];
        message.msg_iov = &places[i];
        message.msg_iovlen = 1;
        message.msg_control = controls[i].bytes;
        message.msg_controllen = sizeof controls[i].bytes;
    }
    const int count = recvmmsg(m_socket, messages, static_cast<unsigned>(most), MSG_DONTWAIT, nullptr);
    more = count == static_cast<int>(most);
    for (int i = 0; i < count; ++i) {
        m_Take(messages[i].msg_hdr, messages[i].msg_len, room + static_cast<std::size_t>(i) * k_datagram, interface);
    }
}

void CSocket::m_Take(const msghdr& message, std::size_t size, const unsigned char* bytes, unsigned interface)
{
    STime time = Now();  // that of the kernel comes in its place
    bool its = false;
    // The macros of the system's header take what is no const.
    msghdr& walked = const_cast<msghdr&>(message);
    for (cmsghdr* each = CMSG_FIRSTHDR(&walked); each != nullptr; each = CMSG_NXTHDR(&walked, each)) {
        if (each->cmsg_level == SOL_SOCKET && each->cmsg_type == SO_TIMESTAMPNS) {
            timespec stamp{};
            std::memcpy(&stamp, CMSG_DATA(each), sizeof stamp);
            time = {stamp.tv_sec, static_cast<std::int32_t>(stamp.tv_nsec)};
        } else if (each->cmsg_level == SOL_SOCKET && each->cmsg_type == SO_RXQ_OVFL) {
            std::memcpy(&m_dropped, CMSG_DATA(each), sizeof m_dropped);
        } else if (each->cmsg_level == IPPROTO_IP && each->cmsg_type == IP_PKTINFO) {
            in_pktinfo info{};
            std::memcpy(&info, CMSG_DATA(each), sizeof info);
            its = info.ipi_ifindex == static_cast<int>(interface);
        }
    }
    if (!its) {
        return;
    }
    const auto& source = *static_cast<const sockaddr_in*>(message.msg_name);
    held.push_back({time, ntohl(source.sin_addr.s_addr), ntohs(source.sin_port), {bytes, bytes + size}});
}

class CGroups : public CLive {
  public:
    CGroups(const std::string& interface, SLiveSink sink)
        : m_interface(interface),
          m_sink(std::move(sink)),
          m_epoll(epoll_create1(EPOLL_CLOEXEC)),
          m_room(new unsigned char[k_mostAtOnce * k_datagram])
    {
        if (m_epoll < 0) {
            throw CInputError(ERule::INPUT_UNREADABLE, std::strerror(errno));
        }
    }
    ~CGroups() override { close(m_epoll); }

    void Receive(std::uint64_t most) override;
    void Want(const std::vector<SServiceSession>& sessions) override;
    SReception Reception() override;

  private:
    using TSockets = std::map<TEndpoint, CSocket>;

    void m_Sync();
    bool m_MayChange();
    void m_Leave(TSockets::iterator socket);
    void m_Open(const TEndpoint& endpoint);
    void m_SetSources(CSocket& socket, const std::set<std::uint32_t>& wanted, bool mayJoin);
    std::string m_Refusal(const TEndpoint& endpoint) const;
    void m_Fail(const TEndpoint& endpoint, const std::string& why);

    CInterface m_interface;
    const SLiveSink m_sink;
    const int m_epoll;
    const std::unique_ptr<unsigned char[]> m_room;
    std::vector<SServiceSession> m_sessions;
    std::vector<TEndpoint> m_order;                         ///< of what is wanted, the first matter most
    std::map<TEndpoint, std::set<std::uint32_t>> m_wanted;  ///< sources; 0 alone: any
    TSockets m_sockets;
    std::map<TEndpoint, TClock::time_point> m_failed;
    bool m_toldTooMany = false;
    double m_changes = k_mostChanges;  ///< that may be made now
    TClock::time_point m_changesAt = TClock::now();
    TClock::time_point m_synced;
    bool m_behind = false;  ///< changes are left to be made
    SPacketCounts m_counts;
};

void CGroups::Want(const std::vector<SServiceSession>& sessions)
{
    const auto same = [](const SServiceSession& a, const SServiceSession& b) { return !(a < b) && !(b < a); };
    const bool changed = !std::equal(sessions.begin(), sessions.end(), m_sessions.begin(), m_sessions.end(), same);
    if (changed) {
        m_sessions = sessions;
        m_order.clear();
        m_wanted.clear();
        for (const SServiceSession& session : sessions) {
            const TEndpoint endpoint = {session.destination, session.port};
            const auto [wanted, isNew] = m_wanted.try_emplace(endpoint);
            wanted->second.insert(session.source);
            if (isNew) {
                m_order.push_back(endpoint);
            }
        }
        // From any source is from each of them.
        for (auto& [endpoint, sources] : m_wanted) {
            if (sources.count(0) != 0 || !IsMulticast(endpoint.first)) {
                sources = {0};
            }
        }
    }
    if (changed || TClock::now() - m_synced > (m_behind ? k_soon : k_often)) {
        m_Sync();
    }
}

/// Makes the changes that are due, and may be made now.
void CGroups::m_Sync()
{
    const TClock::time_point now = TClock::now();
    const std::chrono::duration<double> passed = now - m_changesAt;
    m_changes = std::min(k_mostChanges, m_changes + passed.count() * k_changesPerSecond);
    m_changesAt = m_synced = now;
    m_behind = false;
    for (auto socket = m_sockets.begin(); socket != m_sockets.end();) {
        const auto old = socket++;
        if (m_wanted.count(old->first) == 0 && m_MayChange()) {
            m_Leave(old);
        }
    }
    std::size_t tooMany = 0;
    for (const TEndpoint& endpoint : m_order) {
        const auto failed = m_failed.find(endpoint);
        const bool mayJoin = failed == m_failed.end() || now - failed->second >= k_retry;
        if (const auto socket = m_sockets.find(endpoint); socket != m_sockets.end()) {
            m_SetSources(socket->second, m_wanted[endpoint], mayJoin);
        } else if (!mayJoin) {
            continue;
        } else if (const std::string refusal = m_Refusal(endpoint); !refusal.empty()) {
            m_Fail(endpoint, refusal);
        } else if (m_sockets.size() == k_mostSockets) {
            ++tooMany;
        } else if (m_MayChange()) {
            m_Open(endpoint);
        }
    }
    if (tooMany != 0 && !m_toldTooMany) {
        m_toldTooMany = true;
        m_sink.notJoined("more sessions are named than are received at a time, which is " +
                         std::to_string(k_mostSockets) + ": " + std::to_string(tooMany) + " are not received");
    }
}

bool CGroups::m_MayChange()
{
    m_behind = m_behind || m_changes < 1;
    if (m_changes < 1) {
        return false;
    }
    m_changes -= 1;
    return true;
}

void CGroups::m_Leave(TSockets::iterator socket)
{
    m_counts.dropped += socket->second.Dropped();
    m_sockets.erase(socket);
}

/// Why it is not even tried to receive what comes there; empty: it is.
std::string CGroups::m_Refusal(const TEndpoint& endpoint) const
{
    const auto [address, port] = endpoint;
    if (port == 0) {
        return "there is no port 0";
    }
    if (IsMulticast(address)) {
        return {};
    }
    if (!m_interface.Has(address)) {
        return "it is neither a group nor an address of the interface";
    }
    return port < k_firstUnprivileged ? "its port is one of the machine's own" : "";
}

void CGroups::m_Open(const TEndpoint& endpoint)
{
    const auto socket = m_sockets.try_emplace(endpoint, endpoint).first;
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.ptr = &socket->second;
    if (!socket->second.Open() || epoll_ctl(m_epoll, EPOLL_CTL_ADD, socket->second.Descriptor(), &event) != 0) {
        m_Fail(endpoint, std::strerror(errno));
        m_sockets.erase(socket);
        return;
    }
    m_SetSources(socket->second, m_wanted[endpoint], true);
    if (socket->second.sources.empty()) {
        m_sockets.erase(socket);
    }
}

/// What the kernel filters by is either any source or some: the old ones go first.
void CGroups::m_SetSources(CSocket& socket, const std::set<std::uint32_t>& wanted, bool mayJoin)
{
    const auto isOld = [&wanted](std::uint32_t source) { return wanted.count(source) == 0; };
    bool isPaid = socket.sources.empty();  // the first one, by the change that opened the socket
    for (auto source = socket.sources.begin(); source != socket.sources.end();) {
        if (isOld(*source) && m_MayChange()) {
            socket.Change(false, m_interface.Index(), *source);
            source = socket.sources.erase(source);
        } else {
            ++source;
        }
    }
    if (!mayJoin || std::any_of(socket.sources.begin(), socket.sources.end(), isOld)) {
        return;
    }
    for (const std::uint32_t source : wanted) {
        if (socket.sources.count(source) != 0 || (!isPaid && !m_MayChange())) {
            continue;
        }
        isPaid = false;
        if (!socket.Change(true, m_interface.Index(), source)) {
            m_Fail(socket.Endpoint(), (source != 0 ? "from " + Ipv4Text(source) + ": " : "") + std::strerror(errno));
            return;
        }
        socket.sources.insert(source);
    }
}

/// Tells of each endpoint once.
void CGroups::m_Fail(const TEndpoint& endpoint, const std::string& why)
{
    const bool known = m_failed.count(endpoint) != 0;
    if (known || m_failed.size() < k_mostFailed) {
        m_failed[endpoint] = TClock::now();
    }
    if (!known && m_failed.size() < k_mostFailed) {
        m_sink.notJoined("what is sent to " + EndpointText(endpoint.first, endpoint.second) +
                         " is not received: " + why);
    }
}

/// Datagrams of all sockets are handed on in the order in which they came: a socket of which none is held is asked
/// before.
void CGroups::Receive(std::uint64_t most)
{
    std::vector<CSocket*> active;
    for (auto& [endpoint, socket] : m_sockets) {
        if (!socket.held.empty() || socket.more) {
            active.push_back(&socket);
        }
    }
    epoll_event events[k_mostSockets];
    constexpr int k_most = static_cast<int>(k_mostSockets);
    if (epoll_wait(m_epoll, events, k_most, active.empty() ? k_wait : k_settle) <= 0 && active.empty()) {
        m_interface.Watch();
        return;
    }
    // What came before this moment is there; of what comes behind it, something earlier may still come.
    const STime now = Now();
    const int count = epoll_wait(m_epoll, events, k_most, 0);
    for (int i = 0; i < count; ++i) {
        auto* const socket = static_cast<CSocket*>(events[i].data.ptr);
        if (socket->held.empty() && !socket->more) {
            active.push_back(socket);
        }
        socket->more = true;
    }
    const std::size_t atOnce = std::clamp<std::size_t>(k_mostHeld / (active.size() + 1), 1, k_mostAtOnce);
    for (std::uint64_t i = 0; i < most && i < k_batch; ++i) {
        CSocket* first = nullptr;
        for (CSocket* socket : active) {
            if (socket->held.empty() && socket->more) {
                socket->Read(m_interface.Index(), atOnce, m_room.get());
            }
            if (!socket->held.empty() && IsSettled(socket->held.front(), now) &&
                (first == nullptr || Before(socket->held.front(), first->held.front()))) {
                first = socket;
            }
        }
        if (first == nullptr) {
            break;
        }
        const SArrival arrival = std::move(first->held.front());
        first->held.pop_front();
        const auto& [destination, port] = first->Endpoint();
        ++m_counts.packets;
        ++m_counts.datagrams;
        m_sink.packet(arrival.time, arrival.payload.size());
        m_sink.datagram(
            {arrival.source, destination, arrival.sourcePort, port, {arrival.payload.data(), arrival.payload.size()}});
    }
    m_interface.Watch();
}

SReception CGroups::Reception()
{
    SReception reception = {m_counts};
    for (const auto& [endpoint, socket] : m_sockets) {
        reception.counts.dropped += socket.Dropped();
    }
    reception.counts.lostByInterface = m_interface.Lost();
    for (const SServiceSession& session : m_sessions) {
        const auto socket = m_sockets.find({session.destination, session.port});
        if (socket == m_sockets.end() ||
            (socket->second.sources.count(0) == 0 && socket->second.sources.count(session.source) == 0)) {
            reception.missed.insert(session);
        }
    }
    return reception;
}

}  // namespace

std::unique_ptr<CLive> JoinGroups(const std::string& interface, SLiveSink sink)
{
    return std::make_unique<CGroups>(interface, std::move(sink));
}

}  // namespace vyr::inspect
