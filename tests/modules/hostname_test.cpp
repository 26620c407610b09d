// The host name: every child of /system is visited once in a read of it all,
// two answers make one view, and no allocation outlives a request. The walks
// themselves are golden cases (golden/hostname.txt).
#include "harness.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::Request;

constexpr auto kSystem = &ymap_oq_ocsystem_openconfigsystem_lvla_system;
constexpr auto kHostNames = &ymap_qo_ocsystem_tarvexqvshellutilcfg_lvla_hostnames;
constexpr auto kOcSystemOper = &ymap_qo_ocsystem_tarvexqvprivateocsystemoper_lvla_ocsystem;

using test::oc_system;

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
    EXPECT_NE(r.paths().find("/Tarvex-QV-shellutil-cfg:host-names/host-name"), std::string::npos);
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
