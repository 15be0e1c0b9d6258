/* The described switch as it is built and looked up. */
#ifndef OFP_PLATFORM_HOST_CONFIG_H
#define OFP_PLATFORM_HOST_CONFIG_H

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "ofp/host.h"

namespace host {

constexpr uint16_t no_node = 0xffff;

/* Message: FILE:LINE: key: what is wrong. */
struct ConfigError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/* Owns what a HostConfig points to. */
struct Description {
    HostConfig config{};
    std::string path;
    std::vector<uint32_t> containers;
    std::vector<HostNode> nodes;
    std::vector<HostInterface> interfaces;
    std::vector<uint32_t> by_name; /* positions in interfaces, in the order of their names */
};

/* The switch that is there without a file. */
Description built_in();

constexpr uint32_t usual_type = 18;

/* The ports that are there when none are described, on the own node. */
void add_usual_interfaces(Description &to);

/* Ports name, name + 1, ... of a node, with indexes likewise. */
void add_interfaces(Description &to, HostInterface first, uint32_t count);

/* Throws ConfigError. */
Description read_description(const char *path);

/* Null, with the error set, when the file is missing or wrong. */
const Description *description();

const HostNode *find_node(const HostConfig &config, uint16_t id);

} // namespace host

#endif
