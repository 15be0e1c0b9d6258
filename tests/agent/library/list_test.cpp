// Lists of any length come whole, in order and over as many datagrams as they take.
#include <algorithm>
#include <string>
#include <vector>

#include "agent/daemon/messages.h"
#include "agent/library/served_model.h"
#include "ofp.h"

namespace agent::test {
namespace {

constexpr uint32_t MANY = 10'000;

class ListTest : public ServedModelTest {
protected:
    ListTest() { OFP_get_InitMeterBandList(&list_); }
    ~ListTest() override { OFP_get_FiniMeterBandList(&list_); }

    template <class Element>
    std::vector<Element> elements() const
    {
        std::vector<Element> result;
        for (const OfpLink *at = list_.next; at != &list_; at = at->next) {
            result.push_back(*reinterpret_cast<const Element *>(at));
        }
        return result;
    }

    OfpLink list_;
};

TEST_F(ListTest, TheSummaryOfManyInstances)
{
    serve([](Model &model) {
        for (uint16_t id = 1; id <= MANY; id++) {
            configure(model, id, [id](InstanceConfig &instance) {
                instance.active = id % 2 == 0;
                instance.datapath_id = uint64_t{id} << 40;
                instance.tables = {{0, {}, 0}, {1, {}, 0}};
                instance.bound_ports[id] = 0;
            });
        }
    });
    OfpSummaryList summary;
    OFP_get_InitSummary(&summary);
    EXPECT_EQ(OFP_get_Summary(&summary), 0U);
    EXPECT_EQ(summary.count, MANY);
    uint16_t id = 0;
    for (const OfpLink *at = summary.link.next; at != &summary.link; at = at->next) {
        const OfpSummary &entry = reinterpret_cast<const OfpSummaryElement *>(at)->summary;
        id++;
        ASSERT_EQ(entry.value_u16_16, id);
        ASSERT_EQ(entry.value_u64_0, uint64_t{id} << 40);
        ASSERT_EQ(entry.value_u32_8, 0U);
        ASSERT_EQ(entry.value_u32_12, 1U);
        ASSERT_EQ(entry.value_u16_18, 2);
        ASSERT_EQ(entry.value_u16_20, id % 2 == 0 ? 1 : 0);
    }
    EXPECT_EQ(id, MANY);
    OFP_get_FiniSummary(&summary);
}

TEST_F(ListTest, TheSummaryOfNoInstancesIsEmpty)
{
    serve([](Model &) {});
    OfpSummaryList summary;
    OFP_get_InitSummary(&summary);
    EXPECT_EQ(OFP_get_Summary(&summary), 0U);
    EXPECT_EQ(summary.count, 0U);
}

TEST_F(ListTest, ThePortsOfAllInstances)
{
    serve([](Model &model) {
        for (uint16_t id = 1; id <= 4; id++) { // every fourth port each
            configure(model, id, [id](InstanceConfig &instance) {
                for (uint32_t index = id; index <= MANY; index += 4) {
                    instance.bound_ports[index] = index == 5 ? 0xffffffff : index * 2;
                }
            });
        }
    });
    ASSERT_EQ(OFP_get_AcPortInfo(&list_), 0U);
    const auto ports = elements<OfpAcPortElement>();
    ASSERT_EQ(ports.size(), MANY);
    for (uint32_t i = 0; i < MANY; i++) {
        const OfpAcPortInfo &port = ports[i].port;
        ASSERT_EQ(port.if_index, i + 1);
        ASSERT_EQ(port.name, "GE1/0/" + std::to_string(i + 1));
        ASSERT_EQ(port.value_u32_56, i + 1 == 5 ? 0 : (i + 1) * 2);
        ASSERT_EQ(port.value_u32_60, i % 4 + 1);
    }
}

TEST_F(ListTest, WithoutPortsIsASuccess)
{
    serve([](Model &) {});
    EXPECT_EQ(OFP_get_AcPortInfo(&list_), 0U);
    EXPECT_TRUE(elements<OfpAcPortElement>().empty());
}

// The numbers at which a datagram is just full, and one more.
class PortCountTest : public ListTest, public testing::WithParamInterface<uint32_t> {};

TEST_P(PortCountTest, IsKeptWhereverADatagramEnds)
{
    serve([](Model &model) {
        configure(model, 1, [](InstanceConfig &instance) {
            for (uint32_t index = 1; index <= GetParam(); index++) {
                instance.bound_ports[index] = 0;
            }
        });
    });
    EXPECT_EQ(OFP_get_AcPortInfo(&list_), 0U);
    EXPECT_EQ(elements<OfpAcPortElement>().size(), GetParam());
    OfpVerbose verbose;
    OFP_get_InitVerbose(&verbose);
    EXPECT_EQ(OFP_get_Verbose(1, &verbose), 0U);
    uint32_t count = 0;
    for (const OfpLink *at = verbose.configured.interfaces.next;
         at != &verbose.configured.interfaces; at = at->next) {
        count++;
    }
    EXPECT_EQ(count, GetParam());
    OFP_get_FiniVerbose(&verbose);
}

INSTANTIATE_TEST_SUITE_P(Counts, PortCountTest,
                         testing::Values(1, 119, 120, 121, 145, 146, 147, 240, 292, 293, MANY));

TEST_F(ListTest, TheResourcesOfInterfacesAreOneDatagram)
{
    serve([](Model &) {});
    EXPECT_EQ(OFP_get_ResourcesIf(0, 0, &list_), 0U);
    const auto all = elements<OfpResourceElement>();
    ASSERT_EQ(all.size(), 81U);
    EXPECT_EQ(all[80].resources.if_index, 81U);
    OFP_get_FiniMeterBandList(&list_);
    EXPECT_EQ(OFP_get_ResourcesIf(INTERFACES, 0, &list_), 0U);
    ASSERT_EQ(elements<OfpResourceElement>().size(), 1U);
    EXPECT_EQ(elements<OfpResourceElement>()[0].resources.if_index, INTERFACES);
    OFP_get_FiniMeterBandList(&list_);
    EXPECT_EQ(OFP_get_ResourcesIf(INTERFACES + 1, 0, &list_), NOT_PRESENT);
}

// ---- Rules of a group

Datagram to_group(uint32_t in_port, uint8_t table)
{
    Datagram message = flow_mod(0, {.in_port = in_port, .table = table});
    const Datagram action = hex("0016 0008 00000009");
    message.insert(message.end(), action.begin(), action.end());
    message[3] = static_cast<uint8_t>(message.size());
    message[67] = 16; // the instruction with its action
    return message;
}

void add_references(Model &model, uint32_t count, uint8_t table)
{
    for (uint32_t port = 1; port <= count; port++) {
        ask(model, join({head(0x50000001), client_head(), entry(to_group(port, table))}));
    }
}

class ReferenceTest : public ServedModelTest {
protected:
    ReferenceTest() { OFP_get_InitRuleRefAR(references_); }
    ~ReferenceTest() override { OFP_get_FiniRuleRefAR(references_); }

    std::vector<uint32_t> rules(uint8_t table) const
    {
        std::vector<uint32_t> ids;
        const OfpLink *const head = &references_[table];
        for (const OfpLink *at = head->next; at != head; at = at->next) {
            const auto *element = reinterpret_cast<const OfpRuleRefElement *>(at);
            EXPECT_EQ(element->table_id, table);
            ids.push_back(element->rule_id);
        }
        return ids;
    }

    OfpLink references_[OFP_RULE_REF_TABLES];
    uint32_t total_ = 99;
};

void fill_references(Model &model, uint32_t first, uint32_t second)
{
    open_period(model);
    configure(model, CLIENT, [](InstanceConfig &instance) {
        instance.tables.insert(instance.tables.begin(), OfpFlowTable{10, {}, 2});
    });
    ask(model, group_request(0x50000003, group_mod(9)));
    ask(model, group_request(0x50000003, group_mod(8)));
    add_references(model, first, 10);
    add_references(model, second, 200);
    ask(model, batch({{.in_port = 99'999}})); // of no group
}

TEST_F(ReferenceTest, ComeFromAllTablesOverManyDatagrams)
{
    serve([](Model &model) { fill_references(model, 3000, MANY); });
    EXPECT_EQ(OFP_get_GroupRefRule(CLIENT, 9, references_, &total_), uint32_t{OFP_REF_RULE_END});
    EXPECT_EQ(total_, MANY + 3000);
    ASSERT_EQ(rules(10).size(), 3000U);
    const auto ids = rules(200);
    ASSERT_EQ(ids.size(), MANY);
    for (uint32_t i = 0; i < MANY; i++) {
        ASSERT_EQ(ids[i], i + 1);
    }
}

TEST_F(ReferenceTest, EndWhereverADatagramDoes)
{
    serve([](Model &model) { fill_references(model, 682, 682); });
    EXPECT_EQ(OFP_get_GroupRefRule(CLIENT, 9, references_, &total_), uint32_t{OFP_REF_RULE_END});
    EXPECT_EQ(total_, 1364U);
    EXPECT_EQ(rules(10).size(), 682U);
    EXPECT_EQ(rules(200).size(), 682U);
}

TEST_F(ReferenceTest, OfAGroupWithoutRulesAreNone)
{
    serve([](Model &model) { fill_references(model, 1, 1); });
    EXPECT_EQ(OFP_get_GroupRefRule(CLIENT, 8, references_, &total_), uint32_t{OFP_REF_RULE_END});
    EXPECT_EQ(total_, 0U);
    EXPECT_EQ(OFP_get_GroupRefRule(CLIENT, 7, references_, &total_), NO_GROUP);
    EXPECT_EQ(OFP_get_GroupRefRule(5, 9, references_, &total_), NO_INSTANCE);
    EXPECT_EQ(OFP_get_MeterRefRule(CLIENT, 9, references_, &total_), NO_METER);
}

} // namespace
} // namespace agent::test
