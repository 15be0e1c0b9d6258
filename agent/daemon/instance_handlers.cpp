// Instances: creating, existence, iteration.
#include "daemon/handler.h"

namespace agent {

namespace {

uint32_t take_filter(Bytes &rest, OfpInstFilter &filter)
{
    constexpr uint64_t SIZES[] = {12, 24, 20, 12, 24, 20}; // of both TLVs, by filter kind
    Bytes peek = rest;
    Bytes first;
    if (const uint32_t code = take_value(peek, OFP_TLV_InstFilterInstance, first)) {
        return code;
    }
    if (first.size() != sizeof(OfpInstFilterInstance)) {
        return BAD_TLV_LENGTH;
    }
    const uint64_t size = OFP_util_DecapInstFilterTLV(rest.data(), rest.size(), &filter);
    if (size == 0 || size != SIZES[filter.filter_kind]) {
        return BAD_FILTER;
    }
    rest = rest.subspan(size);
    return 0;
}

} // namespace

uint32_t add_instance(const Request &request, Reply &, Model &model)
{
    Bytes rest = request.body;
    OfpInstFilter filter{};
    if (const uint32_t code = take_filter(rest, filter)) {
        return code;
    }
    std::vector<OfpFlowTable> tables;
    while (!rest.empty()) {
        OfpFlowTable table;
        if (const uint32_t code = take(rest, OFP_TLV_FlowTable, table)) {
            return code == MISSING_TLV ? TRAILING_BYTES : code;
        }
        tables.push_back(table);
    }
    return model.add_instance(filter, std::move(tables));
}

uint32_t instance_exists(const Request &request, Reply &reply, Model &model)
{
    OfpInstanceID key;
    if (const uint32_t code = take_only(request, OFP_TLV_InstanceID, key)) {
        return code;
    }
    const bool exists = model.instance(key.instance_id) != nullptr;
    reply.record(OFP_MSG_INSTANCE_EXIST, OFP_TLV_InstanceIsExist,
                 OfpInstanceIsExist{.exists = exists});
    return 0;
}

uint32_t next_instance(const Request &request, Reply &reply, Model &model)
{
    OfpInstanceID key;
    if (const uint32_t code = take_only(request, OFP_TLV_InstanceID, key)) {
        return code;
    }
    const auto next = model.next_instance(key.instance_id);
    if (!next) {
        return NO_NEXT;
    }
    reply.record(OFP_MSG_NEXT_INSTANCE, OFP_TLV_InstanceID, OfpInstanceID{.instance_id = *next});
    return 0;
}

} // namespace agent
