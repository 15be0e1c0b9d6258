// Multipart requests: the switch's description, its tables and its ports.
#pragma once

#include <cstdint>
#include <functional>

#include "daemon/model.h"
#include "daemon/program.h"

namespace agent {

// Hands each message of the reply to send, or returns why there is none. The message holds the
// multipart header at least.
Verdict answer_multipart(Bytes message, uint16_t instance, const Model &model,
                         const std::function<void(Bytes)> &send);

} // namespace agent
