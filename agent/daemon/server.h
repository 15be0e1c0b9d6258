// The agent's socket: takes connections, reads datagrams, has them answered and sends the answers.
//
// Nobody waits for anybody: sockets never block, a connection is served a bounded number of
// datagrams before others have their turn, and answers that a client does not take wait in a queue
// of its own. That queue is long enough for a client that sends a million rules before it reads the
// first answer; while it is full, no more of the client's requests are read, so that it is the
// client that waits. Events wait apart from answers and keep nothing from being read.
//
// A connection that configured something is held, neither read nor answered, until the
// configuration is committed: after all connections that were ready with it were read, so that they
// share the commit.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <sys/types.h>

#include <event2/event.h>
#include <event2/event_struct.h>

#include "daemon/dispatch.h"
#include "daemon/model.h"
#include "daemon/outbox.h"

namespace agent {

// Bytes of answers that wait for their clients.
struct QueueLimits {
    size_t own = size_t{16} << 20;    // of one client: beyond it no more of its requests are read
    size_t all = size_t{64} << 20;    // of all: beyond it a client may have as many as stated below
    size_t scarce = size_t{64} << 10; // of one client while memory is scarce
    size_t excess = size_t{4} << 20;  // beyond its limit the client is dropped
};

class Server {
public:
    // Serves listener, which stays the caller's, while base runs.
    Server(event_base *base, int listener, Model &model, const QueueLimits &limits = {});
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    bool start(); // false: no memory
    size_t connections() const { return active_; }

private:
    struct Connection;

    static void on_listener(int fd, short what, void *server);
    static void on_retry(int fd, short what, void *server);
    static void on_connection(int fd, short what, void *connection);
    static void on_work(int fd, short what, void *server);
    static void on_commit(int fd, short what, void *server);

    void accept_all();
    bool accept_one();
    void pause_accepting(int error);
    void resume_accepting();
    Connection *open(int fd);
    void close(Connection &connection);

    void hear_silent(const Connection &newcomer);
    void close_superseded();

    size_t queue_limit() const { return queued_ > limits_.all ? limits_.scarce : limits_.own; }
    void account(Connection &connection);

    // These return false when the connection is to be closed.
    enum class Read : uint8_t { served, nothing, failed };

    bool read_some(Connection &connection);
    Read read_one(Connection &connection);
    bool deliver(Connection &connection);
    bool serve(Connection &connection, Bytes datagram);
    bool flush(Connection &connection, Outbox &out);
    bool flush_all(Connection &connection);
    bool await(Connection &connection);
    void tend(Connection &connection, short what);
    void go_on(Connection &connection, short what);

    void hold(Connection &connection, size_t answer, const Outcome &outcome);
    void release(Connection &connection, bool stored);
    void commit();

    event_base *base_;
    int listener_;
    uid_t own_user_;
    Model &model_;
    QueueLimits limits_;
    event accept_event_{};
    event retry_event_{};
    event work_event_{};
    event commit_event_{};
    bool accepting_ = false;
    bool scarce_ = false; // some client has been held back for want of memory
    size_t active_ = 0;
    size_t queued_ = 0; // bytes of answers that wait
    std::vector<std::unique_ptr<Connection>> connections_;
    std::vector<Connection *> idle_;
    std::vector<Connection *> silent_; // accepted, nothing read from them yet
    std::vector<Connection *> held_;   // until the next commit
    std::vector<Connection *> released_;
    std::unique_ptr<uint8_t[]> buffer_;
    Outbox fresh_; // answers on their way to a client that has none queued
};

} // namespace agent
