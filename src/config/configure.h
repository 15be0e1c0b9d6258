// One configuration request: starts the agent daemon, opens a channel, sends, returns the code of
// the result reply.
//
//     return configure(OFP_MSG_SET_ECHO_TIME, OFP_TLV_EchoTime, *time);
#pragma once

#include <cstdint>

#include "ipc/channel.h"
#include "ipc/round_trip.h"
#include "ipc/writer.h"
#include "ofp/codec.h"
#include "ofp/result.h"

namespace ofp {

[[nodiscard]] uint32_t configure(uint32_t code, uint32_t type, const void *value, uint64_t length);

template <WireRecord T>
[[nodiscard]] uint32_t configure(uint32_t code, uint32_t type, const T &record)
{
    return configure(code, type, &record, sizeof record);
}

// The same with more than one TLV: build(writer) puts them behind the message head.
template <typename Build>
[[nodiscard]] uint32_t configure_with(uint32_t code, Build build)
{
    const Channel channel(set_connect());
    if (!channel.is_open())
        return OFP_RC_FAILED;
    alignas(8) uint8_t buffer[OFP_DATAGRAM_SIZE];
    Writer request(buffer, sizeof buffer);
    request.head(code);
    build(request);
    return set_send_message(channel.socket(), request.bytes());
}

// A request that is not answered; the code says only whether it went out.
[[nodiscard]] uint32_t notify(uint32_t code, uint32_t type, const void *value, uint64_t length);

template <WireRecord T>
[[nodiscard]] uint32_t notify(uint32_t code, uint32_t type, const T &record)
{
    return notify(code, type, &record, sizeof record);
}

} // namespace ofp
