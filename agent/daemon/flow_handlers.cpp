// Flow programming: smooth periods, rule batches, groups. Answered by bare OpenFlow messages, one a
// datagram, because their readers match them to rules by transaction id.
#include "daemon/handler.h"
#include "daemon/log.h"
#include "daemon/program.h"
#include "openflow/message.h"
#include "openflow/reply.h"

namespace agent {

namespace {

constexpr uint32_t NO_PERIOD = 0xffffffff;
constexpr openflow::Error NOT_PERMITTED{openflow::OFPET_BAD_REQUEST, openflow::OFPBRC_EPERM};

// The most that one message can be answered with, an error.
constexpr size_t ANSWER_MAX = 12 + openflow::ERROR_DATA_MAX;

// Smooth messages hold no OpenFlow message. Their sender waits for the reply to this one.
constexpr uint8_t BARRIER_REQUEST[openflow::HEADER_SIZE] = {
    openflow::OFP_VERSION, openflow::OFPT_BARRIER_REQUEST, 0, openflow::HEADER_SIZE, 0, 0, 0, 0};

// Rules and groups are taken from a client that opened a smooth period in this agent's life: an
// agent that was started again has lost the rules of earlier ones, and their owners must learn it.
Verdict check_head(const OfpClientHead &head, const Model &model)
{
    const bool permitted = model.is_admitted(head.client_id) && head.smooth_id != NO_PERIOD;
    return permitted ? std::nullopt : Verdict(NOT_PERMITTED);
}

// What the messages of a datagram may be, barrier requests apart.
using Apply = Verdict(uint16_t client, Bytes, Model &);
struct Kind {
    uint8_t type;
    Apply *apply;
};

Verdict apply_group_delete(uint16_t client, Bytes message, Model &model)
{
    constexpr size_t COMMAND = 8;
    if (message.size() >= openflow::GROUP_MOD_SIZE &&
        openflow::load16(&message[COMMAND]) != openflow::OFPGC_DELETE) {
        return openflow::Error{openflow::OFPET_GROUP_MOD_FAILED, openflow::OFPGMFC_BAD_COMMAND};
    }
    return apply_group_mod(client, message, model);
}

void answer_error(const OfpClientHead &head, Bytes message, openflow::Error error, Reply &reply,
                  Model &model)
{
    ++model.counters.errors;
    openflow::write_error(message, error, reply.openflow(openflow::error_size(message)));
    log::refusal("client {}: {} with transaction id {:#x} refused: {}", head.client_id,
                 openflow::message_name(message[1]), openflow::load32(&message[4]),
                 openflow::error_name(error));
}

Verdict check_header(const openflow::Header &header, Bytes message, uint8_t type)
{
    using namespace openflow;
    if (header.version != OFP_VERSION) {
        return Error{OFPET_BAD_REQUEST, OFPBRC_BAD_VERSION};
    }
    if (header.type != type && header.type != OFPT_BARRIER_REQUEST) {
        return Error{OFPET_BAD_REQUEST, OFPBRC_BAD_TYPE};
    }
    const bool fits =
        header.length == message.size() && (header.type == type || header.length == HEADER_SIZE);
    return fits ? std::nullopt : Verdict(Error{OFPET_BAD_REQUEST, OFPBRC_BAD_LEN});
}

void answer_message(const OfpClientHead &head, const Verdict &refused, Bytes message,
                    const Kind &kind, Reply &reply, Model &model)
{
    const openflow::Header header = *openflow::peek_header(message);
    Verdict error = check_header(header, message, kind.type);
    if (!error && header.type == openflow::OFPT_BARRIER_REQUEST) {
        reply.openflow(openflow::encode_barrier_reply(header.xid));
        return;
    }
    ++model.counters.messages;
    if (!error) {
        error = refused ? refused : kind.apply(head.client_id, message, model);
    }
    if (error) {
        answer_error(head, message, *error, reply, model);
    }
}

// Answers the messages of a datagram in order: nothing or an error to each, a reply to a barrier.
// They are applied once all of them could be read and there is room for every answer, so that a
// datagram is never carried out in part.
uint32_t answer_messages(const Request &request, MessageWalk::First first, const Kind &kind,
                         Reply &reply, Model &model)
{
    Bytes rest = request.body;
    OfpClientHead head;
    if (const uint32_t code = take(rest, OFP_TLV_ClientHead, head)) {
        return code;
    }
    size_t count = 0;
    MessageWalk counted(rest, first);
    while (counted.next()) {
        ++count;
    }
    if (counted.code() != 0) {
        return counted.code();
    }
    reply.reserve(count, count * ANSWER_MAX);

    const Verdict refused = check_head(head, model);
    MessageWalk walk(rest, first);
    while (const auto message = walk.next()) {
        answer_message(head, refused, *message, kind, reply, model);
    }
    return 0;
}

Verdict open_period(const OfpClientHead &head, Model &model)
{
    if (!is_client(head.client_id) || head.smooth_id == NO_PERIOD || head.smooth_mode > 1) {
        return NOT_PERMITTED;
    }
    model.admit_client(head.client_id);
    if (!model.flow_switch().open_period(head.client_id, head.smooth_id)) {
        return openflow::Error{openflow::OFPET_FLOW_MOD_FAILED, openflow::OFPFMFC_UNKNOWN};
    }
    log::info("client {} opened smooth period {:#x}, mode {}", head.client_id, head.smooth_id,
              head.smooth_mode);
    return std::nullopt;
}

} // namespace

uint32_t smooth_start(const Request &request, Reply &reply, Model &model)
{
    OfpClientHead head;
    if (const uint32_t code = take_only(request, OFP_TLV_ClientHead, head)) {
        return code;
    }
    reply.reserve(2, 2 * ANSWER_MAX);
    if (const Verdict refused = open_period(head, model)) {
        answer_error(head, BARRIER_REQUEST, *refused, reply, model);
    }
    reply.openflow(openflow::encode_barrier_reply(0));
    return 0;
}

uint32_t smooth_end(const Request &request, Reply &, Model &model)
{
    OfpClientHead head;
    if (const uint32_t code = take_only(request, OFP_TLV_ClientHead, head)) {
        return code;
    }
    if (!is_client(head.client_id)) {
        return BAD_CLIENT;
    }
    Switch &flow_switch = model.flow_switch();
    const uint64_t removed = flow_switch.close_period(head.client_id, head.smooth_id);
    uint64_t rules = 0;
    for (int table = -1; const auto next = flow_switch.next_table(head.client_id, table);) {
        table = *next;
        rules += flow_switch.table(head.client_id, *next).rules;
    }
    const size_t memory = flow_switch.memory();
    log::info("client {} ended smooth period {:#x}: {} rules removed, {} kept; the switch holds {} "
              "bytes, {} a rule of this client",
              head.client_id, head.smooth_id, removed, rules, memory, rules ? memory / rules : 0);
    return 0;
}

uint32_t flow_rules(const Request &request, Reply &reply, Model &model)
{
    return answer_messages(request, MessageWalk::First::plain,
                           {openflow::OFPT_FLOW_MOD, apply_flow_mod}, reply, model);
}

uint32_t set_group(const Request &request, Reply &reply, Model &model)
{
    return answer_messages(request, MessageWalk::First::counts_its_header,
                           {openflow::OFPT_GROUP_MOD, apply_group_mod}, reply, model);
}

uint32_t delete_group(const Request &request, Reply &reply, Model &model)
{
    return answer_messages(request, MessageWalk::First::counts_its_header,
                           {openflow::OFPT_GROUP_MOD, apply_group_delete}, reply, model);
}

} // namespace agent
