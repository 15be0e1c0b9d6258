#include "config/schema.h"

#include <algorithm>
#include <charconv>
#include <concepts>
#include <cstdio>
#include <string_view>
#include <tuple>
#include <utility>

#include "config/stored_value.h"

namespace agent {

namespace {

template <class Owner, class Member>
struct Field {
    const char *name;
    Member Owner::*member;
};
template <class Owner, class Member>
Field(const char *, Member Owner::*) -> Field<Owner, Member>;

// The members of a structure and their names; none for what is a single value.
template <class T>
constexpr std::tuple<> FIELDS;

template <>
constexpr auto FIELDS<Address> = std::tuple{
    Field{"type", &Address::type},
    Field{"bytes", &Address::bytes},
};

template <>
constexpr auto FIELDS<Auxiliary> = std::tuple{
    Field{"address", &Auxiliary::address},
    Field{"port", &Auxiliary::port},
    Field{"vrf", &Auxiliary::vrf},
    Field{"value-20", &Auxiliary::value_u32_20},
    Field{"value-24", &Auxiliary::value_u32_24},
};

template <>
constexpr auto FIELDS<Controller> = std::tuple{
    Field{"address", &Controller::address},
    Field{"port", &Controller::port},
    Field{"role", &Controller::role},
    Field{"vrf", &Controller::vrf},
    Field{"tls-policy", &Controller::tls_policy},
    Field{"value-26", &Controller::value_u16_26},
    Field{"opaque-93", &Controller::opaque},
    Field{"auxiliary", &Controller::auxiliaries},
};

template <>
constexpr auto FIELDS<ExcludedControllers> = std::tuple{
    Field{"controllers", &ExcludedControllers::controllers},
    Field{"value-4", &ExcludedControllers::value_u32_4},
};

template <>
constexpr auto FIELDS<AnalysisFunctions> = std::tuple{
    Field{"functions", &AnalysisFunctions::functions},
    Field{"value-2", &AnalysisFunctions::value_u16_2},
};

template <>
constexpr auto FIELDS<PayloadFunctions> = std::tuple{
    Field{"functions", &PayloadFunctions::functions},
    Field{"value-2", &PayloadFunctions::value_u16_2},
    Field{"value-4", &PayloadFunctions::value_u32_4},
    Field{"value-8", &PayloadFunctions::value_u32_8},
    Field{"opaque-16", &PayloadFunctions::opaque},
};

template <>
constexpr auto FIELDS<OfpInstFilter> = std::tuple{
    Field{"kind", &OfpInstFilter::filter_kind},
    Field{"parameter", &OfpInstFilter::param},
    Field{"extension", &OfpInstFilter::ext},
};

template <>
constexpr auto FIELDS<InstanceConfig> = std::tuple{
    Field{"filter", &InstanceConfig::filter},
    Field{"declared", &InstanceConfig::declared},
    Field{"table", &InstanceConfig::tables},
    Field{"active", &InstanceConfig::active},
    Field{"description", &InstanceConfig::description},
    Field{"datapath-id", &InstanceConfig::datapath_id},
    Field{"precedence", &InstanceConfig::precedence},
    Field{"controller", &InstanceConfig::controllers},
    Field{"excluded", &InstanceConfig::excluded},
    Field{"connection-mode", &InstanceConfig::connection_mode},
    Field{"fail-mode", &InstanceConfig::fail_mode},
    Field{"echo-interval", &InstanceConfig::echo_interval},
    Field{"reconnect-interval", &InstanceConfig::reconnect_interval},
    Field{"dscp", &InstanceConfig::dscp},
    Field{"nonstop-routing", &InstanceConfig::nonstop_routing},
    Field{"vlan-loose", &InstanceConfig::vlan_loose},
    Field{"in-band-vlans", &InstanceConfig::in_band_vlans},
    Field{"qinq", &InstanceConfig::qinq},
    Field{"mac-learning", &InstanceConfig::mac_learning},
    Field{"dynamic-mac-aware", &InstanceConfig::dynamic_mac_aware},
    Field{"bound-port", &InstanceConfig::bound_ports},
    Field{"forbidden-ports", &InstanceConfig::forbidden_ports},
    Field{"permitted-port-types", &InstanceConfig::permitted_port_types},
    Field{"loop-protection", &InstanceConfig::loop_protection},
    Field{"flow-entry-limit", &InstanceConfig::flow_entry_limit},
    Field{"miss-mode", &InstanceConfig::miss_mode},
    Field{"flow-log-disabled", &InstanceConfig::flow_log_disabled},
    Field{"packet-filter", &InstanceConfig::packet_filter},
    Field{"flow-monitor-interval", &InstanceConfig::flow_monitor_interval},
    Field{"flow-monitor-threshold", &InstanceConfig::flow_monitor_threshold},
    Field{"data-plane-mode", &InstanceConfig::data_plane_mode},
    Field{"ttp-mode", &InstanceConfig::ttp_mode},
    Field{"smart-groups", &InstanceConfig::smart_groups},
    Field{"traps", &InstanceConfig::traps},
    Field{"analysis", &InstanceConfig::analysis},
    Field{"payload", &InstanceConfig::payload},
};

template <>
constexpr auto FIELDS<OapServer> = std::tuple{
    Field{"name", &OapServer::name},
    Field{"value-32", &OapServer::value_u32_32},
    Field{"value-36", &OapServer::value_u16_36},
    Field{"value-38", &OapServer::value_u16_38},
};

template <>
constexpr auto FIELDS<FlowMonitorAction> = std::tuple{
    Field{"value-0", &FlowMonitorAction::value_u64_0},
    Field{"value-8", &FlowMonitorAction::value_u64_8},
    Field{"value-16", &FlowMonitorAction::value_u8_16},
    Field{"value-17", &FlowMonitorAction::value_u16_17},
};

template <>
constexpr auto FIELDS<GlobalConfig> = std::tuple{
    Field{"normal-forward-vlans", &GlobalConfig::normal_forward_vlans},
    Field{"ignore", &GlobalConfig::ignore},
    Field{"ipv6-enhanced", &GlobalConfig::ipv6_enhanced},
    Field{"reserved-acl-resources", &GlobalConfig::reserved_acl_resources},
    Field{"refresh-ip-flow", &GlobalConfig::refresh_ip_flow},
    Field{"shut-down-port", &GlobalConfig::shut_down_ports},
    Field{"oap-server", &GlobalConfig::oap_server},
    Field{"flow-monitor-action", &GlobalConfig::flow_monitor_action},
    Field{"debug", &GlobalConfig::debug},
    Field{"test-debug", &GlobalConfig::test_debug},
};

template <class T>
concept Structure = std::tuple_size_v<std::remove_cvref_t<decltype(FIELDS<T>)>> >
0;

template <class T, class Visit>
void each_field(Visit visit)
{
    std::apply([&](const auto &...fields) { (visit(fields), ...); }, FIELDS<T>);
}

// ---- Names of elements

template <Number Key>
std::string name_of(Key key)
{
    return std::to_string(key);
}

std::string name_of(const DebugKey &key)
{
    return std::to_string(key.value_u16_0) + '-' + std::to_string(key.value_u16_2);
}

template <Number Key>
bool read_name(std::string_view name, Key &key)
{
    const auto [end, error] = std::from_chars(name.begin(), name.end(), key);
    return error == std::errc() && end == name.end();
}

bool read_name(std::string_view name, DebugKey &key)
{
    const size_t dash = name.find('-');
    return dash != name.npos && read_name(name.substr(0, dash), key.value_u16_0) &&
           read_name(name.substr(dash + 1), key.value_u16_2);
}

// ---- Writing

bool is_same(const OfpFlowTable &a, const OfpFlowTable &b)
{
    return a.table_id == b.table_id && a.kind == b.kind;
}

template <class T>
bool is_same(const T &a, const T &b)
{
    if constexpr (std::equality_comparable<T>) {
        return a == b;
    } else {
        bool same = true;
        each_field<T>(
            [&](const auto &field) { same = same && is_same(a.*field.member, b.*field.member); });
        return same;
    }
}

bool is_same(const std::vector<OfpFlowTable> &a, const std::vector<OfpFlowTable> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const auto &one, const auto &other) { return is_same(one, other); });
}

// Walks two states of the configuration; what a null state would hold is written in any case.
class Changes {
public:
    Changes(std::string path, std::vector<StoredRow> &rows) : path_(std::move(path)), rows_(rows) {}

    template <Structure T>
    void write(const T *before, const T &after)
    {
        each_field<T>([&](const auto &field) {
            const auto *const old = before ? &(before->*field.member) : nullptr;
            const auto &now = after.*field.member;
            if (!old || !is_same(*old, now)) {
                below(field.name, [&] { write(old, now); });
            }
        });
    }

    template <class T>
    void write(const T *before, const T &after)
    {
        if (!before || *before != after) {
            rows_.push_back({path_, to_stored(after)});
        }
    }

    template <class T>
    void write(const std::optional<T> *before, const std::optional<T> &after)
    {
        const T *const old = before && *before ? &**before : nullptr;
        if (after) {
            write(old, *after);
        } else if (old) {
            remove<T>();
        }
    }

    template <class Key, class T>
    void write(const std::map<Key, T> *before, const std::map<Key, T> &after)
    {
        static const std::map<Key, T> none;
        const std::map<Key, T> &old = before ? *before : none;
        for (const auto &element : old) {
            if (!after.contains(element.first)) {
                below(name_of(element.first), [&] { remove<T>(); });
            }
        }
        for (const auto &element : after) {
            const auto known = old.find(element.first);
            below(name_of(element.first),
                  [&] { write(known == old.end() ? nullptr : &known->second, element.second); });
        }
    }

    void write(const std::set<uint32_t> *before, const std::set<uint32_t> &after)
    {
        const auto old = before ? as_map(*before) : std::map<uint32_t, bool>{};
        write(&old, as_map(after));
    }

    void write(const std::vector<OfpFlowTable> *before, const std::vector<OfpFlowTable> &after)
    {
        const auto old = before ? as_map(*before) : std::map<uint8_t, uint32_t>{};
        write(&old, as_map(after));
    }

private:
    template <class Write>
    void below(std::string_view name, Write write)
    {
        const size_t length = path_.size();
        path_ += '/';
        path_ += name;
        write();
        path_.resize(length);
    }

    template <class T>
    void remove()
    {
        rows_.push_back({Structure<T> ? path_ + '/' : path_, std::monostate{}});
    }

    static std::map<uint32_t, bool> as_map(const std::set<uint32_t> &members)
    {
        std::map<uint32_t, bool> map;
        for (const uint32_t member : members) {
            map.emplace(member, true);
        }
        return map;
    }

    static std::map<uint8_t, uint32_t> as_map(const std::vector<OfpFlowTable> &tables)
    {
        std::map<uint8_t, uint32_t> kinds;
        for (const OfpFlowTable &table : tables) {
            kinds.emplace(table.table_id, table.kind);
        }
        return kinds;
    }

    std::string path_;
    std::vector<StoredRow> &rows_;
};

// ---- Reading

constexpr const char *UNKNOWN = "is not known";
constexpr const char *WRONG = "has a value that cannot be";

// The first name of a path, which is taken off.
std::string_view take_name(std::string_view &path)
{
    const size_t end = std::min(path.find('/'), path.size());
    const std::string_view name = path.substr(0, end);
    path.remove_prefix(std::min(end + 1, path.size()));
    return name;
}

// Each reads what path names below an object. Null, or what is wrong with the row.
template <class T>
const char *read(T &object, std::string_view path, const StoredValue &value)
{
    if (!path.empty()) {
        return UNKNOWN;
    }
    return from_stored(value, object) ? nullptr : WRONG;
}

const char *read(std::set<uint32_t> &members, std::string_view path, const StoredValue &value)
{
    uint32_t member = 0;
    bool present = false;
    if (!read_name(path, member)) {
        return UNKNOWN;
    }
    if (!from_stored(value, present) || !present) {
        return WRONG;
    }
    members.insert(member);
    return nullptr;
}

const char *read(std::vector<OfpFlowTable> &tables, std::string_view path, const StoredValue &value)
{
    OfpFlowTable table{};
    if (!read_name(path, table.table_id) || table.table_id == UINT8_MAX) {
        return UNKNOWN;
    }
    if (!from_stored(value, table.kind)) {
        return WRONG;
    }
    const auto at = std::find_if(tables.begin(), tables.end(), [&](const OfpFlowTable &other) {
        return other.table_id > table.table_id;
    });
    tables.insert(at, table);
    return nullptr;
}

template <class T>
const char *read(std::optional<T> &object, std::string_view path, const StoredValue &value);
template <class Key, class T>
const char *read(std::map<Key, T> &elements, std::string_view path, const StoredValue &value);

template <Structure T>
const char *read(T &object, std::string_view path, const StoredValue &value)
{
    const std::string_view name = take_name(path);
    const char *wrong = UNKNOWN;
    each_field<T>([&](const auto &field) {
        if (name == field.name) {
            wrong = read(object.*field.member, path, value);
        }
    });
    return wrong;
}

template <class T>
const char *read(std::optional<T> &object, std::string_view path, const StoredValue &value)
{
    return read(object ? *object : object.emplace(), path, value);
}

template <class Key, class T>
const char *read(std::map<Key, T> &elements, std::string_view path, const StoredValue &value)
{
    Key key{};
    return read_name(take_name(path), key) ? read(elements[key], path, value) : UNKNOWN;
}

// ---- What no single row shows

constexpr size_t LONGEST_NAME = 31;

bool is_sound(const Controller &controller)
{
    const auto has_room = [](const auto &auxiliary) {
        return auxiliary.first != 0 && auxiliary.second.vrf.size() <= LONGEST_NAME;
    };
    return controller.vrf.size() <= LONGEST_NAME && controller.tls_policy.size() <= LONGEST_NAME &&
           std::all_of(controller.auxiliaries.begin(), controller.auxiliaries.end(), has_room);
}

bool is_sound(const InstanceConfig &instance)
{
    constexpr uint16_t LAST_FILTER_KIND = 5;
    return instance.filter.filter_kind <= LAST_FILTER_KIND &&
           std::all_of(instance.controllers.begin(), instance.controllers.end(),
                       [](const auto &controller) {
                           return controller.first < CONTROLLERS_PER_INSTANCE &&
                                  is_sound(controller.second);
                       });
}

constexpr std::string_view INSTANCE = "instance";
constexpr std::string_view SWITCH = "switch";

std::string instance_path(uint16_t id)
{
    char path[32];
    OFP_util_GetDbmCfgKey(id, "instance/%u", sizeof path, path);
    return path;
}

} // namespace

void add_changes(uint16_t id, const InstanceConfig *before, const InstanceConfig *after,
                 std::vector<StoredRow> &rows)
{
    if (after) {
        Changes(instance_path(id), rows).write(before, *after);
    } else if (before) {
        rows.push_back({instance_path(id) + '/', std::monostate{}});
    }
}

void add_changes(const GlobalConfig &before, const GlobalConfig &after,
                 std::vector<StoredRow> &rows)
{
    Changes(std::string(SWITCH), rows).write(&before, after);
}

std::string read_rows(std::span<const StoredRow> rows, Instances &instances, GlobalConfig &global)
{
    std::map<uint16_t, InstanceConfig> found;
    for (const StoredRow &row : rows) {
        std::string_view path = row.key;
        const std::string_view section = take_name(path);
        const char *wrong = UNKNOWN;
        uint16_t id = 0;
        if (section == SWITCH) {
            wrong = read(global, path, row.value);
        } else if (section == INSTANCE && read_name(take_name(path), id) && id != 0 &&
                   id != UINT16_MAX) {
            wrong = read(found[id], path, row.value);
        }
        if (wrong) {
            return "its row " + row.key + ' ' + wrong;
        }
    }
    for (auto &[id, instance] : found) {
        if (!is_sound(instance)) {
            return "its rows " + instance_path(id) + "/... contradict each other";
        }
        instance.filter.instance_id = id;
        instances.emplace(id, std::make_shared<const InstanceConfig>(std::move(instance)));
    }
    return {};
}

} // namespace agent
