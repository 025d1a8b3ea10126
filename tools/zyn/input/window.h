// The octets at hand: those that were read and are not yet told apart as messages.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

namespace zyn::tool {

class Window {
public:
    const uint8_t* data() const { return octets.data() + first; }
    std::size_t size() const { return last - first; }
    uint64_t position() const { return dropped; } // of data(), from the start of the unit

    void drop(std::size_t n) {
        first += n;
        dropped += n;
    }
    void push(uint8_t octet) {
        if (last == octets.size()) makeRoom(1);
        octets[last++] = octet;
    }
    void push(const void* from, std::size_t n) {
        if (octets.size() - last < n) makeRoom(n);
        std::memcpy(octets.data() + last, from, n);
        last += n;
    }
    // Room for n octets at the end; added tells how many were written there.
    uint8_t* room(std::size_t n) {
        if (octets.size() - last < n) makeRoom(n);
        return octets.data() + last;
    }
    void added(std::size_t n) { last += n; }
    void startUnit(uint64_t position) {
        first = last = 0;
        dropped = position;
    }

private:
    void makeRoom(std::size_t n) {
        if (first > 0) std::memmove(octets.data(), octets.data() + first, last - first);
        last -= first;
        first = 0;
        if (octets.size() - last < n) octets.resize(2 * octets.size() + n);
    }

    std::vector<uint8_t> octets;
    std::size_t first = 0, last = 0;
    uint64_t dropped = 0;
};

} // namespace zyn::tool
