#include "flow/flow_json.h"

#include <algorithm>
#include <deque>

#include <fmt/format.h>

#include "flow/action_text.h"
#include "flow/experimenter_text.h"
#include "flow/field_table.h"
#include "flow/json_tree.h"
#include "flow/line_parser.h"
#include "flow/match_text.h"
#include "flow/nearest.h"
#include "flow/number_text.h"

namespace ofpctl {
namespace {

using Kind = JsonValue::Kind;

// ---- From JSON: each member becomes the option that a line of text has in its place ----

class ObjectReader {
public:
    ObjectReader(std::string_view text, FlowDraft &draft, Problem &problem)
        : text_(text), problem_(problem), rule_(draft, problem)
    {
        draft.clear();
    }

    // The object stands at place, a part of the text.
    bool read(const JsonValue &object, std::string_view place, ParseMode mode);

private:
    bool read_member(const JsonMember &member);
    bool read_match(const JsonValue &match);
    bool read_option(const JsonMember &member);
    bool read_experimenters(const JsonValue &list);
    bool read_actions(const JsonMember &actions);
    bool append_action(std::string &out, const JsonMember &element);
    bool option_text(const JsonMember &member, OptionText &option);
    bool at(const JsonMember &member, bool good);
    bool report(const JsonMember &member, std::string what, std::string right = {});
    std::string_view place_of(const JsonMember &member) const;

    std::string_view text_;
    Problem &problem_;
    RuleReader rule_;
    std::deque<std::string> values_;       // that options point into
    std::vector<const JsonMember *> seen_; // whose names options point into
};

bool is_scalar(const JsonValue &value)
{
    return value.kind == Kind::number || value.kind == Kind::string;
}

// "a:b:c" of an array; false when an element is no number or string.
bool join(const JsonValue &list, std::string &out)
{
    for (const JsonMember &element : list.members) {
        if (!is_scalar(element.value))
            return false;
        if (!out.empty())
            out += ':';
        out += element.value.text;
    }
    return true;
}

std::string_view ObjectReader::place_of(const JsonMember &member) const
{
    const std::size_t length = member.name.empty() ? 1 : member.name.size() + 2;
    return text_.substr(std::min(member.offset, text_.size()), length);
}

bool ObjectReader::report(const JsonMember &member, std::string what, std::string right)
{
    return problem_.report(place_of(member), std::move(what), std::move(right));
}

// The problem of an option lies where its member stands.
bool ObjectReader::at(const JsonMember &member, bool good)
{
    if (!good)
        problem_.where = place_of(member);
    return good;
}

bool ObjectReader::option_text(const JsonMember &member, OptionText &option)
{
    option = {member.name, member.value.text, true};
    seen_.push_back(&member);
    switch (member.value.kind) {
    case Kind::boolean:
        option.has_value = false;
        return member.value.text == "true" ||
               report(member, fmt::format("{} cannot be false", member.name), "leave it out");
    case Kind::number:
        return true;
    case Kind::string:
        if (member.name == "string") {
            append_quoted(values_.emplace_back(), member.value.text);
            option.value = values_.back();
        }
        return true;
    case Kind::array:
        values_.emplace_back();
        option.value = values_.back();
        if (!join(member.value, values_.back()))
            break;
        option.value = values_.back();
        return true;
    default:
        break;
    }
    return report(member, fmt::format("{} is no number or string", member.name));
}

bool ObjectReader::read_option(const JsonMember &member)
{
    OptionText option;
    return option_text(member, option) && at(member, rule_.read_match(option));
}

bool ObjectReader::read_experimenters(const JsonValue &list)
{
    return std::all_of(list.members.begin(), list.members.end(), [this](const JsonMember &element) {
        if (element.value.kind != Kind::object || element.value.members.size() != 1)
            return report(element, "an experimenter match is no object of one member",
                          "write {\"NAME\": VALUE}");
        return read_option(element.value.members[0]);
    });
}

bool ObjectReader::read_match(const JsonValue &match)
{
    return std::all_of(
        match.members.begin(), match.members.end(), [this](const JsonMember &member) {
            if (member.name != "experimenter")
                return read_option(member);
            return member.value.kind == Kind::array ? read_experimenters(member.value)
                                                    : report(member, "experimenter is no array");
        });
}

// {"output": 2} as "output:2".
bool ObjectReader::append_action(std::string &out, const JsonMember &element)
{
    const JsonValue &object = element.value;
    if (object.kind != Kind::object || object.members.size() != 1)
        return report(element, "an action is no object of one member",
                      "write {\"output\": PORT} or {\"group\": ID}");
    const JsonMember &action = object.members[0];
    OptionText option;
    if (!option_text(action, option))
        return false;
    if (!option.has_value || option.value.empty() ||
        option.value.find_first_of(", \t\r\n()") != option.value.npos ||
        option.name.find_first_of(", \t\r\n:=") != option.name.npos)
        return report(action, fmt::format("'{}' is no {}", option.value, action.name));
    out = fmt::format("{}:{}", option.name, option.value);
    return true;
}

bool ObjectReader::read_actions(const JsonMember &actions)
{
    if (actions.value.kind != Kind::array)
        return report(actions, "actions is no array", "write [{\"output\": PORT}], or [] for drop");
    rule_.begin_actions();
    for (const JsonMember &element : actions.value.members) {
        std::string text;
        if (!append_action(text, element))
            return false;
        if (!at(element.value.members[0], rule_.add_actions(text)))
            return false;
    }
    return true;
}

bool ObjectReader::read_member(const JsonMember &member)
{
    if (member.name == "match")
        return member.value.kind == Kind::object ? read_match(member.value)
                                                 : report(member, "match is no object");
    if (member.name == "actions")
        return read_actions(member);
    if (member.name == "table" || member.name == "priority") {
        OptionText option;
        return option_text(member, option) && at(member, rule_.read(option));
    }
    Nearest nearest(member.name);
    for (const std::string_view name : {"table", "priority", "match", "actions"})
        nearest.offer(name);
    return report(member, fmt::format("unknown member '{}'", member.name),
                  nearest.word().empty() ? std::string("expected table, priority, match or actions")
                                         : fmt::format("did you mean {}?", nearest.word()));
}

bool ObjectReader::read(const JsonValue &object, std::string_view place, ParseMode mode)
{
    if (object.kind != Kind::object)
        return problem_.report(place, "a rule is no object",
                               "write {\"match\": {...}, \"actions\": [...]}");
    for (const JsonMember &member : object.members) {
        if (!read_member(member))
            return false;
    }
    if (rule_.finish(place, mode))
        return true;
    const auto owner = std::find_if(seen_.begin(), seen_.end(), [this](const JsonMember *member) {
        return member->name.data() == problem_.where.data();
    });
    problem_.where = owner == seen_.end() ? place : place_of(**owner);
    return false;
}

// ---- To JSON ----

bool is_plain_number(const Field &field, const OfpFRMatch &match)
{
    const bool number = field.form == Form::decimal || field.form == Form::dscp ||
                        (field.form == Form::port && field.access.value(match).low <= 0xffffff00);
    return number && effective_mask(match, field) == ones(field.width);
}

void append_interface_array(std::string &out, const OfpFRMatch &match)
{
    out += '[';
    for (uint32_t i = 0; match.batch_if.if_index != nullptr && i < match.batch_if.count; ++i) {
        out += i == 0 ? "" : ",";
        append_decimal(out, match.batch_if.if_index[i]);
    }
    out += ']';
}

void append_field_json(std::string &out, const OfpFRMatch &match, const Field &field)
{
    append_json_string(out, field.standard);
    out += ':';
    if (field.form == Form::interfaces)
        return append_interface_array(out, match);
    if (field.form != Form::words && is_plain_number(field, match))
        return append_decimal(out, effective_value(match, field).low);
    std::string value;
    append_field_value(value, match, field);
    append_json_string(out, value);
}

void append_experimenter_json(std::string &out, const OfpExpMatchItem &item)
{
    std::string name;
    std::string value;
    const auto text = experimenter_string(item);
    const bool printable = text && std::all_of(text->begin(), text->end(),
                                               [](char c) { return c >= ' ' && c <= '~'; });
    if (text && !printable) {
        name = fmt::format("exp({})", item.type);
        append_experimenter_data(value, item);
    } else {
        append_experimenter_name(name, item);
        if (!text)
            append_experimenter_value(value, item);
    }
    out += '{';
    append_json_string(out, name);
    out += ':';
    append_json_string(out, printable ? *text : value);
    out += '}';
}

void append_match_json(std::string &out, const OfpFRMatch &match)
{
    const auto next = [&out] { out += out.back() == '{' || out.back() == '[' ? "" : ","; };
    out += '{';
    for (const Field &field : all_fields()) {
        if (!takes_part(match, field))
            continue;
        next();
        append_field_json(out, match, field);
    }
    if (const auto items = experimenters(match); !items.empty()) {
        next();
        out += "\"experimenter\":[";
        for (const OfpExpMatchItem *item : items) {
            next();
            append_experimenter_json(out, *item);
        }
        out += ']';
    }
    out += '}';
}

void append_action_json(std::string &out, const OfpAction &action)
{
    std::string text;
    ofpctl::append_action(text, action);
    const auto colon = text.find(':');
    const auto value =
        colon == text.npos ? std::string_view(text) : std::string_view(text).substr(colon + 1);
    const bool number = value.find_first_not_of("0123456789") == value.npos;
    out += '{';
    append_json_string(out, colon == text.npos ? "output" : text.substr(0, colon));
    out += ':';
    if (number)
        out += value;
    else
        append_json_string(out, value);
    out += '}';
}

// The line of places in a text that are asked for in ascending order.
class LineCounter {
public:
    LineCounter(std::string_view text, uint32_t first) : text_(text), line_(first) {}

    uint32_t line_of(std::size_t offset)
    {
        if (line_ == 0)
            return 0;
        const auto passed = text_.substr(counted_, offset - counted_);
        line_ += static_cast<uint32_t>(std::count(passed.begin(), passed.end(), '\n'));
        counted_ = offset;
        return line_;
    }

private:
    std::string_view text_;
    std::size_t counted_ = 0;
    uint32_t line_;
};

// The member of that name, or the value itself.
const JsonValue &inner(const JsonValue &value, std::string_view name)
{
    const auto member = std::find_if(value.members.begin(), value.members.end(),
                                     [name](const JsonMember &m) { return m.name == name; });
    return member == value.members.end() ? value : member->value;
}

std::size_t first_place(std::string_view text)
{
    return std::min(text.find_first_not_of(" \t\r\n"), text.size());
}

} // namespace

FlowResult parse_flow_json(std::string_view object, ParseMode mode)
{
    FlowDraft draft;
    Problem problem;
    JsonValue value;
    if (!parse_json(object, value, problem) ||
        !ObjectReader(object, draft, problem)
             .read(value, object.substr(first_place(object), 1), mode))
        return to_error(object, std::move(problem));
    return Flow{draft.make(), draft.table};
}

std::vector<TextError> parse_flows_json(std::string_view document, ParseMode mode,
                                        std::size_t most_errors, FlowSet &flows,
                                        uint32_t first_line)
{
    JsonValue root;
    Problem problem;
    if (!parse_json(document, root, problem))
        return {to_error(document, std::move(problem))};
    std::vector<TextError> errors;
    FlowDraft draft;
    LineCounter lines(document, first_line);
    const auto add = [&](const JsonValue &object, std::size_t offset) {
        const auto place = document.substr(offset, 1);
        if (ObjectReader(document, draft, problem).read(inner(object, "rule"), place, mode))
            flows.add(draft.make(), lines.line_of(offset));
        else
            errors.push_back(to_error(document, std::move(problem)));
    };
    const JsonValue &list = inner(root, "rules");
    if (list.kind != Kind::array)
        add(list, first_place(document));
    for (const JsonMember &element : list.members) {
        if (list.kind != Kind::array || errors.size() >= most_errors)
            break;
        add(element.value, element.offset);
    }
    return errors;
}

std::string flow_to_json(const OfpFlowItem &item, uint8_t table)
{
    std::string out = fmt::format(R"({{"table":{},"priority":{},"match":)", table, item.priority);
    append_match_json(out, item.match);
    out += ",\"actions\":[";
    for (uint32_t i = 0; item.actions != nullptr && i < item.action_count; ++i) {
        if (item.actions[i] == nullptr)
            continue;
        out += out.back() == '[' ? "" : ",";
        append_action_json(out, *item.actions[i]);
    }
    out += "]}";
    return out;
}

} // namespace ofpctl
