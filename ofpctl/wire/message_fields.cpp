// The envelope of every datagram, and what belongs to no other topic.
#include "wire/record_fields.h"

namespace ofpctl {

namespace {

constexpr FieldRow rows[] = {
    OFPCTL_FIELD(MsgHead, code),

    OFPCTL_FIELD(ErrCode, code),

    OFPCTL_FIELD(PktContext, flags),
    OFPCTL_FIELD(PktContext, reserved_1),
    OFPCTL_FIELD(PktContext, value_u32_4),
    OFPCTL_FIELD(PktContext, opaque_8),
    OFPCTL_FIELD(PktContext, value_u32_72),
    OFPCTL_FIELD(PktContext, opaque_76),
    OFPCTL_FIELD(PktContext, value_u32_208),
    OFPCTL_FIELD(PktContext, value_u16_212),
    OFPCTL_FIELD(PktContext, opaque_214),
    OFPCTL_FIELD(PktContext, value_u32_220),
    OFPCTL_FIELD(PktContext, opaque_224),
    OFPCTL_FIELD(PktContext, value_u32_1248),
    OFPCTL_FIELD(PktContext, value_u32_1252),

    OFPCTL_FIELD(SlotID, slot_id),
    OFPCTL_FIELD(SlotID, reserved_2),

    OFPCTL_FIELD(MultiPart, value_u16_0),
    OFPCTL_FIELD(MultiPart, value_u16_2),

    OFPCTL_FIELD(Fd, fd),

    OFPCTL_FIELD(MsgFlag, last),

    OFPCTL_FIELD(Cookie, cookie),

    OFPCTL_FIELD(PacketOutAlAl, value_u16_0),
    OFPCTL_FIELD(PacketOutAlAl, length),
    OFPCTL_FIELD(PacketOutAlAl, data),

    OFPCTL_FIELD(SmoothEmpty, value_u32_0),

    OFPCTL_FIELD(Reserved218, value_u32_0),
};
static_assert(cover_records(rows));

} // namespace

const std::span<const FieldRow> message_fields = rows;

} // namespace ofpctl
