// Record trees made up from the tables, of any type, in memory of their own.
#pragma once

#include <memory>
#include <random>
#include <vector>

#include "records/members.h"
#include "records/tables.h"

namespace zyn::test {

using Random = std::mt19937;
inline uint32_t below(Random& random, std::size_t limit) { return static_cast<uint32_t>(random() % limit); }

// Zero-filled blocks of exactly the size asked for, so that a sanitizer sees what is read behind them.
class Memory {
public:
    void* take(std::size_t size) { return blocks.emplace_back(new uint8_t[size]()).get(); }

private:
    std::vector<std::unique_ptr<uint8_t[]>> blocks;
};

// What the trees are like.
struct Taste {
    uint32_t presentPercent = 50; // of the OPTIONAL fields; 0: all are absent, 100: all are there
    uint32_t longestText = 300;   // octets
    uint32_t longestList = 4;     // elements
    bool zeroReals = true;
};

// Makes trees that live as long as the sampler. Values are often those at the edge of a form on the wire.
// What encoders take as a short cut is in them too: a null list, a null text, the null slot of an empty record.
class Sampler {
public:
    explicit Sampler(uint32_t seed, Taste how = {}) : random(seed), taste(how) {}

    void* make(TypeId type);
    // A CHOICE record with that alternative.
    ChoiceRecord* make(TypeId choice, const Alternative& alternative);

private:
    void fill(TypeId type, void* value);
    void fillSequence(const Type& type, void* record);
    void fillChoice(const Alternative& alternative, ChoiceRecord* choice);
    void fillText(AsnOcts& text, std::size_t length);
    void fillBits(AsnBits& bits);
    void fillList(const Type& type, AsnList& list);
    AsnInt integer();
    AsnReal real();
    std::size_t textLength();
    bool chance(uint32_t percent) { return below(random, 100) < percent; }

    Random random;
    Taste taste;
    Memory memory;
};

} // namespace zyn::test
