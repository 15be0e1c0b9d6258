#include "query/controller.h"

#include <cstring>

#include "query/query_case.h"

using namespace test;

namespace {

class ControllerQuery : public PlatformTest {};

const Bytes key = tlv(120, hex("1001 05 00"));     // instance 4097, controller 5
const Bytes all_key = tlv(120, hex("1001 40 00")); // all its controllers
const OfpAuxID aux_key{.instance_id = 0x1001, .controller_id = 5, .aux_id = 7};

// TLV 6 with every byte distinct; the address type is IPv6's, the texts are terminated.
Bytes controller_value()
{
    Bytes value = counting(192);
    value[16] = 0;
    value[17] = 10;
    return value;
}

// The same values where a summary has them.
Bytes summary_of(const Bytes &value, uint16_t flag)
{
    Bytes summary(128);
    auto put = [&](size_t at, const Bytes &bytes) {
        std::copy(bytes.begin(), bytes.end(), summary.begin() + static_cast<ptrdiff_t>(at));
    };
    auto reversed = [&](size_t at, size_t length) {
        Bytes bytes = value.slice(at, length);
        return Bytes(std::vector<uint8_t>(bytes.rbegin(), bytes.rend()));
    };
    put(0, reversed(16, 2));
    put(4, value.slice(20, 16));
    put(20, reversed(36, 4));
    put(24, reversed(48, 2));
    summary[26] = static_cast<uint8_t>(flag);
    summary[28] = value[82];
    put(29, value.slice(50, 31)); // cut to 31 characters
    put(61, value.slice(152, 31));
    return summary;
}

std::vector<Bytes> records_of(const OfpLink &head)
{
    std::vector<Bytes> records;
    for (auto element : elements_of<OfpControllerElement>(head))
        records.push_back(bytes_of(element->record));
    return records;
}

std::vector<Bytes> read(const Bytes &reply, uint32_t expected = OFP_RC_OK)
{
    List list;
    platform.reply(reply);
    EXPECT_EQ(ofp::read_controllers(0x1001, &list.head), expected);
    return records_of(list.head);
}

} // namespace

TEST_F(ControllerQuery, RawQueriesSendTheKeyAndHandOverTheDatagram)
{
    struct Row {
        uint32_t request;
        uint32_t (*query)(uint16_t, uint8_t, uint64_t, uint8_t *, uint64_t *);
    };
    for (const Row &row : {Row{0x10000004, OFP_get_CtrlInfo}, Row{0x10000023, OFP_get_CtrlCfgInfo},
                           Row{0x10000027, OFP_get_CtrlPktInfo}}) {
        const Bytes request = message(row.request, {key});
        const Bytes reply = message(0x20000005, {tlv(11, Bytes(8, 1)), tlv(6, counting(192))});
        SCOPED_TRACE(to_hex(request));
        platform = Platform();
        platform.reply(reply);
        Bytes buffer(300, 0xee);
        uint64_t length = 99;
        EXPECT_EQ(row.query(0x1001, 5, buffer.size(), buffer.data(), &length), 0u);
        EXPECT_EQ(platform.sent, std::vector({request}));
        EXPECT_EQ(platform.calls("SOCK_Recv")[0].arguments[1], 300u);
        EXPECT_EQ(length, reply.size());
        EXPECT_EQ(buffer, reply + Bytes(300 - reply.size(), 0xee));

        length = 99;
        platform.reply(result_reply(0));
        EXPECT_EQ(row.query(0x1001, 5, buffer.size(), buffer.data(), &length), 0u);
        EXPECT_EQ(length, 99u);

        expect_single_exchange({.answers = {{request, {reply}}}, .run = [&row] {
                                    uint8_t space[300];
                                    uint64_t received;
                                    return row.query(0x1001, 5, sizeof space, space, &received);
                                }});
    }
}

TEST_F(ControllerQuery, NextIsTheControllersRecord)
{
    platform.reply(message(0x20000004, {tlv(6, controller_value())}));
    auto next = preset<OfpCtrl>();
    EXPECT_EQ(OFP_get_NextCtrl(0x1001, 5, &next), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x1000001f, {key})}));
    EXPECT_EQ(next.value_u64_0, 0x0102030405060708u);
    EXPECT_EQ(next.address_type, 10);
    EXPECT_EQ(next.event_value, 0xb9ba);

    platform.reply(result_reply(0));
    next = preset<OfpCtrl>();
    EXPECT_EQ(OFP_get_NextCtrl(0x1001, 5, &next), uint32_t{OFP_RC_OK});
    EXPECT_EQ(bytes_of(next), Bytes(192, 0xee));
}

TEST_F(ControllerQuery, NextBehavesLikeAnyQuery)
{
    expect_single_exchange(
        {.answers = {{message(0x1000001f, {key}), {message(0x20000004, {tlv(6, counting(192))})}}},
         .run =
             [] {
                 OfpCtrl next{};
                 return OFP_get_NextCtrl(0x1001, 5, &next);
             },
         .any_code = false});
}

TEST_F(ControllerQuery, AuxInfoSendsTheCallersKey)
{
    const Bytes request = message(0x1000001c, {tlv(136, hex("1001 05 07"))});
    const Bytes reply = message(0x2000001c, {tlv(137, counting(80))});
    platform.reply(reply);
    Bytes buffer(OFP_DATAGRAM_SIZE);
    uint64_t length = 99;
    EXPECT_EQ(OFP_get_AuxInfo(&aux_key, buffer.size(), buffer.data(), &length), 0u);
    EXPECT_EQ(platform.sent, std::vector({request}));
    EXPECT_EQ(buffer.slice(0, length), reply);
    EXPECT_EQ(bytes_of(aux_key), hex("0110 05 07"));

    expect_single_exchange({.answers = {{request, {reply}}}, .run = [] {
                                uint8_t space[200];
                                uint64_t received;
                                return OFP_get_AuxInfo(&aux_key, sizeof space, space, &received);
                            }});
}

TEST_F(ControllerQuery, SummariesTakeTheirFieldsFromTheRecord)
{
    const Bytes value = controller_value();
    EXPECT_EQ(read(message(0x20000005, {tlv(6, value)})), std::vector({summary_of(value, 0)}));
    EXPECT_EQ(platform.sent, std::vector({message(0x10000004, {all_key})}));
}

TEST_F(ControllerQuery, SummaryFlagIsSetByStateOneAlone)
{
    for (uint32_t state : {0u, 1u, 2u, 0x01000000u, 0x10001u}) {
        Bytes value = controller_value();
        for (size_t i = 0; i < 4; ++i)
            value[40 + i] = static_cast<uint8_t>(state >> (24 - 8 * i));
        EXPECT_EQ(read(message(0x20000005, {tlv(6, value)})),
                  std::vector({summary_of(value, state == 1)}));
    }
}

TEST_F(ControllerQuery, SummaryOfAnIpv4AddressHasNoMoreOfIt)
{
    Bytes value = controller_value();
    value[17] = 2;
    Bytes expected = summary_of(value, 0);
    std::fill(expected.begin() + 8, expected.begin() + 20, uint8_t{0});
    EXPECT_EQ(read(message(0x20000005, {tlv(6, value)})), std::vector({expected}));
}

TEST_F(ControllerQuery, SummaryTextsEndWhereTheyEnd)
{
    Bytes value = controller_value();
    value[50 + 3] = 0;
    value[152] = 0;
    Bytes expected = summary_of(value, 0);
    std::fill(expected.begin() + 29 + 3, expected.begin() + 61 + 32, uint8_t{0});
    EXPECT_EQ(read(message(0x20000005, {tlv(6, value)})), std::vector({expected}));

    value = controller_value();
    value[50 + 31] = 0; // 31 characters fit
    EXPECT_EQ(read(message(0x20000005, {tlv(6, value)})), std::vector({summary_of(value, 0)}));
}

TEST_F(ControllerQuery, SummariesStandInOrderAndOtherValuesAreSkipped)
{
    Bytes first = controller_value(), second = controller_value();
    second[82] = 9;
    EXPECT_EQ(read(message(0x20000005, {tlv(11, Bytes(8)), tlv(6, first), tlv(300, {}),
                                        tlv(6, second), tlv(7, Bytes(156))})),
              std::vector({summary_of(first, 0), summary_of(second, 0)}));
}

TEST_F(ControllerQuery, SummaryOfAShortRecordIsZeroWhereItLacks)
{
    const std::vector<Bytes> records =
        read(message(0x20000005, {tlv(6, controller_value().slice(0, 22))}));
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0], hex("0a00 0000 1516") + Bytes(122));
}

TEST_F(ControllerQuery, SummariesBeforeShortMemoryStay)
{
    List list;
    platform.reply(message(0x20000005, {tlv(6, controller_value()), tlv(6, controller_value())}));
    memory::fail_at(2);
    EXPECT_EQ(ofp::read_controllers(0x1001, &list.head), uint32_t{OFP_RC_NO_RESOURCE});
    EXPECT_EQ(records_of(list.head), std::vector({summary_of(controller_value(), 0)}));
}

TEST_F(ControllerQuery, SummariesBehaveLikeAnyQuery)
{
    const QueryCase query{
        .answers = {{message(0x10000004, {all_key}),
                     {message(0x20000005, {tlv(6, Bytes(192)), tlv(6, Bytes(192))})}}},
        .run =
            [] {
                List list;
                return ofp::read_controllers(0x1001, &list.head);
            },
        .codes = query_codes({{"malloc", OFP_RC_NO_RESOURCE}})};
    expect_single_exchange(query);
}
