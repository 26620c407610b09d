// Banners: a leaf in one model against a list entry keyed by banner-name.
#include "harness.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::Request;

constexpr auto kSystem = &ymap_oq_ocsystem_openconfigsystem_lvla_system;
constexpr auto kBanners = &ymap_qo_ocsystem_tarvexqvinfrainfracfg_lvla_banners;

std::string config(std::string_view body, std::string_view attrs = "") {
    return test::oc_system("<config" + std::string(attrs) + ">" + std::string(body) + "</config>");
}

std::string banners(std::string_view entries) {
    return test::native("Tarvex-QV-infra-infra-cfg", "banners", entries);
}

std::string entry(std::string_view name, std::string_view text) {
    return "<banner><banner-name>" + std::string(name) + "</banner-name><banner-text>" +
           std::string(text) + "</banner-text></banner>";
}

const std::string kList = "/Tarvex-QV-infra-infra-cfg:banners";
std::string in_entry(std::string_view name) {
    return kList + "/banner[banner-name='" + std::string(name) + "']";
}

TEST(Banners, ReadSelectsTheTextOfEveryBannerWithoutAKey) {
    test::expect_walk(kSystem, KIND_GET_CONFIG, config("<login-banner/>"),
                      test::chain(kList + "/banner/banner-text"));
}

TEST(Banners, EditWritesTheEntryWithItsKey) {
    test::expect_walk(
        kSystem, KIND_EDIT_A,
        config("<login-banner>Welcome</login-banner><motd-banner/>", " nc:operation=\"merge\""),
        kList + "\n" +
            test::under(in_entry("login"),
                        {"", "/banner-name = \"login\"", "/banner-text = \"Welcome\" @merge"}) +
            test::under(in_entry("motd"),
                        {"", "/banner-name = \"motd\"", "/banner-text = \"\" @merge"}));
}

TEST(Banners, DeleteOfTheLoginBannerNamesTheEntryAndItsText) {
    test::expect_walk(
        kSystem, KIND_EDIT_A, config("<login-banner nc:operation=\"delete\"/>"),
        kList + "\n" +
            test::under(in_entry("login"), {" @delete", "/banner-name = \"login\" @delete",
                                            "/banner-text = \"login\" @delete"}));
}

TEST(Banners, EntriesLandOnLoginWhenTheNameBeginsWithLoginAndOnMotdOtherwise) {
    Request r(KIND_GET_CONFIG);
    ASSERT_EQ(r.run(kBanners, banners(entry("login", "hello") + entry("motd", "today") +
                                      entry("exec", "run") + entry("login-2", "again"))),
              YFW_SUCCESS);
    // The last entry written to a leaf wins.
    EXPECT_EQ(r.paths(), "/openconfig-system:system\n/openconfig-system:system/config\n"
                         "/openconfig-system:system/config/login-banner = \"again\"\n"
                         "/openconfig-system:system/config/motd-banner = \"run\"\n");
    r.expect_state_restored();
}

TEST(Banners, AnEmptyTextPassesUnchangedForAnyRead) {
    Request r(KIND_GET, /*oper_only=*/true);
    // JSON, since an empty XML element of a read is a selection node.
    ASSERT_EQ(r.run(kBanners, R"({"tag": "banners", "module": "Tarvex-QV-infra-infra-cfg",
        "children": [{"tag": "banner", "children": [{"tag": "banner-name", "value": "motd"},
                                                   {"tag": "banner-text", "value": ""}]}]})"),
              YFW_SUCCESS);
    EXPECT_EQ(r.paths(), "/openconfig-system:system\n/openconfig-system:system/config\n"
                         "/openconfig-system:system/config/motd-banner = \"\"\n");
}

} // namespace
