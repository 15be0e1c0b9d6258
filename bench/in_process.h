// A platform inside the process: what the library sends goes nowhere, what it receives is laid out
// beforehand. No system call is made, so that all time is the library's.
#pragma once

#include <vector>

#include "peer.h"

namespace bench::in_process {

// The replies that are received from now on, in order; after the last nothing comes.
void answer_with(const std::vector<Bytes> &replies);

// The four bytes with which the last request ended: a rule's transaction id.
uint32_t last_word_sent();

} // namespace bench::in_process
