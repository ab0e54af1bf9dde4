#pragma once

#include "CellTargetArea.h"
#include "ESGElement.h"

/// Where a service can be received: the BroadcastArea element.
class VYR_API CBroadcastArea : public CESGElement {
  public:
    /// How an area is named.
    struct SAreaNames {
        TESGText cc;        ///< cc, country code
        TESGText mcc;       ///< mcc, mobile country code
        TESGText nameArea;  ///< name_area
    };

    /// An area, its names those of TargetArea.
    struct SArea : SAreaNames {
        std::vector<TESGText> zipCodes;          ///< ZipCode, text
        TOwned<CCellTargetArea> cellTargetArea;  ///< CellTargetArea, the last; null: none
    };

    /// What was parsed.
    struct SBroadcastArea : SESGState {
        bool polarity = false;          ///< polarity: "true": in the area, "false": outside
        SAreaNames names;               ///< of the element itself
        std::unique_ptr<SArea> p_area;  ///< TargetArea, the last, or what stands outside of one; null: none
    };

    /// The record; null before Create.
    const SBroadcastArea* State() const { return static_cast<const SBroadcastArea*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
