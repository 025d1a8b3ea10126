// Lazy set-up: nobody has to call anything before the first message.
#pragma once

#include "sbuf/state.h"

namespace zyn {

// Makes the arena and returns it. Null when the allocator refuses; the next call tries again.
NibbleMem* initialiseApi();

// Returns the arena, which is made if it is not there.
inline NibbleMem* setUp() {
    NibbleMem* arena = currentArena();
    if (currentlyInitialised() && arena) [[likely]] return arena;
    return initialiseApi();
}

} // namespace zyn
