#include <numeric>
#include <random>

#include "double/platform.h"
#include "double/sweep.h"
#include "ofp/codec.h"

using namespace test;

namespace {

class BatchIf : public PlatformTest {
protected:
    // A match whose interfaces are 1000, 1001, ...
    OfpFRMatch match_of(uint32_t count)
    {
        indexes.resize(count);
        std::iota(indexes.begin(), indexes.end(), 1000);
        OfpFRMatch match{};
        match.batch_if = {count, indexes.data()};
        return match;
    }

    Bytes encoded(uint32_t count, size_t space = 8192)
    {
        const OfpFRMatch match = match_of(count);
        Bytes buffer(space, 0xee);
        buffer.resize(OFP_msg_EncapMatchBatchIf(buffer.data(), space, &match));
        return buffer;
    }

    std::vector<uint32_t> indexes;
};

Bytes network(uint32_t value)
{
    Bytes out(4);
    for (size_t i = 4; i-- > 0; value >>= 8)
        out[i] = static_cast<uint8_t>(value);
    return out;
}

// A TLV 123 that says count and holds the entries of list, then of what stood there before.
Bytes batch(uint32_t count, std::vector<uint32_t> list)
{
    list.resize(62);
    Bytes value = network(count);
    for (uint32_t index : list)
        value += network(index);
    return tlv(123, value);
}

std::vector<uint32_t> range(uint32_t first, uint32_t count)
{
    std::vector<uint32_t> list(count);
    std::iota(list.begin(), list.end(), first);
    return list;
}

struct Decoded {
    uint64_t consumed;
    uint64_t stored;
    std::vector<uint32_t> indexes;
};

Decoded decode(const Bytes &buffer, uint64_t capacity)
{
    std::vector<uint32_t> indexes(capacity / 4 + 1, 0xeeeeeeee);
    uint64_t stored = 99;
    const uint64_t consumed =
        OFP_msg_DecapMatchBatchIf(buffer.data(), buffer.size(), capacity, indexes.data(), &stored);
    EXPECT_EQ(indexes.back(), 0xeeeeeeee) << "wrote beyond the capacity";
    EXPECT_LE(stored, capacity);
    indexes.resize(std::min<uint64_t>(stored, capacity) / 4);
    return {consumed, stored, indexes};
}

} // namespace

TEST_F(BatchIf, EmptyListWritesNothing)
{
    EXPECT_EQ(encoded(0), Bytes());
    OfpFRMatch match{};
    EXPECT_EQ(OFP_msg_EncapMatchBatchIf(nullptr, 0, &match), 0u);
}

TEST_F(BatchIf, UpTo62EntriesTakeOneTlvWithTheRestZero)
{
    EXPECT_EQ(encoded(1), batch(1, {1000}));
    EXPECT_EQ(encoded(3), batch(3, {1000, 1001, 1002}));
    EXPECT_EQ(encoded(62), batch(62, range(1000, 62)));
}

TEST_F(BatchIf, TheLastTlvOf63RepeatsEntryZero)
{
    EXPECT_EQ(encoded(63), batch(62, range(1000, 62)) + batch(1, range(1000, 62)));
}

TEST_F(BatchIf, TheLastTlvOf100RepeatsTheFirst38)
{
    EXPECT_EQ(encoded(100), batch(62, range(1000, 62)) + batch(38, range(1000, 62)));
}

TEST_F(BatchIf, BothTlvsOf124CarryTheFirst62)
{
    EXPECT_EQ(encoded(124), batch(62, range(1000, 62)) + batch(62, range(1000, 62)));
}

TEST_F(BatchIf, TheLastTlvOf130RepeatsTheChunkBeforeIt)
{
    EXPECT_EQ(encoded(130),
              batch(62, range(1000, 62)) + batch(62, range(1062, 62)) + batch(6, range(1062, 62)));
}

TEST_F(BatchIf, LeavesOutTlvsThatDoNotFit)
{
    EXPECT_EQ(encoded(63, 255), Bytes());
    EXPECT_EQ(encoded(63, 256), batch(62, range(1000, 62)));
    EXPECT_EQ(encoded(63, 511), batch(62, range(1000, 62)));
    EXPECT_EQ(encoded(63, 512).size(), 512u);
}

TEST_F(BatchIf, SendsNoByteOfTheStack)
{
    const OfpFRMatch match = match_of(2);
    for (uint8_t pattern : hex("5aa5")) {
        Bytes buffer(256);
        paint_stack(pattern);
        OFP_msg_EncapMatchBatchIf(buffer.data(), buffer.size(), &match);
        EXPECT_EQ(buffer, batch(2, {1000, 1001}));
    }
}

TEST_F(BatchIf, CollectsConsecutiveTlvs)
{
    const Bytes buffer = batch(2, {5, 6}) + batch(1, {7}) + tlv(8, Bytes(8)) + batch(1, {8});
    const Decoded decoded = decode(buffer, 400);
    EXPECT_EQ(decoded.consumed, 512u);
    EXPECT_EQ(decoded.stored, 12u);
    EXPECT_EQ(decoded.indexes, std::vector<uint32_t>({5, 6, 7}));
}

TEST_F(BatchIf, DecodingStopsAtAnEmptyTlv)
{
    const Decoded decoded = decode(batch(1, {5}) + batch(0, {9}) + batch(1, {6}), 400);
    EXPECT_EQ(decoded.consumed, 256u);
    EXPECT_EQ(decoded.indexes, std::vector<uint32_t>({5}));
}

TEST_F(BatchIf, DecodingStopsBeforeATlvThatDoesNotFit)
{
    const Bytes buffer = batch(2, {5, 6}) + batch(3, {7, 8, 9});
    EXPECT_EQ(decode(buffer, 20).consumed, 512u);
    EXPECT_EQ(decode(buffer, 19).consumed, 256u);
    EXPECT_EQ(decode(buffer, 19).indexes, std::vector<uint32_t>({5, 6}));
    EXPECT_EQ(decode(buffer, 7).consumed, 0u);
    EXPECT_EQ(decode(buffer, 0).stored, 0u);
}

TEST_F(BatchIf, ATlvYieldsNoMoreThanItHolds)
{
    const Decoded more = decode(batch(100, range(1, 62)), 4000);
    EXPECT_EQ(more.consumed, 256u);
    EXPECT_EQ(more.indexes, range(1, 62));
    // 4 * 0x40000001 is 4 in 32 bits: counted in 64 it exceeds any capacity.
    EXPECT_EQ(decode(batch(0x40000001, range(1, 62)), 4000).consumed, 0u);
    EXPECT_EQ(decode(batch(0xffffffff, range(1, 62)), 4000).consumed, 0u);
}

TEST_F(BatchIf, AShortTlvYieldsTheEntriesThatArePresent)
{
    const Decoded decoded = decode(tlv(123, network(62) + network(5) + network(6)), 4000);
    EXPECT_EQ(decoded.consumed, 16u);
    EXPECT_EQ(decoded.indexes, std::vector<uint32_t>({5, 6}));
    EXPECT_EQ(decode(tlv(123, {}), 4000).consumed, 0u);
    EXPECT_EQ(decode(tlv(123, network(3)), 4000).stored, 0u);
}

TEST_F(BatchIf, StoredMayBeNull)
{
    const Bytes buffer = batch(1, {5});
    uint32_t index = 0;
    EXPECT_EQ(OFP_msg_DecapMatchBatchIf(buffer.data(), buffer.size(), 4, &index, nullptr), 256u);
    EXPECT_EQ(index, 5u);
    uint64_t stored = 99;
    EXPECT_EQ(OFP_msg_DecapMatchBatchIf(buffer.data(), 255, 4, &index, &stored), 0u);
    EXPECT_EQ(stored, 0u);
}

TEST_F(BatchIf, RoundTripsUpTo62)
{
    for (uint32_t count = 1; count <= 62; ++count)
        EXPECT_EQ(decode(encoded(count), 4 * count).indexes, range(1000, count));
}

TEST_F(BatchIf, DecodingSurvivesAnyBytes)
{
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        Bytes buffer = batch(static_cast<uint32_t>(random() % 80), {1, 2, 3}) +
                       batch(static_cast<uint32_t>(random()), {4});
        buffer[random() % 8] = static_cast<uint8_t>(random());
        buffer.resize(random() % buffer.size());
        buffer.shrink_to_fit();
        EXPECT_LE(decode(buffer, random() % 600).consumed, buffer.size());
    }
}
