/* What callers fill records with before an Encode and read them by after a Decode: text, prices, quantities, lists, and the
 * arena memory that records are built from. */
#ifndef ZYN_VALUES_H
#define ZYN_VALUES_H

#include "zyn/asn.h"
#include "zyn/records/CommonTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ZynTextStrSet points *v at text, without trailing blanks (0x20 only). length is the number of bytes looked at, whatever
 * they are; 0 takes the bytes before the first 0 byte. The text stays the caller's and is not copied: it must stay in
 * place until the Encode has returned. Text of blanks alone ends up present and empty, not null. */
ZYN_API void ZynTextStrSet(AsnOcts* v, const char* text, int32_t length);

/* ZynTextStrGet copies the text to dest and returns the number of bytes stored. With width above 0 exactly width bytes are
 * stored, cut or padded with blanks; otherwise the whole text. No closing 0 byte is stored. A null text is empty. */
ZYN_API int32_t ZynTextStrGet(const AsnOcts* v, char* dest, int32_t width);

/* ZynTextStrGetLen gives the text's length in bytes. */
ZYN_API uint32_t ZynTextStrGetLen(const AsnOcts* v);

/* ZynTextStrSetNull makes *v absent. ZynTextStrIsNull is 1 for an absent text, else 0; an empty text is not absent. */
ZYN_API void ZynTextStrSetNull(AsnOcts* v);
ZYN_API int ZynTextStrIsNull(const AsnOcts* v);

/* ZynFixedRealSet stores value without decimals. -99999999.0 stands for the null value: value 0 with decimals -1. decimals
 * lies in the arena. If memory is refused, value becomes a NaN, so that the Encode returns 0 and no wrong price is sent. */
ZYN_API void ZynFixedRealSet(AsnFixedReal* v, double value);

/* ZynFixedRealSetWithDecimals stores both; -99999999.0 gives the null value whatever decimals says. */
ZYN_API void ZynFixedRealSetWithDecimals(AsnFixedReal* v, double value, int32_t decimals);

/* ZynFixedRealGet stores the value in *out. The null value reads as 0.0: test decimals to tell the two apart. */
ZYN_API void ZynFixedRealGet(const AsnFixedReal* v, double* out);

/* ZynLongIntSet and ZynLongIntGet store and read a quantity, exact up to 53 bits. */
ZYN_API void ZynLongIntSet(AsnLongInt* v, double value);
ZYN_API void ZynLongIntGet(const AsnLongInt* v, double* out);

/* ZynEncodeMemAlloc gives size bytes of zero-filled arena memory, aligned for any record, or null if memory is refused. It is
 * good until the next Decode, the next Encode of an envelope that succeeds, or ZynEncodeMemReset. A record from it starts
 * with every OPTIONAL field absent. */
ZYN_API void* ZynEncodeMemAlloc(uint32_t size);

/* ZynEncodeMemReset drops everything in the arena. Before anything was set up it does nothing. */
ZYN_API void ZynEncodeMemReset(void);

/* ZynListNew gives a new, empty list in the arena, in the form that records hold, or null if memory is refused. */
ZYN_API AsnList* ZynListNew(void);

/* ZynListAppend puts a new element of size bytes at the end of the list and gives its zero-filled memory, for the caller to
 * fill as the element record; null if memory is refused, with the list as it was. */
ZYN_API void* ZynListAppend(AsnList* list, uint32_t size);

/* ZynListCount gives the number of elements. */
ZYN_API int32_t ZynListCount(const AsnList* list);

#ifdef __cplusplus
}
#endif

#endif
