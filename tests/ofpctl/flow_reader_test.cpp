#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "flow/flow_reader.h"
#include "flow_record.h"

namespace flow_test {
namespace {

using namespace ofpctl;

// A pipe that a thread fills, closed when the reader is done with it.
class Input {
public:
    explicit Input(std::string text) : text_(std::move(text))
    {
        EXPECT_EQ(pipe(ends_), 0);
        writer_ = std::thread([this] {
            std::string_view rest = text_;
            while (!rest.empty()) {
                const ssize_t count = write(ends_[1], rest.data(), rest.size());
                if (count <= 0)
                    break;
                rest.remove_prefix(static_cast<std::size_t>(count));
            }
            close(ends_[1]);
        });
    }
    ~Input()
    {
        char rest[4096];
        while (read(ends_[0], rest, sizeof rest) > 0) {
        }
        writer_.join();
        close(ends_[0]);
    }
    int descriptor() const { return ends_[0]; }

private:
    std::string text_;
    int ends_[2] = {-1, -1};
    std::thread writer_;
};

struct Loaded {
    FlowSet flows;
    std::vector<SourceError> errors;
};

Loaded load(std::string text, LoadOptions options = {})
{
    Loaded loaded;
    const Input input(std::move(text));
    loaded.errors = load_flows(input.descriptor(), "rules", options, loaded.flows);
    return loaded;
}

std::string lines_of(const FlowSet &flows)
{
    std::string out;
    for (std::size_t i = 0; i < flows.size(); ++i)
        out += std::to_string(flows.source_line(i)) + " ";
    return out;
}

TEST(LineReader, EndsOfLinesDoNotCount)
{
    const Input input("a\nb\r\n\n\r\nc");
    LineReader reader(input.descriptor());
    std::string_view line;
    std::string all;
    while (reader.next(line) == LineReader::Status::line)
        all += std::to_string(reader.number()) + "[" + std::string(line) + "]";
    EXPECT_EQ(all, "1[a]2[b]3[]4[]5[c]");
    EXPECT_EQ(reader.next(line), LineReader::Status::end);
}

TEST(LineReader, LinesOfAnyLengthUpToOneMebibyte)
{
    const Input input(std::string(longest_line, 'x') + "\n" + std::string(longest_line + 1, 'y') +
                      "\n" + std::string(3 * longest_line, 'z') + "\nlast");
    LineReader reader(input.descriptor());
    std::string_view line;
    ASSERT_EQ(reader.next(line), LineReader::Status::line);
    EXPECT_EQ(line, std::string(longest_line, 'x'));
    ASSERT_EQ(reader.next(line), LineReader::Status::too_long);
    EXPECT_EQ(line.substr(0, 3), "yyy");
    ASSERT_EQ(reader.next(line), LineReader::Status::too_long);
    EXPECT_EQ(line.substr(0, 3), "zzz");
    EXPECT_EQ(reader.number(), 3U);
    ASSERT_EQ(reader.next(line), LineReader::Status::line);
    EXPECT_EQ(line, "last");
    EXPECT_EQ(reader.next(line), LineReader::Status::end);
}

TEST(LineReader, TooLongALineAtTheEndIsStillTooLong)
{
    const Input input(std::string(2 * longest_line, 'x'));
    LineReader reader(input.descriptor());
    std::string_view line;
    ASSERT_EQ(reader.next(line), LineReader::Status::too_long);
    EXPECT_EQ(reader.next(line), LineReader::Status::end);
}

TEST(LineReader, ZeroBytesAndFailuresAreTold)
{
    const Input input(std::string("ab\0c\nd\n", 7));
    LineReader reader(input.descriptor());
    std::string_view line;
    EXPECT_EQ(reader.next(line), LineReader::Status::zero_byte);
    EXPECT_EQ(reader.next(line), LineReader::Status::line);
    EXPECT_EQ(line, "d");
    LineReader broken(-1);
    EXPECT_EQ(broken.next(line), LineReader::Status::read_failed);
    EXPECT_EQ(broken.error(), EBADF);
}

TEST(FlowReader, CommentsAndBlankLinesAreSkippedAndCounted)
{
    const Loaded loaded = load("# rules\n\n  \ntcp,actions=drop # one\r\n\t# two\nudp,actions=1");
    EXPECT_TRUE(loaded.errors.empty());
    EXPECT_EQ(lines_of(loaded.flows), "4 6 ");
}

TEST(FlowReader, EveryErrorHasItsLineAndTheOthersAreRead)
{
    const Loaded loaded = load("tcp,actions=drop\nfoo\ntcp,tp_dst=x,actions=drop\nip,actions=1\n");
    ASSERT_EQ(loaded.errors.size(), 2U);
    EXPECT_EQ(loaded.errors[0].line, 2U);
    EXPECT_EQ(loaded.errors[1].line, 3U);
    EXPECT_EQ(loaded.errors[1].what.column, 12U);
    EXPECT_EQ(loaded.errors[1].text, "tcp,tp_dst=x,actions=drop");
    EXPECT_EQ(loaded.flows.size(), 2U);
}

TEST(FlowReader, StopsAtTheMostErrors)
{
    std::string text;
    for (int i = 0; i < 100; ++i)
        text += "foo\n";
    EXPECT_EQ(load(text).errors.size(), 20U);
    EXPECT_EQ(load(text, {.most_errors = 3}).errors.size(), 3U);
}

TEST(FlowReader, LinesThatCannotBeReadAreErrors)
{
    const Loaded loaded = load(std::string(longest_line + 1, 'x') + "\n" +
                               std::string("tcp\0,actions=drop\n", 18) + "tcp,actions=drop\n");
    ASSERT_EQ(loaded.errors.size(), 2U);
    EXPECT_EQ(to_string(loaded.errors[0].what), "the line is longer than 1 MiB");
    EXPECT_EQ(to_string(loaded.errors[1].what), "the line holds a zero byte");
    EXPECT_EQ(loaded.errors[1].what.column, 4U);
    EXPECT_EQ(loaded.flows.size(), 1U);
}

TEST(FlowReader, AFailedReadIsAnErrorOfTheFile)
{
    FlowSet flows;
    const auto errors = load_flows(-1, "rules", {}, flows);
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_EQ(render(errors[0]), "rules: Bad file descriptor");
}

TEST(FlowReader, AnEmptyFileHoldsNothing)
{
    for (const char *text : {"", "\n\n", "# nothing", " \r\n"}) {
        const Loaded loaded = load(text);
        EXPECT_TRUE(loaded.errors.empty() && loaded.flows.empty()) << text;
    }
}

TEST(FlowReader, JsonLinesAreToldByTheirFirstCharacter)
{
    const Loaded loaded = load("# rules\n{\"match\":{\"vrf\":1},\"actions\":[]}\n\n"
                               "{\"match\":{\"vrf\":2},\"actions\":[]}\n{\"mtch\":{}}\n");
    EXPECT_EQ(lines_of(loaded.flows), "2 4 ");
    ASSERT_EQ(loaded.errors.size(), 1U);
    EXPECT_EQ(render(loaded.errors[0]), "rules:5:2: unknown member 'mtch'; did you mean match?\n"
                                        "  {\"mtch\":{}}\n"
                                        "   ^~~~~~");
}

TEST(FlowReader, JsonOverSeveralLines)
{
    const Loaded loaded = load("\n[\n  {\"match\":{\"vrf\":1},\"actions\":[]},\n"
                               "  {\"match\":\n    {\"vfr\":1}}\n]\n");
    EXPECT_EQ(lines_of(loaded.flows), "3 ");
    ASSERT_EQ(loaded.errors.size(), 1U);
    EXPECT_EQ(render(loaded.errors[0]), "rules:5:6: unknown field 'vfr'; did you mean vrf?\n"
                                        "      {\"vfr\":1}}\n"
                                        "       ^~~~~");
}

TEST(FlowReader, BrokenJsonHasAPlaceToo)
{
    const Loaded loaded = load("[\n {\"match\": {},\n  ]\n");
    ASSERT_EQ(loaded.errors.size(), 1U);
    EXPECT_EQ(loaded.errors[0].line, 3U);
    EXPECT_EQ(loaded.errors[0].what.column, 3U);
}

TEST(FlowReader, TheFormatCanBeFixed)
{
    EXPECT_EQ(load("{\"actions\":[]}", {.format = FlowFormat::text}).errors.size(), 1U);
    EXPECT_EQ(load("tcp,actions=drop", {.format = FlowFormat::json}).errors.size(), 1U);
    EXPECT_EQ(load("tcp", {.mode = ParseMode::select}).flows.size(), 1U);
}

TEST(FlowReader, TheCaretStandsBelowThePlace)
{
    EXPECT_EQ(render({"f", 3, {5, 6, "wrong", "right"}, "tcp,nw_scr=1"}), "f:3:5: wrong; right\n"
                                                                          "  tcp,nw_scr=1\n"
                                                                          "      ^~~~~~");
    EXPECT_EQ(render({"f", 3, {4, 0, "wrong", ""}, "tcp"}), "f:3:4: wrong\n  tcp\n     ^");
    EXPECT_EQ(render({"f", 1, {2, 100, "wrong", ""}, "a\tb\x1b"}), "f:1:2: wrong\n  a b?\n   ^~~");
    EXPECT_EQ(render({"f", 1, {1, 0, "wrong", ""}, ""}), "f:1:1: wrong");
}

TEST(FlowReader, OfALongLineThePartAroundThePlaceIsShown)
{
    std::string line(500, 'a');
    line[299] = 'X';
    const std::string shown = render({"f", 1, {300, 1, "wrong", ""}, line});
    const auto text = shown.substr(shown.find('\n') + 3);
    const auto caret = text.substr(text.find('\n') + 3);
    EXPECT_EQ(text.find('X'), caret.find('^'));
    EXPECT_EQ(text.find('\n'), 100U);
    EXPECT_EQ(render({"f", 1, {9999, 1, "wrong", ""}, line}).find("f:1:9999: wrong"), 0U);
}

// Rules as filter-set generators write them: five-tuples, ports in prefix pieces, two actions.
std::string filter_rules(std::size_t count)
{
    Random random(6);
    std::string text;
    const auto number = [&](uint64_t most) { return std::to_string(random() % (most + 1)); };
    const auto address = [&] {
        return number(255) + "." + number(255) + "." + number(255) + "." + number(255) + "/" +
               number(32);
    };
    for (std::size_t i = 0; i < count; ++i) {
        text += "table=200,priority=" + std::to_string(1 + random() % 60000);
        text += random() % 2 != 0 ? ",tcp" : ",udp";
        text += ",nw_src=" + address() + ",nw_dst=" + address();
        text += random() % 2 != 0 ? ",tp_src=" + number(65535) : "";
        text += random() % 2 != 0 ? ",tp_dst=0xf488/0xfff8" : ",tp_dst=" + number(65535);
        text += ",actions=";
        text += random() % 8 != 0
                    ? "write_actions(output:" + std::to_string(1 + random() % 48) + ")"
                    : "drop";
        text += '\n';
    }
    return text;
}

TEST(FlowReader, ManyRulesAreOneArray)
{
    const Loaded loaded = load(filter_rules(20000));
    EXPECT_TRUE(loaded.errors.empty());
    ASSERT_EQ(loaded.flows.size(), 20000U);
    EXPECT_EQ(loaded.flows.source_line(19999), 20000U);
    std::string printed;
    for (const OfpFlowItem &item : loaded.flows.items()) {
        append_flow(printed, item);
        printed += '\n';
    }
    const Loaded again = load(printed);
    ASSERT_EQ(again.flows.size(), 20000U);
    for (std::size_t i = 0; i < 20000; i += 37)
        ASSERT_EQ(carried(again.flows.items()[i]), carried(loaded.flows.items()[i]));
}

// OFP_FLOW_FILES: a folder of rule files that all must load.
TEST(FlowReader, GivenFilesLoad)
{
    const char *folder = std::getenv("OFP_FLOW_FILES");
    if (folder == nullptr)
        GTEST_SKIP() << "OFP_FLOW_FILES is not set";
    std::size_t files = 0;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        const int descriptor = open(entry.path().c_str(), O_RDONLY | O_CLOEXEC);
        ASSERT_GE(descriptor, 0) << entry.path();
        FlowSet flows;
        const auto errors = load_flows(descriptor, entry.path().string(), {}, flows);
        close(descriptor);
        for (const SourceError &error : errors)
            ADD_FAILURE() << render(error);
        EXPECT_GT(flows.size(), 0U) << entry.path();
        ++files;
    }
    EXPECT_GT(files, 0U);
}

TEST(FlowSet, HoldsWhatItIsGivenInOrder)
{
    FlowSet flows;
    EXPECT_FALSE(flows.add_text("vrf=1,actions=1", ParseMode::program, 5));
    EXPECT_TRUE(flows.add_text("vfr=1,actions=1", ParseMode::program, 6));
    EXPECT_FALSE(flows.add_json(R"({"match":{"vrf":2},"actions":[]})", ParseMode::program, 7));
    EXPECT_TRUE(flows.add_json("{", ParseMode::program, 8));
    flows.add(parsed("vrf=3,batch_if=1:2,actions=3"));
    FlowSet moved = std::move(flows);
    ASSERT_EQ(moved.size(), 3U);
    EXPECT_EQ(lines_of(moved), "5 7 0 ");
    EXPECT_EQ(format_flow(moved.items()[2]),
              "table=200,priority=32768,batch_if=1:2,vrf=3,actions=write_actions(output:3)");
}

} // namespace
} // namespace flow_test
