// One query: a channel, a request, the answer.
//
//     return ask(OFP_MSG_GET_TABLE_INFO, OFP_TLV_InstTbl, key)
//         .typed(OFP_MSG_TABLE_INFO, OFP_TLV_TableInfo, *info);
//
// The first thing that goes wrong decides the code; what comes after it does nothing.
#pragma once

#include <cstdint>
#include <type_traits>

#include "ipc/channel.h"
#include "ipc/tlv_range.h"
#include "ipc/writer.h"
#include "ofp/codec.h"

namespace ofp {

// A value as far as it goes over the record, which is then converted.
template <typename T>
requires std::is_trivially_copyable_v<T>
void read_value(const Tlv &tlv, T *record)
{
    OFP_msg_GetByteSwapData(tlv.value, tlv.length, tlv.type, sizeof *record, record);
}

// A value in a record of its own; what it lacks is zero.
template <typename T>
T value_of(const Tlv &tlv)
{
    T record{};
    read_value(tlv, &record);
    return record;
}

// What stands behind the message head of a datagram; nothing when it has none.
Bytes behind_head(Bytes datagram);

// A reply datagram.
struct Reply {
    uint8_t buffer[OFP_DATAGRAM_SIZE];
    uint64_t length = 0;

    Bytes datagram() const { return {buffer, length}; }
    Bytes body() const { return behind_head(datagram()); }
    // The code of the message head; 0 when there is none.
    uint32_t code() const;
    // The first value behind the head; false when it is not of the type.
    template <typename T>
    [[nodiscard]] bool first(uint32_t type, T *record) const
    {
        const Bytes values = body();
        return OFP_msg_GetTlvData(values.data, values.size, type, sizeof *record, record) != 0;
    }
};

class [[nodiscard]] Exchange {
public:
    // Opens the channel when the agent daemon runs.
    Exchange() : channel_(connect(&code_)) {}
    // Opens the channel and sends a message head alone, or with one TLV.
    explicit Exchange(uint32_t request);
    Exchange(uint32_t request, uint32_t type, const void *value, uint64_t length);

    // Whether there is a channel.
    bool opened() const { return channel_.is_open(); }
    // What has gone wrong, or 0.
    [[nodiscard]] uint32_t code() const { return static_cast<uint32_t>(code_); }
    bool ok() const { return code_ == 0; }

    // Sends a request built by the caller.
    void send(Bytes request);
    // Ends the exchange with a code of the caller's.
    void fail(uint32_t code) { code_ = code; }
    // Goes on to the answer even if the request could not be sent.
    Exchange &sent_or_not()
    {
        if (opened())
            code_ = 0;
        return *this;
    }

    // One TLV of one kind of reply, copied as far as it goes and converted. A result reply instead
    // gives its code, any other reply 0; both leave the record as it is.
    template <typename T>
    requires std::is_trivially_copyable_v<T>
    [[nodiscard]] uint32_t typed(uint32_t reply, uint32_t type, T &record)
    {
        return receive_value(reply, type, sizeof record, &record);
    }

    // The reply datagram into the caller's buffer. A result reply gives its code, also 0, and does
    // not write the length.
    [[nodiscard]] uint32_t raw(uint64_t size, uint8_t *buffer, uint64_t *length);

    // The same into a reply; its length is 0 when the answer was a result reply.
    [[nodiscard]] uint32_t receive(Reply *reply)
    {
        reply->length = 0;
        return raw(sizeof reply->buffer, reply->buffer, &reply->length);
    }

    // Every TLV behind the head of one reply; take(tlv) returns a code, and one other than 0 ends
    // the walk.
    template <typename Take>
    [[nodiscard]] uint32_t each(Take take)
    {
        Reply reply;
        if (receive(&reply) != 0)
            return code();
        for (const Tlv &tlv : tlvs(reply.body())) {
            code_ = take(tlv);
            if (!ok())
                break;
        }
        return code();
    }

private:
    static int32_t connect(uint64_t *code);
    uint32_t receive_value(uint32_t reply, uint32_t type, uint64_t size, void *record);

    uint64_t code_ = 0;
    Channel channel_;
};

inline Exchange ask(uint32_t request) { return Exchange(request); }

template <WireRecord T>
Exchange ask(uint32_t request, uint32_t type, const T &key)
{
    return Exchange(request, type, &key, sizeof key);
}

} // namespace ofp
