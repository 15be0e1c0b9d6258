// Adds rules and waits for the results, from C++.
//
//   load_sync_cpp [RULES]      100 unless given
//
// The records are plain structures: values and vectors own what they point to. What to do when the
// agent goes away is the same as in C: open the smooth period again and program everything anew.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <optional>
#include <span>
#include <vector>

#include <ofp.h>

namespace {

constexpr uint16_t client = 4099;
constexpr uint8_t table = 200;
constexpr uint32_t period = 1;

// Rules with all that they point to; its elements stay where they are.
class Rules {
public:
    // Packets of an input port go to an output port.
    void add(uint32_t in_port, uint32_t out_port)
    {
        Parts &parts = parts_.emplace_back();
        parts.output = {{OFP_ACTION_OUTPUT, sizeof parts.output}, OFP_PORT_NUMBER, out_port};
        parts.actions[0] = &parts.output.header;
        OfpFlowItem rule{};
        rule.priority = 100;
        rule.match.fields = uint64_t{1} << OFP_FIELD_IN_PORT;
        rule.match.in_port = in_port;
        rule.match.mask = &parts.mask;
        rule.action_count = 1;
        rule.actions = parts.actions;
        items_.push_back(rule);
    }
    std::span<const OfpFlowItem> items() const { return items_; }

private:
    struct Parts {
        OfpMatchMask mask{};
        OfpActionOutput output{};
        OfpAction *actions[1]{};
    };
    std::deque<Parts> parts_;
    std::vector<OfpFlowItem> items_;
};

// The result of each rule; nothing when the agent went away.
std::optional<std::vector<uint64_t>> load(std::span<const OfpFlowItem> rules)
{
    std::vector<uint64_t> results(rules.size());
    if (OFP_SmoothStart(client, period, 0) != OFP_RC_OK)
        return std::nullopt;
    if (OFP_AddFlowRule(client, table, static_cast<uint32_t>(rules.size()), rules.data(),
                        results.data()) != OFP_RC_OK)
        return std::nullopt;
    OFP_SmoothEnd(client); // rules of an earlier run that are not among these go
    return results;
}

} // namespace

int main(int argc, char **argv)
{
    const unsigned long total = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 100;
    Rules rules;
    for (uint32_t port = 1; port <= total; ++port)
        rules.add(port, 2);
    for (int attempt = 0; attempt < 3; ++attempt) {
        if (const auto results = load(rules.items())) {
            const auto accepted = std::count(results->begin(), results->end(), OFP_RC_OK);
            const auto refused = static_cast<long>(results->size()) - accepted;
            std::printf("accepted %ld, refused %ld\n", static_cast<long>(accepted), refused);
            return refused == 0 ? 0 : 1;
        }
        std::fprintf(stderr, "the agent went away; programming everything again\n");
    }
    return 1;
}
