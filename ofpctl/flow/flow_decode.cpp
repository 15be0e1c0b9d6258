#include "flow/flow_decode.h"

#include <algorithm>
#include <optional>

#include <fmt/format.h>

#include "flow/action_text.h"
#include "flow/experimenter_text.h"
#include "flow/field_table.h"
#include "flow/flow_draft.h"
#include "flow/match_text.h"
#include "flow/port_text.h"
#include "openflow/message.h"
#include "openflow/oxm.h"

namespace ofpctl {
namespace {

using openflow::Bytes;
using Wrong = std::optional<std::string>;

constexpr std::size_t id_size = 4;

// ---- Match ----

// Bytes of a value of so many bits: OpenFlow rounds to the next integer type.
std::size_t wire_size(const Field &field)
{
    switch (field.width) {
    case 48:
    case 64:
    case 128:
        return field.width / 8U;
    default:
        return field.width <= 8 ? 1 : field.width <= 16 ? 2 : 4;
    }
}

std::string describe(const openflow::Oxm &oxm)
{
    const auto name = openflow::oxm_name(oxm.oxm_class, oxm.field);
    return name.empty() ? fmt::format("match field 0x{:04x}/{}", oxm.oxm_class, oxm.field)
                        : std::string(name);
}

Wrong check_form(const Field &field, const openflow::Oxm &oxm)
{
    const std::size_t size = wire_size(field);
    if (oxm.value.size() != size || (oxm.has_mask && oxm.mask.size() != size))
        return fmt::format("{} has {} bytes instead of {}", field.standard, oxm.value.size(), size);
    if (oxm.has_mask && !field.maskable())
        return fmt::format("{} has a mask", field.standard);
    return std::nullopt;
}

// A value with its mask, put in the form in which text brings it.
Wrong read_value(const Field &field, const openflow::Oxm &oxm, FlowDraft &draft)
{
    OfpFRMatch &match = draft.match();
    if (auto wrong = check_form(field, oxm))
        return wrong;
    const Wide all = ones(field.width);
    const Wide present = is_vlan(field) ? Wide{0, vlan_present} : Wide{};
    const Wide wire = from_bytes(oxm.value.data(), oxm.value.size());
    const Wide wire_mask = oxm.has_mask ? from_bytes(oxm.mask.data(), oxm.mask.size())
                                        : Wide{all.high, all.low | present.low};
    if ((wire & present) != present || (wire_mask & present) != present)
        return fmt::format("{} lacks the present bit", field.standard);
    const Wide value = {wire.high, wire.low & ~present.low};
    const Wide mask = {wire_mask.high, wire_mask.low & ~present.low};
    if ((value & all) != value || (mask & all) != mask)
        return fmt::format("{} has bits beyond its {}", field.standard, field.width);
    if (!mask && !is_vlan(field))
        return std::nullopt;
    match.fields |= field_bit(field.bit);
    field.access.set_value(match, value & mask);
    if (mask != all) {
        match.mask->masked |= field_bit(field.bit);
        field.access.set_mask(match, mask);
    }
    return std::nullopt;
}

Wrong read_words(const openflow::Oxm &oxm, OfpFRMatch &match)
{
    if (oxm.has_mask || oxm.value.size() != sizeof match.ip_range)
        return fmt::format("ip_range has {} bytes", oxm.entry.size());
    for (std::size_t i = 0; i < std::size(match.ip_range); ++i)
        match.ip_range[i] = openflow::load32(oxm.value.data() + i * 4);
    match.fields |= field_bit(OFP_FIELD_IP_RANGE);
    return std::nullopt;
}

Wrong check_id(const openflow::Oxm &oxm)
{
    const bool good = !oxm.has_mask && oxm.value.size() >= id_size &&
                      openflow::load32(oxm.value.data()) == openflow::EXPERIMENTER_ID;
    return good ? std::nullopt : Wrong(fmt::format("{} is not this system's", describe(oxm)));
}

// A long list comes in several entries.
Wrong read_interfaces(const openflow::Oxm &oxm, FlowDraft &draft)
{
    if (auto wrong = check_id(oxm))
        return wrong;
    if (oxm.value.size() % 4 != 0)
        return std::string("batch_if ends within an index");
    for (std::size_t at = id_size; at < oxm.value.size(); at += 4)
        draft.interfaces.push_back(openflow::load32(oxm.value.data() + at));
    draft.match().fields |= field_bit(OFP_FIELD_BATCH_IF);
    return std::nullopt;
}

Wrong read_experimenter(const openflow::Oxm &oxm, FlowDraft &draft)
{
    if (auto wrong = check_id(oxm))
        return wrong;
    add_wire_experimenter(oxm.field, oxm.value.subspan(id_size), draft);
    return std::nullopt;
}

Wrong read_oxm(const openflow::Oxm &oxm, FlowDraft &draft)
{
    const bool basic = oxm.oxm_class == openflow::OFPXMC_OPENFLOW_BASIC;
    const Field *field = find_field(oxm.field);
    const bool is_private = field != nullptr && field->bit >= OFP_FIELD_IP_RANGE;
    if (basic && field != nullptr && !is_private)
        return read_value(*field, oxm, draft);
    if (oxm.oxm_class != openflow::OFPXMC_EXPERIMENTER ||
        oxm.field > openflow::EXPERIMENTER_ITEM_MAX)
        return fmt::format("{} is not known", describe(oxm));
    if (!is_private)
        return read_experimenter(oxm, draft);
    switch (field->form) {
    case Form::words:
        return read_words(oxm, draft.match());
    case Form::interfaces:
        return read_interfaces(oxm, draft);
    default:
        return read_value(*field, oxm, draft);
    }
}

Wrong read_match(const openflow::Match &match, FlowDraft &draft)
{
    openflow::OxmWalk walk(match.entries);
    while (const auto oxm = walk.next()) {
        if (auto wrong = read_oxm(*oxm, draft))
            return wrong;
    }
    return walk.truncated() ? Wrong("the match ends within a field") : std::nullopt;
}

// ---- Actions ----

template <class Record>
Record &add(FlowDraft &draft, uint32_t type, Record ActionRecord::*member)
{
    Record &record = draft.actions.emplace_back().*member;
    record = {};
    record.header = {type, sizeof(Record)};
    return record;
}

Wrong read_experimenter_action(Bytes bytes, FlowDraft &draft)
{
    if (bytes.size() < 16 || openflow::load32(&bytes[4]) != openflow::EXPERIMENTER_ID)
        return std::string("an experimenter action is not this system's");
    const uint32_t subtype = openflow::load32(&bytes[8]);
    const std::size_t size = subtype == 0 || subtype == 3 ? 24 : 16;
    if (subtype > 3 || bytes.size() != size)
        return fmt::format("experimenter action {} has {} bytes", subtype, bytes.size());
    auto &action = add(draft, OFP_ACTION_EXPERIMENTER, &ActionRecord::experimenter);
    action.subtype = action.size_subtype = subtype;
    if (subtype == 3) {
        std::copy_n(&bytes[12], sizeof action.body.mac, action.body.mac);
        return std::nullopt;
    }
    action.body.value[0] = openflow::load32(&bytes[12]);
    action.body.value[1] = subtype == 0 ? openflow::load32(&bytes[16]) : 0;
    return std::nullopt;
}

Wrong read_action(const openflow::Action &action, FlowDraft &draft)
{
    if (const auto port = openflow::output_port(action)) {
        auto &output = add(draft, OFP_ACTION_OUTPUT, &ActionRecord::output);
        output.port_kind = *port >= port_in_port ? OFP_PORT_RESERVED : OFP_PORT_NUMBER;
        output.port = *port;
        return std::nullopt;
    }
    if (const auto group = openflow::output_group(action)) {
        add(draft, OFP_ACTION_GROUP, &ActionRecord::group).group_id = *group;
        return std::nullopt;
    }
    if (action.type == openflow::OFPAT_EXPERIMENTER)
        return read_experimenter_action(action.bytes, draft);
    return fmt::format("action {} is not of this library", action.type);
}

Wrong read_actions(Bytes actions, FlowDraft &draft)
{
    openflow::ActionWalk walk(actions);
    while (const auto action = walk.next()) {
        if (auto wrong = read_action(*action, draft))
            return wrong;
    }
    return walk.truncated() ? Wrong("the actions end within one") : std::nullopt;
}

Wrong read_instructions(Bytes instructions, FlowDraft &draft)
{
    openflow::InstructionWalk walk(instructions);
    bool found = false;
    while (const auto instruction = walk.next()) {
        if (found || instruction->type != openflow::OFPIT_WRITE_ACTIONS)
            return fmt::format("instruction {} is not of this library", instruction->type);
        found = true;
        if (auto wrong = read_actions(openflow::actions_of(*instruction), draft))
            return wrong;
    }
    return walk.truncated() ? Wrong("the instructions end within one") : std::nullopt;
}

} // namespace

FlowDecodeResult decode_flow_mod(std::span<const uint8_t> message)
{
    const auto mod = openflow::parse_flow_mod(message);
    if (!mod)
        return fmt::format("no flow-mod: {}", openflow::error_name(mod.error()));
    FlowDraft draft;
    draft.item.priority = mod->priority;
    if (auto wrong = read_match(mod->match, draft))
        return std::move(*wrong);
    if (auto wrong = read_instructions(mod->instructions, draft))
        return std::move(*wrong);
    return Flow{draft.make(), mod->table_id};
}

std::optional<FieldText> decode_field(std::span<const uint8_t> entry)
{
    openflow::OxmWalk walk(entry);
    const auto oxm = walk.next();
    if (!oxm)
        return std::nullopt;
    FlowDraft draft;
    const Field *field = find_field(oxm->field);
    if (field == nullptr || read_oxm(*oxm, draft) || !takes_part(draft.match(), *field))
        return std::nullopt;
    FieldText text{std::string(field->name), {}};
    append_field_value(text.value, draft.match(), *field);
    return text;
}

std::string decode_actions(std::span<const uint8_t> actions)
{
    std::string text;
    openflow::ActionWalk walk(actions);
    while (const auto action = walk.next()) {
        FlowDraft draft;
        if (!text.empty())
            text += ',';
        if (read_action(*action, draft))
            text += fmt::format("action({})", action->type);
        else
            append_action(text, draft.actions.front().header);
    }
    return text;
}

} // namespace ofpctl
