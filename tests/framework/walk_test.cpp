#include <gtest/gtest.h>

#include <cstring>

#include "tree_text.hpp"
#include "yfw_map.h"

namespace {

using fwtest::add_node;

constexpr const char *kOc = "http://openconfig.net/yang/system";

// An input /system/logging/remote-servers/remote-server[host=h1] with config.
struct RemoteServerWalk : testing::Test {
    yfw::Session session{KIND_EDIT_A};
    yfw_map_ctx *ctx = session.ctx();
    yfw::Arena &arena = session.arena();
    tidl_yfw_datatree *system = fwtest::new_root(arena, "system");
    tidl_yfw_datatree *logging = add_node(arena, system, "logging");
    tidl_yfw_datatree *servers = add_node(arena, logging, "remote-servers");
    tidl_yfw_datatree *entry = add_node(arena, servers, "remote-server");

    void SetUp() override {
        system->namespace_ = arena.text(kOc);
        add_node(arena, entry, "host", "h1");
        tidl_yfw_datatree *config = add_node(arena, entry, "config");
        add_node(arena, config, "remote-port", "514");
        add_node(arena, config, "host", "h1");
        add_node(arena, config, "source-address");
        for (tidl_yfw_datatree *node : {system, logging, servers})
            yfw_map_add_to_node_hierarchy(ctx, node, YFW_MAP_HIER_CONTAINER);
        yfw_map_add_to_node_hierarchy(ctx, entry, YFW_MAP_HIER_LIST_ENTRY);
    }
};

struct InfoCase {
    const char *list_path;
    const char *key;
    cerrno status;
    const char *value; // "-" leaves the output untouched
};

class NodeInfo : public RemoteServerWalk, public testing::WithParamInterface<InfoCase> {};

TEST_P(NodeInfo, FindsTheLeafOfTheWalk) {
    ASSERT_EQ(yfw_map_update_current_list_node(
                  ctx, "/oc-sys:system/logging/remote-servers/remote-server"),
              YFW_SUCCESS);
    char untouched[] = "untouched";
    char *value = untouched;
    EXPECT_EQ(yfw_map_get_node_info(ctx, GetParam().list_path, GetParam().key, &value),
              GetParam().status);
    if (GetParam().value == nullptr)
        EXPECT_EQ(value, nullptr);
    else if (std::string_view(GetParam().value) == "-")
        EXPECT_EQ(value, untouched);
    else
        EXPECT_STREQ(value, GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Framework, NodeInfo,
    testing::Values(
        InfoCase{"/system/logging/remote-servers/remote-server", "host", YFW_SUCCESS, "h1"},
        InfoCase{"/system/logging/remote-servers/remote-server/config", "remote-port", YFW_SUCCESS,
                 "514"},
        InfoCase{"/system/logging/remote-servers/remote-server/config", "source-address",
                 YFW_SUCCESS, nullptr},
        InfoCase{"/system/logging/remote-servers/remote-server", "missing", YFW_SUCCESS, nullptr},
        InfoCase{"/system/logging", "remote-servers", YFW_SUCCESS, nullptr},
        InfoCase{"/system/ntp/servers/server", "address", YFW_ERR_BAD_TREE, "-"},
        InfoCase{"/system/ntp/servers/server/config", "address", YFW_ERR_BAD_TREE, "-"}));

TEST_F(RemoteServerWalk, CurrentEntryCountsOnlyWhileOnTheHierarchy) {
    const char *path = "/system/logging/remote-servers/remote-server";
    ASSERT_EQ(yfw_map_update_current_list_node(ctx, path), YFW_SUCCESS);
    yfw_map_remove_from_node_hierarchy(ctx, entry);
    char *value = nullptr;
    EXPECT_EQ(yfw_map_get_node_info(ctx, path, "host", &value), YFW_ERR_BAD_TREE);

    // A walk-all pass calls with an ancestor on top: success, nothing recorded.
    EXPECT_EQ(yfw_map_update_current_list_node(ctx, "/system/logging/remote-servers/"
                                                    "remote-server/selectors/selector"),
              YFW_SUCCESS);
    EXPECT_EQ(yfw_map_get_node_info(ctx, path, "host", &value), YFW_ERR_BAD_TREE);
    EXPECT_EQ(yfw_map_update_current_list_node(ctx, nullptr), YFW_ERR_INVALID_ARGS);
    EXPECT_EQ(yfw_map_get_node_info(ctx, "/system", "x", nullptr), YFW_ERR_INVALID_ARGS);
}

// A walker's list path is read again on every call, from the same buffer or
// not, and each call records the entry then on top.
TEST_F(RemoteServerWalk, ListPathBufferIsReadAgain) {
    char path[] = "/system/logging/remote-servers/remote-server";
    ASSERT_EQ(yfw_map_update_current_list_node(ctx, path), YFW_SUCCESS);
    yfw_map_remove_from_node_hierarchy(ctx, entry);
    tidl_yfw_datatree *other = fwtest::new_root(arena, "remote-server");
    add_node(arena, other, "host", "h2");
    yfw_map_add_to_node_hierarchy(ctx, other, YFW_MAP_HIER_LIST_ENTRY);
    ASSERT_EQ(yfw_map_update_current_list_node(ctx, path), YFW_SUCCESS);
    char *value = nullptr;
    EXPECT_EQ(yfw_map_get_node_info(ctx, path, "host", &value), YFW_SUCCESS);
    EXPECT_STREQ(value, "h2");

    std::memcpy(path, "/a::b", sizeof "/a::b");
    EXPECT_EQ(yfw_map_update_current_list_node(ctx, path), YFW_ERR_INVALID_ARGS);
}

// An entry named by its key alone is walked bare: its children wait on the
// itree stack, and mappers below still ask for the key.
TEST_F(RemoteServerWalk, NodeInfoFindsChildrenSetAsideOnTheItreeStack) {
    const char *path = "/system/logging/remote-servers/remote-server";
    ASSERT_EQ(yfw_map_update_current_list_node(ctx, path), YFW_SUCCESS);
    yfw_map_util_itree_stack_push(ctx, entry->subtrees, entry->subtree_count, nullptr);
    yfw_dt_clear_subtrees(entry);
    tidl_yfw_datatree unrelated[1] = {};
    yfw_map_util_itree_stack_push(ctx, unrelated, 1, nullptr);

    char *value = nullptr;
    EXPECT_EQ(yfw_map_get_node_info(ctx, path, "host", &value), YFW_SUCCESS);
    EXPECT_STREQ(value, "h1");
    value = nullptr;
    EXPECT_EQ(yfw_map_get_node_info(ctx, "/system/logging/remote-servers/remote-server/config",
                                    "remote-port", &value),
              YFW_SUCCESS);
    EXPECT_STREQ(value, "514");

    yfw_map_util_itree_stack_pop(ctx);
    yfw_map_util_itree_stack_pop(ctx);
    EXPECT_EQ(yfw_map_get_node_info(ctx, path, "host", &value), YFW_SUCCESS);
    EXPECT_EQ(value, nullptr);
}

// Native walkers name their lists with module prefixes; mappers may ask with
// or without them. The walk here starts below the module root, as an augment's
// does, so only the recorded entry can answer.
TEST(Walk, CurrentListPathsWithAndWithoutPrefixes) {
    struct Case {
        std::vector<std::string_view> walked; // from the augment down to the entry
        const char *key;
        const char *prefixed;
        const char *plain;
    };
    const Case cases[] = {
        {{"server-groups", "tacacs-server-groups", "tacacs-server-group"},
         "server-group-name",
         "/a1:aaa/a2:server-groups/tacacs-server-groups/tacacs-server-group",
         "/aaa/server-groups/tacacs-server-groups/tacacs-server-group"},
        {{"telnet-server", "ipv4", "vrf"},
         "vrf-name",
         "/oc-sys:system/oc-sys:telnet-server/ipv4/vrf",
         "/system/telnet-server/ipv4/vrf"},
    };
    for (const Case &c : cases) {
        for (const char *recorded : {c.prefixed, c.plain}) {
            for (const char *asked : {c.prefixed, c.plain}) {
                yfw::Session session(KIND_GET);
                yfw::Arena &arena = session.arena();
                tidl_yfw_datatree *node = fwtest::new_root(arena, c.walked.front());
                yfw_map_add_to_node_hierarchy(session.ctx(), node, YFW_MAP_HIER_CONTAINER);
                for (std::size_t i = 1; i < c.walked.size(); ++i) {
                    node = add_node(arena, node, c.walked[i]);
                    yfw_map_add_to_node_hierarchy(session.ctx(), node, YFW_MAP_HIER_CONTAINER);
                }
                add_node(arena, node, c.key, "k1");
                ASSERT_EQ(yfw_map_update_current_list_node(session.ctx(), recorded), YFW_SUCCESS);
                char *value = nullptr;
                EXPECT_EQ(yfw_map_get_node_info(session.ctx(), asked, c.key, &value), YFW_SUCCESS);
                EXPECT_STREQ(value, "k1") << recorded << " asked as " << asked;
            }
        }
    }

    // A prefix without a name, or a name with two prefixes, is refused.
    yfw::Session session(KIND_GET);
    tidl_yfw_datatree *vrf = fwtest::new_root(session.arena(), "vrf");
    yfw_map_add_to_node_hierarchy(session.ctx(), vrf, YFW_MAP_HIER_LIST_ENTRY);
    for (const char *bad : {"/oc-sys:/telnet-server/ipv4/vrf", "/system/:vrf", "/a:b:vrf", "/"}) {
        EXPECT_EQ(yfw_map_update_current_list_node(session.ctx(), bad), YFW_ERR_INVALID_ARGS)
            << bad;
        char untouched[] = "untouched";
        char *value = untouched;
        EXPECT_EQ(yfw_map_get_node_info(session.ctx(), bad, "vrf-name", &value),
                  YFW_ERR_INVALID_ARGS)
            << bad;
        EXPECT_EQ(value, untouched);
    }
}

TEST_F(RemoteServerWalk, PopBelowTheTopPopsDownToIt) {
    EXPECT_EQ(session.hierarchy_depth(), 4u);
    yfw_map_remove_from_node_hierarchy(ctx, logging);
    EXPECT_EQ(session.hierarchy_depth(), 1u);
    yfw_map_remove_from_node_hierarchy(ctx, entry); // not there any more
    EXPECT_EQ(session.hierarchy_depth(), 1u);
    yfw_map_remove_from_node_hierarchy(ctx, system);
    EXPECT_EQ(session.hierarchy_depth(), 0u);
    EXPECT_EQ(yfw_map_update_current_list_node(ctx, "/system"), YFW_ERR_BAD_TREE);
}

TEST_F(RemoteServerWalk, ErrorPathNamesModuleAndKeys) {
    yfw_oc_error_path(ctx);
    EXPECT_EQ(session.error_path(),
              "/openconfig-system:system/logging/remote-servers/remote-server[host='h1']");

    // A foreign namespace below is prefixed, by URI when no module has it.
    tidl_yfw_datatree *ext = add_node(arena, entry, "ext");
    ext->namespace_ = arena.text("urn:other");
    yfw_map_add_to_node_hierarchy(ctx, ext, YFW_MAP_HIER_CONTAINER);
    yfw_oc_error_path(ctx);
    EXPECT_EQ(session.error_path(), "/openconfig-system:system/logging/remote-servers/"
                                    "remote-server[host='h1']/urn:other:ext");
}

TEST_F(RemoteServerWalk, OutputListContextsStackTheirKeys) {
    yfw_map_state *state = session.state();
    yfw_add_to_output_list_ctx(ctx, entry, session.output());
    EXPECT_EQ(state->output_list_count, 1u);
    EXPECT_EQ(ctx->list_index, 1);
    EXPECT_STREQ(ctx->output_list_key[0], "h1");

    // An entry with no key child opens nothing.
    yfw_add_to_output_list_ctx(ctx, servers, session.output());
    EXPECT_EQ(session.output_lists_open(), 1u);

    tidl_yfw_datatree *marked = add_node(arena, entry, "inner");
    yfw_dt_set_is_key(add_node(arena, marked, "id", "7"));
    yfw_add_to_output_list_ctx(ctx, marked, session.output());
    EXPECT_EQ(ctx->list_index, 2);
    EXPECT_STREQ(ctx->output_list_key[1], "7");

    yfw_remove_from_output_list_ctx(ctx, marked, session.output());
    yfw_remove_from_output_list_ctx(ctx, entry, session.output());
    EXPECT_EQ(state->output_list_count, 0u);
    EXPECT_EQ(ctx->list_index, 0);
    EXPECT_EQ(session.output_lists_open(), 0u);
}

TEST_F(RemoteServerWalk, LeafrefComparesTheConfigMirror) {
    tidl_yfw_datatree *key = &entry->subtrees[0];
    const char *path = "/system/logging/remote-servers/remote-server";
    EXPECT_EQ(yfw_map_check_oc_leafref(ctx, path, "config", key, entry), YFW_SUCCESS);
    entry->subtrees[1].subtrees[1].value = arena.text("h2");
    EXPECT_EQ(yfw_map_check_oc_leafref(ctx, path, "config", key, entry), YFW_ERR_LIST_KEY);
    EXPECT_EQ(yfw_map_check_oc_leafref(ctx, path, "state", key, entry), YFW_SUCCESS);
    entry->subtrees[1].subtrees[1].value = nullptr; // a selection leaf
    EXPECT_EQ(yfw_map_check_oc_leafref(ctx, path, "config", key, entry), YFW_SUCCESS);
    EXPECT_EQ(yfw_map_check_oc_leafref(ctx, path, "config", nullptr, entry), YFW_ERR_INVALID_ARGS);
}

TEST(Walk, RequestTests) {
    struct Case {
        uint32_t kind;
        int32_t op; // -1: none
        int is_delete;
        int is_add;
    };
    const Case cases[] = {
        {KIND_EDIT_A, -1, 0, 1},        {KIND_EDIT_A, OP_DELETE, 1, 0},
        {KIND_EDIT_B, OP_REMOVE, 1, 0}, {3, OP_MERGE, 0, 1},
        {KIND_GET, -1, 0, 0},           {KIND_GET_CONFIG, OP_REPLACE, 0, 0},
    };
    for (const Case &c : cases) {
        yfw::Session session(c.kind);
        tidl_yfw_datatree *node = fwtest::new_root(session.arena(), "n");
        if (c.op >= 0)
            yfw_dt_set_operation(node, c.op);
        EXPECT_EQ(yfw_map_is_request_delete(node), c.is_delete) << c.kind << " " << c.op;
        EXPECT_EQ(yfw_map_is_request_add(session.ctx(), node), c.is_add) << c.kind << " " << c.op;
    }
    EXPECT_EQ(yfw_map_is_request_delete(nullptr), 0);
    EXPECT_EQ(yfw_map_do_these_match("a", "a"), 1);
    EXPECT_EQ(yfw_map_do_these_match("a", "b"), 0);
    EXPECT_EQ(yfw_map_do_these_match(nullptr, nullptr), 0);
}

TEST(Walk, SubtreesOfWellAndBadlyFormedNodes) {
    yfw::Session session(KIND_GET);
    tidl_yfw_datatree node = {};
    tidl_yfw_datatree *subtrees = &node;
    uint32_t count = 9;
    node.subtree_count = 3; // not present: no children
    EXPECT_EQ(yfw_map_get_subtrees(session.ctx(), &node, &subtrees, &count), YFW_SUCCESS);
    EXPECT_EQ(subtrees, nullptr);
    EXPECT_EQ(count, 0u);
    node.present_subtrees = 1; // present with no array: malformed
    EXPECT_EQ(yfw_map_get_subtrees(session.ctx(), &node, &subtrees, &count), YFW_ERR_BAD_TREE);
    EXPECT_EQ(yfw_map_get_subtrees(session.ctx(), nullptr, &subtrees, &count),
              YFW_ERR_INVALID_ARGS);
}

TEST(Walk, ItreeStack) {
    yfw::Session session(KIND_GET);
    yfw_map_ctx *ctx = session.ctx();
    tidl_yfw_datatree nodes[2] = {};
    yfw_map_itree_entry unset{};
    yfw_map_itree_entry *top = &unset;
    yfw_map_util_itree_stack_peak(ctx, &top);
    EXPECT_EQ(top, nullptr);
    yfw_map_util_itree_stack_push(ctx, nodes, 2, nullptr);
    yfw_map_util_itree_stack_push(ctx, &nodes[1], 1, nullptr);
    EXPECT_EQ(yfw_map_util_itree_stack_size(ctx), 2u);
    yfw_map_util_itree_stack_peak(ctx, &top);
    ASSERT_NE(top, nullptr);
    EXPECT_EQ(top->nodes, &nodes[1]);
    EXPECT_EQ(top->count, 1u);
    yfw_map_util_itree_stack_pop(ctx);
    yfw_map_util_itree_stack_pop(ctx);
    yfw_map_util_itree_stack_pop(ctx); // empty: no effect
    EXPECT_EQ(session.itree_depth(), 0u);
}

} // namespace
