#include "frame/json_writer.h"

#include <gtest/gtest.h>

namespace ofpctl {
namespace {

struct JsonWriterTest : testing::Test {
    std::string out;
    JsonWriter json{out};
};

TEST_F(JsonWriterTest, SeparatesMembersAndElements)
{
    json.begin_object();
    json.number("a", -1);
    json.begin_array("b");
    json.number({}, 2);
    json.flag({}, true);
    json.begin_object();
    json.end();
    json.end();
    json.null("c");
    json.end();
    EXPECT_EQ(out, R"({"a":-1,"b":[2,true,{}],"c":null})");
    EXPECT_EQ(json.depth(), 0U);
}

TEST_F(JsonWriterTest, WritesWideNumbersAsStrings)
{
    json.begin_object();
    json.wide("packets", UINT64_MAX);
    json.end();
    EXPECT_EQ(out, R"({"packets":"18446744073709551615"})");
}

TEST_F(JsonWriterTest, EscapesWhatJsonDoesNotHold)
{
    json.begin_array();
    json.text({}, "a\"b\\\n\x01");
    json.end();
    EXPECT_EQ(out, R"(["a\"b\\\n\u0001"])");
}

TEST_F(JsonWriterTest, ReplacesBytesThatAreNoUtf8)
{
    json.begin_array();
    json.text({}, "a\xff");
    json.end();
    EXPECT_EQ(out, "[\"a\xef\xbf\xbd\"]");
}

TEST_F(JsonWriterTest, EndAllLeavesTheOutermostOpen)
{
    json.begin_object();
    json.begin_array("rules");
    json.begin_object();
    json.end_all();
    EXPECT_EQ(json.depth(), 1U);
    json.flag("ok", false);
    json.end();
    EXPECT_EQ(out, R"({"rules":[{}],"ok":false})");
}

} // namespace
} // namespace ofpctl
