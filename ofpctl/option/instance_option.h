// Everything that can be set of an instance, each row with the call that sets it and where the
// agent reports it.
#ifndef OFPCTL_OPTION_INSTANCE_OPTION_H
#define OFPCTL_OPTION_INSTANCE_OPTION_H

#include <cstdint>
#include <span>
#include <string_view>

#include "frame/setting.h"
#include "option/record.h"
#include "option/value.h"

namespace ofpctl {

struct InstanceOption {
    SettingRow row;
    uint32_t (*set)(uint16_t instance, const Value &value);
    Value (*configured)(const InstanceRecord &record) = nullptr; // null: it is not reported
    Value (*running)(const InstanceRecord &record) = nullptr;    // likewise
    bool vlan = false;                                           // one of "vlan set"
};

std::span<const InstanceOption> instance_options();
SettingRows instance_settings();

} // namespace ofpctl

#endif
