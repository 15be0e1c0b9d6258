// event monitor: registers as an application and prints what the agent tells it.
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <poll.h>

#include "daemon/result_codes.h"
#include "frame/agent_link.h"
#include "frame/context.h"
#include "frame/interrupt.h"
#include "frame/message.h"
#include "frame/words.h"
#include "ofp.h"
#include "verbs/event_text.h"
#include "verbs/nouns.h"

namespace ofpctl {

namespace {

constexpr uint32_t events_at_once = 256;
constexpr std::chrono::milliseconds retry_pause{50};
constexpr std::chrono::seconds longest_going{5}; // of an agent that hung up

// The library's callback has no argument of its caller's and lets nothing be thrown through it:
// what it is told waits here.
std::vector<Event> delivered;
bool lost_memory = false;

uint32_t take_event(uint32_t type, void *record, uint32_t value)
{
    Event event{.when = std::chrono::system_clock::now(), .type = type};
    if (type == OFP_EVENT_CTRL_STATUS)
        event.status = value;
    else
        std::memcpy(&event.controller, record, sizeof event.controller);
    try {
        delivered.push_back(event);
    } catch (const std::bad_alloc &) {
        lost_memory = true;
    }
    return 0;
}

// A registration, ended with its scope.
class Registration {
public:
    Registration(uint8_t app, const std::vector<uint32_t> &types) : app_(app)
    {
        g_uiOfpMSGNum = events_at_once;
        socket_ = OFP_Init(app);
        if (socket_ < 0)
            throw call_failure(OFP_RC_FAILED, fmt::format("registering as application {}", app));
        for (const uint32_t type : types)
            subscribe(type);
    }
    ~Registration() { OFP_Fini(); }
    Registration(const Registration &) = delete;
    Registration &operator=(const Registration &) = delete;

    int socket() const { return socket_; }
    uint8_t app() const { return app_; }

private:
    void subscribe(uint32_t type)
    {
        const uint32_t code = OFP_RegEvent(type, take_event);
        if (code != 0) {
            Failure failure =
                call_failure(code, fmt::format("subscribing to {} events", event_name(type)));
            OFP_Fini();
            throw failure;
        }
    }

    uint8_t app_;
    int socket_ = -1;
};

uint32_t registered_process(uint8_t app)
{
    OfpAppPktStats stats{};
    const uint32_t code = OFP_get_AppInfo(app, &stats);
    if (code == agent::NO_APPLICATION)
        return 0;
    require_success(code, fmt::format("application {}", app));
    return stats.value_u32_80;
}

// The one that was asked for, which nobody may have, or the highest that nobody has.
uint8_t free_app(const Arguments &arguments)
{
    if (arguments.given("app")) {
        const auto app = static_cast<uint8_t>(arguments.number("app"));
        if (const uint32_t process = registered_process(app))
            throw Failure{
                .message = fmt::format("application {} is registered by process {}", app, process)};
        return app;
    }
    for (uint8_t app = last_app; app >= first_app; app--) {
        if (registered_process(app) == 0)
            return app;
    }
    throw Failure{.message = "all application ids from 1 to 11 are registered"};
}

std::vector<uint32_t> wanted_types(const Words &operands)
{
    std::vector<uint32_t> types;
    for (const std::string &word : operands) {
        const uint32_t type = event_type(word);
        if (type == 0) {
            std::vector<std::string> names;
            for (const uint32_t known : event_types)
                names.push_back(event_name(known));
            const std::vector<std::string_view> views(names.begin(), names.end());
            throw usage_failure(fmt::format("{}: no such event; {}", word, one_of(word, views)));
        }
        types.push_back(type);
    }
    if (types.empty())
        types.assign(std::begin(event_types), std::end(event_types));
    return types;
}

using Clock = std::chrono::steady_clock;

// Waits for a signal at most so long; throws when one comes.
void pause_for(std::chrono::milliseconds time)
{
    pollfd signal{signal_descriptor(), POLLIN, 0};
    poll(&signal, 1, static_cast<int>(time.count()));
    check_interrupt();
}

// When the command is to end by itself.
class Deadline {
public:
    explicit Deadline(const Arguments &arguments)
    {
        if (arguments.given("duration"))
            end_ = Clock::now() + std::chrono::seconds(arguments.number("duration"));
    }
    bool passed() const { return end_ && Clock::now() >= *end_; }
    // As poll takes it.
    int left() const
    {
        if (!end_)
            return -1;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(*end_ - Clock::now());
        return static_cast<int>(std::clamp<int64_t>(left.count(), 0, INT_MAX));
    }

private:
    std::optional<Clock::time_point> end_;
};

class Monitor {
public:
    explicit Monitor(Context &context)
        : out_(context.out), types_(wanted_types(context.arguments.operands())),
          limit_(context.arguments.given("count") ? context.arguments.number("count") : 0),
          verbose_(context.verbose()), deadline_(context.arguments)
    {}

    // False once the agent has ended the connection, true when it is enough.
    bool follow(const Registration &registration)
    {
        if (verbose_)
            remark(fmt::format("registered as application {}", registration.app()));
        for (;;) {
            pollfd ready[2] = {{registration.socket(), POLLIN, 0},
                               {signal_descriptor(), POLLIN, 0}};
            if (poll(ready, 2, deadline_.left()) < 0 && errno != EINTR)
                throw Failure{.message = fmt::format("poll: {}", std::strerror(errno))};
            check_interrupt();
            if (deadline_.passed())
                return true;
            const bool hung_up = (ready[0].revents & (POLLHUP | POLLERR)) != 0;
            const uint32_t code = OFP_Dispatch(registration.socket());
            const bool more = !delivered.empty();
            if (print())
                return true;
            require_success(code, "an event");
            if (hung_up && !more)
                return false;
        }
    }

    const std::vector<uint32_t> &types() const { return types_; }
    uint64_t printed() const { return printed_; }
    bool out_of_time() const { return deadline_.passed(); }

private:
    // True when that was enough.
    bool print()
    {
        for (const Event &event : delivered) {
            if (out_.json())
                write_event(out_.document(), event);
            else
                out_.line(event_line(event));
            out_.end_round();
            if (++printed_ == limit_)
                return true;
        }
        delivered.clear();
        if (lost_memory)
            throw std::bad_alloc();
        return false;
    }

    Output &out_;
    std::vector<uint32_t> types_;
    uint64_t limit_; // 0: none
    uint64_t printed_ = 0;
    bool verbose_;
    Deadline deadline_;
};

// The process that is registered; 0 also when the agent does not say.
uint32_t successor(uint8_t app)
{
    try {
        return registered_process(app);
    } catch (const Failure &) {
        return 0;
    }
}

// The agent has ended the connection: it is going, or another process took the application's id.
Failure why_it_ended(uint8_t app)
{
    if (const uint32_t process = successor(app))
        return {.message = fmt::format("process {} registered as application {}", process, app)};
    const Clock::time_point end = Clock::now() + longest_going;
    while (Clock::now() < end) {
        try {
            require_same_agent();
        } catch (Failure &gone) {
            gone.status = status_no_agent; // also when another one runs by now
            return gone;
        }
        pause_for(retry_pause);
    }
    return {.message = "the agent ended the connection; its log says why"};
}

// Waits until an agent can be asked again; false when the time is up first.
bool await_agent(const Monitor &monitor)
{
    while (!monitor.out_of_time()) {
        try {
            require_agent();
            return true;
        } catch (const Failure &failure) {
            if (failure.status != status_no_agent)
                throw;
        }
        pause_for(retry_pause);
    }
    return false;
}

bool agent_is_gone(const Failure &failure)
{
    return failure.status == status_no_agent || failure.status == status_no_reply;
}

// Registers with the agent that runs now and prints its events until it is enough.
void monitor_agent(const Arguments &arguments, Monitor &monitor)
{
    for (;;) {
        const uint8_t app = free_app(arguments);
        {
            const Registration registration(app, monitor.types());
            if (monitor.follow(registration))
                return;
        }
        const Failure why = why_it_ended(app);
        if (why.status == status_no_agent || arguments.given("app"))
            throw why;
        remark(fmt::format("{}; registering anew", why.message));
    }
}

// Through restarts of the agent.
void monitor_agents(const Arguments &arguments, Monitor &monitor)
{
    while (await_agent(monitor)) {
        try {
            monitor_agent(arguments, monitor);
            return;
        } catch (const Failure &failure) {
            if (!agent_is_gone(failure))
                throw;
            remark(fmt::format("{}; events are missed until it is back", failure.message));
        }
        pause_for(retry_pause);
    }
}

void monitor_events(Context &context)
{
    Monitor monitor(context);
    if (context.arguments.given("follow")) {
        monitor_agents(context.arguments, monitor);
    } else {
        require_agent();
        monitor_agent(context.arguments, monitor);
    }
    // Every line is an event but the last, which tells how it ended.
    if (context.out.json())
        context.out.document().wide("events", monitor.printed());
}

constexpr OptionRow monitor_options[] = {
    {.name = "count",
     .letter = 'c',
     .kind = Kind::number,
     .value = "N",
     .help = "end after so many events",
     .least = 1,
     .most = UINT32_MAX},
    {.name = "duration",
     .kind = Kind::number,
     .value = "SECONDS",
     .help = "end after so many seconds",
     .least = 1,
     .most = 86400},
    {.name = "follow", .letter = 'F', .help = "wait for the agent and go on when it is restarted"},
    {.name = "app",
     .kind = Kind::number,
     .value = "ID",
     .help = "register as this application; the highest free one unless given",
     .least = first_app,
     .most = last_app},
};

constexpr Example monitor_examples[] = {
    {"ofpctl event monitor --duration 1", "Prints every event for a second"},
    {"ofpctl event monitor connection removed --duration 1 --json",
     "Two types of event, one JSON object a line"},
};

constexpr Verb rows[] = {
    {.name = "monitor",
     .run = monitor_events,
     .help = "Prints events as they come, one a line.",
     .details = "The types are configured (2), connection (4), removed (8) and status (16), which "
                "tells how many controllers are connected. Ends with status 130 or 143 on a "
                "signal, with 3 when the agent goes. With --json every line is an event but the "
                "last, which tells the outcome.",
     .operands = {"[TYPE...]", Kind::text, 0, any_number},
     .options = monitor_options,
     .examples = monitor_examples},
};

} // namespace

const std::span<const Verb> event_verbs = rows;

} // namespace ofpctl
