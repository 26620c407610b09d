// The SSH companion: the five leaves of /system/ssh-server and their native
// leaves under /ssh/server of Tarvex-QV-crypto-ssh-cfg, one row each.
#include "companion.hpp"

namespace {

using namespace companion;

Native boolean_empty_leaf(const char *value) {
    return boolean(value, "", "SSH enable must be true or false");
}

// v2 alone restricts the server to version 2; without it both are served.
// Version 1 alone cannot be expressed and is refused.
Native version_to_native(const char *value) {
    if (text(value) == "V2")
        return {Native::Set, ""};
    if (text(value) == "V1_V2")
        return {Native::Remove};
    return {Native::Refuse, "SSH protocol version must be V2 or V1_V2"};
}

const char *present_true(const char *) {
    return "true";
}
const char *present_v2(const char *) {
    return "V2";
}
const char *same(const char *value) {
    return value;
}

struct SshLeaf {
    const char *oc_leaf;
    Target native;
    ToNative to_native;
    const char *(*to_oc)(const char *native_value);
    bool in_vrf; // enable is per VRF on the device
};

constexpr const char kVrf[] = "/ssh/server/vrf-table/vrf";
constexpr const char kVrfName[] = "/ssh/server/vrf-table/vrf/vrf-name";
// The VRF an OpenConfig enable is written to: the device's default one.
constexpr const char kSshVrf[] = "default";

enum Leaf { Enable, Version, Timeout, RateLimit, SessionLimit };
constexpr SshLeaf kLeaves[] = {
    {"enable",
     {"/ssh/server/vrf-table/vrf/enable", NS_CRYPTO_SSH_CFG},
     boolean_empty_leaf,
     present_true,
     true},
    {"protocol-version",
     {"/ssh/server/v2", NS_CRYPTO_SSH_CFG},
     version_to_native,
     present_v2,
     false},
    {"timeout", {"/ssh/server/timeout", NS_CRYPTO_SSH_CFG}, unchanged, same, false},
    {"rate-limit", {"/ssh/server/rate-limit", NS_CRYPTO_SSH_CFG}, unchanged, same, false},
    {"session-limit", {"/ssh/server/session-limit", NS_CRYPTO_SSH_CFG}, unchanged, same, false},
};

cerrno to_native(yfw_map_ctx *ctx, const char *fn, const tidl_yfw_datatree *node,
                 tidl_yfw_datatree *out, const SshLeaf &leaf) {
    return framed(ctx, fn, node != nullptr && out != nullptr, [&] {
        // A read asks every VRF, since any of them enabling SSH makes it on.
        if (leaf.in_vrf && !read_kind(ctx)) {
            add(ctx, out, {kVrf, NS_CRYPTO_SSH_CFG, 1}, nullptr, nullptr);
            add(ctx, out, {kVrfName, NS_CRYPTO_SSH_CFG, 1}, kSshVrf, nullptr);
        }
        return write_leaf(ctx, fn, out, leaf.native, node, leaf.to_native);
    });
}

cerrno to_oc(yfw_map_ctx *ctx, const char *fn, const tidl_yfw_datatree *node,
             tidl_yfw_datatree *out, const SshLeaf &leaf) {
    return framed(ctx, fn, node != nullptr && out != nullptr, [&] {
        return write_answer(
            ctx, out, NS_OPENCONFIG_SYSTEM, Path("/system/ssh-server/config/", leaf.oc_leaf),
            Path("/system/ssh-server/state/", leaf.oc_leaf), leaf.to_oc(node->value));
    });
}

} // namespace

// clang-format off
#define SSH_LEAF_PAIR(name, leaf)                                                                  \
    extern "C" cerrno oc2qv_ssh_##name(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,             \
                                       tidl_yfw_datatree *out_tree) {                              \
        return to_native(ctx, __func__, node, out_tree, kLeaves[leaf]);                            \
    }                                                                                              \
    extern "C" cerrno qv2oc_ssh_##name(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,             \
                                       tidl_yfw_datatree *out_tree) {                              \
        return to_oc(ctx, __func__, node, out_tree, kLeaves[leaf]);                                \
    }

SSH_LEAF_PAIR(enable, Enable)
SSH_LEAF_PAIR(version, Version)
SSH_LEAF_PAIR(timeout, Timeout)
SSH_LEAF_PAIR(server_rate_limit, RateLimit)
SSH_LEAF_PAIR(server_session_limit, SessionLimit)
// clang-format on
