#include "daemon/option_table.h"

#include <set>

#include <gtest/gtest.h>

#include "agent/daemon/messages.h"
#include "agent/daemon/settings.h"

namespace agent::test {
namespace {

// The request for an option with this value: its record, converted as the library does.
Datagram request_for(const Option &option, uint64_t value, uint16_t id = INSTANCE)
{
    InstanceConfig instance;
    option.set(instance, value);
    alignas(8) uint8_t record[OPTION_RECORD_MAX] = {};
    option.fill(id, instance, record);
    OFP_msg_ByteSwapData(option.type, record);
    return join({head(option.message), tlv(option.type, Datagram(record, record + option.size))});
}

uint64_t value_in(const Option &option, const InstanceConfig &instance)
{
    alignas(8) uint8_t record[OPTION_RECORD_MAX] = {};
    option.fill(INSTANCE, instance, record);
    EXPECT_EQ(option.instance_of(record), INSTANCE);
    return option.value_of(record);
}

TEST(Options, EachHasAMessageATlvAndAMemberOfItsOwn)
{
    std::set<uint32_t> messages;
    std::set<uint16_t> types;
    for (const Option &option : options()) {
        EXPECT_TRUE(types.insert(option.type).second);
        EXPECT_EQ(option_of_type(option.type), &option);
        if (option.message != 0) {
            EXPECT_TRUE(messages.insert(option.message).second);
            EXPECT_EQ(option_of_message(option.message), &option);
        }
        InstanceConfig changed;
        option.set(changed, 1 - value_in(option, {}) % 2);
        size_t differences = 0;
        for (const Option &other : options()) {
            differences += value_in(other, changed) != value_in(other, {});
        }
        EXPECT_EQ(differences, 1u) << option.type;
    }
    EXPECT_EQ(option_of_message(0), nullptr);
    EXPECT_EQ(option_of_message(14), nullptr);
    EXPECT_EQ(option_of_type(1), nullptr);
}

TEST(Options, TakeTheirWholeRangeAndRefuseWhatLiesOutside)
{
    Model model;
    ask(model, SettingRequest{1, instance_filter(INSTANCE)}.datagram());
    for (const Option &option : options()) {
        if (option.message == 0) {
            continue;
        }
        for (const uint64_t value : {option.least, option.most}) {
            EXPECT_EQ(ask_one(model, request_for(option, value)), result(0)) << option.message;
            EXPECT_EQ(value_in(option, *model.instance(INSTANCE)), value) << option.message;
        }
        if (option.least > 0) {
            EXPECT_EQ(ask_one(model, request_for(option, option.least - 1)), result(BAD_VALUE));
        }
        const bool any = option.most == UINT16_MAX || option.most == UINT32_MAX;
        if (!any || option.message == OFP_MSG_SET_ECHO_TIME) {
            EXPECT_EQ(ask_one(model, request_for(option, option.most + 1)), result(BAD_VALUE))
                << option.message;
        }
        EXPECT_EQ(value_in(option, *model.instance(INSTANCE)), option.most);
    }
}

TEST(Options, AreReadAsTheyTravel)
{
    Model model;
    for (const SettingRequest &request : setting_requests()) {
        ask(model, request.datagram());
    }
    const InstanceConfig &instance = *model.instance(INSTANCE);
    EXPECT_EQ(instance.echo_interval, 15u);
    EXPECT_EQ(instance.reconnect_interval, 30u);
    EXPECT_EQ(instance.connection_mode, CONNECT_SINGLE);
    EXPECT_EQ(instance.fail_mode, FAIL_STANDALONE);
    EXPECT_EQ(instance.dscp, 46u);
    EXPECT_EQ(instance.nonstop_routing, 1);
    EXPECT_EQ(instance.flow_entry_limit, 1000u);
    EXPECT_EQ(instance.miss_mode, MISS_PERMIT);
    EXPECT_EQ(instance.flow_log_disabled, 1);
    EXPECT_EQ(instance.packet_filter, 9u);
    EXPECT_EQ(instance.flow_monitor_interval, 60u);
    EXPECT_EQ(instance.flow_monitor_threshold, 1000u);
    EXPECT_EQ(instance.qinq, 1);
    EXPECT_EQ(instance.mac_learning, 0);
    EXPECT_EQ(instance.dynamic_mac_aware, 1);
    EXPECT_EQ(instance.forbidden_ports, 6u);
    EXPECT_EQ(instance.permitted_port_types, 3u);
    EXPECT_EQ(instance.loop_protection, 1);
    EXPECT_EQ(instance.data_plane_mode, 2);
    EXPECT_EQ(instance.ttp_mode, 1);
    EXPECT_EQ(instance.smart_groups, 1);
    EXPECT_EQ(instance.traps, 15u);
}

} // namespace
} // namespace agent::test
