#include "interop/compare.h"

#include <algorithm>
#include <stdexcept>

#include "interop/proof.h"
#include "interop/text.h"

namespace zyn::interop {
namespace {

using test::Octets;

Octets octetsOf(const std::string& hex) {
    Octets octets;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        octets.push_back(static_cast<uint8_t>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    }
    return octets;
}

const Answer& answerTo(const Message& message, const Answers& answers) {
    const auto found = answers.find(message.name);
    if (found == answers.end()) throw std::runtime_error("no answer to " + message.name);
    return found->second;
}

// In what two encodings of a value differ; empty: in something else as well.
std::string formOf(TypeId type, const Octets& ours, const Octets& theirs) {
    if (ours == theirs) return "the same octets";
    const auto same = [&](Normal normal) { return read(type, ours, normal).text == read(type, theirs, normal).text; };
    if (same({.reals = true})) return "other octets: REAL";
    if (same({.lists = true})) return "other octets: order of SET OF";
    if (same({.bits = true})) return "other octets: unused bits of BIT STRING";
    return same({true, true, true}) ? "other octets: several of these" : "";
}

// Whether b is a but for the lengths of elements with an EXPLICIT tag, [1] and [2] of one octet and 417 of three.
bool isWrapperLength(const Octets& a, const Octets& b) {
    if (a == b || a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i] == b[i]) continue;
        const bool shortTag = i > 0 && (a[i - 1] == 0xA1 || a[i - 1] == 0xA2);
        const bool longTag = i > 2 && a[i - 3] == 0xBF && a[i - 2] == 0x83 && a[i - 1] == 0x21;
        if (!shortTag && !longTag) return false;
    }
    return true;
}

// What the sides make of one message; what they decode is compared with what was encoded, or with the library's.
struct Outcome {
    bool takes[3] = {};
    bool reads[3] = {true, true, true};  // the same values, if it takes the message
    bool writes[3] = {true, true, true}; // them as the same values, if it reads them and the message is not damaged

    bool operator==(const Outcome&) const = default;
    int takers() const { return takes[0] + takes[1] + takes[2]; }
};
constexpr Outcome agreement = {.takes = {true, true, true}};

Outcome outcomeOf(const Message& message, const Decoded& own, const Answer& asn1c, const Answer& erlang) {
    Outcome outcome = {.takes = {own.code == 0, asn1c.taken, erlang.taken}};
    const bool isDamaged = message.origin == Origin::Damaged;
    const Lines& lines = !isDamaged ? message.lines : own.code == 0 ? own.lines : asn1c.lines;
    const bool isComparable = !isDamaged || own.code == 0 || asn1c.taken;
    const Lines* read[] = {&own.lines, &asn1c.lines, &erlang.lines};
    const Answer* answers[] = {nullptr, &asn1c, &erlang};
    for (const Side side : sides) {
        const auto i = static_cast<std::size_t>(side);
        outcome.reads[i] = !outcome.takes[i] || !isComparable || *read[i] == lines;
        if (isDamaged || side == Side::zyn || !outcome.takes[i] || !outcome.reads[i]) continue;
        const Decoded back = decoded(message.type, octetsOf(answers[i]->octets));
        outcome.writes[i] = back.code == 0 && back.byValue == message.byValue;
    }
    return outcome;
}

// What a side does that the others do not, and what of the message may be the cause.
struct Difference {
    Side side;
    Effect effect;
    Traits candidates;
    const Reason* reason = nullptr; // once it is shown
};
using Differences = std::vector<Difference>;

// Where not all sides take the message, either the one that stands alone has a reason to, or the two others have one each.
Differences differencesOf(const Outcome& outcome, const Traits& traits) {
    Differences result;
    const auto mayBe = [&](Side side, Effect effect) { return causesOf(side, effect) & traits; };
    const auto add = [&](Side side, Effect effect) { result.push_back({side, effect, mayBe(side, effect)}); };
    const int takers = outcome.takers();
    if (takers == 1 || takers == 2) {
        const auto effectOf = [](bool takes) { return takes ? Effect::takes : Effect::refuses; };
        std::vector<Side> lone, others;
        for (const Side side : sides) {
            (outcome.takes[static_cast<int>(side)] == (takers == 1) ? lone : others).push_back(side);
        }
        const auto hasReason = [&](Side side) { return mayBe(side, effectOf(takers == 2)).any(); };
        if (mayBe(lone[0], effectOf(takers == 1)).none() && std::ranges::all_of(others, hasReason)) {
            for (const Side side : others) add(side, effectOf(takers == 2));
        } else {
            add(lone[0], effectOf(takers == 1));
        }
    }
    for (const Side side : sides) {
        if (!outcome.reads[static_cast<int>(side)]) add(side, Effect::readsOther);
        if (!outcome.writes[static_cast<int>(side)]) add(side, Effect::writesOther);
    }
    return result;
}

// Whether a side does so in that outcome, and another one does not. Whether it refuses a value that it goes wrong with or
// reads another one may depend on the value.
bool shows(const Outcome& outcome, Side side, Effect effect) {
    const auto i = static_cast<std::size_t>(side);
    if (effect == Effect::writesOther) return !outcome.writes[i];
    const bool standsOut = outcome.takers() % 3 != 0;
    if (effect == Effect::takes) return outcome.takes[i] && standsOut;
    return outcome.takes[i] ? !outcome.reads[i] : standsOut;
}

class Comparison {
public:
    explicit Comparison(const Sources& from) : sources(from) {}

    void compare(const Message& message) {
        ++findings.messages[static_cast<int>(message.origin)];
        const Answer &asn1c = answerTo(message, *sources.asn1c), &erlang = answerTo(message, *sources.erlang);
        const bool isDamaged = message.origin == Origin::Damaged;
        const Decoded own = decoded(message.type, message.octets, isDamaged);
        const Outcome outcome = outcomeOf(message, own, asn1c, erlang);
        const Traits traits = traitsOf(message, own);
        Differences differences = differencesOf(outcome, traits);
        if (!differences.empty()) explain(message, traits, differences);
        if (isDamaged) {
            if (outcome.takers() == 0 && !isFaulty(traits))
                unexplained(message, traits, "all", "refuse a sound message");
            countDamaged(outcome, differences, traits);
        } else {
            // The others refuse or take a piece of a BIT STRING that lacks its first octet, as all damaged messages.
            if (isFaulty(traits) && !has(traits, Trait::BitsNoCount)) unexplained(message, traits, "zyn", "at fault");
            countUndamaged(message, outcome, differences, asn1c, Side::asn1c);
            countUndamaged(message, outcome, differences, erlang, Side::erlang);
        }
    }

    Findings findings;

private:
    static Traits traitsOf(const Message& message, const Decoded& own) {
        Traits traits = read(message.type, message.octets).traits;
        if (own.code == 0 && isWrapperLength(message.octets, own.again)) {
            traits.set(static_cast<std::size_t>(Trait::WrapperLength));
        }
        return traits;
    }

    // Finds the reason of each difference by other messages: without all that is known to make a difference the sides
    // must agree, and with the cause alone the difference must still be there.
    void explain(const Message& message, const Traits& traits, Differences& differences) {
        const Traits known = traits & allCauses();
        const std::optional<Outcome> without = outcomeWithout(known, "without/", message);
        if (without && *without != agreement)
            unexplained(message, traits, "the sides", "differ without any cause as well");
        for (std::size_t i = 0; i < known.size(); ++i) {
            const auto isCandidate = [&](const Difference& each) { return !each.reason && each.candidates[i]; };
            if (!known[i] || std::ranges::none_of(differences, isCandidate)) continue;
            Traits others = known;
            others.reset(i);
            const auto alone = outcomeWithout(others, "alone-" + std::to_string(i) + "/", message);
            for (Difference& each : differences) {
                if (!isCandidate(each) || !alone || !shows(*alone, each.side, each.effect)) continue;
                each.reason = reasonFor(each.side, each.effect, static_cast<Trait>(i));
            }
        }
        for (const Difference& each : differences) {
            if (!each.reason && sources.asn1cProofs)
                unexplained(message, traits, nameOf(each.side), effectText(each.effect));
        }
    }

    // Nothing before the peers have been asked.
    std::optional<Outcome> outcomeWithout(const Traits& causes, const std::string& prefix, const Message& message) {
        Message other = message;
        other.name = prefix + message.name;
        other.octets = without(causes, message.type, message.octets);
        const Decoded own = decoded(message.type, other.octets);
        other.lines = own.lines;
        other.byValue = own.byValue;
        findings.proofs.push_back(other);
        if (!sources.asn1cProofs) return std::nullopt;
        return outcomeOf(other, own, answerTo(other, *sources.asn1cProofs), answerTo(other, *sources.erlangProofs));
    }

    void countDamaged(const Outcome& outcome, const Differences& differences, const Traits& traits) {
        Kind kind = {{}, {outcome.takes[0], outcome.takes[1], outcome.takes[2]}, {}};
        kind.name = kindOf(traits, differences.empty() ? nullptr : differences[0].reason);
        for (const Difference& each : differences) {
            if (!each.reason) continue;
            if (!kind.why.empty()) kind.why += "; ";
            kind.why += std::string(nameOf(each.side)) + " " + each.reason->text;
        }
        ++findings.damaged[kind];
    }

    void countUndamaged(const Message& message, const Outcome& outcome, const Differences& differences,
                        const Answer& answer, Side side) {
        const auto i = static_cast<std::size_t>(side);
        Counts& counts = findings.of[i][message.name.substr(0, message.name.find('/'))];
        for (const Difference& each : differences) {
            if (each.side != side || !each.reason) continue;
            ++counts[std::string(effectText(each.effect)) + ": " + each.reason->text];
        }
        if (!outcome.takes[i] || !outcome.reads[i]) return;
        ++counts["reads the same values"];
        if (!outcome.writes[i]) return;
        ++counts["writes the same values"];
        if (message.origin != Origin::Sound) return;
        const std::string form = formOf(message.type, message.octets, octetsOf(answer.octets));
        if (form.empty()) unexplained(message, {}, nameOf(side), "writes other octets");
        else ++counts[form];
    }

    void unexplained(const Message& message, const Traits& traits, const char* who, const char* what) {
        std::string text = std::string(who) + " " + what, separator = ": ";
        for (std::size_t i = 0; i < traits.size(); ++i) {
            if (!traits[i]) continue;
            text += separator + nameOf(static_cast<Trait>(i));
            separator = ", ";
        }
        findings.unexplained[text].push_back(message.name + " " + hexOf(message.octets.data(), message.octets.size()));
    }

    const Sources& sources;
};

} // namespace

Findings compare(const std::vector<Message>& corpus, const Sources& sources) {
    Comparison comparison(sources);
    for (const Message& message : corpus) comparison.compare(message);
    return std::move(comparison.findings);
}

} // namespace zyn::interop
