// Flow-mods and group-mods on their way into the switch, whoever sent them.
#pragma once

#include <cstdint>
#include <optional>

#include "daemon/model.h"
#include "daemon/request.h"
#include "openflow/wire.h"

namespace agent {

// Nothing: it was applied; else why it was not.
using Verdict = std::optional<openflow::Error>;

// A flow-mod for a table that the instance has, or a delete for all of them.
Verdict apply_flow_mod(uint16_t instance, Bytes message, Model &model);
Verdict apply_group_mod(uint16_t instance, Bytes message, Model &model);

} // namespace agent
