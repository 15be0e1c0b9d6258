// The switch's configuration: what was set and stored, and what is about to be.
//
// Requests stage changes; commit() stores all that was staged in one transaction and only then
// makes it the configuration that everybody reads. When storing fails nothing changes. The state
// that a request builds on is the staged one, that of the requests before it.
#pragma once

#include <bitset>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "config/settings.h"
#include "config/store.h"
#include "ofp.h"

namespace agent {

// Is told of changes, after they were stored, in the order of their ids. It must not stage any.
class ConfigurationObserver {
public:
    virtual ~ConfigurationObserver() = default;

    // before is null for a new instance, after for one that was removed; both live for the call.
    virtual void instance_changed(uint16_t id, const InstanceConfig *before,
                                  const InstanceConfig *after) noexcept;
    virtual void global_changed(const GlobalConfig &before, const GlobalConfig &after) noexcept;
    // A controller's counters are to begin at zero; 64 stands for all of the instance.
    virtual void counters_reset(uint16_t instance, uint8_t controller) noexcept;
};

using Instances = std::map<uint16_t, std::shared_ptr<const InstanceConfig>>;

class Configuration {
public:
    Configuration() = default; // kept in memory alone
    Configuration(const Configuration &) = delete;
    Configuration &operator=(const Configuration &) = delete;

    // Reads all that the store holds and stores every change there from now on. Empty, or why not;
    // the configuration is then as it was.
    std::string attach(std::unique_ptr<Store> store);

    // ---- Reading: what is stored

    const InstanceConfig *instance(uint16_t id) const; // null when there is none
    std::optional<uint16_t> next_instance(uint16_t after) const;
    const GlobalConfig &global() const { return global_; }

    // The id that was set, else that which the switch's MAC address gives.
    uint64_t datapath_id(uint16_t instance) const;
    // The instance that a port is bound to.
    std::optional<uint16_t> instance_of_port(uint32_t if_index) const;

    // ---- Changing

    const InstanceConfig *staged(uint16_t id) const;
    const GlobalConfig &staged_global() const;
    std::optional<uint16_t> staged_instance_of_port(uint32_t if_index) const;

    void stage(uint16_t id, InstanceConfig instance);
    void stage_removal(uint16_t id);
    void stage(GlobalConfig global);

    bool is_staged() const { return staged_global_ || !staged_.empty(); } // waits for commit
    // False, and failure() says why, when it could not be stored; nothing of it is kept then.
    [[nodiscard]] bool commit() noexcept;
    const char *failure() const { return failure_; }

    // A client's instance exists, with its table, from its first smooth period on. It is not stored
    // until something of it is configured.
    void admit_client(uint16_t client);

    // An observer must be removed before it goes.
    void add_observer(ConfigurationObserver &observer);
    void remove_observer(ConfigurationObserver &observer);
    void reset_counters(uint16_t instance, uint8_t controller);

private:
    void discard() noexcept;
    bool write_staged();
    void apply() noexcept;
    void apply(Instances::node_type staged) noexcept;

    Instances instances_;
    GlobalConfig global_;
    // Clients' instances of which nothing was configured yet.
    std::bitset<LAST_CLIENT - FIRST_CLIENT + 1> not_stored_;
    Instances staged_; // null: to be removed
    std::unique_ptr<GlobalConfig> staged_global_;
    std::unique_ptr<Store> store_;
    std::vector<ConfigurationObserver *> observers_;
    char failure_[160] = "";
};

// An instance that has nothing but its id; a client's also has the client's table.
InstanceConfig new_instance(uint16_t id);

} // namespace agent
