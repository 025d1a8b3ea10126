#include "bench/floor.h"

namespace zyn::bench::floor {

Arena arena;

namespace {

constexpr std::size_t longestHead = 6; // a tag of one octet and a length
constexpr std::size_t longestInteger = 6;
constexpr std::size_t longestBoolean = 3;
constexpr std::size_t longestPrice = 2 + 12 + longestInteger;
constexpr std::size_t wordSlack = 8; // a store of one word may begin in front of what it writes

bool hasRoom(const uint8_t* w, const uint8_t* begin, std::size_t size) {
    return static_cast<std::size_t>(w - begin) >= size;
}

[[gnu::always_inline]] inline bool decodeEntry(Reader r, ZynOrderEntry& entry, Bump& bump) {
    Reader inner;
    if (!r.open(0x30, inner)) return false;
    entry.secBoardId = bump.make<ZynSecOptBoardId>();
    if (!entry.secBoardId) return false;
    if (!inner.text(0x04, entry.secBoardId->secCode, bump) || !inner.optional(0x04, entry.secBoardId->boardId, bump))
        return false;
    if (inner.p != inner.end) return false;
    if (!r.integer(0x0A, entry.type) || !r.integer(0x0A, entry.buySell) || !r.integer(0x02, entry.quantity))
        return false;
    if (!r.optional(0x81, entry.visibleQuantity, bump) || !r.optional(0xA2, entry.price, bump)) return false;
    if (!r.optional(0x30, entry.yield, bump) || !r.optional(0xA3, entry.triggerPrice, bump)) return false;
    if (!r.optional(0x84, entry.minFillQuantity, bump) || !r.integer(0x0A, entry.duration)) return false;
    if (r.at(0xA5)) {
        entry.expiryTime = bump.make<AsnDateTime>();
        if (!entry.expiryTime || !r.open(0xA5, inner)) return false;
        if (!inner.integer(0x02, entry.expiryTime->date) || !inner.integer(0x02, entry.expiryTime->time)) return false;
        if (inner.p != inner.end) return false;
    }
    return r.optional(0x86, entry.trdAccId, bump) && r.optional(0x87, entry.brokerRef, bump) &&
           r.optional(0x88, entry.purgeOnLogoff, bump) && r.optional(0x89, entry.allowSoftQtyLimit, bump) &&
           r.optional(0x8A, entry.allowSoftPriceLimit, bump) && r.optional(0x8B, entry.positionType, bump) &&
           r.optional(0x8C, entry.tradeReference, bump) && r.optional(0x8D, entry.isPrivate, bump) &&
           r.optional(0x8E, entry.execUserId, bump) && r.p == r.end;
}

[[gnu::always_inline]] inline bool readPoints(Reader r, AsnList& list, Bump& bump) {
    list.dataSize = sizeof(void*);
    AsnListNode* last = nullptr;
    for (; r.p != r.end; ++list.count) {
        Reader inner;
        auto* node = static_cast<AsnListNode*>(bump.take(sizeof(AsnListNode) + sizeof(void*)));
        auto* point = bump.make<ZynPricePoint>();
        if (!node || !point || !r.open(0x30, inner)) return false;
        node->data = point;
        node->prev = last;
        (last ? last->next : list.first) = node;
        last = node;
        if (!inner.price(0x30, point->price, bump) || !inner.optional(0x30, point->yield, bump)) return false;
        if (!inner.integer(0x02, point->userDepth) || !inner.boolean(0x01, point->userHasBest)) return false;
        if (!inner.optional(0x81, point->depth, bump) || !inner.optional(0x82, point->numOrders, bump)) return false;
        if (!inner.optional(0x83, point->numFirms, bump) || !inner.optional(0x84, point->hasMarketMaker, bump))
            return false;
        if (!inner.optional(0x85, point->hasHiddenDepth, bump) || inner.p != inner.end) return false;
    }
    list.last = list.curr = last;
    return true;
}

// One side of the book; a copy of the bump pointer stays in a register meanwhile.
[[gnu::noinline]] bool decodePoints(Reader r, AsnList& list, Bump& bump) {
    Bump local = bump;
    const bool result = readPoints(r, list, local);
    bump = local;
    return result;
}

bool encodeText(Writer& to, uint8_t tag, const AsnOcts& text, const uint8_t* begin) {
    if (!hasRoom(to.w, begin, longestHead + text.octetLen)) return false;
    to.text(tag, text);
    return true;
}

// The list's elements from the last to the first.
bool encodePoints(Writer& to, const AsnList& list, const uint8_t* begin) {
    constexpr std::size_t longestPoint =
        longestHead + 2 * longestPrice + 4 * longestInteger + 3 * longestBoolean + wordSlack;
    const uint8_t* listEnd = to.w;
    for (const AsnListNode* node = list.last; node; node = node->prev) {
        if (!hasRoom(to.w, begin, longestPoint)) return false;
        const auto& point = *static_cast<const ZynPricePoint*>(node->data);
        const uint8_t* end = to.w;
        to.optional(0x85, point.hasHiddenDepth);
        to.optional(0x84, point.hasMarketMaker);
        to.optional(0x83, point.numFirms);
        to.optional(0x82, point.numOrders);
        to.optional(0x81, point.depth);
        to.boolean(0x01, point.userHasBest);
        to.integer(0x02, point.userDepth);
        to.optional(0x30, point.yield);
        to.price(0x30, *point.price);
        to.close(0x30, end);
    }
    if (!hasRoom(to.w, begin, longestHead)) return false;
    to.close(0x31, listEnd);
    return true;
}

[[gnu::always_inline]] inline bool readOrder(const uint8_t* octets, std::size_t size, ZynTransReq* request,
                                             Bump& bump) {
    Reader outer{octets, octets + size}, content, alternative, entry;
    AsnOcts userId;
    if (!outer.open(0x30, content) || !content.text(0x04, userId, bump)) return false;
    if (content.rest() < 4 || content.p[0] != 0xBF || content.p[1] != 0x83 || content.p[2] != 0x2A) return false;
    content.p += 2;
    if (!content.open(0x2A, alternative) || content.p != content.end) return false;
    if (!alternative.open(0x30, entry) || alternative.p != alternative.end) return false;
    auto* choice = bump.make<ZynTransReqChoice>();
    auto* order = bump.make<ZynOrder>();
    auto* record = bump.make<ZynOrderEntry>();
    if (!choice || !order || !record || !decodeEntry(entry, *record, bump)) return false;
    order->order = record;
    choice->choiceId = 426;
    choice->order = order;
    *request = {userId, choice};
    return true;
}

[[gnu::always_inline]] inline bool readBook(const uint8_t* octets, std::size_t size, ZynQueryRep* reply, Bump& bump) {
    Reader outer{octets, octets + size}, content, inner;
    if (outer.rest() < 4 || octets[0] != 0xBF || octets[1] != 0x82 || octets[2] != 0x20) return false;
    outer.p += 2;
    if (!outer.open(0x20, content)) return false;
    auto* book = bump.make<ZynOrderbookByPriceRep>();
    if (!book || !content.integer(0x02, book->seqNum) || !content.open(0x30, inner)) return false;
    book->secBoardId = bump.make<ZynSecBoardId>();
    if (!book->secBoardId) return false;
    if (!inner.text(0x04, book->secBoardId->secCode, bump) || !inner.text(0x04, book->secBoardId->boardId, bump))
        return false;
    if (inner.p != inner.end) return false;
    book->bidList = bump.make<AsnList>();
    if (!book->bidList || !content.open(0x31, inner) || !decodePoints(inner, *book->bidList, bump)) return false;
    book->offerList = bump.make<AsnList>();
    if (!book->offerList || !content.open(0x31, inner) || !decodePoints(inner, *book->offerList, bump)) return false;
    if (!content.integer(0x02, book->numOtherOpenOrders) || content.p != content.end) return false;
    reply->choiceId = 288;
    reply->orderbookByPriceRep = book;
    return true;
}

} // namespace

bool decodeOrder(const uint8_t* octets, std::size_t size, ZynTransReq* request) {
    arena.reset();
    Bump bump;
    return bump.finish(readOrder(octets, size, request, bump));
}

uint32_t encodeOrder(const char* userId, const ZynOrder* order, uint8_t* buffer, uint32_t size) {
    const ZynOrderEntry& entry = *order->order;
    AsnOcts user{12, reinterpret_cast<uint8_t*>(const_cast<char*>(userId))};
    while (user.octetLen > 0 && userId[user.octetLen - 1] == ' ') --user.octetLen;
    const std::size_t texts = std::size_t{user.octetLen} + entry.secBoardId->secCode.octetLen +
                              (entry.secBoardId->boardId.octs ? entry.secBoardId->boardId.octetLen : 0) +
                              (entry.trdAccId.octs ? entry.trdAccId.octetLen : 0) +
                              (entry.brokerRef.octs ? entry.brokerRef.octetLen : 0) +
                              (entry.tradeReference.octs ? entry.tradeReference.octetLen : 0) +
                              (entry.execUserId.octs ? entry.execUserId.octetLen : 0);
    constexpr std::size_t fixed =
        13 * longestHead + 9 * longestInteger + 3 * longestPrice + 4 * longestBoolean + wordSlack;
    uint8_t* const end = buffer + size;
    if (!hasRoom(end, buffer, fixed + texts)) return 0;
    Writer to{end};
    to.optional(0x8E, entry.execUserId);
    to.optional(0x8D, entry.isPrivate);
    to.optional(0x8C, entry.tradeReference);
    to.optional(0x8B, entry.positionType);
    to.optional(0x8A, entry.allowSoftPriceLimit);
    to.optional(0x89, entry.allowSoftQtyLimit);
    to.optional(0x88, entry.purgeOnLogoff);
    to.optional(0x87, entry.brokerRef);
    to.optional(0x86, entry.trdAccId);
    if (entry.expiryTime) {
        const uint8_t* timeEnd = to.w;
        to.integer(0x02, entry.expiryTime->time);
        to.integer(0x02, entry.expiryTime->date);
        to.close(0xA5, timeEnd);
    }
    to.integer(0x0A, entry.duration);
    to.optional(0x84, entry.minFillQuantity);
    to.optional(0xA3, entry.triggerPrice);
    to.optional(0x30, entry.yield);
    to.optional(0xA2, entry.price);
    to.optional(0x81, entry.visibleQuantity);
    to.integer(0x02, entry.quantity);
    to.integer(0x0A, entry.buySell);
    to.integer(0x0A, entry.type);
    const uint8_t* idEnd = to.w;
    to.optional(0x04, entry.secBoardId->boardId);
    to.text(0x04, entry.secBoardId->secCode);
    to.close(0x30, idEnd);
    to.close(0x30, end);
    to.close(0x2A, end);
    *--to.w = 0x83;
    *--to.w = 0xBF;
    to.text(0x04, user);
    to.close(0x30, end);
    return finish(buffer, to.w, end);
}

bool decodeBook(const uint8_t* octets, std::size_t size, ZynQueryRep* reply) {
    arena.reset();
    Bump bump;
    return bump.finish(readBook(octets, size, reply, bump));
}

uint32_t encodeBook(const ZynOrderbookByPriceRep* book, uint8_t* buffer, uint32_t size) {
    uint8_t* const end = buffer + size;
    if (!hasRoom(end, buffer, longestInteger + wordSlack)) return 0;
    Writer to{end};
    to.integer(0x02, book->numOtherOpenOrders);
    if (!encodePoints(to, *book->offerList, buffer) || !encodePoints(to, *book->bidList, buffer)) return 0;
    const uint8_t* idEnd = to.w;
    if (!encodeText(to, 0x04, book->secBoardId->boardId, buffer)) return 0;
    if (!encodeText(to, 0x04, book->secBoardId->secCode, buffer)) return 0;
    if (!hasRoom(to.w, buffer, 2 * longestHead + longestInteger + 2 + wordSlack)) return 0;
    to.close(0x30, idEnd);
    to.integer(0x02, book->seqNum);
    to.close(0x20, end);
    *--to.w = 0x82;
    *--to.w = 0xBF;
    return finish(buffer, to.w, end);
}

} // namespace zyn::bench::floor
