// Ports of the described switch that OpenFlow may use, by name or index.
#ifndef OFPCTL_OPTION_PORT_NAME_H
#define OFPCTL_OPTION_PORT_NAME_H

#include <string>
#include <variant>
#include <vector>

#include "ofp/host.h"

namespace ofpctl {

// In the order of their names. Throws a Failure when the switch's description is wrong.
std::vector<const HostInterface *> openflow_ports();

struct PortError {
    bool missing; // there is no such port; else OpenFlow may not use it
    std::string what;
};

std::variant<const HostInterface *, PortError> find_port(const std::string &word);

} // namespace ofpctl

#endif
