#pragma once

#include <list>
#include <string>

#include "common/ParseXML.h"
#include "platform/Api.h"

/// What the broadcast and the unicast application service of a delivery method have in common: base
/// patterns that the locations of the service's content begin with (ATSC A/331 table 7.1). The patterns
/// of every element that is parsed join those already held, until Destroy; see SetReplace.
class VYR_API CAppSvc : public XMLBase {
  public:
    /// What was parsed.
    struct SAppSvc {
        std::list<std::string> basePatterns;  ///< in document order
    };

    ~CAppSvc() override;

    bool Create() override;
    void Destroy() override;
    /// What was parsed; null before Create, good until Destroy.
    const SAppSvc* State() const;

  protected:
    /// `name` is the class's name in the log, without its C; a static string.
    explicit CAppSvc(const char* name);

  private:
    struct SState;

    bool t_CreateCallback();
    bool m_ProcessParse(void* root) override;

    static void sm_CbBasePattern(CAppSvc* service, void* node);

    const char* m_name;
    SState* m;
};
