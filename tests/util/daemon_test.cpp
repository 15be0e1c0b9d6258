#include "double/platform.h"
#include "double/sweep.h"
#include "ofp/result.h"
#include "ofp/util.h"

using namespace test;

namespace {

class Daemon : public PlatformTest {
protected:
    static constexpr uint32_t all = 0xffffffff;

    Call status_of(uint16_t node) { return {"SERVICE_GetStatus", {node, all}, {}, "OFP"}; }
    Call start_of(uint16_t node) { return {"SERVICE_Start", {node, 0, 0}, {}, "OFP"}; }
    Call batch_start_of(const std::vector<uint16_t> &nodes)
    {
        return {"SERVICE_BatchStart",
                {nodes.size(), 0, 0},
                bytes_of(nodes.data(), nodes.size() * sizeof nodes[0]),
                "OFP"};
    }
};

// A chassis: two controllers, one of them the master, three boards, one of them down.
void chassis(bool master_runs)
{
    platform.nodes = {
        {.id = 300}, {.id = 7, .runs = master_runs}, {.id = 8}, {.id = 9, .up = false}, {.id = 10}};
    platform.master = 7;
    platform.self = 8;
}

} // namespace

TEST_F(Daemon, RunsWhenTheMasterSaysSo)
{
    EXPECT_EQ(OFP_util_IsDaemonStart(), 1);
    EXPECT_EQ(platform.calls("SERVICE_"), std::vector({status_of(7)}));
    platform.daemon_runs(false);
    EXPECT_EQ(OFP_util_IsDaemonStart(), 0);
}

TEST_F(Daemon, DoesNotRunWhenThePlatformCannotTell)
{
    platform.next("SERVICE_GetStatus", {1});
    EXPECT_EQ(OFP_util_IsDaemonStart(), 0);
}

TEST_F(Daemon, StartByLipStartsWhereItDoesNotRun)
{
    chassis(true);
    EXPECT_EQ(OFP_util_StartDaemonByLip(7), uint32_t{OFP_RC_OK});
    EXPECT_EQ(OFP_util_StartDaemonByLip(300), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.calls("SERVICE_"),
              std::vector({status_of(7), status_of(300), start_of(300)}));
    platform.next("SERVICE_Start", {77});
    EXPECT_EQ(OFP_util_StartDaemonByLip(8), 77u);
}

TEST_F(Daemon, StartOfARunningDaemonStartsNothing)
{
    chassis(true);
    EXPECT_EQ(OFP_util_StartDaemon(), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.calls("SERVICE_"), std::vector({status_of(7)}));
    EXPECT_EQ(platform.sequence("DEV_"), "DEV_GetSystemMaster");
}

TEST_F(Daemon, StartStartsTheMasterThenEveryNodeThatIsUp)
{
    chassis(false);
    EXPECT_EQ(OFP_util_StartDaemon(), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.calls("SERVICE_"),
              std::vector({status_of(7), start_of(7), batch_start_of({300, 8, 10})}));
}

TEST_F(Daemon, StartOnAMasterAloneStartsNoOther)
{
    platform.daemon_runs(false);
    EXPECT_EQ(OFP_util_StartDaemon(), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.calls("SERVICE_"), std::vector({status_of(7), start_of(7)}));
}

TEST_F(Daemon, StartReturnsThePlatformsCodes)
{
    chassis(false);
    platform.next("SERVICE_Start", {77});
    EXPECT_EQ(OFP_util_StartDaemon(), 77u);
    EXPECT_EQ(platform.sequence("DEV_GetAllNodes"), "");
    platform.next("SERVICE_BatchStart", {78});
    EXPECT_EQ(OFP_util_StartDaemon(), 78u);
}

TEST_F(Daemon, StartFailsWithoutNodes)
{
    platform.nodes.clear();
    EXPECT_EQ(OFP_util_StartDaemon(), uint32_t{OFP_RC_FAILED});
}

TEST_F(Daemon, StartHandlesFailures)
{
    expect_failures_handled({[] { chassis(false); }, [] { return OFP_util_StartDaemon(); }},
                            {{"SERVICE_GetStatus", OFP_RC_OK},
                             {"SERVICE_Start", platform_failure},
                             {"DEV_GetAllNodes", OFP_RC_FAILED},
                             {"SERVICE_BatchStart", platform_failure},
                             {"malloc", OFP_RC_FAILED}});
}

TEST_F(Daemon, StartOtherIsForControllersOnly)
{
    chassis(true);
    platform.controller = false;
    EXPECT_EQ(OFP_util_StartOtherInBlade(), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sequence(""), "DEV_GetSelf DEV_IsController");
}

TEST_F(Daemon, StartOtherStartsNodesThatAreUpAndLackTheService)
{
    chassis(true);
    platform.nodes[4].runs = true; // node 10
    EXPECT_EQ(OFP_util_StartOtherInBlade(), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.calls("SERVICE_BatchStart"), std::vector({batch_start_of({300})}));
    EXPECT_EQ(platform.sequence("sleep"), "");
}

TEST_F(Daemon, StartOtherFailsWhenThereIsNothingToStart)
{
    chassis(true);
    for (Node &node : platform.nodes)
        node.runs = true;
    EXPECT_EQ(OFP_util_StartOtherInBlade(), uint32_t{OFP_RC_FAILED});
    EXPECT_EQ(platform.sequence("SERVICE_BatchStart"), "");
}

TEST_F(Daemon, StartOtherWaitsForTheMasterASecondAtATime)
{
    chassis(false);
    // The master needs three more seconds after it was told to start.
    platform.next("SERVICE_BatchStart", {0});
    int seconds = 0;
    platform.on_sleep = [&seconds] {
        if (++seconds == 3)
            platform.daemon_runs(true);
    };
    EXPECT_EQ(OFP_util_StartOtherInBlade(), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.calls("sleep"), std::vector(3, Call{"sleep", {1}}));
    EXPECT_EQ(platform.calls("SERVICE_BatchStart"), std::vector({batch_start_of({300, 7, 10})}));
}

TEST_F(Daemon, StartOtherHandlesFailures)
{
    expect_failures_handled(
        {[] { chassis(true); }, [] { return OFP_util_StartOtherInBlade(); }},
        {{"DEV_GetAllNodes", OFP_RC_FAILED},
         {"SERVICE_GetStatus", OFP_RC_OK}, // counts as a node to start, or as a master to wait for
         {"SERVICE_BatchStart", platform_failure},
         {"malloc", OFP_RC_FAILED}});
}

TEST_F(Daemon, Phase4IsTheMastersAnswer)
{
    platform.phase4_over = 0x1234;
    EXPECT_EQ(OFP_util_IsPhase4Over(), 0x1234u);
    EXPECT_EQ(platform.calls("SERVICE_"), std::vector({Call{"SERVICE_IsPhase4Over", {7}}}));
}
