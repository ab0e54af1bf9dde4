#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "content/SlsPackage.h"
#include "model/Items.h"
#include "model/ServiceSession.h"
#include "route/SLSManager.h"

namespace vyr::inspect {

/// The library's manager of one session's signalling, and what it says of each package.
class CSlsReader {
  public:
    using TStsidListener = std::function<void(const CSTSID&)>;

    /// The listener, if any, is told of each S-TSID that parses.
    CSlsReader(const SServiceSession& session, TStsidListener stsidListener);
    ~CSlsReader();
    CSlsReader(const CSlsReader&) = delete;
    CSlsReader& operator=(const CSlsReader&) = delete;

    /// Gives a package, inflated, to the manager. Of each document that FindSlsDocuments found: its
    /// content, or why there is none.
    std::vector<SSlsDocument> Read(SView text, const std::vector<SSlsText>& documents);
    /// Service of the USBD of the last package; none: it had none that parsed.
    std::optional<unsigned> UsbdService() const { return m_usbdService; }
    /// Lets the manager and all it holds go; the next package gets a new one.
    void Release();
    bool Holds() const { return m_manager != nullptr; }
    /// The S-TSID of the last package that had one; null: none that is still held.
    const CSTSID* Stsid() const { return m_manager ? m_manager->Stsid() : nullptr; }

  private:
    COptionalContent& m_Content(ESlsDocument kind) { return m_contents[static_cast<std::size_t>(kind)]; }

    const TStsidListener m_stsidListener;
    CSLSManager::SSessionInfo m_session{};
    std::unique_ptr<CSLSManager> m_manager;
    std::array<COptionalContent, k_slsDocuments> m_contents;  ///< of the package being read
    std::optional<unsigned> m_usbdService;
};

}  // namespace vyr::inspect
