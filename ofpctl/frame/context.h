// What a verb is given to do its work.
#ifndef OFPCTL_FRAME_CONTEXT_H
#define OFPCTL_FRAME_CONTEXT_H

#include "frame/arguments.h"
#include "frame/output.h"
#include "frame/verb.h"

namespace ofpctl {

struct Context {
    const Noun &noun;
    const Verb &verb;
    const Arguments &arguments;
    Output &out;
    int status = 0; // of a command that did what it was to do, and says with it what it found

    bool verbose() const { return arguments.given("verbose"); }
};

} // namespace ofpctl

#endif
