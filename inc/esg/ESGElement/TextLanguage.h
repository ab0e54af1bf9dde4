#pragma once

#include "LanguageTag.h"

/// A language of the text: the TextLanguage element.
class VYR_API CTextLanguage : public CLanguageTag {
  public:
    /// What was parsed.
    struct STextLanguage : SLanguageTag {};

    /// The record; null before Create.
    const STextLanguage* State() const { return static_cast<const STextLanguage*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
