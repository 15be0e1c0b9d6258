#include "query/list.h"

#include <cstring>
#include <vector>

#include "double/memory.h"
#include "double/platform.h"
#include "ofp/result.h"

using namespace test;

namespace {

class List : public PlatformTest {};

// The payloads forward, checked against the links backward.
std::vector<uint32_t> rule_ids(const OfpLink &head)
{
    std::vector<uint32_t> ids;
    const OfpLink *previous = &head;
    for (const OfpLink *at = head.next; at != &head; at = at->next) {
        EXPECT_EQ(at->previous, previous);
        ids.push_back(reinterpret_cast<const OfpRuleRefElement *>(at)->rule_id);
        previous = at;
    }
    EXPECT_EQ(head.previous, previous);
    return ids;
}

OfpRuleRefElement *append_rule(OfpLink *list, uint32_t id)
{
    auto element = ofp::append<OfpRuleRefElement>(list);
    element->rule_id = id;
    return element;
}

bool empty_both_ways(const OfpLink &head) { return head.next == &head && head.previous == &head; }

} // namespace

TEST_F(List, AppendsZeroFilledElementsAtTheTail)
{
    OfpLink list;
    ofp::clear_links(&list);
    EXPECT_TRUE(ofp::is_empty(list));
    append_rule(&list, 3);
    append_rule(&list, 1);
    const OfpRuleRefElement *last = append_rule(&list, 2);
    EXPECT_EQ(last->table_id, 0);
    EXPECT_EQ(bytes_of(last->reserved, 3), Bytes(3));
    EXPECT_EQ(rule_ids(list), std::vector<uint32_t>({3, 1, 2}));
    EXPECT_FALSE(ofp::is_empty(list));
    OFP_get_FiniMeterBandList(&list);
    EXPECT_TRUE(empty_both_ways(list));
}

TEST_F(List, InsertsBeforeAnyElement)
{
    OfpLink list;
    ofp::clear_links(&list);
    OfpRuleRefElement *first = append_rule(&list, 10);
    OfpRuleRefElement inserted[2] = {{.rule_id = 5}, {.rule_id = 7}};
    ofp::insert_before(&first->link, &inserted[0].link);
    ofp::insert_before(&first->link, &inserted[1].link);
    EXPECT_EQ(rule_ids(list), std::vector<uint32_t>({5, 7, 10}));
    std::free(first);
}

TEST_F(List, AppendReportsThatMemoryIsShort)
{
    OfpLink list;
    ofp::clear_links(&list);
    memory::fail_at(1);
    EXPECT_EQ(ofp::append<OfpRuleRefElement>(&list), nullptr);
    EXPECT_TRUE(empty_both_ways(list));
}

TEST_F(List, AppendsRecordsOf128Bytes)
{
    OfpLink list;
    ofp::clear_links(&list);
    const Bytes record = counting(128), other = counting(128, 100);
    EXPECT_EQ(ofp::append_record(record.data(), &list), uint32_t{OFP_RC_OK});
    EXPECT_EQ(ofp::append_record(other.data(), &list), uint32_t{OFP_RC_OK});
    memory::fail_at(1);
    EXPECT_EQ(ofp::append_record(record.data(), &list), uint32_t{OFP_RC_NO_RESOURCE});
    EXPECT_EQ(bytes_of(list.next + 1, 128), record);
    EXPECT_EQ(bytes_of(list.previous + 1, 128), other);
    EXPECT_EQ(list.next->next, list.previous);
    OFP_get_FiniMeterBandList(&list);
}

TEST_F(List, SummaryIsEmptiedButKeepsItsCountWhenFinalised)
{
    OfpSummaryList list;
    std::memset(&list, 0xee, sizeof list);
    OFP_get_InitSummary(&list);
    EXPECT_TRUE(empty_both_ways(list.link));
    EXPECT_EQ(list.count, 0u);

    ASSERT_NE(ofp::append<OfpSummaryElement>(&list.link), nullptr);
    ASSERT_NE(ofp::append<OfpSummaryElement>(&list.link), nullptr);
    list.count = 2;
    OFP_get_FiniSummary(&list);
    EXPECT_TRUE(empty_both_ways(list.link));
    EXPECT_EQ(list.count, 2u);
    OFP_get_FiniSummary(&list);
    EXPECT_TRUE(empty_both_ways(list.link));
}

TEST_F(List, MeterBandListIsInitialisedAndFinalised)
{
    OfpMeterEntry entry;
    std::memset(&entry, 0xee, sizeof entry);
    OFP_get_InitMeterBandList(&entry.bands);
    EXPECT_TRUE(empty_both_ways(entry.bands));
    EXPECT_EQ(entry.meter_id, 0xeeeeeeeeu);
    ASSERT_NE(ofp::append<OfpMeterBandElement>(&entry.bands), nullptr);
    OFP_get_FiniMeterBandList(&entry.bands);
    EXPECT_TRUE(empty_both_ways(entry.bands));
}

TEST_F(List, RuleReferenceArrayHas255Heads)
{
    std::vector<OfpLink> array(256);
    std::memset(array.data(), 0xee, array.size() * sizeof array[0]);
    const Bytes beyond = bytes_of(array[255]);
    OFP_get_InitRuleRefAR(array.data());
    for (size_t table = 0; table < 255; ++table)
        EXPECT_TRUE(empty_both_ways(array[table])) << table;
    append_rule(&array[0], 1);
    append_rule(&array[254], 2);
    append_rule(&array[254], 3);
    OFP_get_FiniRuleRefAR(array.data());
    for (size_t table = 0; table < 255; ++table)
        EXPECT_TRUE(empty_both_ways(array[table])) << table;
    EXPECT_EQ(bytes_of(array[255]), beyond);
}

TEST_F(List, FinalisingAnEmptyListTwiceIsHarmless)
{
    OfpLink list;
    OFP_get_InitMeterBandList(&list);
    OFP_get_FiniMeterBandList(&list);
    OFP_get_FiniMeterBandList(&list);
    EXPECT_TRUE(empty_both_ways(list));
}
