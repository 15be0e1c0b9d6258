// What the library reads of a datagram: heads, values by type, interface lists, instance filters.
#include <cstdint>
#include <cstdlib>

#include "ofp.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    alignas(8) uint8_t record[2048] = {};
    uint32_t code = 0;
    const uint64_t head = OFP_msg_GetMsgHead(data, size, &code);
    for (uint32_t type = 1; type <= OFP_TLV_LAST; type++) {
        OFP_msg_GetTlvDataByType(data, size, type, 1024, record);
        if (OFP_msg_GetTlvData(data, size, type, 1024, record) > size ||
            OFP_msg_DecapBasicMsg(data, size, code, type, 1024, record) > size ||
            OFP_util_PassbyTLV(data, size, static_cast<uint16_t>(type)) > size) {
            std::abort();
        }
    }
    uint32_t indexes[128];
    uint64_t stored = 0;
    OfpInstFilter filter;
    if (head > size ||
        OFP_msg_DecapMatchBatchIf(data, size, sizeof indexes, indexes, &stored) > size ||
        stored > sizeof indexes || OFP_util_DecapInstFilterTLV(data, size, &filter) > size) {
        std::abort();
    }
    return 0;
}
