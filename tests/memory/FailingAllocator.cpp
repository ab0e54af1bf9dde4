#include "memory/FailingAllocator.h"

#include <libxml/xmlmemory.h>

#include <cstdlib>
#include <cstring>
#include <new>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define SANITIZED 1
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define SANITIZED 1
#endif

namespace {

thread_local bool s_armed = false;
thread_local bool s_all = false;
thread_local long s_left = 0;
thread_local long s_failed = 0;

bool Fails()
{
    if (!s_armed || (s_left > 0 && --s_left > 0) || (s_failed > 0 && !s_all)) {
        return false;
    }
    ++s_failed;
    return true;
}

}  // namespace

namespace memory {

void Arm(long n, bool all)
{
    s_left = n;
    s_all = all;
    s_failed = 0;
    s_armed = true;
}

long Disarm()
{
    s_armed = false;
    return s_failed;
}

CPause::CPause() : m_armed(s_armed)
{
    s_armed = false;
}

CPause::~CPause()
{
    s_armed = m_armed;
}

}  // namespace memory

#ifdef SANITIZED

static void* XmlMalloc(std::size_t size)
{
    return Fails() ? nullptr : std::malloc(size);
}

static void* XmlRealloc(void* block, std::size_t size)
{
    return Fails() ? nullptr : std::realloc(block, size);
}

static char* XmlStrdup(const char* text)
{
    return Fails() ? nullptr : strdup(text);
}

void memory::Install()
{
    xmlMemSetup(std::free, XmlMalloc, XmlRealloc, XmlStrdup);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return Fails() ? nullptr : std::malloc(size ? size : 1);
}

void* operator new(std::size_t size)
{
    void* block = operator new(size, std::nothrow);
    if (!block) {
        throw std::bad_alloc();
    }
    return block;
}

void* operator new[](std::size_t size)
{
    return operator new(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return operator new(size, std::nothrow);
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}

void operator delete[](void* block) noexcept
{
    std::free(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    std::free(block);
}

#else

void memory::Install() {}

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);

void* malloc(std::size_t size) noexcept
{
    return Fails() ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) noexcept
{
    return Fails() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) noexcept
{
    return Fails() ? nullptr : __libc_realloc(block, size);
}
}

#endif
