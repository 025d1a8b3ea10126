// The frames of the entry points: the same steps for all four envelopes.
#include "zyn/messages.h"

#include <bit>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <utility>

#include "api/setup.h"
#include "api/way.h"
#include "records/direct.h"
#include "records/exact.h"
#include "records/octets.h"
#include "records/tables.h"
#include "sbuf/nibble-alloc.h"
#include "zyn/codes.h"
#include "zyn/describe.h"

namespace zyn {
namespace {

SBuf writeBuffer(uint8_t* block, uint32_t size) {
    uint8_t* end = block + size;
    return {.dataStart = end,
            .dataEnd = end,
            .blkStart = block,
            .blkEnd = end,
            .readLoc = end,
            .writeError = 0,
            .readError = 1};
}

SBuf readBuffer(const uint8_t* message, uint32_t length) {
    auto* start = const_cast<uint8_t*>(message); // never written through: writeError is set
    return {.dataStart = start,
            .dataEnd = start + length,
            .blkStart = start,
            .blkEnd = start + length,
            .readLoc = start,
            .writeError = 1,
            .readError = 0};
}

// As std::memmove for at least half as many octets as chunks hold, and at most as many; without a call. All is loaded before
// anything is stored, as both places may overlap, and so may the chunks counted from the start and those from the end.
template <std::size_t... i>
[[gnu::always_inline]] inline void moveChunks(uint8_t* to, const uint8_t* from, std::size_t length,
                                              std::index_sequence<i...>) {
    using Chunk [[gnu::vector_size(16)]] = uint64_t;
    const Chunk first[] = {load<Chunk>(from + i * sizeof(Chunk))...};
    const Chunk last[] = {load<Chunk>(from + length - (i + 1) * sizeof(Chunk))...};
    (store(to + i * sizeof(Chunk), first[i]), ...);
    (store(to + length - (i + 1) * sizeof(Chunk), last[i]), ...);
}

// The finished octets stand at the end of the block; the caller finds them at its start.
[[gnu::always_inline]] inline uint32_t moveToStart(uint8_t* buffer, const uint8_t* start, const uint8_t* end) {
    const auto length = static_cast<uint32_t>(end - start);
    if (length >= 32 && length <= 64) moveChunks(buffer, start, length, std::make_index_sequence<2>());
    else if (length > 64 && length <= 128) moveChunks(buffer, start, length, std::make_index_sequence<4>());
    else if (start != buffer) std::memmove(buffer, start, length);
    return length;
}

[[gnu::noinline]] uint8_t* encodeExact(TypeId id, const void* envelope, uint8_t* buffer, uint32_t bufferLen) {
    tellWay(Way::Exact);
    SBuf b = writeBuffer(buffer, bufferLen);
    const uint32_t length = encodeMessage(&b, id, envelope);
    if (length != 0 && !b.writeError) return b.dataStart;
    explainEncode(id, envelope, length, bufferLen);
    return nullptr;
}

template <TypeId id>
[[gnu::always_inline]] inline uint32_t encodeEnvelope(const void* envelope, uint8_t* buffer, uint32_t bufferLen) {
    if (!begin()) return 0;
    uint8_t* end = buffer + bufferLen;
    uint8_t* start = mayGoDirect() ? direct::encode<id>(envelope, buffer, end) : nullptr;
    if (start) tellWay(Way::Direct);
    else start = encodeExact(id, envelope, buffer, bufferLen);
    if (!start) return 0;
    const uint32_t length = moveToStart(buffer, start, end);
    emptyArena();
    return length;
}

// The landing place of all failures below. Nothing in this frame lives on after one. Nor does its caller's, which leaves the
// rest to it: a return behind the jump is one that the processor does not foresee.
int32_t decodeExact(TypeId id, const uint8_t* buffer, uint32_t length, void* envelope, bool refusedBefore) {
    tellWay(Way::Exact);
    ResetNibbleMem();
    SBuf b = readBuffer(buffer, length);
    Walk walk{&b, nullptr};
    AsnLen bytesDecoded = 0;
    jmp_buf env;
    if (const int code = setjmp(env)) return code;
    currentFailure().walk = &walk;
    decodeMessage(walk, id, envelope, &bytesDecoded, env);
    currentFailure().walk = nullptr;
    // Memory that was refused once may be given the second time; that is no success.
    return refusedBefore ? startFailure(ZYN_E_NO_MEMORY).code : 0;
}

[[gnu::always_inline]] inline int32_t decodeEnvelope(ZynChannel channel, const uint8_t* buffer, uint32_t length,
                                                     void* envelope) {
    if (!begin()) return ZYN_E_NO_MEMORY;
    const direct::Outcome outcome =
        mayGoDirect() ? direct::decode(channel, buffer, length, envelope) : direct::Outcome::GaveUp;
    if (outcome == direct::Outcome::Done) [[likely]] {
        tellWay(Way::Direct);
        return 0;
    }
    return decodeExact(envelopes[channel], buffer, length, envelope, outcome == direct::Outcome::NoMemory);
}

// The 12 characters that a request's sender gives, without the blanks at their end: what ZynTextStrSet makes of them.
AsnOcts trimmedUserId(const char* userId) {
    const auto* octs = reinterpret_cast<const uint8_t*>(userId);
    const uint32_t last = littleEndian(load<uint32_t>(octs + 8)) ^ 0x20202020;
    const uint64_t first = littleEndian(load<uint64_t>(octs)) ^ 0x2020202020202020;
    const uint32_t blanks = last != 0 ? static_cast<uint32_t>(std::countl_zero(last)) / 8
                                      : 4 + static_cast<uint32_t>(std::countl_zero(first)) / 8;
    return {12 - blanks, const_cast<uint8_t*>(octs)};
}

// A request's envelope lives in the call: only its text and its message are the caller's.
template <TypeId id, typename Request, typename Choice>
uint32_t encodeRequest(const char* userId, Choice* Request::*member, void* message, uint32_t choiceId, uint8_t* buffer,
                       uint32_t bufferLen) {
    Choice choice;
    choice.choiceId = choiceId;
    choice.slot = message;
    Request request;
    request.userId = trimmedUserId(userId);
    request.*member = &choice;
    return encodeEnvelope<id>(&request, buffer, bufferLen);
}

template <TypeId id, typename Reply>
uint32_t encodeReply(void* message, uint32_t choiceId, uint8_t* buffer, uint32_t bufferLen) {
    Reply reply;
    reply.choiceId = choiceId;
    reply.slot = message;
    return encodeEnvelope<id>(&reply, buffer, bufferLen);
}

int printEnvelope(TypeId id, const void* envelope) {
    print(stderr, id, envelope, 0);
    return std::fflush(stderr);
}

} // namespace
} // namespace zyn

using zyn::TypeId;

uint32_t ZynTransRequestEncode(const char* userId, void* message, uint32_t choiceId, uint8_t* buffer,
                               uint32_t bufferLen) {
    return zyn::encodeRequest<TypeId::ZynTransReq>(userId, &ZynTransReq::upTransMsg, message, choiceId, buffer,
                                                   bufferLen);
}

uint32_t ZynQueryRequestEncode(const char* userId, void* message, uint32_t choiceId, uint8_t* buffer,
                               uint32_t bufferLen) {
    return zyn::encodeRequest<TypeId::ZynQueryReq>(userId, &ZynQueryReq::upQueryMsg, message, choiceId, buffer,
                                                   bufferLen);
}

uint32_t ZynTransReplyEncode(void* message, uint32_t choiceId, uint8_t* buffer, uint32_t bufferLen) {
    return zyn::encodeReply<TypeId::ZynTransRep, ZynTransRep>(message, choiceId, buffer, bufferLen);
}

uint32_t ZynQueryReplyEncode(void* message, uint32_t choiceId, uint8_t* buffer, uint32_t bufferLen) {
    return zyn::encodeReply<TypeId::ZynQueryRep, ZynQueryRep>(message, choiceId, buffer, bufferLen);
}

int32_t ZynTransRequestDecode(const uint8_t* buffer, uint32_t length, ZynTransReq* request) {
    return zyn::decodeEnvelope(ZYN_TRANS_REQUEST, buffer, length, request);
}

int32_t ZynQueryRequestDecode(const uint8_t* buffer, uint32_t length, ZynQueryReq* request) {
    return zyn::decodeEnvelope(ZYN_QUERY_REQUEST, buffer, length, request);
}

int32_t ZynTransReplyDecode(const uint8_t* buffer, uint32_t length, ZynTransRep* reply) {
    return zyn::decodeEnvelope(ZYN_TRANS_REPLY, buffer, length, reply);
}

int32_t ZynQueryReplyDecode(const uint8_t* buffer, uint32_t length, ZynQueryRep* reply) {
    return zyn::decodeEnvelope(ZYN_QUERY_REPLY, buffer, length, reply);
}

uint32_t ZynEncode(ZynChannel channel, const void* envelope, uint8_t* buffer, uint32_t bufferLen) {
    switch (channel) {
    case ZYN_TRANS_REQUEST: return zyn::encodeEnvelope<TypeId::ZynTransReq>(envelope, buffer, bufferLen);
    case ZYN_TRANS_REPLY: return zyn::encodeEnvelope<TypeId::ZynTransRep>(envelope, buffer, bufferLen);
    case ZYN_QUERY_REQUEST: return zyn::encodeEnvelope<TypeId::ZynQueryReq>(envelope, buffer, bufferLen);
    case ZYN_QUERY_REPLY: return zyn::encodeEnvelope<TypeId::ZynQueryRep>(envelope, buffer, bufferLen);
    }
    zyn::startFailure(ZYN_E_NO_ALTERNATIVE);
    return 0;
}

int32_t ZynDecode(ZynChannel channel, const uint8_t* buffer, uint32_t length, void* envelope) {
    if (static_cast<unsigned>(channel) < ZYN_CHANNELS) return zyn::decodeEnvelope(channel, buffer, length, envelope);
    zyn::startFailure(ZYN_E_NO_ALTERNATIVE);
    return ZYN_E_NO_ALTERNATIVE;
}

int ZynTransRequestPrint(void*, ZynTransReq* request) { return zyn::printEnvelope(TypeId::ZynTransReq, request); }
int ZynQueryRequestPrint(void*, ZynQueryReq* request) { return zyn::printEnvelope(TypeId::ZynQueryReq, request); }
int ZynTransReplyPrint(void*, ZynTransRep* reply) { return zyn::printEnvelope(TypeId::ZynTransRep, reply); }
int ZynQueryReplyPrint(void*, ZynQueryRep* reply) { return zyn::printEnvelope(TypeId::ZynQueryRep, reply); }

uint32_t ZynTextStrEncode(AsnOcts* text, uint8_t* buffer, uint32_t bufferLen) {
    if (!zyn::begin()) return 0;
    SBuf b = zyn::writeBuffer(buffer, bufferLen);
    const uint32_t length = BEncAsnOcts(&b, text);
    if (!b.writeError) return zyn::moveToStart(buffer, b.dataStart, b.dataEnd);
    zyn::explainEncode(TypeId::AsnOcts, text, length, bufferLen);
    return 0;
}

int32_t ZynTextStrDecode(const uint8_t* buffer, uint32_t length, AsnOcts* text) {
    if (!zyn::begin()) return ZYN_E_NO_MEMORY;
    SBuf b = zyn::readBuffer(buffer, length);
    ResetNibbleMem();
    zyn::Step step = zyn::firstStep(&b, TypeId::AsnOcts);
    zyn::Walk walk{&b, &step};
    AsnLen bytesDecoded = 0;
    jmp_buf env;
    if (const int code = setjmp(env)) return code;
    zyn::currentFailure().walk = &walk;
    BDecAsnOcts(&b, text, &bytesDecoded, env);
    zyn::currentFailure().walk = nullptr;
    return 0;
}
