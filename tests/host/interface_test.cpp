#include <vector>

#include "fixture.h"
#include "ofp/result.h"

using namespace host_test;

namespace {

class Interfaces : public HostTest {
protected:
    Interfaces()
    {
        describe(R"(
[[node]]
id = 0
[[node]]
id = 1
up = false
[[interface]]
index = 1
name = "GE1/0/2"
count = 9
type = 18
[[interface]]
index = 20
name = "GE1/0/1"
type = 41
[[interface]]
index = 30
name = "GE2/0/1"
type = 18
node = 1
[[interface]]
index = 40
name = "Loop0"
type = 300
)");
    }
};

std::vector<uint32_t> selected(const HostIfSelection &selection)
{
    std::vector<uint32_t> indexes(100);
    indexes.resize(HOST_GetSelectedInterfaces(&selection, indexes.data(), 100));
    return indexes;
}

TEST_F(Interfaces, AreSelectedByTypeInTheOrderOfTheirNames)
{
    in_child([] {
        HostIfSelection selection;
        ASSERT_EQ(IF_Select_Init(2, &selection), 0u);
        EXPECT_EQ(selected(selection), std::vector<uint32_t>{});
        ASSERT_EQ(IF_SelectType_Set(18, &selection), 0u);
        ASSERT_EQ(IF_SelectType_Set(41, &selection), 0u);
        ASSERT_EQ(IF_SelectType_Set(255, &selection), 0u);
        EXPECT_EQ(selected(selection), (std::vector<uint32_t>{20, 1, 2, 3, 4, 5, 6, 7, 8, 9, 30}));
    });
}

TEST_F(Interfaces, PresentOnesAreThoseOfNodesThatAreUp)
{
    in_child([] {
        HostIfSelection selection;
        ASSERT_EQ(IF_Select_Init(2, &selection), 0u);
        ASSERT_EQ(IF_SelectType_Set(18, &selection), 0u);
        ASSERT_EQ(IF_SelectCondition_Set(10, &selection), 0u);
        EXPECT_EQ(selected(selection), (std::vector<uint32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9}));
    });
}

TEST_F(Interfaces, AllAreSelectedWithoutTypes)
{
    in_child([] {
        HostIfSelection selection;
        ASSERT_EQ(IF_Select_Init(HOST_IF_MODE_ALL, &selection), 0u);
        EXPECT_EQ(selected(selection).size(), 12u);
        EXPECT_EQ(selected(selection).back(), 40u);
        EXPECT_EQ(IF_SelectType_Set(18, &selection), uint32_t{OFP_RC_INVALID});
    });
}

TEST_F(Interfaces, SelectionStoresNoMoreThanTheCapacity)
{
    in_child([] {
        HostIfSelection selection;
        uint32_t indexes[3] = {0, 0, 77};
        ASSERT_EQ(IF_Select_Init(HOST_IF_MODE_ALL, &selection), 0u);
        EXPECT_EQ(HOST_GetSelectedInterfaces(&selection, indexes, 2), 12u);
        EXPECT_EQ(indexes[0], 20u);
        EXPECT_EQ(indexes[1], 1u);
        EXPECT_EQ(indexes[2], 77u);
        EXPECT_EQ(HOST_GetSelectedInterfaces(&selection, nullptr, 0), 12u);
    });
}

TEST_F(Interfaces, SelectionRefusesWhatItDoesNotKnow)
{
    in_child([] {
        HostIfSelection selection{};
        EXPECT_EQ(IF_SelectType_Set(18, &selection), uint32_t{OFP_RC_INVALID});
        EXPECT_EQ(IF_SelectCondition_Set(10, &selection), uint32_t{OFP_RC_INVALID});
        EXPECT_EQ(HOST_GetSelectedInterfaces(&selection, nullptr, 0), 0u);
        EXPECT_STREQ(HOST_LastError(), "interface selection: not initialised");
        EXPECT_EQ(IF_Select_Init(3, &selection), uint32_t{OFP_RC_INVALID});
        EXPECT_EQ(IF_Select_Init(2, nullptr), uint32_t{OFP_RC_INVALID});
        ASSERT_EQ(IF_Select_Init(2, &selection), 0u);
        EXPECT_EQ(IF_SelectType_Set(256, &selection), uint32_t{OFP_RC_INVALID});
        EXPECT_EQ(IF_SelectCondition_Set(11, &selection), uint32_t{OFP_RC_INVALID});
        EXPECT_EQ(IF_SelectCondition_Set(10, nullptr), uint32_t{OFP_RC_INVALID});
    });
}

TEST_F(Interfaces, Item18IsTheType)
{
    in_child([] {
        uint32_t type = 0;
        EXPECT_EQ(IF_GetDataByIfIndex(20, 18, &type), 0u);
        EXPECT_EQ(type, 41u);
        EXPECT_EQ(IF_GetDataByIfIndex(40, 18, &type), 0u);
        EXPECT_EQ(type, 300u);
        EXPECT_EQ(IF_GetDataByIfIndex(0, 18, &type), uint32_t{OFP_RC_NOT_FOUND});
        EXPECT_EQ(IF_GetDataByIfIndex(10, 18, &type), uint32_t{OFP_RC_NOT_FOUND});
        EXPECT_EQ(IF_GetDataByIfIndex(20, 19, &type), uint32_t{OFP_RC_INVALID});
        EXPECT_EQ(IF_GetDataByIfIndex(20, 18, nullptr), uint32_t{OFP_RC_INVALID});
        EXPECT_EQ(type, 300u);
    });
}

} // namespace
