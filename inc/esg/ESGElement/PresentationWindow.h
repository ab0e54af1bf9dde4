#pragma once

#include <optional>

#include "ESGElement.h"

/// A time at which a content is presented: the PresentationWindow element. Times are NTP seconds (Unix seconds
/// plus 2,208,988,800).
class VYR_API CPresentationWindow : public CESGElement {
  public:
    /// What was parsed.
    struct SPresentationWindow : SESGState {
        TESGText id;                        ///< id
        unsigned int startTime = 0;         ///< startTime, NTP seconds
        unsigned int endTime = 0;           ///< endTime, NTP seconds
        unsigned int startTimeElement = 0;  ///< StartTime, text, NTP seconds
        unsigned int endTimeElement = 0;    ///< EndTime, text, NTP seconds
        unsigned int duration = 0;          ///< Duration, text, seconds
    };

    /// Extension: what else the element gives by XML Schema; empty: not given, or no number.
    struct SGiven {
        std::optional<long long> duration;  ///< duration, the attribute, seconds
    };

    /// The record; null before Create.
    const SPresentationWindow* State() const { return static_cast<const SPresentationWindow*>(t_State()); }
    /// Extension: what the record does not have; likewise.
    const SGiven* Given() const;

  private:
    const vyr::SESGKind& t_Kind() const override;
};
