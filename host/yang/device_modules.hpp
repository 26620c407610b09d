// The device's own YANG modules, compiled in: the Telnet extension and the
// deviation module made from the mapping tables at build time, loaded with
// the published models by the tool and the device alike; and the coverage
// report made from the same tables.
#pragma once

#include <span>
#include <string_view>

namespace ocsysmap::yang {

struct DeviceModule {
    std::string_view name;
    std::string_view revision;
    std::string_view text; // YANG
};

std::span<const DeviceModule> device_modules();

// The OpenConfig paths mapped and not mapped, with counts per subtree.
std::string_view coverage_report();

} // namespace ocsysmap::yang
