#include "api/setup.h"

#include "sbuf/state.h"
#include "zyn/messages.h"

namespace zyn {
namespace {

constexpr uint32_t firstBlockSize = 8192; // bytes; enough for most messages, so that decoding allocates nothing
constexpr uint32_t laterBlockSize = 1024;

bool initialised = false;

} // namespace

bool setUp() {
    if (initialised && currentArena()) return true;
    InitNibbleMem(firstBlockSize, laterBlockSize);
    initialised = currentArena() != nullptr;
    return initialised;
}

} // namespace zyn

void ZynShutdown(void) { zyn::releaseRuntime(); }
