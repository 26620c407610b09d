// The native walkers: a simple descent that drops what it does not know.
#include "harness.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::Request;

constexpr auto kHostNames = &ymap_qo_ocsystem_tarvexqvshellutilcfg_lvla_hostnames;
constexpr auto kBanners = &ymap_qo_ocsystem_tarvexqvinfrainfracfg_lvla_banners;

std::string host_names(std::string_view body) {
    return "<host-names xmlns=\"http://tarvex.local/ns/yang/Tarvex-QV-shellutil-cfg\">" +
           std::string(body) + "</host-names>";
}

TEST(QoWalker, UnknownOwnTagIsDroppedWithATrace) {
    Request r(KIND_GET_CONFIG);
    r.session().set_debug_log(true);
    ASSERT_EQ(r.run(kHostNames, host_names("<domain>x</domain><host-name>r1</host-name>")),
              YFW_SUCCESS);
    EXPECT_EQ(r.paths(), "/openconfig-system:system\n/openconfig-system:system/config\n"
                         "/openconfig-system:system/config/hostname = \"r1\"\n");
    EXPECT_EQ(test::count_lines(r.session().debug_log(), "Unsupported tag. Ignoring."), 1);
    r.expect_state_restored();
}

TEST(QoWalker, ForeignNodeGoesToTheAugmentParserAndIsDropped) {
    test::expect_walk(kHostNames, KIND_GET_CONFIG, host_names("<x xmlns=\"urn:other\">1</x>"), "");
}

TEST(QoWalker, XpathErrorNodeIsMarkedAndStillMapped) {
    Request r(KIND_GET_CONFIG);
    tidl_yfw_datatree *in = r.input(host_names("<host-name>r1</host-name>"));
    in->subtrees[0].error_kind = YFW_MAP_ERROR_KIND_XPATH;
    in->subtrees[0].present_error_kind = 1;
    ASSERT_EQ(kHostNames(r.ctx(), in, r.session().output()), YFW_SUCCESS);
    EXPECT_NE(r.state()->state_flags & YFW_MAP_STATE_XPATH_ERROR, 0u);
    EXPECT_NE(r.paths(), "");
}

TEST(QoListWalker, MarksKeysOpensAnOutputListPerEntryAndClosesIt) {
    Request r(KIND_GET);
    tidl_yfw_datatree *in =
        r.input("<banners xmlns=\"http://tarvex.local/ns/yang/Tarvex-QV-infra-infra-cfg\">"
                "<banner><banner-name>login</banner-name><banner-text>hello</banner-text></banner>"
                "</banners>");
    ASSERT_EQ(kBanners(r.ctx(), in, r.session().output()), YFW_SUCCESS);
    EXPECT_EQ(in->subtrees[0].subtrees[0].is_key, 1);
    EXPECT_EQ(in->subtrees[0].subtrees[1].is_key, 0);
    r.expect_state_restored();
}

// A child is tried first against the schema child after the last match: named
// out of schema order or twice, every child still finds its own walker.
TEST(QoListWalker, ChildrenOutOfSchemaOrderOrRepeatedMapAsInOrder) {
    const auto walk = [](std::string_view children) {
        Request r(KIND_GET);
        EXPECT_EQ(r.run(kBanners, "<banners xmlns=\"http://tarvex.local/ns/yang/"
                                  "Tarvex-QV-infra-infra-cfg\"><banner>" +
                                      std::string(children) + "</banner></banners>"),
                  YFW_SUCCESS);
        return r.paths();
    };
    const std::string name = "<banner-name>login</banner-name>";
    const std::string text = "<banner-text>hello</banner-text>";
    const std::string in_order = walk(name + text);
    EXPECT_NE(in_order.find("hello"), std::string::npos);
    EXPECT_EQ(walk(text + name), in_order);
    EXPECT_EQ(walk(text + name + text), walk(name + text + text));
}

TEST(QoListWalker, EntryWithoutChildrenIsLoggedAndWalked) {
    Request r(KIND_GET);
    r.session().set_debug_log(true);
    ASSERT_EQ(r.run(kBanners, "<banners xmlns=\"http://tarvex.local/ns/yang/"
                              "Tarvex-QV-infra-infra-cfg\"><banner/></banners>"),
              YFW_SUCCESS);
    EXPECT_EQ(test::count_lines(r.session().debug_log(), "ERR: YFW: ctx="), 1);
    r.expect_state_restored();
}

TEST(Mappers, NullArgumentsAreRefusedWithTheErrorPathAndNoEndLine) {
    Request r(KIND_GET);
    r.session().set_debug_log(true);
    tidl_yfw_datatree *in = r.input(host_names(""));
    EXPECT_EQ(ymap_qo_ocsystem_tarvexqvshellutilcfg_cont_lvla_hostnames(r.ctx(), in, 0, nullptr),
              YFW_ERR_INVALID_ARGS);
    EXPECT_EQ(
        ymap_oq_ocsystem_openconfigsystem_leaf_lvla_system_config_hostname(r.ctx(), nullptr, in),
        YFW_ERR_INVALID_ARGS);
    const auto &log = r.session().debug_log();
    EXPECT_EQ(test::count_lines(log, "Invalid arguments passed!"), 2);
    EXPECT_EQ(test::count_lines(log, ",End"), 0);
    EXPECT_EQ(r.paths(), "");
}

TEST(Mappers, DuckLeafOfTheOpenConfigModuleRefusesAndNativeOnesPass) {
    Request r(KIND_EDIT_A);
    tidl_yfw_datatree *in = r.input("<system xmlns=\"http://openconfig.net/yang/system\"/>");
    EXPECT_EQ(ymap_oq_ocsystem_openconfigsystem_duck_map_leaf(r.ctx(), in, r.session().output()),
              YFW_ERR_UNSUPPORTED_TAG);
    EXPECT_EQ(r.error_tag(), "system");
    EXPECT_EQ(
        ymap_qo_ocsystem_tarvexqvshellutilcfg_duck_map_leaf(r.ctx(), in, r.session().output()),
        YFW_SUCCESS);
    EXPECT_EQ(
        ymap_oq_ocsystem_openconfigsystem_duck_map_container(r.ctx(), in, 3, r.session().output()),
        YFW_SUCCESS);
}

TEST(Mappers, AnErrorTagSetTwiceIsReleasedFirst) {
    const std::size_t before = yfw::live_allocations();
    {
        Request r(KIND_EDIT_A);
        tidl_yfw_datatree *in = r.input("<system xmlns=\"http://openconfig.net/yang/system\"/>");
        for (int i = 0; i < 3; ++i)
            (void)ymap_oq_ocsystem_openconfigsystem_duck_map_leaf(r.ctx(), in,
                                                                  r.session().output());
        EXPECT_EQ(yfw::live_allocations(), before + 1);
    }
    EXPECT_EQ(yfw::live_allocations(), before);
}

} // namespace
