// The NTP companion: the leaves of /system/ntp that need a decision on their
// way to Tarvex-QV-ip-ntp-cfg, and the callbacks that choose a server's
// address family in the peer tables.
#include <arpa/inet.h>
#include <netinet/in.h>

#include "companion.hpp"
#include "qv_platform.h"

namespace {

using namespace companion;

// The enable state has no native leaf; this association limit stands for it.
constexpr const char kEnabledMark[] = "101";

// Disabled: the limit goes back to the device default, which is not the mark.
Native enabled_mark(const char *value) {
    return boolean(value, kEnabledMark, "NTP enabled must be true or false");
}

Native empty_leaf(const char *value) {
    return boolean(value, "", "NTP authentication enable must be true or false");
}

enum Family { Ipv4 = 0, Ipv6 = 1, Neither = 2 };

Family family_of(const char *address) {
    unsigned char buf[sizeof(struct in6_addr)];
    if (address == nullptr)
        return Neither;
    if (qv_inet_pton(AF_INET, address, buf) == 1)
        return Ipv4;
    return qv_inet_pton(AF_INET6, address, buf) == 1 ? Ipv6 : Neither;
}

constexpr Target kAddress[] = {
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv4s/peer-ipv4/address-ipv4", NS_IP_NTP_CFG, 1},
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv6s/peer-ipv6/address-ipv6", NS_IP_NTP_CFG, 1},
};

// An entry being deleted whole: the walkers suppress its key checks.
bool deleting_entry(const yfw_map_ctx *ctx) {
    return ctx->state->walk_suppress != YFW_MAP_SUPPRESS_NONE;
}

// The rows of the server's family; in a read both, and in KIND_GET also the
// rows past the two families (the operational entry of the server list). A
// delete that names no family, as that of a whole subtree, reaches both.
cerrno select_rows(yfw_map_ctx *ctx, const char *fn, int32_t count, xpath_list_type_t *rows,
                   xpath_value_fn value_fn) {
    return framed(ctx, fn, rows != nullptr, [&] {
        Family only = Neither;
        bool both = read_kind(ctx);
        if (!both) {
            char *address = nullptr;
            if (yfw_map_get_node_info(ctx, "/system/ntp/servers/server", "address", &address) !=
                YFW_SUCCESS)
                YFW_MAP_TRC(ctx, fn, "No server address in reach");
            only = family_of(address);
            both = only == Neither && deleting_entry(ctx);
            if (only == Neither && !both)
                return YFW_SUCCESS; // nothing to write; the address leaf refuses it
        }
        const auto pick = [&](int32_t i) {
            rows[i].selected = 1u;
            if (value_fn != nullptr)
                rows[i].value_fn = value_fn;
        };
        if (only != Neither) { // the family's own row alone
            if (only < count)
                pick(only);
            return YFW_SUCCESS;
        }
        for (int32_t i = 0; i < count; ++i)
            if (i <= Ipv6 || kind(ctx) == KIND_GET)
                pick(i);
        return YFW_SUCCESS;
    });
}

// The inverse of the answer's association words.
const char *assoc_type_to_native(const tidl_yfw_datatree *node) {
    const std::string_view v = text(node != nullptr ? node->value : nullptr);
    if (v == "PEER")
        return "peer";
    if (v == "SERVER")
        return "server";
    return node != nullptr ? node->value : nullptr;
}

// Empty native leaves: true sets them, false (null) removes them.
const char *flag_to_native(const tidl_yfw_datatree *node) {
    const std::string_view v = text(node != nullptr ? node->value : nullptr);
    if (v == "true")
        return "";
    if (v == "false")
        return nullptr;
    return node != nullptr ? node->value : nullptr;
}

// Leaves with no native counterpart: a value the device cannot hold is refused.
cerrno check_only(yfw_map_ctx *ctx, const char *fn, const tidl_yfw_datatree *node,
                  tidl_yfw_datatree *out, std::string_view accepted, const char *message) {
    return framed(ctx, fn, node != nullptr && out != nullptr, [&] {
        if (read_kind(ctx) || yfw_map_is_request_delete(node) || node->value == nullptr ||
            bare(node->value) == accepted)
            return YFW_SUCCESS;
        return refuse(ctx, fn, message);
    });
}

cerrno leaf(yfw_map_ctx *ctx, const char *fn, const tidl_yfw_datatree *node, tidl_yfw_datatree *out,
            const Target &t, ToNative conv) {
    return framed(ctx, fn, node != nullptr && out != nullptr,
                  [&] { return write_leaf(ctx, fn, out, t, node, conv); });
}

} // namespace

extern "C" {

cerrno oc_qv_ntp_enabled(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                         tidl_yfw_datatree *out_tree) {
    return leaf(ctx, __func__, node, out_tree, {"/ntp/max-associations", NS_IP_NTP_CFG},
                enabled_mark);
}

cerrno oc_qv_ntp_auth_enabled(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                              tidl_yfw_datatree *out_tree) {
    return leaf(ctx, __func__, node, out_tree, {"/ntp/authentication/enable", NS_IP_NTP_CFG},
                empty_leaf);
}

cerrno oc_qv_key_value(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                       tidl_yfw_datatree *out_tree) {
    return leaf(ctx, __func__, node, out_tree,
                {"/ntp/authentication/keys/key/authentication-key", NS_IP_NTP_CFG}, unchanged);
}

cerrno oc_qv_key_id(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    return framed(ctx, __func__, node != nullptr && out_tree != nullptr, [&] {
        return write_key(ctx, out_tree,
                         {"/ntp/authentication/keys/key/key-number", NS_IP_NTP_CFG, 1}, node,
                         node->value);
    });
}

cerrno oc_qv_server_address(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                            tidl_yfw_datatree *out_tree) {
    return framed(ctx, __func__, node != nullptr && out_tree != nullptr, [&] {
        const Family f = family_of(node->value);
        if (f != Neither)
            return write_key(ctx, out_tree, kAddress[f], node, node->value);
        // A delete of a whole subtree names no address: the entries go by the
        // server list, with nothing to key here.
        if (!read_kind(ctx) && yfw_map_is_request_delete(node))
            return YFW_SUCCESS;
        if (!read_kind(ctx) && node->value != nullptr)
            return refuse(ctx, __func__, "NTP server address must be an IPv4 or IPv6 address");
        // A read names no family: both peer lists answer.
        write_key(ctx, out_tree, kAddress[Ipv4], node, node->value);
        return write_key(ctx, out_tree, kAddress[Ipv6], node, node->value);
    });
}

// The device authenticates with MD5 keys only, which is what it answers.
cerrno oc_qv_keytype(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    return check_only(ctx, __func__, node, out_tree, "NTP_AUTH_MD5",
                      "Only NTP_AUTH_MD5 keys are supported");
}

// The device talks NTP on the standard port only, which is what it answers.
cerrno oc_qv_port(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    return check_only(ctx, __func__, node, out_tree, "123", "Only NTP port 123 is supported");
}

cerrno oc_qv_server_list_call_back(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows) {
    return select_rows(ctx, __func__, count, rows, nullptr);
}

cerrno oc_qv_ntp_version(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows) {
    return select_rows(ctx, __func__, count, rows, nullptr);
}

cerrno oc_qv_ntp_assoc_type(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows) {
    return select_rows(ctx, __func__, count, rows, assoc_type_to_native);
}

cerrno oc_qv_ntp_iburst(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows) {
    return select_rows(ctx, __func__, count, rows, flag_to_native);
}

cerrno oc_qv_ntp_prefer(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows) {
    return select_rows(ctx, __func__, count, rows, flag_to_native);
}

} // extern "C"
