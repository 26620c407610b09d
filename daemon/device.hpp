// What the simulated device does with a request: an OpenConfig edit mapped to
// a native edit and applied to the store, an OpenConfig read mapped to a
// native read, answered from the store and mapped back. The protocol side
// (the NETCONF server) hands it the texts of <config> and <filter>.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "native_store.hpp"
#include "oc_yang.hpp"
#include "yfw_map.h"

namespace ocsysmapd {

// An rpc-error: `tag` is the NETCONF error-tag, `app_tag` the mapping status
// name where the mapping refused, `element` the refused node's name.
struct Failure {
    std::string tag;
    std::string app_tag;
    std::string element;
    std::string path;
    std::string message;
};

// What the <edit-config> asked for besides its content.
enum class EditDefault { merge, replace, none };
struct EditOptions {
    EditDefault default_operation = EditDefault::merge;
    bool test_only = false;
};

class Device {
public:
    // Loads the store from `file` (and writes an empty one when there is
    // none); throws std::runtime_error when it does not parse. OpenConfig
    // requests and answers go through `models`.
    Device(std::span<const yfw_map_reg_mod_t> trees, const ocsysmap::yang::Models &models,
           StoreFile file);

    // The content of <config> (OpenConfig roots). Nothing changes on failure.
    std::optional<Failure> edit(std::string_view config_xml, EditOptions options);

    // A read of kind KIND_GET_CONFIG or KIND_GET; `filter_xml` is the content
    // of a subtree filter, none for everything. Sets `data_xml` to the
    // OpenConfig roots of the answer (no wrapper) on success.
    std::optional<Failure> read(uint32_t kind, std::optional<std::string_view> filter_xml,
                                std::string &data_xml);

    const Forest &store() const { return store_; }

    // The operational roots a <get> reads besides the store; the source may
    // read the configuration through this device.
    void set_operational(std::function<Forest()> source) { operational_ = std::move(source); }

private:
    // Whether the running configuration holds the OpenConfig list entry.
    bool holds(const lyd_node *entry);
    // The models' defaults that the native side needs as keys, on the new
    // entries of an edit.
    void add_key_defaults(lyd_node *tree, EditDefault default_op);

    std::span<const yfw_map_reg_mod_t> trees_;
    const ocsysmap::yang::Models &models_;
    StoreFile file_;
    Forest store_;
    std::function<Forest()> operational_;
};

} // namespace ocsysmapd
