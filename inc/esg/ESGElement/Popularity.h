#pragma once

#include "ESGElement.h"

/// How popular a content is: the Popularity element.
class VYR_API CPopularity : public CESGElement {
  public:
    /// What was parsed.
    struct SPopularity : SESGState {
        int rating = 0;           ///< rating
        int noOfViews = 0;        ///< noOfViews
        int noOfDiscussions = 0;  ///< noOfDiscussions
        long long samplingDate =
            0;  ///< samplingDate, seconds since 1970; 0: none, or not a date such as "2026-01-31T20:15:00Z"
    };

    /// The record; null before Create.
    const SPopularity* State() const { return static_cast<const SPopularity*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
