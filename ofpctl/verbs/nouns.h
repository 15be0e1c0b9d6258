// The rows of the verb table, noun by noun, and the options that several of them share.
#ifndef OFPCTL_VERBS_NOUNS_H
#define OFPCTL_VERBS_NOUNS_H

#include <span>

#include "frame/verb.h"

namespace ofpctl {

extern const std::span<const Verb> agent_verbs;
extern const std::span<const Verb> app_verbs;
extern const std::span<const Verb> completion_verbs;
extern const std::span<const Verb> controller_verbs;
extern const std::span<const Verb> debug_verbs;
extern const std::span<const Verb> event_verbs;
extern const std::span<const Verb> flow_verbs;
extern const std::span<const Verb> global_verbs;
extern const std::span<const Verb> group_verbs;
extern const std::span<const Verb> instance_verbs;
extern const std::span<const Verb> meter_verbs;
extern const std::span<const Verb> msg_verbs;
extern const std::span<const Verb> packet_verbs;
extern const std::span<const Verb> port_verbs;
extern const std::span<const Verb> resource_verbs;
extern const std::span<const Verb> smooth_verbs;
extern const std::span<const Verb> summary_verbs;
extern const std::span<const Verb> table_verbs;
extern const std::span<const Verb> vlan_verbs;

constexpr OptionRow client_option{.name = "client",
                                  .kind = Kind::word,
                                  .value = "ID",
                                  .help = "the client whose rules they are",
                                  .fallback = "4096",
                                  .words = "4096|4097|4099"};

constexpr OptionRow dry_run_option{
    .name = "dry-run", .letter = 'n', .help = "send nothing, say what would be sent"};

} // namespace ofpctl

#endif
