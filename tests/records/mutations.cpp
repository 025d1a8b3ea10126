// Every record with elements left out, doubled, swapped and put in where they do not belong. What must come
// of it the model tells, with the codes of the list: success where the tags happen to fit, else the failure
// of the first place where they do not.
#include <gtest/gtest.h>

#include "tests/records/model.h"
#include "tests/support/decoded.h"
#include "tests/support/few.h"
#include "tests/support/hex.h"

namespace zyn::test {
namespace {

constexpr uint32_t mostProblems = 10; // told of one type

class Mutations : public testing::Test {
protected:
    // What stands behind the content: the end of a record of indefinite length, sound, missing or damaged,
    // and further octets of the message.
    void expect(const Type& type, const Octets& content, const char* what, const Octets& behind,
                const Octets* closing = nullptr) {
        Octets octets = content;
        if (closing) append(octets, *closing);
        append(octets, behind);
        expect(type, 0, closing ? indefinite : static_cast<uint32_t>(content.size()), octets, what);
    }

    void expect(const Type& type, AsnTag tag, uint32_t length, const Octets& octets, const char* what) {
        const Outcome expected = modelOf(type.id, tag, length, octets);
        const Decoded got = decodedContent(type.id, tag, length, octets);
        ++(expected.code == 0 ? accepted : refused);
        std::string problem;
        if (got.code != expected.code)
            problem = "code " + std::to_string(got.code) + " for " + std::to_string(expected.code);
        else if (got.messages != expected.message) problem = "message " + got.messages;
        else if (expected.code == 0 && got.read != expected.read) problem = "count " + std::to_string(got.read);
        else if (expected.code == 0 && encodedContent(type.id, got.value) != expected.canonical)
            problem = "other values";
        if (problem.empty() || ++problems > mostProblems) return;
        ADD_FAILURE() << type.name << ", " << what << ", length " << static_cast<int32_t>(length) << ": " << problem
                      << "\n"
                      << toHex(octets);
    }

    // Under a definite and an indefinite length, at the end of the data and with octets behind.
    void expectAll(const Type& type, const Octets& content, const Octets& behind, const char* what) {
        static const Octets sound{0, 0};
        for (const Octets* closing : {static_cast<const Octets*>(nullptr), &sound}) {
            expect(type, content, what, {}, closing);
            expect(type, content, what, behind, closing);
        }
    }

    void expectClosings(const Type& type, const Octets& content, const Octets& behind) {
        for (const Octets& closing : {Octets{}, Octets{0}, Octets{0, 1}, Octets{1, 0}}) {
            expect(type, content, "damaged end", {}, &closing);
            expect(type, content, "damaged end", behind, &closing);
        }
    }

    // Definite lengths that end at another element, or inside one.
    void expectWrongLengths(const Type& type, const Pieces& pieces, const Octets& behind) {
        const Octets alone = joined(pieces);
        Octets all = alone;
        append(all, behind);
        std::size_t length = 0;
        for (const Octets& piece : pieces) {
            for (const std::size_t wrong : {length, length + 1, length + piece.size() + 1}) {
                expect(type, 0, static_cast<uint32_t>(wrong), alone, "wrong length");
                expect(type, 0, static_cast<uint32_t>(wrong), all, "wrong length");
            }
            length += piece.size();
        }
    }

    void mutate(const Type& type, const Pieces& pieces, const Pieces& strays) {
        Octets behind = joined(pieces);
        behind.insert(behind.end(), 2, 0);
        expectAll(type, joined(pieces), behind, "whole");
        expectClosings(type, joined(pieces), behind);
        expectWrongLengths(type, pieces, behind);
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            Pieces mutant = pieces;
            mutant.erase(mutant.begin() + static_cast<std::ptrdiff_t>(i));
            expectAll(type, joined(mutant), behind, "left out");
            expectClosings(type, joined(mutant), behind);
            mutant = pieces;
            mutant.insert(mutant.begin() + static_cast<std::ptrdiff_t>(i), pieces[i]);
            expectAll(type, joined(mutant), behind, "doubled");
            mutant = pieces;
            if (i > 0) std::swap(mutant[i - 1], mutant[i]);
            expectAll(type, joined(mutant), behind, "swapped");
        }
        for (std::size_t i = 0; i <= pieces.size(); ++i) {
            Pieces mutant = pieces;
            mutant.insert(mutant.begin() + static_cast<std::ptrdiff_t>(i), Octets());
            const auto tryStray = [&](const Octets& stray) {
                mutant[i] = stray;
                expectAll(type, joined(mutant), behind, "stray");
            };
            for (const Octets& stray :
                 {Octets{0x00, 0x00}, Octets{0x00, 0x01, 0x05}, Octets{0x05, 0x00}, Octets{0x30, 0x00},
                  Octets{0xBF, 0x7F, 0x00}, Octets{0x24, 0x03, 0x04, 0x01, 0x41}}) {
                tryStray(stray);
            }
            for (std::size_t near = i > 1 ? i - 2 : 0; near < i + 2 && near < strays.size(); ++near)
                tryStray(strays[near]);
        }
    }

    uint64_t accepted = 0, refused = 0;
    uint32_t problems = 0;
};

TEST_F(Mutations, EverySequenceAndList) {
    for (const Type& type : types) {
        if (type.shape != Shape::Sequence && type.shape != Shape::SetOf) continue;
        problems = 0;
        const auto seed = static_cast<uint32_t>(type.id);
        if (seed % onePatternIn() != 0) continue;
        Sampler full(seed, {100, 12, 3}), some(seed, {50, 12, 3}), none(seed, {0, 12, 3});
        const Pieces all = Writer().pieces(type, full.make(type.id));
        mutate(type, all, all);
        mutate(type, Writer().pieces(type, some.make(type.id)), all);
        mutate(type, Writer().pieces(type, none.make(type.id)), all);
    }
    // Both come about in numbers, so that neither side of the model stands idle.
    EXPECT_GT(accepted, 10000u / onePatternIn());
    EXPECT_GT(refused, 100000u / onePatternIn());
}

TEST_F(Mutations, EveryChoice) {
    for (const Type& type : types) {
        if (type.shape != Shape::Choice) continue;
        problems = 0;
        for (const Alternative& row : type.alternatives) {
            Sampler sampler(row.number, {50, 12, 2});
            Octets content = Writer().content(type.id, sampler.make(type.id, row));
            const Head head = takeHead(type, content);
            expect(type, head.tag, head.length, content, row.name);
            const AsnTag wrong[] = {head.tag ^ 0x40000000,                                           // another class
                                    head.tag ^ (tagOctets(head.tag) == 1 ? 0x10000000 : 0x00000100), // another number
                                    0xBF000000 | static_cast<AsnTag>(row.number & 0x7F)
                                                     << 16, // the high form, or too short
                                    0x30000000,
                                    0x04000000,
                                    0x00000000};
            for (const AsnTag tag : wrong) {
                const Outcome foreign = modelOf(type.id, tag, 0, {});
                if (foreign.message.starts_with("ERROR - unexpected tag"))
                    expect(type, tag, head.length, content, row.name);
            }
            // The other form of the tag: only strings have it, cut into pieces.
            if (row.kind == Kind::Octs) content = Writer().element(0x04000000, content);
            expect(type, head.tag ^ constructedBit, static_cast<uint32_t>(content.size()), content, row.name);
            // The end of an indefinite alternative or wrapper.
            if (!isConstructed(row.kind)) continue;
            content.insert(content.end(), 2, 0);
            expect(type, head.tag, indefinite, content, row.name);
            content.pop_back();
            expect(type, head.tag, indefinite, content, row.name);
        }
    }
    EXPECT_GT(accepted, 400u);
    EXPECT_GT(refused, 1000u);
}

} // namespace
} // namespace zyn::test
