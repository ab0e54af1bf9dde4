#pragma once

#include "ESGElement.h"

/// A description of a preview: the PreviewDescription element, or Description inside Preview.
class VYR_API CPreviewDesc : public CESGElement {
  public:
    /// What was parsed.
    struct SPreviewDesc : SESGState {
        TESGText content;  ///< text
        TESGText lang;     ///< lang
        TESGText linkUri;  ///< linkUri
        TESGText uriType;  ///< uriType
    };

    /// The record; null before Create.
    const SPreviewDesc* State() const { return static_cast<const SPreviewDesc*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
