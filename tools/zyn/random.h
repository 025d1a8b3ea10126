// Records with random values, made from the descriptions alone.
#pragma once

#include <cstddef>
#include <memory>
#include <random>
#include <vector>

#include "zyn/describe.h"

namespace zyn::tool {

// The records live until clear. The same seed makes the same records everywhere.
class RandomRecords {
public:
    explicit RandomRecords(uint64_t seed) : random(seed) {}

    void* make(const ZynType& type);
    // A CHOICE with that alternative.
    void* make(const ZynType& choice, const ZynAlternative& alternative);
    uint64_t below(uint64_t limit) { return random() % limit; }
    void clear();

private:
    void* take(std::size_t size);
    void fill(const ZynType& type, void* record);
    void fillChoice(const ZynType& choice, const ZynAlternative& alternative, void* record);
    void fillList(const ZynType& type, AsnList& list);
    void fillText(AsnOcts& text);
    void fillBits(AsnBits& bits);
    int32_t integer();

    std::mt19937_64 random;
    std::vector<std::unique_ptr<std::byte[]>> blocks;
    std::size_t block = 0, used = 0;
};

} // namespace zyn::tool
