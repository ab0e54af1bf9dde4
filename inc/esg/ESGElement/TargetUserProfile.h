#pragma once

#include "ESGElement.h"

/// Whom a service or content is meant for: the TargetUserProfile element.
class VYR_API CTargetUserProfile : public CESGElement {
  public:
    /// What was parsed.
    struct STargetUserProfile : SESGState {
        TESGText attributeName;   ///< attributeName
        TESGText attributeValue;  ///< attributeValue
    };

    /// The record; null before Create.
    const STargetUserProfile* State() const { return static_cast<const STargetUserProfile*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
