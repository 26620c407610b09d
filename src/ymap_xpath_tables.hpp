// The constant xpath tables of the library, each with the callback that marks
// its rows. Each row: the path, its module's namespace, the value function,
// selected 0, augment_flag 0, and the second path ("NULL" for a row of one
// path; the `state` twin of a row that writes both forms).
#pragma once

#include "ymap_companions.h"
#include "ymap_namespaces.h"
#include "ymap_xpath.hpp"

// The callbacks. Those of the NTP servers come from the NTP companion library
// (ymap_companions.h); the others are the library's own, each written with
// the feature that uses its table.
extern "C" {
cerrno oc_qv_system_dns_servers_server(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno oc_qv_host_type_check_call_back(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno oc_qv_port_type_check_call_back(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno oc_qv_selector_severity_type_check_call_back(yfw_map_ctx *ctx, int32_t count,
                                                    xpath_list_type_t *rows);
cerrno oc_qv_ipv4_vrf_list(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno oc_qv_ipv4_vrf_vrfname(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno oc_qv_ipv6_vrf_list(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno oc_qv_ipv6_vrf_vrfname(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno qv_oc_selector_severity_type_check_call_back(yfw_map_ctx *ctx, int32_t count,
                                                    xpath_list_type_t *rows);
cerrno qv_oc_port_type_check_call_back(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno qv_oc_host_type_check_call_back(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno qv_oc_server_ipv4_ipv6_address(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno qv_oc_ntp_version(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno qv_oc_ntp_assoc_type(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
}

namespace ymap::xpath {

inline constexpr auto value = &xpath_node_value;

// clang-format off
YMAP_XPATH_TABLE(oc_qv_system_dns_servers_server, ::oc_qv_system_dns_servers_server,
    {"/oc-dns/system/dns/servers/server",               NS_OC_DNS_OPER,        value, 0, 0, "NULL"},
    {"/ip-domain/vrfs/vrf/servers/server",              NS_IP_DOMAIN_CFG,      value, 0, 0, "NULL"});

YMAP_XPATH_TABLE(oc_qv_server_list_call_back, ::oc_qv_server_list_call_back,
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv4s/peer-ipv4",    NS_IP_NTP_CFG,         value, 0, 0, "NULL"},
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv6s/peer-ipv6",    NS_IP_NTP_CFG,         value, 0, 0, "NULL"},
    {"/ocntp/system/ntp/servers/server",                NS_NTP_TELEMETRY_OPER, value, 0, 0, "NULL"});

YMAP_XPATH_TABLE(oc_qv_ntp_version, ::oc_qv_ntp_version,
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv4s/peer-ipv4/peer-type-ipv4/ntp-version", NS_IP_NTP_CFG, value, 0, 0, "NULL"},
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv6s/peer-ipv6/peer-type-ipv6/ntp-version", NS_IP_NTP_CFG, value, 0, 0, "NULL"});

YMAP_XPATH_TABLE(oc_qv_ntp_assoc_type, ::oc_qv_ntp_assoc_type,
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv4s/peer-ipv4/peer-type-ipv4/peer-type", NS_IP_NTP_CFG, value, 0, 0, "NULL"},
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv6s/peer-ipv6/peer-type-ipv6/peer-type", NS_IP_NTP_CFG, value, 0, 0, "NULL"});

YMAP_XPATH_TABLE(oc_qv_ntp_iburst, ::oc_qv_ntp_iburst,
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv4s/peer-ipv4/peer-type-ipv4/iburst", NS_IP_NTP_CFG, value, 0, 0, "NULL"},
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv6s/peer-ipv6/peer-type-ipv6/iburst", NS_IP_NTP_CFG, value, 0, 0, "NULL"});

YMAP_XPATH_TABLE(oc_qv_ntp_prefer, ::oc_qv_ntp_prefer,
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv4s/peer-ipv4/peer-type-ipv4/preferred-peer", NS_IP_NTP_CFG, value, 0, 0, "NULL"},
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv6s/peer-ipv6/peer-type-ipv6/preferred-peer", NS_IP_NTP_CFG, value, 0, 0, "NULL"});

YMAP_XPATH_TABLE(oc_qv_host_type_check_call_back, ::oc_qv_host_type_check_call_back,
    {"/syslog/host-server/vrfs/vrf/hosts/host",         NS_INFRA_SYSLOG_CFG,   value, 0, 0, "NULL"},
    {"/syslog/host-server/vrfs/vrf/ipv4s/ipv4",         NS_INFRA_SYSLOG_CFG,   value, 0, 0, "NULL"},
    {"/syslog/host-server/vrfs/vrf/ipv6s/ipv6",         NS_INFRA_SYSLOG_CFG,   value, 0, 0, "NULL"});

YMAP_XPATH_TABLE(oc_qv_host_type_check_call_back_leaf, ::oc_qv_host_type_check_call_back,
    {"/syslog/host-server/vrfs/vrf/hosts/host/host-name", NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"},
    {"/syslog/host-server/vrfs/vrf/ipv4s/ipv4/address",   NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"},
    {"/syslog/host-server/vrfs/vrf/ipv6s/ipv6/address",   NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"});

YMAP_XPATH_TABLE(oc_qv_port_type_check_call_back, ::oc_qv_port_type_check_call_back,
    {"/syslog/host-server/vrfs/vrf/hosts/host/host-severity-port/port", NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"},
    {"/syslog/host-server/vrfs/vrf/ipv4s/ipv4/ipv4-severity-port/port", NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"},
    {"/syslog/host-server/vrfs/vrf/ipv6s/ipv6/ipv6-severity-port/port", NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"});

YMAP_XPATH_TABLE(oc_qv_selector_severity_type_check_call_back, ::oc_qv_selector_severity_type_check_call_back,
    {"/syslog/host-server/vrfs/vrf/hosts/host/host-severity-port/severity", NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"},
    {"/syslog/host-server/vrfs/vrf/ipv4s/ipv4/ipv4-severity-port/severity", NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"},
    {"/syslog/host-server/vrfs/vrf/ipv6s/ipv6/ipv6-severity-port/severity", NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"});

YMAP_XPATH_TABLE(oc_qv_ipv4_vrf_list, ::oc_qv_ipv4_vrf_list,
    {"/octelnet/system/telnet-server/ipv4s/ipv4",       NS_OCTELNET_OPER,      value, 0, 0, "NULL"},
    {"/ip/tinetd/services/telnet/vrfs/vrf",             NS_IP_TCP_CFG,         value, 0, 0, "NULL"},
    {"/octelnet/system/telnet-server/ipv4s/ipv4",       NS_OCTELNET_OPER,      value, 0, 0, "NULL"});

YMAP_XPATH_TABLE(oc_qv_ipv4_vrf_vrfname, ::oc_qv_ipv4_vrf_vrfname,
    {"/ip/tinetd/services/telnet/vrfs/vrf/vrf-name",    NS_IP_TCP_CFG,         value, 0, 0, "NULL"},
    {"/octelnet/system/telnet-server/ipv4s/ipv4/vrf-name", NS_OCTELNET_OPER,   value, 0, 0, "NULL"});

YMAP_XPATH_TABLE(oc_qv_ipv6_vrf_list, ::oc_qv_ipv6_vrf_list,
    {"/ip/tinetd/services/telnet/vrfs/vrf",             NS_IP_TCP_CFG,         value, 0, 0, "NULL"},
    {"/octelnet/system/telnet-server/ipv6s/ipv6",       NS_OCTELNET_OPER,      value, 0, 0, "NULL"},
    {"/octelnet/system/telnet-server/ipv6s/ipv6",       NS_OCTELNET_OPER,      value, 0, 0, "NULL"});

YMAP_XPATH_TABLE(oc_qv_ipv6_vrf_vrfname, ::oc_qv_ipv6_vrf_vrfname,
    {"/ip/tinetd/services/telnet/vrfs/vrf/vrf-name",    NS_IP_TCP_CFG,         value, 0, 0, "NULL"},
    {"/octelnet/system/telnet-server/ipv6s/ipv6/vrf-name", NS_OCTELNET_OPER,   value, 0, 0, "NULL"});

YMAP_XPATH_TABLE(qv_oc_selector_severity_type_check_call_back, ::qv_oc_selector_severity_type_check_call_back,
    {"/system/logging/remote-servers/remote-server/selectors/selector/severity",        NS_OPENCONFIG_SYSTEM, value, 0, 0, "NULL"},
    {"/system/logging/remote-servers/remote-server/selectors/selector/config/severity", NS_OPENCONFIG_SYSTEM, value, 0, 0,
     "/system/logging/remote-servers/remote-server/selectors/selector/state/severity"});

YMAP_XPATH_TABLE(qv_oc_port_type_check_call_back, ::qv_oc_port_type_check_call_back,
    {"/system/logging/remote-servers/remote-server/config/remote-port", NS_OPENCONFIG_SYSTEM, value, 0, 0,
     "/system/logging/remote-servers/remote-server/state/remote-port"});

YMAP_XPATH_TABLE(qv_oc_host_type_check_call_back, ::qv_oc_host_type_check_call_back,
    {"/system/logging/remote-servers/remote-server/host",        NS_OPENCONFIG_SYSTEM, value, 0, 0, "NULL"},
    {"/system/logging/remote-servers/remote-server/config/host", NS_OPENCONFIG_SYSTEM, value, 0, 0,
     "/system/logging/remote-servers/remote-server/state/host"});

YMAP_XPATH_TABLE(qv_oc_server_ipv4_ipv6_address, ::qv_oc_server_ipv4_ipv6_address,
    {"/system/ntp/servers/server/address",              NS_OPENCONFIG_SYSTEM,  value, 0, 0, "NULL"},
    {"/system/ntp/servers/server/config/address",       NS_OPENCONFIG_SYSTEM,  value, 0, 0,
     "/system/ntp/servers/server/state/address"});

YMAP_XPATH_TABLE(qv_oc_ntp_version, ::qv_oc_ntp_version,
    {"/system/ntp/servers/server/config/version",       NS_OPENCONFIG_SYSTEM,  value, 0, 0,
     "/system/ntp/servers/server/state/version"});

YMAP_XPATH_TABLE(qv_oc_ntp_assoc_type, ::qv_oc_ntp_assoc_type,
    {"/system/ntp/servers/server/config/association-type", NS_OPENCONFIG_SYSTEM, value, 0, 0,
     "/system/ntp/servers/server/state/association-type"});

// clang-format on

} // namespace ymap::xpath
