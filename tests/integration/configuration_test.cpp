// The configuration of a real agent, across its death.
#include <algorithm>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include "agent/config/row_store.h"
#include "agent/daemon/settings.h"
#include "daemon/dispatch.h"
#include "integration/agent_test.h"
#include "integration/exchange.h"

namespace integration {
namespace {

using namespace std::chrono_literals;
using agent::test::SettingRequest;

constexpr uint16_t INSTANCE = agent::test::INSTANCE;
constexpr uint32_t NOT_STORED = 0x42300140;

class ConfigurationTest : public AgentTest {
protected:
    std::string store() const { return path("agent.db"); }

    // What the store of an agent that has ended holds.
    void load(agent::Configuration &configuration) const
    {
        std::string why_not;
        auto opened = agent::open_store(store(), why_not);
        ASSERT_NE(opened, nullptr) << why_not;
        ASSERT_EQ(configuration.attach(std::move(opened)), "");
    }
};

uint32_t exchange(const Datagram &request)
{
    Channel channel;
    return channel.send(request) ? result_of(channel.receive()) : NO_ANSWER;
}

// The message is not answered: the agent has done with it when it answers another.
bool send_unanswered(const Datagram &request)
{
    Channel channel;
    const Datagram question = request_of(OFP_MSG_GET_INSTANCE_EXIST, OFP_TLV_InstanceID,
                                         "\x00\x05\x00", sizeof(OfpInstanceID));
    return channel.send(request) && channel.send(question) && !channel.receive().empty();
}

bool has_answer(uint32_t code)
{
    return code != OFP_MSG_RESET_CTRL_STAT && code != OFP_MSG_RESET_CACHE;
}

TEST_F(ConfigurationTest, IsWholeAfterAKillAtEveryTransaction)
{
    agent::Model reference;
    std::vector<SettingRequest> requests = agent::test::setting_requests();
    for (const SettingRequest &request : agent::test::unsetting_requests()) {
        requests.push_back(request);
    }
    for (const SettingRequest &request : requests) {
        ASSERT_EQ(OFP_util_StartDaemon(), 0u);
        if (has_answer(request.code)) {
            ASSERT_EQ(exchange(request.datagram()), 0u) << request.code;
        } else {
            ASSERT_TRUE(send_unanswered(request.datagram())) << request.code;
        }
        stop_agent(SIGKILL);
        agent::Outbox answers;
        agent::answer_and_commit(request.datagram(), answers, reference);
        agent::Configuration stored;
        load(stored);
        ASSERT_EQ(agent::test::rows_of(stored), agent::test::rows_of(reference.configuration()))
            << request.code;
    }
}

TEST_F(ConfigurationTest, HoldsWhatWasAcknowledgedWhenItsAgentIsKilledAnywhere)
{
    ASSERT_EQ(OFP_set_Instance(1, INSTANCE, 0), 0u);
    uint32_t next = 1;
    for (int turn = 0; turn < 8; ++turn) {
        ASSERT_EQ(OFP_util_StartDaemon(), 0u);
        std::thread killer([pid = agent(), turn] {
            std::this_thread::sleep_for(7ms * (turn + 1));
            kill(pid, SIGKILL);
        });
        uint32_t acknowledged = next - 1;
        for (;; ++next) {
            const OfpFlowMonitorThreShold record{
                .instance_id = INSTANCE, .reserved_2 = {}, .threshold = next};
            const Datagram request =
                request_of(OFP_MSG_SET_FLOW_MONITOR_THRESHOLD, OFP_TLV_FlowMonitorThreShold,
                           &record, sizeof record);
            if (exchange(request) != 0) { // does not start another agent
                break;
            }
            acknowledged = next;
        }
        killer.join();
        ASSERT_TRUE(within(10s, [this] { return agent() == 0; }));
        agent::Configuration stored;
        load(stored);
        ASSERT_NE(stored.instance(INSTANCE), nullptr);
        const uint32_t threshold = stored.instance(INSTANCE)->flow_monitor_threshold;
        EXPECT_GE(threshold, acknowledged);
        EXPECT_LE(threshold, acknowledged + 1);
        next = threshold + 1;
    }
    EXPECT_GT(next, 8u);
}

// ---- Through the library

template <class Record>
Record record_of(uint32_t Record::*member, uint32_t value, uint16_t instance)
{
    Record record{};
    record.instance_id = instance;
    record.*member = value;
    return record;
}

// One option each, and where its value is kept.
struct LibraryOption {
    std::function<uint32_t(uint16_t instance, uint16_t value)> set;
    std::function<uint64_t(const agent::InstanceConfig &)> kept;
};

template <auto Member, auto Call>
LibraryOption by_record(uint32_t agent::InstanceConfig::*kept)
{
    return {[](uint16_t instance, uint16_t value) {
                const auto record = record_of(Member, value, instance);
                return Call(&record);
            },
            [kept](const agent::InstanceConfig &config) { return config.*kept; }};
}

template <class Call, class Kept>
LibraryOption by_pair(Call call, Kept agent::InstanceConfig::*kept)
{
    return {[call](uint16_t instance, uint16_t value) { return call(instance, value); },
            [kept](const agent::InstanceConfig &config) { return uint64_t{config.*kept}; }};
}

// All take the values 0 and 1.
std::vector<LibraryOption> library_options()
{
    using Config = agent::InstanceConfig;
    return {
        by_record<&OfpConnMode::mode, OFP_set_ConnectionMode>(&Config::connection_mode),
        by_record<&OfpFailOpen::mode, OFP_set_FailOpen>(&Config::fail_mode),
        by_record<&OfpTcpDscp::dscp, OFP_set_TcpDscp>(&Config::dscp),
        by_record<&OfpFlowEntryLimit::limit, OFP_set_FlowEntryLimit>(&Config::flow_entry_limit),
        by_record<&OfpMissRule::mode, OFP_set_MissRule>(&Config::miss_mode),
        by_record<&OfpFlowMonitorInterval::interval, OFP_set_FlowMonitorInterval>(
            &Config::flow_monitor_interval),
        by_record<&OfpFlowMonitorThreShold::threshold, OFP_set_FlowMonitorThreShold>(
            &Config::flow_monitor_threshold),
        by_pair(OFP_set_TcpNsr, &Config::nonstop_routing),
        by_pair(OFP_set_FlowLogDisable, &Config::flow_log_disabled),
        by_pair(OFP_set_PacketFilter, &Config::packet_filter),
        by_pair(OFP_set_QinQNetEnable, &Config::qinq),
        by_pair(OFP_set_MacLearning, &Config::mac_learning),
        by_pair(OFP_set_ForbiddenPort, &Config::forbidden_ports),
        by_pair(OFP_set_PermitPortType, &Config::permitted_port_types),
        by_pair(OFP_set_LoopProtect, &Config::loop_protection),
        by_pair(OFP_set_DataPlaneMode, &Config::data_plane_mode),
        by_pair(OFP_set_TTPMode, &Config::ttp_mode),
        by_pair(OFP_set_SmartGroup, &Config::smart_groups),
        by_pair(OFP_set_TrapEnable, &Config::traps),
        by_pair([](uint16_t id, uint16_t value) { return OFP_set_ActiveInst(id, value); },
                &Config::active),
    };
}

TEST_F(ConfigurationTest, LosesNothingOfTwoHundredClientsThatSetDifferentOptions)
{
    constexpr uint16_t INSTANCES = 10;
    const std::vector<LibraryOption> options = library_options();
    ASSERT_EQ(options.size() * INSTANCES, 200u);
    for (uint16_t id = 1; id <= INSTANCES; ++id) {
        ASSERT_EQ(OFP_set_Instance(1, id, 0), 0u);
    }
    std::atomic<int> failures = 0;
    std::vector<std::thread> clients;
    for (uint16_t id = 1; id <= INSTANCES; ++id) {
        for (size_t i = 0; i < options.size(); ++i) {
            clients.emplace_back([&, id, i] {
                for (size_t turn = 0; turn < 4; ++turn) {
                    const auto value = static_cast<uint16_t>((i + id + turn + 1) % 2);
                    failures += options[i].set(id, value) != 0;
                }
            });
        }
    }
    for (std::thread &client : clients) {
        client.join();
    }
    EXPECT_EQ(failures, 0);
    stop_agent(SIGKILL);
    agent::Configuration stored;
    load(stored);
    for (uint16_t id = 1; id <= INSTANCES; ++id) {
        ASSERT_NE(stored.instance(id), nullptr);
        for (size_t i = 0; i < options.size(); ++i) {
            EXPECT_EQ(options[i].kept(*stored.instance(id)), (i + id) % 2) << id << ' ' << i;
        }
    }
}

TEST_F(ConfigurationTest, TakesEveryCallOfTheLibraryAndKeepsItAcrossARestart)
{
    ASSERT_EQ(OFP_set_Instance(1, INSTANCE, 9), 0u);
    OfpInstFilter filter{};
    filter.instance_id = INSTANCE;
    filter.filter_kind = 1;
    filter.param_a = 100;
    filter.param_b = 0xfff;
    EXPECT_EQ(OFP_set_VlanList(&filter, 1), 0u);
    EXPECT_EQ(OFP_set_Description(INSTANCE, "access"), 0u);
    const OfpDataPathID datapath{.datapath_id = 0xab, .instance_id = INSTANCE, .reserved_10 = {}};
    EXPECT_EQ(OFP_set_DataPathID(&datapath), 0u);
    EXPECT_EQ(OFP_set_Precedence(INSTANCE, 20), 0u);
    OfpFlowTable tables[] = {{.table_id = 20, .reserved_1 = {}, .kind = 2},
                             {.table_id = 10, .reserved_1 = {}, .kind = 2}};
    EXPECT_EQ(OFP_set_FlowTable(INSTANCE, 2, tables), 0u);
    OfpVlanRangeList vlans{};
    vlans.range[0] = {10, 20};
    vlans.count = 1;
    vlans.instance_id = INSTANCE;
    EXPECT_EQ(OFP_set_InManageVlan(&vlans), 0u);
    EXPECT_EQ(OFP_set_NormalForwardVlan(&vlans), 0u);
    OfpCtrlCfg controller{};
    controller.instance_id = INSTANCE;
    controller.address_type = 2;
    std::memcpy(controller.address, "\xc0\x00\x02\x01", 4);
    controller.port = 6653;
    controller.controller_id = 3;
    EXPECT_EQ(OFP_set_CtrlCfg(&controller, 1), 0u);
    OfpAuxCfg auxiliary{};
    auxiliary.instance_id = INSTANCE;
    auxiliary.controller_id = 3;
    auxiliary.aux_id = 1;
    EXPECT_EQ(OFP_set_AuxCfg(&auxiliary, 1), 0u);
    OfpCtrlSSL tls{};
    std::memcpy(tls.content, &INSTANCE, sizeof INSTANCE);
    tls.content[2] = 3;
    std::memcpy(tls.content + 4, "strict", 6);
    EXPECT_EQ(OFP_set_Ctrl_SSL(&tls, 1), 0u);
    EXPECT_EQ(OFP_set_ResetCtrlStat(INSTANCE, 3), 0u);
    EXPECT_EQ(OFP_set_ResetCache(1), 0u);
    OfpExcludeConnID excluded{};
    excluded.instance_id = INSTANCE;
    excluded.value_u64_8 = 8;
    EXPECT_EQ(OFP_set_ExlucdeCtrlId(&excluded), 0u);
    const auto echo = record_of(&OfpEchoTime::interval, 15, INSTANCE);
    EXPECT_EQ(OFP_set_EchoTime(&echo), 0u);
    const auto reconnect = record_of(&OfpReconnectTime::interval, 30, INSTANCE);
    EXPECT_EQ(OFP_set_ReconnectTime(&reconnect), 0u);
    const OfpDynMacAware aware{.instance_id = INSTANCE, .enable = 1};
    EXPECT_EQ(OFP_set_DynMac(&aware), 0u);
    OfpPortInstanceCfg port{};
    port.if_index = 1;
    port.instance_id = INSTANCE;
    EXPECT_EQ(OFP_set_BindPort(OFP_MSG_BIND_PORT, &port), 0u);
    EXPECT_EQ(OFP_set_PortBindInst(OFP_MSG_BIND_PORT, INSTANCE, 2), 0u);
    EXPECT_EQ(OFP_set_PortShutdown(OFP_MSG_SHUTDOWN_PORT, 2), 0u);
    EXPECT_EQ(OFP_set_Ignore(3), 0u);
    EXPECT_EQ(OFP_set_Ipv6Enhanced(1), 0u);
    EXPECT_EQ(OFP_set_RefreshIpFlow(2), 0u);
    const OfpResrvAclRes reserved{.value = 64, .reserved_2 = {}};
    EXPECT_EQ(OFP_set_ResvAclRes(&reserved), 0u);
    OfpOapServer server{};
    std::memcpy(server.text_0, "oap", 3);
    EXPECT_EQ(OFP_set_OapServer(&server, 1), 0u);
    EXPECT_EQ(OFP_set_FlowMonitorAction(1, 2, 3, 4), 0u);
    OfpGlbDebug debug{};
    debug.value_u16_0 = 1;
    debug.value_u32_8 = 7;
    EXPECT_EQ(OFP_set_GlbDebug(&debug), 0u);
    const OfpTDTestGlbDebug test_debug{{1, 2, 3}};
    EXPECT_EQ(OFP_set_TDTestGlbDebug(&test_debug), 0u);
    const OfpEnableALAlFunction analysis{.instance_id = INSTANCE, .value_u16_2 = 1, .functions = 2};
    EXPECT_EQ(OFP_set_EnableALAlFunction(&analysis), 0u);
    OfpEnablePayloadFunction payload{};
    payload.instance_id = INSTANCE;
    payload.functions = 4;
    EXPECT_EQ(OFP_set_EnablePayloadFunction(&payload), 0u);
    EXPECT_EQ(OFP_set_ProcALALPktOut(INSTANCE, tls.content, sizeof tls.content), 0u);
    EXPECT_EQ(OFP_set_ProcConfigEvent(4), 0u);

    stop_agent(SIGTERM);
    agent::Configuration stored;
    load(stored);
    ASSERT_NE(stored.instance(INSTANCE), nullptr);
    const agent::InstanceConfig &kept = *stored.instance(INSTANCE);
    EXPECT_EQ(kept.filter.param_a, 100);
    EXPECT_EQ(kept.vlan_loose, 1);
    EXPECT_EQ(kept.description, "access");
    EXPECT_EQ(stored.datapath_id(INSTANCE), 0xabu);
    EXPECT_EQ(kept.precedence, 20);
    EXPECT_EQ(kept.tables.size(), 2u);
    EXPECT_EQ(kept.in_band_vlans.count(), 11u);
    ASSERT_TRUE(kept.controllers.contains(3));
    EXPECT_EQ(kept.controllers.at(3).port, 6653);
    EXPECT_EQ(kept.controllers.at(3).tls_policy, "strict");
    EXPECT_TRUE(kept.controllers.at(3).auxiliaries.contains(1));
    EXPECT_EQ(kept.excluded.controllers, 8u);
    EXPECT_EQ(kept.echo_interval, 15u);
    EXPECT_EQ(kept.reconnect_interval, 30u);
    EXPECT_EQ(kept.dynamic_mac_aware, 1);
    EXPECT_EQ(kept.bound_ports.size(), 2u);
    EXPECT_TRUE(kept.analysis && kept.payload);
    const agent::GlobalConfig &global = stored.global();
    EXPECT_EQ(global.normal_forward_vlans.count(), 11u);
    EXPECT_EQ(global.shut_down_ports, std::set<uint32_t>{2});
    EXPECT_EQ(global.ignore, 3);
    EXPECT_EQ(global.ipv6_enhanced, 1);
    EXPECT_EQ(global.refresh_ip_flow, 2);
    EXPECT_EQ(global.reserved_acl_resources, 64);
    EXPECT_TRUE(global.oap_server && global.flow_monitor_action);
    EXPECT_EQ(global.debug.size(), 1u);
    EXPECT_EQ(global.test_debug[2], 3);
}

TEST_F(ConfigurationTest, TakesEveryCallThatTakesAway)
{
    ASSERT_EQ(OFP_set_Instance(1, INSTANCE, 0), 0u);
    OfpCtrlCfg controller{};
    controller.instance_id = INSTANCE;
    controller.address_type = 2;
    std::memcpy(controller.address, "\xc0\x00\x02\x01", 4);
    controller.port = 6653;
    ASSERT_EQ(OFP_set_CtrlCfg(&controller, 1), 0u);
    OfpAuxCfg auxiliary{};
    auxiliary.instance_id = INSTANCE;
    auxiliary.aux_id = 1;
    ASSERT_EQ(OFP_set_AuxCfg(&auxiliary, 1), 0u);
    ASSERT_EQ(OFP_set_PortBindInst(OFP_MSG_BIND_PORT, INSTANCE, 1), 0u);
    ASSERT_EQ(OFP_set_PortShutdown(OFP_MSG_SHUTDOWN_PORT, 1), 0u);
    OfpCtrlSSL tls{};
    std::memcpy(tls.content, &INSTANCE, sizeof INSTANCE);

    EXPECT_EQ(OFP_set_Ctrl_SSL(&tls, 0), 0u);
    EXPECT_EQ(OFP_set_AuxCfg(&auxiliary, 0), 0u);
    EXPECT_EQ(OFP_set_CtrlCfg(&controller, 0), 0u);
    EXPECT_EQ(OFP_set_PortBindInst(OFP_MSG_UNBIND_PORT, INSTANCE, 1), 0u);
    EXPECT_EQ(OFP_set_PortShutdown(OFP_MSG_START_PORT, 1), 0u);
    const OfpOapServer server{};
    EXPECT_EQ(OFP_set_OapServer(&server, 0), 0u);
    EXPECT_EQ(OFP_set_ActiveInst(INSTANCE, 0), 0u);
    EXPECT_EQ(OFP_set_Instance(0, INSTANCE, 0), 0u);
    EXPECT_FALSE(instance_exists(INSTANCE));
    EXPECT_EQ(OFP_set_Instance(0, INSTANCE, 0), 0x42300115u);

    stop_agent(SIGTERM);
    agent::Configuration stored;
    load(stored);
    EXPECT_TRUE(agent::test::rows_of(stored).empty());
}

TEST_F(ConfigurationTest, IsThereAgainForAnAgentThatWasKilledButItsRulesAreNot)
{
    smooth_start();
    ASSERT_EQ(OFP_AddInstance(7), 0u);
    stop_agent(SIGKILL);
    ASSERT_EQ(OFP_util_StartDaemon(), 0u);
    EXPECT_TRUE(instance_exists(7));
    EXPECT_FALSE(instance_exists(CLIENT));
    EXPECT_EQ(OFP_AddInstance(7), 0u);
    uint8_t table = 255;
    EXPECT_EQ(OFP_get_NextTableID(7, table, &table), 0u);
    EXPECT_EQ(table, 10);
}

TEST_F(ConfigurationTest, KeptInMemoryEndsWithItsAgent)
{
    start_agent({"--store", ":memory:"});
    ASSERT_EQ(OFP_AddInstance(7), 0u);
    stop_agent(SIGTERM);
    EXPECT_FALSE(std::filesystem::exists(store()));
    start_agent({"--store=:memory:"});
    EXPECT_FALSE(instance_exists(7));
}

size_t resident_pages(pid_t process)
{
    std::ifstream sizes("/proc/" + std::to_string(process) + "/statm");
    size_t whole = 0;
    size_t resident = 0;
    sizes >> whole >> resident;
    return resident;
}

void change_echo_time(int times)
{
    for (int n = 0; n < times; ++n) {
        const OfpEchoTime time = {.interval = 5 + static_cast<uint32_t>(n & 1),
                                  .instance_id = INSTANCE};
        ASSERT_EQ(OFP_set_EchoTime(&time), 0u);
    }
}

TEST_F(ConfigurationTest, ChangedTenThousandTimesTakesNoMoreMemory)
{
    start_agent({"--store", ":memory:"});
    ASSERT_EQ(OFP_AddInstance(INSTANCE), 0u);
    change_echo_time(1000);
    const size_t own = mallinfo2().uordblks;
    [[maybe_unused]] const size_t pages = resident_pages(agent());
    change_echo_time(10'000);
    EXPECT_LE(mallinfo2().uordblks, own + 4096);
#ifndef __SANITIZE_ADDRESS__ // which keeps what was freed
    EXPECT_GT(pages, 0u);
    EXPECT_LE(resident_pages(agent()), pages + 16);
#endif
}

TEST_F(ConfigurationTest, LiesInTheFileThatIsNamed)
{
    const std::string elsewhere = path("elsewhere.db");
    start_agent({"--store", elsewhere});
    ASSERT_EQ(OFP_AddInstance(7), 0u);
    stop_agent(SIGTERM);
    EXPECT_TRUE(std::filesystem::exists(elsewhere));
    EXPECT_FALSE(std::filesystem::exists(store()));
    start_agent({"--store", elsewhere});
    EXPECT_TRUE(instance_exists(7));
}

// ---- What goes wrong

TEST_F(ConfigurationTest, ThatCannotBeReadKeepsTheAgentFromStartingAndIsLeftAlone)
{
    const std::string text(5000, 'x');
    std::ofstream(store()) << text;
    const Finished started = run_agent({});
    EXPECT_EQ(started.status, 1);
    EXPECT_EQ(started.output,
              "ofp-agent: the configuration " + store() + ": it is not a store of this agent\n");
    EXPECT_EQ(agent(), 0);
    EXPECT_EQ(OFP_AddInstance(7), uint32_t{OFP_RC_FAILED});
    std::ifstream file(store());
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), text);
}

TEST_F(ConfigurationTest, WithARowThatCannotBeKeepsTheAgentFromStarting)
{
    {
        std::string why_not;
        const auto made = agent::open_store(store(), why_not);
        ASSERT_NE(made, nullptr);
        ASSERT_EQ(made->write(std::vector<agent::StoredRow>{{"instance/5/dscp", "high"}}), "");
    }
    const Finished started = run_agent({});
    EXPECT_EQ(started.status, 1);
    EXPECT_EQ(started.output, "ofp-agent: the configuration " + store() +
                                  ": its row instance/5/dscp has a value that cannot be\n");
}

TEST_F(ConfigurationTest, ThatFindsNoRoomIsRefusedChangesNothingAndGoesOnOnceThereIsRoom)
{
    const rlimit small{200'000, RLIM_INFINITY};
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    if (before.rlim_max != RLIM_INFINITY) {
        GTEST_SKIP() << "the size of files is limited already";
    }
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    start_agent({});
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    uint16_t id = 1;
    uint32_t code = 0;
    while (id < 1000 && (code = OFP_set_Instance(1, id, 0)) == 0) {
        ++id;
    }
    EXPECT_EQ(code, NOT_STORED);
    EXPECT_GT(id, 1);
    EXPECT_FALSE(instance_exists(id));
    EXPECT_TRUE(instance_exists(static_cast<uint16_t>(id - 1)));
    EXPECT_NE(log_text().find("the configuration cannot be stored"), std::string::npos);

    ASSERT_EQ(prlimit(agent(), RLIMIT_FSIZE, &before, nullptr), 0);
    EXPECT_EQ(OFP_set_Instance(1, id, 0), 0u);
    stop_agent(SIGKILL);
    agent::Configuration stored;
    load(stored);
    uint16_t last = 0;
    for (auto next = stored.next_instance(0); next; next = stored.next_instance(*next)) {
        last = *next;
    }
    EXPECT_EQ(last, id);
}

} // namespace
} // namespace integration
