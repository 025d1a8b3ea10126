// Sends messages through the entry points by the direct way and by the exact way, and compares all that
// either leaves behind.
#pragma once

#include <string>

#include "tests/support/fence.h"
#include "tests/support/reference.h"
#include "zyn/zyn.h"

namespace zyn::test {

// One kind of message: its types and its entry points in one form for all four.
struct Channel {
    ZynChannel number;
    const char* name;
    TypeId message;
    TypeId choice; // the same as message on a reply
    int32_t (*decode)(const uint8_t* octets, uint32_t length, void* message);
    uint32_t (*encode)(const char* user, void* record, uint32_t choiceId, uint8_t* block, uint32_t size);
    int (*print)(void* message);

    bool isRequest() const { return message != choice; }
};

extern const Channel channels[4];
const Channel& channelOf(TypeId message);

// The choice of a message, which on a reply is the message itself.
const ChoiceRecord* choiceIn(const Channel& channel, const void* message);
// The sender as an Encode takes it: 12 characters, from a request's userId.
std::string userIn(const Channel& channel, const void* message);
// The whole message of a record, by the reference.
Octets messageOf(const Channel& channel, const std::string& user, const ChoiceRecord* choice, Writer writer = {});

// Decoded trees live in two arenas of its own and stay until the next decode. Elsewhere nmG is a third one.
class TwoWays {
public:
    TwoWays();
    ~TwoWays();
    TwoWays(const TwoWays&) = delete;
    TwoWays& operator=(const TwoWays&) = delete;

    // What the last call came to, by both ways.
    bool direct = false;  // the direct way took it to its end
    int32_t code = 0;     // of a decode
    std::string reported; // messages of a decode
    std::string problem;  // of all calls, the first in which the ways differ, or in which one broke a promise

    // The decoded message, for what it is worth when code is not 0.
    void* decode(const Channel& channel, const Octets& octets);
    // Bytes that the trees of the last decode hold, those of the way that holds more.
    std::size_t held() const;
    // The message; empty: the Encode returned 0. user has 12 characters and is looked at on requests only.
    Octets encode(const Channel& channel, const std::string& user, const ChoiceRecord* choice, uint32_t room);

private:
    void note(const std::string& what);
    void compareArenas();
    bool sameWords(const uint8_t* a, const uint8_t* b, std::size_t bytes) const;

    NibbleMem* before = nullptr;
    NibbleMem* arenas[2] = {};
    NibbleMem* scratch = nullptr;
    Asn1ErrorHandler handler = nullptr;
    Fence fence;
    alignas(8) uint8_t messages[2][64];
};

} // namespace zyn::test
