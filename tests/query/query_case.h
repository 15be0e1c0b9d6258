// What all queries have in common, checked for one of them.
#pragma once

#include <cstring>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "double/memory.h"
#include "double/sweep.h"
#include "ofp/codec.h"
#include "ofp/query.h"
#include "ofp/result.h"

namespace test {

// A request and the datagrams that answer it.
struct Answer {
    Bytes request;
    std::vector<Bytes> replies;
};

// The agent daemon: answers each request it knows, on a channel of its own; no other.
inline void script(const std::vector<Answer> &answers)
{
    platform.on_send = [answers](const Bytes &request) {
        platform.drop_unread(); // of a channel that is closed
        for (const Answer &answer : answers)
            if (answer.request == request)
                for (const Bytes &reply : answer.replies)
                    platform.reply(reply);
    };
}

struct QueryCase {
    std::vector<Answer> answers;   // of a query that goes well
    std::function<uint64_t()> run; // also frees what the query hands out
    uint64_t success = OFP_RC_OK;
    // The code when the first reply holds nothing of what was asked for: a result reply with code
    // 0, another message, other TLVs, a reply cut short.
    uint64_t nothing = OFP_RC_OK;
    std::optional<uint64_t> result_zero = {}; // of a result reply with code 0, where it differs
    Codes codes = query_codes();
    bool any_code = true;  // replies are taken whatever their message code,
    bool any_head = false; // even without one
};

inline uint64_t run_with(const QueryCase &query, const std::vector<Answer> &answers)
{
    platform = Platform();
    script(answers);
    const size_t blocks = memory::outstanding();
    const uint64_t code = query.run();
    EXPECT_TRUE(platform.open_sockets().empty());
    EXPECT_EQ(memory::outstanding(), blocks);
    return code;
}

inline uint64_t run_with_first(const QueryCase &query, const Bytes &reply)
{
    std::vector<Answer> answers = query.answers;
    answers[0].replies = {reply};
    return run_with(query, answers);
}

inline std::vector<Bytes> requests_of(const QueryCase &query)
{
    std::vector<Bytes> requests;
    for (const Answer &answer : query.answers)
        requests.push_back(answer.request);
    return requests;
}

// The daemon down, result replies, foreign replies; then every failure of the platform and of
// memory.
inline void expect_common_behaviour(const QueryCase &query)
{
    EXPECT_EQ(run_with(query, query.answers), query.success);
    EXPECT_EQ(platform.sent, requests_of(query));
    EXPECT_EQ(platform.unread(), 0u);
    for (const Call &call : platform.calls("SOCK_SetOption"))
        EXPECT_EQ(call.bytes, hex("1e") + Bytes(15)); // 30 seconds

    for (uint32_t code : {0x77u, uint32_t{OFP_RC_NOT_FOUND}})
        EXPECT_EQ(run_with_first(query, result_reply(code)), code);
    EXPECT_EQ(run_with_first(query, result_reply(0)), query.result_zero.value_or(query.nothing));
    const Bytes body = query.answers[0].replies[0].slice(8);
    if (!query.any_code) {
        EXPECT_EQ(run_with_first(query, message(0x2fffffff) + body), query.nothing);
    }
    EXPECT_EQ(run_with_first(query, message(query.answers[0].replies[0].u32(4))), query.nothing);
    if (!query.any_head) {
        EXPECT_EQ(run_with_first(query, body), query.nothing);
    }
    EXPECT_EQ(run_with(query, {}), uint32_t{OFP_RC_NO_REPLY});

    platform = Platform();
    platform.daemon_runs(false);
    EXPECT_EQ(query.run(), uint32_t{OFP_RC_DAEMON_DOWN});
    EXPECT_EQ(platform.sockets_opened, 0u);

    const Operation operation{[&query] { script(query.answers); }, query.run, query.success};
    expect_failures_handled(operation, query.codes);
    expect_same_datagrams_on_any_stack(operation);
}

// The same for a query of one exchange; every truncation of its reply counts as nothing.
inline void expect_single_exchange(const QueryCase &query)
{
    expect_common_behaviour(query);
    const Bytes &reply = query.answers[0].replies[0];
    for (size_t size = 1; size < reply.size(); ++size)
        EXPECT_EQ(run_with_first(query, reply.slice(0, size)), query.nothing) << size << " bytes";
}

// Every truncation of every reply: no crash, no leak, one of the codes.
inline void expect_truncations_survived(const QueryCase &query, const std::set<uint64_t> &codes)
{
    for (size_t a = 0; a < query.answers.size(); ++a)
        for (size_t r = 0; r < query.answers[a].replies.size(); ++r)
            for (size_t size = 0; size < query.answers[a].replies[r].size(); ++size) {
                std::vector<Answer> answers = query.answers;
                Bytes &reply = answers[a].replies[r];
                reply = reply.slice(0, size);
                const uint64_t code = run_with(query, answers);
                EXPECT_TRUE(codes.contains(code)) << "code " << code << ", reply " << r
                                                  << " of answer " << a << " cut to " << size;
            }
}

// The elements of a list in order, the links checked both ways.
template <typename Element>
std::vector<const Element *> elements_of(const OfpLink &head)
{
    std::vector<const Element *> elements;
    const OfpLink *previous = &head;
    for (const OfpLink *at = head.next; at != &head; at = at->next) {
        EXPECT_EQ(at->previous, previous);
        elements.push_back(reinterpret_cast<const Element *>(at));
        previous = at;
    }
    EXPECT_EQ(head.previous, previous);
    return elements;
}

inline bool empty_both_ways(const OfpLink &head)
{
    return head.next == &head && head.previous == &head;
}

// A record whose bytes are all 0xee.
template <typename Record>
Record preset()
{
    Record record;
    std::memset(static_cast<void *>(&record), 0xee, sizeof record);
    return record;
}

// A list that frees its elements.
struct List {
    OfpLink head;
    List() { OFP_get_InitMeterBandList(&head); }
    ~List() { OFP_get_FiniMeterBandList(&head); }
    List(const List &) = delete;
    List &operator=(const List &) = delete;
};

// The 48 bytes of an interface name.
inline Bytes name_field(const std::string &name)
{
    Bytes field(name.begin(), name.end());
    field.resize(48);
    return field;
}

} // namespace test
