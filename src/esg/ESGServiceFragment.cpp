#include "esg/ESGServiceFragment.h"

#include <cstdio>

#include "esg/ESGKind.h"
#include "platform/PlatformFile.h"

namespace {

using TState = CESGServiceFragment::SESGServiceFragment;

constexpr vyr::SESGSteps k_entry{"entry->Create(root->m->xml.Doc(), curr)", "entry->Parse()"};

constexpr vyr::SESGSteps k_area{"root->m->broadcaseArea->Create(root->m->xml.Doc(), curr)",
                                "root->m->broadcaseArea->Parse()"};

/// Whether the services of this receiver are a preview.
bool FlagPreview()
{
    std::FILE* file = std::fopen(vyr::PlatformFile("/bin/preview").c_str(), "re");
    if (file) {
        std::fclose(file);
    }
    return file != nullptr;
}

void TakeServiceType(TState* state, void* node)
{
    const vyr::CNodeText content = vyr::CNodeText::Content(node);
    if (VYR_ASSERT(content.HasText(), "content != nullptr")) {
        vyr::Read(content, state->serviceType);
    }
}

void TakePrivateExt(TState* state, void* node)
{
    static constexpr vyr::SChildSteps k_steps = {"root->m->serviceExt->Create(root->m->xml.Doc(), cur)",
                                                 "root->m->serviceExt->Parse()"};
    if (void* extension = vyr::FindElement(vyr::FirstElement(node), "ATSC3ServiceExtension")) {
        vyr::Build(state->serviceExt, extension, k_steps);
    }
}

void ReadAttributes(TState& state, void* node)
{
    if (FlagPreview()) {
        static constexpr char k_preview[] = "urn:atsc:serviceid:sbs_uhd";
        state.globalServiceID = vyr::NewText(k_preview, sizeof k_preview - 1);
    } else {
        vyr::ReadAttribute(node, "globalServiceID", state.globalServiceID);
    }
    state.sltMatch = false;
    vyr::ReadAttribute(node, "weight", state.weight);
    int emergency = 0;
    vyr::ReadAttribute(node, "emergency", emergency);
    state.emergency = emergency != 0;
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"ServiceType", TakeServiceType},
    {"Name", vyr::TakeElement<&TState::names, k_entry>},
    {"Description", vyr::TakeElement<&TState::descriptions, k_entry>},
    {"AudioLanguage", vyr::TakeElement<&TState::audioLanguages, k_entry>},
    {"TextLanguage", vyr::TakeElement<&TState::textLanguages, k_entry>},
    {"ContentAdvisoryRatings", vyr::TakeElement<&TState::contentAdvRatings, k_entry>},
    {"TargetUserProfile", vyr::TakeElement<&TState::targetProfiles, k_entry>},
    {"Genre", vyr::TakeElement<&TState::genres, k_entry>},
    {"BroadcastArea", vyr::TakeElement<&TState::broadcaseArea, k_area>},
    {"PrivateExt", TakePrivateExt},
};

}  // namespace

bool CESGServiceFragment::Parse(const char* filename)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CESGScheduleFragment::Parse]");  // required: the schedule's text
    return CESGFragmentBase::Parse(filename);
}

int CESGServiceFragment::sm_CbGlobalServiceId(void* fragment, const char* id, int length)
{
    if (auto* state = static_cast<TState*>(t_StateOf(t_Cast<CESGServiceFragment>(fragment)))) {
        state->sltMatch |= t_Match(state->globalServiceID, id, length,
                                   "[CESGServiceFragment::sm_CbGlobalServiceId] Unmatch globalServiceId");
    }
    return 0;
}

void CESGServiceFragment::sm_CbGetSltService(void* /*service*/, void* /*fragment*/) {}

const vyr::SESGKind& CESGServiceFragment::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CESGServiceFragment", "Service",
                                                                "m_ProcessESGServiceFragment(root)");
}
