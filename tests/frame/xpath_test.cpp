// The table forms: a callback marks rows of a table copied to the stack, and
// one add (two on reads, where a row has a second path) follows per marked row.
#include "harness.hpp"
#include "ymap_namespaces.hpp"
#include "ymap_xpath.hpp"

namespace {

using test::Request;

// clang-format off
constexpr xpath_list_type_t kRows[] = {
    {"/host-names/host-name",      NS_SHELLUTIL_CFG,         &ymap::xpath_node_value, 0, 0, "NULL"},
    {"/clock/time-zone/area-name", NS_INFRA_CLOCK_LINUX_CFG, &ymap::xpath_node_value, 0, 0,
     "/clock/time-zone/time-zone-name"},
    YMAP_XPATH_CLOSING_ROW};
// clang-format on

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

constexpr ymap::XpathTable kTable{"test table", kRows, &pick};

struct Case {
    const char *name;
    uint32_t kind;
    const char *leaf;
    bool list;
    std::string output;
    friend void PrintTo(const Case &c, std::ostream *os) { *os << c.name; }
};

const std::string kHost = "/Tarvex-QV-shellutil-cfg:host-names";
const std::string kZone = "/Tarvex-QV-infra-infra-clock-linux-cfg:clock";

class TableForms : public ::testing::TestWithParam<Case> {};

TEST_P(TableForms, Output) {
    const Case &c = GetParam();
    callback_status = YFW_SUCCESS;
    Request r(c.kind);
    tidl_yfw_datatree *leaf = r.input(test::oc_system(c.leaf));
    const cerrno status = c.list
                              ? ymap::run_list_table(kTable, r.ctx(), leaf, r.session().output())
                              : ymap::run_leaf_table(kTable, r.ctx(), leaf, r.session().output());
    EXPECT_EQ(status, YFW_SUCCESS);
    EXPECT_EQ(callback_count, 2);
    EXPECT_EQ(r.paths(), c.output);
    EXPECT_EQ(kRows[1].selected, 0u); // the constant table is never written
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, TableForms,
    ::testing::Values(
        Case{"read_fans_out_with_second_paths", KIND_GET, "", false,
             kHost + "\n" + kHost + "/host-name\n" + kZone + "\n" + kZone + "/time-zone\n" + kZone +
                 "/time-zone/area-name\n" + kZone + "/time-zone/time-zone-name\n"},
        Case{"edit_selects_one_row_and_no_second_path", KIND_EDIT_A, "", false,
             kZone + "\n" + kZone + "/time-zone\n" + kZone + "/time-zone/area-name = \"\"\n"},
        Case{"list_edit_adds_the_entry", KIND_EDIT_A, "", true,
             kZone + "\n" + kZone + "/time-zone\n" + kZone + "/time-zone/area-name\n"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(TableForms, ValuesComeFromTheRowsValueFunctionAndCarryTheOperation) {
    callback_status = YFW_SUCCESS;
    Request r(KIND_EDIT_A);
    tidl_yfw_datatree *in = r.input(test::oc_system("<config nc:operation=\"delete\"/>"));
    ASSERT_EQ(ymap::run_leaf_table(kTable, r.ctx(), &in->subtrees[0], r.session().output()),
              YFW_SUCCESS);
    EXPECT_EQ(r.paths(),
              kZone + "\n" + kZone + "/time-zone\n" + kZone + "/time-zone/area-name @delete\n");
    Request edit(KIND_EDIT_A);
    in = edit.input(test::oc_system("<config nc:operation=\"merge\">x</config>"));
    ASSERT_EQ(ymap::run_leaf_table(kTable, edit.ctx(), &in->subtrees[0], edit.session().output()),
              YFW_SUCCESS);
    EXPECT_EQ(edit.paths(), kZone + "\n" + kZone + "/time-zone\n" + kZone +
                                "/time-zone/area-name = \"x\" @merge\n");
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
