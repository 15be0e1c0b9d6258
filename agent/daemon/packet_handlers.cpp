// What the switch does with a packet.
#include <cstring>

#include "daemon/handler.h"
#include "daemon/packet_message.h"
#include "ofp/host.h"
#include "openflow/wire.h"

namespace agent {

namespace {

using openflow::store;

// The largest answer: 255 tables, each with two fields of 16 bytes that differ, and an action set
// that sets every field.
constexpr size_t TLV = 4;
constexpr size_t DIFFERENCE_MAX = TLV + 4 + 3 * 16;
constexpr size_t VISIT_MAX = TLV + sizeof(PacketVisitRecord) + TLV + sizeof(PacketNearMissRecord) +
                             NearMiss::LISTED * DIFFERENCE_MAX;
constexpr size_t ACTIONS_MAX = TLV + 17 * 16 + 40 * 24 + 4 * 24;
static_assert(2 * TLV + 12 + 255 * VISIT_MAX + ACTIONS_MAX +
                  Trace::OUTPUTS_LISTED * (TLV + sizeof(PacketOutputRecord)) <=
              REPLY_MAX);

uint32_t take_query(Bytes &rest, PacketQueryRecord &query)
{
    Bytes value;
    if (const uint32_t code = take_value(rest, TLV_PACKET_QUERY, value)) {
        return code;
    }
    if (value.size() != sizeof query) {
        return BAD_TLV_LENGTH;
    }
    query.instance_id = openflow::load16(value.data());
    query.flags = value[2];
    query.table_id = value[3];
    query.bytes = openflow::load32(value.data() + 4);
    return (query.flags & ~PACKET_SEND) == 0 ? 0 : BAD_PACKET;
}

// Ports have the numbers of the interfaces; one that the switch's description does not have is up.
bool is_up(const Model &model, uint32_t port)
{
    if (model.configuration().global().shut_down_ports.contains(port)) {
        return false;
    }
    const HostInterface *const interface = HOST_FindInterface(port);
    return !interface || (interface->up != 0 && IF_IsNodeUp(interface->node) != 0);
}

uint8_t default_table(const Model &model, uint16_t instance)
{
    return model.table(instance, CLIENT_TABLE) && is_client(instance)
               ? CLIENT_TABLE
               : model.next_table(instance, -1).value_or(PACKET_DEFAULT_TABLE);
}

std::vector<uint8_t> tables_of(const Model &model, uint16_t instance)
{
    std::vector<uint8_t> tables;
    for (auto id = model.next_table(instance, -1); id; id = model.next_table(instance, *id)) {
        tables.push_back(*id);
    }
    return tables;
}

constexpr PacketEnd end_of(TraceEnd end)
{
    switch (end) {
    case TraceEnd::carried_out:
        return PacketEnd::carried_out;
    case TraceEnd::no_rule:
        return PacketEnd::no_rule;
    case TraceEnd::no_table:
        return PacketEnd::no_table;
    case TraceEnd::permitted:
        return PacketEnd::permitted;
    case TraceEnd::cut:
        return PacketEnd::cut;
    }
    return PacketEnd::cut;
}

void add_difference(const Difference &difference, Reply &reply)
{
    const size_t wanted = difference.wanted.size();
    uint8_t *out = reply.add_bytes(TLV_PACKET_DIFFERENCE, wanted + difference.has.size());
    std::memcpy(out, difference.wanted.data(), wanted);
    if (!difference.has.empty()) {
        std::memcpy(out + wanted, difference.has.data(), difference.has.size());
    }
}

void add_near_miss(const NearMiss &miss, Reply &reply)
{
    uint8_t *out = reply.add_bytes(TLV_PACKET_NEAR_MISS, sizeof(PacketNearMissRecord));
    store<uint32_t>(out, miss.rule);
    store<uint16_t>(out + 4, miss.priority);
    store<uint16_t>(out + 6, static_cast<uint16_t>(miss.fields));
    for (const Difference &difference : miss.differences) {
        add_difference(difference, reply);
    }
}

void add_visit(const TableVisit &visit, Reply &reply)
{
    uint8_t *out = reply.add_bytes(TLV_PACKET_VISIT, sizeof(PacketVisitRecord));
    store<uint32_t>(out, visit.rule);
    store<uint16_t>(out + 4, visit.priority);
    out[6] = visit.table;
    out[7] = 0;
    if (visit.better) {
        add_near_miss(*visit.better, reply);
    }
}

void add_output(const PacketOutput &output, Reply &reply)
{
    uint8_t *out = reply.add_bytes(TLV_PACKET_OUTPUT, sizeof(PacketOutputRecord));
    store<uint32_t>(out, output.port);
    store<uint32_t>(out + 4, output.group);
    store<uint32_t>(out + 8, output.bucket);
    store<uint32_t>(out + 12, output.held_back ? PACKET_HELD_BACK : 0);
}

void write_trace(const Trace &trace, Reply &reply)
{
    reply.begin(MSG_PACKET_REPLY);
    uint8_t *out = reply.add_bytes(TLV_PACKET_RESULT, sizeof(PacketResultRecord));
    out[0] = static_cast<uint8_t>(end_of(trace.end));
    out[1] = trace.missing_table;
    store<uint16_t>(out + 2, 0);
    store<uint32_t>(out + 4, trace.output_count);
    for (const TableVisit &visit : trace.visits) {
        add_visit(visit, reply);
    }
    if (!trace.action_set.empty()) {
        out = reply.add_bytes(TLV_PACKET_ACTIONS, trace.action_set.size());
        std::memcpy(out, trace.action_set.data(), trace.action_set.size());
    }
    for (const PacketOutput &output : trace.outputs) {
        add_output(output, reply);
    }
    reply.end();
}

} // namespace

uint32_t packet(const Request &request, Reply &reply, Model &model)
{
    Bytes rest = request.body;
    PacketQueryRecord query;
    Bytes fields;
    if (const uint32_t code = take_query(rest, query)) {
        return code;
    }
    if (const uint32_t code = take_value(rest, TLV_PACKET_FIELDS, fields)) {
        return code;
    }
    if (const uint32_t code = at_end(rest)) {
        return code;
    }
    const InstanceConfig *const instance = model.instance(query.instance_id);
    if (!instance) {
        return NO_INSTANCE;
    }
    if (query.table_id == PACKET_DEFAULT_TABLE) {
        query.table_id = default_table(model, query.instance_id);
    }
    if (!model.table(query.instance_id, query.table_id)) {
        return NO_TABLE;
    }
    const std::vector<uint8_t> tables = tables_of(model, query.instance_id);
    Trace trace;
    PacketQuery packet{.fields = fields, .tables = tables, .first = query.table_id};
    packet.permit_missed = instance->miss_mode == MISS_PERMIT;
    packet.is_up = [&model](uint32_t port) { return is_up(model, port); };
    if (model.flow_switch().trace(query.instance_id, packet, trace)) {
        return BAD_PACKET;
    }
    write_trace(trace, reply);
    if ((query.flags & PACKET_SEND) != 0) {
        Switch::count(trace, query.bytes);
    }
    return 0;
}

} // namespace agent
