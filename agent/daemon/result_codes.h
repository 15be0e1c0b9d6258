// Result codes that this agent adds to those of the library: what a result reply says when a
// request is refused.
#pragma once

#include <cstdint>

// Row: name without its prefix, code, sentence.
#define OFP_AGENT_RESULT_CODES(X)                                                                  \
    /* the datagram */                                                                             \
    X(EMPTY_DATAGRAM, 0x42300100, "the datagram is empty")                                         \
    X(TOO_LONG, 0x42300101, "the datagram is longer than 65535 bytes")                             \
    X(NO_MESSAGE_HEAD, 0x42300102, "the datagram does not begin with a message head")              \
    X(UNKNOWN_MESSAGE, 0x42300103, "no message has this code")                                     \
    X(NOT_SUPPORTED, 0x42300104, "this agent does not answer this message")                        \
    X(BAD_TLV, 0x42300105, "a TLV is cut short")                                                   \
    X(MISSING_TLV, 0x42300106, "a TLV that the message needs is missing")                          \
    X(BAD_TLV_LENGTH, 0x42300107, "a TLV does not have the length of its type")                    \
    X(TRAILING_BYTES, 0x42300108, "bytes follow the last TLV of the message")                      \
    X(OTHER_USER, 0x42300109, "the agent serves only the user it runs as")                         \
    X(REPLY_TOO_LONG, 0x4230010a, "the answer does not fit into 49152 bytes")                      \
    /* instances */                                                                                \
    X(BAD_INSTANCE_ID, 0x42300110, "an instance id is 1 to 65534")                                 \
    X(BAD_FILTER, 0x42300111, "the instance filter is cut short or of a kind above 5")             \
    X(BAD_TABLE_ID, 0x42300112, "a table id of an instance is 0 to 254, of a client not 200")      \
    X(DUPLICATE_TABLE, 0x42300113, "a table is listed twice")                                      \
    X(INSTANCE_DIFFERS, 0x42300114, "the instance exists with other tables or another filter")     \
    X(NO_INSTANCE, 0x42300115, "the instance does not exist")                                      \
    X(NO_TABLE, 0x42300116, "the instance does not have this table")                               \
    /* rules and groups */                                                                         \
    X(BAD_CLIENT, 0x42300120, "a client id is 4096 to 4099")                                       \
    X(NO_RULE, 0x42300121, "the table does not have this rule")                                    \
    X(BAD_MATCH, 0x42300122, "the match is malformed")                                             \
    X(NO_GROUP, 0x42300123, "the instance does not have this group")                               \
    X(NO_METER, 0x42300125, "the instance does not have this meter")                               \
    X(BAD_PACKET, 0x42300124, "the packet's fields are malformed, or one of them has a mask")      \
    /* configuration */                                                                            \
    X(NOT_STORED, 0x42300140, "the configuration cannot be stored; nothing was changed")           \
    X(BAD_VALUE, 0x42300141, "a value is out of its range")                                        \
    X(BAD_VLAN, 0x42300142, "a VLAN id is 1 to 4094")                                              \
    X(BAD_VLAN_MAP, 0x42300143, "the length of a VLAN map is not that of its TLV")                 \
    X(BAD_TEXT, 0x42300144, "a text is not terminated within its field")                           \
    X(BAD_ADDRESS, 0x42300145, "an address is neither that of an IPv4 nor of an IPv6 host")        \
    X(BAD_CONTROLLER_ID, 0x42300146, "a controller id is 0 to 63")                                 \
    X(NO_CONTROLLER, 0x42300147, "the instance does not have this controller")                     \
    X(BAD_AUXILIARY_ID, 0x42300148, "the id of an auxiliary connection is 1 to 255")               \
    X(NO_AUXILIARY, 0x42300149, "the controller does not have this auxiliary connection")          \
    X(NO_PORT, 0x4230014a, "the switch has no interface of this index")                            \
    X(PORT_IN_USE, 0x4230014b, "the port is bound to another instance")                            \
    X(NOT_BOUND, 0x4230014c, "the port is not bound to this instance")                             \
    X(OTHER_INSTANCE, 0x4230014d, "the TLVs of the message name different instances")              \
    X(TOO_MANY, 0x4230014e, "no more of these can be kept")                                        \
    /* queries */                                                                                  \
    X(NO_NEXT, 0x42300130, "there is no further entry")                                            \
    X(NOT_PRESENT, 0x42300131, "this switch has nothing of this kind")                             \
    /* applications */                                                                             \
    X(NO_APPLICATION, 0x42300150, "no application is registered under this id")                    \
    X(BAD_APPLICATION, 0x42300151, "an application id is 1 to 11")                                 \
    X(BAD_EVENT, 0x42300152, "an event type is 1 to 63")

namespace agent {

#define OFP_ROW(name, code, text) inline constexpr uint32_t name = code;
OFP_AGENT_RESULT_CODES(OFP_ROW)
#undef OFP_ROW

// The sentence of a code of this agent or of the library; "unknown result code" for others.
const char *result_text(uint32_t code);

} // namespace agent
