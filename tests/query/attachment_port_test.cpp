#include "query/query_case.h"

using namespace test;

namespace {

class AttachmentPortQuery : public PlatformTest {
protected:
    List list;
};

// A port as it lies in memory, little-endian.
Bytes port(uint32_t index, const std::string &name, uint32_t at_52 = 7, uint32_t at_56 = 8,
           uint32_t at_60 = 9)
{
    return bytes_of(index) + name_field(name) + bytes_of(at_52) + bytes_of(at_56) + bytes_of(at_60);
}

Bytes request(const Bytes &last) { return message(0x10000024, {tlv(200, last)}); }

const Bytes first_request =
    request(hex("00000000") + Bytes(48) + hex("ffffffff ffffffff ffff0000"));

Bytes reply(const std::vector<Bytes> &ports)
{
    Bytes datagram = message(0x20000024);
    for (const Bytes &value : ports)
        datagram += tlv(200, value);
    return datagram;
}

std::vector<std::string> found(const List &list)
{
    std::vector<std::string> names;
    for (auto element : elements_of<OfpAcPortElement>(list.head))
        names.push_back(std::to_string(element->port.if_index) + " " + element->port.name);
    return names;
}

using Names = std::vector<std::string>;

unsigned comparisons;

} // namespace

TEST_F(AttachmentPortQuery, TheFirstRequestHasOnlyItsNumbersSet)
{
    platform.reply(reply({}));
    EXPECT_EQ(OFP_get_AcPortInfo(&list.head), uint32_t{OFP_RC_OK}); // no ports are no failure
    EXPECT_EQ(platform.sent, std::vector({first_request}));
    EXPECT_TRUE(empty_both_ways(list.head));
}

TEST_F(AttachmentPortQuery, GoesOnFromTheWholeLastValue)
{
    const Bytes b = port(4, "b", 1, 2, 3), c = port(4, "c", 5, 6, 7);
    script({{first_request, {reply({port(3, "a"), b})}},
            {request(b), {reply({c})}},
            {request(c), {reply({port(5, "d"), port(0, "e"), port(6, "f")})}}});
    EXPECT_EQ(OFP_get_AcPortInfo(&list.head), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({first_request, request(b), request(c)}));
    EXPECT_EQ(platform.sockets_opened, 3u);
    EXPECT_EQ(found(list), Names({"3 a", "4 b", "4 c", "5 d"}));
    EXPECT_EQ(bytes_of(elements_of<OfpAcPortElement>(list.head)[1]->port), b); // as it lies
}

TEST_F(AttachmentPortQuery, AValueWithAllOnesEndsTheReplyButNotTheQuery)
{
    const Bytes stop = port(9, "z", 1, 0xffffffff, 3);
    script({{first_request, {reply({port(3, "a"), stop, port(4, "b")})}},
            {request(stop), {reply({port(5, "c"), port(0, "")})}}});
    EXPECT_EQ(OFP_get_AcPortInfo(&list.head), uint32_t{OFP_RC_OK});
    EXPECT_EQ(found(list), Names({"3 a", "5 c"}));
}

TEST_F(AttachmentPortQuery, EndsWithAReplyThatHoldsNoPort)
{
    for (const Bytes &end :
         {reply({}), message(0x20000024, {tlv(999, Bytes(64))}), result_reply(0)}) {
        OFP_get_FiniMeterBandList(&list.head);
        const Bytes a = port(3, "a");
        script({{first_request, {reply({a})}}, {request(a), {end}}});
        EXPECT_EQ(OFP_get_AcPortInfo(&list.head), uint32_t{OFP_RC_OK});
        EXPECT_EQ(found(list), Names({"3 a"}));
    }
}

TEST_F(AttachmentPortQuery, SortsByNameAndPutsAnEqualNameFirst)
{
    platform.reply(reply({port(1, "m"), port(2, "c"), port(3, "x"), port(4, "m"), port(5, "c"),
                          port(6, "x"), port(7, "n"), port(8, "a")}));
    platform.reply(reply({}));
    EXPECT_EQ(OFP_get_AcPortInfo(&list.head), uint32_t{OFP_RC_OK});
    EXPECT_EQ(found(list), Names({"8 a", "5 c", "2 c", "4 m", "1 m", "7 n", "6 x", "3 x"}));
}

TEST_F(AttachmentPortQuery, AnOrderThatContradictsItselfLosesNothing)
{
    platform.name_order = [](const char *, const char *) { return ++comparisons % 3 ? 0 : 1; };
    std::vector<Bytes> ports;
    for (uint32_t i = 1; i <= 40; ++i)
        ports.push_back(port(i, "p"));
    platform.reply(reply(ports));
    platform.reply(reply({}));
    EXPECT_EQ(OFP_get_AcPortInfo(&list.head), uint32_t{OFP_RC_OK});
    EXPECT_EQ(found(list).size(), 40u);
}

TEST_F(AttachmentPortQuery, FailuresKeepWhatWasRead)
{
    const Bytes a = port(3, "a");
    script({{first_request, {reply({a})}}, {request(a), {result_reply(0x77)}}});
    EXPECT_EQ(OFP_get_AcPortInfo(&list.head), 0x77u);
    EXPECT_EQ(found(list), Names({"3 a"}));
    script({{first_request, {reply({a})}}});
    EXPECT_EQ(OFP_get_AcPortInfo(&list.head), uint32_t{OFP_RC_NO_REPLY});
    EXPECT_EQ(found(list), Names({"3 a", "3 a"}));
}

TEST_F(AttachmentPortQuery, ShortMemoryFreesTheList)
{
    script({{first_request, {reply({port(3, "a"), port(4, "b")})}},
            {request(port(4, "b")), {reply({port(5, "c")})}}});
    memory::fail_at(3);
    EXPECT_EQ(OFP_get_AcPortInfo(&list.head), uint32_t{OFP_RC_NO_RESOURCE});
    EXPECT_TRUE(empty_both_ways(list.head));
}

TEST_F(AttachmentPortQuery, ADaemonThatAnswersInACircleIsLeft)
{
    for (uint32_t length : {1u, 2u, 5u}) {
        uint32_t turn = 0;
        platform = Platform();
        platform.on_send = [&](const Bytes &) {
            platform.reply(reply({port(4, "a", turn++ % length)}));
        };
        EXPECT_EQ(OFP_get_AcPortInfo(&list.head), uint32_t{OFP_RC_FAILED});
        EXPECT_GT(turn, length); // the index alone does not end it
        EXPECT_LE(turn, 4 * length + 2);
        EXPECT_EQ(found(list).size(), turn);
        OFP_get_FiniMeterBandList(&list.head);
    }
    // Also when the values name no ports.
    platform.on_send = [](const Bytes &) { platform.reply(reply({port(4, "a", 1, 0xffffffff)})); };
    EXPECT_EQ(OFP_get_AcPortInfo(&list.head), uint32_t{OFP_RC_FAILED});
    EXPECT_TRUE(empty_both_ways(list.head));
}

TEST_F(AttachmentPortQuery, NamesWithoutAnEndAreOrderedWithinTheirBytes)
{
    static size_t longest;
    longest = 0;
    platform.name_order = [](const char *a, const char *b) {
        longest = std::max({longest, std::strlen(a), std::strlen(b)});
        return std::strcmp(a, b);
    };
    platform.reply(reply({port(1, std::string(48, 'a')), port(2, std::string(48, 'a'))}));
    platform.reply(reply({}));
    EXPECT_EQ(OFP_get_AcPortInfo(&list.head), uint32_t{OFP_RC_OK});
    EXPECT_EQ(longest, 48u);
}

TEST_F(AttachmentPortQuery, NamesInOrderTakeTwoComparisonsEach)
{
    constexpr uint32_t count = 20'000, page = 120;
    comparisons = 0;
    platform.name_order = [](const char *a, const char *b) {
        ++comparisons;
        return std::strcmp(a, b);
    };
    std::vector<Bytes> ports;
    for (uint32_t i = 0; i < count; ++i) {
        ports.push_back(port(i + 1, std::to_string(1'000'000 + i)));
        if (ports.size() == page || i + 1 == count) {
            platform.reply(reply(ports));
            ports.clear();
        }
    }
    platform.reply(reply({}));
    EXPECT_EQ(OFP_get_AcPortInfo(&list.head), uint32_t{OFP_RC_OK});
    EXPECT_EQ(comparisons, 2 * (count - 1));
    EXPECT_EQ(found(list).size(), count);
}

TEST_F(AttachmentPortQuery, BehavesLikeAnyQuery)
{
    const QueryCase query{.answers = {{first_request, {reply({port(3, "b"), port(4, "a")})}},
                                      {request(port(4, "a")), {reply({port(5, "b")})}},
                                      {request(port(5, "b")), {reply({})}}},
                          .run =
                              [] {
                                  List ports;
                                  const uint32_t code = OFP_get_AcPortInfo(&ports.head);
                                  EXPECT_TRUE(code != OFP_RC_NO_RESOURCE ||
                                              empty_both_ways(ports.head));
                                  return code;
                              },
                          .codes = query_codes({{"malloc", OFP_RC_NO_RESOURCE}})};
    expect_common_behaviour(query);
    expect_truncations_survived(query, {OFP_RC_OK, OFP_RC_NO_REPLY});
}
