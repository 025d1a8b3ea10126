// What a fuzz target is made of, beside the LLVMFuzzerTestOneInput of its own unit.
#pragma once

#include "tests/support/elements.h"
#include "tests/support/two-ways.h"

namespace zyn::fuzz {

using test::Octets;
using test::Random;

// An input is some octets that say what is to be done with the rest, and the rest: BER elements.
struct Target {
    std::size_t selectorOctets;
    Octets (*made)(Random& random); // a whole input made up from the field tables
};
extern const Target target; // each target defines its own

// The rest of an input, and its selector octets; those that are missing are 0.
struct Input {
    uint8_t selector[2] = {};
    Octets octets;
};
Input inputFrom(const uint8_t* data, std::size_t size);

// A message of that channel in any form, or of any channel, behind selector octets that say which.
Octets madeMessage(const test::Channel& channel, Random& random);
Octets madeSelectedMessage(Random& random);
const test::Channel& selectedChannel(const Input& input);

// The type that record targets are told by number.
TypeId selectedRecord(const Input& input);
Octets recordSelector(TypeId type);
Octets madeRecord(Random& random);
Octets madeText(Random& random);

// A broken promise: says so and ends the process, so that the input is kept.
void expect(bool kept, const std::string& what);

} // namespace zyn::fuzz
