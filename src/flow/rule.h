// What adding, modifying and deleting rules have in common.
#pragma once

#include "ofp/flow.h"

namespace ofp {

// Validates the rules and sends them batch by batch. A request whose asynchronous flag is 1 goes
// out on the client's asynchronous socket (-1: it has none) and its answers are left to whoever
// reads that socket; else a channel is opened and the answers are collected into results, which may
// be null.
uint32_t program_rules(const OfpFlowRuleCtx &request, int32_t asynchronous_socket, uint32_t count,
                       const OfpFlowItem *items, uint64_t *results);

} // namespace ofp
