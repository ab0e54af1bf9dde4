#pragma once

#include "ESGElement.h"

/// A fragment of a delivery unit as the delivery descriptor announces it: the Fragment element. Times are NTP
/// seconds.
class VYR_API CFragment : public CESGElement {
  public:
    /// What was parsed.
    struct SFragment : SESGState {
        unsigned int transportID = 0;  ///< transportID: the fragmentTransportID of the delivery unit
        TESGText id;                   ///< id of the fragment
        unsigned int validFrom = 0;    ///< validFrom, NTP seconds
        unsigned int validTo = 0;      ///< validTo, NTP seconds
        int fragmentEncoding = 0;      ///< fragmentEncoding; 0: XML
        int fragmentType = 0;          ///< fragmentType; 1: service, 2: content, 3: schedule
        TESGText idRef;                ///< idRef of BSMSelector in GroupingCriteria
        unsigned int startTime = 0;    ///< startTime of TimeGroupingCriteria in GroupingCriteria, NTP seconds
        unsigned int endTime = 0;      ///< endTime of TimeGroupingCriteria in GroupingCriteria, NTP seconds
    };

    /// The record; null before Create.
    const SFragment* State() const { return static_cast<const SFragment*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
