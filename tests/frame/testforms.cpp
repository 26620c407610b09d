// The tests' module of forms: its rows and its hand-written functions.
#include "testforms.hpp"

#define YMAP_PASS AUTO
#include "testforms.def"
#undef YMAP_PASS
#define YMAP_PASS PARSER
#include "testforms.def"
#undef YMAP_PASS

YMAP_HAND_CALLBACK(test_forms_table_pick) {
    rows[ymap::read_kind(ctx) ? 0 : 1].selected = 1;
    return YFW_SUCCESS;
}

// Shows the count it was given.
YMAP_HAND_COUNT(test_forms_hand_count) {
    return ymap::add_value(ctx, out_tree, "/ntp/passive", NS_IP_NTP_CFG,
                           count != 0 ? "named" : "bare");
}

YMAP_HAND(test_forms_hand_leaf) {
    return ymap::add_three_way(ctx, node, out_tree, "/ntp/dscp-ipv4", NS_IP_NTP_CFG);
}

// Under its own name: in a read the container is not to be mapped at all.
YMAP_HAND_COUNT(ymap_oq_ocsystem_testforms_cont_lvla_f_own) {
    return ymap::read_kind(ctx) ? YFW_MAP_SKIP_NODE : YFW_SUCCESS;
}

YMAP_HAND(ymap_oq_ocsystem_testforms_leaf_lvla_own_o) {
    return ymap::add_three_way(ctx, node, out_tree, "/ntp/dscp-ipv6", NS_IP_NTP_CFG);
}

// An entry that is not to be mapped: dropped with its children.
YMAP_HAND(test_forms_skip_list) {
    return YFW_MAP_SKIP_NODE;
}
