// The bytes of a file, a pipe or a terminal, block by block, in memory that does not grow with them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zyn::tool {

// What asking for more gave: something, the end, or nothing yet and reading would wait.
enum class Fill { More, End, Wait };

class Reader {
public:
    // "-" is the standard input. Throws WrongUse if the file cannot be read.
    Reader(const std::string& file, bool follow);
    // What is in memory already.
    explicit Reader(std::string_view memory)
        : buffer(memory.begin(), memory.end()), last(memory.size()), readSoFar(last), descriptor(-1), ended(true) {}
    ~Reader();
    Reader(const Reader&) = delete;

    const std::string& name() const { return shownName; }
    std::string_view text() const { return {buffer.data() + first, last - first}; }
    void take(std::size_t n) { first += n; }

    // Adds a block to text(). Where nothing is there yet it waits, if that is allowed.
    Fill more();
    bool mayWait = true;

    uint64_t position() const { return readSoFar - (last - first); } // of text(), from the start of the file
    uint64_t size() const { return fileSize; }                       // 0: unknown

private:
    bool wouldWait() const;
    Fill atEnd();

    std::string shownName;
    std::vector<char> buffer;
    std::size_t first = 0, last = 0;
    uint64_t readSoFar = 0, fileSize = 0;
    int descriptor;
    bool isFile = false, following = false;
    bool ended = false;
};

// Ends following as if the files had ended: for the interrupt that a person sends.
void stopOnInterrupt();
bool isInterrupted();

} // namespace zyn::tool
