// What the agent knows: the configuration, and the switch that holds rules and groups. Nothing here
// knows of sockets or datagrams.
#pragma once

#include <bitset>
#include <cstdint>
#include <optional>
#include <vector>

#include "channel/controller_state.h"
#include "config/configuration.h"
#include "daemon/result_codes.h"
#include "events/applications.h"
#include "ofp.h"
#include "switch/switch.h"

namespace agent {

// What became of all datagrams so far.
struct Counters {
    uint64_t datagrams = 0;
    uint64_t refused = 0;
    uint64_t messages = 0; // OpenFlow messages in them, barriers apart
    uint64_t errors = 0;   // answered by an OpenFlow error
};

// What the agent was started with, as far as queries tell it.
struct StartOptions {
    uint16_t reserved_acl_resources = 0;
    uint32_t acl_tables = 1;
};

class Model : private ConfigurationObserver {
public:
    explicit Model(const SwitchLimits &limits = {});
    ~Model() override;
    Model(const Model &) = delete;
    Model &operator=(const Model &) = delete;

    Configuration &configuration() { return configuration_; }
    const Configuration &configuration() const { return configuration_; }

    // Stages the declaration of an instance with these tables in any order. 0, also when it is
    // declared already with the same filter and tables; else a result code.
    uint32_t add_instance(const OfpInstFilter &filter, std::vector<OfpFlowTable> tables);

    // A client is known, and its instance has its table, from its first smooth period on.
    void admit_client(uint16_t client);
    bool is_admitted(uint16_t client) const;

    const InstanceConfig *instance(uint16_t id) const { return configuration_.instance(id); }
    std::optional<uint16_t> next_instance(uint16_t after) const
    {
        return configuration_.next_instance(after);
    }

    const OfpFlowTable *table(uint16_t instance, uint8_t id) const;
    std::optional<uint8_t> next_table(uint16_t instance, int after) const; // -1 begins

    Switch &flow_switch() { return flow_switch_; }
    const Switch &flow_switch() const { return flow_switch_; }

    Counters counters;
    StartOptions start;
    Applications applications;
    ControllerStates controllers; // kept by whoever holds the connections

private:
    void instance_changed(uint16_t id, const InstanceConfig *before,
                          const InstanceConfig *after) noexcept override;

    Configuration configuration_;
    std::bitset<LAST_CLIENT - FIRST_CLIENT + 1> admitted_;
    Switch flow_switch_;
};

// 0, or why an instance cannot have these tables; they are put into order.
uint32_t arrange_tables(uint16_t instance, std::vector<OfpFlowTable> &tables);

} // namespace agent
