// The text that is being written: a block that grows.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

namespace zyn::json {

class Out {
public:
    Out() = default;
    Out(const Out&) = delete;
    Out& operator=(const Out&) = delete;
    ~Out() { std::free(block); }

    char* at = nullptr; // where the next byte goes

    void clear() { at = block; }
    const char* start() const { return block; }
    std::size_t size() const { return static_cast<std::size_t>(at - block); }
    char& operator[](std::size_t index) { return block[index]; }

    // Makes room for count bytes behind at. Everything that writes asks here first; throws std::bad_alloc.
    void need(std::size_t count) {
        if (static_cast<std::size_t>(end - at) < count) [[unlikely]]
            grow(count);
    }
    void put(char c) { *at++ = c; }

private:
    void grow(std::size_t count) {
        const std::size_t used = size(), room = static_cast<std::size_t>(end - block);
        const std::size_t wanted = used + count > 2 * room ? used + count + 4096 : 2 * room;
        auto* grown = static_cast<char*>(std::realloc(block, wanted));
        if (!grown) throw std::bad_alloc();
        block = grown;
        at = grown + used;
        end = grown + wanted;
    }

    char* block = nullptr;
    char* end = nullptr;
};

} // namespace zyn::json
