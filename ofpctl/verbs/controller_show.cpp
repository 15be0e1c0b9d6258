// controller list and show: what the agent has and how the connections stand.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "daemon/result_codes.h"
#include "frame/agent_link.h"
#include "frame/interrupt.h"
#include "option/member.h"
#include "option/record_option.h"
#include "verbs/controller_verbs.h"
#include "verbs/reply_tlvs.h"
#include "verbs/watch.h"
#include "wire/record_text.h"

namespace ofpctl {

namespace {

using Datagram = std::vector<uint8_t>;

uint16_t instance_of(const Context &context)
{
    return static_cast<uint16_t>(
        require_number("INSTANCE", context.arguments.operands()[0], 1, UINT16_MAX));
}

uint8_t controller_of(const Context &context)
{
    constexpr uint32_t last = OFP_ALL_CONTROLLERS - 1;
    return static_cast<uint8_t>(
        require_number("CONTROLLER", context.arguments.operands()[1], 0, last));
}

std::string name_of(uint16_t instance, uint8_t controller)
{
    return fmt::format("controller {} of instance {}", controller, instance);
}

// A controller as list and show print it.
struct View {
    uint8_t id;
    std::string address;
    uint16_t port;
    bool connected;
    std::string role;
    std::string vrf;
    std::string tls;
};

View view_of(const OfpCtrl &controller)
{
    return {controller.controller_id,
            address_text(controller.address_type, controller.address),
            controller.port,
            controller.state == 1,
            role_text(controller.value_u32_36),
            field_text(controller.text_50),
            field_text(controller.text_152)};
}

void write_view(JsonWriter &json, const View &view)
{
    json.number("controller", view.id);
    json.text("address", view.address);
    json.number("port", view.port);
    json.flag("connected", view.connected);
    json.text("role", view.role);
    json.text("vrf", view.vrf);
    json.text("tls-policy", view.tls);
}

std::string or_dash(const std::string &text) { return text.empty() ? "-" : text; }

// ---- list

std::optional<OfpCtrl> next_controller(uint16_t instance, uint8_t after)
{
    OfpCtrl next{};
    const uint32_t code = OFP_get_NextCtrl(instance, after, &next);
    if (code == agent::NO_NEXT)
        return std::nullopt;
    require_success(code, fmt::format("controllers of instance {}", instance));
    if (after != OFP_ALL_CONTROLLERS && next.controller_id <= after)
        throw Failure{.message = fmt::format("instance {}: the agent lists controller {} after {}",
                                             instance, next.controller_id, after)};
    return next;
}

void print_row(Output &out, const View &view)
{
    if (!out.json()) {
        out.line(fmt::format("{:>10} {:<24} {:>5} {:<13} {:<6} {:<12} {}", view.id, view.address,
                             view.port, view.connected ? "connected" : "not connected", view.role,
                             or_dash(view.vrf), or_dash(view.tls)));
        return;
    }
    out.document().begin_object();
    write_view(out.document(), view);
    out.document().end();
}

void print_controllers(Context &context)
{
    const uint16_t instance = instance_of(context);
    require_agent();
    Output &out = context.out;
    if (out.json()) {
        out.document().number("instance", instance);
        out.document().begin_array("controllers");
    } else {
        out.line(fmt::format("{:>10} {:<24} {:>5} {:<13} {:<6} {:<12} {}", "CONTROLLER", "ADDRESS",
                             "PORT", "STATE", "ROLE", "VRF", "TLS POLICY"));
    }
    for (auto next = next_controller(instance, OFP_ALL_CONTROLLERS); next;
         next = next_controller(instance, next->controller_id)) {
        check_interrupt();
        print_row(out, view_of(*next));
    }
    if (out.json())
        out.document().end();
}

// ---- show

struct Details {
    OfpCtrl controller{};
    OfpCtrlDebugInfo counters{};
    std::vector<OfpAuxCfg> auxiliaries;
};

template <class Query>
Datagram ask(Query query, uint16_t instance, uint8_t controller)
{
    Datagram buffer(OFP_LARGE_DATAGRAM_SIZE);
    uint64_t length = 0;
    require_success(query(instance, controller, buffer.size(), buffer.data(), &length),
                    name_of(instance, controller));
    buffer.resize(length);
    return buffer;
}

Details read_details(uint16_t instance, uint8_t controller)
{
    Details details;
    each_tlv(ask(OFP_get_CtrlInfo, instance, controller), [&](const ReplyTlv &tlv) {
        if (tlv.type == OFP_TLV_Ctrl)
            details.controller = tlv.record<OfpCtrl>();
    });
    each_tlv(ask(OFP_get_CtrlPktInfo, instance, controller), [&](const ReplyTlv &tlv) {
        if (tlv.type == OFP_TLV_CtrlDebugInfo)
            details.counters = tlv.record<OfpCtrlDebugInfo>();
    });
    each_tlv(ask(OFP_get_CtrlCfgInfo, instance, controller), [&](const ReplyTlv &tlv) {
        if (tlv.type == OFP_TLV_AuxCfg)
            details.auxiliaries.push_back(tlv.record<OfpAuxCfg>());
    });
    return details;
}

void print_text(Output &out, uint16_t instance, const Details &details)
{
    const View view = view_of(details.controller);
    out.line(fmt::format("{}: {}", name_of(instance, view.id),
                         view.connected ? "connected" : "not connected"));
    out.line(fmt::format("  address     {}", view.address));
    out.line(fmt::format("  port        {}", view.port));
    out.line(fmt::format("  role        {}", view.role));
    out.line(fmt::format("  vrf         {}", or_dash(view.vrf)));
    out.line(fmt::format("  tls-policy  {}", or_dash(view.tls)));
    for (const OfpAuxCfg &auxiliary : details.auxiliaries)
        out.line(fmt::format("  auxiliary connection {}: address {}, port {}, vrf {}",
                             auxiliary.aux_id,
                             address_text(auxiliary.address_type, auxiliary.address),
                             auxiliary.port, or_dash(field_text(auxiliary.text_28))));
    out.line("  counters");
    out.write(record_lines(OFP_TLV_CtrlDebugInfo, &details.counters, 4));
}

void print_json(JsonWriter &json, uint16_t instance, const Details &details)
{
    json.number("instance", instance);
    write_view(json, view_of(details.controller));
    json.begin_array("auxiliaries");
    for (const OfpAuxCfg &auxiliary : details.auxiliaries) {
        json.begin_object();
        json.number("auxiliary", auxiliary.aux_id);
        json.text("address", address_text(auxiliary.address_type, auxiliary.address));
        json.number("port", auxiliary.port);
        json.text("vrf", field_text(auxiliary.text_28));
        json.end();
    }
    json.end();
    json.begin_object("counters");
    write_record(json, OFP_TLV_CtrlDebugInfo, &details.counters);
    json.end();
}

void print_controller(Context &context)
{
    const uint16_t instance = instance_of(context);
    const uint8_t controller = controller_of(context);
    require_agent();
    const Details details = read_details(instance, controller);
    if (context.out.json())
        print_json(context.out.document(), instance, details);
    else
        print_text(context.out, instance, details);
}

} // namespace

bool has_controller(uint16_t instance, uint8_t controller)
{
    Datagram buffer(OFP_LARGE_DATAGRAM_SIZE);
    uint64_t length = 0;
    const uint32_t code =
        OFP_get_CtrlInfo(instance, controller, buffer.size(), buffer.data(), &length);
    if (code != agent::NO_CONTROLLER)
        require_success(code, name_of(instance, controller));
    return code == 0;
}

bool has_auxiliary(uint16_t instance, uint8_t controller, uint8_t auxiliary)
{
    const Details details = read_details(instance, controller);
    return std::any_of(details.auxiliaries.begin(), details.auxiliaries.end(),
                       [=](const OfpAuxCfg &row) { return row.aux_id == auxiliary; });
}

bool reports(const OfpCtrlCfg &controller)
{
    bool same = false;
    each_tlv(ask(OFP_get_CtrlCfgInfo, controller.instance_id, controller.controller_id),
             [&](const ReplyTlv &tlv) {
                 if (tlv.type == OFP_TLV_CtrlCfg) {
                     const auto kept = tlv.record<OfpCtrlCfg>();
                     same = std::memcmp(&kept, &controller, sizeof kept) == 0;
                 }
             });
    return same;
}

bool reports(const OfpAuxCfg &auxiliary)
{
    const Details details = read_details(auxiliary.instance_id, auxiliary.controller_id);
    return std::any_of(
        details.auxiliaries.begin(), details.auxiliaries.end(),
        [&](const OfpAuxCfg &row) { return std::memcmp(&row, &auxiliary, sizeof row) == 0; });
}

void list_controllers(Context &context) { watch(context, print_controllers); }
void show_controller(Context &context) { watch(context, print_controller); }

} // namespace ofpctl
