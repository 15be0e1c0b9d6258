#include "demand.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>
#include <ostream>

#include <benchmark/benchmark.h>

namespace bench {
namespace {

// Keeps every figure of every repetition.
class Reporter : public benchmark::ConsoleReporter {
public:
    explicit Reporter(const std::vector<Demand> &demands)
        : ConsoleReporter(OO_Tabular), demands_(demands)
    {}

    // Of repeated runs the aggregates are shown.
    void ReportRuns(const std::vector<Run> &runs) override
    {
        std::vector<Run> shown;
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred)
                keep(run);
            if (run.run_type == Run::RT_Aggregate || run.repetitions <= 1)
                shown.push_back(run);
        }
        ConsoleReporter::ReportRuns(shown);
    }
    void Finalize() override
    {
        GetOutputStream() << '\n';
        for (const Demand &demand : demands_)
            write(demand);
    }

private:
    void keep(const Run &run)
    {
        auto &figures = figures_[run.run_name.function_name + run_arguments(run)];
        figures[""].push_back(run.GetAdjustedRealTime());
        figures[Figure::processor].push_back(run.GetAdjustedCPUTime());
        for (const auto &[name, counter] : run.counters)
            figures[name].push_back(counter.value);
    }
    static std::string run_arguments(const Run &run)
    {
        return run.run_name.args.empty() ? "" : "/" + run.run_name.args;
    }
    std::optional<double> median(const Figure &figure)
    {
        if (figure.benchmark.empty())
            return 1;
        std::vector<double> &values = figures_[figure.benchmark][figure.counter];
        if (values.empty())
            return std::nullopt;
        std::sort(values.begin(), values.end());
        return values[values.size() / 2] / figure.per;
    }
    static std::string text(const Figure &figure, double value)
    {
        if (figure.benchmark.empty())
            return "";
        char line[64];
        std::snprintf(line, sizeof line, value < 1000 ? "%.4g %s" : "%.0f %s", value,
                      figure.unit.c_str());
        return line;
    }
    static std::string limit_of(const Demand &demand)
    {
        if (demand.sense == Sense::reported)
            return "";
        char line[64];
        std::snprintf(line, sizeof line, "%s %g",
                      demand.sense == Sense::at_most ? "at most" : "at least", demand.limit);
        std::string text = line;
        if (demand.aim != 0) {
            std::snprintf(line, sizeof line, ", aim %g", demand.aim);
            text += line;
        }
        return text;
    }
    static const char *verdict(const Demand &demand, double ratio)
    {
        if (demand.sense == Sense::reported)
            return "INFO";
        const bool most = demand.sense == Sense::at_most;
        return (most ? ratio <= demand.limit : ratio >= demand.limit) ? "PASS" : "MISS";
    }
    void write(const Demand &demand)
    {
        const auto whole = median(demand.measured);
        const auto against = median(demand.against);
        const auto less = demand.less.benchmark.empty() ? 0 : median(demand.less);
        if (!whole || !against || !less)
            return; // not asked for on the command line
        const double measured = *whole - *less;
        char ratio[32];
        std::snprintf(ratio, sizeof ratio, "%.3g", measured / *against);
        GetOutputStream() << verdict(demand, measured / *against) << " | " << demand.what << " | "
                          << ratio << " | " << limit_of(demand) << " | "
                          << text(demand.measured, measured) << " | "
                          << text(demand.against, *against) << '\n';
    }

    const std::vector<Demand> &demands_;
    std::map<std::string, std::map<std::string, std::vector<double>>> figures_;
};

} // namespace

int run(int argc, char **argv, const std::vector<Demand> &demands)
{
    // What the command line says counts, coming later.
    std::vector<std::string> arguments = {argv[0], "--benchmark_repetitions=15",
                                          "--benchmark_min_time=0.02",
                                          "--benchmark_enable_random_interleaving=true"};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    std::vector<char *> pointers;
    for (std::string &argument : arguments)
        pointers.push_back(argument.data());
    int count = static_cast<int>(pointers.size());
    pointers.push_back(nullptr);
    benchmark::Initialize(&count, pointers.data());
    if (benchmark::ReportUnrecognizedArguments(count, pointers.data()))
        return 2;
    Reporter reporter(demands);
    return benchmark::RunSpecifiedBenchmarks(&reporter) == 0 ? 1 : 0;
}

} // namespace bench
