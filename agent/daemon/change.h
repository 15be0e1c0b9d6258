// How handlers change the configuration: on a copy of what the requests before them left, staged
// when nothing was wrong.
#pragma once

#include <utility>

#include "daemon/model.h"
#include "daemon/result_codes.h"

namespace agent {

// change(InstanceConfig &) returns 0 or the result code of the refusal.
template <class Change>
[[nodiscard]] uint32_t change_instance(Model &model, uint16_t id, Change change)
{
    const InstanceConfig *const known = model.configuration().staged(id);
    if (!known) {
        return NO_INSTANCE;
    }
    InstanceConfig next = *known;
    const uint32_t code = change(next);
    if (code == 0) {
        model.configuration().stage(id, std::move(next));
    }
    return code;
}

// change(GlobalConfig &), likewise.
template <class Change>
[[nodiscard]] uint32_t change_global(Model &model, Change change)
{
    GlobalConfig next = model.configuration().staged_global();
    const uint32_t code = change(next);
    if (code == 0) {
        model.configuration().stage(std::move(next));
    }
    return code;
}

} // namespace agent
