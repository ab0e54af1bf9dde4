#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "judge/Facts.h"
#include "judge/MmtFacts.h"
#include "model/Delivery.h"
#include "model/Report.h"

namespace vyr::inspect {

class COnAir;

constexpr std::size_t k_mostJudged = 1000;  ///< services of a list

/// The service list that an LLS group has now.
struct SListFacts {
    SSource source;
    SLlsHeader header;
    int bsid = 0;
    bool hasUrl = false;  ///< the list as a whole has one
    std::vector<SSltService> services;
    bool whole = true;  ///< false: services of it were left out
};

/// A session that the lists which hold give for the signalling of services.
struct SListedSession {
    std::size_t services = 0;    ///< how many have it
    std::optional<STime> since;  ///< when the first of them came to have it
};

/// All that is known of one input, for the rules.
struct SEvidence {
    std::string file;
    bool capture = false;           ///< a capture, not a raw file
    bool ended = true;              ///< false: it is judged on the way, and more is to come
    bool sessionsCaptured = false;  ///< something of the sessions of services came
    std::optional<STime> first;     ///< of the capture's packets, the earliest and the latest
    std::optional<STime> last;
    std::map<TListKey, SListFacts> lists;
    std::map<std::string, SListedSession> listed;   ///< by session
    std::map<std::string, SPackageFacts> packages;  ///< by what tells the documents of one service from others

    SGuideFacts guide;
    std::map<std::string, SMmtFacts> mmt;  ///< by session
    const COnAir* onAir = nullptr;         ///< while a capture is judged

    /// The packages whose signalling is that of the service.
    std::vector<const SPackageFacts*> Of(const SSltService& service) const;
};

/// Tells findings of one input.
class CFindings {
  public:
    CFindings(CReport& report, std::string file) : m_report(report), m_file(std::move(file)) {}

    const std::string& File() const { return m_file; }
    void Tell(SFinding finding) { m_report.Finding(std::move(finding)); }
    /// Of the input as a whole.
    void Tell(ERule rule, const std::string& message, std::optional<unsigned> service = {},
              const std::string& session = {})
    {
        Tell(rule, message, {m_file, 0, {}}, service, session);
    }
    void Tell(ERule rule, const std::string& message, const SSource& source, std::optional<unsigned> service = {},
              const std::string& session = {})
    {
        SFinding finding = {rule, message, source};
        finding.serviceId = service;
        finding.session = session;
        m_report.Finding(std::move(finding));
    }

  private:
    CReport& m_report;
    const std::string m_file;
};

}  // namespace vyr::inspect
