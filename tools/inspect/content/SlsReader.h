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
    /// What is wanted of a document.
    struct SWanted {
        bool content = true;
        bool text = true;  ///< in the content
    };
    /// Told the document and the service of the package's USBD.
    using TWants = std::function<SWanted(const SSlsText&, std::optional<unsigned> service)>;

    /// The listener, if any, is told of each S-TSID that parses.
    CSlsReader(const SServiceSession& session, TStsidListener stsidListener);
    ~CSlsReader();
    CSlsReader(const CSlsReader&) = delete;
    CSlsReader& operator=(const CSlsReader&) = delete;

    /// Gives a package, inflated, to the manager. Of each document that FindSlsDocuments found: its
    /// content if it is wanted, or why there is none.
    std::vector<SSlsDocument> Read(SView text, const std::vector<SSlsText>& documents, const TWants& wants);
    /// Service of the USBD of the last package; none: it had none that parsed.
    std::optional<unsigned> UsbdService() const { return m_usbdService; }
    /// Lets the manager and all it holds go; the next package gets a new one.
    void Release();
    bool Holds() const { return m_manager != nullptr; }
    /// The S-TSID of the last package that had one; null: none that is still held.
    const CSTSID* Stsid() const { return m_manager ? m_manager->Stsid() : nullptr; }

  private:
    struct SRead {
        bool parsed = false;
        COptionalContent content;
    };

    template <class TMake>
    void m_Read(ESlsDocument kind, TMake make);

    const TStsidListener m_stsidListener;
    CSLSManager::SSessionInfo m_session{};
    std::unique_ptr<CSLSManager> m_manager;
    std::array<SRead, k_slsDocuments> m_read;            ///< of the package being read
    const std::vector<SSlsText>* m_documents = nullptr;  ///< the same
    const TWants* m_wants = nullptr;                     ///< the same
    std::optional<unsigned> m_usbdService;
};

}  // namespace vyr::inspect
