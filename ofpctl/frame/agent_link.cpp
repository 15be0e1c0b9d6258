#include "frame/agent_link.h"

#include <cerrno>

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "frame/interrupt.h"
#include "frame/patience.h"
#include "ofp.h"
#include "ofp/host.h"

namespace ofpctl {

namespace {

constexpr std::size_t path_room = 256;

constexpr std::string_view not_running =
    "the agent is not running; start it with: ofpctl agent start";

int32_t known_agent = 0;

int32_t running_agent()
{
    const int32_t pid = HOST_GetAgentPid(DEV_GetSystemMaster());
    if (pid < 0)
        throw host_failure(errno);
    return pid;
}

bool denied(int error) { return error == EACCES || error == EPERM; }

Failure no_agent(std::string message)
{
    return {.status = status_no_agent,
            .code = static_cast<uint32_t>(OFP_RC_DAEMON_DOWN),
            .message = std::move(message)};
}

void require_own_socket()
{
    char path[path_room];
    if (HOST_GetSocketPath(DEV_GetSystemMaster(), path, sizeof path) != 0)
        throw host_failure(errno);
    struct stat about {};
    if (stat(path, &about) == 0 && about.st_uid != geteuid())
        throw Failure{.status = status_denied,
                      .message = fmt::format("{}: belongs to user {}, and the agent serves only "
                                             "the user it runs as; run ofpctl as that user",
                                             path, about.st_uid)};
    if (access(path, R_OK | W_OK) != 0 && denied(errno))
        throw Failure{
            .status = status_denied,
            .message = fmt::format("{}: permission denied; ofpctl agent doctor says more", path)};
}

} // namespace

Failure host_failure(int error)
{
    std::string message = HOST_LastError();
    if (message.empty())
        message = "the platform failed without saying why";
    return {.status = denied(error) ? status_denied : status_failed, .message = std::move(message)};
}

void require_agent()
{
    if (OFP_util_IsDaemonStart() != 1) {
        const int32_t pid = running_agent();
        throw no_agent(pid == 0 ? std::string(not_running)
                                : fmt::format("the agent (process {}) does not listen yet", pid));
    }
    require_own_socket();
    known_agent = running_agent();
    forget_waits();
}

void require_same_agent()
{
    const int32_t now = running_agent();
    if (now == 0)
        throw no_agent(fmt::format("the agent (process {}) went away", known_agent));
    if (now != known_agent)
        throw Failure{.message = fmt::format("the agent was restarted (process {} is now {}): what "
                                             "was programmed before is gone",
                                             known_agent, now)};
}

Failure call_failure(uint32_t code, std::string_view doing)
{
    if (last_wait() == Wait::interrupted)
        return interrupted(pending_signal(), fmt::format("{}: interrupted", doing));
    if (code == static_cast<uint32_t>(OFP_RC_DAEMON_DOWN))
        return no_agent(fmt::format("{}: {}", doing, not_running));
    if (last_wait() == Wait::timed_out)
        return {.status = status_no_reply,
                .code = static_cast<uint32_t>(OFP_RC_NO_REPLY),
                .message = fmt::format("{}: the agent did not answer within {} seconds", doing,
                                       patience())};
    if (OFP_util_IsDaemonStart() != 1)
        return no_agent(fmt::format("{}: the agent went away; {}", doing, not_running));
    if (last_wait() == Wait::hung_up || code == static_cast<uint32_t>(OFP_RC_NO_REPLY))
        return {.status = status_no_reply,
                .code = static_cast<uint32_t>(OFP_RC_NO_REPLY),
                .message = fmt::format("{}: the agent closed the connection without an answer; its "
                                       "log says why",
                                       doing)};
    return {.status = status_of(code),
            .code = code,
            .message = fmt::format("{}: {}", doing, result_sentence(code))};
}

void require_success(uint32_t code, std::string_view doing)
{
    if (code != 0)
        throw call_failure(code, doing);
}

} // namespace ofpctl
