#pragma once

#include "ESGElement/AudioLanguage.h"
#include "ESGElement/ContentAdvRatings.h"
#include "ESGElement/ContentPrivateExt.h"
#include "ESGElement/Description.h"
#include "ESGElement/Freshness.h"
#include "ESGElement/Genre.h"
#include "ESGElement/Name.h"
#include "ESGElement/Popularity.h"
#include "ESGElement/TargetUserProfile.h"
#include "ESGElement/TermsOfUse.h"
#include "ESGElement/TextLanguage.h"
#include "ESGFragmentBase.h"

/// Parser of a content fragment: the Content element.
class VYR_API CESGContentFragment : public CESGFragmentBase {
  public:
    /// What was parsed.
    struct SESGContentFragment : SESGFragment {
        TESGText globalContentID;                          ///< globalContentID
        TESGText baseCID;                                  ///< baseCID
        TESGText serviceRefId;                             ///< idRef of the last ServiceReference
        int serviceRefWeight = 0;                          ///< weight of the last ServiceReference
        TOwnedList<CName> names;                           ///< Name
        TOwnedList<CDescription> descriptions;             ///< Description
        TOwnedList<CAudioLanguage> audioLanguages;         ///< AudioLanguage
        TOwnedList<CTextLanguage> textLanguages;           ///< TextLanguage
        int length = 0;                                    ///< Length, text, seconds
        TOwnedList<CContentAdvRatings> contentAdvRatings;  ///< ContentAdvisoryRatings
        TOwnedList<CTargetUserProfile> targetProfiles;     ///< TargetUserProfile
        TOwnedList<CGenre> genres;                         ///< Genre
        TOwnedList<CTermsOfUse> termsOfUses;               ///< TermsOfUse
        TOwned<CPopularity> popularity;                    ///< Popularity, the last; null: none
        TOwned<CFreshness> freshness;                      ///< Freshness, the last; null: none
        TOwned<CContentPrivateExt> contentExt;             ///< PrivateExt, the last; null: none
        /// Whether sm_CbFragServiceId met it since Create, with SetReplace since the parse.
        bool serviceMatch = false;
    };

    /// The record; null before Create.
    const SESGContentFragment* State() const { return static_cast<const SESGContentFragment*>(t_State()); }

    /// For iterations over known services: notes in `fragment`, a CESGContentFragment, when the first `length`
    /// characters of `id` are those of its service reference. 0 in every case.
    static int sm_CbFragServiceId(void* fragment, const char* id, int length);
    /// For iterations over services of the channel map: does nothing.
    static void sm_CbGetSltService(void* service, void* fragment);

  private:
    const vyr::SESGKind& t_Kind() const override;
};
