// Hand-written functions of openconfig-system for /system/dns and the domain
// name, OpenConfig to native. Configuration lives in the VRF "default" of the
// native domain module; a KIND_GET asks the private DNS module instead, since
// that module has the running view of all of it.
#include <optional>

#include "ymap_module_state.hpp"
#include "ymap_ocsystem_modules.h"
#include "ymap_xpath_tables.hpp"

namespace {

using ymap::module_state;
using ymap::ModuleState;
using ymap::read_kind;
using ymap::request_kind;

constexpr const char kIpDomain[] = "/ip-domain";
constexpr const char kVrf[] = "/ip-domain/vrfs/vrf";
constexpr const char kVrfName[] = "/ip-domain/vrfs/vrf/vrf-name";
constexpr const char kDomainName[] = "/ip-domain/vrfs/vrf/name";
constexpr const char kLists[] = "/ip-domain/vrfs/vrf/lists";
constexpr const char kList[] = "/ip-domain/vrfs/vrf/lists/list";
constexpr const char kListOrder[] = "/ip-domain/vrfs/vrf/lists/list/order";
constexpr const char kListName[] = "/ip-domain/vrfs/vrf/lists/list/list-name";
constexpr const char kServers[] = "/ip-domain/vrfs/vrf/servers";
constexpr const char kServerAddress[] = "/ip-domain/vrfs/vrf/servers/server/server-address";
constexpr const char kServerOrder[] = "/ip-domain/vrfs/vrf/servers/server/order";
// OpenConfig list order is not carried over: every native entry is first.
constexpr const char kOrder[] = "0";

// The native entries of one address family of a host entry.
struct HostFamily {
    const char *tag;               // the OpenConfig leaf-list of the family's addresses
    const char *hosts;             // the native container
    const char *entry;             // its list entry
    const char *name;              // the entry's key
    const char *address;           // the entry's addresses
    int32_t ModuleState::*present; // the entry is made and waits for its name
};
constexpr HostFamily kIpv4{"ipv4-address",
                           "/ip-domain/vrfs/vrf/ipv4-hosts",
                           "/ip-domain/vrfs/vrf/ipv4-hosts/ipv4-host",
                           "/ip-domain/vrfs/vrf/ipv4-hosts/ipv4-host/host-name",
                           "/ip-domain/vrfs/vrf/ipv4-hosts/ipv4-host/address",
                           &ModuleState::ipv4_host_is_present};
constexpr HostFamily kIpv6{"ipv6-address",
                           "/ip-domain/vrfs/vrf/ipv6-hosts",
                           "/ip-domain/vrfs/vrf/ipv6-hosts/ipv6-host",
                           "/ip-domain/vrfs/vrf/ipv6-hosts/ipv6-host/host-name",
                           "/ip-domain/vrfs/vrf/ipv6-hosts/ipv6-host/address",
                           &ModuleState::ipv6_host_is_present};
constexpr const HostFamily *kFamilies[] = {&kIpv4, &kIpv6};

bool is_get(const yfw_map_ctx *ctx) {
    return request_kind(ctx) == KIND_GET;
}
bool is_delete_edit(const yfw_map_ctx *ctx, const tidl_yfw_datatree *node) {
    return !read_kind(ctx) && yfw_map_is_request_delete(node) != 0;
}

cerrno add_cfg(yfw_map_ctx *ctx, tidl_yfw_datatree *out_tree, const char *path, const char *value,
               const tidl_yfw_datatree *source, uint32_t list_entry = 0) {
    return yfw_map_datatree_add_path_flagged(ctx, out_tree, path, NS_IP_DOMAIN_CFG, value, source,
                                             nullptr, list_entry, 0);
}
cerrno add_oper(yfw_map_ctx *ctx, tidl_yfw_datatree *out_tree, const char *path,
                const char *value) {
    return ymap::add_value(ctx, out_tree, path, NS_OC_DNS_OPER, value);
}
// OpenConfig DNS is a singleton, held by the native VRF "default".
cerrno add_vrf_key(yfw_map_ctx *ctx, tidl_yfw_datatree *out_tree) {
    return add_cfg(ctx, out_tree, kVrfName, "default", nullptr);
}
cerrno add_default_vrf(yfw_map_ctx *ctx, tidl_yfw_datatree *out_tree) {
    (void)add_cfg(ctx, out_tree, kVrf, nullptr, nullptr, 1);
    return add_vrf_key(ctx, out_tree);
}

// What the DNS containers share: KIND_GET asks the private module for the
// container, and a container named with children needs only its VRF. Empty
// when the container is named bare in a configuration request.
std::optional<cerrno> dns_container(const char *name, yfw_map_ctx *ctx, uint32_t count,
                                    tidl_yfw_datatree *out_tree, const char *oper_path) {
    if (is_get(ctx))
        return add_oper(ctx, out_tree, oper_path, nullptr);
    if (count != 0)
        return add_vrf_key(ctx, out_tree);
    YFW_MAP_TRC(ctx, name, YMAP_MSG_NO_SUBTREES);
    return std::nullopt;
}

// Both native host entries of the entry being walked, named.
cerrno add_host_names(yfw_map_ctx *ctx, tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree,
                      const tidl_yfw_datatree *source) {
    cerrno status = YFW_SUCCESS;
    for (const HostFamily *f : kFamilies)
        status = add_cfg(ctx, out_tree, f->name, node->value, source);
    return status;
}

cerrno host_address(yfw_map_ctx *ctx, tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree,
                    const HostFamily &family) {
    if (is_get(ctx))
        return YFW_SUCCESS;
    return add_cfg(ctx, out_tree, family.address, node->value, read_kind(ctx) ? nullptr : node, 1);
}

} // namespace

// The domain name is configuration alone, on every kind; its value goes along
// even on a delete.
YMAP_HAND(oc_qv_system_config_domain_name) {
    (void)add_vrf_key(ctx, out_tree);
    const uint32_t list_entry = !read_kind(ctx) && !yfw_map_is_request_delete(node) ? 1 : 0;
    return add_cfg(ctx, out_tree, kDomainName, node->value, node, list_entry);
}

YMAP_HAND_COUNT(oc_qv_system_dns) {
    if (const auto done = dns_container(name, ctx, count, out_tree, "/ocsystem/system/dns"))
        return *done;
    if (is_delete_edit(ctx, node)) {
        // All DNS configuration goes, that of other VRFs too: the children have
        // nothing left to name.
        (void)add_cfg(ctx, out_tree, kIpDomain, nullptr, node);
        return YFW_MAP_SKIP_NODE;
    }
    return add_default_vrf(ctx, out_tree);
}

YMAP_HAND_COUNT(oc_qv_system_dns_servers) {
    if (const auto done = dns_container(name, ctx, count, out_tree, "/ocsystem/system/dns/servers"))
        return *done;
    if (read_kind(ctx))
        return YFW_SUCCESS;
    if (yfw_map_is_request_delete(node)) {
        (void)add_vrf_key(ctx, out_tree);
        (void)add_cfg(ctx, out_tree, kServers, nullptr, node);
        return YFW_MAP_SKIP_NODE;
    }
    return add_default_vrf(ctx, out_tree);
}

YMAP_HAND_COUNT(oc_qv_system_dns_host_entries) {
    if (const auto done =
            dns_container(name, ctx, count, out_tree, "/ocsystem/system/dns/host-entries"))
        return *done;
    if (!is_delete_edit(ctx, node))
        return YFW_SUCCESS;
    (void)add_vrf_key(ctx, out_tree);
    for (const HostFamily *f : kFamilies)
        (void)add_cfg(ctx, out_tree, f->hosts, node->value, node);
    return YFW_MAP_SKIP_NODE;
}

// One call per search domain. A bare `config` deleted in a walk-all pass
// reaches here with its own node, and then takes every search domain.
YMAP_HAND(oc_qv_system_dns_config_search) {
    if (is_get(ctx))
        return YFW_SUCCESS;
    if (read_kind(ctx)) {
        (void)add_default_vrf(ctx, out_tree);
        return add_cfg(ctx, out_tree, kLists, nullptr, nullptr, 1);
    }
    if (!yfw_map_is_request_delete(node)) {
        (void)add_vrf_key(ctx, out_tree);
        (void)add_cfg(ctx, out_tree, kList, nullptr, nullptr, 1);
        (void)add_cfg(ctx, out_tree, kListOrder, kOrder, node, 1);
        return add_cfg(ctx, out_tree, kListName, node->value, node, 1);
    }
    const uint32_t child_count = node->present_subtrees != 0 ? node->subtree_count : 0;
    // Children announced and none there: only noted, the tag decides.
    if (node->present_subtrees != 0 && node->subtrees == nullptr && node->subtree_count == 0)
        YFW_MAP_TRC(ctx, name, "Failed to get subtrees information!");
    if (node->tag == nullptr) {
        YFW_MAP_TRC(ctx, name, "Unable to fetch Tag name information!");
        return YFW_SUCCESS;
    }
    (void)add_cfg(ctx, out_tree, kVrf, nullptr, nullptr);
    (void)add_vrf_key(ctx, out_tree);
    if (child_count == 0 && ymap::text_equal(node->tag, "config"))
        return add_cfg(ctx, out_tree, kLists, nullptr, node, 1);
    (void)add_cfg(ctx, out_tree, kList, nullptr, node, 1);
    (void)add_cfg(ctx, out_tree, kListOrder, kOrder, node, 1);
    return add_cfg(ctx, out_tree, kListName, node->value, node, 1);
}

// A server lives in the private module for KIND_GET and in the native
// configuration for every other kind.
YMAP_HAND_CALLBACK(oc_qv_system_dns_servers_server) {
    enum : int { kOperRow = 0, kConfigRow = 1 };
    rows[is_get(ctx) ? kOperRow : kConfigRow].selected = 1;
    return YFW_SUCCESS;
}

// The address is the native key, with the fixed order beside it. A
// configuration read asks for the server entry alone.
YMAP_HAND(oc_qv_system_dns_server_address) {
    if (request_kind(ctx) == KIND_GET_CONFIG)
        return YFW_SUCCESS;
    if (is_get(ctx))
        return add_oper(ctx, out_tree, "/ocsystem/system/dns/servers/server/address", node->value);
    (void)add_cfg(ctx, out_tree, kServerAddress, node->value, nullptr);
    return add_cfg(ctx, out_tree, kServerOrder, kOrder, nullptr);
}

// The key leaf has written the address; the entry needs its order only.
YMAP_HAND(oc_qv_system_dns_server_config_address) {
    if (read_kind(ctx))
        return YFW_SUCCESS;
    return add_cfg(ctx, out_tree, kServerOrder, kOrder, nullptr);
}

// A host entry becomes a native entry per address family it names, or both
// when it names none. The name comes later, from config/hostname, so the
// families made here are kept in the module state until then.
YMAP_HAND(oc_qv_system_dns_hostentries_hostentry) {
    if (is_get(ctx))
        return YFW_SUCCESS;
    ModuleState &st = module_state();
    tidl_yfw_datatree *children = nullptr;
    uint32_t child_count = 0;
    cerrno status = yfw_map_get_subtrees(ctx, node, &children, &child_count);
    if (status != YFW_SUCCESS)
        child_count = 0;
    bool made[std::size(kFamilies)] = {};
    bool last_bare = true;
    for (uint32_t i = 0; i < child_count; ++i) {
        tidl_yfw_datatree *grand = nullptr;
        uint32_t grand_count = 0;
        status = yfw_map_get_subtrees(ctx, &children[i], &grand, &grand_count);
        last_bare = grand_count == 0;
        for (uint32_t j = 0; j < grand_count; ++j)
            for (std::size_t f = 0; f < std::size(kFamilies); ++f)
                if (!made[f] && ymap::text_equal(grand[j].tag, kFamilies[f]->tag)) {
                    made[f] = true;
                    status = add_cfg(ctx, out_tree, kFamilies[f]->entry, nullptr, node, 1);
                    st.*kFamilies[f]->present = 1;
                }
    }
    // An entry with no address is a name in both families.
    if (last_bare)
        for (const HostFamily *f : kFamilies)
            status = add_cfg(ctx, out_tree, f->entry, nullptr, node, 1);
    return status;
}

// The key names both native entries unless the list mapper made some that
// config/hostname will name. The flags are read here and left for that leaf;
// only the IPv4 flag decides a read and a delete.
YMAP_HAND(oc_qv_system_dns_hostentry_hostname) {
    if (is_get(ctx))
        return add_oper(ctx, out_tree, "/ocsystem/system/dns/host-entries/host-entry/host-name",
                        node->value);
    const ModuleState &st = module_state();
    const bool v4 = st.ipv4_host_is_present != 0;
    const bool v6 = st.ipv6_host_is_present != 0;
    if (read_kind(ctx))
        return v4 ? add_host_names(ctx, node, out_tree, nullptr) : YFW_SUCCESS;
    if (!yfw_map_is_request_delete(node))
        return !v4 && !v6 ? add_host_names(ctx, node, out_tree, nullptr) : YFW_SUCCESS;
    return v4 || !v6 ? add_host_names(ctx, node, out_tree, node) : YFW_SUCCESS;
}

// Names the native entries that the list mapper made, and clears their flags.
YMAP_HAND(oc_qv_system_dns_hostentries_config_hostname) {
    if (is_get(ctx))
        return YFW_SUCCESS;
    const tidl_yfw_datatree *source = is_delete_edit(ctx, node) ? node : nullptr;
    ModuleState &st = module_state();
    cerrno status = YFW_SUCCESS;
    for (const HostFamily *f : kFamilies)
        if (st.*f->present != 0) {
            status = add_cfg(ctx, out_tree, f->name, node->value, source);
            st.*f->present = 0;
        }
    return status;
}

YMAP_HAND(oc_qv_system_dns_hostentries_config_ipv4_address) {
    return host_address(ctx, node, out_tree, kIpv4);
}

YMAP_HAND(oc_qv_system_dns_hostentries_config_ipv6_address) {
    return host_address(ctx, node, out_tree, kIpv6);
}
