// Draws the figures of a table as SVG: zyn-bench-plot FIGURES.csv PICTURE.svg. Two panels, decode and encode; a row
// for each message and one for the geometric mean; a mark for each codec on a logarithmic axis of nanoseconds.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Series {
    const char* who;
    const char* label;
    const char* colour;
};

constexpr Series series[] = {
    {"asn1c", "asn1c", "#8c6d31"},
    {"flatbuffers", "FlatBuffers, verified and read in place; packed", "#31a354"},
    {"protobuf", "protobuf, on its arena", "#e6550d"},
    {"floor", "the floor, by hand", "#000000"},
    {"zyn", "zyn", "#1f5fbf"},
};

const std::vector<std::string> messages = {"logon", "order", "amendment", "reply", "board", "book", "trade"};

constexpr double panelWidth = 400, panelGap = 30, leftMargin = 110, topMargin = 78, rowHeight = 30, bottomMargin = 46;
constexpr double leastNs = 10, mostNs = 50000; // ends of the axis

using Figures = std::map<std::string, double>;

Figures readFigures(const char* path) {
    Figures figures;
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line)) {
        const std::size_t comma = line.find(',');
        if (comma != std::string::npos) figures[line.substr(0, comma)] = std::strtod(line.c_str() + comma + 1, nullptr);
    }
    return figures;
}

double along(double ns) {
    const double part = std::log(ns / leastNs) / std::log(mostNs / leastNs);
    return panelWidth * std::clamp(part, 0.0, 1.0);
}

void text(std::ostream& out, double x, double y, const char* anchor, const std::string& content,
          const char* more = "") {
    out << "<text x=\"" << x << "\" y=\"" << y << "\" text-anchor=\"" << anchor << "\" " << more << ">" << content
        << "</text>\n";
}

void line(std::ostream& out, double x1, double y1, double x2, double y2, const char* colour) {
    out << "<line x1=\"" << x1 << "\" y1=\"" << y1 << "\" x2=\"" << x2 << "\" y2=\"" << y2 << "\" stroke=\"" << colour
        << "\"/>\n";
}

void mark(std::ostream& out, double x, double y, const Series& one) {
    if (std::string(one.who) == "floor") {
        out << "<path d=\"M" << x << ' ' << y - 9 << "V" << y + 9 << "\" stroke=\"" << one.colour
            << "\" stroke-width=\"2\"/>\n";
    } else {
        out << "<circle cx=\"" << x << "\" cy=\"" << y << "\" r=\"5\" fill=\"" << one.colour << "\"/>\n";
    }
}

// A row's marks, with the number beside our own.
void row(std::ostream& out, double left, double y, const std::map<std::string, double>& times) {
    double least = mostNs;
    for (const Series& one : series) {
        const auto time = times.find(one.who);
        if (time == times.end()) continue;
        mark(out, left + along(time->second), y, one);
        least = std::min(least, time->second);
    }
    const auto ours = times.find("zyn");
    if (ours == times.end()) return;
    text(out, left + along(least) - 9, y + 4, "end", std::to_string(std::lround(ours->second)),
         "fill=\"#1f5fbf\" font-size=\"11\"");
}

void panel(std::ostream& out, const Figures& figures, const std::string& operation, double left) {
    const double bottom = topMargin + rowHeight * static_cast<double>(messages.size() + 1);
    text(out, left + panelWidth / 2, topMargin - 10, "middle", operation + ", ns", "font-weight=\"bold\"");
    for (double tick = leastNs; tick <= mostNs; tick *= 10) {
        line(out, left + along(tick), topMargin, left + along(tick), bottom, "#cccccc");
        text(out, left + along(tick), bottom + 18, "middle", std::to_string(std::lround(tick)));
    }
    std::map<std::string, std::vector<double>> all;
    double y = topMargin + rowHeight / 2;
    for (const std::string& message : messages) {
        line(out, left, y, left + panelWidth, y, "#eeeeee");
        std::map<std::string, double> times;
        for (const Series& one : series) {
            const auto figure = figures.find(operation + "/" + one.who + "/" + message);
            if (figure == figures.end()) continue;
            times[one.who] = figure->second;
            all[one.who].push_back(std::log(figure->second));
        }
        row(out, left, y, times);
        y += rowHeight;
    }
    line(out, left, y - rowHeight / 2, left + panelWidth, y - rowHeight / 2, "#999999");
    std::map<std::string, double> means;
    for (const auto& [who, logarithms] : all) {
        if (logarithms.size() != messages.size()) continue; // the floor is there for two messages only
        double sum = 0;
        for (const double value : logarithms) sum += value;
        means[who] = std::exp(sum / static_cast<double>(logarithms.size()));
    }
    row(out, left, y, means);
}

void draw(std::ostream& out, const Figures& figures) {
    const double width = leftMargin + 2 * panelWidth + 2 * panelGap;
    const double height = topMargin + rowHeight * static_cast<double>(messages.size() + 1) + bottomMargin;
    out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << width << "\" height=\"" << height
        << "\" viewBox=\"0 0 " << width << ' ' << height << "\" font-family=\"sans-serif\" font-size=\"12\">\n"
        << "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
    double x = leftMargin;
    for (std::size_t i = std::size(series); i-- > 0;) {
        mark(out, x, 24, series[i]);
        text(out, x + 12, 28, "start", series[i].label);
        x += 40 + 6.5 * static_cast<double>(std::string(series[i].label).size());
    }
    double y = topMargin + rowHeight / 2 + 4;
    for (const std::string& message : messages) {
        text(out, leftMargin - 12, y, "end", message);
        y += rowHeight;
    }
    text(out, leftMargin - 12, y, "end", "geom. mean", "font-weight=\"bold\"");
    panel(out, figures, "decode", leftMargin);
    panel(out, figures, "encode", leftMargin + panelWidth + panelGap);
    out << "</svg>\n";
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: zyn-bench-plot FIGURES.csv PICTURE.svg\n");
        return 2;
    }
    const Figures figures = readFigures(argv[1]);
    std::ofstream file(argv[2]);
    if (!figures.empty()) draw(file, figures);
    if (figures.empty() || !file.flush()) {
        std::fprintf(stderr, "cannot make %s of %s\n", argv[2], argv[1]);
        return 1;
    }
}
