// Why the sides differ: every difference that is known, by what a message has and by what a side then does.
#pragma once

#include "interop/reading.h"

namespace zyn::interop {

enum class Side { zyn, asn1c, erlang };
constexpr const char* sideNames[] = {"zyn", "asn1c", "Erlang"};

// What a side does, beside what the library does, or the library beside both others.
enum class Effect { refuses, takes, readsOther, writesOther, writesNothing };

struct Reason {
    Side side;
    Effect effect;
    Trait trait;
    const char* text;
};

// The first reason that there is for a side to do so with a message of these traits; null: none is known.
const Reason* reasonFor(Side side, Effect effect, const Traits& traits);

// What a trait is called in a table.
const char* nameOf(Trait trait);

// The trait that a damaged message is filed under: its worst fault, or else what the reason names.
const char* kindOf(const Traits& traits, const Reason* reason);

} // namespace zyn::interop
