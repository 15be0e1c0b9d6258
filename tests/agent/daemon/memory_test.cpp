// Every allocation of the agent's answers fails once: nothing is ever carried out in part.
#include <cstdlib>
#include <new>

#include <gtest/gtest.h>

#include "agent/config/row_store.h"
#include "agent/daemon/messages.h"
#include "agent/daemon/settings.h"

namespace {

constexpr size_t NEVER = SIZE_MAX;
size_t until_failure = NEVER; // allocations that succeed before one fails

bool fails() { return until_failure != NEVER && until_failure-- == 0; }

} // namespace

[[gnu::noinline]] void *operator new(size_t size)
{
    void *const block = fails() ? nullptr : std::malloc(size);
    if (!block) {
        until_failure = NEVER;
        throw std::bad_alloc();
    }
    return block;
}

[[gnu::noinline]] void *operator new(size_t size, const std::nothrow_t &) noexcept
{
    void *const block = fails() ? nullptr : std::malloc(size);
    if (!block) {
        until_failure = NEVER;
    }
    return block;
}

[[gnu::noinline]] void operator delete(void *block) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void *block, size_t) noexcept { std::free(block); }

namespace agent::test {
namespace {

constexpr size_t MOST_ALLOCATIONS = 500;

size_t accepted(const Outbox &out)
{
    // A rule counts as accepted when its barrier reply is not preceded by its error.
    Bytes front[64];
    const size_t count = out.front(front);
    size_t barriers = 0;
    size_t errors = 0;
    for (size_t i = 0; i < count; ++i) {
        (front[i][1] == 21 ? barriers : errors) += 1;
    }
    return barriers - errors;
}

TEST(Memory, ABatchIsAppliedWithAllItsAnswersOrNotAtAll)
{
    const Datagram request = batch({{.in_port = 1}, {.in_port = 2}, {.in_port = 3}, {.table = 9}});
    bool unhindered = false;
    for (size_t n = 0; n < MOST_ALLOCATIONS && !unhindered; ++n) {
        Model model;
        open_period(model);
        Outbox out;
        until_failure = n;
        const Outcome outcome = answer_and_commit(request, out, model);
        unhindered = until_failure != NEVER;
        until_failure = NEVER;
        const uint32_t present = model.flow_switch().table(CLIENT, 200).rules;
        if (outcome.hang_up) {
            EXPECT_EQ(present, 0u) << n;
            EXPECT_TRUE(out.empty()) << n;
        } else {
            EXPECT_EQ(present, accepted(out)) << n;
        }
    }
    EXPECT_TRUE(unhindered);
}

TEST(Memory, EveryOtherRequestIsAnsweredOrHungUpOn)
{
    const std::vector<Datagram> requests = {
        smooth_start(),
        smooth_end(),
        group_request(0x50000003, group_mod(9)),
        join({head(0x50000007), hex("007c 0008 0005 0002 00000000 007e 0004 00000000"),
              hex("0045 0008 0a000000 00000002")}),
        join({head(0x1000000d), hex("0038 0008 00000001 1001 c8 00")}),
        join({head(0x50000008), hex("00bf 0008 00000000 03 000000")}),
        join({head(0x50000009), hex("00c0 0008 00000010 03 000000")}),
        join({head(0x1000002d), hex("00bf 0008 00000000 03 000000")}),
        join({head(0x10000099)}),
    };
    for (const Datagram &request : requests) {
        bool unhindered = false;
        for (size_t n = 0; n < MOST_ALLOCATIONS && !unhindered; ++n) {
            Model model;
            open_period(model);
            ask(model, batch({{}}));
            Outbox out;
            until_failure = n;
            const Outcome outcome = answer_and_commit(request, out, model);
            unhindered = until_failure != NEVER;
            until_failure = NEVER;
            EXPECT_TRUE(!outcome.hang_up || out.empty());
            EXPECT_EQ(model.flow_switch().table(CLIENT, 200).rules, 1u);
        }
        EXPECT_TRUE(unhindered);
    }
}

TEST(Memory, ASettingIsKeptAndAcknowledgedOrNeither)
{
    for (const SettingRequest &request : setting_requests()) {
        bool unhindered = false;
        for (size_t n = 0; n < MOST_ALLOCATIONS && !unhindered; ++n) {
            Model model;
            ask(model, SettingRequest{1, instance_filter(INSTANCE)}.datagram());
            ask(model, SettingRequest{5, controller_cfg({.port = 6633})}.datagram());
            const auto before = rows_of(model.configuration());
            const Datagram datagram = request.datagram();
            Outbox out;
            until_failure = n;
            const Outcome outcome = answer_and_commit(datagram, out, model);
            unhindered = until_failure != NEVER;
            until_failure = NEVER;
            const bool changed = rows_of(model.configuration()) != before;
            EXPECT_FALSE(model.configuration().is_staged());
            if (outcome.hang_up) {
                EXPECT_TRUE(out.empty());
            }
            if (outcome.code != 0) {
                EXPECT_FALSE(changed) << request.code << ", " << n;
            } else if (request.code == 6 || request.code == 12 || request.code == 30) {
                EXPECT_TRUE(changed) << request.code << ", " << n;
            }
        }
        EXPECT_TRUE(unhindered);
    }
}

TEST(Memory, AnEventThatCannotBeKeptIsCountedAsDropped)
{
    bool unhindered = false;
    for (size_t n = 0; n < MOST_ALLOCATIONS && !unhindered; ++n) {
        Model model;
        model.applications.enroll(3, {1, 100});
        model.applications.subscribe(3, 16);
        const Datagram event(24, 7);
        until_failure = n;
        model.applications.publish(16, event);
        unhindered = until_failure != NEVER;
        until_failure = NEVER;
        const Application &application = *model.applications.find(3);
        EXPECT_EQ(application.accepted + application.dropped, 1u) << n;
        EXPECT_EQ(application.accepted, application.waiting.datagrams()) << n;
        EXPECT_EQ(application.dropped, unhindered ? 0u : 1u) << n;
    }
    EXPECT_TRUE(unhindered);
}

TEST(Memory, AnIdIsTakenOverWholeOrNotAtAll)
{
    bool unhindered = false;
    for (size_t n = 0; n < MOST_ALLOCATIONS && !unhindered; ++n) {
        Model model;
        model.applications.enroll(3, {1, 100});
        until_failure = n;
        bool failed = false;
        try {
            model.applications.enroll(3, {2, 200});
        } catch (const std::bad_alloc &) {
            failed = true;
        }
        unhindered = until_failure != NEVER;
        until_failure = NEVER;
        EXPECT_EQ(model.applications.find(3)->owner.process, failed ? 100 : 200) << n;
        EXPECT_EQ(model.applications.take_superseded().size(), failed ? 0u : 1u) << n;
    }
    EXPECT_TRUE(unhindered);
}

} // namespace
} // namespace agent::test
