#pragma once

#include "ESGElement.h"
#include "ESGTransport.h"
#include "GroupingCri.h"
#include "SGDeliveryUnit.h"

/// Delivery units of one session: the DescriptorEntry element of a delivery descriptor.
class VYR_API CDescriptorEntry : public CESGElement {
  public:
    /// What was parsed.
    struct SDescriptorEntry : SESGState {
        int type = 0;                                 ///< type
        TOwned<CGroupingCri> groupingCri;             ///< GroupingCriteria, the last; null: none
        TOwned<CESGTransport> transport;              ///< Transport, the last; null: none
        std::vector<TESGText> alternativeAccessURLs;  ///< AlternativeAccessURL, text
        TOwnedList<CSGDeliveryUnit> deliveryUnits;    ///< ServiceGuideDeliveryUnit
    };

    /// The record; null before Create.
    const SDescriptorEntry* State() const { return static_cast<const SDescriptorEntry*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
