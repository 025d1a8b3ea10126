// Sweeps are cut short where every step costs many times as much: under memcheck and under an emulator.
#pragma once

#include <cstdlib>

// Whether the environment asks for fewer bit patterns: ZYN_FEW_PATTERNS is set.
inline bool fewPatterns() { return std::getenv("ZYN_FEW_PATTERNS") != nullptr; }
