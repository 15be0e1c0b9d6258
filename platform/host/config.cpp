#include "config.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <numeric>

#include "error.h"
#include "ofp/platform.h"
#include "system.h"

namespace host {

namespace {

constexpr uint32_t usual_ports = 24;

/* Points the record at what the description owns, once that no longer moves. */
void settle(Description &d)
{
    std::ranges::sort(d.interfaces, {}, &HostInterface::index);
    d.by_name.resize(d.interfaces.size());
    std::iota(d.by_name.begin(), d.by_name.end(), 0u);
    std::ranges::sort(d.by_name, [&](uint32_t a, uint32_t b) {
        return IF_JudgeNameOrder(d.interfaces[a].name, d.interfaces[b].name) < 0;
    });
    d.config.path = d.path.c_str();
    d.config.containers = d.containers.data();
    d.config.container_count = static_cast<uint32_t>(d.containers.size());
    d.config.nodes = d.nodes.data();
    d.config.node_count = static_cast<uint32_t>(d.nodes.size());
    d.config.interfaces = d.interfaces.data();
    d.config.interface_count = static_cast<uint32_t>(d.interfaces.size());
}

struct Loaded {
    Description description;
    std::string error;

    Loaded()
    {
        try {
            const char *path = environment("OFP_HOST_CONFIG");
            description = path != nullptr ? read_description(path) : built_in();
            settle(description);
        } catch (const std::exception &wrong) {
            error = wrong.what();
        }
    }
};

} // namespace

Description built_in()
{
    Description d;
    d.config.phase4_over = 1;
    d.config.bridge_mac[0] = 0x02; /* locally administered */
    d.config.bridge_mac[5] = 0x01;
    d.nodes.push_back({.id = 0, .up = 1, .controller = 1});
    add_usual_interfaces(d);
    return d;
}

void add_usual_interfaces(Description &to)
{
    HostInterface first{
        .index = 1, .type = usual_type, .node = to.config.self, .up = 1, .name = "GE1/0/1"};
    add_interfaces(to, first, usual_ports);
}

void add_interfaces(Description &to, HostInterface first, uint32_t count)
{
    const std::string name = first.name;
    size_t digits = name.find_last_not_of("0123456789") + 1;
    uint64_t number = digits < name.size() ? std::stoull(name.substr(digits)) : 0;
    for (uint32_t i = 0; i < count; ++i) {
        HostInterface next = first;
        next.index = first.index + i;
        if (i != 0) {
            std::string counted = name.substr(0, digits) + std::to_string(number + i);
            if (counted.size() >= sizeof next.name) {
                throw ConfigError(counted + ": longer than 47 characters");
            }
            strlcpy(next.name, counted.c_str(), sizeof next.name);
        }
        to.interfaces.push_back(next);
    }
}

const Description *description()
{
    static const Loaded loaded;
    if (!loaded.error.empty()) {
        fail(EINVAL, "%s", loaded.error.c_str());
        return nullptr;
    }
    return &loaded.description;
}

const HostNode *find_node(const HostConfig &config, uint16_t id)
{
    const HostNode *end = config.nodes + config.node_count;
    const HostNode *found =
        std::find_if(config.nodes, end, [=](const HostNode &node) { return node.id == id; });
    return found != end ? found : nullptr;
}

} // namespace host

using namespace host;

const HostConfig *HOST_GetConfig(void)
{
    const Description *d = description();
    return d != nullptr ? &d->config : nullptr;
}

const HostInterface *HOST_FindInterface(uint32_t index)
{
    const Description *d = description();
    if (d == nullptr) {
        return nullptr;
    }
    auto found = std::ranges::lower_bound(d->interfaces, index, {}, &HostInterface::index);
    if (found == d->interfaces.end() || found->index != index) {
        fail(ENODEV, "no interface has the index %u", index);
        return nullptr;
    }
    return &*found;
}

const HostInterface *HOST_FindInterfaceByName(const char *name)
{
    const Description *d = description();
    if (d == nullptr || name == nullptr) {
        return nullptr;
    }
    for (const HostInterface &each : d->interfaces) {
        if (strcmp(each.name, name) == 0) {
            return &each;
        }
    }
    fail(ENODEV, "no interface is named %s", name);
    return nullptr;
}
