#include <cerrno>

#include "query/list.h"
#include "query/query_case.h"

using namespace test;

namespace {

class ResourceQuery : public PlatformTest {
protected:
    List list;
};

const Bytes acl_reserved = message(0x20000021, {tlv(181, hex("0102 0304"))});
const Bytes acl_tables = message(0x20000028, {tlv(203, hex("00000102"))});
const Bytes request = message(0x1000002c, {tlv(217, hex("01020304 0506 0000"))});

// The resources of an interface; all other bytes distinct.
Bytes resources(uint8_t index)
{
    Bytes value = counting(96);
    value[0] = value[1] = value[2] = 0;
    value[3] = index;
    return tlv(216, value);
}

Bytes reply(std::initializer_list<Bytes> tlvs) { return message(0x2000002c, tlvs); }

std::vector<uint32_t> indexes(const List &list)
{
    std::vector<uint32_t> found;
    for (auto element : elements_of<OfpResourceElement>(list.head))
        found.push_back(element->resources.if_index);
    return found;
}

using Indexes = std::vector<uint32_t>;

} // namespace

TEST_F(ResourceQuery, AclReservationIsTaken)
{
    platform.reply(acl_reserved);
    auto reserved = preset<OfpShowAclResv>();
    EXPECT_EQ(OFP_get_AclResv(&reserved), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x10000021)}));
    EXPECT_EQ(bytes_of(reserved), hex("0201 0403"));
}

TEST_F(ResourceQuery, AclReservationFailsUnlessItComesFirst)
{
    auto reserved = preset<OfpShowAclResv>();
    for (const Bytes &other :
         {result_reply(0), message(0x20000021), message(0x20000021, {tlv(180, Bytes(4))}),
          message(0x20000021, {tlv(180, {}), tlv(181, Bytes(4))})}) {
        platform.reply(other);
        EXPECT_EQ(OFP_get_AclResv(&reserved), uint32_t{OFP_RC_FAILED});
    }
    EXPECT_EQ(bytes_of(reserved), Bytes(4, 0xee));
}

TEST_F(ResourceQuery, AclReservationBehavesLikeAnyQuery)
{
    expect_single_exchange({.answers = {{message(0x10000021), {acl_reserved}}},
                            .run =
                                [] {
                                    OfpShowAclResv reserved;
                                    return OFP_get_AclResv(&reserved);
                                },
                            .nothing = OFP_RC_FAILED});
}

TEST_F(ResourceQuery, AclTableNumberIsTaken)
{
    platform.reply(acl_tables);
    uint32_t count = 0xee;
    EXPECT_EQ(OFP_get_AclTableNum(&count), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x10000028)}));
    EXPECT_EQ(count, 0x102u);
}

TEST_F(ResourceQuery, AclTableNumberIsOneUnlessItCame)
{
    const auto expect_one = [](uint32_t code) {
        uint32_t count = 0xee;
        EXPECT_EQ(OFP_get_AclTableNum(&count), code);
        EXPECT_EQ(count, 1u);
    };
    for (const Bytes &other : {result_reply(0), message(0x20000028),
                               message(0x20000028, {tlv(202, {}), tlv(203, Bytes(4))})}) {
        platform.reply(other);
        expect_one(OFP_RC_FAILED);
    }
    platform.reply(result_reply(0x77));
    expect_one(0x77);
    expect_one(OFP_RC_NO_REPLY);
    platform.next("SOCK_Socket", {-1, EMFILE});
    expect_one(OFP_RC_FAILED);
    platform.daemon_runs(false);
    expect_one(OFP_RC_DAEMON_DOWN);
}

TEST_F(ResourceQuery, AclTableNumberBehavesLikeAnyQuery)
{
    expect_single_exchange({.answers = {{message(0x10000028), {acl_tables}}},
                            .run =
                                [] {
                                    uint32_t count;
                                    return OFP_get_AclTableNum(&count);
                                },
                            .nothing = OFP_RC_FAILED});
}

TEST_F(ResourceQuery, InterfaceResourcesAreAppended)
{
    platform.reply(reply({resources(3), tlv(999, {}), resources(1)}));
    EXPECT_EQ(OFP_get_ResourcesIf(0x01020304, 0x0506, &list.head), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({request}));
    EXPECT_EQ(indexes(list), Indexes({3, 1}));
    auto element = elements_of<OfpResourceElement>(list.head)[0];
    EXPECT_EQ(element->resources.value_u32_4, 0x05060708u);
    EXPECT_EQ(element->resources.value_u16_30, 0x1f20);
    EXPECT_EQ(element->resources.opaque_32[63], 96);
}

TEST_F(ResourceQuery, IndexZeroEndsTheInterfaceResources)
{
    platform.reply(reply({resources(3), resources(0), resources(4)}));
    EXPECT_EQ(OFP_get_ResourcesIf(1, 2, &list.head), uint32_t{OFP_RC_OK});
    EXPECT_EQ(indexes(list), Indexes({3}));
}

TEST_F(ResourceQuery, AnEmptyListIsAFailureAndAFilledOneIsNot)
{
    const Bytes empty_replies[] = {reply({resources(0), resources(4)}), reply({}),
                                   reply({tlv(217, Bytes(8))}), result_reply(0)};
    for (const Bytes &empty : empty_replies) {
        platform.reply(empty);
        EXPECT_EQ(OFP_get_ResourcesIf(1, 2, &list.head), uint32_t{OFP_RC_FAILED});
        EXPECT_TRUE(empty_both_ways(list.head));
    }
    ASSERT_NE(ofp::append<OfpResourceElement>(&list.head), nullptr);
    for (const Bytes &empty : empty_replies) {
        platform.reply(empty);
        EXPECT_EQ(OFP_get_ResourcesIf(1, 2, &list.head), uint32_t{OFP_RC_OK});
        EXPECT_EQ(indexes(list), Indexes({0}));
    }
    EXPECT_EQ(OFP_get_ResourcesIf(1, 2, &list.head), uint32_t{OFP_RC_NO_REPLY});
    EXPECT_EQ(indexes(list), Indexes({0}));
}

TEST_F(ResourceQuery, ShortMemoryFreesTheListAndIsAFailure)
{
    ASSERT_NE(ofp::append<OfpResourceElement>(&list.head), nullptr);
    platform.reply(reply({resources(3), resources(4)}));
    memory::fail_at(2);
    EXPECT_EQ(OFP_get_ResourcesIf(1, 2, &list.head), uint32_t{OFP_RC_FAILED});
    EXPECT_TRUE(empty_both_ways(list.head));
}

TEST_F(ResourceQuery, InterfaceResourcesBehaveLikeAnyQuery)
{
    const QueryCase query{.answers = {{request, {reply({resources(3)})}}},
                          .run =
                              [] {
                                  List found;
                                  return OFP_get_ResourcesIf(0x01020304, 0x0506, &found.head);
                              },
                          .nothing = OFP_RC_FAILED,
                          .codes = query_codes({{"malloc", OFP_RC_FAILED}})};
    expect_single_exchange(query);
}
