#include "mmt/desc/MMTName.h"

#include <utility>

#include "common/XmlNode.h"
#include "common/XmlParser.h"
#include "platform/Log.h"

using vyr::CNodeText;

CMMTName::CMMTName() : m(nullptr) {}

CMMTName::~CMMTName() = default;

bool CMMTName::Create()
{
    return vyr::CreateXmlParser(m, "[CMMTName::Create]", VYR_HERE);
}

void CMMTName::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CMMTName::Destroy]", VYR_HERE);
}

bool CMMTName::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    SName name;
    CNodeText::Content(root).CopyTo(name.name);
    CNodeText::Attribute(root, "lang").CopyTo(name.lang);
    *m = std::move(name);
    return true;
}
