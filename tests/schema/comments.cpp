// Which comments reach the C headers, and where.
#include <gtest/gtest.h>

#include "schema/checker.h"
#include "schema/emitter.h"
#include "schema/remarks.h"
#include "sources.h"

namespace zyn::schema {
namespace {

// The header of a module without its frame: from the module's comment to the last declaration.
std::string headerOf(const Source& source) {
    const std::string text = emit(compile({source})).headers.front().text;
    const std::string begin = "extern \"C\" {\n#endif\n\n", end = "\n#ifdef __cplusplus\n}";
    const std::size_t from = text.find(begin) + begin.size();
    return text.substr(from, text.rfind(end) - from);
}

struct Case {
    const char* why;
    Source source;
    std::string header;
};

TEST(SchemaComments, GoWhereTheyBelong) {
    const std::string longText(90, 'x');
    const std::vector<Case> cases = {
        {"above a type or field, directly, over several lines; behind a field, on its line",
         module("-- Of T,\n-- two lines.\nT ::= SEQUENCE {\n"
                " -- Above a.\n a [1] INTEGER OPTIONAL, -- behind a\n b INTEGER -- behind b\n}"),
         "typedef struct T T;\n\n"
         "/* Of T, two lines. */\n"
         "struct T {\n"
         "    /* Above a. */\n"
         "    AsnInt* a; /* [1] OPTIONAL; behind a */\n"
         "    AsnInt b; /* behind b */\n"
         "};\n"
         "ZYN_RECORD(T);\n"},
        {"on the lines of a type's braces: the type's",
         module("-- Above.\nT ::= SEQUENCE { -- at the brace\n a INTEGER\n} -- at the end"),
         "typedef struct T T;\n\n"
         "/* Above.\n *\n * at the brace at the end */\n"
         "struct T {\n    AsnInt a;\n};\nZYN_RECORD(T);\n"},
        {"parted by an empty line, ahead of a closing brace, or among imports: nobody's",
         module("-- A section.\n\nT ::= SEQUENCE {\n a INTEGER,\n -- stray\n\n b INTEGER\n -- end\n}"),
         "/* A section. */\n\n" // right below the first line it is the module's
         "typedef struct T T;\n\n"
         "struct T {\n    AsnInt a;\n    AsnInt b;\n};\nZYN_RECORD(T);\n"},
        {"above the module: the module's, in paragraphs",
         {"M.asn1", "-- First.\n--\n-- Second.\n\nM DEFINITIONS IMPLICIT TAGS ::= BEGIN\n-- Not.\n\n"
                    "-- Of T.\nT ::= SEQUENCE {}\nEND"},
         "/* First.\n *\n * Second. */\n\n"
         "typedef struct T T;\n\n"
         "/* Of T. */\n"
         "struct T {\n    char unused;\n};\nZYN_RECORD(T);\n"},
        {"right below the first line of the module and directly above a type: the type's",
         module("-- Of T.\nT ::= SEQUENCE {}"),
         "typedef struct T T;\n\n/* Of T. */\nstruct T {\n    char unused;\n};\nZYN_RECORD(T);\n"},
        {"of lists and alternatives",
         module("S ::= SEQUENCE {}\n-- Of L.\nL ::= SET OF S -- more\n"
                "C ::= CHOICE {\n a [0] S, -- behind\n -- Above.\n b [12] OCTET STRING,\n c [3] INTEGER }"),
         "typedef struct S S;\ntypedef struct C C;\n\n"
         "struct S {\n    char unused;\n};\nZYN_RECORD(S);\n\n"
         "/* Of L.\n *\n * more */\n"
         "typedef AsnList L; /* of S */\nZYN_RECORD(L);\n\n"
         "struct C {\n    uint32_t choiceId;\n    union {\n"
         "        S* a; /* 0; behind */\n"
         "        /* Above. */\n"
         "        AsnOcts* b; /* 12 */\n"
         "        AsnInt c; /* 3 */\n"
         "        void* slot;\n    };\n};\nZYN_RECORD(C);\n"},
        {"too long for the line of its field: above it",
         module("T ::= SEQUENCE {\n a [1] INTEGER OPTIONAL -- " + longText + "\n}"),
         "typedef struct T T;\n\n"
         "struct T {\n    /* " +
             longText + " */\n    AsnInt* a; /* [1] OPTIONAL */\n};\nZYN_RECORD(T);\n"},
        {"longer than a line: broken between words, the closing mark inside the line",
         module("-- " + longText + " aa bb cccccccc d\nT ::= SEQUENCE {}"),
         "typedef struct T T;\n\n/* " + longText +
             " aa bb cccccccc\n * d */\n"
             "struct T {\n    char unused;\n};\nZYN_RECORD(T);\n"},
        {"the marks of a C comment do not end or nest one", module("T ::= SEQUENCE {\n a INTEGER -- x */ y /* z\n}"),
         "typedef struct T T;\n\nstruct T {\n    AsnInt a; /* x * / y / * z */\n};\nZYN_RECORD(T);\n"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.why);
        EXPECT_EQ(headerOf(row.source), row.header);
    }
}

TEST(SchemaComments, AsJson) {
    const Source source = {"M.asn1", "-- Of \"M\".\n--\n-- More.\n\nM DEFINITIONS IMPLICIT TAGS ::= BEGIN\n\n"
                                     "-- Of T.\nT ::= SEQUENCE { -- at the brace\n"
                                     " -- Above a.\n a [1] EXPLICIT INTEGER OPTIONAL, -- a\\b\n b [2] INTEGER\n}\n"
                                     "U ::= SEQUENCE {}\nEND"};
    EXPECT_EQ(remarks(compile({source})),
              R"({"module":"M","comment":"Of \"M\".\u000aMore."})"
              "\n"
              R"({"type":"T","module":"M","line":8,"comment":"Of T.\u000aat the brace","members":[)"
              R"({"name":"a","tag":"[1] EXPLICIT","above":"Above a.","behind":"a\\b"},)"
              R"({"name":"b","tag":"[2]","above":"","behind":""}]})"
              "\n"
              R"({"type":"U","module":"M","line":13,"comment":"","members":[]})"
              "\n");
}

} // namespace
} // namespace zyn::schema
