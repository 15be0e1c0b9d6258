#include "integration/exchange.h"

#include <sys/socket.h>

namespace integration {

namespace {

int connect_channel(uint64_t timeout)
{
    uint64_t result = 0;
    return OFP_plgn_Connect(timeout, &result);
}

} // namespace

Channel::Channel(uint64_t timeout) : fd_(connect_channel(timeout)) {}

Channel::~Channel()
{
    if (fd_ >= 0) {
        OFP_plgn_Close(fd_);
    }
}

bool Channel::send(const Datagram &datagram)
{
    return OFP_util_Send(fd_, datagram.data(), datagram.size()) == 0;
}

bool Channel::send_now(const Datagram &datagram)
{
    return ::send(fd_, datagram.data(), datagram.size(), MSG_DONTWAIT | MSG_NOSIGNAL) ==
           static_cast<ssize_t>(datagram.size());
}

Datagram Channel::receive()
{
    Datagram datagram(OFP_LARGE_DATAGRAM_SIZE);
    datagram.resize(OFP_util_Recv(fd_, datagram.size(), datagram.data()));
    return datagram;
}

uint32_t result_of(const Datagram &reply)
{
    OfpErrCode result{};
    const uint64_t read = OFP_msg_DecapBasicMsg(reply.data(), reply.size(), OFP_MSG_RESULT,
                                                OFP_TLV_ErrCode, sizeof result, &result);
    return read > 0 ? result.code : NO_ANSWER;
}

Datagram request_of(uint32_t code, uint16_t type, const void *record, size_t size)
{
    Datagram request(OFP_DATAGRAM_SIZE);
    request.resize(OFP_msg_EncapBasicMsg(request.data(), request.size(), code, type, size, record));
    return request;
}

uint32_t answer_to(const Datagram &request, uint32_t code, uint16_t type, void *record, size_t size)
{
    Channel channel;
    if (channel.fd() < 0 || !channel.send(request)) {
        return NO_ANSWER;
    }
    const Datagram reply = channel.receive();
    if (OFP_msg_DecapBasicMsg(reply.data(), reply.size(), code, type, size, record) > 0) {
        return 0;
    }
    return result_of(reply);
}

bool instance_exists(uint16_t id)
{
    OfpInstanceIsExist answer{};
    return ask(OFP_MSG_GET_INSTANCE_EXIST, OFP_TLV_InstanceID, OfpInstanceID{.instance_id = id},
               OFP_MSG_INSTANCE_EXIST, OFP_TLV_InstanceIsExist, answer) == 0 &&
           answer.exists == 1;
}

} // namespace integration
