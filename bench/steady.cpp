// What does not depend on time: allocator calls and arena bytes, and, under callgrind, instructions and code
// touched.
//
//   zyn-bench-steady compiler      names the compiler that built this, as the stored counts name it
//   zyn-bench-steady allocations   counts calls of the system allocator after set-up, and bytes of the arena
//   zyn-bench-steady instructions  decodes and encodes each of the seven; a dump of callgrind behind each
//   zyn-bench-steady mixed         decodes and encodes each message of the mixed traffic; one dump
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bench/forms.h"

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_ZERO_STATS static_cast<void>(0)
#define CALLGRIND_DUMP_STATS_AT(name) static_cast<void>(name)
#endif

namespace {

std::size_t allocatorCalls = 0;

} // namespace

// These take the place of the system's functions in the whole process.
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void __libc_free(void*);

void* malloc(std::size_t size) {
    ++allocatorCalls;
    return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
    ++allocatorCalls;
    return __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size) {
    ++allocatorCalls;
    return __libc_realloc(memory, size);
}
void free(void* memory) {
    ++allocatorCalls;
    __libc_free(memory);
}
}

namespace zyn::bench {
namespace {

constexpr std::size_t usualArena = 8192; // bytes; a message that needs no more makes no call of the allocator
constexpr uint32_t bufferSize = 65536;
constexpr int repeats = 1000;

uint8_t buffer[bufferSize];

// Decodes a message, and encodes what was decoded if that went well.
template <typename Points> void turn(const Message& message, ArenaUse& use) {
    typename Points::Envelope envelope;
    const int32_t code = Points::decode(message.octets.data(), static_cast<uint32_t>(message.octets.size()), &envelope);
    use = arenaUse();
    if (code == 0) Points::encode(Points::record(envelope), Points::choiceId(envelope), buffer, bufferSize);
}

struct Count {
    std::size_t calls;
    ArenaUse use;
};

// The first turn may still set something up.
Count count(const Message& message) {
    Count result{};
    onChannel(message.channel, [&]<typename Points>(Points) {
        turn<Points>(message, result.use);
        const std::size_t before = allocatorCalls;
        turn<Points>(message, result.use);
        result.calls = allocatorCalls - before;
    });
    return result;
}

bool countAll(const char* what, const std::vector<Message>& messages) {
    std::size_t small = 0, calls = 0;
    for (const Message& message : messages) {
        const Count one = count(message);
        if (one.use.blocks > 1 || one.use.bytes > usualArena) continue;
        ++small;
        calls += one.calls;
        if (one.calls > 0) std::printf("  %s: %zu calls of the allocator\n", message.name.c_str(), one.calls);
    }
    std::printf("  %-16s %4zu messages, %4zu of them within %zu bytes of arena, %zu calls of the allocator\n", what,
                messages.size(), small, usualArena, calls);
    return calls == 0;
}

int allocations(const std::string& folder) {
    TreeMemory memory;
    const std::vector<Message> seven = sevenMessages(memory);
    std::vector<Message> forms, refused;
    for (const Message& message : seven) {
        for (const Form& form : otherForms) forms.push_back(inForm(message, form));
        for (Message& one : refusals(message)) refused.push_back(std::move(one));
    }
    const std::vector<Message> mixed = mixedMessages(folder, memory);
    std::printf("4. Calls of the system allocator after set-up, for a decode and an encode; arena bytes\n");
    std::printf("  %-16s %8s %8s %12s\n", "", "octets", "arena", "arena/octet");
    for (const Message& message : seven) {
        const Count one = count(message);
        std::printf("  %-16s %8zu %8zu %12.2f\n", message.name.c_str(), message.octets.size(), one.use.bytes,
                    static_cast<double>(one.use.bytes) / static_cast<double>(message.octets.size()));
    }
    bool none = countAll("the seven", seven);
    none = countAll("in other forms", forms) && none;
    none = countAll("refused", refused) && none;
    none = countAll("mixed", mixed) && none;
    std::printf("  none for what fits into the arena's first block: %s\n", none ? "yes" : "NO");
    return none ? 0 : 1;
}

int instructions() {
    TreeMemory memory;
    for (const Message& message : sevenMessages(memory)) {
        onChannel(message.channel, [&]<typename Points>(Points) {
            typename Points::Envelope envelope;
            const std::string decodeName = "decode/" + message.name, encodeName = "encode/" + message.name;
            const auto size = static_cast<uint32_t>(message.octets.size());
            CALLGRIND_ZERO_STATS;
            for (int i = 0; i < repeats; ++i) Points::decode(message.octets.data(), size, &envelope);
            CALLGRIND_DUMP_STATS_AT(decodeName.c_str());
            CALLGRIND_ZERO_STATS;
            for (int i = 0; i < repeats; ++i) Points::encode(message.record, message.choiceId, buffer, bufferSize);
            CALLGRIND_DUMP_STATS_AT(encodeName.c_str());
        });
    }
    std::printf("%d\n", repeats);
    return 0;
}

int mixedTraffic(const std::string& folder) {
    TreeMemory memory;
    const std::vector<Message> mixed = mixedMessages(folder, memory);
    CALLGRIND_ZERO_STATS;
    for (const Message& message : mixed) {
        ArenaUse use;
        onChannel(message.channel, [&]<typename Points>(Points) { turn<Points>(message, use); });
    }
    CALLGRIND_DUMP_STATS_AT("mixed");
    return 0;
}

int compiler() {
#ifdef __clang__
    std::printf("clang-%d.%d.%d\n", __clang_major__, __clang_minor__, __clang_patchlevel__);
#else
    std::printf("g++-%d.%d.%d\n", __GNUC__, __GNUC_MINOR__, __GNUC_PATCHLEVEL__);
#endif
    return 0;
}

} // namespace
} // namespace zyn::bench

int main(int argc, char** argv) {
    using namespace zyn::bench;
    Asn1InstallErrorHandler([](char*, int) {});
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "compiler") return compiler();
    if (mode == "allocations") return allocations(ZYN_BENCH_MESSAGES);
    if (mode == "instructions") return instructions();
    if (mode == "mixed") return mixedTraffic(ZYN_BENCH_MESSAGES);
    stop("usage: zyn-bench-steady compiler | allocations | instructions | mixed");
}
