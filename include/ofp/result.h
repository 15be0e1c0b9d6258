/*
 * Result codes. Every call that can fail returns one (calls that return a socket return -1
 * instead). Codes are compared whole. A code that is not listed here came in the agent daemon's
 * result reply and is passed on unchanged.
 */
#ifndef OFP_RESULT_H
#define OFP_RESULT_H

/* Row: name, code, sentence. */
#define OFP_RESULT_CODES(X)                                                                        \
    X(OFP_RC_OK, 0x00000000, "done")                                                               \
    X(OFP_RC_FAILED, 0x40010001, "the request was refused or failed")                              \
    X(OFP_RC_NOT_FOUND, 0x40010005, "the datagram holds no value of the requested type")           \
    X(OFP_RC_INVALID, 0x40010008, "a value is outside its range")                                  \
    X(OFP_RC_NO_RESOURCE, 0x4001000b, "out of memory, or the table or the groups are full")        \
    X(OFP_RC_STATE, 0x40010010, "not possible in this state, or the entry overlaps or exists")     \
    X(OFP_RC_SEND_FAILED, 0x42300001, "the request could not be sent")                             \
    X(OFP_RC_NO_REPLY, 0x22300010, "the agent daemon did not answer in time or hung up")           \
    X(OFP_RC_PORT_NO_DAEMON, 0x22300376, "a port cannot be bound while no agent daemon runs")      \
    X(OFP_RC_DAEMON_DOWN, 0x6001002f, "the agent daemon is not running")

enum {
#define OFP_ROW(name, code, text) name = (code),
    OFP_RESULT_CODES(OFP_ROW)
#undef OFP_ROW
};

#endif
