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
    OfpDaemonParam param{};
};

// What becomes of the process after the command line was read.
struct Parsed {
    bool run = false;
    int exit_code = 0;
};

// Reads the command line; prints help, version or what is wrong itself.
Parsed parse_options(int argc, char **argv, Options &options);

} // namespace agent
