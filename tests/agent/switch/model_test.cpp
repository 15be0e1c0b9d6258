// The flow table against a plain list of rules that compares bit by bit, by the thousands and over
// few different values, so that rules are often identical, overlap, include one another.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>
#include <vector>

#include "openflow/build.h"
#include "switch/switch.h"

namespace {

using namespace openflow;
using build::Message;

constexpr uint16_t CLIENT = 4096;
constexpr uint8_t TABLE = 200;

// A rule of the model: its match as bit strings per field.
struct Bits {
    uint64_t value = 0;
    uint64_t mask = 0;
    bool operator==(const Bits &) const = default;
};
using Fields = std::array<Bits, 8>;

struct ModelRule {
    uint32_t id = 0;
    uint16_t priority = 0;
    Fields fields;
    Message match;
    Message instructions;
    uint64_t period = 0;
};

bool overlap(const Fields &a, const Fields &b)
{
    for (size_t i = 0; i < a.size(); i++) {
        if (((a[i].value ^ b[i].value) & a[i].mask & b[i].mask) != 0) {
            return false;
        }
    }
    return true;
}

bool within(const Fields &narrow, const Fields &wide)
{
    for (size_t i = 0; i < wide.size(); i++) {
        const bool finer = (wide[i].mask & ~narrow[i].mask) == 0;
        if (!finer || ((narrow[i].value ^ wide[i].value) & wide[i].mask) != 0) {
            return false;
        }
    }
    return true;
}

// How the random matches of a run look.
struct Shape {
    const char *name;
    uint32_t values; // per field
    uint32_t priorities;
    bool prefixes;  // addresses have masks
    double density; // of the fields that may be there
    bool with_item; // an opaque field takes part
};

class Generator {
public:
    Generator(const Shape &shape, uint32_t seed) : shape_(shape), random_(seed) {}

    uint32_t below(uint32_t bound) { return static_cast<uint32_t>(random_() % bound); }
    bool chance(double share) { return std::bernoulli_distribution(share)(random_); }

    Message match(Fields &fields)
    {
        std::vector<Message> entries;
        fields = {};
        if (chance(shape_.density)) {
            number(entries, fields[0], OFPXMT_IN_PORT, 1 + below(shape_.values), {});
        }
        if (chance(shape_.density)) {
            const uint64_t mask = chance(0.5) ? ~uint64_t{0} : 0xf0f;
            fields[1] = {below(shape_.values) * 0x101 & mask, mask};
            entries.push_back(build::oxm64(OFPXMT_METADATA, fields[1].value, fields[1].mask));
        }
        entries.push_back(build::oxm16(OFPXMT_ETH_TYPE, 0x0800));
        entries.push_back(build::oxm8(OFPXMT_IP_PROTO, 6));
        address(entries, fields[2], OFPXMT_IPV4_SRC);
        address(entries, fields[3], OFPXMT_IPV4_DST);
        port(entries, fields[4], OFPXMT_TCP_SRC);
        port(entries, fields[5], OFPXMT_TCP_DST);
        if (shape_.with_item && chance(shape_.density)) {
            fields[6] = {below(shape_.values) + 1, 0xff};
            const std::array<uint8_t, 4> data = {0, 0, 0, static_cast<uint8_t>(fields[6].value)};
            entries.push_back(build::item(37, data));
        }
        return build::match(std::span<const Message>(entries));
    }

private:
    void number(std::vector<Message> &entries, Bits &bits, uint8_t field, uint32_t value,
                std::optional<uint32_t> mask)
    {
        bits = {value, mask.value_or(0xffffffff)};
        entries.push_back(build::oxm32(field, value, mask));
    }

    void address(std::vector<Message> &entries, Bits &bits, uint8_t field)
    {
        if (!chance(shape_.density)) {
            return;
        }
        const uint32_t value = below(shape_.values) << 24 | below(shape_.values) << 16 |
                               below(shape_.values) << 8 | below(shape_.values);
        if (!shape_.prefixes) {
            return number(entries, bits, field, value, {});
        }
        const uint32_t length = 1 + below(32);
        const uint32_t mask = ~uint32_t{0} << (32 - length);
        number(entries, bits, field, value & mask, mask);
    }

    void port(std::vector<Message> &entries, Bits &bits, uint8_t field)
    {
        if (!chance(shape_.density)) {
            return;
        }
        const uint16_t mask = chance(0.7) ? 0xffff : 0xfffe;
        const auto value = static_cast<uint16_t>(below(shape_.values) & mask);
        bits = {value, mask};
        entries.push_back(mask == 0xffff ? build::oxm16(field, value)
                                         : build::oxm16(field, value, mask));
    }

    Shape shape_;
    std::mt19937 random_;
};

class ModelTest : public testing::TestWithParam<Shape> {
protected:
    void add(Generator &random);
    void modify(Generator &random, bool strict);
    void erase(Generator &random, bool strict);
    void period(Generator &random);
    void compare();
    ModelRule *find(uint16_t priority, const Fields &fields);
    uint16_t priority(Generator &random)
    {
        return static_cast<uint16_t>(random.below(GetParam().priorities));
    }
    // Half the time the match of a rule that exists.
    Message match(Generator &random, Fields &fields, uint16_t &priority);

    agent::Switch switch_;
    std::vector<ModelRule> rules_;
    uint64_t periods_ = 0;
    uint64_t opened_ = 0;
    std::map<std::string, int> seen_;
};

ModelRule *ModelTest::find(uint16_t priority, const Fields &fields)
{
    const auto at = std::find_if(rules_.begin(), rules_.end(), [&](const ModelRule &rule) {
        return rule.priority == priority && rule.fields == fields;
    });
    return at != rules_.end() ? &*at : nullptr;
}

Message ModelTest::match(Generator &random, Fields &fields, uint16_t &priority)
{
    if (rules_.empty() || random.chance(0.5)) {
        return random.match(fields);
    }
    const ModelRule &rule = rules_[random.below(static_cast<uint32_t>(rules_.size()))];
    fields = rule.fields;
    priority = rule.priority;
    return rule.match;
}

void ModelTest::add(Generator &random)
{
    ModelRule rule;
    rule.priority = priority(random);
    rule.match =
        random.chance(0.1) ? match(random, rule.fields, rule.priority) : random.match(rule.fields);
    rule.instructions = build::write_actions({build::output(1 + random.below(5))});
    rule.period = periods_;
    const bool check = random.chance(0.8);
    const auto error =
        switch_.flow_mod(CLIENT, build::flow_mod({.priority = rule.priority,
                                                  .flags = static_cast<uint16_t>(check ? 2 : 0),
                                                  .match = rule.match,
                                                  .instructions = rule.instructions}));
    if (ModelRule *same = find(rule.priority, rule.fields)) {
        ASSERT_FALSE(error);
        rule.id = same->id;
        *same = rule;
        seen_["replaced"]++;
        return;
    }
    const bool overlaps = std::any_of(rules_.begin(), rules_.end(), [&](const ModelRule &other) {
        return other.priority == rule.priority && overlap(other.fields, rule.fields);
    });
    if (check && overlaps) {
        ASSERT_EQ(error, (Error{OFPET_FLOW_MOD_FAILED, OFPFMFC_OVERLAP}));
        seen_["overlap"]++;
        return;
    }
    ASSERT_FALSE(error) << error_name(*error);
    // The new rule is the one id that was not there.
    rule.id = switch_.next_rule_matching(CLIENT, TABLE, 0, rule.match);
    while (switch_.rule(CLIENT, TABLE, rule.id)->priority != rule.priority) {
        rule.id = switch_.next_rule_matching(CLIENT, TABLE, rule.id, rule.match);
        ASSERT_NE(rule.id, 0U);
    }
    ASSERT_TRUE(std::none_of(rules_.begin(), rules_.end(),
                             [&](const ModelRule &other) { return other.id == rule.id; }));
    rules_.push_back(rule);
    seen_["added"]++;
}

void ModelTest::modify(Generator &random, bool strict)
{
    Fields fields;
    uint16_t at = priority(random);
    const Message by = match(random, fields, at);
    const Message instructions = build::write_actions({build::output(1 + random.below(5))});
    const uint8_t command = strict ? OFPFC_MODIFY_STRICT : OFPFC_MODIFY;
    ASSERT_FALSE(switch_.flow_mod(
        CLIENT,
        build::flow_mod(
            {.command = command, .priority = at, .match = by, .instructions = instructions})));
    for (ModelRule &rule : rules_) {
        if (strict ? rule.priority == at && rule.fields == fields : within(rule.fields, fields)) {
            rule.instructions = instructions;
            rule.period = periods_;
            seen_[strict ? "modified strictly" : "modified"]++;
        }
    }
}

void ModelTest::erase(Generator &random, bool strict)
{
    Fields fields;
    uint16_t at = priority(random);
    const Message by = match(random, fields, at);
    const uint32_t port = random.chance(0.3) ? 1 + random.below(5) : uint32_t{OFPP_ANY};
    const uint8_t command = strict ? OFPFC_DELETE_STRICT : OFPFC_DELETE;
    ASSERT_FALSE(switch_.flow_mod(
        CLIENT,
        build::flow_mod({.command = command, .priority = at, .out_port = port, .match = by})));
    seen_[strict ? "deleted strictly" : "deleted"] +=
        static_cast<int>(std::erase_if(rules_, [&](const ModelRule &rule) {
            const bool named =
                strict ? rule.priority == at && rule.fields == fields : within(rule.fields, fields);
            const Message outputs = build::write_actions({build::output(port)});
            return named && (port == OFPP_ANY || rule.instructions == outputs);
        }));
}

void ModelTest::period(Generator &random)
{
    if (opened_ == 0) {
        ASSERT_TRUE(switch_.open_period(CLIENT, 7));
        opened_ = ++periods_;
    } else if (random.chance(0.5)) {
        const auto removed =
            std::erase_if(rules_, [&](const ModelRule &rule) { return rule.period < opened_; });
        ASSERT_EQ(switch_.close_period(CLIENT, 7), removed);
        seen_["ended"] += static_cast<int>(removed);
        opened_ = 0;
    }
}

void ModelTest::compare()
{
    std::sort(rules_.begin(), rules_.end(),
              [](const ModelRule &a, const ModelRule &b) { return a.id < b.id; });
    ASSERT_EQ(switch_.table(CLIENT, TABLE).rules, rules_.size());
    uint32_t id = 0;
    for (const ModelRule &rule : rules_) {
        id = switch_.next_rule(CLIENT, TABLE, id);
        ASSERT_EQ(id, rule.id);
        const auto view = switch_.rule(CLIENT, TABLE, id);
        ASSERT_TRUE(view);
        ASSERT_EQ(view->priority, rule.priority);
        ASSERT_TRUE(std::equal(view->match.begin(), view->match.end(), rule.match.begin(),
                               rule.match.end()));
        ASSERT_TRUE(std::equal(view->instructions.begin(), view->instructions.end(),
                               rule.instructions.begin(), rule.instructions.end()));
    }
    ASSERT_EQ(switch_.next_rule(CLIENT, TABLE, id), 0U);
}

TEST_P(ModelTest, AnswersAndHoldsWhatTheListDoes)
{
    Generator random(GetParam(), 20240501);
    for (int step = 0; step < 4000; step++) {
        const uint32_t dice = random.below(1000);
        if (dice < 900) {
            add(random);
        } else if (dice < 950) {
            erase(random, true);
        } else if (dice < 960) {
            erase(random, false);
        } else if (dice < 985) {
            modify(random, true);
        } else if (dice < 995) {
            modify(random, false);
        } else if (dice < 996) {
            period(random);
        }
        ASSERT_FALSE(HasFatalFailure()) << "step " << step;
        if (step % 500 == 0) {
            compare();
            ASSERT_FALSE(HasFatalFailure()) << "step " << step;
        }
    }
    compare();
    for (const char *outcome : {"added", "replaced", "overlap", "deleted strictly"}) {
        EXPECT_GT(seen_[outcome], 0) << outcome;
    }
    // Nothing may stay behind: an emptied switch holds what a fresh one with a table does.
    switch_.flow_mod(CLIENT, build::flow_mod({.command = OFPFC_DELETE}));
    EXPECT_EQ(switch_.table(CLIENT, TABLE).rules, 0U);
    rules_.clear();
    compare();
}

INSTANTIATE_TEST_SUITE_P(Shapes, ModelTest,
                         testing::Values(Shape{"FewValues", 2, 3, false, 0.6, true},
                                         Shape{"Prefixes", 4, 2, true, 0.9, false},
                                         Shape{"ManyMasksOnePriority", 40, 1, false, 0.65, true},
                                         Shape{"SparsePrefixes", 200, 1, true, 0.8, true},
                                         Shape{"Dense", 2, 4, false, 1.0, true},
                                         Shape{"NoCommonField", 5000, 1, false, 0.75, true},
                                         Shape{"ManyPriorities", 3, 500, true, 0.5, false}),
                         [](const auto &shape) { return shape.param.name; });

} // namespace
