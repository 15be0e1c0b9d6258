// Standard error: messages for the person at the terminal.
#ifndef OFPCTL_FRAME_MESSAGE_H
#define OFPCTL_FRAME_MESSAGE_H

#include <string_view>

namespace ofpctl {

// "ofpctl: text"
void report(std::string_view text);
// Text as it is, with a line end.
void remark(std::string_view text);

// Whether standard error is a terminal, and one that wants colour.
bool terminal();
bool colour();

} // namespace ofpctl

#endif
