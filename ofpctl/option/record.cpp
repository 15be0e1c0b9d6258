#include "option/record.h"

#include <cstring>

#include <fmt/format.h>

#include "frame/agent_link.h"
#include "frame/patience.h"

namespace ofpctl {

namespace {

std::vector<OfpVerbIfRep> interfaces_of(const OfpLink &head)
{
    std::vector<OfpVerbIfRep> interfaces;
    for (const OfpLink *at = head.next; at != &head; at = at->next)
        interfaces.push_back(reinterpret_cast<const OfpInterfaceElement *>(at)->interface);
    return interfaces;
}

} // namespace

InstanceRecord::InstanceRecord() { begin(); }

void InstanceRecord::begin()
{
    OFP_get_InitVerbose(&verbose_);
    verbose_.configured.vlans = configured_vlans_.bitmap();
    verbose_.running.vlans = running_vlans_.bitmap();
}

InstanceRecord::~InstanceRecord() { OFP_get_FiniVerbose(&verbose_); }

void InstanceRecord::read(uint16_t instance)
{
    require_instance(instance);
    // The query adds to the lists that it finds.
    OFP_get_FiniVerbose(&verbose_);
    begin();
    require_success(OFP_get_Verbose(instance, &verbose_), fmt::format("instance {}", instance));
}

const OfpVerbInst &InstanceRecord::instance() const
{
    return reinterpret_cast<const OfpVerbInst &>(verbose_.instance);
}

bool InstanceRecord::active() const
{
    OfpInstActive active;
    std::memcpy(&active, verbose_.inst_active, sizeof active);
    return active.active == 1;
}

std::vector<OfpCtrlSummary> InstanceRecord::controllers() const
{
    std::vector<OfpCtrlSummary> controllers;
    const OfpLink *head = &verbose_.controllers;
    for (const OfpLink *at = head->next; at != head; at = at->next) {
        const auto *element = reinterpret_cast<const OfpControllerElement *>(at);
        controllers.emplace_back();
        std::memcpy(&controllers.back(), element->record, sizeof element->record);
    }
    return controllers;
}

std::vector<OfpVerbIfRep> InstanceRecord::configured_interfaces() const
{
    return interfaces_of(verbose_.configured.interfaces);
}

std::vector<OfpVerbIfRep> InstanceRecord::running_interfaces() const
{
    return interfaces_of(verbose_.running.interfaces);
}

GlobalRecord::GlobalRecord() { config_.vlans = vlans_.bitmap(); }

void GlobalRecord::read()
{
    require_success(OFP_get_GlbCfgVerbose(&config_), "settings of the switch");
}

void require_instance(uint16_t instance)
{
    if (OFP_get_IsInstanceExist(instance) == 1)
        return;
    // The call says no on every failure, too.
    if (last_wait() != Wait::answered)
        throw call_failure(static_cast<uint32_t>(OFP_RC_NO_REPLY),
                           fmt::format("instance {}", instance));
    throw Failure{.status = status_missing,
                  .message = fmt::format("instance {} does not exist", instance)};
}

} // namespace ofpctl
