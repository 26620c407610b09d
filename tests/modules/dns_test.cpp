// DNS both ways: OpenConfig requests against the native domain module and the
// private DNS module, native answers back, and the mark by which an
// operational answer silences the configuration walk after it.
#include "harness.hpp"
#include "ymap_module_state.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::Request;
using test::under;

constexpr auto kSystem = &ymap_oq_ocsystem_openconfigsystem_lvla_system;
constexpr auto kIpDomain = &ymap_qo_ocsystem_tarvexqvipdomaincfg_lvla_ipdomain;
constexpr auto kOcDns = &ymap_qo_ocsystem_tarvexqvprivateocdnsoper_lvla_ocdns;

// Expected outputs are written one path a line, with short heads: "V" for the
// native VRF "default", "O" for the OpenConfig /system, "P" for the private
// module's `ocsystem` paths and "D" for its `oc-dns` root.
std::string expand(std::string_view text) {
    static const std::pair<char, std::string> heads[] = {
        {'V', "/Tarvex-QV-ip-domain-cfg:ip-domain/vrfs/vrf[vrf-name='default']"},
        {'O', "/openconfig-system:system"},
        {'P', "/Tarvex-QV-PRIVATE-oc-dns-oper:ocsystem"},
        {'D', "/Tarvex-QV-PRIVATE-oc-dns-oper:oc-dns"}};
    std::string out;
    while (!text.empty()) {
        const std::size_t eol = text.find('\n');
        std::string_view line = text.substr(0, eol);
        text.remove_prefix(eol == std::string_view::npos ? text.size() : eol + 1);
        for (const auto &[c, head] : heads)
            if (!line.empty() && line.front() == c) {
                out += head;
                line.remove_prefix(1);
            }
        out += std::string(line) + "\n";
    }
    return out;
}

// What every configuration request of the VRF "default" starts with.
const char kVrf[] = "/Tarvex-QV-ip-domain-cfg:ip-domain\n"
                    "/Tarvex-QV-ip-domain-cfg:ip-domain/vrfs\n"
                    "V\n"
                    "V/vrf-name = \"default\"\n";

using Case = test::Walk;

class DnsToNative : public ::testing::TestWithParam<Case> {};

TEST_P(DnsToNative, Output) {
    const Case &c = GetParam();
    // Not expect_walk: a read of a server by its key leaves its tag in error_tag.
    Request r(c.kind);
    ASSERT_EQ(r.run(kSystem, test::oc_system(c.input)), YFW_SUCCESS);
    EXPECT_EQ(r.paths(), expand(c.output));
    r.expect_state_restored();
}

std::string vrf(std::string_view rest) {
    return kVrf + std::string(rest);
}
const std::string kList = "V/lists/list[order='0'][list-name='a.example']";
const std::string kServer4 = "V/servers/server[order='0'][server-address='192.0.2.53']";
const std::string kServer6 = "V/servers/server[order='0'][server-address='2001:db8::53']";
const std::string kHost4 = "V/ipv4-hosts/ipv4-host[host-name='h']";
const std::string kHost6 = "V/ipv6-hosts/ipv6-host[host-name='h']";

INSTANTIATE_TEST_SUITE_P(
    DomainAndSearch, DnsToNative,
    ::testing::Values(
        Case{"domain_name_merge", KIND_EDIT_A,
             "<config><domain-name>example.net</domain-name></config>",
             vrf("V/name = \"example.net\"\n")},
        Case{"domain_name_delete_keeps_its_value", KIND_EDIT_A,
             "<config><domain-name nc:operation=\"delete\">old.net</domain-name></config>",
             vrf("V/name = \"old.net\" @delete\n")},
        Case{"domain_name_get_asks_the_configuration", KIND_GET, "<config><domain-name/></config>",
             vrf("V/name\n")},
        Case{"two_search_values_two_entries_of_order_0", KIND_EDIT_A,
             "<dns><config><search>a.example</search><search>b.example</search></config></dns>",
             vrf("V/lists\n" + kList + "\n" + kList + "/order = \"0\"\n" + kList +
                 "/list-name = \"a.example\"\n"
                 "V/lists/list[order='0'][list-name='b.example']\n"
                 "V/lists/list[order='0'][list-name='b.example']/order = \"0\"\n"
                 "V/lists/list[order='0'][list-name='b.example']/list-name = \"b.example\"\n")},
        Case{"search_delete_names_its_entry", KIND_EDIT_A,
             "<dns><config><search nc:operation=\"delete\">a.example</search></config></dns>",
             vrf("V/lists\n" + kList + " @delete\n" + kList + "/order = \"0\" @delete\n" + kList +
                 "/list-name = \"a.example\" @delete\n")},
        Case{"bare_config_delete_takes_every_search_domain", KIND_EDIT_A,
             "<dns><config nc:operation=\"delete\"/></dns>", vrf("V/lists @remove\n")},
        Case{"search_get_config_reads_the_lists", KIND_GET_CONFIG,
             "<dns><config><search/></config></dns>", vrf("V/lists\n")},
        Case{"search_get_asks_only_for_the_private_dns", KIND_GET,
             "<dns><config><search/></config></dns>", "P\nP/system\nP/system/dns\n"}),
    test::case_name);

INSTANTIATE_TEST_SUITE_P(
    Servers, DnsToNative,
    ::testing::Values(
        Case{"ipv4_and_ipv6_servers", KIND_EDIT_A,
             "<dns><servers><server><address>192.0.2.53</address><config><address>192.0.2.53"
             "</address></config></server><server><address>2001:db8::53</address></server>"
             "</servers></dns>",
             vrf("V/servers\n" + kServer4 + "\n" + kServer4 + "/server-address = \"192.0.2.53\"\n" +
                 kServer4 + "/order = \"0\"\n" + kServer6 + "\n" + kServer6 +
                 "/server-address = \"2001:db8::53\"\n" + kServer6 + "/order = \"0\"\n")},
        Case{"server_get_config_reads_the_list", KIND_GET_CONFIG,
             "<dns><servers><server><address>192.0.2.53</address></server></servers></dns>",
             vrf("V/servers\nV/servers/server\n")},
        Case{"server_get_reads_the_private_dns", KIND_GET,
             "<dns><servers><server><address>192.0.2.53</address></server></servers></dns>",
             "P\nP/system\nP/system/dns\nP/system/dns/servers\nP/system/dns/servers/server\n"
             "P/system/dns/servers/server/address = \"192.0.2.53\"\n"
             "D\nD/system\nD/system/dns\nD/system/dns/servers\nD/system/dns/servers/server\n"
             "D/system/dns/servers/server/state\nD/system/dns/servers/server/state/address\n"
             "D/system/dns/servers/server/state/port\n"}),
    test::case_name);

INSTANTIATE_TEST_SUITE_P(
    HostEntries, DnsToNative,
    ::testing::Values(
        Case{"ipv4_only_two_addresses", KIND_EDIT_A,
             "<dns><host-entries><host-entry><hostname>h</hostname><config><hostname>h</hostname>"
             "<ipv4-address>192.0.2.1</ipv4-address><ipv4-address>192.0.2.2</ipv4-address>"
             "</config></host-entry></host-entries></dns>",
             vrf("V/ipv4-hosts\n" + kHost4 + "\n" + kHost4 + "/host-name = \"h\"\n" + kHost4 +
                 "/address = \"192.0.2.1\"\n" + kHost4 + "/address = \"192.0.2.2\"\n")},
        Case{"both_families", KIND_EDIT_A,
             "<dns><host-entries><host-entry><hostname>h</hostname><config><hostname>h</hostname>"
             "<alias>x</alias><ipv6-address>2001:db8::1</ipv6-address>"
             "<ipv4-address>192.0.2.1</ipv4-address></config></host-entry></host-entries></dns>",
             vrf("V/ipv6-hosts\n" + kHost6 + "\n" + kHost6 + "/host-name = \"h\"\n" + kHost6 +
                 "/address = \"2001:db8::1\"\nV/ipv4-hosts\n" + kHost4 + "\n" + kHost4 +
                 "/host-name = \"h\"\n" + kHost4 + "/address = \"192.0.2.1\"\n")},
        Case{"key_alone_names_both_families", KIND_EDIT_A,
             "<dns><host-entries><host-entry><hostname>h</hostname></host-entry></host-entries></"
             "dns>",
             vrf("V/ipv4-hosts\n" + kHost4 + "\n" + kHost4 + "/host-name = \"h\"\nV/ipv6-hosts\n" +
                 kHost6 + "\n" + kHost6 + "/host-name = \"h\"\n")},
        // The last child has no children: both entries are made, and the key,
        // walked after config cleared the flag, names both.
        Case{"key_after_config", KIND_EDIT_A,
             "<dns><host-entries><host-entry><config><hostname>h</hostname>"
             "<ipv4-address>192.0.2.1</ipv4-address></config><hostname>h</hostname>"
             "</host-entry></host-entries></dns>",
             vrf("V/ipv4-hosts\n" + kHost4 + "\n" + kHost4 + "/host-name = \"h\"\n" + kHost4 +
                 "/address = \"192.0.2.1\"\nV/ipv6-hosts\n" + kHost6 + "\n" + kHost6 +
                 "/host-name = \"h\"\n")},
        // The first entry leaves its IPv4 flag set; the second entry's name
        // goes to the IPv4 entry alone.
        Case{"entry_without_name_carries_its_flag", KIND_EDIT_A,
             "<dns><host-entries><host-entry><hostname>a</hostname><config>"
             "<ipv4-address>192.0.2.1</ipv4-address></config></host-entry><host-entry>"
             "<hostname>b</hostname><config><hostname>b</hostname></config></host-entry>"
             "</host-entries></dns>",
             vrf("V/ipv4-hosts\nV/ipv4-hosts/ipv4-host[host-name='b']\n"
                 "V/ipv4-hosts/ipv4-host[host-name='b']/address = \"192.0.2.1\"\n"
                 "V/ipv4-hosts/ipv4-host[host-name='b']/host-name = \"b\"\n")},
        Case{"entry_delete_by_key", KIND_EDIT_A,
             "<dns><host-entries><host-entry nc:operation=\"delete\"><hostname>h</hostname>"
             "</host-entry></host-entries></dns>",
             vrf("V/ipv4-hosts\n" + kHost4 + " @delete\n" + kHost4 +
                 "/host-name = \"h\" @delete\n" + kHost4 + "/address @remove\nV/ipv6-hosts\n" +
                 kHost6 + " @delete\n" + kHost6 + "/host-name = \"h\" @delete\n" + kHost6 +
                 "/address @remove\n")}),
    test::case_name);

INSTANTIATE_TEST_SUITE_P(
    ContainerDeletes, DnsToNative,
    ::testing::Values(Case{"dns_takes_all_of_ip_domain", KIND_EDIT_A,
                           "<dns nc:operation=\"delete\"/>",
                           "/Tarvex-QV-ip-domain-cfg:ip-domain @delete\n"},
                      Case{"servers_of_the_default_vrf", KIND_EDIT_A,
                           "<dns><servers nc:operation=\"delete\"/></dns>",
                           vrf("V/servers @delete\n")},
                      Case{"host_entries_of_both_families", KIND_EDIT_A,
                           "<dns><host-entries nc:operation=\"delete\"/></dns>",
                           vrf("V/ipv4-hosts = \"\" @delete\nV/ipv6-hosts = \"\" @delete\n")},
                      Case{"bare_servers_merge_makes_the_vrf", KIND_EDIT_A,
                           "<dns><servers nc:operation=\"merge\"/></dns>", kVrf}),
    test::case_name);

struct Refused {
    const char *name;
    const char *request;
    test::Refusal refusal;
    friend void PrintTo(const Refused &c, std::ostream *os) { *os << c.name; }
};

class DnsRefusals : public ::testing::TestWithParam<Refused> {};

TEST_P(DnsRefusals, Edit) {
    const Refused &c = GetParam();
    Request r(KIND_EDIT_A);
    test::expect_refused(r, r.run(kSystem, test::oc_system(c.request)), c.refusal);
}

const std::string kServerPath =
    "/openconfig-system:system/dns/servers/server[address='192.0.2.53']";

INSTANTIATE_TEST_SUITE_P(
    Edits, DnsRefusals,
    ::testing::Values(
        Refused{"server_port",
                "<dns><servers><server><address>192.0.2.53</address><config><port>53"
                "</port></config></server></servers></dns>",
                {YFW_ERR_UNSUPPORTED_TAG, "port", kServerPath + "/config"}},
        Refused{"host_key_with_its_own_delete",
                "<dns><host-entries><host-entry><hostname nc:operation=\"delete\">h</hostname>"
                "</host-entry></host-entries></dns>",
                {YFW_ERR_KEY_DELETE, "",
                 "/openconfig-system:system/dns/host-entries/host-entry[hostname='h']",
                 "The key node should not have delete operation."}}),
    test::case_name);

// ---- Native answers -----------------------------------------------------------------------------

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

const std::string kHostOc = "O/dns/host-entries/host-entry[hostname='h']";
const std::string kServerOc = "O/dns/servers/server[address='192.0.2.53']";

// Every VRF lands in one view; the config leaves of a host obey oper_only,
// and the rest of the configuration is written whatever is asked.
TEST(DnsAnswers, ConfigurationOfEveryVrfWithAndWithoutOperOnly) {
    const std::string common = "O\nO/config\nO/config/domain-name = \"example.net\"\nO/dns\n"
                               "O/dns/config\nO/dns/config/search = \"a.example\"\n"
                               "O/dns/host-entries\n" +
                               under(kHostOc, {"", "/hostname = \"h\""});
    const std::string servers =
        "O/dns/servers\n" + under(kServerOc, {"", "/address = \"192.0.2.53\"", "/config",
                                              "/config/address = \"192.0.2.53\""});
    test::expect_walk(kIpDomain, KIND_GET_CONFIG, kConfigAnswer,
                      expand(common +
                             under(kHostOc, {"/config", "/config/hostname = \"h\"",
                                             "/config/ipv4-address = \"192.0.2.1\"",
                                             "/config/ipv4-address = \"192.0.2.2\"",
                                             "/config/ipv6-address = \"2001:db8::1\""}) +
                             servers));

    test::expect_walk(kIpDomain, KIND_GET, kConfigAnswer, expand(common + servers), true);
}

TEST(DnsAnswers, OperationalTreeInGet) {
    Request r(KIND_GET, /*oper_only=*/true);
    ASSERT_EQ(r.run(kOcDns, kOperAnswer), YFW_SUCCESS);
    EXPECT_EQ(r.paths(),
              expand("O\nO/state\nO/state/domain-name = \"example.net\"\nO/dns\n"
                     "O/dns/state\nO/dns/servers\n" +
                     under(kServerOc, {"", "/address = \"192.0.2.53\"", "/state",
                                       "/state/address = \"192.0.2.53\"", "/state/port = \"53\""}) +
                     "O/dns/host-entries\n" +
                     under(kHostOc, {"", "/hostname = \"h\"", "/state", "/state/hostname = \"h\"",
                                     "/state/ipv4-address = \"192.0.2.1\"",
                                     "/state/ipv4-address = \"192.0.2.2\""})));
    r.expect_state_restored();
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
