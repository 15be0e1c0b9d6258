#include <cerrno>
#include <cstring>
#include <memory>

#include "query/query_case.h"

using namespace test;

namespace {

class VerboseQuery : public PlatformTest {
protected:
    VerboseQuery() : verbose(new OfpVerbose) { OFP_get_InitVerbose(verbose.get()); }
    ~VerboseQuery() override { OFP_get_FiniVerbose(verbose.get()); }

    std::unique_ptr<OfpVerbose> verbose;
};

const Bytes key = tlv(4, hex("1001 0000"));
const Bytes glb_request = message(0x10000005, {key});
const Bytes controller_request = message(0x10000004, {tlv(120, hex("1001 40 00"))});
const Bytes configured_request = message(0x10000006, {key});
const Bytes running_request = message(0x10000007, {key});
const Bytes first_interface_request = message(0x10000008, {tlv(41, hex("00000000 1001 0000"))});
const Bytes next_interface_request = message(0x10000008, {tlv(41, hex("00000003 1001 0000"))});

const Bytes filter = tlv(124, hex("1001 0000 00000000"));
const Bytes reported = tlv(39, hex("0002") + Bytes(126));

Bytes glb(uint8_t active)
{
    return message(0x20000006, {tlv(67, Bytes({0, active, 0, 0})),
                                tlv(38, counting(255) + hex("ff")), tlv(999, Bytes(3)), reported});
}

// The answers about an instance; those about what runs go last.
std::vector<Answer> answers(uint8_t active)
{
    std::vector<Answer> all = {
        {glb_request, {glb(active)}},
        {controller_request, {message(0x20000005, {tlv(6, Bytes(192))})}},
        {configured_request, {message(0x20000007, {filter, tlv(69, counting(8))})}},
        {first_interface_request,
         {message(0x20000009, {tlv(40, hex("00000003") + name_field("GE1/0/1"))})}},
        {next_interface_request, {message(0x20000009)}},
    };
    if (active == 1)
        all.push_back({running_request, {message(0x20000008, {filter, tlv(70, counting(12))})}});
    return all;
}

std::vector<Bytes> records(const OfpVerbose &verbose)
{
    std::vector<Bytes> found;
    for (auto element : elements_of<OfpControllerElement>(verbose.controllers))
        found.push_back(bytes_of(element->record));
    return found;
}

size_t interfaces(const OfpLink &list) { return elements_of<OfpInterfaceElement>(list).size(); }

uint64_t run_verbose()
{
    auto verbose = std::make_unique<OfpVerbose>();
    OFP_get_InitVerbose(verbose.get());
    const uint32_t code = OFP_get_Verbose(0x1001, verbose.get());
    OFP_get_FiniVerbose(verbose.get());
    return code;
}

} // namespace

// ---- Global data ----

TEST_F(VerboseQuery, GlbTakesFlagDataAndControllers)
{
    platform.reply(glb(1));
    EXPECT_EQ(OFP_get_VerboseGlb(0x1001, verbose.get()), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({glb_request}));
    EXPECT_EQ(platform.calls("SOCK_Recv")[0].arguments[1], 49152u);
    EXPECT_EQ(bytes_of(verbose->inst_active), hex("0100 0000"));
    EXPECT_EQ(bytes_of(verbose->instance), counting(255) + hex("ff"));
    EXPECT_EQ(records(*verbose), std::vector({hex("0200") + Bytes(126)}));
}

TEST_F(VerboseQuery, GlbTakesManyControllers)
{
    Bytes reply = message(0x20000006);
    for (int i = 0; i < 370; ++i)
        reply += reported;
    ASSERT_GT(reply.size(), 48'000u);
    platform.reply(reply);
    EXPECT_EQ(OFP_get_VerboseGlb(0x1001, verbose.get()), uint32_t{OFP_RC_OK});
    EXPECT_EQ(records(*verbose).size(), 370u);
}

TEST_F(VerboseQuery, GlbReadsAShortControllerOverZeros)
{
    platform.reply(message(0x20000006, {tlv(39, hex("0002 0003 0a000001"))}));
    EXPECT_EQ(OFP_get_VerboseGlb(0x1001, verbose.get()), uint32_t{OFP_RC_OK});
    EXPECT_EQ(records(*verbose), std::vector({hex("0200 0300 0a000001") + Bytes(120)}));
}

TEST_F(VerboseQuery, GlbLeavesTheRecordToAResultReply)
{
    verbose->instance[7] = 9;
    for (uint32_t code : {0u, 0x77u}) {
        platform.reply(result_reply(code));
        EXPECT_EQ(OFP_get_VerboseGlb(0x1001, verbose.get()), code);
    }
    EXPECT_EQ(verbose->instance[7], 9);
    EXPECT_EQ(records(*verbose).size(), 0u);
}

TEST_F(VerboseQuery, GlbWithoutABufferFails)
{
    platform.reply(glb(1));
    memory::fail_at(1);
    EXPECT_EQ(OFP_get_VerboseGlb(0x1001, verbose.get()), uint32_t{OFP_RC_FAILED});
    EXPECT_EQ(records(*verbose).size(), 0u);
}

TEST_F(VerboseQuery, GlbFreesTheWholeControllerListWhenMemoryIsShort)
{
    for (int round = 0; round < 2; ++round) {
        platform.reply(message(0x20000006, {reported, tlv(67, hex("0001 0000")), reported}));
        memory::fail_at(round == 0 ? 0 : 3);
        EXPECT_EQ(OFP_get_VerboseGlb(0x1001, verbose.get()),
                  uint32_t{round == 0 ? OFP_RC_OK : OFP_RC_NO_RESOURCE});
    }
    EXPECT_TRUE(empty_both_ways(verbose->controllers)); // also those that were there before
    EXPECT_EQ(verbose->inst_active[0], 1);
}

TEST_F(VerboseQuery, GlbBehavesLikeAnyQuery)
{
    expect_single_exchange(
        {.answers = {{glb_request, {message(0x20000006, {reported})}}},
         .run =
             [] {
                 auto record = std::make_unique<OfpVerbose>();
                 OFP_get_InitVerbose(record.get());
                 const uint32_t code = OFP_get_VerboseGlb(0x1001, record.get());
                 OFP_get_FiniVerbose(record.get());
                 return code;
             },
         .codes = query_codes({{"malloc 1", OFP_RC_FAILED}, {"malloc 2", OFP_RC_NO_RESOURCE}})});
}

// ---- All of an instance ----

TEST_F(VerboseQuery, AnActiveInstanceIsReadWhole)
{
    script(answers(1));
    EXPECT_EQ(OFP_get_Verbose(0x1001, verbose.get()), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent,
              std::vector({glb_request, controller_request, configured_request,
                           first_interface_request, next_interface_request, running_request,
                           first_interface_request, next_interface_request}));
    EXPECT_EQ(records(*verbose), std::vector({hex("0200") + Bytes(126), Bytes(128)}));
    EXPECT_EQ(verbose->configured.table_count, 1);
    EXPECT_EQ(interfaces(verbose->configured.interfaces), 1u);
    EXPECT_EQ(verbose->running.table_count, 1);
    EXPECT_EQ(interfaces(verbose->running.interfaces), 1u);
}

TEST_F(VerboseQuery, AnInactiveInstanceHasNothingThatRuns)
{
    for (uint8_t active : {uint8_t{0}, uint8_t{2}}) {
        OFP_get_FiniVerbose(verbose.get());
        OFP_get_InitVerbose(verbose.get());
        const Bytes running = bytes_of(verbose->running);
        script(answers(active));
        platform.sent.clear();
        EXPECT_EQ(OFP_get_Verbose(0x1001, verbose.get()), uint32_t{OFP_RC_OK});
        EXPECT_EQ(platform.sent, std::vector({glb_request, controller_request, configured_request,
                                              first_interface_request, next_interface_request}));
        EXPECT_EQ(bytes_of(verbose->running), running);
        EXPECT_EQ(interfaces(verbose->configured.interfaces), 1u);
    }
}

TEST_F(VerboseQuery, OnlyTheFirst16BitsOfTheFlagCount)
{
    std::vector<Answer> all = answers(0);
    all[0].replies = {message(0x20000006, {tlv(67, hex("0000 0001"))})};
    script(all);
    EXPECT_EQ(OFP_get_Verbose(0x1001, verbose.get()), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent.size(), 5u);

    all = answers(1);
    all[0].replies = {message(0x20000006, {tlv(67, hex("0001 0001"))})};
    script(all);
    EXPECT_EQ(OFP_get_Verbose(0x1001, verbose.get()), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent.size(), 13u);
}

TEST_F(VerboseQuery, TheFirstTwoCodesAreOred)
{
    struct Row {
        uint32_t glb, controllers, expected;
    };
    for (const Row &row : {Row{0x11, 0x24, 0x35}, Row{0x11, 0, 0x11}, Row{0, 0x24, 0x24}}) {
        platform = Platform();
        std::vector<Answer> all = answers(1);
        if (row.glb != 0)
            all[0].replies = {result_reply(row.glb)};
        if (row.controllers != 0)
            all[1].replies = {result_reply(row.controllers)};
        script(all);
        EXPECT_EQ(OFP_get_Verbose(0x1001, verbose.get()), row.expected);
        EXPECT_EQ(platform.sent, std::vector({glb_request, controller_request}));
    }
    // What either could read is there.
    EXPECT_EQ(records(*verbose), std::vector({Bytes(128), hex("0200") + Bytes(126)}));

    platform = Platform();
    script({{glb_request, {result_reply(0x40010001)}}});
    EXPECT_EQ(OFP_get_Verbose(0x1001, verbose.get()), 0x40010001u | OFP_RC_NO_REPLY);
    platform.daemon_runs(false);
    EXPECT_EQ(OFP_get_Verbose(0x1001, verbose.get()), uint32_t{OFP_RC_DAEMON_DOWN});
}

TEST_F(VerboseQuery, LaterStepsEndItAndKeepWhatWasRead)
{
    const size_t requests_until[] = {3, 4, 6};
    const size_t failing[] = {2, 3, 5}; // configured, its interfaces, running
    for (size_t i = 0; i < 3; ++i) {
        platform = Platform();
        OFP_get_FiniVerbose(verbose.get());
        OFP_get_InitVerbose(verbose.get());
        std::vector<Answer> all = answers(1);
        all[failing[i]].replies = {result_reply(0x77)};
        script(all);
        EXPECT_EQ(OFP_get_Verbose(0x1001, verbose.get()), 0x77u);
        EXPECT_EQ(platform.sent.size(), requests_until[i]);
        EXPECT_EQ(records(*verbose).size(), 2u);
        EXPECT_EQ(verbose->configured.table_count, i > 0);
        EXPECT_EQ(interfaces(verbose->configured.interfaces), i > 1 ? 1u : 0u);
        EXPECT_EQ(interfaces(verbose->running.interfaces), 0u);
    }
}

TEST_F(VerboseQuery, HandlesFailures)
{
    const Operation operation{[] { script(answers(1)); }, run_verbose};
    expect_failures_handled(
        operation, query_codes({{"malloc", OFP_RC_NO_RESOURCE}, {"malloc 1", OFP_RC_FAILED}}));
    expect_same_datagrams_on_any_stack(operation);
}

TEST_F(VerboseQuery, SurvivesTruncatedReplies)
{
    expect_truncations_survived({.answers = answers(1), .run = run_verbose},
                                {OFP_RC_OK, OFP_RC_NO_REPLY});
}

// ---- Device-wide settings ----

TEST_F(VerboseQuery, GlbCfgTakesVlansAndTheIgnoreValue)
{
    alignas(8) uint8_t room[16];
    OfpGlbCfgVerbose config{.vlans = Bitmap_CreateFromBuffer(32, room, sizeof room),
                            .ignore = preset<OfpIgnore>()};
    platform.reply(message(0x20000022, {tlv(999, {}), tlv(204, hex("0102")),
                                        tlv(90, hex("00000004 00000020 01020304"))}));
    EXPECT_EQ(OFP_get_GlbCfgVerbose(&config), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x10000022)}));
    EXPECT_EQ(bytes_of(config.ignore), hex("0201 0000"));
    EXPECT_EQ(bytes_of(room).slice(8, 4), hex("01020304"));
}

TEST_F(VerboseQuery, GlbCfgNeedsNoBitmapAndIsKeptByAResultReply)
{
    OfpGlbCfgVerbose config{.vlans = nullptr, .ignore = preset<OfpIgnore>()};
    platform.reply(result_reply(0));
    EXPECT_EQ(OFP_get_GlbCfgVerbose(&config), uint32_t{OFP_RC_OK});
    platform.reply(message(0x20000022, {tlv(90, hex("00000004 00000020 01020304"))}));
    EXPECT_EQ(OFP_get_GlbCfgVerbose(&config), uint32_t{OFP_RC_OK});
    EXPECT_EQ(bytes_of(config.ignore), Bytes(4, 0xee));
    EXPECT_EQ(config.vlans, nullptr);
}

TEST_F(VerboseQuery, GlbCfgBehavesLikeAnyQuery)
{
    expect_single_exchange(
        {.answers = {{message(0x10000022), {message(0x20000022, {tlv(204, hex("0001 0000"))})}}},
         .run = [] {
             OfpGlbCfgVerbose config{};
             return OFP_get_GlbCfgVerbose(&config);
         }});
}
