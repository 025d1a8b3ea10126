// What the library keeps between calls, reached by its own code through these accessors alone.
#pragma once

#include <cstddef>

#include "sbuf/failure.h"
#include "zyn/asn.h"

namespace zyn {

// A constructed string whose end has not been reached: its length and the octets counted in it so far.
struct OpenString {
    AsnLen length;
    AsnLen count;
};

// What decoding constructed strings keeps beside the StrStk. Strings may be nested to any depth, so the open ones stand
// in a table and not on the stack.
struct StringTables {
    OpenString* open;
    std::size_t openCapacity;
    std::size_t pieceCapacity; // entries of the StrStk's table; may be above numElmts, so that time stays linear
};

// The text of the last message. Handlers get a char* and may write to it, or keep it until the next message.
struct MessageText {
    char text[160];
};

extern StringTables stringTables;
extern MessageText messageText;
extern Asn1ErrorHandler errorHandler;
extern Failure lastFailure;
// The arena was made and no failure is kept, so that a Decode or Encode can begin at once.
extern bool ready;

inline NibbleMem*& currentArena() { return nmG; }
inline StrStk& currentStrStk() { return strStkG; }
inline StringTables& currentStringTables() { return stringTables; }
inline MessageText& currentMessage() { return messageText; }
inline Asn1ErrorHandler& currentErrorHandler() { return errorHandler; }
inline Failure& currentFailure() { return lastFailure; }
inline bool& currentlyReady() { return ready; }
inline unsigned short currentIndent() { return stdIndentG; }

// Gives back the arena and the tables of constructed strings, as if the process had just started.
void releaseRuntime();

} // namespace zyn
