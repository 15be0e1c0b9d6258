// A group as a line of text, as ovs-ofctl users write it:
// group_id=7,type=all,bucket=output:1,bucket=output:2
#ifndef OFPCTL_VERBS_GROUP_TEXT_H
#define OFPCTL_VERBS_GROUP_TEXT_H

#include <cstdint>
#include <string_view>
#include <variant>
#include <vector>

#include "flow/flow_text.h"

namespace ofpctl {

constexpr uint32_t last_group = 0xffffff00;
constexpr std::size_t most_buckets = 254; // what one datagram holds

enum class GroupType : uint32_t { all = 0, fast_failover = 3 };

struct Group {
    uint32_t id = 0;
    GroupType type = GroupType::all;
    std::vector<uint32_t> ports; // one bucket each
};

std::variant<Group, TextError> parse_group(std::string_view line);

} // namespace ofpctl

#endif
