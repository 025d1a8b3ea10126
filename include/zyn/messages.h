/* The front door: whole messages to and from octets.
 *
 * Two channels, two envelopes each: a ZynTransReq is answered by one ZynTransRep, a ZynQueryReq by ZynQueryRep records. A
 * message holds one alternative of a numbered choice; the number is called choiceId.
 *
 * All memory below a decoded top-level record lies in the arena. It is good until the next Decode of any kind, the next
 * Encode of an envelope that succeeds, or ZynEncodeMemReset, whichever comes first: a server that answers a request
 * loses the request at the moment the reply is done.
 *
 * Calls come from one thread at a time. Nothing needs to be set up: the first call does that. */
#ifndef ZYN_MESSAGES_H
#define ZYN_MESSAGES_H

#include "zyn/asn.h"
#include "zyn/records/Main.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ZynTransRequestEncode writes a request on the transaction channel to the start of buffer and returns its length in
 * octets, or 0: it does not fit into bufferLen octets, or a value in it has no wire form. With 0 the contents of
 * buffer are undefined, message is as it was, and the call may be repeated with a larger block.
 *
 * userId points to exactly 12 bytes of text; trailing blanks are not sent. message points to the record of the
 * alternative choiceId; it may be null where that record is empty. A choiceId that is no alternative is not noticed here:
 * the message then holds the userId alone and its Decode fails.
 *
 * Success resets the arena: what was built in it or decoded into it is gone. */
ZYN_API uint32_t ZynTransRequestEncode(const char* userId, void* message, uint32_t choiceId, uint8_t* buffer,
                                       uint32_t bufferLen);

/* ZynQueryRequestEncode does the same on the query channel. */
ZYN_API uint32_t ZynQueryRequestEncode(const char* userId, void* message, uint32_t choiceId, uint8_t* buffer,
                                       uint32_t bufferLen);

/* ZynTransReplyEncode and ZynQueryReplyEncode write a reply in the same way. A choiceId that is no alternative gives 0. */
ZYN_API uint32_t ZynTransReplyEncode(void* message, uint32_t choiceId, uint8_t* buffer, uint32_t bufferLen);
ZYN_API uint32_t ZynQueryReplyEncode(void* message, uint32_t choiceId, uint8_t* buffer, uint32_t bufferLen);

/* The four Decodes read one message from the start of buffer into *request or *reply, which the caller provides, and return
 * 0, or a negative code (zyn/codes.h; -100 and below: a place in a record). Octets behind the message are ignored; nothing
 * outside buffer[0..length) is read, and nothing decoded refers to it. After a failure *request or *reply is not to be
 * used. Each call resets the arena first. */
ZYN_API int32_t ZynTransRequestDecode(const uint8_t* buffer, uint32_t length, ZynTransReq* request);
ZYN_API int32_t ZynQueryRequestDecode(const uint8_t* buffer, uint32_t length, ZynQueryReq* request);
ZYN_API int32_t ZynTransReplyDecode(const uint8_t* buffer, uint32_t length, ZynTransRep* reply);
ZYN_API int32_t ZynQueryReplyDecode(const uint8_t* buffer, uint32_t length, ZynQueryRep* reply);

/* The four Prints write a message to the standard error stream as ASN.1 value notation, without a line break at the end,
 * flush the stream and return what flushing returned. The first argument is ignored. */
ZYN_API int ZynTransRequestPrint(void* unused, ZynTransReq* request);
ZYN_API int ZynQueryRequestPrint(void* unused, ZynQueryReq* request);
ZYN_API int ZynTransReplyPrint(void* unused, ZynTransRep* reply);
ZYN_API int ZynQueryReplyPrint(void* unused, ZynQueryRep* reply);

/* ZynTextStrEncode writes *text as one OCTET STRING with tag and length to the start of buffer and returns its length in
 * octets, or 0 if it does not fit. The arena stays as it is. */
ZYN_API uint32_t ZynTextStrEncode(AsnOcts* text, uint8_t* buffer, uint32_t bufferLen);

/* ZynTextStrDecode reads one OCTET STRING into *text and returns 0 or a negative code. It resets the arena first, as
 * every Decode does. */
ZYN_API int32_t ZynTextStrDecode(const uint8_t* buffer, uint32_t length, AsnOcts* text);

/* ZynShutdown gives back all memory that the library holds, that of the arena and of decoded records included. The next
 * call of any operation sets up again. */
ZYN_API void ZynShutdown(void);

#ifdef __cplusplus
}
#endif

#endif
