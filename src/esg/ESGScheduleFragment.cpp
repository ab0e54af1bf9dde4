#include "esg/ESGScheduleFragment.h"

#include "esg/ESGKind.h"

namespace {

using TState = CESGScheduleFragment::SESGScheduleFragment;

constexpr vyr::SESGSteps k_entry{"entry->Create(root->m->xml.Doc(), curr)", "entry->Parse()"};

void TakeServiceReference(TState* state, void* node)
{
    vyr::ReadAttribute(node, "idRef", state->serviceRefId);
    if (!state->serviceRefId) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CESGScheduleFragment::sm_CbServiceReferenceEntry] serviceRef Id is NULL!!");
    }
}

void ReadAttributes(TState& /*state*/, void* /*node*/) {}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"ServiceReference", TakeServiceReference},
    {"ContentReference", vyr::TakeElement<&TState::contentRefs, k_entry>},
    {"TermsOfUse", vyr::TakeElement<&TState::termsOfUses, k_entry>},
};

}  // namespace

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
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CESGScheduleFragment", "Schedule",
                                                                "m_ProcessESGScheduleFragment(root)");
}
