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
    "       zyn-interop compare COUNT ASN1C-ANSWERS ERLANG-ANSWERS\n"
    "\n"
    "messages writes COUNT messages of each alternative as the library encodes them, as many in other forms of BER and\n"
    "as many damaged ones; a line each, \"name module type octets\". compare reads what the peers answered, writes\n"
    "tables, and ends with 1 if there is a difference that it knows no reason for.\n";

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
    const char* name = sideNames[static_cast<int>(side)];
    std::cout << "\n## " << name << "\n\n| messages | what " << name << " makes of them | how many |\n|---|---|---:|\n";
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
    std::cout << findings.messages[0] << " messages of the library, " << findings.messages[1]
              << " in other forms, " << findings.messages[2] << " damaged\n";
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
    if (!(verb == "messages" && argc == 3) && !(verb == "compare" && argc == 5)) {
        std::fputs(usage, stderr);
        return 2;
    }
    InitAsnInfinity(); // as a peer does that has infinities on the wire
    try {
        const std::vector<Message> corpus = makeCorpus(static_cast<uint32_t>(std::stoul(argv[2])));
        if (verb == "messages") return writeMessages(corpus);
        return writeFindings(compare(corpus, answersIn(argv[3]), answersIn(argv[4])));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "zyn-interop: %s\n", failure.what());
        return 2;
    }
}
