#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tree_text.hpp"
#include "yfw_map.h"

namespace {

using fwtest::add_node;
using fwtest::doc_text;

constexpr const char *kOc = "http://openconfig.net/yang/system";
constexpr const char *kDomain = "http://tarvex.local/ns/yang/Tarvex-QV-ip-domain-cfg";

struct Add {
    const char *path;
    const char *value = nullptr;
    uint32_t list_entry = 0;
};

struct AddCase {
    const char *name;
    std::vector<Add> adds;
    const char *expected;
};

class AddSequence : public testing::TestWithParam<AddCase> {};

TEST_P(AddSequence, BuildsTheTree) {
    yfw::Session session(KIND_GET_CONFIG);
    for (const Add &add : GetParam().adds)
        ASSERT_EQ(yfw_map_datatree_add_path_flagged(session.ctx(), session.output(), add.path, kOc,
                                                    add.value, nullptr, nullptr, add.list_entry, 0),
                  YFW_SUCCESS)
            << add.path;
    EXPECT_EQ(doc_text(*session.output()), GetParam().expected);
}

const AddCase kAddCases[] = {
    {"RepeatedAddChangesNothing",
     {{"/system/config/hostname", "a"}, {"/a:system/config/hostname", "a"}},
     "system{config{hostname=a}}"},
    {"LaterValueWinsNullKeeps",
     {{"/system/config/hostname", "a"},
      {"/system/config/hostname", "b"},
      {"/system/config/hostname", nullptr}},
     "system{config{hostname=b}}"},
    {"ListEntriesFormedByFlaggedAdds",
     {{"/banners/banner", nullptr, 1},
      {"/banners/banner/banner-name", "login", 1},
      {"/banners/banner/banner-text", "L"},
      {"/banners/banner", nullptr, 1},
      {"/banners/banner/banner-name", "motd", 1},
      {"/banners/banner/banner-text", "M"}},
     "banners{banner{banner-name=login banner-text=L} banner{banner-name=motd banner-text=M}}"},
    {"FlaggedAddReusesAnEntryWithoutKeys",
     {{"/banners/banner", nullptr, 1},
      {"/banners/banner", nullptr, 1},
      {"/banners/banner/banner-text", "T"}},
     "banners{banner{banner-text=T}}"},
    {"UnflaggedAddStaysOnCurrentEntry",
     {{"/banners/banner/banner-name", "login", 1},
      {"/banners/banner", nullptr, 0},
      {"/banners/banner/banner-text", "T"}},
     "banners{banner{banner-name=login banner-text=T}}"},
    {"DifferentKeyStartsAnEntryEqualKeyReturns",
     {{"/system/dns/servers/server/address", "1.1.1.1"},
      {"/system/dns/servers/server/address", "2.2.2.2"},
      {"/system/dns/servers/server/config/port", "53"},
      {"/system/dns/servers/server/address", "1.1.1.1"},
      {"/system/dns/servers/server/config/port", "54"}},
     "system{dns{servers{server{address=1.1.1.1 config{port=54}} "
     "server{address=2.2.2.2 config{port=53}}}}}"},
    {"KeyGivenTwiceKeepsItsEntryAndAnEqualKeyMerges",
     {{"/system/dns/servers/server", nullptr, 1},
      {"/system/dns/servers/server/address", "1.1.1.1", 1},
      {"/system/dns/servers/server/address", "1.1.1.1"},
      {"/system/dns/servers/server/config/port", "53"},
      {"/system/dns/servers/server", nullptr, 1},
      {"/system/dns/servers/server/address", "1.1.1.1", 1},
      {"/system/dns/servers/server/address", "1.1.1.1"},
      {"/system/dns/servers/server/config/port", "54"}},
     "system{dns{servers{server{address=1.1.1.1 config{port=54}}}}}"},
    {"CompletedKeysMergeIntoTheExistingEntry",
     {{"/system/dns/host-entries/host-entry", nullptr, 1},
      {"/system/dns/host-entries/host-entry/hostname", "h", 1},
      {"/system/dns/host-entries/host-entry/config/ipv4-address", "10.0.0.1", 1},
      {"/system/dns/host-entries/host-entry", nullptr, 1},
      {"/system/dns/host-entries/host-entry/config/ipv6-address", "::1", 1},
      {"/system/dns/host-entries/host-entry/hostname", "h", 1},
      {"/system/dns/host-entries/host-entry/config/ipv6-address", "::2", 1}},
     "system{dns{host-entries{host-entry{hostname=h config{ipv4-address=10.0.0.1 "
     "ipv6-address=::1 ipv6-address=::2}}}}}"},
    {"MergeJoinsNestedListsByKey",
     {{"/system/logging/remote-servers/remote-server", nullptr, 1},
      {"/system/logging/remote-servers/remote-server/host", "h", 1},
      {"/system/logging/remote-servers/remote-server/selectors/selector/facility", "NONE"},
      {"/system/logging/remote-servers/remote-server/selectors/selector/severity", "INFO"},
      {"/system/logging/remote-servers/remote-server", nullptr, 1},
      {"/system/logging/remote-servers/remote-server/selectors/selector/facility", "NONE"},
      {"/system/logging/remote-servers/remote-server/selectors/selector/severity", "INFO"},
      {"/system/logging/remote-servers/remote-server/selectors/selector/config/severity", "INFO"},
      {"/system/logging/remote-servers/remote-server/config/remote-port", "514"},
      {"/system/logging/remote-servers/remote-server/host", "h", 1}},
     "system{logging{remote-servers{remote-server{host=h selectors{selector{facility=NONE "
     "severity=INFO config{severity=INFO}}} config{remote-port=514}}}}}"},
    {"TwoKeyListsNeedBothKeys",
     {{"/ip-domain/vrfs/vrf/lists/list", nullptr, 1},
      {"/ip-domain/vrfs/vrf/lists/list/order", "0", 1},
      {"/ip-domain/vrfs/vrf/lists/list/list-name", "a", 1},
      {"/ip-domain/vrfs/vrf/lists/list", nullptr, 1},
      {"/ip-domain/vrfs/vrf/lists/list/order", "0", 1},
      {"/ip-domain/vrfs/vrf/lists/list/list-name", "b", 1},
      {"/ip-domain/vrfs/vrf/lists/list", nullptr, 1},
      {"/ip-domain/vrfs/vrf/lists/list/order", "0", 1},
      {"/ip-domain/vrfs/vrf/lists/list/list-name", "a", 1}},
     "ip-domain{vrfs{vrf{lists{list{order=0 list-name=a} list{order=0 list-name=b}}}}}"},
    {"ChangedSecondKeyKeepsTheFirst",
     {{"/system/logging/console/selectors/selector/facility", "NONE"},
      {"/system/logging/console/selectors/selector/severity", "INFO"},
      {"/system/logging/console/selectors/selector/severity", "ERROR"}},
     "system{logging{console{selectors{selector{facility=NONE severity=INFO} "
     "selector{facility=NONE severity=ERROR}}}}}"},
    {"LeafListValuesAreSiblings",
     {{"/system/dns/config/search", "a", 1},
      {"/system/dns/config/search", "b", 1},
      {"/system/dns/config/search", "a", 1}},
     "system{dns{config{search=a search=b}}}"},
    {"KeyNamedWithoutValueLeavesEntryOpen",
     {{"/banners/banner/banner-name", nullptr, 1},
      {"/banners/banner", nullptr, 1},
      {"/banners/banner/banner-name", "x", 1}},
     "banners{banner{banner-name=x}}"},
};

INSTANTIATE_TEST_SUITE_P(Framework, AddSequence, testing::ValuesIn(kAddCases),
                         [](const auto &info) { return std::string(info.param.name); });

// A native walker opens an output list for an input entry whose key child
// stands anywhere among its children; adds below an output list with the same
// key names then go to the entry under that key.
struct OpenListCase {
    const char *name;
    const char *key_tag; // of the input entry
    const char *key_value;
    std::vector<Add> before_open; // what the list mapper adds
    std::vector<Add> adds;
    const char *expected;
};

class OpenOutputList : public testing::TestWithParam<OpenListCase> {};

TEST_P(OpenOutputList, PlacesKeylessAdds) {
    const OpenListCase &c = GetParam();
    yfw::Session session(KIND_GET);
    yfw_map_ctx *ctx = session.ctx();
    tidl_yfw_datatree *out = session.output();
    auto run = [&](const std::vector<Add> &adds) {
        for (const Add &add : adds)
            ASSERT_EQ(yfw_map_datatree_add_path_flagged(ctx, out, add.path, kOc, add.value, nullptr,
                                                        nullptr, add.list_entry, 0),
                      YFW_SUCCESS)
                << add.path;
    };
    run({{"/system/alarms/alarm/id", "a1"}, {"/system/alarms/alarm/state/severity", "MAJOR"}});
    tidl_yfw_datatree *entry = fwtest::new_root(session.arena(), "alarm");
    add_node(session.arena(), add_node(session.arena(), entry, "state"), "severity", "MINOR");
    yfw_dt_set_is_key(add_node(session.arena(), entry, c.key_tag, c.key_value));

    run(c.before_open);
    yfw_add_to_output_list_ctx(ctx, entry, out);
    ASSERT_EQ(session.output_lists_open(), 1u);
    run(c.adds);
    yfw_remove_from_output_list_ctx(ctx, entry, out);
    EXPECT_EQ(doc_text(*out), c.expected);
}

const OpenListCase kOpenListCases[] = {
    {"KeyAfterTheOtherLeaves",
     "id",
     "a2",
     {},
     {{"/system/alarms/alarm/state/severity", "MINOR"}, {"/system/alarms/alarm/id", "a2"}},
     "system{alarms{alarm{id=a1 state{severity=MAJOR}} alarm{id=a2 state{severity=MINOR}}}}"},
    {"KeyOfAnEarlierEntry",
     "id",
     "a1",
     {},
     {{"/system/alarms/alarm/state/severity", "MINOR"}, {"/system/alarms/alarm/id", "a1"}},
     "system{alarms{alarm{id=a1 state{severity=MINOR}}}}"},
    {"KeyAddFirstDecidesEvenWithAnotherValue",
     "id",
     "a2",
     {},
     {{"/system/alarms/alarm/id", "A2"}, {"/system/alarms/alarm/state/severity", "MINOR"}},
     "system{alarms{alarm{id=a1 state{severity=MAJOR}} alarm{id=A2 state{severity=MINOR}}}}"},
    {"EntryFormedBeforeWaitsForItsKey",
     "id",
     "a2",
     {{"/system/alarms/alarm", nullptr, 1}},
     {{"/system/alarms/alarm/state/severity", "MINOR"}, {"/system/alarms/alarm/id", "A2"}},
     "system{alarms{alarm{id=a1 state{severity=MAJOR}} alarm{state{severity=MINOR} id=A2}}}"},
    {"OtherKeyNamesLeaveTheCurrentEntry",
     "name",
     "a2",
     {},
     {{"/system/alarms/alarm/state/severity", "MINOR"}, {"/system/alarms/alarm/state/text", "t"}},
     "system{alarms{alarm{id=a1 state{severity=MINOR text=t}}}}"},
};

INSTANTIATE_TEST_SUITE_P(Framework, OpenOutputList, testing::ValuesIn(kOpenListCases),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(AddPath, OperationComesFromTheSourceOrItsAncestors) {
    yfw::Session session(KIND_EDIT_A);
    yfw::Arena &arena = session.arena();
    tidl_yfw_datatree *system = fwtest::new_root(arena, "system");
    tidl_yfw_datatree *config = add_node(arena, system, "config");
    tidl_yfw_datatree *hostname = add_node(arena, config, "hostname", "h");
    yfw_dt_set_operation(system, OP_DELETE);

    tidl_yfw_datatree *leaf = nullptr;
    ASSERT_EQ(yfw_map_datatree_add_path_flagged(session.ctx(), session.output(),
                                                "/host-names/host-name", kOc, nullptr, hostname,
                                                &leaf, 0, 0),
              YFW_SUCCESS);
    EXPECT_EQ(doc_text(*session.output()), "host-names{host-name!3}");
    EXPECT_EQ(leaf, session.state()->current_node);
    EXPECT_TRUE(yfw_map_is_request_delete(hostname));

    // A closer operation wins, and it replaces the one written before.
    yfw_dt_set_operation(config, OP_MERGE);
    yfw_map_datatree_add_path_flagged(session.ctx(), session.output(), "/host-names/host-name", kOc,
                                      "h", hostname, nullptr, 0, 0);
    EXPECT_EQ(doc_text(*session.output()), "host-names{host-name=h!0}");
    EXPECT_FALSE(yfw_map_is_request_delete(hostname));
}

// Two adds onto one node: a null value leaves the value, and an add with a
// source sets the operation the source carries, none included.
TEST(AddPath, LaterAddsOntoAnExistingNode) {
    constexpr int32_t kNoSource = -2, kNoOperation = -1;
    struct Step {
        const char *value;
        int32_t source_op;
    };
    struct Case {
        const char *path;
        std::vector<Step> steps;
        const char *expected;
    };
    const Case cases[] = {
        {"/system/config/hostname",
         {{"v", kNoSource}, {nullptr, OP_DELETE}},
         "system{config{hostname=v!3}}"},
        {"/system/config/hostname",
         {{nullptr, OP_DELETE}, {"v", OP_MERGE}},
         "system{config{hostname=v!0}}"},
        {"/system/config/hostname",
         {{nullptr, OP_DELETE}, {"v", kNoOperation}},
         "system{config{hostname=v}}"},
        {"/system/config/hostname",
         {{"v", OP_DELETE}, {"w", kNoSource}},
         "system{config{hostname=w!3}}"},
        {"/system/dns/servers/server/address",
         {{"a", OP_DELETE}, {nullptr, OP_MERGE}},
         "system{dns{servers{server{address=a!0}}}}"},
    };
    for (const Case &c : cases) {
        yfw::Session session(KIND_EDIT_A);
        for (const Step &step : c.steps) {
            tidl_yfw_datatree *source = nullptr;
            if (step.source_op != kNoSource) {
                source = fwtest::new_root(session.arena(), "input");
                if (step.source_op != kNoOperation)
                    yfw_dt_set_operation(source, step.source_op);
            }
            ASSERT_EQ(yfw_map_datatree_add_path_flagged(session.ctx(), session.output(), c.path,
                                                        kOc, step.value, source, nullptr, 0, 0),
                      YFW_SUCCESS);
        }
        EXPECT_EQ(doc_text(*session.output()), c.expected) << c.path;
    }
}

TEST(AddPath, NoSourceOperationWritesNone) {
    yfw::Session session(KIND_EDIT_A);
    tidl_yfw_datatree *plain = fwtest::new_root(session.arena(), "hostname");
    yfw_map_datatree_add_path_flagged(session.ctx(), session.output(), "/a/b", kOc, nullptr, plain,
                                      nullptr, 0, 0);
    EXPECT_EQ(doc_text(*session.output()), "a{b}");
}

TEST(AddPath, NamespaceOfNewNodesOnlyUntilUpdated) {
    yfw::Session session(KIND_GET_CONFIG);
    yfw_map_ctx *ctx = session.ctx();
    tidl_yfw_datatree *out = session.output();
    yfw_map_datatree_add_path_flagged(ctx, out, "/system/telnet-server/ipv4/vrf/vrf-name", kDomain,
                                      "v", nullptr, nullptr, 0, 0);
    yfw_map_datatree_add_path_flagged(ctx, out, "/system/telnet-server/state", kOc, nullptr,
                                      nullptr, nullptr, 0, 0);
    const tidl_yfw_datatree &system = out->subtrees[0];
    const tidl_yfw_datatree &telnet = system.subtrees[0];
    EXPECT_STREQ(system.namespace_, kDomain);
    EXPECT_STREQ(telnet.namespace_, kDomain);
    EXPECT_STREQ(telnet.subtrees[1].namespace_, kOc);

    EXPECT_EQ(yfw_map_datatree_update_namespace(ctx, out, "/system/telnet-server", kOc, 0),
              YFW_SUCCESS);
    EXPECT_STREQ(out->subtrees[0].subtrees[0].namespace_, kOc);
    EXPECT_STREQ(out->subtrees[0].namespace_, kDomain);
    EXPECT_EQ(yfw_map_datatree_update_namespace(ctx, out, "/system/missing", kOc, 0), YFW_SUCCESS);
    EXPECT_EQ(out->subtrees[0].subtree_count, 1u); // nothing made
}

// With the augment flag, the augmented module's nodes on the way to the
// augmenting module's own nodes are of the augmented module; without it, of
// the namespace given.
TEST(AddPath, AugmentFlagGivesTheTargetPathItsModule) {
    constexpr const char *kGrpc = "http://openconfig.net/yang/system-grpc";
    constexpr const char *kExt =
        "http://tarvex.local/ns/yang/Tarvex-QV-openconfig-system-terminal-ext";
    struct Case {
        const char *ns;
        const char *path;
        uint32_t augment;
        std::vector<const char *> expected; // namespace of each node down the path
    };
    const Case cases[] = {
        {kGrpc, "/system/grpc-servers/grpc-server/name", 1, {kOc, kGrpc, kGrpc, kGrpc}},
        {kGrpc, "/system/grpc-servers/grpc-server/name", 0, {kGrpc, kGrpc, kGrpc, kGrpc}},
        {kExt, "/system/telnet-server/ipv4/vrf", 1, {kOc, kOc, kExt, kExt}},
        {kExt, "/system/ssh-server/config", 1, {kExt, kExt, kExt}}, // not the target
        {kDomain, "/system/grpc-servers", 1, {kDomain, kDomain}},   // augments nothing
    };
    for (const Case &c : cases) {
        yfw::Session session(KIND_GET);
        ASSERT_EQ(yfw_map_datatree_add_path_flagged(session.ctx(), session.output(), c.path, c.ns,
                                                    "v", nullptr, nullptr, 0, c.augment),
                  YFW_SUCCESS);
        const tidl_yfw_datatree *node = session.output();
        for (const char *ns : c.expected) {
            ASSERT_EQ(node->subtree_count, 1u) << c.path;
            node = &node->subtrees[0];
            EXPECT_STREQ(node->namespace_, ns) << c.path << " at " << node->tag;
        }
    }
}

TEST(AddPath, BadArgumentsChangeNothing) {
    yfw::Session session(KIND_GET_CONFIG);
    yfw_map_ctx *ctx = session.ctx();
    EXPECT_EQ(
        yfw_map_datatree_add_path_flagged(ctx, nullptr, "/a", kOc, "v", nullptr, nullptr, 0, 0),
        YFW_ERR_INVALID_ARGS);
    EXPECT_EQ(yfw_map_datatree_add_path_flagged(ctx, session.output(), nullptr, kOc, "v", nullptr,
                                                nullptr, 0, 0),
              YFW_ERR_INVALID_ARGS);
    EXPECT_EQ(yfw_map_datatree_add_path_flagged(ctx, session.output(), "//", kOc, "v", nullptr,
                                                nullptr, 0, 0),
              YFW_ERR_INVALID_ARGS);
    EXPECT_EQ(yfw_map_datatree_update_namespace(ctx, session.output(), "/a", nullptr, 0),
              YFW_ERR_INVALID_ARGS);
    EXPECT_EQ(session.output()->present_subtrees, 0u);
}

TEST(AddPath, KeyLeafOntoAnInputEntry) {
    yfw::Session session(KIND_GET_CONFIG);
    yfw::Arena &arena = session.arena();
    tidl_yfw_datatree *system = fwtest::new_root(arena, "system");
    tidl_yfw_datatree *servers = add_node(arena, add_node(arena, system, "dns"), "servers");
    tidl_yfw_datatree *entry = add_node(arena, servers, "server");
    add_node(arena, add_node(arena, entry, "config"), "port");
    yfw_dt_set_operation(servers, OP_REMOVE);

    tidl_yfw_datatree *key = nullptr;
    ASSERT_EQ(yfw_map_datatree_add_path_flagged(session.ctx(), entry, "address", kOc, nullptr,
                                                nullptr, &key, 0, 0),
              YFW_SUCCESS);
    EXPECT_EQ(fwtest::tree_text(*entry), "server{config{port} address}");
    EXPECT_EQ(key, &entry->subtrees[1]);
    EXPECT_EQ(yfw::parent_of(key), entry);
    EXPECT_EQ(yfw::effective_operation(key), OP_REMOVE);
}

TEST(AddPath, CallerArraysAreCopiedBeforeTheyGrow) {
    yfw::Session session(KIND_GET_CONFIG);
    tidl_yfw_datatree kids[1] = {};
    kids[0].tag = const_cast<char *>("config");
    tidl_yfw_datatree entry = {};
    entry.tag = const_cast<char *>("server");
    yfw_dt_set_subtrees(&entry, kids, 1);

    ASSERT_EQ(yfw_map_datatree_add_path_flagged(session.ctx(), &entry, "address", kOc, "a", nullptr,
                                                nullptr, 0, 0),
              YFW_SUCCESS);
    EXPECT_NE(entry.subtrees, kids);
    EXPECT_EQ(fwtest::tree_text(entry), "server{config address=a}");
    EXPECT_EQ(yfw::parent_of(&entry.subtrees[1]), &entry);
}

TEST(AddPath, LeafFromComponentsTakesValueAndOperationOfTheInput) {
    yfw::Session session(KIND_EDIT_A);
    tidl_yfw_datatree *input = fwtest::new_root(session.arena(), "hostname");
    input->value = session.arena().text("r1");
    yfw_dt_set_operation(input, OP_REPLACE);
    const char *const parts[] = {"/ocsystem", "/system", "/state", "/host-name"};
    ASSERT_EQ(yfw_map_add_leaf_from_xpath(session.ctx(), input, session.output(), "/ocsystem", kOc,
                                          parts, 4),
              YFW_SUCCESS);
    EXPECT_EQ(doc_text(*session.output()), "ocsystem{system{state{host-name=r1!1}}}");
    EXPECT_EQ(yfw_map_add_leaf_from_xpath(session.ctx(), input, session.output(), "/ocsystem", kOc,
                                          parts, 0),
              YFW_ERR_INVALID_ARGS);
    // The joined pieces, a slash before each, fill at most 1024 characters.
    for (const std::size_t length : {1013u, 1014u}) {
        const std::string piece(length, 'x');
        const char *const long_parts[] = {"/ocsystem", piece.c_str()};
        EXPECT_EQ(yfw_map_add_leaf_from_xpath(session.ctx(), input, session.output(), "/ocsystem",
                                              kOc, long_parts, 2),
                  length == 1013 ? YFW_SUCCESS : YFW_ERR_INVALID_ARGS)
            << length;
    }
}

// Positions kept for a wide array survive the removal of a merged duplicate
// from its middle.
TEST(AddPath, MergeFromTheMiddleOfAWideList) {
    yfw::Session session(KIND_GET);
    auto add = [&](const char *path, const char *value, uint32_t list_entry) {
        ASSERT_EQ(yfw_map_datatree_add_path_flagged(session.ctx(), session.output(), path, kOc,
                                                    value, nullptr, nullptr, list_entry, 0),
                  YFW_SUCCESS);
    };
    for (int i = 0; i < 20; ++i)
        add("/system/dns/servers/server/address", std::to_string(i).c_str(), 1);
    add("/system/dns/servers/server", nullptr, 1);
    add("/system/dns/servers/holder/inner", "h", 0);
    add("/system/dns/servers/extra", "x", 0);
    add("/system/dns/servers/server/config/port", "53", 0);
    add("/system/dns/servers/server/address", "3", 1);
    add("/system/dns/servers/server/state/port", "54", 0);
    add("/system/dns/servers/extra", "y", 0);
    add("/system/dns/servers/server/address", "19", 1);
    add("/system/dns/servers/server/config/port", "1", 0);

    const tidl_yfw_datatree &servers = session.output()->subtrees[0].subtrees[0].subtrees[0];
    ASSERT_EQ(servers.subtree_count, 22u);
    EXPECT_EQ(fwtest::tree_text(servers.subtrees[3]),
              "server{address=3 config{port=53} state{port=54}}");
    EXPECT_EQ(fwtest::tree_text(servers.subtrees[19]), "server{address=19 config{port=1}}");
    EXPECT_EQ(fwtest::tree_text(servers.subtrees[21]), "extra=y");
    // A node that moved down keeps its children.
    EXPECT_EQ(yfw::parent_of(servers.subtrees[20].subtrees), &servers.subtrees[20]);
}

// The adds of one walk reuse the nodes of the previous add; what a host does
// to the tree between two adds still counts.
TEST(AddPath, HostEditsBetweenAddsAreSeen) {
    yfw::Session session(KIND_GET);
    auto add = [&](const char *path, const char *value) {
        ASSERT_EQ(yfw_map_datatree_add_path_flagged(session.ctx(), session.output(), path, kOc,
                                                    value, nullptr, nullptr, 0, 0),
                  YFW_SUCCESS);
    };
    add("/banners/banner/banner-name", "login");
    add("/banners/banner/banner-text", "L");
    // An entry appended by the host becomes the current one.
    add_node(session.arena(), &session.output()->subtrees[0], "banner");
    add("/banners/banner/banner-text", "M");
    EXPECT_EQ(doc_text(*session.output()),
              "banners{banner{banner-name=login banner-text=L} banner{banner-text=M}}");
    // Children dropped by the host are made again.
    tidl_yfw_datatree &banners = session.output()->subtrees[0];
    yfw_dt_clear_subtrees(&banners);
    add("/banners/banner/banner-text", "N");
    EXPECT_EQ(doc_text(*session.output()), "banners{banner{banner-text=N}}");
}

// Paths are remembered by their address; a buffer filled anew is read anew.
TEST(AddPath, ReusedPathBufferIsReadAgain) {
    yfw::Session session(KIND_GET);
    char path[64];
    for (const char *leaf : {"hostname", "domain-name"}) {
        std::snprintf(path, sizeof path, "/system/config/%s", leaf);
        ASSERT_EQ(yfw_map_datatree_add_path_flagged(session.ctx(), session.output(), path, kOc, "x",
                                                    nullptr, nullptr, 0, 0),
                  YFW_SUCCESS);
    }
    EXPECT_EQ(doc_text(*session.output()), "system{config{hostname=x domain-name=x}}");
}

// Namespaces that take turns from two buffers, one then refilled with
// another text: each new node takes the text its buffer held at its add.
TEST(AddPath, ReusedNamespaceBufferIsReadAgain) {
    struct Step {
        std::size_t buffer;
        const char *ns;
        const char *leaf;
    };
    const Step steps[] = {
        {0, kOc, "hostname"},        {1, kDomain, "domain-name"}, {0, kOc, "login-banner"},
        {1, kDomain, "motd-banner"}, {0, kDomain, "clock"},       {1, kOc, "dns"},
    };
    yfw::Session session(KIND_GET);
    char buffers[2][96];
    for (const Step &step : steps) {
        std::snprintf(buffers[step.buffer], sizeof buffers[0], "%s", step.ns);
        const std::string path = std::string("/system/config/") + step.leaf;
        ASSERT_EQ(yfw_map_datatree_add_path_flagged(session.ctx(), session.output(), path.c_str(),
                                                    buffers[step.buffer], "x", nullptr, nullptr, 0,
                                                    0),
                  YFW_SUCCESS);
    }
    const tidl_yfw_datatree &config = session.output()->subtrees[0].subtrees[0];
    ASSERT_EQ(config.subtree_count, std::size(steps));
    for (std::size_t i = 0; i < std::size(steps); ++i)
        EXPECT_STREQ(config.subtrees[i].namespace_, steps[i].ns) << steps[i].leaf;
}

// A large list stays linear: each entry is found through the list's key index.
TEST(AddPath, HundredThousandEntries) {
    yfw::Session session(KIND_GET);
    yfw_map_ctx *ctx = session.ctx();
    constexpr int kEntries = 100000;
    for (int i = 0; i < kEntries; ++i) {
        const std::string address = std::to_string(i);
        yfw_map_datatree_add_path_flagged(ctx, session.output(), "/system/dns/servers/server", kOc,
                                          nullptr, nullptr, nullptr, 1, 0);
        yfw_map_datatree_add_path_flagged(ctx, session.output(),
                                          "/system/dns/servers/server/address", kOc,
                                          address.c_str(), nullptr, nullptr, 1, 0);
    }
    // Revisiting an early entry by its key lands on it.
    yfw_map_datatree_add_path_flagged(ctx, session.output(), "/system/dns/servers/server/address",
                                      kOc, "7", nullptr, nullptr, 1, 0);
    yfw_map_datatree_add_path_flagged(ctx, session.output(),
                                      "/system/dns/servers/server/state/port", kOc, "1", nullptr,
                                      nullptr, 0, 0);
    const tidl_yfw_datatree &servers = session.output()->subtrees[0].subtrees[0].subtrees[0];
    ASSERT_EQ(servers.subtree_count, static_cast<uint32_t>(kEntries));
    EXPECT_EQ(fwtest::tree_text(servers.subtrees[7]), "server{address=7 state{port=1}}");
}

} // namespace
