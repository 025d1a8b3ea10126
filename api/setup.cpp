#include "api/setup.h"

#include "zyn/codes.h"
#include "zyn/messages.h"

namespace zyn {
namespace {

constexpr uint32_t firstBlockSize = 8192; // bytes; enough for most messages, so that decoding allocates nothing
constexpr uint32_t laterBlockSize = 1024;

} // namespace

bool initialised = false;

bool setUpSlowly() {
    if (!initialised || !currentArena()) InitNibbleMem(firstBlockSize, laterBlockSize);
    initialised = currentArena() != nullptr;
    currentlyReady() = initialised && currentFailure().code == 0;
    return initialised;
}

bool beginSlowly() {
    currentFailure().code = 0;
    if (setUpSlowly()) return true;
    startFailure(ZYN_E_NO_MEMORY);
    return false;
}

} // namespace zyn

void ZynShutdown(void) { zyn::releaseRuntime(); }
