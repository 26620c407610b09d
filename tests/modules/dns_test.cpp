// DNS: the mark by which an operational answer silences the configuration
// walk after it. The walks of the DNS trees are golden cases (golden/dns.txt).
#include "harness.hpp"
#include "ymap_module_state.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::Request;

constexpr auto kIpDomain = &ymap_qo_ocsystem_tarvexqvipdomaincfg_lvla_ipdomain;
constexpr auto kOcDns = &ymap_qo_ocsystem_tarvexqvprivateocdnsoper_lvla_ocdns;

const std::string kConfigAnswer = test::native(
    "Tarvex-QV-ip-domain-cfg", "ip-domain",
    "<vrfs><vrf><vrf-name>default</vrf-name><name>example.net</name>"
    "<lists><list><order>0</order><list-name>a.example</list-name></list></lists>"
    "<ipv4-hosts><ipv4-host><host-name>h</host-name><address>192.0.2.1</address>"
    "<address>192.0.2.2</address></ipv4-host></ipv4-hosts>"
    "<ipv6-hosts><ipv6-host><host-name>h</host-name><address>2001:db8::1</address></ipv6-host>"
    "</ipv6-hosts></vrf>"
    "<vrf><vrf-name>mgmt</vrf-name><servers><server><order>0</order>"
    "<server-address>192.0.2.53</server-address></server></servers></vrf></vrfs>");

const std::string kOperAnswer = test::native(
    "Tarvex-QV-PRIVATE-oc-dns-oper", "oc-dns",
    "<system><state><domain-name>example.net</domain-name></state><dns><dns-state/>"
    "<servers><server><address>192.0.2.53</address><state><address>192.0.2.53</address>"
    "<port>53</port></state></server></servers><host-entries><host-entry><host-name>h"
    "</host-name><state><host-name>h</host-name><ipv4-address>192.0.2.1</ipv4-address>"
    "<ipv4-address>192.0.2.2</ipv4-address><color>red</color></state></host-entry>"
    "</host-entries></dns></system>");

// An unknown state leaf is passed over with one trace line.
TEST(DnsAnswers, OperationalTreeInGetIgnoresAnUnknownLeafOnce) {
    Request r(KIND_GET, /*oper_only=*/true);
    ASSERT_EQ(r.run(kOcDns, kOperAnswer), YFW_SUCCESS);
    EXPECT_EQ(test::count_lines(r.session().debug_log(), "Unsupported tag `color`. Ignoring."), 1);
}

TEST(DnsAnswers, OperationalTreeOutsideGetMapsNothingAndStillMarks) {
    test::expect_walk(kOcDns, KIND_GET_CONFIG, kOperAnswer, "");
    EXPECT_EQ(ymap::module_state().is_ocsystem_dns_oper, 1);
}

// Two roots in one run: the operational answer silences exactly one
// configuration walk, whenever it comes.
TEST(DnsAnswers, OperationalWalkSilencesTheNextConfigurationWalkOnce) {
    Request r(KIND_GET);
    ASSERT_EQ(r.run(kOcDns, test::native("Tarvex-QV-PRIVATE-oc-dns-oper", "oc-dns", "")),
              YFW_SUCCESS);
    ASSERT_EQ(r.run(kIpDomain, kConfigAnswer), YFW_SUCCESS);
    EXPECT_EQ(r.paths(), "");
    EXPECT_EQ(ymap::module_state().is_ocsystem_dns_oper, 0);
    ASSERT_EQ(r.run(kIpDomain, kConfigAnswer), YFW_SUCCESS);
    EXPECT_NE(r.paths().find("/openconfig-system:system/config/domain-name"), std::string::npos);
    r.expect_state_restored();
}

} // namespace
