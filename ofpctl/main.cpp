#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "frame/run.h"

namespace {

// With one of the three closed, the first socket would take its number and be written to.
void occupy_standard_descriptors()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) == -1) {
            const int mode = descriptor == STDERR_FILENO ? O_WRONLY : O_RDONLY;
            if (open("/dev/null", mode) != descriptor)
                _exit(1);
        }
    }
}

} // namespace

int main(int argc, char **argv)
{
    occupy_standard_descriptors();
    return ofpctl::run(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
}
