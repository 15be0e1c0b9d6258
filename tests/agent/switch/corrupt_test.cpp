// Whatever bytes come, the switch answers with an error or applies them, and holds together.
#include <random>

#include "switch/fixture.h"

namespace {

using namespace openflow;
using build::Message;

class CorruptTest : public SwitchTest {
protected:
    // One message with some of everything.
    static Message rich_rule()
    {
        const std::array<uint8_t, 80> range = {1, 2, 3};
        const std::array<uint8_t, 4> data = {0, 0, 0, 1};
        const std::array<uint8_t, 2> vid = {0x10, 0x64};
        const std::array<uint8_t, 2> vid_mask = {0x1f, 0xff};
        const std::array<uint8_t, 16> ipv6 = {0x20, 1};
        std::vector<uint32_t> indexes(70, 5);
        return build::flow_mod(
            {.match = build::match(
                 {build::oxm32(OFPXMT_IN_PORT, 1), build::oxm64(OFPXMT_METADATA, 1, 0xff),
                  build::oxm16(OFPXMT_VLAN_VID, 0x1064, 0x1fff), build::oxm8(OFPXMT_VLAN_PCP, 3),
                  build::oxm16(OFPXMT_ETH_TYPE, 0x86dd), build::oxm8(OFPXMT_IP_PROTO, 58),
                  build::oxm_bytes(OFPXMC_OPENFLOW_BASIC, OFPXMT_IPV6_SRC, ipv6, ipv6),
                  build::oxm8(OFPXMT_ICMPV6_TYPE, 135),
                  build::private_field(PRIVATE_IP_RANGE, range), build::interfaces(indexes),
                  build::private_field(PRIVATE_CVLAN_VID, vid, vid_mask), build::item(37, data),
                  build::item(64, data)}),
             .instructions = build::write_actions(
                 {build::output(1), build::group_action(1), build::experimenter_action(0, 24)})});
    }

    void SetUp() override
    {
        SwitchTest::SetUp();
        ASSERT_FALSE(send_group(build::group_mod(OFPGC_ADD, OFPGT_ALL, 1, {build::bucket(1)})));
    }

    // An exact copy on the heap: a read beyond it is seen by AddressSanitizer.
    std::optional<Error> send_copy(const Message &message)
    {
        const std::unique_ptr<uint8_t[]> copy(new uint8_t[message.size()]);
        std::copy(message.begin(), message.end(), copy.get());
        const std::span<const uint8_t> bytes(copy.get(), message.size());
        return message.size() > 1 && message[1] == OFPT_GROUP_MOD ? switch_.group_mod(CLIENT, bytes)
                                                                  : switch_.flow_mod(CLIENT, bytes);
    }
};

TEST_F(CorruptTest, ARuleWithEverythingIsGood)
{
    EXPECT_FALSE(send_copy(rich_rule()));
    EXPECT_EQ(rules(), 1U);
}

TEST_F(CorruptTest, AMessageCutShortAnywhereIsRefused)
{
    const Message rule = rich_rule();
    const Match match = *parse_match(Bytes(rule).subspan(FLOW_MOD_SIZE));
    const size_t end_of_match = FLOW_MOD_SIZE + match.bytes.size();
    for (size_t size = 0; size < rule.size(); size++) {
        Message part(rule.begin(), rule.begin() + static_cast<long>(size));
        EXPECT_TRUE(send_copy(part)) << size;
        if (size >= HEADER_SIZE) {
            store(&part[2], static_cast<uint16_t>(size));
            // A rule without instructions is a rule.
            EXPECT_EQ(send_copy(part).has_value(), size != end_of_match) << size;
        }
    }
}

TEST_F(CorruptTest, AMatchCutShortAnywhereIsRefusedOrASmallerMatch)
{
    const Message rule = rich_rule();
    const size_t whole = load16(&rule[FLOW_MOD_SIZE + 2]);
    for (size_t size = 0; size < whole; size++) {
        Message part = rule;
        store(&part[FLOW_MOD_SIZE + 2], static_cast<uint16_t>(size));
        EXPECT_TRUE(send_copy(part)) << size; // what is cut off is no instruction
        // With the rest moved up, cuts between entries are good matches.
        part.assign(rule.begin(), rule.begin() + static_cast<long>(FLOW_MOD_SIZE + size));
        part.resize((part.size() + 7) / 8 * 8);
        if (part.size() < FLOW_MOD_SIZE + 8) {
            continue;
        }
        store(&part[FLOW_MOD_SIZE + 2], static_cast<uint16_t>(size));
        store(&part[2], static_cast<uint16_t>(part.size()));
        const auto error = send_copy(part);
        EXPECT_TRUE(!error || error->type == OFPET_BAD_MATCH || error == OVERLAP) << size;
    }
}

TEST_F(CorruptTest, RandomDamageNeverDoesMore)
{
    std::mt19937 random(99);
    const auto below = [&random](size_t bound) { return static_cast<size_t>(random() % bound); };
    const std::array<Message, 4> originals = {
        rich_rule(), build::flow_mod({.match = build::five_tuple(1, 2, 3, 4)}),
        build::flow_mod({.command = OFPFC_DELETE_STRICT, .match = build::five_tuple(1, 2, 3, 4)}),
        build::group_mod(OFPGC_ADD, OFPGT_FF, 3, {build::bucket(1), build::bucket(2)})};
    uint64_t applied = 0;
    uint64_t refused = 0;
    for (int i = 0; i < 40'000; i++) {
        Message message = originals[below(originals.size())];
        for (size_t damage = 1 + below(3); damage > 0; damage--) {
            // Not the command: a match that became empty would delete all that is there.
            size_t at = below(message.size());
            at = at == 25 ? 24 : at;
            message[at] =
                static_cast<uint8_t>(below(2) != 0 ? random() : message[at] ^ 1 << below(8));
        }
        send_copy(message) ? refused++ : applied++;
    }
    EXPECT_GT(applied, 1000U);
    EXPECT_GT(refused, 10'000U);
    uint32_t seen = 0;
    for (uint8_t table = 0; table < OFPTT_ALL; table++) {
        for (const uint32_t id : ids(CLIENT, table)) {
            seen += switch_.rule(CLIENT, table, id)->match.size() >= 8 ? 1U : 0U;
        }
    }
    EXPECT_GT(seen, 100U);
    ASSERT_FALSE(send({.command = OFPFC_DELETE, .table = OFPTT_ALL}));
    for (uint8_t table = 0; table < OFPTT_ALL; table++) {
        EXPECT_EQ(rules(CLIENT, table), 0U);
    }
}

TEST_F(CorruptTest, PureNoiseIsRefused)
{
    std::mt19937 random(3);
    for (int i = 0; i < 20'000; i++) {
        Message message(random() % 200);
        for (uint8_t &byte : message) {
            byte = static_cast<uint8_t>(random());
        }
        EXPECT_TRUE(send_copy(message));
    }
}

} // namespace
