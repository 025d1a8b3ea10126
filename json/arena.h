// The memory of the records that were read last.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <vector>

namespace zyn::json {

class Arena {
public:
    // Gives size zero-filled bytes, aligned for any type; throws std::bad_alloc.
    void* take(std::size_t size) {
        size = (size + alignment - 1) / alignment * alignment;
        if (size > rest) [[unlikely]]
            addBlock(size);
        char* const piece = next;
        next += size;
        rest -= size;
        return std::memset(piece, 0, size);
    }

    // Takes all of it back. What took several blocks finds room in one the next time.
    void reset() {
        if (blocks.size() > 1) {
            const std::size_t size = total;
            blocks.clear();
            total = 0;
            addBlock(size);
        }
        if (blocks.empty()) return;
        next = blocks.front().get();
        rest = total;
    }

private:
    static constexpr std::size_t alignment = alignof(std::max_align_t);

    void addBlock(std::size_t atLeast) {
        const std::size_t size = std::max(atLeast, std::max<std::size_t>(total, 16384));
        blocks.push_back(std::make_unique_for_overwrite<char[]>(size));
        next = blocks.back().get();
        rest = size;
        total += size;
    }

    std::vector<std::unique_ptr<char[]>> blocks;
    char* next = nullptr;
    std::size_t rest = 0;
    std::size_t total = 0; // of all blocks
};

} // namespace zyn::json
