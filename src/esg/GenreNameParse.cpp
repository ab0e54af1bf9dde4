#include "esg/GenreNameParse.h"

#include <climits>
#include <cstdlib>
#include <cstring>

#include "common/XML.h"
#include "esg/ESGKind.h"

using vyr::CNodeText;

std::map<int, std::unique_ptr<char[]>> SGenreNameParse::refMap;

struct CGenreNameParse::SState {
    CXML xml;

    void Close()
    {
        if (xml.FlagCreate()) {
            xml.Destroy();
        }
    }
};

CGenreNameParse::CGenreNameParse() : m(nullptr) {}

CGenreNameParse::~CGenreNameParse()
{
    VYR_ASSERT(!m, "!m");
}

bool CGenreNameParse::Create()
{
    if (!VYR_ASSERT(!m, "!m")) {
        return false;
    }
    m = new SState;
    return true;
}

void CGenreNameParse::Destroy()
{
    if (VYR_ASSERT(m, "m")) {
        m->Close();
        delete m;
        m = nullptr;
    }
}

bool CGenreNameParse::m_Known() const
{
    if (SGenreNameParse::refMap.empty()) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CGenreNameParse::Parse] Genre Map exsits.");
    return true;
}

bool CGenreNameParse::Parse(const char* filePath)
{
    if (!VYR_ASSERT(m, "m") || !VYR_ASSERT(filePath, "filePath")) {
        return false;
    }
    if (m_Known()) {
        return true;
    }
    m->Close();
    return m_Parse(m->xml.Create(filePath), "m->xml.Create(filePath)");
}

bool CGenreNameParse::Parse(const char* buffer, unsigned int length)
{
    if (!VYR_ASSERT(m, "m") || !VYR_CHECK(buffer, "buffer")) {
        return false;
    }
    if (m_Known()) {
        return true;
    }
    m->Close();
    // A length that no document has becomes one that the document refuses.
    const int size = length <= INT_MAX ? static_cast<int>(length) : -1;
    return m_Parse(m->xml.Create(buffer, size, false), "m->xml.Create(buffer, len)");
}

bool CGenreNameParse::m_Parse(bool created, const char* step)
{
    void* root = nullptr;
    const bool parsed = VYR_CHECK(created, step) && VYR_CHECK(m->xml.MoveRoot(&root), "m->xml.MoveRoot(&root)") &&
                        VYR_CHECK(t_Process(root), "t_Process(root)");
    if (!parsed) {
        m->Close();
    }
    return parsed;
}

bool CGenreNameParse::t_Process(void* root)
{
    void* scheme = vyr::FindElement(root, "ClassificationScheme");
    if (!scheme) {
        return false;
    }
    for (void* term = vyr::FirstElement(scheme); term; term = vyr::NextElement(term)) {
        const CNodeText id = CNodeText::Attribute(term, "termID");
        if (std::strncmp(vyr::NodeName(term), "Term", 4) != 0 || !id.HasText()) {
            continue;
        }
        void* name = m->xml.MoveChild(term);  // required: the very first node of the term
        if (!name || std::strncmp(vyr::NodeName(name), "Name", 4) != 0) {
            continue;
        }
        std::unique_ptr<char[]>& entry = SGenreNameParse::refMap[static_cast<int>(std::strtol(id.Text(), nullptr, 10))];
        if (!entry) {
            vyr::ReadContent(name, entry);
        }
    }
    return true;
}
