#pragma once

#include "Component.h"
#include "ESGElement.h"
#include "PreviewData.h"

/// What ATSC 3.0 adds to a content: the PrivateExt element of a content fragment.
class VYR_API CContentPrivateExt : public CESGElement {
  public:
    /// What was parsed.
    struct SContentPrivateExt : SESGState {
        SESGMediaInfo media;                  ///< MIMEType, width, height, dataSize of the element itself
        TESGText capabilities;                ///< Capabilities, text
        TOwned<CComponent> comp;              ///< Components, the last; null: none
        std::vector<SESGMedia> contentIcons;  ///< ContentIcon
        TOwnedList<CPreviewData> previews;    ///< Preview
    };

    /// The record; null before Create.
    const SContentPrivateExt* State() const { return static_cast<const SContentPrivateExt*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
