// The tests' module of forms, declared from testforms.def, and its table.
#pragma once

#include "ymap_rows.hpp"
#include "ymap_xpath.hpp"

extern "C" cerrno test_forms_table_pick(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);

// Two tables with one callback: reads ask for the first row, edits for the second.
// A list row's second path is for reads: the edit row's never shows.
// clang-format off
YMAP_XPATH_TABLE(test_forms_lists, ::test_forms_table_pick,
    {"/ntp/authentication/keys/key", NS_IP_NTP_CFG, &ymap::xpath_node_value, 0, 0, "NULL"},
    {"/ntp/peer-vrfs/peer-vrf",      NS_IP_NTP_CFG, &ymap::xpath_node_value, 0, 0, "/ntp/passive"});
YMAP_XPATH_TABLE(test_forms_leaves, ::test_forms_table_pick,
    {"/ntp/passive",                 NS_IP_NTP_CFG, &ymap::xpath_node_value, 0, 0, "/ntp/dscp-ipv4"},
    {"/ntp/dscp-ipv6",               NS_IP_NTP_CFG, &ymap::xpath_node_value, 0, 0, "/ntp/dscp-ipv4"});
// clang-format on

#define YMAP_PASS DECLARE
#include "testforms.def"
#undef YMAP_PASS
