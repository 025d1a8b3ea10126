// The one way by which decoding fails, and what is kept of a failure until somebody asks.
//
// A decoder keeps a chain of steps on its stack, from the message down to what is being read. Whoever wants to know
// more of a failure than its code registers the walk beforehand; raise() then copies what the chain tells. Nothing is
// put into words before it is asked for.
#pragma once

#include <csetjmp>
#include <cstdint>

#include "zyn/asn.h"

namespace zyn {

// The value of an index that is none: what is read belongs to the record as a whole.
inline constexpr uint32_t noIndex = UINT32_MAX;

// A record, list or choice that is being read.
struct Step {
    Step* outer;
    const uint8_t* content; // its first octet
    const uint8_t* element; // the first octet of the element in it that is being read
    AsnLen length;          // of the content
    uint16_t type;          // the number of its TypeId
    uint32_t index;         // of the field, alternative or list element that is being read
};

// The reading of one message.
struct Walk {
    SBuf* b;
    Step* top;              // the innermost step
    bool inWrapper = false; // the element that is being read stands inside that of its field
};

// A step of the path to the place of a failure.
struct PathStep {
    uint16_t type;
    uint32_t index;
};

// The last failure of a Decode or Encode. Only what comes first in it is kept when it happens.
struct Failure {
    int32_t code; // 0: the last Decode or Encode did not fail
    uint32_t pathLength;
    PathStep path[12]; // longer than any way through the schema
    // Of a Decode. Offsets count from the start of the message.
    bool atEnd;        // the data end here
    bool inComponent;  // the element refused is a component of a constructed string
    bool inWrapper;    // or stands inside that of its field
    uint32_t element;  // offset of the element refused
    uint32_t offset;   // of the place that is reported
    uint32_t position; // up to which the message was read
    uint32_t content;  // where the content of the innermost record starts
    AsnLen length;     // of that content
    uint32_t headOctets;
    uint8_t head[8]; // the first octets of the element refused: at least all of its tag and length
    // Of an Encode.
    uint32_t needed;   // octets of the message
    uint32_t room;     // octets of the block
    uint32_t choiceId; // that is no alternative

    // While a message is being read.
    Walk* walk;               // the one that is registered; null: nobody wants to know
    const uint8_t* component; // of the constructed string that is being read; null: none is
    // What is made of all this when it is asked for.
    char pathText[192];
    char text[384];
    char meaning[256]; // what ZynFailureText gave last
};

// Reports message, unless it is null, and jumps to env with code. No frame in between is run any further, so none may hold
// an object whose destructor matters.
[[noreturn]] void raise(jmp_buf env, int32_t code, const char* message);

// Makes code the failure of the Decode or Encode that is being done, with an empty path, and gives it for more to be added.
Failure& startFailure(int32_t code);

} // namespace zyn
