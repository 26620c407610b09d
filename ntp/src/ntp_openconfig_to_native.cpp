// The hand-written mappers of /system/ntp, OpenConfig to native: the servers
// container, the peer options whose native form differs from the generic
// table leaf, and the leaves whose conversion the NTP companion library owns.
#include "ymap_ocsystem_modules.h"
#include "ymap_xpath_tables.hpp"

namespace {

constexpr const char kPeerVrf[] = "/ntp/peer-vrfs/peer-vrf";
constexpr const char kVrfName[] = "/ntp/peer-vrfs/peer-vrf/vrf-name";
constexpr const char kDefaultVrf[] = "default"; // every OpenConfig server is a peer of it

// The peer-type entry of each family, in the row order of the peer tables.
constexpr const char *kPeerTypeEntry[] = {
    "/ntp/peer-vrfs/peer-vrf/peer-ipv4s/peer-ipv4/peer-type-ipv4",
    "/ntp/peer-vrfs/peer-vrf/peer-ipv6s/peer-ipv6/peer-type-ipv6",
};

cerrno add_with_source(yfw_map_ctx *ctx, tidl_yfw_datatree *out_tree, const char *path,
                       const char *ns, const char *value, tidl_yfw_datatree *node,
                       uint32_t augment_flag) {
    return yfw_map_datatree_add_path_flagged(ctx, out_tree, path, ns, value, node, nullptr, 0,
                                             augment_flag);
}

// iburst and preferred-peer are empty leaves: false can only be their removal.
cerrno empty_leaf_option(const ymap::XpathTable &table, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                         tidl_yfw_datatree *out_tree) {
    if (ymap::read_kind(ctx) || yfw_map_is_request_delete(node))
        return ymap::run_leaf_table(table, ctx, node, out_tree);
    const ymap::SelectedRows rows(table, ctx);
    return rows.each([&](uint32_t, const xpath_list_type_t &row) {
        const char *value = row.value_fn(node);
        if (value == nullptr)
            yfw_dt_set_operation(node, OP_REMOVE);
        return add_with_source(ctx, out_tree, row.xpath, row.namespace_, value, node,
                               row.augment_flag);
    });
}

} // namespace

YMAP_HAND_COUNT(ymap_oq_ocsystem_openconfigsystem_cont_lvla_system_ntp_servers) {
    if (count != 0) {
        YFW_MAP_TRC(ctx, name, YMAP_MSG_MAPPED);
        ymap::add_value(ctx, out_tree, kPeerVrf, NS_IP_NTP_CFG, nullptr);
        return ymap::add_value(ctx, out_tree, kVrfName, NS_IP_NTP_CFG, kDefaultVrf);
    }
    YFW_MAP_TRC(ctx, name, YMAP_MSG_NO_SUBTREES);
    if (!ymap::read_kind(ctx)) {
        if (!yfw_map_is_request_delete(node))
            return YFW_SUCCESS;
        // The whole container goes: every peer of the VRF with it.
        add_with_source(ctx, out_tree, kPeerVrf, NS_IP_NTP_CFG, nullptr, node, 0);
    }
    return ymap::add_value(ctx, out_tree, kVrfName, NS_IP_NTP_CFG, kDefaultVrf);
}

// Deleting the association type deletes the peer-type entry it keys, with
// its version and options.
YMAP_HAND(ymap_oq_ocsystem_openconfigsystem_leaf_lvla_system_config_associationtype) {
    const ymap::XpathTable &table = ymap::xpath::oc_qv_ntp_assoc_type;
    if (ymap::read_kind(ctx) || !yfw_map_is_request_delete(node))
        return ymap::run_leaf_table(table, ctx, node, out_tree);
    const ymap::SelectedRows rows(table, ctx);
    return rows.each([&](uint32_t i, const xpath_list_type_t &row) {
        if (row.value_fn == nullptr)
            return YFW_SUCCESS;
        add_with_source(ctx, out_tree, row.xpath, row.namespace_, row.value_fn(node), node,
                        row.augment_flag);
        return add_with_source(ctx, out_tree, kPeerTypeEntry[i], row.namespace_, nullptr, node,
                               row.augment_flag);
    });
}

YMAP_HAND(ymap_oq_ocsystem_openconfigsystem_leaf_lvla_system_config_iburst) {
    return empty_leaf_option(ymap::xpath::oc_qv_ntp_iburst, ctx, node, out_tree);
}

YMAP_HAND(ymap_oq_ocsystem_openconfigsystem_leaf_lvla_system_config_prefer) {
    return empty_leaf_option(ymap::xpath::oc_qv_ntp_prefer, ctx, node, out_tree);
}
