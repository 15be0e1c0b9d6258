#include "daemon/dispatch.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "agent/daemon/messages.h"
#include "agent/daemon/settings.h"

namespace agent::test {
namespace {

TEST(Dispatch, RefusesWhatIsNoRequest)
{
    Model model;
    EXPECT_EQ(ask_one(model, {}), result(EMPTY_DATAGRAM));
    EXPECT_EQ(ask_one(model, hex("00")), result(NO_MESSAGE_HEAD));
    EXPECT_EQ(ask_one(model, hex("0001 0003 500000")), result(NO_MESSAGE_HEAD));
    EXPECT_EQ(ask_one(model, hex("0001 0005 5000000100")), result(NO_MESSAGE_HEAD));
    EXPECT_EQ(ask_one(model, hex("0002 0004 50000001")), result(NO_MESSAGE_HEAD));
    EXPECT_EQ(ask_one(model, hex("04 14 0008 00000000")), result(NO_MESSAGE_HEAD));
    EXPECT_EQ(model.counters.datagrams, 6u);
    EXPECT_EQ(model.counters.refused, 6u);
}

TEST(Dispatch, RefusesCodesThatNoMessageHas)
{
    Model model;
    for (const uint32_t code :
         {0u, 13u, 62u, 63u, 64u, 0x10000000u, 0x10000002u, 0x1000002eu, 0x10000040u, 0x30000001u,
          0x50000002u, 0x5000000cu, 0x60000002u, 0xf0000001u, 0xffffffffu}) {
        EXPECT_EQ(ask_one(model, head(code)), result(UNKNOWN_MESSAGE)) << std::hex << code;
    }
    EXPECT_EQ(ask_one(model, result(0)), result(UNKNOWN_MESSAGE)); // a reply is no request
}

TEST(Dispatch, AnswersEveryConfigurationMessage)
{
    Model model;
    std::set<uint32_t> answered;
    for (const auto &requests : {setting_requests(), unsetting_requests()}) {
        for (const SettingRequest &request : requests) {
            const bool has_answer = request.code != 22 && request.code != 35;
            EXPECT_EQ(ask(model, request.datagram()),
                      std::vector<Datagram>(has_answer ? 1 : 0, result(0)))
                << request.code;
            answered.insert(request.code);
        }
    }
    size_t messages = 0;
#define OFP_ROW(name, code)                                                                        \
    if ((static_cast<uint32_t>(code) >> 28) == 0) {                                                \
        ++messages;                                                                                \
        EXPECT_TRUE(answered.contains(code)) << #name;                                             \
    }
    OFP_MESSAGE_CODES(OFP_ROW)
#undef OFP_ROW
    EXPECT_EQ(messages, 59u);
    EXPECT_EQ(model.counters.refused, 0u);
}

TEST(Dispatch, SaysOfEveryOtherMessageThatItIsNotSupported)
{
    const std::set<uint32_t> not_supported = {0x5000000b};
    Model model;
#define OFP_ROW(name, code)                                                                        \
    if ((static_cast<uint32_t>(code) >> 28) % 4 == 1) {                                            \
        EXPECT_EQ(ask_one(model, head(code)) == result(NOT_SUPPORTED),                             \
                  not_supported.contains(code))                                                    \
            << #name;                                                                              \
    }
    OFP_MESSAGE_CODES(OFP_ROW)
#undef OFP_ROW
}

TEST(Dispatch, EveryResultCodeHasItsOwnNumberAndSentence)
{
    std::set<uint32_t> codes;
    std::set<std::string> texts;
    size_t rows = 0;
#define OFP_ROW(name, code, text)                                                                  \
    codes.insert(static_cast<uint32_t>(code));                                                     \
    texts.insert(result_text(static_cast<uint32_t>(code)));                                        \
    ++rows;
    OFP_RESULT_CODES(OFP_ROW)
    OFP_AGENT_RESULT_CODES(OFP_ROW)
#undef OFP_ROW
    EXPECT_EQ(codes.size(), rows);
    EXPECT_EQ(texts.size(), rows);
    EXPECT_STREQ(result_text(0x12345678), "unknown result code");
}

TEST(Dispatch, EveryResultCodeAndMessageIsOnTheProtocolPage)
{
    std::ifstream file(OFP_PROTOCOL_PAGE);
    std::stringstream text;
    text << file.rdbuf();
    const std::string page = text.str();
    const auto row = [](uint32_t code, const char *name) {
        char line[64];
        std::snprintf(line, sizeof line, "| %#010x | `%s` |", code, name);
        return std::string(line);
    };
#define OFP_ROW(name, code, text) EXPECT_NE(page.find(row(code, #name)), page.npos) << #name;
    OFP_AGENT_RESULT_CODES(OFP_ROW)
#undef OFP_ROW
    Model model;
    const auto listed = [&page](uint32_t code) {
        char number[16];
        std::snprintf(number, sizeof number, "%#010x ", code);
        return page.find(number) != page.npos;
    };
#define OFP_ROW(name, code)                                                                        \
    if ((static_cast<uint32_t>(code) >> 28) != 2) {                                                \
        EXPECT_EQ(ask_one(model, head(code)) != result(NOT_SUPPORTED), listed(code)) << #name;     \
    }
    OFP_MESSAGE_CODES(OFP_ROW)
#undef OFP_ROW
}

// ---- Damaged datagrams

// A model with something to find, and one request of every kind that it answers.
void fill(Model &model)
{
    open_period(model);
    ask(model, batch({{.in_port = 1}, {.in_port = 2}}));
    ask(model, group_request(0x50000003, group_mod(9)));
}

std::vector<Datagram> requests()
{
    const Datagram instance = hex("0004 0004 1001 0000");
    const Datagram table = hex("000e 0004 1001 c8 00");
    const Datagram rule = hex("0038 0008 00000001 1001 c8 00");
    const Datagram group = hex("0061 0008 00000009 1001 0000");
    std::vector<Datagram> all = {
        smooth_start(),
        smooth_end(),
        batch({{.in_port = 3}, {.in_port = 1, .command = 4}}),
        group_request(0x50000003, group_mod(10)),
        group_request(0x50000004, group_mod(9, 2)),
        join({head(0x50000007), hex("007c 0008 0005 0002 00000000 007e 0004 00000000"),
              hex("0045 0008 0a000000 00000002")}),
        join({head(0x10000020), hex("0098 0008 0001 0002 0003 0000")}),
        join({head(0x10000013), hex("005f 0004 1001 0000")}),
        join(
            {head(0x60000001), hex("6001 0008 1001 01 ff 00000040 6002 0008 8000 00 04 00000001")}),
        join({head(0x10000026), rule, hex("0001 000c 8000 00 04 00000001 00000000")}),
    };
    for (const uint32_t code : {0x10000001u, 0x10000003u}) {
        all.push_back(join({head(code), instance}));
    }
    for (const uint32_t code : {0x10000009u, 0x1000000au, 0x10000029u, 0x1000002au}) {
        all.push_back(join({head(code), table}));
    }
    for (const uint32_t code :
         {0x1000000bu, 0x1000000cu, 0x1000000du, 0x1000000eu, 0x1000000fu, 0x10000025u}) {
        all.push_back(join({head(code), rule}));
    }
    for (const uint32_t code : {0x10000014u, 0x10000015u}) {
        all.push_back(join({head(code), group}));
    }
    for (const uint32_t code : {0x10000005u, 0x10000006u, 0x10000007u, 0x10000010u, 0x10000018u}) {
        all.push_back(join({head(code), instance}));
    }
    for (const uint32_t code : {0x10000017u, 0x1000001eu, 0x10000021u, 0x10000022u, 0x10000028u}) {
        all.push_back(head(code));
    }
    for (const uint32_t code : {0x10000004u, 0x1000001fu, 0x10000023u, 0x10000027u}) {
        all.push_back(join({head(code), hex("0078 0004 1001 40 00")}));
    }
    for (const uint32_t code : {0x10000019u, 0x1000001au}) {
        all.push_back(join({head(code), hex("0073 0008 00000001 1001 0000")}));
    }
    for (const uint32_t code : {0x10000011u, 0x10000012u}) {
        all.push_back(join({head(code), tlv(71, Datagram(96))}));
    }
    all.push_back(join({head(0x10000008), hex("0029 0008 00000000 1001 0000")}));
    all.push_back(join({head(0x10000016), hex("0064 0010 00000009 00000000 1001 ff 0000000000")}));
    all.push_back(join({head(0x1000001b), hex("0077 000c 00000009 00000000 1001 ff 00")}));
    all.push_back(join({head(0x1000001c), hex("0088 0004 1001 40 00")}));
    all.push_back(join({head(0x1000001d), tlv(134, Datagram(24))}));
    all.push_back(join({head(0x10000024), tlv(200, Datagram(64))}));
    all.push_back(join({head(0x1000002b), hex("00e1 0010 00000000 00000000 00000000 1001 0000")}));
    all.push_back(join({head(0x1000002c), hex("00d9 0008 00000001 0000 0000")}));
    return all;
}

// Whatever is sent: it is answered by whole messages, and what stands in the model stays reachable.
void expect_sane(Model &model, const Datagram &request)
{
    // Of its exact size on the heap, so that a sanitizer sees every byte read past its end.
    const auto exact = std::make_unique<uint8_t[]>(request.size() + 1);
    std::copy(request.begin(), request.end(), exact.get() + 1);
    Outbox out;
    const Outcome outcome = answer_and_commit({exact.get() + 1, request.size()}, out, model);
    EXPECT_FALSE(outcome.hang_up);
    EXPECT_NE(std::strcmp(result_text(outcome.code), "unknown result code"), 0);
    while (!out.empty()) {
        Bytes first[1];
        out.front(first);
        ASSERT_GE(first[0].size(), 8u);
        ASSERT_LE(first[0].size(), size_t{OFP_LARGE_DATAGRAM_SIZE});
        out.drop(1);
    }
    const Switch &rules = model.flow_switch();
    for (uint32_t id = 0; (id = rules.next_rule(CLIENT, 200, id)) != 0;) {
        ASSERT_TRUE(rules.rule(CLIENT, 200, id));
    }
}

TEST(DamagedDatagrams, CutShortAtEveryLengthAreRefusedAndChangeNothing)
{
    for (const Datagram &request : requests()) {
        for (size_t length = 0; length < request.size(); ++length) {
            Model model;
            fill(model);
            const Datagram cut(request.begin(),
                               request.begin() + static_cast<std::ptrdiff_t>(length));
            expect_sane(model, cut);
            // A datagram that ends between two TLVs is whole, only shorter.
            const bool boundary = length >= 28 && request[4] == 0x50;
            if (!boundary) {
                EXPECT_EQ(model.counters.refused, 1u) << to_hex(cut);
                EXPECT_EQ(model.flow_switch().table(CLIENT, 200).rules, 2u);
                EXPECT_EQ(model.flow_switch().group_count(CLIENT), 1u);
            }
        }
    }
}

TEST(DamagedDatagrams, WithAnyByteChangedLeaveTheModelWhole)
{
    Model model;
    fill(model);
    for (const Datagram &request : requests()) {
        for (size_t at = 0; at < request.size(); ++at) {
            for (const uint8_t change :
                 std::initializer_list<uint8_t>{0x01, 0x80, 0xff, 0x04, 0x7f}) {
                Datagram damaged = request;
                damaged[at] = static_cast<uint8_t>(damaged[at] ^ change);
                expect_sane(model, damaged);
            }
        }
    }
}

TEST(DamagedDatagrams, WithBytesAppendedAreRefused)
{
    for (const Datagram &request : requests()) {
        Model model;
        fill(model);
        expect_sane(model, join({request, hex("00")}));
        EXPECT_EQ(model.counters.refused, 1u) << to_hex(request);
    }
}

} // namespace
} // namespace agent::test
