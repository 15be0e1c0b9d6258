// Changes of the configuration: sent one by one, reported, compared with what the agent then tells;
// or, as a dry run, shown as the datagrams that would be sent.
#ifndef OFPCTL_VERBS_CHANGE_H
#define OFPCTL_VERBS_CHANGE_H

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/context.h"
#include "option/assignment.h"

namespace ofpctl {

// Without row the change is an action, which has no value and nothing to compare.
struct Change {
    std::string what; // "instance 1: echo-interval=5", "instance 1 activated"
    const SettingRow *row = nullptr;
    Value value;
    std::function<uint32_t()> send;
    std::function<Value()> read; // null: the agent does not report it
    std::function<bool()> holds; // of an action: whether the agent reports it done; or null
};

struct Changes {
    std::vector<Change> all;
    std::function<void()> refresh; // before any read; null when nothing can be read
    bool terse = false;            // the changes were told already: only what went wrong, and a sum
};

// "instance 1: echo-interval=5"
std::string change_text(const std::string &target, const SettingRow &row, const Value &value);

// Sends all of them, or shows them with --dry-run. A change that is refused does not keep the
// others from being sent; a lost agent does. Compares with --verify. Throws a Failure that says how
// much of it was done.
void perform(Context &context, const Changes &changes);

// One action. holds asks the agent whether it is done, for --verify; null where it does not report
// that.
struct Action {
    std::string doing; // begins the message of a failure
    std::function<uint32_t()> send;
    std::function<bool()> holds;
};

// Sends it, or shows it with --dry-run and returns false.
bool act(Context &context, const Action &action);

// " (verified)" when --verify was given.
std::string_view verified(const Context &context);

constexpr OptionRow verify_option{
    .name = "verify",
    .help = "read back what was set and compare; the answer to a change alone "
            "does not prove it"};

} // namespace ofpctl

#endif
