#include "verbs/doctor.h"

#include <cerrno>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "flow/flow_text.h"
#include "frame/context.h"
#include "frame/help.h"
#include "frame/patience.h"
#include "frame/process.h"
#include "ofp.h"
#include "ofp/host.h"
#include "verbs/agent_log.h"

namespace ofpctl {

namespace {

constexpr std::size_t path_room = 4096;
constexpr int version_patience = 5; // seconds
constexpr uint16_t first_client = 4096;

struct Finding {
    std::string_view subject;
    bool well = true;
    std::string what;
    std::string remedy; // empty when well
};

Finding well(std::string_view subject, std::string what) { return {subject, true, what, {}}; }

Finding problem(std::string_view subject, std::string what, std::string remedy)
{
    return {subject, false, what, remedy};
}

Finding runtime_directory()
{
    constexpr std::string_view subject = "runtime directory";
    char path[path_room];
    if (HOST_GetRuntimeDir(path, sizeof path, 0) != 0)
        return problem(subject, HOST_LastError(),
                       "set OFP_RUNTIME_DIR to a directory of your own with mode 0700");
    if (access(path, F_OK) != 0)
        return well(subject, fmt::format("{}, made by the first start", path));
    if (access(path, W_OK | X_OK) != 0)
        return problem(subject, fmt::format("{}: no permission to write", path),
                       "run as the user it belongs to");
    return well(subject, path);
}

Finding described_switch()
{
    constexpr std::string_view subject = "described switch";
    const HostConfig *config = HOST_GetConfig();
    if (!config)
        return problem(subject, HOST_LastError(),
                       "mend the file that OFP_HOST_CONFIG names, or unset it");
    return well(subject, *config->path ? config->path : "the built-in one");
}

Finding agent_program()
{
    constexpr std::string_view subject = "agent program";
    char path[path_room];
    if (HOST_GetAgentProgram(path, sizeof path) != 0)
        return problem(subject, HOST_LastError(),
                       "install ofp-agent, or name it: export OFP_AGENT=/path/to/ofp-agent");
    return well(subject, path);
}

Finding agent_version()
{
    constexpr std::string_view subject = "agent version";
    char path[path_room];
    if (HOST_GetAgentProgram(path, sizeof path) != 0)
        return well(subject, "not asked for: there is no program");
    const std::optional<std::string> text = program_output({path, "--version"}, version_patience);
    if (!text || text->empty())
        return problem(subject, fmt::format("{} --version says nothing", path),
                       "is it an ofp-agent? OFP_AGENT may name a wrong file");
    const std::string version = text->substr(0, text->find('\n'));
    const std::string own(program_version());
    if (!version.ends_with(own))
        return problem(subject, fmt::format("{}, and this is ofpctl {}", version, own),
                       "install agent and ofpctl of one version");
    return well(subject, version);
}

int32_t agent_pid() { return HOST_GetAgentPid(DEV_GetSystemMaster()); }

Finding agent_process()
{
    constexpr std::string_view subject = "agent process";
    const int32_t pid = agent_pid();
    if (pid < 0)
        return problem(subject, HOST_LastError(), "see above");
    if (pid == 0)
        return problem(subject, "not running" + last_log_line(DEV_GetSystemMaster()),
                       "ofpctl agent start");
    if (OFP_util_IsDaemonStart() != 1)
        return problem(subject, fmt::format("process {} holds the lock and does not listen", pid),
                       fmt::format("wait, or end it: kill {}", pid));
    return well(subject, fmt::format("process {}", pid));
}

Finding agent_socket()
{
    constexpr std::string_view subject = "socket";
    char path[path_room];
    if (HOST_GetSocketPath(DEV_GetSystemMaster(), path, sizeof path) != 0)
        return problem(subject, HOST_LastError(), "see above");
    struct stat about {};
    const bool there = stat(path, &about) == 0;
    const bool running = agent_pid() > 0;
    if (there && !S_ISSOCK(about.st_mode))
        return problem(subject, fmt::format("{} is no socket", path), "remove it");
    if (there && about.st_uid != geteuid())
        return problem(subject, fmt::format("{} belongs to user {}", path, about.st_uid),
                       "the agent serves only the user it runs as: run ofpctl as that user");
    if (running && !there)
        return problem(subject, fmt::format("{} was removed while the agent runs", path),
                       "ofpctl agent stop, then ofpctl agent start");
    if (!running && there)
        return well(subject, fmt::format("{}, left over; the next start replaces it", path));
    return well(subject, there ? path : fmt::format("{}, made by the start", path));
}

Finding answer()
{
    constexpr std::string_view subject = "answer";
    if (OFP_util_IsDaemonStart() != 1)
        return well(subject, "not asked for: no agent listens");
    uint64_t code = 0;
    const int32_t channel = OFP_plgn_Connect(patience(), &code);
    if (channel < 0)
        return problem(
            subject, fmt::format("no connection: {}", result_sentence(static_cast<uint32_t>(code))),
            "ofpctl agent stop, then ofpctl agent start");
    OFP_plgn_Close(channel);
    // Any answer will do, a refusal too.
    OfpTableInfo table{};
    forget_waits();
    OFP_get_TableInfo(first_client, flow_table, &table);
    if (last_wait() != Wait::answered)
        return problem(subject, "the agent takes connections and answers nothing",
                       "its log may say why; ofpctl agent stop, then ofpctl agent start");
    return well(subject, "the agent answers");
}

void print_text(Output &out, const std::vector<Finding> &findings)
{
    for (const Finding &finding : findings) {
        out.line(fmt::format("{:<8} {:<18} {}", finding.well ? "ok" : "PROBLEM", finding.subject,
                             finding.what));
        if (!finding.well)
            out.line(fmt::format("{:<8} {:<18} -> {}", "", "", finding.remedy));
    }
}

void print_json(JsonWriter &json, const std::vector<Finding> &findings)
{
    json.begin_array("checks");
    for (const Finding &finding : findings) {
        json.begin_object();
        json.text("subject", finding.subject);
        json.flag("well", finding.well);
        json.text("finding", finding.what);
        if (!finding.well)
            json.text("remedy", finding.remedy);
        json.end();
    }
    json.end();
}

} // namespace

void agent_doctor(Context &context)
{
    constexpr Finding (*checks[])() = {
        runtime_directory, described_switch, agent_program, agent_version,
        agent_process,     agent_socket,     answer};
    std::vector<Finding> findings;
    std::size_t problems = 0;
    for (const auto check : checks) {
        findings.push_back(check());
        problems += findings.back().well ? 0U : 1U;
    }
    if (context.out.json())
        print_json(context.out.document(), findings);
    else
        print_text(context.out, findings);
    if (problems > 0)
        context.status = status_failed;
}

} // namespace ofpctl
