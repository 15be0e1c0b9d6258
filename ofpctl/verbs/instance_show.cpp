// instance show: all that the agent tells of one instance.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "frame/agent_link.h"
#include "option/member.h"
#include "option/record_option.h"
#include "verbs/instance.h"
#include "verbs/watch.h"

namespace ofpctl {

namespace {

constexpr std::size_t name_width = 24;
constexpr std::size_t value_width = 24;

using Ports = std::vector<OfpVerbIfRep>;

std::string address_of(const OfpCtrlSummary &controller)
{
    return address_text(controller.address_type, controller.address);
}

// ---- Text

void print_options(Output &out, const InstanceRecord &record)
{
    out.line(fmt::format("  {:<{}} {:<{}} {}", "", name_width, "CONFIGURED", value_width,
                         record.active() ? "RUNNING" : ""));
    for (const InstanceOption &option : instance_options()) {
        if (option.configured == nullptr)
            continue;
        std::string line =
            fmt::format("  {:<{}} {:<{}}", option.row.name, name_width,
                        format_value(option.row, option.configured(record)), value_width);
        if (record.active() && option.running != nullptr)
            line += " " + format_value(option.row, option.running(record));
        line.erase(line.find_last_not_of(' ') + 1);
        out.line(line);
    }
}

void print_controllers(Output &out, const std::vector<OfpCtrlSummary> &controllers)
{
    if (controllers.empty())
        return;
    out.line("controllers");
    for (const OfpCtrlSummary &controller : controllers) {
        std::string line =
            fmt::format("  {:>3}  {} port {}, {}", controller.controller_id, address_of(controller),
                        controller.port, controller.flag == 1 ? "connected" : "not connected");
        const std::string vrf = field_text(controller.text_29);
        const std::string tls = field_text(controller.text_61);
        if (!vrf.empty())
            line += fmt::format(", VRF {}", vrf);
        if (!tls.empty())
            line += fmt::format(", TLS policy {}", tls);
        out.line(line);
    }
}

void print_ports(Output &out, std::string_view title, const Ports &ports)
{
    if (ports.empty())
        return;
    out.line(title);
    for (const OfpVerbIfRep &port : ports)
        out.line(fmt::format("  {} (index {})", field_text(port.name), port.if_index));
}

void print_text(Output &out, uint16_t id, const InstanceRecord &record)
{
    out.line(fmt::format("{}: {}", instance_name(id), record.active() ? "active" : "inactive"));
    print_options(out, record);
    print_controllers(out, record.controllers());
    print_ports(out, "ports", record.configured_interfaces());
    print_ports(out, "running ports", record.running_interfaces());
}

// ---- JSON

using Reader = Value (*InstanceOption::*)(const InstanceRecord &);

void write_options(JsonWriter &json, std::string_view key, Reader reader,
                   const InstanceRecord &record)
{
    json.begin_object(key);
    for (const InstanceOption &option : instance_options()) {
        if (option.*reader != nullptr)
            write_value(json, option.row, (option.*reader)(record));
    }
    json.end();
}

void write_controllers(JsonWriter &json, const std::vector<OfpCtrlSummary> &controllers)
{
    json.begin_array("controllers");
    for (const OfpCtrlSummary &controller : controllers) {
        json.begin_object();
        json.number("controller", controller.controller_id);
        json.text("address", address_of(controller));
        json.number("port", controller.port);
        json.flag("connected", controller.flag == 1);
        json.text("vrf", field_text(controller.text_29));
        json.text("tls-policy", field_text(controller.text_61));
        json.end();
    }
    json.end();
}

void write_ports(JsonWriter &json, std::string_view key, const Ports &ports)
{
    json.begin_array(key);
    for (const OfpVerbIfRep &port : ports) {
        json.begin_object();
        json.number("if_index", port.if_index);
        json.text("name", field_text(port.name));
        json.end();
    }
    json.end();
}

void print_json(JsonWriter &json, uint16_t id, const InstanceRecord &record)
{
    json.number("instance", id);
    json.flag("active", record.active());
    write_options(json, "configured", &InstanceOption::configured, record);
    if (record.active())
        write_options(json, "running", &InstanceOption::running, record);
    else
        json.null("running");
    write_controllers(json, record.controllers());
    write_ports(json, "ports", record.configured_interfaces());
    write_ports(json, "running_ports", record.running_interfaces());
}

void print_instance(Context &context)
{
    const uint16_t id = instance_operand(context);
    require_agent();
    InstanceRecord record;
    record.read(id);
    if (context.out.json())
        print_json(context.out.document(), id, record);
    else
        print_text(context.out, id, record);
}

} // namespace

void show_instance(Context &context) { watch(context, print_instance); }

} // namespace ofpctl
