#include "events/applications.h"

#include <new>

#include "switch/switch.h"

namespace agent {

namespace {

constexpr uint64_t bit_of(uint32_t event) { return uint64_t{1} << event; }

// False when the event is lost.
bool queue(Application &application, Bytes notification) noexcept
{
    if (application.waiting.datagrams() >= EVENTS_WAITING_MAX) {
        return false;
    }
    const Outbox::Mark before = application.waiting.mark();
    try {
        application.waiting.append(notification);
    } catch (const std::bad_alloc &) {
        application.waiting.rollback(before);
        return false;
    }
    return true;
}

} // namespace

void Applications::enroll(uint8_t id, Sender owner)
{
    Application &application = at(id);
    const uint32_t former = application.owner.connection;
    const bool supersedes = former != 0 && former != owner.connection;
    if (supersedes) {
        superseded_.push_back(former);
    }
    leave(owner.connection);
    application = {};
    application.owner = owner;
    application.since = monotonic_seconds();
    if (supersedes) {
        on_work();
    }
}

void Applications::leave(uint32_t connection) noexcept
{
    if (Application *const application = of(connection)) {
        *application = {};
    }
    std::erase(superseded_, connection);
}

bool Applications::subscribe(uint8_t id, uint32_t event)
{
    if (!find(id)) {
        return false;
    }
    at(id).subscriptions |= bit_of(event);
    return true;
}

bool Applications::unsubscribe(uint8_t id, uint32_t event)
{
    if (!find(id)) {
        return false;
    }
    at(id).subscriptions &= ~bit_of(event);
    return true;
}

void Applications::publish(uint32_t event, Bytes notification) noexcept
{
    bool first = false;
    for (Application &application : applications_) {
        if ((application.subscriptions & bit_of(event)) == 0) {
            continue;
        }
        first = first || application.waiting.empty();
        ++(queue(application, notification) ? application.accepted : application.dropped);
    }
    if (first) {
        on_work();
    }
}

bool Applications::wanted(uint32_t event) const
{
    for (const Application &application : applications_) {
        if ((application.subscriptions & bit_of(event)) != 0) {
            return true;
        }
    }
    return false;
}

const Application *Applications::find(uint32_t id) const
{
    return is_application(id) && applications_[id].registered() ? &applications_[id] : nullptr;
}

Application *Applications::of(uint32_t connection)
{
    if (connection == 0) {
        return nullptr;
    }
    for (Application &application : applications_) {
        if (application.owner.connection == connection) {
            return &application;
        }
    }
    return nullptr;
}

} // namespace agent
