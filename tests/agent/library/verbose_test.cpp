// The verbose record holds what was configured.
#include <cstring>
#include <vector>

#include "agent/library/served_model.h"
#include "ofp.h"

namespace agent::test {
namespace {

constexpr uint16_t ID = 7;

// A value of the record as its structure.
template <class Record, size_t Size>
Record as(const uint8_t (&bytes)[Size])
{
    static_assert(sizeof(Record) == Size);
    Record record;
    std::memcpy(&record, bytes, Size);
    return record;
}

class VerboseTest : public ServedModelTest {
protected:
    VerboseTest()
    {
        OFP_get_InitVerbose(&verbose_);
        verbose_.configured.vlans = bitmap(configured_vlans_);
        verbose_.running.vlans = bitmap(running_vlans_);
    }
    ~VerboseTest() override { OFP_get_FiniVerbose(&verbose_); }

    static Bitmap *bitmap(std::vector<uint64_t> &room)
    {
        return Bitmap_CreateFromBuffer(OFP_util_GetMaxVlanID(), room.data(), 1024);
    }

    static std::vector<std::string> names(const OfpLink &list)
    {
        std::vector<std::string> result;
        for (const OfpLink *at = list.next; at != &list; at = at->next) {
            result.emplace_back(reinterpret_cast<const OfpInterfaceElement *>(at)->interface.name);
        }
        return result;
    }

    static std::vector<uint32_t> vlans(const Bitmap *map)
    {
        std::vector<uint32_t> result;
        for (uint32_t vlan = 0; vlan <= 4095; vlan++) {
            if (Bitmap_Check(map, vlan)) {
                result.push_back(vlan);
            }
        }
        return result;
    }

    std::vector<uint64_t> configured_vlans_ = std::vector<uint64_t>(128);
    std::vector<uint64_t> running_vlans_ = std::vector<uint64_t>(128);
    OfpVerbose verbose_;
};

void configure_all(InstanceConfig &instance)
{
    instance.filter = {.instance_id = ID, .filter_kind = 1, .param_a = 100, .param_b = 0xfff};
    instance.tables = {{0, {}, 2}, {5, {}, 3}};
    instance.active = true;
    instance.description = std::string(255, 'd');
    instance.datapath_id = 0x1122334455667788;
    instance.precedence = 9;
    instance.excluded = {.controllers = 0x8000000000000001, .value_u32_4 = 3};
    instance.connection_mode = CONNECT_SINGLE;
    instance.fail_mode = FAIL_STANDALONE;
    instance.dscp = 46;
    instance.nonstop_routing = 1;
    instance.vlan_loose = 1;
    for (const unsigned vlan : {1U, 2U, 4094U}) {
        instance.in_band_vlans.set(vlan);
    }
    instance.qinq = 1;
    instance.mac_learning = 0;
    instance.dynamic_mac_aware = 1;
    for (uint32_t index = 1; index <= 1000; index++) {
        instance.bound_ports[index] = 0;
    }
    instance.forbidden_ports = 5;
    instance.permitted_port_types = 6;
    instance.flow_entry_limit = 500;
    instance.miss_mode = MISS_PERMIT;
    instance.flow_monitor_interval = 77;
    instance.flow_monitor_threshold = 88;
    instance.data_plane_mode = 1;
    instance.ttp_mode = 1;
    instance.smart_groups = 1;
}

TEST_F(VerboseTest, HoldsWhatWasConfigured)
{
    serve([](Model &model) {
        configure(model, ID, configure_all);
        GlobalConfig global = model.configuration().global();
        global.oap_server = OapServer{"server", 1, 2, 3};
        model.configuration().stage(global);
        ASSERT_TRUE(model.configuration().commit());
    });
    ASSERT_EQ(OFP_get_Verbose(ID, &verbose_), 0U);
    EXPECT_EQ(as<OfpInstActive>(verbose_.inst_active).active, 1);
    EXPECT_STREQ(reinterpret_cast<const char *>(verbose_.instance), std::string(255, 'd').c_str());

    const OfpVerboseConfigured &configured = verbose_.configured;
    EXPECT_EQ(configured.filter.instance_id, ID);
    EXPECT_EQ(configured.filter.filter_kind, 1);
    EXPECT_EQ(configured.filter.param_a, 100);
    EXPECT_EQ(configured.filter.param_b, 0xfff);
    ASSERT_EQ(configured.table_count, 2);
    EXPECT_EQ(as<OfpFlowTable>(configured.flow_table[1]).table_id, 5);
    EXPECT_EQ(as<OfpFlowTable>(configured.flow_table[1]).kind, 3U);
    EXPECT_EQ(as<OfpFlowEntryLimit>(configured.flow_entry_limit).limit, 500U);
    EXPECT_EQ(as<OfpFlowEntryLimit>(configured.flow_entry_limit).instance_id, ID);
    EXPECT_EQ(as<OfpDataPathID>(configured.datapath_id).datapath_id, 0x1122334455667788U);
    EXPECT_EQ(as<OfpVlanLoosen>(configured.vlan_loosen).enable, 1);
    EXPECT_EQ(vlans(configured.vlans), (std::vector<uint32_t>{1, 2, 4094}));
    EXPECT_EQ(as<OfpMacLearning>(configured.mac_learning).enable, 0);
    EXPECT_EQ(as<OfpConnMode>(configured.conn_mode).mode, 1U);
    EXPECT_EQ(as<OfpFailOpen>(configured.fail_open).mode, 1U);
    EXPECT_EQ(as<OfpMissRule>(configured.miss_rule).mode, 1U);
    EXPECT_EQ(as<OfpForbiddenPort>(configured.forbidden_port).ports, 5U);
    EXPECT_STREQ(as<OfpOapServer>(configured.oap_server).text_0, "server");
    EXPECT_EQ(as<OfpOapServer>(configured.oap_server).value_u16_38, 3);
    EXPECT_EQ(as<OfpDynMacAware>(configured.dyn_mac_aware).enable, 1);
    EXPECT_EQ(as<OfpQinqNetWkcfg>(configured.qinq_net_wkcfg).enable, 1);
    EXPECT_EQ(as<OfpTcpDscp>(configured.tcp_dscp).dscp, 46U);
    EXPECT_EQ(as<OfpPermitPortType>(configured.permit_port_type).port_types, 6U);
    EXPECT_EQ(as<OfpPrecedence>(configured.precedence).precedence, 9);
    EXPECT_EQ(as<OfpTcpNsr>(configured.tcp_nsr).enable, 1);
    EXPECT_EQ(as<OfpExcludeConnID>(configured.exclude_conn_id).value_u64_8, 0x8000000000000001U);
    EXPECT_EQ(as<OfpDataPlaneMode>(configured.data_plane_mode).mode, 1);
    EXPECT_EQ(as<OfpSmartGroup>(configured.smart_group).enable, 1);
    EXPECT_EQ(as<OfpTTPMode>(configured.ttp_mode).mode, 1);
    EXPECT_EQ(as<OfpFlowMonitorInterval>(configured.flow_monitor_interval).interval, 77U);
    EXPECT_EQ(as<OfpFlowMonitorThreShold>(configured.flow_monitor_threshold).threshold, 88U);
    const auto ports = names(configured.interfaces);
    ASSERT_EQ(ports.size(), 1000U);
    EXPECT_EQ(ports[1], "GE1/0/2");
    EXPECT_EQ(ports[9], "GE1/0/10");
    EXPECT_EQ(ports[999], "GE1/0/1000");
}

TEST_F(VerboseTest, HoldsWhatRunsOfAnActiveInstance)
{
    serve([](Model &model) { configure(model, ID, configure_all); });
    ASSERT_EQ(OFP_get_Verbose(ID, &verbose_), 0U);
    const OfpVerboseRunning &running = verbose_.running;
    EXPECT_EQ(running.filter.param_a, 100);
    ASSERT_EQ(running.table_count, 2);
    EXPECT_EQ(as<OfpFlowTableRun>(running.flow_table_run[1]).table_id, 5);
    EXPECT_EQ(as<OfpFlowTableRun>(running.flow_table_run[1]).kind, 3U);
    EXPECT_EQ(as<OfpFlowEntryLimit>(running.flow_entry_limit).limit, 500U);
    EXPECT_EQ(as<OfpDataPathID>(running.datapath_id).datapath_id, 0x1122334455667788U);
    EXPECT_EQ(vlans(running.vlans), (std::vector<uint32_t>{1, 2, 4094}));
    EXPECT_EQ(as<OfpTcpDscp>(running.tcp_dscp).dscp, 46U);
    EXPECT_EQ(as<OfpSmartGroup>(running.smart_group).instance_id, ID);
    EXPECT_EQ(as<OfpFlowMonitorThreShold>(running.flow_monitor_threshold).threshold, 88U);
    EXPECT_EQ(as<OfpOapServerRun>(running.oap_server_run).text_0[0], '\0');
    EXPECT_EQ(names(running.interfaces).size(), 1000U);
}

TEST_F(VerboseTest, OfAnInactiveInstanceNothingRuns)
{
    serve([](Model &model) {
        configure(model, ID, [](InstanceConfig &instance) {
            configure_all(instance);
            instance.active = false;
            instance.datapath_id.reset();
        });
    });
    ASSERT_EQ(OFP_get_Verbose(ID, &verbose_), 0U);
    EXPECT_EQ(as<OfpInstActive>(verbose_.inst_active).active, 0);
    EXPECT_EQ(verbose_.configured.table_count, 2);
    EXPECT_EQ(as<OfpDataPathID>(verbose_.configured.datapath_id).datapath_id, 0U); // not set
    EXPECT_EQ(verbose_.running.filter.instance_id, 0);
    EXPECT_EQ(verbose_.running.table_count, 0);
    EXPECT_TRUE(names(verbose_.running.interfaces).empty());
    uint32_t active = 9;
    EXPECT_EQ(OFP_get_InstActive(ID, &active), 0U);
    EXPECT_EQ(active & 0xffff, 0U);
}

TEST_F(VerboseTest, OfAnInstanceWithAllTablesHoldsThemAll)
{
    serve([](Model &model) {
        configure(model, ID, [](InstanceConfig &instance) {
            instance.active = true;
            for (unsigned id = 0; id < 255; id++) {
                instance.tables.push_back({static_cast<uint8_t>(id), {}, id});
            }
        });
    });
    ASSERT_EQ(OFP_get_Verbose(ID, &verbose_), 0U);
    ASSERT_EQ(verbose_.configured.table_count, 255);
    ASSERT_EQ(verbose_.running.table_count, 255);
    for (unsigned id = 0; id < 255; id++) {
        EXPECT_EQ(as<OfpFlowTable>(verbose_.configured.flow_table[id]).kind, id);
        EXPECT_EQ(as<OfpFlowTableRun>(verbose_.running.flow_table_run[id]).table_id, id);
    }
}

TEST_F(VerboseTest, ListsTheControllersOnce)
{
    serve([](Model &model) {
        configure(model, ID, [](InstanceConfig &instance) {
            for (uint8_t id = 0; id < 3; id++) {
                instance.controllers[id].address = {ADDRESS_IPV4, {192, 0, 2, id}};
                instance.controllers[id].port = 6653;
                instance.controllers[id].vrf = "management";
            }
        });
    });
    ASSERT_EQ(OFP_get_Verbose(ID, &verbose_), 0U);
    std::vector<OfpCtrlSummary> controllers;
    for (const OfpLink *at = verbose_.controllers.next; at != &verbose_.controllers;
         at = at->next) {
        controllers.emplace_back();
        std::memcpy(&controllers.back(), reinterpret_cast<const OfpControllerElement *>(at)->record,
                    sizeof(OfpCtrlSummary));
    }
    ASSERT_EQ(controllers.size(), 3U);
    EXPECT_EQ(controllers[2].controller_id, 2);
    EXPECT_EQ(controllers[2].address_type, 2);
    EXPECT_EQ(controllers[2].port, 6653);
    EXPECT_EQ(controllers[2].flag, 0);
    EXPECT_STREQ(controllers[2].text_29, "management");
    const uint8_t address[16] = {192, 0, 2, 2};
    EXPECT_EQ(std::memcmp(controllers[2].address, address, sizeof address), 0);
}

TEST_F(VerboseTest, OfAnInstanceThatThereIsNotIsTheAgentsCode)
{
    serve([](Model &) {});
    EXPECT_EQ(OFP_get_Verbose(ID, &verbose_), NO_INSTANCE);
}

TEST_F(VerboseTest, TellsTheSettingsOfTheSwitch)
{
    serve([](Model &model) {
        GlobalConfig global;
        global.normal_forward_vlans.set(1).set(4000);
        global.ignore = 3;
        model.configuration().stage(global);
        ASSERT_TRUE(model.configuration().commit());
    });
    OfpGlbCfgVerbose config{bitmap(configured_vlans_), {}};
    ASSERT_EQ(OFP_get_GlbCfgVerbose(&config), 0U);
    EXPECT_EQ(vlans(config.vlans), (std::vector<uint32_t>{1, 4000}));
    EXPECT_EQ(config.ignore.value, 3);
}

} // namespace
} // namespace agent::test
