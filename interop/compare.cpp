#include "interop/compare.h"

#include <algorithm>
#include <stdexcept>

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

class Comparison {
public:
    void undamaged(const Message& message, const Answer& answer, Side side) {
        const Decoded own = decoded(message.type, message.octets);
        const Traits traits = read(message.type, message.octets).traits;
        if (own.code != 0 || own.lines != message.lines) unexplained(message, Side::zyn, "reads other values");
        // The others refuse or take a piece of a BIT STRING that lacks its first octet, as all damaged messages.
        if (isFaulty(traits) && !has(traits, Trait::BitsNoCount)) unexplained(message, Side::zyn, "at fault by the letter");
        Counts& counts = findings.of[static_cast<int>(side)][heading(message)];
        if (!answer.taken) {
            count(counts, message, side, Effect::refuses, traits, "refused");
        } else if (answer.lines != message.lines) {
            count(counts, message, side, Effect::readsOther, traits, "read as other values");
        } else {
            ++counts["read as the same values"];
            writing(counts, message, answer, side, traits);
        }
    }

    void damaged(const Message& message, const Answer& asn1c, const Answer& erlang) {
        const Decoded own = decoded(message.type, message.octets, true);
        Traits traits = read(message.type, message.octets).traits;
        if (own.code == 0 && isWrapperLength(message.octets, own.again)) {
            traits.set(static_cast<std::size_t>(Trait::WrapperLength));
        }
        Kind kind = {{}, {own.code == 0, asn1c.taken, erlang.taken}, {}};
        Explanation why = verdicts(message, kind.takenBy, traits);
        const auto values = [&](Side side, bool same) {
            if (!same) explain(why, message, side, Effect::readsOther, traits);
        };
        const Lines& lines = own.code == 0 ? own.lines : asn1c.lines;
        if (own.code == 0 && asn1c.taken) values(Side::asn1c, asn1c.lines == lines);
        if ((own.code == 0 || asn1c.taken) && erlang.taken) values(Side::erlang, erlang.lines == lines);
        kind.name = kindOf(traits, why.first);
        kind.why = why.text;
        ++findings.damaged[kind];
    }

    Findings findings;

private:
    struct Explanation {
        const Reason* first = nullptr;
        std::string text;
    };

    void explain(Explanation& why, const Message& message, Side side, Effect effect, const Traits& traits) {
        const Reason* reason = reasonFor(side, effect, traits);
        if (!reason) return unexplained(message, side, effectText(effect));
        if (!why.first) why.first = reason;
        if (!why.text.empty()) why.text += "; ";
        why.text += std::string(sideNames[static_cast<int>(side)]) + " " + reason->text;
    }

    // Why not all sides take the message, or refuse it: either the one that stands alone has a reason to, or the two
    // others have one each.
    Explanation verdicts(const Message& message, const bool (&takenBy)[3], const Traits& traits) {
        Explanation why;
        const int takers = takenBy[0] + takenBy[1] + takenBy[2];
        if (takers == 0 || takers == 3) return why;
        const bool loneTakes = takers == 1;
        std::vector<Side> lone, others;
        for (const Side side : {Side::zyn, Side::asn1c, Side::erlang}) {
            (takenBy[static_cast<int>(side)] == loneTakes ? lone : others).push_back(side);
        }
        const auto effectOf = [](bool takes) { return takes ? Effect::takes : Effect::refuses; };
        const auto hasReason = [&](Side side) { return reasonFor(side, effectOf(!loneTakes), traits) != nullptr; };
        if (!reasonFor(lone[0], effectOf(loneTakes), traits) && std::ranges::all_of(others, hasReason)) {
            for (const Side side : others) explain(why, message, side, effectOf(!loneTakes), traits);
        } else {
            explain(why, message, lone[0], effectOf(loneTakes), traits);
        }
        return why;
    }

    static std::string heading(const Message& message) { return message.name.substr(0, message.name.find('/')); }

    static const char* effectText(Effect effect) {
        constexpr const char* texts[] = {"refuses", "takes", "reads other values", "writes other values", "writes nothing"};
        return texts[static_cast<int>(effect)];
    }

    void writing(Counts& counts, const Message& message, const Answer& answer, Side side, const Traits& traits) {
        if (answer.octets.empty()) return count(counts, message, side, Effect::writesNothing, traits, "not written");
        const Octets theirs = octetsOf(answer.octets);
        const Decoded back = decoded(message.type, theirs);
        if (back.code != 0 || back.byValue != message.byValue) {
            return count(counts, message, side, Effect::writesOther, traits, "written as other values");
        }
        ++counts["written as the same values"];
        if (message.origin != Origin::Sound) return;
        const std::string form = formOf(message.type, message.octets, theirs);
        if (form.empty()) return unexplained(message, side, "writes other octets");
        ++counts[form];
    }

    void count(Counts& counts, const Message& message, Side side, Effect effect, const Traits& traits,
               const std::string& what) {
        const Reason* reason = reasonFor(side, effect, traits);
        if (!reason) return unexplained(message, side, effectText(effect));
        ++counts[what + ": " + reason->text];
    }

    void unexplained(const Message& message, Side side, const std::string& what) {
        const Traits traits = read(message.type, message.octets).traits;
        std::string text = std::string(sideNames[static_cast<int>(side)]) + " " + what;
        for (std::size_t i = 0; i < traits.size(); ++i) {
            if (traits[i]) text += (text.find(':') == text.npos ? ": " : ", ") + std::string(nameOf(static_cast<Trait>(i)));
        }
        findings.unexplained[text].push_back(message.name + " " + hexOf(message.octets.data(), message.octets.size()));
    }
};

} // namespace

Findings compare(const std::vector<Message>& corpus, const Answers& asn1c, const Answers& erlang) {
    Comparison comparison;
    for (const Message& message : corpus) {
        ++comparison.findings.messages[static_cast<int>(message.origin)];
        const Answer &one = answerTo(message, asn1c), &other = answerTo(message, erlang);
        if (message.origin == Origin::Damaged) {
            comparison.damaged(message, one, other);
        } else {
            comparison.undamaged(message, one, Side::asn1c);
            comparison.undamaged(message, other, Side::erlang);
        }
    }
    return comparison.findings;
}

} // namespace zyn::interop
