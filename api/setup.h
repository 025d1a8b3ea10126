// Lazy set-up: nobody has to call anything before the first message.
#pragma once

namespace zyn {

// Makes sure that the arena is there. False when the allocator refuses; the next call tries again.
bool setUp();

} // namespace zyn
