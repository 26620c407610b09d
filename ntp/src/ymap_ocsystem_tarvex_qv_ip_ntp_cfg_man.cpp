// Hand-written functions of Tarvex-QV-ip-ntp-cfg, native to OpenConfig: the
// peer and key leaves, which fill `config`, `state` or both by the request,
// and the enable states, fetched from the answer.
#include <cstring>

#include "ymap_ocsystem_modules.h"
#include "ymap_xpath_tables.hpp"

namespace {

constexpr const char kPort[] = "123";             // the native model holds no port
constexpr const char kKeyType[] = "NTP_AUTH_MD5"; // the only key type the device has
constexpr const char kEnabledMark[] = "101";      // the association limit that means enabled

// The framework's comparison decides; a differing first character already
// tells its answer, so most words never reach it.
bool equal_to(const char *value, const char *word) {
    int sign = 1;
    return value != nullptr && value[0] == word[0] &&
           yfw_strcmp_s(__func__, value, std::strlen(value) + 1, word, &sign) == 0 && sign == 0;
}

const char *to_oc(const xpath_list_type_t &row, const tidl_yfw_datatree *node) {
    return row.value_fn(node);
}

// An edit names the OpenConfig node with the request's value and operation.
cerrno add_edit(yfw_map_ctx *ctx, tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree,
                const xpath_list_type_t &row) {
    return yfw_map_datatree_add_path_flagged(
        ctx, out_tree, row.xpath, row.namespace_,
        yfw_map_is_request_delete(node) ? nullptr : to_oc(row, node), node, nullptr, 0, 0);
}

cerrno add_answer(yfw_map_ctx *ctx, tidl_yfw_datatree *out_tree, const char *path,
                  const char *value) {
    return ymap::add_value(ctx, out_tree, path, NS_OPENCONFIG_SYSTEM, value);
}

// The key leaves of a peer: `address` and `config/address` in any read, and
// `state/address` in KIND_GET; then the port the native side doesn't hold.
// The repeated adds merge into the node of the first.
cerrno address_rule(yfw_map_ctx *ctx, tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    const ymap::SelectedRows rows(ymap::xpath::qv_oc_server_ipv4_ipv6_address, ctx);
    if (!ymap::read_kind(ctx))
        return rows.each([&](uint32_t, const xpath_list_type_t &row) {
            return add_edit(ctx, node, out_tree, row);
        });
    const bool get = ymap::request_kind(ctx) == KIND_GET;
    const cerrno status = rows.each([&](uint32_t, const xpath_list_type_t &row) {
        const char *value = to_oc(row, node);
        add_answer(ctx, out_tree, row.xpath, value);
        const char *again = get && ymap::has_second(row) ? row.second_xpath : row.xpath;
        return add_answer(ctx, out_tree, again, value);
    });
    if (ymap::request_kind(ctx) != KIND_GET_CONFIG)
        add_answer(ctx, out_tree, "/system/ntp/servers/server/state/port", kPort);
    if (!oper_only(ctx))
        add_answer(ctx, out_tree, "/system/ntp/servers/server/config/port", kPort);
    return status;
}

// A peer-type leaf: `config` unless the request asks for state alone, and
// `state` beside it outside KIND_GET_CONFIG.
cerrno record_leaf(const ymap::XpathTable &table, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                   tidl_yfw_datatree *out_tree) {
    const ymap::SelectedRows rows(table, ctx);
    if (!ymap::read_kind(ctx))
        return rows.each([&](uint32_t, const xpath_list_type_t &row) {
            return add_edit(ctx, node, out_tree, row);
        });
    const bool config = !oper_only(ctx);
    const bool config_only = ymap::request_kind(ctx) == KIND_GET_CONFIG;
    return rows.each([&](uint32_t, const xpath_list_type_t &row) {
        const char *value = to_oc(row, node);
        if (config)
            add_answer(ctx, out_tree, row.xpath, value);
        return add_answer(ctx, out_tree, config_only ? row.xpath : row.second_xpath, value);
    });
}

// An enable state: its native leaf is fetched rather than read from the node,
// once for `state` in KIND_GET and once for `config` unless state alone is
// asked for. A failed fetch leaves the leaf out and is the result.
struct FetchedFlag {
    const char *holder;
    const char *leaf;
    bool (*on)(const char *value);
    const char *state_path;
    const char *config_path;
};

cerrno fetched_flag(const char *name, yfw_map_ctx *ctx, tidl_yfw_datatree *out_tree,
                    const FetchedFlag &flag) {
    const auto one = [&](const char *path) {
        char *value = nullptr;
        const cerrno fetched = yfw_map_get_node_info(ctx, flag.holder, flag.leaf, &value);
        if (fetched != YFW_SUCCESS) {
            YFW_MAP_ERR(ctx, name, "Failed to fetch %s", flag.leaf);
            return fetched;
        }
        return add_answer(ctx, out_tree, path, flag.on(value) ? "true" : "false");
    };
    cerrno status = YFW_SUCCESS;
    if (ymap::request_kind(ctx) == KIND_GET)
        status = one(flag.state_path);
    if (!oper_only(ctx))
        status = one(flag.config_path);
    return status;
}

// A native empty leaf answers true when present; absent it is false.
const char *presence_data(const tidl_yfw_datatree *node) {
    return node->value == nullptr || node->value[0] != '\0' ? "false" : "true";
}

cerrno select_first(xpath_list_type_t *rows, xpath_value_fn value_fn) {
    rows[0].selected = 1;
    rows[0].value_fn = value_fn;
    return YFW_SUCCESS;
}

} // namespace

// ---- Value conversions -----------------------------------------------------------

// A version is one digit; anything else is the default version.
extern "C" YMAP_EXPORT const char *qv_oc_ntp_version_data_fn(const tidl_yfw_datatree *node) {
    const char *v = node->value;
    return v != nullptr && v[0] != '\0' && v[1] == '\0' ? v : "4";
}

// An unknown peer type reaches the answer as "ERROR" rather than failing it.
extern "C" YMAP_EXPORT const char *qv_oc_peer_to_assoc_type(const tidl_yfw_datatree *node) {
    if (equal_to(node->value, "peer"))
        return "PEER";
    if (equal_to(node->value, "server"))
        return "SERVER";
    return "ERROR";
}

extern "C" YMAP_EXPORT const char *qv_oc_ntp_prefer_data_fn(const tidl_yfw_datatree *node) {
    return presence_data(node);
}

extern "C" YMAP_EXPORT const char *qv_oc_ntp_iburst_data_fn(const tidl_yfw_datatree *node) {
    return presence_data(node);
}

// ---- Table callbacks -------------------------------------------------------------

// Both address forms: the key and config/address (with state/address).
YMAP_HAND_CALLBACK(qv_oc_server_ipv4_ipv6_address) {
    rows[0].selected = 1;
    rows[1].selected = 1;
    return YFW_SUCCESS;
}

YMAP_HAND_CALLBACK(qv_oc_ntp_version) {
    return select_first(rows, &qv_oc_ntp_version_data_fn);
}

YMAP_HAND_CALLBACK(qv_oc_ntp_assoc_type) {
    return select_first(rows, &qv_oc_peer_to_assoc_type);
}

YMAP_HAND_CALLBACK(qv_oc_ntp_prefer) {
    return select_first(rows, &qv_oc_ntp_prefer_data_fn);
}

YMAP_HAND_CALLBACK(qv_oc_ntp_iburst) {
    return select_first(rows, &qv_oc_ntp_iburst_data_fn);
}

// Kept for the companion library; the peer lists need no choice here.
YMAP_HAND_CALLBACK(qv_oc_server_list_call_back) {
    (void)rows;
    YFW_MAP_TRC(ctx, name, "Nothing to select");
    return YFW_SUCCESS;
}

YMAP_HAND(qv_oc_server_address) {
    YFW_MAP_TRC(ctx, name, "Nothing to map");
    return YFW_SUCCESS;
}

// ---- Peers -----------------------------------------------------------------------

YMAP_HAND(ymap_qo_ocsystem_tarvexqvipntpcfg_leaf_lvla_ntp_peeripv4_addressipv4) {
    return address_rule(ctx, node, out_tree);
}

YMAP_HAND(ymap_qo_ocsystem_tarvexqvipntpcfg_leaf_lvla_ntp_peeripv6_addressipv6) {
    return address_rule(ctx, node, out_tree);
}

YMAP_HAND(ymap_qo_ocsystem_tarvexqvipntpcfg_leaf_lvla_ntp_peertypeipv4_peertype) {
    return record_leaf(ymap::xpath::qv_oc_ntp_assoc_type, ctx, node, out_tree);
}

YMAP_HAND(ymap_qo_ocsystem_tarvexqvipntpcfg_leaf_lvla_ntp_peertypeipv6_peertype) {
    return record_leaf(ymap::xpath::qv_oc_ntp_assoc_type, ctx, node, out_tree);
}

YMAP_HAND(ymap_qo_ocsystem_tarvexqvipntpcfg_leaf_lvla_ntp_peertypeipv4_ntpversion) {
    return record_leaf(ymap::xpath::qv_oc_ntp_version, ctx, node, out_tree);
}

YMAP_HAND(ymap_qo_ocsystem_tarvexqvipntpcfg_leaf_lvla_ntp_peertypeipv6_ntpversion) {
    return record_leaf(ymap::xpath::qv_oc_ntp_version, ctx, node, out_tree);
}

// ---- Keys and enable states ------------------------------------------------------

YMAP_HAND(qv_oc_key_id) {
    const char *id = node->value;
    YFW_MAP_TRC(ctx, name, "QV:OC:Handling GET request. Data:%s", id);
    cerrno status = add_answer(ctx, out_tree, "/system/ntp/ntp-keys/ntp-key/key-id", id);
    if (ymap::request_kind(ctx) != KIND_GET_CONFIG) {
        YFW_MAP_TRC(ctx, name, "QV:OC:Handling !GET_CONFIG state request. Data:%s", id);
        status = add_answer(ctx, out_tree, "/system/ntp/ntp-keys/ntp-key/state/key-id", id);
    }
    if (!oper_only(ctx)) {
        YFW_MAP_TRC(ctx, name, "QV:OC:Handling !GET_OPER config request. Data:%s", id);
        status = add_answer(ctx, out_tree, "/system/ntp/ntp-keys/ntp-key/config/key-id", id);
    }
    return status;
}

// Unlike the key id, the key value reaches `state` in KIND_GET only.
YMAP_HAND(qv_oc_key_value) {
    const char *key = node->value;
    cerrno status = YFW_SUCCESS;
    if (ymap::request_kind(ctx) == KIND_GET) {
        status = add_answer(ctx, out_tree, "/system/ntp/ntp-keys/ntp-key/state/key-value", key);
        add_answer(ctx, out_tree, "/system/ntp/ntp-keys/ntp-key/state/key-type", kKeyType);
        YFW_MAP_TRC(ctx, name, "QV:OC:Handling GET request. Data:%s", key);
    }
    if (!oper_only(ctx)) {
        status = add_answer(ctx, out_tree, "/system/ntp/ntp-keys/ntp-key/config/key-value", key);
        add_answer(ctx, out_tree, "/system/ntp/ntp-keys/ntp-key/config/key-type", kKeyType);
        YFW_MAP_TRC(ctx, name, "QV:OC:Handling !GET_OPER request. Data:%s", key);
    }
    return status;
}

YMAP_HAND(qv_oc_ntp_auth_enabled) {
    return fetched_flag(name, ctx, out_tree,
                        {"/ntp/authentication", "enable",
                         [](const char *v) { return v != nullptr && v[0] == '\0'; },
                         "/system/ntp/state/enable-ntp-auth",
                         "/system/ntp/config/enable-ntp-auth"});
}

YMAP_HAND(qv_oc_ntp_enabled) {
    return fetched_flag(name, ctx, out_tree,
                        {"/ntp", "max-associations",
                         [](const char *v) { return equal_to(v, kEnabledMark); },
                         "/system/ntp/state/enabled", "/system/ntp/config/enabled"});
}
