#pragma once

#include "ESGElement.h"

/// The cells of a target area: the CellTargetArea element.
class VYR_API CCellTargetArea : public CESGElement {
  public:
    /// One cell.
    struct SCell {
        TESGText value;                    ///< value: the cell
        std::vector<TESGText> pp2CellIDs;  ///< PP2CellID, text
    };

    /// What was parsed.
    struct SCellTargetArea : SESGState {
        int type = 0;              ///< type: how cells are named
        TESGText value;            ///< value of the element itself
        std::vector<SCell> cells;  ///< CellArea
    };

    /// The record; null before Create.
    const SCellTargetArea* State() const { return static_cast<const SCellTargetArea*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
