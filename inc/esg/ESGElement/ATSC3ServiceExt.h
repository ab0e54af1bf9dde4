#pragma once

#include "ESGElement.h"

/// What ATSC 3.0 adds to a service: the ATSC3ServiceExtension element.
class VYR_API CATSC3ServiceExt : public CESGElement {
  public:
    /// What was parsed.
    struct SATSC3ServiceExt : SESGState {
        SESGMediaInfo media;           ///< MIMEType, width, height, dataSize of the element itself
        int majorChannelNum = 0;       ///< MajorChannelNum, text
        int minorChannelNum = 0;       ///< MinorChannelNum, text
        std::vector<SESGMedia> icons;  ///< Icon
    };

    /// The record; null before Create.
    const SATSC3ServiceExt* State() const { return static_cast<const SATSC3ServiceExt*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
