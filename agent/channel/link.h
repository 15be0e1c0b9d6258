// One OpenFlow 1.3 connection to a controller over TCP: connecting, hello, echo, reconnecting, and
// whole messages in between. Nothing here waits: what the controller does not take is kept, up to a
// limit beyond which no more is read from it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <event2/event_struct.h>
#include <sys/socket.h>

#include "channel/controller_state.h"
#include "openflow/wire.h"

struct bufferevent;

namespace agent {

struct LinkSettings {
    sockaddr_storage address{};
    socklen_t address_length = 0;
    uint32_t echo_seconds = 5;
    uint32_t reconnect_seconds = 60;
    uint32_t dscp = 0;
};

class Link {
public:
    class Owner {
    public:
        virtual ~Owner() = default;
        // The hello exchange is done, or the connection that it had set up is over.
        virtual void link_came_up() = 0;
        virtual void link_went_down() = 0;
        // An attempt failed before it came up.
        virtual void link_failed() = 0;
        // A whole message of the right version; hello and echo do not come here. To be answered by
        // send.
        virtual void received(openflow::Bytes message) = 0;
    };

    // State is kept up to date; it, base and owner outlive the link.
    Link(event_base *base, ControllerState &state, Owner &owner);
    ~Link();
    Link(const Link &) = delete;
    Link &operator=(const Link &) = delete;

    // Connects now, or after so many seconds, and again whenever the connection fails.
    void start(const LinkSettings &settings, uint32_t delay_seconds = 0);
    // Takes over intervals without touching the connection.
    void adjust(const LinkSettings &settings);
    // Ends the connection, if there is one, and does not connect again. The owner is not called.
    void hold(std::string reason);

    bool is_up() const { return state_.state == ChannelState::connected; }
    // A message on its way; a connection for which there is no memory is given up.
    void send(openflow::Bytes message);

private:
    struct Free {
        void operator()(bufferevent *stream) const;
    };

    static void on_readable(bufferevent *stream, void *link);
    static void on_written(bufferevent *stream, void *link);
    static void on_event(bufferevent *stream, short what, void *link);
    static void on_timer(int fd, short what, void *link);

    void connect();
    bool open_stream();
    void set_state(ChannelState state, std::string reason = {});
    void set_timer(uint32_t seconds);
    void fail(std::string reason);
    void read_messages();
    bool is_readable() const;
    bool take_message();
    void take(openflow::Bytes message);
    void take_hello(openflow::Bytes message);
    void tick();
    void keep_alive();
    void say_hello();
    void went_on(short what);
    size_t unsent() const;

    template <class Step>
    void safely(Step step);

    event_base *base_;
    ControllerState &state_;
    Owner &owner_;
    LinkSettings settings_;
    event timer_{};
    std::unique_ptr<bufferevent, Free> stream_;
    uint32_t next_xid_ = 1;
    bool echo_pending_ = false; // nothing has arrived since the last echo request
    bool reading_ = false;      // messages are being taken
    std::string farewell_;      // why the connection ends once all is sent; empty: it goes on
};

} // namespace agent
