#include <cstddef>
#include <cstring>
#include <memory>

#include "double/platform.h"
#include "ofp/query.h"
#include "query/list.h"

using namespace test;

namespace {

class VerboseRecord : public PlatformTest {
protected:
    VerboseRecord() : verbose(new OfpVerbose)
    {
        std::memset(verbose.get(), 0xee, sizeof *verbose);
        OFP_get_InitVerbose(verbose.get());
    }

    std::unique_ptr<OfpVerbose> verbose;
};

bool empty_both_ways(const OfpLink &head) { return head.next == &head && head.previous == &head; }

// TLV values follow one another without gaps.
#define EXPECT_FOLLOWS(record, member, next)                                                       \
    EXPECT_EQ(offsetof(record, next), offsetof(record, member) + sizeof record{}.member)

} // namespace

TEST_F(VerboseRecord, InitClearsAllAndEmptiesTheLists)
{
    EXPECT_TRUE(empty_both_ways(verbose->controllers));
    EXPECT_TRUE(empty_both_ways(verbose->running.interfaces));
    EXPECT_TRUE(empty_both_ways(verbose->configured.interfaces));
    EXPECT_EQ(verbose->running.vlans, nullptr);
    EXPECT_EQ(verbose->configured.vlans, nullptr);

    verbose->controllers = verbose->running.interfaces = verbose->configured.interfaces = {};
    EXPECT_EQ(bytes_of(*verbose), Bytes(sizeof *verbose));
}

TEST_F(VerboseRecord, FiniFreesTheThreeListsAndTouchesNothingElse)
{
    for (OfpLink *list :
         {&verbose->controllers, &verbose->running.interfaces, &verbose->configured.interfaces}) {
        ASSERT_NE(ofp::append<OfpControllerElement>(list), nullptr);
        ASSERT_NE(ofp::append<OfpControllerElement>(list), nullptr);
    }
    uint8_t map[16];
    verbose->running.vlans = reinterpret_cast<Bitmap *>(map);
    verbose->instance[3] = 7;
    verbose->configured.table_count = 9;
    OFP_get_FiniVerbose(verbose.get());
    EXPECT_TRUE(empty_both_ways(verbose->controllers));
    EXPECT_TRUE(empty_both_ways(verbose->running.interfaces));
    EXPECT_TRUE(empty_both_ways(verbose->configured.interfaces));
    EXPECT_EQ(verbose->running.vlans, reinterpret_cast<Bitmap *>(map));
    EXPECT_EQ(verbose->instance[3], 7);
    EXPECT_EQ(verbose->configured.table_count, 9);
    OFP_get_FiniVerbose(verbose.get());
}

TEST_F(VerboseRecord, ValuesFollowWithoutGaps)
{
    EXPECT_FOLLOWS(OfpVerbose, inst_active, instance);
    EXPECT_FOLLOWS(OfpVerboseRunning, filter, table_count);
    EXPECT_FOLLOWS(OfpVerboseRunning, table_count, flow_table_run);
    EXPECT_FOLLOWS(OfpVerboseRunning, flow_table_run, flow_entry_limit);
    EXPECT_FOLLOWS(OfpVerboseRunning, vlan_loosen, mac_learning);
    EXPECT_FOLLOWS(OfpVerboseRunning, interfaces, vlans);
    EXPECT_FOLLOWS(OfpVerboseRunning, vlans, conn_mode);
    EXPECT_FOLLOWS(OfpVerboseRunning, oap_server_run, qinq_net_wkcfg);
    EXPECT_FOLLOWS(OfpVerboseRunning, flow_monitor_interval, flow_monitor_threshold);
    EXPECT_FOLLOWS(OfpVerboseConfigured, flow_table, flow_entry_limit);
    EXPECT_FOLLOWS(OfpVerboseConfigured, datapath_id, vlan_loosen);
    EXPECT_FOLLOWS(OfpVerboseConfigured, vlans, mac_learning);
    EXPECT_FOLLOWS(OfpVerboseConfigured, interfaces, conn_mode);
    EXPECT_FOLLOWS(OfpVerboseConfigured, oap_server, dyn_mac_aware);
    EXPECT_FOLLOWS(OfpVerboseConfigured, tcp_nsr, exclude_conn_id);
    EXPECT_FOLLOWS(OfpVerboseConfigured, flow_monitor_interval, flow_monitor_threshold);
}
