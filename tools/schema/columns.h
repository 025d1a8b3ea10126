// Text in columns.
#pragma once

#include <string>
#include <vector>

namespace zyn::schema {

// columns writes one line a row: indent, then the cells, each column as wide as its widest cell and parted
// from the next by gap blanks. No line ends in blanks.
std::string columns(const std::vector<std::vector<std::string>>& rows, std::size_t indent, std::size_t gap);

} // namespace zyn::schema
