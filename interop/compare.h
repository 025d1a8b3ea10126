// Compares what the sides made of the messages, counts, and finds the reason of each difference.
#pragma once

#include <map>

#include "interop/answers.h"
#include "interop/corpus.h"
#include "interop/reasons.h"

namespace zyn::interop {

// Messages by what happened, in words; under a heading.
using Counts = std::map<std::string, std::size_t>;

// Damaged messages of one kind that the sides judge alike.
struct Kind {
    std::string name;
    bool takenBy[3]; // by side
    std::string why; // where not all do the same

    auto operator<=>(const Kind&) const = default;
};

struct Findings {
    std::map<std::string, Counts> of[3];                         // by side; under "sound" and each form of the messages
    std::map<Kind, std::size_t> damaged;                         // messages
    std::map<std::string, std::vector<std::string>> unexplained; // messages by what is not explained
    std::size_t messages[3] = {};                                // by origin
    std::vector<Message> proofs;                                 // see proof.h
};

// The answers of the peers to the messages, and to their proofs, if there are any yet.
struct Sources {
    const Answers *asn1c, *erlang;
    const Answers *asn1cProofs = nullptr, *erlangProofs = nullptr;
};

Findings compare(const std::vector<Message>& corpus, const Sources& sources);

} // namespace zyn::interop
