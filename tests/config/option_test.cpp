#include "config/setting.h"

using namespace test;

namespace {

const OfpEnablePayloadFunction payload = {
    .instance_id = 0x0102,
    .value_u16_2 = 0x0304,
    .value_u32_4 = 0x05060708,
    .value_u32_8 = 0x090a0b0c,
    .functions = 0x0d0e0f10,
    .opaque_16 = {0x11, 0x12, 0x13},
};

const Bytes packet = counting(1100, 2);

uint32_t set_packet(uint64_t length)
{
    return OFP_set_ProcALALPktOut(0x0102, packet.data(), length);
}

const std::vector<Setting> settings = {
    {"Ignore", [] { return OFP_set_Ignore(0x0102); },
     hex("0001 0004 00000033"
         "00cc 0004 0102 0000")},
    {"TrapEnable", [] { return OFP_set_TrapEnable(0x0102, 0x03040506); },
     hex("0001 0004 00000034"
         "00d2 0006 0102 03040506")},
    {"Ipv6Enhanced", [] { return OFP_set_Ipv6Enhanced(0x0102); },
     hex("0001 0004 00000038"
         "00dd 0004 0201 0000")}, // as it lies
    {"EnableALAlFunction",
     [] {
         return with(OFP_set_EnableALAlFunction,
                     {.instance_id = 0x0102, .value_u16_2 = 0x0304, .functions = 0x05060708});
     },
     hex("0001 0004 0000002d"
         "00b8 0008 0102 0304 05060708")},
    {"EnablePayloadFunction", [] { return with(OFP_set_EnablePayloadFunction, payload); },
     hex("0001 0004 00000032"
         "00c9 0050 0102 0304 05060708 090a0b0c 0d0e0f10") +
         padded("\x11\x12\x13", 64)},
    {"ProcALALPktOut", [] { return set_packet(3); },
     hex("0001 0004 0000002e"
         "00ba 0404 0102 0003") +
         padded("\x02\x03\x04", 1024)},
    {"ProcALALPktOutOfNothing", [] { return OFP_set_ProcALALPktOut(0x0102, nullptr, 0); },
     hex("0001 0004 0000002e"
         "00ba 0404 0102 0000") +
         Bytes(1024)},
    {"ProcALALPktOutOfAll", [] { return set_packet(1024); },
     hex("0001 0004 0000002e"
         "00ba 0404 0102 0400") +
         packet.slice(0, 1024)},
    {"ProcALALPktOutOfMoreThanFits", [] { return set_packet(1025); },
     hex("0001 0004 0000002e"
         "00ba 0404 0102 0401") +
         packet.slice(0, 1024)},
    {"ProcALALPktOutOfFarTooMuch", [] { return set_packet(0xffffffffffff0007); },
     hex("0001 0004 0000002e"
         "00ba 0404 0102 0007") +
         packet.slice(0, 1024)},
    {.name = "ProcConfigEvent",
     .call = [] { return OFP_set_ProcConfigEvent(0x01020304); },
     .datagram = hex("0001 0004 00000028"
                     "00b3 0004 01020304"),
     .without_daemon = OFP_RC_OK},
};

INSTANTIATE_TEST_SUITE_P(Option, Setter, testing::ValuesIn(settings), name_of);

class NoFunction : public PlatformTest {};

} // namespace

TEST_F(NoFunction, OfTheAnalysisLayerNeedsNoDaemon)
{
    EXPECT_EQ(with(OFP_set_EnableALAlFunction, {.instance_id = 1, .value_u16_2 = 2}), OFP_RC_OK);
    EXPECT_TRUE(platform.calls().empty());
}

TEST_F(NoFunction, OfThePayloadNeedsNoDaemon)
{
    OfpEnablePayloadFunction none = payload;
    none.functions = 0;
    EXPECT_EQ(with(OFP_set_EnablePayloadFunction, none), OFP_RC_OK);
    EXPECT_TRUE(platform.calls().empty());
}
