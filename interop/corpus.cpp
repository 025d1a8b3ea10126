#include "interop/corpus.h"

#include <functional>
#include <set>

#include "tests/support/two-ways.h"

namespace zyn::interop {
namespace {

using test::below;
using test::Forms;
using test::Octets;
using test::Sampler;
using test::Taste;

struct Form {
    const char* name;
    Forms forms;
};

constexpr Form forms[] = {
    {"indefinite", {.indefinite = 50}},
    {"long-length", {.longLength = 50}},
    {"pieces", {.cutStrings = 50}},
    {"loose-values", {.looseValues = 50}},
};

// A REAL that is 0 is no value to one of the sides, so most messages have none.
Taste tasteOf(uint32_t number) {
    constexpr uint32_t presence[] = {50, 100, 0};
    return {
        .presentPercent = presence[number % 3], .longestText = number % 2 ? 300u : 20u, .zeroReals = number % 8 == 7};
}

class Maker {
public:
    explicit Maker(uint32_t each) : count(each) {}

    std::vector<Message> run() {
        for (const test::Channel& channel : test::channels) {
            reach(channel.message);
            for (const Alternative& row : typeOf(channel.choice).alternatives) {
                for (uint32_t i = 0; i < count; ++i) addMessage(channel, row, i);
            }
        }
        for (const Type& type : types) {
            if (type.shape != Shape::Sequence || reached.contains(type.id)) continue;
            for (uint32_t i = 0; i < count; ++i) {
                Sampler sampler(i, tasteOf(i)), small(i, tasteOfDamaged(i));
                add(type.id, "alone", i, sampler.make(type.id), small.make(type.id));
            }
        }
        return std::move(corpus);
    }

private:
    static Taste tasteOfDamaged(uint32_t number) {
        Taste taste = tasteOf(number);
        taste.longestText = 12;
        taste.longestList = 2;
        taste.zeroReals = false;
        return taste;
    }

    void reach(TypeId id) {
        if (!reached.insert(id).second) return;
        const Type& type = typeOf(id);
        for (const Field& field : type.fields) reach(field.type);
        for (const Alternative& row : type.alternatives) reach(row.type);
        if (type.shape == Shape::SetOf) reach(type.element);
    }

    void addMessage(const test::Channel& channel, const Alternative& row, uint32_t number) {
        const uint32_t seed = number * 1000 + row.number;
        Sampler sampler(seed, tasteOf(number)), small(seed, tasteOfDamaged(number));
        const std::string user = std::string("TRADER012345").substr(0, 1 + seed % 12);
        add(channel.message, row.name, number, message(channel, user, sampler.make(channel.choice, row)).get(),
            message(channel, user, small.make(channel.choice, row)).get());
    }

    // The record of a whole message, over the tree that it holds.
    struct Whole {
        struct {
            AsnOcts userId;
            const void* choice;
        } request;
        const void* reply;
        const void* get() const { return reply ? reply : &request; }
    };

    static Whole message(const test::Channel& channel, const std::string& user, const ChoiceRecord* choice) {
        if (!channel.isRequest()) return {{}, choice};
        auto* octets = reinterpret_cast<uint8_t*>(const_cast<char*>(user.data()));
        return {{{static_cast<uint32_t>(user.size()), octets}, choice}, nullptr};
    }

    void add(TypeId type, const char* alternative, uint32_t number, const void* value, const void* small) {
        const std::string place =
            std::string("/") + typeOf(type).name + "/" + alternative + "/" + std::to_string(number);
        const Lines lines = valuesOf(type, value), byValue = valuesOf(type, value, ListOrder::byValue);
        corpus.push_back({"sound" + place, Origin::Sound, type, encoded(type, value), lines, byValue});

        const Form& form = forms[number % std::size(forms)];
        const Octets octets = test::Writer(form.forms, number).message(type, value);
        corpus.push_back({form.name + place, Origin::Form, type, octets, lines, byValue});

        // A message's damage does not depend on how many others there are.
        test::Random random(static_cast<uint32_t>(std::hash<std::string>()(place)));
        Octets damaged =
            number % 4 == 3 ? test::Writer({.indefinite = 50}, number).message(type, small) : encoded(type, small);
        const char* change = damage(damaged, random);
        corpus.push_back({change + place, Origin::Damaged, type, damaged, {}, {}});
    }

    const uint32_t count;
    std::set<TypeId> reached;
    std::vector<Message> corpus;
};

} // namespace

std::vector<Message> makeCorpus(uint32_t count) { return Maker(count).run(); }

} // namespace zyn::interop
