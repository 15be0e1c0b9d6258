#include "verbs/flow_async.h"

#include <cstddef>
#include <vector>

#include <fmt/format.h>

#include "flow/flow_text.h"
#include "frame/agent_link.h"
#include "frame/interrupt.h"
#include "frame/patience.h"
#include "frame/progress.h"

namespace ofpctl {

namespace {

constexpr auto failed = static_cast<uint32_t>(OFP_RC_FAILED);
constexpr auto no_resource = static_cast<uint32_t>(OFP_RC_NO_RESOURCE);

// How often, in rules, it is looked whether the agent is still the same one.
constexpr std::size_t looked_after = 4096;

// The rules under way. The library's callback has no argument of its caller's, hence the one of
// this process. Answers come in the order of the rules.
struct Flight {
    std::span<RuleResult> results;
    std::vector<std::size_t> sent; // indexes of the rules that were sent
    std::size_t answered = 0;      // how many of those were

    std::size_t under_way() const { return sent.size() - answered; }
};
Flight *flight = nullptr;

void take_result(uint32_t, uint8_t, const OfpFlowItem *, uint64_t result)
{
    const auto code = static_cast<uint32_t>(result);
    flight->results[flight->sent[flight->answered++]] = {
        code == 0 ? Outcome::accepted : Outcome::refused, code};
}

// A client's channel, closed with its scope.
class Channel {
public:
    Channel(uint16_t client, Flight &own)
    {
        flight = &own;
        socket_ = OFP_AsyncInit(client, take_result);
        if (socket_ < 0)
            throw call_failure(failed, fmt::format("client {}", client));
    }
    ~Channel()
    {
        OFP_AsyncFini(socket_);
        flight = nullptr;
    }
    Channel(const Channel &) = delete;
    Channel &operator=(const Channel &) = delete;

    // Takes answers until at most so many rules are under way. False when they do not come.
    bool wait_for(std::size_t under_way) const
    {
        while (flight->under_way() > under_way) {
            forget_waits();
            OFP_AsyncDispatch(socket_);
            if (last_wait() != Wait::answered)
                return false;
        }
        return true;
    }

private:
    int32_t socket_ = -1;
};

// A rule that the library itself refuses is not sent. One that cannot be sent, or whose answer
// nobody would wait for, ends the load.
void send(uint16_t client, const OfpFlowItem &rule, std::size_t index)
{
    flight->sent.push_back(index);
    flight->results[index].outcome = Outcome::unanswered;
    const uint32_t code = OFP_AsyncAddFlowRule(client, flow_table, &rule);
    if (code == 0)
        return;
    flight->sent.pop_back();
    if (code == no_resource)
        throw Failure{.code = code, .message = "adding: out of memory"};
    if (code == failed) {
        flight->results[index].outcome = Outcome::not_sent;
        throw call_failure(code, "adding");
    }
    flight->results[index] = {Outcome::refused, code};
}

void send_all(uint16_t client, std::span<const OfpFlowItem> rules, uint32_t window,
              const Channel &channel)
{
    Progress progress("adding", rules.size());
    for (std::size_t at = 0; at < rules.size(); at++) {
        check_interrupt();
        if (at % looked_after == 0)
            require_same_agent();
        // Room for half a window is made at once, so that both sides have something to do.
        if (flight->under_way() >= window && !channel.wait_for(window / 2))
            throw call_failure(failed, "adding");
        send(client, rules[at], at);
        progress.at(flight->answered);
    }
    if (!channel.wait_for(0))
        throw call_failure(failed, "adding");
}

} // namespace

Report add_rules_async(uint16_t client, std::span<const OfpFlowItem> rules, uint32_t window)
{
    Report report{.results = std::vector<RuleResult>(rules.size())};
    Flight own{.results = report.results};
    own.sent.reserve(rules.size());
    const Unhurried finish_what_is_under_way;
    const Channel channel(client, own);
    try {
        send_all(client, rules, window, channel);
    } catch (Failure &failure) {
        report.stopped = std::move(failure);
        // Answers that have arrived are read, also from an agent that is gone.
        if (last_wait() == Wait::answered || last_wait() == Wait::none)
            channel.wait_for(0);
    }
    return report;
}

} // namespace ofpctl
