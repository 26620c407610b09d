// The OpenConfig walker pattern, driven through the tests' own module.
#include <string>

#include "harness.hpp"
#include "testmod.hpp"

namespace {

using test::chain;
using test::Request;
using test::under;

constexpr auto kTop = &ymap_oq_ocsystem_testmod_lvla_top;

std::string top(std::string_view body, std::string_view attrs = "") {
    return "<top xmlns=\"urn:test:oq\" xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\"" +
           std::string(attrs) + ">" + std::string(body) + "</top>";
}

const std::string kClock = "/Tarvex-QV-infra-infra-clock-linux-cfg:clock";
const std::string kBanners = "/Tarvex-QV-infra-infra-cfg:banners";
const std::string kArea = chain(kClock + "/time-zone/area-name");
std::string banner(std::string_view name, std::string_view text) {
    return under(kBanners + "/banner[banner-name='" + std::string(name) + "']",
                 {"", "/banner-name = \"" + std::string(name) + "\"",
                  "/banner-text = \"" + std::string(text) + "\""});
}

TEST(OqWalker, GetOfAnEmptyRootVisitsEveryChildOnceStateOnlyLast) {
    Request r(KIND_GET);
    ASSERT_EQ(r.run(kTop, "<top xmlns=\"urn:test:oq\"/>"), YFW_SUCCESS);
    // conf, then lst named bare (key, conf), then the state-only st.
    EXPECT_EQ(r.paths(), kArea + under(kClock, {"/time-zone/time-zone-name", "/tags"}) +
                             chain(kBanners + "/banner/banner-name") + kBanners +
                             "/banner/banner-text\n" +
                             chain("/Tarvex-QV-shellutil-cfg:host-names/host-name"));
    r.expect_state_restored();
}

TEST(OqWalker, GetConfigLeavesStateOnlyChildrenOut) {
    Request r(KIND_GET_CONFIG);
    ASSERT_EQ(r.run(kTop, "<top xmlns=\"urn:test:oq\"/>"), YFW_SUCCESS);
    EXPECT_EQ(r.paths().find("host-names"), std::string::npos);
    // A state child named in a non-GET read is unknown and passed over.
    test::expect_walk(kTop, KIND_GET_CONFIG, top("<state><z/></state>"), "");
}

TEST(OqWalker, SelectionLeavesMapOnlyWhatIsNamed) {
    Request r(KIND_GET_CONFIG);
    ASSERT_EQ(r.run(kTop, top("<config><x/></config>")), YFW_SUCCESS);
    EXPECT_EQ(r.paths(), kArea);
    EXPECT_EQ(r.state()->filter_flags & YFW_MAP_FILTER_CONTENT_SEEN, 0u);
    r.expect_state_restored();
}

TEST(OqWalker, ContentMatchAloneExpandsTheContainer) {
    Request r(KIND_GET_CONFIG);
    ASSERT_EQ(r.run(kTop, top("<config><x>Europe</x></config>")), YFW_SUCCESS);
    // The filter value goes out, and the walk-all pass selects every leaf.
    EXPECT_EQ(r.paths(),
              chain(kClock + "/time-zone") + under(kClock, {"/time-zone/area-name = \"Europe\"",
                                                            "/time-zone/time-zone-name", "/tags"}));
    EXPECT_NE(r.state()->filter_flags & YFW_MAP_FILTER_CONTENT_SEEN, 0u);
    EXPECT_EQ(r.state()->filter_flags & YFW_MAP_FILTER_EXPAND, 0u);
    r.expect_state_restored();
}

TEST(OqWalker, ContentMatchWithASelectionLeafDoesNotExpand) {
    Request r(KIND_GET_CONFIG);
    tidl_yfw_datatree *in = r.input(top("<config><x>Europe</x><y/></config>"));
    ASSERT_EQ(kTop(r.ctx(), in, r.session().output()), YFW_SUCCESS);
    EXPECT_EQ(r.paths(),
              chain(kClock + "/time-zone") + under(kClock, {"/time-zone/area-name = \"Europe\"",
                                                            "/time-zone/time-zone-name"}));
    const tidl_yfw_datatree &conf = in->subtrees[0];
    EXPECT_EQ(conf.node_kind, NODE_CONTAINER);
    EXPECT_EQ(conf.subtrees[0].node_kind, NODE_CONTENT_MATCH);
    EXPECT_EQ(conf.subtrees[1].node_kind, NODE_LEAF);
}

TEST(OqWalker, DeleteOfAContainerWithChildrenIsRefusedWithoutErrorPath) {
    Request r(KIND_EDIT_A);
    r.session().set_debug_log(true);
    EXPECT_EQ(r.run(kTop, top("<config nc:operation=\"delete\"><x/></config>")),
              YFW_ERR_INVALID_ARGS);
    EXPECT_EQ(r.error_path(), "");
    EXPECT_EQ(test::count_lines(r.session().debug_log(), "Delete request with subtree present"), 1);
    EXPECT_EQ(r.paths(), "");
    r.expect_state_restored();
}

TEST(OqWalker, BareDeleteWalksEveryLeafAsARemoval) {
    Request r(KIND_EDIT_A);
    tidl_yfw_datatree *in = r.input(top("<config nc:operation=\"delete\"/>"));
    ASSERT_EQ(kTop(r.ctx(), in, r.session().output()), YFW_SUCCESS);
    EXPECT_EQ(r.paths(), chain(kClock + "/time-zone") +
                             under(kClock, {"/time-zone/area-name @remove",
                                            "/time-zone/time-zone-name @remove", "/tags @remove"}));
    EXPECT_EQ(in->subtrees[0].operation, OP_DELETE); // lowered for the pass, then put back
    r.expect_state_restored();
}

TEST(OqWalker, ReplaceIsADeleteOfEveryLeafThenAMerge) {
    Request r(KIND_EDIT_A);
    tidl_yfw_datatree *in = r.input(top("<config nc:operation=\"replace\"><x>Asia</x></config>"));
    ASSERT_EQ(kTop(r.ctx(), in, r.session().output()), YFW_SUCCESS);
    // y was removed by the delete pass; x was removed, then merged with its value.
    EXPECT_EQ(r.paths(), chain(kClock + "/time-zone") +
                             under(kClock, {"/time-zone/area-name = \"Asia\" @merge",
                                            "/time-zone/time-zone-name @remove", "/tags @remove"}));
    const tidl_yfw_datatree &conf = in->subtrees[0];
    EXPECT_EQ(conf.operation, OP_MERGE);
    EXPECT_EQ(conf.subtree_count, 1u);
    r.expect_state_restored();
}

// An operation counts only with its presence flag: a stale value is no replace.
TEST(OqWalker, AnOperationWithoutItsPresenceFlagIsNone) {
    Request r(KIND_EDIT_A);
    tidl_yfw_datatree *in = r.input(top("<config><x>Asia</x></config>"));
    in->subtrees[0].operation = OP_REPLACE;
    ASSERT_EQ(kTop(r.ctx(), in, r.session().output()), YFW_SUCCESS);
    EXPECT_EQ(r.paths(), chain(kClock + "/time-zone/area-name = \"Asia\""));
}

// The leaves of a walk-all pass get the container's node: it stays a container.
TEST(OqWalker, AWalkAllPassLeavesTheContainerItsKind) {
    Request r(KIND_GET_CONFIG);
    tidl_yfw_datatree *in = r.input(top("<config/>"));
    ASSERT_EQ(kTop(r.ctx(), in, r.session().output()), YFW_SUCCESS);
    EXPECT_EQ(in->subtrees[0].node_kind, NODE_CONTAINER);
}

TEST(OqWalker, UnknownOwnTagIsPassedOverInAReadAndRefusedInAWrite) {
    Request read(KIND_GET_CONFIG);
    EXPECT_EQ(read.run(kTop, top("<config><nope/><x/></config>")), YFW_SUCCESS);
    EXPECT_NE(read.paths(), "");
    read.expect_state_restored();

    Request write(KIND_EDIT_B);
    test::expect_refused(write, write.run(kTop, top("<config><nope>1</nope><x>2</x></config>")),
                         {YFW_ERR_UNSUPPORTED_TAG, "nope", "/urn:test:oq:top/config",
                          "Unsupported tag is specified in the request."});
    EXPECT_EQ(write.paths(), ""); // the walk stopped before x
    write.expect_state_restored();
}

TEST(OqWalker, ForeignNodeInAnEditIsAnUnsupportedAugment) {
    Request r(KIND_EDIT_A);
    test::expect_refused(r, r.run(kTop, top("<config><q xmlns=\"urn:other\">1</q></config>")),
                         {YFW_ERR_UNSUPPORTED_AUGMENT, "q", "/urn:test:oq:top/config"});
    // A delete of it is no add: passed over.
    Request del(KIND_EDIT_A);
    EXPECT_EQ(
        del.run(kTop, top("<config><q xmlns=\"urn:other\" nc:operation=\"remove\"/></config>")),
        YFW_SUCCESS);
}

TEST(OqWalker, NullTagIsABadTree) {
    Request r(KIND_EDIT_A);
    tidl_yfw_datatree *in = r.input(top("<config><x>1</x></config>"));
    in->subtrees[0].subtrees[0].tag = nullptr;
    EXPECT_EQ(kTop(r.ctx(), in, r.session().output()), YFW_ERR_BAD_TREE);
    EXPECT_EQ(r.error_path(), "");
    r.expect_state_restored();
}

TEST(OqWalker, MalformedChildrenAreABadTree) {
    Request r(KIND_GET);
    tidl_yfw_datatree *in = r.input(top("<config/>"));
    in->subtrees[0].subtrees = nullptr;
    in->subtrees[0].subtree_count = 3;
    in->subtrees[0].present_subtrees = 1;
    EXPECT_EQ(kTop(r.ctx(), in, r.session().output()), YFW_ERR_BAD_TREE);
    r.expect_state_restored();
    // With the presence bit clear, the count is not looked at.
    Request clear(KIND_GET_CONFIG);
    tidl_yfw_datatree *in2 = clear.input(top("<config/>"));
    in2->subtrees[0].subtree_count = 3;
    EXPECT_EQ(kTop(clear.ctx(), in2, clear.session().output()), YFW_SUCCESS);
}

TEST(OqWalker, NullArgumentsAreRefusedWithTheErrorPath) {
    Request r(KIND_GET);
    EXPECT_EQ(kTop(r.ctx(), nullptr, r.session().output()), YFW_ERR_INVALID_ARGS);
    tidl_yfw_datatree *in = r.input(top(""));
    EXPECT_EQ(kTop(r.ctx(), in, nullptr), YFW_ERR_INVALID_ARGS);
    EXPECT_EQ(ymap_oq_ocsystem_testmod_cont_lvla_top(r.ctx(), in, 0, nullptr),
              YFW_ERR_INVALID_ARGS);
    r.expect_state_restored();
}

TEST(OqWalker, LeafListValuesAreMarkedAndTouchNoFilterFlag) {
    Request r(KIND_GET_CONFIG);
    tidl_yfw_datatree *in = r.input(top("<config><tags>a</tags><tags>b</tags></config>"));
    ASSERT_EQ(kTop(r.ctx(), in, r.session().output()), YFW_SUCCESS);
    const tidl_yfw_datatree &config = in->subtrees[0];
    EXPECT_EQ(config.subtrees[0].node_kind, NODE_LEAF_LIST);
    EXPECT_EQ(config.subtrees[1].node_kind, NODE_LEAF_LIST);
    EXPECT_EQ(r.state()->filter_flags & YFW_MAP_FILTER_CONTENT_SEEN, 0u);
    EXPECT_EQ(r.paths(), under(kClock, {"", "/tags = \"a\"", "/tags = \"b\""}));
}

// ---- Lists --------------------------------------------------------------------

TEST(OqListWalker, EntryWithoutChildrenInAKeyDemandingKindIsABadTree) {
    for (uint32_t kind : {KIND_EDIT_A, KIND_EDIT_B, KIND_EDIT_C}) {
        test::last_list_mapper_call = {};
        Request r(kind);
        EXPECT_EQ(r.run(kTop, top("<lst/>")), YFW_ERR_BAD_TREE) << kind;
        EXPECT_EQ(test::last_list_mapper_call.calls, 0) << kind;
        r.expect_state_restored();
    }
    // Any other write kind goes on without the key demand.
    Request other(3);
    EXPECT_EQ(other.run(kTop, top("<lst/>")), YFW_SUCCESS);
}

struct KeyCase {
    const char *name;
    uint32_t kind;
    const char *body;
    test::Refusal report;
    friend void PrintTo(const KeyCase &c, std::ostream *os) { *os << c.name; }
};

class KeyValidation : public ::testing::TestWithParam<KeyCase> {};

TEST_P(KeyValidation, StatusAndReport) {
    const KeyCase &c = GetParam();
    Request r(c.kind);
    // JSON for a key without a value, which XML cannot write in an edit.
    test::expect_refused(r, r.run(kTop, c.body[0] == '{' ? std::string(c.body) : top(c.body)),
                         c.report);
    r.expect_state_restored();
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, KeyValidation,
    ::testing::Values(
        KeyCase{"edit_a_with_key",
                KIND_EDIT_A,
                "<lst><name>a</name><config><text>t</text></config></lst>",
                {YFW_SUCCESS}},
        KeyCase{"edit_a_without_key",
                KIND_EDIT_A,
                "<lst><config><text>t</text></config></lst>",
                {YFW_ERR_LIST_KEY, "name", "/urn:test:oq:top/lst", "List key node error."}},
        KeyCase{"edit_b_without_key",
                KIND_EDIT_B,
                "<lst><config><text>t</text></config></lst>",
                {YFW_ERR_LIST_KEY, "name", "/urn:test:oq:top/lst", "List key node error."}},
        KeyCase{"edit_c_two_keys",
                KIND_EDIT_C,
                "<lst><name>a</name><name>b</name></lst>",
                {YFW_ERR_LIST_KEY, "name", "/urn:test:oq:top/lst", "List key node error."}},
        KeyCase{"edit_a_key_twice_once_without_value",
                KIND_EDIT_A,
                R"({"tag": "top", "namespace": "urn:test:oq", "children": [{"tag": "lst",
                    "children": [{"tag": "name", "value": "a"}, {"tag": "name"}]}]})",
                {YFW_ERR_LIST_KEY, "name", "/urn:test:oq:top/lst", "List key node error."}},
        KeyCase{"edit_b_empty_value_is_a_value",
                KIND_EDIT_B,
                "<lst><name/><config/></lst>",
                {YFW_SUCCESS}},
        KeyCase{
            "other_kind_no_key", 3, "<lst><config><text>t</text></config></lst>", {YFW_SUCCESS}},
        KeyCase{"key_with_delete",
                KIND_EDIT_A,
                "<lst><name nc:operation=\"delete\">a</name></lst>",
                {YFW_ERR_KEY_DELETE, "", "/urn:test:oq:top/lst",
                 "The key node should not have delete operation."}},
        KeyCase{"leafref_mismatch",
                KIND_EDIT_A,
                "<lst><name>a</name><config><name>b</name></config></lst>",
                {YFW_ERR_LIST_KEY, "", "", "leafref value check fail"}},
        KeyCase{"leafref_match",
                KIND_EDIT_A,
                "<lst><name>a</name><config><name>a</name></config></lst>",
                {YFW_SUCCESS}},
        KeyCase{"state_in_a_write",
                KIND_EDIT_A,
                "<lst><name>a</name><state/></lst>",
                {YFW_ERR_UNSUPPORTED_TAG, "state", "/urn:test:oq:top/lst",
                 "Unsupported tag is specified in the request."}}),
    test::case_name);

TEST(OqListWalker, EditCarriesKeyAndContentIntoTheOutputEntry) {
    Request r(KIND_EDIT_A);
    ASSERT_EQ(r.run(kTop, top("<lst><name>motd</name><config><text>hi</text></config></lst>"
                              "<lst><name>login</name><config><text>yo</text></config></lst>")),
              YFW_SUCCESS);
    EXPECT_EQ(r.paths(), kBanners + "\n" + banner("motd", "hi") + banner("login", "yo"));
    EXPECT_EQ(r.ctx()->list_op, 0u);
    r.expect_state_restored();
}

TEST(OqListWalker, KeysOnlyDeleteRunsTheMapperWithSuppressTwoThenWalksTheEntryWhole) {
    test::last_list_mapper_call = {};
    Request r(KIND_EDIT_A);
    tidl_yfw_datatree *in = r.input(top("<lst nc:operation=\"delete\"><name>motd</name></lst>"));
    ASSERT_EQ(kTop(r.ctx(), in, r.session().output()), YFW_SUCCESS);
    EXPECT_EQ(test::last_list_mapper_call.walk_suppress, (uint32_t)YFW_MAP_SUPPRESS_KEYS_DELETE);
    EXPECT_TRUE(test::last_list_mapper_call.deleted);
    EXPECT_EQ(r.ctx()->list_op, (uint32_t)OP_DELETE);
    // The entry goes, and its content is named for removal. The key leaf is
    // under the delete too, so by the three-way rule it names no value.
    EXPECT_EQ(r.paths(), kBanners + "\n" +
                             under(kBanners + "/banner",
                                   {" @delete", "/banner-name @delete", "/banner-text @remove"}));
    const tidl_yfw_datatree &lst = in->subtrees[0];
    EXPECT_EQ(lst.operation, OP_DELETE);
    EXPECT_EQ(lst.subtree_count, 1u);
    EXPECT_EQ(lst.subtrees[0].is_key, 1);
    r.expect_state_restored();
}

TEST(OqListWalker, InstancesPushedByTheMapperAreEachWalked) {
    Request r(KIND_EDIT_A);
    tidl_yfw_datatree *pushed =
        r.input(top("<lst><name>login</name><config><text>in</text></config></lst>"
                    "<lst><name>motd</name><config><text>day</text></config></lst>"));
    test::instances = {pushed->subtrees, pushed->subtree_count, 0};
    const cerrno status = r.run(kTop, top("<lst><name>login</name></lst>"));
    const int callbacks = test::instances.callbacks;
    test::instances = {};
    ASSERT_EQ(status, YFW_SUCCESS);
    EXPECT_EQ(callbacks, 2);
    EXPECT_EQ(r.paths(), kBanners + "\n" + banner("login", "in") + banner("motd", "day"));
    r.expect_state_restored();
}

TEST(OqListWalker, ReadOfAnEntryWithoutItsKeyAddsTheKeyToTheRequest) {
    Request r(KIND_GET_CONFIG);
    tidl_yfw_datatree *in = r.input(top("<lst><config><text/></config></lst>"));
    ASSERT_EQ(kTop(r.ctx(), in, r.session().output()), YFW_SUCCESS);
    const tidl_yfw_datatree &lst = in->subtrees[0];
    ASSERT_EQ(lst.subtree_count, 2u);
    EXPECT_STREQ(lst.subtrees[1].tag, "name");
    EXPECT_EQ(lst.subtrees[1].is_key, 1);
    EXPECT_EQ(lst.subtrees[1].present_value, 0u);
}

TEST(OqListWalker, ReadOfAnEntryByKeyAloneExpandsIt) {
    test::expect_walk(kTop, KIND_GET, top("<lst><name>motd</name></lst>"),
                      kBanners + "\n" +
                          under(kBanners + "/banner[banner-name='motd']",
                                {"", "/banner-name = \"motd\"", "/banner-text"}));
}

TEST(OqListWalker, ReplaceOfAnEntryDeletesItWholeThenMerges) {
    Request r(KIND_EDIT_A);
    tidl_yfw_datatree *in = r.input(top(
        "<lst nc:operation=\"replace\"><name>motd</name><config><text>new</text></config></lst>"));
    ASSERT_EQ(kTop(r.ctx(), in, r.session().output()), YFW_SUCCESS);
    EXPECT_EQ(in->subtrees[0].operation, OP_MERGE);
    // The first pass removes the entry; the second merges its content into it.
    EXPECT_EQ(r.paths(), kBanners + "\n" +
                             under(kBanners + "/banner[banner-name='motd']",
                                   {" @remove", "/banner-name = \"motd\" @merge",
                                    "/banner-text = \"new\" @merge"}));
    r.expect_state_restored();
}

} // namespace
