// Requests that the tests send, as the library writes them.
#pragma once

#include <cstdint>
#include <vector>

#include "agent/daemon/wire_text.h"
#include "daemon/dispatch.h"
#include "daemon/model.h"

namespace agent::test {

inline constexpr uint16_t CLIENT = 4097;
inline constexpr uint32_t SMOOTH_ID = 7;

// TLV 121 of a client within its smooth period.
Datagram client_head(uint16_t client = CLIENT, uint32_t smooth_id = SMOOTH_ID, uint32_t mode = 0);

Datagram smooth_start(uint16_t client = CLIENT, uint32_t smooth_id = SMOOTH_ID, uint32_t mode = 0);
Datagram smooth_end(uint16_t client = CLIENT, uint32_t smooth_id = SMOOTH_ID);

Datagram barrier(uint32_t xid);
Datagram barrier_reply(uint32_t xid);

// A rule for one input port without actions: 72 bytes.
struct Rule {
    uint32_t in_port = 1;
    uint16_t priority = 100;
    uint8_t command = 0;
    uint8_t table = 200;
};
Datagram flow_mod(uint32_t xid, const Rule &rule);

// TLV 122 with a message; as the first of a group datagram its length counts the header.
Datagram entry(const Datagram &message);
Datagram group_entry(const Datagram &message);

// Message head, TLV 121 and for each rule its flow-mod and barrier, transaction ids from 0.
Datagram batch(const std::vector<Rule> &rules, const Datagram &client = client_head());

// A group of type all with one bucket that outputs to port 3.
Datagram group_mod(uint32_t group_id, uint16_t command = 0);
Datagram group_request(uint32_t code, const Datagram &message,
                       const Datagram &client = client_head());

// An error reply: the offender's transaction id, type and code, and its first 64 bytes.
Datagram error_reply(const Datagram &offender, uint16_t type, uint16_t code);

// What the model answers, one element a datagram.
std::vector<Datagram> ask(Model &model, const Datagram &request);
// The one datagram that it answers; empty when it answers none or several.
Datagram ask_one(Model &model, const Datagram &request);

// A model with the client's smooth period open.
void open_period(Model &model, uint16_t client = CLIENT);

} // namespace agent::test
