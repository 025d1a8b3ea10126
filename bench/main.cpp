// zyn-bench: all benchmarks under the usual options of Google Benchmark, or, with --table[=FILE] as the first
// argument, a run in random interleaving that ends in a table and in which goals were reached; FILE gets the
// figures as CSV.
#include <cstring>

#include "bench/forms.h"
#include "bench/suite.h"
#include "bench/table.h"

namespace zyn::bench {

std::vector<Suite>& suites() {
    static std::vector<Suite> all;
    return all;
}

namespace {

void ignoreMessage(char*, int) {}

Traffic& traffic() {
    static TreeMemory memory;
    static Traffic all;
    all.seven = sevenMessages(memory);
    for (const Message& message : all.seven) {
        for (const Form& form : otherForms) all.forms.push_back(inForm(message, form));
        for (Message& refused : refusals(message)) all.refused.push_back(std::move(refused));
    }
    all.mixed = mixedMessages(ZYN_BENCH_MESSAGES, memory);
    return all;
}

int table(std::vector<char*> arguments, const char* csv) {
    std::string usual[] = {"--benchmark_enable_random_interleaving=true", "--benchmark_repetitions=75",
                           "--benchmark_min_time=0.004"};
    for (std::string& argument : usual) arguments.insert(arguments.begin() + 1, argument.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    Figures figures;
    benchmark::RunSpecifiedBenchmarks(&figures);
    printTable(figures);
    printVerdicts(figures);
    if (!csv) return 0;
    std::FILE* file = std::fopen(csv, "w");
    if (!file) stop(std::string("cannot write ") + csv);
    figures.writeCsv(file);
    return std::fclose(file);
}

} // namespace
} // namespace zyn::bench

int main(int argc, char** argv) {
    using namespace zyn::bench;
    Asn1InstallErrorHandler(ignoreMessage);
    const Traffic& all = traffic();
    for (const Suite& suite : suites()) suite.add(all);
    constexpr char option[] = "--table";
    if (argc > 1 && std::strncmp(argv[1], option, sizeof option - 1) == 0) {
        const char* equals = std::strchr(argv[1], '=');
        std::vector<char*> arguments(argv, argv + argc);
        arguments.erase(arguments.begin() + 1);
        return table(std::move(arguments), equals ? equals + 1 : nullptr);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
}
