#include <gtest/gtest.h>

#include "agent/config/row_store.h"
#include "config/stored_value.h"

namespace agent::test {
namespace {

std::string why_not(const std::vector<StoredRow> &rows)
{
    Instances instances;
    GlobalConfig global;
    return read_rows(rows, instances, global);
}

Instances read(const std::vector<StoredRow> &rows)
{
    Instances instances;
    GlobalConfig global;
    EXPECT_EQ(read_rows(rows, instances, global), "");
    return instances;
}

TEST(Schema, NamesEachMemberByItsPath)
{
    InstanceConfig before = new_instance(5);
    before.controllers[3].auxiliaries[1];
    InstanceConfig after = before;
    after.echo_interval = 15;
    after.controllers[3].port = 6653;
    after.controllers[3].auxiliaries[1].vrf = "mgmt";
    after.tables.push_back({.table_id = 10, .reserved_1 = {}, .kind = 2});
    after.bound_ports[7] = 1;
    after.in_band_vlans.set(1).set(2).set(3).set(20).set(4094);
    std::vector<StoredRow> rows;
    add_changes(5, &before, &after, rows);
    EXPECT_EQ(rows, (std::vector<StoredRow>{
                        {"instance/5/table/10", 2},
                        {"instance/5/controller/3/port", 6653},
                        {"instance/5/controller/3/auxiliary/1/vrf", "mgmt"},
                        {"instance/5/echo-interval", 15},
                        {"instance/5/in-band-vlans", "1-3,20,4094"},
                        {"instance/5/bound-port/7", 1},
                    }));
}

TEST(Schema, RemovesWhatIsGoneWithAllBelowIt)
{
    InstanceConfig before = new_instance(5);
    before.controllers[3].auxiliaries[1];
    before.bound_ports[7] = 1;
    before.datapath_id = 9;
    before.analysis.emplace();
    std::vector<StoredRow> rows;
    const InstanceConfig after = new_instance(5);
    add_changes(5, &before, &after, rows);
    EXPECT_EQ(rows, (std::vector<StoredRow>{
                        {"instance/5/datapath-id", std::monostate{}},
                        {"instance/5/controller/3/", std::monostate{}},
                        {"instance/5/bound-port/7", std::monostate{}},
                        {"instance/5/analysis/", std::monostate{}},
                    }));
    rows.clear();
    add_changes(5, &before, nullptr, rows);
    EXPECT_EQ(rows, (std::vector<StoredRow>{{"instance/5/", std::monostate{}}}));
    rows.clear();
    add_changes(5, nullptr, nullptr, rows);
    EXPECT_TRUE(rows.empty());
}

TEST(Schema, ReadsElementsThatHaveNothingButInitialValues)
{
    InstanceConfig instance = new_instance(5);
    instance.controllers[0];
    instance.payload.emplace();
    std::vector<StoredRow> rows;
    add_changes(5, nullptr, &instance, rows);
    const Instances again = read(rows);
    EXPECT_TRUE(again.at(5)->controllers.contains(0));
    EXPECT_TRUE(again.at(5)->payload.has_value());
    EXPECT_FALSE(again.at(5)->analysis.has_value());
}

TEST(Schema, ReadsTablesInTheOrderOfTheirIds)
{
    const Instances instances =
        read({{"instance/5/table/10", 1}, {"instance/5/table/200", 2}, {"instance/5/table/21", 3}});
    const auto &tables = instances.at(5)->tables;
    ASSERT_EQ(tables.size(), 3u);
    EXPECT_EQ(tables[0].table_id, 10);
    EXPECT_EQ(tables[1].table_id, 21);
    EXPECT_EQ(tables[1].kind, 3u);
    EXPECT_EQ(tables[2].table_id, 200);
}

TEST(Schema, RefusesRowsThatItDoesNotKnow)
{
    EXPECT_EQ(why_not({{"instance/5/echo-intervals", 5}}),
              "its row instance/5/echo-intervals is not known");
    for (const char *key : {"",
                            "/",
                            "instance",
                            "instance/",
                            "instance/5",
                            "instance/0/dscp",
                            "instance/65535/dscp",
                            "instance/65536/dscp",
                            "instance/x/dscp",
                            "instance/-1/dscp",
                            "instance/5/dscp/1",
                            "instance/5/controller/3",
                            "instance/5/controller/x/port",
                            "instance/5/controller/256/port",
                            "instance/5/table/255",
                            "instance/5/table/x",
                            "instance/5/table/10/kind",
                            "switch",
                            "switch/dscp",
                            "switch/debug/1",
                            "switch/debug/1-",
                            "switch/shut-down-port/x",
                            "other/ignore"}) {
        EXPECT_EQ(why_not({{key, 1}}), "its row " + std::string(key) + " is not known");
    }
}

TEST(Schema, RefusesValuesThatCannotBe)
{
    const std::vector<StoredRow> wrong = {
        {"instance/5/dscp", "10"},
        {"instance/5/dscp", -1},
        {"instance/5/dscp", int64_t{1} << 32},
        {"instance/5/qinq", 65536},
        {"instance/5/active", 2},
        {"instance/5/description", 1},
        {"instance/5/description", std::string(256, 'x')},
        {"instance/5/in-band-vlans", "0"},
        {"instance/5/in-band-vlans", "4095"},
        {"instance/5/in-band-vlans", "2-1"},
        {"instance/5/in-band-vlans", "1,"},
        {"instance/5/in-band-vlans", "1 2"},
        {"instance/5/controller/3/opaque-93", StoredBytes(62)},
        {"instance/5/controller/3/opaque-93", "text"},
        {"switch/test-debug", StoredBytes(15)},
        {"switch/shut-down-port/1", 0},
    };
    for (const StoredRow &row : wrong) {
        EXPECT_EQ(why_not({row}), "its row " + row.key + " has a value that cannot be");
    }
}

TEST(Schema, RefusesInstancesThatCannotBe)
{
    const std::string contradict = "its rows instance/5/... contradict each other";
    EXPECT_EQ(why_not({{"instance/5/filter/kind", 6}}), contradict);
    EXPECT_EQ(why_not({{"instance/5/controller/64/port", 1}}), contradict);
    EXPECT_EQ(why_not({{"instance/5/controller/3/vrf", std::string(32, 'x')}}), contradict);
    EXPECT_EQ(why_not({{"instance/5/controller/3/tls-policy", std::string(32, 'x')}}), contradict);
    EXPECT_EQ(why_not({{"instance/5/controller/3/auxiliary/0/port", 1}}), contradict);
}

TEST(StoredValue, WritesVlansAsRangesAndReadsThemBack)
{
    for (const char *text : {"", "1", "4094", "1-4094", "1-3,5,7-8"}) {
        VlanSet vlans;
        ASSERT_TRUE(from_stored(StoredValue(text), vlans)) << text;
        EXPECT_EQ(to_stored(vlans), StoredValue(text));
    }
}

TEST(StoredValue, KeepsAllBitsOfANumber)
{
    const uint64_t all = UINT64_MAX;
    uint64_t again = 0;
    ASSERT_TRUE(from_stored(to_stored(all), again));
    EXPECT_EQ(again, all);
}

} // namespace
} // namespace agent::test
