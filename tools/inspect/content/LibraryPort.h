#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/Failure.h"
#include "platform/Platform.h"

namespace vyr::inspect {

/// Makes the tool the library's platform: its messages of at least `log` go to stderr, its settings
/// come from `settings`. For the whole run.
void InstallPlatform(ELogPriority log, const std::map<std::string, int>& settings);

struct SAssertion {
    std::string expression;
    std::string place;  ///< "src/common/XML:120"
};

/// Whether a step of the library's last call failed; of a package: that of the document, as LastFailure names it.
bool StepFailed(const char* document = "");
/// Why, such as "line 3: xmlParseEntityRef: no name"; empty: no cause is known.
std::string Reason(const char* document = "");
/// The first check that failed, such as "p_tbl->Parse(item) at src/mmt/msg/MMTMsgPa:90"; empty: none.
std::string FailedStep();

/// What a fault says of it, such as: the library asserts "doc" at src/common/XML:120.
std::string AssertionText(const SAssertion& assertion);
/// Assertions of the library since the last call; few are kept when there are very many.
std::vector<SAssertion> TakeAssertions();

/// While there is one, the library says nothing: of bytes that it is to be given again.
class CUnheard {
  public:
    CUnheard();
    ~CUnheard();
    CUnheard(const CUnheard&) = delete;
    CUnheard& operator=(const CUnheard&) = delete;

  private:
    const ELogPriority m_log;
    std::vector<SAssertion> m_assertions;  ///< what it asserted before
};

}  // namespace vyr::inspect
