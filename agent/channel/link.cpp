#include "channel/link.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

#include <event2/buffer.h>
#include <event2/bufferevent.h>
#include <event2/event.h>
#include <fmt/core.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <unistd.h>

#include "channel/message_writer.h"
#include "openflow/message.h"
#include "openflow/reply.h"
#include "switch/switch.h"

namespace agent {

namespace {

using namespace openflow;

constexpr uint32_t HANDSHAKE_SECONDS = 10;      // to connect and to say hello
constexpr int MESSAGES_PER_TURN = 64;           // before others have their turn
constexpr size_t INPUT_MAX = size_t{256} << 10; // more than the longest message
constexpr size_t UNSENT_HIGH = size_t{1} << 20; // no more is read from the controller
constexpr size_t UNSENT_LIMIT = size_t{8} << 20;

constexpr uint16_t HELLO_ELEMENT_VERSIONS = 1;

// The versions that a hello offers, as a bitmap; its header alone offers all up to its version.
uint32_t offered_versions(Bytes hello)
{
    Bytes rest = hello.subspan(HEADER_SIZE);
    while (rest.size() >= 4) {
        const uint16_t length = load16(&rest[2]);
        if (length < 4 || length > rest.size()) {
            break;
        }
        if (load16(rest.data()) == HELLO_ELEMENT_VERSIONS && length >= 8) {
            return load32(&rest[4]);
        }
        rest = rest.subspan(std::min(rest.size(), (size_t{length} + 7) / 8 * 8));
    }
    return hello[0] >= 31 ? UINT32_MAX : (uint32_t{2} << hello[0]) - 1;
}

void count(MessageCounts &counts, uint8_t type)
{
    if (type < counts.size()) {
        ++counts[type];
    }
}

int open_socket(const LinkSettings &settings)
{
    const int family = settings.address.ss_family;
    const int fd = socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        return fd;
    }
    const int on = 1;
    const int traffic_class = static_cast<int>(settings.dscp << 2);
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    if (family == AF_INET) {
        setsockopt(fd, IPPROTO_IP, IP_TOS, &traffic_class, sizeof traffic_class);
    } else {
        setsockopt(fd, IPPROTO_IPV6, IPV6_TCLASS, &traffic_class, sizeof traffic_class);
    }
    return fd;
}

} // namespace

void Link::Free::operator()(bufferevent *stream) const { bufferevent_free(stream); }

Link::Link(event_base *base, ControllerState &state, Owner &owner)
    : base_(base), state_(state), owner_(owner)
{
    event_assign(&timer_, base_, -1, 0, on_timer, this);
}

Link::~Link() { event_del(&timer_); }

void Link::start(const LinkSettings &settings, uint32_t delay_seconds)
{
    settings_ = settings;
    stream_.reset();
    farewell_.clear();
    set_state(ChannelState::waiting, "not tried yet");
    set_timer(delay_seconds);
}

void Link::adjust(const LinkSettings &settings)
{
    settings_ = settings;
    if (state_.state == ChannelState::connected) {
        set_timer(settings_.echo_seconds);
    } else if (state_.state == ChannelState::waiting) {
        set_timer(settings_.reconnect_seconds);
    }
}

void Link::hold(std::string reason)
{
    event_del(&timer_);
    stream_.reset();
    farewell_.clear();
    set_state(ChannelState::held, std::move(reason));
}

void Link::set_state(ChannelState state, std::string reason)
{
    state_.state = state;
    state_.reason = std::move(reason);
    state_.since = monotonic_seconds();
}

void Link::set_timer(uint32_t seconds)
{
    const timeval time{static_cast<time_t>(seconds), 0};
    event_add(&timer_, &time);
}

// ---- Connecting

void Link::connect()
{
    ++state_.attempts;
    set_state(ChannelState::connecting);
    set_timer(HANDSHAKE_SECONDS);
    if (!open_stream() && state_.state == ChannelState::connecting) {
        fail(std::strerror(errno));
    }
}

bool Link::open_stream()
{
    const int fd = open_socket(settings_);
    if (fd < 0) {
        return false;
    }
    stream_.reset(bufferevent_socket_new(base_, fd, BEV_OPT_CLOSE_ON_FREE));
    if (!stream_) {
        ::close(fd);
        errno = ENOMEM;
        return false;
    }
    bufferevent_setcb(stream_.get(), on_readable, on_written, on_event, this);
    bufferevent_setwatermark(stream_.get(), EV_READ, 0, INPUT_MAX);
    return bufferevent_enable(stream_.get(), EV_READ | EV_WRITE) == 0 &&
           bufferevent_socket_connect(stream_.get(),
                                      reinterpret_cast<const sockaddr *>(&settings_.address),
                                      static_cast<int>(settings_.address_length)) == 0;
}

// The connection, or the attempt at one, is over. The next attempt waits.
void Link::fail(std::string reason)
{
    const bool was_up = is_up();
    stream_.reset();
    farewell_.clear();
    if (was_up) {
        ++state_.lost;
    }
    set_state(ChannelState::waiting, std::move(reason));
    set_timer(settings_.reconnect_seconds);
    if (was_up) {
        owner_.link_went_down();
    } else {
        owner_.link_failed();
    }
}

// Nothing may be thrown into the event loop.
template <class Step>
void Link::safely(Step step)
{
    try {
        step();
    } catch (const std::bad_alloc &) {
        fail("out of memory"); // short enough to need none
    }
}

void Link::on_event(bufferevent *, short what, void *argument)
{
    auto *const link = static_cast<Link *>(argument);
    link->safely([=] { link->went_on(what); });
}

void Link::went_on(short what)
{
    if (what & BEV_EVENT_CONNECTED) {
        set_state(ChannelState::negotiating);
        say_hello();
    } else if (what & BEV_EVENT_EOF) {
        fail("the controller closed the connection");
    } else if (what & BEV_EVENT_ERROR) {
        fail(evutil_socket_error_to_string(EVUTIL_SOCKET_ERROR()));
    }
}

void Link::say_hello()
{
    MessageWriter hello(OFPT_HELLO, next_xid_++);
    hello.be<uint16_t>(HELLO_ELEMENT_VERSIONS).be<uint16_t>(8).be<uint32_t>(1u << OFP_VERSION);
    send(hello.bytes());
}

// ---- Time

void Link::on_timer(int, short, void *argument)
{
    auto *const link = static_cast<Link *>(argument);
    link->safely([=] { link->tick(); });
}

void Link::tick()
{
    switch (state_.state) {
    case ChannelState::waiting:
        connect();
        break;
    case ChannelState::connecting:
        fail(fmt::format("no connection within {} seconds", HANDSHAKE_SECONDS));
        break;
    case ChannelState::negotiating:
        fail(fmt::format("no hello within {} seconds", HANDSHAKE_SECONDS));
        break;
    case ChannelState::connected:
        keep_alive();
        break;
    case ChannelState::held:
        break;
    }
}

void Link::keep_alive()
{
    if (echo_pending_) {
        fail(fmt::format("nothing arrived within {} seconds of an echo request",
                         settings_.echo_seconds));
        return;
    }
    echo_pending_ = true;
    set_timer(settings_.echo_seconds);
    send(MessageWriter(OFPT_ECHO_REQUEST, next_xid_++).bytes());
}

// ---- Sending

size_t Link::unsent() const { return evbuffer_get_length(bufferevent_get_output(stream_.get())); }

void Link::send(Bytes message)
{
    if (!stream_) {
        return;
    }
    count(state_.sent, message[1]);
    state_.errors += message[1] == OFPT_ERROR;
    if (bufferevent_write(stream_.get(), message.data(), message.size()) != 0) {
        fail("no memory for an answer");
    } else if (unsent() > UNSENT_LIMIT) {
        fail("the controller does not take its answers");
    } else if (unsent() > UNSENT_HIGH) {
        bufferevent_disable(stream_.get(), EV_READ);
    }
}

// All was sent: a controller that was not read from, because it did not take its answers, is read
// from again.
void Link::on_written(bufferevent *stream, void *argument)
{
    auto *const link = static_cast<Link *>(argument);
    if (!link->farewell_.empty()) {
        link->fail(std::exchange(link->farewell_, {}));
    } else if ((bufferevent_get_enabled(stream) & EV_READ) == 0) {
        bufferevent_enable(stream, EV_READ);
        link->read_messages();
    }
}

// ---- Receiving

void Link::on_readable(bufferevent *, void *argument)
{
    static_cast<Link *>(argument)->read_messages();
}

void Link::read_messages()
{
    if (reading_) {
        return;
    }
    reading_ = true;
    safely([this] {
        int taken = 0;
        while (taken < MESSAGES_PER_TURN && is_readable() && take_message()) {
            ++taken;
        }
        if (taken == MESSAGES_PER_TURN && is_readable()) {
            bufferevent_trigger(stream_.get(), EV_READ,
                                BEV_TRIG_IGNORE_WATERMARKS | BEV_TRIG_DEFER_CALLBACKS);
        }
    });
    reading_ = false;
}

bool Link::is_readable() const { return stream_ && farewell_.empty() && unsent() <= UNSENT_HIGH; }

// Takes the first message, if it is there as a whole. The stream may be gone afterwards.
bool Link::take_message()
{
    evbuffer *const input = bufferevent_get_input(stream_.get());
    uint8_t head[HEADER_SIZE];
    if (evbuffer_copyout(input, head, sizeof head) != static_cast<ev_ssize_t>(sizeof head)) {
        return false;
    }
    const size_t length = load16(&head[2]);
    if (length < HEADER_SIZE) {
        fail(fmt::format("the controller sent a message of length {}", length));
        return false;
    }
    if (evbuffer_get_length(input) < length) {
        return false;
    }
    const uint8_t *const whole = evbuffer_pullup(input, static_cast<ev_ssize_t>(length));
    if (!whole) {
        throw std::bad_alloc();
    }
    take({whole, length});
    if (stream_) {
        evbuffer_drain(input, length);
    }
    return stream_ != nullptr;
}

void Link::take(Bytes message)
{
    echo_pending_ = false;
    const uint8_t type = message[1];
    count(state_.received, type);
    if (state_.state == ChannelState::negotiating) {
        take_hello(message);
    } else if (message[0] != OFP_VERSION) {
        send(encode_error(message, {OFPET_BAD_REQUEST, OFPBRC_BAD_VERSION}));
    } else if (type == OFPT_ECHO_REQUEST) {
        const uint32_t xid = load32(&message[4]);
        send(MessageWriter(OFPT_ECHO_REPLY, xid).raw(message.subspan(HEADER_SIZE)).bytes());
    } else if (type != OFPT_HELLO && type != OFPT_ECHO_REPLY) {
        owner_.received(message);
    }
}

void Link::take_hello(Bytes message)
{
    if (message[1] != OFPT_HELLO) {
        fail(fmt::format("the controller began with {} instead of hello",
                         openflow::message_name(message[1])));
        return;
    }
    if ((offered_versions(message) & (1u << OFP_VERSION)) == 0) {
        constexpr uint16_t INCOMPATIBLE = 0;
        farewell_ = fmt::format(
            "the controller does not speak OpenFlow 1.3, its hello has version {}", message[0]);
        send(encode_error(message, {OFPET_HELLO_FAILED, INCOMPATIBLE}));
        return;
    }
    ++state_.connections;
    echo_pending_ = false;
    set_state(ChannelState::connected);
    set_timer(settings_.echo_seconds);
    owner_.link_came_up();
}

} // namespace agent
