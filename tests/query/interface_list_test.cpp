#include "query/interface_list.h"

#include "query/query_case.h"

using namespace test;

namespace {

class InterfaceList : public PlatformTest {
protected:
    uint32_t read() { return ofp::read_interfaces(0x1001, &list.head); }

    List list;
};

Bytes word(uint32_t value)
{
    return {uint8_t(value >> 24), uint8_t(value >> 16), uint8_t(value >> 8), uint8_t(value)};
}

Bytes request(uint32_t index)
{
    return message(0x10000008, {tlv(41, word(index) + hex("1001 0000"))});
}

Bytes interface(uint32_t index, const std::string &name)
{
    return tlv(40, word(index) + name_field(name));
}

Bytes reply(const std::vector<Bytes> &interfaces)
{
    Bytes datagram = message(0x20000009);
    for (const Bytes &value : interfaces)
        datagram += value;
    return datagram;
}

// "index name", in order.
std::vector<std::string> found(const List &list)
{
    std::vector<std::string> names;
    for (auto element : elements_of<OfpInterfaceElement>(list.head))
        names.push_back(std::to_string(element->interface.if_index) + " " +
                        element->interface.name);
    return names;
}

using Names = std::vector<std::string>;

unsigned comparisons;

} // namespace

TEST_F(InterfaceList, GoesOnFromTheLastKeyUntilKeyZero)
{
    script({{request(0), {reply({interface(3, "a"), interface(9, "b")})}},
            {request(9), {reply({interface(5, "c")})}},
            {request(5), {reply({interface(6, "d"), interface(0, "e"), interface(7, "f")})}}});
    EXPECT_EQ(read(), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({request(0), request(9), request(5)}));
    EXPECT_EQ(platform.sockets_opened, 3u);
    EXPECT_EQ(found(list), Names({"3 a", "9 b", "5 c", "6 d"}));
    EXPECT_EQ(bytes_of(list.head.next + 1, 56),
              hex("03000000") + name_field("a") + Bytes(4)); // the key in host order
}

TEST_F(InterfaceList, EndsWithoutInterfaces)
{
    for (const Bytes &end :
         {reply({}), reply({tlv(41, Bytes(8)), tlv(999, {})}), result_reply(0)}) {
        script({{request(0), {reply({tlv(999, {}), interface(3, "a")})}}, {request(3), {end}}});
        EXPECT_EQ(read(), uint32_t{OFP_RC_OK});
        EXPECT_EQ(found(list), Names({"3 a"})); // by the second time its name is there already
    }
}

TEST_F(InterfaceList, SortsByNameBeforeTheFirstThatSortsAfter)
{
    platform.reply(reply({interface(1, "m"), interface(2, "c"), interface(3, "x"),
                          interface(4, "d"), interface(5, "n"), interface(6, "a")}));
    platform.reply(reply({}));
    EXPECT_EQ(read(), uint32_t{OFP_RC_OK});
    EXPECT_EQ(found(list), Names({"6 a", "2 c", "4 d", "1 m", "5 n", "3 x"}));
}

TEST_F(InterfaceList, SortsByThePlatformsOrder)
{
    platform.name_order = [](const char *a, const char *b) { return b[0] - a[0]; };
    platform.reply(reply({interface(1, "m"), interface(2, "z"), interface(3, "a")}));
    platform.reply(reply({}));
    EXPECT_EQ(read(), uint32_t{OFP_RC_OK});
    EXPECT_EQ(found(list), Names({"2 z", "1 m", "3 a"}));
}

TEST_F(InterfaceList, AnEqualNameGoesBehindUnlessItIsTheLast)
{
    platform.reply(reply({interface(1, "a"), interface(2, "b"), interface(3, "a"),
                          interface(4, "c"), interface(5, "b"), interface(6, "a")}));
    platform.reply(reply({}));
    EXPECT_EQ(read(), uint32_t{OFP_RC_OK});
    EXPECT_EQ(found(list), Names({"1 a", "3 a", "6 a", "2 b", "5 b", "4 c"}));
}

TEST_F(InterfaceList, ANameEqualToTheLastIsLeftOut)
{
    script({{request(0),
             {reply({interface(1, "b"), interface(2, "b"), interface(3, "a"), interface(4, "b")})}},
            {request(4), {reply({})}}}); // its key counts
    EXPECT_EQ(read(), uint32_t{OFP_RC_OK});
    EXPECT_EQ(found(list), Names({"3 a", "1 b"}));
}

TEST_F(InterfaceList, FailuresKeepWhatWasRead)
{
    script({{request(0), {reply({interface(3, "a")})}}, {request(3), {result_reply(0x77)}}});
    EXPECT_EQ(read(), 0x77u);
    EXPECT_EQ(found(list), Names({"3 a"}));
    script({{request(0), {reply({interface(4, "b")})}}});
    EXPECT_EQ(read(), uint32_t{OFP_RC_NO_REPLY});
    EXPECT_EQ(found(list), Names({"3 a", "4 b"}));
}

TEST_F(InterfaceList, ShortMemoryFreesTheList)
{
    script({{request(0), {reply({interface(3, "a"), interface(4, "b")})}},
            {request(4), {reply({interface(5, "c")})}}});
    memory::fail_at(3);
    EXPECT_EQ(read(), uint32_t{OFP_RC_NO_RESOURCE});
    EXPECT_TRUE(empty_both_ways(list.head));
}

TEST_F(InterfaceList, ADaemonThatAnswersInACircleIsLeft)
{
    for (uint32_t length : {1u, 2u, 5u}) {
        uint32_t turn = 0;
        platform = Platform();
        platform.on_send = [&](const Bytes &) {
            platform.reply(reply({interface(1 + turn++ % length, "a")}));
        };
        EXPECT_EQ(read(), uint32_t{OFP_RC_FAILED});
        EXPECT_LE(turn, 4 * length + 2);
        EXPECT_EQ(found(list), Names({"1 a"}));
    }
}

TEST_F(InterfaceList, NamesWithoutAnEndAreOrderedWithinTheirBytes)
{
    static size_t longest;
    longest = 0;
    platform.name_order = [](const char *a, const char *b) {
        longest = std::max({longest, std::strlen(a), std::strlen(b)});
        return std::strcmp(a, b);
    };
    const std::string full(48, 'a'), other(47, 'a');
    platform.reply(reply({interface(1, full), interface(2, other + "b"), interface(3, full)}));
    platform.reply(reply({}));
    EXPECT_EQ(read(), uint32_t{OFP_RC_OK});
    EXPECT_EQ(longest, 48u);
    const auto elements = elements_of<OfpInterfaceElement>(list.head);
    ASSERT_EQ(elements.size(), 3u);
    EXPECT_EQ(elements[0]->interface.if_index, 1u);
    EXPECT_EQ(elements[1]->interface.if_index, 3u);
    EXPECT_EQ(bytes_of(elements[2]->interface.name), name_field(other + "b"));
}

TEST_F(InterfaceList, AShortValueIsZeroWhereItLacks)
{
    platform.reply(reply({tlv(40, hex("00000007 41"))}));
    platform.reply(reply({}));
    EXPECT_EQ(read(), uint32_t{OFP_RC_OK});
    EXPECT_EQ(found(list), Names({"7 A"}));
}

TEST_F(InterfaceList, NamesInOrderTakeTwoComparisonsEach)
{
    constexpr uint32_t count = 100'000, page = 140;
    comparisons = 0;
    platform.name_order = [](const char *a, const char *b) {
        ++comparisons;
        return std::strcmp(a, b);
    };
    std::vector<Bytes> interfaces;
    for (uint32_t i = 0; i < count; ++i) {
        interfaces.push_back(interface(i + 1, std::to_string(1'000'000 + i)));
        if (interfaces.size() == page || i + 1 == count) {
            platform.reply(reply(interfaces));
            interfaces.clear();
        }
    }
    platform.reply(reply({}));
    EXPECT_EQ(read(), uint32_t{OFP_RC_OK});
    EXPECT_EQ(comparisons, 2 * (count - 1));
    EXPECT_EQ(elements_of<OfpInterfaceElement>(list.head).size(), count);
}

TEST_F(InterfaceList, NamesAgainstTheOrderTakeOneComparisonEach)
{
    constexpr uint32_t count = 10'000;
    comparisons = 0;
    platform.name_order = [](const char *a, const char *b) {
        ++comparisons;
        return std::strcmp(a, b);
    };
    for (uint32_t i = 0; i < count; ++i)
        platform.reply(reply({interface(i + 1, std::to_string(2'000'000 - i))}));
    platform.reply(reply({}));
    EXPECT_EQ(read(), uint32_t{OFP_RC_OK});
    EXPECT_EQ(comparisons, count - 1);
}

TEST_F(InterfaceList, BehavesLikeAnyQuery)
{
    const QueryCase query{
        .answers = {{request(0), {reply({interface(3, "b"), interface(4, "a")})}},
                    {request(4), {reply({interface(5, "b"), interface(6, "c")})}},
                    {request(6), {reply({})}}},
        .run =
            [] {
                List interfaces;
                const uint32_t code = ofp::read_interfaces(0x1001, &interfaces.head);
                EXPECT_TRUE(code != OFP_RC_NO_RESOURCE || empty_both_ways(interfaces.head));
                return code;
            },
        .codes = query_codes({{"malloc", OFP_RC_NO_RESOURCE}})};
    expect_common_behaviour(query);
    expect_truncations_survived(query, {OFP_RC_OK, OFP_RC_NO_REPLY});
}
