#include "frame/interrupt.h"

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

#include "frame/failure.h"

namespace ofpctl {

namespace {

volatile std::sig_atomic_t first_signal = 0;
volatile std::sig_atomic_t signals = 0;
volatile std::sig_atomic_t unhurried = 0;
int pipe_ends[2] = {-1, -1};

void note_signal(int signal)
{
    const int saved = errno;
    if (first_signal == 0)
        first_signal = signal;
    signals = signals + 1;
    if (signals >= 3) {
        std::signal(signal, SIG_DFL);
        std::raise(signal);
    }
    // The pipe cannot fill: two bytes go in.
    if (write(pipe_ends[1], "", 1) < 0)
        first_signal = signal;
    errno = saved;
}

} // namespace

void watch_interrupts()
{
    if (pipe2(pipe_ends, O_CLOEXEC | O_NONBLOCK) < 0)
        throw Failure{.message = "no pipe can be opened"};
    struct sigaction action {};
    action.sa_handler = note_signal;
    for (const int signal : {SIGINT, SIGTERM}) {
        struct sigaction former {};
        // A command in the background of a script is started with SIGINT ignored: keep it so.
        if (sigaction(signal, nullptr, &former) == 0 && former.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
    std::signal(SIGPIPE, SIG_IGN);
}

int pending_signal() { return first_signal; }

bool hurried() { return signals > (unhurried ? 1 : 0); }

int signal_descriptor() { return pipe_ends[0]; }

void drain_signals()
{
    char bytes[8];
    while (read(pipe_ends[0], bytes, sizeof bytes) > 0) {
    }
}

void check_interrupt(const char *message)
{
    if (first_signal != 0)
        throw interrupted(first_signal, message);
}

Unhurried::Unhurried() { unhurried = unhurried + 1; }
Unhurried::~Unhurried() { unhurried = unhurried - 1; }

} // namespace ofpctl
