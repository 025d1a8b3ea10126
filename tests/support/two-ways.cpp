#include "tests/support/two-ways.h"

#include <algorithm>
#include <stdexcept>

#include "api/way.h"
#include "tests/support/arena.h"
#include "tests/support/footprint.h"
#include "tests/support/walk.h"

namespace zyn::test {
namespace {

constexpr std::size_t guardOctets = 64;
constexpr uint8_t guard = 0xA5;

std::string* reportedTo = nullptr;
void report(char* text, int) { *reportedTo += text; }

bool allZero(const uint8_t* from, const uint8_t* to) {
    return from == to || (*from == 0 && std::memcmp(from, from + 1, static_cast<std::size_t>(to - from) - 1) == 0);
}

// Where in an arena a word points to: block and offset. Block -1: nowhere.
std::pair<int, std::ptrdiff_t> placeOf(const NibbleMem* arena, uint64_t word) {
    int index = 0;
    for (const NibbleBuf* block = arena->firstNibbleBuf; block; block = block->next, ++index) {
        const auto start = reinterpret_cast<uintptr_t>(block->start), end = reinterpret_cast<uintptr_t>(block->end);
        if (word >= start && word <= end) return {index, static_cast<std::ptrdiff_t>(word - start)};
    }
    return {-1, 0};
}

using Lists = std::vector<AsnList*>;

// The lists that an encoder walks.
Lists listsIn(TypeId id, const ChoiceRecord* choice) {
    Lists lists;
    forEachValue(id, const_cast<ChoiceRecord*>(choice), [&](TypeId type, void* value) {
        if (typeOf(type).shape == Shape::SetOf) lists.push_back(static_cast<AsnList*>(value));
    });
    return lists;
}

const AsnListNode* walkedTo(const AsnList* list, const AsnListNode* before) {
    if (list->count == 0) return before;
    const AsnListNode* node = list->last;
    while (node && node->data) node = node->prev;
    return node;
}

template <typename Message, auto decodeMessage, auto printMessage>
Channel channel(ZynChannel number, const char* name, TypeId choice, decltype(Channel::encode) encode) {
    return {number,
            name,
            envelopes[number],
            choice,
            [](const uint8_t* octets, uint32_t length, void* to) {
                return decodeMessage(octets, length, static_cast<Message*>(to));
            },
            encode,
            [](void* from) { return printMessage(nullptr, static_cast<Message*>(from)); }};
}

template <auto encode>
uint32_t encodeReply(const char*, void* record, uint32_t choiceId, uint8_t* block, uint32_t size) {
    return encode(record, choiceId, block, size);
}

} // namespace

const Channel channels[4] = {
    channel<ZynTransReq, ZynTransRequestDecode, ZynTransRequestPrint>(ZYN_TRANS_REQUEST, "trans-request",
                                                                      TypeId::ZynTransReqChoice, ZynTransRequestEncode),
    channel<ZynQueryReq, ZynQueryRequestDecode, ZynQueryRequestPrint>(ZYN_QUERY_REQUEST, "query-request",
                                                                      TypeId::ZynQueryReqChoice, ZynQueryRequestEncode),
    channel<ZynTransRep, ZynTransReplyDecode, ZynTransReplyPrint>(ZYN_TRANS_REPLY, "trans-reply", TypeId::ZynTransRep,
                                                                  encodeReply<ZynTransReplyEncode>),
    channel<ZynQueryRep, ZynQueryReplyDecode, ZynQueryReplyPrint>(ZYN_QUERY_REPLY, "query-reply", TypeId::ZynQueryRep,
                                                                  encodeReply<ZynQueryReplyEncode>),
};

const Channel& channelOf(TypeId message) {
    return *std::find_if(std::begin(channels), std::end(channels), [&](auto& c) { return c.message == message; });
}

const ChoiceRecord* choiceIn(const Channel& channel, const void* message) {
    if (!channel.isRequest()) return static_cast<const ChoiceRecord*>(message);
    return static_cast<const ChoiceRecord*>(valueOf(message, typeOf(channel.message).fields[1]));
}

std::string userIn(const Channel& channel, const void* message) {
    std::string user(12, ' ');
    if (!channel.isRequest()) return user;
    const void* text = valueOf(message, typeOf(channel.message).fields[0]);
    ZynTextStrGet(static_cast<const AsnOcts*>(text), user.data(), 12);
    return user;
}

Octets messageOf(const Channel& channel, const std::string& user, const ChoiceRecord* choice, Writer writer) {
    if (!channel.isRequest()) return writer.message(channel.message, choice);
    struct {
        AsnOcts userId;
        const void* choice;
    } request = {{}, choice};
    ZynTextStrSet(&request.userId, user.data(), 12);
    return writer.message(channel.message, &request);
}

TwoWays::TwoWays() {
    ZynEncodeMemReset();
    ZynEncodeMemAlloc(0); // the library has its own arena from here on, and makes no other
    before = nmG;
    for (NibbleMem*& arena : arenas) arena = newArena();
    nmG = scratch = newArena();
    reportedTo = &reported;
    handler = Asn1InstallErrorHandler(report);
}

TwoWays::~TwoWays() {
    Asn1InstallErrorHandler(handler);
    directAllowed = true;
    nmG = before;
    for (NibbleMem* arena : {arenas[0], arenas[1], scratch}) freeArena(arena);
}

void TwoWays::note(const std::string& what) {
    if (problem.empty()) problem = what;
}

// Pointers that lead into the arenas have to lead to the same place of either.
bool TwoWays::sameWords(const uint8_t* a, const uint8_t* b, std::size_t bytes) const {
    if (std::memcmp(a, b, bytes) == 0) return true;
    std::size_t i = 0;
    uintptr_t words[2];
    for (; i + sizeof *words <= bytes; i += sizeof *words) {
        std::memcpy(&words[0], a + i, sizeof *words);
        std::memcpy(&words[1], b + i, sizeof *words);
        if (words[0] == words[1]) continue;
        const auto place = placeOf(arenas[0], words[0]);
        if (place.first < 0 || place != placeOf(arenas[1], words[1])) return false;
    }
    return std::memcmp(a + i, b + i, bytes - i) == 0;
}

void TwoWays::compareArenas() {
    const NibbleBuf *a = arenas[0]->firstNibbleBuf, *b = arenas[1]->firstNibbleBuf;
    for (; a && b; a = a->next, b = b->next) {
        if (a->end - a->start != b->end - b->start) return note("sizes of the blocks");
        if (a->curr - a->start != b->curr - b->start) return note("use of the blocks");
        if (!sameWords(a->start, b->start, static_cast<std::size_t>(a->curr - a->start))) return note("trees");
        if (!allZero(a->curr, a->end) || !allZero(b->curr, b->end))
            return note("the arena is not zero behind its cursor");
        if ((a == arenas[0]->currNibbleBuf) != (b == arenas[1]->currNibbleBuf)) return note("current blocks");
    }
    if (a || b) note("numbers of blocks");
}

void* TwoWays::decode(const Channel& channel, const Octets& octets) {
    const uint8_t* copy = fence.copyOf(octets);
    std::string directly;
    for (const bool allowed : {true, false}) {
        nmG = arenas[allowed ? 0 : 1];
        directAllowed = allowed;
        reported.clear();
        void* message = std::memset(messages[allowed ? 0 : 1], 0, sizeof messages[0]);
        const int32_t result = channel.decode(copy, static_cast<uint32_t>(octets.size()), message);
        if (allowed) {
            direct = lastWay == Way::Direct;
            directly = reported;
            code = result;
        } else {
            if (result != code) note("codes " + std::to_string(code) + " and " + std::to_string(result));
            if (reported != directly) note("reports " + directly + " and " + reported);
            if (lastWay == Way::Direct) note("the direct way was not kept from going");
        }
    }
    nmG = scratch;
    directAllowed = true;
    if (code > 0 || (direct && code != 0)) note("code " + std::to_string(code));
    if (!sameWords(messages[0], messages[1], typeOf(channel.message).size)) note("the caller's records");
    compareArenas();
    return messages[0];
}

std::size_t TwoWays::held() const { return std::max(heldByArena(arenas[0]), heldByArena(arenas[1])); }

Octets TwoWays::encode(const Channel& channel, const std::string& user, const ChoiceRecord* choice, uint32_t room) {
    const Lists lists = listsIn(channel.choice, choice);
    Octets result[2];
    std::vector<uint8_t> block;
    for (const bool allowed : {true, false}) {
        for (AsnList* list : lists) list->curr = list->last;
        block.assign(room + 2 * guardOctets, guard);
        directAllowed = allowed;
        uint8_t* start = block.data() + guardOctets;
        const uint32_t length = channel.encode(user.data(), choice->slot, choice->choiceId, start, room);
        if (allowed) direct = lastWay == Way::Direct;
        if (length > room) throw std::logic_error("more octets than the block has");
        result[allowed ? 0 : 1].assign(start, start + length);
        const auto untouched = [](uint8_t octet) { return octet == guard; };
        if (!std::all_of(block.begin(), block.begin() + guardOctets, untouched) ||
            !std::all_of(block.end() - guardOctets, block.end(), untouched)) {
            note("octets outside the block");
        }
        for (const AsnList* list : lists) {
            if (list->curr != walkedTo(list, list->last)) note("a list's cursor");
        }
    }
    directAllowed = true;
    if (result[0] != result[1]) note("octets");
    if (direct && result[0].empty()) note("nothing encoded by the direct way");
    return result[0];
}

} // namespace zyn::test
