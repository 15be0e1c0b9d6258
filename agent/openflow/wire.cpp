#include "openflow/wire.h"

#include <array>

namespace openflow {
namespace {

using Names = std::span<const std::string_view>;

constexpr std::array<std::string_view, 14> BAD_REQUEST = {
    "OFPBRC_BAD_VERSION",    "OFPBRC_BAD_TYPE",
    "OFPBRC_BAD_MULTIPART",  "OFPBRC_BAD_EXPERIMENTER",
    "OFPBRC_BAD_EXP_TYPE",   "OFPBRC_EPERM",
    "OFPBRC_BAD_LEN",        "OFPBRC_BUFFER_EMPTY",
    "OFPBRC_BUFFER_UNKNOWN", "OFPBRC_BAD_TABLE_ID",
    "OFPBRC_IS_SLAVE",       "OFPBRC_BAD_PORT",
    "OFPBRC_BAD_PACKET",     "OFPBRC_MULTIPART_BUFFER_OVERFLOW"};

constexpr std::array<std::string_view, 16> BAD_ACTION = {"OFPBAC_BAD_TYPE",
                                                         "OFPBAC_BAD_LEN",
                                                         "OFPBAC_BAD_EXPERIMENTER",
                                                         "OFPBAC_BAD_EXP_TYPE",
                                                         "OFPBAC_BAD_OUT_PORT",
                                                         "OFPBAC_BAD_ARGUMENT",
                                                         "OFPBAC_EPERM",
                                                         "OFPBAC_TOO_MANY",
                                                         "OFPBAC_BAD_QUEUE",
                                                         "OFPBAC_BAD_OUT_GROUP",
                                                         "OFPBAC_MATCH_INCONSISTENT",
                                                         "OFPBAC_UNSUPPORTED_ORDER",
                                                         "OFPBAC_BAD_TAG",
                                                         "OFPBAC_BAD_SET_TYPE",
                                                         "OFPBAC_BAD_SET_LEN",
                                                         "OFPBAC_BAD_SET_ARGUMENT"};

constexpr std::array<std::string_view, 9> BAD_INSTRUCTION = {"OFPBIC_UNKNOWN_INST",
                                                             "OFPBIC_UNSUP_INST",
                                                             "OFPBIC_BAD_TABLE_ID",
                                                             "OFPBIC_UNSUP_METADATA",
                                                             "OFPBIC_UNSUP_METADATA_MASK",
                                                             "OFPBIC_BAD_EXPERIMENTER",
                                                             "OFPBIC_BAD_EXP_TYPE",
                                                             "OFPBIC_BAD_LEN",
                                                             "OFPBIC_EPERM"};

constexpr std::array<std::string_view, 12> BAD_MATCH = {
    "OFPBMC_BAD_TYPE",         "OFPBMC_BAD_LEN",          "OFPBMC_BAD_TAG",
    "OFPBMC_BAD_DL_ADDR_MASK", "OFPBMC_BAD_NW_ADDR_MASK", "OFPBMC_BAD_WILDCARDS",
    "OFPBMC_BAD_FIELD",        "OFPBMC_BAD_VALUE",        "OFPBMC_BAD_MASK",
    "OFPBMC_BAD_PREREQ",       "OFPBMC_DUP_FIELD",        "OFPBMC_EPERM"};

constexpr std::array<std::string_view, 8> FLOW_MOD_FAILED = {
    "OFPFMFC_UNKNOWN", "OFPFMFC_TABLE_FULL",  "OFPFMFC_BAD_TABLE_ID", "OFPFMFC_OVERLAP",
    "OFPFMFC_EPERM",   "OFPFMFC_BAD_TIMEOUT", "OFPFMFC_BAD_COMMAND",  "OFPFMFC_BAD_FLAGS"};

constexpr std::array<std::string_view, 15> GROUP_MOD_FAILED = {
    "OFPGMFC_GROUP_EXISTS",      "OFPGMFC_INVALID_GROUP",  "OFPGMFC_WEIGHT_UNSUPPORTED",
    "OFPGMFC_OUT_OF_GROUPS",     "OFPGMFC_OUT_OF_BUCKETS", "OFPGMFC_CHAINING_UNSUPPORTED",
    "OFPGMFC_WATCH_UNSUPPORTED", "OFPGMFC_LOOP",           "OFPGMFC_UNKNOWN_GROUP",
    "OFPGMFC_CHAINED_GROUP",     "OFPGMFC_BAD_TYPE",       "OFPGMFC_BAD_COMMAND",
    "OFPGMFC_BAD_BUCKET",        "OFPGMFC_BAD_WATCH",      "OFPGMFC_EPERM"};

// By error type; hello-failed is never sent here.
constexpr std::array<Names, 7> ERRORS = {Names(),         BAD_REQUEST, BAD_ACTION,
                                         BAD_INSTRUCTION, BAD_MATCH,   FLOW_MOD_FAILED,
                                         GROUP_MOD_FAILED};

constexpr std::array<std::string_view, 30> MESSAGES = {"hello",
                                                       "error",
                                                       "echo request",
                                                       "echo reply",
                                                       "experimenter",
                                                       "features request",
                                                       "features reply",
                                                       "get-config request",
                                                       "get-config reply",
                                                       "set-config",
                                                       "packet-in",
                                                       "flow-removed",
                                                       "port-status",
                                                       "packet-out",
                                                       "flow-mod",
                                                       "group-mod",
                                                       "port-mod",
                                                       "table-mod",
                                                       "multipart request",
                                                       "multipart reply",
                                                       "barrier request",
                                                       "barrier reply",
                                                       "queue-get-config request",
                                                       "queue-get-config reply",
                                                       "role request",
                                                       "role reply",
                                                       "get-async request",
                                                       "get-async reply",
                                                       "set-async",
                                                       "meter-mod"};

} // namespace

std::string_view error_name(Error error)
{
    if (error.type >= ERRORS.size() || error.code >= ERRORS[error.type].size()) {
        return "unknown error";
    }
    return ERRORS[error.type][error.code];
}

std::string_view message_name(uint8_t type)
{
    return type < MESSAGES.size() ? MESSAGES[type] : "unknown message";
}

std::optional<Header> peek_header(Bytes message)
{
    if (message.size() < HEADER_SIZE) {
        return {};
    }
    return Header{message[0], message[1], load16(message.data() + 2), load32(message.data() + 4)};
}

} // namespace openflow
