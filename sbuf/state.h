// What the library keeps between calls, reached by its own code through these accessors alone: that of the context which
// the thread has bound, or the process-wide one.
#pragma once

#include <cstddef>

#include "sbuf/failure.h"
#include "zyn/asn.h"
#include "zyn/context.h"

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

// All that is kept of a context or of the process, but for what the process has as exported variables.
struct InnerState {
    bool initialised = false; // the arena was made by setUp
    bool ready = false;       // and no failure is kept, so that a Decode or Encode can begin at once
    StringTables stringTables = {};
    MessageText message = {};
    Asn1ErrorHandler errorHandler = Asn1DefaultErrorHandler;
    Failure failure = {};
};

inline constexpr StrStk emptyStrStk = {nullptr, 128, 0, 64, 0, 0};
inline constexpr unsigned short usualIndent = 4;

// Where the parts of the calling thread's state are. Pointers to the parts, as the exported variables are apart from each
// other; a thread starts with the process-wide ones.
struct Bound {
    ZynContext* context; // null: the process-wide state
    NibbleMem** arena;
    StrStk* strStk;
    const unsigned short* indent;
    InnerState* inner;
};

// At a fixed distance from the thread's pointer, so that to reach it costs no call, in a shared library either.
[[gnu::tls_model("initial-exec")]] extern constinit thread_local Bound bound;

inline NibbleMem*& currentArena() { return *bound.arena; }
inline StrStk& currentStrStk() { return *bound.strStk; }
inline bool& currentlyInitialised() { return bound.inner->initialised; }
inline bool& currentlyReady() { return bound.inner->ready; }
inline StringTables& currentStringTables() { return bound.inner->stringTables; }
inline MessageText& currentMessage() { return bound.inner->message; }
inline Asn1ErrorHandler& currentErrorHandler() { return bound.inner->errorHandler; }
inline Failure& currentFailure() { return bound.inner->failure; }
inline unsigned short currentIndent() { return *bound.indent; }

// Gives back the arena and the tables of constructed strings, as if the process had just started.
void releaseRuntime();

} // namespace zyn

struct ZynContext {
    NibbleMem* arena = nullptr;
    StrStk strStk = zyn::emptyStrStk;
    unsigned short indent = zyn::usualIndent;
    zyn::InnerState inner;
};
