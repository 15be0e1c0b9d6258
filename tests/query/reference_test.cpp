#include <algorithm>
#include <ctime>

#include "query/query_case.h"

using namespace test;

namespace {

class ReferenceQuery : public PlatformTest {
protected:
    ReferenceQuery() : array(OFP_RULE_REF_TABLES) { OFP_get_InitRuleRefAR(array.data()); }
    ~ReferenceQuery() override { OFP_get_FiniRuleRefAR(array.data()); }

    std::vector<OfpLink> array;
    uint32_t total = 0xee;
};

Bytes word(uint32_t value)
{
    return {uint8_t(value >> 24), uint8_t(value >> 16), uint8_t(value >> 8), uint8_t(value)};
}

struct Rule {
    uint32_t id;
    uint8_t table;
    bool operator==(const Rule &) const = default;
};

// A reply with one TLV 101 a rule.
Bytes reply(const std::vector<Rule> &rules)
{
    Bytes datagram = message(0x20000017);
    for (const Rule &rule : rules)
        datagram += tlv(101, word(rule.id) + Bytes({rule.table, 0, 0, 0}));
    return datagram;
}

// The request that goes on from a rule.
Bytes group_request(Rule last)
{
    return message(0x10000016, {tlv(100, hex("01020304") + word(last.id) +
                                             Bytes({0x10, 0x01, last.table, 0, 0, 0, 0, 0}))});
}
Bytes meter_request(Rule last)
{
    return message(0x1000001b, {tlv(119, hex("01020304") + word(last.id) +
                                             Bytes({0x10, 0x01, last.table, 0}))});
}
constexpr Rule start = {0, 255};

struct Row {
    Bytes (*request)(Rule);
    uint32_t (*query)(uint16_t, uint32_t, OfpLink *, uint32_t *);
};
const Row rows[] = {{group_request, OFP_get_GroupRefRule}, {meter_request, OFP_get_MeterRefRule}};

std::vector<uint32_t> rules_of(const OfpLink &list, uint8_t table)
{
    std::vector<uint32_t> rules;
    for (auto element : elements_of<OfpRuleRefElement>(list)) {
        EXPECT_EQ(element->table_id, table);
        EXPECT_EQ(bytes_of(element->reserved), Bytes(3));
        rules.push_back(element->rule_id);
    }
    return rules;
}

size_t count_of(const std::vector<OfpLink> &array)
{
    size_t count = 0;
    for (const OfpLink &list : array)
        count += elements_of<OfpRuleRefElement>(list).size();
    return count;
}

} // namespace

TEST_F(ReferenceQuery, NoReferencesEndWithTheMarkAndATotalOfZero)
{
    for (const Row &row : rows) {
        platform = Platform();
        platform.reply(reply({}));
        total = 0xee;
        EXPECT_EQ(row.query(0x1001, 0x01020304, array.data(), &total), 255u);
        EXPECT_EQ(total, 0u);
        EXPECT_EQ(platform.sent, std::vector({row.request(start)}));
        EXPECT_EQ(count_of(array), 0u);
    }
}

TEST_F(ReferenceQuery, AsksAgainFromTheLastReferenceOnAFreshChannel)
{
    for (const Row &row : rows) {
        platform = Platform();
        script({{row.request(start), {reply({{5, 1}, {7, 3}, {6, 1}})}},
                {row.request({6, 1}), {reply({{9, 254}})}},
                {row.request({9, 254}), {reply({})}}});
        EXPECT_EQ(row.query(0x1001, 0x01020304, array.data(), &total), uint32_t{OFP_REF_RULE_END});
        EXPECT_EQ(platform.sent,
                  std::vector({row.request(start), row.request({6, 1}), row.request({9, 254})}));
        EXPECT_EQ(platform.sockets_opened, 3u);
        EXPECT_EQ(total, 4u);
        EXPECT_EQ(rules_of(array[1], 1), std::vector<uint32_t>({5, 6}));
        EXPECT_EQ(rules_of(array[3], 3), std::vector<uint32_t>({7}));
        EXPECT_EQ(rules_of(array[254], 254), std::vector<uint32_t>({9}));
        OFP_get_FiniRuleRefAR(array.data());
    }
}

TEST_F(ReferenceQuery, ALastRuleZeroEndsItWithoutBeingCounted)
{
    script({{group_request(start), {reply({{5, 1}, {6, 1}})}},
            {group_request({6, 1}), {reply({{8, 2}, {0, 2}})}}});
    EXPECT_EQ(OFP_get_GroupRefRule(0x1001, 0x01020304, array.data(), &total), uint32_t{OFP_RC_OK});
    EXPECT_EQ(total, 2u);
    EXPECT_EQ(rules_of(array[2], 2), std::vector<uint32_t>({0, 8}));
}

TEST_F(ReferenceQuery, ARuleZeroThatIsNotTheLastGoesOn)
{
    script(
        {{group_request(start), {reply({{0, 1}, {6, 1}})}}, {group_request({6, 1}), {reply({})}}});
    EXPECT_EQ(OFP_get_GroupRefRule(0x1001, 0x01020304, array.data(), &total),
              uint32_t{OFP_REF_RULE_END});
    EXPECT_EQ(total, 2u);
}

TEST_F(ReferenceQuery, ATableThatIsNoneFailsAtOnceAndWritesNothing)
{
    script({{group_request(start), {reply({{5, 1}})}},
            {group_request({5, 1}), {reply({{6, 1}, {7, 255}, {8, 1}})}}});
    EXPECT_EQ(OFP_get_GroupRefRule(0x1001, 0x01020304, array.data(), &total),
              uint32_t{OFP_RC_FAILED});
    EXPECT_EQ(total, 1u);
    EXPECT_EQ(rules_of(array[1], 1), std::vector<uint32_t>({5, 6})); // what came before it stays
    EXPECT_EQ(platform.sent.size(), 2u);
}

TEST_F(ReferenceQuery, RulesAreSortedAndEqualOnesKeepTheirOrder)
{
    platform.reply(
        reply({{5, 7}, {3, 7}, {9, 7}, {4, 7}, {1, 7}, {0xffffffff, 7}, {9, 7}, {3, 7}}));
    platform.reply(reply({{3, 7}, {0, 7}}));
    EXPECT_EQ(OFP_get_GroupRefRule(1, 2, array.data(), &total), uint32_t{OFP_RC_OK});
    EXPECT_EQ(rules_of(array[7], 7),
              std::vector<uint32_t>({0, 1, 3, 3, 3, 4, 5, 9, 9, 0xffffffff}));
    EXPECT_EQ(total, 8u);
}

TEST_F(ReferenceQuery, EqualReferencesAreBothKeptInOrderOfArrival)
{
    platform.reply(reply({{5, 7}}));
    EXPECT_EQ(OFP_get_GroupRefRule(1, 2, array.data(), &total), uint32_t{OFP_RC_NO_REPLY});
    const OfpLink *first = array[7].next;
    platform.reply(reply({{5, 7}, {0, 1}}));
    EXPECT_EQ(OFP_get_GroupRefRule(1, 2, array.data(), &total), uint32_t{OFP_RC_OK});
    EXPECT_EQ(rules_of(array[7], 7), std::vector<uint32_t>({5, 5}));
    EXPECT_EQ(array[7].next, first);

    platform.reply(reply({{9, 7}, {5, 7}, {0, 1}})); // also in front of a greater one
    EXPECT_EQ(OFP_get_GroupRefRule(1, 2, array.data(), &total), uint32_t{OFP_RC_OK});
    EXPECT_EQ(rules_of(array[7], 7), std::vector<uint32_t>({5, 5, 5, 9}));
    EXPECT_EQ(array[7].next, first);
}

TEST_F(ReferenceQuery, OtherValuesAreSkippedAndTheHeadIsNotNeeded)
{
    platform.reply(message(0x20000099,
                           {tlv(97, Bytes(8)), tlv(101, hex("00000005 01 000000")), tlv(999, {})}));
    platform.reply(tlv(101, hex("00000006 01 000000")));
    platform.reply(reply({}));
    EXPECT_EQ(OFP_get_GroupRefRule(1, 2, array.data(), &total), uint32_t{OFP_REF_RULE_END});
    EXPECT_EQ(rules_of(array[1], 1), std::vector<uint32_t>({5, 6}));
    EXPECT_EQ(total, 2u);
}

TEST_F(ReferenceQuery, AResultReplyEndsItWithItsCode)
{
    for (uint32_t code : {0u, 0x77u}) {
        total = 0xee;
        platform.reply(result_reply(code));
        EXPECT_EQ(OFP_get_GroupRefRule(1, 2, array.data(), &total), code);
        EXPECT_EQ(total, 0u);
        platform.reply(reply({{5, 1}}));
        platform.reply(result_reply(code));
        EXPECT_EQ(OFP_get_MeterRefRule(1, 2, array.data(), &total), code);
        EXPECT_EQ(total, 1u);
    }
    EXPECT_EQ(rules_of(array[1], 1), std::vector<uint32_t>({5, 5}));
}

TEST_F(ReferenceQuery, TheTotalIsWrittenOnEveryPath)
{
    for (const Row &row : rows) {
        total = 0xee;
        EXPECT_EQ(row.query(1, 2, array.data(), &total), uint32_t{OFP_RC_NO_REPLY});
        EXPECT_EQ(total, 0u);
        total = 0xee;
        platform.daemon_runs(false);
        EXPECT_EQ(row.query(1, 2, array.data(), &total), uint32_t{OFP_RC_DAEMON_DOWN});
        EXPECT_EQ(total, 0u);
        platform.daemon_runs(true);
    }
}

TEST_F(ReferenceQuery, ShortMemoryKeepsTheReferencesBefore)
{
    platform.reply(reply({{5, 1}, {6, 1}, {7, 1}}));
    memory::fail_at(3);
    EXPECT_EQ(OFP_get_GroupRefRule(1, 2, array.data(), &total), uint32_t{OFP_RC_NO_RESOURCE});
    EXPECT_EQ(rules_of(array[1], 1), std::vector<uint32_t>({5, 6}));
    EXPECT_EQ(total, 0u);
}

TEST_F(ReferenceQuery, ADaemonThatAnswersInACircleIsLeft)
{
    for (uint32_t length : {1u, 2u, 3u, 7u, 64u}) {
        uint32_t turn = 0;
        platform = Platform();
        platform.on_send = [&](const Bytes &) {
            platform.reply(reply({{1 + turn++ % length, 1}}));
        };
        EXPECT_EQ(OFP_get_GroupRefRule(1, 2, array.data(), &total), uint32_t{OFP_RC_FAILED});
        EXPECT_GE(turn, length);
        EXPECT_LE(turn, 4 * length + 2);
        EXPECT_EQ(total, turn - 1);
        EXPECT_EQ(count_of(array), turn);
        OFP_get_FiniRuleRefAR(array.data());
    }
}

TEST_F(ReferenceQuery, AnyOrderOfKeysThatLeadsOnIsFollowed)
{
    // The same rule id in another table is another place, and so is a smaller one.
    const std::vector<Rule> path = {{9, 4}, {9, 3}, {2, 3}, {1, 200}, {9, 200}, {3, 4}, {9, 2}};
    std::vector<Answer> answers;
    Rule from = start;
    for (const Rule &rule : path) {
        answers.push_back({group_request(from), {reply({rule})}});
        from = rule;
    }
    answers.push_back({group_request(from), {reply({})}});
    script(answers);
    EXPECT_EQ(OFP_get_GroupRefRule(0x1001, 0x01020304, array.data(), &total),
              uint32_t{OFP_REF_RULE_END});
    EXPECT_EQ(total, path.size());
}

TEST_F(ReferenceQuery, HundredThousandInOrderAndTenThousandAgainstItTakeNoTime)
{
    const auto read = [this](uint32_t count, auto rule_at) {
        constexpr uint32_t page = 600;
        std::vector<Bytes> pages;
        for (uint32_t at = 0; at < count; at += page) {
            Bytes datagram = message(0x20000017);
            for (uint32_t i = at; i < std::min(count, at + page); ++i)
                datagram += tlv(101, word(rule_at(i)) + Bytes(4));
            pages.push_back(datagram);
        }
        platform = Platform();
        for (const Bytes &datagram : pages)
            platform.reply(datagram);
        platform.reply(reply({}));
        const clock_t before = clock();
        EXPECT_EQ(OFP_get_GroupRefRule(1, 2, array.data(), &total), uint32_t{OFP_REF_RULE_END});
        const double seconds = double(clock() - before) / CLOCKS_PER_SEC;
        EXPECT_EQ(total, count);
        const std::vector<uint32_t> rules = rules_of(array[0], 0);
        EXPECT_EQ(rules.size(), count);
        EXPECT_TRUE(std::is_sorted(rules.begin(), rules.end()));
        OFP_get_FiniRuleRefAR(array.data());
        return seconds;
    };
    // Most of it is the recording of calls; walking the list for each would take minutes.
    EXPECT_LT(read(100'000, [](uint32_t i) { return i + 1; }), 5.0);
    EXPECT_LT(read(10'000, [](uint32_t i) { return 10'000 - i; }), 1.0);
}

TEST_F(ReferenceQuery, BehavesLikeAnyQuery)
{
    for (const Row &row : rows) {
        const QueryCase query{
            .answers = {{row.request(start), {reply({{5, 1}, {6, 2}})}},
                        {row.request({6, 2}), {reply({{4, 1}})}},
                        {row.request({4, 1}), {reply({})}}},
            .run =
                [&row] {
                    std::vector<OfpLink> lists(OFP_RULE_REF_TABLES);
                    OFP_get_InitRuleRefAR(lists.data());
                    uint32_t count;
                    const uint32_t code = row.query(0x1001, 0x01020304, lists.data(), &count);
                    EXPECT_LE(count, 3u);
                    OFP_get_FiniRuleRefAR(lists.data());
                    return code;
                },
            .success = OFP_REF_RULE_END,
            .nothing = OFP_REF_RULE_END,
            .result_zero = OFP_RC_OK,
            .codes =
                query_codes({{"malloc", OFP_RC_NO_RESOURCE}, {"SOCK_Close", OFP_REF_RULE_END}}),
            .any_head = true};
        expect_common_behaviour(query);
        expect_truncations_survived(query, {OFP_REF_RULE_END, OFP_RC_NO_REPLY});
    }
}
