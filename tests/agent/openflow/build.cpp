#include "openflow/build.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <string>

namespace build {
namespace {

template <class T>
Message bytes_of(T value)
{
    Message bytes(sizeof value);
    openflow::store(bytes.data(), value);
    return bytes;
}

void append(Message &to, std::span<const uint8_t> more)
{
    to.insert(to.end(), more.begin(), more.end());
}

void pad_to_8(Message &message) { message.resize((message.size() + 7) / 8 * 8); }

template <class T>
Message oxm(uint8_t field, T value, std::optional<T> mask)
{
    const Message value_bytes = bytes_of(value);
    const Message mask_bytes = mask ? bytes_of(*mask) : Message();
    return oxm_bytes(openflow::OFPXMC_OPENFLOW_BASIC, field, value_bytes, mask_bytes);
}

} // namespace

Message hex(std::string_view text)
{
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
                 [](unsigned char c) { return std::isxdigit(c) != 0; });
    if (digits.size() % 2 != 0) {
        throw std::invalid_argument("odd number of hex digits");
    }
    Message bytes;
    for (size_t i = 0; i < digits.size(); i += 2) {
        bytes.push_back(static_cast<uint8_t>(std::stoul(digits.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

Message join(std::initializer_list<std::span<const uint8_t>> parts)
{
    Message all;
    for (const auto part : parts) {
        append(all, part);
    }
    return all;
}

Message oxm8(uint8_t field, uint8_t value) { return oxm<uint8_t>(field, value, {}); }

Message oxm16(uint8_t field, uint16_t value, std::optional<uint16_t> mask)
{
    return oxm(field, value, mask);
}

Message oxm32(uint8_t field, uint32_t value, std::optional<uint32_t> mask)
{
    return oxm(field, value, mask);
}

Message oxm64(uint8_t field, uint64_t value, std::optional<uint64_t> mask)
{
    return oxm(field, value, mask);
}

Message oxm_bytes(uint16_t oxm_class, uint8_t field, std::span<const uint8_t> value,
                  std::span<const uint8_t> mask)
{
    Message entry = bytes_of(oxm_class);
    entry.push_back(static_cast<uint8_t>(field << 1 | (mask.empty() ? 0 : 1)));
    entry.push_back(static_cast<uint8_t>(value.size() + mask.size()));
    append(entry, value);
    append(entry, mask);
    return entry;
}

Message private_field(uint8_t field, std::span<const uint8_t> value, std::span<const uint8_t> mask)
{
    return oxm_bytes(openflow::OFPXMC_EXPERIMENTER, field, value, mask);
}

Message item(uint8_t type, std::span<const uint8_t> data)
{
    return private_field(type, join({hex("00 00 0f e2"), data}));
}

Message interfaces(std::span<const uint32_t> indexes)
{
    Message entries;
    while (!indexes.empty()) {
        const auto chunk = indexes.first(std::min<size_t>(indexes.size(), 62));
        Message data;
        for (const uint32_t index : chunk) {
            append(data, bytes_of(index));
        }
        append(entries, item(openflow::PRIVATE_BATCH_IF, data));
        indexes = indexes.subspan(chunk.size());
    }
    return entries;
}

Message match(std::initializer_list<Message> entries)
{
    return match(std::span<const Message>(entries.begin(), entries.size()));
}

Message match(std::span<const Message> entries)
{
    Message bytes = hex("00 01 00 00"); // type OXM, length
    for (const Message &entry : entries) {
        append(bytes, entry);
    }
    openflow::store(&bytes[2], static_cast<uint16_t>(bytes.size()));
    pad_to_8(bytes);
    return bytes;
}

Message five_tuple(uint32_t src, uint32_t dst, uint16_t src_port, uint16_t dst_port,
                   uint32_t src_mask, uint32_t dst_mask)
{
    using namespace openflow;
    const auto address = [](uint8_t field, uint32_t value, uint32_t mask) {
        return mask == 0xffffffff ? oxm32(field, value) : oxm32(field, value & mask, mask);
    };
    return match({oxm16(OFPXMT_ETH_TYPE, 0x0800), oxm8(OFPXMT_IP_PROTO, 6),
                  address(OFPXMT_IPV4_SRC, src, src_mask), address(OFPXMT_IPV4_DST, dst, dst_mask),
                  oxm16(OFPXMT_TCP_SRC, src_port), oxm16(OFPXMT_TCP_DST, dst_port)});
}

Message output(uint32_t port)
{
    return join({hex("00 00 00 10"), bytes_of(port), hex("00 00  00 00 00 00 00 00")});
}

Message group_action(uint32_t group) { return join({hex("00 16 00 08"), bytes_of(group)}); }

Message experimenter_action(uint32_t subtype, uint16_t length)
{
    Message action = join({hex("ff ff"), bytes_of(length), hex("00 00 0f e2"), bytes_of(subtype)});
    action.resize(length);
    return action;
}

Message write_actions(std::initializer_list<Message> actions)
{
    Message instruction = hex("00 03 00 00  00 00 00 00"); // type, length, pad
    for (const Message &action : actions) {
        append(instruction, action);
    }
    openflow::store(&instruction[2], static_cast<uint16_t>(instruction.size()));
    return instruction;
}

Message flow_mod(const FlowMod &mod)
{
    Message message = join(
        {hex("04 0e 00 00"), bytes_of(mod.xid), bytes_of(mod.cookie), bytes_of(mod.cookie_mask)});
    message.push_back(mod.table);
    message.push_back(mod.command);
    append(message, bytes_of(mod.idle_timeout));
    append(message, bytes_of(mod.hard_timeout));
    append(message, bytes_of(mod.priority));
    append(message, bytes_of(mod.buffer_id));
    append(message, bytes_of(mod.out_port));
    append(message, bytes_of(mod.out_group));
    append(message, bytes_of(mod.flags));
    append(message, hex("00 00")); // pad
    append(message, mod.match);
    append(message, mod.instructions);
    openflow::store(&message[2], static_cast<uint16_t>(message.size()));
    return message;
}

Message bucket(uint32_t port) { return bucket(port, openflow::OFPG_ANY, {output(port)}); }

Message bucket(uint32_t watch_port, uint32_t watch_group, std::initializer_list<Message> actions,
               uint16_t weight)
{
    Message bytes = join({hex("00 00"), bytes_of(weight), bytes_of(watch_port),
                          bytes_of(watch_group), hex("00 00 00 00")});
    for (const Message &action : actions) {
        append(bytes, action);
    }
    openflow::store(bytes.data(), static_cast<uint16_t>(bytes.size()));
    return bytes;
}

Message group_mod(uint16_t command, uint8_t type, uint32_t id,
                  std::initializer_list<Message> buckets)
{
    Message message = join({hex("04 0f 00 00  00 00 00 00"), bytes_of(command)});
    message.push_back(type);
    message.push_back(0); // pad
    append(message, bytes_of(id));
    for (const Message &bucket : buckets) {
        append(message, bucket);
    }
    openflow::store(&message[2], static_cast<uint16_t>(message.size()));
    return message;
}

} // namespace build
