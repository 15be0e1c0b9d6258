// The agent's life: lock, listen, serve until a signal, clean up.
#pragma once

#include <functional>
#include <string>

#include "daemon/options.h"

namespace agent {

// Told once, as soon as it is known: an empty text when the agent listens, else one line that says
// why it does not.
using Announce = std::function<void(const std::string &why_not)>;

// Returns the exit status.
int run(const Options &options, const Announce &announce);

} // namespace agent
