#pragma once

#include "ESGElement.h"

/// What the delivery units of a descriptor entry have in common: the GroupingCriteria element. Times are NTP
/// seconds. Of an element that occurs twice the last one counts.
class VYR_API CGroupingCri : public CESGElement {
  public:
    /// What was parsed.
    struct SGroupingCri : SESGState {
        unsigned int startTime = 0;  ///< startTime of TimeGroupingCriteria, NTP seconds
        unsigned int endTime = 0;    ///< endTime of TimeGroupingCriteria, NTP seconds
        TESGText type;               ///< type of GenreGroupingCriteria
        TESGText href;               ///< href of GenreGroupingCriteria
        TESGText genre;              ///< GenreGroupingCriteria, text
        TESGText idRef;              ///< idRef of BSMSelector
        TESGText serviceCriteria;    ///< ServiceCriteria, text
    };

    /// The record; null before Create.
    const SGroupingCri* State() const { return static_cast<const SGroupingCri*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
