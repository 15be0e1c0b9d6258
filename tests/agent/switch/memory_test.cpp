// Memory may be short at any allocation: the rule is refused, and the switch is as it was.
#include <algorithm>
#include <array>
#include <functional>
#include <memory_resource>
#include <random>
#include <vector>

#include "switch/fixture.h"

namespace {

using namespace openflow;
using build::Message;

// Fails the allocation that is counted down to, and all after it.
class ShortMemory final : public std::pmr::memory_resource {
public:
    uint64_t left = ~uint64_t{0};
    size_t held = 0;

private:
    void *do_allocate(size_t bytes, size_t alignment) override
    {
        if (left == 0) {
            throw std::bad_alloc();
        }
        left--;
        held += bytes;
        return std::pmr::new_delete_resource()->allocate(bytes, alignment);
    }
    void do_deallocate(void *block, size_t bytes, size_t alignment) override
    {
        held -= bytes;
        std::pmr::new_delete_resource()->deallocate(block, bytes, alignment);
    }
    bool do_is_equal(const memory_resource &other) const noexcept override
    {
        return this == &other;
    }
};

struct Held {
    uint32_t id;
    uint16_t priority;
    Message match;
    Message instructions;
    bool operator==(const Held &) const = default;
};

class MemoryTest : public SwitchTest {
protected:
    std::vector<Held> held() const
    {
        std::vector<Held> all;
        for (uint32_t id = sw_.next_rule(CLIENT, TABLE, 0); id != 0;
             id = sw_.next_rule(CLIENT, TABLE, id)) {
            const auto view = *sw_.rule(CLIENT, TABLE, id);
            all.push_back({id, view.priority, Message(view.match.begin(), view.match.end()),
                           Message(view.instructions.begin(), view.instructions.end())});
        }
        return all;
    }

    std::optional<Error> program(const build::FlowMod &mod)
    {
        return sw_.flow_mod(CLIENT, build::flow_mod(mod));
    }

    // Every rule must be where a strict modify finds it and nothing else.
    void expect_sound()
    {
        for (const Held &rule : held()) {
            const Message mark = build::write_actions({build::output(0xabc)});
            ASSERT_FALSE(program({.command = OFPFC_MODIFY_STRICT,
                                  .priority = rule.priority,
                                  .match = rule.match,
                                  .instructions = mark}));
            const auto view = *sw_.rule(CLIENT, TABLE, rule.id);
            ASSERT_TRUE(std::equal(view.instructions.begin(), view.instructions.end(), mark.begin(),
                                   mark.end()));
            ASSERT_FALSE(program({.command = OFPFC_MODIFY_STRICT,
                                  .priority = rule.priority,
                                  .match = rule.match,
                                  .instructions = rule.instructions}));
        }
    }

    // Sends with the first, then the second... allocation failing until it goes through, and
    // returns what it said then.
    std::optional<Error> sweep(const build::FlowMod &mod)
    {
        const std::vector<Held> before = held();
        std::optional<Error> result = TABLE_FULL;
        for (uint64_t allowed = 0; result == TABLE_FULL; allowed++) {
            if (allowed > 10'000) {
                ADD_FAILURE() << "refused without end";
                break;
            }
            memory_.left = allowed;
            result = program(mod);
            memory_.left = ~uint64_t{0};
            if (result == TABLE_FULL) {
                EXPECT_EQ(held(), before);
                failures_++;
            }
        }
        return result;
    }

    ShortMemory memory_;
    agent::Switch sw_{{}, &memory_, clock};
    uint64_t failures_ = 0;
};

TEST_F(MemoryTest, RefusesTheFirstRuleUntilAllOfItFits)
{
    EXPECT_FALSE(sweep({.match = in_port(1)}));
    EXPECT_GT(failures_, 4U); // client, table, mask, rule, index
    EXPECT_EQ(held().size(), 1U);
    expect_sound();
}

TEST_F(MemoryTest, RefusesAnyAddThatDoesNotFitAndKeepsTheTableAsItWas)
{
    std::mt19937 random(7);
    const auto below = [&random](uint32_t bound) {
        return static_cast<uint32_t>(random() % bound);
    };
    const std::array<uint32_t, 4> masks = {0xffffffff, 0xffffff00, 0xffff0000, 0xff000000};
    for (int i = 0; i < 400; i++) {
        std::vector<Message> entries;
        if (below(3) != 0) {
            entries.push_back(build::oxm32(OFPXMT_IN_PORT, 1 + below(100)));
        }
        if (below(3) != 0) {
            entries.push_back(build::oxm64(OFPXMT_TUNNEL_ID, below(100)));
        }
        if (below(3) == 0) {
            const std::array<uint8_t, 4> data = {0, 0, 0, static_cast<uint8_t>(below(20))};
            entries.push_back(build::item(37, data));
        }
        entries.push_back(build::oxm16(OFPXMT_ETH_TYPE, 0x0800));
        const uint32_t mask = masks[below(4)];
        entries.push_back(
            build::oxm32(OFPXMT_IPV4_DST, static_cast<uint32_t>(random()) & mask, mask));
        const auto match = build::match(std::span<const Message>(entries));
        const uint16_t flags = below(4) == 0 ? 0 : OFPFF_CHECK_OVERLAP;
        const auto result =
            sweep({.priority = static_cast<uint16_t>(below(2)), .flags = flags, .match = match});
        EXPECT_TRUE(!result || result == OVERLAP);
    }
    EXPECT_GT(held().size(), 100U);
    EXPECT_GT(failures_, 500U);
    expect_sound();
    ASSERT_FALSE(program({.command = OFPFC_DELETE}));
    EXPECT_TRUE(held().empty());
}

// No field is in all rules, so that the index must split in every way it has: by several sets of
// bits, by masks, and by what suddenly no longer is common to all.
TEST_F(MemoryTest, RefusesAnAddWhileTheIndexIsRebuilt)
{
    const auto fields = [](uint32_t set, uint32_t seed) {
        std::vector<Message> entries;
        for (uint32_t field = 0; field < 6; field++) {
            const uint32_t value = 1 + (seed * 2654435761U >> (4 + field)) % 5000;
            const uint8_t number =
                std::array<uint8_t, 6>{OFPXMT_IN_PORT,  OFPXMT_METADATA, OFPXMT_ETH_TYPE,
                                       OFPXMT_IPV4_SRC, OFPXMT_IPV4_DST, OFPXMT_TUNNEL_ID}[field];
            if (number == OFPXMT_ETH_TYPE) {
                entries.push_back(build::oxm16(number, 0x0800));
            } else if ((set >> field & 1) == 0) {
                continue;
            } else if (number == OFPXMT_METADATA || number == OFPXMT_TUNNEL_ID) {
                entries.push_back(build::oxm64(number, value));
            } else {
                entries.push_back(build::oxm32(number, value));
            }
        }
        return build::match(std::span<const Message>(entries));
    };
    const auto add = [&](const Message &match) {
        const auto result = sweep({.priority = 1, .match = match});
        EXPECT_TRUE(!result || result == OVERLAP);
    };
    for (uint32_t port = 1; port <= 20; port++) {
        ASSERT_FALSE(program({.priority = 2, .match = in_port(port)}));
    }
    EXPECT_FALSE(sweep(
        {.priority = 2, .flags = 0, .match = build::match({build::oxm64(OFPXMT_METADATA, 1)})}));
    for (uint32_t seed = 1; seed <= 40; seed++) {
        add(fields(0b111011, seed));
    }
    add(build::match({build::oxm16(OFPXMT_ETH_TYPE, 0x0806)})); // nothing else in common
    for (uint32_t seed = 41; seed <= 160; seed++) {
        uint32_t set = 0b111011;
        set &= ~(1U << seed % 6) & ~(1U << seed / 6 % 6);
        add(fields(set, seed));
    }
    EXPECT_GT(held().size(), 100U);
    EXPECT_GT(failures_, 300U);
    expect_sound();
    ASSERT_FALSE(program({.command = OFPFC_DELETE}));
    EXPECT_TRUE(held().empty());
}

TEST_F(MemoryTest, ModifiesAllOrNone)
{
    for (uint32_t port = 1; port <= 5; port++) {
        ASSERT_FALSE(program({.match = in_port(port)}));
    }
    const Message changed = build::write_actions({build::output(7), build::output(8)});
    EXPECT_FALSE(sweep({.command = OFPFC_MODIFY, .instructions = changed}));
    EXPECT_GE(failures_, 5U);
    for (const Held &rule : held()) {
        EXPECT_EQ(rule.instructions, changed);
    }
    failures_ = 0;
    EXPECT_FALSE(sweep({.command = OFPFC_MODIFY_STRICT, .match = in_port(2)}));
    EXPECT_FALSE(sweep({.match = in_port(3)})); // replaces
    EXPECT_GE(failures_, 2U);
    expect_sound();
}

// What finds the rules of packets is made when it is first asked for, and given up rather than a
// rule refused.
TEST_F(MemoryTest, FollowsNoPacketWithoutAndKeepsEveryRule)
{
    const Message packet = build::oxm32(OFPXMT_IN_PORT, 7);
    const std::array<uint8_t, 1> tables = {TABLE};
    const auto met = [&] {
        agent::Trace trace;
        EXPECT_FALSE(sw_.trace(CLIENT, {packet, tables, TABLE, false, {}}, trace));
        return trace.visits.at(0).priority;
    };
    for (uint16_t port = 1; port <= 40; port++) {
        ASSERT_FALSE(program({.priority = port, .match = in_port(port)}));
    }
    uint64_t thrown = 0;
    for (bool done = false; !done;) {
        memory_.left = thrown;
        try {
            EXPECT_EQ(met(), 7);
            done = true;
        } catch (const std::bad_alloc &) {
            thrown++;
        }
        memory_.left = ~uint64_t{0};
    }
    EXPECT_GT(thrown, 3U);
    for (uint16_t priority = 100; priority < 140; priority++) {
        EXPECT_FALSE(sweep({.priority = priority, .match = in_port(7)}));
        EXPECT_EQ(met(), priority);
    }
    ASSERT_FALSE(program({.command = OFPFC_DELETE_STRICT, .priority = 139, .match = in_port(7)}));
    EXPECT_EQ(met(), 138);
    expect_sound();
}

TEST_F(MemoryTest, DeletesWithoutAny)
{
    for (uint32_t port = 1; port <= 300; port++) {
        ASSERT_FALSE(program({.match = in_port(port)}));
    }
    // The mask of a delete is one of a rule, and none is to be made.
    memory_.left = 0;
    for (uint32_t port = 1; port <= 299; port++) {
        ASSERT_FALSE(program({.command = OFPFC_DELETE_STRICT, .match = in_port(port)}));
    }
    memory_.left = ~uint64_t{0};
    EXPECT_EQ(held().size(), 1U);
    expect_sound();
}

TEST_F(MemoryTest, RefusesAGroupAsOneTooMany)
{
    const Message group = build::group_mod(OFPGC_ADD, OFPGT_ALL, 1, {build::bucket(1)});
    ASSERT_FALSE(program({.match = in_port(1)}));
    uint64_t allowed = 0;
    std::optional<Error> result;
    do {
        memory_.left = allowed++;
        result = sw_.group_mod(CLIENT, group);
        EXPECT_EQ(sw_.group_count(CLIENT), result ? 0U : 1U);
        EXPECT_TRUE(!result || *result == (Error{OFPET_GROUP_MOD_FAILED, OFPGMFC_OUT_OF_GROUPS}));
    } while (result && allowed < 100);
    EXPECT_FALSE(result);
    EXPECT_GT(allowed, 1U);
}

TEST_F(MemoryTest, OpensNoPeriodWithout)
{
    memory_.left = 0;
    EXPECT_FALSE(sw_.open_period(CLIENT, 1));
    memory_.left = ~uint64_t{0};
    ASSERT_FALSE(program({.match = in_port(1)}));
    EXPECT_EQ(sw_.close_period(CLIENT, 1), 0U);
    EXPECT_TRUE(sw_.open_period(CLIENT, 1));
    EXPECT_EQ(sw_.close_period(CLIENT, 1), 1U);
}

TEST_F(MemoryTest, IsAllGivenBackInTheEnd)
{
    {
        agent::Switch local({}, &memory_);
        const size_t fresh = memory_.held;
        std::vector<uint32_t> indexes(100);
        for (uint32_t i = 0; i < 500; i++) {
            indexes[0] = i;
            const Message match = i % 2 != 0 ? build::match({build::interfaces(indexes)})
                                             : build::five_tuple(i, i, 1, 2, 0xffffffff << i % 8);
            local.flow_mod(CLIENT, build::flow_mod({.flags = 0, .match = match}));
        }
        EXPECT_GT(memory_.held, fresh);
        EXPECT_EQ(local.memory() + sw_.memory(), memory_.held);
    }
    EXPECT_EQ(memory_.held, sw_.memory());
}

} // namespace
