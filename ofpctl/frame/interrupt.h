// SIGINT and SIGTERM. The first ends waiting and long work at the next safe point; inside an
// Unhurried scope it takes a second one to end a wait; the third ends the process.
#ifndef OFPCTL_FRAME_INTERRUPT_H
#define OFPCTL_FRAME_INTERRUPT_H

namespace ofpctl {

// Throws a Failure when the process can have no such thing.
void watch_interrupts();

// The first signal received; 0 for none.
int pending_signal();
// Whether a wait should end now.
bool hurried();
// Becomes readable with a signal; -1 before watch_interrupts. drain_signals makes it unreadable.
int signal_descriptor();
void drain_signals();

// Throws when a signal has come.
void check_interrupt(const char *message = "interrupted");

// While it lives the request under way is finished first.
class Unhurried {
public:
    Unhurried();
    ~Unhurried();
    Unhurried(const Unhurried &) = delete;
    Unhurried &operator=(const Unhurried &) = delete;
};

} // namespace ofpctl

#endif
