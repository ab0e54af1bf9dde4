#include "route/SLS/BroadcastAppSvc.h"

CBroadcastAppSvc::CBroadcastAppSvc() : CAppSvc(sm_texts) {}

const CAppSvc::STexts CBroadcastAppSvc::sm_texts = {
    "[CBroadcastAppSvc::Create]", "[CBroadcastAppSvc::Destroy]", "[CBroadcastAppSvc::m_ProcessParseBroadcastAppSvc] %s",
    "[CBroadcastAppSvc::sm_CbBasePattern] basePattern value is not exist !!!"};
