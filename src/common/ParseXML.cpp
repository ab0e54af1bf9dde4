#include "common/ParseXML.h"

#include <climits>

#include "common/Log.h"

XMLBase::XMLBase() : t_compressed(false), t_keepsDocument(true), t_replace(false) {}

XMLBase::~XMLBase() = default;

void XMLBase::Destroy()
{
    if (t_xml.FlagCreate()) {
        t_xml.Destroy();
    }
}

bool XMLBase::Parse(const char* buffer, unsigned int length)
{
    return Parse(buffer, length, t_compressed);
}

bool XMLBase::Parse(const char* buffer, unsigned int length, bool compressed)
{
    if (!buffer) {
        return vyr::AssertFailed({vyr::k_source.text, __func__, 20}, "buffer");
    }
    XMLBase::Destroy();
    // A length that no document has becomes one that the document refuses.
    const int size = length <= INT_MAX ? static_cast<int>(length) : -1;
    if (!VYR_CHECK(t_xml.Create(buffer, size, compressed), "t_xml.Create(buffer, length, compressed)")) {
        return false;
    }
    void* root = nullptr;
    if (!VYR_CHECK(t_xml.MoveRoot(&root), "t_xml.MoveRoot(&root)") ||
        !VYR_CHECK(m_ProcessParse(root), "m_ProcessParse(root)")) {
        XMLBase::Destroy();
        return false;
    }
    if (!t_keepsDocument) {
        XMLBase::Destroy();
    }
    return true;
}

bool XMLBase::Parse(void* doc, void* root)
{
    XMLBase::Destroy();
    if (!VYR_CHECK(t_xml.Create(doc), "t_xml.Create(doc)")) {
        return false;
    }
    if (!VYR_CHECK(m_ProcessParse(root), "m_ProcessParse(root)")) {
        XMLBase::Destroy();
        return false;
    }
    return true;
}
