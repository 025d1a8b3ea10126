#include "api/setup.h"

#include "zyn/codes.h"
#include "zyn/messages.h"

namespace zyn {
namespace {

constexpr uint32_t firstBlockSize = 8192; // bytes; enough for most messages, so that decoding allocates nothing
constexpr uint32_t laterBlockSize = 1024;

} // namespace

NibbleMem* setUpSlowly() {
    if (!currentlyInitialised() || !currentArena()) InitNibbleMem(firstBlockSize, laterBlockSize);
    currentlyInitialised() = currentArena() != nullptr;
    currentlyReady() = currentlyInitialised() && currentFailure().code == 0;
    return currentArena();
}

NibbleMem* beginSlowly() {
    currentFailure().code = 0;
    NibbleMem* arena = setUpSlowly();
    if (!arena) startFailure(ZYN_E_NO_MEMORY);
    return arena;
}

} // namespace zyn

void ZynShutdown(void) { zyn::releaseRuntime(); }
