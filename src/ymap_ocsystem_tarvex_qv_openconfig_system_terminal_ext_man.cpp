// Hand-written functions of the Telnet terminal extension: the entry from
// /system/telnet-server and its namespace dispatch, the session limits, the
// row switch of its xpath tables, and the native key that opens the
// OpenConfig entries.
#include <string_view>

#include "ymap_module_state.hpp"
#include "ymap_ocsystem_modules.h"
#include "ymap_xpath_tables.hpp"

using ymap::add_value;
using ymap::read_kind;
using ymap::text_equal;

namespace {

bool extension_namespace(const char *ns) {
    return text_equal(ns, NS_OPENCONFIG_SYSTEM) || text_equal(ns, NS_TERMINAL_EXT);
}

// A session limit is written with the entry that holds it; deleting the
// limit alone leaves the native leaf until its VRF entry goes.
cerrno session_limit(yfw_map_ctx *ctx, tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree,
                     const char *path) {
    if (yfw_map_is_request_delete(node) || oper_only(ctx))
        return YFW_SUCCESS;
    return add_value(ctx, out_tree, path, NS_IP_TCP_CFG, node->value);
}

// Every table of the extension switches on its native configuration row
// alone: the operational rows are reached through the `state` leaves.
cerrno select_config_row(const char *name, yfw_map_ctx *ctx, int32_t count,
                         xpath_list_type_t *rows) {
    // The path field is a whole array, so its first bytes can be compared
    // as they stand, without a call.
    constexpr std::string_view kPrefix = "/ip/";
    for (int32_t i = 0; i < count; ++i) {
        if (std::string_view(rows[i].xpath, kPrefix.size()) == kPrefix) {
            YFW_MAP_TRC(ctx, name, "Setting TRUE for path %s", rows[i].xpath);
            rows[i].selected = 1;
            break;
        }
    }
    return YFW_SUCCESS;
}

struct FamilyEntry {
    uint32_t ymap::ContextFlags::*seen;
    const char *list;
    const char *key;
};
constexpr FamilyEntry kFamilies[] = {
    {&ymap::ContextFlags::ipv4_seen, "/system/telnet-server/ipv4/vrf",
     "/system/telnet-server/ipv4/vrf/vrf-name"},
    {&ymap::ContextFlags::ipv6_seen, "/system/telnet-server/ipv6/vrf",
     "/system/telnet-server/ipv6/vrf/vrf-name"},
};

} // namespace

// Replaces the generated refusal: the extension's nodes under telnet-server
// come here, and so does telnet-server itself when its walker visits every
// child of an empty container. Any other namespace is dropped.
YMAP_HAND(ymap_oq_ocsystem_openconfigsystem_lvla_system_telnetserver_parse_augments) {
    YFW_MAP_TRC(ctx, name, "TAG is %s", node->tag != nullptr ? node->tag : "(none)");
    if (extension_namespace(node->namespace_))
        return ymap_qo_ocsystem_tarvexqvopenconfigsystemterminalext_augment_lvla_telnet_server(
            ctx, node, out_tree);
    YFW_MAP_TRC(ctx, name, "Unknown namespace");
    return YFW_SUCCESS;
}

// Both families from one node. The IPv4 walker's status is dropped on
// purpose: only the IPv6 walker's result is reported.
YMAP_HAND(ymap_qo_ocsystem_tarvexqvopenconfigsystemterminalext_lvla_telnet_server_parse_augments) {
    if (read_kind(ctx))
        YFW_MAP_TRC(ctx, name, "Subtree count %d",
                    static_cast<int>(node->present_subtrees != 0 ? node->subtree_count : 0));
    YFW_MAP_TRC(ctx, name, YMAP_MSG_PROCESSING_TAG, node->tag != nullptr ? node->tag : "(none)");
    if (text_equal(node->namespace_, NS_OPENCONFIG_SYSTEM))
        YFW_MAP_TRC(ctx, name, "MATCHED PARENT NAMESPACE");
    else if (text_equal(node->namespace_, NS_TERMINAL_EXT))
        YFW_MAP_TRC(ctx, name, "MATCHED PRIVATE EXT NAMESPACE");
    else
        return YFW_SUCCESS;
    (void)ymap_qo_ocsystem_tarvexqvopenconfigsystemterminalext_lvla_ipv4(ctx, node, out_tree);
    return ymap_qo_ocsystem_tarvexqvopenconfigsystemterminalext_lvla_ipv6(ctx, node, out_tree);
}

YMAP_HAND(ymap_qo_ocsystem_tarvexqvopenconfigsystemterminalext_leaf_lvla_ipv4_config_sessionlimit) {
    return session_limit(ctx, node, out_tree,
                         "/ip/tinetd/services/telnet/vrfs/vrf/ipv4/tcp/maximum-server");
}

YMAP_HAND(ymap_qo_ocsystem_tarvexqvopenconfigsystemterminalext_leaf_lvla_ipv6_config_sessionlimit) {
    return session_limit(ctx, node, out_tree,
                         "/ip/tinetd/services/telnet/vrfs/vrf/ipv6/tcp/maximum-server");
}

YMAP_HAND_CALLBACK(oc_qv_ipv4_vrf_list) {
    return select_config_row(name, ctx, count, rows);
}
YMAP_HAND_CALLBACK(oc_qv_ipv4_vrf_vrfname) {
    return select_config_row(name, ctx, count, rows);
}
YMAP_HAND_CALLBACK(oc_qv_ipv6_vrf_list) {
    return select_config_row(name, ctx, count, rows);
}
YMAP_HAND_CALLBACK(oc_qv_ipv6_vrf_vrfname) {
    return select_config_row(name, ctx, count, rows);
}

// The key of a native Telnet VRF entry opens an OpenConfig entry in each
// family the entry holds; an entry with neither is lost. The paths create
// system and telnet-server in the extension's namespace; telnet-server is put
// back in its own, and that repair's status is the mapper's.
YMAP_HAND(ymap_qo_ocsystem_tarvexqviptcpcfg_leaf_lvla_ip_vrf_vrfname) {
    ymap::ContextFlags &flags = ymap::context_flags(ctx);
    for (const FamilyEntry &f : kFamilies) {
        if (flags.*f.seen == 0)
            continue;
        (void)add_value(ctx, out_tree, f.list, NS_TERMINAL_EXT, nullptr, 1, 1);
        (void)add_value(ctx, out_tree, f.key, NS_TERMINAL_EXT, node->value, 0, 1);
        flags.*f.seen = 0;
    }
    return yfw_map_datatree_update_namespace(ctx, out_tree, "/system/telnet-server",
                                             NS_OPENCONFIG_SYSTEM, 0);
}
