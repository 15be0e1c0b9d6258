#include "ipc/channel.h"
#include "ipc/round_trip.h"
#include "ofp/codec.h"
#include "ofp/config.h"
#include "ofp/flow.h"
#include "ofp/result.h"
#include "ofp/util.h"

namespace ofp {
namespace {

constexpr uint32_t single_table_instance = 4101;
constexpr uint32_t table_kind = 2;

constexpr OfpFlowTable default_tables[] = {
    {.table_id = 10, .kind = table_kind}, {.table_id = 11, .kind = table_kind},
    {.table_id = 20, .kind = table_kind}, {.table_id = 21, .kind = table_kind},
    {.table_id = 30, .kind = table_kind},
};
constexpr OfpFlowTable single_table[] = {{.table_id = 0, .kind = table_kind}};

template <uint8_t Count>
uint64_t encode(uint32_t instance_id, const OfpFlowTable (&tables)[Count], uint64_t room,
                uint8_t *out)
{
    return OFP_encode_Instance(static_cast<uint16_t>(instance_id), Count,
                               reinterpret_cast<const uint8_t *>(tables), room, out);
}

} // namespace
} // namespace ofp

OFP_API uint32_t OFP_AddInstance(uint32_t instance_id)
{
    uint64_t result = OFP_RC_FAILED;
    if (OFP_util_StartDaemon() != OFP_RC_OK)
        return OFP_RC_FAILED;
    const ofp::Channel channel(OFP_plgn_Connect(ofp::request_timeout, &result));
    if (!channel.is_open())
        return static_cast<uint32_t>(result);

    uint8_t request[OFP_DATAGRAM_SIZE];
    const uint64_t size =
        instance_id == ofp::single_table_instance
            ? ofp::encode(instance_id, ofp::single_table, sizeof request, request)
            : ofp::encode(instance_id, ofp::default_tables, sizeof request, request);
    return ofp::set_send_message(channel.socket(), {request, size});
}
