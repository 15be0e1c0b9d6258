#include "verbs/rule_store.h"

#include <cstddef>
#include <span>
#include <string>
#include <utility>
#include <variant>

#include <fmt/format.h>
#include <unistd.h>

#include "daemon/result_codes.h"
#include "flow/flow_decode.h"
#include "frame/agent_link.h"
#include "frame/interrupt.h"
#include "frame/progress.h"

namespace ofpctl {

namespace {

// What one reply says of a rule.
struct RuleReply {
    OfpFRStatsInfo counters{};
    std::span<const uint8_t> flow_mod;
};

RuleReply read_reply(std::span<const uint8_t> datagram)
{
    RuleReply reply;
    std::size_t at = 0;
    while (at < datagram.size()) {
        uint16_t type = 0;
        uint16_t length = 0;
        void *value = nullptr;
        const uint32_t step = STLV_Get(&datagram[at], static_cast<uint32_t>(datagram.size() - at),
                                       &type, &length, &value);
        if (step == 0)
            break;
        if (type == OFP_TLV_FRStatsInfo)
            OFP_msg_GetByteSwapData(value, length, type, sizeof reply.counters, &reply.counters);
        else if (type == OFP_TLV_FlowEntry)
            reply.flow_mod = {static_cast<const uint8_t *>(value), length};
        at += step;
    }
    return reply;
}

bool nothing_there(uint32_t code)
{
    return code == agent::NO_INSTANCE || code == agent::NO_TABLE || code == agent::NO_RULE ||
           code == agent::NO_NEXT;
}

// Walks a client's rules. Ids ascend and mostly without gaps, so the next id is asked for at once;
// only where that rule is gone does it take a question for the next one.
class RuleWalk {
public:
    explicit RuleWalk(uint16_t client) : client_(client), buffer_(OFP_LARGE_DATAGRAM_SIZE) {}

    bool next(StoredRule &rule)
    {
        if (id_ != UINT32_MAX && fetch(rule, id_ + 1))
            return true;
        while (const uint32_t id = next_id()) {
            if (fetch(rule, id))
                return true;
            id_ = id; // deleted between the two questions
        }
        return false;
    }

private:
    std::string name(uint32_t id) const { return fmt::format("rule {} of client {}", id, client_); }

    uint32_t next_id()
    {
        uint32_t id = 0;
        const uint32_t code = OFP_get_NextRuleID(client_, flow_table, id_, &id);
        if (nothing_there(code))
            return 0;
        require_success(code, fmt::format("rules of client {}", client_));
        if (id != 0 && id <= id_)
            throw Failure{.message =
                              fmt::format("{}: the agent lists it after rule {}", name(id), id_)};
        return id;
    }

    bool fetch(StoredRule &rule, uint32_t id)
    {
        uint64_t length = 0;
        const uint32_t code = OFP_get_RuleInfo(client_, flow_table, id, buffer_.data(), &length);
        if (nothing_there(code))
            return false;
        require_success(code, name(id));
        const RuleReply reply = read_reply(std::span(buffer_).first(length));
        FlowDecodeResult decoded = decode_flow_mod(reply.flow_mod);
        if (const auto *wrong = std::get_if<std::string>(&decoded))
            throw Failure{.message = fmt::format("{}: the agent's answer: {}", name(id), *wrong)};
        id_ = id;
        rule = {id, std::move(std::get<Flow>(decoded).item), reply.counters};
        return true;
    }

    uint16_t client_;
    uint32_t id_ = 0;
    std::vector<uint8_t> buffer_;
};

} // namespace

uint32_t count_rules(uint16_t client)
{
    OfpTableInfo info{};
    const uint32_t code = OFP_get_TableInfo(client, flow_table, &info);
    if (nothing_there(code))
        return 0;
    require_success(code, fmt::format("table {} of client {}", flow_table, client));
    return info.rule_count;
}

std::optional<StoredRule> find_rule(uint16_t instance, uint8_t table, uint32_t id)
{
    std::vector<uint8_t> buffer(OFP_LARGE_DATAGRAM_SIZE);
    uint64_t length = 0;
    const uint32_t code = OFP_get_RuleInfo(instance, table, id, buffer.data(), &length);
    if (nothing_there(code))
        return std::nullopt;
    require_success(code, fmt::format("rule {} of table {}", id, table));
    const RuleReply reply = read_reply(std::span(buffer).first(length));
    FlowDecodeResult decoded = decode_flow_mod(reply.flow_mod);
    auto *flow = std::get_if<Flow>(&decoded);
    if (flow == nullptr)
        return std::nullopt;
    return StoredRule{id, std::move(flow->item), reply.counters};
}

void each_rule(uint16_t client, const std::function<void(StoredRule)> &take)
{
    Progress progress("reading", count_rules(client), isatty(STDOUT_FILENO) != 1);
    RuleWalk walk(client);
    StoredRule rule;
    for (std::size_t taken = 1; walk.next(rule); taken++) {
        check_interrupt();
        take(std::move(rule));
        progress.at(taken);
    }
}

} // namespace ofpctl
