/* Descriptions of all types at run time, for tools and other languages: what the schema says of each, where its members
 * lie, and its operations, so that a program can walk any record without code of its own for it.
 *
 * All descriptions are constant, live as long as the library and may be read by any number of threads. Pointers between
 * them are never null unless it is said. */
#ifndef ZYN_DESCRIBE_H
#define ZYN_DESCRIBE_H

#include <stddef.h>

#include "zyn/asn.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ZynKind tells what a value is on the wire and in memory: an AsnInt, AsnBool, AsnReal, AsnOcts or AsnBits, a record, an
 * AsnList of pointers to records, or a structure of choiceId and one slot. */
typedef enum ZynKind {
    ZYN_KIND_INTEGER,
    ZYN_KIND_ENUMERATED,
    ZYN_KIND_BOOLEAN,
    ZYN_KIND_REAL,
    ZYN_KIND_OCTET_STRING,
    ZYN_KIND_BIT_STRING,
    ZYN_KIND_SEQUENCE,
    ZYN_KIND_SET_OF,
    ZYN_KIND_CHOICE
} ZynKind;

/* ZynChannel names the four envelopes: a request or a reply on the transaction or the query channel. */
typedef enum ZynChannel { ZYN_TRANS_REQUEST, ZYN_TRANS_REPLY, ZYN_QUERY_REQUEST, ZYN_QUERY_REPLY } ZynChannel;
#define ZYN_CHANNELS 4

typedef struct ZynType ZynType;

/* ZynField describes one field of a SEQUENCE.
 *
 * tag is the tag that stands first on the wire, left-justified, in primitive form for strings; 0 for a CHOICE without a tag
 * of its own, which has the tag of its alternative. tagOctets counts the octets of the tag that travel. explicitTag: the tag
 * wraps the value, whose own tag follows.
 *
 * offset is that of the member, in bytes from the start of the structure. pointer: the member is a pointer to the value,
 * null if the field is absent; otherwise the value itself lies there. An absent string lies there with null octets. */
typedef struct ZynField {
    const char* name;
    const ZynType* type;
    AsnTag tag;
    uint16_t offset;
    uint8_t tagOctets;
    uint8_t optional;
    uint8_t explicitTag;
    uint8_t pointer;
} ZynField;

/* ZynAlternative describes one alternative of a CHOICE. number is its choiceId and its context tag number at once. pointer:
 * the slot holds a pointer to the value, which may be null where the record has no fields; otherwise the value itself. */
typedef struct ZynAlternative {
    const char* name;
    const ZynType* type;
    uint32_t number;
    AsnTag tag;
    uint8_t tagOctets;
    uint8_t explicitTag;
    uint8_t pointer;
} ZynAlternative;

/* ZynOperations are the four operations of a type with the record as a void*; they do what the exported ones of its name do
 * (zyn/record.h). All are null in the description of a primitive type. */
typedef struct ZynOperations {
    AsnLen (*encodeContent)(SBuf* b, void* v);
    void (*decodeContent)(SBuf* b, AsnTag tagId, AsnLen elmtLen, void* v, AsnLen* bytesDecoded, jmp_buf env);
    void (*print)(FILE* f, void* v, unsigned short indent);
    void (*free)(void* v);
} ZynOperations;

/* ZynType describes one type: one of the six primitives ("AsnInt", "AsnEnum", ...; module null), or a type of a module.
 *
 * size and alignment are those of the structure in memory, in bytes. fields and alternatives stand in the order of the
 * schema; fields of a SEQUENCE, alternatives of a CHOICE, element of a SET OF, otherwise 0 and null. slotOffset is that of a
 * CHOICE's slot. message: the type travels on its own, as an envelope. firstCode is the failure code of the first place of
 * the type in its module; the type's codes run from there downwards, codes in number. */
struct ZynType {
    const char* name;
    const char* module;
    const ZynField* fields;
    const ZynAlternative* alternatives;
    const ZynType* element;
    ZynOperations operations;
    uint32_t number;
    ZynKind kind;
    uint16_t size;
    uint16_t alignment;
    uint16_t fieldCount;
    uint16_t alternativeCount;
    uint16_t slotOffset;
    int16_t firstCode;
    uint16_t codes;
    uint8_t message;
};

/* ZynTypeCount gives the number of types; they are numbered from 0, primitives first, then module by module in the order of
 * the schema. A type's number may change from one version of the library to the next, its name does not. */
ZYN_API uint32_t ZynTypeCount(void);

/* ZynTypeByNumber and ZynTypeByName give a type's description, or null if there is none. */
ZYN_API const ZynType* ZynTypeByNumber(uint32_t number);
ZYN_API const ZynType* ZynTypeByName(const char* name);

/* ZynModuleCount gives the number of modules, ZynModuleName the name of one, by a number from 0 in the order of their names;
 * null if there is none. */
ZYN_API uint32_t ZynModuleCount(void);
ZYN_API const char* ZynModuleName(uint32_t number);

/* ZynEnvelopeType gives the type of a channel's envelope, null for a number that is no channel. */
ZYN_API const ZynType* ZynEnvelopeType(ZynChannel channel);

/* ZynMessageChoice gives the CHOICE that holds a channel's messages: the envelope itself for replies, the type of the
 * request's second field for requests. */
ZYN_API const ZynType* ZynMessageChoice(ZynChannel channel);

/* ZynAlternativeByNumber and ZynAlternativeByName find an alternative of a CHOICE; null if there is none. The first takes
 * constant time. */
ZYN_API const ZynAlternative* ZynAlternativeByNumber(const ZynType* choice, uint32_t number);
ZYN_API const ZynAlternative* ZynAlternativeByName(const ZynType* choice, const char* name);

/* ZynFieldByName finds a field of a SEQUENCE; null if there is none. */
ZYN_API const ZynField* ZynFieldByName(const ZynType* sequence, const char* name);

/* ZynEncode and ZynDecode are the entry points of a channel with the envelope as a void*: the structure of its type. They
 * behave in every way as the Encode and Decode of that channel (zyn/messages.h), but that a request's userId is the whole
 * text of its field. A number that is no channel gives 0 and ZYN_E_NO_ALTERNATIVE. */
ZYN_API uint32_t ZynEncode(ZynChannel channel, const void* envelope, uint8_t* buffer, uint32_t bufferLen);
ZYN_API int32_t ZynDecode(ZynChannel channel, const uint8_t* buffer, uint32_t length, void* envelope);

/* ZynChannelOf tells from the first octets of a message which channel it belongs to: the channel, or -1 if it can belong to
 * none of them or the octets do not suffice. */
ZYN_API int ZynChannelOf(const uint8_t* octets, size_t length);

/* ZynMessageLength tells how long the message is that starts at octets, of which length are at hand. With 1 *messageLength
 * is its length, tag and length octets included; with 0 more octets are needed: at least *messageLength in all; with a
 * negative code (zyn/codes.h) no message can start so. Time grows with the number of elements only where lengths are
 * indefinite; nothing but tags and lengths is looked at. */
ZYN_API int ZynMessageLength(const uint8_t* octets, size_t length, size_t* messageLength);

/* ZynTreeSize gives the bytes that a copy of the tree below record, record included, takes. */
ZYN_API size_t ZynTreeSize(const ZynType* type, const void* record);

/* ZynTreeCopy copies the tree into block, which has size bytes and is aligned for any type, and gives the copy of record,
 * at its start; null if size is below ZynTreeSize. The copy refers to nothing outside block, so that it outlives the arena:
 * a server that copies a request keeps it beyond the Encode of its reply. Strings in the copy are followed by a 0 byte. */
ZYN_API void* ZynTreeCopy(const ZynType* type, const void* record, void* block, size_t size);

/* ZynTreeEqual is 1 if both trees hold the same values, else 0: the same fields are present and hold the same octets, bits
 * and numbers (REALs bit by bit, but that all NaNs are the same), lists the same elements in the same order. */
ZYN_API int ZynTreeEqual(const ZynType* type, const void* one, const void* other);

/* ZynVersion gives the library's version, such as "1.0.0". */
ZYN_API const char* ZynVersion(void);

#ifdef __cplusplus
}
#endif

#endif
