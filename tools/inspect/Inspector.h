#pragma once

#include <string>

#include "ExitStatus.h"
#include "Options.h"
#include "common/ChannelMap.h"
#include "content/Certificates.h"
#include "follow/LlsFollower.h"
#include "model/Report.h"
#include "report/Output.h"
#include "report/Progress.h"
#include "wire/Input.h"

namespace vyr::inspect {

class CJudge;

/// One run of the tool: reads every input, and gives each stream it finds to that stream's follower.
/// Inputs are broadcasts of their own: nothing is carried from one to the next.
class CInspector {
  public:
    CInspector(const SOptions& options, CReport& report, const COutput& output, CProgress& progress);
    ~CInspector();
    CInspector(const CInspector&) = delete;
    CInspector& operator=(const CInspector&) = delete;

    EExitStatus Run();

  private:
    void m_Inspect(const std::string& name);
    void m_Capture(CInput& input, const std::string& name, CJudge& judge);
    void m_Live(const std::string& name);
    void m_RawTable(SView table, const std::string& name);
    bool m_GuideFile(SView bytes, const std::string& name);
    void m_SlsFile(SView bytes, const std::string& name);
    void m_MessageFile(SView bytes, const std::string& name);

    const SOptions& m_options;
    CReport& m_report;
    const COutput& m_output;
    CProgress& m_progress;
    CChannelMap m_channelMap;
    CVerifier m_verifier;
    SRuleSettings m_rules;
    bool m_failed = false;
};

}  // namespace vyr::inspect
