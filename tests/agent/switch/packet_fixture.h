// Packets sent through a switch that a test programs.
#pragma once

#include <functional>
#include <vector>

#include "switch/fixture.h"
#include "switch/trace.h"

inline build::Message together(std::initializer_list<build::Message> messages)
{
    build::Message all;
    for (const build::Message &message : messages) {
        all.insert(all.end(), message.begin(), message.end());
    }
    return all;
}

class PacketTest : public SwitchTest {
protected:
    agent::Trace trace(const Message &fields)
    {
        agent::Trace result;
        EXPECT_FALSE(
            switch_.trace(CLIENT, {fields, tables_, tables_.front(), permit_, is_up_}, result));
        return result;
    }

    std::optional<openflow::Error> refusal(const Message &fields)
    {
        agent::Trace result;
        return switch_.trace(CLIENT, {fields, tables_, tables_.front(), false, {}}, result);
    }

    // The ports that a packet leaves by.
    std::vector<uint32_t> ports(const Message &fields)
    {
        std::vector<uint32_t> result;
        for (const agent::PacketOutput &output : trace(fields).outputs) {
            if (!output.held_back) {
                result.push_back(output.port);
            }
        }
        return result;
    }

    void add(uint16_t priority, const Message &match, const Message &instructions,
             uint8_t table = TABLE)
    {
        ASSERT_FALSE(send({.table = table,
                           .priority = priority,
                           .flags = 0,
                           .match = match,
                           .instructions = instructions}));
    }

    static Message port(uint32_t number) { return build::oxm32(openflow::OFPXMT_IN_PORT, number); }
    static inline const Message any = build::match(std::initializer_list<Message>{});

    std::vector<uint8_t> tables_ = {TABLE};
    bool permit_ = false;
    std::function<bool(uint32_t)> is_up_;
};
