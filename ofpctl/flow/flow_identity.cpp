#include "flow/flow_identity.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "flow/action_text.h"
#include "flow/field_table.h"
#include "flow/match_text.h"

namespace ofpctl {
namespace {

std::string_view bytes_of(const void *data, std::size_t size)
{
    return {static_cast<const char *>(data), size};
}

std::string_view words_of(const OfpFRMatch &match)
{
    return bytes_of(match.ip_range, sizeof match.ip_range);
}

std::string_view interfaces_of(const OfpFRMatch &match)
{
    if (match.batch_if.if_index == nullptr)
        return {};
    return bytes_of(match.batch_if.if_index, match.batch_if.count * sizeof(uint32_t));
}

bool same_value(const OfpFRMatch &a, const OfpFRMatch &b, const Field &field)
{
    if (field.form == Form::words)
        return words_of(a) == words_of(b);
    if (field.form == Form::interfaces)
        return interfaces_of(a) == interfaces_of(b);
    return effective_mask(a, field) == effective_mask(b, field) &&
           effective_value(a, field) == effective_value(b, field);
}

bool same_experimenters(const OfpFRMatch &a, const OfpFRMatch &b)
{
    const auto left = experimenters(a);
    const auto right = experimenters(b);
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](const OfpExpMatchItem *x, const OfpExpMatchItem *y) {
                          return x->type == y->type &&
                                 bytes_of(x->data, x->length) == bytes_of(y->data, y->length);
                      });
}

// FNV-1a, eight bytes a step.
class Hash {
public:
    void add(uint64_t word) { value_ = (value_ ^ word ^ word >> 32) * 0x100000001b3; }
    void add(Wide wide)
    {
        add(wide.high);
        add(wide.low);
    }
    void add(std::string_view bytes)
    {
        for (; bytes.size() >= 8; bytes.remove_prefix(8))
            add(load(bytes.substr(0, 8)));
        add(load(bytes));
        add(bytes.size());
    }
    std::size_t value() const { return value_ ^ value_ >> 29; }

private:
    static uint64_t load(std::string_view bytes)
    {
        uint64_t word = 0;
        std::memcpy(&word, bytes.data(), bytes.size());
        return word;
    }
    uint64_t value_ = 0xcbf29ce484222325;
};

void add_field(Hash &hash, const OfpFRMatch &match, const Field &field)
{
    hash.add(uint64_t{field.bit});
    if (field.form == Form::words)
        return hash.add(words_of(match));
    if (field.form == Form::interfaces)
        return hash.add(interfaces_of(match));
    hash.add(effective_mask(match, field));
    hash.add(effective_value(match, field));
}

// What travels of them: two values, one, or a MAC address.
bool same_experimenter(const OfpActionExperimenter &a, const OfpActionExperimenter &b)
{
    if (a.subtype != b.subtype)
        return false;
    const std::size_t size = a.subtype == 3   ? sizeof a.body.mac
                             : a.subtype == 0 ? sizeof a.body.value
                                              : sizeof a.body.value[0];
    return bytes_of(&a.body, size) == bytes_of(&b.body, size);
}

bool same_action(const OfpAction *a, const OfpAction *b)
{
    if (a == nullptr || b == nullptr)
        return a == b;
    if (a->type != b->type)
        return false;
    switch (a->type) {
    case OFP_ACTION_OUTPUT:
        return as_output(*a).port == as_output(*b).port;
    case OFP_ACTION_GROUP:
        return as_group(*a).group_id == as_group(*b).group_id;
    case OFP_ACTION_EXPERIMENTER:
        return same_experimenter(as_experimenter(*a), as_experimenter(*b));
    default:
        return a->size == b->size && bytes_of(a, a->size) == bytes_of(b, b->size);
    }
}

} // namespace

bool same_rule(const OfpFlowItem &a, const OfpFlowItem &b)
{
    if (a.priority != b.priority || !same_experimenters(a.match, b.match))
        return false;
    return std::all_of(all_fields().begin(), all_fields().end(), [&](const Field &field) {
        const bool in_a = takes_part(a.match, field);
        return in_a == takes_part(b.match, field) && (!in_a || same_value(a.match, b.match, field));
    });
}

std::size_t rule_hash(const OfpFlowItem &item)
{
    Hash hash;
    hash.add(uint64_t{item.priority});
    for (const Field &field : all_fields()) {
        if (takes_part(item.match, field))
            add_field(hash, item.match, field);
    }
    for (const OfpExpMatchItem *experimenter : experimenters(item.match)) {
        hash.add(uint64_t{experimenter->type});
        hash.add(bytes_of(experimenter->data, experimenter->length));
    }
    return hash.value();
}

bool same_actions(const OfpFlowItem &a, const OfpFlowItem &b)
{
    const uint32_t count = a.actions == nullptr ? 0 : a.action_count;
    if (count != (b.actions == nullptr ? 0 : b.action_count))
        return false;
    return count == 0 || std::equal(a.actions, a.actions + count, b.actions, same_action);
}

} // namespace ofpctl
