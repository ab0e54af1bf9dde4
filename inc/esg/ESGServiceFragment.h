#pragma once

#include "ESGElement/ATSC3ServiceExt.h"
#include "ESGElement/AudioLanguage.h"
#include "ESGElement/BroadcastArea.h"
#include "ESGElement/ContentAdvRatings.h"
#include "ESGElement/Description.h"
#include "ESGElement/Genre.h"
#include "ESGElement/Name.h"
#include "ESGElement/TargetUserProfile.h"
#include "ESGElement/TextLanguage.h"
#include "ESGFragmentBase.h"

/// Parser of a service fragment: the Service element.
class VYR_API CESGServiceFragment : public CESGFragmentBase {
  public:
    /// What was parsed.
    struct SESGServiceFragment : SESGFragment {
        /// globalServiceID; while the file "/bin/preview" can be opened, "urn:atsc:serviceid:sbs_uhd" whatever
        /// the attribute says.
        TESGText globalServiceID;
        unsigned short weight = 0;                         ///< weight
        bool emergency = false;                            ///< emergency, a number: not 0
        unsigned short serviceType = 0;                    ///< ServiceType, text
        TOwnedList<CName> names;                           ///< Name
        TOwnedList<CDescription> descriptions;             ///< Description
        TOwnedList<CAudioLanguage> audioLanguages;         ///< AudioLanguage
        TOwnedList<CTextLanguage> textLanguages;           ///< TextLanguage
        TOwnedList<CContentAdvRatings> contentAdvRatings;  ///< ContentAdvisoryRatings
        TOwnedList<CTargetUserProfile> targetProfiles;     ///< TargetUserProfile
        TOwnedList<CGenre> genres;                         ///< Genre
        TOwned<CBroadcastArea> broadcaseArea;              ///< BroadcastArea, the last; null: none
        /// ATSC3ServiceExtension of the last PrivateExt that has one; null: none.
        TOwned<CATSC3ServiceExt> serviceExt;
        bool sltMatch = false;  ///< whether sm_CbGlobalServiceId met this service since the parse
    };

    /// The record; null before Create.
    const SESGServiceFragment* State() const { return static_cast<const SESGServiceFragment*>(t_State()); }

    using CESGFragmentBase::Parse;
    bool Parse(const char* filename) override;

    /// For iterations over known services: notes in `fragment`, a CESGServiceFragment, when the first `length`
    /// characters of `id` are those of its globalServiceID. 0 in every case.
    static int sm_CbGlobalServiceId(void* fragment, const char* id, int length);
    /// For iterations over services of the channel map: does nothing.
    static void sm_CbGetSltService(void* service, void* fragment);

  private:
    const vyr::SESGKind& t_Kind() const override;
};
