#include "daemon/options.h"

#include <charconv>
#include <filesystem>
#include <string_view>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "config/store.h"
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
    "Environment: OFP_RUNTIME_DIR (socket, lock, log, configuration), OFP_HOST_CONFIG (the\n"
    "switch).\n";

Parsed wrong(std::string why_not) { return {false, WRONG_USAGE, std::move(why_not)}; }

// Found before all else: what is wrong with the line is said there too.
int find_ready_fd(int argc, char **argv)
{
    constexpr std::string_view NAME = "--ready-fd";
    for (int i = 1; i < argc; ++i) {
        std::string_view value = argv[i];
        if (!value.starts_with(NAME)) {
            continue;
        }
        value.remove_prefix(NAME.size());
        if (value.empty() && i + 1 < argc) {
            value = argv[i + 1];
        } else if (value.starts_with('=')) {
            value.remove_prefix(1);
        }
        int fd = -1;
        std::from_chars(value.begin(), value.end(), fd);
        return fd;
    }
    return -1;
}

// The library knows the start-up options; they are what is left when ours are taken out.
Parsed parse_start_up(char *program, std::vector<std::string> arguments, OfpDaemonParam &param)
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
    if (param.ACLMaxFlowEntry == 0) {
        return wrong("--ACLMaxFlowEntry must be at least 1");
    }
    return {true, 0, {}};
}

} // namespace

Parsed parse_options(int argc, char **argv, Options &options)
{
    options.ready_fd = find_ready_fd(argc, argv);
    CLI::App app("The development agent of an OpenFlow switch, its switch held in memory.",
                 "ofp-agent");
    app.footer(START_UP_OPTIONS);
    app.allow_extras();
    app.set_version_flag("--version", "ofp-agent " OFP_AGENT_VERSION);
    auto *const node =
        app.add_option("--node", options.node, "Node that the agent serves (the system master)")
            ->type_name("N");
    app.add_option("--ready-fd", options.ready_fd,
                   "Descriptor that takes \"ready\" once the agent listens, or why it does not")
        ->type_name("FD");
    app.add_flag("--foreground", options.foreground,
                 "Stay attached to the terminal and log to standard error");
    app.add_option("--log-level", options.log_level, "trace, debug, info, warning or error (info)")
        ->type_name("LEVEL");
    app.add_option("--log-file", options.log_file, "Log file (agent.log in the runtime directory)")
        ->type_name("FILE");
    app.add_option(
           "--store", options.store,
           "The configuration's file (agent.db in the runtime directory); :memory: keeps it "
           "for this run only")
        ->type_name("FILE");
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success &asked) {
        return {false, app.exit(asked), {}};
    } catch (const CLI::ParseError &error) {
        return wrong(error.what());
    }
    if (!log::set_level(options.log_level)) {
        return wrong("--log-level is trace, debug, info, warning or error");
    }
    if (node->empty()) {
        options.node = DEV_GetSystemMaster();
    }
    for (std::string *const file : {&options.log_file, &options.store}) {
        if (!file->empty() && *file != STORE_IN_MEMORY) {
            *file = std::filesystem::absolute(*file); // the folder will change
        }
    }
    return parse_start_up(argv[0], app.remaining(), options.param);
}

} // namespace agent
