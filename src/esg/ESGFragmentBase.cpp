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
    CRecord(SESGFragment*& record, bool replace) : m_record(record)
    {
        if (replace) {
            m_other.reset(static_cast<SESGFragment*>(vyr::CreateState(*record->kind)));
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

CESGFragmentBase::CESGFragmentBase() : m(nullptr), m_replace(false) {}

CESGFragmentBase::~CESGFragmentBase()
{
    if (m) {
        vyr::AssertFailed(m->kind->Here(__func__), "!m");
    }
}

bool CESGFragmentBase::Create()
try {
    const vyr::SESGKind& kind = t_Kind();
    if (m) {
        return vyr::AssertFailed(kind.Here(__func__), "!m");
    }
    VYR_LOG(LOG_PRIORITY_INFO, "[%s::Create]", kind.className);
    m = static_cast<SESGFragment*>(vyr::CreateState(kind));
    return m != nullptr;
} catch (...) {
    return vyr::OutOfMemory(t_Kind().Here(__func__));
}

void CESGFragmentBase::Destroy()
{
    if (!m) {
        vyr::AssertFailed(t_Kind().Here(__func__), "m");
        return;
    }
    VYR_LOG(LOG_PRIORITY_INFO, "[%s::Destroy]", m->kind->className);
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
    CRecord record(m, m_replace);
    const bool created = m->xml.Create(buffer, vyr::DocumentSize(length), false);
    return record.parsed = m_Process(created, "m->xml.Create(buffer, len)");
} catch (...) {
    return vyr::OutOfMemory(t_Kind().Here(__func__));
}

bool CESGFragmentBase::Parse(const char* filename)
try {
    const vyr::CEntry entry;
    if (!m_Begin(filename, "filename")) {
        return false;
    }
    CRecord record(m, m_replace);
    return record.parsed = m_Process(m->xml.Create(filename), "m->xml.Create(filename)");
} catch (...) {
    return vyr::OutOfMemory(t_Kind().Here(__func__));
}

bool CESGFragmentBase::m_Process(bool created, const char* step)
{
    const vyr::CGenreAsking asking;
    const vyr::SESGKind& kind = *m->kind;
    // All values are copies: a guide of a thousand fragments need not hold a thousand documents.
    const vyr::SDocumentEnd end{m->xml};
    return vyr::ProcessRoot(
        m->xml, created, {step, "m->xml.MoveRoot(&root)", kind.process},
        [this, &kind](const CXML& xml, void* root) { return xml.Compare(root, kind.element) && kind.read(*m, root); },
        kind.Here("Parse"));
}

/// Every fragment that has an id is accepted.
bool CESGFragmentBase::m_Verify()
{
    return true;
}

bool CESGFragmentBase::t_Read(SESGFragment& state, void* node)
{
    vyr::ReadAttribute(node, "id", state.id);
    if (!state.id || !m_Verify()) {
        return false;
    }
    state.ns = vyr::Namespace(state.xml, node);
    vyr::ReadAttribute(node, "version", state.version);
    vyr::ReadAttribute(node, "validFrom", state.validFrom);
    vyr::ReadAttribute(node, "validTo", state.validTo);
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
