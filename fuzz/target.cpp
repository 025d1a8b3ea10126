#include "fuzz/target.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace zyn::fuzz {
namespace {

using namespace test;

constexpr auto firstRecord = static_cast<std::size_t>(TypeId::AsnBits) + 1; // behind the primitive types

Forms anyForms(Random& random) {
    const uint32_t often = below(random, 3) == 0 ? 60 : 8;
    const auto chance = [&] { return below(random, 2) == 0 ? 0 : often; };
    return {.indefinite = chance(),
            .longLength = chance(),
            .cutStrings = chance(),
            .looseValues = chance(),
            .damage = below(random, 8) == 0 ? 10u : 0u};
}

Taste anyTaste(Random& random) { return {below(random, 101), 1 + below(random, 64), 1 + below(random, 5)}; }

} // namespace

Input inputFrom(const uint8_t* data, std::size_t size) {
    Input input;
    const std::size_t selected = std::min(size, target.selectorOctets);
    std::copy_n(data, selected, input.selector);
    input.octets.assign(data + selected, data + size);
    return input;
}

Octets madeMessage(const Channel& channel, Random& random) {
    Sampler sampler(static_cast<uint32_t>(random()), anyTaste(random));
    const auto rows = typeOf(channel.choice).alternatives;
    const ChoiceRecord* choice = sampler.make(channel.choice, rows[below(random, rows.size())]);
    return messageOf(channel, "TRADER01    ", choice, Writer(anyForms(random), static_cast<uint32_t>(random())));
}

const Channel& selectedChannel(const Input& input) { return channels[input.selector[0] % std::size(channels)]; }

Octets madeSelectedMessage(Random& random) {
    const auto number = static_cast<uint8_t>(below(random, std::size(channels)));
    Octets octets{number, static_cast<uint8_t>(random())};
    octets.resize(target.selectorOctets);
    append(octets, madeMessage(channels[number], random));
    return octets;
}

TypeId selectedRecord(const Input& input) {
    const std::size_t number = input.selector[0] * std::size_t{256} + input.selector[1];
    return static_cast<TypeId>(firstRecord + number % (typeCount - firstRecord));
}

Octets recordSelector(TypeId type) {
    const std::size_t number = static_cast<std::size_t>(type) - firstRecord;
    return {static_cast<uint8_t>(number >> 8), static_cast<uint8_t>(number)};
}

Octets madeRecord(Random& random) {
    const auto type = static_cast<TypeId>(firstRecord + below(random, typeCount - firstRecord));
    Sampler sampler(static_cast<uint32_t>(random()), anyTaste(random));
    Octets octets = recordSelector(type);
    append(octets, Writer(anyForms(random), static_cast<uint32_t>(random())).message(type, sampler.make(type)));
    return octets;
}

Octets madeText(Random& random) {
    Octets text(below(random, 300));
    for (uint8_t& octet : text) octet = static_cast<uint8_t>(random());
    return Writer(anyForms(random), static_cast<uint32_t>(random())).element(0x04000000, text);
}

void expect(bool kept, const std::string& what) {
    if (kept) return;
    std::fprintf(stderr, "\nBROKEN PROMISE: %s\n", what.c_str());
    std::abort();
}

} // namespace zyn::fuzz
