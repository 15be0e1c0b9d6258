// Message codes of answers that the library hands to its caller, or walks, without looking at the
// code: they have no name there.
#pragma once

#include <cstdint>

namespace agent {

inline constexpr uint32_t REPLY_CTRL_INFO = 0x20000005;
inline constexpr uint32_t REPLY_VERBOSE_GLB = 0x20000006;
inline constexpr uint32_t REPLY_VERBOSE_CFG = 0x20000007;
inline constexpr uint32_t REPLY_VERBOSE_RUN = 0x20000008;
inline constexpr uint32_t REPLY_VERBOSE_IF = 0x20000009;
inline constexpr uint32_t REPLY_GROUP_SUMMARY = 0x20000016;
inline constexpr uint32_t REPLY_GROUP_REF_RULE = 0x20000017;
inline constexpr uint32_t REPLY_AUX_INFO = 0x2000001d;
inline constexpr uint32_t REPLY_ACL_RESV = 0x20000021;
inline constexpr uint32_t REPLY_GLB_CFG_VERBOSE = 0x20000022;
inline constexpr uint32_t REPLY_CTRL_CFG_INFO = 0x20000023;
inline constexpr uint32_t REPLY_AC_PORT_INFO = 0x20000024;
inline constexpr uint32_t REPLY_CTRL_PKT_INFO = 0x20000025;
inline constexpr uint32_t REPLY_ACL_TABLE_NUM = 0x20000026;
inline constexpr uint32_t REPLY_RESOURCES_IF = 0x2000002c;

} // namespace agent
