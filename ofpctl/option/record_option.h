// Settings that are members of one record, which travels as a whole: controllers, auxiliary
// connections, debugging switches.
#ifndef OFPCTL_OPTION_RECORD_OPTION_H
#define OFPCTL_OPTION_RECORD_OPTION_H

#include <cstdint>
#include <span>
#include <string>

#include "frame/setting.h"
#include "ofp/query.h"
#include "ofp/wire.h"
#include "option/assignment.h"

namespace ofpctl {

template <class Record>
struct RecordOption {
    SettingRow row;
    void (*put)(Record &record, const Value &value);
};

std::span<const RecordOption<OfpCtrlCfg>> controller_options();
std::span<const RecordOption<OfpAuxCfg>> auxiliary_options();
std::span<const RecordOption<OfpGlbDebug>> debug_options();

// A controller as the settings describe it, whole.
OfpCtrlCfg controller_record(uint16_t instance, uint8_t controller,
                             std::span<const Assignment> settings);
// Whether the agent reports just that.
bool same_controller(const OfpCtrlCfg &controller, const OfpCtrlSummary &reported);

// An address of a record, which keeps it as it travels; a role.
std::string address_text(uint16_t type, const uint32_t (&address)[4]);
std::string role_text(uint32_t role);

SettingRows controller_settings();
SettingRows auxiliary_settings();
SettingRows debug_settings();

} // namespace ofpctl

#endif
