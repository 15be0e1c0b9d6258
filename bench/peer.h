// The other end of the library's socket for benchmarks: a peer that answers without looking, the
// real agent, and the bare exchange that a call is compared with.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <sys/types.h>
#include <sys/un.h>

#include "ofp.h"

namespace bench {

using Bytes = std::vector<uint8_t>;

// Ends the program with what failed.
void check(bool holds, const char *what);

// A runtime directory of its own, gone at the end.
class Directory {
public:
    Directory();
    ~Directory();
    Directory(const Directory &) = delete;
    Directory &operator=(const Directory &) = delete;

    // The calls that follow find their agent here.
    void use() const;
    const std::string &path() const { return path_; }

private:
    std::string path_;
};

// Answers each barrier request among rules with a barrier reply, a rule query with a reply of its
// size, all else with a result of 0. A process of its own that ends with this.
class EchoPeer {
public:
    EchoPeer();
    ~EchoPeer();
    EchoPeer(const EchoPeer &) = delete;
    EchoPeer &operator=(const EchoPeer &) = delete;

    void use() const { directory_.use(); }

private:
    Directory directory_;
    pid_t process_ = -1;
};

// A real agent, stopped at the end. What is configured it keeps in its runtime directory, or in
// memory.
class Agent {
public:
    enum class Store { file, memory };

    explicit Agent(Store store = Store::file);
    ~Agent();
    Agent(const Agent &) = delete;
    Agent &operator=(const Agent &) = delete;

    void use() const { directory_.use(); }
    // Seconds of processor time it has taken.
    double processor_time() const;

private:
    Directory directory_;
    pid_t process_ = -1;
};

// The system calls that an exchange cannot do without, and nothing else: a socket with two
// time-outs, a request, its replies. With the agent or peer in use when it is made.
class BareExchange {
public:
    BareExchange();
    void run(const Bytes &request, std::size_t replies) const;

private:
    sockaddr_un address_ = {};
};

// A connection that stays, over which many requests are under way at a time.
class BareStream {
public:
    BareStream();
    ~BareStream();
    BareStream(const BareStream &) = delete;
    BareStream &operator=(const BareStream &) = delete;

    // So many requests, then a reply to each.
    void run(const Bytes &request, std::size_t count) const;

private:
    int fd_ = -1;
};

// A request as the library sends it.
template <class Record>
Bytes request(uint32_t message, uint32_t type, const Record &record)
{
    Bytes bytes(OFP_DATAGRAM_SIZE);
    bytes.resize(
        OFP_msg_EncapBasicMsg(bytes.data(), bytes.size(), message, type, sizeof record, &record));
    return bytes;
}

} // namespace bench
