#pragma once

#include <map>
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

/// Listens, while it lives, to what the library says about the document it refuses. One at a time.
class CRefusalListener {
  public:
    CRefusalListener();
    ~CRefusalListener();
    CRefusalListener(const CRefusalListener&) = delete;
    CRefusalListener& operator=(const CRefusalListener&) = delete;

    /// Whether a step of the library failed.
    bool Failed() const { return !m_failedCheck.empty(); }
    /// The first reason that was given, such as "line 3: xmlParseEntityRef: no name"; empty: none.
    std::string Reason() const;
    void Hear(const std::string& message);

  private:
    static constexpr std::size_t k_maxText = 4096;

    std::string m_xmlErrors;
    std::string m_refusal;
    std::string m_failedCheck;
};

/// Assertions of the library since the last call; few are kept when there are very many.
std::vector<SAssertion> TakeAssertions();

}  // namespace vyr::inspect
