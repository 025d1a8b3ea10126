// Which way a message takes. In builds for tests (ZYN_TELL_WAY) the choice can be forced and is told; elsewhere nothing of
// this is left.
#pragma once

namespace zyn {

enum class Way { Direct, Exact };

#ifdef ZYN_TELL_WAY
inline thread_local bool directAllowed = true; // false: every message of this thread goes the exact way
inline thread_local Way lastWay = Way::Exact;  // the one that its last message took to its end
inline bool mayGoDirect() { return directAllowed; }
inline void tellWay(Way way) { lastWay = way; }
#else
constexpr bool mayGoDirect() { return true; }
constexpr void tellWay(Way) {}
#endif

} // namespace zyn
