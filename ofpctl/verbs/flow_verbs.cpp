// The rows of the noun "flow".
#include "verbs/flow_verbs.h"

#include "verbs/nouns.h"

namespace ofpctl {

namespace {

constexpr OptionRow file_option{.name = "file",
                                .letter = 'f',
                                .kind = Kind::file,
                                .value = "FILE",
                                .help = "read rules from a file, - for standard input",
                                .repeats = true};

constexpr OptionRow change_options[] = {file_option, client_option, dry_run_option};
constexpr OptionRow load_options[] = {
    {.name = "async",
     .letter = 'a',
     .help = "send rules without waiting for the last one's answer"},
    {.name = "window",
     .kind = Kind::number,
     .value = "N",
     .help = "with --async: the most rules that may be unanswered",
     .fallback = "8192",
     .least = 1,
     .most = 1000000},
    client_option,
    dry_run_option,
};
constexpr OptionRow replace_options[] = {client_option, dry_run_option};
constexpr OptionRow delete_options[] = {
    {.name = "strict", .help = "only rules with exactly this match and priority"},
    file_option,
    client_option,
    dry_run_option,
};
constexpr OptionRow show_options[] = {
    {.name = "stats", .letter = 's', .help = "with age, packets and bytes of each rule"},
    client_option,
};
constexpr OptionRow client_options[] = {client_option};

constexpr Operands rules_operand{"[RULE]...", Kind::text, 0, any_number};
constexpr Operands files_operand{"FILE...", Kind::file, 1, any_number};
constexpr Operands file_operand{"FILE", Kind::file, 1, 1};

constexpr Example add_examples[] = {
    {"ofpctl flow add 'priority=100,in_port=1,ip,nw_dst=10.0.0.0/24,actions=output:2'",
     "Adds one rule"},
    {"echo 'priority=7,tcp,tp_dst=80,actions=drop' | ofpctl flow add -",
     "Adds what standard input holds"},
    {"ofpctl flow add --dry-run -v --file rules.flows", "Shows what would be sent"},
};
constexpr Example mod_examples[] = {
    {"ofpctl flow mod 'priority=100,in_port=1,ip,nw_dst=10.0.0.0/24,actions=output:3'",
     "Sends its packets to port 3 from now on"},
};
constexpr Example delete_examples[] = {
    {"ofpctl flow del 'ip,nw_dst=10.0.0.0/24'", "Deletes every rule that the match covers"},
    {"ofpctl flow del --strict 'priority=100,in_port=1,ip,nw_dst=10.0.0.0/24'",
     "Deletes exactly this rule"},
    {"ofpctl flow del 'priority=1'", "Deletes all rules: an empty match covers every one"},
};
constexpr Example load_examples[] = {
    {"ofpctl flow load rules.flows", "Adds every rule of the file, or none if one is malformed"},
    {"ofpctl flow load --client 4097 --json rules.flows", "The same for client 4097, as JSON"},
    {"ofpctl flow load --async rules.flows", "The same with many rules under way at once"},
};
constexpr Example replace_examples[] = {
    {"ofpctl flow replace rules.flows", "The table holds the rules of the file and no others"},
    {"ofpctl flow replace --dry-run rules.flows", "Shows the difference, sends nothing"},
};
constexpr Example diff_examples[] = {
    {"ofpctl flow diff rules.flows", "Shows what the file and the agent do not have in common"},
};
constexpr Example show_examples[] = {
    {"ofpctl flow show", "Lists the rules; the output loads again"},
    {"ofpctl flow show --stats --json", "With counters, as JSON"},
};
constexpr Example count_examples[] = {
    {"ofpctl flow count", "Prints how many rules there are"},
};
constexpr Example check_examples[] = {
    {"ofpctl flow check rules.flows", "Says whether the rules are well formed"},
};
constexpr Example format_examples[] = {
    {"ofpctl flow format rules.flows", "Prints the rules in their canonical form"},
    {"ofpctl flow format --json rules.flows", "Prints them as JSON"},
};

constexpr Verb rows[] = {
    {.name = "add",
     .run = flow_add,
     .help = "Adds rules, given as text or JSON.",
     .details = "All rules are read first: if one is malformed, none is sent. A rule that overlaps "
                "another of its priority is refused.",
     .operands = rules_operand,
     .options = change_options,
     .examples = add_examples},
    {.name = "mod",
     .run = flow_modify,
     .help = "Changes the actions of rules with the same match and priority.",
     .details = "A rule that is not there is accepted and changes nothing.",
     .operands = rules_operand,
     .options = change_options,
     .examples = mod_examples},
    {.name = "del",
     .run = flow_delete,
     .help = "Deletes the rules that a match covers.",
     .details = "The agent does not say what a deletion removed; the number printed is the "
                "difference of the table's rules before and after.",
     .operands = rules_operand,
     .options = delete_options,
     .examples = delete_examples},
    {.name = "load",
     .run = flow_load,
     .help = "Adds the rules of files; - is standard input.",
     .details = "Prints the rules that were refused, with their place and the reason, and a "
                "summary; with --verbose every rule. Status 6 if some were refused, 1 if all were.",
     .operands = files_operand,
     .options = load_options,
     .examples = load_examples},
    {.name = "replace",
     .run = flow_replace,
     .help = "Makes the table hold exactly the rules of a file, sending only the difference.",
     .details = "Rules that are not in the file are deleted first, then those with other actions "
                "are changed, then new ones added. With --verbose the difference is printed too.",
     .operands = file_operand,
     .options = replace_options,
     .examples = replace_examples},
    {.name = "diff",
     .run = flow_diff,
     .help = "Shows what \"flow replace\" would change: - deleted, ~ other actions, + added.",
     .details = "Status 0 if there is no difference, 1 if there is one.",
     .operands = file_operand,
     .options = client_options,
     .examples = diff_examples},
    {.name = "show",
     .run = flow_show,
     .help = "Lists the rules of a client.",
     .options = show_options,
     .examples = show_examples},
    {.name = "count",
     .run = flow_count,
     .help = "Prints the number of rules of a client.",
     .options = client_options,
     .examples = count_examples},
    {.name = "check",
     .run = flow_check,
     .help = "Checks the rules of files; needs no agent.",
     .operands = files_operand,
     .examples = check_examples},
    {.name = "format",
     .run = flow_format,
     .help = "Prints the rules of files in canonical form; needs no agent.",
     .operands = files_operand,
     .examples = format_examples},
};

} // namespace

const std::span<const Verb> flow_verbs = rows;

} // namespace ofpctl
