// What the figures of a run have to be: each demand is one measured figure over another of the same
// run, so that it holds on any machine.
#pragma once

#include <string>
#include <vector>

namespace bench {

// A figure of a benchmark: the time of an iteration, its processor time, or a counter. Medians over
// the repetitions.
struct Figure {
    std::string benchmark; // as it is registered; empty: the figure is 1
    std::string counter;   // empty: time
    double per = 1;        // things done in an iteration
    std::string unit = "ns";

    static constexpr const char *processor = "processor time";
};

enum class Sense { at_most, at_least, reported };

struct Demand {
    std::string what;
    Figure measured;
    Figure against;
    Sense sense;
    double limit = 0;
    double aim = 0;   // what is hoped for; 0: nothing more
    Figure less = {}; // taken off what is measured
};

// Runs all registered benchmarks that the command line asks for, several times in random order, and
// writes a line for each demand: verdict, what, ratio, limit, the two figures, separated by " | ".
// The verdict is PASS or MISS, or INFO where nothing is demanded.
// The process's exit status; a missed demand does not fail.
int run(int argc, char **argv, const std::vector<Demand> &demands);

} // namespace bench
