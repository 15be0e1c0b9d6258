// The match of a flow as options of text: name=value, each read into the draft as it comes.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "flow/field_table.h"
#include "flow/flow_draft.h"
#include "flow/keyword.h"
#include "flow/problem.h"
#include "flow/value_text.h"

namespace ofpctl {

// An option as it is written; what it points at must outlive the reader.
struct OptionText {
    std::string_view name;
    std::string_view value;
    bool has_value = false;
};

// Options come in any order, so what depends on the protocol is settled at the end.
class MatchReader {
public:
    MatchReader(FlowDraft &draft, Problem &problem) : draft_(draft), problem_(problem) {}

    bool read(const Keyword &keyword, const OptionText &option); // one of the match
    bool finish();

private:
    struct Shared {
        OptionText option;
        MaskedValue value;
    };

    bool read_field(const Field &field, const OptionText &option);
    bool read_protocol(const Protocol &protocol, const OptionText &option);
    bool read_shared(SharedName name, const OptionText &option);
    bool read_vlan_number(const Field &field, const OptionText &option);
    bool read_vlan_vid(const Field &field, const OptionText &option);
    bool read_vlan_tci(const OptionText &option);
    bool read_dscp_byte(const OptionText &option);
    bool read_words(const OptionText &option);
    bool read_interfaces(const OptionText &option);

    bool put(const Field &field, const OptionText &option, const MaskedValue &value);
    bool set(const Field &field, const OptionText &option, const MaskedValue &value);
    bool put_vlan(const Field &field, const OptionText &option, const MaskedValue &value);
    bool claim(unsigned bit, const OptionText &option);
    bool settle_shared();
    bool settle(SharedName name, const Layers &layers);
    bool check_needs();
    bool report_duplicate(std::string_view name, std::string_view other);
    bool report_contradiction(const Field &field, const OptionText &option);
    bool report_mask(const OptionText &option);

    FlowDraft &draft_;
    Problem &problem_;
    uint64_t claimed_ = 0;                       // field bits some option spoke of
    std::array<std::string_view, 64> claimants_; // by field bit: the name that option has
    uint32_t shared_seen_ = 0;                   // bits by SharedName
    std::array<Shared, shared_names> shared_;
};

// "tcp,nw_dst=10.0.0.1".
void append_match(std::string &out, const OfpFRMatch &match);
// What follows the '=' of one field that takes part, by its standard name.
void append_field_value(std::string &out, const OfpFRMatch &match, const Field &field);

// Empty when the list is null.
std::span<OfpExpMatchItem *const> experimenters(const OfpFRMatch &match);

} // namespace ofpctl
