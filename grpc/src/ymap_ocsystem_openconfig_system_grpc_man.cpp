// Hand-written functions of openconfig-system-grpc, OpenConfig to native: the
// server's name judged against the one that runs, and the two booleans that
// the native model says otherwise.
#include "ymap_grpc.hpp"
#include "ymap_module_state.hpp"

using ymap::read_kind;

namespace {

constexpr cerrno kRefused = static_cast<cerrno>(-1);

cerrno add_name(yfw_map_ctx *ctx, tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    return yfw_map_datatree_add_path_flagged(ctx, out_tree, "/grpc/name", NS_MAN_EMS_CFG,
                                             node->value, node, nullptr, 0, 0);
}

// A boolean that the native model holds as an empty leaf: one value keeps the
// leaf, the other removes `remove_path`.
struct LowBool {
    const char *path;
    const char *keep_value;
    const char *keep_msg;
    const char *remove_value;
    const char *remove_msg;
    const char *remove_path;
    const char *bad_msg;
};

// Switching the server off removes the whole /grpc container, port and
// certificate with it: the native server has no disabled state of its own.
constexpr LowBool kEnable{"/grpc/enable",
                          "true",
                          "grpc enable set to true",
                          "false",
                          "grpc enable set to false",
                          "/grpc",
                          "Error:grpc enable incorrect input"};
// no-tls says the opposite of transport-security.
constexpr LowBool kTls{"/grpc/no-tls",
                       "false",
                       "DBG grpc_config_tls_to_low_bool_conv : is true(v2)",
                       "true",
                       "DBG grpc_config_tls_to_low_bool_conv : is false(v2)",
                       "/grpc/no-tls",
                       "DBG grpc_config_tls_to_low_bool_conv : is ERROR"};

cerrno to_low_bool(const LowBool &b, const char *name, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                   tidl_yfw_datatree *out_tree) {
    if (read_kind(ctx))
        return ymap::add_value(ctx, out_tree, b.path, NS_MAN_EMS_CFG, node->value);
    // A delete names the leaf without a value.
    const char *path = b.path;
    if (!yfw_map_is_request_delete(node)) {
        if (ymap::text_equal(node->value, b.keep_value)) {
            YFW_MAP_TRC(ctx, name, "%s", b.keep_msg);
        } else if (ymap::text_equal(node->value, b.remove_value)) {
            YFW_MAP_TRC(ctx, name, "%s", b.remove_msg);
            yfw_dt_set_operation(node, OP_REMOVE);
            path = b.remove_path;
        } else {
            YFW_MAP_ERR(ctx, name, "%s", b.bad_msg);
            return YFW_SUCCESS;
        }
    }
    return yfw_map_datatree_add_path_flagged(ctx, out_tree, path, NS_MAN_EMS_CFG, nullptr, node,
                                             nullptr, 0, 0);
}

} // namespace

// A request may always say "DEFAULT", may name the server that runs, and may
// name a new server only when none runs under a name.
YMAP_HAND(check_grpc_server_name) {
    if (read_kind(ctx)) {
        YFW_MAP_TRC(ctx, name, "gRPC Get Request");
        return add_name(ctx, node, out_tree);
    }
    // The one server cannot be deleted by its name.
    if (yfw_map_is_request_delete(node))
        return kRefused;
    YFW_MAP_TRC(ctx, name, "gRPC EDIT Request");
    YFW_MAP_TRC(ctx, name, "OC GRPC: sysdb bind");
    uint8_t &probe = ymap::module_state().check_grpc_server_name_probe;
    char configured[ymap::grpc::kNameSize] = {};
    bool mismatch = false;
    if (sysdb_connection *connection = ymap::grpc::bind(probe)) {
        YFW_MAP_TRC(ctx, name, "OC GRPC: Sysdb bind success, verify gRPC server name");
        cerrno status = YFW_SUCCESS;
        if (is_grpc_configured(ctx, connection) != 0)
            status = get_cfg_svr_name(ctx, connection, configured);
        ymap::grpc::unbind(connection, probe);
        // A failed read counts as no name configured.
        if (status == YFW_SUCCESS && configured[0] != '\0') {
            if (do_svr_names_match(node->value, configured) != 0)
                return add_name(ctx, node, out_tree);
            mismatch = true;
        }
    }
    if (do_svr_names_match(node->value, ymap::grpc::kDefaultName) != 0)
        return YFW_SUCCESS; // the server stays as it is
    if (mismatch) {
        YFW_MAP_ERR(ctx, name, "grpc server names don't match, return error");
        return kRefused;
    }
    return add_name(ctx, node, out_tree);
}

// The name is judged at the key alone.
YMAP_HAND(check_grpc_server_name_dummy) {
    return YFW_SUCCESS;
}

YMAP_HAND(grpc_enable_to_low_bool_conv) {
    return to_low_bool(kEnable, name, ctx, node, out_tree);
}

YMAP_HAND(grpc_config_tls_to_low_bool_conv) {
    return to_low_bool(kTls, name, ctx, node, out_tree);
}
