// The failure codes as codes.txt lists them, apart from how the library computes them.
#pragma once

#include <map>
#include <string>

namespace zyn::test {

// The codes of one record by place: the name of a field, or "inner " and the name, or outer, content,
// element, alternative, stray, length. A place that can never fail has none.
using RecordCodes = std::map<std::string, int>;

struct ListedRecord {
    std::string module;
    RecordCodes codes;
};

// By name of the record. Ends the test run if a line of the file cannot be read.
const std::map<std::string, ListedRecord>& listedCodes();

} // namespace zyn::test
