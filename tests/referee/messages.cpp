#include "referee/messages.h"

#include <gtest/gtest.h>

namespace referee {
namespace {

constexpr std::size_t envelope = 8 + 20; // message head, client head
constexpr uint16_t message_tlv = 122;
constexpr uint8_t group_mod = 15;

uint16_t load16(const Bytes &bytes, std::size_t at)
{
    return static_cast<uint16_t>(bytes.at(at) << 8 | bytes.at(at + 1));
}

// Takes the TLVs off. That of a group-mod counts its own header, every other its value alone.
Bytes unwrap(const Bytes &datagram)
{
    Bytes messages;
    for (std::size_t at = envelope; at < datagram.size();) {
        const std::size_t length = load16(datagram, at + 6);
        const std::size_t counted = datagram.at(at + 5) == group_mod ? length + 4 : length;
        EXPECT_EQ(load16(datagram, at), message_tlv) << at;
        EXPECT_EQ(load16(datagram, at + 2), counted) << at;
        if (length < 8 || length > datagram.size() - at - 4) {
            ADD_FAILURE() << "a message of " << length << " bytes at " << at;
            break;
        }
        const auto first = datagram.begin() + static_cast<std::ptrdiff_t>(at + 4);
        messages.insert(messages.end(), first, first + static_cast<std::ptrdiff_t>(length));
        at += 4 + length;
    }
    return messages;
}

Bytes group_datagram(bool set, uint32_t id, uint8_t type, const std::vector<uint32_t> &ports)
{
    const OfpGroupMod group = {
        .command = static_cast<uint16_t>(set ? 0 : 2), .type = type, .group_id = id};
    const auto *record = reinterpret_cast<const uint8_t *>(&group);
    const uint8_t head[16] = {};
    Bytes datagram(100 + 32 * ports.size());
    datagram.resize(set ? OFP_encode_SetGroup(head, record, static_cast<uint32_t>(ports.size()),
                                              ports.data(), datagram.size(), datagram.data())
                        : OFP_encode_DelGroup(head, record, datagram.size(), datagram.data()));
    return datagram;
}

} // namespace

Bytes flow_mods(const std::vector<OfpFlowItem> &items, Command command)
{
    const OfpFlowRuleCtx request = {.command = command, .client_id = 4096, .table_id = 200};
    const uint8_t head[16] = {};
    Bytes datagram(64 + items.size() * 16384);
    datagram.resize(OFP_encode_FlowRule(&request, head, static_cast<uint32_t>(items.size()),
                                        items.data(), datagram.size(), datagram.data()));
    return unwrap(datagram);
}

Bytes flow_mod(const OfpFlowItem &item) { return split(flow_mods({item})).at(0); }

Bytes set_group(uint32_t id, uint8_t type, const std::vector<uint32_t> &ports)
{
    return unwrap(group_datagram(true, id, type, ports));
}

Bytes delete_group(uint32_t id) { return unwrap(group_datagram(false, id, 0, {})); }

std::vector<Bytes> split(const Bytes &messages)
{
    std::vector<Bytes> each;
    for (std::size_t at = 0; at < messages.size();) {
        const std::size_t length = load16(messages, at + 2);
        const auto first = messages.begin() + static_cast<std::ptrdiff_t>(at);
        each.emplace_back(first, first + static_cast<std::ptrdiff_t>(length));
        at += length;
    }
    return each;
}

} // namespace referee
