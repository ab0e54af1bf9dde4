#include <pcap/pcap.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <utility>

#include "wire/Input.h"
#include "wire/Interface.h"
#include "wire/LinkLayer.h"
#include "wire/Live.h"

namespace vyr::inspect {

namespace {

constexpr int k_wholePackets = 262144;
constexpr int k_bufferBytes = 33554432;
constexpr int k_wait = 100;              // milliseconds
constexpr unsigned k_batch = 1024;       // packets
constexpr char k_any[] = "any";          // all interfaces at once, which libpcap has
constexpr int k_mostVlanTags = 3;        // that the filter looks behind; the kernel takes one off before
constexpr char k_udp[] = "ip proto 17";  // of fragments, every one says so

/// What the link type lets a filter say of the packets that are wanted; empty: nothing.
std::string WantedPackets(int linkType)
{
    if (linkType == DLT_ATSC_ALP) {
        return {};
    }
    std::string wanted = k_udp;
    for (int tags = 0; linkType == DLT_EN10MB && tags < k_mostVlanTags; ++tags) {
        wanted = k_udp + (" or (vlan and (" + wanted) + "))";
    }
    return wanted;
}

/// The tool, as a shell takes it.
std::string ToolPath()
{
    char path[4096];
    const ssize_t size = readlink("/proc/self/exe", path, sizeof path);
    return size > 0 ? std::string(path, static_cast<std::size_t>(size)) : "vyr-atsc30-inspect";
}

class CCapture : public CLive {
  public:
    CCapture(const std::string& interface, const std::string& filter, SLiveSink sink);
    ~CCapture() override { pcap_close(m_pcap); }

    void Receive(std::uint64_t most) override;
    void Want(const std::vector<SServiceSession>&) override {}  // whatever comes is captured
    SReception Reception() override;
    void Finish() override { m_decoder->Finish(); }

  private:
    static pcap_t* m_Open(const std::string& interface);
    void m_Activate(const std::string& interface);
    void m_Filter(const std::string& filter);
    void m_Attach(const std::string& filter);

    pcap_t* const m_pcap;
    std::optional<CInterface> m_interface;  // none of what is no single one
    const SLiveSink m_sink;
    std::optional<CPacketDecoder> m_decoder;
    std::int32_t m_nanoseconds = 1;  // of a unit of the time stamps
};

pcap_t* CCapture::m_Open(const std::string& interface)
{
    char error[PCAP_ERRBUF_SIZE] = "";
    pcap_t* const pcap = pcap_create(interface.c_str(), error);
    if (pcap == nullptr) {
        throw CInputError(ERule::INPUT_UNREADABLE, error);
    }
    return pcap;
}

CCapture::CCapture(const std::string& interface, const std::string& filter, SLiveSink sink)
    : m_pcap(m_Open(interface)), m_sink(std::move(sink))
{
    try {
        m_Activate(interface);
        m_Filter(filter);
        char error[PCAP_ERRBUF_SIZE] = "";
        if (pcap_setnonblock(m_pcap, 1, error) != 0) {
            throw CInputError(ERule::INPUT_UNREADABLE, error);
        }
        m_decoder.emplace(pcap_datalink(m_pcap), m_sink.datagram);
    } catch (...) {
        pcap_close(m_pcap);
        throw;
    }
}

void CCapture::m_Activate(const std::string& interface)
{
    const bool single = interface != k_any;
    if (CInterface::Exists(interface)) {
        m_interface.emplace(interface);
    }
    for (const int refused : {pcap_set_snaplen(m_pcap, k_wholePackets), pcap_set_promisc(m_pcap, 1),
                              pcap_set_timeout(m_pcap, k_wait), pcap_set_buffer_size(m_pcap, k_bufferBytes)}) {
        if (refused != 0) {
            throw CInputError(ERule::INPUT_UNREADABLE, pcap_statustostr(refused));
        }
    }
    const bool fine = pcap_set_tstamp_precision(m_pcap, PCAP_TSTAMP_PRECISION_NANO) == 0;
    const int result = pcap_activate(m_pcap);
    const bool forbidden = result == PCAP_ERROR_PERM_DENIED || result == PCAP_ERROR_PROMISC_PERM_DENIED;
    if (result == PCAP_ERROR_NO_SUCH_DEVICE || (forbidden && single && !m_interface)) {
        throw CInputError(ERule::INPUT_MISSING, "no such interface");
    }
    if (forbidden) {
        throw CInputError(ERule::INPUT_UNREADABLE,
                          "to capture needs privileges, which this gives: setcap cap_net_raw,cap_net_admin=eip '" +
                              ToolPath() + "'; --join needs none");
    }
    if (result < 0) {
        const char* const why = pcap_geterr(m_pcap);
        throw CInputError(ERule::INPUT_UNREADABLE, *why != '\0' ? why : pcap_statustostr(result));
    }
    RequireKnownLinkType(pcap_datalink(m_pcap));
    m_nanoseconds = fine && pcap_get_tstamp_precision(m_pcap) == PCAP_TSTAMP_PRECISION_NANO ? 1 : 1000;
}

/// That of the user is tried alone, so that it cannot end the parentheses, and comes first: what is behind a VLAN tag
/// that it asks for is looked for there.
void CCapture::m_Filter(const std::string& filter)
{
    const std::string wanted = WantedPackets(pcap_datalink(m_pcap));
    if (!filter.empty()) {
        m_Attach(filter);
    }
    if (!wanted.empty()) {
        m_Attach(filter.empty() ? wanted : '(' + filter + ") and (" + wanted + ')');
    }
}

void CCapture::m_Attach(const std::string& filter)
{
    bpf_program program{};
    if (pcap_compile(m_pcap, &program, filter.c_str(), 1, PCAP_NETMASK_UNKNOWN) != 0) {
        throw CUsageError(std::string("--filter: ") + pcap_geterr(m_pcap));
    }
    const int result = pcap_setfilter(m_pcap, &program);
    pcap_freecode(&program);
    if (result != 0) {
        throw CInputError(ERule::INPUT_UNREADABLE, pcap_geterr(m_pcap));
    }
}

void CCapture::Receive(std::uint64_t most)
{
    pollfd ready = {pcap_get_selectable_fd(m_pcap), POLLIN, 0};
    poll(&ready, 1, k_wait);
    pcap_pkthdr* header = nullptr;
    const unsigned char* bytes = nullptr;
    int result = 1;
    for (std::uint64_t i = 0; i < most && i < k_batch && (result = pcap_next_ex(m_pcap, &header, &bytes)) == 1; ++i) {
        const STime time = {header->ts.tv_sec, static_cast<std::int32_t>(header->ts.tv_usec) * m_nanoseconds};
        m_sink.packet(time, header->caplen);
        m_decoder->Decode({bytes, header->caplen}, header->caplen < header->len, time);
    }
    if (m_interface) {
        m_interface->Watch(result == PCAP_ERROR);
    }
    if (result == PCAP_ERROR) {
        throw CInputError(ERule::INTERFACE_LOST, pcap_geterr(m_pcap));
    }
}

SReception CCapture::Reception()
{
    SReception reception = {m_decoder->Counts()};
    pcap_stat counts{};
    if (pcap_stats(m_pcap, &counts) == 0) {
        reception.counts.dropped = counts.ps_drop;
    }
    // libpcap reads the interface's own count where another namespace may have an interface of the name.
    reception.counts.lostByInterface = m_interface ? m_interface->Lost() : counts.ps_ifdrop;
    return reception;
}

}  // namespace

std::unique_ptr<CLive> CaptureInterface(const std::string& interface, const std::string& filter, SLiveSink sink)
{
    return std::make_unique<CCapture>(interface, filter, std::move(sink));
}

}  // namespace vyr::inspect
