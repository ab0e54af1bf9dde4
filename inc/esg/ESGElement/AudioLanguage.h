#pragma once

#include "LanguageTag.h"

/// A language of the audio: the AudioLanguage element.
class VYR_API CAudioLanguage : public CLanguageTag {
  public:
    /// What was parsed.
    struct SAudioLanguage : SLanguageTag {};

    /// The record; null before Create.
    const SAudioLanguage* State() const { return static_cast<const SAudioLanguage*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
