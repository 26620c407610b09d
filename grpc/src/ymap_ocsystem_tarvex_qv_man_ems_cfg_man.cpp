// Hand-written functions of Tarvex-QV-man-ems-cfg, native to OpenConfig: the
// server's name from the system database keys the one OpenConfig entry, and
// the empty native leaves become booleans.
#include <cstdio>
#include <cstring>

#include "ymap_grpc.hpp"
#include "ymap_module_state.hpp"

namespace {

constexpr const char kList[] = "/system/grpc-servers/grpc-server";

// Native empty leaves: present means `present`, a null value `absent`.
struct HighBool {
    const char *path;
    const char *present;
    const char *absent;
};
constexpr HighBool kEnable{"/system/grpc-servers/grpc-server/config/enable", "true", "false"};
constexpr HighBool kTls{"/system/grpc-servers/grpc-server/config/transport-security", "false",
                        "true"};

cerrno to_high_bool(const HighBool &b, yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                    tidl_yfw_datatree *out_tree) {
    if (oper_only(ctx))
        return YFW_SUCCESS;
    return ymap::add_value(ctx, out_tree, b.path, NS_OPENCONFIG_SYSTEM_GRPC,
                           node->value != nullptr ? b.present : b.absent, 0, 1);
}

} // namespace

// The name is read afresh for every answer: a missing item is the unnamed
// server "DEFAULT"; no database or a failed bind leaves the key empty.
YMAP_HAND(get_grpc_server_name) {
    char server[ymap::grpc::kNameSize] = {};
    uint8_t &probe = ymap::module_state().get_grpc_server_name_probe;
    if (sysdb_connection *connection = ymap::grpc::bind(probe)) {
        cerrno ignored = YFW_SUCCESS;
        if (ymap::grpc::read_name(ctx, name, connection, server, ignored) ==
            ymap::grpc::NameRead::Failed) {
            YFW_MAP_TRC(ctx, name, "DEFAULT server name configured");
            std::snprintf(server, sizeof server, "%s", ymap::grpc::kDefaultName);
        }
        ymap::grpc::unbind(connection, probe);
    }

    yfw_map_stitch_record record{};
    record.out_tree = out_tree;
    record.mode_a = 1;
    record.mode_b = 2;
    std::snprintf(record.namespace_, sizeof record.namespace_, "%s", NS_OPENCONFIG_SYSTEM_GRPC);
    std::snprintf(record.entry_path, sizeof record.entry_path, "%s[name=%s]/", kList, server);
    std::snprintf(record.list_path, sizeof record.list_path, "%s", kList);
    cerrno status = yfw_map_stitch_container_to_list(ctx, &record);
    if (oper_only(ctx))
        return status;
    (void)ymap::add_value(ctx, out_tree, "/system/grpc-servers/grpc-server/config/name",
                          NS_OPENCONFIG_SYSTEM_GRPC, server, 0, 1);
    // The stitch and the leaves carry the augment's namespace; the root must
    // carry that of the augmented module.
    status = yfw_map_datatree_update_namespace(ctx, out_tree, "/system", NS_OPENCONFIG_SYSTEM, 0);
    return status;
}

YMAP_HAND_COUNT(ymap_qo_ocsystem_tarvexqvmanemscfg_cont_lvla_grpc) {
    return get_grpc_server_name(ctx, node, out_tree);
}

YMAP_HAND(grpc_enable_to_high_bool_conv) {
    return to_high_bool(kEnable, ctx, node, out_tree);
}

YMAP_HAND(grpc_config_tls_to_high_bool_conv) {
    return to_high_bool(kTls, ctx, node, out_tree);
}
