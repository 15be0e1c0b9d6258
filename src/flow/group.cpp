#include "flow/client.h"
#include "flow/reply.h"
#include "flow/smooth.h"
#include "ipc/channel.h"
#include "ofp/codec.h"
#include "ofp/flow.h"
#include "ofp/result.h"

namespace ofp {
namespace {

constexpr uint32_t greatest_group = 0xffffff00;
constexpr uint32_t most_ports = 254; // more buckets no datagram holds
constexpr uint16_t add_group = 0;
constexpr uint16_t delete_group = 2;

struct Ports {
    uint32_t count;
    const uint32_t *list;
};

const uint8_t *bytes_of(const auto &record) { return reinterpret_cast<const uint8_t *>(&record); }

uint64_t encode(const OfpClientHead &head, const OfpGroupMod &group, Ports ports,
                uint8_t (&datagram)[OFP_DATAGRAM_SIZE])
{
    if (group.command == delete_group)
        return OFP_encode_DelGroup(bytes_of(head), bytes_of(group), sizeof datagram, datagram);
    return OFP_encode_SetGroup(bytes_of(head), bytes_of(group), ports.count, ports.list,
                               sizeof datagram, datagram);
}

uint32_t program_group(uint16_t client_id, const OfpGroupMod &group, Ports ports)
{
    if (!is_client(client_id) || group.group_id > greatest_group || !smooth_is_open())
        return OFP_RC_FAILED;
    const Channel channel(connect_client(client_id));
    if (!channel.is_open())
        return OFP_RC_FAILED;
    uint8_t datagram[OFP_DATAGRAM_SIZE];
    const uint64_t length = encode(client_head(client_id), group, ports, datagram);
    const uint32_t result = OFP_util_Send(channel.socket(), datagram, length);
    return result == OFP_RC_OK ? wait_for_barrier(channel.socket()) : result;
}

} // namespace
} // namespace ofp

using namespace ofp;

OFP_API uint32_t OFP_SetGroup(uint16_t client_id, uint32_t group_id, uint32_t group_type,
                              uint32_t bucket_count, const uint32_t *ports)
{
    const bool has_ports = bucket_count == 0 || ports != nullptr;
    if ((group_type != 0 && group_type != 3) || bucket_count > most_ports || !has_ports)
        return OFP_RC_FAILED;
    const OfpGroupMod group = {
        .command = add_group,
        .type = static_cast<uint8_t>(group_type),
        .group_id = group_id,
    };
    return program_group(client_id, group, {bucket_count, ports});
}

OFP_API uint32_t OFP_DelGroup(uint16_t client_id, uint32_t group_id)
{
    return program_group(client_id, {.command = delete_group, .group_id = group_id}, {});
}
