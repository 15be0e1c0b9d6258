// Flow items for tests: parsed, made at random, and compared by all that the wire would carry of
// them. Written against the record alone, not against the tables that are tested.
#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "flow/flow_text.h"
#include "ofp/flow_item.h"

namespace flow_test {

constexpr uint64_t bit(unsigned n) { return uint64_t{1} << n; }

// The item; a test failure and null when the line does not load.
ofpctl::FlowItemPtr parsed(std::string_view line);
// Loaded and printed again, without "table=200,priority=32768," and the comma before actions=drop.
std::string reprinted(std::string_view line);
// "column+length message; hint" of a line that must not load.
std::string refused(std::string_view line, ofpctl::ParseMode mode = ofpctl::ParseMode::program);
std::string refused_json(std::string_view object);

// Priority, fields, values, masks, lists and actions, one per line.
std::string carried(const OfpFlowItem &item);

// An item whose blocks it owns.
class Record {
public:
    Record();
    Record(const Record &) = delete;
    Record &operator=(const Record &) = delete;

    OfpFRMatch &match() { return item.match; }
    void add_interface(uint32_t index);
    void add_experimenter(uint32_t type, const std::string &data);
    void add_output(uint32_t port);
    void add_group(uint32_t group);
    void add_experimenter_action(uint32_t subtype, uint32_t first, uint32_t second);

    OfpFlowItem item{};
    OfpMatchMask mask{};
    OfpMatchIpv6 ipv6{};

private:
    template <class T>
    T &block();
    void add_action(OfpAction &action);

    std::vector<std::unique_ptr<uint64_t[]>> blocks_;
    std::vector<uint32_t> interfaces_;
    std::vector<OfpExpMatchItem *> experimenters_;
    std::vector<OfpAction *> actions_;
};

using Random = std::mt19937_64;

enum class Fields { all, of_open_vswitch };

// A rule that a switch could hold: every field has what it needs, no value has bits outside its
// mask, no mask is empty or covers all.
std::unique_ptr<Record> random_record(Random &random, Fields fields = Fields::all);

} // namespace flow_test
