#pragma once

#include "ESGElement.h"
#include "PreviewDesc.h"

/// A preview of a content: the Preview element.
class VYR_API CPreviewData : public CESGElement {
  public:
    /// What was parsed.
    struct SPreviewData : SESGState {
        std::vector<SESGMedia> previewContents;  ///< PreviewContent
        std::vector<SESGMedia> previewIcons;     ///< PreviewIcon
        TOwnedList<CPreviewDesc> descriptions;   ///< Description and PreviewDescription
        int usage = 0;                           ///< usage
        SESGMediaInfo media;                     ///< MIMEType, width, height, dataSize of the element itself
    };

    /// The record; null before Create.
    const SPreviewData* State() const { return static_cast<const SPreviewData*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
