#include "tests/records/codes.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <stdexcept>

#include "records/tables.h"

namespace zyn::test {
namespace {

void readCells(const std::string& line, const std::string& module, std::map<std::string, ListedRecord>& records) {
    std::istringstream cells(line);
    std::string name, due, stray, length;
    std::getline(cells >> std::ws, name, ' ');
    cells.ignore(2, '|');
    std::getline(cells, due, '|');
    if (!std::getline(cells, stray, '|') || !std::getline(cells, length))
        throw std::runtime_error("codes.txt: " + line);
    ListedRecord record{module, {}};
    std::istringstream places(due);
    for (std::string place; std::getline(places >> std::ws, place, ',');) {
        const auto blank = place.find(" -");
        if (blank != place.npos) record.codes.emplace(place.substr(0, blank), std::stoi(place.substr(blank + 1)));
    }
    if (stray != " - ") record.codes.emplace("stray", std::stoi(stray));
    if (length != " -") record.codes.emplace("length", std::stoi(length));
    if (!records.emplace(name, record).second) throw std::runtime_error("codes.txt has twice: " + name);
}

std::map<std::string, ListedRecord> readList() {
    std::ifstream file(ZYN_TEST_DATA "/records/codes.txt");
    std::map<std::string, ListedRecord> records;
    std::string module;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        if (line[0] == '[') module = line.substr(1, line.find(']') - 1);
        else readCells(line, module, records);
    }
    return records;
}

} // namespace

const std::map<std::string, ListedRecord>& listedCodes() {
    static const std::map<std::string, ListedRecord> list = readList();
    return list;
}

namespace {

RecordCodes computedCodes(const Type& type) {
    RecordCodes codes;
    if (type.fields.empty()) {
        const char* place = type.shape == Shape::SetOf    ? "element"
                            : type.shape == Shape::Choice ? "alternative"
                                                          : "content";
        codes.emplace(place, siteCode(type, Site::Only));
        return codes;
    }
    if (type.message) codes.emplace("outer", siteCode(type, Site::OuterTag));
    for (std::size_t i = 0; i < type.fields.size(); ++i) {
        const Field& field = type.fields[i];
        if (field.wrapped) codes.emplace(std::string("inner ") + field.name, siteCode(type, Site::InnerTag, i));
        if (!field.optional) codes.emplace(field.name, siteCode(type, Site::FieldTag, i));
    }
    codes.emplace("length", siteCode(type, Site::Length));
    if (type.fields.back().optional) codes.emplace("stray", siteCode(type, Site::Stray));
    return codes;
}

TEST(Codes, AreTheListedOnes) {
    std::size_t records = 0;
    for (const Type& type : types) {
        if (type.shape == Shape::Primitive) continue;
        ++records;
        const auto listed = listedCodes().find(type.name);
        ASSERT_NE(listed, listedCodes().end()) << type.name << " is not in the list";
        EXPECT_EQ(listed->second.module, type.module) << type.name;
        EXPECT_EQ(listed->second.codes, computedCodes(type)) << type.name;
    }
    EXPECT_EQ(records, listedCodes().size()) << "the list has a record that the tables lack";
}

TEST(Codes, RecordsAndAlternativesAreComplete) {
    std::map<Shape, int> shapes;
    for (const Type& type : types) ++shapes[type.shape];
    EXPECT_EQ(shapes[Shape::Sequence], 309);
    EXPECT_EQ(shapes[Shape::SetOf], 7);
    EXPECT_EQ(shapes[Shape::Choice], 7);

    struct {
        TypeId id;
        std::size_t count;
        uint32_t first, last; // of the numbers behind 0
        std::vector<uint32_t> holes;
    } const choices[] = {
        {TypeId::ZynTransReqChoice, 107, 385, 501, {401, 429, 436, 437, 446, 450, 451, 452, 459, 460, 477}},
        {TypeId::ZynQueryReqChoice, 70, 256, 335, {272, 276, 290, 297, 300, 307, 308, 311, 319, 326, 332}},
        {TypeId::ZynQueryRep, 70, 256, 335, {272, 276, 290, 297, 300, 307, 308, 311, 319, 326, 332}},
        {TypeId::ZynTransRep, 3, 17, 18, {}},
    };
    for (const auto& choice : choices) {
        const Type& type = typeOf(choice.id);
        EXPECT_EQ(type.alternatives.size(), choice.count) << type.name;
        std::vector<uint32_t> numbers{0}, found;
        for (uint32_t n = choice.first; n <= choice.last; ++n) {
            if (std::find(choice.holes.begin(), choice.holes.end(), n) == choice.holes.end()) numbers.push_back(n);
        }
        for (const Alternative& alternative : type.alternatives) found.push_back(alternative.number);
        EXPECT_EQ(found, numbers) << type.name;
    }
}

} // namespace
} // namespace zyn::test
