// The agent's socket: takes connections, reads datagrams, has them answered and sends the answers.
//
// Nobody waits for anybody: sockets never block, a connection is served a bounded number of
// datagrams before others have their turn, and answers that a client does not take wait in a queue
// of its own. While that queue is long, no more of the client's requests are read, so that it is
// the client that waits. A queue that would grow past all bounds ends its connection.
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

class Server {
public:
    // Serves listener, which stays the caller's, while base runs.
    Server(event_base *base, int listener, Model &model);
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
    static void on_commit(int fd, short what, void *server);

    void accept_all();
    void pause_accepting(int error);
    void resume_accepting();
    Connection *open(int fd);
    void close(Connection &connection);

    // These return false when the connection is to be closed.
    bool read_some(Connection &connection);
    bool serve(Connection &connection, Bytes datagram);
    bool flush(Connection &connection, Outbox &out);
    bool await(Connection &connection);
    void tend(Connection &connection, short what);

    void hold(Connection &connection, size_t answer, const Outcome &outcome);
    void release(Connection &connection, bool stored);
    void commit();

    event_base *base_;
    int listener_;
    uid_t own_user_;
    Model &model_;
    event accept_event_{};
    event retry_event_{};
    event commit_event_{};
    bool accepting_ = false;
    size_t active_ = 0;
    std::vector<std::unique_ptr<Connection>> connections_;
    std::vector<Connection *> idle_;
    std::vector<Connection *> held_; // until the next commit
    std::vector<Connection *> released_;
    std::unique_ptr<uint8_t[]> buffer_;
    Outbox fresh_; // answers on their way to a client that has none queued
};

} // namespace agent
