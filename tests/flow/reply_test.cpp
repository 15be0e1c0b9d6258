#include "flow/reply.h"

#include <cerrno>

#include "flow/rules.h"

using namespace test;

namespace {

constexpr uint32_t ok = OFP_RC_OK;
constexpr uint32_t failed = OFP_RC_FAILED;
constexpr uint64_t untouched = 0x5555555555555555;

class Replies : public PlatformTest {
protected:
    Replies() : socket(platform.open_socket()) {}
    ~Replies() override { platform.close_socket(socket); }

    uint32_t collect(uint32_t count, std::initializer_list<Bytes> datagrams)
    {
        for (const Bytes &datagram : datagrams)
            platform.reply(datagram);
        results.assign(count, untouched);
        return ofp::collect_results(socket, count, results.data());
    }
    uint32_t wait(std::initializer_list<Bytes> datagrams)
    {
        for (const Bytes &datagram : datagrams)
            platform.reply(datagram);
        return ofp::wait_for_barrier(socket);
    }
    using Results = std::vector<uint64_t>;

    int32_t socket;
    Results results;
};

} // namespace

TEST_F(Replies, BarriersAloneAreSuccess)
{
    EXPECT_EQ(collect(3, {barrier_reply(0), barrier_reply(1), barrier_reply(2)}), ok);
    EXPECT_EQ(results, Results({0, 0, 0}));
}

TEST_F(Replies, AnErrorBeforeItsBarrierIsTheResultOfThatRuleOnly)
{
    EXPECT_EQ(
        collect(3, {barrier_reply(0), error_reply(1, 5, 3), barrier_reply(1), barrier_reply(2)}),
        ok);
    EXPECT_EQ(results, Results({0, OFP_RC_STATE, 0}));
}

TEST_F(Replies, AllErrorsMayComeFirst)
{
    EXPECT_EQ(collect(2, {error_reply(1, 5, 1), error_reply(0, 4, 0), barrier_reply(0),
                          barrier_reply(1)}),
              ok);
    EXPECT_EQ(results, Results({OFP_RC_INVALID, OFP_RC_NO_RESOURCE}));
}

TEST_F(Replies, TheFirstMessageForARuleDecides)
{
    EXPECT_EQ(collect(2, {barrier_reply(0), error_reply(0, 5, 1), error_reply(1, 5, 3),
                          error_reply(1, 5, 1), barrier_reply(1)}),
              ok);
    EXPECT_EQ(results, Results({0, OFP_RC_STATE}));
}

TEST_F(Replies, EveryBarrierCountsAlsoARepeatedOne)
{
    EXPECT_EQ(collect(2, {barrier_reply(0), barrier_reply(0)}), ok);
    EXPECT_EQ(results, Results({0, untouched}));
}

TEST_F(Replies, ABarrierOfAForeignXidCounts)
{
    EXPECT_EQ(collect(2, {barrier_reply(2), barrier_reply(0xffffffff)}), ok);
    EXPECT_EQ(results, Results({untouched, untouched}));
    EXPECT_TRUE(platform.calls("Bitmap_Clear").empty());
}

TEST_F(Replies, AnErrorOfAForeignXidIsIgnored)
{
    EXPECT_EQ(collect(1, {error_reply(1, 5, 3), error_reply(0x80000000, 5, 3), barrier_reply(0)}),
              ok);
    EXPECT_EQ(results, Results({0}));
}

TEST_F(Replies, AnyOtherMessageIsReadAsAnError)
{
    // An echo request whose bytes 8 to 11 are type 5 code 3.
    EXPECT_EQ(collect(1, {hex("04 02 000c 00000000 0005 0003"), barrier_reply(0)}), ok);
    EXPECT_EQ(results, Results({OFP_RC_STATE}));
}

TEST_F(Replies, TheVersionAndTheLengthOfAMessageAreNotRead)
{
    EXPECT_EQ(collect(1, {hex("01 15 ffff 00000000")}), ok);
    EXPECT_EQ(results, Results({0}));
}

TEST_F(Replies, ATimeOutEndsTheCollectionAndKeepsWhatArrived)
{
    EXPECT_EQ(collect(3, {barrier_reply(0), error_reply(1, 5, 3)}), failed);
    EXPECT_EQ(results, Results({0, OFP_RC_STATE, untouched}));
}

TEST_F(Replies, AHangUpEndsTheCollection)
{
    EXPECT_EQ(collect(2, {barrier_reply(0), {}, barrier_reply(1)}), failed);
    EXPECT_EQ(results, Results({0, untouched}));
    EXPECT_EQ(platform.unread(), 1u);
}

TEST_F(Replies, AnErrorTooShortForItsCodeIsMalformed)
{
    for (size_t length = 8; length < 12; ++length) {
        EXPECT_EQ(collect(2, {error_reply(0, 5, 3).slice(0, length)}), failed) << length;
        EXPECT_EQ(results, Results({untouched, untouched}));
    }
}

TEST_F(Replies, AShortErrorOfNoPendingRuleIsIgnoredAsAWholeOneIs)
{
    EXPECT_EQ(collect(1, {error_reply(7, 5, 3).slice(0, 8), barrier_reply(0)}), ok);
    EXPECT_EQ(results, Results({0}));
}

TEST_F(Replies, AMessageShorterThanAHeaderIsMalformed)
{
    for (size_t length = 1; length < 8; ++length)
        EXPECT_EQ(collect(1, {barrier_reply(0).slice(0, length)}), failed) << length;
    EXPECT_EQ(results, Results({untouched}));
}

TEST_F(Replies, ResultsAreOptional)
{
    platform.reply(error_reply(0, 5, 3));
    platform.reply(barrier_reply(0));
    EXPECT_EQ(ofp::collect_results(socket, 1, nullptr), ok);
}

TEST_F(Replies, PendingRulesAreKeptInABitmapOfThePlatform)
{
    EXPECT_EQ(collect(2, {error_reply(1, 5, 3), barrier_reply(0), barrier_reply(1)}), ok);
    EXPECT_EQ(platform.sequence("Bitmap_"), "Bitmap_CreateFromBuffer Bitmap_SetRange "
                                            "Bitmap_Check Bitmap_Clear "
                                            "Bitmap_Check Bitmap_Clear Bitmap_Check");
    EXPECT_EQ(platform.calls("Bitmap_SetRange")[0].arguments, std::vector<uint64_t>({1, 0, 1}));
}

TEST_F(Replies, WithoutBitmapNothingIsCollected)
{
    platform.next("Bitmap_CreateFromBuffer", {0});
    EXPECT_EQ(collect(1, {barrier_reply(0)}), failed);
}

TEST_F(Replies, WaitingTakesTheFirstBarrier)
{
    EXPECT_EQ(wait({barrier_reply(5), barrier_reply(6)}), ok);
    EXPECT_EQ(platform.unread(), 1u);
}

TEST_F(Replies, WaitingReadsOnToTheBarrierBehindAnError)
{
    EXPECT_EQ(wait({error_reply(0, 6, 0), hex("04 02 0008 00000000"), barrier_reply(0)}), failed);
    EXPECT_EQ(platform.unread(), 0u);
}

TEST_F(Replies, WaitingEndsWhenReceivingDoes)
{
    EXPECT_EQ(wait({}), failed);
    EXPECT_EQ(wait({error_reply(0, 6, 0)}), failed);
    platform.receive_error(ECONNRESET);
    EXPECT_EQ(wait({}), failed);
    EXPECT_EQ(wait({hex("04 15 0008")}), failed) << "shorter than a header";
}
