// What the agent tells of an instance and of the whole switch, with everything that has to be
// supplied before and released afterwards.
#ifndef OFPCTL_OPTION_RECORD_H
#define OFPCTL_OPTION_RECORD_H

#include <cstdint>
#include <string>
#include <vector>

#include "ofp.h"
#include "option/vlan_set.h"

namespace ofpctl {

class InstanceRecord {
public:
    InstanceRecord();
    ~InstanceRecord();
    InstanceRecord(const InstanceRecord &) = delete;
    InstanceRecord &operator=(const InstanceRecord &) = delete;

    // What was read before is forgotten. Throws a Failure.
    void read(uint16_t instance);

    const OfpVerboseConfigured &configured() const { return verbose_.configured; }
    const OfpVerboseRunning &running() const { return verbose_.running; }
    const OfpVerbInst &instance() const;
    bool active() const;

    VlanSet configured_vlans() const { return configured_vlans_.vlans(); }
    VlanSet running_vlans() const { return running_vlans_.vlans(); }
    std::vector<OfpCtrlSummary> controllers() const;
    std::vector<OfpVerbIfRep> configured_interfaces() const;
    std::vector<OfpVerbIfRep> running_interfaces() const;

private:
    void begin();

    OfpVerbose verbose_;
    VlanMap configured_vlans_;
    VlanMap running_vlans_;
};

class GlobalRecord {
public:
    GlobalRecord();

    // Throws a Failure.
    void read();

    VlanSet normal_forward_vlans() const { return vlans_.vlans(); }
    uint16_t ignore() const { return config_.ignore.value; }

private:
    OfpGlbCfgVerbose config_{};
    VlanMap vlans_;
};

// Throws a Failure with status_missing unless the instance exists.
void require_instance(uint16_t instance);

} // namespace ofpctl

#endif
