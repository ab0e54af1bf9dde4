#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/Bytes.h"
#include "model/Finding.h"

struct pcap;

namespace vyr::inspect {

constexpr char k_unknown[] = "not a capture, not an LLS table, not signalling and not a service guide";

/// What is wrong with an input.
class CInputError : public std::runtime_error {
  public:
    CInputError(ERule code, const std::string& message) : std::runtime_error(message), m_code(code) {}
    ERule Code() const { return m_code; }

  private:
    ERule m_code;
};

/// What is wrong with the command line, as far as it shows only now.
class CUsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Throws CInputError unless packets of the link type, a DLT number of libpcap, can be read.
void RequireKnownLinkType(int linkType);

struct SPacket {
    SView bytes;  ///< good until the next packet
    bool cut = false;
    std::optional<STime> time;
};

/// One input, known by its first bytes: a capture, compressed by gzip or not, read packet by packet as it grows, one
/// raw LLS table, service-layer signalling (a document or a package), an object of the service guide, or one MMT
/// signalling message.
class CInput {
  public:
    /// Opens a file, or standard input for "-". Throws CInputError.
    explicit CInput(const std::string& name);
    ~CInput();
    CInput(const CInput&) = delete;
    CInput& operator=(const CInput&) = delete;

    bool IsCapture() const { return m_capture != nullptr; }
    /// It may be signalling of ROUTE or an object of the guide.
    bool IsText() const { return m_kind == EKind::TEXT; }
    /// It may be a delivery unit of the guide, or a message of an id that can be no LLS table's; an LLS table may
    /// be a message, too.
    bool IsBinary() const { return m_kind == EKind::BINARY; }
    /// DLT number of a capture.
    int LinkType() const;
    /// Next packet of a capture; false at its end. Throws CInputError for a damaged capture.
    bool Next(SPacket& packet);
    /// Bytes of what is no capture.
    SView Bytes() const { return {m_bytes.data(), m_bytes.size()}; }

    /// Ends every input at the bytes read so far; for signal handlers.
    static void Stop();
    static bool Stopped();

  private:
    struct SFile;
    enum class EKind { CAPTURE, TABLE, TEXT, BINARY };
    static constexpr std::size_t k_maxBytes = 1048576;
    static constexpr std::size_t k_maxUnit = 8388608;

    void m_OpenCapture();
    ERule m_Unreadable() const;
    void m_ReadBytes();

    std::unique_ptr<SFile> m_file;
    pcap* m_capture = nullptr;
    EKind m_kind = EKind::CAPTURE;
    std::vector<unsigned char> m_bytes;
};

}  // namespace vyr::inspect
