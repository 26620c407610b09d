// The mapping library's trees, filled the way a framework registers them at
// load: one record per registration function the library exports.
#pragma once

#include <array>

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

} // namespace ocsysmap
