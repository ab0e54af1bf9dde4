#include "mmt/desc/MMTName.h"

#include "common/XmlParser.h"
#include "common/XmlRead.h"

using vyr::CNodeText;

namespace {

struct SState : vyr::TXmlState<CMMTName::SName> {
    bool m_ProcessParse(void* root) override
    {
        CMMTName::SName name;
        vyr::Read(CNodeText::Content(root), name.name);
        vyr::ReadAttribute(root, "lang", name.lang);
        values = std::move(name);
        return true;
    }
};

}  // namespace

vyr::SXmlKind CMMTName::t_Kind() const
{
    return vyr::XmlKind<SState>("CMMTName");
}
