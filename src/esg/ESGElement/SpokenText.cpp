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

vyr::SRows CSpokenText::sm_Handlers()
{
    return vyr::Handlers<TState, k_handlers>();
}

bool CSpokenText::sm_Read(SESGState& state, void* node)
{
    TState& values = static_cast<TState&>(state);
    vyr::ReadContent(node, values.content);
    vyr::ReadAttribute(node, "text", values.text);
    vyr::ReadAttribute(node, "lang", values.lang);
    if (!values.content || !*values.content.get()) {
        vyr::TakeChildren(&values, node);
    }
    return true;
}
