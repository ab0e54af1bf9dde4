#pragma once

#include "ESGElement.h"

/// How new a content is: the Freshness element. Dates are seconds since 1970; 0: none, or not a date such as
/// "2026-01-31T20:15:00Z".
class VYR_API CFreshness : public CESGElement {
  public:
    /// What was parsed.
    struct SFreshness : SESGState {
        long long broadcastDate = 0;  ///< broadcastDate, the first broadcast
        long long releaseDate = 0;    ///< releastDate, spelt so
    };

    /// The record; null before Create.
    const SFreshness* State() const { return static_cast<const SFreshness*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
