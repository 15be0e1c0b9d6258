// Everything that can be set of the whole switch.
#ifndef OFPCTL_OPTION_GLOBAL_OPTION_H
#define OFPCTL_OPTION_GLOBAL_OPTION_H

#include <cstdint>
#include <span>

#include "frame/setting.h"
#include "option/record.h"
#include "option/value.h"

namespace ofpctl {

struct GlobalOption {
    SettingRow row;
    uint32_t (*set)(const Value &value);
    Value (*read)(const GlobalRecord &record) = nullptr; // null: the agent does not report it
    bool vlan = false;                                   // one of "vlan set"
};

std::span<const GlobalOption> global_options();
SettingRows global_settings();

} // namespace ofpctl

#endif
