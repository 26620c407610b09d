// The table forms: a callback marks rows of a table copied to the stack, and
// one add (two on reads, where a row has a second path) follows per marked row.
#include "harness.hpp"
#include "ymap_namespaces.h"
#include "ymap_xpath.hpp"

namespace {

using test::Request;

cerrno callback_status = YFW_SUCCESS;
int32_t callback_count = -1;

// Reads ask for every form; an edit picks the second row. The closing row is
// marked too: it must not count.
cerrno pick(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows) {
    callback_count = count;
    for (int32_t i = 0; i <= count; ++i)
        rows[i].selected = ymap::read_kind(ctx) || i == 1 ? 1 : 0;
    return callback_status;
}

// clang-format off
YMAP_XPATH_TABLE(kTable, pick,
    {"/host-names/host-name",      NS_SHELLUTIL_CFG,         &ymap::xpath_node_value, 0, 0, "NULL"},
    {"/clock/time-zone/area-name", NS_INFRA_CLOCK_LINUX_CFG, &ymap::xpath_node_value, 0, 0,
     "/clock/time-zone/time-zone-name"});
// clang-format on

const std::string kHost = "/Tarvex-QV-shellutil-cfg:host-names";
const std::string kZone = "/Tarvex-QV-infra-infra-clock-linux-cfg:clock";

TEST(TableForms, AReadFansOutWithSecondPathsAndLeavesTheTableAlone) {
    callback_status = YFW_SUCCESS;
    Request r(KIND_GET);
    tidl_yfw_datatree *leaf = r.input(test::oc_system(""));
    EXPECT_EQ(ymap::run_leaf_table(kTable, r.ctx(), leaf, r.session().output()), YFW_SUCCESS);
    EXPECT_EQ(callback_count, 2);
    EXPECT_EQ(r.paths(), test::chain(kHost + "/host-name") +
                             test::chain(kZone + "/time-zone/area-name") + kZone +
                             "/time-zone/time-zone-name\n");
    EXPECT_EQ(kTable_rows[1].selected, 0u); // the constant table is never written
}

TEST(TableForms, ValuesComeFromTheRowsValueFunctionAndCarryTheOperation) {
    callback_status = YFW_SUCCESS;
    Request r(KIND_EDIT_A);
    tidl_yfw_datatree *in = r.input(test::oc_system("<config nc:operation=\"delete\"/>"));
    ASSERT_EQ(ymap::run_leaf_table(kTable, r.ctx(), &in->subtrees[0], r.session().output()),
              YFW_SUCCESS);
    EXPECT_EQ(r.paths(),
              test::chain(kZone + "/time-zone") + kZone + "/time-zone/area-name @delete\n");
    Request edit(KIND_EDIT_A);
    in = edit.input(test::oc_system("<config nc:operation=\"merge\">x</config>"));
    ASSERT_EQ(ymap::run_leaf_table(kTable, edit.ctx(), &in->subtrees[0], edit.session().output()),
              YFW_SUCCESS);
    EXPECT_EQ(edit.paths(),
              test::chain(kZone + "/time-zone") + kZone + "/time-zone/area-name = \"x\" @merge\n");
}

TEST(TableForms, ACallbackFailureEndsAListMapperButNotALeafMapper) {
    callback_status = YFW_ERR_BAD_VALUE;
    Request list(KIND_GET);
    tidl_yfw_datatree *in = list.input(test::oc_system(""));
    EXPECT_EQ(ymap::run_list_table(kTable, list.ctx(), in, list.session().output()),
              YFW_ERR_BAD_VALUE);
    EXPECT_EQ(list.paths(), "");
    Request leaf(KIND_GET);
    in = leaf.input(test::oc_system(""));
    EXPECT_EQ(ymap::run_leaf_table(kTable, leaf.ctx(), in, leaf.session().output()), YFW_SUCCESS);
    EXPECT_NE(leaf.paths(), "");
    callback_status = YFW_SUCCESS;
}

} // namespace

namespace {

// A hand-written variant on the same primitive: an empty leaf of the native
// side, where false in the request removes the leaf.
const char *false_is_null(const tidl_yfw_datatree *node) {
    return node->value != nullptr && std::string_view(node->value) == "false" ? nullptr
                                                                              : node->value;
}
cerrno pick_second(yfw_map_ctx *, int32_t, xpath_list_type_t *rows) {
    rows[1].selected = 1;
    rows[1].value_fn = &false_is_null;
    return YFW_SUCCESS;
}
// clang-format off
YMAP_XPATH_TABLE(kEmptyLeaf, pick_second,
    {"/host-names/host-name",      NS_SHELLUTIL_CFG,         &ymap::xpath_node_value, 0, 0, "NULL"},
    {"/clock/time-zone/area-name", NS_INFRA_CLOCK_LINUX_CFG, &ymap::xpath_node_value, 0, 0, "NULL"});
// clang-format on

cerrno false_becomes_remove(yfw_map_ctx *ctx, tidl_yfw_datatree *node, tidl_yfw_datatree *out) {
    const ymap::SelectedRows selected(kEmptyLeaf, ctx);
    return selected.each([&](uint32_t index, const xpath_list_type_t &row) {
        EXPECT_EQ(index, 1u);
        const char *value = row.value_fn(node);
        if (value == nullptr)
            yfw_dt_set_operation(node, OP_REMOVE);
        return yfw_map_datatree_add_path_flagged(ctx, out, row.xpath, row.namespace_, value, node,
                                                 nullptr, 0, row.augment_flag);
    });
}

TEST(SelectedRows, CarryTheCallbacksValueFunctionToAHandWrittenVariant) {
    Request r(KIND_EDIT_A);
    tidl_yfw_datatree *in = r.input(test::oc_system("<x>false</x>"));
    ASSERT_EQ(false_becomes_remove(r.ctx(), &in->subtrees[0], r.session().output()), YFW_SUCCESS);
    EXPECT_EQ(r.paths(),
              test::chain(kZone + "/time-zone") + kZone + "/time-zone/area-name @remove\n");
    EXPECT_EQ(kEmptyLeaf_rows[1].value_fn, &ymap::xpath_node_value);
}

// The copy a callback gets holds every text of its table whole, short or near
// its field's size, and no mark a callback set in an earlier call.
#define YMAP_TEST_LONG_PATH_ "/a-path-of-two-hundred-and-forty-nine-characters-to-fill-the-field"
constexpr const char kLongPath[] = YMAP_TEST_LONG_PATH_ YMAP_TEST_LONG_PATH_ YMAP_TEST_LONG_PATH_
    "/and-the-rest-of-itxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx";
static_assert(sizeof kLongPath == XPATH_LIST_PATH_SIZE);
cerrno inspect(yfw_map_ctx *, int32_t count, xpath_list_type_t *rows);
// clang-format off
YMAP_XPATH_TABLE(kTexts, inspect,
    {"/a",      NS_SHELLUTIL_CFG,         &ymap::xpath_node_value, 0, 0, kLongPath},
    {kLongPath, NS_INFRA_CLOCK_LINUX_CFG, &ymap::xpath_node_value, 0, 1, "NULL"},
    {"/b/c",    NS_SHELLUTIL_CFG,         nullptr,                 0, 0, "/d"});
// clang-format on
int inspected = 0;
cerrno inspect(yfw_map_ctx *, int32_t count, xpath_list_type_t *rows) {
    for (int32_t i = 0; i <= count; ++i) {
        const xpath_list_type_t &want = kTexts_rows[static_cast<std::size_t>(i)];
        EXPECT_STREQ(rows[i].xpath, want.xpath);
        EXPECT_STREQ(rows[i].namespace_, want.namespace_);
        EXPECT_STREQ(rows[i].second_xpath, want.second_xpath);
        EXPECT_EQ(rows[i].value_fn, want.value_fn);
        EXPECT_EQ(rows[i].augment_flag, want.augment_flag);
        EXPECT_EQ(rows[i].selected, 0u) << "row " << i << ", call " << inspected;
        rows[i].selected = 1;
    }
    ++inspected;
    return YFW_SUCCESS;
}

TEST(SelectedRows, TheCopyHoldsEveryTextWholeAndNoMarkOfAnEarlierCall) {
    Request r(KIND_GET);
    for (int call = 0; call < 2; ++call)
        EXPECT_EQ(ymap::SelectedRows(kTexts, r.ctx()).callback_status(), YFW_SUCCESS);
    EXPECT_EQ(inspected, 2);
}

TEST(SelectedRows, HasSecondIgnoresBothPlaceholders) {
    EXPECT_TRUE(ymap::has_second(kTable_rows[1]));
    EXPECT_FALSE(ymap::has_second(kTable_rows[0]));
    EXPECT_FALSE(ymap::has_second(kTable_rows[2]));
}

} // namespace
