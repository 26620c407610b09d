// Hand-written functions of Tarvex-QV-infra-infra-clock-linux-cfg, native to
// OpenConfig.
#include "ymap_ocsystem_modules.h"

// The area name is the OpenConfig time zone name, for any read.
YMAP_HAND(ymap_qo_ocsystem_tarvexqvinfrainfraclocklinuxcfg_man_leaf_lvla_clock_timezone_areaname) {
    return ymap::add_value(ctx, out_tree, "/system/clock/config/timezone-name",
                           NS_OPENCONFIG_SYSTEM, node->value);
}
