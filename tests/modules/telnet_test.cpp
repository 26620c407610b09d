// Telnet both ways: the terminal extension's ipv4/ipv6 VRF lists against the
// Telnet VRFs of Tarvex-QV-ip-tcp-cfg, the model's own leaves refused, and the
// private Telnet state stitched onto the extension's entries.
#include "harness.hpp"
#include "ymap_module_state.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::lines;
using test::Request;

constexpr auto kSystem = &ymap_oq_ocsystem_openconfigsystem_lvla_system;
constexpr auto kTcpCfg = &ymap_qo_ocsystem_tarvexqviptcpcfg_lvla_ip;
constexpr auto kOper = &ymap_qo_ocsystem_tarvexqvprivateoctelnetoper_lvla_octelnet;

const std::string kExtNs = "http://tarvex.local/ns/yang/Tarvex-QV-openconfig-system-terminal-ext";
const std::string kTelnet = "/Tarvex-QV-ip-tcp-cfg:ip/tinetd/services/telnet";
const std::string kVrfs = kTelnet + "/vrfs";
const std::string kNativeHead = test::chain(kVrfs);
const std::string kExt = "/Tarvex-QV-openconfig-system-terminal-ext:";

// A native VRF entry, with the lines of its key.
std::string vrf(std::string_view name) {
    return kVrfs + "/vrf[vrf-name='" + std::string(name) + "']";
}
std::string vrf_head(std::string_view name) {
    return lines({vrf(name), vrf(name) + "/vrf-name = \"" + std::string(name) + "\""});
}
std::string limit_lines(std::string_view name, std::string_view fam, std::string_view value) {
    const std::string f = vrf(name) + "/" + std::string(fam);
    return lines({f, f + "/tcp", f + "/tcp/maximum-server = \"" + std::string(value) + "\""});
}
// An extension entry of one family under /system/telnet-server.
std::string ext_entry(std::string_view fam, std::string_view name, std::string_view body) {
    return "<" + std::string(fam) + " xmlns=\"" + kExtNs + "\"><vrf><vrf-name>" +
           std::string(name) + "</vrf-name>" + std::string(body) + "</vrf></" + std::string(fam) +
           ">";
}
std::string telnet(std::string_view body) {
    return test::oc_system("<telnet-server>" + std::string(body) + "</telnet-server>");
}

using Case = test::Walk;

void expect_mapped(yfw_map_walker_fn walker, const Case &c, const std::string &xml) {
    test::expect_walk(walker, c.kind, xml, c.output, c.oper_only);
}

// ---- OpenConfig to native ---------------------------------------------------------

class TelnetEdit : public ::testing::TestWithParam<Case> {};

TEST_P(TelnetEdit, Output) {
    expect_mapped(kSystem, GetParam(), telnet(GetParam().input));
}

const std::string kLimit5 = "<config><session-limit>5</session-limit></config>";
const std::string kOperRoot = "/Tarvex-QV-PRIVATE-octelnet-oper:octelnet";
const std::string kOperEntry = kOperRoot + "/system/telnet-server";

INSTANTIATE_TEST_SUITE_P(
    Extension, TelnetEdit,
    ::testing::Values(
        // Both families of one VRF are one native entry.
        Case{"both_families_one_entry", KIND_EDIT_A,
             ext_entry("ipv4", "mgmt", kLimit5) +
                 ext_entry("ipv6", "mgmt", "<config><session-limit>3</session-limit></config>"),
             kNativeHead + vrf_head("mgmt") + limit_lines("mgmt", "ipv4", "5") +
                 limit_lines("mgmt", "ipv6", "3")},
        // The limit alone is not deleted: it goes with its VRF entry.
        Case{"delete_limit_alone_writes_no_limit", KIND_EDIT_A,
             ext_entry("ipv6", "mgmt",
                       "<config><session-limit nc:operation=\"delete\">5</session-limit></config>"),
             kNativeHead + vrf_head("mgmt")},
        Case{"delete_entry_deletes_native_entry", KIND_EDIT_A,
             "<ipv4 xmlns=\"" + kExtNs +
                 "\"><vrf nc:operation=\"delete\"><vrf-name>mgmt</vrf-name></vrf></ipv4>",
             kNativeHead + lines({kVrfs + "/vrf @delete", kVrfs + "/vrf/vrf-name @delete"})},
        // Outside KIND_GET the entry's state is an unknown tag of the extension: ignored.
        Case{"state_ignored_in_an_edit", KIND_EDIT_A,
             ext_entry("ipv4", "mgmt", "<state><enable>true</enable></state><color>red</color>"),
             kNativeHead + vrf_head("mgmt")},
        // A foreign node under telnet-server is dropped, not refused.
        Case{"foreign_namespace_dropped", KIND_EDIT_A, "<x xmlns=\"urn:other\">1</x>", ""},
        Case{"read_with_state", KIND_GET, ext_entry("ipv6", "mgmt", "<state><enable/></state>"),
             kNativeHead + vrf_head("mgmt") +
                 test::chain(kOperEntry + "/ipv6s/ipv6/state/enable")}),
    test::case_name);

TEST(TelnetRefusal, ModelLeavesAndModelStateInAnEdit) {
    const std::string path = "/openconfig-system:system/telnet-server";
    for (const auto &[body, tag, where] : {
             std::tuple{"<config><enable>true</enable></config>", "enable", path + "/config"},
             std::tuple{"<config><session-limit>4</session-limit></config>", "session-limit",
                        path + "/config"},
             std::tuple{"<state><timeout>4</timeout></state>", "state", path},
         }) {
        SCOPED_TRACE(body);
        Request r(KIND_EDIT_A);
        test::expect_refused(r, r.run(kSystem, telnet(body)),
                             {YFW_ERR_UNSUPPORTED_TAG, tag, where});
        EXPECT_EQ(r.paths(), "");
    }
}

// A bare read walks the extension whole; the refused model leaves drop out.
TEST(TelnetRead, BareTelnetServerReadsTheExtension) {
    Request r(KIND_GET_CONFIG);
    ASSERT_EQ(r.run(kSystem, telnet("")), YFW_SUCCESS);
    const std::string any = kVrfs + "/vrf";
    EXPECT_EQ(r.paths(),
              kNativeHead + lines({any, any + "/vrf-name", any + "/ipv4", any + "/ipv4/tcp",
                                   any + "/ipv4/tcp/maximum-server", any + "/ipv6",
                                   any + "/ipv6/tcp", any + "/ipv6/tcp/maximum-server"}));
    r.expect_state_restored();
}

// ---- Native to OpenConfig ---------------------------------------------------------

class TelnetAnswer : public ::testing::TestWithParam<Case> {};

TEST_P(TelnetAnswer, Output) {
    expect_mapped(kTcpCfg, GetParam(),
                  test::native("Tarvex-QV-ip-tcp-cfg", "ip",
                               "<tinetd><services><telnet><vrfs>" + GetParam().input +
                                   "</vrfs></telnet></services></tinetd>"));
}

std::string native_vrf(std::string_view name, std::string_view families) {
    return "<vrf><vrf-name>" + std::string(name) + "</vrf-name>" + std::string(families) + "</vrf>";
}
std::string family(std::string_view fam, std::string_view limit) {
    return "<" + std::string(fam) + "><tcp><maximum-server>" + std::string(limit) +
           "</maximum-server></tcp></" + std::string(fam) + ">";
}
// The answer's head: the augmented path is of openconfig-system.
const std::string kOcTelnet = "/openconfig-system:system/telnet-server";
const std::string kOcHead = "/openconfig-system:system\n" + kOcTelnet + "\n";
std::string oc_entry(std::string_view fam, std::string_view name, std::string_view limit) {
    const std::string f = kOcTelnet + kExt + std::string(fam);
    const std::string e = f + "/vrf[vrf-name='" + std::string(name) + "']";
    std::string out = lines({f, e, e + "/vrf-name = \"" + std::string(name) + "\""});
    if (!limit.empty())
        out += lines({e + "/config", e + "/config/session-limit = \"" + std::string(limit) + "\""});
    return out;
}

INSTANTIATE_TEST_SUITE_P(
    Vrfs, TelnetAnswer,
    ::testing::Values(Case{"both_one_key_in_each_list", KIND_GET_CONFIG,
                           native_vrf("mgmt", family("ipv4", "5") + family("ipv6", "3")),
                           kOcHead + oc_entry("ipv4", "mgmt", "5") + oc_entry("ipv6", "mgmt", "3")},
                      // With neither family the entry and its name are lost.
                      Case{"neither_is_lost", KIND_GET_CONFIG,
                           native_vrf("a", family("ipv4", "5")) + native_vrf("b", ""),
                           kOcHead + oc_entry("ipv4", "a", "5")},
                      // The flags of one entry do not leak into the next.
                      Case{"flags_cleared_per_entry", KIND_GET_CONFIG,
                           native_vrf("a", family("ipv4", "5")) +
                               native_vrf("b", family("ipv6", "3")),
                           kOcHead + oc_entry("ipv4", "a", "5") + oc_entry("ipv6", "b", "3")},
                      // Limits are configuration: a request for state alone gets the keys only.
                      Case{"oper_only_no_limit", KIND_GET, native_vrf("mgmt", family("ipv4", "5")),
                           kOcHead + oc_entry("ipv4", "mgmt", ""), true}),
    test::case_name);

TEST(TelnetAnswerFlags, KeyMapperClearsTheSeenFlags) {
    Request r(KIND_GET_CONFIG);
    ASSERT_EQ(r.run(kTcpCfg,
                    test::native("Tarvex-QV-ip-tcp-cfg", "ip",
                                 "<tinetd><services><telnet><vrfs>" +
                                     native_vrf("mgmt", family("ipv4", "5") + family("ipv6", "3")) +
                                     "</vrfs></telnet></services></tinetd>")),
              YFW_SUCCESS);
    EXPECT_EQ(ymap::context_flags(r.ctx()).ipv4_seen, 0u);
    EXPECT_EQ(ymap::context_flags(r.ctx()).ipv6_seen, 0u);
}

// ---- State ------------------------------------------------------------------------

TEST(TelnetState, OperEntriesStitchedWithValuesUnchanged) {
    Request r(KIND_GET);
    const std::string body =
        "<system><telnet-server><ipv4s><ipv4><vrf-name>mgmt</vrf-name><state><enable>true"
        "</enable><session-limit>5</session-limit></state></ipv4></ipv4s><ipv6s><ipv6>"
        "<vrf-name>mgmt</vrf-name></ipv6></ipv6s></telnet-server></system>";
    ASSERT_EQ(r.run(kOper, test::native("Tarvex-QV-PRIVATE-octelnet-oper", "octelnet", body)),
              YFW_SUCCESS);
    const std::string ts = kExt + "system/telnet-server";
    const std::string v4 = ts + "/ipv4/vrf[vrf-name='mgmt']";
    const std::string v6 = ts + "/ipv6/vrf[vrf-name='mgmt']";
    EXPECT_EQ(r.paths(), lines({kExt + "system", ts, ts + "/ipv4", v4, v4 + "/vrf-name = \"mgmt\"",
                                v4 + "/state", v4 + "/state/enable = \"true\"",
                                v4 + "/state/session-limit = \"5\"", ts + "/ipv6", v6,
                                v6 + "/vrf-name = \"mgmt\""}));
    r.expect_state_restored();
}

} // namespace
