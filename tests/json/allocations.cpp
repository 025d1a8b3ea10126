// In a file of its own, so that the compiler takes new and delete for what they are elsewhere.
#include "tests/json/allocations.h"

#include <cstdlib>
#include <new>

unsigned asked = 0;
unsigned granted = ~0u;

namespace {
bool grants() {
    ++asked;
    if (granted == 0) return false;
    --granted;
    return true;
}
} // namespace

extern "C" {
void* __real_realloc(void*, size_t);
void* __wrap_realloc(void* block, size_t size) { return grants() ? __real_realloc(block, size) : nullptr; }
}

void* operator new(std::size_t size) {
    if (void* block = grants() ? std::malloc(size) : nullptr) return block;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return grants() ? std::malloc(size) : nullptr; }
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
