/* What every record type has. The generated headers name each type once in one of these two macros. */
#ifndef ZYN_RECORD_H
#define ZYN_RECORD_H

#include "zyn/asn.h"

/* ZYN_RECORD(T) declares the four operations of the record type T.
 *
 * BEnc<T>Content writes the content of *v, without tag and length, in front of what is already in b, and returns the
 * number of octets that the content has. It never fails: octets that do not fit are left out and set b->writeError, and
 * the result counts them all the same. Only a list's cursor changes in *v.
 *
 * BDec<T>Content reads the content of a T whose tag (tagId) and length (elmtLen, or IndefiniteLen) the caller has read,
 * fills *v and adds the octets read to *bytesDecoded. *v must be zero-filled, as memory from the arena is: members of
 * absent fields are not touched. All that *v points to afterwards lies in the arena. On failure it jumps to env with
 * a negative code (zyn/codes.h, or -100 and below for a place in a record); *v is then not to be used.
 *
 * Print<T> writes *v to f as ASN.1 value notation, without a line break at the end; indent is the column of the closing
 * brace. A null v prints nothing, unless T is a CHOICE: then v must be set.
 *
 * Free<T> does nothing: what a decoder made belongs to the arena and goes with its next reset. */
#define ZYN_RECORD(T)                                                                                                  \
    ZYN_API AsnLen BEnc##T##Content(SBuf* b, T* v);                                                                    \
    ZYN_API void BDec##T##Content(SBuf* b, AsnTag tagId, AsnLen elmtLen, T* v, AsnLen* bytesDecoded, jmp_buf env);     \
    ZYN_API void Print##T(FILE* f, T* v, unsigned short indent);                                                       \
    ZYN_API void Free##T(T* v)

/* ZYN_MESSAGE(T) declares the same for a message, and beside them BEnc<T> and BDec<T>, which write and read the whole
 * message with its tag and length. */
#define ZYN_MESSAGE(T)                                                                                                 \
    ZYN_RECORD(T);                                                                                                     \
    ZYN_API AsnLen BEnc##T(SBuf* b, T* v);                                                                             \
    ZYN_API void BDec##T(SBuf* b, T* v, AsnLen* bytesDecoded, jmp_buf env)

#endif
