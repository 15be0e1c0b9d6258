#include "daemon/log.h"

#include <chrono>
#include <memory>

#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>

namespace agent::log {

namespace {

constexpr size_t FILE_SIZE = size_t{5} * 1024 * 1024;
constexpr size_t OLDER_FILES = 2;

constexpr double REFUSALS_AT_ONCE = 20;
constexpr double REFUSALS_PER_SECOND = 2;

std::shared_ptr<spdlog::logger> logger;
std::string file;
spdlog::level::level_enum threshold = spdlog::level::info;

spdlog::level::level_enum level_of(Level level)
{
    constexpr spdlog::level::level_enum LEVELS[] = {spdlog::level::trace, spdlog::level::debug,
                                                    spdlog::level::info, spdlog::level::warn,
                                                    spdlog::level::err};
    return LEVELS[static_cast<size_t>(level)];
}

void use(spdlog::sink_ptr sink)
{
    auto fresh = std::make_shared<spdlog::logger>("ofp-agent", std::move(sink));
    fresh->set_pattern("%Y-%m-%dT%H:%M:%S.%e %l [%P] %v");
    fresh->set_level(threshold);
    fresh->flush_on(spdlog::level::info);
    logger = std::move(fresh);
}

// Refusals that may still be logged: refilled by time, spent by lines.
struct Allowance {
    std::chrono::steady_clock::time_point at = std::chrono::steady_clock::now();
    double lines = REFUSALS_AT_ONCE;
    uint64_t unlogged = 0;
};

} // namespace

bool open_file(const std::string &path)
{
    try {
        use(std::make_shared<spdlog::sinks::rotating_file_sink_st>(path, FILE_SIZE, OLDER_FILES));
        file = path;
        return true;
    } catch (const std::exception &) {
        return false;
    }
}

void open_stderr() { use(std::make_shared<spdlog::sinks::stderr_sink_st>()); }

void reopen()
{
    if (!file.empty() && !open_file(file)) {
        error("the log file {} cannot be opened again", file);
    }
}

bool set_level(std::string_view word)
{
    for (const auto level : {spdlog::level::trace, spdlog::level::debug, spdlog::level::info,
                             spdlog::level::warn, spdlog::level::err}) {
        const auto name = spdlog::level::to_string_view(level);
        if (word == std::string_view(name.data(), name.size())) {
            threshold = level;
            if (logger) {
                logger->set_level(level);
            }
            return true;
        }
    }
    return false;
}

bool enabled(Level level) { return logger && logger->should_log(level_of(level)); }

void write(Level level, std::string_view line) noexcept
{
    if (logger) {
        logger->log(level_of(level), spdlog::string_view_t(line.data(), line.size()));
    }
}

bool admit_refusal(uint64_t *unlogged) noexcept
{
    static Allowance allowance;
    const auto now = std::chrono::steady_clock::now();
    const std::chrono::duration<double> passed = now - allowance.at;
    allowance.at = now;
    allowance.lines += passed.count() * REFUSALS_PER_SECOND;
    allowance.lines = allowance.lines > REFUSALS_AT_ONCE ? REFUSALS_AT_ONCE : allowance.lines;
    if (allowance.lines < 1) {
        ++allowance.unlogged;
        return false;
    }
    allowance.lines -= 1;
    *unlogged = allowance.unlogged;
    allowance.unlogged = 0;
    return true;
}

} // namespace agent::log
