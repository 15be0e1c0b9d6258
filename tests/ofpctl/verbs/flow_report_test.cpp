#include "verbs/flow_report.h"

#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "flow/flow_set.h"
#include "frame/arguments.h"
#include "frame/context.h"

namespace ofpctl {
namespace {

const Noun &flow() { return *find_noun("flow"); }
const Verb &load() { return *find_verb(flow(), "load"); }

struct FlowReportTest : testing::Test {
    FlowReportTest()
    {
        for (int i = 1; i <= 6; i++)
            EXPECT_FALSE(rules.add_text("priority=" + std::to_string(i) + ",in_port=1,actions=drop",
                                        ParseMode::program));
        report.results.resize(6, {Outcome::accepted, 0});
    }

    ReportedRules reported() const
    {
        return {rules.items(), [](std::size_t i) { return "f:" + std::to_string(i + 1); }};
    }

    std::string print(const Words &words)
    {
        FILE *file = tmpfile();
        Output out(std::find(words.begin(), words.end(), "--json") != words.end(), fileno(file));
        const Arguments arguments = parse_arguments(flow(), load(), words);
        Context context{flow(), load(), arguments, out};
        print_results(context, reported(), report);
        print_summary(context, report);
        out.finish(nullptr);
        std::string text(10000, '\0');
        rewind(file);
        text.resize(fread(text.data(), 1, text.size(), file));
        fclose(file);
        return text;
    }

    int status() const
    {
        try {
            require_accepted(reported(), report);
        } catch (const Failure &failure) {
            return failure.status;
        }
        return 0;
    }

    FlowSet rules;
    Report report;
};

constexpr auto overlap = static_cast<uint32_t>(OFP_RC_STATE);
constexpr auto full = static_cast<uint32_t>(OFP_RC_NO_RESOURCE);

TEST_F(FlowReportTest, AllAcceptedIsASummaryOnly)
{
    EXPECT_EQ(print({"x"}), "accepted 6, refused 0, not sent 0\n");
    EXPECT_EQ(status(), 0);
}

TEST_F(FlowReportTest, RefusedRulesHavePlaceReasonAndText)
{
    report.results[1] = {Outcome::refused, overlap};
    report.results[4] = {Outcome::refused, full};
    EXPECT_EQ(print({"x"}), "f:2: refused: it overlaps a rule of the same priority\n"
                            "    table=200,priority=2,in_port=1,actions=drop\n"
                            "f:5: refused: the table is full\n"
                            "    table=200,priority=5,in_port=1,actions=drop\n"
                            "accepted 4, refused 2, not sent 0\n");
    EXPECT_EQ(status(), status_partly);
}

TEST_F(FlowReportTest, NeighboursThatWereNotSentAreTakenTogether)
{
    report.results[2].outcome = Outcome::unanswered;
    report.results[3].outcome = Outcome::not_sent;
    report.results[4].outcome = Outcome::not_sent;
    report.results[5].outcome = Outcome::not_sent;
    EXPECT_EQ(print({"x"}), "f:3: unanswered\n"
                            "    table=200,priority=3,in_port=1,actions=drop\n"
                            "f:4 to f:6 (3 rules): not sent\n"
                            "accepted 2, refused 0, unanswered 1, not sent 3\n");
}

TEST_F(FlowReportTest, VerboseTellsOfEveryRule)
{
    report.results[0] = {Outcome::refused, overlap};
    const std::string text = print({"x", "-v"});
    EXPECT_NE(text.find("f:1: refused"), std::string::npos);
    EXPECT_NE(text.find("f:6: accepted\n    table=200,priority=6"), std::string::npos);
}

TEST_F(FlowReportTest, JsonHoldsTheSame)
{
    report.results[1] = {Outcome::refused, overlap};
    report.results[4].outcome = Outcome::not_sent;
    report.results[5].outcome = Outcome::not_sent;
    EXPECT_EQ(print({"x", "--json"}),
              "{\"schema\":\"ofpctl/1\",\"results\":[{\"rule\":\"f:2\",\"count\":1,\"outcome\":"
              "\"refused\",\"code\":\"0x40010010\",\"name\":\"OFP_RC_STATE\",\"message\":\"it "
              "overlaps a rule of the same priority\",\"text\":\"table=200,priority=2,in_port=1,"
              "actions=drop\"},{\"rule\":\"f:5\",\"count\":2,\"outcome\":\"not sent\"}],"
              "\"accepted\":3,\"refused\":1,\"unanswered\":0,\"not_sent\":2,\"ok\":true}\n");
}

TEST_F(FlowReportTest, AllRefusedIsAFailureNotAPart)
{
    for (RuleResult &result : report.results)
        result = {Outcome::refused, full};
    EXPECT_EQ(status(), status_failed);
}

TEST_F(FlowReportTest, WhyItStoppedCountsMoreThanARefusal)
{
    report.results[0] = {Outcome::refused, full};
    report.stopped = Failure{.status = status_no_agent, .message = "gone"};
    EXPECT_EQ(status(), status_no_agent);
}

} // namespace
} // namespace ofpctl
