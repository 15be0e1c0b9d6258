#include "config/setting.h"

using namespace test;

namespace {

const OfpCtrlCfg controller = {
    .instance_id = 0x0102,
    .address_type = 0x0304,
    .address = {0x010200c0, 2, 3, 4},
    .value_u32_20 = 0x05060708,
    .port = 0x19fd,
    .value_u16_26 = 0x090a,
    .controller_id = 0x0b,
    .text_29 = "main",
    .text_61 = "backup",
    .opaque_93 = {0x0c, 0x0d, 0x0e},
    .value_u16_96 = 0x0f10,
    .value_u16_98 = 0x1112,
    .opaque_100 = {0x13},
    .value_u16_116 = 0x1415,
    .value_u16_118 = 0x1617,
    .opaque_120 = {0x18},
};
const Bytes controller_tlv = hex("0007 009c"
                                 "0102 0304 c0000201 02000000 03000000 04000000" // as it lies
                                 "05060708 19fd 090a 0b") +
                             padded("main", 32) + padded("backup", 32) + hex("0c0d0e 0f10 1112") +
                             padded("\x13", 16) + hex("1415 1617") + padded("\x18", 36);

OfpCtrlSSL tls() { return record_of<OfpCtrlSSL>(counting(36)); }

const OfpAuxCfg auxiliary = {
    .instance_id = 0x0102,
    .address_type = 2,
    .address = {0x010200c0},
    .value_u32_20 = 0x03040506,
    .value_u32_24 = 0x0708090a,
    .text_28 = "mgmt",
    .port = 0x19fd,
    .controller_id = 0x0b,
    .aux_id = 0x0c,
};
const Bytes auxiliary_tlv = hex("0087 0040"
                                "0102 0002 c0000201 00000000 00000000 00000000"
                                "03040506 0708090a") +
                            padded("mgmt", 32) + hex("19fd 0b 0c");

const OfpOapServer server = {
    .text_0 = "oap", .value_u32_32 = 0x01020304, .value_u16_36 = 0x0506, .value_u16_38 = 0x0708};
const Bytes server_tlv = hex("0083 0028") + padded("oap", 32) + hex("01020304 0506 0708");

const std::vector<Setting> settings = {
    {"CtrlCfg", [] { return with(OFP_set_CtrlCfg, controller, 1); },
     hex("0001 0004 00000005") + controller_tlv},
    {"CtrlCfgRemoved", [] { return with(OFP_set_CtrlCfg, controller, 0); },
     hex("0001 0004 00000004") + controller_tlv},
    {"CtrlCfgOfAnotherOperation", [] { return with(OFP_set_CtrlCfg, controller, 2); },
     hex("0001 0004 00000004") + controller_tlv},
    {"CtrlSsl", [] { return with(OFP_set_Ctrl_SSL, tls(), 1); },
     hex("0001 0004 00000037 00db 0024") + counting(36)},
    {"CtrlSslRemoved", [] { return with(OFP_set_Ctrl_SSL, tls(), 0); },
     hex("0001 0004 00000036 00db 0024") + counting(36)},
    {"CtrlSslOfAnotherOperation", [] { return with(OFP_set_Ctrl_SSL, tls(), 0x101); },
     hex("0001 0004 00000036 00db 0024") + counting(36)},
    {"AuxCfg", [] { return with(OFP_set_AuxCfg, auxiliary, 1); },
     hex("0001 0004 0000001e") + auxiliary_tlv},
    {"AuxCfgRemoved", [] { return with(OFP_set_AuxCfg, auxiliary, 0); },
     hex("0001 0004 0000001d") + auxiliary_tlv},
    {"AuxCfgOfAnotherOperation", [] { return with(OFP_set_AuxCfg, auxiliary, 0xffff); },
     hex("0001 0004 0000001d") + auxiliary_tlv},
    {"OapServer", [] { return with(OFP_set_OapServer, server, 1); },
     hex("0001 0004 00000020") + server_tlv},
    {"OapServerRemoved", [] { return with(OFP_set_OapServer, server, 0); },
     hex("0001 0004 0000001f") + server_tlv},
    {"OapServerOfAnotherOperation", [] { return with(OFP_set_OapServer, server, 2); },
     hex("0001 0004 0000001f") + server_tlv},
    {.name = "ResetCtrlStat",
     .call = [] { return OFP_set_ResetCtrlStat(0x0102, 0x40); },
     .datagram = hex("0001 0004 00000016"
                     "0078 0004 0102 40 00"),
     .answered = false},
    {"ExlucdeCtrlId",
     [] {
         return with(
             OFP_set_ExlucdeCtrlId,
             {.instance_id = 0x0102, .value_u32_4 = 0x03040506, .value_u64_8 = 0x0708090a0b0c0d0e});
     },
     hex("0001 0004 00000030"
         "00bc 0010 0102 0000 03040506 0708090a0b0c0d0e")},
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Controller, Setter, testing::ValuesIn(settings), name_of);
