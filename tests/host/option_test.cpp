#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ofp/host.h"
#include "ofp/platform.h"
#include "ofp/result.h"

namespace {

struct Parsed {
    uint32_t code = 0;
    uint32_t wide = 0xabababab;
    uint16_t narrow = 0xcdcd;
    uint16_t after = 0xcdcd;
    std::string error;
};

Parsed parse(std::vector<std::string> arguments)
{
    Parsed result;
    const OptEntry table[] = {{"ACLTableNum", 1, &result.wide, 4},
                              {"TDEnable", 0, &result.narrow, 2}};
    arguments.insert(arguments.begin(), "ofp-agent");
    std::vector<char *> argv;
    for (std::string &argument : arguments) {
        argv.push_back(argument.data());
    }
    int argc = static_cast<int>(argv.size());
    argv.push_back(nullptr);
    result.code = OPT_ParseEx(&argc, argv.data(), table, 2);
    result.error = result.code == 0 ? "" : HOST_LastError();
    EXPECT_EQ(result.after, 0xcdcd);
    return result;
}

TEST(Options, NoneKeepEveryDestination)
{
    Parsed p = parse({});
    EXPECT_EQ(p.code, 0u);
    EXPECT_EQ(p.wide, 0xababababu);
    EXPECT_EQ(p.narrow, 0xcdcd);
}

TEST(Options, ValueFollowsAnEqualSignOrAsTheNextArgument)
{
    Parsed p = parse({"--ACLTableNum=16", "--TDEnable", "1"});
    EXPECT_EQ(p.code, 0u) << p.error;
    EXPECT_EQ(p.wide, 16u);
    EXPECT_EQ(p.narrow, 1);
}

TEST(Options, HexadecimalIsAcceptedAndALeadingZeroIsNotOctal)
{
    EXPECT_EQ(parse({"--ACLTableNum=0xFFFFffff"}).wide, UINT32_MAX);
    EXPECT_EQ(parse({"--ACLTableNum=0X10"}).wide, 16u);
    EXPECT_EQ(parse({"--ACLTableNum=010"}).wide, 10u);
}

TEST(Options, LastOfANameCounts) { EXPECT_EQ(parse({"--TDEnable=1", "--TDEnable=2"}).narrow, 2); }

TEST(Options, RangeIsThatOfTheKind)
{
    EXPECT_EQ(parse({"--TDEnable=65535"}).narrow, 65535);
    EXPECT_EQ(parse({"--TDEnable=65536"}).error,
              "--TDEnable: 65536 is out of range, at most 65535");
    EXPECT_EQ(parse({"--ACLTableNum=4294967295"}).wide, UINT32_MAX);
    EXPECT_EQ(parse({"--ACLTableNum=4294967296"}).code, uint32_t{OFP_RC_INVALID});
    EXPECT_EQ(parse({"--ACLTableNum=99999999999999999999999"}).code, uint32_t{OFP_RC_INVALID});
}

TEST(Options, WrongOnesAreNamed)
{
    EXPECT_EQ(parse({"--Acltablenum=1"}).error, "--Acltablenum: unknown option");
    EXPECT_EQ(parse({"--ACLTable=1"}).error, "--ACLTable: unknown option");
    EXPECT_EQ(parse({"--TDEnable"}).error, "--TDEnable: value missing");
    EXPECT_EQ(parse({"--TDEnable="}).error, "--TDEnable: value missing");
    EXPECT_EQ(parse({"--TDEnable", "--ACLTableNum=1"}).error, "--TDEnable: value missing");
    EXPECT_EQ(parse({"1"}).error, "1: expected an option such as --Name=value");
    EXPECT_EQ(parse({"-t"}).error, "-t: expected an option such as --Name=value");
    EXPECT_EQ(parse({"--"}).error, "--: expected an option such as --Name=value");
    for (const char *value : {"-1", "+1", " 1", "1 ", "0x", "1k", "x10", "0xg"}) {
        Parsed p = parse({std::string("--TDEnable=") + value});
        EXPECT_EQ(p.error, "--TDEnable: " + std::string(value) +
                               " is not a number (decimal, or 0x and hexadecimal)");
    }
}

TEST(Options, AnyWrongOneLeavesAllDestinations)
{
    Parsed p = parse({"--ACLTableNum=5", "--TDEnable=70000"});
    EXPECT_EQ(p.code, uint32_t{OFP_RC_INVALID});
    EXPECT_EQ(p.wide, 0xababababu);
    EXPECT_EQ(p.narrow, 0xcdcd);
}

TEST(Options, TableWithAnUnknownKindIsRefused)
{
    char name[] = "--Odd=1";
    char program[] = "p";
    char *argv[] = {program, name, nullptr};
    int argc = 2;
    uint32_t value = 7;
    for (OptEntry entry : {OptEntry{"Odd", 2, &value, 4}, OptEntry{"Odd", 1, &value, 2},
                           OptEntry{"Odd", 0, &value, 4}}) {
        EXPECT_EQ(OPT_ParseEx(&argc, argv, &entry, 1), uint32_t{OFP_RC_INVALID});
        EXPECT_EQ(value, 7u);
    }
    EXPECT_NE(OPT_ParseEx(nullptr, argv, nullptr, 0), 0u);
    EXPECT_NE(OPT_ParseEx(&argc, nullptr, nullptr, 0), 0u);
}

} // namespace
