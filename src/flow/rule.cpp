#include "flow/rule.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "flow/batch.h"
#include "flow/client.h"
#include "flow/openflow.h"
#include "flow/oxm.h"
#include "flow/reply.h"
#include "flow/rule_check.h"
#include "flow/smooth.h"
#include "ipc/channel.h"
#include "ofp/codec.h"
#include "ofp/result.h"

namespace ofp {
namespace {

constexpr uint8_t rule_table = 200;

alignas(8) constinit uint8_t shared_buffer[OFP_DATAGRAM_SIZE] = {};

// The shared buffer until a larger one is needed.
class EncodeBuffer {
public:
    EncodeBuffer() = default;
    ~EncodeBuffer() { std::free(large_); }
    EncodeBuffer(const EncodeBuffer &) = delete;
    EncodeBuffer &operator=(const EncodeBuffer &) = delete;

    uint8_t *bytes() const { return large_ != nullptr ? large_ : shared_buffer; }
    uint64_t size() const
    {
        return large_ != nullptr ? OFP_LARGE_DATAGRAM_SIZE : sizeof shared_buffer;
    }

    bool hold(uint64_t size_needed)
    {
        if (size_needed > size() && large_ == nullptr)
            large_ = static_cast<uint8_t *>(std::malloc(OFP_LARGE_DATAGRAM_SIZE));
        return size_needed <= size();
    }

private:
    uint8_t *large_ = nullptr;
};

struct Exchange {
    const OfpFlowRuleCtx &request;
    const OfpClientHead head;
    const int32_t socket;
};

uint32_t exchange_batch(const Exchange &exchange, const Batch &batch, const OfpFlowItem *items,
                        const EncodeBuffer &buffer, uint64_t *results)
{
    if (batch.has_gaps)
        std::memset(buffer.bytes(), 0, batch.size);
    const uint64_t length =
        OFP_encode_FlowRule(&exchange.request, reinterpret_cast<const uint8_t *>(&exchange.head),
                            batch.count, items, buffer.size(), buffer.bytes());
    const uint32_t result = OFP_util_Send(exchange.socket, buffer.bytes(), length);
    if (result != OFP_RC_OK || exchange.request.asynchronous == 1)
        return result;
    return collect_results(exchange.socket, batch.count, results);
}

// The last rule alone decides whether the large buffer serves from the start.
bool is_large(const OfpFlowItem &last)
{
    return has_bit(last.match.fields, OFP_FIELD_BATCH_IF) && last.match.batch_if.count > 2000;
}

uint32_t exchange_all(const Exchange &exchange, uint32_t count, const OfpFlowItem *items,
                      uint64_t *results)
{
    EncodeBuffer buffer;
    if (is_large(items[count - 1]) && !buffer.hold(OFP_LARGE_DATAGRAM_SIZE))
        return OFP_RC_FAILED;
    for (uint32_t done = 0; done < count;) {
        const Batch batch = cut_batch(count - done, items + done);
        if (batch.count == 0 || !buffer.hold(batch.size))
            return OFP_RC_FAILED;
        const uint32_t result = exchange_batch(exchange, batch, items + done, buffer,
                                               results != nullptr ? results + done : nullptr);
        if (result != OFP_RC_OK)
            return result;
        done += batch.count;
    }
    return OFP_RC_OK;
}

OfpFlowRuleCtx synchronous(OpenflowCommand command, uint16_t client_id, uint8_t table_id)
{
    return {.command = command, .client_id = client_id, .table_id = table_id};
}

} // namespace

uint32_t program_rules(const OfpFlowRuleCtx &request, int32_t asynchronous_socket, uint32_t count,
                       const OfpFlowItem *items, uint64_t *results)
{
    const uint16_t client = request.client_id;
    if (items == nullptr || count == 0 || request.table_id != rule_table || !is_client(client))
        return OFP_RC_FAILED;
    if (results != nullptr)
        std::fill_n(results, count, OFP_RC_FAILED);
    if (!check_rules(count, items, results) || !smooth_is_open())
        return OFP_RC_FAILED;
    if (request.asynchronous == 1) {
        if (asynchronous_socket == -1)
            return OFP_RC_FAILED;
        return exchange_all({request, client_head(client), asynchronous_socket}, count, items,
                            nullptr);
    }
    const Channel channel(connect_client(client));
    if (!channel.is_open())
        return OFP_RC_FAILED;
    return exchange_all({request, client_head(client), channel.socket()}, count, items, results);
}

} // namespace ofp

using namespace ofp;

OFP_API uint32_t OFP_AddFlowRule(uint16_t client_id, uint8_t table_id, uint32_t count,
                                 const OfpFlowItem *items, uint64_t *results)
{
    return program_rules(synchronous(OFPFC_ADD, client_id, table_id), -1, count, items, results);
}

OFP_API uint32_t OFP_ModifyFlowRule(uint16_t client_id, uint8_t table_id, uint32_t count,
                                    const OfpFlowItem *items, uint64_t *results)
{
    return program_rules(synchronous(OFPFC_MODIFY, client_id, table_id), -1, count, items, results);
}

OFP_API uint32_t OFP_DelFlowRule(uint16_t client_id, uint8_t table_id, uint32_t count,
                                 const OfpFlowItem *items, int16_t strict)
{
    const OpenflowCommand command = strict == 1 ? OFPFC_DELETE_STRICT : OFPFC_DELETE;
    return program_rules(synchronous(command, client_id, table_id), -1, count, items, nullptr);
}
