// Hand-written functions of Tarvex-QV-ip-domain-cfg, native to OpenConfig.
// Every VRF lands in the one OpenConfig view, and the leaves written here are
// configuration that OpenConfig has no state twin for in this tree, so they
// are written whatever the request asks.
#include "ymap_ocsystem_modules.h"

namespace {

cerrno add_oc(yfw_map_ctx *ctx, tidl_yfw_datatree *out_tree, const char *path, const char *value,
              uint32_t list_entry = 0) {
    return ymap::add_value(ctx, out_tree, path, NS_OPENCONFIG_SYSTEM, value, list_entry);
}

// A host's name keys the entry always; its config twin is configuration.
cerrno host_name(yfw_map_ctx *ctx, tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    cerrno status =
        add_oc(ctx, out_tree, "/system/dns/host-entries/host-entry/hostname", node->value);
    if (!oper_only(ctx))
        status = add_oc(ctx, out_tree, "/system/dns/host-entries/host-entry/config/hostname",
                        node->value);
    return status;
}

} // namespace

// The VRF's name is not looked at: all VRFs merge into one view.
YMAP_HAND(ymap_qo_ocsystem_tarvexqvipdomaincfg_man_list_lvla_ipdomain_vrfs_vrf) {
    return YFW_SUCCESS;
}

YMAP_HAND(ymap_qo_ocsystem_tarvexqvipdomaincfg_man_leaf_lvla_ipdomain_vrf_name) {
    return add_oc(ctx, out_tree, "/system/config/domain-name", node->value);
}

YMAP_HAND(ymap_qo_ocsystem_tarvexqvipdomaincfg_man_leaf_lvla_ipdomain_list_listname) {
    return add_oc(ctx, out_tree, "/system/dns/config/search", node->value, 1);
}

YMAP_HAND(ymap_qo_ocsystem_tarvexqvipdomaincfg_man_leaf_lvla_ipdomain_server_serveraddress) {
    (void)add_oc(ctx, out_tree, "/system/dns/servers/server/address", node->value, 1);
    return add_oc(ctx, out_tree, "/system/dns/servers/server/config/address", node->value, 1);
}

YMAP_HAND(ymap_qo_ocsystem_tarvexqvipdomaincfg_leaf_lvla_ipdomain_ipv4host_hostname) {
    return host_name(ctx, node, out_tree);
}

YMAP_HAND(ymap_qo_ocsystem_tarvexqvipdomaincfg_leaf_lvla_ipdomain_ipv6host_hostname) {
    return host_name(ctx, node, out_tree);
}
