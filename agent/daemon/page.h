// Answers that hold as many records as the library's buffer for them has room for.
#pragma once

#include "daemon/reply.h"

namespace agent {

// Adds a record; false when the datagram has no room for it any more.
template <class Record>
[[nodiscard]] bool add_if_room(Reply &reply, uint16_t type, const Record &record)
{
    constexpr size_t TLV_HEADER = 4;
    if (reply.size() + TLV_HEADER + sizeof record > OFP_DATAGRAM_SIZE) {
        return false;
    }
    reply.add(type, record);
    return true;
}

} // namespace agent
