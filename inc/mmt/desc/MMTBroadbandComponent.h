#pragma once

#include <string>

#include "../../common/ParseXML.h"
#include "../../platform/Api.h"

/// Parser of the broadband component of an MMT service (ATSC A/331 7.2.1): where the MPD of its broadband part is.
class VYR_API CMMTBroadbandComponent : public XMLBase {
  public:
    /// Attributes of the element.
    struct SBroadbandComponent {
        std::string fullMPDUri;  ///< URI of the MPD; empty: not given
    };

    CMMTBroadbandComponent();
    ~CMMTBroadbandComponent() override;

    bool Create() override;
    void Destroy() override;

    /// What was parsed; null before Create, good until Destroy.
    const SBroadbandComponent* State() const { return m; }

  private:
    bool m_ProcessParse(void* root) override;

    SBroadbandComponent* m;
};
