// Applications: registration, subscriptions, what became of their events. The OAP service, which
// serves applications elsewhere, does not exist here.
#include "daemon/handler.h"
#include "daemon/log.h"

namespace agent {

namespace {

uint32_t take_application(const Request &request, uint16_t type, OfpAppInfo &key)
{
    if (const uint32_t code = take_only(request, type, key)) {
        return code;
    }
    return is_application(key.app_id) ? 0 : BAD_APPLICATION;
}

uint32_t take_subscription(const Request &request, OfpAppInfo &key)
{
    if (const uint32_t code = take_application(request, OFP_TLV_AppEvent, key)) {
        return code;
    }
    return is_event(key.event) ? 0 : BAD_EVENT;
}

} // namespace

uint32_t register_application(const Request &request, Reply &, Model &model)
{
    OfpAppInfo key;
    if (const uint32_t code = take_application(request, OFP_TLV_AppInfo, key)) {
        return code;
    }
    model.applications.enroll(key.app_id, request.sender);
    log::info("application {} registered by process {}", key.app_id, request.sender.process);
    return 0;
}

uint32_t register_event(const Request &request, Reply &, Model &model)
{
    OfpAppInfo key;
    if (const uint32_t code = take_subscription(request, key)) {
        return code;
    }
    return model.applications.subscribe(key.app_id, key.event) ? 0 : NO_APPLICATION;
}

uint32_t deregister_event(const Request &request, Reply &, Model &model)
{
    OfpAppInfo key;
    if (const uint32_t code = take_subscription(request, key)) {
        return code;
    }
    return model.applications.unsubscribe(key.app_id, key.event) ? 0 : NO_APPLICATION;
}

uint32_t application_info(const Request &request, Reply &reply, Model &model)
{
    OfpAppInfo key;
    if (const uint32_t code = take_application(request, OFP_TLV_AppInfo, key)) {
        return code;
    }
    const Application *const application = model.applications.find(key.app_id);
    if (!application) {
        return NO_APPLICATION;
    }
    OfpAppPktStats stats{};
    stats.opaque_0[0] = key.app_id;
    stats.value_u64_8[0] = application->subscriptions;
    stats.value_u64_8[1] = application->sent();
    stats.value_u64_8[2] = application->waiting.datagrams();
    stats.value_u64_8[3] = application->dropped;
    stats.value_u32_80 = static_cast<uint32_t>(application->owner.process);
    stats.value_u32_84 = monotonic_seconds() - application->since;
    reply.record(OFP_MSG_APP_INFO, OFP_TLV_AppPktStats, stats);
    return 0;
}

uint32_t oap_client_count(const Request &request, Reply &reply, Model &)
{
    if (const uint32_t code = at_end(request.body)) {
        return code;
    }
    reply.record(OFP_MSG_OAP_CLIENT_NUM, OFP_TLV_OapClientNum, OfpOapClientNum{.count = 0});
    return 0;
}

uint32_t oap_context(const Request &request, Reply &, Model &)
{
    OfpContext key;
    const uint32_t code = take_only(request, OFP_TLV_Context, key);
    return code ? code : NOT_PRESENT;
}

} // namespace agent
