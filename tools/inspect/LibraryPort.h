#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/Platform.h"

namespace vyr::inspect {

/// Makes the tool the library's platform: its messages of at least `log` go to stderr, its settings
/// come from `settings`. For the whole run.
void InstallPlatform(ELogPriority log, const std::map<std::string, int>& settings);

struct SAssertion {
    std::string expression;
    std::string place;  ///< "src/common/XML:120"
};

/// Listens, while it lives, to what the library says about the document it refuses. One at a time. Of a
/// buffer of several documents it tells them apart by `document`, the name that the SLS manager logs
/// before it parses one ("STSID"); what is said before the first is about the empty name.
class CRefusalListener {
  public:
    CRefusalListener();
    ~CRefusalListener();
    CRefusalListener(const CRefusalListener&) = delete;
    CRefusalListener& operator=(const CRefusalListener&) = delete;

    /// Whether a step of the library failed.
    bool Failed(const std::string& document = {}) const;
    /// The first reason that was given, such as "line 3: xmlParseEntityRef: no name"; empty: none.
    std::string Reason(const std::string& document = {}) const;
    /// The first check that failed, such as "p_tbl->Parse(item) at src/mmt/msg/MMTMsgPa:90"; empty: none.
    std::string FailedStep() const;
    /// Tags of descriptors that the library does not know, a few of them. It reads none behind such a one.
    const std::set<unsigned>& UnknownTags() const { return m_unknownTags; }
    void Hear(const std::string& message);

  private:
    static constexpr std::size_t k_maxText = 4096;
    static constexpr std::size_t k_maxTags = 16;

    struct SHeard {
        std::string xmlErrors;
        std::string refusal;
        std::string failedCheck;
    };

    std::map<std::string, SHeard> m_heard;  ///< by document
    SHeard* m_current = &m_heard[{}];
    std::set<unsigned> m_unknownTags;
};

/// Assertions of the library since the last call; few are kept when there are very many.
std::vector<SAssertion> TakeAssertions();

}  // namespace vyr::inspect
