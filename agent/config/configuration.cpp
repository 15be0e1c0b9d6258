#include "config/configuration.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <utility>

#include "config/schema.h"

namespace agent {

namespace {

const InstanceConfig *found_in(const Instances &instances, uint16_t id)
{
    const auto found = instances.find(id);
    return found == instances.end() ? nullptr : found->second.get();
}

bool has_port(const InstanceConfig *instance, uint32_t if_index)
{
    return instance && instance->bound_ports.contains(if_index);
}

// A client's instance of which nothing is configured.
bool is_bare_client(uint16_t id, const InstanceConfig *instance)
{
    if (!is_client(id) || !instance) {
        return false;
    }
    const InstanceConfig bare = new_instance(id);
    std::vector<StoredRow> differences;
    add_changes(id, &bare, instance, differences);
    return differences.empty();
}

size_t client_index(uint16_t client) { return size_t{client} - FIRST_CLIENT; }

} // namespace

void ConfigurationObserver::instance_changed(uint16_t, const InstanceConfig *,
                                             const InstanceConfig *) noexcept
{}
void ConfigurationObserver::global_changed(const GlobalConfig &, const GlobalConfig &) noexcept {}
void ConfigurationObserver::counters_reset(uint16_t, uint8_t) noexcept {}

const OfpFlowTable *InstanceConfig::table(uint8_t id) const
{
    const auto at = std::find_if(tables.begin(), tables.end(),
                                 [id](const OfpFlowTable &table) { return table.table_id == id; });
    return at == tables.end() ? nullptr : &*at;
}

InstanceConfig new_instance(uint16_t id)
{
    InstanceConfig instance;
    instance.filter.instance_id = id;
    if (is_client(id)) {
        instance.tables.push_back(
            {.table_id = CLIENT_TABLE, .reserved_1 = {}, .kind = CLIENT_TABLE_KIND});
    }
    return instance;
}

std::string Configuration::attach(std::unique_ptr<Store> store)
{
    std::vector<StoredRow> rows;
    Instances instances;
    GlobalConfig global;
    std::string why_not = store->read(rows);
    if (why_not.empty()) {
        why_not = read_rows(rows, instances, global);
    }
    if (why_not.empty()) {
        instances_ = std::move(instances);
        global_ = std::move(global);
        not_stored_.reset();
        store_ = std::move(store);
    }
    return why_not;
}

// ---- Reading

const InstanceConfig *Configuration::instance(uint16_t id) const
{
    return found_in(instances_, id);
}

std::optional<uint16_t> Configuration::next_instance(uint16_t after) const
{
    const auto next = instances_.upper_bound(after);
    return next == instances_.end() ? std::nullopt : std::optional(next->first);
}

uint64_t Configuration::datapath_id(uint16_t id) const
{
    const InstanceConfig *const found = instance(id);
    return found && found->datapath_id ? *found->datapath_id : OFP_util_DefaultPathID(id);
}

std::optional<uint16_t> Configuration::instance_of_port(uint32_t if_index) const
{
    for (const auto &[id, instance] : instances_) {
        if (has_port(instance.get(), if_index)) {
            return id;
        }
    }
    return std::nullopt;
}

// ---- Changing

const InstanceConfig *Configuration::staged(uint16_t id) const
{
    const auto found = staged_.find(id);
    return found == staged_.end() ? instance(id) : found->second.get();
}

const GlobalConfig &Configuration::staged_global() const
{
    return staged_global_ ? *staged_global_ : global_;
}

std::optional<uint16_t> Configuration::staged_instance_of_port(uint32_t if_index) const
{
    for (const auto &[id, instance] : staged_) {
        if (has_port(instance.get(), if_index)) {
            return id;
        }
    }
    const auto stored = instance_of_port(if_index);
    return stored && !staged_.contains(*stored) ? stored : std::nullopt;
}

void Configuration::stage(uint16_t id, InstanceConfig instance)
{
    staged_.insert_or_assign(id, std::make_shared<const InstanceConfig>(std::move(instance)));
}

void Configuration::stage_removal(uint16_t id) { staged_.insert_or_assign(id, nullptr); }

void Configuration::stage(GlobalConfig global)
{
    staged_global_ = std::make_unique<GlobalConfig>(std::move(global));
}

void Configuration::admit_client(uint16_t client)
{
    const bool is_new =
        instances_.try_emplace(client, std::make_shared<const InstanceConfig>(new_instance(client)))
            .second;
    if (is_new) {
        not_stored_.set(client_index(client));
    }
}

bool Configuration::commit() noexcept
{
    bool stored = false;
    try {
        stored = write_staged();
    } catch (const std::exception &failure) {
        std::snprintf(failure_, sizeof failure_, "%s", failure.what());
    }
    if (stored) {
        apply();
    } else {
        discard();
    }
    return stored;
}

bool Configuration::write_staged()
{
    std::vector<StoredRow> rows;
    auto not_stored = not_stored_;
    for (const auto &[id, after] : staged_) {
        const bool in_store = !is_client(id) || !not_stored_[client_index(id)];
        const bool is_bare = is_bare_client(id, after.get());
        add_changes(id, in_store ? instance(id) : nullptr, is_bare ? nullptr : after.get(), rows);
        if (is_client(id)) {
            not_stored.set(client_index(id), is_bare);
        }
    }
    if (staged_global_) {
        add_changes(global_, *staged_global_, rows);
    }
    if (store_ && !rows.empty()) {
        const std::string why_not = store_->write(rows);
        if (!why_not.empty()) {
            std::snprintf(failure_, sizeof failure_, "%s", why_not.c_str());
            return false;
        }
    }
    not_stored_ = not_stored;
    return true;
}

void Configuration::discard() noexcept
{
    staged_.clear();
    staged_global_.reset();
}

// Nothing here allocates: what was stored becomes the configuration in any case.
void Configuration::apply() noexcept
{
    while (!staged_.empty()) {
        apply(staged_.extract(staged_.begin()));
    }
    if (const std::unique_ptr<GlobalConfig> next = std::move(staged_global_)) {
        std::swap(global_, *next);
        for (ConfigurationObserver *const observer : observers_) {
            observer->global_changed(*next, global_);
        }
    }
}

void Configuration::apply(Instances::node_type staged) noexcept
{
    const uint16_t id = staged.key();
    const std::shared_ptr<const InstanceConfig> after = staged.mapped();
    std::shared_ptr<const InstanceConfig> before;
    const auto found = instances_.find(id);
    if (found != instances_.end()) {
        before = found->second;
    }
    if (found == instances_.end() && after) {
        instances_.insert(std::move(staged));
    } else if (after) {
        found->second = after;
    } else if (before) {
        instances_.erase(found);
    }
    for (ConfigurationObserver *const observer : observers_) {
        observer->instance_changed(id, before.get(), after.get());
    }
}

// ---- Observers

void Configuration::add_observer(ConfigurationObserver &observer)
{
    observers_.push_back(&observer);
}

void Configuration::remove_observer(ConfigurationObserver &observer)
{
    std::erase(observers_, &observer);
}

void Configuration::reset_counters(uint16_t instance, uint8_t controller)
{
    for (ConfigurationObserver *const observer : observers_) {
        observer->counters_reset(instance, controller);
    }
}

} // namespace agent
