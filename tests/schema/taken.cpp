// What the compiler makes of small schemas, as its dump tells it.
#include <gtest/gtest.h>

#include "schema/checker.h"
#include "schema/dump.h"
#include "sources.h"

namespace zyn::schema {
namespace {

struct Case {
    const char* why;
    std::vector<Source> sources;
    const char* dump;
};

TEST(SchemaTakes, SmallSchemas) {
    const std::vector<Case> cases = {
        {"each kind has its own tag, strings in two forms",
         {module("E ::= [UNIVERSAL 10] IMPLICIT INTEGER\nS ::= SEQUENCE {}\nL ::= SET OF S\n"
                 "T ::= SEQUENCE {\n"
                 " a BOOLEAN, b INTEGER, c E, d REAL, e OCTET STRING, f BIT STRING, g S, h L }")},
         "module M\n"
         "  ENUMERATED E\n"
         "  SEQUENCE S, empty\n"
         "  SET OF S L\n"
         "  SEQUENCE T\n"
         "    a  01     BOOLEAN\n"
         "    b  02     INTEGER\n"
         "    c  0A     E\n"
         "    d  09     REAL\n"
         "    e  04|24  OCTET STRING\n"
         "    f  03|23  BIT STRING\n"
         "    g  30     S\n"
         "    h  31     L\n"},
        {"a context tag takes the place of a type's own, in one or two octets; IMPLICIT may be said or not",
         {module("E ::= [UNIVERSAL 10] IMPLICIT INTEGER\n"
                 "T ::= SEQUENCE {\n"
                 " a [0] INTEGER OPTIONAL, b [30] IMPLICIT E, c [31] BOOLEAN, d [127] OCTET STRING,\n"
                 " e [1] U OPTIONAL, f [101] U, g [12] BIT STRING OPTIONAL }\nU ::= SEQUENCE { i INTEGER }")},
         "module M\n"
         "  ENUMERATED E\n"
         "  SEQUENCE T\n"
         "    a  80         INTEGER       OPTIONAL\n"
         "    b  9E         E\n"
         "    c  9F1F       BOOLEAN\n"
         "    d  9F7F|BF7F  OCTET STRING\n"
         "    e  A1         U             OPTIONAL\n"
         "    f  BF65       U\n"
         "    g  8C|AC      BIT STRING    OPTIONAL\n"
         "  SEQUENCE U\n"
         "    i  02  INTEGER\n"},
        {"an explicit tag wraps an INTEGER with its own tag",
         {module("T ::= SEQUENCE { a [1] EXPLICIT INTEGER OPTIONAL, b [40] EXPLICIT INTEGER }")},
         "module M\n"
         "  SEQUENCE T\n"
         "    a  A1(02)    INTEGER  OPTIONAL\n"
         "    b  BF28(02)  INTEGER\n"},
        {"an alternative's number is its tag, in up to three octets; a CHOICE inside a CHOICE is wrapped",
         {module("C ::= CHOICE { a [0] INTEGER, b [127] OCTET STRING, c [128] S, d [16383] EXPLICIT D }\n"
                 "D ::= CHOICE { e [0] OCTET STRING }\nS ::= SEQUENCE {}\nT ::= SEQUENCE { f C }")},
         "module M\n"
         "  CHOICE C\n"
         "    0      a  80         INTEGER\n"
         "    127    b  9F7F|BF7F  OCTET STRING\n"
         "    128    c  BF8100     S\n"
         "    16383  d  BFFF7F(*)  D\n"
         "  CHOICE D\n"
         "    0  e  80|A0  OCTET STRING\n"
         "  SEQUENCE S, empty\n"
         "  SEQUENCE T\n"
         "    f  *  C\n"},
        {"what nothing in Main refers to is a message; elsewhere it is not",
         {module("IMPORTS S FROM A;\n"
                 "C ::= CHOICE { a [0] S }\nReq ::= SEQUENCE { c C }\nRep ::= CHOICE { b [9] S }",
                 "Main"),
          module("S ::= SEQUENCE {}\nU ::= SEQUENCE { i INTEGER }", "A")},
         "module A\n"
         "  SEQUENCE S, empty\n"
         "  SEQUENCE U\n"
         "    i  02  INTEGER\n"
         "\n"
         "module Main\n"
         "  CHOICE C\n"
         "    0  a  A0  S\n"
         "  message SEQUENCE Req\n"
         "    c  *  C\n"
         "  message CHOICE Rep\n"
         "    9  b  A9  S\n"},
        {"equal tags are told apart by a required field between them, or by being required themselves",
         {module("T ::= SEQUENCE { a INTEGER, b INTEGER OPTIONAL, c BOOLEAN, d INTEGER OPTIONAL,\n"
                 " e [1] INTEGER OPTIONAL, f [1] EXPLICIT INTEGER OPTIONAL, g [2] S OPTIONAL,\n"
                 " h [2] INTEGER }\n"
                 "S ::= SEQUENCE { x OCTET STRING, y OCTET STRING OPTIONAL }")},
         "module M\n"
         "  SEQUENCE T\n"
         "    a  02      INTEGER\n"
         "    b  02      INTEGER  OPTIONAL\n"
         "    c  01      BOOLEAN\n"
         "    d  02      INTEGER  OPTIONAL\n"
         "    e  81      INTEGER  OPTIONAL\n"
         "    f  A1(02)  INTEGER  OPTIONAL\n"
         "    g  A2      S        OPTIONAL\n"
         "    h  82      INTEGER\n"
         "  SEQUENCE S\n"
         "    x  04|24  OCTET STRING\n"
         "    y  04|24  OCTET STRING  OPTIONAL\n"},
        {"a comment ends at the next two hyphens or at the end of its line; lines may end in CR LF",
         {module("T ::= -- one -- SEQUENCE {\r\n a -- two--INTEGER, -- }\r\n b--three\r\n BOOLEAN }")},
         "module M\n"
         "  SEQUENCE T\n"
         "    a  02  INTEGER\n"
         "    b  01  BOOLEAN\n"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.why);
        EXPECT_EQ(dump(compile(row.sources)), row.dump);
    }
}

} // namespace
} // namespace zyn::schema
