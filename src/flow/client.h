// The clients that program flow rules, and their road to the agent daemon.
#ifndef OFP_FLOW_CLIENT_H
#define OFP_FLOW_CLIENT_H

#include <cstdint>

namespace ofp {

// 4098 is reserved: the asynchronous channel keeps a slot for it, nobody may use it.
constexpr bool is_client(uint16_t id) { return id == 4096 || id == 4097 || id == 4099; }

// Starts the agent daemon when it does not run and connects. The socket, or -1.
int32_t connect_client(uint16_t client_id);

// A client's channel, closed with its scope.
class ClientChannel {
public:
    explicit ClientChannel(uint16_t client_id) : socket_(connect_client(client_id)) {}
    ~ClientChannel();
    ClientChannel(const ClientChannel &) = delete;
    ClientChannel &operator=(const ClientChannel &) = delete;

    bool is_open() const { return socket_ != -1; }
    int32_t socket() const { return socket_; }

private:
    int32_t socket_;
};

} // namespace ofp

#endif
