// SSH both ways: the five leaves of /system/ssh-server against /ssh/server of
// Tarvex-QV-crypto-ssh-cfg, through the SSH companion library.
#include "harness.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::lines;
using test::Request;

constexpr auto kSystem = &ymap_oq_ocsystem_openconfigsystem_lvla_system;
constexpr auto kSshCfg = &ymap_qo_ocsystem_tarvexqvcryptosshcfg_lvla_ssh;

const std::string kNative = "/Tarvex-QV-crypto-ssh-cfg:ssh";
const std::string kServer = kNative + "/server";
const std::string kVrfTable = kServer + "/vrf-table";
const std::string kOc = "/openconfig-system:system";
const std::string kOcConfig = kOc + "/ssh-server/config";

std::string oc(std::string_view body) {
    return test::oc_system("<ssh-server>" + std::string(body) + "</ssh-server>");
}
std::string native(std::string_view body) {
    return test::native("Tarvex-QV-crypto-ssh-cfg", "ssh", body);
}

using Case = test::Walk;

void expect_mapped(yfw_map_walker_fn walker, const Case &c, const std::string &xml) {
    test::expect_walk(walker, c.kind, xml, c.output);
}

// ---- OpenConfig to native ---------------------------------------------------------

class SshEdit : public ::testing::TestWithParam<Case> {};

TEST_P(SshEdit, Output) {
    expect_mapped(kSystem, GetParam(), oc(GetParam().input));
}

const std::string kDefaultVrf = kVrfTable + "/vrf[vrf-name='default']";
const std::string kNativeHead = lines({kNative, kServer});

INSTANTIATE_TEST_SUITE_P(
    Leaves, SshEdit,
    ::testing::Values(
        // Every leaf reaches its companion; enable lands in a VRF of its choosing.
        Case{"config_leaves", KIND_EDIT_A,
             "<config><enable>true</enable><protocol-version>V2</protocol-version>"
             "<timeout>60</timeout><rate-limit>30</rate-limit><session-limit>10</session-limit>"
             "</config>",
             kNativeHead + lines({kVrfTable, kDefaultVrf, kDefaultVrf + "/vrf-name = \"default\"",
                                  kDefaultVrf + "/enable = \"\"", kServer + "/v2 = \"\"",
                                  kServer + "/timeout = \"60\"", kServer + "/rate-limit = \"30\"",
                                  kServer + "/session-limit = \"10\""})},
        // A state leaf is served by the same companion as its config twin.
        Case{"state_read_in_get", KIND_GET, "<state><timeout/><enable/></state>",
             kNativeHead + lines({kServer + "/timeout", kVrfTable, kVrfTable + "/vrf",
                                  kVrfTable + "/vrf/enable"})},
        Case{"state_passed_over_in_get_config", KIND_GET_CONFIG, "<state><timeout/></state>", ""}),
    test::case_name);

TEST(SshRefusal, StateInAnEditAndForeignAugments) {
    struct Refused {
        const char *body;
        test::Refusal want;
    };
    const std::string path = kOc + "/ssh-server";
    for (const Refused &c : {
             Refused{"<state><enable>true</enable></state>",
                     {YFW_ERR_UNSUPPORTED_TAG, "state", path}},
             Refused{"<x xmlns=\"urn:other\">1</x>", {YFW_ERR_UNSUPPORTED_AUGMENT, "x", path}},
             Refused{"<config><x xmlns=\"urn:other\">1</x></config>",
                     {YFW_ERR_UNSUPPORTED_AUGMENT, "x", path + "/config"}},
             Refused{"<config><port>22</port></config>",
                     {YFW_ERR_UNSUPPORTED_TAG, "port", path + "/config"}},
         }) {
        SCOPED_TRACE(c.body);
        Request r(KIND_EDIT_A);
        test::expect_refused(r, r.run(kSystem, oc(c.body)), c.want);
        EXPECT_EQ(r.paths(), "");
    }
}

// ---- Native to OpenConfig ---------------------------------------------------------

class SshAnswer : public ::testing::TestWithParam<Case> {};

TEST_P(SshAnswer, Output) {
    expect_mapped(kSshCfg, GetParam(), native(GetParam().input));
}

const std::string kOcHead = lines({kOc, kOc + "/ssh-server", kOcConfig});
const std::string kVrfEnable = "<vrf-table><vrf><vrf-name>default</vrf-name><enable/></vrf>"
                               "</vrf-table>";

INSTANTIATE_TEST_SUITE_P(
    Trees, SshAnswer,
    ::testing::Values(
        Case{"mapped_leaves", KIND_GET_CONFIG,
             "<server>" + kVrfEnable +
                 "<session-limit>10</session-limit><v2/><rate-limit>30</rate-limit>"
                 "<timeout>60</timeout></server>",
             kOcHead +
                 lines({kOcConfig + "/enable = \"true\"", kOcConfig + "/session-limit = \"10\"",
                        kOcConfig + "/protocol-version = \"V2\"",
                        kOcConfig + "/rate-limit = \"30\"", kOcConfig + "/timeout = \"60\""})},
        // The companion joins the VRFs' enables into the one leaf.
        Case{"two_vrfs_one_enable", KIND_GET_CONFIG,
             "<server><vrf-table><vrf><vrf-name>default</vrf-name><enable/></vrf>"
             "<vrf><vrf-name>mgmt</vrf-name><enable/></vrf></vrf-table></server>",
             kOcHead + kOcConfig + "/enable = \"true\"\n"},
        Case{"client_only_is_empty", KIND_GET_CONFIG,
             "<client><client-algo><ciphers>aes128-ctr</ciphers></client-algo></client>"
             "<backup-server><backup-port-vrf>1</backup-port-vrf></backup-server>",
             ""},
        // Only the SSH VRF table says the server is on, not NETCONF over SSH.
        Case{"netconf_enable_is_not_ssh_enable", KIND_GET_CONFIG,
             "<server><netconf-vrf-table><vrf><vrf-name>mgmt</vrf-name><enable/></vrf>"
             "</netconf-vrf-table></server>",
             ""},
        Case{"dropped_subtrees_and_unknown_leaf", KIND_GET,
             "<server><disable><hmac>x</hmac></disable><usernames><username><name>u</name>"
             "</username></usernames><server-algo><ciphers>c</ciphers></server-algo>"
             "<capability/><certificate><username>u</username></certificate><trustpoint>"
             "<usertps><usertp><tp-name>t</tp-name></usertp></usertps></trustpoint>"
             "<port>22</port><timeout>5</timeout></server>",
             kOcHead + lines({kOcConfig + "/timeout = \"5\"", kOc + "/ssh-server/state",
                              kOc + "/ssh-server/state/timeout = \"5\""})}),
    test::case_name);

} // namespace
