// Hand-written functions of openconfig-system, OpenConfig to native: the root
// augment parser, the banners and the clock.
#include <optional>

#include "ymap_ocsystem_modules.h"

using ymap::add_value;
using ymap::read_kind;
using ymap::text_equal;

// The augment parser of all of /system. An unknown namespace is logged and
// dropped here rather than refused: only the gRPC augment has a place to go.
YMAP_HAND(ymap_oq_ocsystem_openconfigsystem_lvla_system_parse_augments) {
    const char *ns = node->namespace_;
    YFW_MAP_TRC(ctx, name, "namespace: %s", ns != nullptr ? ns : "(none)");
    print_data(ctx);
    const bool grpc = text_equal(ns, NS_OPENCONFIG_SYSTEM_GRPC);
    if (read_kind(ctx)) {
        if (grpc || text_equal(ns, NS_OPENCONFIG_SYSTEM))
            return ymap_oq_ocsystem_openconfigsystemgrpc_augment_lvla_system(ctx, node, out_tree);
        YFW_MAP_ERR(ctx, name, "Unsupported namespace");
        return YFW_SUCCESS;
    }
    if (grpc)
        return ymap_oq_ocsystem_openconfigsystemgrpc_augment_lvla_system(ctx, node, out_tree);
    YFW_MAP_TRC(ctx, name, "Unknown namespace");
    return YFW_SUCCESS;
}

namespace {

// A banner leaf is a list entry of the native model, keyed by the banner's
// name. A read names only the text, so it selects the text of every banner;
// the way back decides which leaf each entry feeds.
cerrno config_banner(yfw_map_ctx *ctx, tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree,
                     const char *banner) {
    if (read_kind(ctx))
        return add_value(ctx, out_tree, "/banners/banner/banner-text", NS_INFRA_INFRA_CFG,
                         node->value);
    if (yfw_map_is_request_delete(node)) {
        (void)yfw_map_datatree_add_path_flagged(ctx, out_tree, "/banners/banner",
                                                NS_INFRA_INFRA_CFG, nullptr, node, nullptr, 1, 0);
        (void)yfw_map_datatree_add_path_flagged(ctx, out_tree, "/banners/banner/banner-name",
                                                NS_INFRA_INFRA_CFG, banner, node, nullptr, 1, 0);
        // The text node is named with the key text; its operation is what counts.
        return yfw_map_datatree_add_path_flagged(ctx, out_tree, "/banners/banner/banner-text",
                                                 NS_INFRA_INFRA_CFG, banner, node, nullptr, 0, 0);
    }
    (void)yfw_map_datatree_add_path_flagged(ctx, out_tree, "/banners/banner", NS_INFRA_INFRA_CFG,
                                            nullptr, nullptr, nullptr, 1, 0);
    (void)yfw_map_datatree_add_path_flagged(ctx, out_tree, "/banners/banner/banner-name",
                                            NS_INFRA_INFRA_CFG, banner, nullptr, nullptr, 1, 0);
    return yfw_map_datatree_add_path_flagged(ctx, out_tree, "/banners/banner/banner-text",
                                             NS_INFRA_INFRA_CFG, node->value, node, nullptr, 0, 0);
}

} // namespace

YMAP_HAND(oc_system_config_login_banner) {
    return config_banner(ctx, node, out_tree, "login");
}

YMAP_HAND(oc_system_config_motd_banner) {
    return config_banner(ctx, node, out_tree, "motd");
}

namespace {

constexpr const char kTimeZone[] = "/clock/time-zone";
constexpr const char kAreaName[] = "/clock/time-zone/area-name";

// What the time zone container and its leaf share: a read reads the area name
// alone, a delete takes the whole time zone, both leaves with it. Nothing when
// the request is an edit without delete.
std::optional<cerrno> read_or_delete_time_zone(yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                                               tidl_yfw_datatree *out_tree) {
    if (read_kind(ctx))
        return add_value(ctx, out_tree, kAreaName, NS_INFRA_CLOCK_LINUX_CFG, node->value);
    if (yfw_map_is_request_delete(node))
        return yfw_map_datatree_add_path_flagged(ctx, out_tree, kTimeZone, NS_INFRA_CLOCK_LINUX_CFG,
                                                 nullptr, node, nullptr, 0, 0);
    return std::nullopt;
}

} // namespace

// /system/clock/config: named bare, the whole native time zone is meant.
YMAP_HAND_COUNT(ymap_oq_ocsystem_openconfigsystem_system_clock_config) {
    if (count != 0) {
        YFW_MAP_TRC(ctx, name, YMAP_MSG_NOT_MAPPED);
        return YFW_SUCCESS;
    }
    YFW_MAP_TRC(ctx, name, YMAP_MSG_NO_SUBTREES);
    if (const auto done = read_or_delete_time_zone(ctx, node, out_tree))
        return *done;
    YFW_MAP_TRC(ctx, name, YMAP_MSG_MAPPED);
    return add_value(ctx, out_tree, kTimeZone, NS_INFRA_CLOCK_LINUX_CFG, nullptr);
}

// One OpenConfig name fills the native area name.
YMAP_HAND(ymap_oq_ocsystem_openconfigsystem_clock_config_timezone) {
    if (const auto done = read_or_delete_time_zone(ctx, node, out_tree))
        return *done;
    (void)yfw_map_datatree_add_path_flagged(ctx, out_tree, kAreaName, NS_INFRA_CLOCK_LINUX_CFG,
                                            node->value, node, nullptr, 0, 0);
    // The native name is created empty: the OpenConfig name is the area name.
    return add_value(ctx, out_tree, "/clock/time-zone/time-zone-name", NS_INFRA_CLOCK_LINUX_CFG,
                     nullptr);
}
