#include "query/query_case.h"

using namespace test;

namespace {

class SummaryQuery : public PlatformTest {
protected:
    SummaryQuery() { OFP_get_InitSummary(&list); }
    ~SummaryQuery() override { OFP_get_FiniSummary(&list); }

    OfpSummaryList list;
};

const Bytes request = message(0x10000017);

Bytes count_of(uint32_t count)
{
    Bytes value(4);
    for (size_t i = 0; i < 4; ++i)
        value[i] = static_cast<uint8_t>(count >> (24 - 8 * i));
    return message(0x20000018, {tlv(111, value)});
}

// An entry, numbered.
Bytes entry(uint8_t n) { return tlv(112, Bytes({0, 0, 0, 0, 0, 0, 0, n}) + counting(16)); }

Bytes entries(std::initializer_list<Bytes> tlvs) { return message(0x20000019, tlvs); }

std::vector<uint64_t> numbers(const OfpSummaryList &summaries)
{
    std::vector<uint64_t> found;
    for (auto element : elements_of<OfpSummaryElement>(summaries.link))
        found.push_back(element->summary.value_u64_0);
    return found;
}

} // namespace

TEST_F(SummaryQuery, TakesDatagramsUntilTheListHoldsTheTotal)
{
    platform.reply(count_of(3));
    platform.reply(entries({entry(1), entry(2)}));
    platform.reply(entries({entry(3)}));
    platform.reply(entries({entry(4)}));
    EXPECT_EQ(OFP_get_Summary(&list), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({request}));
    EXPECT_EQ(platform.sockets_opened, 1u);
    EXPECT_EQ(platform.unread(), 1u);
    EXPECT_EQ(list.count, 3u);
    EXPECT_EQ(numbers(list), std::vector<uint64_t>({1, 2, 3}));
    auto first = elements_of<OfpSummaryElement>(list.link)[0];
    EXPECT_EQ(bytes_of(first->summary),
              hex("0100000000000000 04030201 08070605 0a09 0c0b 0e0d 0f10"));
}

TEST_F(SummaryQuery, TakesAllOfADatagramAndSkipsOtherValues)
{
    platform.reply(count_of(1));
    platform.reply(entries({tlv(111, Bytes(4)), entry(1), tlv(999, {}), entry(2)}));
    EXPECT_EQ(OFP_get_Summary(&list), uint32_t{OFP_RC_OK});
    EXPECT_EQ(numbers(list), std::vector<uint64_t>({1, 2}));
    EXPECT_EQ(list.count, 2u);
}

TEST_F(SummaryQuery, AsksForNoDatagramWhenThereIsNothingToCome)
{
    for (const Bytes &reply :
         {count_of(0), result_reply(0), message(0x20000018), entries({entry(1)})}) {
        platform.reply(reply);
        EXPECT_EQ(OFP_get_Summary(&list), uint32_t{OFP_RC_OK});
    }
    EXPECT_EQ(platform.calls("SOCK_Recv").size(), 4u);
    EXPECT_TRUE(empty_both_ways(list.link));
}

TEST_F(SummaryQuery, CountsWhatTheListHeldAlready)
{
    list.count = 2;
    platform.reply(count_of(3));
    platform.reply(entries({entry(1)}));
    EXPECT_EQ(OFP_get_Summary(&list), uint32_t{OFP_RC_OK});
    EXPECT_EQ(list.count, 3u);
    EXPECT_EQ(numbers(list), std::vector<uint64_t>({1}));

    list.count = 9;
    platform.reply(count_of(3));
    EXPECT_EQ(OFP_get_Summary(&list), uint32_t{OFP_RC_OK});
    EXPECT_EQ(list.count, 9u);
    EXPECT_EQ(numbers(list), std::vector<uint64_t>({1}));
}

TEST_F(SummaryQuery, AForeignDatagramEndsItAndKeepsTheEntries)
{
    for (const Bytes &reply : {message(0x20000018, {entry(9)}), entries({}), result_reply(0),
                               entry(9), message(0x20000019) + hex("0070 0018 00")}) {
        platform.reply(count_of(3));
        platform.reply(entries({entry(1)}));
        platform.reply(reply);
        OFP_get_FiniSummary(&list);
        list.count = 0;
        EXPECT_EQ(OFP_get_Summary(&list), uint32_t{OFP_RC_FAILED});
        EXPECT_EQ(numbers(list), std::vector<uint64_t>({1}));
        EXPECT_EQ(list.count, 1u);
    }
}

TEST_F(SummaryQuery, AResultCodeOrSilenceEndsItAndKeepsTheEntries)
{
    platform.reply(count_of(3));
    platform.reply(entries({entry(1)}));
    platform.reply(result_reply(0x77));
    EXPECT_EQ(OFP_get_Summary(&list), 0x77u);
    platform.reply(count_of(3));
    platform.reply(entries({entry(2)}));
    EXPECT_EQ(OFP_get_Summary(&list), uint32_t{OFP_RC_NO_REPLY});
    EXPECT_EQ(numbers(list), std::vector<uint64_t>({1, 2}));
    EXPECT_EQ(list.count, 2u);
}

TEST_F(SummaryQuery, ShortMemoryKeepsTheEntriesBefore)
{
    platform.reply(count_of(3));
    platform.reply(entries({entry(1), entry(2), entry(3)}));
    memory::fail_at(3);
    EXPECT_EQ(OFP_get_Summary(&list), uint32_t{OFP_RC_NO_RESOURCE});
    EXPECT_EQ(numbers(list), std::vector<uint64_t>({1, 2}));
    EXPECT_EQ(list.count, 2u);
}

TEST_F(SummaryQuery, DatagramsThatBringNothingAreNotTakenForEver)
{
    platform.reply(count_of(2));
    for (int i = 0; i < 15; ++i)
        platform.reply(entries({tlv(999, {})}));
    platform.reply(entries({entry(1)}));
    for (int i = 0; i < 20; ++i)
        platform.reply(entries({tlv(999, {})}));
    EXPECT_EQ(OFP_get_Summary(&list), uint32_t{OFP_RC_FAILED});
    EXPECT_EQ(platform.unread(), 4u); // the sixteenth in a row was the last
    EXPECT_EQ(numbers(list), std::vector<uint64_t>({1}));
}

TEST_F(SummaryQuery, BehavesLikeAnyQuery)
{
    const QueryCase query{
        .answers = {{request, {count_of(3), entries({entry(1)}), entries({entry(2), entry(3)})}}},
        .run =
            [] {
                OfpSummaryList found;
                OFP_get_InitSummary(&found);
                const uint32_t code = OFP_get_Summary(&found);
                EXPECT_EQ(numbers(found).size(), found.count);
                OFP_get_FiniSummary(&found);
                return code;
            },
        .codes = query_codes({{"malloc", OFP_RC_NO_RESOURCE}}),
        .any_code = false};
    expect_common_behaviour(query);
    expect_truncations_survived(query, {OFP_RC_OK, OFP_RC_FAILED, OFP_RC_NO_REPLY});
}
