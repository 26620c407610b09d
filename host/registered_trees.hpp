// The mapping library's trees, filled the way a framework registers them at
// load: one record per registration function the library exports, and the
// lookup of the walker that maps a root.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "yfw_map.h"
#include "ymap_ocsystem.h"

namespace ocsysmap {

#define YMAP_REGISTRATION_POINTER_(fn) &fn,
inline constexpr std::array kRegistrations{YMAP_OCSYSTEM_REGISTRATIONS(YMAP_REGISTRATION_POINTER_)};
#undef YMAP_REGISTRATION_POINTER_

inline std::array<yfw_map_reg_mod_t, kRegistrations.size()> registered_trees() {
    std::array<yfw_map_reg_mod_t, kRegistrations.size()> trees{};
    for (std::size_t i = 0; i < trees.size(); ++i) {
        kRegistrations[i](&trees[i]);
    }
    return trees;
}

// A root's tree and the walker that maps it away from the side it is on.
struct RootMapping {
    const yfw_map_reg_mod_t *tree = nullptr;
    yfw_map_walker_fn walker = nullptr;
    bool from_openconfig = false;
    explicit operator bool() const { return walker != nullptr; }
};

// The first tree whose OpenConfig or native root has this tag and namespace;
// nothing when no tree maps it.
inline RootMapping mapping_of(std::span<const yfw_map_reg_mod_t> trees, std::string_view tag,
                              std::string_view ns) {
    for (const yfw_map_reg_mod_t &tree : trees) {
        if (tree.oc_to_native != nullptr && tag == tree.oc_root && ns == tree.oc_namespace) {
            return {&tree, tree.oc_to_native, true};
        }
        if (tree.native_to_oc != nullptr && tag == tree.native_root &&
            ns == tree.native_namespace) {
            return {&tree, tree.native_to_oc, false};
        }
    }
    return {};
}

inline RootMapping mapping_of(std::span<const yfw_map_reg_mod_t> trees,
                              const tidl_yfw_datatree &root) {
    if (root.tag == nullptr || root.namespace_ == nullptr) {
        return {};
    }
    return mapping_of(trees, root.tag, root.namespace_);
}

} // namespace ocsysmap
