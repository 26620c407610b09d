// Hand-written functions of /system/logging and /system/messages/config,
// OpenConfig to native: remote servers spread over the three native server
// lists of VRF "default", selectors folded onto one severity per server, and
// the console and YANG logging levels.
#include <arpa/inet.h>
#include <netdb.h>

#include <cstdint>
#include <cstdlib>

#include "qv_platform.h"
#include "ymap_syslog.hpp"

using ymap::read_kind;
using ymap::syslog::convert;
using ymap::syslog::Direction;
using ymap::syslog::Words;

extern "C" {

YMAP_EXPORT const char *oc_syslog_severity_conversion(yfw_map_ctx *ctx, const char *value) {
    return convert(ctx, __func__, Words::Severity, Direction::ToNative, value);
}

YMAP_EXPORT const char *oc_syslog_console_severity_conversion(yfw_map_ctx *ctx, const char *value) {
    return convert(ctx, __func__, Words::ConsoleSeverity, Direction::ToNative, value);
}

YMAP_EXPORT const char *oc_syslog_facility_conversion(yfw_map_ctx *ctx, const char *value) {
    return convert(ctx, __func__, Words::Facility, Direction::ToNative, value);
}

YMAP_EXPORT const char *oc_syslog_check_ipv4_ipv6(const char *host) {
    unsigned char address[sizeof(struct in6_addr)];
    if (qv_inet_pton(AF_INET6, host, address) != 1 && qv_inet_pton(AF_INET, host, address) != 1)
        return "NULL";
    // A literal that parsed needs no resolver, only its family.
    struct addrinfo hints {};
    struct addrinfo *found = nullptr;
    const char *family = "NULL";
    if (getaddrinfo_qv(host, nullptr, &hints, &found) == 0 && found != nullptr) {
        if (found->ai_family == AF_INET)
            family = "ipv4";
        else if (found->ai_family == AF_INET6)
            family = "ipv6";
    }
    freeaddrinfo_qv(found);
    return family;
}

} // extern "C"

namespace {

constexpr const char kRemoteServer[] = "/system/logging/remote-servers/remote-server";
constexpr const char kVrf[] = "/syslog/host-server/vrfs/vrf";
constexpr const char kVrfName[] = "/syslog/host-server/vrfs/vrf/vrf-name";
constexpr const char kConsoleLevel[] = "/syslog/console-logging/logging-level";
constexpr const char kYangLevel[] = "/syslog/yang-logging/logging-level";
constexpr const char kFacilityLevel[] = "/syslog/logging-facilities/facility-level";

// A read filters by the value; an edit carries the input node's operation.
const tidl_yfw_datatree *source_of(yfw_map_ctx *ctx, tidl_yfw_datatree *node) {
    return read_kind(ctx) ? nullptr : node;
}

cerrno add(yfw_map_ctx *ctx, tidl_yfw_datatree *out_tree, const char *path, const char *value,
           tidl_yfw_datatree *node) {
    return yfw_map_datatree_add_path_flagged(ctx, out_tree, path, NS_INFRA_SYSLOG_CFG, value,
                                             source_of(ctx, node), nullptr, 0, 0);
}

// Writes the rows of `table` that its callback selected, all with `value`.
cerrno write_rows(const ymap::XpathTable &table, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                  tidl_yfw_datatree *out_tree, const char *value) {
    const ymap::SelectedRows rows(table, ctx);
    return rows.each([&](uint32_t, const xpath_list_type_t &row) {
        return yfw_map_datatree_add_path_flagged(ctx, out_tree, row.xpath, row.namespace_, value,
                                                 source_of(ctx, node), nullptr, 0,
                                                 row.augment_flag);
    });
}

// The list a server lands in: all three on a read, so that a read finds the
// server whatever it is; on any other kind the one its key's form names.
cerrno select_server_rows(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows) {
    char *host = nullptr;
    (void)yfw_map_get_node_info(ctx, kRemoteServer, "host", &host);
    if (read_kind(ctx)) {
        for (int32_t i = 0; i < count; ++i)
            rows[i].selected = 1;
        return YFW_SUCCESS;
    }
    const char *family = oc_syslog_check_ipv4_ipv6(host);
    const int32_t pick = ymap::text_equal(family, "ipv4")   ? 1
                         : ymap::text_equal(family, "ipv6") ? 2
                                                            : 0;
    if (pick < count)
        rows[pick].selected = 1;
    return YFW_SUCCESS;
}

} // namespace

YMAP_HAND_CALLBACK(oc_qv_host_type_check_call_back) {
    return select_server_rows(ctx, count, rows);
}

YMAP_HAND_CALLBACK(oc_qv_port_type_check_call_back) {
    return select_server_rows(ctx, count, rows);
}

YMAP_HAND_CALLBACK(oc_qv_selector_severity_type_check_call_back) {
    return select_server_rows(ctx, count, rows);
}

// Every request that names a server also names the one VRF all servers live
// in; a delete of the bare container takes that VRF with everything in it.
YMAP_HAND_COUNT(ymap_oq_ocsystem_openconfigsystem_cont_lvla_system_logging_remoteservers) {
    const tidl_yfw_datatree *source = nullptr;
    if (count != 0) {
        YFW_MAP_TRC(ctx, name, YMAP_MSG_MAPPED);
    } else {
        YFW_MAP_TRC(ctx, name, YMAP_MSG_NO_SUBTREES);
        if (read_kind(ctx) || !yfw_map_is_request_delete(node))
            return YFW_SUCCESS;
        source = node;
    }
    (void)yfw_map_datatree_add_path_flagged(ctx, out_tree, kVrf, NS_INFRA_SYSLOG_CFG, nullptr,
                                            source, nullptr, 0, 0);
    return yfw_map_datatree_add_path_flagged(ctx, out_tree, kVrfName, NS_INFRA_SYSLOG_CFG,
                                             "default", source, nullptr, 0, 0);
}

namespace {

// A refused value: the text goes to the answer, and nothing is written.
cerrno bad_value(yfw_map_ctx *ctx, const char *message) {
    yfw_map_state *st = ctx->state;
    qvos_named_free(st->error_message);
    st->error_message = yfw_strdup(message, YFW_MAP_ALLOC_LABEL);
    return YFW_ERR_BAD_VALUE;
}

// The native side keeps one facility for all servers, so a selector can only
// be created under the facility that says nothing.
cerrno check_selector_facility(const char *name, yfw_map_ctx *ctx, tidl_yfw_datatree *node) {
    if (!yfw_map_is_key_demanding_kind(ymap::request_kind(ctx)) || yfw_map_is_request_delete(node))
        return YFW_SUCCESS;
    if (node->value == nullptr || ymap::syslog::same_word(name, "NONE", node->value, true))
        return YFW_SUCCESS;
    return bad_value(ctx, "Invalid value for SYSLOG facility only NONE supported.");
}

// A read through a selector key filters by the OpenConfig word itself; the
// conversion still runs so that a bad word leaves its trace.
const char *key_severity(yfw_map_ctx *ctx, const char *converted, tidl_yfw_datatree *node) {
    (void)yfw_map_is_request_delete(node);
    return read_kind(ctx) ? node->value : converted;
}

} // namespace

YMAP_HAND(ymap_oq_ocsystem_openconfigsystem_leaf_lvla_system_selector_facility) {
    return check_selector_facility(name, ctx, node);
}

YMAP_HAND(ymap_oq_ocsystem_openconfigsystem_leaf_lvlb_system_selector_facility) {
    return check_selector_facility(name, ctx, node);
}

YMAP_HAND(ymap_oq_ocsystem_openconfigsystem_leaf_lvla_system_selector_severity) {
    const char *word = oc_syslog_console_severity_conversion(ctx, node->value);
    return add(ctx, out_tree, kConsoleLevel, key_severity(ctx, word, node), node);
}

YMAP_HAND(ymap_oq_ocsystem_openconfigsystem_leaf_lvla_system_config_severity) {
    (void)yfw_map_is_request_delete(node);
    return add(ctx, out_tree, kConsoleLevel,
               oc_syslog_console_severity_conversion(ctx, node->value), node);
}

YMAP_SYSLOG_TABLE_HAND(ymap_oq_ocsystem_openconfigsystem_leaf_lvlb_system_selector_severity) {
    const char *word = oc_syslog_severity_conversion(ctx, node->value);
    return write_rows(ymap::xpath::oc_qv_selector_severity_type_check_call_back, ctx, node,
                      out_tree, key_severity(ctx, word, node));
}

YMAP_SYSLOG_TABLE_HAND(ymap_oq_ocsystem_openconfigsystem_leaf_lvlb_system_config_severity) {
    (void)yfw_map_is_request_delete(node);
    return write_rows(ymap::xpath::oc_qv_selector_severity_type_check_call_back, ctx, node,
                      out_tree, oc_syslog_severity_conversion(ctx, node->value));
}

// The facility goes to the one native facility of all servers.
YMAP_HAND(ymap_oq_ocsystem_openconfigsystem_leaf_lvlb_system_config_facility) {
    (void)yfw_map_is_request_delete(node);
    return add(ctx, out_tree, kFacilityLevel, oc_syslog_facility_conversion(ctx, node->value),
               node);
}

// The port is checked on its low 32 bits, so a value that wraps into range
// passes as the device would take it.
YMAP_SYSLOG_TABLE_HAND(ymap_oq_ocsystem_openconfigsystem_leaf_lvla_system_config_remoteport) {
    char *port = nullptr;
    (void)yfw_map_get_node_info(ctx, "/system/logging/remote-servers/remote-server/config",
                                "remote-port", &port);
    if (port != nullptr) {
        const long long parsed = std::strtoll(port, nullptr, 10);
        if (static_cast<uint32_t>(parsed) >= 65536u)
            return bad_value(ctx, "Invalid remote-port leaf value specified in OC model "
                                  "supported range is (0 - 65535)");
    }
    return write_rows(ymap::xpath::oc_qv_port_type_check_call_back, ctx, node, out_tree,
                      node->value);
}

// The YANG logging level: a delete names the leaf without a value.
YMAP_HAND(ymap_oq_ocsystem_openconfigsystem_leaf_lvlc_system_config_severity) {
    const bool del = !read_kind(ctx) && yfw_map_is_request_delete(node) != 0;
    return add(ctx, out_tree, kYangLevel,
               del ? nullptr : oc_syslog_console_severity_conversion(ctx, node->value), node);
}
