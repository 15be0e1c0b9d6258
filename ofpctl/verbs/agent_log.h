// What the agent said last.
#ifndef OFPCTL_VERBS_AGENT_LOG_H
#define OFPCTL_VERBS_AGENT_LOG_H

#include <cstdint>
#include <string>

namespace ofpctl {

// "; the last line of .../agent.log is: ..."; empty when there is no log or nothing in it.
std::string last_log_line(uint16_t node);

} // namespace ofpctl

#endif
