#include "flow/async.h"

#include <cstdlib>

#include "flow/client.h"
#include "flow/openflow.h"
#include "flow/reply.h"
#include "flow/rule.h"
#include "ofp/async.h"
#include "ofp/channel.h"
#include "ofp/codec.h"
#include "ofp/result.h"

namespace ofp {
namespace {

constexpr uint16_t first_client = 4096;

// A rule that was sent and has not been reported.
struct PendingRule {
    PendingRule *next;
    OfpFlowItem *item; // a copy
    uint64_t result;   // 0, or what an error told
    uint32_t xid;
    uint8_t table_id;
};

// A client's channel and its pending rules, the oldest first.
struct AsyncChannel {
    int32_t socket = -1;
    OfpAsyncCallback callback = nullptr;
    PendingRule *oldest = nullptr;
    PendingRule *newest = nullptr;
};

constinit AsyncChannel channels[4] = {};
constinit uint32_t transaction_id = 0x80000000;

AsyncChannel *channel_of_socket(int32_t socket)
{
    for (AsyncChannel &channel : channels) {
        if (channel.socket == socket)
            return &channel;
    }
    return nullptr;
}

uint16_t client_of(const AsyncChannel &channel)
{
    return static_cast<uint16_t>(first_client + (&channel - channels));
}

void append(AsyncChannel &channel, PendingRule *rule)
{
    (channel.oldest == nullptr ? channel.oldest : channel.newest->next) = rule;
    channel.newest = rule;
}

// The oldest pending rule of a transaction and the one before it. Replies come in the order of the
// rules, so it is the first as a rule.
struct Found {
    PendingRule *before;
    PendingRule *rule;
};

Found find(const AsyncChannel &channel, uint32_t xid)
{
    PendingRule *before = nullptr;
    PendingRule *rule = channel.oldest;
    while (rule != nullptr && rule->xid != xid) {
        before = rule;
        rule = rule->next;
    }
    return {before, rule};
}

void unlink(AsyncChannel &channel, Found found)
{
    (found.before == nullptr ? channel.oldest : found.before->next) = found.rule->next;
    if (channel.newest == found.rule)
        channel.newest = found.before;
}

void destroy(PendingRule *rule)
{
    OFP_util_FreeFlowItem(rule->item);
    std::free(rule);
}

uint32_t track(AsyncChannel &channel, const OfpFlowRuleCtx &request, const OfpFlowItem &item)
{
    auto rule = static_cast<PendingRule *>(std::malloc(sizeof(PendingRule)));
    if (rule == nullptr)
        return OFP_RC_NO_RESOURCE;
    *rule = {.next = nullptr,
             .item = OFP_util_CopyFlowItem(&item),
             .result = OFP_RC_OK,
             .xid = request.xid,
             .table_id = request.table_id};
    if (rule->item == nullptr) {
        std::free(rule);
        return OFP_RC_NO_RESOURCE;
    }
    append(channel, rule);
    return OFP_RC_OK;
}

uint32_t send_rule(uint32_t command, uint16_t client_id, uint8_t table_id, const OfpFlowItem *item)
{
    transaction_id = transaction_after(transaction_id);
    const OfpFlowRuleCtx request = {.command = command,
                                    .xid = transaction_id,
                                    .client_id = client_id,
                                    .asynchronous = 1,
                                    .table_id = table_id};
    AsyncChannel *channel = is_client(client_id) ? &channels[client_id - first_client] : nullptr;
    const uint32_t result =
        program_rules(request, channel != nullptr ? channel->socket : -1, 1, item, nullptr);
    if (result != OFP_RC_OK || channel == nullptr || channel->callback == nullptr)
        return result;
    return track(*channel, request, *item); // it is on its way already
}

// The rule is off the list before the callback learns of it, which may close the channel.
void report(AsyncChannel &channel, Found found)
{
    const uint16_t client_id = client_of(channel);
    unlink(channel, found);
    channel.callback(client_id, found.rule->table_id, found.rule->item, found.rule->result);
    destroy(found.rule);
}

} // namespace
} // namespace ofp

using namespace ofp;

OFP_API int32_t OFP_AsyncInit(uint16_t client_id, OfpAsyncCallback callback)
{
    if (!is_client(client_id))
        return -1;
    AsyncChannel &channel = channels[client_id - first_client];
    if (channel.socket >= 0)
        return channel.socket;
    const int32_t socket = connect_client(client_id);
    if (socket < 0)
        return socket;
    channel.socket = socket;
    channel.callback = callback;
    return socket;
}

OFP_API uint32_t OFP_AsyncAddFlowRule(uint16_t client_id, uint8_t table_id, const OfpFlowItem *item)
{
    return send_rule(OFPFC_ADD, client_id, table_id, item);
}

OFP_API uint32_t OFP_AsyncModifyFlowRule(uint16_t client_id, uint8_t table_id,
                                         const OfpFlowItem *item)
{
    return send_rule(OFPFC_MODIFY, client_id, table_id, item);
}

OFP_API uint32_t OFP_AsyncDelFlowRule(uint16_t client_id, uint8_t table_id, const OfpFlowItem *item,
                                      int16_t strict)
{
    return send_rule(strict == 1 ? OFPFC_DELETE_STRICT : OFPFC_DELETE, client_id, table_id, item);
}

OFP_API void OFP_AsyncDispatch(int32_t socket)
{
    if (socket < 0)
        return;
    uint8_t datagram[OFP_DATAGRAM_SIZE];
    const Reply reply(datagram, OFP_util_Recv(socket, sizeof datagram, datagram));
    AsyncChannel *channel = channel_of_socket(socket);
    if (!reply.is_whole() || channel == nullptr || channel->callback == nullptr)
        return;
    const bool error = reply.is_error() && reply.is_whole_error();
    if (!error && !reply.is_barrier())
        return;
    const Found found = find(*channel, reply.xid());
    if (found.rule == nullptr)
        return;
    if (error)
        found.rule->result = reply.result();
    else
        report(*channel, found);
}

OFP_API void OFP_AsyncFini(int32_t socket)
{
    if (socket < 0)
        return;
    AsyncChannel *channel = channel_of_socket(socket);
    OFP_plgn_Close(socket);
    if (channel == nullptr)
        return;
    PendingRule *rule = channel->oldest;
    *channel = {};
    while (rule != nullptr) {
        PendingRule *next = rule->next;
        destroy(rule);
        rule = next;
    }
}
