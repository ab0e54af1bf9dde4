#include "wire/Input.h"

#include <fcntl.h>
#include <pcap/pcap.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "base/Gunzip.h"
#include "base/Names.h"
#include "wire/LinkLayer.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_magic = 4;
constexpr std::int64_t k_endOfTime = 253402300800;  // the year 10000
volatile std::sig_atomic_t g_stop = 0;

bool IsCaptureMagic(SView start)
{
    if (start.size < k_magic) {
        return false;
    }
    switch (start.Be32(0)) {
        case 0xA1B2C3D4:
        case 0xD4C3B2A1:
        case 0xA1B23C4D:
        case 0x4D3CB2A1:
        case 0x0A0D0D0A:
            return true;
        default:
            return false;
    }
}

bool IsTableStart(SView start)
{
    return start.size >= k_magic && ((start[0] >= 1 && start[0] <= 6) || start[0] >= 0xFE);
}

/// Whether it may be a delivery unit of the guide: their extensions are not behind 16 MiB.
bool IsUnitStart(SView start)
{
    return start[0] == 0;
}

/// Whether it may be a message of MMT: its id is a known one.
bool IsMessageStart(SView start)
{
    return start.size >= 2 && MessageName(start.Be16(0)) != nullptr;
}

/// Whether it may be a document, or a package of signalling, gzip-compressed or not; its content tells.
bool IsTextStart(SView start)
{
    const std::string text(reinterpret_cast<const char*>(start.data), start.size);
    return IsGzip(start) || text.find_first_of("< \t\r\n") == 0 || text.rfind("\xEF\xBB\xBF", 0) == 0 ||
           text.rfind("--", 0) == 0 || text == "Cont" || text == "MIME" || text == "#EXT";
}

}  // namespace

/// A file whose first bytes have been looked at, readable from its start again: a pipe cannot be
/// wound back. It may be read inflated.
struct CInput::SFile {
    int descriptor = -1;
    std::vector<unsigned char> held;  ///< read ahead
    std::size_t position = 0;         ///< in `held`
    std::string error;                ///< empty: none
    bool inflating = false;
    bool onlyHeld = false;  ///< the end is that of `held`
    bool inMember = false;  ///< the last member's end has not come
    z_stream stream{};
    std::vector<unsigned char> deflated;  ///< what `stream` reads

    SFile() = default;
    ~SFile()
    {
        StopInflating();
        if (descriptor > STDIN_FILENO) {
            close(descriptor);
        }
    }
    SFile(const SFile&) = delete;
    SFile& operator=(const SFile&) = delete;

    ssize_t Read(char* to, std::size_t size) { return inflating ? ReadInflated(to, size) : ReadRaw(to, size); }

    /// The first bytes: up to `size`, fewer at the end of a file.
    SView Peek(std::size_t size)
    {
        while (held.size() < size) {
            const std::size_t before = held.size();
            position = before;
            held.resize(size);
            const ssize_t count = ReadFile(reinterpret_cast<char*>(held.data()) + before, size - before);
            held.resize(before + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
            if (count <= 0) {
                break;
            }
        }
        position = 0;
        return SView{held.data(), held.size()}.First(size);
    }

    /// Whether a file that is compressed by gzip is a capture; it is read inflated then.
    bool InflatesToCapture()
    {
        constexpr std::size_t k_ahead = 65536;  // a gzip header may have a name and a comment
        Peek(k_ahead);
        unsigned char start[k_magic] = {};
        StartInflating();
        onlyHeld = true;
        const ssize_t count = ReadInflated(reinterpret_cast<char*>(start), sizeof start);
        onlyHeld = false;
        StopInflating();
        position = 0;
        error.clear();
        const bool capture = count == sizeof start && IsCaptureMagic({start, sizeof start});
        if (capture) {
            StartInflating();
        }
        return capture;
    }

  private:
    void StartInflating()
    {
        constexpr int k_gzipOnly = 15 + 16;
        stream = {};
        inflating = inflateInit2(&stream, k_gzipOnly) == Z_OK;
        inMember = true;
    }

    void StopInflating()
    {
        if (inflating) {
            inflateEnd(&stream);
            inflating = false;
        }
    }

    ssize_t ReadFile(char* to, std::size_t size)
    {
        while (g_stop == 0) {
            const ssize_t count = read(descriptor, to, size);
            if (count >= 0) {
                return count;
            }
            if (errno != EINTR) {
                error = std::strerror(errno);
                return -1;
            }
        }
        return 0;
    }

    ssize_t ReadRaw(char* to, std::size_t size)
    {
        if (position < held.size()) {
            const std::size_t count = std::min(size, held.size() - position);
            std::memcpy(to, held.data() + position, count);
            position += count;
            return static_cast<ssize_t>(count);
        }
        return onlyHeld ? 0 : ReadFile(to, size);
    }

    /// Members of a gzip file follow each other; what is behind the last one is passed over, as zeros of a tape.
    ssize_t ReadInflated(char* to, std::size_t size)
    {
        constexpr std::size_t k_step = 65536;
        stream.next_out = reinterpret_cast<Bytef*>(to);
        stream.avail_out = static_cast<uInt>(std::min<std::size_t>(size, 1u << 30));
        const uInt wanted = stream.avail_out;
        while (stream.avail_out == wanted) {
            if (stream.avail_in == 0) {
                deflated.resize(k_step);
                const ssize_t count = ReadRaw(reinterpret_cast<char*>(deflated.data()), k_step);
                if (count <= 0) {
                    error = count == 0 && inMember && g_stop == 0 ? "its gzip data ends early" : error;
                    return error.empty() ? 0 : -1;
                }
                stream.next_in = deflated.data();
                stream.avail_in = static_cast<uInt>(count);
            }
            if (!inMember && stream.next_in[0] != 0x1F) {
                return 0;
            }
            inMember = true;
            const int result = inflate(&stream, Z_NO_FLUSH);
            if (result == Z_STREAM_END) {
                inMember = false;
                inflateReset(&stream);
            } else if (result != Z_OK && result != Z_BUF_ERROR) {
                error = "its gzip data is damaged";
                return stream.avail_out == wanted ? -1 : static_cast<ssize_t>(wanted - stream.avail_out);
            }
        }
        return static_cast<ssize_t>(wanted - stream.avail_out);
    }
};

CInput::CInput(const std::string& name) : m_file(std::make_unique<SFile>())
{
    m_file->descriptor = name == "-" ? STDIN_FILENO : open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (m_file->descriptor < 0) {
        throw CInputError(errno == ENOENT ? ERule::INPUT_MISSING : ERule::INPUT_UNREADABLE, std::strerror(errno));
    }
    struct stat about {};
    if (fstat(m_file->descriptor, &about) == 0 && S_ISDIR(about.st_mode)) {
        throw CInputError(ERule::INPUT_DIRECTORY, "is a directory");
    }
    const bool gzip = IsGzip(m_file->Peek(k_magic)) && m_file->InflatesToCapture();
    const SView start = m_file->Peek(k_magic);
    if (!m_file->error.empty()) {
        throw CInputError(ERule::INPUT_UNREADABLE, m_file->error);
    }
    if (start.size == 0) {
        throw CInputError(ERule::INPUT_EMPTY, "is empty");
    }
    if (gzip || IsCaptureMagic(start)) {
        m_OpenCapture();
    } else if (IsTableStart(start)) {
        m_kind = EKind::TABLE;
    } else if (IsTextStart(start)) {
        m_kind = EKind::TEXT;
    } else if (IsUnitStart(start) || IsMessageStart(start)) {
        m_kind = EKind::BINARY;
    } else {
        throw CInputError(ERule::INPUT_UNKNOWN, k_unknown);
    }
    if (m_kind != EKind::CAPTURE) {
        m_ReadBytes();
    }
}

CInput::~CInput()
{
    if (m_capture != nullptr) {
        pcap_close(m_capture);
    }
}

int CInput::LinkType() const
{
    return pcap_datalink(m_capture);
}

void RequireKnownLinkType(int linkType)
{
    if (!CPacketDecoder::Knows(linkType)) {
        const char* name = pcap_datalink_val_to_name(linkType);
        throw CInputError(ERule::LINK_TYPE, "packets of link type " + std::to_string(linkType) + " (" +
                                                (name != nullptr ? name : "unknown") + ") cannot be read");
    }
}

bool CInput::Next(SPacket& packet)
{
    pcap_pkthdr* header = nullptr;
    const unsigned char* bytes = nullptr;
    const int result = g_stop == 0 ? pcap_next_ex(m_capture, &header, &bytes) : PCAP_ERROR_BREAK;
    if (result == PCAP_ERROR && g_stop == 0) {
        const std::string error = m_file->error.empty() ? pcap_geterr(m_capture) : m_file->error;
        // libpcap reads no file whose interfaces differ: it has one link type for all.
        const bool mixed = error.find("different from the type of the first interface") != std::string::npos;
        throw CInputError(mixed ? ERule::LINK_TYPE : m_Unreadable(), error);
    }
    if (result != 1) {
        return false;
    }
    packet.bytes = {bytes, header->caplen};
    packet.cut = header->caplen < header->len;
    packet.time.reset();
    // In captures without time stamps they are 0; damaged ones have any number.
    if (header->ts.tv_sec > 0 && header->ts.tv_sec < k_endOfTime && header->ts.tv_usec >= 0 &&
        header->ts.tv_usec < 1000000000) {
        packet.time = STime{header->ts.tv_sec, static_cast<std::int32_t>(header->ts.tv_usec)};
    }
    return true;
}

bool CInput::Stopped()
{
    return g_stop != 0;
}

void CInput::Stop()
{
    g_stop = 1;
}

/// What a capture that cannot be read on is.
ERule CInput::m_Unreadable() const
{
    return m_file->error.empty() || m_file->inflating ? ERule::CAPTURE_DAMAGED : ERule::INPUT_UNREADABLE;
}

void CInput::m_OpenCapture()
{
    cookie_io_functions_t functions{};
    functions.read = [](void* file, char* to, std::size_t size) { return static_cast<SFile*>(file)->Read(to, size); };
    FILE* stream = fopencookie(m_file.get(), "r", functions);
    if (stream == nullptr) {
        throw CInputError(ERule::INPUT_UNREADABLE, std::strerror(errno));
    }
    char error[PCAP_ERRBUF_SIZE] = "";
    m_capture = pcap_fopen_offline_with_tstamp_precision(stream, PCAP_TSTAMP_PRECISION_NANO, error);
    if (m_capture == nullptr) {
        std::fclose(stream);
        throw CInputError(m_Unreadable(), m_file->error.empty() ? error : m_file->error);
    }
}

void CInput::m_ReadBytes()
{
    const std::size_t limit = m_kind == EKind::BINARY ? k_maxUnit : k_maxBytes;
    unsigned char chunk[65536];
    ssize_t count = 0;
    while ((count = m_file->Read(reinterpret_cast<char*>(chunk), sizeof chunk)) > 0) {
        m_bytes.insert(m_bytes.end(), chunk, chunk + count);
        if (m_bytes.size() > limit) {
            constexpr const char* k_names[] = {"", "LLS table", "signalling", "delivery unit"};
            throw CInputError(ERule::INPUT_TOO_LARGE, std::string("larger than any ") +
                                                          k_names[static_cast<std::size_t>(m_kind)] + ": more than " +
                                                          std::to_string(limit) + " bytes");
        }
    }
    if (!m_file->error.empty()) {
        throw CInputError(ERule::INPUT_UNREADABLE, m_file->error);
    }
}

}  // namespace vyr::inspect
