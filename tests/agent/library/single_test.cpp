// Single answers: controllers, debugging, resources, and what there is none of.
#include <cstring>
#include <vector>

#include "agent/daemon/messages.h"
#include "agent/library/served_model.h"
#include "ofp.h"

namespace agent::test {
namespace {

using SingleTest = ServedModelTest;

// The records of one type in a raw answer.
template <class Record>
std::vector<Record> records(const std::vector<uint8_t> &datagram, uint64_t length, uint16_t type)
{
    std::vector<Record> found;
    for (uint64_t at = 0; at < length;) {
        uint16_t here = 0;
        uint16_t size = 0;
        void *value = nullptr;
        const uint32_t step =
            STLV_Get(&datagram[at], static_cast<uint32_t>(length - at), &here, &size, &value);
        if (step == 0) {
            ADD_FAILURE() << "a TLV is cut short";
            break;
        }
        if (here == type) {
            EXPECT_EQ(size, sizeof(Record));
            found.emplace_back();
            OFP_msg_GetByteSwapData(value, size, type, sizeof(Record), &found.back());
        }
        at += step;
    }
    return found;
}

void add_controllers(Model &model, uint8_t count)
{
    configure(model, 5, [count](InstanceConfig &instance) {
        for (uint8_t id = 0; id < count; id++) {
            Controller &controller = instance.controllers[id];
            controller.address = {ADDRESS_IPV6, {0x20, 1, 0xd, 0xb8, id}};
            controller.port = static_cast<uint16_t>(6000 + id);
            controller.role = 2;
            controller.vrf = "vrf";
            controller.tls_policy = "policy";
            controller.value_u16_26 = 26;
            controller.opaque.fill(id);
            controller.auxiliaries[1].port = 7001;
            controller.auxiliaries[255].address = {ADDRESS_IPV4, {10, 0, 0, id}};
            controller.auxiliaries[255].vrf = "aux";
        }
    });
}

class ControllerTest : public ServedModelTest {
protected:
    std::vector<uint8_t> buffer_ = std::vector<uint8_t>(OFP_DATAGRAM_SIZE);
    uint64_t length_ = 0;
};

TEST_F(ControllerTest, AreWalkedFromTheIdThatStandsForAll)
{
    serve([](Model &model) { add_controllers(model, 64); });
    std::vector<uint8_t> ids;
    OfpCtrl controller{};
    controller.controller_id = OFP_ALL_CONTROLLERS;
    while (ids.size() < 100 && OFP_get_NextCtrl(5, controller.controller_id, &controller) == 0) {
        ids.push_back(controller.controller_id);
    }
    ASSERT_EQ(ids.size(), 64U);
    EXPECT_EQ(ids[0], 0);
    EXPECT_EQ(ids[63], 63);
    EXPECT_EQ(OFP_get_NextCtrl(5, 63, &controller), NO_NEXT);
    EXPECT_EQ(controller.port, 6063);
    EXPECT_EQ(controller.state, 0U);
    EXPECT_EQ(controller.value_u32_36, 2U);
    EXPECT_STREQ(controller.text_50, "vrf");
    EXPECT_STREQ(controller.text_152, "policy");
    EXPECT_EQ(OFP_get_NextCtrl(6, 64, &controller), NO_INSTANCE);
}

TEST_F(ControllerTest, AreToldOneOrAsManyAsFit)
{
    serve([](Model &model) { add_controllers(model, 64); });
    ASSERT_EQ(OFP_get_CtrlInfo(5, 9, buffer_.size(), buffer_.data(), &length_), 0U);
    const auto one = records<OfpCtrl>(buffer_, length_, OFP_TLV_Ctrl);
    ASSERT_EQ(one.size(), 1U);
    EXPECT_EQ(one[0].controller_id, 9);
    ASSERT_EQ(OFP_get_CtrlInfo(5, 64, buffer_.size(), buffer_.data(), &length_), 0U);
    EXPECT_EQ(records<OfpCtrl>(buffer_, length_, OFP_TLV_Ctrl).size(), 41U);
    ASSERT_EQ(OFP_get_CtrlPktInfo(5, 64, buffer_.size(), buffer_.data(), &length_), 0U);
    const auto packets = records<OfpCtrlDebugInfo>(buffer_, length_, OFP_TLV_CtrlDebugInfo);
    ASSERT_EQ(packets.size(), 59U);
    EXPECT_EQ(packets[58].opaque_0, 58);
    EXPECT_EQ(OFP_get_CtrlInfo(5, 65, buffer_.size(), buffer_.data(), &length_), NO_CONTROLLER);
    EXPECT_EQ(OFP_get_CtrlInfo(6, 64, buffer_.size(), buffer_.data(), &length_), NO_INSTANCE);
}

TEST_F(ControllerTest, AreToldAsTheyWereConfigured)
{
    serve([](Model &model) { add_controllers(model, 2); });
    ASSERT_EQ(OFP_get_CtrlCfgInfo(5, 64, buffer_.size(), buffer_.data(), &length_), 0U);
    const auto controllers = records<OfpCtrlCfg>(buffer_, length_, OFP_TLV_CtrlCfg);
    ASSERT_EQ(controllers.size(), 2U);
    EXPECT_EQ(controllers[1].instance_id, 5);
    EXPECT_EQ(controllers[1].controller_id, 1);
    EXPECT_EQ(controllers[1].address_type, 10);
    const uint8_t address[16] = {0x20, 1, 0xd, 0xb8, 1};
    EXPECT_EQ(std::memcmp(controllers[1].address, address, 16), 0);
    EXPECT_EQ(controllers[1].port, 6001);
    EXPECT_EQ(controllers[1].value_u32_20, 2U);
    EXPECT_EQ(controllers[1].value_u16_26, 26);
    EXPECT_STREQ(controllers[1].text_29, "vrf");
    EXPECT_STREQ(controllers[1].text_61, "policy");
    EXPECT_EQ(controllers[1].opaque_120[35], 1);
    const auto auxiliaries = records<OfpAuxCfg>(buffer_, length_, OFP_TLV_AuxCfg);
    ASSERT_EQ(auxiliaries.size(), 4U);
    EXPECT_EQ(auxiliaries[3].controller_id, 1);
    EXPECT_EQ(auxiliaries[3].aux_id, 255);
    EXPECT_STREQ(auxiliaries[3].text_28, "aux");
}

TEST_F(ControllerTest, TellTheirAuxiliaryConnections)
{
    serve([](Model &model) { add_controllers(model, 2); });
    const auto ask = [&](uint8_t controller, uint8_t aux) {
        const OfpAuxID key{5, controller, aux};
        return OFP_get_AuxInfo(&key, buffer_.size(), buffer_.data(), &length_);
    };
    ASSERT_EQ(ask(64, 0), 0U);
    EXPECT_EQ(records<OfpAux>(buffer_, length_, OFP_TLV_Aux).size(), 4U);
    ASSERT_EQ(ask(1, 255), 0U);
    const auto keys = records<OfpAuxID>(buffer_, length_, OFP_TLV_AuxID);
    const auto states = records<OfpAux>(buffer_, length_, OFP_TLV_Aux);
    ASSERT_EQ(states.size(), 1U);
    EXPECT_EQ(keys[0].aux_id, 255);
    EXPECT_EQ(states[0].value_u16_0, 2);
    EXPECT_EQ(states[0].opaque_2[5], 1); // 10.0.0.1
    EXPECT_EQ(states[0].value_u32_40, 0U);
    EXPECT_EQ(ask(1, 7), NO_AUXILIARY);
    EXPECT_EQ(ask(2, 0), NO_CONTROLLER);
}

TEST_F(ControllerTest, TellHowTheirConnectionsStand)
{
    serve([](Model &model) {
        add_controllers(model, 2);
        ControllerState &state = model.controllers.at(5).controllers[1];
        state.state = ChannelState::connected;
        state.role = Role::slave;
        state.attempts = 7;
        state.connections = 3;
        state.lost = 2;
        state.received[14] = 100; // flow-mods
        state.received[2] = 5;    // echo requests
        state.sent[10] = 40;      // packet-ins
        state.errors = 1;
    });
    OfpCtrl controller{};
    ASSERT_EQ(OFP_get_NextCtrl(5, 0, &controller), 0U);
    EXPECT_EQ(controller.controller_id, 1);
    EXPECT_EQ(controller.state, 1U);
    EXPECT_EQ(controller.value_u32_36, 3U);
    EXPECT_EQ(controller.value_u64_0, 105U);
    EXPECT_EQ(controller.value_u64_8, 40U);
    ASSERT_EQ(OFP_get_CtrlPktInfo(5, 1, buffer_.size(), buffer_.data(), &length_), 0U);
    const auto packets = records<OfpCtrlDebugInfo>(buffer_, length_, OFP_TLV_CtrlDebugInfo);
    ASSERT_EQ(packets.size(), 1U);
    const OfpCtrlDebugInfo info = packets[0];
    EXPECT_EQ(info.opaque_0, 1);
    const uint64_t messages[13] = {105, 40, 40, 0, 100, 0, 0, 0, 5, 0, 0, 0, 1};
    EXPECT_EQ(std::memcmp(&info.value_u64_1, messages, sizeof messages), 0);
    const uint32_t connection[5] = {4, 3, 7, 3, 2};
    EXPECT_EQ(std::memcmp(&info.value_u32_105, connection, sizeof connection), 0);
    OfpSummaryList list;
    OFP_get_InitSummary(&list);
    ASSERT_EQ(OFP_get_Summary(&list), 0U);
    EXPECT_EQ(reinterpret_cast<const OfpSummaryElement *>(list.link.next)->summary.value_u32_8, 1U);
    OFP_get_FiniSummary(&list);
}

TEST_F(SingleTest, DebuggingSwitchesAreThoseOfTheirKey)
{
    serve([](Model &model) {
        GlobalConfig global;
        DebugSwitches switches{};
        switches[0] = 0x12; // byte 4 of the record
        switches[1] = 0x34;
        switches[91] = 0x56;
        global.debug[{1, 2}] = switches;
        model.configuration().stage(global);
        ASSERT_TRUE(model.configuration().commit());
    });
    OfpGlbDebug debug{.value_u16_0 = 1, .value_u16_2 = 2};
    ASSERT_EQ(OFP_get_GlbDbgInfo(&debug), 0U);
    EXPECT_EQ(debug.value_u16_4, 0x1234);
    EXPECT_EQ(debug.reserved_92[3], 0x56);
    debug = {.value_u16_0 = 1, .value_u16_2 = 3, .value_u16_4 = 9};
    ASSERT_EQ(OFP_get_GlbDbgInfo(&debug), 0U);
    EXPECT_EQ(debug.value_u16_2, 3);
    EXPECT_EQ(debug.value_u16_4, 0);
    uint64_t counters[2] = {1, 1};
    uint16_t value = 1;
    EXPECT_EQ(OFP_get_GlbDbgInfoPkt(1, 2, counters, &value), 0U);
    EXPECT_EQ(counters[0] + counters[1] + value, 0U);
}

TEST_F(SingleTest, AclResourcesAreThoseOfTheConfigurationOrTheStart)
{
    serve([](Model &model) {
        model.start = {.reserved_acl_resources = 5, .acl_tables = 3};
        GlobalConfig global;
        global.reserved_acl_resources = 8;
        model.configuration().stage(global);
        ASSERT_TRUE(model.configuration().commit());
    });
    OfpShowAclResv reserved{};
    EXPECT_EQ(OFP_get_AclResv(&reserved), 0U);
    EXPECT_EQ(reserved.value_u16_0, 8);
    EXPECT_EQ(reserved.value_u16_2, 0);
    uint32_t tables = 0;
    EXPECT_EQ(OFP_get_AclTableNum(&tables), 0U);
    EXPECT_EQ(tables, 3U);
}

TEST_F(SingleTest, WhatThereIsNoneOfIsToldAsZeroOrNotPresent)
{
    serve([](Model &model) { open_period(model); });
    OfpMeterTable meters{.meter_count = 9};
    EXPECT_EQ(OFP_get_MeterTable(CLIENT, &meters), 0U);
    EXPECT_EQ(meters.meter_count, 0U);
    OfpMeterEntry meter{};
    OFP_get_InitMeterBandList(&meter.bands);
    EXPECT_EQ(OFP_get_SpecMeterEntry(CLIENT, 1, &meter), NO_METER);
    EXPECT_EQ(OFP_get_NextMeterEntry(CLIENT, 0, &meter), NO_NEXT);
    OfpSmartGroupID smart{.group_id = 0, .instance_id = CLIENT};
    EXPECT_EQ(OFP_get_NextSmartGroupID(&smart), NO_NEXT);
    OfpOapClientNum clients{.count = 9};
    EXPECT_EQ(OFP_get_OapClientNum(&clients), 0U);
    EXPECT_EQ(clients.count, 0U);
    const OfpContext context{};
    uint8_t buffer[64];
    uint64_t length = 0;
    EXPECT_EQ(OFP_get_OapContext(&context, sizeof buffer, buffer, &length), NOT_PRESENT);
}

TEST_F(SingleTest, AGroupTellsItsBucketsWithTheirCounters)
{
    serve([](Model &model) {
        open_period(model);
        ask(model, group_request(0x50000003, group_mod(9)));
    });
    std::vector<uint8_t> buffer(OFP_DATAGRAM_SIZE);
    uint64_t length = 0;
    ASSERT_EQ(OFP_get_GroupSummary(CLIENT, 9, buffer.size(), buffer.data(), &length), 0U);
    const auto buckets = records<OfpBucketBase>(buffer, length, OFP_TLV_BucketBase);
    ASSERT_EQ(buckets.size(), 1U);
    EXPECT_EQ(buckets[0].packet_count, 0U);
    EXPECT_EQ(buckets[0].value_u32_16, 3U); // watches the port that it outputs to
    EXPECT_EQ(buckets[0].value_u32_24, 16U);
}

} // namespace
} // namespace agent::test
