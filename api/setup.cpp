#include "api/setup.h"

#include "zyn/messages.h"

namespace zyn {
namespace {

constexpr uint32_t firstBlockSize = 8192; // bytes; enough for most messages, so that decoding allocates nothing
constexpr uint32_t laterBlockSize = 1024;

} // namespace

bool initialised = false;

bool initialiseApi() {
    InitNibbleMem(firstBlockSize, laterBlockSize);
    initialised = currentArena() != nullptr;
    return initialised;
}

} // namespace zyn

void ZynShutdown(void) { zyn::releaseRuntime(); }
