#include "flow/action_text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

#include <fmt/format.h>

#include "flow/address.h"
#include "flow/keyword.h"
#include "flow/nearest.h"
#include "flow/number_text.h"
#include "flow/port_text.h"

namespace ofpctl {
namespace {

constexpr std::string_view separators = ", \t\r\n";

// One action as it is written: name(inner):argument.
struct Word {
    std::string_view all;
    std::string_view name;
    std::string_view inner;
    std::string_view argument;
    bool has_inner = false;
    bool has_argument = false;
};

bool is_name(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

bool same_word(std::string_view text, std::string_view lower)
{
    return std::equal(text.begin(), text.end(), lower.begin(), lower.end(), [](char a, char b) {
        return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
    });
}

// The length of the part in parentheses that text begins with; 0 when it does not end.
std::size_t scan_parentheses(std::string_view text)
{
    std::size_t depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '(')
            ++depth;
        else if (text[i] == ')' && --depth == 0)
            return i + 1;
    }
    return 0;
}

// Takes one action off the front of text, which is not empty and begins with no separator.
bool take_word(std::string_view &text, Word &word, Problem &problem)
{
    const auto start = text;
    word = {};
    std::size_t length = 0;
    while (length < text.size() && is_name(text[length]))
        ++length;
    word.name = text.substr(0, length);
    text.remove_prefix(length);
    word.inner = word.argument = text.substr(0, 0);
    if (text.starts_with('(')) {
        const std::size_t size = scan_parentheses(text);
        if (size == 0)
            return problem.report(text.substr(0, 1), "'(' without ')'");
        word.has_inner = true;
        word.inner = text.substr(1, size - 2);
        text.remove_prefix(size);
    }
    if (text.starts_with(':') || text.starts_with('=')) {
        word.has_argument = true;
        const auto end = std::min(text.find_first_of(separators), text.size());
        word.argument = text.substr(1, end - 1);
        text.remove_prefix(end);
    }
    word.all = start.substr(0, start.size() - text.size());
    if (!text.empty() && separators.find(text[0]) == separators.npos)
        return problem.report(text.substr(0, 1), fmt::format("unexpected '{}'", text[0]),
                              "actions are separated by commas");
    return word.all.empty() ? problem.report(text, "an action is missing") : true;
}

template <class Record>
Record &add(FlowDraft &draft, uint32_t type, Record ActionRecord::*member)
{
    ActionRecord &action = draft.actions.emplace_back();
    Record &record = action.*member;
    record = {};
    record.header = {type, sizeof(Record)};
    return record;
}

// ---- output ----

bool add_output(std::string_view where, uint32_t port, FlowDraft &draft, Problem &problem)
{
    const auto name = reserved_port_name(port);
    if (port == port_table || port == port_any)
        return problem.report(
            where, fmt::format("the library refuses output to {}", name),
            "expected a number, IN_PORT, NORMAL, FLOOD, ALL, CONTROLLER or LOCAL");
    if (name.empty() && (port == 0 || port > last_port))
        return problem.report(where, fmt::format("the library refuses output to port {}", port),
                              fmt::format("expected 1 to {}", last_port));
    OfpActionOutput &action = add(draft, OFP_ACTION_OUTPUT, &ActionRecord::output);
    action.port_kind = name.empty() ? OFP_PORT_NUMBER : OFP_PORT_RESERVED;
    action.port = port;
    return true;
}

bool parse_output(std::string_view text, FlowDraft &draft, Problem &problem)
{
    uint32_t port;
    return parse_port("output", text, port, problem) && add_output(text, port, draft, problem);
}

// CONTROLLER:0 is what the library sends; it has no room for another length.
bool parse_controller(const Word &word, FlowDraft &draft, Problem &problem)
{
    const auto length = word.has_inner ? word.inner : word.argument;
    if ((word.has_inner || word.has_argument) && length != "0")
        return problem.report(length, "the library always asks for 0 bytes of the packet",
                              "write CONTROLLER");
    return add_output(word.all, port_controller, draft, problem);
}

// ---- group ----

bool parse_group(std::string_view text, FlowDraft &draft, Problem &problem)
{
    uint64_t group;
    if (!parse_number("group", text, last_port, group, problem))
        return false;
    add(draft, OFP_ACTION_GROUP, &ActionRecord::group).group_id = static_cast<uint32_t>(group);
    return true;
}

// ---- experimenter ----

constexpr uint64_t last_subtype = 3;

bool parse_values(std::string_view name, std::string_view text, std::span<uint32_t> values,
                  Problem &problem)
{
    const std::size_t count = values.size();
    for (std::size_t i = 0; i < count; ++i) {
        const auto end = i + 1 < count ? std::min(text.find(':'), text.size()) : text.size();
        uint64_t value;
        if (!parse_number(name, text.substr(0, end), UINT32_MAX, value, problem))
            return false;
        values[i] = static_cast<uint32_t>(value);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return true;
}

bool parse_experimenter_action(const Word &word, FlowDraft &draft, Problem &problem)
{
    uint64_t subtype;
    if (!word.has_inner)
        return problem.report(word.all, "exp has no subtype",
                              "write exp(0):VALUE:VALUE, exp(1):VALUE, exp(2):VALUE or exp(3):MAC");
    if (!parse_number("a subtype", word.inner, last_subtype, subtype, problem))
        return false;
    OfpActionExperimenter &action =
        add(draft, OFP_ACTION_EXPERIMENTER, &ActionRecord::experimenter);
    action.subtype = action.size_subtype = static_cast<uint32_t>(subtype);
    if (subtype < 3)
        return parse_values("exp", word.argument,
                            std::span(action.body.value).first(subtype == 0 ? 2 : 1), problem);
    Wide mac;
    if (!scan_mac(word.argument, mac))
        return problem.report(word.argument, fmt::format("'{}' is no MAC address", word.argument),
                              "expected one like 00:11:22:33:44:55");
    to_bytes(mac, action.body.mac, sizeof action.body.mac);
    return true;
}

// ---- The rest ----

constexpr auto known_actions =
    std::to_array<std::string_view>({"output", "group", "drop", "exp", "write_actions",
                                     "CONTROLLER", "IN_PORT", "NORMAL", "FLOOD", "ALL", "LOCAL"});

// Actions of OpenFlow and Open vSwitch that this library has no room for.
constexpr auto foreign_actions =
    std::to_array<std::string_view>({"apply_actions", "clear_actions",  "write_metadata",
                                     "goto_table",    "meter",          "set_field",
                                     "load",          "move",           "push_vlan",
                                     "pop_vlan",      "strip_vlan",     "mod_vlan_vid",
                                     "mod_vlan_pcp",  "mod_dl_src",     "mod_dl_dst",
                                     "mod_nw_src",    "mod_nw_dst",     "mod_nw_tos",
                                     "mod_tp_src",    "mod_tp_dst",     "push_mpls",
                                     "pop_mpls",      "set_mpls_label", "set_mpls_ttl",
                                     "dec_mpls_ttl",  "dec_ttl",        "set_queue",
                                     "pop_queue",     "enqueue",        "resubmit",
                                     "learn",         "conjunction",    "ct",
                                     "nat",           "note",           "bundle",
                                     "multipath",     "exit",           "sample",
                                     "clone"});

bool report_unknown(const Word &word, Problem &problem)
{
    if (std::any_of(foreign_actions.begin(), foreign_actions.end(),
                    [&](auto name) { return same_word(word.name, name); }))
        return problem.report(word.name, fmt::format("the library cannot send {}", word.name),
                              "it writes output, group and exp in one write_actions");
    const Keyword *option = find_keyword(word.name);
    if (option != nullptr && option->option != Option::actions)
        return problem.report(word.name, fmt::format("{} is no action", word.name),
                              "write the actions last");
    Nearest nearest(word.name);
    for (const auto name : known_actions)
        nearest.offer(name);
    return problem.report(
        word.name.empty() ? word.all : word.name,
        fmt::format("unknown action '{}'", word.name.empty() ? word.all : word.name),
        nearest.word().empty() ? "expected output:PORT, group:ID, drop or exp(SUBTYPE):VALUE"
                               : fmt::format("did you mean {}?", nearest.word()));
}

bool parse_sendable(const Word &word, FlowDraft &draft, Problem &problem)
{
    if (same_word(word.name, "exp"))
        return parse_experimenter_action(word, draft, problem);
    if (word.has_inner && word.has_argument)
        return problem.report(word.argument, fmt::format("{} has two arguments", word.name));
    const auto argument = word.has_inner ? word.inner : word.argument;
    if (same_word(word.name, "output"))
        return parse_output(argument, draft, problem);
    if (same_word(word.name, "group"))
        return parse_group(argument, draft, problem);
    if (same_word(word.name, "controller"))
        return parse_controller(word, draft, problem);
    uint32_t port;
    const bool is_port =
        !word.name.empty() && (word.name[0] <= '9' || scan_reserved_port(word.name, port));
    if (!is_port)
        return report_unknown(word, problem);
    if (word.all.size() > word.name.size())
        return problem.report(word.all, fmt::format("'{}' is no port", word.all),
                              "write output:PORT, or the port alone");
    return parse_output(word.name, draft, problem);
}

// What a list holds so far.
struct List {
    bool inside = false; // write_actions(...)
    std::size_t words = 0;
    std::string_view alone; // the word that allows no other
};

bool parse_list(std::string_view text, bool inside, FlowDraft &draft, Problem &problem);

bool parse_drop(const Word &word, Problem &problem)
{
    return word.all == word.name ||
           problem.report(word.all, "drop takes no argument", "write drop");
}

bool parse_write_actions(const Word &word, const List &list, FlowDraft &draft, Problem &problem)
{
    if (list.inside)
        return problem.report(word.name, "write_actions inside write_actions");
    if (!word.has_inner || word.has_argument)
        return problem.report(word.all, "write_actions has no list",
                              "write write_actions(ACTION,...)");
    return parse_list(word.inner, true, draft, problem);
}

bool parse_word(const Word &word, List &list, FlowDraft &draft, Problem &problem)
{
    const bool drop = same_word(word.name, "drop");
    const bool write = same_word(word.name, "write_actions");
    const bool good = drop    ? parse_drop(word, problem)
                      : write ? parse_write_actions(word, list, draft, problem)
                              : parse_sendable(word, draft, problem);
    if (!good)
        return false;
    const bool first = list.words++ == 0;
    if (drop || write)
        list.alone = word.name;
    return first || list.alone.empty() ||
           problem.report(word.all, fmt::format("{} stands beside other actions", list.alone),
                          same_word(list.alone, "drop")
                              ? "write drop alone"
                              : "write all of them in one write_actions(...)");
}

bool parse_list(std::string_view text, bool inside, FlowDraft &draft, Problem &problem)
{
    List list = {inside, 0, {}};
    while (true) {
        text.remove_prefix(std::min(text.find_first_not_of(separators), text.size()));
        if (text.empty())
            return true;
        Word word;
        if (!take_word(text, word, problem) || !parse_word(word, list, draft, problem))
            return false;
    }
}

template <class Record>
Record read_as(const OfpAction &action)
{
    Record record = {};
    std::memcpy(&record, &action, std::min<std::size_t>(sizeof record, action.size));
    return record;
}

void append_experimenter(std::string &out, const OfpActionExperimenter &action)
{
    out += "exp(";
    append_decimal(out, action.subtype);
    out += "):";
    if (action.subtype == 3)
        return append_mac(out, from_bytes(action.body.mac, sizeof action.body.mac).low);
    append_decimal(out, action.body.value[0]);
    if (action.subtype == 0) {
        out += ':';
        append_decimal(out, action.body.value[1]);
    }
}

} // namespace

bool parse_actions(std::string_view text, FlowDraft &draft, Problem &problem)
{
    return parse_list(text, false, draft, problem);
}

OfpActionOutput as_output(const OfpAction &action) { return read_as<OfpActionOutput>(action); }
OfpActionGroup as_group(const OfpAction &action) { return read_as<OfpActionGroup>(action); }
OfpActionExperimenter as_experimenter(const OfpAction &action)
{
    return read_as<OfpActionExperimenter>(action);
}

void append_action(std::string &out, const OfpAction &action)
{
    if (action.type == OFP_ACTION_OUTPUT) {
        const uint32_t port = as_output(action).port;
        if (reserved_port_name(port).empty())
            out += "output:";
        append_port(out, port);
    } else if (action.type == OFP_ACTION_GROUP) {
        out += "group:";
        append_decimal(out, as_group(action).group_id);
    } else if (action.type == OFP_ACTION_EXPERIMENTER) {
        append_experimenter(out, as_experimenter(action));
    } else {
        out += "action(";
        append_decimal(out, action.type);
        out += ')';
    }
}

} // namespace ofpctl
