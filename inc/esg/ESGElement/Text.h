#pragma once

#include "ESGElement.h"

/// A text of a preview: the Text element.
class VYR_API CText : public CESGElement {
  public:
    /// What was parsed.
    struct SText : SESGState {
        TESGText link;         ///< Link, text
        TESGText description;  ///< Description, text
        TESGText textString;   ///< TextString, text
        TESGText uri;          ///< uri
        TESGText uriType;      ///< uriType
        TESGText language;     ///< language
    };

    /// The record; null before Create.
    const SText* State() const { return static_cast<const SText*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
