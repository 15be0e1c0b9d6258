#include "daemon/daemon.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <memory>

#include <sys/resource.h>
#include <unistd.h>

#include <event2/event.h>

#include "channel/channels.h"
#include "daemon/log.h"
#include "daemon/server.h"
#include "ofp/host.h"

namespace agent {

namespace {

// A descriptor, closed with its scope.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor()
    {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    int get() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }

private:
    int fd_;
};

struct Free {
    void operator()(event_base *base) const { event_base_free(base); }
    void operator()(event *event) const { event_free(event); }
};
using Base = std::unique_ptr<event_base, Free>;
using Event = std::unique_ptr<event, Free>;

void on_end(int signal, short, void *base)
{
    log::info("ends on signal {}", signal);
    event_base_loopbreak(static_cast<event_base *>(base));
}

void on_reopen(int, short, void *)
{
    log::reopen();
    log::info("the log file was opened again");
}

void raise_descriptor_limit()
{
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

// A node of the switch that the host port describes.
bool is_described(uint16_t node, std::string &why_not)
{
    const HostConfig *const config = HOST_GetConfig();
    if (!config) {
        why_not = HOST_LastError();
        return false;
    }
    for (uint32_t i = 0; i < config->node_count; ++i) {
        if (config->nodes[i].id == node) {
            return true;
        }
    }
    why_not = fmt::format("the switch has no node {}", node);
    return false;
}

bool open_log(const Options &options, std::string &why_not)
{
    if (options.foreground && options.log_file.empty()) {
        log::open_stderr();
        return true;
    }
    char path[PATH_MAX];
    if (!options.log_file.empty()) {
        scnprintf(path, sizeof path, "%s", options.log_file.c_str());
    } else if (HOST_GetLogPath(options.node, path, sizeof path) != 0) {
        why_not = HOST_LastError();
        return false;
    }
    if (!log::open_file(path)) {
        why_not = std::string("the log file ") + path + " cannot be opened";
        return false;
    }
    return true;
}

// The path of the node's socket tells its others.
std::string store_path(const Options &options, std::string &why_not)
{
    if (!options.store.empty()) {
        return options.store;
    }
    char path[PATH_MAX];
    if (HOST_GetSocketPath(options.node, path, sizeof path) != 0) {
        why_not = HOST_LastError();
        return {};
    }
    return std::filesystem::path(path).replace_extension(".db");
}

// Empty, or why the configuration cannot be read.
std::string load_configuration(const Options &options, Configuration &configuration)
{
    std::string why_not;
    const std::string path = store_path(options, why_not);
    if (!why_not.empty()) {
        return why_not;
    }
    std::unique_ptr<Store> store = open_store(path, why_not);
    if (!store) {
        return why_not;
    }
    why_not = configuration.attach(std::move(store));
    return why_not.empty() ? why_not : "the configuration " + path + ": " + why_not;
}

void log_totals(const Model &model)
{
    log::info("{} datagrams, {} refused; {} OpenFlow messages, {} refused",
              model.counters.datagrams, model.counters.refused, model.counters.messages,
              model.counters.errors);
}

// Serves until a signal. Empty, or why it cannot.
std::string serve(const Options &options, int listener, Model &model, const Announce &announce)
{
    const Base base(event_base_new());
    if (!base) {
        return "the event loop cannot be created";
    }
    Server server(base.get(), listener, model);
    const Channels channels(base.get(), model);
    const Event signals[] = {
        Event(evsignal_new(base.get(), SIGTERM, on_end, base.get())),
        Event(evsignal_new(base.get(), SIGINT, on_end, base.get())),
        Event(evsignal_new(base.get(), SIGHUP, on_reopen, nullptr)),
    };
    for (const Event &signal : signals) {
        if (!signal || event_add(signal.get(), nullptr) != 0) {
            return "signals cannot be taken";
        }
    }
    if (!server.start()) {
        return "the socket cannot be watched";
    }
    log::info("ofp-agent " OFP_AGENT_VERSION
              " serves node {}, process {}, at most {} rules a table",
              options.node, getpid(), options.param.ACLMaxFlowEntry);
    announce({});
    event_base_dispatch(base.get());
    log_totals(model);
    return {};
}

int fail(const std::string &why_not, const Announce &announce)
{
    log::error("{}", why_not);
    announce(why_not);
    return 1;
}

} // namespace

int run(const Options &options, const Announce &announce)
{
    std::string why_not;
    if (!is_described(options.node, why_not)) {
        return fail(why_not, announce);
    }
    const Descriptor lock(HOST_LockAgent(options.node));
    if (!lock) {
        return fail(HOST_LastError(), announce);
    }
    if (!open_log(options, why_not)) {
        return fail(why_not, announce);
    }
    raise_descriptor_limit();
    Model model({.rules_per_table = options.param.ACLMaxFlowEntry});
    model.start.reserved_acl_resources = options.param.ResvAclRes;
    if (options.param.ACLTableNum != 0) {
        model.start.acl_tables = options.param.ACLTableNum;
    }
    why_not = load_configuration(options, model.configuration());
    if (!why_not.empty()) {
        return fail(why_not, announce);
    }
    const Descriptor listener(HOST_ListenAgent(options.node));
    if (!listener) {
        return fail(HOST_LastError(), announce);
    }
    why_not = serve(options, listener.get(), model, announce);
    char path[PATH_MAX];
    if (HOST_GetSocketPath(options.node, path, sizeof path) == 0) {
        ::unlink(path);
    }
    return why_not.empty() ? 0 : fail(why_not, announce);
}

} // namespace agent
