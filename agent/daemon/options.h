// The command line of ofp-agent.
#pragma once

#include <cstdint>
#include <string>

#include "ofp.h"

namespace agent {

struct Options {
    uint16_t node = 0;
    int ready_fd = -1; // where the starter waits for word; -1: none
    bool foreground = false;
    std::string log_level = "info";
    std::string log_file; // empty: in the runtime directory
    std::string store;    // the configuration's file; likewise
    OfpDaemonParam param{};
};

// What becomes of the process after the command line was read.
struct Parsed {
    bool run = false;
    int exit_code = 0;
    std::string why_not; // one line, empty when nothing is wrong
};

// Reads the command line; prints help or version if that is asked for. The descriptor that waits
// for word is known to options even when the rest of the line is wrong.
Parsed parse_options(int argc, char **argv, Options &options);

} // namespace agent
