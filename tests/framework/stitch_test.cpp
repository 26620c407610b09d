#include <gtest/gtest.h>

#include <cstring>

#include "tree_text.hpp"
#include "yfw_map.h"

namespace {

using fwtest::add_node;
using fwtest::doc_text;

constexpr const char *kOc = "http://openconfig.net/yang/system";
constexpr const char *kGrpc = "http://openconfig.net/yang/system-grpc";

// One request as a native walker drives it.
struct Request {
    yfw::Session session{KIND_GET};
    yfw_map_ctx *ctx = session.ctx();
    yfw::Arena &arena = session.arena();

    // Pushes a private oper tree down to its list, as the native walkers do.
    tidl_yfw_datatree *walk_into(std::initializer_list<const char *> containers) {
        tidl_yfw_datatree *node = nullptr;
        for (const char *tag : containers) {
            node = node == nullptr ? fwtest::new_root(arena, tag) : add_node(arena, node, tag);
            yfw_map_add_to_node_hierarchy(ctx, node, YFW_MAP_HIER_CONTAINER);
        }
        return node;
    }
    tidl_yfw_datatree *entry(tidl_yfw_datatree *list_parent, const char *tag, const char *key,
                             const char *value) {
        tidl_yfw_datatree *e = add_node(arena, list_parent, tag);
        if (key != nullptr)
            add_node(arena, e, key, value);
        return e;
    }
    void add(const char *path, const char *value, uint32_t list_entry = 0) {
        ASSERT_EQ(yfw_map_datatree_add_path_flagged(ctx, session.output(), path, kOc, value,
                                                    nullptr, nullptr, list_entry, 0),
                  YFW_SUCCESS);
    }
    cerrno stitch(const tidl_yfw_datatree *input, std::initializer_list<const char *> parts) {
        std::vector<const char *> components(parts);
        return yfw_map_auto_stitch_list_to_list(ctx, input, session.output(), kOc,
                                                components.data(),
                                                static_cast<uint32_t>(components.size()));
    }
};
struct Stitch : testing::Test, Request {};

TEST_F(Stitch, JoinsAnExistingEntryOrCreatesOne) {
    add("/system/cpus/cpu/index", "0");
    tidl_yfw_datatree *cpuses = walk_into({"ocsystemcpu", "system", "cpuses"});
    entry(cpuses, "cpus", "index", "1");
    entry(cpuses, "cpus", "index", "0");
    // Taken after both appends: an append may move the earlier entries.
    tidl_yfw_datatree *cpu1 = &cpuses->subtrees[0];
    tidl_yfw_datatree *cpu0 = &cpuses->subtrees[1];

    yfw_map_add_to_node_hierarchy(ctx, cpu1, YFW_MAP_HIER_LIST_ENTRY);
    ASSERT_EQ(stitch(cpu1, {"/system", "/cpus", "/cpu"}), YFW_SUCCESS);
    add("/system/cpus/cpu/state/total/avg", "5");
    yfw_map_remove_from_node_hierarchy(ctx, cpu1);

    yfw_map_add_to_node_hierarchy(ctx, cpu0, YFW_MAP_HIER_LIST_ENTRY);
    ASSERT_EQ(stitch(cpu0, {"/system", "/cpus", "/cpu"}), YFW_SUCCESS);
    add("/system/cpus/cpu/state/index", "0");
    EXPECT_EQ(doc_text(*session.output()),
              "system{cpus{cpu{index=0 state{index=0}} cpu{index=1 state{total{avg=5}}}}}");
}

TEST_F(Stitch, KeysJoinByPositionNotByName) {
    add("/system/dns/host-entries/host-entry/hostname", "h");
    tidl_yfw_datatree *entries = walk_into({"oc-dns", "system", "dns", "host-entries"});
    tidl_yfw_datatree *h2 = entry(entries, "host-entry", "host-name", "h2");
    yfw_map_add_to_node_hierarchy(ctx, h2, YFW_MAP_HIER_LIST_ENTRY);
    ASSERT_EQ(stitch(h2, {"/system", "/dns", "/host-entries", "/host-entry"}), YFW_SUCCESS);
    EXPECT_EQ(doc_text(*session.output()),
              "system{dns{host-entries{host-entry{hostname=h} host-entry{hostname=h2}}}}");
}

// Entry after entry the keys come from the list the hierarchy names now, also
// when its tags are the same texts as before, rewritten in place.
TEST_F(Stitch, EachListTakesItsOwnKeys) {
    tidl_yfw_datatree *lists = add_node(arena, walk_into({"oc-dns", "system", "dns"}), "x");
    yfw_map_add_to_node_hierarchy(ctx, lists, YFW_MAP_HIER_CONTAINER);
    char list_tag[16];
    char entry_tag[16];
    lists->tag = list_tag;
    const struct {
        const char *list, *entry, *key, *value, *out_list, *out_entry;
    } cases[] = {
        {"servers", "server", "address", "a", "/servers", "/server"},
        {"host-entries", "host-entry", "host-name", "h", "/host-entries", "/host-entry"},
        {"servers", "server", "address", "b", "/servers", "/server"},
    };
    for (const auto &c : cases) {
        std::strcpy(list_tag, c.list);
        std::strcpy(entry_tag, c.entry);
        tidl_yfw_datatree *e = entry(lists, "x", c.key, c.value);
        e->tag = entry_tag;
        yfw_map_add_to_node_hierarchy(ctx, e, YFW_MAP_HIER_LIST_ENTRY);
        EXPECT_EQ(stitch(e, {"/system", "/dns", c.out_list, c.out_entry}), YFW_SUCCESS) << c.value;
        yfw_map_remove_from_node_hierarchy(ctx, e);
    }
    EXPECT_EQ(doc_text(*session.output()),
              "system{dns{servers{server{address=a} "
              "server{address=b}} host-entries{host-entry{hostname=h}}}}");
}

// Two requests walking lists at the same depth, with the same innermost tag,
// each take the keys of their own list.
TEST(StitchRequests, EachTakesTheKeysOfItsOwnList) {
    const struct {
        std::initializer_list<const char *> walk;
        const char *key, *value, *expected;
    } cases[] = {
        {{"oc-dns", "system", "dns", "servers"},
         "address",
         "a",
         "system{dns{servers{server{address=a}}}}"},
        {{"ip-domain", "vrfs", "vrf", "servers"},
         "order",
         "1",
         "system{dns{servers{server{address=1}}}}"},
    };
    for (const auto &c : cases) {
        Request request;
        tidl_yfw_datatree *e = request.entry(request.walk_into(c.walk), "server", c.key, c.value);
        yfw_map_add_to_node_hierarchy(request.ctx, e, YFW_MAP_HIER_LIST_ENTRY);
        EXPECT_EQ(request.stitch(e, {"/system", "/dns", "/servers", "/server"}), YFW_SUCCESS);
        EXPECT_EQ(doc_text(*request.session.output()), c.expected);
    }
}

TEST_F(Stitch, EnclosingEntriesComeFromOpenOutputLists) {
    add("/system/aaa/server-groups/server-group/name", "g0");
    add("/system/aaa/server-groups/server-group/name", "g1");
    tidl_yfw_datatree *groups = walk_into({"ocaaa", "system", "aaa", "server-groups"});
    const std::initializer_list<const char *> parts = {
        "/system", "/aaa", "/server-groups", "/server-group", "/servers", "/server"};
    for (const char *group_name : {"g0", "g2"}) {
        tidl_yfw_datatree *group = entry(groups, "server-group", "name", group_name);
        yfw_map_add_to_node_hierarchy(ctx, group, YFW_MAP_HIER_LIST_ENTRY);
        yfw_add_to_output_list_ctx(ctx, group, session.output());
        tidl_yfw_datatree *servers = add_node(arena, group, "servers");
        yfw_map_add_to_node_hierarchy(ctx, servers, YFW_MAP_HIER_CONTAINER);
        tidl_yfw_datatree *server = entry(servers, "server", "address", "10.0.0.1");
        yfw_map_add_to_node_hierarchy(ctx, server, YFW_MAP_HIER_LIST_ENTRY);
        ASSERT_EQ(stitch(server, parts), YFW_SUCCESS);
        yfw_map_remove_from_node_hierarchy(ctx, server);
        yfw_remove_from_output_list_ctx(ctx, group, session.output());
        yfw_map_remove_from_node_hierarchy(ctx, group);
    }
    EXPECT_EQ(doc_text(*session.output()),
              "system{aaa{server-groups{server-group{name=g0 servers{server{address=10.0.0.1}}} "
              "server-group{name=g1} "
              "server-group{name=g2 servers{server{address=10.0.0.1}}}}}}");
}

TEST_F(Stitch, AnEntryWithoutKeysIsSkipped) {
    tidl_yfw_datatree *cpuses = walk_into({"ocsystemcpu", "system", "cpuses"});
    tidl_yfw_datatree *keyless = entry(cpuses, "cpus", "state", nullptr);
    yfw_map_add_to_node_hierarchy(ctx, keyless, YFW_MAP_HIER_LIST_ENTRY);
    EXPECT_EQ(stitch(keyless, {"/system", "/cpus", "/cpu"}), YFW_MAP_SKIP_NODE);
    EXPECT_EQ(stitch(keyless, {"/system", "/cpus"}), YFW_ERR_INVALID_ARGS);
    EXPECT_EQ(session.output()->present_subtrees, 0u);
}

TEST_F(Stitch, KeysMarkedOnAnEntryOffTheHierarchy) {
    tidl_yfw_datatree *cpu = fwtest::new_root(arena, "cpus");
    yfw_dt_set_is_key(add_node(arena, cpu, "index", "3"));
    ASSERT_EQ(stitch(cpu, {"/system", "/cpus", "/cpu"}), YFW_SUCCESS);
    EXPECT_EQ(doc_text(*session.output()), "system{cpus{cpu{index=3}}}");
}

yfw_map_stitch_record grpc_record(tidl_yfw_datatree *out, const char *entry_path) {
    yfw_map_stitch_record record{};
    record.out_tree = out;
    record.mode_a = 1;
    record.mode_b = 2;
    std::strcpy(record.namespace_, kGrpc);
    std::strcpy(record.entry_path, entry_path);
    std::strcpy(record.list_path, "/system/grpc-servers/grpc-server");
    return record;
}

TEST(ContainerToList, MakesTheNamedEntryCurrent) {
    yfw::Session session(KIND_GET_CONFIG);
    yfw_map_ctx *ctx = session.ctx();
    for (const char *name : {"a", "b"})
        yfw_map_datatree_add_path_flagged(ctx, session.output(),
                                          "/system/grpc-servers/grpc-server/name", kGrpc, name,
                                          nullptr, nullptr, 1, 0);
    for (const char *path : {"/system/grpc-servers/grpc-server[name=a]/",
                             "/system/grpc-servers/grpc-server[name='c/d']",
                             "/system/grpc-servers/grpc-server[name=]/"}) {
        auto record = grpc_record(session.output(), path);
        ASSERT_EQ(yfw_map_stitch_container_to_list(ctx, &record), YFW_SUCCESS) << path;
        EXPECT_STREQ(record.entry_path, path); // read, not ended in place
        yfw_map_datatree_add_path_flagged(ctx, session.output(),
                                          "/system/grpc-servers/grpc-server/config/port", kGrpc,
                                          "1", nullptr, nullptr, 0, 1);
    }
    EXPECT_EQ(doc_text(*session.output()),
              "system{grpc-servers{grpc-server{name=a config{port=1}} grpc-server{name=b} "
              "grpc-server{name=c/d config{port=1}} grpc-server{name= config{port=1}}}}");
    EXPECT_STREQ(session.output()->subtrees[0].namespace_, kGrpc);
}

TEST(ContainerToList, MalformedPathsChangeNothing) {
    yfw::Session session(KIND_GET_CONFIG);
    for (const char *path :
         {"/system/grpc-servers/grpc-server[name=a", "/system/grpc-servers/grpc-server[port=1]/",
          "/system/grpc-servers/grpc-server[name='a]/", "/", "",
          "/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a"}) { // deeper than an add goes
        auto record = grpc_record(session.output(), path);
        EXPECT_EQ(yfw_map_stitch_container_to_list(session.ctx(), &record), YFW_ERR_INVALID_ARGS)
            << path;
    }
    EXPECT_EQ(yfw_map_stitch_container_to_list(session.ctx(), nullptr), YFW_ERR_INVALID_ARGS);
    EXPECT_EQ(session.output()->present_subtrees, 0u);
}

} // namespace
