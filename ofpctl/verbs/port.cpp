#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <variant>

#include <fmt/format.h>

#include "frame/agent_link.h"
#include "frame/context.h"
#include "frame/failure.h"
#include "ofp.h"
#include "option/port_name.h"
#include "verbs/change.h"
#include "verbs/nouns.h"
#include "verbs/watch.h"

namespace ofpctl {

namespace {

const HostInterface &require_port(const std::string &word)
{
    const auto found = find_port(word);
    if (const auto *error = std::get_if<PortError>(&found))
        throw error->missing ? Failure{.status = status_missing, .message = error->what}
                             : usage_failure(error->what);
    return *std::get<const HostInterface *>(found);
}

// By port, the instance it is bound to. An agent that does not run has none.
std::map<uint32_t, uint32_t> bound_ports()
{
    std::map<uint32_t, uint32_t> bound;
    if (OFP_util_IsDaemonStart() != 1)
        return bound;
    require_agent();
    OfpLink head{};
    OFP_get_InitMeterBandList(&head);
    const auto finish = [](OfpLink *list) { OFP_get_FiniMeterBandList(list); };
    const std::unique_ptr<OfpLink, decltype(finish)> owner(&head, finish);
    const uint32_t code = OFP_get_AcPortInfo(&head);
    require_success(code, "ports");
    for (const OfpLink *at = head.next; at != &head; at = at->next) {
        const OfpAcPortInfo &port = reinterpret_cast<const OfpAcPortElement *>(at)->port;
        bound[port.if_index] = port.value_u32_60;
    }
    return bound;
}

template <class Send>
void change_port(Context &context, std::string_view done, Send send,
                 const std::function<bool(uint32_t)> &holds = {})
{
    const HostInterface &port = require_port(context.arguments.operands().front());
    if (!act(context, {.doing = fmt::format("port {}", port.name),
                       .send = [&] { return send(port.index); },
                       .holds = [&] { return holds(port.index); }}))
        return;
    if (!context.out.json()) {
        context.out.line(fmt::format("port {} {}{}", port.name, done, verified(context)));
        return;
    }
    context.out.document().text("port", port.name);
    context.out.document().number("if_index", port.index);
}

void bind(Context &context, uint32_t code, std::string_view done)
{
    const auto instance = static_cast<uint16_t>(
        require_number("INSTANCE", context.arguments.operands()[1], 1, UINT16_MAX));
    change_port(
        context, fmt::format("{} instance {}", done, instance),
        [=](uint32_t index) { return OFP_set_PortBindInst(code, instance, index); },
        [=](uint32_t index) {
            const std::map<uint32_t, uint32_t> bound = bound_ports();
            const auto owner = bound.find(index);
            const bool is_bound = owner != bound.end() && owner->second == instance;
            return is_bound == (code == OFP_MSG_BIND_PORT);
        });
}

void bind_port(Context &context) { bind(context, OFP_MSG_BIND_PORT, "bound to"); }
void unbind_port(Context &context) { bind(context, OFP_MSG_UNBIND_PORT, "unbound from"); }

void shut_down_port(Context &context)
{
    change_port(context, "shut down",
                [](uint32_t index) { return OFP_set_PortShutdown(OFP_MSG_SHUTDOWN_PORT, index); });
}

void start_port(Context &context)
{
    change_port(context, "started",
                [](uint32_t index) { return OFP_set_PortShutdown(OFP_MSG_START_PORT, index); });
}

void print_port(Output &out, const HostInterface &port, std::optional<uint32_t> instance)
{
    if (!out.json()) {
        out.line(fmt::format("{:>8}  {:<24} {:>4} {:>4}  {:<4}  {}", port.index, port.name,
                             port.type, port.node, port.up != 0 ? "up" : "down",
                             instance ? fmt::format("{}", *instance) : "-"));
        return;
    }
    JsonWriter &json = out.document();
    json.begin_object();
    json.number("if_index", port.index);
    json.text("name", port.name);
    json.number("type", port.type);
    json.number("node", port.node);
    json.flag("link_up", port.up != 0);
    if (instance)
        json.number("instance", *instance);
    else
        json.null("instance");
    json.end();
    out.settle();
}

void print_ports(Context &context)
{
    const std::map<uint32_t, uint32_t> bound = bound_ports();
    Output &out = context.out;
    if (out.json())
        out.document().begin_array("ports");
    else
        out.line(fmt::format("{:>8}  {:<24} {:>4} {:>4}  {:<4}  {}", "INDEX", "NAME", "TYPE",
                             "NODE", "LINK", "INSTANCE"));
    for (const HostInterface *port : openflow_ports()) {
        const auto owner = bound.find(port->index);
        print_port(out, *port, owner == bound.end() ? std::nullopt : std::optional(owner->second));
    }
    if (out.json())
        out.document().end();
}

void list_ports(Context &context) { watch(context, print_ports); }

constexpr OptionRow list_options[] = {watch_option, rounds_option};
constexpr OptionRow options[] = {dry_run_option};
constexpr OptionRow bind_options[] = {dry_run_option, verify_option};

constexpr Example bind_examples[] = {
    {"ofpctl port bind GE1/0/1 1", "Instance 1 gets port GE1/0/1"},
};
constexpr Example unbind_examples[] = {
    {"ofpctl port unbind GE1/0/1 1", "Instance 1 loses it again"},
};
constexpr Example shutdown_examples[] = {
    {"ofpctl port shutdown GE1/0/1", "Shuts the port down"},
    {"ofpctl port shutdown --dry-run 1", "Shows the datagram for the port with index 1"},
};
constexpr Example start_examples[] = {
    {"ofpctl port start GE1/0/1", "Lets it run again"},
};
constexpr Example list_examples[] = {
    {"ofpctl port list", "The ports of the switch that OpenFlow may use"},
};

constexpr Operands one_port{"PORT", Kind::text, 1, 1};
constexpr Operands port_and_instance{"PORT INSTANCE", Kind::text, 2, 2};

constexpr Verb rows[] = {
    {.name = "bind",
     .run = bind_port,
     .help = "Binds a port to an instance.",
     .details = "A port is named, or given by its index.",
     .operands = port_and_instance,
     .options = bind_options,
     .examples = bind_examples},
    {.name = "unbind",
     .run = unbind_port,
     .help = "Unbinds a port from an instance.",
     .operands = port_and_instance,
     .options = bind_options,
     .examples = unbind_examples},
    {.name = "shutdown",
     .run = shut_down_port,
     .help = "Shuts a port down.",
     .operands = one_port,
     .options = options,
     .examples = shutdown_examples},
    {.name = "start",
     .run = start_port,
     .help = "Starts a port that was shut down.",
     .operands = one_port,
     .options = options,
     .examples = start_examples},
    {.name = "list",
     .run = list_ports,
     .help = "Lists the ports that OpenFlow may use, in the order of their names.",
     .details = "Without an agent no port is bound to an instance.",
     .options = list_options,
     .examples = list_examples},
};

} // namespace

const std::span<const Verb> port_verbs = rows;

} // namespace ofpctl
