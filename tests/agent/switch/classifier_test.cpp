// The best rule for a packet, and the better one that nearly matched, against looking at every
// rule.
#include <algorithm>
#include <map>
#include <random>

#include "openflow/oxm.h"
#include "switch/packet_fixture.h"

namespace {

using namespace openflow;
using build::Message;

struct Field {
    uint8_t number;
    uint8_t size;
    uint64_t values; // as many different ones
    bool masks;
};

constexpr Field FIELDS[] = {
    {OFPXMT_IN_PORT, 4, 4, false},  {OFPXMT_METADATA, 8, 8, true},  {OFPXMT_ETH_DST, 6, 6, true},
    {OFPXMT_IPV4_SRC, 4, 16, true}, {OFPXMT_IPV4_DST, 4, 16, true}, {OFPXMT_TUNNEL_ID, 8, 4, true},
};

class BruteForceTest : public PacketTest, public testing::WithParamInterface<int> {
protected:
    uint32_t below(uint32_t bound) { return static_cast<uint32_t>(random_() % bound); }

    Message number(const Field &field, uint64_t value)
    {
        Message bytes(field.size);
        for (size_t i = 0; i < field.size; i++) {
            bytes[field.size - 1 - i] = static_cast<uint8_t>(value >> 8 * i);
        }
        return bytes;
    }

    // Values that differ in low and in high bits, so that prefixes tell some apart.
    uint64_t value(const Field &field)
    {
        const uint64_t n = 1 + below(static_cast<uint32_t>(field.values));
        return field.masks ? n | n << (field.size * 8 - 8) : n;
    }

    Message random_match()
    {
        std::vector<Message> entries;
        for (const Field &field : FIELDS) {
            if (field.number == OFPXMT_IPV4_SRC) {
                entries.push_back(build::oxm16(OFPXMT_ETH_TYPE, 0x0800));
            }
            if (below(2) != 0) {
                continue;
            }
            const uint64_t all =
                field.size == 8 ? ~uint64_t{0} : (uint64_t{1} << field.size * 8) - 1;
            const uint64_t mask = field.masks && below(2) != 0
                                      ? all & ~uint64_t{0} << 4 * below(field.size * 2)
                                      : all;
            const Message bits = number(field, mask);
            const Message bytes = number(field, value(field) & mask);
            entries.push_back(build::oxm_bytes(OFPXMC_OPENFLOW_BASIC, field.number, bytes,
                                               mask == all ? Message() : bits));
        }
        return build::match(std::span<const Message>(entries));
    }

    Message random_packet()
    {
        Message packet;
        values_.clear();
        for (const Field &field : FIELDS) {
            if (field.number == OFPXMT_IPV4_SRC) {
                const Message ip = build::oxm16(OFPXMT_ETH_TYPE, 0x0800);
                packet.insert(packet.end(), ip.begin(), ip.end());
                values_[OFPXMT_ETH_TYPE] = {0x08, 0x00};
            }
            const Message bytes = number(field, value(field));
            const Message oxm = build::oxm_bytes(OFPXMC_OPENFLOW_BASIC, field.number, bytes);
            packet.insert(packet.end(), oxm.begin(), oxm.end());
            values_[field.number] = bytes;
        }
        return packet;
    }

    uint32_t differing(std::span<const uint8_t> match)
    {
        uint32_t count = 0;
        OxmWalk walk(parse_match(match)->entries);
        while (const auto oxm = walk.next()) {
            const Message &has = values_.at(oxm->field);
            bool same = true;
            for (size_t i = 0; i < has.size(); i++) {
                const int mask = oxm->has_mask ? oxm->mask[i] : 0xff;
                same = same && (has[i] & mask) == oxm->value[i];
            }
            count += same ? 0 : 1;
        }
        return count;
    }

    struct Expected {
        uint32_t rule = 0;
        int priority = -1;
        uint32_t nearest = 0; // how many fields the nearest better rule lacks; 0: there is none
        uint32_t better = 0;
    };

    Expected expected()
    {
        Expected result;
        for (const uint32_t id : ids()) {
            const auto rule = *switch_.rule(CLIENT, TABLE, id);
            if (rule.priority > result.priority && differing(rule.match) == 0) {
                result.rule = id;
                result.priority = rule.priority;
            }
        }
        for (const uint32_t id : ids()) {
            const auto rule = *switch_.rule(CLIENT, TABLE, id);
            if (rule.priority > result.priority) {
                const uint32_t fields = differing(rule.match);
                result.better++;
                result.nearest = result.nearest == 0 ? fields : std::min(result.nearest, fields);
            }
        }
        return result;
    }

    void compare(const Message &packet)
    {
        const Expected wanted = expected();
        const agent::TableVisit visit = trace(packet).visits[0];
        ASSERT_EQ(visit.rule, wanted.rule);
        matched_ += wanted.rule != 0 ? 1 : 0;
        ASSERT_EQ(visit.better.has_value(), wanted.better != 0);
        if (visit.better) {
            ASSERT_GT(visit.better->priority, wanted.priority);
            ASSERT_EQ(visit.better->fields,
                      differing(switch_.rule(CLIENT, TABLE, visit.better->rule)->match));
            if (wanted.better <= 64) { // all of them are looked at
                ASSERT_EQ(visit.better->fields, wanted.nearest);
                missed_++;
            }
        }
    }

    std::mt19937 random_{static_cast<uint32_t>(GetParam())};
    std::map<uint8_t, Message> values_; // of the last packet
    int matched_ = 0;
    int missed_ = 0;
};

TEST_P(BruteForceTest, FindsTheBestRuleOfAnyTableWhileItChanges)
{
    std::vector<std::pair<uint16_t, Message>> programmed;
    const uint32_t priorities = GetParam() % 2 == 0 ? 3 : 1000;
    for (int round = 0; round < 60; round++) {
        const uint32_t changes = below(3) == 0 ? 200 : 10;
        for (uint32_t i = 0; i < changes; i++) {
            if (!programmed.empty() && below(3) == 0) {
                const size_t at = below(static_cast<uint32_t>(programmed.size()));
                ASSERT_FALSE(send({.command = OFPFC_DELETE_STRICT,
                                   .priority = programmed[at].first,
                                   .match = programmed[at].second}));
                programmed.erase(programmed.begin() + static_cast<std::ptrdiff_t>(at));
                continue;
            }
            programmed.emplace_back(static_cast<uint16_t>(below(priorities)), random_match());
            add(programmed.back().first, programmed.back().second,
                build::write_actions({build::output(1)}));
        }
        for (int i = 0; i < 10; i++) {
            compare(random_packet());
            ASSERT_FALSE(HasFatalFailure()) << "round " << round;
        }
    }
    EXPECT_GT(matched_, 100);
    EXPECT_GT(missed_, 10);
}

INSTANTIATE_TEST_SUITE_P(Seeds, BruteForceTest, testing::Range(1, 7));

// Chains of rules with the same bits: every priority one, deleted in an order of their own.
using ClassifierTest = PacketTest;

TEST_F(ClassifierTest, RulesThatDifferByPriorityAloneFollowEachOther)
{
    for (uint32_t n = 0; n < 6000; n++) {
        const auto priority = static_cast<uint16_t>(1 + n * 7919 % 6000);
        add(priority, in_port(3), build::write_actions({build::output(priority)}));
        if (n == 10) {
            trace(port(3)); // from here on kept up to date
        }
    }
    EXPECT_EQ(trace(port(3)).visits[0].priority, 6000);
    for (uint16_t priority = 6000; priority > 1; priority--) {
        ASSERT_FALSE(
            send({.command = OFPFC_DELETE_STRICT, .priority = priority, .match = in_port(3)}));
        if (priority % 64 == 0) {
            ASSERT_EQ(trace(port(3)).visits[0].priority, priority - 1);
        }
    }
}

} // namespace
