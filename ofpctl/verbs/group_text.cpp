#include "verbs/group_text.h"

#include <algorithm>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "flow/nearest.h"
#include "flow/number_text.h"
#include "flow/port_text.h"
#include "flow/problem.h"

namespace ofpctl {

namespace {

constexpr std::string_view example = "group_id=7,type=all,bucket=output:1,bucket=output:2";
constexpr std::string_view bucket_begin = "bucket=";

struct TypeName {
    std::string_view name;
    GroupType type;
};
constexpr TypeName type_names[] = {
    {"all", GroupType::all},
    {"ff", GroupType::fast_failover},
    {"fast_failover", GroupType::fast_failover},
};

std::string_view trim(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return text.substr(0, 0);
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// The part before the separator; text becomes what follows it.
std::string_view take_part(std::string_view &text, std::string_view separator)
{
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(std::min(end + separator.size(), text.size()));
    return part;
}

class Parser {
public:
    explicit Parser(std::string_view line) : line_(line) {}

    std::variant<Group, TextError> parse()
    {
        std::string_view rest = line_;
        std::string_view head = rest.substr(0, std::min(rest.find(bucket_begin), rest.size()));
        rest.remove_prefix(head.size());
        if (trim(head).ends_with(','))
            head = head.substr(0, head.rfind(','));
        if (parse_head(head) && parse_buckets(rest) && check(line_))
            return group_;
        return error();
    }

private:
    bool parse_head(std::string_view head)
    {
        while (!trim(head).empty()) {
            const std::string_view item = trim(take_part(head, ","));
            std::string_view value = item;
            const std::string_view key = trim(take_part(value, "="));
            if (!parse_member(item, key, trim(value)))
                return false;
        }
        return true;
    }

    bool parse_member(std::string_view item, std::string_view key, std::string_view value)
    {
        if (key == "group_id") {
            uint64_t id = 0;
            has_id_ = parse_number(key, value, last_group, id, problem_);
            group_.id = static_cast<uint32_t>(id);
            return has_id_;
        }
        if (key == "type")
            return parse_type(item, value);
        Nearest near(key);
        for (const std::string_view known : {"group_id", "type", "bucket"})
            near.offer(known);
        return problem_.report(key.empty() ? item : key,
                               fmt::format("'{}' is nothing that a group has", key),
                               near.word().empty() ? "expected group_id, type or bucket"
                                                   : fmt::format("did you mean {}?", near.word()));
    }

    bool parse_type(std::string_view item, std::string_view value)
    {
        has_type_ = true;
        for (const TypeName &known : type_names) {
            if (known.name == value) {
                group_.type = known.type;
                return true;
            }
        }
        const bool foreign = value == "select" || value == "indirect";
        return problem_.report(
            value.empty() ? item : value,
            fmt::format("'{}' is no group type {}", value, foreign ? "of this switch" : "there is"),
            "expected all or ff (fast failover)");
    }

    bool parse_buckets(std::string_view rest)
    {
        while (!rest.empty()) {
            rest.remove_prefix(bucket_begin.size());
            const std::size_t next = std::min(rest.find(bucket_begin), rest.size());
            std::string_view bucket = trim(rest.substr(0, next));
            if (next < rest.size() && bucket.ends_with(','))
                bucket.remove_suffix(1);
            rest.remove_prefix(next);
            if (!parse_bucket(bucket))
                return false;
        }
        return true;
    }

    bool parse_bucket(std::string_view bucket)
    {
        const std::string_view whole = bucket;
        uint32_t output = port_any;
        uint32_t watched = port_any;
        while (!trim(bucket).empty()) {
            std::string_view item = trim(take_part(bucket, ","));
            if (item.starts_with("actions="))
                item.remove_prefix(std::string_view("actions=").size());
            if (!parse_bucket_item(item, output, watched))
                return false;
        }
        if (output == port_any)
            return problem_.report(whole, "the bucket outputs to no port", "expected output:PORT");
        if (watched != port_any && watched != output)
            return problem_.report(whole, "the bucket watches another port than it outputs to",
                                   "here a bucket always watches its own port");
        if (group_.ports.size() == most_buckets)
            return problem_.report(whole,
                                   fmt::format("a group has at most {} buckets", most_buckets));
        group_.ports.push_back(output);
        return true;
    }

    bool parse_bucket_item(std::string_view item, uint32_t &output, uint32_t &watched)
    {
        std::string_view value = item;
        const std::size_t separator = std::min(item.find_first_of(":="), item.size());
        const std::string_view key = item.substr(0, separator);
        value.remove_prefix(std::min(separator + 1, item.size()));
        uint32_t *const to = key == "output" ? &output : key == "watch_port" ? &watched : nullptr;
        if (!to)
            return problem_.report(item, fmt::format("'{}' is nothing that a bucket has", key),
                                   "a bucket is output:PORT");
        if (*to != port_any)
            return problem_.report(item, fmt::format("a second {} in one bucket", key),
                                   "begin another one with bucket=");
        return parse_port(key, value, *to, problem_) && check_port(value, *to);
    }

    bool check_port(std::string_view text, uint32_t port)
    {
        const bool number = port >= 1 && port <= last_port;
        const bool reserved = port >= port_in_port && port != port_table && port != port_any;
        if (number || reserved)
            return true;
        return problem_.report(
            text, fmt::format("'{}' is no port that a bucket outputs to", text),
            fmt::format("expected 1 to {}, or a reserved port such as FLOOD", last_port));
    }

    bool check(std::string_view line)
    {
        if (!has_id_)
            return problem_.report(line, "group_id is missing", fmt::format("as in {}", example));
        if (!has_type_)
            return problem_.report(line, "type is missing", "add type=all or type=ff");
        if (group_.ports.empty())
            return problem_.report(line, "the group has no bucket", "add bucket=output:PORT");
        return true;
    }

    TextError error()
    {
        const auto column = static_cast<std::size_t>(problem_.where.data() - line_.data());
        return {.column = column + 1,
                .length = problem_.where.size(),
                .message = std::move(problem_.message),
                .hint = std::move(problem_.hint)};
    }

    std::string_view line_;
    Group group_;
    bool has_id_ = false;
    bool has_type_ = false;
    Problem problem_;
};

} // namespace

std::variant<Group, TextError> parse_group(std::string_view line) { return Parser(line).parse(); }

} // namespace ofpctl
