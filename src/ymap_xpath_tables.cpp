// The xpath tables. Each row: the path, its module's namespace, the value
// function, selected 0, augment_flag 0, and the second path ("NULL" for a row
// of one path; the `state` twin of a row that writes both forms).
#include "ymap_xpath_tables.hpp"

#include <array>

#include "ymap_namespaces.hpp"
#include "ymap_xpath.hpp"

namespace ymap::xpath {
namespace {

constexpr auto value = &xpath_node_value;

// clang-format off
constexpr xpath_list_type_t k_oc_qv_system_dns_servers_server[] = {
    {"/oc-dns/system/dns/servers/server",               NS_OC_DNS_OPER,        value, 0, 0, "NULL"},
    {"/ip-domain/vrfs/vrf/servers/server",              NS_IP_DOMAIN_CFG,      value, 0, 0, "NULL"},
    YMAP_XPATH_CLOSING_ROW};

constexpr xpath_list_type_t k_oc_qv_server_list_call_back[] = {
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv4s/peer-ipv4",    NS_IP_NTP_CFG,         value, 0, 0, "NULL"},
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv6s/peer-ipv6",    NS_IP_NTP_CFG,         value, 0, 0, "NULL"},
    {"/ocntp/system/ntp/servers/server",                NS_NTP_TELEMETRY_OPER, value, 0, 0, "NULL"},
    YMAP_XPATH_CLOSING_ROW};

constexpr xpath_list_type_t k_oc_qv_ntp_version[] = {
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv4s/peer-ipv4/peer-type-ipv4/ntp-version", NS_IP_NTP_CFG, value, 0, 0, "NULL"},
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv6s/peer-ipv6/peer-type-ipv6/ntp-version", NS_IP_NTP_CFG, value, 0, 0, "NULL"},
    YMAP_XPATH_CLOSING_ROW};

constexpr xpath_list_type_t k_oc_qv_ntp_assoc_type[] = {
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv4s/peer-ipv4/peer-type-ipv4/peer-type", NS_IP_NTP_CFG, value, 0, 0, "NULL"},
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv6s/peer-ipv6/peer-type-ipv6/peer-type", NS_IP_NTP_CFG, value, 0, 0, "NULL"},
    YMAP_XPATH_CLOSING_ROW};

constexpr xpath_list_type_t k_oc_qv_ntp_iburst[] = {
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv4s/peer-ipv4/peer-type-ipv4/iburst", NS_IP_NTP_CFG, value, 0, 0, "NULL"},
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv6s/peer-ipv6/peer-type-ipv6/iburst", NS_IP_NTP_CFG, value, 0, 0, "NULL"},
    YMAP_XPATH_CLOSING_ROW};

constexpr xpath_list_type_t k_oc_qv_ntp_prefer[] = {
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv4s/peer-ipv4/peer-type-ipv4/preferred-peer", NS_IP_NTP_CFG, value, 0, 0, "NULL"},
    {"/ntp/peer-vrfs/peer-vrf/peer-ipv6s/peer-ipv6/peer-type-ipv6/preferred-peer", NS_IP_NTP_CFG, value, 0, 0, "NULL"},
    YMAP_XPATH_CLOSING_ROW};

// A remote syslog host is a host name, an IPv4 or an IPv6 address, each in a
// list of its own; rows 0, 1, 2 in that order.
constexpr xpath_list_type_t k_oc_qv_host_type_check_call_back[] = {
    {"/syslog/host-server/vrfs/vrf/hosts/host",         NS_INFRA_SYSLOG_CFG,   value, 0, 0, "NULL"},
    {"/syslog/host-server/vrfs/vrf/ipv4s/ipv4",         NS_INFRA_SYSLOG_CFG,   value, 0, 0, "NULL"},
    {"/syslog/host-server/vrfs/vrf/ipv6s/ipv6",         NS_INFRA_SYSLOG_CFG,   value, 0, 0, "NULL"},
    YMAP_XPATH_CLOSING_ROW};

constexpr xpath_list_type_t k_oc_qv_host_type_check_call_back_leaf[] = {
    {"/syslog/host-server/vrfs/vrf/hosts/host/host-name", NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"},
    {"/syslog/host-server/vrfs/vrf/ipv4s/ipv4/address",   NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"},
    {"/syslog/host-server/vrfs/vrf/ipv6s/ipv6/address",   NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"},
    YMAP_XPATH_CLOSING_ROW};

constexpr xpath_list_type_t k_oc_qv_port_type_check_call_back[] = {
    {"/syslog/host-server/vrfs/vrf/hosts/host/host-severity-port/port", NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"},
    {"/syslog/host-server/vrfs/vrf/ipv4s/ipv4/ipv4-severity-port/port", NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"},
    {"/syslog/host-server/vrfs/vrf/ipv6s/ipv6/ipv6-severity-port/port", NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"},
    YMAP_XPATH_CLOSING_ROW};

constexpr xpath_list_type_t k_oc_qv_selector_severity_type_check_call_back[] = {
    {"/syslog/host-server/vrfs/vrf/hosts/host/host-severity-port/severity", NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"},
    {"/syslog/host-server/vrfs/vrf/ipv4s/ipv4/ipv4-severity-port/severity", NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"},
    {"/syslog/host-server/vrfs/vrf/ipv6s/ipv6/ipv6-severity-port/severity", NS_INFRA_SYSLOG_CFG, value, 0, 0, "NULL"},
    YMAP_XPATH_CLOSING_ROW};

constexpr xpath_list_type_t k_oc_qv_ipv4_vrf_list[] = {
    {"/octelnet/system/telnet-server/ipv4s/ipv4",       NS_OCTELNET_OPER,      value, 0, 0, "NULL"},
    {"/ip/tinetd/services/telnet/vrfs/vrf",             NS_IP_TCP_CFG,         value, 0, 0, "NULL"},
    {"/octelnet/system/telnet-server/ipv4s/ipv4",       NS_OCTELNET_OPER,      value, 0, 0, "NULL"},
    YMAP_XPATH_CLOSING_ROW};

constexpr xpath_list_type_t k_oc_qv_ipv4_vrf_vrfname[] = {
    {"/ip/tinetd/services/telnet/vrfs/vrf/vrf-name",    NS_IP_TCP_CFG,         value, 0, 0, "NULL"},
    {"/octelnet/system/telnet-server/ipv4s/ipv4/vrf-name", NS_OCTELNET_OPER,   value, 0, 0, "NULL"},
    YMAP_XPATH_CLOSING_ROW};

constexpr xpath_list_type_t k_oc_qv_ipv6_vrf_list[] = {
    {"/ip/tinetd/services/telnet/vrfs/vrf",             NS_IP_TCP_CFG,         value, 0, 0, "NULL"},
    {"/octelnet/system/telnet-server/ipv6s/ipv6",       NS_OCTELNET_OPER,      value, 0, 0, "NULL"},
    {"/octelnet/system/telnet-server/ipv6s/ipv6",       NS_OCTELNET_OPER,      value, 0, 0, "NULL"},
    YMAP_XPATH_CLOSING_ROW};

constexpr xpath_list_type_t k_oc_qv_ipv6_vrf_vrfname[] = {
    {"/ip/tinetd/services/telnet/vrfs/vrf/vrf-name",    NS_IP_TCP_CFG,         value, 0, 0, "NULL"},
    {"/octelnet/system/telnet-server/ipv6s/ipv6/vrf-name", NS_OCTELNET_OPER,   value, 0, 0, "NULL"},
    YMAP_XPATH_CLOSING_ROW};

constexpr xpath_list_type_t k_qv_oc_selector_severity_type_check_call_back[] = {
    {"/system/logging/remote-servers/remote-server/selectors/selector/severity",        NS_OPENCONFIG_SYSTEM, value, 0, 0, "NULL"},
    {"/system/logging/remote-servers/remote-server/selectors/selector/config/severity", NS_OPENCONFIG_SYSTEM, value, 0, 0,
     "/system/logging/remote-servers/remote-server/selectors/selector/state/severity"},
    YMAP_XPATH_CLOSING_ROW};

constexpr xpath_list_type_t k_qv_oc_port_type_check_call_back[] = {
    {"/system/logging/remote-servers/remote-server/config/remote-port", NS_OPENCONFIG_SYSTEM, value, 0, 0,
     "/system/logging/remote-servers/remote-server/state/remote-port"},
    YMAP_XPATH_CLOSING_ROW};

constexpr xpath_list_type_t k_qv_oc_host_type_check_call_back[] = {
    {"/system/logging/remote-servers/remote-server/host",        NS_OPENCONFIG_SYSTEM, value, 0, 0, "NULL"},
    {"/system/logging/remote-servers/remote-server/config/host", NS_OPENCONFIG_SYSTEM, value, 0, 0,
     "/system/logging/remote-servers/remote-server/state/host"},
    YMAP_XPATH_CLOSING_ROW};

// Also the table of the NTP address mappers.
constexpr xpath_list_type_t k_qv_oc_server_ipv4_ipv6_address[] = {
    {"/system/ntp/servers/server/address",              NS_OPENCONFIG_SYSTEM,  value, 0, 0, "NULL"},
    {"/system/ntp/servers/server/config/address",       NS_OPENCONFIG_SYSTEM,  value, 0, 0,
     "/system/ntp/servers/server/state/address"},
    YMAP_XPATH_CLOSING_ROW};

constexpr xpath_list_type_t k_qv_oc_ntp_version[] = {
    {"/system/ntp/servers/server/config/version",       NS_OPENCONFIG_SYSTEM,  value, 0, 0,
     "/system/ntp/servers/server/state/version"},
    YMAP_XPATH_CLOSING_ROW};

constexpr xpath_list_type_t k_qv_oc_ntp_assoc_type[] = {
    {"/system/ntp/servers/server/config/association-type", NS_OPENCONFIG_SYSTEM, value, 0, 0,
     "/system/ntp/servers/server/state/association-type"},
    YMAP_XPATH_CLOSING_ROW};
// clang-format on

} // namespace

#define YMAP_XPATH_TABLES(X)                                                                       \
    X(oc_qv_system_dns_servers_server)                                                             \
    X(oc_qv_server_list_call_back)                                                                 \
    X(oc_qv_ntp_version)                                                                           \
    X(oc_qv_ntp_assoc_type)                                                                        \
    X(oc_qv_ntp_iburst)                                                                            \
    X(oc_qv_ntp_prefer)                                                                            \
    X(oc_qv_host_type_check_call_back)                                                             \
    X(oc_qv_host_type_check_call_back_leaf)                                                        \
    X(oc_qv_port_type_check_call_back)                                                             \
    X(oc_qv_selector_severity_type_check_call_back)                                                \
    X(oc_qv_ipv4_vrf_list)                                                                         \
    X(oc_qv_ipv4_vrf_vrfname)                                                                      \
    X(oc_qv_ipv6_vrf_list)                                                                         \
    X(oc_qv_ipv6_vrf_vrfname)                                                                      \
    X(qv_oc_selector_severity_type_check_call_back)                                                \
    X(qv_oc_port_type_check_call_back)                                                             \
    X(qv_oc_host_type_check_call_back)                                                             \
    X(qv_oc_server_ipv4_ipv6_address)                                                              \
    X(qv_oc_ntp_version)                                                                           \
    X(qv_oc_ntp_assoc_type)

#define YMAP_TABLE_(user) const std::span<const xpath_list_type_t> user = k_##user;
YMAP_XPATH_TABLES(YMAP_TABLE_)
#undef YMAP_TABLE_

namespace {
#define YMAP_NAMED_(user) NamedTable{#user, k_##user},
constexpr NamedTable k_all[] = {YMAP_XPATH_TABLES(YMAP_NAMED_)};
#undef YMAP_NAMED_

// Every table fits the stack copy of the table forms.
constexpr bool tables_fit() {
    for (const NamedTable &t : k_all)
        if (t.rows.size() > kMaxTableRows)
            return false;
    return true;
}
static_assert(tables_fit());
} // namespace

const std::span<const NamedTable> all_tables = k_all;

} // namespace ymap::xpath
