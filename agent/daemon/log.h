// The agent's log. Lines are formatted with fmt; nothing here throws.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include <fmt/core.h>

namespace agent::log {

enum class Level : uint8_t { trace, debug, info, warning, error };

// Before any of these is called, lines are dropped.
// To a file of at most 5 MB that is followed by two older ones; false when it cannot be opened.
bool open_file(const std::string &path);
void open_stderr();
// Opens the file again, as after it was moved away.
void reopen();

// "trace", "debug", "info", "warning" or "error"; false for another word.
bool set_level(std::string_view word);
bool enabled(Level level);

void write(Level level, std::string_view line) noexcept;

// True while refusals come at a rate that a log can bear; then *unlogged is how many were not
// logged since the last one that was.
bool admit_refusal(uint64_t *unlogged) noexcept;

template <class... Args>
void print(Level level, fmt::format_string<Args...> format, Args &&...args) noexcept
{
    if (!enabled(level)) {
        return;
    }
    try {
        write(level, fmt::format(format, std::forward<Args>(args)...));
    } catch (...) {
        write(level, "a log line was lost for want of memory");
    }
}

template <class... Args>
void debug(fmt::format_string<Args...> format, Args &&...args) noexcept
{
    print(Level::debug, format, std::forward<Args>(args)...);
}

template <class... Args>
void info(fmt::format_string<Args...> format, Args &&...args) noexcept
{
    print(Level::info, format, std::forward<Args>(args)...);
}

template <class... Args>
void warning(fmt::format_string<Args...> format, Args &&...args) noexcept
{
    print(Level::warning, format, std::forward<Args>(args)...);
}

template <class... Args>
void error(fmt::format_string<Args...> format, Args &&...args) noexcept
{
    print(Level::error, format, std::forward<Args>(args)...);
}

// A refusal: a warning that a flood of refusals does not turn into a flood of lines.
template <class... Args>
void refusal(fmt::format_string<Args...> format, Args &&...args) noexcept
{
    uint64_t unlogged = 0;
    if (!admit_refusal(&unlogged)) {
        return;
    }
    if (unlogged > 0) {
        warning("{} refusals before this one were not logged", unlogged);
    }
    warning(format, std::forward<Args>(args)...);
}

} // namespace agent::log
