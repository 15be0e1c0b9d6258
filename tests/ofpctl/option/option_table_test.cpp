// What every row of the option tables must be, and the datagram that each one sends.
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "frame/rehearsal.h"
#include "option/assignment.h"
#include "option/global_option.h"
#include "option/instance_option.h"
#include "option/record_option.h"

namespace ofpctl {
namespace {

template <class Send>
std::string sent(Send send)
{
    std::string hex;
    const Rehearsal rehearsal([&](std::span<const uint8_t> datagram) {
        for (const uint8_t byte : datagram) {
            constexpr char digits[] = "0123456789abcdef";
            hex += digits[byte >> 4];
            hex += digits[byte & 15];
        }
    });
    EXPECT_EQ(send(), 0U);
    return hex;
}

std::string sent(std::string_view name, std::string_view text)
{
    const SettingRow *row = find_setting(instance_settings(), name);
    EXPECT_NE(row, nullptr) << name;
    const auto value = std::get<Value>(parse_value(*row, text));
    return sent([&] { return option_of(instance_options(), *row).set(0x1234, value); });
}

std::string sent_globally(std::string_view name, std::string_view text)
{
    const SettingRow *row = find_setting(global_settings(), name);
    EXPECT_NE(row, nullptr) << name;
    const auto value = std::get<Value>(parse_value(*row, text));
    return sent([&] { return option_of(global_options(), *row).set(value); });
}

TEST(OptionTables, NamesAreDistinctAndDescribed)
{
    for (const SettingRows &rows : {instance_settings(), global_settings(), controller_settings(),
                                    auxiliary_settings(), debug_settings()}) {
        std::set<std::string_view> names;
        for (const SettingRow *row : rows) {
            SCOPED_TRACE(row->name);
            EXPECT_TRUE(names.insert(row->name).second);
            EXPECT_FALSE(row->help.empty());
            EXPECT_EQ(row->value.empty(), row->form == ValueForm::word);
            EXPECT_EQ(row->choices.empty(), row->form != ValueForm::word);
            if (row->form == ValueForm::number || row->form == ValueForm::hex ||
                row->form == ValueForm::text) {
                EXPECT_LT(row->least, row->most);
            }
        }
    }
}

// head: 0001 0004 and the message code; then type, length, value. The instance is 0x1234.
TEST(InstanceOptions, SendWhatTheyAreNamedFor)
{
    EXPECT_EQ(sent("echo-interval", "10"), "00010004"
                                           "00000006"
                                           "00080008"
                                           "0000000a"
                                           "12340000");
    EXPECT_EQ(sent("reconnect-interval", "60"), "00010004"
                                                "0000000f"
                                                "00500008"
                                                "0000003c"
                                                "12340000");
    EXPECT_EQ(sent("flow-entry-limit", "5"), "00010004"
                                             "00000007"
                                             "00090008"
                                             "00000005"
                                             "12340000");
    EXPECT_EQ(sent("fail-open", "secure"), "00010004"
                                           "00000008"
                                           "000a0008"
                                           "00000000"
                                           "12340000");
    EXPECT_EQ(sent("fail-open", "standalone"), "00010004"
                                               "00000008"
                                               "000a0008"
                                               "00000001"
                                               "12340000");
    EXPECT_EQ(sent("connection-mode", "single"), "00010004"
                                                 "00000013"
                                                 "005e0008"
                                                 "00000001"
                                                 "12340000");
    EXPECT_EQ(sent("table-miss", "permit"), "00010004"
                                            "00000014"
                                            "007f0008"
                                            "00000001"
                                            "12340000");
    EXPECT_EQ(sent("datapath-id", "0x0102030405060708"), "00010004"
                                                         "00000010"
                                                         "00570010"
                                                         "0102030405060708"
                                                         "1234000000000000");
    EXPECT_EQ(sent("precedence", "3"), "00010004"
                                       "0000001a"
                                       "009a0008"
                                       "12340003"
                                       "01000000")
        << "the 1 as it lies";
    EXPECT_EQ(sent("tcp-dscp", "46"), "00010004"
                                      "00000026"
                                      "00b10008"
                                      "12340000"
                                      "0000002e");
    EXPECT_EQ(sent("tcp-nsr", "on"), "00010004"
                                     "00000027"
                                     "00b20004"
                                     "12340001");
    EXPECT_EQ(sent("excluded-controllers", "0,2"), "00010004"
                                                   "00000030"
                                                   "00bc0010"
                                                   "1234000000000000"
                                                   "0000000000000005");
    EXPECT_EQ(sent("data-plane-mode", "2"), "00010004"
                                            "00000031"
                                            "00c70004"
                                            "12340002");
    EXPECT_EQ(sent("ttp-mode", "on"), "00010004"
                                      "00000035"
                                      "00d30004"
                                      "12340001");
    EXPECT_EQ(sent("loop-protection", "on"), "00010004"
                                             "0000002c"
                                             "00b70004"
                                             "12340001");
    EXPECT_EQ(sent("mac-learning", "off"), "00010004"
                                           "00000012"
                                           "005c0004"
                                           "12340000");
    EXPECT_EQ(sent("dynamic-mac", "on"), "00010004"
                                         "0000000b"
                                         "00440004"
                                         "12340001");
}

TEST(InstanceOptions, SomeValuesTravelAheadOfTheInstance)
{
    EXPECT_EQ(sent("qinq", "on"), "00010004"
                                  "00000019"
                                  "00a40004"
                                  "00011234");
    EXPECT_EQ(sent("smart-group", "on"), "00010004"
                                         "00000039"
                                         "00e00004"
                                         "00011234");
    EXPECT_EQ(sent("forbidden-ports", "0x6"), "00010004"
                                              "00000015"
                                              "00800008"
                                              "00000006"
                                              "12340000");
    EXPECT_EQ(sent("permitted-port-types", "0x6"), "00010004"
                                                   "00000024"
                                                   "00ac0008"
                                                   "00000006"
                                                   "12340000");
    EXPECT_EQ(sent("packet-filter", "6"), "00010004"
                                          "00000018"
                                          "00a00008"
                                          "06000000"
                                          "34120000")
        << "as it lies";
}

TEST(InstanceOptions, OffMeansThatTheLogIsDisabled)
{
    EXPECT_EQ(sent("flow-log", "off"), "00010004"
                                       "0000001b"
                                       "009d0004"
                                       "12340001");
    EXPECT_EQ(sent("flow-log", "on"), "00010004"
                                      "0000001b"
                                      "009d0004"
                                      "12340000");
}

TEST(InstanceOptions, BitsAndMonitors)
{
    EXPECT_EQ(sent("traps", "0x3"), "00010004"
                                    "00000034"
                                    "00d20006"
                                    "1234"
                                    "00000003");
    EXPECT_EQ(sent("analysis-functions", "0x3"), "00010004"
                                                 "0000002d"
                                                 "00b80008"
                                                 "12340000"
                                                 "00000003");
    EXPECT_EQ(sent("payload-functions", "0x3").substr(0, 56), "00010004"
                                                              "00000032"
                                                              "00c90050"
                                                              "12340000"
                                                              "00000000"
                                                              "00000000"
                                                              "00000003");
    EXPECT_EQ(sent("flow-monitor-interval", "9"), "00010004"
                                                  "0000003b"
                                                  "00e90008"
                                                  "12340000"
                                                  "00000009");
    EXPECT_EQ(sent("flow-monitor-threshold", "9"), "00010004"
                                                   "0000003c"
                                                   "00ea0008"
                                                   "12340000"
                                                   "00000009");
}

TEST(InstanceOptions, TablesAndVlans)
{
    EXPECT_EQ(sent("flow-tables", "20:3,10"), "00010004"
                                              "0000000c"
                                              "00040004"
                                              "12340000"
                                              "00450008"
                                              "0a000000"
                                              "00000002"
                                              "00450008"
                                              "14000000"
                                              "00000003");
    EXPECT_EQ(sent("flow-tables", "none"), "00010004"
                                           "0000000c"
                                           "00040004"
                                           "12340000");
    const std::string vlan = sent("vlan", "96/0xff0,loose");
    EXPECT_EQ(vlan.substr(0, 24), "00010004"
                                  "00000003"
                                  "00030110");
    EXPECT_EQ(vlan.substr(48, 8), "12340001") << "instance and looseness";
    EXPECT_EQ(vlan.substr(568), "007c0008"
                                "12340001"
                                "00000000" // kind 1
                                "007d0008"
                                "00000000"
                                "00600ff0"); // VLAN and mask
    const std::string management = sent("management-vlans", "1-8");
    EXPECT_EQ(management.substr(0, 60), "00010004"
                                        "00000011"
                                        "00040004"
                                        "12340000"
                                        "005a0208"
                                        "00000200"
                                        "00000ffe"
                                        "fe01");
}

TEST(InstanceOptions, TheExtensionIsTheFilters)
{
    EXPECT_EQ(sent("extension", "0x5"), "00010004"
                                        "00000001"
                                        "007c0008"
                                        "12340000"
                                        "00000005");
}

TEST(InstanceOptions, TheDescriptionIsText)
{
    const std::string description = sent("description", "edge");
    EXPECT_EQ(description.substr(0, 24), "00010004"
                                         "00000009"
                                         "00030110");
    EXPECT_EQ(description.substr(48, 18), "12340000"
                                          "6564676500");
    EXPECT_EQ(description.size(), 2 * (8 + 4 + 272U));
}

TEST(GlobalOptions, SendWhatTheyAreNamedFor)
{
    EXPECT_EQ(sent_globally("ignore", "2"), "00010004"
                                            "00000033"
                                            "00cc0004"
                                            "00020000");
    EXPECT_EQ(sent_globally("ipv6-enhanced", "on"), "00010004"
                                                    "00000038"
                                                    "00dd0004"
                                                    "01000000")
        << "as it lies";
    EXPECT_EQ(sent_globally("reserved-acl", "2"), "00010004"
                                                  "00000029"
                                                  "00b40004"
                                                  "00020000");
    EXPECT_EQ(sent_globally("refresh-ip-flow", "1"), "00010004"
                                                     "0000001c"
                                                     "00a50004"
                                                     "00010000");
    EXPECT_EQ(sent_globally("config-event", "7"), "00010004"
                                                  "00000028"
                                                  "00b30004"
                                                  "00000007");
    EXPECT_EQ(sent_globally("flow-monitor-action", "1:2:3:4"), "00010004"
                                                               "0000003d"
                                                               "00eb0013"
                                                               "0000000000000001"
                                                               "0000000000000002"
                                                               "03"
                                                               "0004");
    EXPECT_EQ(sent_globally("normal-forward-vlans", "none").substr(0, 40), "00010004"
                                                                           "0000002f"
                                                                           "005a0208"
                                                                           "00000200"
                                                                           "00000ffe");
    EXPECT_EQ(sent_globally("oap-server", "srv").substr(0, 32), "00010004"
                                                                "00000020"
                                                                "00830028"
                                                                "73727600");
    EXPECT_EQ(sent_globally("oap-server", "").substr(0, 24), "00010004"
                                                             "0000001f"
                                                             "00830028")
        << "without a name it is removed";
}

TEST(Controllers, AreSentWhole)
{
    const std::vector<std::string> words{"address=192.0.2.1", "port=6653", "role=master", "vrf=v",
                                         "tls-policy=t"};
    const OfpCtrlCfg record =
        controller_record(0x1234, 5, parse_assignments(words, controller_settings()));
    const std::string hex = sent([&] { return OFP_set_CtrlCfg(&record, 1); });
    EXPECT_EQ(hex.substr(0, 84), "00010004"
                                 "00000005"
                                 "0007009c"
                                 "1234"
                                 "0002"
                                 "c0000201"
                                 "000000000000000000000000"
                                 "00000002"
                                 "19fd"
                                 "0000"
                                 "05"
                                 "76");
    EXPECT_EQ(hex.substr(24 + 2 * 61, 4), "7400");
}

} // namespace
} // namespace ofpctl
