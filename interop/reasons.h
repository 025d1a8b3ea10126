// Why the sides differ: every difference that is known, by what a message has and by what a side then does.
#pragma once

#include "interop/traits.h"

namespace zyn::interop {

enum class Side { zyn, asn1c, erlang };
constexpr Side sides[] = {Side::zyn, Side::asn1c, Side::erlang};
constexpr const char* nameOf(Side side) {
    constexpr const char* names[] = {"zyn", "asn1c", "Erlang"};
    return names[static_cast<int>(side)];
}

// What a side does, beside what the library does, or the library beside both others.
enum class Effect { refuses, takes, readsOther, writesOther };
constexpr const char* effectText(Effect effect) {
    constexpr const char* texts[] = {"refuses", "takes", "reads other values", "writes other values"};
    return texts[static_cast<int>(effect)];
}

struct Reason {
    Side side;
    Effect effect;
    Trait trait;
    const char* text;
};

// The reason that there is for a side to do so with a message that has that trait; null: none is known.
const Reason* reasonFor(Side side, Effect effect, Trait trait);

// All traits that are a reason for a side to do so.
Traits causesOf(Side side, Effect effect);
// All traits that are a reason for anything.
Traits allCauses();

// What a trait is called in a table.
const char* nameOf(Trait trait);

// The trait that a damaged message is filed under: its worst fault, or else what the reason names.
const char* kindOf(const Traits& traits, const Reason* reason);

} // namespace zyn::interop
