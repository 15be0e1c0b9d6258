// What the library's setters configured is what its queries tell.
#include <cstring>
#include <vector>

#include "integration/agent_test.h"
#include "integration/flow_items.h"

namespace integration {
namespace {

constexpr uint16_t INSTANCE = 5;

class Queries : public AgentTest {
protected:
    Queries()
    {
        OFP_get_InitVerbose(&verbose_);
        verbose_.configured.vlans =
            Bitmap_CreateFromBuffer(OFP_util_GetMaxVlanID(), vlans_.data(), 1024);
    }
    ~Queries() override { OFP_get_FiniVerbose(&verbose_); }

    template <class Record, size_t Size>
    static Record as(const uint8_t (&bytes)[Size])
    {
        static_assert(sizeof(Record) == Size);
        Record record;
        std::memcpy(&record, bytes, Size);
        return record;
    }

    static OfpCtrlCfg controller(uint8_t id)
    {
        OfpCtrlCfg record{};
        record.instance_id = INSTANCE;
        record.address_type = 2;
        const uint8_t address[4] = {192, 0, 2, id};
        std::memcpy(record.address, address, sizeof address);
        record.port = 6653;
        record.controller_id = id;
        return record;
    }

    std::vector<uint64_t> vlans_ = std::vector<uint64_t>(128);
    OfpVerbose verbose_;
};

TEST_F(Queries, TellAnInstanceAsItWasConfigured)
{
    ASSERT_EQ(OFP_AddInstance(INSTANCE), 0u);
    const OfpDataPathID datapath{.datapath_id = 0x0102030405060708, .instance_id = INSTANCE};
    EXPECT_EQ(OFP_set_DataPathID(&datapath), 0u);
    EXPECT_EQ(OFP_set_Description(INSTANCE, "edge"), 0u);
    const OfpTcpDscp dscp{.instance_id = INSTANCE, .dscp = 46};
    EXPECT_EQ(OFP_set_TcpDscp(&dscp), 0u);
    OfpVlanRangeList ranges{};
    ranges.range[0] = {.first = 10, .last = 12};
    ranges.count = 1;
    ranges.instance_id = INSTANCE;
    EXPECT_EQ(OFP_set_InManageVlan(&ranges), 0u);
    const OfpPortInstanceCfg port{.if_index = 2, .instance_id = INSTANCE};
    EXPECT_EQ(OFP_set_BindPort(33, &port), 0u);
    const OfpCtrlCfg first = controller(1);
    EXPECT_EQ(OFP_set_CtrlCfg(&first, 1), 0u);

    ASSERT_EQ(OFP_get_Verbose(INSTANCE, &verbose_), 0u);
    EXPECT_STREQ(reinterpret_cast<const char *>(verbose_.instance), "edge");
    EXPECT_EQ(verbose_.configured.table_count, 5);
    EXPECT_EQ(as<OfpDataPathID>(verbose_.configured.datapath_id).datapath_id, datapath.datapath_id);
    EXPECT_EQ(as<OfpTcpDscp>(verbose_.configured.tcp_dscp).dscp, 46u);
    EXPECT_EQ(Bitmap_Check(verbose_.configured.vlans, 9), 0);
    EXPECT_EQ(Bitmap_Check(verbose_.configured.vlans, 10), 1);
    EXPECT_EQ(Bitmap_Check(verbose_.configured.vlans, 12), 1);
    const OfpLink *const interface = verbose_.configured.interfaces.next;
    ASSERT_NE(interface, &verbose_.configured.interfaces);
    EXPECT_EQ(reinterpret_cast<const OfpInterfaceElement *>(interface)->interface.if_index, 2u);
    const OfpLink *const element = verbose_.controllers.next;
    ASSERT_NE(element, &verbose_.controllers);
    EXPECT_EQ(element->next, &verbose_.controllers);
    OfpCtrlSummary summary;
    std::memcpy(&summary, reinterpret_cast<const OfpControllerElement *>(element)->record,
                sizeof summary);
    EXPECT_EQ(summary.controller_id, 1);
    EXPECT_EQ(summary.port, 6653);
}

TEST_F(Queries, TellWhichInstancesAreActive)
{
    ASSERT_EQ(OFP_AddInstance(INSTANCE), 0u);
    ASSERT_EQ(OFP_AddInstance(INSTANCE + 1), 0u);
    EXPECT_EQ(OFP_set_ActiveInst(INSTANCE + 1, 1), 0u);
    OfpSummaryList list;
    OFP_get_InitSummary(&list);
    ASSERT_EQ(OFP_get_Summary(&list), 0u);
    ASSERT_EQ(list.count, 2u);
    const auto &first = reinterpret_cast<const OfpSummaryElement *>(list.link.next)->summary;
    const auto &second = reinterpret_cast<const OfpSummaryElement *>(list.link.previous)->summary;
    EXPECT_EQ(first.value_u16_16, INSTANCE);
    EXPECT_EQ(first.value_u16_20, 0);
    EXPECT_EQ(second.value_u16_16, INSTANCE + 1);
    EXPECT_EQ(second.value_u16_20, 1);
    OFP_get_FiniSummary(&list);
    uint32_t active = 0;
    EXPECT_EQ(OFP_get_InstActive(INSTANCE + 1, &active), 0u);
    EXPECT_EQ(active & 0xffff, 1u);
    ASSERT_EQ(OFP_get_Verbose(INSTANCE + 1, &verbose_), 0u);
    EXPECT_EQ(verbose_.running.table_count, 5);
    EXPECT_NE(as<OfpDataPathID>(verbose_.running.datapath_id).datapath_id, 0u); // the default one
}

TEST_F(Queries, TellTheRulesOfAGroup)
{
    smooth_start();
    const uint32_t ports[] = {3, 4};
    ASSERT_EQ(OFP_SetGroup(CLIENT, 7, 0, 2, ports), 0u);
    FlowItems items;
    for (uint32_t port = 1; port <= 1000; port++) {
        items.add(port);
        if (port % 2 == 0) {
            items.last_to_group(7);
        }
    }
    for (const uint64_t result : add_rules(items)) {
        ASSERT_EQ(result, 0u);
    }
    std::vector<OfpLink> references(OFP_RULE_REF_TABLES);
    OFP_get_InitRuleRefAR(references.data());
    uint32_t total = 0;
    EXPECT_EQ(OFP_get_GroupRefRule(CLIENT, 7, references.data(), &total),
              uint32_t{OFP_REF_RULE_END});
    EXPECT_EQ(total, 500u);
    OFP_get_FiniRuleRefAR(references.data());
    OfpGroupTable groups{};
    EXPECT_EQ(OFP_get_GroupTable(CLIENT, &groups), 0u);
    EXPECT_EQ(groups.group_count, 1u);
}

} // namespace
} // namespace integration
