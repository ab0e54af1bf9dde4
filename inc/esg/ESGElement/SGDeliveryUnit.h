#pragma once

#include "ESGElement.h"
#include "Fragment.h"

/// A delivery unit and the fragments in it: the ServiceGuideDeliveryUnit element. Times are NTP seconds.
class VYR_API CSGDeliveryUnit : public CESGElement {
  public:
    /// What was parsed.
    struct SSGDeliveryUnit : SESGState {
        unsigned int transportObjectID = 0;  ///< transportObjectID, the TOI
        int versionIDLength = 0;             ///< versionIDLength, bits of the TOI
        TESGText contentLocation;            ///< contentLocation
        unsigned int validFrom = 0;          ///< validFrom, NTP seconds
        unsigned int validTo = 0;            ///< validTo, NTP seconds
        TOwnedList<CFragment> fragments;     ///< Fragment
    };

    /// The record; null before Create.
    const SSGDeliveryUnit* State() const { return static_cast<const SSGDeliveryUnit*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
