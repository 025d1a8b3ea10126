#include "api/setup.h"

#include "zyn/messages.h"

namespace zyn {
namespace {

constexpr uint32_t firstBlockSize = 8192; // bytes; enough for most messages, so that decoding allocates nothing
constexpr uint32_t laterBlockSize = 1024;

} // namespace

NibbleMem* initialiseApi() {
    InitNibbleMem(firstBlockSize, laterBlockSize);
    currentlyInitialised() = currentArena() != nullptr;
    return currentArena();
}

} // namespace zyn

void ZynShutdown(void) { zyn::releaseRuntime(); }
