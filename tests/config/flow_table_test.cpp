#include <algorithm>
#include <cerrno>
#include <random>
#include <utility>

#include "config/setting.h"

using namespace test;

namespace {

using Tables = std::vector<OfpFlowTable>;

const Bytes head = hex("0001 0004 0000000c"
                       "0004 0004 0102 0000");

uint32_t set(Tables &tables)
{
    return OFP_set_FlowTable(0x0102, static_cast<uint32_t>(tables.size()), tables.data());
}

const std::vector<Setting> settings = {
    {"FlowTable",
     [] {
         Tables tables = {{.table_id = 5, .kind = 0x55}, {.table_id = 1, .kind = 0x11}};
         return set(tables);
     },
     head + hex("0045 0008 01 000000 00000011"
                "0045 0008 05 000000 00000055")},
    {"FlowTableOfNone", [] { return OFP_set_FlowTable(0x0102, 0, nullptr); }, head},
};

INSTANTIATE_TEST_SUITE_P(FlowTable, Setter, testing::ValuesIn(settings), name_of);

class SetFlowTable : public PlatformTest {
protected:
    SetFlowTable() { platform.reply(result_reply(OFP_RC_OK)); }
};

Bytes bytes_of_tables(const Tables &tables)
{
    return bytes_of(tables.data(), tables.size() * sizeof tables[0]);
}

// The order to be kept, in its plainest form.
void exchange_sort(Tables &tables)
{
    for (size_t i = 0; i < tables.size(); ++i) {
        for (size_t j = i + 1; j < tables.size(); ++j) {
            if (tables[j].table_id < tables[i].table_id) {
                std::swap(tables[i].table_id, tables[j].table_id);
                std::swap(tables[i].kind, tables[j].kind);
            }
        }
    }
}

Tables random_tables(std::mt19937 &random, size_t count, unsigned ids)
{
    Tables tables(count);
    for (size_t i = 0; i < count; ++i) {
        const auto mark = static_cast<uint8_t>(i);
        tables[i] = {.table_id = static_cast<uint8_t>(random() % ids),
                     .reserved_1 = {mark, 1, 2},
                     .kind = static_cast<uint32_t>(i)};
    }
    return tables;
}

} // namespace

TEST_F(SetFlowTable, SortsIdsAndKindsInPlaceAndNothingElse)
{
    Tables tables = {
        {.table_id = 5, .reserved_1 = {1, 2, 3}, .kind = 0x55},
        {.table_id = 1, .reserved_1 = {4, 5, 6}, .kind = 0x11},
        {.table_id = 3, .reserved_1 = {7, 8, 9}, .kind = 0x33},
    };
    EXPECT_EQ(set(tables), OFP_RC_OK);
    EXPECT_EQ(platform.sent, std::vector({head + hex("0045 0008 01 010203 00000011"
                                                     "0045 0008 03 040506 00000033"
                                                     "0045 0008 05 070809 00000055")}));
    EXPECT_EQ(bytes_of_tables(tables), hex("01 010203 11000000"
                                           "03 040506 33000000"
                                           "05 070809 55000000"));
}

TEST_F(SetFlowTable, KeepsEqualIdsWhereAnExchangeSortLeavesThem)
{
    Tables tables = {{.table_id = 5, .kind = 1}, {.table_id = 5, .kind = 2}, {.kind = 3}};
    EXPECT_EQ(set(tables), OFP_RC_OK);
    EXPECT_EQ(platform.sent, std::vector({head + hex("0045 0008 00 000000 00000003"
                                                     "0045 0008 05 000000 00000002"
                                                     "0045 0008 05 000000 00000001")}));
}

TEST_F(SetFlowTable, SortsAsAnExchangeSortDoes)
{
    std::mt19937 random(1);
    for (unsigned round = 0; round < 2000; ++round) {
        const unsigned ids = 1 + static_cast<unsigned>(random()) % (round % 2 ? 256 : 6);
        Tables tables = random_tables(random, random() % 70, ids);
        Tables expected = tables;
        exchange_sort(expected);
        platform = Platform();
        platform.reply(result_reply(OFP_RC_OK));
        EXPECT_EQ(set(tables), OFP_RC_OK);
        ASSERT_EQ(bytes_of_tables(tables), bytes_of_tables(expected));
    }
}

TEST_F(SetFlowTable, LeavesOutTheTablesThatDoNotFit)
{
    std::mt19937 random(2);
    Tables tables = random_tables(random, 700, 256);
    Tables expected = tables;
    exchange_sort(expected);
    EXPECT_EQ(set(tables), OFP_RC_OK);
    EXPECT_EQ(bytes_of_tables(tables), bytes_of_tables(expected));

    ASSERT_EQ(platform.sent.size(), 1u);
    const Bytes &sent = platform.sent[0];
    ASSERT_EQ(sent.size(), 8 + 8 + 681u * 12); // of 8192: four bytes are left
    EXPECT_EQ(sent.slice(0, 16), head);
    for (size_t i = 0; i < 681; ++i) {
        EXPECT_EQ(sent.u32(16 + 12 * i), 0x00450008u);
        EXPECT_EQ(sent.u8(20 + 12 * i), expected[i].table_id);
        EXPECT_EQ(sent.u32(24 + 12 * i), expected[i].kind);
    }
}

TEST_F(SetFlowTable, IsDoneInTimeHoweverManyTablesAreGiven)
{
    Tables tables(200'000);
    for (size_t i = 0; i < tables.size(); ++i)
        tables[i].table_id = static_cast<uint8_t>(255 - i * 256 / tables.size());
    EXPECT_EQ(set(tables), OFP_RC_OK);
    EXPECT_TRUE(std::ranges::is_sorted(tables, {}, &OfpFlowTable::table_id));
}

TEST_F(SetFlowTable, RefusesACountWithoutTables)
{
    EXPECT_EQ(OFP_set_FlowTable(1, 3, nullptr), OFP_RC_FAILED);
    EXPECT_TRUE(platform.calls().empty());
}

TEST_F(SetFlowTable, LeavesTheCallersTablesAloneWithoutAChannel)
{
    Tables tables = {{.table_id = 5}, {.table_id = 1}};
    platform.next("SOCK_Connect", {-1, ECONNREFUSED});
    EXPECT_EQ(set(tables), OFP_RC_FAILED);
    EXPECT_EQ(tables[0].table_id, 5);
}
