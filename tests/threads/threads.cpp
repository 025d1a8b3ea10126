// Threads with contexts of their own, at the same time: all that each of them sees is what a single one sees. Under
// ThreadSanitizer (./do test tsan) also: nothing that one writes is touched by another.
#include <gtest/gtest.h>

#include <barrier>
#include <thread>

#include "api/way.h"
#include "tests/support/printed.h"
#include "tests/support/two-ways.h"

namespace zyn::test {
namespace {

const std::string user = "TRADER01    ";
thread_local std::string reported;
void report(char* text, int) { reported += text; }

// What is sent, and in which forms.
struct Case {
    const Channel* channel;
    const Alternative* row;
    uint32_t seed;
};

std::vector<Case> allCases(uint32_t seeds) {
    std::vector<Case> cases;
    for (const Channel& channel : channels) {
        for (const Alternative& row : typeOf(channel.choice).alternatives) {
            for (uint32_t seed = 0; seed < seeds; ++seed) cases.push_back({&channel, &row, seed});
        }
    }
    return cases;
}

void decodeAndTell(const Channel& channel, const Octets& octets, std::string& told) {
    alignas(8) uint8_t message[64] = {};
    reported.clear();
    const int32_t code = channel.decode(octets.data(), static_cast<uint32_t>(octets.size()), message);
    told += "code " + std::to_string(code) + " " + reported + "\n";
    if (code == 0) told += printed(channel.message, message) + "\n";
}

// Sends a record and receives it in several forms, one of them damaged, and tells all that came of it.
std::string conversation(const Case& c) {
    const Channel& channel = *c.channel;
    std::string told;
    Sampler sampler(c.seed * 1000 + c.row->number, {60, 100, 3});
    ChoiceRecord* choice = sampler.make(channel.choice, *c.row);
    const Octets canonical = messageOf(channel, user, choice);
    std::vector<uint8_t> block(canonical.size() + 256);
    for (const bool direct : {true, false}) {
        directAllowed = direct;
        const uint32_t length = channel.encode(user.c_str(), choice->slot, choice->choiceId, block.data(),
                                               static_cast<uint32_t>(block.size()));
        told +=
            std::equal(canonical.begin(), canonical.end(), block.data(), block.data() + length) ? "same\n" : "other\n";
        for (const Forms& forms : {Forms{}, Forms{30, 30, 60, 50, 0}, Forms{20, 20, 20, 20, 20}}) {
            decodeAndTell(channel, messageOf(channel, user, choice, Writer(forms, c.seed)), told);
        }
    }
    directAllowed = true;
    told += printed(channel.choice, choice);
    return told;
}

TEST(Threads, EachSeesWhatASingleOneSees) {
    const std::vector<Case> cases = allCases(2);
    constexpr unsigned short indents[] = {2, 5};
    std::vector<std::string> alone[2];
    Asn1ErrorHandler previous = Asn1InstallErrorHandler(report);
    for (int i = 0; i < 2; ++i) {
        stdIndentG = indents[i];
        for (const Case& c : cases) alone[i].push_back(conversation(c));
    }
    stdIndentG = 4;
    Asn1InstallErrorHandler(previous);

    std::vector<std::string> together[2];
    std::barrier start(2);
    const auto work = [&](int i) {
        ZynContext* context = ZynContextNew();
        ZynContextSetIndent(context, indents[i]);
        ZynContextUse(context);
        Asn1InstallErrorHandler(report);
        start.arrive_and_wait();
        for (const Case& c : cases) together[i].push_back(conversation(c));
        ZynContextUse(nullptr);
        ZynContextFree(context);
    };
    std::thread first(work, 0), second(work, 1);
    first.join();
    second.join();
    std::size_t failed = 0;
    for (std::size_t n = 0; n < cases.size(); ++n) {
        EXPECT_EQ(alone[0][n].starts_with("same"), true) << cases[n].row->name << " is not even sent well alone";
        failed += alone[0][n].find("\ncode -") != std::string::npos;
        for (int i = 0; i < 2; ++i) {
            ASSERT_EQ(together[i][n], alone[i][n])
                << "thread " << i << ", " << cases[n].channel->name << " " << cases[n].row->name;
        }
    }
    EXPECT_GT(failed, cases.size() / 4) << "damaged messages are hardly any";
}

// A third thread works on the process-wide state meanwhile, which is its own as long as no other has it bound.
TEST(Threads, ComeAndGo) {
    const std::vector<Case> cases = allCases(1);
    std::barrier start(3);
    std::string problems[3];
    const auto work = [&](std::size_t i, std::size_t most) {
        start.arrive_and_wait();
        for (std::size_t n = i; n < cases.size(); n += most) {
            ZynContext* context = i > 0 ? ZynContextNew() : nullptr;
            if (ZynContextUse(context)) problems[i] = "another context than that of this thread was bound";
            Asn1InstallErrorHandler(report);
            if (!conversation(cases[n]).starts_with("same")) problems[i] = cases[n].row->name;
            if (ZynContextUse(nullptr) != context) problems[i] = "the context was changed";
            ZynContextFree(context);
        }
    };
    std::thread workers[] = {std::thread(work, 0, 2), std::thread(work, 1, 3), std::thread(work, 2, 3)};
    for (std::thread& worker : workers) worker.join();
    for (const std::string& problem : problems) EXPECT_EQ(problem, "");
    Asn1InstallErrorHandler(nullptr);
}

// Each round has threads of its own, so that what a thread left behind is not in the next one's way.
TEST(Threads, ContextsMoveBetweenThreads) {
    const std::vector<Case> cases = allCases(1);
    ZynContext* context = ZynContextNew();
    ZynContextUse(context);
    Asn1InstallErrorHandler(report);
    ZynContextUse(nullptr);
    for (std::size_t n = 0; n < cases.size(); n += 40) {
        std::string alone, moved;
        ZynContext* other = ZynContextNew();
        ZynContextUse(other);
        Asn1InstallErrorHandler(report);
        alone = conversation(cases[n]);
        ZynContextUse(nullptr);
        ZynContextFree(other);
        std::thread([&] {
            ZynContextUse(context);
            moved = conversation(cases[n]);
        }).join();
        EXPECT_EQ(moved, alone);
    }
    ZynContextFree(context);
}

} // namespace
} // namespace zyn::test
