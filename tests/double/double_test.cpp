// The scripted platform keeps what the tests rely on.
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <gtest/gtest-spi.h>

#include "double/memory.h"
#include "double/platform.h"
#include "double/sweep.h"

using namespace test;

namespace {

class Double : public PlatformTest {};

// One socket, one block, one receive: what the sweep must see.
uint64_t well_behaved()
{
    void *block = std::malloc(16);
    if (!block)
        return 1;
    int32_t s = SOCK_Socket(37, 2, 1);
    uint64_t code = s < 0 ? 2 : 0;
    if (s >= 0) {
        uint8_t byte;
        int64_t length;
        while ((length = SOCK_Recv(s, &byte, 1, 0)) < 0 && errno == EINTR)
            ;
        if (length < 0)
            code = 3;
        SOCK_Close(s);
    }
    std::free(block);
    return code;
}

void sweep_well_behaved()
{
    expect_failures_handled(
        {[] { platform.reply(hex("01")); }, well_behaved},
        {{"malloc", 1}, {"SOCK_Socket", 2}, {"SOCK_Recv", 3}, {"SOCK_Close", 0}});
}

// What the sweep has to say about an operation.
std::string complaints(std::function<uint64_t()> run)
{
    ::testing::TestPartResultArray results;
    {
        ::testing::ScopedFakeTestPartResultReporter reporter(
            ::testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &results);
        expect_failures_handled({{}, std::move(run)}, {{"malloc", 1}, {"SOCK_Socket", 2}});
    }
    std::string text;
    for (int i = 0; i < results.size(); ++i)
        text += results.GetTestPartResult(i).message();
    return text;
}

} // namespace

TEST_F(Double, RecordsCallsWithNumbersAndBytes)
{
    int32_t s = SOCK_Socket(37, 2, 1);
    EXPECT_EQ(SOCK_Connect(s, "\x10\x25", 2), 0);
    EXPECT_EQ(SOCK_Send(s, "abc", 3, 0), 3);
    EXPECT_EQ(SOCK_Close(s), 0);
    EXPECT_EQ(platform.sequence(), "SOCK_Socket SOCK_Connect SOCK_Send SOCK_Close");
    EXPECT_EQ(platform.calls("SOCK_Connect"),
              std::vector({Call{"SOCK_Connect", {uint64_t(s)}, hex("1025")}}));
    EXPECT_EQ(platform.sent, std::vector({hex("616263")}));
    EXPECT_EQ(platform.sockets_opened, 1u);
}

TEST_F(Double, CutsADatagramToTheReceiversSizeAndDropsTheRest)
{
    int32_t s = SOCK_Socket(37, 2, 1);
    platform.reply(hex("010203"));
    platform.reply(hex("0405"));
    uint8_t buffer[8];
    EXPECT_EQ(SOCK_Recv(s, buffer, 2, 0), 2);
    EXPECT_EQ(SOCK_RecvFrom(s, buffer, 8, 0x40), 2);
    EXPECT_EQ(bytes_of(buffer, 2), hex("0405"));
    EXPECT_EQ(SOCK_Recv(s, buffer, 8, 0), -1);
    EXPECT_EQ(errno, EAGAIN);
    SOCK_Close(s);
}

TEST_F(Double, AnswersAsScripted)
{
    platform.next("SOCK_Send", {2});
    platform.interrupt("SOCK_Send", 1);
    int32_t s = SOCK_Socket(37, 2, 1);
    EXPECT_EQ(SOCK_Send(s, "abc", 3, 0), 2);
    EXPECT_EQ(SOCK_Send(s, "abc", 3, 0), -1);
    EXPECT_EQ(errno, EINTR);
    EXPECT_EQ(SOCK_Send(s, "abc", 3, 0), 3);
    EXPECT_EQ(platform.sent.size(), 1u);
    SOCK_Close(s);
}

TEST_F(Double, WritesTlvHeadersInNetworkOrder)
{
    uint8_t buffer[8] = {};
    EXPECT_EQ(STLV_Set(buffer, 7, 0x102, 4, "abcd"), 0u);
    EXPECT_EQ(STLV_Set(buffer, 8, 0x102, 4, "abcd"), 8u);
    EXPECT_EQ(bytes_of(buffer), hex("0102 0004 61626364"));
    uint16_t type, length;
    void *value;
    EXPECT_EQ(STLV_Get(buffer, 7, &type, &length, &value), 0u);
    EXPECT_EQ(value, nullptr);
    EXPECT_EQ(STLV_Get(buffer, 8, &type, &length, &value), 8u);
    EXPECT_EQ(type, 0x102);
    EXPECT_EQ(length, 4);
    EXPECT_EQ(value, buffer + 4);
}

TEST_F(Double, KeepsTheLastVlanOfABitmap)
{
    alignas(8) uint8_t buffer[1024];
    Bitmap *map = Bitmap_CreateFromBuffer(4094, buffer, sizeof buffer);
    ASSERT_NE(map, nullptr);
    Bitmap_Set(map, 4094);
    EXPECT_EQ(Bitmap_Check(map, 4094), 1);
    EXPECT_EQ(Bitmap_Check(map, 4093), 0);
    Bitmap_H2N(map);
    EXPECT_EQ(bytes_of(buffer, 8), hex("00000200 00000ffe"));
}

TEST_F(Double, SweepNoticesWhatAnOperationGetsWrong)
{
    EXPECT_EQ(complaints([] { return uint64_t{0}; }), "");

    int32_t socket = -1;
    EXPECT_NE(complaints([&] {
                  socket = SOCK_Socket(37, 2, 1);
                  return uint64_t{socket < 0 ? 2u : 0u};
              }).find("a socket was left open"),
              std::string::npos);

    void *block = nullptr;
    EXPECT_NE(complaints([&] {
                  std::free(block);
                  block = std::malloc(8);
                  return uint64_t{block == nullptr};
              }).find("a block was not freed"),
              std::string::npos);
    std::free(block);

    EXPECT_NE(complaints([] {
                  return uint64_t{MAC_GetBridgeAddress(Bytes(6).data())};
              }).find("no code is documented for a failing MAC_GetBridgeAddress"),
              std::string::npos);
    platform = Platform();
}

TEST_F(Double, SweepsAnOperationThatHandlesEverything) { sweep_well_behaved(); }
