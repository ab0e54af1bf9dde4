#include "esg/ESGScheduleFragment.h"

#include "esg/ESGKind.h"

namespace {

using TState = CESGScheduleFragment::SESGScheduleFragment;
using vyr::k_entry;

void TakeServiceReference(TState* state, void* node)
{
    vyr::ReadAttribute(node, "idRef", state->serviceRefId);
    if (!state->serviceRefId) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CESGScheduleFragment::sm_CbServiceReferenceEntry] serviceRef Id is NULL!!");
    }
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"ServiceReference", TakeServiceReference},
    {"ContentReference", vyr::TakeElement<&TState::contentRefs, k_entry>},
    {"TermsOfUse", vyr::TakeElement<&TState::termsOfUses, k_entry>},
};

}  // namespace

bool CESGScheduleFragment::sm_Read(SESGState& base, void* node)
{
    TState& state = static_cast<TState&>(base);
    if (!t_Read(state, node)) {
        return false;
    }
    vyr::TakeChildren(&state, node);
    return true;
}

int CESGScheduleFragment::sm_CbFragServiceId(void* fragment, const char* id, int length)
{
    if (auto* state = static_cast<TState*>(t_StateOf(t_Cast<CESGScheduleFragment>(fragment)))) {
        state->serviceMatch |= t_Match(state->serviceRefId, id, length,
                                       "[CESGScheduleFragment::sm_CbFragServiceId] Unmatch FragServiceId");
    }
    return 0;
}

void CESGScheduleFragment::sm_CbGetSltService(void* /*service*/, void* /*fragment*/) {}

const vyr::SESGKind& CESGScheduleFragment::t_Kind() const
{
    static constexpr vyr::SESGKind k_kind = {VYR_HERE,
                                             "CESGScheduleFragment",
                                             "Schedule",
                                             "m_ProcessESGScheduleFragment(root)",
                                             vyr::NewState<TState>,
                                             vyr::Handlers<TState, k_handlers>,
                                             sm_Read};
    return k_kind;
}
