#include "route/SLS/ContentRating.h"

#include "common/XmlNode.h"
#include "common/XmlParser.h"
#include "platform/Log.h"

struct CContentRating::SState : vyr::SHandlers {
    SContentRating values;
};

CContentRating::CContentRating() : m(nullptr) {}

CContentRating::~CContentRating() = default;

bool CContentRating::Create()
{
    return vyr::CreateXmlParser(m, "[CContentRating::Create] ContentRating CREATE", VYR_HERE,
                                [this] { return t_CreateCallback(); });
}

/// Required: there are no elements to handle.
bool CContentRating::t_CreateCallback()
{
    return true;
}

void CContentRating::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CContentRating::Destroy]", VYR_HERE);
}

bool CContentRating::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    vyr::CNodeText::Attribute(root, "schemeIdUri").CopyTo(m->values.schemeIdUri);
    m->values.value.clear();
    vyr::CNodeText::Attribute(root, "value").CopyTo(m->values.value);
    return true;
}

bool CContentRating::GetContentRating(std::string& out) const
{
    return VYR_ASSERT(m, "m") && vyr::Give(m->values.value, out);
}

const CContentRating::SContentRating* CContentRating::State() const
{
    return m ? &m->values : nullptr;
}
