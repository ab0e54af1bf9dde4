#pragma once

#include "ESGElement/ScheduleContentRef.h"
#include "ESGElement/TermsOfUse.h"
#include "ESGFragmentBase.h"

/// Parser of a schedule fragment: the Schedule element.
class VYR_API CESGScheduleFragment : public CESGFragmentBase {
  public:
    /// What was parsed.
    struct SESGScheduleFragment : SESGFragment {
        TESGText serviceRefId;                        ///< idRef of the last ServiceReference
        TOwnedList<CScheduleContentRef> contentRefs;  ///< ContentReference
        TOwnedList<CTermsOfUse> termsOfUses;          ///< TermsOfUse
        /// Whether sm_CbFragServiceId met it since Create, with SetReplace since the parse.
        bool serviceMatch = false;
    };

    /// The record; null before Create.
    const SESGScheduleFragment* State() const { return static_cast<const SESGScheduleFragment*>(t_State()); }

    /// For iterations over known services: notes in `fragment`, a CESGScheduleFragment, when the first
    /// `length` characters of `id` are those of its service reference. 0 in every case.
    static int sm_CbFragServiceId(void* fragment, const char* id, int length);
    /// For iterations over services of the channel map: does nothing.
    static void sm_CbGetSltService(void* service, void* fragment);

  private:
    const vyr::SESGKind& t_Kind() const override;
};
