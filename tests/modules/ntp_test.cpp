// NTP both ways: peers, keys and enable states of Tarvex-QV-ip-ntp-cfg against
// /system/ntp, and the server figures of the private NTP module.
#include "harness.hpp"
#include "ymap_ocsystem_modules.h"

extern "C" {
const char *qv_oc_ntp_version_data_fn(const tidl_yfw_datatree *node);
const char *qv_oc_peer_to_assoc_type(const tidl_yfw_datatree *node);
const char *qv_oc_ntp_iburst_data_fn(const tidl_yfw_datatree *node);
const char *qv_oc_ntp_prefer_data_fn(const tidl_yfw_datatree *node);
}

namespace {

using test::case_name;
using test::Refused;
using test::Request;
using test::under;

constexpr auto kSystem = &ymap_oq_ocsystem_openconfigsystem_lvla_system;
constexpr auto kNtpCfg = &ymap_qo_ocsystem_tarvexqvipntpcfg_lvla_ntp;
constexpr auto kNtpOper = &ymap_qo_ocsystem_tarvexqvprivateocsystemntptelemetryoper_lvla_ocntp;

const std::string kOcNtp = "/openconfig-system:system/ntp";
const std::string kAnswerHead = "/openconfig-system:system\n" + kOcNtp + "\n";
const std::string kNative = "/Tarvex-QV-ip-ntp-cfg:ntp";
const std::string kVrf = kNative + "/peer-vrfs/peer-vrf[vrf-name='default']";
const std::string kEditHead = test::chain(kVrf) + kVrf + "/vrf-name = \"default\"\n";

std::string server(std::string_view address) {
    return kOcNtp + "/servers/server[address='" + std::string(address) + "']";
}
std::string key(std::string_view id) {
    return kOcNtp + "/ntp-keys/ntp-key[key-id='" + std::string(id) + "']";
}
std::string v4(std::string_view address) {
    return kVrf + "/peer-ipv4s/peer-ipv4[address-ipv4='" + std::string(address) + "']";
}

std::string native(std::string_view body) {
    return test::native("Tarvex-QV-ip-ntp-cfg", "ntp", body);
}
std::string peer(std::string_view vrf, std::string_view family, std::string_view address,
                 std::string_view type, std::string_view version) {
    const std::string f(family);
    return "<peer-vrfs><peer-vrf><vrf-name>" + std::string(vrf) + "</vrf-name><peer-" + f +
           "s><peer-" + f + "><address-" + f + ">" + std::string(address) + "</address-" + f +
           "><peer-type-" + f + "><peer-type>" + std::string(type) + "</peer-type><ntp-version>" +
           std::string(version) + "</ntp-version><iburst/></peer-type-" + f + "></peer-" + f +
           "></peer-" + f + "s></peer-vrf></peer-vrfs>";
}
std::string oc(std::string_view ntp) {
    return test::oc_system("<ntp>" + std::string(ntp) + "</ntp>");
}

using Answer = test::Walk;

// The whole output of one walk, which succeeds and leaves no refusal behind.
void expect_mapped(yfw_map_walker_fn walker, const Answer &c, const std::string &xml) {
    test::expect_walk(walker, c.kind, xml, c.output, c.oper_only);
}

// ---- Native to OpenConfig ---------------------------------------------------------

class NtpAnswer : public ::testing::TestWithParam<Answer> {};

TEST_P(NtpAnswer, Output) {
    expect_mapped(kNtpCfg, GetParam(), native(GetParam().input));
}

const std::string kV4 = server("192.0.2.1");
const std::string kV6 = server("2001:db8::1");

INSTANTIATE_TEST_SUITE_P(
    Peers, NtpAnswer,
    ::testing::Values(
        // The native iburst leaf has no branch: it never reaches the answer.
        Answer{
            "get_config_has_config_only", KIND_GET_CONFIG,
            peer("default", "ipv4", "192.0.2.1", "server", "3"),
            kAnswerHead + kOcNtp + "/servers\n" +
                under(kV4, {"", "/address = \"192.0.2.1\"", "/config",
                            "/config/address = \"192.0.2.1\"", "/config/port = \"123\"",
                            "/config/association-type = \"SERVER\"", "/config/version = \"3\""})},
        Answer{"get_has_both", KIND_GET, peer("default", "ipv4", "192.0.2.1", "peer", "4"),
               kAnswerHead + kOcNtp + "/servers\n" +
                   under(kV4, {"", "/address = \"192.0.2.1\"", "/config",
                               "/config/address = \"192.0.2.1\"", "/config/port = \"123\"",
                               "/config/association-type = \"PEER\"", "/config/version = \"4\"",
                               "/state", "/state/address = \"192.0.2.1\"", "/state/port = \"123\"",
                               "/state/association-type = \"PEER\"", "/state/version = \"4\""})},
        // The address leaves ignore oper_only; the port and peer-type leaves don't.
        Answer{"oper_only_has_state_and_the_addresses", KIND_GET,
               peer("default", "ipv4", "192.0.2.1", "server", "3"),
               kAnswerHead + kOcNtp + "/servers\n" +
                   under(kV4, {"", "/address = \"192.0.2.1\"", "/config",
                               "/config/address = \"192.0.2.1\"", "/state",
                               "/state/address = \"192.0.2.1\"", "/state/port = \"123\"",
                               "/state/association-type = \"SERVER\"", "/state/version = \"3\""}),
               true},
        // The VRF name is not looked at; conversions fall back on odd values.
        Answer{"ipv6_peer_of_another_vrf", KIND_GET_CONFIG,
               peer("mgmt", "ipv6", "2001:db8::1", "pool", "10"),
               kAnswerHead + kOcNtp + "/servers\n" +
                   under(kV6, {"", "/address = \"2001:db8::1\"", "/config",
                               "/config/address = \"2001:db8::1\"", "/config/port = \"123\"",
                               "/config/association-type = \"ERROR\"", "/config/version = \"4\""})},
        Answer{"keys_state_type_only_in_get", KIND_GET,
               "<authentication><keys><key><key-number>7</key-number>"
               "<authentication-key>s3cr3t</authentication-key></key></keys></authentication>",
               kAnswerHead + kOcNtp + "/ntp-keys\n" +
                   under(key("7"),
                         {"", "/key-id = \"7\"", "/state", "/state/key-id = \"7\"",
                          "/state/key-value = \"s3cr3t\"", "/state/key-type = \"NTP_AUTH_MD5\"",
                          "/config", "/config/key-id = \"7\"", "/config/key-value = \"s3cr3t\"",
                          "/config/key-type = \"NTP_AUTH_MD5\""})},
        // Key id reaches state outside KIND_GET_CONFIG, the key value only in KIND_GET.
        Answer{"keys_oper_only", KIND_GET,
               "<authentication><keys><key><key-number>7</key-number>"
               "<authentication-key>s3cr3t</authentication-key></key></keys></authentication>",
               kAnswerHead + kOcNtp + "/ntp-keys\n" +
                   under(key("7"),
                         {"", "/key-id = \"7\"", "/state", "/state/key-id = \"7\"",
                          "/state/key-value = \"s3cr3t\"", "/state/key-type = \"NTP_AUTH_MD5\""}),
               true},
        Answer{"enabled_is_the_mark_and_auth_the_empty_leaf", KIND_GET,
               "<authentication><enable/></authentication><max-associations>101</max-associations>",
               kAnswerHead + under(kOcNtp, {"/state", "/state/enable-ntp-auth = \"true\"",
                                            "/state/enabled = \"true\"", "/config",
                                            "/config/enable-ntp-auth = \"true\"",
                                            "/config/enabled = \"true\""})},
        Answer{"another_limit_is_disabled", KIND_GET_CONFIG,
               "<max-associations>100</max-associations>",
               kAnswerHead + under(kOcNtp, {"/config", "/config/enabled = \"false\""})},
        // Subtrees with no counterpart pass without a trace in the answer.
        Answer{"unmapped_subtrees_dropped", KIND_GET,
               "<passive/><drift><file>f</file></drift><authentication><trusted-keys>"
               "<trusted-key><key-number>1</key-number></trusted-key></trusted-keys>"
               "</authentication>",
               ""}),
    case_name);

TEST(NtpConversions, VersionAndTypeFallBackAndEmptyLeavesReadAsPresence) {
    struct Conv {
        const char *(*fn)(const tidl_yfw_datatree *);
        const char *in;
        std::string out;
    };
    for (const Conv &c :
         {Conv{qv_oc_ntp_version_data_fn, nullptr, "4"}, Conv{qv_oc_ntp_version_data_fn, "", "4"},
          Conv{qv_oc_ntp_version_data_fn, "2", "2"}, Conv{qv_oc_ntp_version_data_fn, "22", "4"},
          Conv{qv_oc_peer_to_assoc_type, nullptr, "ERROR"},
          Conv{qv_oc_peer_to_assoc_type, "server", "SERVER"},
          Conv{qv_oc_peer_to_assoc_type, "peers", "ERROR"},
          Conv{qv_oc_ntp_iburst_data_fn, nullptr, "false"},
          Conv{qv_oc_ntp_iburst_data_fn, "", "true"},
          Conv{qv_oc_ntp_prefer_data_fn, "x", "false"}}) {
        tidl_yfw_datatree node{};
        node.value = const_cast<char *>(c.in);
        EXPECT_EQ(c.fn(&node), c.out) << (c.in != nullptr ? c.in : "(null)");
    }
}

// ---- OpenConfig to native ---------------------------------------------------------

class NtpEdit : public ::testing::TestWithParam<Answer> {};

TEST_P(NtpEdit, Output) {
    expect_mapped(kSystem, GetParam(), oc(GetParam().input));
}

const std::string kV6Peer = kVrf + "/peer-ipv6s/peer-ipv6[address-ipv6='2001:db8::1']";
const std::string kType4 = v4("192.0.2.1") + "/peer-type-ipv4[peer-type='server']";

INSTANTIATE_TEST_SUITE_P(
    Requests, NtpEdit,
    ::testing::Values(
        // iburst true sets the empty leaf; prefer false removes it.
        Answer{"server_set", KIND_EDIT_A,
               "<servers><server><address>192.0.2.1</address><config><address>192.0.2.1"
               "</address><port>123</port><version>4</version><association-type>SERVER"
               "</association-type><iburst>true</iburst><prefer>false</prefer></config>"
               "</server></servers>",
               kEditHead + kVrf + "/peer-ipv4s\n" +
                   under(v4("192.0.2.1"), {"", "/address-ipv4 = \"192.0.2.1\""}) +
                   under(kType4, {"", "/ntp-version = \"4\"", "/peer-type = \"server\"",
                                  "/iburst = \"\"", "/preferred-peer @remove"})},
        Answer{"ipv6_leaf_delete", KIND_EDIT_A,
               "<servers><server><address>2001:db8::1</address><config>"
               "<version nc:operation=\"delete\"/></config></server></servers>",
               kEditHead + kVrf + "/peer-ipv6s\n" +
                   under(kV6Peer, {"", "/address-ipv6 = \"2001:db8::1\"", "/peer-type-ipv6",
                                   "/peer-type-ipv6/ntp-version @delete"})},
        // The delete of the association type takes its whole peer-type entry.
        Answer{"association_type_delete", KIND_EDIT_A,
               "<servers><server><address>192.0.2.1</address><config>"
               "<association-type nc:operation=\"delete\"/></config></server></servers>",
               kEditHead + kVrf + "/peer-ipv4s\n" +
                   under(v4("192.0.2.1"), {"", "/address-ipv4 = \"192.0.2.1\"",
                                           "/peer-type-ipv4[peer-type=''] @delete",
                                           "/peer-type-ipv4[peer-type='']/peer-type = \"\" "
                                           "@delete"})},
        Answer{"entry_delete", KIND_EDIT_A,
               "<servers><server nc:operation=\"delete\"><address>192.0.2.1</address></server>"
               "</servers>",
               kEditHead + kVrf + "/peer-ipv4s\n" +
                   under(v4("192.0.2.1"),
                         {" @delete", "/address-ipv4 = \"192.0.2.1\" @delete",
                          "/peer-type-ipv4 @remove", "/peer-type-ipv4/ntp-version @remove",
                          "/peer-type-ipv4/peer-type @remove", "/peer-type-ipv4/iburst @remove",
                          "/peer-type-ipv4/preferred-peer @remove"})},
        // The servers container named bare in a merge writes nothing.
        Answer{"empty_servers_merge_is_nothing", KIND_EDIT_A, "<servers/>", ""},
        Answer{"replace_removes_then_merges", KIND_EDIT_A,
               "<servers><server nc:operation=\"replace\"><address>192.0.2.1</address><config>"
               "<address>192.0.2.1</address><version>3</version></config></server></servers>",
               kEditHead + kVrf + "/peer-ipv4s\n" +
                   under(v4("192.0.2.1"),
                         {" @remove", "/address-ipv4 = \"192.0.2.1\" @merge",
                          "/peer-type-ipv4 @remove", "/peer-type-ipv4/ntp-version = \"3\" @merge",
                          "/peer-type-ipv4/peer-type @remove", "/peer-type-ipv4/iburst @remove",
                          "/peer-type-ipv4/preferred-peer @remove"})},
        Answer{"key_entry", KIND_EDIT_A,
               "<config><enabled>true</enabled><enable-ntp-auth>false</enable-ntp-auth></config>"
               "<ntp-keys><ntp-key><key-id>7</key-id><config><key-id>7</key-id><key-type>"
               "NTP_AUTH_MD5</key-type><key-value>s3cr3t</key-value></config></ntp-key>"
               "</ntp-keys>",
               under(kNative, {"", "/max-associations = \"101\"", "/authentication",
                               "/authentication/enable @remove", "/authentication/keys",
                               "/authentication/keys/key[key-number='7']",
                               "/authentication/keys/key[key-number='7']/key-number = \"7\"",
                               "/authentication/keys/key[key-number='7']/authentication-key = "
                               "\"s3cr3t\""})},
        // The read selects both families and the server's private entry.
        Answer{"get_state_figure", KIND_GET,
               "<servers><server><address>192.0.2.1</address><state><stratum/></state>"
               "</server></servers>",
               kEditHead + kVrf + "/peer-ipv4s\n" +
                   under(v4("192.0.2.1"), {"", "/address-ipv4 = \"192.0.2.1\""}) + kVrf +
                   "/peer-ipv6s\n" + kVrf + "/peer-ipv6s/peer-ipv6\n" +
                   under("/Tarvex-QV-PRIVATE-ocsystem-ntp-telemetry-oper:ocntp",
                         {"", "/system", "/system/ntp", "/system/ntp/servers",
                          "/system/ntp/servers/server", "/system/ntp/servers/server/state",
                          "/system/ntp/servers/server/state/stratum"})}),
    case_name);

TEST(NtpEdit, DeleteOfServersOrOfNtpTakesThePeerVrf) {
    for (const char *request : {"<servers nc:operation=\"delete\"/>", ""}) {
        Request r(KIND_EDIT_C);
        const std::string xml =
            *request != '\0' ? oc(request) : test::oc_system("<ntp nc:operation=\"delete\"/>");
        ASSERT_EQ(r.run(kSystem, xml), YFW_SUCCESS);
        const std::string out = r.paths();
        const std::string whole = *request != '\0' ? " @delete\n" : " @remove\n";
        EXPECT_NE(out.find(kVrf + whole + kVrf + "/vrf-name = \"default\"\n"), std::string::npos)
            << out;
        // With no address in reach, the delete reaches both families.
        EXPECT_NE(out.find(kVrf + "/peer-ipv4s/peer-ipv4 @remove\n"), std::string::npos) << out;
        EXPECT_NE(out.find(kVrf + "/peer-ipv6s/peer-ipv6 @remove\n"), std::string::npos) << out;
        EXPECT_EQ(r.state()->error_message, nullptr);
        r.expect_state_restored();
    }
}

class NtpRefusal : public ::testing::TestWithParam<Refused> {};

TEST_P(NtpRefusal, StatusTagAndPath) {
    const Refused &c = GetParam();
    Request r(c.kind);
    test::expect_refused(r, r.run(kSystem, oc(c.request)), c.refusal);
}

const std::string kSrvPath = kOcNtp + "/servers/server[address='192.0.2.1']";
INSTANTIATE_TEST_SUITE_P(
    Leaves, NtpRefusal,
    ::testing::Values(
        Refused{"source_address_edit",
                KIND_EDIT_A,
                "<config><ntp-source-address>192.0.2.9</ntp-source-address></config>",
                {YFW_ERR_UNSUPPORTED_TAG, "ntp-source-address", kOcNtp + "/config"}},
        Refused{"source_address_read",
                KIND_GET_CONFIG,
                "<config><ntp-source-address/></config>",
                {YFW_ERR_UNSUPPORTED_TAG, "ntp-source-address", kOcNtp + "/config"}},
        Refused{"auth_mismatch",
                KIND_GET,
                "<state><auth-mismatch/></state>",
                {YFW_ERR_UNSUPPORTED_TAG, "auth-mismatch", kOcNtp + "/state"}},
        Refused{"state_port",
                KIND_GET,
                "<servers><server><address>192.0.2.1</address><state><port/></state></server>"
                "</servers>",
                {YFW_ERR_UNSUPPORTED_TAG, "port", kSrvPath + "/state"}},
        Refused{
            "state_key_type",
            KIND_GET,
            "<ntp-keys><ntp-key><key-id>7</key-id><state><key-type/></state></ntp-key>"
            "</ntp-keys>",
            {YFW_ERR_UNSUPPORTED_TAG, "key-type", kOcNtp + "/ntp-keys/ntp-key[key-id='7']/state"}},
        Refused{"config_address_is_the_key",
                KIND_EDIT_A,
                "<servers><server><address>192.0.2.1</address><config><address>192.0.2.2"
                "</address></config></server></servers>",
                {YFW_ERR_LIST_KEY, "", "", YMAP_MSG_LEAFREF}}),
    case_name);

// ---- State --------------------------------------------------------------------

std::string figures(std::string_view address, std::string_view state) {
    return test::native("Tarvex-QV-PRIVATE-ocsystem-ntp-telemetry-oper", "ocntp",
                        "<system><ntp><servers><server><address>" + std::string(address) +
                            "</address><state>" + std::string(state) +
                            "</state></server></servers></ntp></system>");
}

TEST(NtpState, FiguresLandInTheConfiguredServerEntry) {
    Request r(KIND_GET);
    ASSERT_EQ(r.run(kNtpCfg, native(peer("default", "ipv4", "192.0.2.1", "server", "3"))),
              YFW_SUCCESS);
    ASSERT_EQ(r.run(kNtpOper,
                    figures("192.0.2.1", "<stratum>2</stratum><root-delay>15</root-delay>"
                                         "<root-dispersion>30</root-dispersion><offset>-1</offset>"
                                         "<poll-interval>64</poll-interval>")),
              YFW_SUCCESS);
    const std::string out = r.paths();
    EXPECT_NE(out.find(under(kV4, {"/state/version = \"3\"", "/state/stratum = \"2\"",
                                   "/state/root-delay = \"15\"", "/state/root-dispersion = \"30\"",
                                   "/state/offset = \"-1\"", "/state/poll-interval = \"64\""})),
              std::string::npos)
        << out;
    EXPECT_EQ(test::count_lines({out}, "servers/server[address="), 1) << out;
    r.expect_state_restored();
}

TEST(NtpState, AnUnconfiguredServerGetsItsOwnEntryAndAnEmptyStateNoLeaf) {
    Request r(KIND_GET);
    ASSERT_EQ(r.run(kNtpOper, figures("192.0.2.7", "<stratum>16</stratum>")), YFW_SUCCESS);
    ASSERT_EQ(r.run(kNtpOper, figures("192.0.2.8", "")), YFW_SUCCESS);
    const std::string seven = server("192.0.2.7");
    EXPECT_EQ(r.paths(), kAnswerHead + kOcNtp + "/servers\n" +
                             under(seven, {"", "/address = \"192.0.2.7\"", "/state",
                                           "/state/stratum = \"16\""}) +
                             under(server("192.0.2.8"), {"", "/address = \"192.0.2.8\""}));
}

// State figures cannot be written: the mapper alone adds nothing in an edit.
TEST(NtpState, FigureMapperAloneAddsNothingInAnEdit) {
    Request r(KIND_EDIT_A);
    tidl_yfw_datatree *root = r.input(oc("<servers/>"));
    EXPECT_EQ(ymap_oq_ocsystem_openconfigsystem_leaf_lvla_system_state_stratum(
                  r.ctx(), root, r.session().output()),
              YFW_SUCCESS);
    EXPECT_EQ(r.paths(), "");
}

} // namespace
