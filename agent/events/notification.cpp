#include "events/notification.h"

#include <new>

#include "daemon/log.h"
#include "daemon/reply.h"

namespace agent {

namespace {

// Calls write with the notification begun, then hands it to the applications.
template <class Write>
void notify(Applications &applications, uint32_t event, Write write) noexcept
{
    if (!applications.wanted(event)) {
        return;
    }
    Outbox notification;
    try {
        Reply reply(notification);
        reply.begin(OFP_MSG_EVENT);
        reply.add(OFP_TLV_EventType, OfpEventType{.event = event});
        write(reply);
        reply.end();
    } catch (const std::bad_alloc &) {
        log::warning("an event of type {} was lost for want of memory", event);
        return;
    }
    Bytes datagram[1];
    notification.front(datagram);
    applications.publish(event, datagram[0]);
}

} // namespace

void notify_controller(Applications &applications, uint32_t event, uint16_t instance,
                       const OfpCtrl &controller) noexcept
{
    notify(applications, event, [&](Reply &reply) {
        reply.add(OFP_TLV_InstanceID, OfpInstanceID{.instance_id = instance});
        reply.add(OFP_TLV_Ctrl, controller);
    });
}

void notify_controller_status(Applications &applications, uint32_t connected) noexcept
{
    notify(applications, OFP_EVENT_CTRL_STATUS, [connected](Reply &reply) {
        reply.add(OFP_TLV_CtrlStatusEventData, OfpCtrlStatusEventData{.status = connected});
    });
}

} // namespace agent
