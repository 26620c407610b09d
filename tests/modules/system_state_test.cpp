// The private system module: the state of /system renamed leaf for leaf, in
// KIND_GET alone.
#include "harness.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::Request;

constexpr auto kSystem = &ymap_oq_ocsystem_openconfigsystem_lvla_system;
constexpr auto kOcSystemOper = &ymap_qo_ocsystem_tarvexqvprivateocsystemoper_lvla_ocsystem;

const char kAnswer[] =
    "<ocsystem xmlns=\"http://tarvex.local/ns/yang/Tarvex-QV-PRIVATE-oc-system-oper\"><system>"
    "<state><host-name>r1</host-name><login-banner>in</login-banner><motd-banner>news</motd-banner>"
    "<current-datetime>2026-11-23T01:00:00Z</current-datetime><boot-time>1700000000</boot-time>"
    "<uptime>5</uptime></state>"
    "<clock><state><timezone-name>UTC</timezone-name></state></clock>"
    "<memory><state><physical>8589934592</physical><reserved>1024</reserved></state></memory>"
    "</system></ocsystem>";

TEST(SystemState, EveryLeafIsRenamedInGet) {
    Request r(KIND_GET);
    ASSERT_EQ(r.run(kOcSystemOper, kAnswer), YFW_SUCCESS);
    const std::string s = "/openconfig-system:system";
    EXPECT_EQ(r.paths(),
              s + "\n" + s + "/state\n" + s + "/state/hostname = \"r1\"\n" + s +
                  "/state/login-banner = \"in\"\n" + s + "/state/motd-banner = \"news\"\n" + s +
                  "/state/current-datetime = \"2026-11-23T01:00:00Z\"\n" + s +
                  "/state/boot-time = \"1700000000\"\n" + s + "/clock\n" + s + "/clock/state\n" +
                  s + "/clock/state/timezone-name = \"UTC\"\n" + s + "/memory\n" + s +
                  "/memory/state\n" + s + "/memory/state/physical = \"8589934592\"\n" + s +
                  "/memory/state/reserved = \"1024\"\n");
    r.expect_state_restored();
}

TEST(SystemState, NothingIsMappedOnGetConfig) {
    Request r(KIND_GET_CONFIG);
    ASSERT_EQ(r.run(kOcSystemOper, kAnswer), YFW_SUCCESS);
    EXPECT_EQ(r.paths(), "");
}

TEST(SystemState, ContainersWithoutStateMapToNothing) {
    Request r(KIND_GET);
    ASSERT_EQ(r.run(kOcSystemOper, "<ocsystem xmlns=\"http://tarvex.local/ns/yang/"
                                   "Tarvex-QV-PRIVATE-oc-system-oper\"><system><clock/>"
                                   "<memory/></system></ocsystem>"),
              YFW_SUCCESS);
    EXPECT_EQ(r.paths(), "");
}

TEST(SystemState, GetOfTheBareStateContainerAsksTheWholeContainerAndEachLeaf) {
    Request r(KIND_GET);
    ASSERT_EQ(
        r.run(kSystem, "<system xmlns=\"http://openconfig.net/yang/system\"><state/></system>"),
        YFW_SUCCESS);
    const std::string out = r.paths();
    const std::string dns = "/Tarvex-QV-PRIVATE-oc-dns-oper:oc-dns/system/state";
    const std::string sys = "/Tarvex-QV-PRIVATE-oc-system-oper:ocsystem/system/state/";
    for (const std::string &line :
         {dns + "\n", dns + "/domain-name\n", sys + "host-name\n", sys + "login-banner\n",
          sys + "motd-banner\n", sys + "current-datetime\n", sys + "boot-time\n"})
        EXPECT_NE(out.find(line), std::string::npos) << line << out;
    r.expect_state_restored();
}

TEST(SystemState, MemoryStateLeavesAreReadFromThePrivateModule) {
    Request r(KIND_GET);
    ASSERT_EQ(r.run(kSystem, "<system xmlns=\"http://openconfig.net/yang/system\"><memory><state>"
                             "<physical/></state></memory></system>"),
              YFW_SUCCESS);
    EXPECT_EQ(r.paths(), "/Tarvex-QV-PRIVATE-oc-system-oper:ocsystem\n"
                         "/Tarvex-QV-PRIVATE-oc-system-oper:ocsystem/system\n"
                         "/Tarvex-QV-PRIVATE-oc-system-oper:ocsystem/system/memory\n"
                         "/Tarvex-QV-PRIVATE-oc-system-oper:ocsystem/system/memory/state\n"
                         "/Tarvex-QV-PRIVATE-oc-system-oper:ocsystem/system/memory/state/"
                         "physical\n");
}

} // namespace
