// Lazy set-up: nobody has to call anything before the first message.
#pragma once

#include "sbuf/state.h"

namespace zyn {

extern bool initialised;

// Makes the arena. False when the allocator refuses; the next call tries again.
bool initialiseApi();

// Makes sure that the arena is there.
inline bool setUp() {
    if (initialised && currentArena()) [[likely]] return true;
    return initialiseApi();
}

} // namespace zyn
