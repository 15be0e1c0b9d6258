#include "daemon/server.h"

#include <cerrno>
#include <cstring>
#include <new>

#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include "daemon/log.h"
#include "daemon/reply.h"
#include "ofp/host.h"

namespace agent {

namespace {

constexpr size_t DATAGRAM_MAX = 65535;
constexpr int ACCEPTS_PER_TURN = 64;
constexpr int DATAGRAMS_PER_TURN = 16;
constexpr size_t SENDS_PER_CALL = 32;

constexpr size_t QUEUE_HIGH = size_t{64} * 1024;        // no more of the client's requests are read
constexpr size_t QUEUE_LIMIT = size_t{4} * 1024 * 1024; // the client is dropped

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

void log_refusal(const Outcome &outcome, pid_t pid)
{
    log::refusal("process {}: {} ({:#x}) refused: {} ({:#010x})", pid,
                 message_name(outcome.message), outcome.message, result_text(outcome.code),
                 outcome.code);
}

} // namespace

struct Server::Connection {
    Server *server = nullptr;
    int fd = -1;
    Peer peer;
    bool ended = false; // the client sends nothing more
    bool held = false;  // until the configuration is committed
    short awaited = 0;  // events that the event below waits for
    size_t held_answer = 0;
    uint32_t held_message = 0;
    event ready{};
    Outbox queue; // answers that the client has not taken yet
};

Server::Server(event_base *base, int listener, Model &model)
    : base_(base), listener_(listener), own_user_(geteuid()), model_(model),
      buffer_(std::make_unique<uint8_t[]>(DATAGRAM_MAX + 1))
{
    event_assign(&accept_event_, base_, listener_, EV_READ | EV_PERSIST, on_listener, this);
    event_assign(&retry_event_, base_, -1, 0, on_retry, this);
    event_assign(&commit_event_, base_, -1, 0, on_commit, this);
}

Server::~Server()
{
    for (const auto &connection : connections_) {
        if (connection->fd >= 0) {
            close(*connection);
        }
    }
    event_del(&accept_event_);
    event_del(&retry_event_);
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
    for (int turn = 0; turn < ACCEPTS_PER_TURN; ++turn) {
        const int fd = accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (fd >= 0) {
            Connection *const connection = open(fd);
            if (connection) {
                tend(*connection, EV_READ); // most clients have sent their request by now
            }
        } else if (errno == EAGAIN) {
            return;
        } else if (errno != EINTR && errno != ECONNABORTED) {
            pause_accepting(errno);
            return;
        }
    }
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
            held_.reserve(connections_.size() + 1);
            released_.reserve(connections_.size() + 1);
            connections_.push_back(std::make_unique<Connection>());
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
    connection.ended = false;
    connection.held = false;
    connection.awaited = 0;
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
    connection.queue.clear();
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
    bool open = true;
    if (!connection.queue.empty()) {
        open = flush(connection, connection.queue);
    }
    if (open && (what & EV_READ)) {
        open = read_some(connection);
    }
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

bool Server::read_some(Connection &connection)
{
    for (int turn = 0;
         turn < DATAGRAMS_PER_TURN && !connection.held && connection.queue.bytes() <= QUEUE_HIGH;
         ++turn) {
        const int64_t length = HOST_Receive(connection.fd, buffer_.get(), DATAGRAM_MAX + 1);
        if (length == HOST_HANGUP) {
            connection.ended = true;
            return true;
        }
        if (length < 0) {
            return errno == EAGAIN || errno == EINTR;
        }
        if (!serve(connection, {buffer_.get(), static_cast<size_t>(length)})) {
            return false;
        }
    }
    return true;
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
        outcome = answer(datagram, out, model_);
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
    if (&out == &fresh_) {
        if (!flush(connection, fresh_)) {
            fresh_.clear();
            return false;
        }
        if (!fresh_.empty()) {
            std::swap(fresh_, connection.queue);
        }
    }
    if (connection.queue.bytes() > QUEUE_LIMIT) {
        log::warning("process {} does not take its answers and is dropped", connection.peer.pid);
        return false;
    }
    return !outcome.hang_up && connection.peer.own_user;
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
    tend(connection, EV_READ);
}

bool Server::flush(Connection &connection, Outbox &out)
{
    while (!out.empty()) {
        Bytes datagrams[SENDS_PER_CALL];
        iovec parts[SENDS_PER_CALL];
        mmsghdr messages[SENDS_PER_CALL]{};
        const size_t count = out.front(datagrams);
        for (size_t i = 0; i < count; ++i) {
            parts[i] = {const_cast<uint8_t *>(datagrams[i].data()), datagrams[i].size()};
            messages[i].msg_hdr.msg_iov = &parts[i];
            messages[i].msg_hdr.msg_iovlen = 1;
        }
        const int sent = sendmmsg(connection.fd, messages, static_cast<unsigned>(count),
                                  MSG_DONTWAIT | MSG_NOSIGNAL);
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
    if (!connection.ended && connection.queue.bytes() <= QUEUE_HIGH) {
        wanted |= EV_READ;
    }
    if (!connection.queue.empty()) {
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

} // namespace agent
