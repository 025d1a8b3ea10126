// The one way by which decoding fails.
#pragma once

#include <csetjmp>
#include <cstdint>

namespace zyn {

// Reports message, unless it is null, and jumps to env with code. No frame in between is run any further, so none may hold
// an object whose destructor matters.
[[noreturn]] void raise(jmp_buf env, int32_t code, const char* message);

} // namespace zyn
