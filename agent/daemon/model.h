// What the agent knows: the instances with their tables, and the switch that holds rules and
// groups. Nothing here knows of sockets or datagrams.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include "daemon/result_codes.h"
#include "events/applications.h"
#include "ofp.h"
#include "switch/switch.h"

namespace agent {

// Clients program rules; the rules of a client are those of the instance with its id.
inline constexpr uint16_t FIRST_CLIENT = 4096;
inline constexpr uint16_t LAST_CLIENT = 4099;
inline constexpr uint8_t CLIENT_TABLE = 200;
inline constexpr uint32_t CLIENT_TABLE_KIND = 2;

constexpr bool is_client(uint16_t id) { return id >= FIRST_CLIENT && id <= LAST_CLIENT; }

struct Instance {
    OfpInstFilter filter{};
    bool declared = false;            // by an instance message; else it came with its client
    std::vector<OfpFlowTable> tables; // ascending by id
};

// What became of all datagrams so far.
struct Counters {
    uint64_t datagrams = 0;
    uint64_t refused = 0;
    uint64_t messages = 0; // OpenFlow messages in them, barriers apart
    uint64_t errors = 0;   // answered by an OpenFlow error
};

class Model {
public:
    explicit Model(const SwitchLimits &limits = {}) : flow_switch_(limits) {}

    // Declares an instance with these tables in any order. 0, also when it is declared already with
    // the same filter and tables; else a result code.
    uint32_t add_instance(const OfpInstFilter &filter, std::vector<OfpFlowTable> tables);

    // A client is known, and its instance has its table, from its first smooth period on.
    void admit_client(uint16_t client);

    const Instance *instance(uint16_t id) const;
    std::optional<uint16_t> next_instance(uint16_t after) const;

    const OfpFlowTable *table(uint16_t instance, uint8_t id) const;
    std::optional<uint8_t> next_table(uint16_t instance, int after) const; // -1 begins

    Switch &flow_switch() { return flow_switch_; }
    const Switch &flow_switch() const { return flow_switch_; }

    Counters counters;
    Applications applications;

private:
    std::map<uint16_t, Instance> instances_;
    Switch flow_switch_;
};

} // namespace agent
