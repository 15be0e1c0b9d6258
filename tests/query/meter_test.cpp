#include "query/query_case.h"

using namespace test;

namespace {

class MeterQuery : public PlatformTest {
protected:
    MeterQuery()
    {
        entry = preset<OfpMeterEntry>();
        OFP_get_InitMeterBandList(&entry.bands);
    }
    ~MeterQuery() override { OFP_get_FiniMeterBandList(&entry.bands); }

    OfpMeterEntry entry;
};

const Bytes key = tlv(115, hex("01020304 1001 0000")); // meter 0x01020304 of instance 4097
const Bytes base = tlv(117, hex("01020305 0006 0000"));
const Bytes more = tlv(116, hex("00000000"));
const Bytes last = tlv(116, hex("00000001"));

// A band of the given rate; every other byte distinct.
Bytes band(uint8_t rate)
{
    Bytes value = counting(40);
    value[16] = value[17] = value[18] = 0;
    value[19] = rate;
    return tlv(118, value);
}

Bytes reply(std::initializer_list<Bytes> tlvs) { return message(0x2000001b, tlvs); }

std::vector<uint32_t> rates(const OfpMeterEntry &meter)
{
    std::vector<uint32_t> found;
    for (auto element : elements_of<OfpMeterBandElement>(meter.bands))
        found.push_back(element->rate);
    return found;
}

struct Row {
    uint32_t request;
    uint32_t (*query)(uint16_t, uint32_t, OfpMeterEntry *);
};
const Row rows[] = {{0x10000019, OFP_get_SpecMeterEntry}, {0x1000001a, OFP_get_NextMeterEntry}};

} // namespace

TEST_F(MeterQuery, TableIsTaken)
{
    const Bytes request = message(0x10000018, {tlv(4, hex("1001 0000"))});
    const Bytes answer = message(0x2000001a, {tlv(114, hex("00000203 1001 0000"))});
    platform.reply(answer);
    auto table = preset<OfpMeterTable>();
    EXPECT_EQ(OFP_get_MeterTable(0x1001, &table), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({request}));
    EXPECT_EQ(bytes_of(table), hex("03020000 0110 0000"));

    table = preset<OfpMeterTable>();
    platform.reply(result_reply(0));
    EXPECT_EQ(OFP_get_MeterTable(0x1001, &table), uint32_t{OFP_RC_OK});
    EXPECT_EQ(bytes_of(table), Bytes(8, 0xee));

    expect_single_exchange({.answers = {{request, {answer}}},
                            .run =
                                [] {
                                    OfpMeterTable taken{};
                                    return OFP_get_MeterTable(0x1001, &taken);
                                },
                            .any_code = false});
}

TEST_F(MeterQuery, EntryTakesItsHeadAndItsBands)
{
    for (const Row &row : rows) {
        platform = Platform();
        platform.reply(reply({base, band(1), band(2), last}));
        EXPECT_EQ(row.query(0x1001, 0x01020304, &entry), uint32_t{OFP_RC_OK});
        EXPECT_EQ(platform.sent, std::vector({message(row.request, {key})}));
        EXPECT_EQ(entry.meter_id, 0x01020305u);
        EXPECT_EQ(entry.flags, 6);
        EXPECT_EQ(rates(entry), std::vector<uint32_t>({1, 2}));
        auto element = elements_of<OfpMeterBandElement>(entry.bands)[0];
        EXPECT_EQ(element->packet_count, 0x0102030405060708u);
        EXPECT_EQ(element->byte_count, 0x090a0b0c0d0e0f10u);
        EXPECT_EQ(element->burst_size, 0x15161718u);
        EXPECT_EQ(element->type, 0x191a);
        EXPECT_EQ(element->prec_level, 0x21);
        EXPECT_EQ(bytes_of(element->reserved), Bytes(5));
        OFP_get_FiniMeterBandList(&entry.bands);
    }
}

TEST_F(MeterQuery, EntryWithoutAFlagEndsAfterTheFirstDatagram)
{
    platform.reply(reply({base, band(1)}));
    platform.reply(reply({band(2)}));
    EXPECT_EQ(OFP_get_SpecMeterEntry(1, 2, &entry), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.unread(), 1u);
    EXPECT_EQ(rates(entry), std::vector<uint32_t>({1}));
}

TEST_F(MeterQuery, EntryGoesOnWhileTheLastFlagIsZero)
{
    platform.reply(reply({base, more, band(1)}));
    platform.reply(reply({band(2)})); // the flag stays
    platform.reply(reply({last, more}));
    platform.reply(reply({band(3), tlv(116, hex("00000100"))}));
    platform.reply(reply({band(4)}));
    EXPECT_EQ(OFP_get_NextMeterEntry(1, 2, &entry), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.unread(), 1u);
    EXPECT_EQ(platform.sent.size(), 1u);
    EXPECT_EQ(rates(entry), std::vector<uint32_t>({1, 2, 3}));
}

TEST_F(MeterQuery, EntryAppendsToTheBandsThatAreThere)
{
    platform.reply(reply({band(1)}));
    platform.reply(reply({band(2)}));
    EXPECT_EQ(OFP_get_SpecMeterEntry(1, 2, &entry), uint32_t{OFP_RC_OK});
    EXPECT_EQ(OFP_get_SpecMeterEntry(1, 2, &entry), uint32_t{OFP_RC_OK});
    EXPECT_EQ(rates(entry), std::vector<uint32_t>({1, 2}));
    EXPECT_EQ(entry.meter_id, 0xeeeeeeeeu); // no head came
}

TEST_F(MeterQuery, EntryFailsOnAValueThatHasNoPlaceInIt)
{
    for (uint16_t type : std::initializer_list<uint16_t>{2, 4, 115, 119, 999}) {
        platform.reply(reply({base, band(1), tlv(type, Bytes(8)), band(2)}));
        EXPECT_EQ(OFP_get_SpecMeterEntry(1, 2, &entry), uint32_t{OFP_RC_FAILED});
    }
    EXPECT_EQ(rates(entry), std::vector<uint32_t>({1, 1, 1, 1, 1}));
    EXPECT_EQ(entry.meter_id, 0x01020305u);
}

TEST_F(MeterQuery, EntryEndsWithTheCodeOfAResultReply)
{
    for (uint32_t code : {0u, 0x77u}) {
        platform.reply(reply({band(1), more}));
        platform.reply(result_reply(code));
        EXPECT_EQ(OFP_get_SpecMeterEntry(1, 2, &entry), code);
        EXPECT_EQ(platform.unread(), 0u);
    }
    platform.reply(reply({band(1), more}));
    EXPECT_EQ(OFP_get_SpecMeterEntry(1, 2, &entry), uint32_t{OFP_RC_NO_REPLY});
    EXPECT_EQ(rates(entry), std::vector<uint32_t>({1, 1, 1}));
}

TEST_F(MeterQuery, ShortMemoryKeepsTheBandsBefore)
{
    platform.reply(reply({base, band(1), band(2), band(3)}));
    memory::fail_at(3);
    EXPECT_EQ(OFP_get_SpecMeterEntry(1, 2, &entry), uint32_t{OFP_RC_NO_RESOURCE});
    EXPECT_EQ(rates(entry), std::vector<uint32_t>({1, 2}));
}

TEST_F(MeterQuery, DatagramsThatBringNothingAreNotTakenForEver)
{
    for (int i = 0; i < 15; ++i)
        platform.reply(reply({base, more}));
    platform.reply(reply({band(1)}));
    for (int i = 0; i < 20; ++i)
        platform.reply(reply({base}));
    EXPECT_EQ(OFP_get_SpecMeterEntry(1, 2, &entry), uint32_t{OFP_RC_FAILED});
    EXPECT_EQ(platform.unread(), 4u); // the sixteenth in a row was the last
}

TEST_F(MeterQuery, TheSixteenthDatagramMayBeTheLast)
{
    for (int i = 0; i < 15; ++i)
        platform.reply(reply({more}));
    platform.reply(reply({last}));
    EXPECT_EQ(OFP_get_SpecMeterEntry(1, 2, &entry), uint32_t{OFP_RC_OK});
}

TEST_F(MeterQuery, EntriesBehaveLikeAnyQuery)
{
    for (const Row &row : rows) {
        const QueryCase query{
            .answers = {{message(row.request, {key}),
                         {reply({base, more, band(1)}), reply({band(2), band(3), last})}}},
            .run =
                [&row] {
                    OfpMeterEntry meter{};
                    OFP_get_InitMeterBandList(&meter.bands);
                    const uint32_t code = row.query(0x1001, 0x01020304, &meter);
                    OFP_get_FiniMeterBandList(&meter.bands);
                    return code;
                },
            .codes = query_codes({{"malloc", OFP_RC_NO_RESOURCE}})};
        expect_common_behaviour(query);
        expect_truncations_survived(query, {OFP_RC_OK, OFP_RC_NO_REPLY});
    }
}
