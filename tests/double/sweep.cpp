#include "double/sweep.h"

#include "double/memory.h"
#include "ofp/result.h"

namespace test {
namespace {

struct Run {
    uint64_t code;
    std::vector<Bytes> sent;
};

Run run_once(const Operation &operation, const std::function<void()> &disturb)
{
    platform = Platform();
    memory::fail_at(0);
    if (operation.prepare)
        operation.prepare();
    size_t blocks = memory::outstanding();
    disturb();
    Run run{operation.run(), platform.sent};
    EXPECT_TRUE(platform.open_sockets().empty()) << "a socket was left open";
    EXPECT_EQ(memory::outstanding(), blocks) << "a block was not freed";
    return run;
}

void expect_code(uint64_t code, const Codes &codes, const std::string &function, size_t occurrence)
{
    auto expected = codes.find(function + " " + std::to_string(occurrence));
    if (expected == codes.end())
        expected = codes.find(function);
    if (expected == codes.end())
        ADD_FAILURE() << "no code is documented for a failing " << function;
    else
        EXPECT_EQ(code, expected->second);
}

std::string trace(const std::string &function, size_t occurrence)
{
    return function + " number " + std::to_string(occurrence) + " fails";
}

void fail_platform_calls(const Operation &operation, const Codes &codes)
{
    for (size_t n = 1;; ++n) {
        Run run = run_once(operation, [n] { platform.fail_at(n); });
        if (!platform.failed()) {
            EXPECT_EQ(run.code, operation.success) << "nothing failed";
            return;
        }
        auto [function, occurrence] = *platform.failed();
        SCOPED_TRACE(trace(function, occurrence));
        expect_code(run.code, codes, function, occurrence);
    }
}

void fail_allocations(const Operation &operation, const Codes &codes)
{
    for (size_t n = 1;; ++n) {
        Run run = run_once(operation, [n] { memory::fail_at(n); });
        bool failed = memory::has_failed();
        memory::fail_at(0);
        if (!failed)
            return;
        SCOPED_TRACE(trace("malloc", n));
        expect_code(run.code, codes, "malloc", n);
    }
}

void interrupt_calls(const Operation &operation)
{
    Run undisturbed = run_once(operation, [] {});
    for (const char *function : {"SOCK_Connect", "SOCK_Send", "SOCK_Recv", "SOCK_RecvFrom"}) {
        SCOPED_TRACE(std::string(function) + " is interrupted");
        Run run = run_once(operation, [function] { platform.interrupt(function, 3); });
        EXPECT_EQ(run.code, undisturbed.code);
        EXPECT_EQ(run.sent, undisturbed.sent);
    }
}

Codes merged(Codes codes, const Codes &more)
{
    for (const auto &[function, code] : more)
        codes[function] = code;
    return codes;
}

} // namespace

void expect_failures_handled(const Operation &operation, const Codes &codes)
{
    fail_platform_calls(operation, codes);
    fail_allocations(operation, codes);
    interrupt_calls(operation);
}

Codes setter_codes(const Codes &more)
{
    return merged(
        {
            {"SERVICE_GetStatus", OFP_RC_OK}, // counts as not running: it is started
            {"SERVICE_Start", OFP_RC_FAILED},
            {"DEV_GetAllNodes", OFP_RC_FAILED},
            {"SERVICE_BatchStart", OFP_RC_FAILED},
            {"malloc", OFP_RC_FAILED},
            {"SOCK_Socket", OFP_RC_FAILED},
            {"SOCK_SetOption", OFP_RC_FAILED},
            {"SOCK_Connect", OFP_RC_FAILED},
            {"SOCK_Send", OFP_RC_SEND_FAILED},
            {"SOCK_Recv", OFP_RC_NO_REPLY},
            {"SOCK_Close", OFP_RC_OK},
        },
        more);
}

Codes query_codes(const Codes &more)
{
    return merged(
        {
            {"SERVICE_GetStatus", OFP_RC_DAEMON_DOWN},
            {"SOCK_Socket", OFP_RC_FAILED},
            {"SOCK_SetOption", OFP_RC_FAILED},
            {"SOCK_Connect", OFP_RC_NO_REPLY},
            {"SOCK_Send", OFP_RC_FAILED},
            {"SOCK_Recv", OFP_RC_NO_REPLY},
            {"SOCK_Close", OFP_RC_OK},
        },
        more);
}

void expect_same_datagrams_on_any_stack(const Operation &operation)
{
    std::vector<Bytes> sent[2];
    for (int round = 0; round < 2; ++round)
        sent[round] = run_once(operation, [round] { paint_stack(round ? 0xa5 : 0x5a); }).sent;
    EXPECT_FALSE(sent[0].empty());
    EXPECT_EQ(sent[0], sent[1]);
}

} // namespace test
