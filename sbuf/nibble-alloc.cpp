// The arena: zero-filled memory that is handed out piece by piece and taken back all at once.
//
// Every byte that is handed out is 0. Decoders rely on it: a record fresh from here has all its OPTIONAL fields absent.
#include "sbuf/nibble-alloc.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "sbuf/failure.h"
#include "sbuf/state.h"
#include "sbuf/str-stk.h"
#include "zyn/asn.h"
#include "zyn/codes.h"

NibbleMem* nmG = nullptr;

namespace {

// A block of size zero bytes behind no other, or null.
NibbleBuf* newBlock(size_t size) {
    auto* block = static_cast<NibbleBuf*>(std::malloc(sizeof(NibbleBuf)));
    auto* memory = static_cast<uint8_t*>(std::calloc(size > 0 ? size : 1, 1));
    if (!block || !memory) {
        std::free(block);
        std::free(memory);
        return nullptr;
    }
    *block = {.start = memory, .end = memory + size, .curr = memory, .next = nullptr};
    return block;
}

void freeBlocks(NibbleBuf* block) {
    while (block) {
        NibbleBuf* next = block->next;
        std::free(block->start);
        std::free(block);
        block = next;
    }
}

// Zeroes the first used of size bytes. Most messages use little; for them the number of bytes is always the same, since to
// foresee how many they are costs a processor more than to clear them.
void clear(uint8_t* memory, size_t used, size_t size) {
    constexpr size_t usual = 512;
    std::memset(memory, 0, std::min(std::max(used, usual), size));
}

size_t roomIn(const NibbleBuf* block) { return static_cast<size_t>(block->end - block->curr); }

} // namespace

void InitNibbleMem(uint32_t initialSize, uint32_t incrementSize) {
    auto* arena = static_cast<NibbleMem*>(std::malloc(sizeof(NibbleMem)));
    NibbleBuf* block = arena ? newBlock(initialSize) : nullptr;
    if (!block) {
        std::free(arena);
        return;
    }
    *arena = {.firstNibbleBuf = block, .currNibbleBuf = block, .incrementSize = incrementSize};
    zyn::currentArena() = arena;
}

// The room is tested against the size as asked for, and only then is the size rounded: the last request of a block may end
// at its end.
void* NibbleAlloc(uint32_t size) {
    NibbleMem* arena = zyn::currentArena();
    if (!arena) return nullptr;
    if (roomIn(arena->currNibbleBuf) < size) {
        ServiceNibbleFault(size);
        if (roomIn(arena->currNibbleBuf) < size) return nullptr;
    }
    NibbleBuf* block = arena->currNibbleBuf;
    uint8_t* memory = block->curr;
    const size_t rounded = (size_t{size} + 7) & ~size_t{7};
    block->curr = rounded < roomIn(block) ? memory + rounded : block->end;
    return memory;
}

void ServiceNibbleFault(uint32_t size) {
    NibbleMem* arena = zyn::currentArena();
    if (!arena) return;
    NibbleBuf* block = newBlock(size > arena->incrementSize ? size : arena->incrementSize);
    if (!block) return;
    arena->currNibbleBuf->next = block;
    arena->currNibbleBuf = block;
}

void ResetNibbleMem(void) {
    NibbleMem* arena = zyn::currentArena();
    if (!arena) return;
    NibbleBuf* first = arena->firstNibbleBuf;
    clear(first->start, static_cast<size_t>(first->curr - first->start),
          static_cast<size_t>(first->end - first->start));
    first->curr = first->start;
    if (first->next) {
        freeBlocks(first->next);
        first->next = nullptr;
    }
    arena->currNibbleBuf = first;
}

void ShutdownNibbleMem(void) {
    NibbleMem* arena = zyn::currentArena();
    if (!arena) return;
    zyn::currentArena() = nullptr;
    freeBlocks(arena->firstNibbleBuf);
    std::free(arena);
}

void* zyn::allocateSlowly(uint32_t size, jmp_buf env) {
    void* memory = NibbleAlloc(size);
    if (!memory) raise(env, ZYN_E_NO_MEMORY, nullptr);
    return memory;
}

void zyn::releaseRuntime() {
    ShutdownNibbleMem();
    releaseStrStk();
}
