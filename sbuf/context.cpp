// Contexts, and the state that a thread works on.
#include "zyn/context.h"

#include <cstdlib>
#include <new>
#include <type_traits>

#include "sbuf/state.h"

namespace zyn {
namespace {

constinit InnerState processWide;
constexpr Bound ofProcess = {nullptr, &nmG, &strStkG, &stdIndentG, &processWide};

} // namespace

constinit thread_local Bound bound = ofProcess;

} // namespace zyn

static_assert(std::is_trivially_destructible_v<ZynContext>); // it is given back as memory

ZynContext* ZynContextNew(void) {
    void* memory = std::malloc(sizeof(ZynContext));
    return memory ? new (memory) ZynContext : nullptr;
}

void ZynContextFree(ZynContext* context) {
    if (!context) return;
    ZynContext* before = ZynContextUse(context);
    zyn::releaseRuntime();
    ZynContextUse(before);
    std::free(context);
}

ZynContext* ZynContextUse(ZynContext* context) {
    ZynContext* before = zyn::bound.context;
    if (context) zyn::bound = {context, &context->arena, &context->strStk, &context->indent, &context->inner};
    else zyn::bound = zyn::ofProcess;
    return before;
}

void ZynContextSetIndent(ZynContext* context, unsigned short spaces) {
    (context ? context->indent : stdIndentG) = spaces;
}
