// instance apply: a whole instance from a file. The difference is shown first, and nothing is sent
// when anything in the file is wrong.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <sys/stat.h>

#include "flow/flow_reader.h"
#include "frame/agent_link.h"
#include "frame/failure.h"
#include "frame/message.h"
#include "frame/words.h"
#include "ofp.h"
#include "option/instance_file.h"
#include "option/record_option.h"
#include "verbs/change.h"
#include "verbs/instance.h"

namespace ofpctl {

namespace {

constexpr std::size_t most_errors = 20;
constexpr std::size_t largest_file = std::size_t{1} << 20;

constexpr uint16_t operation_set = 1;
constexpr uint16_t operation_remove = 0;

// ---- The file

std::string read_file(const std::string &name)
{
    struct stat about {};
    if (stat(name.c_str(), &about) != 0)
        throw usage_failure(fmt::format("{}: {}", name, std::strerror(errno)));
    if (S_ISDIR(about.st_mode))
        throw usage_failure(fmt::format("{}: is a directory; a file is wanted", name));
    std::ifstream file(name, std::ios::binary);
    std::string text(largest_file + 1, '\0');
    if (!file)
        throw usage_failure(fmt::format("{}: {}", name, std::strerror(errno)));
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text.size() > largest_file)
        throw usage_failure(fmt::format("{}: is larger than 1 MiB", name));
    return text;
}

std::string line_of(const std::string &text, std::size_t number)
{
    std::istringstream lines(text);
    std::string line;
    for (std::size_t i = 0; i < number; i++)
        std::getline(lines, line);
    return line;
}

InstancePlan read_plan(const std::string &name)
{
    const std::string text = read_file(name);
    auto plan = read_instance_plan(text);
    if (auto *good = std::get_if<InstancePlan>(&plan))
        return std::move(*good);
    const auto &errors = std::get<std::vector<FileError>>(plan);
    for (std::size_t i = 0; i < std::min(errors.size(), most_errors); i++) {
        const FileError &error = errors[i];
        remark(render({.file = name,
                       .line = error.line,
                       .what = {error.column, 0, error.what, {}},
                       .text = line_of(text, error.line)}));
    }
    throw usage_failure(
        fmt::format("{} in {}; nothing was sent", counted(errors.size(), "error"), name));
}

// ---- What the agent has

struct Present {
    bool exists = false;
    bool known = false; // the agent was asked
    InstanceRecord record;
};

// With a dry run an agent that does not run is one that has nothing.
void find_present(const Context &context, uint16_t id, Present &present)
{
    if (context.arguments.given("dry-run") && OFP_util_IsDaemonStart() != 1)
        return;
    require_agent();
    present.known = true;
    present.exists = OFP_get_IsInstanceExist(id) == 1;
    if (present.exists)
        present.record.read(id);
}

// ---- The difference

std::optional<OfpCtrlSummary> find_controller(const std::vector<OfpCtrlSummary> &all, uint8_t id)
{
    const auto found = std::find_if(
        all.begin(), all.end(), [=](const OfpCtrlSummary &row) { return row.controller_id == id; });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

bool has_port(const InstanceRecord &record, uint32_t if_index)
{
    const std::vector<OfpVerbIfRep> ports = record.configured_interfaces();
    return std::any_of(ports.begin(), ports.end(),
                       [=](const OfpVerbIfRep &port) { return port.if_index == if_index; });
}

class Difference {
public:
    Difference(const InstancePlan &plan, const Present &present)
        : plan_(plan), present_(present), target_(instance_name(plan.id))
    {}

    Changes changes;
    std::vector<std::string> lines; // what differs, as a person reads it

    void find()
    {
        if (!present_.exists)
            note(
                "+ " + target_, target_ + " added", [id = plan_.id] { return OFP_AddInstance(id); },
                [] { return true; });
        for (const Assignment &assignment : plan_.options)
            compare_option(assignment);
        if (plan_.controllers)
            compare_controllers();
        if (plan_.ports)
            compare_ports();
        if (plan_.active && (!present_.exists || present_.record.active() != *plan_.active))
            compare_activity(*plan_.active);
    }

private:
    // holds is asked after the record was read again.
    void note(std::string line, std::string what, std::function<uint32_t()> send,
              std::function<bool()> holds)
    {
        lines.push_back(std::move(line));
        changes.all.push_back({.what = std::move(what),
                               .row = nullptr,
                               .value = {},
                               .send = std::move(send),
                               .read = {},
                               .holds = std::move(holds)});
    }

    void compare_option(const Assignment &assignment)
    {
        const InstanceOption &option = option_of(instance_options(), *assignment.row);
        const bool readable = present_.exists && option.configured != nullptr;
        std::string before = present_.exists ? "(not reported)" : "";
        if (readable) {
            const Value now = option.configured(present_.record);
            if (now == assignment.value)
                return;
            before = format_value(option.row, now);
        }
        lines.push_back(fmt::format("{} {}: {}{}{}", present_.exists ? '~' : '+', option.row.name,
                                    before, before.empty() ? "" : " -> ",
                                    format_value(option.row, assignment.value)));
        changes.all.push_back(instance_change(plan_.id, option, assignment.value, present_.record));
    }

    void compare_controllers()
    {
        const std::vector<OfpCtrlSummary> present =
            present_.exists ? present_.record.controllers() : std::vector<OfpCtrlSummary>{};
        for (const OfpCtrlSummary &old : present) {
            const bool stays = std::any_of(
                plan_.controllers->begin(), plan_.controllers->end(),
                [&](const PlannedController &next) { return next.id == old.controller_id; });
            if (!stays)
                remove_controller(old.controller_id);
        }
        for (const PlannedController &next : *plan_.controllers) {
            set_controller(next, find_controller(present, next.id));
        }
    }

    void remove_controller(uint8_t id)
    {
        OfpCtrlCfg record = controller_record(plan_.id, id, {});
        note(
            fmt::format("- controller {}", id), fmt::format("controller {} deleted", id),
            [record] { return OFP_set_CtrlCfg(&record, operation_remove); },
            [this, id] { return !find_controller(present_.record.controllers(), id); });
    }

    void set_controller(const PlannedController &next, const std::optional<OfpCtrlSummary> &old)
    {
        const OfpCtrlCfg record = controller_record(plan_.id, next.id, next.settings);
        if (old && same_controller(record, *old))
            return;
        std::string line = fmt::format("{} controller {}:", old ? '~' : '+', next.id);
        for (const Assignment &setting : next.settings)
            line +=
                fmt::format(" {}={}", setting.row->name, format_value(*setting.row, setting.value));
        note(
            std::move(line), fmt::format("controller {} set", next.id),
            [record] { return OFP_set_CtrlCfg(&record, operation_set); },
            [this, record] {
                const auto now =
                    find_controller(present_.record.controllers(), record.controller_id);
                return now && same_controller(record, *now);
            });
    }

    void compare_ports()
    {
        const std::vector<OfpVerbIfRep> present =
            present_.exists ? present_.record.configured_interfaces() : std::vector<OfpVerbIfRep>{};
        for (const OfpVerbIfRep &old : present) {
            const bool stays =
                std::any_of(plan_.ports->begin(), plan_.ports->end(),
                            [&](const PlannedPort &port) { return port.if_index == old.if_index; });
            if (!stays)
                bind_port(OFP_MSG_UNBIND_PORT, old.if_index, std::string(old.name));
        }
        for (const PlannedPort &port : *plan_.ports) {
            if (!present_.exists || !has_port(present_.record, port.if_index))
                bind_port(OFP_MSG_BIND_PORT, port.if_index, port.name);
        }
    }

    void bind_port(uint32_t code, uint32_t if_index, const std::string &name)
    {
        const bool binds = code == OFP_MSG_BIND_PORT;
        note(
            fmt::format("{} port {}", binds ? '+' : '-', name),
            fmt::format("port {} {}", name, binds ? "bound" : "unbound"),
            [=, id = plan_.id] { return OFP_set_PortBindInst(code, id, if_index); },
            [=, this] { return has_port(present_.record, if_index) == binds; });
    }

    void compare_activity(bool active)
    {
        const uint16_t operation = active ? 1 : 0;
        const std::string_view word = active ? "active" : "inactive";
        note(
            present_.exists ? fmt::format("~ {} -> {}", active ? "inactive" : "active", word)
                            : fmt::format("+ {}", word),
            fmt::format("{} is {}", target_, word),
            [=, id = plan_.id] { return OFP_set_ActiveInst(id, operation); },
            [=, this] { return present_.record.active() == active; });
    }

    const InstancePlan &plan_;
    const Present &present_;
    std::string target_;
};

void print_difference(Output &out, uint16_t id, const std::vector<std::string> &lines)
{
    if (out.json()) {
        out.document().number("instance", id);
        out.document().begin_array("difference");
        for (const std::string &line : lines)
            out.document().text({}, line);
        out.document().end();
        return;
    }
    for (const std::string &line : lines)
        out.line(line);
    if (lines.empty())
        out.line(fmt::format("instance {} is as the file says", id));
}

} // namespace

void apply_instance(Context &context)
{
    const InstancePlan plan = read_plan(context.arguments.operands().front());
    Present present;
    find_present(context, plan.id, present);
    Difference difference(plan, present);
    difference.find();
    print_difference(context.out, plan.id, difference.lines);
    if (difference.changes.all.empty() && !context.out.json())
        return;
    difference.changes.refresh = [&] { present.record.read(plan.id); };
    difference.changes.terse = true;
    if (context.arguments.given("dry-run") && !context.out.json())
        context.out.line("");
    perform(context, difference.changes);
}

} // namespace ofpctl
