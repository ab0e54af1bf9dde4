#pragma once

#include "ESGElement.h"

/// What the elements with a text to be shown or spoken have in common.
class VYR_API CSpokenText : public CESGElement {
  public:
    /// How the text is spoken: a SpeechInfo element.
    struct SSpeechInfo {
        TESGText content;      ///< text
        TESGText contentType;  ///< Content-type
        TESGText contentEnc;   ///< Content-enc
    };

    /// Where it is told how the text is spoken: a SpeechInfoURI element.
    using SSpeechInfoURI = SSpeechInfo;

    /// What was parsed. Required: the speech elements are read only where the element has no text, white
    /// space and text inside of them included.
    struct SSpokenText : SESGState {
        TESGText text;                               ///< text
        TESGText lang;                               ///< lang
        TESGText content;                            ///< text of the element
        std::vector<SSpeechInfoURI> speechInfoURIs;  ///< SpeechInfoURI
        std::vector<SSpeechInfo> speechInfos;        ///< SpeechInfo
    };

  protected:
    /// Reads the element and its children into the record.
    static void sm_Read(SSpokenText& state, void* node);
};
