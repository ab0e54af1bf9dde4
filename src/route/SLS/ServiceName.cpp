#include "route/SLS/ServiceName.h"

#include "common/XmlParser.h"
#include "common/XmlRead.h"
#include "platform/Log.h"

namespace {

struct SState : vyr::SXmlState {
    std::unique_ptr<char[]> lang;
    std::unique_ptr<char[]> text;

    bool m_ProcessParse(void* root) override
    {
        vyr::ReadAttribute(root, "lang", lang);
        vyr::Read(vyr::CNodeText::Content(root), text);
        return true;
    }
};

}  // namespace

const char* CServiceName::Lang() const
{
    const auto* m = t_State<SState>();
    return VYR_ASSERT(m, "m") ? m->lang.get() : nullptr;
}

const char* CServiceName::Text() const
{
    const auto* m = t_State<SState>();
    return VYR_ASSERT(m, "m") ? m->text.get() : nullptr;
}

vyr::SXmlKind CServiceName::t_Kind() const
{
    return vyr::XmlKind<SState>("CServiceName");
}
