#include "route/SLS/ContentRating.h"

#include "common/Give.h"
#include "common/XmlParser.h"
#include "common/XmlRead.h"

namespace {

struct SState : vyr::TXmlState<CContentRating::SContentRating> {
    bool m_ProcessParse(void* root) override
    {
        vyr::ReadAttribute(root, "schemeIdUri", values.schemeIdUri);
        values.value.clear();
        vyr::ReadAttribute(root, "value", values.value);
        return true;
    }
};

}  // namespace

bool CContentRating::GetContentRating(std::string& out) const
{
    return VYR_ASSERT(State(), "m") && vyr::Give(State()->value, out);
}

vyr::SXmlKind CContentRating::t_Kind() const
{
    return vyr::XmlKind<SState>("CContentRating", LOG_PRIORITY_DEBUG, " ContentRating CREATE");
}
