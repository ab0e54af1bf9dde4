#pragma once

#include "SpokenText.h"

/// A description of a service or content: the Description element.
class VYR_API CDescription : public CSpokenText {
  public:
    /// What was parsed.
    struct SDescription : SSpokenText {};

    /// The record; null before Create.
    const SDescription* State() const { return static_cast<const SDescription*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
