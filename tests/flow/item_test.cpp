#include "ofp/flow_item.h"

#include <cstdlib>
#include <cstring>

#include "double/memory.h"
#include "double/platform.h"
#include "flow/rules.h"

using namespace test;

namespace {

class Item : public PlatformTest {};

OfpAction *allocate_action(uint32_t type)
{
    auto *action = static_cast<OfpAction *>(memory::give(sizeof(OfpAction)));
    *action = {.type = type, .size = sizeof *action};
    return action;
}

// Whether destroying an action of the type frees it.
bool is_destroyed(uint32_t type)
{
    OfpAction *action = allocate_action(type);
    const size_t before = memory::outstanding();
    OFP_util_DestroyAction(action);
    const bool freed = memory::outstanding() < before;
    if (!freed)
        std::free(action);
    return freed;
}

// A rule that owns everything a rule can own.
struct Full {
    Full()
    {
        rule.item.priority = 7;
        rule.has({OFP_FIELD_METADATA, OFP_FIELD_IPV6_SRC}).interfaces(3).output(5);
        rule.action(nullptr);
        rule.item.match.metadata = 0x1122334455667788;
        rule.item.match.in_port = 1;
        rule.item.match.in_phy_port = 2;
        rule.item.match.out_port = 3;
        rule.item.match.vrf = 4;
        rule.item.match.reserved = 5;
        rule.item.match.eth_dst[0] = 6;
        rule.item.match.ip_range[19] = 7;
        rule.item.match.tunnel_id = 8;
        rule.ipv6.ipv6_src[15] = 9;
        rule.mask.masked = 4;
        rule.mask.pbb_isid = 10;
        set_field.ipv6 = &set_ipv6;
        set_ipv6.ipv6_flabel = 11;
        rule.action(&set_field.header);
        rule.experimenter(37, hex("01020304"));
    }
    Rule rule;
    OfpMatchIpv6 set_ipv6 = {};
    OfpActionSetField set_field = {{OFP_ACTION_SET_FIELD, sizeof(OfpActionSetField)}, nullptr};
};

} // namespace

TEST_F(Item, CopiesEveryValueAndOwnsItsBlocks)
{
    const Full full;
    const OfpFlowItem &source = full.rule.item;
    OfpFlowItem *copy = OFP_util_CopyFlowItem(&source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->priority, 7);
    EXPECT_EQ(copy->match.fields, source.match.fields);
    EXPECT_EQ(copy->match.in_port, 1u);
    EXPECT_EQ(copy->match.in_phy_port, 2u);
    EXPECT_EQ(copy->match.out_port, 3u);
    EXPECT_EQ(copy->match.vrf, 4);
    EXPECT_EQ(copy->match.reserved, 5u);
    EXPECT_EQ(copy->match.metadata, 0x1122334455667788u);
    const size_t run = offsetof(OfpFRMatch, ipv6) - offsetof(OfpFRMatch, eth_dst);
    EXPECT_EQ(bytes_of(copy->match.eth_dst, run), bytes_of(source.match.eth_dst, run));
    EXPECT_NE(copy->match.ipv6, source.match.ipv6);
    EXPECT_EQ(bytes_of(*copy->match.ipv6), bytes_of(full.rule.ipv6));
    EXPECT_NE(copy->match.mask, source.match.mask);
    EXPECT_EQ(bytes_of(*copy->match.mask), bytes_of(full.rule.mask));
    ASSERT_EQ(copy->match.batch_if.count, 3u);
    EXPECT_NE(copy->match.batch_if.if_index, source.match.batch_if.if_index);
    EXPECT_EQ(copy->match.batch_if.if_index[2], 3u);
    ASSERT_EQ(copy->action_count, 3u);
    EXPECT_NE(copy->actions[0], source.actions[0]);
    EXPECT_EQ(bytes_of(copy->actions[0], 16), bytes_of(source.actions[0], 16));
    auto *set_field = reinterpret_cast<OfpActionSetField *>(copy->actions[2]);
    EXPECT_NE(set_field->ipv6, full.set_field.ipv6);
    EXPECT_EQ(set_field->ipv6->ipv6_flabel, 11u);
    OFP_util_FreeFlowItem(copy);
}

TEST_F(Item, KeepsANullSlotOfTheActionList)
{
    Rule rule;
    rule.output(1).action(nullptr).output(2);
    OfpFlowItem *copy = OFP_util_CopyFlowItem(&rule.item);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->action_count, 3u);
    EXPECT_NE(copy->actions[0], nullptr);
    EXPECT_EQ(copy->actions[1], nullptr);
    EXPECT_NE(copy->actions[2], nullptr);
    OFP_util_FreeFlowItem(copy);
}

TEST_F(Item, CopiesNoIpv6BlockAndNoMaskWhereThereIsNone)
{
    Rule rule(1);
    rule.item.match.ipv6 = nullptr;
    rule.item.match.mask = nullptr;
    OfpFlowItem *copy = OFP_util_CopyFlowItem(&rule.item);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->match.ipv6, nullptr);
    EXPECT_EQ(copy->match.mask, nullptr);
    EXPECT_EQ(copy->actions, nullptr);
    OFP_util_FreeFlowItem(copy); // the fixture finds a block that leaked
}

TEST_F(Item, LeavesTheExperimenterMatchesToTheCaller)
{
    const Full full;
    OfpFlowItem *copy = OFP_util_CopyFlowItem(&full.rule.item);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->match.exp_match.count, 0u);
    EXPECT_EQ(copy->match.exp_match.items, nullptr);
    OFP_util_FreeFlowItem(copy);

    OfpExpMatchItem *list[1] = {};
    OfpFRMatch match = {};
    match.exp_match = {1, list};
    EXPECT_EQ(OFP_util_CopyFRMatch(&full.rule.item.match, &match), uint32_t{OFP_RC_OK});
    EXPECT_EQ(match.exp_match.items, list);
    OFP_util_FreeMatchIpv6Mask(&match);
}

TEST_F(Item, CopiesABatchListWithoutArrayAsEmpty)
{
    const OfpBatchIfData source = {.count = 5, .if_index = nullptr};
    uint32_t index = 1;
    OfpBatchIfData copy = {.count = 1, .if_index = &index};
    EXPECT_EQ(OFP_util_CopyBatchIfData(&source, &copy), uint32_t{OFP_RC_OK});
    EXPECT_EQ(copy.count, 0u);
    EXPECT_EQ(copy.if_index, nullptr);
}

TEST_F(Item, CopiesNoActionsFromAnItemWithoutArray)
{
    OfpFlowItem source = {};
    source.action_count = 3;
    OfpFlowItem copy = {};
    EXPECT_EQ(OFP_util_CopyAction(&source, &copy), uint32_t{OFP_RC_OK});
    EXPECT_EQ(copy.action_count, 0u);
    EXPECT_EQ(copy.actions, nullptr);
}

TEST_F(Item, CopyIsAllOrNothingWhenMemoryIsShort)
{
    const Full full;
    size_t failures = 0;
    for (size_t n = 1;; ++n) {
        memory::fail_at(n);
        OfpFlowItem *copy = OFP_util_CopyFlowItem(&full.rule.item);
        if (!memory::has_failed()) {
            OFP_util_FreeFlowItem(copy);
            break;
        }
        EXPECT_EQ(copy, nullptr) << "allocation " << n;
        ++failures;
    }
    // item, IPv6 block, mask, interfaces, action array, output, set-field, its IPv6 block
    EXPECT_EQ(failures, 8u);
}

TEST_F(Item, TellsWhichAllocationOfTheActionsFailed)
{
    const Full full;
    OfpFlowItem copy = {};
    const uint32_t expected[] = {OFP_RC_FAILED, OFP_RC_NO_RESOURCE, OFP_RC_NO_RESOURCE,
                                 OFP_RC_NO_RESOURCE}; // array, output, set-field, its block
    for (size_t n = 1; n <= 4; ++n) {
        memory::fail_at(n);
        EXPECT_EQ(OFP_util_CopyAction(&full.rule.item, &copy), expected[n - 1]) << n;
        EXPECT_EQ(copy.actions, nullptr);
    }
}

TEST_F(Item, TellsThatAMatchCouldNotBeCopied)
{
    const Full full;
    for (size_t n = 1; n <= 3; ++n) { // IPv6 block, mask, interfaces
        OfpFRMatch match = {};
        memory::fail_at(n);
        EXPECT_EQ(OFP_util_CopyFRMatch(&full.rule.item.match, &match),
                  uint32_t{OFP_RC_NO_RESOURCE});
        OFP_util_FreeMatchIpv6Mask(&match);
    }
}

TEST_F(Item, FillsASlotOnlyWithAWholeAction)
{
    Full full;
    OfpAction *array[2] = {&full.set_field.header, &full.set_field.header};
    EXPECT_EQ(OFP_util_FillActions(nullptr, 0, array), uint32_t{OFP_RC_OK});
    memory::fail_at(1); // the record: the slot keeps what it had
    EXPECT_EQ(OFP_util_FillActions(&full.set_field.header, 0, array), uint32_t{OFP_RC_NO_RESOURCE});
    EXPECT_EQ(array[0], &full.set_field.header);
    memory::fail_at(2); // its IPv6 block
    EXPECT_EQ(OFP_util_FillActions(&full.set_field.header, 0, array), uint32_t{OFP_RC_NO_RESOURCE});
    EXPECT_EQ(array[0], nullptr);
    EXPECT_EQ(array[1], &full.set_field.header);
}

TEST_F(Item, CopiesASetFieldActionWithoutBlock)
{
    const OfpActionSetField source = {{OFP_ACTION_SET_FIELD, sizeof source}, nullptr};
    OfpAction *array[1] = {};
    EXPECT_EQ(OFP_util_FillActions(&source.header, 0, array), uint32_t{OFP_RC_OK});
    EXPECT_EQ(reinterpret_cast<OfpActionSetField *>(array[0])->ipv6, nullptr);
    OFP_util_DestroyAction(array[0]);
}

TEST_F(Item, DestroysOnlyActionsOfTheTypesItMakes)
{
    for (uint32_t type :
         {0u, 11u, 12u, 15u, 19u, 22u, 24u, 26u, 27u, 61440u, 61443u, 61445u, 65535u})
        EXPECT_TRUE(is_destroyed(type)) << type;
    for (uint32_t type : {1u, 5u, 10u, 13u, 14u, 28u, 61439u, 61446u, 65534u, 65536u})
        EXPECT_FALSE(is_destroyed(type)) << type;
}

TEST_F(Item, DestroysTheArrayOfAnEmptyList)
{
    OFP_util_DestroyActionList(0, static_cast<OfpAction **>(memory::give(8)));
    OFP_util_DestroyActionList(3, nullptr);
}

TEST_F(Item, DestroyingAListClearsNothingBeyondItsCount)
{
    auto **array = static_cast<OfpAction **>(memory::give(2 * sizeof(OfpAction *)));
    OfpAction *kept = allocate_action(0);
    array[0] = allocate_action(0);
    array[1] = kept;
    OFP_util_DestroyActionList(1, array);
    std::free(kept); // still allocated: the heap would stop the test
}

TEST_F(Item, FreesTheBlocksOfAMatchOnceOnly)
{
    const Full full;
    OfpFRMatch match = {};
    ASSERT_EQ(OFP_util_CopyFRMatch(&full.rule.item.match, &match), uint32_t{OFP_RC_OK});
    OFP_util_FreeMatchIpv6Mask(&match);
    EXPECT_EQ(match.ipv6, nullptr);
    EXPECT_EQ(match.mask, nullptr);
    EXPECT_EQ(match.batch_if.if_index, nullptr);
    EXPECT_EQ(match.batch_if.count, 3u);
    OFP_util_FreeMatchIpv6Mask(&match);
}

TEST_F(Item, ReleasingNothingIsHarmless)
{
    OFP_util_FreeFlowItem(nullptr);
    OFP_util_DestroyAction(nullptr);
}
