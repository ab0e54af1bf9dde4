#include "wire/Input.h"

#include <fcntl.h>
#include <pcap/pcap.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "base/Gunzip.h"
#include "base/Names.h"

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
           text.rfind("--", 0) == 0 || text == "Cont" || text == "MIME";
}

}  // namespace

/// A file whose first bytes have been looked at, readable from its start again: a pipe cannot be
/// wound back.
struct CInput::SFile {
    int descriptor = -1;
    std::array<unsigned char, k_magic> start{};
    std::size_t startSize = 0;
    std::size_t position = 0;
    int error = 0;

    ~SFile()
    {
        if (descriptor > STDIN_FILENO) {
            close(descriptor);
        }
    }

    ssize_t Read(char* to, std::size_t size)
    {
        if (position < startSize) {
            const std::size_t count = std::min(size, startSize - position);
            std::memcpy(to, start.data() + position, count);
            position += count;
            return static_cast<ssize_t>(count);
        }
        while (g_stop == 0) {
            const ssize_t count = read(descriptor, to, size);
            if (count >= 0) {
                return count;
            }
            if (errno != EINTR) {
                error = errno;
                return -1;
            }
        }
        return 0;
    }

    void Peek()
    {
        while (startSize < k_magic) {
            const std::size_t held = startSize;
            position = startSize;
            const ssize_t count = Read(reinterpret_cast<char*>(start.data()) + held, k_magic - held);
            if (count <= 0) {
                break;
            }
            startSize += static_cast<std::size_t>(count);
        }
        position = 0;
    }
};

CInput::CInput(const std::string& name) : m_file(std::make_unique<SFile>())
{
    m_file->descriptor = name == "-" ? STDIN_FILENO : open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (m_file->descriptor < 0) {
        throw CInputError(errno == ENOENT ? EFault::INPUT_MISSING : EFault::INPUT_UNREADABLE, std::strerror(errno));
    }
    struct stat about {};
    if (fstat(m_file->descriptor, &about) == 0 && S_ISDIR(about.st_mode)) {
        throw CInputError(EFault::INPUT_DIRECTORY, "is a directory");
    }
    m_file->Peek();
    if (m_file->error != 0) {
        throw CInputError(EFault::INPUT_UNREADABLE, std::strerror(m_file->error));
    }
    const SView start = {m_file->start.data(), m_file->startSize};
    if (start.size == 0) {
        throw CInputError(EFault::INPUT_EMPTY, "is empty");
    }
    if (IsCaptureMagic(start)) {
        m_OpenCapture();
    } else if (IsTableStart(start)) {
        m_kind = EKind::TABLE;
    } else if (IsTextStart(start)) {
        m_kind = EKind::TEXT;
    } else if (IsUnitStart(start) || IsMessageStart(start)) {
        m_kind = EKind::BINARY;
    } else {
        throw CInputError(EFault::INPUT_UNKNOWN, k_unknown);
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

std::string CInput::LinkTypeText() const
{
    const char* name = pcap_datalink_val_to_name(LinkType());
    return std::to_string(LinkType()) + " (" + (name != nullptr ? name : "unknown") + ')';
}

bool CInput::Next(SPacket& packet)
{
    pcap_pkthdr* header = nullptr;
    const unsigned char* bytes = nullptr;
    const int result = g_stop == 0 ? pcap_next_ex(m_capture, &header, &bytes) : PCAP_ERROR_BREAK;
    if (result == PCAP_ERROR && g_stop == 0) {
        throw CInputError(m_file->error != 0 ? EFault::INPUT_UNREADABLE : EFault::CAPTURE_DAMAGED,
                          m_file->error != 0 ? std::strerror(m_file->error) : pcap_geterr(m_capture));
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

void CInput::m_OpenCapture()
{
    cookie_io_functions_t functions{};
    functions.read = [](void* file, char* to, std::size_t size) { return static_cast<SFile*>(file)->Read(to, size); };
    FILE* stream = fopencookie(m_file.get(), "r", functions);
    if (stream == nullptr) {
        throw CInputError(EFault::INPUT_UNREADABLE, std::strerror(errno));
    }
    char error[PCAP_ERRBUF_SIZE] = "";
    m_capture = pcap_fopen_offline_with_tstamp_precision(stream, PCAP_TSTAMP_PRECISION_NANO, error);
    if (m_capture == nullptr) {
        std::fclose(stream);
        throw CInputError(m_file->error != 0 ? EFault::INPUT_UNREADABLE : EFault::CAPTURE_DAMAGED, error);
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
            throw CInputError(EFault::INPUT_TOO_LARGE, std::string("larger than any ") +
                                                           k_names[static_cast<std::size_t>(m_kind)] + ": more than " +
                                                           std::to_string(limit) + " bytes");
        }
    }
    if (m_file->error != 0) {
        throw CInputError(EFault::INPUT_UNREADABLE, std::strerror(m_file->error));
    }
}

}  // namespace vyr::inspect
