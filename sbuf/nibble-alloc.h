#pragma once

#include "sbuf/state.h"

namespace zyn {

// NibbleAlloc for the library's own code: what the current block has room for, and to spare, is taken without a call.
inline void* fromArena(uint32_t size) {
    if (const NibbleMem* arena = currentArena()) {
        NibbleBuf* block = arena->currNibbleBuf;
        const std::size_t rounded = (std::size_t{size} + 7) & ~std::size_t{7};
        if (rounded < static_cast<std::size_t>(block->end - block->curr)) {
            uint8_t* memory = block->curr;
            block->curr += rounded;
            return memory;
        }
    }
    return NibbleAlloc(size);
}

// ResetNibbleMem, for an arena that mostly is empty or has one block. Returns the block that is in use then.
inline NibbleBuf* emptyArena() {
    const NibbleMem* arena = currentArena();
    const NibbleBuf* block = arena->currNibbleBuf;
    if (block->curr != block->start || block != arena->firstNibbleBuf) ResetNibbleMem();
    return arena->currNibbleBuf;
}

} // namespace zyn
