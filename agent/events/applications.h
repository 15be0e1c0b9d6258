// The registered applications: what each subscribed to and the events that wait for it. An
// application lives as long as the connection that registered it. Nothing here knows of sockets:
// whoever owns the connections takes the waiting events and sends them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "daemon/outbox.h"

namespace agent {

inline constexpr uint8_t FIRST_APPLICATION = 1;
inline constexpr uint8_t LAST_APPLICATION = 11;
inline constexpr uint32_t LAST_EVENT = 63; // event types are 1 to 63

// The events that wait for one application at most; further ones are dropped.
inline constexpr size_t EVENTS_WAITING_MAX = 8192;

constexpr bool is_application(uint32_t id)
{
    return id >= FIRST_APPLICATION && id <= LAST_APPLICATION;
}
constexpr bool is_event(uint32_t type) { return type >= 1 && type <= LAST_EVENT; }

// Who sent a request: the server's number for the connection, 0 for none, and the process.
struct Sender {
    uint32_t connection = 0;
    int32_t process = 0;
};

struct Application {
    Sender owner;               // connection 0: nobody is registered
    uint64_t subscriptions = 0; // bit n: events of type n
    uint64_t accepted = 0;      // events taken for it: sent, or waiting still
    uint64_t dropped = 0;       // events it was too slow for
    uint32_t since = 0;         // seconds of the monotonic clock
    Outbox waiting;

    bool registered() const { return owner.connection != 0; }
    uint64_t sent() const { return accepted - waiting.datagrams(); }
};

class Applications {
public:
    // Called when the first event waits for an application or a connection has been superseded.
    std::function<void()> on_work = [] {};

    // The connection becomes that of the application, which starts without subscriptions. Another
    // connection that was registered under this id is superseded, and so is another id of this
    // connection: one connection, one application. Throws std::bad_alloc and changes nothing.
    void enroll(uint8_t id, Sender owner);
    // The connection is gone, and its application with it.
    void leave(uint32_t connection) noexcept;

    // False when nobody is registered under this id.
    bool subscribe(uint8_t id, uint32_t event);
    bool unsubscribe(uint8_t id, uint32_t event);

    // Queues the notification for each application that subscribed to its type.
    void publish(uint32_t event, Bytes notification) noexcept;
    bool wanted(uint32_t event) const; // by anybody

    // Null when nobody is registered under this id, or by this connection.
    const Application *find(uint32_t id) const;
    Application *of(uint32_t connection);

    // Connections whose application was registered anew by another one, each told once.
    std::vector<uint32_t> take_superseded() { return std::exchange(superseded_, {}); }

    template <class Visit>
    void each_waiting(Visit visit)
    {
        for (Application &application : applications_) {
            if (!application.waiting.empty()) {
                visit(application);
            }
        }
    }

private:
    Application &at(uint8_t id) { return applications_[id]; }

    std::array<Application, LAST_APPLICATION + 1> applications_; // the first stands for none
    std::vector<uint32_t> superseded_;
};

} // namespace agent
