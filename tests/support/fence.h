// Copies of octets with no memory behind them, so that whatever reads on ends the test.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <new>
#include <span>

namespace zyn::test {

// A copy lives until the next one.
class Fence {
public:
    Fence() = default;
    Fence(const Fence&) = delete;
    Fence& operator=(const Fence&) = delete;

// AddressSanitizer, as g++ tells it; clang is for the fuzz targets, which always have it.
#if defined(__SANITIZE_ADDRESS__) || defined(__clang__)
    // A block of exactly that size: what is read in front of it is seen, too.
    const uint8_t* copyOf(std::span<const uint8_t> octets) {
        block.reset(new uint8_t[octets.size()]);
        std::copy(octets.begin(), octets.end(), block.get());
        return block.get();
    }

private:
    std::unique_ptr<uint8_t[]> block;
#else
    ~Fence() { release(); }

    const uint8_t* copyOf(std::span<const uint8_t> octets) {
        if (!start || octets.size() > size) grow(octets.size());
        uint8_t* copy = start + size - octets.size();
        std::copy(octets.begin(), octets.end(), copy);
        return copy;
    }

private:
    void grow(std::size_t wanted) {
        release();
        size = (wanted / page + 1) * page;
        void* place = mmap(nullptr, size + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (place == MAP_FAILED) throw std::bad_alloc();
        start = static_cast<uint8_t*>(place);
        if (mprotect(start + size, page, PROT_NONE) != 0) throw std::bad_alloc();
    }
    void release() {
        if (start) munmap(start, size + page);
    }

    const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    uint8_t* start = nullptr;
    std::size_t size = 0; // without the last page, which must not be read
#endif
};

} // namespace zyn::test
