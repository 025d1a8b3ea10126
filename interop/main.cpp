// zyn-interop: makes the messages for the peers, and compares what they made of them.
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>

#include "interop/compare.h"
#include "interop/text.h"
#include "zyn/values.h"

namespace {

using namespace zyn;
using namespace zyn::interop;

constexpr const char* usage =
    "usage: zyn-interop messages COUNT\n"
    "       zyn-interop proofs COUNT ASN1C ERLANG\n"
    "       zyn-interop compare COUNT ASN1C ERLANG ASN1C-PROOFS ERLANG-PROOFS\n"
    "\n"
    "messages writes COUNT messages of each alternative as the library encodes them, as many in other forms of BER "
    "and\n"
    "as many damaged ones; a line each, \"name module type octets\". proofs reads what the peers answered and writes "
    "the\n"
    "messages that show the cause of each difference. compare reads what the peers answered to both, writes tables, "
    "and\n"
    "ends with 1 if there is a difference that has no reason known, or another one than the one it knows.\n";

int writeMessages(const std::vector<Message>& corpus) {
    for (const Message& message : corpus) {
        const Type& type = typeOf(message.type);
        std::cout << message.name << ' ' << type.module << ' ' << type.name << ' '
                  << hexOf(message.octets.data(), message.octets.size()) << '\n';
    }
    return 0;
}

Answers answersIn(const char* file) {
    std::ifstream from(file);
    if (!from) throw std::runtime_error(std::string("cannot read ") + file);
    return readAnswers(from);
}

void writeSide(const Findings& findings, Side side) {
    const char* name = nameOf(side);
    std::cout << "\n## " << name << "\n\n| messages | " << name << " | how many |\n|---|---|---:|\n";
    for (const auto& [heading, counts] : findings.of[static_cast<int>(side)]) {
        for (const auto& [what, count] : counts) {
            std::cout << "| " << heading << " | " << what << " | " << count << " |\n";
        }
    }
}

void writeDamaged(const Findings& findings) {
    std::cout << "\n## Damaged messages: who takes them\n\n| what is wrong | zyn | asn1c | Erlang | messages | why |\n"
                 "|---|---|---|---|---:|---|\n";
    for (const auto& [kind, count] : findings.damaged) {
        std::cout << "| " << kind.name;
        for (const bool taken : kind.takenBy) std::cout << " | " << (taken ? "yes" : "no");
        std::cout << " | " << count << " | " << kind.why << " |\n";
    }
}

int writeFindings(const Findings& findings) {
    std::cout << findings.messages[0] << " messages of the library, " << findings.messages[1] << " in other forms, "
              << findings.messages[2] << " damaged; and " << findings.proofs.size()
              << " to show the causes of differences\n";
    for (const Side side : {Side::asn1c, Side::erlang}) writeSide(findings, side);
    writeDamaged(findings);
    for (const auto& [what, messages] : findings.unexplained) {
        std::cerr << "no known reason for " << messages.size() << ": " << what << "\n    " << messages.front() << '\n';
    }
    return findings.unexplained.empty() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    const std::string verb = argc > 2 ? argv[1] : "";
    const int wanted = verb == "messages" ? 3 : verb == "proofs" ? 5 : verb == "compare" ? 7 : 0;
    if (argc != wanted) {
        std::fputs(usage, stderr);
        return 2;
    }
    InitAsnInfinity(); // as a peer does that has infinities on the wire
    try {
        const std::vector<Message> corpus = makeCorpus(static_cast<uint32_t>(std::stoul(argv[2])));
        if (verb == "messages") return writeMessages(corpus);
        const Answers asn1c = answersIn(argv[3]), erlang = answersIn(argv[4]);
        if (verb == "proofs") return writeMessages(compare(corpus, {&asn1c, &erlang}).proofs);
        const Answers asn1cProofs = answersIn(argv[5]), erlangProofs = answersIn(argv[6]);
        return writeFindings(compare(corpus, {&asn1c, &erlang, &asn1cProofs, &erlangProofs}));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "zyn-interop: %s\n", failure.what());
        return 2;
    }
}
