#include "schema/columns.h"

#include <algorithm>

namespace zyn::schema {

std::string columns(const std::vector<std::vector<std::string>>& rows, std::size_t indent, std::size_t gap) {
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        if (widths.size() < row.size()) widths.resize(row.size());
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
    }
    std::string text;
    for (const auto& row : rows) {
        std::string line(indent, ' ');
        for (std::size_t i = 0; i < row.size(); ++i) {
            line += row[i];
            line.append(widths[i] - row[i].size() + gap, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
}

} // namespace zyn::schema
