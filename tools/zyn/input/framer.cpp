#include "input/framer.h"

#include <algorithm>

#include "channel.h"
#include "zyn/describe.h"

namespace zyn::tool {
namespace {

constexpr std::size_t headOctets = 512; // by which a message's channel can be told, whatever its userId

} // namespace

Fill Framer::nextUnit() {
    const Fill got = source.next(window);
    inUnit = got == Fill::More;
    unitEnded = inJunk = false;
    return got;
}

Fill Framer::give(Frame& frame, Frame::Kind kind) { return take(frame, kind, window.size(), 0); }

Fill Framer::take(Frame& frame, Frame::Kind kind, std::size_t length, std::size_t claimed) {
    frame = {.kind = kind,
             .octets = window.data(),
             .length = length,
             .claimed = claimed,
             .position = window.position(),
             .line = source.line(),
             .last = false,
             .complaint = source.complaint().c_str()};
    used = length;
    inJunk = false;
    if (kind != Frame::Message && !options.skipJunk) {
        inUnit = false; // the next message, if it can be found, is in the next unit
        frame.last = stopped = !source.hasUnits();
    }
    return Fill::More;
}

Fill Framer::next(Frame& frame) {
    window.drop(used);
    used = 0;
    for (;;) {
        if (stopped) return Fill::End;
        if (!inUnit) {
            if (const Fill got = nextUnit(); got != Fill::More) return got;
        }
        if (options.skipJunk) {
            const Fill got = nextInJunk(frame);
            if (got != Fill::End) return got;
            inUnit = false;
            continue;
        }
        std::size_t claimed = 0;
        const int told = window.size() > 0 ? ZynMessageLength(window.data(), window.size(), &claimed) : 0;
        if (told < 0) return take(frame, Frame::NoMessage, std::min(window.size(), headOctets), 0);
        if (claimed > options.limit) return take(frame, Frame::TooLong, std::min(window.size(), headOctets), claimed);
        if (told > 0 && claimed <= window.size()) return take(frame, Frame::Message, claimed, claimed);
        const Fill got = source.fill(window);
        if (got == Fill::Wait) return got;
        if (got == Fill::More) continue;
        const bool misspelled = !source.complaint().empty();
        if (misspelled) return take(frame, Frame::Misspelled, window.size(), 0);
        if (window.size() > 0 && !isInterrupted())
            return take(frame, Frame::Cut, window.size(), told > 0 ? claimed : 0);
        inUnit = false;
    }
}

void Framer::passOver() {
    if (!inJunk) ++junk.places;
    inJunk = true;
    std::size_t n = 1;
    while (n < window.size() && !mayStartMessage(window.data()[n])) ++n;
    junk.octets += n;
    window.drop(n);
}

// A message begins where its channel can be told and its whole length is there. Where that may be chance it must decode as
// well, or be followed by another one.
Fill Framer::nextInJunk(Frame& frame) {
    for (;;) {
        if (window.size() == 0 || (window.size() < headOctets && !unitEnded)) {
            const Fill got = unitEnded ? Fill::End : source.fill(window);
            unitEnded = got == Fill::End;
            if (got == Fill::More) continue;
            if (window.size() == 0) return got;
        }
        const uint8_t first = window.data()[0];
        if (!mayStartMessage(first) || ZynChannelOf(window.data(), window.size()) < 0) {
            if (mayStartMessage(first) && window.size() < headOctets && !unitEnded) return Fill::Wait;
            passOver();
            continue;
        }
        std::size_t claimed = 0;
        const int told = ZynMessageLength(window.data(), window.size(), &claimed);
        if (told < 0 || claimed > options.limit) {
            passOver();
            continue;
        }
        if (told == 0 || claimed > window.size()) {
            const Fill got = unitEnded ? Fill::End : source.fill(window);
            unitEnded = got == Fill::End;
            if (got == Fill::Wait) return got;
            if (got == Fill::More) continue;
            if (!startIsCertain(first) || isInterrupted()) {
                passOver();
                continue;
            }
            take(frame, Frame::Cut, window.size(), told > 0 ? claimed : 0);
            used = 1; // another message may stand in what should have been this one's
            return Fill::More;
        }
        const bool decodes = decodesWell(window.data(), claimed);
        const bool isFollowed = claimed == window.size() || mayStartMessage(window.data()[claimed]);
        if (!decodes && !(startIsCertain(first) || (isFollowed && claimed > 2))) {
            passOver();
            continue;
        }
        take(frame, Frame::Message, claimed, claimed);
        if (!decodes && !isFollowed) used = 1;
        return Fill::More;
    }
}

} // namespace zyn::tool
