// Commands that show what changes can show it again and again.
#ifndef OFPCTL_VERBS_WATCH_H
#define OFPCTL_VERBS_WATCH_H

#include "frame/context.h"

namespace ofpctl {

// Runs show(context) once; with --watch every so many seconds, --rounds times or until it is
// interrupted. With --json each round is a document of one line.
void watch(Context &context, void (*show)(Context &));

constexpr OptionRow watch_option{.name = "watch",
                                 .letter = 'w',
                                 .kind = Kind::number,
                                 .value = "SECONDS",
                                 .help = "show it again every so often, until interrupted",
                                 .least = 1,
                                 .most = 86400};
constexpr OptionRow rounds_option{.name = "rounds",
                                  .kind = Kind::number,
                                  .value = "N",
                                  .help = "with --watch: how many times",
                                  .least = 1,
                                  .most = 1000000};

// Of commands that ask about one instance.
constexpr OptionRow owner_option{.name = "instance",
                                 .kind = Kind::number,
                                 .value = "ID",
                                 .help = "the instance; a client's are in the one with its id",
                                 .fallback = "4096",
                                 .least = 1,
                                 .most = UINT16_MAX};

} // namespace ofpctl

#endif
