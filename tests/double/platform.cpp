#include "double/platform.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ostream>

#include "double/memory.h"

namespace test {

Platform platform;

void PrintTo(const Call &call, std::ostream *out)
{
    *out << call.function;
    for (uint64_t argument : call.arguments)
        *out << ' ' << static_cast<int64_t>(argument);
    if (!call.text.empty())
        *out << " \"" << call.text << '"';
    if (!call.bytes.empty())
        *out << " [" << to_hex(call.bytes) << ']';
}

void Platform::next(const std::string &function, Outcome outcome)
{
    next_[function].push_back(outcome);
}

void Platform::interrupt(const std::string &function, unsigned times)
{
    while (times-- > 0)
        next(function, {-1, EINTR});
}

void Platform::fail_at(size_t nth)
{
    until_failure_ = nth;
    failed_.reset();
}

void Platform::reply(const Bytes &datagram) { replies_.push_back({datagram, 0}); }
void Platform::receive_error(int error) { replies_.push_back({{}, error}); }

void Platform::daemon_runs(bool runs)
{
    if (Node *node = find_node(master))
        node->runs = runs;
}

Node *Platform::find_node(uint16_t id)
{
    auto at = std::find_if(nodes.begin(), nodes.end(), [id](const Node &n) { return n.id == id; });
    return at == nodes.end() ? nullptr : &*at;
}

std::vector<Call> Platform::calls(std::string_view prefix) const
{
    std::vector<Call> found;
    std::copy_if(calls_.begin(), calls_.end(), std::back_inserter(found),
                 [prefix](const Call &call) { return call.function.starts_with(prefix); });
    return found;
}

std::string Platform::sequence(std::string_view prefix) const
{
    std::string names;
    for (const Call &call : calls(prefix))
        names += (names.empty() ? "" : " ") + call.function;
    return names;
}

std::optional<Outcome> Platform::enter(Call call)
{
    if (calls_.size() > 1'000'000) {
        std::fprintf(stderr, "the library calls %s without end\n", call.function.c_str());
        std::abort();
    }
    std::string function = call.function;
    ++occurrences_[function];
    calls_.push_back(std::move(call));

    auto script = next_.find(function);
    if (script == next_.end() || script->second.empty())
        return std::nullopt;
    Outcome outcome = script->second.front();
    script->second.pop_front();
    if (outcome.error != 0)
        errno = outcome.error;
    return outcome;
}

std::optional<Outcome> Platform::enter(Call call, Outcome failure)
{
    std::string function = call.function;
    std::optional<Outcome> outcome = enter(std::move(call));
    if (until_failure_ == 0 || --until_failure_ != 0)
        return outcome;
    failed_ = {function, occurrences_[function]};
    if (failure.error != 0)
        errno = failure.error;
    return failure;
}

int32_t Platform::open_socket()
{
    ++sockets_opened;
    open_.insert(next_socket_);
    return next_socket_++;
}

bool Platform::check_socket(int32_t s)
{
    if (open_.contains(s))
        return true;
    ADD_FAILURE() << calls_.back().function << " on socket " << s << ", which is not open";
    errno = EBADF;
    return false;
}

int64_t Platform::receive(void *buffer, size_t size)
{
    if (replies_.empty()) {
        errno = EAGAIN;
        return -1;
    }
    Reply reply = std::move(replies_.front());
    replies_.pop_front();
    if (reply.error != 0) {
        errno = reply.error;
        return -1;
    }
    size_t length = std::min(size, reply.datagram.size());
    if (length != 0)
        std::memcpy(buffer, reply.datagram.data(), length);
    return static_cast<int64_t>(length);
}

PlatformTest::PlatformTest() : blocks_before_(memory::outstanding())
{
    platform = Platform();
    memory::fail_at(0);
}

PlatformTest::~PlatformTest()
{
    memory::fail_at(0);
    EXPECT_TRUE(platform.open_sockets().empty()) << "a socket was left open";
    EXPECT_EQ(memory::outstanding(), blocks_before_) << "a block was not freed";
}

} // namespace test
