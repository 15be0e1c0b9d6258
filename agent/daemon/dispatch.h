// From a datagram to its answer.
#pragma once

#include <cstdint>

#include "daemon/model.h"
#include "daemon/outbox.h"
#include "daemon/request.h"

namespace agent {

struct Outcome {
    uint32_t message = 0;       // its code, as far as it could be read
    uint32_t code = 0;          // 0, or why it was refused
    bool hang_up = false;       // memory was short: the client cannot be answered
    bool awaits_commit = false; // its answer holds once the configuration was committed
};

// Answers one datagram. Whatever it holds, the model stays whole and nothing is thrown. What awaits
// a commit has a result reply for its answer, which must not be sent before; when the commit fails,
// it is to be refused.
Outcome answer(Bytes datagram, Outbox &out, Model &model, Sender sender = {}) noexcept;

// The same with the commit.
Outcome answer_and_commit(Bytes datagram, Outbox &out, Model &model, Sender sender = {}) noexcept;

// Refuses whatever the datagram holds.
Outcome refuse(Bytes datagram, uint32_t code, Outbox &out, Model &model) noexcept;

// "SET_ECHO_TIME"; "unknown" for a code no message has.
const char *message_name(uint32_t code);

} // namespace agent
