/* The BER run-time: the buffer that fills backwards, the arena, and the codecs of tags, lengths, values and lists (X.690).
 *
 * Callers who send and receive whole messages need only the types of this header; zyn/messages.h and zyn/values.h have the
 * operations. Everything here is for one thread at a time. */
#ifndef ZYN_ASN_H
#define ZYN_ASN_H

#include <setjmp.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#if defined(__GNUC__)
#define ZYN_API __attribute__((visibility("default")))
#else
#define ZYN_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* AsnLen counts octets. IndefiniteLen stands for the indefinite form of a length (X.690 8.1.3.6). */
typedef uint32_t AsnLen;
#define IndefiniteLen ((AsnLen)0xFFFFFFFFu)

/* AsnTag holds the octets of a tag as they stand on the wire, left-justified: the first one in bits 31 to 24, at most
 * three in all. It is compared as a whole. 0 is the first octet of an end-of-contents marker. */
typedef uint32_t AsnTag;

/* AsnInt is an INTEGER or ENUMERATED value, UAsnInt an INTEGER that is not negative. */
typedef int32_t AsnInt;
typedef uint32_t UAsnInt;

/* AsnBool is a BOOLEAN: 0 is false, anything else true; decoders store 0 or 1. */
typedef uint8_t AsnBool;

/* AsnReal is a REAL. */
typedef double AsnReal;

/* AsnOcts is an OCTET STRING of octetLen octets; octs null: absent. Decoded octets lie in the arena and are followed by
 * one 0 byte that octetLen does not count. An encoder needs no such byte. */
typedef struct AsnOcts {
    uint32_t octetLen;
    uint8_t* octs;
} AsnOcts;

/* AsnBits is a BIT STRING of bitLen bits, the first one in the highest bit of the first octet; bits null: absent. */
typedef struct AsnBits {
    int32_t bitLen;
    uint8_t* bits;
} AsnBits;

/* AsnListNode is one element of a list; its storage starts at data, in this protocol a pointer to the element's record. */
typedef struct AsnListNode {
    struct AsnListNode* prev;
    struct AsnListNode* next;
    void* data;
} AsnListNode;

/* AsnList is a doubly linked list with a cursor, curr, that every walk moves. Nodes have dataSize bytes of element storage
 * beyond an AsnListNode and lie in the arena. */
typedef struct AsnList {
    AsnListNode* first;
    AsnListNode* last;
    AsnListNode* curr;
    int32_t count;
    int32_t dataSize;
} AsnList;

/* SBuf describes a block of octets of the caller's, for writing backwards from blkEnd or for reading forwards. The data lie
 * in [dataStart, dataEnd). The two flags are set by what fails and never cleared; they also tell the mode: an SBuf for
 * writing has readError set, one for reading writeError. */
typedef struct SBuf {
    uint8_t* dataStart;
    uint8_t* dataEnd;
    uint8_t* blkStart;
    uint8_t* blkEnd;
    uint8_t* readLoc;
    int32_t writeError;
    int32_t readError;
} SBuf;

/* SBufPushByte puts one octet in front of the data, or sets writeError if the block is full. */
static inline void SBufPushByte(SBuf* b, uint8_t byte) {
    if (b->dataStart > b->blkStart) *--b->dataStart = byte;
    else b->writeError = 1;
}

/* SBufPushSeg puts len octets in front of the data, or sets writeError and stores nothing if they do not fit. */
static inline void SBufPushSeg(SBuf* b, const uint8_t* seg, AsnLen len) {
    if ((size_t)(b->dataStart - b->blkStart) < len) {
        b->writeError = 1;
    } else if (len > 0) {
        b->dataStart -= len;
        memcpy(b->dataStart, seg, len);
    }
}

/* SBufNextByte reads the next octet. At the end of the data it sets readError and returns 1. */
static inline uint8_t SBufNextByte(SBuf* b) {
    if (b->readLoc < b->dataEnd) return *b->readLoc++;
    b->readError = 1;
    return 1;
}

/* SBufTakeSeg returns the place of the next *len octets and moves behind them. If fewer remain it reduces *len to what
 * remains; readError stays as it is. */
static inline uint8_t* SBufTakeSeg(SBuf* b, AsnLen* len) {
    uint8_t* seg = b->readLoc;
    const size_t rest = (size_t)(b->dataEnd - b->readLoc);
    if (rest < *len) *len = (AsnLen)rest;
    if (*len > 0) b->readLoc += *len;
    return seg;
}

/* SBufCopySeg copies the next len octets to target. If fewer remain it copies those and sets readError. */
static inline void SBufCopySeg(SBuf* b, uint8_t* target, AsnLen len) {
    const size_t rest = (size_t)(b->dataEnd - b->readLoc);
    if (rest < len) {
        b->readError = 1;
        len = (AsnLen)rest;
    }
    if (len > 0) {
        memcpy(target, b->readLoc, len);
        b->readLoc += len;
    }
}

/* The encoders below write in front of the data and return the number of octets they wrote, the same number if the block
 * was too small; then writeError is set. BEnc<T>Content writes the content, BEnc<T> adds length and tag.
 *
 * The decoders add the octets they read to *bytesDecoded. On failure they report a message, if the failure has one, through
 * Asn1Error and jump to env with a negative code (zyn/codes.h). BDec<T> reads tag, length and content; BDec<T>Content reads
 * a content whose tag and length have been read. */

/* BEncDefLen writes a length in the fewest octets (X.690 8.1.3.4, 8.1.3.5). BEncDefLen2 does the same for a signed one. */
ZYN_API AsnLen BEncDefLen(SBuf* b, AsnLen len);
ZYN_API AsnLen BEncDefLen2(SBuf* b, int32_t len);

/* BDecLen reads a length of at most four octets beyond the first. It is not compared with the data. -13, -14, -15. */
ZYN_API AsnLen BDecLen(SBuf* b, AsnLen* bytesDecoded, jmp_buf env);

/* BDecEoc reads both octets of an end-of-contents marker. -16. */
ZYN_API void BDecEoc(SBuf* b, AsnLen* bytesDecoded, jmp_buf env);

/* BDecTag reads a tag of at most three octets. -25, -26. */
ZYN_API AsnTag BDecTag(SBuf* b, AsnLen* bytesDecoded, jmp_buf env);

/* INTEGER (X.690 8.3). Decoders take up to 4 octets into an AsnInt and up to 5 into a UAsnInt, minimal or not. -7 to -12,
 * -40, -41. */
ZYN_API AsnLen BEncAsnIntContent(SBuf* b, AsnInt* data);
ZYN_API AsnLen BEncAsnInt(SBuf* b, AsnInt* data);
ZYN_API void BDecAsnIntContent(SBuf* b, AsnTag tagId, AsnLen len, AsnInt* result, AsnLen* bytesDecoded, jmp_buf env);
ZYN_API void BDecAsnInt(SBuf* b, AsnInt* result, AsnLen* bytesDecoded, jmp_buf env);
ZYN_API AsnLen BEncUAsnIntContent(SBuf* b, UAsnInt* data);
ZYN_API AsnLen BEncUAsnInt(SBuf* b, UAsnInt* data);
ZYN_API void BDecUAsnIntContent(SBuf* b, AsnTag tag, AsnLen len, UAsnInt* result, AsnLen* bytesDecoded, jmp_buf env);
ZYN_API void BDecUAsnInt(SBuf* b, UAsnInt* result, AsnLen* bytesDecoded, jmp_buf env);

/* BOOLEAN (X.690 8.2). -5, -6, -40. */
ZYN_API AsnLen BEncAsnBoolContent(SBuf* b, AsnBool* data);
ZYN_API AsnLen BEncAsnBool(SBuf* b, AsnBool* data);
ZYN_API void BDecAsnBoolContent(SBuf* b, AsnTag tagId, AsnLen len, AsnBool* result, AsnLen* bytesDecoded, jmp_buf env);
ZYN_API void BDecAsnBool(SBuf* b, AsnBool* result, AsnLen* bytesDecoded, jmp_buf env);

/* OCTET STRING (X.690 8.7), primitive on encode; the decoder takes the constructed form as well, by the constructed bit of
 * tagId. Octets are copied into the arena. A null octs with a length above 0 cannot be sent: writeError. -18 to -20, -27,
 * -28, -40. */
ZYN_API AsnLen BEncAsnOctsContent(SBuf* b, AsnOcts* o);
ZYN_API AsnLen BEncAsnOcts(SBuf* b, AsnOcts* data);
ZYN_API void BDecAsnOctsContent(SBuf* b, AsnTag tagId, AsnLen len, AsnOcts* result, AsnLen* bytesDecoded, jmp_buf env);
ZYN_API void BDecAsnOcts(SBuf* b, AsnOcts* result, AsnLen* bytesDecoded, jmp_buf env);

/* BIT STRING (X.690 8.6), as OCTET STRING. Bits behind bitLen in the last octet travel as they stand in memory. A negative
 * bitLen cannot be sent: writeError. -1 to -4, -27, -28, -40, -42, -43, -45. */
ZYN_API AsnLen BEncAsnBitsContent(SBuf* b, AsnBits* bits);
ZYN_API AsnLen BEncAsnBits(SBuf* b, AsnBits* data);
ZYN_API void BDecAsnBitsContent(SBuf* b, AsnTag tagId, AsnLen len, AsnBits* result, AsnLen* bytesDecoded, jmp_buf env);
ZYN_API void BDecAsnBits(SBuf* b, AsnBits* result, AsnLen* bytesDecoded, jmp_buf env);

/* REAL (X.690 8.5): base 2 without scaling on encode; base 2, 8 or 16 on decode. The decimal forms are refused, and so are a
 * NaN and an infinity that no variable below holds: writeError. A REAL cut off by the end of the data raises no failure of
 * its own: the octets that are missing read as 1, and whatever is read next fails. -22 to -24, -40, -44. */
ZYN_API AsnLen BEncAsnRealContent(SBuf* b, AsnReal* value);
ZYN_API AsnLen BEncAsnReal(SBuf* b, AsnReal* data);
ZYN_API void BDecAsnRealContent(SBuf* b, AsnTag tagId, AsnLen len, AsnReal* result, AsnLen* bytesDecoded, jmp_buf env);
ZYN_API void BDecAsnReal(SBuf* b, AsnReal* result, AsnLen* bytesDecoded, jmp_buf env);

/* PLUS_INFINITY and MINUS_INFINITY are what the contents 40 and 41 stand for, in both directions. Both hold 0.0 until
 * InitAsnInfinity makes them the infinities; whoever wants infinities on the wire calls it once, first of all. */
ZYN_API extern AsnReal PLUS_INFINITY;
ZYN_API extern AsnReal MINUS_INFINITY;
ZYN_API void InitAsnInfinity(void);

/* SignedIntOctetLen gives the octets that val takes in two's complement, 1 to 4. */
ZYN_API unsigned int SignedIntOctetLen(int32_t val);

/* FreeAsnOcts and FreeAsnBits do nothing: the octets belong to the arena or to the caller. */
ZYN_API void FreeAsnOcts(AsnOcts* v);
ZYN_API void FreeAsnBits(AsnBits* v);

/* AsnOctsEquiv and AsnBitsEquiv are 1 if both values are the same, else 0. Bits behind bitLen are not compared. */
ZYN_API int AsnOctsEquiv(AsnOcts* o1, AsnOcts* o2);
ZYN_API int AsnBitsEquiv(AsnBits* b1, AsnBits* b2);

/* SetAsnBit, ClrAsnBit and GetAsnBit work on one bit, counted from 0. At bitLen and beyond nothing is changed, and the bit
 * reads as 0; a set bit reads as any value but 0. */
ZYN_API void SetAsnBit(AsnBits* b1, uint32_t bit);
ZYN_API void ClrAsnBit(AsnBits* b1, uint32_t bit);
ZYN_API int GetAsnBit(AsnBits* b1, uint32_t bit);

/* Lists. An element address is that of a node's data member; null where there is no such node, or when memory is refused,
 * which leaves the list as it was. A new node becomes curr. */

/* AsnListNew makes an empty list in the arena, AsnListInit in memory of the caller's. */
ZYN_API AsnList* AsnListNew(int dataSize);
ZYN_API void AsnListInit(AsnList* list, int dataSize);

/* These four add a node and return its element address: at the end, at the start, behind curr, in front of curr. The last
 * two do nothing while curr is null. */
ZYN_API void* AsnListAppend(AsnList* list);
ZYN_API void* AsnListPrepend(AsnList* list);
ZYN_API void* AsnListAdd(AsnList* list);
ZYN_API void* AsnListInsert(AsnList* list);

/* AsnListRemove takes curr out of the list and moves curr to the node behind. */
ZYN_API void AsnListRemove(AsnList* list);

/* These five return the element address of the node that they make curr; AsnListCurr moves nothing. Past either end curr is
 * null, and the next step starts again at the other end. */
ZYN_API void* AsnListFirst(AsnList* list);
ZYN_API void* AsnListLast(AsnList* list);
ZYN_API void* AsnListNext(AsnList* list);
ZYN_API void* AsnListPrev(AsnList* list);
ZYN_API void* AsnListCurr(AsnList* list);

/* AsnListCount gives the number of nodes. */
ZYN_API int AsnListCount(AsnList* list);

/* AsnListConcat moves the nodes of l2 behind those of l1 and returns l1. l2 is no list of its own any more. */
ZYN_API AsnList* AsnListConcat(AsnList* l1, AsnList* l2);

/* GetAsnListElmtIndex gives the index of the first node whose data word is elmt, or -1. A null data word ends the search. */
ZYN_API long int GetAsnListElmtIndex(void* elmt, AsnList* list);

/* AsnListFree does nothing: nodes belong to the arena. */
ZYN_API void AsnListFree(AsnList* list);

/* NibbleBuf is one block of the arena, NibbleMem the arena: a chain of blocks, of which currNibbleBuf gives memory. nmG is
 * the process-wide arena, null while none is set up. */
typedef struct NibbleBuf {
    uint8_t* start;
    uint8_t* end;
    uint8_t* curr;
    struct NibbleBuf* next;
} NibbleBuf;

typedef struct NibbleMem {
    NibbleBuf* firstNibbleBuf;
    NibbleBuf* currNibbleBuf;
    uint32_t incrementSize;
} NibbleMem;

ZYN_API extern NibbleMem* nmG;

/* InitNibbleMem makes an arena with a first block of initialSize bytes; later blocks have at least incrementSize. An arena
 * that was there before is not released. When memory is refused nmG stays as it was. */
ZYN_API void InitNibbleMem(uint32_t initialSize, uint32_t incrementSize);

/* NibbleAlloc gives size zero-filled bytes at a multiple of 8, or null when memory is refused or no arena is set up. They
 * live until ResetNibbleMem. ServiceNibbleFault adds a block for at least size bytes. */
ZYN_API void* NibbleAlloc(uint32_t size);
ZYN_API void ServiceNibbleFault(uint32_t size);

/* ResetNibbleMem takes back everything that the arena gave and keeps its first block. ShutdownNibbleMem releases it all. */
ZYN_API void ResetNibbleMem(void);
ZYN_API void ShutdownNibbleMem(void);

/* StrStk holds the pieces of the constructed string that is being decoded; it keeps its table from decode to decode. */
typedef struct StrStkElmt {
    uint8_t* str;
    uint32_t len;
} StrStkElmt;

typedef struct StrStk {
    StrStkElmt* stk;
    uint32_t initialNumElmts;
    uint32_t numElmts;
    uint32_t growElmts;
    uint32_t nextFreeElmt;
    uint32_t totalByteLen;
} StrStk;

ZYN_API extern StrStk strStkG;

/* Asn1ErrorHandler receives every message: its text with the closing line feed, and 1 for an error or 0 for a warning. It
 * may jump out of the library, which stays usable. */
typedef void (*Asn1ErrorHandler)(char* str, int severity);

/* Asn1Error and Asn1Warning pass str to the installed handler. Asn1DefaultErrorHandler, which is installed at first, writes
 * it to the standard error stream. Asn1InstallErrorHandler installs another one, or with null the default one, and returns
 * the one before. */
ZYN_API void Asn1Error(char* str);
ZYN_API void Asn1Warning(char* str);
ZYN_API void Asn1DefaultErrorHandler(char* str, int severity);
ZYN_API Asn1ErrorHandler Asn1InstallErrorHandler(Asn1ErrorHandler handler);

/* stdIndentG is the number of spaces that a level of printed notation goes deeper; numToHexCharTblG the digit of each half
 * of an octet. Both may be changed and are read at each use. */
ZYN_API extern unsigned short stdIndentG;
ZYN_API extern char numToHexCharTblG[16];

/* These write one value to f as value notation (X.680), without anything round it. indent is not looked at. */
ZYN_API void PrintAsnInt(FILE* f, AsnInt* v, unsigned short indent);
ZYN_API void PrintUAsnInt(FILE* f, UAsnInt* v, unsigned short indent);
ZYN_API void PrintAsnBool(FILE* f, AsnBool* v, unsigned short indent);
ZYN_API void PrintAsnReal(FILE* f, AsnReal* v, unsigned short indent);
ZYN_API void PrintAsnOcts(FILE* f, AsnOcts* v, unsigned short indent);
ZYN_API void PrintAsnBits(FILE* f, AsnBits* v, unsigned short indent);

/* Indent writes i spaces to f. */
ZYN_API void Indent(FILE* f, unsigned short i);

#ifdef __cplusplus
}
#endif

#endif
