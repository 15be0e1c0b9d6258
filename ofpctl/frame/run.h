// One command from its words to its exit status.
#ifndef OFPCTL_FRAME_RUN_H
#define OFPCTL_FRAME_RUN_H

#include <span>
#include <string>

namespace ofpctl {

int run(std::span<const std::string> words);

} // namespace ofpctl

#endif
