// Messages out of octets, told apart by their own length.
#pragma once

#include <cstdint>

#include "input/source.h"

namespace zyn::tool {

// One message, or what stands where one is due. Octets and strings live until the next call.
struct Frame {
    enum Kind {
        Message,    // as long as its length says
        Cut,        // the input, or the line, ends before the message
        TooLong,    // it says that it is longer than is allowed
        NoMessage,  // no message can begin so
        Misspelled, // the text does not spell octets
    };
    Kind kind = Message;
    const uint8_t* octets = nullptr;
    std::size_t length = 0;  // octets at hand
    std::size_t claimed = 0; // as the message says; 0: it does not
    uint64_t position = 0;   // of the first octet, in the unit
    uint64_t line = 0;       // of the unit, from 1; 0: the input has no lines
    bool last = false;       // reading stops here, as nothing tells where the next message begins
    const char* complaint = "";
};

// What was passed over.
struct Junk {
    uint64_t octets = 0, places = 0;
};

class Framer {
public:
    Framer(Source& from, const InputOptions& how) : source(from), options(how) {}

    // More: frame is the next one. End: there is none. Wait: there may be one, but reading would have to wait.
    Fill next(Frame& frame);

    Junk junk;

private:
    Fill take(Frame& frame, Frame::Kind kind, std::size_t length, std::size_t claimed);
    Fill give(Frame& frame, Frame::Kind kind);
    Fill nextInJunk(Frame& frame);
    Fill nextUnit();
    void passOver();

    Source& source;
    const InputOptions& options;
    Window window;
    std::size_t used = 0; // octets of the frame that was given last
    bool inUnit = false, unitEnded = false, inJunk = false, stopped = false;
};

} // namespace zyn::tool
