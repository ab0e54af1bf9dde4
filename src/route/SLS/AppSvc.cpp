#include "route/SLS/AppSvc.h"

#include "common/XmlParser.h"
#include "platform/Log.h"
#include "route/SLS/BroadcastAppSvc.h"
#include "route/SLS/UnicastAppSvc.h"

using vyr::CNodeText;

namespace {

/// The two classes read the same, each under its own name.
struct SNotes {
    const char* process;  ///< a child is handled
    const char* missing;  ///< a pattern is empty
};

template <const SNotes& TNotes>
struct SState : vyr::TXmlState<SAppSvc> {
    bool m_ProcessParse(void* root) override;
};

template <const SNotes& TNotes>
void sm_CbBasePattern(SState<TNotes>* m, void* node)
{
    const CNodeText pattern = CNodeText::Content(node);
    if (!pattern.HasText()) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "%s", TNotes.missing);
        return;
    }
    m->values.basePatterns.emplace_back(pattern.Text());
}

template <const SNotes& TNotes>
constexpr vyr::SElementHandler<SState<TNotes>> k_handlers[] = {
    {"BasePattern", sm_CbBasePattern<TNotes>},
    {"basePattern", sm_CbBasePattern<TNotes>},
};

template <const SNotes& TNotes>
bool SState<TNotes>::m_ProcessParse(void* root)
{
    vyr::Renew(*this);
    vyr::DispatchChildren(this, k_handlers<TNotes>, root, TNotes.process);
    return true;
}

constexpr SNotes k_broadcast = {
    "[CBroadcastAppSvc::m_ProcessParseBroadcastAppSvc] %s",
    "[CBroadcastAppSvc::sm_CbBasePattern] basePattern value is not exist !!!",
};
constexpr SNotes k_unicast = {
    "[CUnicastAppSvc::m_ProcessParseUnicastAppSvc] %s",
    "[CUnicastAppSvc::sm_CbBasePattern] basePattern value is not exist !!!",
};

}  // namespace

vyr::SXmlKind CBroadcastAppSvc::t_Kind() const
{
    return vyr::XmlKind<SState<k_broadcast>>("CBroadcastAppSvc");
}

vyr::SXmlKind CUnicastAppSvc::t_Kind() const
{
    return vyr::XmlKind<SState<k_unicast>>("CUnicastAppSvc");
}
