#pragma once

#include <csetjmp>

#include "sbuf/state.h"

namespace zyn {

// NibbleAlloc for decoders, who fail when memory is refused.
[[gnu::cold]] void* allocateSlowly(uint32_t size, jmp_buf env);

// The same. What the current block has room for, and to spare, is taken without a call.
inline void* allocate(uint32_t size, jmp_buf env) {
    if (const NibbleMem* arena = currentArena()) {
        NibbleBuf* block = arena->currNibbleBuf;
        const std::size_t rounded = (std::size_t{size} + 7) & ~std::size_t{7};
        if (rounded < static_cast<std::size_t>(block->end - block->curr)) [[likely]] {
            uint8_t* memory = block->curr;
            block->curr += rounded;
            return memory;
        }
    }
    return allocateSlowly(size, env);
}

// ResetNibbleMem, for an arena that mostly is empty or has one block. Returns the block that is in use then.
inline NibbleBuf* emptyArena() {
    const NibbleMem* arena = currentArena();
    const NibbleBuf* block = arena->currNibbleBuf;
    if (block->curr != block->start || block != arena->firstNibbleBuf) ResetNibbleMem();
    return arena->currNibbleBuf;
}

} // namespace zyn
