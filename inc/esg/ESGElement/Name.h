#pragma once

#include "SpokenText.h"

/// A name of a service or content: the Name element.
class VYR_API CName : public CSpokenText {
  public:
    /// What was parsed.
    struct SName : SSpokenText {};

    /// The record; null before Create.
    const SName* State() const { return static_cast<const SName*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
