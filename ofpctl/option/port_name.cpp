#include "option/port_name.h"

#include <cerrno>
#include <string_view>

#include <fmt/format.h>

#include "flow/number_text.h"
#include "frame/agent_link.h"
#include "frame/words.h"
#include "ofp/interface.h"

namespace ofpctl {

namespace {

void require_description()
{
    if (HOST_GetConfig() == nullptr)
        throw host_failure(errno);
}

std::string nearest_port(const std::string &word)
{
    std::vector<std::string_view> names;
    for (const HostInterface *port : openflow_ports())
        names.emplace_back(port->name);
    const std::string_view meant = nearest(word, names);
    return meant.empty() ? "ofpctl port list shows them" : fmt::format("did you mean {}?", meant);
}

} // namespace

std::vector<const HostInterface *> openflow_ports()
{
    require_description();
    HostIfSelection selection{};
    OFP_util_SetIfSelect(&selection);
    std::vector<uint32_t> indexes(HOST_GetSelectedInterfaces(&selection, nullptr, 0));
    HOST_GetSelectedInterfaces(&selection, indexes.data(), static_cast<uint32_t>(indexes.size()));
    std::vector<const HostInterface *> ports;
    for (const uint32_t index : indexes)
        ports.push_back(HOST_FindInterface(index));
    return ports;
}

std::variant<const HostInterface *, PortError> find_port(const std::string &word)
{
    require_description();
    uint64_t index = 0;
    const HostInterface *port = scan_number(word, UINT32_MAX, index)
                                    ? HOST_FindInterface(static_cast<uint32_t>(index))
                                    : HOST_FindInterfaceByName(word.c_str());
    if (port == nullptr)
        return PortError{true, fmt::format("{}: no such port; {}", word, nearest_port(word))};
    if (OFP_util_IsOfpIfType(port->index) != 1)
        return PortError{false, fmt::format("{}: its type {} is none that OpenFlow may use",
                                            port->name, port->type)};
    return port;
}

} // namespace ofpctl
