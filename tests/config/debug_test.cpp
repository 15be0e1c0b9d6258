#include "config/setting.h"

using namespace test;

namespace {

const OfpGlbDebug debug = {
    .value_u16_0 = 0x0102,
    .value_u16_2 = 0x0304,
    .value_u16_4 = 0x0506,
    .value_u16_6 = 0x0708,
    .value_u32_8 = 0x090a0b0c,
    .reserved_12 = {0x0d, 0x0e, 0x0f, 0x10},
    .value_u64_16 = 0x1112131415161718,
    .opaque_24 = {0x19, 0x1a, 0x1b, 0x1c},
    .value_u16_28 = 0x1d1e,
    .reserved_30 = {0x1f, 0x20},
    .value_u32_32 = 0x21222324,
    .value_u32_36 = 0x25262728,
    .value_u32_40 = 0x292a2b2c,
    .opaque_44 = {0x2d, 0x2e, 0x2f, 0x30},
    .value_u16_48 = 0x3132,
    .value_u16_50 = 0x3334,
    .opaque_52 = {0x35},
    .value_u16_68 = 0x3637,
    .value_u16_70 = 0x3839,
    .opaque_72 = {0x3a},
    .value_u32_88 = 0x3b3c3d3e,
    .reserved_92 = {0x3f},
};
const Bytes debug_tlv = hex("0047 0060"
                            "0102 0304 0506 0708 090a0b0c 0d0e0f10"
                            "1112131415161718 191a1b1c 1d1e 1f20"
                            "21222324 25262728 292a2b2c 2d2e2f30"
                            "3132 3334") +
                        padded("\x35", 16) + hex("3637 3839") + padded("\x3a", 16) +
                        hex("3b3c3d3e 3f000000");

uint32_t set_test_driver()
{
    return with(OFP_set_TDTestGlbDebug, record_of<OfpTDTestGlbDebug>(counting(16)));
}

// The codes of the connection itself.
const Codes connection = {{"SOCK_Connect", OFP_RC_NO_REPLY}};

const std::vector<Setting> settings = {
    {.name = "GlbDebug",
     .call = [] { return with(OFP_set_GlbDebug, debug); },
     .datagram = hex("0001 0004 0000000e") + debug_tlv,
     .without_daemon = OFP_RC_DAEMON_DOWN,
     .codes = connection},
    {.name = "TDTestGlbDebug",
     .call = set_test_driver,
     .datagram = hex("0001 0004 00000025"
                     "00b0 0010 01020304 05060708 090a0b0c 0d0e0f10"), // as it lies
     .without_daemon = OFP_RC_DAEMON_DOWN,
     .codes = connection},
};

INSTANTIATE_TEST_SUITE_P(Debug, Setter, testing::ValuesIn(settings), name_of);

} // namespace
