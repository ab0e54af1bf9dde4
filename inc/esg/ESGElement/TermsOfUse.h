#pragma once

#include "ESGElement.h"

/// Terms under which a service or content may be used: the TermsOfUse element.
class VYR_API CTermsOfUse : public CESGElement {
  public:
    /// What was parsed.
    struct STermsOfUse : SESGState {
        int type = 0;                      ///< type
        TESGText id;                       ///< id
        bool userConsentRequired = false;  ///< userConsentRequired: "true" or "false"
        std::vector<TESGText> countries;   ///< Country, text
        TESGText language;                 ///< Language, text
        TESGText termsOfUseText;           ///< TermsOfUseText, text
    };

    /// The record; null before Create.
    const STermsOfUse* State() const { return static_cast<const STermsOfUse*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
