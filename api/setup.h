// Lazy set-up: nobody has to call anything before the first message.
#pragma once

#include "sbuf/state.h"

namespace zyn {

// What is left to do when something is not as usual: makes the arena. Null when the allocator refuses; the next call tries
// again. beginSlowly forgets the last failure as well, or makes that one it.
NibbleMem* setUpSlowly();
NibbleMem* beginSlowly();

// Returns the arena, which is made if it is not there.
inline NibbleMem* setUp() {
    NibbleMem* arena = currentArena();
    if (currentlyReady() && arena) [[likely]]
        return arena;
    return setUpSlowly();
}

// Does the same for a Decode or Encode. That a failure is kept counts as not being ready, so that forgetting it costs a
// success nothing.
inline NibbleMem* begin() {
    NibbleMem* arena = currentArena();
    if (currentlyReady() && arena) [[likely]]
        return arena;
    return beginSlowly();
}

} // namespace zyn
