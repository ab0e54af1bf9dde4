#include "esg/ESGContentFragment.h"

#include "esg/ESGKind.h"

namespace {

using TState = CESGContentFragment::SESGContentFragment;

constexpr vyr::SESGSteps k_entry{"entry->Create(root->m->xml.Doc(), curr)", "entry->Parse()"};

constexpr vyr::SESGSteps k_popularity{"root->m->popularity->Create(root->m->xml.Doc(), curr)",
                                      "root->m->popularity->Parse()"};
constexpr vyr::SESGSteps k_freshness{"root->m->freshness->Create(root->m->xml.Doc(), curr)",
                                     "root->m->freshness->Parse()"};
constexpr vyr::SESGSteps k_contentExt{"root->m->contentExt->Create(root->m->xml.Doc(), curr)",
                                      "root->m->contentExt->Parse()"};

void TakeLength(TState* state, void* node)
{
    const vyr::CNodeText content = vyr::CNodeText::Content(node);
    if (content.HasText()) {
        vyr::Read(content, state->length);
    }
}

void TakeServiceReference(TState* state, void* node)
{
    vyr::ReadAttribute(node, "idRef", state->serviceRefId);
    if (!state->serviceRefId) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CESGContentFragment::sm_CbServiceReferenceEntry] serviceRef Id is NULL!!");
    }
    vyr::ReadAttribute(node, "weight", state->serviceRefWeight);
}

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "globalContentID", state.globalContentID);
    vyr::ReadAttribute(node, "baseCID", state.baseCID);
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"Name", vyr::TakeElement<&TState::names, k_entry>},
    {"Description", vyr::TakeElement<&TState::descriptions, k_entry>},
    {"AudioLanguage", vyr::TakeElement<&TState::audioLanguages, k_entry>},
    {"TextLanguage", vyr::TakeElement<&TState::textLanguages, k_entry>},
    {"ContentAdvisoryRatings", vyr::TakeElement<&TState::contentAdvRatings, k_entry>},
    {"TargetUserProfile", vyr::TakeElement<&TState::targetProfiles, k_entry>},
    {"Genre", vyr::TakeElement<&TState::genres, k_entry>},
    {"TermsOfUse", vyr::TakeElement<&TState::termsOfUses, k_entry>},
    {"Length", TakeLength},
    {"ServiceReference", TakeServiceReference},
    {"Popularity", vyr::TakeElement<&TState::popularity, k_popularity>},
    {"Freshness", vyr::TakeElement<&TState::freshness, k_freshness>},
    {"PrivateExt", vyr::TakeElement<&TState::contentExt, k_contentExt>},
};

}  // namespace

int CESGContentFragment::sm_CbFragServiceId(void* fragment, const char* id, int length)
{
    if (auto* state = static_cast<TState*>(t_StateOf(t_Cast<CESGContentFragment>(fragment)))) {
        // Required: the schedule's text.
        state->serviceMatch |= t_Match(state->serviceRefId, id, length,
                                       "[CESGScheduleFragment::sm_CbFragServiceId] Unmatch FragServiceId");
    }
    return 0;
}

void CESGContentFragment::sm_CbGetSltService(void* /*service*/, void* /*fragment*/) {}

const vyr::SESGKind& CESGContentFragment::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CESGContentFragment", "Content",
                                                                "m_ProcessESGContentFragment(root)");
}
