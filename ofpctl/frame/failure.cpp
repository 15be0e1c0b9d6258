#include "frame/failure.h"

#include <utility>

#include <fmt/format.h>

#include "daemon/result_codes.h"
#include "ofp/result.h"

namespace ofpctl {

namespace {

struct Result {
    uint32_t code;
    std::string_view name;
    std::string_view sentence;
};

constexpr Result results[] = {
#define OFP_ROW(name, code, text) {code, #name, text},
    OFP_RESULT_CODES(OFP_ROW)
#undef OFP_ROW
#define OFP_ROW(name, code, text) {code, "AGENT_" #name, text},
        OFP_AGENT_RESULT_CODES(OFP_ROW)
#undef OFP_ROW
};

const Result *find_result(uint32_t code)
{
    for (const Result &result : results) {
        if (result.code == code)
            return &result;
    }
    return nullptr;
}

} // namespace

Failure usage_failure(std::string message)
{
    return {.status = status_usage, .message = std::move(message)};
}

Failure interrupted(int signal, std::string message)
{
    return {.status = status_interrupted + signal, .message = std::move(message)};
}

std::string_view result_name(uint32_t code)
{
    const Result *result = find_result(code);
    return result ? result->name : std::string_view{};
}

std::string result_sentence(uint32_t code)
{
    if (const Result *result = find_result(code))
        return std::string(result->sentence);
    return fmt::format("the agent answered with code {}", result_number(code));
}

std::string result_number(uint32_t code) { return fmt::format("0x{:08x}", code); }

int status_of(uint32_t code)
{
    switch (code) {
    case static_cast<uint32_t>(OFP_RC_NOT_FOUND):
    case agent::NO_INSTANCE:
    case agent::NO_TABLE:
    case agent::NO_RULE:
    case agent::NO_GROUP:
    case agent::NO_APPLICATION:
    case agent::NOT_PRESENT:
    case agent::NO_METER:
    case agent::NO_CONTROLLER:
    case agent::NO_AUXILIARY:
    case agent::NO_PORT:
    case agent::NOT_BOUND:
        return status_missing;
    case agent::OTHER_USER:
        return status_denied;
    case static_cast<uint32_t>(OFP_RC_DAEMON_DOWN):
        return status_no_agent;
    case static_cast<uint32_t>(OFP_RC_NO_REPLY):
        return status_no_reply;
    default:
        return status_failed;
    }
}

std::string_view failure_name(const Failure &failure)
{
    if (failure.code != 0) {
        const std::string_view name = result_name(failure.code);
        return name.empty() ? "UNKNOWN" : name;
    }
    switch (failure.status) {
    case status_usage:
        return "USAGE";
    case status_no_agent:
        return "NO_AGENT";
    case status_no_reply:
        return "NO_REPLY";
    case status_missing:
        return "MISSING";
    case status_partly:
        return "PARTLY_REFUSED";
    case status_denied:
        return "DENIED";
    default:
        return failure.status > status_interrupted ? "INTERRUPTED" : "FAILED";
    }
}

} // namespace ofpctl
