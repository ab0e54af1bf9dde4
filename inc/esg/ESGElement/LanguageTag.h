#pragma once

#include "ESGElement.h"

/// What the elements that name a language have in common.
class VYR_API CLanguageTag : public CESGElement {
  public:
    /// What was parsed.
    struct SLanguageTag : SESGState {
        TESGText content;         ///< text: the language as viewers see it
        TESGText languageSDPTag;  ///< languageSDPTag: the language as SDP has it
    };

  protected:
    /// Reads the element into the record.
    static void sm_Read(SLanguageTag& state, void* node);
};
