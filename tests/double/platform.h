// A scripted platform: every function of ofp/platform.h, plus sleep, answered by the object below,
// which records each call and lets a test decide its outcome.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "double/bytes.h"
#include "ofp/platform.h"

namespace test {

// A call as the library made it: its numbers in order, the bytes it passed (option value, address,
// datagram, node list), the text it passed (service name, option name).
struct Call {
    std::string function;
    std::vector<uint64_t> arguments;
    Bytes bytes = {};
    std::string text = {};
    bool operator==(const Call &) const = default;
};
void PrintTo(const Call &call, std::ostream *out);

// What a call answers instead of what it would.
struct Outcome {
    int64_t result;
    int error = 0; // errno, left alone when 0
};

struct Node {
    uint16_t id;
    bool up = true;
    bool runs = false; // the service "OFP"
};

class Platform {
public:
    // ---- Script: the next calls of a function, in order ----

    // The next call of a function that has no outcome yet answers this.
    void next(const std::string &function, Outcome outcome);
    // The same, times times.
    void interrupt(const std::string &function, unsigned times); // -1, EINTR
    // The nth call, counted over all functions that can fail, fails the way that function fails.
    void fail_at(size_t nth);
    // The function that did, with its occurrence: {"SOCK_Recv", 2}. Nothing: there was no nth call.
    std::optional<std::pair<std::string, unsigned>> failed() const { return failed_; }

    // ---- Script: what the agent daemon sends ----

    void reply(const Bytes &datagram); // one datagram, or an empty one; cut to the receiver's size
    void hang_up() { reply({}); }
    void receive_error(int error); // in the order of the datagrams
    size_t unread() const { return replies_.size(); }
    void drop_unread() { replies_.clear(); }
    // Called with each datagram sent; it may queue replies. With nothing queued a receive times
    // out.
    std::function<void(const Bytes &)> on_send;

    // ---- Script: the switch ----

    std::vector<Node> nodes = {{.id = 7, .runs = true}};
    uint16_t master = 7;
    uint16_t self = 7;
    bool controller = true;
    uint32_t phase4_over = 1;
    std::function<void()> on_sleep;
    uint32_t zone = 3;
    bool zone_is_container = false;
    uint32_t container = 5;
    uint16_t lip = 7;
    uint16_t min_vlan = 1;
    std::optional<Bytes> bridge_mac = hex("001122334455");
    std::map<std::string, uint32_t> options;      // of OPT_ParseEx
    std::map<uint32_t, uint32_t> interface_types; // by index; an unknown index fails
    Bytes device_answer = hex("010203040506");    // of CIOCTL
    uint32_t device_answer_length = 6;
    int32_t (*name_order)(const char *, const char *) = nullptr; // null: strcmp

    void daemon_runs(bool runs); // on the master
    Node *find_node(uint16_t id);

    // ---- Record ----

    const std::vector<Call> &calls() const { return calls_; }
    std::vector<Call> calls(std::string_view prefix) const;
    // Names in order, blank between: "SOCK_Socket SOCK_Close".
    std::string sequence(std::string_view prefix = "SOCK_") const;
    std::vector<Bytes> sent; // datagrams, in order
    const std::set<int32_t> &open_sockets() const { return open_; }
    unsigned sockets_opened = 0;

    // ---- For the platform functions ----

    // Records a call. An outcome: the call answers that and does nothing else.
    std::optional<Outcome> enter(Call call);
    // The same for a call that can fail; failure is its answer when it is made to.
    std::optional<Outcome> enter(Call call, Outcome failure);
    int32_t open_socket();
    bool check_socket(int32_t s); // reports a test failure for one that is not open
    void close_socket(int32_t s) { open_.erase(s); }
    int64_t receive(void *buffer, size_t size);

private:
    struct Reply {
        Bytes datagram;
        int error;
    };
    std::map<std::string, std::deque<Outcome>> next_;
    std::map<std::string, unsigned> occurrences_;
    std::optional<std::pair<std::string, unsigned>> failed_;
    size_t until_failure_ = 0;
    std::deque<Reply> replies_;
    std::vector<Call> calls_;
    std::set<int32_t> open_;
    int32_t next_socket_ = 100;
};

extern Platform platform;

// What a platform call that is made to fail returns, where any value but 0 is a failure.
inline constexpr uint32_t platform_failure = 0x0badc0de;

// A test with a fresh platform; no socket is open and no block is left when it ends.
class PlatformTest : public ::testing::Test {
protected:
    PlatformTest();
    ~PlatformTest() override;

private:
    size_t blocks_before_;
};

} // namespace test
