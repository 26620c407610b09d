// Hand-written functions of Tarvex-QV-infra-syslog-cfg, native to OpenConfig:
// the console and YANG logging levels, and the leaves of a server, which read
// back as one remote server with one selector of facility "NONE".
#include <cstring>

#include "ymap_syslog.hpp"

using ymap::add_value;
using ymap::syslog::convert;
using ymap::syslog::Direction;
using ymap::syslog::Words;

extern "C" {

YMAP_EXPORT const char *qv_oc_syslog_severity_conversion(yfw_map_ctx *ctx, const char *value) {
    return convert(ctx, __func__, Words::Severity, Direction::ToOpenConfig, value);
}

YMAP_EXPORT const char *qv_oc_syslog_console_severity_conversion(yfw_map_ctx *ctx,
                                                                 const char *value) {
    return convert(ctx, __func__, Words::ConsoleSeverity, Direction::ToOpenConfig, value);
}

// Nothing here reads the facility back (the native one is shared by all
// servers); the conversion stands ready for callers that do.
YMAP_EXPORT const char *qv_oc_syslog_facility_conversion(yfw_map_ctx *ctx, const char *value) {
    return convert(ctx, __func__, Words::Facility, Direction::ToOpenConfig, value);
}

} // extern "C"

namespace {

// In this direction every row is a candidate, the closing row included.
cerrno select_all(xpath_list_type_t *rows, int32_t count) {
    for (int32_t i = 0; i <= count; ++i)
        rows[i].selected = 1;
    return YFW_SUCCESS;
}

} // namespace

YMAP_HAND_CALLBACK(qv_oc_selector_severity_type_check_call_back) {
    return select_all(rows, count);
}

YMAP_HAND_CALLBACK(qv_oc_port_type_check_call_back) {
    return select_all(rows, count);
}

YMAP_HAND_CALLBACK(qv_oc_host_type_check_call_back) {
    return select_all(rows, count);
}

// A disabled console has no selector; any other level is one selector of
// facility "NONE".
YMAP_HAND(ymap_qo_ocsystem_tarvexqvinfrasyslogcfg_leaf_lvla_syslog_consolelogging_logginglevel) {
    if (node->value != nullptr && std::strcmp(node->value, "disable") == 0)
        return YFW_SUCCESS;
    (void)add_value(ctx, out_tree, "/system/logging/console/selectors/selector/facility",
                    NS_OPENCONFIG_SYSTEM, "NONE");
    cerrno status =
        add_value(ctx, out_tree, "/system/logging/console/selectors/selector/severity",
                  NS_OPENCONFIG_SYSTEM, qv_oc_syslog_console_severity_conversion(ctx, node->value));
    if (!oper_only(ctx))
        status = add_value(
            ctx, out_tree, "/system/logging/console/selectors/selector/config/severity",
            NS_OPENCONFIG_SYSTEM, qv_oc_syslog_console_severity_conversion(ctx, node->value));
    if (ymap::request_kind(ctx) != KIND_GET_CONFIG)
        status = add_value(
            ctx, out_tree, "/system/logging/console/selectors/selector/state/severity",
            NS_OPENCONFIG_SYSTEM, qv_oc_syslog_console_severity_conversion(ctx, node->value));
    return status;
}

// The messages level has no state twin here: that comes from the operational
// module.
YMAP_HAND(ymap_qo_ocsystem_tarvexqvinfrasyslogcfg_leaf_lvla_syslog_yanglogging_logginglevel) {
    if (oper_only(ctx))
        return YFW_SUCCESS;
    return add_value(ctx, out_tree, "/system/messages/config/severity", NS_OPENCONFIG_SYSTEM,
                     qv_oc_syslog_console_severity_conversion(ctx, node->value));
}

namespace {

enum class Value : uint8_t { Raw, Severity };

// A server leaf: an edit writes the first path of each row only; a read
// writes the config path unless state alone is asked, and the state twin in
// KIND_GET where there is one.
cerrno server_leaf(const ymap::XpathTable &table, Value kind, yfw_map_ctx *ctx,
                   tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    const ymap::SelectedRows rows(table, ctx);
    const auto value = [&](const xpath_list_type_t &row) {
        const char *raw = row.value_fn(node);
        return kind == Value::Severity ? qv_oc_syslog_severity_conversion(ctx, raw) : raw;
    };
    if (!ymap::read_kind(ctx)) {
        const bool del = yfw_map_is_request_delete(node) != 0;
        return rows.each([&](uint32_t, const xpath_list_type_t &row) {
            return yfw_map_datatree_add_path_flagged(ctx, out_tree, row.xpath, row.namespace_,
                                                     del ? nullptr : value(row), node, nullptr, 0,
                                                     row.augment_flag);
        });
    }
    if (kind == Value::Severity)
        (void)add_value(ctx, out_tree,
                        "/system/logging/remote-servers/remote-server/selectors/selector/facility",
                        NS_OPENCONFIG_SYSTEM, "NONE");
    const bool config_only = ymap::request_kind(ctx) == KIND_GET_CONFIG;
    return rows.each([&](uint32_t, const xpath_list_type_t &row) {
        const bool twin = ymap::has_second(row);
        if (twin && !oper_only(ctx))
            (void)add_value(ctx, out_tree, row.xpath, row.namespace_, value(row), 0,
                            row.augment_flag);
        return add_value(ctx, out_tree, !twin || config_only ? row.xpath : row.second_xpath,
                         row.namespace_, value(row), 0, row.augment_flag);
    });
}

} // namespace

#define YMAP_SYSLOG_SERVER_LEAF_(fn, table_, kind_)                                                \
    YMAP_SYSLOG_TABLE_HAND(fn) {                                                                   \
        return server_leaf(ymap::xpath::table_, Value::kind_, ctx, node, out_tree);                \
    }
#define YMAP_SYSLOG_LEAF_(node_) ymap_qo_ocsystem_tarvexqvinfrasyslogcfg_leaf_lvla_syslog_##node_

YMAP_SYSLOG_SERVER_LEAF_(YMAP_SYSLOG_LEAF_(host_hostname), qv_oc_host_type_check_call_back, Raw)
YMAP_SYSLOG_SERVER_LEAF_(YMAP_SYSLOG_LEAF_(ipv4_address), qv_oc_host_type_check_call_back, Raw)
YMAP_SYSLOG_SERVER_LEAF_(YMAP_SYSLOG_LEAF_(ipv6_address), qv_oc_host_type_check_call_back, Raw)
YMAP_SYSLOG_SERVER_LEAF_(YMAP_SYSLOG_LEAF_(hostseverityport_port), qv_oc_port_type_check_call_back,
                         Raw)
YMAP_SYSLOG_SERVER_LEAF_(YMAP_SYSLOG_LEAF_(ipv4severityport_port), qv_oc_port_type_check_call_back,
                         Raw)
YMAP_SYSLOG_SERVER_LEAF_(YMAP_SYSLOG_LEAF_(ipv6severityport_port), qv_oc_port_type_check_call_back,
                         Raw)
YMAP_SYSLOG_SERVER_LEAF_(YMAP_SYSLOG_LEAF_(hostseverityport_severity),
                         qv_oc_selector_severity_type_check_call_back, Severity)
YMAP_SYSLOG_SERVER_LEAF_(YMAP_SYSLOG_LEAF_(ipv4severityport_severity),
                         qv_oc_selector_severity_type_check_call_back, Severity)
YMAP_SYSLOG_SERVER_LEAF_(YMAP_SYSLOG_LEAF_(ipv6severityport_severity),
                         qv_oc_selector_severity_type_check_call_back, Severity)
