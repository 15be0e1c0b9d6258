// OpenFlow 1.3 on the wire: numbers by the standard's names, big-endian access, the message header.
#pragma once

#include <bit>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>

namespace openflow {

using Bytes = std::span<const uint8_t>;

inline constexpr uint8_t OFP_VERSION = 4;
inline constexpr size_t HEADER_SIZE = 8;
inline constexpr size_t FLOW_MOD_SIZE = 48; // the fixed part, the match follows
inline constexpr size_t GROUP_MOD_SIZE = 16;
inline constexpr size_t BUCKET_SIZE = 16;
inline constexpr size_t INSTRUCTION_SIZE = 8;

// The experimenter whose match items and actions this system's library writes.
inline constexpr uint32_t EXPERIMENTER_ID = 0x00000FE2;

enum MessageType : uint8_t {
    OFPT_HELLO = 0,
    OFPT_ERROR = 1,
    OFPT_ECHO_REQUEST = 2,
    OFPT_ECHO_REPLY = 3,
    OFPT_EXPERIMENTER = 4,
    OFPT_FEATURES_REQUEST = 5,
    OFPT_FEATURES_REPLY = 6,
    OFPT_GET_CONFIG_REQUEST = 7,
    OFPT_GET_CONFIG_REPLY = 8,
    OFPT_SET_CONFIG = 9,
    OFPT_PACKET_IN = 10,
    OFPT_FLOW_REMOVED = 11,
    OFPT_PORT_STATUS = 12,
    OFPT_PACKET_OUT = 13,
    OFPT_FLOW_MOD = 14,
    OFPT_GROUP_MOD = 15,
    OFPT_PORT_MOD = 16,
    OFPT_TABLE_MOD = 17,
    OFPT_MULTIPART_REQUEST = 18,
    OFPT_MULTIPART_REPLY = 19,
    OFPT_BARRIER_REQUEST = 20,
    OFPT_BARRIER_REPLY = 21,
    OFPT_QUEUE_GET_CONFIG_REQUEST = 22,
    OFPT_QUEUE_GET_CONFIG_REPLY = 23,
    OFPT_ROLE_REQUEST = 24,
    OFPT_ROLE_REPLY = 25,
    OFPT_GET_ASYNC_REQUEST = 26,
    OFPT_GET_ASYNC_REPLY = 27,
    OFPT_SET_ASYNC = 28,
    OFPT_METER_MOD = 29,
};

enum Port : uint32_t {
    OFPP_MAX = 0xffffff00, // the highest port number
    OFPP_IN_PORT = 0xfffffff8,
    OFPP_TABLE = 0xfffffff9, // in packet-out only
    OFPP_NORMAL = 0xfffffffa,
    OFPP_FLOOD = 0xfffffffb,
    OFPP_ALL = 0xfffffffc,
    OFPP_CONTROLLER = 0xfffffffd,
    OFPP_LOCAL = 0xfffffffe,
    OFPP_ANY = 0xffffffff, // no port; no filter in a delete
};

enum Group : uint32_t {
    OFPG_MAX = 0xffffff00, // the highest group id
    OFPG_ALL = 0xfffffffc,
    OFPG_ANY = 0xffffffff,
};

enum Table : uint8_t {
    OFPTT_MAX = 0xfe,
    OFPTT_ALL = 0xff, // in deletes only
};

inline constexpr uint32_t OFP_NO_BUFFER = 0xffffffff;

enum FlowModCommand : uint8_t {
    OFPFC_ADD = 0,
    OFPFC_MODIFY = 1,
    OFPFC_MODIFY_STRICT = 2,
    OFPFC_DELETE = 3,
    OFPFC_DELETE_STRICT = 4,
};

enum FlowModFlag : uint16_t {
    OFPFF_SEND_FLOW_REM = 1 << 0,
    OFPFF_CHECK_OVERLAP = 1 << 1,
    OFPFF_RESET_COUNTS = 1 << 2,
    OFPFF_NO_PKT_COUNTS = 1 << 3,
    OFPFF_NO_BYT_COUNTS = 1 << 4,
};

enum GroupModCommand : uint16_t {
    OFPGC_ADD = 0,
    OFPGC_MODIFY = 1,
    OFPGC_DELETE = 2,
};

enum GroupType : uint8_t {
    OFPGT_ALL = 0,
    OFPGT_SELECT = 1,
    OFPGT_INDIRECT = 2,
    OFPGT_FF = 3,
};

enum MatchType : uint16_t { OFPMT_STANDARD = 0, OFPMT_OXM = 1 };

enum OxmClass : uint16_t { OFPXMC_OPENFLOW_BASIC = 0x8000, OFPXMC_EXPERIMENTER = 0xffff };

enum VlanId : uint16_t { OFPVID_NONE = 0, OFPVID_PRESENT = 0x1000 };

enum InstructionType : uint16_t {
    OFPIT_GOTO_TABLE = 1,
    OFPIT_WRITE_METADATA = 2,
    OFPIT_WRITE_ACTIONS = 3,
    OFPIT_APPLY_ACTIONS = 4,
    OFPIT_CLEAR_ACTIONS = 5,
    OFPIT_METER = 6,
    OFPIT_EXPERIMENTER = 0xffff,
};

enum ActionType : uint16_t {
    OFPAT_OUTPUT = 0,
    OFPAT_COPY_TTL_OUT = 11,
    OFPAT_COPY_TTL_IN = 12,
    OFPAT_SET_MPLS_TTL = 15,
    OFPAT_DEC_MPLS_TTL = 16,
    OFPAT_PUSH_VLAN = 17,
    OFPAT_POP_VLAN = 18,
    OFPAT_PUSH_MPLS = 19,
    OFPAT_POP_MPLS = 20,
    OFPAT_SET_QUEUE = 21,
    OFPAT_GROUP = 22,
    OFPAT_SET_NW_TTL = 23,
    OFPAT_DEC_NW_TTL = 24,
    OFPAT_SET_FIELD = 25,
    OFPAT_PUSH_PBB = 26,
    OFPAT_POP_PBB = 27,
    OFPAT_EXPERIMENTER = 0xffff,
};

enum ErrorType : uint16_t {
    OFPET_HELLO_FAILED = 0,
    OFPET_BAD_REQUEST = 1,
    OFPET_BAD_ACTION = 2,
    OFPET_BAD_INSTRUCTION = 3,
    OFPET_BAD_MATCH = 4,
    OFPET_FLOW_MOD_FAILED = 5,
    OFPET_GROUP_MOD_FAILED = 6,
};

enum BadRequestCode : uint16_t {
    OFPBRC_BAD_VERSION = 0,
    OFPBRC_BAD_TYPE = 1,
    OFPBRC_BAD_MULTIPART = 2,
    OFPBRC_BAD_EXPERIMENTER = 3,
    OFPBRC_BAD_EXP_TYPE = 4,
    OFPBRC_EPERM = 5,
    OFPBRC_BAD_LEN = 6,
    OFPBRC_BUFFER_EMPTY = 7,
    OFPBRC_BUFFER_UNKNOWN = 8,
    OFPBRC_BAD_TABLE_ID = 9,
    OFPBRC_IS_SLAVE = 10,
    OFPBRC_BAD_PORT = 11,
    OFPBRC_BAD_PACKET = 12,
    OFPBRC_MULTIPART_BUFFER_OVERFLOW = 13,
};

enum BadActionCode : uint16_t {
    OFPBAC_BAD_TYPE = 0,
    OFPBAC_BAD_LEN = 1,
    OFPBAC_BAD_EXPERIMENTER = 2,
    OFPBAC_BAD_EXP_TYPE = 3,
    OFPBAC_BAD_OUT_PORT = 4,
    OFPBAC_BAD_ARGUMENT = 5,
    OFPBAC_EPERM = 6,
    OFPBAC_TOO_MANY = 7,
    OFPBAC_BAD_QUEUE = 8,
    OFPBAC_BAD_OUT_GROUP = 9,
    OFPBAC_MATCH_INCONSISTENT = 10,
    OFPBAC_UNSUPPORTED_ORDER = 11,
    OFPBAC_BAD_TAG = 12,
    OFPBAC_BAD_SET_TYPE = 13,
    OFPBAC_BAD_SET_LEN = 14,
    OFPBAC_BAD_SET_ARGUMENT = 15,
};

enum BadInstructionCode : uint16_t {
    OFPBIC_UNKNOWN_INST = 0,
    OFPBIC_UNSUP_INST = 1,
    OFPBIC_BAD_TABLE_ID = 2,
    OFPBIC_UNSUP_METADATA = 3,
    OFPBIC_UNSUP_METADATA_MASK = 4,
    OFPBIC_BAD_EXPERIMENTER = 5,
    OFPBIC_BAD_EXP_TYPE = 6,
    OFPBIC_BAD_LEN = 7,
    OFPBIC_EPERM = 8,
};

enum BadMatchCode : uint16_t {
    OFPBMC_BAD_TYPE = 0,
    OFPBMC_BAD_LEN = 1,
    OFPBMC_BAD_TAG = 2,
    OFPBMC_BAD_DL_ADDR_MASK = 3,
    OFPBMC_BAD_NW_ADDR_MASK = 4,
    OFPBMC_BAD_WILDCARDS = 5,
    OFPBMC_BAD_FIELD = 6,
    OFPBMC_BAD_VALUE = 7,
    OFPBMC_BAD_MASK = 8,
    OFPBMC_BAD_PREREQ = 9,
    OFPBMC_DUP_FIELD = 10,
    OFPBMC_EPERM = 11,
};

enum FlowModFailedCode : uint16_t {
    OFPFMFC_UNKNOWN = 0,
    OFPFMFC_TABLE_FULL = 1,
    OFPFMFC_BAD_TABLE_ID = 2,
    OFPFMFC_OVERLAP = 3,
    OFPFMFC_EPERM = 4,
    OFPFMFC_BAD_TIMEOUT = 5,
    OFPFMFC_BAD_COMMAND = 6,
    OFPFMFC_BAD_FLAGS = 7,
};

enum GroupModFailedCode : uint16_t {
    OFPGMFC_GROUP_EXISTS = 0,
    OFPGMFC_INVALID_GROUP = 1,
    OFPGMFC_WEIGHT_UNSUPPORTED = 2,
    OFPGMFC_OUT_OF_GROUPS = 3,
    OFPGMFC_OUT_OF_BUCKETS = 4,
    OFPGMFC_CHAINING_UNSUPPORTED = 5,
    OFPGMFC_WATCH_UNSUPPORTED = 6,
    OFPGMFC_LOOP = 7,
    OFPGMFC_UNKNOWN_GROUP = 8,
    OFPGMFC_CHAINED_GROUP = 9,
    OFPGMFC_BAD_TYPE = 10,
    OFPGMFC_BAD_COMMAND = 11,
    OFPGMFC_BAD_BUCKET = 12,
    OFPGMFC_BAD_WATCH = 13,
    OFPGMFC_EPERM = 14,
};

// What the standard says is wrong with a message.
struct Error {
    uint16_t type = 0;
    uint16_t code = 0;
    bool operator==(const Error &) const = default;
};

// "OFPBMC_BAD_PREREQ"; "unknown error" for numbers the standard does not have.
std::string_view error_name(Error error);

// "flow-mod", "barrier reply"; "unknown message".
std::string_view message_name(uint8_t type);

// A value, or the error that kept it from being one.
template <class T>
class [[nodiscard]] Result {
public:
    Result(const T &value) : value_(value) {}
    Result(Error error) : error_(error) {}

    explicit operator bool() const { return value_.has_value(); }
    const T &operator*() const { return *value_; }
    const T *operator->() const { return &*value_; }
    Error error() const
    {
        assert(!value_);
        return error_;
    }

private:
    std::optional<T> value_;
    Error error_;
};

// Big-endian access; no alignment needed.
template <class T>
T load(const uint8_t *from)
{
    T value;
    std::memcpy(&value, from, sizeof value);
    if constexpr (sizeof(T) == 2) {
        return static_cast<T>(__builtin_bswap16(value));
    } else if constexpr (sizeof(T) == 4) {
        return __builtin_bswap32(value);
    } else if constexpr (sizeof(T) == 8) {
        return __builtin_bswap64(value);
    } else {
        static_assert(sizeof(T) == 1);
        return value;
    }
}

template <class T>
void store(uint8_t *to, T value)
{
    uint8_t bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    const T swapped = load<T>(bytes);
    std::memcpy(to, &swapped, sizeof swapped);
}

static_assert(std::endian::native == std::endian::little);

inline uint16_t load16(const uint8_t *from) { return load<uint16_t>(from); }
inline uint32_t load32(const uint8_t *from) { return load<uint32_t>(from); }
inline uint64_t load64(const uint8_t *from) { return load<uint64_t>(from); }

struct Header {
    uint8_t version = 0;
    uint8_t type = 0;
    uint16_t length = 0; // of the whole message, as announced
    uint32_t xid = 0;
};

// The first 8 bytes, unchecked; nothing when there are fewer.
std::optional<Header> peek_header(Bytes message);

} // namespace openflow
