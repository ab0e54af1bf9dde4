#pragma once

#include "ESGElement.h"

/// The session that carries delivery units: the Transport element.
class VYR_API CESGTransport : public CESGElement {
  public:
    /// What was parsed.
    struct SESGTransport : SESGState {
        TESGText ipAddress;                      ///< ipAddress
        int port = 0;                            ///< port
        TESGText srcIpAddress;                   ///< srcIpAddress
        unsigned int transmissionSessionID = 0;  ///< transmissionSessionID, the TSI
        bool hasFDT = false;                     ///< hasFDT: "true" or "false"
    };

    /// The record; null before Create.
    const SESGTransport* State() const { return static_cast<const SESGTransport*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
