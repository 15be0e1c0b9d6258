// How a command fails: an exit status, the library's result code where there is one, a sentence.
#ifndef OFPCTL_FRAME_FAILURE_H
#define OFPCTL_FRAME_FAILURE_H

#include <cstdint>
#include <string>
#include <string_view>

namespace ofpctl {

enum Status : int {
    status_done = 0,
    status_failed = 1,       // refused, or failed for a reason of its own
    status_usage = 2,        // wrong usage or syntax: nothing was sent
    status_no_agent = 3,     // the agent does not run
    status_no_reply = 4,     // the agent did not answer in time
    status_missing = 5,      // the named thing does not exist
    status_partly = 6,       // part of a batch was refused
    status_denied = 7,       // no permission on the socket
    status_interrupted = 128 // plus the signal
};

// Thrown by whatever cannot go on, reported once, by run().
struct Failure {
    int status = status_failed;
    uint32_t code = 0; // the library's result code; 0 when the library has no part in it
    std::string message;
};

Failure usage_failure(std::string message);
Failure interrupted(int signal, std::string message);

// "OFP_RC_NO_REPLY", or empty for a code that has no name.
std::string_view result_name(uint32_t code);
// "the agent daemon did not answer in time or hung up"; a code without a sentence of its own gets
// one that says so.
std::string result_sentence(uint32_t code);
// "0x22300010"
std::string result_number(uint32_t code);

// The exit status that goes with a result code.
int status_of(uint32_t code);

// What stands for the failure in JSON: the result code's name, or that of the exit status.
std::string_view failure_name(const Failure &failure);

} // namespace ofpctl

#endif
