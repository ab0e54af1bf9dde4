#pragma once

#include "ESGElement.h"

/// The components of a content: the Components element.
class VYR_API CComponent : public CESGElement {
  public:
    /// One component.
    struct SComponentItem {
        TESGText content;   ///< text
        TESGText language;  ///< language
    };

    /// What was parsed.
    struct SComponent : SESGState {
        TESGText language;                            ///< language of the element itself
        std::vector<SComponentItem> videoComponents;  ///< VideoComponent
        std::vector<SComponentItem> audioComponents;  ///< AudioComponent
        std::vector<SComponentItem> ccComponents;     ///< CCComponent, captions
        std::vector<SComponentItem> appComponents;    ///< AppComponent
    };

    /// The record; null before Create.
    const SComponent* State() const { return static_cast<const SComponent*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
