// Looks for the worst message with dynamic programming. A message is a walk through the field tables: its elements cost
// octets and ask the arena for memory. All that counts on the way is how much room is left in the arena's current block,
// so for every possible room the best walk that ends with it is kept. Best is the most bytes held, less a price for each
// octet. At the lowest price at which no list is worth any number of elements, the price is the bytes an octet.
#include "tests/support/footprint.h"

#include <algorithm>
#include <array>
#include <limits>

#include "records/members.h"
#include "records/tables.h"
#include "sbuf/state.h"

namespace zyn::test {
namespace {

constexpr std::size_t firstBlock = 8192, laterBlock = 1024; // bytes, as the entry points make the arena
constexpr std::size_t unit = 8;                             // bytes that requests are rounded to
constexpr std::size_t units = laterBlock / unit;
constexpr double impossible = -std::numeric_limits<double>::infinity();

constexpr std::size_t unitsOf(std::size_t size) { return (size + unit - 1) / unit; }
constexpr double blockOf(std::size_t size) {
    return static_cast<double>(std::max(size, laterBlock) + sizeof(NibbleBuf));
}

using Walks = std::array<double, units + 1>; // what the best one is worth, by units of room left

double most(const Walks& walks) { return *std::max_element(walks.begin(), walks.end()); }

Walks either(Walks a, const Walks& b) {
    for (std::size_t room = 0; room < a.size(); ++room) a[room] = std::max(a[room], b[room]);
    return a;
}

class Search {
public:
    explicit Search(double pricePerOctet) : price(pricePerOctet) {}

    double highest = impossible; // worth at any moment
    bool endless = false;        // a list was worth any number of elements

    Walks content(Walks at, Kind kind, const Type& type) {
        switch (kind) {
        case Kind::Int:
        case Kind::Bool: return paid(at, 1);
        case Kind::Real: return at; // 0 takes no octets
        case Kind::Octs: return string(at, 1);
        case Kind::Bits: return string(paid(at, 1), 0);
        case Kind::Sequence: return sequence(at, type);
        case Kind::SetOf: return list(at, type);
        default: return choice(at, type);
        }
    }

    Walks list(const Walks& start, const Type& type) {
        Walks at = start, any = start;
        double before = 0;
        for (int round = 0; round < 2; ++round, before = most(at)) {
            // By the end of a round every room has come back.
            for (std::size_t i = 0; i < at.size(); ++i) {
                at = requested(requested(paid(at, 2), sizeof(AsnListNode) + sizeof(void*)), typeOf(type.element).size);
                at = sequence(at, typeOf(type.element));
                any = either(any, at);
            }
            if (round > 0 && most(at) > before) endless = true;
        }
        return any;
    }

private:
    Walks paid(Walks at, std::size_t octets) const {
        for (double& worth : at) worth -= price * static_cast<double>(octets);
        return at;
    }

    Walks requested(const Walks& at, std::size_t size) {
        Walks after;
        after.fill(impossible);
        const std::size_t needed = unitsOf(size);
        for (std::size_t room = 0; room < at.size(); ++room) {
            const bool fits = room >= needed;
            double& worth = after[fits ? room - needed : size > laterBlock ? 0 : units - needed];
            worth = std::max(worth, at[room] + (fits ? 0 : blockOf(size)));
        }
        highest = std::max(highest, most(after));
        return after;
    }

    // A string of any length, which asks for so many bytes more than it has octets.
    Walks string(const Walks& at, std::size_t extra) {
        Walks after = requested(at, extra); // the empty one
        double fullest = impossible;        // of the walks with too little room
        for (std::size_t needed = 1; needed <= units + 1; ++needed) {
            fullest = std::max(fullest, at[needed - 1]);
            // One byte more than a block: larger ones are worth less, as each octet brings one byte and costs more.
            const std::size_t size = needed <= units ? needed * unit : laterBlock + 1;
            const double cost = price * static_cast<double>(size - extra);
            double& worth = after[needed <= units ? units - needed : 0];
            worth = std::max(worth, fullest + blockOf(size) - cost);
            for (std::size_t room = needed; room < at.size(); ++room) {
                after[room - needed] = std::max(after[room - needed], at[room] - cost);
            }
        }
        highest = std::max(highest, most(after));
        return after;
    }

    Walks sequence(Walks at, const Type& type) {
        for (const Field& row : type.fields) {
            Walks with = row.kind == Kind::Choice ? at : paid(at, tagOctets(row.tag) + 1 + (row.wrapped ? 2 : 0));
            if (row.pointer) with = requested(with, typeOf(row.type).size);
            with = content(with, row.kind, typeOf(row.type));
            at = row.optional ? either(at, with) : with;
        }
        return at;
    }

    Walks choice(const Walks& at, const Type& type) {
        Walks any;
        any.fill(impossible);
        for (const Alternative& row : type.alternatives) {
            Walks with = paid(at, tagOctets(row.tag) + 1);
            if (row.kind != Kind::Int) with = requested(with, typeOf(row.type).size);
            any = either(any, content(with, row.kind, typeOf(row.type)));
        }
        return any;
    }

    double price;
};

bool isEndless(const Type& list, double price) {
    Search search(price);
    search.list({}, list);
    return search.endless;
}

struct Worst {
    TypeId list{};
    double price = 1;
};

Worst findWorst() {
    constexpr double precision = 0.01;
    Worst worst;
    for (const Type& type : types) {
        if (type.shape != Shape::SetOf || !isEndless(type, worst.price)) continue;
        double low = worst.price, high = 2 * low;
        for (; isEndless(type, high); high *= 2) low = high;
        while (high - low > precision) {
            const double middle = (low + high) / 2;
            (isEndless(type, middle) ? low : high) = middle;
        }
        worst = {type.id, high};
    }
    return worst;
}

const Worst& worst() {
    static const Worst found = findWorst();
    return found;
}

} // namespace

std::size_t heldByArena(const NibbleMem* arena) {
    std::size_t held = sizeof(NibbleMem);
    for (const NibbleBuf* block = arena->firstNibbleBuf; block; block = block->next) {
        held += sizeof(NibbleBuf) + std::max<std::size_t>(1, static_cast<std::size_t>(block->end - block->start));
    }
    return held;
}

std::size_t heldByStringTables() {
    const StringTables& tables = currentStringTables();
    return tables.pieceCapacity * sizeof(StrStkElmt) + tables.openCapacity * sizeof(OpenString);
}

ArenaBound arenaBound() {
    static const ArenaBound bound = [] {
        Search search(worst().price);
        for (const Type& type : types) {
            // Any room to begin with: more than a real decode can choose from.
            if (type.message) search.content({}, type.shape == Shape::Choice ? Kind::Choice : Kind::Sequence, type);
        }
        return ArenaBound{worst().price, search.highest + sizeof(NibbleMem) + sizeof(NibbleBuf) + firstBlock};
    }();
    return bound;
}

TypeId worstList() { return worst().list; }

} // namespace zyn::test
