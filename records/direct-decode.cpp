// The frame of a message on its direct way: one for both requests and one for both replies, which differ in their
// alternatives alone.
//
// The alternative is looked up before anything else is done. Where the call to its decoder goes is what a processor cannot
// foresee in mixed traffic: so it learns that early, and has the arena to empty meanwhile.
#include "records/direct-decode.h"

#include "sbuf/nibble-alloc.h"

namespace zyn::direct {
namespace {

// By ZynChannel.
constexpr Alternatives alternativesOf[] = {transactionRequests, transactionReplies, queryRequests, queryReplies};

// Both requests are taken for this one, a userId and a CHOICE, and both replies for a CHOICE.
using Request = ZynTransReq;
constexpr bool isLikeRequest(TypeId id) {
    const std::span<const Field> fields = typeOf(id).fields;
    return typeOf(id).size == sizeof(Request) && fields.size() == 2 && //
           fields[0].kind == Kind::Octs && fields[0].offset == offsetof(Request, userId) &&
           fields[0].tag == AsnTag{0x04} << 24 && fields[1].kind == Kind::Choice &&
           fields[1].offset == offsetof(Request, upTransMsg);
}
static_assert(isLikeRequest(TypeId::ZynTransReq) && isLikeRequest(TypeId::ZynQueryReq));
static_assert(sizeof(ZynTransRep) == sizeof(ChoiceRecord) && sizeof(ZynQueryRep) == sizeof(ChoiceRecord));

// Ends a decode: the arena's cursor is put behind all that was taken. The caller's message is written when all has succeeded
// and not before.
template <typename Record>
Outcome finish(bool done, uint8_t* free, const Source& source, const Record& record, void* message) {
    currentArena()->currNibbleBuf->curr = free;
    if (!done) return source.refused ? Outcome::NoMemory : Outcome::GaveUp;
    std::memcpy(message, &record, sizeof record);
    return Outcome::Done;
}

} // namespace

// Gives up on a userId of more than 127 octets, too.
Outcome decodeRequest(ZynChannel channel, const uint8_t* buffer, std::size_t length, void* message) {
    Measured measured;
    if (length < 2 || *buffer != 0x30 || !readLength(buffer + 1, length - 1, measured)) return Outcome::GaveUp;
    if (measured.length > length - 1 - measured.octets) return Outcome::GaveUp;
    const uint8_t* const user = buffer + 1 + measured.octets;
    if (measured.length < 2 || user[0] != 0x04 || user[1] >= 0x80) return Outcome::GaveUp;
    const std::size_t userOctets = 2 + std::size_t{user[1]};
    if (userOctets > measured.length) return Outcome::GaveUp;
    const Chosen chosen = choose(alternativesOf[channel], user + userOctets, measured.length - userOctets);
    if (!chosen.decoder) return Outcome::GaveUp;

    NibbleBuf* block = emptyArena();
    Source source{buffer, block->end};
    Walk walk{user + measured.length, -static_cast<std::ptrdiff_t>(measured.length), block->curr, source};
    Request record = {};
    uint8_t* choice;
    walk.readHead();
    if (stringField<TypeId::ZynTransReq, 0>(walk, &record.userId) &&
        take(choice, walk.free, sizeof(ChoiceRecord), source)) {
        record.upTransMsg = reinterpret_cast<ZynTransReqChoice*>(choice);
        walk.moveTo(decodeChosen(chosen, walk.at(), walk.rest(), reinterpret_cast<ChoiceRecord*>(choice), source));
    } else {
        walk.failed();
    }
    return finish(walk.left == 0, walk.free, source, record, message);
}

Outcome decodeReply(ZynChannel channel, const uint8_t* buffer, std::size_t length, void* message) {
    const Chosen chosen = choose(alternativesOf[channel], buffer, length);
    if (!chosen.decoder) return Outcome::GaveUp;
    NibbleBuf* block = emptyArena();
    Source source{buffer, block->end};
    ChoiceRecord record = {};
    const Cursor at = decodeChosen(chosen, {buffer, block->curr}, length, &record, source);
    return finish(at.p != nullptr, at.free, source, record, message);
}

} // namespace zyn::direct
