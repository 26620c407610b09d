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

TEST(SystemState, NothingIsMappedOnGetConfigNorForContainersWithoutState) {
    test::expect_walk(kOcSystemOper, KIND_GET_CONFIG, kAnswer, "");
    test::expect_walk(kOcSystemOper, KIND_GET,
                      "<ocsystem xmlns=\"http://tarvex.local/ns/yang/"
                      "Tarvex-QV-PRIVATE-oc-system-oper\"><system><clock/><memory/></system>"
                      "</ocsystem>",
                      "");
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

} // namespace
