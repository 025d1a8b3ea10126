// Arenas beside the library's own, as its entry points make it.
#pragma once

#include <utility>

#include "zyn/asn.h"

namespace zyn::test {

inline NibbleMem* newArena() {
    NibbleMem* current = nmG;
    InitNibbleMem(8192, 1024);
    return std::exchange(nmG, current);
}

inline void freeArena(NibbleMem* arena) {
    NibbleMem* current = std::exchange(nmG, arena);
    ShutdownNibbleMem();
    nmG = current;
}

} // namespace zyn::test
