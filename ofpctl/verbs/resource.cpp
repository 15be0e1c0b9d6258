#include <cstdint>
#include <memory>

#include <fmt/format.h>

#include "daemon/result_codes.h"
#include "frame/agent_link.h"
#include "ofp.h"
#include "verbs/nouns.h"
#include "verbs/watch.h"
#include "wire/record_text.h"

namespace ofpctl {

namespace {

struct AclResources {
    OfpShowAclResv reserved{};
    uint32_t tables = 0;
};

AclResources read_acl()
{
    AclResources acl;
    const uint32_t reserved = OFP_get_AclResv(&acl.reserved);
    if (reserved != agent::NOT_PRESENT)
        require_success(reserved, "reserved ACL resources");
    require_success(OFP_get_AclTableNum(&acl.tables), "ACL tables");
    return acl;
}

// Of interfaces, freed with it.
class Interfaces {
public:
    Interfaces() { OFP_get_InitMeterBandList(&head_); }
    ~Interfaces() { OFP_get_FiniMeterBandList(&head_); }
    Interfaces(const Interfaces &) = delete;
    Interfaces &operator=(const Interfaces &) = delete;

    void read(uint32_t if_index)
    {
        const uint32_t code = OFP_get_ResourcesIf(if_index, 0, &head_);
        // To have nothing to tell is a failure on the wire.
        const bool nothing =
            code == static_cast<uint32_t>(OFP_RC_FAILED) || code == agent::NOT_PRESENT;
        if (!nothing)
            require_success(code, "resources of interfaces");
    }

    template <class Visit>
    void each(Visit visit) const
    {
        for (const OfpLink *at = head_.next; at != &head_; at = at->next)
            visit(reinterpret_cast<const OfpResourceElement *>(at)->resources);
    }

private:
    OfpLink head_{};
};

void print_json(JsonWriter &json, const AclResources &acl, const Interfaces &interfaces)
{
    json.begin_object("acl");
    json.number("tables", acl.tables);
    write_record(json, OFP_TLV_ShowAclResv, &acl.reserved);
    json.end();
    json.begin_array("interfaces");
    interfaces.each([&](const OfpRepResourcesIF &resources) {
        json.begin_object();
        write_record(json, OFP_TLV_RepResourcesIF, &resources);
        json.end();
    });
    json.end();
}

void print_text(Output &out, const AclResources &acl, const Interfaces &interfaces)
{
    out.line(fmt::format("ACL tables {}", acl.tables));
    out.line("ACL resources reserved");
    out.write(record_lines(OFP_TLV_ShowAclResv, &acl.reserved, 2));
    interfaces.each([&](const OfpRepResourcesIF &resources) {
        out.line(fmt::format("interface {}", resources.if_index));
        out.write(record_lines(OFP_TLV_RepResourcesIF, &resources, 2));
    });
}

void print_resources(Context &context)
{
    require_agent();
    const AclResources acl = read_acl();
    Interfaces interfaces;
    interfaces.read(context.arguments.number("interface"));
    if (context.out.json())
        print_json(context.out.document(), acl, interfaces);
    else
        print_text(context.out, acl, interfaces);
}

void show_resources(Context &context) { watch(context, print_resources); }

constexpr OptionRow options[] = {
    {.name = "interface",
     .kind = Kind::number,
     .value = "INDEX",
     .help = "one interface; 0 for all",
     .fallback = "0",
     .least = 0,
     .most = UINT32_MAX},
    watch_option,
    rounds_option,
};

constexpr Example examples[] = {
    {"ofpctl resource show", "ACL resources, and the resources of all interfaces"},
};

constexpr Verb rows[] = {
    {.name = "show",
     .run = show_resources,
     .help = "Shows ACL resources and the resources of interfaces.",
     .details = "Numbers that only the agent gives a meaning go by the names of the record's "
                "members.",
     .options = options,
     .examples = examples},
};

} // namespace

const std::span<const Verb> resource_verbs = rows;

} // namespace ofpctl
