#include <gtest/gtest.h>

#include "agent/config/row_store.h"

namespace agent::test {
namespace {

constexpr uint16_t CLIENT = 4097;

InstanceConfig described(uint16_t id, const char *text)
{
    InstanceConfig instance = new_instance(id);
    instance.description = text;
    return instance;
}

TEST(Configuration, ShowsWhatIsStagedOnlyToThoseThatBuildOnIt)
{
    Configuration configuration;
    configuration.stage(5, described(5, "one"));
    EXPECT_EQ(configuration.instance(5), nullptr);
    ASSERT_NE(configuration.staged(5), nullptr);
    EXPECT_TRUE(configuration.is_staged());
    EXPECT_TRUE(configuration.commit());
    ASSERT_NE(configuration.instance(5), nullptr);
    EXPECT_EQ(configuration.instance(5)->description, "one");
    EXPECT_FALSE(configuration.is_staged());

    configuration.stage_removal(5);
    EXPECT_NE(configuration.instance(5), nullptr);
    EXPECT_EQ(configuration.staged(5), nullptr);
    EXPECT_TRUE(configuration.commit());
    EXPECT_EQ(configuration.instance(5), nullptr);
}

TEST(Configuration, StoresAllThatWasStagedInOneTransaction)
{
    Rows rows;
    Configuration configuration;
    ASSERT_EQ(attach(configuration, rows), "");
    configuration.stage(5, described(5, "one"));
    configuration.stage(6, described(6, "two"));
    configuration.stage(GlobalConfig{.ignore = 3});
    EXPECT_TRUE(configuration.commit());
    EXPECT_EQ(rows.writes, 1u);
    EXPECT_EQ(rows.held["instance/5/description"], StoredValue("one"));
    EXPECT_EQ(rows.held["instance/6/description"], StoredValue("two"));
    EXPECT_EQ(rows.held["switch/ignore"], StoredValue(3));
}

TEST(Configuration, StoresOnlyWhatChanged)
{
    Rows rows;
    Configuration configuration;
    ASSERT_EQ(attach(configuration, rows), "");
    configuration.stage(5, described(5, "one"));
    ASSERT_TRUE(configuration.commit());
    rows.held.clear();
    configuration.stage(5, described(5, "two"));
    ASSERT_TRUE(configuration.commit());
    EXPECT_EQ(rows.held, (std::map<std::string, StoredValue>{{"instance/5/description", "two"}}));
    configuration.stage(5, described(5, "two"));
    ASSERT_TRUE(configuration.commit());
    EXPECT_EQ(rows.writes, 2u); // nothing to store
}

TEST(Configuration, IsAsItWasWhenStoringFails)
{
    Rows rows;
    Configuration configuration;
    ASSERT_EQ(attach(configuration, rows), "");
    configuration.stage(5, described(5, "one"));
    ASSERT_TRUE(configuration.commit());
    rows.fails = true;
    configuration.stage(5, described(5, "two"));
    configuration.stage(6, described(6, "new"));
    configuration.stage(GlobalConfig{.ignore = 3});
    EXPECT_FALSE(configuration.commit());
    EXPECT_STREQ(configuration.failure(), "the disk is full");
    EXPECT_EQ(configuration.instance(5)->description, "one");
    EXPECT_EQ(configuration.instance(6), nullptr);
    EXPECT_EQ(configuration.global().ignore, 0);
    EXPECT_FALSE(configuration.is_staged());
    EXPECT_EQ(configuration.staged(5)->description, "one");

    rows.fails = false;
    configuration.stage(5, described(5, "three"));
    EXPECT_TRUE(configuration.commit());
    EXPECT_EQ(rows.held["instance/5/description"], StoredValue("three"));
}

TEST(Configuration, IsThereAgainWithItsStore)
{
    Rows rows;
    {
        Configuration configuration;
        ASSERT_EQ(attach(configuration, rows), "");
        configuration.stage(5, described(5, "one"));
        configuration.stage(GlobalConfig{.ignore = 3});
        ASSERT_TRUE(configuration.commit());
    }
    Configuration again;
    ASSERT_EQ(attach(again, rows), "");
    ASSERT_NE(again.instance(5), nullptr);
    EXPECT_EQ(again.instance(5)->description, "one");
    EXPECT_EQ(again.instance(5)->filter.instance_id, 5);
    EXPECT_EQ(again.global().ignore, 3);
}

TEST(Configuration, OfAClientIsStoredOnceSomethingOfItIsConfigured)
{
    Rows rows;
    Configuration configuration;
    ASSERT_EQ(attach(configuration, rows), "");
    configuration.admit_client(CLIENT);
    ASSERT_NE(configuration.instance(CLIENT), nullptr);
    EXPECT_NE(configuration.instance(CLIENT)->table(CLIENT_TABLE), nullptr);
    EXPECT_TRUE(rows.held.empty());

    configuration.stage(CLIENT, described(CLIENT, "one"));
    ASSERT_TRUE(configuration.commit());
    EXPECT_EQ(rows.held["instance/4097/table/200"], StoredValue(2));
    Configuration again;
    ASSERT_EQ(attach(again, rows), "");
    EXPECT_NE(again.instance(CLIENT), nullptr);

    configuration.stage(CLIENT, new_instance(CLIENT)); // all is taken away again
    ASSERT_TRUE(configuration.commit());
    EXPECT_TRUE(rows.held.empty());
    EXPECT_NE(configuration.instance(CLIENT), nullptr);
    configuration.stage(CLIENT, described(CLIENT, "two"));
    ASSERT_TRUE(configuration.commit());
    EXPECT_EQ(rows.held["instance/4097/table/200"], StoredValue(2));
}

TEST(Configuration, TakesTheDatapathIdFromTheBridgeAddressUnlessOneIsSet)
{
    Configuration configuration;
    EXPECT_EQ(configuration.datapath_id(5), OFP_util_DefaultPathID(5));
    InstanceConfig instance = new_instance(5);
    instance.datapath_id = 0xabcdef;
    configuration.stage(5, instance);
    ASSERT_TRUE(configuration.commit());
    EXPECT_EQ(configuration.datapath_id(5), 0xabcdefu);
}

TEST(Configuration, KnowsTheInstanceOfAPortAsStoredAndAsStaged)
{
    Configuration configuration;
    InstanceConfig instance = new_instance(5);
    instance.bound_ports[7] = 0;
    configuration.stage(5, instance);
    EXPECT_EQ(configuration.instance_of_port(7), std::nullopt);
    EXPECT_EQ(configuration.staged_instance_of_port(7), 5);
    ASSERT_TRUE(configuration.commit());
    EXPECT_EQ(configuration.instance_of_port(7), 5);
    configuration.stage(5, new_instance(5));
    EXPECT_EQ(configuration.instance_of_port(7), 5);
    EXPECT_EQ(configuration.staged_instance_of_port(7), std::nullopt);
}

struct Recorder : ConfigurationObserver {
    void instance_changed(uint16_t id, const InstanceConfig *before,
                          const InstanceConfig *after) noexcept override
    {
        told.push_back(std::to_string(id) + ':' + (before ? before->description : "none") + '>' +
                       (after ? after->description : "none"));
    }
    void global_changed(const GlobalConfig &before, const GlobalConfig &after) noexcept override
    {
        told.push_back(std::to_string(before.ignore) + '>' + std::to_string(after.ignore));
    }
    void counters_reset(uint16_t instance, uint8_t controller) noexcept override
    {
        told.push_back("reset " + std::to_string(instance) + ' ' + std::to_string(controller));
    }

    std::vector<std::string> told;
};

TEST(Configuration, TellsItsObserversOfWhatWasStoredAndOfNothingElse)
{
    Rows rows;
    Configuration configuration;
    Recorder recorder;
    ASSERT_EQ(attach(configuration, rows), "");
    configuration.add_observer(recorder);
    configuration.stage(6, described(6, "six"));
    configuration.stage(5, described(5, "five"));
    configuration.stage(GlobalConfig{.ignore = 3});
    EXPECT_TRUE(recorder.told.empty());
    ASSERT_TRUE(configuration.commit());
    EXPECT_EQ(recorder.told, (std::vector<std::string>{"5:none>five", "6:none>six", "0>3"}));

    recorder.told.clear();
    rows.fails = true;
    configuration.stage(5, described(5, "other"));
    ASSERT_FALSE(configuration.commit());
    EXPECT_TRUE(recorder.told.empty());

    rows.fails = false;
    configuration.stage_removal(5);
    ASSERT_TRUE(configuration.commit());
    configuration.reset_counters(6, 64);
    configuration.remove_observer(recorder);
    configuration.stage_removal(6);
    ASSERT_TRUE(configuration.commit());
    EXPECT_EQ(recorder.told, (std::vector<std::string>{"5:five>none", "reset 6 64"}));
}

} // namespace
} // namespace agent::test
