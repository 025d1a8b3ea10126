// From a text to a record.
#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "json/arena.h"
#include "json/plan.h"
#include "json/wrong.h"

namespace zyn::json {

// An object or array that has been opened and not closed yet.
struct Frame {
    const Plan* plan;
    char* value;     // the structure that it fills
    uint64_t* marks; // of a SEQUENCE: a bit for each field, set when it was there
    uint32_t at;     // index of the field, alternative or element in hand; none: before the first one
};
inline constexpr uint32_t none = UINT32_MAX;

// What one read works with and the next one uses again.
struct Reading {
    Arena arena;
    std::unique_ptr<char[]> copy; // of the text; its strings are decoded where they stand and records point to them
    std::size_t copySize = 0;
    std::vector<Frame> frames; // as many as can be open at once
    std::optional<Wrong> wrong;

    // The record that the text describes, or null: wrong tells why. Throws std::bad_alloc.
    void* read(const Plan& plan, std::string_view text);
};

} // namespace zyn::json
