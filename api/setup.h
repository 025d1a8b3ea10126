// Lazy set-up: nobody has to call anything before the first message.
#pragma once

#include "sbuf/state.h"

namespace zyn {

extern bool initialised;

// What is left to do when something is not as usual: makes the arena. False when the allocator refuses; the next call
// tries again. beginSlowly forgets the last failure as well, or makes that one it.
bool setUpSlowly();
bool beginSlowly();

// Makes sure that the arena is there.
inline bool setUp() {
    if (currentlyReady() && currentArena()) [[likely]] return true;
    return setUpSlowly();
}

// Does the same for a Decode or Encode. That a failure is kept counts as not being ready, so that forgetting it costs a
// success nothing.
inline bool begin() {
    if (currentlyReady() && currentArena()) [[likely]] return true;
    return beginSlowly();
}

} // namespace zyn
