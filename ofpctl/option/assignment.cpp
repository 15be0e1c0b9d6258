#include "option/assignment.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "frame/failure.h"
#include "frame/words.h"

namespace ofpctl {

namespace {

Assignment parse_assignment(const std::string &word, const SettingRows &settings)
{
    const std::size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    const SettingRow *row = find_setting(settings, name);
    if (row == nullptr)
        throw usage_failure(fmt::format("{}: {}", name, unknown_setting(settings, name)));
    if (equals == word.npos)
        throw usage_failure(fmt::format("{}: a value is missing: {}={}", name, name,
                                        row->value.empty() ? accepted(*row) : row->value));
    auto parsed = parse_value(*row, std::string_view(word).substr(equals + 1));
    if (const auto *bad = std::get_if<BadValue>(&parsed))
        throw usage_failure(fmt::format("{}: {}", name, bad->what));
    return {row, std::get<Value>(std::move(parsed))};
}

} // namespace

std::vector<Assignment> parse_assignments(std::span<const std::string> words,
                                          const SettingRows &settings)
{
    std::vector<Assignment> assignments;
    for (const std::string &word : words) {
        Assignment next = parse_assignment(word, settings);
        const bool twice =
            std::any_of(assignments.begin(), assignments.end(),
                        [&](const Assignment &earlier) { return earlier.row == next.row; });
        if (twice)
            throw usage_failure(fmt::format("{} is set twice", next.row->name));
        assignments.push_back(std::move(next));
    }
    return assignments;
}

const SettingRow *find_setting(const SettingRows &settings, std::string_view name)
{
    const auto found = std::find_if(settings.begin(), settings.end(),
                                    [=](const SettingRow *row) { return row->name == name; });
    return found == settings.end() ? nullptr : *found;
}

std::string unknown_setting(const SettingRows &settings, std::string_view name)
{
    std::vector<std::string_view> names;
    for (const SettingRow *row : settings)
        names.push_back(row->name);
    return fmt::format("no such setting; {}", one_of(name, names));
}

} // namespace ofpctl
