// The failure sweep: an operation is run once for every platform call and every allocation it
// makes, with that one failing.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "double/platform.h"

namespace test {

struct Operation {
    std::function<void()> prepare; // scripts the fresh platform before each run; may be empty
    std::function<uint64_t()> run; // also frees what the operation hands out; returns its code
    uint64_t success = 0;
};

// What the operation returns when a function fails: by name ("SOCK_Recv"), or by name and
// occurrence
// ("SOCK_Recv 2"), which goes first. Allocations of every kind are called "malloc".
using Codes = std::map<std::string, uint64_t>;

// Runs the operation with the first, second, ... platform call that can fail failing, then with the
// first, second, ... allocation failing, until none is left to fail. Every time: the code given, no
// socket open, no block left. A failing function without a code fails the test. Then with connect,
// send and receive interrupted by signals: the code and the datagrams of an undisturbed run.
void expect_failures_handled(const Operation &operation, const Codes &codes);

// The codes of a request that starts the agent daemon and awaits a result reply, and of a query;
// the second table goes first where both name a function.
Codes setter_codes(const Codes &more = {});
Codes query_codes(const Codes &more = {});

// Runs the operation over differently filled stacks: the datagrams it sends must not depend on it.
void expect_same_datagrams_on_any_stack(const Operation &operation);

} // namespace test
