// The constant xpath tables of the library, one per table user, each ending
// with the closing row. A mapper copies its table to the stack per call and
// hands the copy to its type-check callback (ymap_xpath.hpp).
#pragma once

#include <span>

#include "yfw_map.h"

namespace ymap::xpath {

// clang-format off
// OpenConfig to native
extern const std::span<const xpath_list_type_t> oc_qv_system_dns_servers_server;
extern const std::span<const xpath_list_type_t> oc_qv_server_list_call_back;
extern const std::span<const xpath_list_type_t> oc_qv_ntp_version;
extern const std::span<const xpath_list_type_t> oc_qv_ntp_assoc_type;
extern const std::span<const xpath_list_type_t> oc_qv_ntp_iburst;
extern const std::span<const xpath_list_type_t> oc_qv_ntp_prefer;
extern const std::span<const xpath_list_type_t> oc_qv_host_type_check_call_back;       // the lists
extern const std::span<const xpath_list_type_t> oc_qv_host_type_check_call_back_leaf;  // their keys
extern const std::span<const xpath_list_type_t> oc_qv_port_type_check_call_back;
extern const std::span<const xpath_list_type_t> oc_qv_selector_severity_type_check_call_back;
extern const std::span<const xpath_list_type_t> oc_qv_ipv4_vrf_list;
extern const std::span<const xpath_list_type_t> oc_qv_ipv4_vrf_vrfname;
extern const std::span<const xpath_list_type_t> oc_qv_ipv6_vrf_list;
extern const std::span<const xpath_list_type_t> oc_qv_ipv6_vrf_vrfname;
// Native to OpenConfig
extern const std::span<const xpath_list_type_t> qv_oc_selector_severity_type_check_call_back;
extern const std::span<const xpath_list_type_t> qv_oc_port_type_check_call_back;
extern const std::span<const xpath_list_type_t> qv_oc_host_type_check_call_back;
extern const std::span<const xpath_list_type_t> qv_oc_server_ipv4_ipv6_address;
extern const std::span<const xpath_list_type_t> qv_oc_ntp_version;
extern const std::span<const xpath_list_type_t> qv_oc_ntp_assoc_type;
// clang-format on

// Every table, for checks over all of them.
struct NamedTable {
    const char *user;
    std::span<const xpath_list_type_t> rows;
};
extern const std::span<const NamedTable> all_tables;

} // namespace ymap::xpath
