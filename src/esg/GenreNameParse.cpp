#include "esg/GenreNameParse.h"

#include <cstdlib>
#include <cstring>
#include <mutex>

#include "common/State.h"
#include "common/XML.h"
#include "esg/ESGKind.h"
#include "esg/GenreNames.h"
#include "platform/FailureKeeping.h"

using vyr::CNodeText;

std::map<int, std::unique_ptr<char[]>> SGenreNameParse::refMap;

// Held for a look-up or for putting a whole map in place, never around a file, a log line or a caller's code.
static std::mutex s_mutex;

namespace vyr {

bool GenreNamesKnown()
{
    const std::lock_guard<std::mutex> lock(s_mutex);
    return !SGenreNameParse::refMap.empty();
}

const char* GenreName(int index)
{
    const std::lock_guard<std::mutex> lock(s_mutex);
    const auto found = SGenreNameParse::refMap.find(index);
    return found != SGenreNameParse::refMap.end() ? found->second.get() : nullptr;
}

}  // namespace vyr

struct CGenreNameParse::SState {
    CXML xml;  // the document, while it is parsed
};

CGenreNameParse::CGenreNameParse() : m(nullptr) {}

CGenreNameParse::~CGenreNameParse()
{
    VYR_ASSERT(!m, "!m");
}

bool CGenreNameParse::Create()
{
    return vyr::CreateState(m);
}

void CGenreNameParse::Destroy()
{
    vyr::DestroyState(m);
}

bool CGenreNameParse::m_Known() const
{
    if (!vyr::GenreNamesKnown()) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CGenreNameParse::Parse] Genre Map exsits.");
    return true;
}

bool CGenreNameParse::Parse(const char* filePath)
try {
    const vyr::CEntry entry;
    if (!VYR_ASSERT(m, "m") || !VYR_ASSERT(filePath, "filePath")) {
        return false;
    }
    if (m_Known()) {
        return true;
    }
    return m_Parse(m->xml.Create(filePath), "m->xml.Create(filePath)");
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CGenreNameParse::Parse(const char* buffer, unsigned int length)
try {
    const vyr::CEntry entry;
    if (!VYR_ASSERT(m, "m") || !VYR_CHECK(buffer, "buffer")) {
        return false;
    }
    if (m_Known()) {
        return true;
    }
    return m_Parse(m->xml.Create(buffer, vyr::DocumentSize(length), false), "m->xml.Create(buffer, len)");
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CGenreNameParse::m_Parse(bool created, const char* step)
{
    const vyr::SDocumentEnd end{m->xml};
    return vyr::ProcessRoot(m->xml, created, {step, "m->xml.MoveRoot(&root)", "t_Process(root)"},
                            [this](const CXML&, void* root) { return t_Process(root); });
}

bool CGenreNameParse::t_Process(void* root)
{
    void* scheme = vyr::FindElement(root, "ClassificationScheme");
    if (!scheme) {
        return false;
    }
    std::map<int, std::unique_ptr<char[]>> names;
    for (void* term = vyr::FirstElement(scheme); term; term = vyr::NextElement(term)) {
        const CNodeText id = CNodeText::Attribute(term, "termID");
        if (std::strncmp(vyr::NodeName(term), "Term", 4) != 0 || !id.HasText()) {
            continue;
        }
        void* first = m->xml.MoveChild(term);  // required: the very first node of the term, whatever it is
        const char* name = first ? vyr::NodeName(first) : nullptr;
        if (!name || std::strncmp(name, "Name", 4) != 0) {
            continue;
        }
        const auto [entry, isNew] = names.try_emplace(static_cast<int>(std::strtol(id.Text(), nullptr, 10)));
        if (isNew) {
            entry->second = vyr::NewText(CNodeText::Content(first));
        }
    }
    // Two threads may have read a file at once: the names of the first stay, and are known to others by then.
    const std::lock_guard<std::mutex> lock(s_mutex);
    if (SGenreNameParse::refMap.empty()) {
        SGenreNameParse::refMap.swap(names);
    }
    return true;
}
