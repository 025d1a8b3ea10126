/* What went wrong, and where: the particulars of a failed Decode or Encode, and what each failure code means. */
#ifndef ZYN_FAILURE_H
#define ZYN_FAILURE_H

#include "zyn/asn.h"
#include "zyn/describe.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ZynFailure holds the particulars of a failure. All strings are the library's, never null, and live until the next Decode
 * or Encode; those that do not apply are empty.
 *
 * code is what the Decode returned, or the reason why an Encode returned 0: ZYN_E_NO_ROOM, ZYN_E_NO_ALTERNATIVE or
 * ZYN_E_NO_WIRE_FORM, or ZYN_E_NO_MEMORY. Refused memory may name no place: it is not the message's fault.
 * module, record and field name the place in the schema: for a code of -100 and below the place that the code stands for,
 * for any other the innermost record that was being read or written, and the field or alternative in it. field is empty
 * where the record as a whole is meant: its length, its end, or an element that fits none of its fields.
 * path leads from the envelope to the place, such as "upTransMsg.order.order.secBoardId.boardId"; the elements of a list
 * count from 0, in brackets: "indexValRep.valuesList[3].value". It is empty where the envelope itself is meant.
 * offset is that of the first octet of the element refused, from the start of the message; for a length that does not add
 * up the end that it gives the record, where data are missing the length of the data. For ZYN_E_NO_ROOM it is the number of
 * octets that the message needs, otherwise 0 for an Encode.
 * text is one sentence for a person: what was expected and what was found. */
typedef struct ZynFailure {
    int32_t code;
    const char* module;
    const char* record;
    const char* field;
    const char* path;
    uint32_t offset;
    const char* text;
} ZynFailure;

/* ZynLastFailure fills *out and returns 1 if the last Decode or Encode failed, otherwise returns 0 and leaves *out as it
 * is. What is needed is kept when the failure happens, so that neither message nor record has to be in place any more; the
 * strings are made when they are asked for. A success costs nothing for either. The operations of single types
 * (zyn/record.h) are neither Decode nor Encode: what fails in them changes nothing here. */
ZYN_API int ZynLastFailure(ZynFailure* out);

/* ZynFailureText tells what a code means without a message at hand, in one sentence. module is needed for codes of -100
 * and below only, which every module counts for itself; otherwise it may be null. An unknown code or module gives null. The
 * text is the library's and lives until the next call of the same thread. */
ZYN_API const char* ZynFailureText(const char* module, int32_t code);

/* ZynPlaceKind tells what is refused at a place: the tag of a whole message; the tag inside a field's wrapper; the length of
 * a record, which its fields do not add up to; the tag of an element that is not the required field due; an element that
 * fits none of the fields that may stand there; or, of a type that has one place only, content in a record without fields, a
 * list's element that is no SEQUENCE, or a tag that is that of no alternative. */
typedef enum ZynPlaceKind {
    ZYN_PLACE_MESSAGE_TAG,
    ZYN_PLACE_INNER_TAG,
    ZYN_PLACE_LENGTH,
    ZYN_PLACE_FIELD_TAG,
    ZYN_PLACE_STRAY,
    ZYN_PLACE_ONLY
} ZynPlaceKind;

/* ZynPlace is what a code of -100 and below stands for: a place in type. field is that of a field's or inner tag, otherwise
 * null. */
typedef struct ZynPlace {
    const ZynType* type;
    const ZynField* field;
    ZynPlaceKind kind;
} ZynPlace;

/* ZynFailurePlace fills *out with the place that code stands for in module and returns 1; 0 if there is none, or if it is a
 * number that is counted but never reported (a stray element where a required field comes last). */
ZYN_API int ZynFailurePlace(const char* module, int32_t code, ZynPlace* out);

#ifdef __cplusplus
}
#endif

#endif
