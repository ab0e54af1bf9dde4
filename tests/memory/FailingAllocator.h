#pragma once

/// The allocator of this program, which can be told to fail: malloc, calloc, realloc and what stands on them
/// (operator new, libxml2, zlib); with sanitizers, which have a malloc of their own, operator new and libxml2's.
namespace memory {

/// From now on the n-th allocation of this thread fails, counted from 1, and those behind it if `all`.
void Arm(long n, bool all);
/// No allocation fails any more; how many did.
long Disarm();
/// To be called before anything is parsed.
void Install();

/// Allocations of the test's own inside its callbacks do not count.
class CPause {
  public:
    CPause();
    ~CPause();
    CPause(const CPause&) = delete;
    CPause& operator=(const CPause&) = delete;

  private:
    bool m_armed;
};

}  // namespace memory
