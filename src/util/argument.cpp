#include <cstring>

#include "ofp/platform.h"
#include "ofp/util.h"

namespace ofp {
namespace {

template <typename T>
OptEntry option(const char *name, T &destination)
{
    static_assert(sizeof(T) == 2 || sizeof(T) == 4);
    return {name, sizeof(T) == 4 ? 1 : 0, &destination, sizeof(T)};
}

constexpr uint32_t not_given = 0xffffffff;

} // namespace
} // namespace ofp

OFP_API uint32_t OFP_util_ParseArg(void *source1, void *source2, OfpDaemonParam *param)
{
    using ofp::option;
    param->MplsTable = ofp::not_given;
    param->EMTableNum = ofp::not_given;
    const OptEntry table[] = {
        option("ACLTableNum", param->ACLTableNum),
        option("MacIPTable", param->MacIPTable),
        option("ACLMaxFlowEntry", param->ACLMaxFlowEntry),
        option("Classification", param->Classification),
        option("QinQTable", param->QinQTable),
        option("ResvAclRes", param->ResvAclRes),
        option("TDEnable", param->TDEnable),
        option("NormalFwdVlan", param->NormalFwdVlan),
        option("ProSlow", param->ProSlow),
        option("MplsTable", param->MplsTable),
        option("SmartGroup", param->SmartGroup),
        option("TTPEnable", param->TTPEnable),
        option("EMTableNum", param->EMTableNum),
        option("Ipv6Enhanced", param->Ipv6Enhanced),
    };
    return OPT_ParseEx(source1, source2, table, sizeof table / sizeof table[0]);
}

OFP_API uint64_t OFP_util_GetDbmCfgKey(uint16_t id, const char *format, uint64_t size, char *buffer)
{
    if (size == 0)
        return 0;
    buffer[0] = '\0';
    return scnprintf(buffer, size, format, id);
}

OFP_API uint64_t OFP_util_DefaultPathID(uint16_t id)
{
    uint64_t path = id;
    uint8_t mac[6] = {};
    if (MAC_GetBridgeAddress(mac) != 0)
        return path << 48;
    for (uint8_t byte : mac)
        path = path << 8 | byte;
    return path;
}

OFP_API const char *OFP_util_GetVersionDesc(uint32_t version)
{
    // By OpenFlow wire version; the agent speaks none beyond 1.3, so the ends are never told.
    static constexpr const char *texts[] = {"invalid version", "1.0", "1.1", "1.2", "1.3", "1.4"};
    return version >= 1 && version <= 4 ? texts[version] : nullptr;
}

OFP_API uint16_t OFP_util_FindSubModuleNameFlag(const char *text)
{
    return std::strstr(text, "connect-state") == nullptr;
}
