// Requests by hand, for what the library has no call for.
#pragma once

#include <cstdint>
#include <vector>

#include "ofp.h"

namespace integration {

inline constexpr uint32_t NO_ANSWER = 0xffffffff; // no channel, or an answer of another kind

using Datagram = std::vector<uint8_t>;

// A channel to the agent, closed with its scope.
class Channel {
public:
    explicit Channel(uint64_t timeout = 10);
    ~Channel();
    Channel(const Channel &) = delete;
    Channel &operator=(const Channel &) = delete;

    int fd() const { return fd_; }
    bool send(const Datagram &datagram);
    bool send_now(const Datagram &datagram); // false when it would have to wait
    Datagram receive();                      // empty on time-out or hang-up

private:
    int fd_;
};

// The code of a result reply; NO_ANSWER for another datagram.
uint32_t result_of(const Datagram &reply);

Datagram request_of(uint32_t code, uint16_t type, const void *record, size_t size);
uint32_t answer_to(const Datagram &request, uint32_t code, uint16_t type, void *record,
                   size_t size);

// One request and one record of its answer: 0, the code of a result reply, or NO_ANSWER.
template <class Request, class Record>
uint32_t ask(uint32_t message, uint16_t type, const Request &request, uint32_t answer,
             uint16_t answer_type, Record &record)
{
    return answer_to(request_of(message, type, &request, sizeof request), answer, answer_type,
                     &record, sizeof record);
}

bool instance_exists(uint16_t id);

} // namespace integration
