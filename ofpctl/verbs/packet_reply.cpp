#include "verbs/packet_reply.h"

#include <fmt/format.h>

#include "flow/flow_decode.h"
#include "ofp.h"
#include "openflow/oxm.h"

namespace ofpctl {

namespace {

using Bytes = std::span<const uint8_t>;
using openflow::load16;
using openflow::load32;

constexpr std::size_t oxm_header = 4;

std::string hex(Bytes bytes)
{
    std::string text = "0x";
    for (const uint8_t byte : bytes)
        text += fmt::format("{:02x}", byte);
    return text;
}

// The packet's value in the form of the rule's.
std::string packet_value(Bytes entry, Bytes value)
{
    std::vector<uint8_t> own(entry.begin(), entry.begin() + oxm_header);
    own[2] = static_cast<uint8_t>(own[2] & ~1U);
    own[3] = static_cast<uint8_t>(value.size());
    own.insert(own.end(), value.begin(), value.end());
    const auto text = decode_field(own);
    return text ? text->value : hex(value);
}

std::string field_name(Bytes entry)
{
    const auto name = openflow::oxm_name(load16(entry.data()), entry[2] >> 1);
    return name.empty() ? "unknown field" : std::string(name);
}

PacketDifference read_difference(Bytes value)
{
    if (value.size() == oxm_header) // an opaque field: its name is all there is
        return {field_name(value), {}, {}};
    const std::size_t size = oxm_header + value[3];
    if (value.size() <= size)
        return {field_name(value), {}, {}};
    const Bytes entry = value.first(size);
    const Bytes has = value.subspan(size);
    const auto text = decode_field(entry);
    return {text ? text->name : field_name(entry), text ? text->value : hex(entry.subspan(4)),
            packet_value(entry, has)};
}

// One TLV; false when it does not belong where it stands.
class Reader {
public:
    explicit Reader(PacketReply &reply) : reply_(reply) {}

    bool take(uint16_t type, Bytes value)
    {
        switch (type) {
        case OFP_TLV_MsgHead:
            return value.size() == 4 && load32(value.data()) == agent::MSG_PACKET_REPLY;
        case agent::TLV_PACKET_RESULT:
            return value.size() == sizeof(agent::PacketResultRecord) && take_result(value.data());
        case agent::TLV_PACKET_VISIT:
            return value.size() == sizeof(agent::PacketVisitRecord) && take_visit(value.data());
        case agent::TLV_PACKET_NEAR_MISS:
            return value.size() == sizeof(agent::PacketNearMissRecord) &&
                   take_near_miss(value.data());
        case agent::TLV_PACKET_DIFFERENCE:
            return value.size() >= oxm_header && take_difference(value);
        case agent::TLV_PACKET_ACTIONS:
            reply_.actions = decode_actions(value);
            return true;
        case agent::TLV_PACKET_OUTPUT:
            return value.size() == sizeof(agent::PacketOutputRecord) && take_output(value.data());
        default:
            return true;
        }
    }
    bool complete() const { return has_result_; }

private:
    bool take_result(const uint8_t *at)
    {
        has_result_ = true;
        reply_.end = static_cast<agent::PacketEnd>(at[0]);
        reply_.missing_table = at[1];
        reply_.output_count = load32(at + 4);
        return true;
    }
    bool take_visit(const uint8_t *at)
    {
        reply_.visits.push_back({at[6], load32(at), load16(at + 4), std::nullopt});
        return true;
    }
    bool take_near_miss(const uint8_t *at)
    {
        if (reply_.visits.empty())
            return false;
        reply_.visits.back().better =
            PacketNearMiss{load32(at), load16(at + 4), load16(at + 6), {}};
        return true;
    }
    bool take_difference(Bytes value)
    {
        if (reply_.visits.empty() || !reply_.visits.back().better)
            return false;
        reply_.visits.back().better->differences.push_back(read_difference(value));
        return true;
    }
    bool take_output(const uint8_t *at)
    {
        reply_.outputs.push_back({load32(at), load32(at + 4), load32(at + 8), load32(at + 12)});
        return true;
    }

    PacketReply &reply_;
    bool has_result_ = false;
};

} // namespace

std::optional<PacketReply> read_packet_reply(Bytes datagram)
{
    PacketReply reply;
    Reader reader(reply);
    std::size_t at = 0;
    while (at < datagram.size()) {
        uint16_t type = 0;
        uint16_t length = 0;
        void *value = nullptr;
        const uint32_t step = STLV_Get(&datagram[at], static_cast<uint32_t>(datagram.size() - at),
                                       &type, &length, &value);
        const bool first = at == 0;
        if (step == 0 || first != (type == OFP_TLV_MsgHead) ||
            !reader.take(type, {static_cast<const uint8_t *>(value), length}))
            return std::nullopt;
        at += step;
    }
    return reader.complete() ? std::optional(std::move(reply)) : std::nullopt;
}

} // namespace ofpctl
