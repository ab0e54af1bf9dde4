#include "route/SLS/UnicastAppSvc.h"

CUnicastAppSvc::CUnicastAppSvc() : CAppSvc(sm_texts) {}

const CAppSvc::STexts CUnicastAppSvc::sm_texts = {
    "[CUnicastAppSvc::Create]", "[CUnicastAppSvc::Destroy]", "[CUnicastAppSvc::m_ProcessParseUnicastAppSvc] %s",
    "[CUnicastAppSvc::sm_CbBasePattern] basePattern value is not exist !!!"};
