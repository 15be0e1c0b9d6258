// What every configuration message has in common.
#include <set>

#include <gtest/gtest.h>

#include "agent/config/row_store.h"
#include "agent/daemon/messages.h"
#include "agent/daemon/settings.h"

namespace agent::test {
namespace {

bool is_of_the_moment(uint32_t code)
{
    return code == 22 || code == 35 || code == 40 || code == 46; // reset, event, packet
}

bool is_about_an_instance(uint32_t code)
{
    const std::set<uint32_t> others = {1,  14, 28, 31, 32, 35, 37, 40,
                                       41, 42, 43, 46, 47, 51, 56, 61};
    return !others.contains(code);
}

std::vector<SettingRequest> all_requests()
{
    std::vector<SettingRequest> all = setting_requests();
    for (const SettingRequest &request : unsetting_requests()) {
        all.push_back(request);
    }
    return all;
}

// A model with its store.
struct Stored {
    Stored() { EXPECT_EQ(attach(model.configuration(), rows), ""); }
    std::map<std::string, StoredValue> state() const { return rows_of(model.configuration()); }

    Rows rows;
    Model model;
};

// All that is configured, ready to be taken away again.
void configure(Model &model)
{
    for (const SettingRequest &request : setting_requests()) {
        ask(model, request.datagram());
    }
}

TEST(Settings, AreEachStoredInOneTransactionBeforeTheyAreAnswered)
{
    Stored stored;
    for (const SettingRequest &request : all_requests()) {
        const auto before = stored.state();
        const size_t writes = stored.rows.writes;
        ask(stored.model, request.datagram());
        EXPECT_EQ(stored.rows.writes, writes + (is_of_the_moment(request.code) ? 0 : 1))
            << request.code;
        EXPECT_EQ(stored.state() == before, is_of_the_moment(request.code)) << request.code;
    }
}

TEST(Settings, AreTheSameAfterARestartAtEachOfThem)
{
    Stored stored;
    for (const SettingRequest &request : all_requests()) {
        ask(stored.model, request.datagram());
        Configuration again;
        ASSERT_EQ(attach(again, stored.rows), "") << request.code;
        ASSERT_EQ(rows_of(again), stored.state()) << request.code;
    }
}

TEST(Settings, ThatCannotBeStoredAreRefusedAndChangeNothing)
{
    Stored stored;
    for (const SettingRequest &request : all_requests()) {
        const auto before = stored.state();
        stored.rows.fails = true;
        const bool stores = !is_of_the_moment(request.code);
        if (stores) {
            EXPECT_EQ(ask_one(stored.model, request.datagram()), result(NOT_STORED))
                << request.code;
        }
        EXPECT_EQ(stored.state(), before);
        stored.rows.fails = false;
        ask(stored.model, request.datagram());
        EXPECT_EQ(stored.state() != before, stores) << request.code;
    }
}

TEST(Settings, SetAgainAreASuccessAndStoreNothing)
{
    Stored stored;
    configure(stored.model);
    const size_t writes = stored.rows.writes;
    const auto before = stored.state();
    for (const SettingRequest &request : setting_requests()) {
        ask(stored.model, request.datagram());
    }
    EXPECT_EQ(stored.model.counters.refused, 0u);
    // Messages 1 and 3 each set another extension word, 5 and 55 another TLS policy.
    EXPECT_EQ(stored.rows.writes - writes, 4u);
    EXPECT_EQ(stored.state(), before);
}

TEST(Settings, OfAnInstanceThatDoesNotExistAreRefused)
{
    size_t refused = 0;
    for (const SettingRequest &request : all_requests()) {
        Model model;
        if (is_about_an_instance(request.code)) {
            EXPECT_EQ(ask_one(model, request.datagram()), result(NO_INSTANCE)) << request.code;
            ++refused;
        }
    }
    EXPECT_EQ(refused, 43u);
}

// ---- Malformed

TEST(Settings, WithoutTheirTlvOrWithAnotherAreRefused)
{
    for (const SettingRequest &request : all_requests()) {
        Model model;
        configure(model);
        EXPECT_EQ(ask_one(model, head(request.code)), result(MISSING_TLV)) << request.code;
        EXPECT_EQ(ask_one(model, join({head(request.code), tlv(119, Datagram(8))})),
                  result(MISSING_TLV))
            << request.code;
    }
}

TEST(Settings, WithAValueOfAnotherLengthAreRefused)
{
    for (const SettingRequest &request : all_requests()) {
        Model model;
        configure(model);
        const uint16_t type = static_cast<uint16_t>(request.tlvs[0] << 8 | request.tlvs[1]);
        for (const size_t size : {0u, 1u, 5u, 2000u}) {
            EXPECT_EQ(ask_one(model, join({head(request.code), tlv(type, Datagram(size))})),
                      result(BAD_TLV_LENGTH))
                << request.code << ", " << size;
        }
    }
}

TEST(Settings, WithBytesBehindTheirLastTlvAreRefused)
{
    for (const SettingRequest &request : all_requests()) {
        Stored stored;
        configure(stored.model);
        const auto before = stored.state();
        const uint32_t code = request.code == 12 ? BAD_TLV : TRAILING_BYTES; // tables may follow
        EXPECT_EQ(ask_one(stored.model, join({request.datagram(), hex("00")})), result(code))
            << request.code;
        EXPECT_EQ(ask_one(stored.model, join({request.datagram(), tlv(119, Datagram(8))})),
                  result(TRAILING_BYTES))
            << request.code;
        EXPECT_EQ(stored.state(), before);
    }
}

TEST(Settings, CutShortAtEveryLengthAreRefusedAndChangeNothing)
{
    constexpr std::ptrdiff_t HEAD = 8;
    Stored stored;
    configure(stored.model);
    const auto before = stored.state();
    for (const SettingRequest &request : all_requests()) {
        const Datagram whole = request.datagram();
        for (std::ptrdiff_t length = HEAD; length < static_cast<std::ptrdiff_t>(whole.size());
             ++length) {
            if (request.code == 12 && (length == HEAD + 8 || length == HEAD + 20)) {
                continue; // fewer tables, but whole
            }
            const Datagram answer =
                ask_one(stored.model, Datagram(whole.begin(), whole.begin() + length));
            ASSERT_EQ(answer.size(), 16u) << request.code;
            ASSERT_NE(answer, result(0)) << request.code << ", " << length;
        }
    }
    EXPECT_EQ(stored.state(), before);
}

TEST(Settings, WithAnyByteChangedAreAnsweredAndLeaveTheConfigurationSound)
{
    for (const SettingRequest &request : all_requests()) {
        Stored stored;
        configure(stored.model);
        const Datagram whole = request.datagram();
        const size_t step = whole.size() > 200 ? 13 : 1;
        for (size_t at = 8; at<whole.size(); at += at> 40 ? step : 1) {
            for (const uint8_t change : std::initializer_list<uint8_t>{0x01, 0x80, 0xff}) {
                Datagram damaged = whole;
                damaged[at] = static_cast<uint8_t>(damaged[at] ^ change);
                ask(stored.model, damaged);
            }
        }
        Configuration again;
        ASSERT_EQ(attach(again, stored.rows), "") << request.code;
        EXPECT_EQ(rows_of(again), stored.state());
    }
}

} // namespace
} // namespace agent::test
