#include "daemon/options.h"

#include <cstdio>
#include <vector>

#include <CLI/CLI.hpp>

#include "daemon/log.h"
#include "ofp/host.h"
#include "switch/switch.h"

namespace agent {

namespace {

constexpr int WRONG_USAGE = 2;

constexpr const char *START_UP_OPTIONS =
    "Start-up options of the switch, as --Name=VALUE, decimal or 0x hexadecimal:\n"
    "  --ACLMaxFlowEntry           most rules of a flow table (1048576)\n"
    "  --ACLTableNum --MacIPTable --MplsTable --EMTableNum --QinQTable --Classification\n"
    "  --ResvAclRes --TDEnable --NormalFwdVlan --ProSlow --SmartGroup --TTPEnable\n"
    "  --Ipv6Enhanced              taken for the hardware they describe; no effect in memory\n"
    "\n"
    "Signals: SIGTERM and SIGINT end the agent, SIGHUP opens its log file again.\n"
    "Environment: OFP_RUNTIME_DIR (socket, lock and log), OFP_HOST_CONFIG (the switch).\n";

int wrong(const char *what)
{
    std::fprintf(stderr, "ofp-agent: %s\n", what);
    return WRONG_USAGE;
}

// The library knows the start-up options; they are what is left when ours are taken out.
int parse_start_up(char *program, std::vector<std::string> arguments, OfpDaemonParam &param)
{
    std::vector<char *> argv{program};
    for (std::string &argument : arguments) {
        argv.push_back(argument.data());
    }
    int argc = static_cast<int>(argv.size());
    argv.push_back(nullptr);
    param.ACLMaxFlowEntry = SwitchLimits{}.rules_per_table;
    if (OFP_util_ParseArg(&argc, argv.data(), &param) != 0) {
        return wrong(HOST_LastError());
    }
    return param.ACLMaxFlowEntry > 0 ? 0 : wrong("--ACLMaxFlowEntry must be at least 1");
}

} // namespace

Parsed parse_options(int argc, char **argv, Options &options)
{
    CLI::App app("The development agent of an OpenFlow switch, its switch held in memory.",
                 "ofp-agent");
    app.footer(START_UP_OPTIONS);
    app.allow_extras();
    app.set_version_flag("--version", "ofp-agent " OFP_AGENT_VERSION);
    auto *const node = app.add_option("--node", options.node, "Node that the agent serves")
                           ->type_name("N")
                           ->default_str("the system master");
    app.add_option("--ready-fd", options.ready_fd,
                   "Descriptor that takes \"ready\" once the agent listens, or why it does not")
        ->type_name("FD");
    app.add_flag("--foreground", options.foreground,
                 "Stay attached to the terminal and log to standard error");
    app.add_option("--log-level", options.log_level, "trace, debug, info, warning or error")
        ->type_name("LEVEL")
        ->capture_default_str();
    app.add_option("--log-file", options.log_file, "Log file")
        ->type_name("FILE")
        ->default_str("agent.log in the runtime directory");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return {false, app.exit(error) == 0 ? 0 : WRONG_USAGE};
    }
    if (!log::set_level(options.log_level)) {
        return {false, wrong("--log-level is trace, debug, info, warning or error")};
    }
    if (node->empty()) {
        options.node = DEV_GetSystemMaster();
    }
    const int status = parse_start_up(argv[0], app.remaining(), options.param);
    return {status == 0, status};
}

} // namespace agent
