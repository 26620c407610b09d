// Hand-written functions of Tarvex-QV-infra-infra-cfg, native to OpenConfig.
#include <cstring>

#include "ymap_ocsystem_modules.h"

// A banner's text lands on login-banner when its name begins with "login",
// and on motd-banner otherwise: the list's other entries are not refused.
YMAP_HAND(ymap_qo_ocsystem_tarvexqvinfrainfracfg_man_leaf_lvla_banners_banner_bannertext) {
    char *banner_name = nullptr;
    (void)yfw_map_get_node_info(ctx, "/banners/banner", "banner-name", &banner_name);
    const bool login = banner_name != nullptr && std::strncmp(banner_name, "login", 5) == 0;
    return ymap::add_value(ctx, out_tree,
                           login ? "/system/config/login-banner" : "/system/config/motd-banner",
                           NS_OPENCONFIG_SYSTEM, node->value);
}
