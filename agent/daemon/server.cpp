#include "daemon/server.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include <poll.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include "daemon/dispatch.h"
#include "daemon/log.h"
#include "daemon/reply.h"
#include "ofp/host.h"

namespace agent {

namespace {

constexpr size_t DATAGRAM_MAX = 65535;
constexpr int ACCEPTS_PER_TURN = 64;
constexpr int DATAGRAMS_PER_TURN = 32;
constexpr size_t SENDS_PER_CALL = 32;

constexpr timeval RETRY_ACCEPT{0, 100'000};

// The process at the other end and whether it may be served.
struct Peer {
    pid_t pid = 0;
    bool own_user = false;
};

Peer peer_of(int fd, uid_t own_user)
{
    ucred credentials{};
    socklen_t length = sizeof credentials;
    if (getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &credentials, &length) != 0) {
        return {};
    }
    return {credentials.pid, credentials.uid == own_user};
}

// To be told so by accept would cost as much as accepting.
bool somebody_connects(int listener)
{
    pollfd wanted{listener, POLLIN, 0};
    return poll(&wanted, 1, 0) > 0;
}

void log_refusal(const Outcome &outcome, pid_t pid)
{
    log::refusal("process {}: {} ({:#x}) refused: {} ({:#010x})", pid,
                 message_name(outcome.message), outcome.message, result_text(outcome.code),
                 outcome.code);
}

// -1 and errno, or how many went.
int send_front(int fd, const Outbox &out)
{
    constexpr int FLAGS = MSG_DONTWAIT | MSG_NOSIGNAL;
    Bytes datagrams[SENDS_PER_CALL];
    const size_t count = out.front(datagrams);
    if (count == 1) {
        return send(fd, datagrams[0].data(), datagrams[0].size(), FLAGS) < 0 ? -1 : 1;
    }
    iovec parts[SENDS_PER_CALL];
    mmsghdr messages[SENDS_PER_CALL];
    for (size_t i = 0; i < count; ++i) {
        parts[i] = {const_cast<uint8_t *>(datagrams[i].data()), datagrams[i].size()};
        messages[i] = {};
        messages[i].msg_hdr.msg_iov = &parts[i];
        messages[i].msg_hdr.msg_iovlen = 1;
    }
    return sendmmsg(fd, messages, static_cast<unsigned>(count), FLAGS);
}

} // namespace

struct Server::Connection {
    Server *server = nullptr;
    uint32_t number = 0; // its place in the server's list, from 1
    int fd = -1;
    Peer peer;
    bool heard = false;   // something was read from it
    bool ended = false;   // the client sends nothing more
    bool held = false;    // until the configuration is committed
    short awaited = 0;    // events that the event below waits for
    size_t accounted = 0; // bytes of the queue that are part of the server's sum
    size_t held_answer = 0;
    uint32_t held_message = 0;
    event ready{};
    Outbox queue; // answers that the client has not taken yet
};

Server::Server(event_base *base, int listener, Model &model, const QueueLimits &limits)
    : base_(base), listener_(listener), own_user_(geteuid()), model_(model), limits_(limits),
      buffer_(std::make_unique<uint8_t[]>(DATAGRAM_MAX + 1))
{
    event_assign(&accept_event_, base_, listener_, EV_READ | EV_PERSIST, on_listener, this);
    event_assign(&retry_event_, base_, -1, 0, on_retry, this);
    event_assign(&work_event_, base_, -1, 0, on_work, this);
    event_assign(&commit_event_, base_, -1, 0, on_commit, this);
    // Not at once: whoever publishes an event may be in the middle of answering a request.
    model_.applications.on_work = [this] { event_active(&work_event_, 0, 0); };
}

Server::~Server()
{
    model_.applications.on_work = [] {};
    for (const auto &connection : connections_) {
        if (connection->fd >= 0) {
            close(*connection);
        }
    }
    event_del(&accept_event_);
    event_del(&retry_event_);
    event_del(&work_event_);
    event_del(&commit_event_);
}

bool Server::start()
{
    accepting_ = event_add(&accept_event_, nullptr) == 0;
    return accepting_;
}

// ---- Connections

void Server::on_listener(int, short, void *server) { static_cast<Server *>(server)->accept_all(); }

void Server::on_retry(int, short, void *server)
{
    static_cast<Server *>(server)->resume_accepting();
}

void Server::accept_all()
{
    for (int turn = 0; turn < ACCEPTS_PER_TURN && accept_one() && somebody_connects(listener_);
         ++turn) {
    }
}

bool Server::accept_one()
{
    const int fd = accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (fd >= 0) {
        Connection *const connection = open(fd);
        if (connection) {
            tend(*connection, EV_READ); // most clients have sent their request by now
        }
        return connection != nullptr;
    }
    if (errno != EAGAIN && errno != EINTR && errno != ECONNABORTED) {
        pause_accepting(errno);
        return false;
    }
    return errno != EAGAIN;
}

// Out of descriptors or memory: those who connect wait in the listener's backlog.
void Server::pause_accepting(int error)
{
    log::refusal("no connections are accepted for now: {}", std::strerror(error));
    event_del(&accept_event_);
    accepting_ = false;
    event_add(&retry_event_, &RETRY_ACCEPT);
}

void Server::resume_accepting()
{
    if (!accepting_ && !start()) {
        event_add(&retry_event_, &RETRY_ACCEPT);
    }
}

Server::Connection *Server::open(int fd)
{
    try {
        if (idle_.empty()) {
            idle_.reserve(connections_.size() + 1);
            silent_.reserve(connections_.size() + 1);
            held_.reserve(connections_.size() + 1);
            released_.reserve(connections_.size() + 1);
            connections_.push_back(std::make_unique<Connection>());
            connections_.back()->number = static_cast<uint32_t>(connections_.size());
            idle_.push_back(connections_.back().get());
        }
    } catch (const std::bad_alloc &) {
        ::close(fd);
        pause_accepting(ENOMEM);
        return nullptr;
    }
    Connection &connection = *idle_.back();
    idle_.pop_back();
    ++active_;
    connection.server = this;
    connection.fd = fd;
    connection.peer = peer_of(fd, own_user_);
    connection.heard = false;
    connection.ended = false;
    connection.held = false;
    connection.awaited = 0;
    silent_.push_back(&connection);
    return &connection;
}

void Server::close(Connection &connection)
{
    if (connection.awaited != 0) {
        event_del(&connection.ready);
    }
    if (connection.held) {
        std::erase(held_, &connection);
    }
    ::close(connection.fd);
    connection.fd = -1;
    if (!connection.heard) {
        std::erase(silent_, &connection);
    }
    model_.applications.leave(connection.number);
    connection.queue.clear();
    account(connection);
    idle_.push_back(&connection);
    --active_;
    if (!accepting_) {
        resume_accepting();
    }
}

// ---- Serving

void Server::on_connection(int, short what, void *argument)
{
    auto *const connection = static_cast<Connection *>(argument);
    connection->server->tend(*connection, what);
}

void Server::tend(Connection &connection, short what)
{
    if (connection.held) {
        return; // the commit is due, and reads on
    }
    if (!connection.heard) {
        hear_silent(connection);
    }
    go_on(connection, what);
}

void Server::go_on(Connection &connection, short what)
{
    bool open = flush_all(connection);
    if (open && (what & EV_READ)) {
        open = read_some(connection);
    }
    account(connection);
    if (open && connection.held) {
        return;
    }
    if (open && connection.ended && connection.queue.empty()) {
        open = false;
    }
    if (!open || !await(connection)) {
        close(connection);
    }
}

// A process registers on one connection and subscribes on another. Both may become readable
// together, so that the earlier one, if nothing was read from it yet, is read first.
void Server::hear_silent(const Connection &newcomer)
{
    for (size_t i = 0; i < silent_.size() && silent_[i] != &newcomer;) {
        Connection *const earlier = silent_[i];
        if (earlier->peer.pid == newcomer.peer.pid) {
            go_on(*earlier, EV_READ);
        }
        if (i < silent_.size() && silent_[i] == earlier) { // still
            ++i;
        }
    }
}

// The first request of a turn is answered at once: most clients send one and wait. The answers to
// those behind it leave together.
bool Server::read_some(Connection &connection)
{
    Read read = Read::served;
    for (int turn = 0; read == Read::served && !connection.held && turn < DATAGRAMS_PER_TURN &&
                       connection.queue.bytes() + fresh_.bytes() <= queue_limit();
         ++turn) {
        read = read_one(connection);
        if (turn == 0 && !deliver(connection)) {
            return false;
        }
    }
    return deliver(connection) && read != Read::failed;
}

Server::Read Server::read_one(Connection &connection)
{
    const int64_t length = HOST_Receive(connection.fd, buffer_.get(), DATAGRAM_MAX + 1);
    if (length == HOST_HANGUP) {
        connection.ended = true;
        return Read::nothing;
    }
    if (length < 0) {
        return errno == EAGAIN || errno == EINTR ? Read::nothing : Read::failed;
    }
    if (!connection.heard) {
        connection.heard = true;
        std::erase(silent_, &connection);
    }
    const bool goes_on = serve(connection, {buffer_.get(), static_cast<size_t>(length)});
    return goes_on ? Read::served : Read::failed;
}

bool Server::serve(Connection &connection, Bytes datagram)
{
    Outbox &out = connection.queue.empty() ? fresh_ : connection.queue;
    const size_t before = out.bytes();
    Outcome outcome;
    if (!connection.peer.own_user) {
        outcome = refuse(datagram, OTHER_USER, out, model_);
    } else if (datagram.size() > DATAGRAM_MAX) {
        outcome = refuse(datagram, TOO_LONG, out, model_);
    } else {
        outcome = answer(datagram, out, model_, {connection.number, connection.peer.pid});
    }
    if (outcome.code != 0) {
        log_refusal(outcome, connection.peer.pid);
    }
    if (outcome.awaits_commit) {
        if (&out == &fresh_) {
            std::swap(fresh_, connection.queue);
        }
        hold(connection, before, outcome);
        return true;
    }
    if (connection.queue.bytes() > limits_.own + limits_.excess) {
        log::warning("process {} does not take its answers and is dropped", connection.peer.pid);
        return false;
    }
    return !outcome.hang_up && connection.peer.own_user;
}

// Sends the answers of this turn; those that the client does not take wait in its queue.
bool Server::deliver(Connection &connection)
{
    const bool open = flush(connection, fresh_);
    if (!open) {
        fresh_.clear();
    } else if (!fresh_.empty()) {
        std::swap(fresh_, connection.queue);
    }
    return open;
}

bool Server::flush_all(Connection &connection)
{
    if (!connection.queue.empty() && !flush(connection, connection.queue)) {
        return false;
    }
    Application *const application = model_.applications.of(connection.number);
    return !application || !connection.queue.empty() || flush(connection, application->waiting);
}

bool Server::flush(Connection &connection, Outbox &out)
{
    while (!out.empty()) {
        const int sent = send_front(connection.fd, out);
        if (sent > 0) {
            out.drop(static_cast<size_t>(sent));
        } else if (errno == EAGAIN) {
            return true;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

// Has the event loop wait for what the connection can go on with. The event stays as it is where it
// suits already.
bool Server::await(Connection &connection)
{
    short wanted = 0;
    if (!connection.ended && connection.queue.bytes() <= queue_limit()) {
        wanted |= EV_READ;
    }
    const Application *const application = model_.applications.of(connection.number);
    if (!connection.queue.empty() || (application && !application->waiting.empty())) {
        wanted |= EV_WRITE;
    }
    if (wanted == connection.awaited) {
        return true;
    }
    if (connection.awaited != 0) {
        event_del(&connection.ready);
        connection.awaited = 0;
    }
    if (event_assign(&connection.ready, base_, connection.fd,
                     static_cast<short>(wanted | EV_PERSIST), on_connection, &connection) != 0 ||
        event_add(&connection.ready, nullptr) != 0) {
        return false;
    }
    connection.awaited = wanted;
    return true;
}

// Keeps the sum of what waits. Clients that were held back while it was too high go on once it is
// low again.
void Server::account(Connection &connection)
{
    queued_ += connection.queue.bytes() - connection.accounted;
    connection.accounted = connection.queue.bytes();
    if (queued_ > limits_.all) {
        scarce_ = true;
    } else if (scarce_ && queued_ <= limits_.all / 2) {
        scarce_ = false;
        event_active(&work_event_, 0, 0);
    }
}

// ---- Committing

void Server::hold(Connection &connection, size_t answer, const Outcome &outcome)
{
    connection.held = true;
    connection.held_answer = answer;
    connection.held_message = outcome.message;
    held_.push_back(&connection); // there is room for every connection
    event_active(&commit_event_, EV_TIMEOUT, 0);
}

void Server::on_commit(int, short, void *server) { static_cast<Server *>(server)->commit(); }

void Server::commit()
{
    const bool stored = model_.configuration().commit();
    if (!stored) {
        log::error("the configuration cannot be stored: {}", model_.configuration().failure());
    }
    std::swap(held_, released_);
    for (Connection *const connection : released_) {
        release(*connection, stored);
    }
    released_.clear();
}

void Server::release(Connection &connection, bool stored)
{
    connection.held = false;
    if (!stored) {
        ++model_.counters.refused;
        log_refusal({.message = connection.held_message, .code = NOT_STORED}, connection.peer.pid);
        connection.queue.replace(connection.held_answer, result_reply(NOT_STORED));
    }
    // Who configures hangs up once it is answered. Where it shares the processor it may do so now,
    // before its connection is watched.
    if (connection.awaited == 0 && flush(connection, connection.queue)) {
        sched_yield();
    }
    tend(connection, EV_READ);
}

// ---- Events

void Server::on_work(int, short, void *argument)
{
    auto *const server = static_cast<Server *>(argument);
    server->close_superseded();
    for (const auto &connection : server->connections_) {
        if (connection->fd >= 0) {
            server->tend(*connection, 0);
        }
    }
}

// Whoever was registered under the id finds its connection ended.
void Server::close_superseded()
{
    for (const uint32_t number : model_.applications.take_superseded()) {
        Connection &connection = *connections_[number - 1];
        log::warning("process {}: its application was registered by another process",
                     connection.peer.pid);
        close(connection);
    }
}

} // namespace agent
