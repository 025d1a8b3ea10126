// Sweeps are cut short where every step costs many times as much: under memcheck and under an emulator.
#pragma once

#include <cstdlib>

// One in how many bit patterns is tried: all, or few if the environment has ZYN_FEW_PATTERNS.
inline unsigned onePatternIn() {
    static const bool few = std::getenv("ZYN_FEW_PATTERNS") != nullptr;
    return few ? 16 : 1;
}
