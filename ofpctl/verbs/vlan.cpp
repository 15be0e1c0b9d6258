// vlan set: the VLANs of an instance and of the whole switch. The settings are those of the two
// tables that concern VLANs.
#include <fmt/format.h>

#include "frame/context.h"
#include "frame/failure.h"
#include "verbs/change.h"
#include "verbs/global.h"
#include "verbs/instance.h"
#include "verbs/nouns.h"

namespace ofpctl {

namespace {

const InstanceOption *of_instance(const SettingRow &row)
{
    for (const InstanceOption &option : instance_options()) {
        if (&option.row == &row)
            return &option;
    }
    return nullptr;
}

SettingRows vlan_settings()
{
    SettingRows rows;
    for (const InstanceOption &option : instance_options()) {
        if (option.vlan)
            rows.push_back(&option.row);
    }
    for (const GlobalOption &option : global_options()) {
        if (option.vlan)
            rows.push_back(&option.row);
    }
    return rows;
}

uint16_t require_instance_option(const Context &context, const SettingRow &row)
{
    if (!context.arguments.given("instance"))
        throw usage_failure(fmt::format("{} is an instance's: --instance ID is missing", row.name));
    return static_cast<uint16_t>(context.arguments.number("instance"));
}

void set_vlans(Context &context)
{
    InstanceRecord record;
    GlobalRecord global;
    bool reads_instance = false;
    bool reads_global = false;
    Changes changes;
    for (const Assignment &assignment :
         parse_assignments(context.arguments.operands(), vlan_settings())) {
        if (const InstanceOption *option = of_instance(*assignment.row)) {
            const uint16_t id = require_instance_option(context, *assignment.row);
            changes.all.push_back(instance_change(id, *option, assignment.value, record));
            reads_instance = true;
        } else {
            changes.all.push_back(global_change(option_of(global_options(), *assignment.row),
                                                assignment.value, global));
            reads_global = true;
        }
    }
    changes.refresh = [&] {
        if (reads_instance)
            record.read(static_cast<uint16_t>(context.arguments.number("instance")));
        if (reads_global)
            global.read();
    };
    perform(context, changes);
}

constexpr OptionRow set_options[] = {
    {.name = "instance",
     .kind = Kind::number,
     .value = "ID",
     .help = "the instance whose VLANs they are",
     .least = 1,
     .most = UINT16_MAX},
    dry_run_option,
    verify_option,
};

constexpr Example set_examples[] = {
    {"ofpctl vlan set --instance 1 vlan=96/0xff0 management-vlans=1-10,20",
     "Instance 1 serves VLANs 96 to 111"},
    {"ofpctl vlan set normal-forward-vlans=none", "No VLAN is forwarded as usual"},
};

constexpr Verb rows[] = {
    {.name = "set",
     .run = set_vlans,
     .help = "Sets VLANs of an instance or of the switch.",
     .details = "VLAN ids are 1 to 4094. A list has at most ten ranges.",
     .operands = {"NAME=VALUE...", Kind::text, 1, any_number},
     .options = set_options,
     .examples = set_examples,
     .settings = vlan_settings},
};

} // namespace

const std::span<const Verb> vlan_verbs = rows;

} // namespace ofpctl
