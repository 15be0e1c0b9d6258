// A switch, and short ways to program it.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "openflow/build.h"
#include "switch/switch.h"

class SwitchTest : public testing::Test {
protected:
    using Message = build::Message;

    static constexpr uint16_t CLIENT = 4096;
    static constexpr uint16_t OTHER = 4097;
    static constexpr uint8_t TABLE = 200;

    std::optional<openflow::Error> send(const build::FlowMod &mod, uint16_t client = CLIENT)
    {
        return switch_.flow_mod(client, build::flow_mod(mod));
    }

    std::optional<openflow::Error> send_group(const Message &message, uint16_t client = CLIENT)
    {
        return switch_.group_mod(client, message);
    }

    uint32_t rules(uint16_t client = CLIENT, uint8_t table = TABLE) const
    {
        return switch_.table(client, table).rules;
    }

    std::vector<uint32_t> ids(uint16_t client = CLIENT, uint8_t table = TABLE) const
    {
        std::vector<uint32_t> all;
        for (uint32_t id = switch_.next_rule(client, table, 0); id != 0;
             id = switch_.next_rule(client, table, id)) {
            all.push_back(id);
        }
        return all;
    }

    Message match_of(uint32_t id) const
    {
        const auto view = switch_.rule(CLIENT, TABLE, id);
        return view ? Message(view->match.begin(), view->match.end()) : Message();
    }

    Message instructions_of(uint32_t id) const
    {
        const auto view = switch_.rule(CLIENT, TABLE, id);
        return view ? Message(view->instructions.begin(), view->instructions.end()) : Message();
    }

    static Message in_port(uint32_t port)
    {
        return build::match({build::oxm32(openflow::OFPXMT_IN_PORT, port)});
    }

    static Message ipv4_dst(uint32_t address, uint32_t mask = 0xffffffff)
    {
        return build::match({build::oxm16(openflow::OFPXMT_ETH_TYPE, 0x0800),
                             build::oxm32(openflow::OFPXMT_IPV4_DST, address, mask)});
    }

    static constexpr openflow::Error OVERLAP = {openflow::OFPET_FLOW_MOD_FAILED,
                                                openflow::OFPFMFC_OVERLAP};
    static constexpr openflow::Error TABLE_FULL = {openflow::OFPET_FLOW_MOD_FAILED,
                                                   openflow::OFPFMFC_TABLE_FULL};

    static inline uint32_t now_ = 0;
    static uint32_t clock() { return now_; }

    void SetUp() override { now_ = 1000; }

    agent::Switch switch_{{}, std::pmr::new_delete_resource(), clock};
};
