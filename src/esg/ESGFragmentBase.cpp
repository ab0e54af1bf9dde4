#include "esg/ESGFragmentBase.h"

#include <cstring>
#include <memory>
#include <utility>

#include "esg/ESGKind.h"
#include "esg/GenreAsking.h"
#include "platform/FailureKeeping.h"

namespace {

/// With `replace`: an empty record in the place of the held one, which comes back unless the parse succeeds.
class CRecord {
  public:
    CRecord(SESGFragment*& record, const vyr::SESGKind& kind, bool replace) : m_record(record)
    {
        if (replace) {
            m_other.reset(static_cast<SESGFragment*>(kind.create()));
            m_Swap();
        }
    }
    ~CRecord()
    {
        if (m_other && !parsed) {
            m_Swap();
        }
    }
    CRecord(const CRecord&) = delete;
    CRecord& operator=(const CRecord&) = delete;

    bool parsed = false;

  private:
    void m_Swap() { m_other.reset(std::exchange(m_record, m_other.release())); }

    SESGFragment*& m_record;
    std::unique_ptr<SESGFragment> m_other;
};

}  // namespace

SESGFragment::SESGFragment() = default;

SESGFragment::~SESGFragment() = default;

CESGFragmentBase::CESGFragmentBase() : m(nullptr), m_kind(nullptr), m_replace(false) {}

CESGFragmentBase::~CESGFragmentBase()
{
    if (m) {
        vyr::AssertFailed(m_kind->Here(__func__), "!m");
    }
}

bool CESGFragmentBase::Create()
try {
    const vyr::SESGKind& kind = t_Kind();
    if (m) {
        return vyr::AssertFailed(kind.Here(__func__), "!m");
    }
    VYR_LOG(LOG_PRIORITY_INFO, "[%s::Create]", kind.className);
    m = static_cast<SESGFragment*>(kind.create());
    m_kind = &kind;
    return true;
} catch (...) {
    return vyr::OutOfMemory(t_Kind().Here(__func__));
}

void CESGFragmentBase::Destroy()
{
    if (!m) {
        vyr::AssertFailed(t_Kind().Here(__func__), "m");
        return;
    }
    VYR_LOG(LOG_PRIORITY_INFO, "[%s::Destroy]", m_kind->className);
    delete m;
    m = nullptr;
}

/// What both parses assert.
bool CESGFragmentBase::m_Begin(const char* input, const char* text) const
{
    return (m && input) || vyr::AssertFailed(t_Kind().Here("Parse"), m ? text : "m");
}

bool CESGFragmentBase::Parse(const char* buffer, unsigned int length)
try {
    const vyr::CEntry entry;
    if (!m_Begin(buffer, "buffer")) {
        return false;
    }
    CRecord record(m, *m_kind, m_replace);
    CXML xml;
    const bool created = xml.Create(buffer, vyr::DocumentSize(length), false);
    return record.parsed = m_Process(xml, created, "m->xml.Create(buffer, len)");
} catch (...) {
    return vyr::OutOfMemory(t_Kind().Here(__func__));
}

bool CESGFragmentBase::Parse(const char* filename)
try {
    const vyr::CEntry entry;
    if (!m_Begin(filename, "filename")) {
        return false;
    }
    CRecord record(m, *m_kind, m_replace);
    CXML xml;
    return record.parsed = m_Process(xml, xml.Create(filename), "m->xml.Create(filename)");
} catch (...) {
    return vyr::OutOfMemory(t_Kind().Here(__func__));
}

bool CESGFragmentBase::m_Process(CXML& xml, bool created, const char* step)
{
    const vyr::CGenreAsking asking;
    // All values are copies: a guide of a thousand fragments need not hold a thousand documents.
    const vyr::SDocumentEnd end{xml};
    return vyr::ProcessRoot(
        xml, created, {step, "m->xml.MoveRoot(&root)", m_kind->process},
        [this](const CXML& document, void* root) {
            const bool taken = document.Compare(root, m_kind->element) && m_Read(root);
            if (taken) {
                m_kind->read(*m, root);
            }
            return taken;
        },
        m_kind->Here("Parse"));
}

/// Every fragment that has an id is accepted.
bool CESGFragmentBase::m_Verify()
{
    return true;
}

/// Reads what all fragments have; false: there is no id.
bool CESGFragmentBase::m_Read(void* node)
{
    vyr::ReadAttribute(node, "id", m->id);
    if (!m->id || !m_Verify()) {
        return false;
    }
    const char* ns = vyr::NodeNamespace(node);
    m->ns = ns ? vyr::NewText(ns, std::strlen(ns)) : nullptr;
    vyr::ReadAttribute(node, "version", m->version);
    vyr::ReadAttribute(node, "validFrom", m->validFrom);
    vyr::ReadAttribute(node, "validTo", m->validTo);
    return true;
}

SESGFragment* CESGFragmentBase::t_StateOf(CESGFragmentBase* fragment)
{
    return VYR_ASSERT(fragment, "fragment") && VYR_ASSERT(fragment->m, "m") ? fragment->m : nullptr;
}

bool CESGFragmentBase::t_Match(const TESGText& own, const char* id, int length, const char* message)
{
    if (!VYR_ASSERT(id, "id") || !VYR_ASSERT(length >= 0, "length >= 0")) {
        return false;
    }
    if (own && std::strncmp(own.get(), id, static_cast<std::size_t>(length)) == 0) {
        return true;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "%s", message);
    return false;
}
