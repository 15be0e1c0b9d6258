// Device contexts, services and nodes, interfaces, addresses and options of ofp/platform.h, and
// sleep.
#include <cstring>
#include <iterator>

#include "double/memory.h"
#include "double/platform.h"

using test::Call;
using test::platform;
using test::platform_failure;

namespace {

constexpr test::Outcome failure{platform_failure};

// The outcome that was asked for; none: do what the call does.
std::optional<uint32_t> answer(Call call)
{
    auto outcome = platform.enter(std::move(call), failure);
    if (!outcome)
        return std::nullopt;
    return static_cast<uint32_t>(outcome->result);
}

// The same for values that no failure is known of.
uint32_t value(const char *function, std::vector<uint64_t> arguments, uint32_t usual)
{
    auto outcome = platform.enter({function, std::move(arguments)});
    return outcome ? static_cast<uint32_t>(outcome->result) : usual;
}

uint16_t value16(const char *function, std::vector<uint64_t> arguments, uint32_t usual)
{
    return static_cast<uint16_t>(value(function, std::move(arguments), usual));
}

void start(uint16_t id)
{
    if (test::Node *node = platform.find_node(id))
        node->runs = true;
}

} // namespace

uint32_t ZONE_GetCurrentZone(void) { return value("ZONE_GetCurrentZone", {}, platform.zone); }

uint16_t ZONE_IsContainer(uint32_t zone)
{
    return value16("ZONE_IsContainer", {zone}, platform.zone_is_container);
}

uint32_t ZONE_GetCurrentContainer(void)
{
    return value("ZONE_GetCurrentContainer", {}, platform.container);
}

uint16_t LIP_GetLocalLip(void) { return value16("LIP_GetLocalLip", {}, platform.lip); }

uint32_t SERVICE_GetStatus(uint16_t node, const char *name, uint32_t instance, uint32_t *status)
{
    if (auto code = answer({"SERVICE_GetStatus", {node, instance}, {}, name}))
        return *code;
    test::Node *found = platform.find_node(node);
    *status = found && found->runs ? 0x80 : 0; // any value but 0 says that it runs
    return 0;
}

uint32_t SERVICE_Start(uint16_t node, const char *name, uint32_t argument1, uint32_t argument2)
{
    if (auto code = answer({"SERVICE_Start", {node, argument1, argument2}, {}, name}))
        return *code;
    start(node);
    return 0;
}

uint32_t SERVICE_BatchStart(const uint16_t *nodes, uint32_t count, const char *name,
                            uint32_t argument1, uint32_t argument2)
{
    Call call{"SERVICE_BatchStart", {count, argument1, argument2}, {}, name};
    call.bytes = test::bytes_of(nodes, count * sizeof *nodes);
    if (auto code = answer(call))
        return *code;
    for (uint32_t i = 0; i < count; ++i)
        start(nodes[i]);
    return 0;
}

uint32_t SERVICE_IsPhase4Over(uint16_t node)
{
    return value("SERVICE_IsPhase4Over", {node}, platform.phase4_over);
}

uint16_t DEV_GetSystemMaster(void) { return value16("DEV_GetSystemMaster", {}, platform.master); }
uint16_t DEV_GetSelf(void) { return value16("DEV_GetSelf", {}, platform.self); }
uint16_t DEV_IsController(void) { return value16("DEV_IsController", {}, platform.controller); }

uint16_t *DEV_GetAllNodes(uint32_t *count)
{
    *count = 0xffffffff; // nothing to rely on after a failure
    if (platform.enter({"DEV_GetAllNodes", {}}, failure))
        return nullptr;
    // A chassis without nodes has a list all the same.
    size_t bytes = std::max<size_t>(platform.nodes.size(), 1) * sizeof(uint16_t);
    auto list = static_cast<uint16_t *>(test::memory::give(bytes));
    *count = static_cast<uint32_t>(platform.nodes.size());
    for (size_t i = 0; i < platform.nodes.size(); ++i)
        list[i] = platform.nodes[i].id;
    return list;
}

uint16_t IF_IsNodeUp(uint16_t node)
{
    test::Node *found = platform.find_node(node);
    return value16("IF_IsNodeUp", {node}, found && found->up ? 0x100 : 0);
}

uint32_t IF_Select_Init(uint32_t mode, void *)
{
    return answer({"IF_Select_Init", {mode}}).value_or(0);
}

uint32_t IF_SelectType_Set(uint32_t type, void *)
{
    return answer({"IF_SelectType_Set", {type}}).value_or(0);
}

uint32_t IF_SelectCondition_Set(uint32_t condition, void *)
{
    return answer({"IF_SelectCondition_Set", {condition}}).value_or(0);
}

uint32_t IF_GetDataByIfIndex(uint32_t index, uint32_t item, void *out)
{
    if (auto code = answer({"IF_GetDataByIfIndex", {index, item}}))
        return *code;
    auto found = platform.interface_types.find(index);
    if (found == platform.interface_types.end())
        return platform_failure;
    std::memcpy(out, &found->second, sizeof found->second);
    return 0;
}

int32_t IF_JudgeNameOrder(const char *a, const char *b)
{
    return platform.name_order ? platform.name_order(a, b) : std::strcmp(a, b);
}

uint16_t VLAN_GetMinVlanID(void) { return value16("VLAN_GetMinVlanID", {}, platform.min_vlan); }

uint32_t MAC_GetBridgeAddress(uint8_t mac[6])
{
    if (auto code = answer({"MAC_GetBridgeAddress", {}}))
        return *code;
    if (!platform.bridge_mac)
        return platform_failure;
    std::memcpy(mac, platform.bridge_mac->data(), 6);
    return 0;
}

uint32_t OPT_ParseEx(void *source1, void *source2, const OptEntry *table, uint32_t count)
{
    Call call{"OPT_ParseEx",
              {uint64_t(reinterpret_cast<uintptr_t>(source1)),
               uint64_t(reinterpret_cast<uintptr_t>(source2)), count}};
    for (uint32_t i = 0; i < count; ++i)
        call.text += std::string(i ? " " : "") + table[i].name + ":" +
                     std::to_string(table[i].kind) + ":" + std::to_string(table[i].size);
    if (auto code = answer(call))
        return *code;
    for (uint32_t i = 0; i < count; ++i) {
        auto given = platform.options.find(table[i].name);
        if (given != platform.options.end())
            std::memcpy(table[i].destination, &given->second, table[i].size);
    }
    return 0;
}

uint32_t CIOCTL(int16_t node, uint32_t command, const void *in, uint32_t in_length, void *out,
                uint32_t out_size, uint32_t *out_length)
{
    Call call{"CIOCTL", {uint64_t(int64_t(node)), command, in_length, out_size}};
    if (in_length != 0)
        call.bytes = test::bytes_of(in, in_length);
    if (auto code = answer(call))
        return *code;
    std::memcpy(out, platform.device_answer.data(),
                std::min<size_t>(out_size, platform.device_answer.size()));
    *out_length = platform.device_answer_length;
    return 0;
}

extern "C" unsigned int sleep(unsigned int seconds)
{
    platform.enter({"sleep", {seconds}});
    if (platform.on_sleep)
        platform.on_sleep();
    return 0;
}
