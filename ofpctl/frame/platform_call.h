// The platform's function behind one of the same name that this program defines.
#ifndef OFPCTL_FRAME_PLATFORM_CALL_H
#define OFPCTL_FRAME_PLATFORM_CALL_H

#include <dlfcn.h>

namespace ofpctl {

template <typename Function>
Function *platform_call(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace ofpctl

#endif
