// What the compiler refuses, and with which line and reason. Each row stands for one rule.
#include <gtest/gtest.h>

#include "schema/checker.h"
#include "schema/emitter.h"
#include "schema/refusal.h"
#include "sources.h"

namespace zyn::schema {
namespace {

struct Case {
    std::vector<Source> sources;
    std::string refusal;
};

void expectRefused(const std::vector<Case>& cases) {
    for (const Case& row : cases) {
        SCOPED_TRACE(row.sources.front().text);
        try {
            emit(compile(row.sources));
            ADD_FAILURE() << "taken, instead of: " << row.refusal;
        } catch (const Refusal& refusal) {
            EXPECT_EQ(refusal.what(), row.refusal);
        }
    }
}

Case one(const std::string& body, const std::string& refusal) { return {{module(body)}, refusal}; }

TEST(SchemaRefuses, WhatTheLanguageDoesNotHave) {
    expectRefused({
        one("T ::= SEQUENCE {\n a INTEGER (0..5)\n}", "M.asn1:3: the character '(' is not understood"),
        one("T ::= SEQUENCE { a INTEGER,\n ... }", "M.asn1:3: the character '.' is not understood"),
        one("T ::= SEQUENCE { a -- c -- b- INTEGER }", "M.asn1:2: a hyphen inside a name is not supported"),
        one("T ::= SEQUENCE { a [01] INTEGER }", "M.asn1:2: a number cannot begin with 0"),
        one("T ::= SEQUENCE { a INTEGER -- x -- DEFAULT 0 }", "M.asn1:2: expected ',' or '}' but found 'DEFAULT'"),
        one("T ::= SEQUENCE { a INTEGER { one(1) } }", "M.asn1:2: the character '(' is not understood"),
        one("T ::= SEQUENCE { a NULL }", "M.asn1:2: expected the name of a type but found 'NULL'"),
        one("T ::= SEQUENCE {\n a ENUMERATED\n}", "M.asn1:3: expected the name of a type but found 'ENUMERATED'"),
        one("T ::= SEQUENCE { a SEQUENCE { b INTEGER } }",
            "M.asn1:2: expected the name of a type but found 'SEQUENCE'"),
        one("T ::= SEQUENCE { a SET OF INTEGER }", "M.asn1:2: expected the name of a type but found 'SET'"),
        one("T ::= SEQUENCE { a OCTET INTEGER }", "M.asn1:2: expected 'STRING' but found 'INTEGER'"),
        one("T ::= SEQUENCE { a [APPLICATION 1] INTEGER }",
            "M.asn1:2: expected the number of a context tag but found 'APPLICATION'"),
        one("T ::= SEQUENCE { a INTEGER,\n}", "M.asn1:3: expected the name of a field but found '}'"),
        one("T ::= SEQUENCE { A INTEGER }", "M.asn1:2: expected the name of a field but found 'A'"),
        one("T ::= SEQUENCE { a INTEGER b INTEGER }", "M.asn1:2: expected ',' or '}' but found 'b'"),
        one("T ::= SEQUENCE { a INTEGER", "M.asn1:3: expected ',' or '}' but found 'END'"),
        one("T ::= SEQUENCE OF INTEGER", "M.asn1:2: expected '{' but found 'OF'"),
        one("T ::= SET { a INTEGER }", "M.asn1:2: expected 'OF' but found '{'"),
        one("T ::= OCTET STRING",
            "M.asn1:2: expected SEQUENCE, CHOICE, SET OF or [UNIVERSAL 10] IMPLICIT INTEGER but found "
            "'OCTET'"),
        one("T ::= [UNIVERSAL 10] INTEGER", "M.asn1:2: expected 'IMPLICIT' but found 'INTEGER'"),
        one("T ::= [UNIVERSAL 9] IMPLICIT INTEGER", "M.asn1:2: expected '10' but found '9'"),
        one("t ::= SEQUENCE {}", "M.asn1:2: expected the name of a type or END but found 't'"),
        one("REAL ::= SEQUENCE {}", "M.asn1:2: expected the name of a type or END but found 'REAL'"),
        one("T ::= CHOICE {}", "M.asn1:2: expected the name of an alternative but found '}'"),
        one("T ::= CHOICE {\n a INTEGER\n}",
            "M.asn1:3: expected the context tag of the alternative 'a' but found 'INTEGER'"),
        one("T ::= CHOICE { a [1] INTEGER OPTIONAL }", "M.asn1:2: expected ',' or '}' but found 'OPTIONAL'"),
        one("EXPORTS T;", "M.asn1:2: expected the name of a type or END but found 'EXPORTS'"),
        one("END\nN DEFINITIONS", "M.asn1:3: expected the end of the file but found 'N'"),
        {{{"M.asn1", "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN END"}},
         "M.asn1:1: expected 'IMPLICIT' but found 'AUTOMATIC'"},
        {{{"M.asn1", "M DEFINITIONS IMPLICIT TAGS ::= BEGIN\n\n"}},
         "M.asn1:3: expected the name of a type or END but found the end of the file"},
        {{{"dir/N.asn1", "\nM DEFINITIONS IMPLICIT TAGS ::= BEGIN END"}},
         "dir/N.asn1:2: the module 'M' stands in a file of the name 'N'"},
    });
}

TEST(SchemaRefuses, NamesThatLeadNowhereOrTwoWays) {
    expectRefused({
        one("T ::= SEQUENCE {\n a INTEGER,\n b Missing\n}",
            "M.asn1:4: the type 'Missing' is neither defined in this module nor imported"),
        {{module("T ::= SEQUENCE { u U }"), module("U ::= SEQUENCE {}", "N")},
         "M.asn1:2: the type 'U' is neither defined in this module nor imported"},
        {{module("IMPORTS U FROM N;\nT ::= SEQUENCE { u U }")}, "M.asn1:2: the module 'N' is not known"},
        {{module("IMPORTS\n V FROM N;\nT ::= SEQUENCE { v V }"), module("U ::= SEQUENCE {}", "N")},
         "M.asn1:3: the module 'N' defines no 'V'"},
        {{module("IMPORTS U FROM N;\nT ::= SEQUENCE {}"), module("U ::= SEQUENCE {}", "N")},
         "M.asn1:2: 'U' is imported but not used"},
        {{module("IMPORTS U,\n U FROM N;\nT ::= SEQUENCE { u U }"), module("U ::= SEQUENCE {}", "N")},
         "M.asn1:3: 'U' is imported twice"},
        one("T ::= SEQUENCE {}\n\nT ::= SEQUENCE {}", "M.asn1:4: the type 'T' is defined already in module 'M'"),
        {{module("T ::= SEQUENCE {}"), module("T ::= SEQUENCE {}", "N")},
         "N.asn1:2: the type 'T' is defined already in module 'M'"},
        {{{"b/M.asn1", module("").text}, {"a/M.asn1", module("").text}},
         "b/M.asn1:1: the module 'M' is also in a/M.asn1"},
        {{module("IMPORTS U FROM N;\nT ::= SEQUENCE { u U }\nX ::= SEQUENCE {}"),
          module("IMPORTS V FROM O;\nU ::= SEQUENCE { v V }", "N"),
          module("IMPORTS X FROM M;\nV ::= SEQUENCE { x X }", "O")},
         "O.asn1:2: the modules 'O' and 'M' import from each other, directly or through others"},
        one("T ::= SEQUENCE {\n a INTEGER,\n a INTEGER }", "M.asn1:4: the field 'a' occurs twice in 'T'"),
        one("T ::= CHOICE {\n a [0] INTEGER,\n a [1] INTEGER }", "M.asn1:4: the alternative 'a' occurs twice in 'T'"),
        one("T ::= CHOICE {\n a [7] INTEGER,\n b [7] INTEGER }",
            "M.asn1:4: the alternatives 'a' and 'b' have the same number"),
        one("T ::= SEQUENCE {\n t [1] T OPTIONAL\n}", "M.asn1:3: the type 'T' contains itself, through 'T'"),
        one("A ::= SEQUENCE { l L }\nL ::= SET OF C\nC ::= SEQUENCE { d D }\nD ::= CHOICE {\n a [0] A }",
            "M.asn1:6: the type 'D' contains itself, through 'A'"),
    });
}

TEST(SchemaRefuses, WhatTheCodecRulesDoNotKnow) {
    const std::string helpers = "C ::= CHOICE { x [0] INTEGER }\nL ::= SET OF S\nS ::= SEQUENCE {}\n"
                                "E ::= [UNIVERSAL 10] IMPLICIT INTEGER\n";
    const auto field = [&](const std::string& text, const std::string& refusal) {
        return one(helpers + "T ::= SEQUENCE {\n f " + text + " }", refusal);
    };
    const auto alternative = [&](const std::string& text, const std::string& refusal) {
        return one(helpers + "T ::= CHOICE {\n f " + text + " }", refusal);
    };
    const std::string otherKinds =
        "M.asn1:7: the alternative 'f' must be an INTEGER, an OCTET STRING, a SEQUENCE or a CHOICE";
    expectRefused({
        field("[1] REAL", "M.asn1:7: the field 'f' is a REAL, which cannot have a context tag"),
        field("[1] L", "M.asn1:7: the field 'f' is a SET OF, which cannot have a context tag"),
        field("[1] IMPLICIT C", "M.asn1:7: the field 'f' is a CHOICE, which cannot have a context tag"),
        field("REAL OPTIONAL", "M.asn1:7: the field 'f' is a REAL, which cannot be OPTIONAL"),
        field("L OPTIONAL", "M.asn1:7: the field 'f' is a SET OF, which cannot be OPTIONAL"),
        field("C OPTIONAL", "M.asn1:7: the field 'f' is a CHOICE, which cannot be OPTIONAL"),
        field("[1] EXPLICIT C", "M.asn1:7: the field 'f' is EXPLICIT, which only an INTEGER can be"),
        field("[1] EXPLICIT S", "M.asn1:7: the field 'f' is EXPLICIT, which only an INTEGER can be"),
        field("[1] EXPLICIT E", "M.asn1:7: the field 'f' is EXPLICIT, which only an INTEGER can be"),
        field("[1] EXPLICIT OCTET STRING OPTIONAL",
              "M.asn1:7: the field 'f' is EXPLICIT, which only an INTEGER can be"),
        field("[128] INTEGER", "M.asn1:7: the field 'f' has a tag number above 127"),
        field("[4294967297] INTEGER", "M.asn1:7: the field 'f' has a tag number above 127"),
        alternative("[16384] INTEGER", "M.asn1:7: the alternative 'f' has a number above 16383"),
        alternative("[1] C", "M.asn1:7: the alternative 'f' is a CHOICE itself, so its tag must be EXPLICIT"),
        alternative("[1] EXPLICIT S", "M.asn1:7: the alternative 'f' is EXPLICIT, which only a CHOICE can be"),
        alternative("[1] EXPLICIT INTEGER", "M.asn1:7: the alternative 'f' is EXPLICIT, which only a CHOICE can be"),
        alternative("[1] REAL", otherKinds),
        alternative("[1] BOOLEAN", otherKinds),
        alternative("[1] BIT STRING", otherKinds),
        alternative("[1] L", otherKinds),
        one("T ::= SET OF INTEGER", "M.asn1:2: the elements of 'T' must be of a SEQUENCE type"),
        one(helpers + "T ::= SET OF L", "M.asn1:6: the elements of 'T' must be of a SEQUENCE type"),
        one(helpers + "T ::= SET OF\n C", "M.asn1:7: the elements of 'T' must be of a SEQUENCE type"),
        {{module("S ::= SEQUENCE { a INTEGER }\nL ::= SET OF S", "Main")},
         "Main.asn1:3: no type refers to 'L', and a message must be a CHOICE or a SEQUENCE with fields"},
        {{module("S ::= SEQUENCE {}", "Main")},
         "Main.asn1:2: no type refers to 'S', and a message must be a CHOICE or a SEQUENCE with fields"},
    });
}

TEST(SchemaRefuses, WhatIsAmbiguousOnTheWire) {
    const auto clash = [](const std::string& fields, int line, const char* later, const char* tag) {
        return one("C ::= CHOICE { x [3] OCTET STRING, y [4] EXPLICIT D }\nD ::= CHOICE { z [0] INTEGER }\n"
                   "S ::= SEQUENCE {}\nT ::= SEQUENCE {\n" +
                       fields + "\n}",
                   "M.asn1:" + std::to_string(line) + ": the field '" + later + "' accepts the tag " + tag +
                       ", which the OPTIONAL field 'a' ahead of it would take");
    };
    expectRefused({
        clash("a INTEGER OPTIONAL,\nb INTEGER", 7, "b", "02"),
        // Other OPTIONAL fields between do not help.
        clash("a [1] INTEGER OPTIONAL,\nb INTEGER OPTIONAL,\nc [1] INTEGER OPTIONAL", 8, "c", "81"),
        clash("a S OPTIONAL,\nb [40] INTEGER OPTIONAL,\nc S", 8, "c", "30"),
        clash("a [40] INTEGER OPTIONAL,\nb [40] INTEGER", 7, "b", "9F28"),
        // A string has a constructed form too: that of a record, or of a wrapper.
        clash("a [1] OCTET STRING OPTIONAL,\nb [1] S", 7, "b", "A1"),
        clash("a [1] EXPLICIT INTEGER OPTIONAL,\nb [1] BIT STRING", 7, "b", "A1"),
        // A CHOICE opens with the tag of any alternative, in either form, and with a wrapper's.
        clash("a [3] INTEGER OPTIONAL,\nb C", 7, "b", "83"),
        clash("a [3] S OPTIONAL,\nb C", 7, "b", "A3"),
        clash("a [4] S OPTIONAL,\nb C", 7, "b", "A4"),
    });
}

TEST(SchemaRefuses, WhatTheLanguagesWrittenCannotExpress) {
    expectRefused({
        one("T ::= SEQUENCE {\n new INTEGER }", "M.asn1:3: the name 'new' is taken in C or C++"),
        one("T ::= CHOICE {\n a [0] INTEGER,\n slot [1] INTEGER }", "M.asn1:4: the name 'slot' is taken in C or C++"),
        one("E ::= [UNIVERSAL 10] IMPLICIT INTEGER", "M.asn1:1: the module 'M' defines no record"),
        one("AsnList ::= SEQUENCE {}", "M.asn1:2: the name 'AsnList' is one of the run-time's own"),
        one("T ::= SEQUENCE { l L }\nL ::= SET OF S\nS ::= SEQUENCE {}",
            "M.asn1:2: the SET OF 'L' must stand ahead of its use"),
    });
}

} // namespace
} // namespace zyn::schema
