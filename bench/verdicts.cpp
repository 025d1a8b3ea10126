// The goals, each with what was measured.
#include <algorithm>

#include "bench/table.h"

namespace zyn::bench {
namespace {

using Optional = std::optional<double>;

Optional quotient(Optional a, Optional b) { return a && b ? Optional(*a / *b) : std::nullopt; }

const char* answer(Optional measured, bool reached) { return !measured ? "not measured" : reached ? "yes" : "NO"; }

void atMost(const char* what, Optional measured, double limit) {
    std::printf("  %-66s %8.2f   at most %-6.4g %s\n", what, measured.value_or(0), limit,
                answer(measured, measured.value_or(0) <= limit));
}

void atLeast(const char* what, Optional measured, double limit) {
    std::printf("  %-66s %8.2f  at least %-6.4g %s\n", what, measured.value_or(0), limit,
                answer(measured, measured.value_or(0) >= limit));
}

Optional timesFaster(const Figures& figures, const char* operation, const char* peer) {
    return quotient(figures.mean(operation, peer, sevenNames), figures.mean(operation, "zyn", sevenNames));
}

// The quotients of all benchmarks of an operation to what they are compared with.
template <typename Base> std::vector<double> quotients(const Figures& figures, const char* operation, Base base) {
    std::vector<double> result;
    for (const std::string& what : figures.whats(operation, "zyn")) {
        const Optional one = quotient(figures.ns(operation, "zyn", what), base(what));
        if (one) result.push_back(*one);
    }
    return result;
}

Optional worst(const std::vector<double>& values) {
    return values.empty() ? std::nullopt : Optional(*std::max_element(values.begin(), values.end()));
}

void printMean(const char* what, const std::vector<double>& values) {
    if (!values.empty()) std::printf("  %-66s %8.2f\n", what, geometricMean(values));
}

} // namespace

void printVerdicts(const Figures& figures) {
    const std::vector<std::string> withFloor = {"order", "book"};
    std::printf("\n1. Against the floor, order and book, geometric mean\n");
    for (const char* operation : {"decode", "encode"}) {
        atMost(operation,
               quotient(figures.mean(operation, "zyn", withFloor), figures.mean(operation, "floor", withFloor)), 1.15);
    }
    std::printf("2. Against the peers, geometric mean of the seven: how many times as fast\n");
    atLeast("decode, protobuf on its arena", timesFaster(figures, "decode", "protobuf"), 4);
    atLeast("decode, FlatBuffers verified and read in place", timesFaster(figures, "decode", "flatbuffers"), 1.8);
    atLeast("decode, asn1c", timesFaster(figures, "decode", "asn1c"), 11);
    atLeast("encode, protobuf", timesFaster(figures, "encode", "protobuf"), 2);
    atLeast("encode, FlatBuffers packed", timesFaster(figures, "encode", "flatbuffers"), 4);
    atLeast("encode, asn1c", timesFaster(figures, "encode", "asn1c"), 25);

    std::printf("3. Mixed traffic in random order, against each message alone and hot\n");
    atMost("decode", quotient(figures.ns("mixed-decode", "zyn", "random"), figures.ns("mixed-decode", "zyn", "alone")),
           1.8);

    std::printf("5. Print to a memory stream, MB of text a second\n");
    double octets = 0, time = 0;
    for (const std::string& message : sevenNames) {
        const auto figure = figures.find("print", "zyn", message);
        octets += figure ? figure->octets : 0;
        time += figure ? figure->median : 0;
    }
    atLeast("the seven together", time > 0 ? Optional(octets / time * 1000) : std::nullopt, 200);

    std::printf("6. Refused messages and other valid forms, a handler installed that does nothing\n");
    const auto direct = [&](const std::string& what) {
        return figures.ns("decode", "zyn", what.substr(0, what.find('/')));
    };
    const auto peer = [&](const std::string& what) { return figures.ns("form", "asn1c", what); };
    const std::vector<double> refused = quotients(figures, "refuse", direct);
    const std::vector<double> forms = quotients(figures, "form", direct);
    const std::vector<double> againstPeer = quotients(figures, "form", peer);
    atMost("refused, the worst: times its direct decode", worst(refused), 8);
    printMean("refused, geometric mean", refused);
    atMost("other forms, the worst: times its direct decode", worst(forms), 8);
    printMean("other forms, geometric mean", forms);
    atMost("other forms, the worst: parts of what asn1c takes for the same octets", worst(againstPeer), 0.5);
    printMean("other forms against asn1c, geometric mean", againstPeer);
}

} // namespace zyn::bench
