// What is told of a message that is bad.
#pragma once

#include <string>

#include "batch.h"
#include "zyn/failure.h"

namespace zyn::tool {

struct Failed {
    const std::string& input;
    const Item& item;
    ZynChannel channel;
    ZynFailure failure; // code 0: the message decodes, and yet is not complete
};

// For a person: several lines, with the octets around the place.
void putReport(std::string& out, const Failed& failed);

// For programs: one JSON object in a line, with all octets.
void putAside(std::string& out, const Failed& failed);

// The octets around a place, with marks under those at [place, place + count).
void putExcerpt(std::string& out, const uint8_t* octets, std::size_t length, std::size_t place, std::size_t count);

} // namespace zyn::tool
