// Builds OpenFlow messages for tests.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "openflow/oxm.h"
#include "openflow/wire.h"

namespace build {

using Message = std::vector<uint8_t>;

// "80 00 00 04": pairs of hex digits, blanks between them ignored.
Message hex(std::string_view text);

Message join(std::initializer_list<std::span<const uint8_t>> parts);

// An OXM entry. The mask, when given, is as wide as the value.
Message oxm8(uint8_t field, uint8_t value);
Message oxm16(uint8_t field, uint16_t value, std::optional<uint16_t> mask = {});
Message oxm32(uint8_t field, uint32_t value, std::optional<uint32_t> mask = {});
Message oxm64(uint8_t field, uint64_t value, std::optional<uint64_t> mask = {});
Message oxm_bytes(uint16_t oxm_class, uint8_t field, std::span<const uint8_t> value,
                  std::span<const uint8_t> mask = {});

// A private field or an experimenter item; the item's id is written ahead of its data.
Message private_field(uint8_t field, std::span<const uint8_t> value,
                      std::span<const uint8_t> mask = {});
Message item(uint8_t type, std::span<const uint8_t> data);

// The entries of an interface list as the library cuts them.
Message interfaces(std::span<const uint32_t> indexes);

// ofp_match with its pad bytes.
Message match(std::initializer_list<Message> entries);
Message match(std::span<const Message> entries);

// A rule on addresses, protocol and ports.
Message five_tuple(uint32_t src, uint32_t dst, uint16_t src_port, uint16_t dst_port,
                   uint32_t src_mask = 0xffffffff, uint32_t dst_mask = 0xffffffff);

Message output(uint32_t port);
Message group_action(uint32_t group);
Message experimenter_action(uint32_t subtype, uint16_t length);
Message write_actions(std::initializer_list<Message> actions);

struct FlowMod {
    uint8_t command = openflow::OFPFC_ADD;
    uint8_t table = 200;
    uint16_t priority = 100;
    uint16_t flags = 0x001e; // as the library sends them
    uint32_t out_port = openflow::OFPP_ANY;
    uint32_t out_group = openflow::OFPG_ANY;
    uint64_t cookie = 0;
    uint64_t cookie_mask = 0;
    uint16_t idle_timeout = 0;
    uint16_t hard_timeout = 0;
    uint32_t buffer_id = openflow::OFP_NO_BUFFER;
    uint32_t xid = 0;
    Message match = build::match(std::initializer_list<Message>{});
    Message instructions = write_actions({output(1)});
};
Message flow_mod(const FlowMod &mod);

Message bucket(uint32_t port);
Message bucket(uint32_t watch_port, uint32_t watch_group, std::initializer_list<Message> actions,
               uint16_t weight = 0);
Message group_mod(uint16_t command, uint8_t type, uint32_t id,
                  std::initializer_list<Message> buckets = {});

} // namespace build
