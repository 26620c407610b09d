// Hand-written functions of Tarvex-QV-infra-infra-clock-linux-cfg, native to
// OpenConfig.
#include "ymap_ocsystem_modules.h"

// The area name is the OpenConfig time zone name, for any read.
extern "C" YMAP_EXPORT cerrno
ymap_qo_ocsystem_tarvexqvinfrainfraclocklinuxcfg_man_leaf_lvla_clock_timezone_areaname(
    yfw_map_ctx *ctx, tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    return ymap::framed(ctx, __func__, node, out_tree, [&] {
        return ymap::add_value(ctx, out_tree, "/system/clock/config/timezone-name",
                               NS_OPENCONFIG_SYSTEM, node->value);
    });
}
