/* Records as JSON and back, over the descriptions of zyn/describe.h. Library: zynjson.
 *
 * SEQUENCE      an object of its fields by name, in the order of the schema; absent ones are left out
 * SET OF        an array
 * CHOICE        an object whose one key is the alternative's name
 * INTEGER       a number, and so is ENUMERATED
 * BOOLEAN       true or false
 * REAL          a number that reads back to the same bits and has no more digits than that takes, or "NaN" (which stands
 *               for all NaNs), "Infinity", "-Infinity"
 * OCTET STRING  a string if it is UTF-8 without control characters (U+0000 to U+001F, U+007F to U+009F), otherwise
 *               {"hex": "00ff"}
 * BIT STRING    {"bits": "1010"}; if any of the bits is set that the last octet has left, they travel, and are there:
 *               {"bits": "1010", "spare": "0001"}
 *
 * What cannot be sent, such as a required record whose pointer is null, a CHOICE without an alternative or a string
 * without octets but with a length, is written as null. A null list is an empty one, a null alternative without fields
 * {}, as on the wire. */
#ifndef ZYN_JSON_H
#define ZYN_JSON_H

#include "zyn/describe.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ZynJson is a workspace: the memory for texts and records, kept from one call to the next. One thread at a time. */
typedef struct ZynJson ZynJson;

/* ZynJsonNew gives a workspace, or null if memory is refused. ZynJsonFree gives it back; null is fine. */
ZYN_API ZynJson* ZynJsonNew(void);
ZYN_API void ZynJsonFree(ZynJson* json);

/* ZynJsonSetIndent sets how many blanks a level of written text is indented by; 0, as at the start: all in one line. */
ZYN_API void ZynJsonSetIndent(ZynJson* json, unsigned indent);

/* ZynJsonWrite gives record, of the given type, as JSON: *length bytes in UTF-8 and a 0 byte behind them, the
 * workspace's until its next ZynJsonWrite; null if memory is refused. */
ZYN_API const char* ZynJsonWrite(ZynJson* json, const ZynType* type, const void* record, size_t* length);

/* ZynJsonRead gives the record of the given type that length bytes of JSON describe, or null: ZynJsonLastError tells
 * why. The record and all below it are the workspace's until its next ZynJsonRead; of the text nothing is needed any
 * more.
 *
 * Fields may come in any order. All that ZynJsonWrite can write of a record that can be sent is read, and any string
 * for an OCTET STRING: escapes stand for the octets of their UTF-8, \u0000 for an octet 0. null is refused
 * everywhere, and so are texts longer than 1 GiB. The stack that is needed does not depend on the text. */
ZYN_API void* ZynJsonRead(ZynJson* json, const ZynType* type, const char* text, size_t length);

/* ZynJsonError tells where reading failed: line and column, counted from 1 (columns in bytes), the path from the
 * record to the place, such as "values[3].price" and empty for the record itself, and one sentence, without a full
 * stop. The strings are the workspace's until its next ZynJsonRead. */
typedef struct ZynJsonError {
    uint32_t line;
    uint32_t column;
    const char* path;
    const char* text;
} ZynJsonError;

/* ZynJsonLastError fills *out and returns 1 if the last ZynJsonRead failed, otherwise returns 0. */
ZYN_API int ZynJsonLastError(const ZynJson* json, ZynJsonError* out);

#ifdef __cplusplus
}
#endif

#endif
