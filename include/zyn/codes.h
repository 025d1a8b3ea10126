/* The failure codes of the run-time. Codes of -100 and below name a place in a record of one module (zyn/failure.h). */
#ifndef ZYN_CODES_H
#define ZYN_CODES_H

/* ZYN_CODES(X) calls X(name, number, meaning) for each code. Those down to -45 come from a Decode, the next three tell why
 * an Encode returned 0, the last one is ZynMessageLength's. */
#define ZYN_CODES(X)                                                                                                   \
    X(ZYN_E_BITS_NOT_LAST, -1, "a component of a constructed BIT STRING that is not the last has unused bits")         \
    X(ZYN_E_BITS_COMPONENT_CUT, -2, "the data end inside a component of a BIT STRING")                                 \
    X(ZYN_E_BITS_COMPONENT_TAG, -3, "a component of a BIT STRING is no BIT STRING")                                    \
    X(ZYN_E_BITS_CUT, -4, "the data end inside a BIT STRING")                                                          \
    X(ZYN_E_BOOL_LENGTH, -5, "a BOOLEAN is not one octet long")                                                        \
    X(ZYN_E_BOOL_CUT, -6, "the data end inside a BOOLEAN")                                                             \
    X(ZYN_E_INT_LENGTH, -7, "an INTEGER has more than 4 octets")                                                       \
    X(ZYN_E_INT_CUT, -8, "the data end inside an INTEGER")                                                             \
    X(ZYN_E_UINT_LENGTH, -9, "an unsigned INTEGER has more than 5 octets")                                             \
    X(ZYN_E_UINT_NEGATIVE, -10, "an unsigned INTEGER is negative")                                                     \
    X(ZYN_E_UINT_TOO_BIG, -11, "an unsigned INTEGER of 5 octets does not start with 0")                                \
    X(ZYN_E_UINT_CUT, -12, "the data end inside an unsigned INTEGER")                                                  \
    X(ZYN_E_LENGTH_MISSING, -13, "the data end where a length is due")                                                 \
    X(ZYN_E_LENGTH_TOO_LONG, -14, "a length has more than 4 octets beyond the first")                                  \
    X(ZYN_E_LENGTH_CUT, -15, "the data end inside a length")                                                           \
    X(ZYN_E_EOC, -16, "no end-of-contents marker where one is due")                                                    \
    X(ZYN_E_OCTS_COMPONENT_CUT, -18, "the data end inside a component of an OCTET STRING")                             \
    X(ZYN_E_OCTS_COMPONENT_TAG, -19, "a component of an OCTET STRING is no OCTET STRING")                              \
    X(ZYN_E_OCTS_CUT, -20, "the data end inside an OCTET STRING")                                                      \
    X(ZYN_E_REAL_SPECIAL, -22, "a REAL of one octet is neither of the infinities")                                     \
    X(ZYN_E_REAL_BASE, -23, "a REAL has a base other than 2, 8 and 16")                                                \
    X(ZYN_E_REAL_DECIMAL, -24, "a REAL is in a decimal form")                                                          \
    X(ZYN_E_TAG_TOO_LONG, -25, "a tag has more than three octets")                                                     \
    X(ZYN_E_TAG_MISSING, -26, "the data end where a tag is due, or inside it")                                         \
    X(ZYN_E_NO_MEMORY, -27, "memory was refused")                                                                      \
    X(ZYN_E_EOC_SECOND_OCTET, -28, "the second octet of an end-of-contents marker is not 0, or is missing")            \
    X(ZYN_E_WRONG_TAG, -40, "the tag of a value decoded on its own is not that of its type")                           \
    X(ZYN_E_INT_EMPTY, -41, "an INTEGER has no content")                                                               \
    X(ZYN_E_BITS_EMPTY, -42, "a primitive BIT STRING has no content, not even the count of unused bits")               \
    X(ZYN_E_BITS_UNUSED, -43, "a BIT STRING counts more than 7 unused bits, or more than it has")                      \
    X(ZYN_E_REAL_EXPONENT_EMPTY, -44, "a REAL's exponent is said to have no octets")                                   \
    X(ZYN_E_BITS_TOO_MANY, -45, "a BIT STRING has more bits than 31 bits can count")                                   \
    X(ZYN_E_NO_ROOM, -50, "the message does not fit into the block")                                                   \
    X(ZYN_E_NO_ALTERNATIVE, -51, "a number is that of no alternative, or of no channel")                               \
    X(ZYN_E_NO_WIRE_FORM, -52, "a value has no form on the wire")                                                      \
    X(ZYN_E_LENGTH_PRIMITIVE, -53, "a primitive element has an indefinite length")

#define ZYN_CODE_NAME(name, number, meaning) name = number,
enum ZynCode { ZYN_CODES(ZYN_CODE_NAME) };
#undef ZYN_CODE_NAME

#endif
