#include "flow/reply.h"

#include "flow/error_map.h"
#include "flow/openflow.h"
#include "flow/put.h"
#include "ofp/channel.h"
#include "ofp/codec.h"
#include "ofp/platform.h"
#include "ofp/result.h"

namespace ofp {
namespace {

// The rules of a batch that no message has answered yet.
class PendingRules {
public:
    explicit PendingRules(uint32_t count) : count_(count)
    {
        const BitmapRange all = {.count = 1, .first = 0, .last = count - 1};
        map_ = Bitmap_CreateFromBuffer(count, room_, sizeof room_);
        if (map_ != nullptr)
            Bitmap_SetRange(map_, &all);
    }

    bool is_usable() const { return map_ != nullptr; }
    bool has(uint32_t index) const { return index < count_ && Bitmap_Check(map_, index) != 0; }
    void clear(uint32_t index) { Bitmap_Clear(map_, index); }

private:
    alignas(8) uint8_t room_[64];
    Bitmap *map_;
    uint32_t count_;
};

// False: the message is malformed.
bool settle(const Reply &reply, PendingRules &pending, uint64_t *results)
{
    const uint32_t index = reply.xid();
    if (!pending.has(index))
        return true;
    if (!reply.is_barrier() && !reply.is_whole_error())
        return false;
    pending.clear(index);
    if (results != nullptr)
        results[index] = reply.is_barrier() ? uint32_t{OFP_RC_OK} : reply.result();
    return true;
}

} // namespace

bool Reply::is_barrier() const { return bytes_[1] == OFPT_BARRIER_REPLY; }
bool Reply::is_error() const { return bytes_[1] == OFPT_ERROR; }
uint32_t Reply::xid() const { return get<uint32_t>(bytes_ + 4); }

uint32_t Reply::result() const
{
    return map_error(get<uint16_t>(bytes_ + 8), get<uint16_t>(bytes_ + 10));
}

uint32_t collect_results(int32_t socket, uint32_t count, uint64_t *results)
{
    PendingRules pending(count);
    if (!pending.is_usable())
        return OFP_RC_FAILED;
    uint8_t datagram[OFP_DATAGRAM_SIZE];
    for (uint32_t answered = 0; answered < count;) {
        const Reply reply(datagram, OFP_util_Recv(socket, sizeof datagram, datagram));
        if (!reply.is_whole() || !settle(reply, pending, results))
            return OFP_RC_FAILED;
        if (reply.is_barrier())
            ++answered;
    }
    return OFP_RC_OK;
}

uint32_t wait_for_barrier(int32_t socket)
{
    uint8_t datagram[OFP_DATAGRAM_SIZE];
    uint32_t result = OFP_RC_OK;
    for (;;) {
        const Reply reply(datagram, OFP_util_Recv(socket, sizeof datagram, datagram));
        if (!reply.is_whole())
            return OFP_RC_FAILED;
        if (reply.is_barrier())
            return result;
        result = OFP_RC_FAILED;
    }
}

} // namespace ofp
