#include "esg/ESGElement/SpokenText.h"

#include "esg/ESGKind.h"

namespace {

using TState = CSpokenText::SSpokenText;

void ReadSpeech(CSpokenText::SSpeechInfo& speech, void* child)
{
    vyr::ReadContent(child, speech.content);
    vyr::ReadAttribute(child, "Content-type", speech.contentType);
    vyr::ReadAttribute(child, "Content-enc", speech.contentEnc);
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"SpeechInfoURI", vyr::TakeRecord<&TState::speechInfoURIs, ReadSpeech>},
    {"SpeechInfo", vyr::TakeRecord<&TState::speechInfos, ReadSpeech>},
};

}  // namespace

void CSpokenText::sm_Read(SSpokenText& state, void* node)
{
    vyr::ReadContent(node, state.content);
    vyr::ReadAttribute(node, "text", state.text);
    vyr::ReadAttribute(node, "lang", state.lang);
    if (!state.content || !*state.content.get()) {
        vyr::DispatchChildren(&state, k_handlers, node);
    }
}
