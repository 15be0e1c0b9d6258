#include <cstdint>

#include <fmt/format.h>

#include "frame/agent_link.h"
#include "frame/context.h"
#include "ofp.h"
#include "verbs/nouns.h"

namespace ofpctl {

namespace {

void add_instance(Context &context)
{
    const uint32_t id = require_number("ID", context.arguments.operands().front(), 1, UINT16_MAX);
    require_agent();
    require_success(OFP_AddInstance(id), fmt::format("instance {}", id));
    if (context.out.json())
        context.out.document().number("instance", id);
    else
        context.out.line(fmt::format("instance {} added", id));
}

constexpr Example add_examples[] = {
    {"ofpctl instance add 1", "Creates instance 1 with its default flow tables"},
};

constexpr Verb rows[] = {
    {.name = "add",
     .run = add_instance,
     .help = "Creates an instance with its default flow tables.",
     .details = "The tables are 10, 11, 20, 21 and 30; instance 4101 has table 0 alone.",
     .operands = {"ID", Kind::number, 1, 1, 1, UINT16_MAX},
     .examples = add_examples},
};

} // namespace

const std::span<const Verb> instance_verbs = rows;

} // namespace ofpctl
