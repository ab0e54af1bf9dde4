#pragma once

#include "platform/Failure.h"
#include "platform/Log.h"

namespace vyr {

/// A call from outside, for its life: the outermost of a thread forgets what failed in the one before. Every public
/// entry that LastFailure speaks of has one.
class CEntry {
  public:
    CEntry();
    ~CEntry() { --m_depth; }
    CEntry(const CEntry&) = delete;
    CEntry& operator=(const CEntry&) = delete;

  private:
    int& m_depth;  ///< how many of the thread there are, one in the other
};

/// What one outermost call from outside may spend of something; a thread_local object of each thread.
class CBudget {
  public:
    /// `what`: in words, in the plural.
    constexpr CBudget(int most, const char* what) : m_most(most), m_left(most), m_what(what) {}
    /// Whether there was one more. The first time that there is none, a log line at error priority tells.
    bool Take(VYR_CALLER);

  private:
    int m_most;
    int m_left;
    const char* m_what;
    unsigned long long m_call = 0;  ///< the one that it is left of
};

/// What fails from now on, for its life, belongs to a document of a package.
class CDocumentOfPackage {
  public:
    explicit CDocumentOfPackage(const char* name);
    ~CDocumentOfPackage();
    CDocumentOfPackage(const CDocumentOfPackage&) = delete;
    CDocumentOfPackage& operator=(const CDocumentOfPackage&) = delete;
};

/// Keeps a cause, and logs it at debug priority; false.
bool Fail(EFailure cause, const SHere& here, const char* format, ...) __attribute__((format(printf, 3, 4)));
/// Keeps a cause in words that are not logged here.
void KeepFailure(EFailure cause, const char* detail = "", int documentLine = 0);
/// Keeps the step that failed.
void KeepStep(const SHere& here, const char* text);
/// Keeps the tag of a descriptor that has no class.
void KeepUnknownTag(unsigned tag);

}  // namespace vyr

#define VYR_FAIL(cause, ...) ::vyr::Fail(cause, VYR_HERE, __VA_ARGS__)
