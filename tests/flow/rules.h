// Flow rules as tests write them, and what the agent daemon says about them.
#pragma once

#include <algorithm>
#include <deque>
#include <memory>
#include <vector>

#include "double/platform.h"
#include "ofp.h"

namespace test {

// A rule with all it points to; stays where it is made.
class Rule {
public:
    Rule()
    {
        item.priority = 100;
        item.match.mask = &mask;
        item.match.ipv6 = &ipv6;
    }
    explicit Rule(uint32_t in_port) : Rule()
    {
        has({OFP_FIELD_IN_PORT});
        item.match.in_port = in_port;
    }
    Rule(const Rule &) = delete;
    Rule &operator=(const Rule &) = delete;

    Rule &has(std::initializer_list<unsigned> bits)
    {
        for (unsigned bit : bits)
            item.match.fields |= uint64_t{1} << bit;
        return *this;
    }
    Rule &masks(std::initializer_list<unsigned> bits)
    {
        for (unsigned bit : bits)
            mask.masked |= uint64_t{1} << bit;
        return *this;
    }
    Rule &action(uint32_t type, std::initializer_list<uint32_t> body)
    {
        std::vector<uint32_t> &record = records_.emplace_back(2 + body.size());
        record[0] = type;
        record[1] = static_cast<uint32_t>(record.size() * sizeof(uint32_t));
        std::copy(body.begin(), body.end(), record.begin() + 2);
        return action(reinterpret_cast<OfpAction *>(record.data()));
    }
    Rule &action(OfpAction *record)
    {
        actions_.push_back(record);
        item.actions = actions_.data();
        item.action_count = static_cast<uint32_t>(actions_.size());
        return *this;
    }
    Rule &output(uint32_t port) { return action(OFP_ACTION_OUTPUT, {OFP_PORT_NUMBER, port}); }
    Rule &group(uint32_t id) { return action(OFP_ACTION_GROUP, {id, 0}); }
    Rule &interfaces(uint32_t count)
    {
        indexes_.resize(count);
        for (uint32_t i = 0; i < count; ++i)
            indexes_[i] = i + 1;
        item.match.batch_if = {count, indexes_.data()};
        return has({OFP_FIELD_BATCH_IF});
    }
    // The data of an experimenter match as it lies in memory.
    Rule &experimenter(uint32_t type, const Bytes &data)
    {
        auto &record = experimenters_.emplace_back(sizeof(OfpExpMatchItem) + data.size());
        auto *match = reinterpret_cast<OfpExpMatchItem *>(record.data());
        match->type = type;
        match->length = static_cast<uint16_t>(data.size());
        std::copy(data.begin(), data.end(), match->data);
        return experimenter(match);
    }
    Rule &experimenter(OfpExpMatchItem *match)
    {
        list_.push_back(match);
        item.match.exp_match = {static_cast<uint32_t>(list_.size()), list_.data()};
        return *this;
    }
    // A string that travels with size bytes of payload, or one that does not.
    Rule &string(uint16_t size)
    {
        return experimenter(38, hex("01000000") + Bytes(size - 4u, 0x61));
    }

    OfpFlowItem item = {};
    OfpMatchMask mask = {};
    OfpMatchIpv6 ipv6 = {};

private:
    std::deque<std::vector<uint32_t>> records_;
    std::vector<OfpAction *> actions_;
    std::vector<uint32_t> indexes_;
    std::deque<std::vector<uint8_t>> experimenters_;
    std::vector<OfpExpMatchItem *> list_;
};

// count rules on in_port 1, 2, ... and the array a caller passes.
class Rules {
public:
    Rules() = default;
    explicit Rules(uint32_t count)
    {
        for (uint32_t i = 0; i < count; ++i)
            rules_.emplace_back(i + 1);
    }
    Rule &add() { return rules_.emplace_back(); }
    Rule &add(uint32_t in_port) { return rules_.emplace_back(in_port); }
    Rule &operator[](size_t index) { return rules_[index]; }
    uint32_t count() const { return static_cast<uint32_t>(rules_.size()); }
    const OfpFlowItem *items()
    {
        items_.clear();
        for (const Rule &rule : rules_)
            items_.push_back(rule.item);
        return items_.data();
    }

private:
    std::deque<Rule> rules_;
    std::vector<OfpFlowItem> items_;
};

inline Bytes be16(uint32_t value)
{
    return {static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)};
}
inline Bytes be32(uint32_t value) { return be16(value >> 16) + be16(value & 0xffff); }

// OpenFlow messages of the agent daemon.
inline Bytes barrier_reply(uint32_t xid) { return hex("04 15 0008") + be32(xid); }
inline Bytes error_reply(uint32_t xid, uint16_t type, uint16_t code)
{
    return hex("04 01 000c") + be32(xid) + be16(type) + be16(code);
}

// The OpenFlow messages in the TLVs 122 of a datagram.
inline std::vector<Bytes> openflow_messages(const Bytes &datagram)
{
    std::vector<Bytes> found;
    for (size_t at = 0; at < datagram.size(); at += 4u + datagram.u16(at + 2)) {
        if (datagram.u16(at) == 122)
            found.push_back(datagram.slice(at + 4, datagram.u16(at + 2)));
    }
    return found;
}

// The rules of a datagram: its flow-mods.
inline size_t rules_in(const Bytes &datagram)
{
    size_t count = 0;
    for (const Bytes &message : openflow_messages(datagram))
        count += message.u8(1) == 14;
    return count;
}

// An agent daemon that answers every barrier request.
inline void answer_barriers()
{
    platform.on_send = [](const Bytes &datagram) {
        for (const Bytes &message : openflow_messages(datagram)) {
            if (message.u8(1) == 20)
                platform.reply(barrier_reply(message.u32(4)));
        }
    };
}

// Smooth periods outlast a test, so that all of them open the same one.
inline constexpr uint32_t smooth_id = 42;
inline constexpr uint32_t smooth_mode = 1;

class FlowTest : public PlatformTest {
protected:
    FlowTest()
    {
        platform.reply(barrier_reply(0));
        EXPECT_EQ(OFP_SmoothStart(4096, smooth_id, smooth_mode), uint32_t{OFP_RC_OK});
        platform = Platform();
    }
};

// The TLV 121 that opens every message of a client in such a test.
inline Bytes client_head_tlv(uint16_t client_id)
{
    return hex("0079 0010 00000001 00000003 0000002a 0007") + be16(client_id);
}

// Runs a check in a process of its own, in which nothing has happened yet.
inline void in_fresh_process(void (*check)())
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            platform = Platform();
            check();
            std::exit(testing::Test::HasFailure() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace test
