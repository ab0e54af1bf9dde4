#include "platform/FailureKeeping.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "platform/Log.h"

namespace vyr {
namespace {

constexpr const char* k_documents[] = {"", "USBD", "STSID", "EFDT", "MPD", "RSAT"};

/// Of each thread; in fixed storage, as memory may be what failed.
struct SKept {
    int depth;
    bool any;
    std::size_t document;
    SFailure failures[std::size(k_documents)];
};
thread_local SKept t_kept;
thread_local unsigned long long t_calls;  ///< outermost ones, of each thread

SFailure& Current()
{
    SFailure& failure = t_kept.failures[t_kept.document];
    if (!failure.step) {
        failure.step = failure.source = "";
    }
    t_kept.any = true;
    return failure;
}

std::size_t Document(const char* name)
{
    const auto* found = std::find_if(std::begin(k_documents), std::end(k_documents),
                                     [name](const char* known) { return std::strcmp(known, name) == 0; });
    return static_cast<std::size_t>(found - std::begin(k_documents));
}

}  // namespace

CEntry::CEntry() : m_depth(t_kept.depth)
{
    if (m_depth++ > 0) {
        return;
    }
    ++t_calls;
    if (t_kept.any) {
        t_kept = {1, false, 0, {}};
    }
}

bool CBudget::Take(const SHere& here)
{
    if (m_call != t_calls) {
        m_call = t_calls;
        m_left = m_most;
    }
    if (m_left > 0) {
        --m_left;
        return true;
    }
    if (m_left == 0 && LogEnabled(LOG_PRIORITY_ERROR)) {
        Print(LOG_PRIORITY_ERROR, here, "more than %d %s: the others are left out", m_most, m_what);
    }
    m_left = -1;
    return false;
}

CDocumentOfPackage::CDocumentOfPackage(const char* name)
{
    const std::size_t document = Document(name);
    t_kept.document = document < std::size(k_documents) ? document : 0;
}

CDocumentOfPackage::~CDocumentOfPackage()
{
    t_kept.document = 0;
}

bool Fail(EFailure cause, const SHere& here, const char* format, ...)
{
    char detail[sizeof(SFailure::detail)];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(detail, sizeof detail, format, arguments);
    va_end(arguments);
    KeepFailure(cause, detail);
    if (LogEnabled(LOG_PRIORITY_DEBUG)) {
        Print(LOG_PRIORITY_DEBUG, here, "%s", detail);
    }
    return false;
}

void KeepFailure(EFailure cause, const char* detail, int documentLine)
{
    SFailure& failure = Current();
    const bool better = failure.cause == FAILURE_MISUSE ? cause != FAILURE_MISUSE : cause == FAILURE_MEMORY;
    if (failure.cause == FAILURE_NONE || better) {
        failure.cause = cause;
        failure.documentLine = documentLine;
        std::snprintf(failure.detail, sizeof failure.detail, "%s", detail);
    }
}

void KeepStep(const SHere& here, const char* text)
{
    SFailure& failure = Current();
    if (!*failure.step) {
        failure.step = text;
        failure.source = here.file;
        failure.line = here.line;
    }
}

void KeepUnknownTag(unsigned tag)
{
    SFailure& failure = Current();
    unsigned* end = failure.unknownTags + failure.tags;
    if (failure.tags < std::size(failure.unknownTags) && std::find(failure.unknownTags, end, tag) == end) {
        *end = tag;
        ++failure.tags;
    }
}

}  // namespace vyr

const SFailure* LastFailure(const char* document)
{
    const std::size_t index = document ? vyr::Document(document) : 0;
    if (index >= std::size(vyr::k_documents)) {
        return nullptr;
    }
    const SFailure& failure = vyr::t_kept.failures[index];
    return failure.step ? &failure : nullptr;
}
