// Messages on their way through the tool, some hundred at a time, so that several threads can share the work and the results
// come in order.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "input/framer.h"
#include "options.h"
#include "output/out.h"
#include "where.h"
#include "zyn/describe.h"

namespace zyn::tool {

struct Item {
    Frame frame; // its octets begin at start in the batch
    std::size_t start;
    std::string complaint;
    uint64_t number; // of the message in its input, from 1
};

struct Batch {
    std::string input; // its name
    std::vector<uint8_t> octets;
    std::vector<Item> items;

    // Results.
    Out out;
    std::string aside; // lines for the file of bad messages
    uint64_t bad = 0;
    bool done = false;

    void add(const Frame& frame, uint64_t number);
    bool isFull() const { return octets.size() >= 256 * 1024 || items.size() >= 4096; }
    void clear();
};

class View;

// What one thread needs to turn messages into text.
class Worker {
public:
    Worker(const DecodeOptions& options, const std::vector<Condition>& conditions, bool colours);
    ~Worker();
    void process(Batch& batch);

private:
    void process(Batch& batch, const Item& item);

    const DecodeOptions& options;
    const std::vector<Condition>& conditions;
    std::unique_ptr<View> view;
};

} // namespace zyn::tool
