// The host name, both ways: a request in one model, the exact output in the
// other, and the errors with their status, tag and path.
#include "harness.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::Request;

constexpr auto kSystem = &ymap_oq_ocsystem_openconfigsystem_lvla_system;
constexpr auto kHostNames = &ymap_qo_ocsystem_tarvexqvshellutilcfg_lvla_hostnames;
constexpr auto kOcSystemOper = &ymap_qo_ocsystem_tarvexqvprivateocsystemoper_lvla_ocsystem;

using test::oc_system;

const char kNativeHost[] = "/Tarvex-QV-shellutil-cfg:host-names\n"
                           "/Tarvex-QV-shellutil-cfg:host-names/host-name";
const std::string kBanners = "/Tarvex-QV-infra-infra-cfg:banners";
// config/domain-name, walked whole with its siblings.
const std::string kDomain =
    test::chain("/Tarvex-QV-ip-domain-cfg:ip-domain/vrfs/vrf[vrf-name='default']") +
    "/Tarvex-QV-ip-domain-cfg:ip-domain/vrfs/vrf[vrf-name='default']/vrf-name = \"default\"\n"
    "/Tarvex-QV-ip-domain-cfg:ip-domain/vrfs/vrf[vrf-name='default']/name";
const std::string kReadR1 = std::string(kNativeHost) + " = \"r1\"\n" + kDomain + "\n";
const std::string kRemoved =
    std::string(kNativeHost) + " @remove\n" + kDomain + " = \"\" @remove\n";
std::string banner(const char *name) {
    return kBanners + "/banner[banner-name='" + name + "']";
}

using Case = test::Walk;

class HostNameToNative : public ::testing::TestWithParam<Case> {};

TEST_P(HostNameToNative, Output) {
    test::expect_walk(kSystem, GetParam().kind, oc_system(GetParam().input), GetParam().output);
}

INSTANTIATE_TEST_SUITE_P(
    Requests, HostNameToNative,
    ::testing::Values(
        Case{"get_config_selects", KIND_GET_CONFIG, "<config><hostname/></config>",
             std::string(kNativeHost) + "\n"},
        // A content-match leaf alone expands config: every leaf of it is read.
        Case{"get_filter_by_value_expands_config", KIND_GET,
             "<config><hostname>r1</hostname></config>",
             kReadR1 + kBanners + "\n" + kBanners + "/banner\n" + kBanners +
                 "/banner/banner-text\n"},
        Case{"edit_sets", KIND_EDIT_A, "<config><hostname>r1</hostname></config>",
             std::string(kNativeHost) + " = \"r1\"\n"},
        Case{"merge_carries_the_operation", KIND_EDIT_A,
             "<config nc:operation=\"merge\"><hostname>r1</hostname></config>",
             std::string(kNativeHost) + " = \"r1\" @merge\n"},
        Case{"delete_names_it_without_value", KIND_EDIT_A,
             "<config><hostname nc:operation=\"delete\"/></config>",
             std::string(kNativeHost) + " @delete\n"},
        Case{"bare_config_delete_walks_it_whole", KIND_EDIT_C, "<config nc:operation=\"delete\"/>",
             kRemoved + kBanners + "\n" +
                 test::under(banner("login"), {" @remove", "/banner-name = \"login\" @remove",
                                               "/banner-text = \"login\" @remove"}) +
                 test::under(banner("motd"), {" @remove", "/banner-name = \"motd\" @remove",
                                              "/banner-text = \"motd\" @remove"})},
        Case{"any_text_passes_unchanged", KIND_EDIT_B,
             "<config><hostname> a&amp;b \"c\" </hostname></config>",
             std::string(kNativeHost) + " = \" a&b \\\"c\\\" \"\n"},
        Case{"state_leaf_in_an_edit_adds_nothing", KIND_EDIT_A,
             "<state><hostname>r1</hostname></state>", ""},
        Case{"state_leaf_read_asks_the_private_module", KIND_GET, "<state><hostname/></state>",
             test::chain("/Tarvex-QV-PRIVATE-oc-system-oper:ocsystem/system/state/host-name")}),
    test::case_name);

TEST(HostName, GetOfAnEmptySystemVisitsEveryChildOnce) {
    Request r(KIND_GET);
    r.session().set_ring_trace(true);
    ASSERT_EQ(r.run(kSystem, oc_system("")), YFW_SUCCESS);
    const auto &ring = r.session().ring_trace();
    auto starts = [&](const std::string &walker) {
        return test::count_lines(ring, "ymap_oq_ocsystem_openconfigsystem_" + walker + ":") / 2;
    };
    for (const char *walker : {"lvla_system_config", "lvla_system_state", "lvla_system_clock",
                               "lvla_system_memory", "lvla_system_cpus", "lvla_system_alarms",
                               "lvla_system_mountpoints", "lvla_system_macaddress"})
        EXPECT_EQ(starts(walker), 1) << walker;
    EXPECT_NE(r.paths().find(kNativeHost), std::string::npos);
    r.expect_state_restored();
}

TEST(HostName, GetWithOperOnlyGivesStateAndNoConfig) {
    const char response[] = "<host-names xmlns=\"http://tarvex.local/ns/yang/"
                            "Tarvex-QV-shellutil-cfg\"><host-name>r1</host-name></host-names>";
    const char oper[] = "<ocsystem xmlns=\"http://tarvex.local/ns/yang/"
                        "Tarvex-QV-PRIVATE-oc-system-oper\"><system><state>"
                        "<host-name>r1</host-name></state></system></ocsystem>";
    Request r(KIND_GET, /*oper_only=*/true);
    ASSERT_EQ(r.run(kHostNames, response), YFW_SUCCESS);
    ASSERT_EQ(r.run(kOcSystemOper, oper), YFW_SUCCESS);
    EXPECT_EQ(r.paths(), "/openconfig-system:system\n/openconfig-system:system/state\n"
                         "/openconfig-system:system/state/hostname = \"r1\"\n");

    Request both(KIND_GET);
    ASSERT_EQ(both.run(kHostNames, response), YFW_SUCCESS);
    ASSERT_EQ(both.run(kOcSystemOper, oper), YFW_SUCCESS);
    EXPECT_EQ(both.paths(), "/openconfig-system:system\n/openconfig-system:system/config\n"
                            "/openconfig-system:system/config/hostname = \"r1\"\n"
                            "/openconfig-system:system/state\n"
                            "/openconfig-system:system/state/hostname = \"r1\"\n");
}

TEST(HostName, NoAllocationOutlivesARequestButTheErrorTexts) {
    auto texts = [](Request &q) {
        return (q.state()->error_tag != nullptr ? 1u : 0u) +
               (q.state()->error_message != nullptr ? 1u : 0u);
    };
    const std::size_t before = yfw::live_allocations();
    {
        Request r(KIND_EDIT_A);
        (void)r.run(kSystem, oc_system("<config><color>red</color></config>"));
        EXPECT_EQ(texts(r), 1u);
        // A walk-all pass drops the status of a refused leaf but keeps its tag.
        Request ok(KIND_GET);
        ASSERT_EQ(ok.run(kSystem, oc_system("")), YFW_SUCCESS);
        EXPECT_EQ(yfw::live_allocations(), before + texts(r) + texts(ok));
    }
    EXPECT_EQ(yfw::live_allocations(), before);
}

} // namespace
