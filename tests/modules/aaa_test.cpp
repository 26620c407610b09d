// AAA both ways: method lists and events of Tarvex-QV-aaa-lib-cfg, local users
// of Tarvex-QV-aaa-locald-cfg, TACACS server groups of
// Tarvex-QV-aaa-tacacs-cfg, and the server figures of the private AAA module.
#include "harness.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::chain;
using test::Request;
using test::under;

constexpr auto kSystem = &ymap_oq_ocsystem_openconfigsystem_lvla_system;
constexpr auto kAaaCfg = &ymap_qo_ocsystem_tarvexqvaaalibcfg_lvla_aaa;
constexpr auto kAaaOper = &ymap_qo_ocsystem_tarvexqvprivateocsystemaaatelemetryoper_lvla_ocaaa;

const std::string kLib = "/Tarvex-QV-aaa-lib-cfg:aaa";
const std::string kUsers = kLib + "/Tarvex-QV-aaa-locald-cfg:usernames";
const std::string kGroups = kLib + "/Tarvex-QV-aaa-locald-cfg:server-groups";
const std::string kTacacsGroups = kGroups + "/Tarvex-QV-aaa-tacacs-cfg:tacacs-server-groups";
const std::string kOc = "/openconfig-system:system";
const std::string kOcAaa = kOc + "/aaa";

std::string entry(std::string_view list, std::string_view type) {
    return kLib + "/" + std::string(list) + "s/" + std::string(list) + "[type='" +
           std::string(type) + "'][listname='default']";
}
std::string user(std::string_view name) {
    return kUsers + "/username[ordering-index='0'][name='" + std::string(name) + "']";
}
std::string group(std::string_view name) {
    return kTacacsGroups + "/tacacs-server-group[server-group-name='" + std::string(name) + "']";
}
std::string pserver(std::string_view group_name, std::string_view address, std::string_view port) {
    return group(group_name) + "/private-servers/private-server[ip-address='" +
           std::string(address) + "'][port-number='" + std::string(port) + "']";
}
std::string oc_user(std::string_view name) {
    return kOcAaa + "/authentication/users/user[username='" + std::string(name) + "']";
}
std::string oc_group(std::string_view name) {
    return kOcAaa + "/server-groups/server-group[name='" + std::string(name) + "']";
}
std::string oc_server(std::string_view group_name, std::string_view address) {
    return oc_group(group_name) + "/servers/server[address='" + std::string(address) + "']";
}

std::string aaa(std::string_view body) {
    return test::oc_system("<aaa>" + std::string(body) + "</aaa>");
}
const std::string kLocaldNs = test::native_ns("Tarvex-QV-aaa-locald-cfg");
const std::string kTacacsNs = test::native_ns("Tarvex-QV-aaa-tacacs-cfg");
std::string native(std::string_view body) {
    return test::native("Tarvex-QV-aaa-lib-cfg", "aaa", body);
}
std::string native_users(std::string_view body) {
    return native("<usernames xmlns=\"" + kLocaldNs + "\">" + std::string(body) + "</usernames>");
}
std::string native_groups(std::string_view body) {
    return native("<server-groups xmlns=\"" + kLocaldNs + "\"><tacacs-server-groups xmlns=\"" +
                  kTacacsNs + "\">" + std::string(body) +
                  "</tacacs-server-groups></server-groups>");
}

// One walk and its whole output; it succeeds and leaves no refusal behind.
struct Case {
    const char *name;
    uint32_t kind;
    bool oper_only;
    yfw_map_walker_fn walker;
    std::string input;
    std::string output;
    // A refusal that a walk-all pass drops keeps its tag for the answer.
    std::string dropped_tag = "";
    friend void PrintTo(const Case &c, std::ostream *os) { *os << c.name; }
};

class AaaWalk : public ::testing::TestWithParam<Case> {};

TEST_P(AaaWalk, Output) {
    const Case &c = GetParam();
    Request r(c.kind, c.oper_only);
    ASSERT_EQ(r.run(c.walker, c.input), YFW_SUCCESS);
    EXPECT_EQ(r.paths(), c.output);
    EXPECT_EQ(r.error_tag(), c.dropped_tag);
    r.expect_state_restored();
}

using test::case_name;
using test::Refused;

class AaaRefusal : public ::testing::TestWithParam<Refused> {};

TEST_P(AaaRefusal, Request) {
    const Refused &c = GetParam();
    Request r(c.kind);
    test::expect_refused(r, r.run(kSystem, c.request), c.refusal);
}

// ---- Methods and events ---------------------------------------------------------------

const std::string kAuthen = entry("authentication", "login");
const std::string kAuthz = entry("authorization", "commands");
const std::string kAcct = entry("accounting", "exec");
const std::string kLogin = "openconfig-aaa-types:AAA_ACCOUNTING_EVENT_LOGIN";
const std::string kAcctHead = kLib + "/accountings\n" + kAcct + "\n" + kAcct +
                              "/type = \"exec\"\n" + kAcct + "/listname = \"default\"\n";

INSTANTIATE_TEST_SUITE_P(
    Methods, AaaWalk,
    ::testing::Values(
        // Identities with or without their module prefix; a word the companion
        // does not know names a server group.
        Case{"methods_fill_numbered_slots", KIND_EDIT_A, false, kSystem,
             aaa("<authentication><config><authentication-method>TACACS_ALL</authentication-method>"
                 "<authentication-method>openconfig-aaa-types:LOCAL</authentication-method>"
                 "</config></authentication><authorization><config><authorization-method>ops"
                 "</authorization-method></config></authorization>"),
             kLib + "\n" + kLib + "/authentications\n" +
                 under(kAuthen, {"", "/type = \"login\"", "/listname = \"default\"",
                                 "/method1 = \"tacacs\"", "/method2 = \"local\""}) +
                 kLib + "/authorizations\n" +
                 under(kAuthz, {"", "/type = \"commands\"", "/listname = \"default\"",
                                "/server-group-name1 = \"ops\""})},
        Case{"bare_delete_of_a_service_deletes_its_native_container", KIND_EDIT_A, false, kSystem,
             aaa("<authorization nc:operation=\"delete\"/>"),
             kLib + "\n" + kLib + "/authorizations @delete\n" +
                 under(kAuthz, {"", "/type = \"commands\"", "/listname = \"default\"",
                                "/method1 @remove", "/server-group-name1 @remove",
                                "/method2 @remove", "/server-group-name2 @remove",
                                "/method3 @remove", "/server-group-name3 @remove",
                                "/method4 @remove", "/server-group-name4 @remove"})},
        Case{"events_become_the_type_of_the_services_entry", KIND_EDIT_A, false, kSystem,
             aaa("<accounting><events><event><event-type>AAA_ACCOUNTING_EVENT_LOGIN</event-type>"
                 "<config><event-type>AAA_ACCOUNTING_EVENT_LOGIN</event-type><record>STOP"
                 "</record></config></event></events></accounting>"),
             kLib + "\n" + kAcctHead + kAcct + "/type-qv = \"stop-only\"\n"},
        Case{"empty_native_service_is_an_empty_container", KIND_GET_CONFIG, false, kAaaCfg,
             native("<authentications/>"),
             kOc + "\n" + kOcAaa + "\n" + kOcAaa + "/authentication\n"},
        // Every numbered leaf answers the whole list in the order of the numbers.
        Case{"native_slots_in_number_order", KIND_GET_CONFIG, false, kAaaCfg,
             native("<accountings><accounting><type>exec</type><listname>default</listname>"
                    "<server-group-name2>ops</server-group-name2><method1>tacacs</method1>"
                    "<type-qv>start-stop</type-qv></accounting></accountings>"),
             kOc + "\n" + kOcAaa + "\n" + kOcAaa + "/accounting\n" + kOcAaa +
                 "/accounting/events\n" +
                 under(kOcAaa + "/accounting/events/event[event-type='" + kLogin + "']",
                       {"", "/event-type = \"" + kLogin + "\"", "/config",
                        "/config/event-type = \"" + kLogin + "\"",
                        "/config/record = \"START_STOP\""}) +
                 under(kOcAaa + "/accounting/config",
                       {"", "/accounting-method = \"openconfig-aaa-types:TACACS_ALL\"",
                        "/accounting-method = \"ops\""})},
        // Native subtrees of no counterpart, in each module of the tree.
        Case{"native_only_subtrees_are_dropped", KIND_GET_CONFIG, false, kAaaCfg,
             native("<banner><banner-text>hi</banner-text></banner><accounting-update/>"
                    "<usergroups xmlns=\"" +
                    kLocaldNs +
                    "\"><usergroup><name>g</name></usergroup></usergroups><tacacs xmlns=\"" +
                    kTacacsNs +
                    "\"><key><secret7>x</secret7></key><hosts><host><ip-address>192.0.2.1"
                    "</ip-address><port-number>49</port-number></host></hosts></tacacs>"),
             ""}),
    case_name);

// ---- Local users ---------------------------------------------------------------------

const std::string kBob = user("bob");
const std::string kOcBob = oc_user("bob");
const std::string kSysadmin =
    "/usergroup-under-usernames/usergroup-under-username[name='sysadmin']";
const std::string kGroupEntry = "/usergroup-under-usernames/usergroup-under-username";
const std::string kOcUsersHead = chain(kOcAaa + "/authentication/users");
const std::string kUsersHead = kLib + "\n" + kLib + "/authentications\n" + kUsers + "\n";
const std::string kBobKeys = under(kBob, {"", "/ordering-index = \"0\"", "/name = \"bob\""});
std::string users(std::string_view body) {
    return aaa("<authentication><users>" + std::string(body) + "</users></authentication>");
}

INSTANTIATE_TEST_SUITE_P(
    Users, AaaWalk,
    ::testing::Values(
        // Plain and hashed password in one edit both act.
        Case{"user_edit", KIND_EDIT_A, false, kSystem,
             users("<user><username>bob</username><config><username>bob</username><password>p1"
                   "</password><password-hashed>$1$xyz</password-hashed><role>SYSTEM_ROLE_ADMIN"
                   "</role></config></user>"),
             kUsersHead + kBobKeys +
                 under(kBob, {"/password = \"p1\"", "/secret", "/secret/type = \"5\"",
                              "/secret/secret5 = \"$1$xyz\"", "/usergroup-under-usernames",
                              kSysadmin, kSysadmin + "/name = \"sysadmin\""})},
        Case{"replace_of_a_users_config", KIND_EDIT_A, false, kSystem,
             users("<user><username>bob</username><config nc:operation=\"replace\"><username>bob"
                   "</username><password>p2</password></config></user>"),
             kUsersHead + under(kBob, {"", "/ordering-index = \"0\"", "/name = \"bob\" @merge",
                                       "/password = \"p2\" @merge", "/secret @remove",
                                       "/usergroup-under-usernames", kGroupEntry + " @remove",
                                       kGroupEntry + "/name"}),
             "config"},
        Case{"delete_of_a_user_by_key_alone", KIND_EDIT_A, false, kSystem,
             users("<user nc:operation=\"delete\"><username>bob</username></user>"),
             kUsersHead + under(kBob, {" @delete", "/ordering-index = \"0\" @delete",
                                       "/name = \"bob\" @remove", "/password @remove",
                                       "/secret @remove", "/usergroup-under-usernames",
                                       kGroupEntry + " @remove", kGroupEntry + "/name"}),
             "user"},
        Case{"native_user_to_openconfig", KIND_GET_CONFIG, false, kAaaCfg,
             native_users("<username><ordering-index>4</ordering-index><name>bob</name>"
                          "<password>p1</password><secret><type>5</type><secret5>$1$xyz"
                          "</secret5></secret><usergroup-under-usernames>"
                          "<usergroup-under-username><name>sysadmin</name>"
                          "</usergroup-under-username></usergroup-under-usernames></username>"
                          "<password-policies><password-policy><name>p</name>"
                          "</password-policy></password-policies>"),
             kOcUsersHead +
                 under(kOcBob, {"", "/username = \"bob\"", "/config", "/config/username = \"bob\"",
                                "/config/password = \"p1\"", "/config/password-hashed = \"$1$xyz\"",
                                "/config/role = \"openconfig-aaa-types:SYSTEM_ROLE_ADMIN\""})},
        Case{"native_password_is_configuration_oper_only_drops_it", KIND_GET, true, kAaaCfg,
             native_users("<username><ordering-index>0</ordering-index><name>bob</name>"
                          "<password>p1</password></username>"),
             kOcUsersHead + under(kOcBob, {"", "/username = \"bob\""})}),
    case_name);

// ---- TACACS server groups ---------------------------------------------------------------

const std::string kServer = pserver("ops", "192.0.2.10", "49");
// A server named by address alone, as a request without its port names it.
const std::string kServerByAddress =
    group("ops") + "/private-servers/private-server[ip-address='192.0.2.10']";
const std::string kGroupsHead =
    kLib + "\n" + kGroups + "\n" + kTacacsGroups + "\n" +
    under(group("ops"), {"", "/server-group-name = \"ops\"", "/private-servers"});
const std::string kOcGroupHead = chain(oc_group("ops")) + oc_group("ops") + "/name = \"ops\"\n";
std::string groups(std::string_view body) {
    return aaa("<server-groups>" + std::string(body) + "</server-groups>");
}
const std::string kOcServer = oc_server("ops", "192.0.2.10");

INSTANTIATE_TEST_SUITE_P(
    ServerGroups, AaaWalk,
    ::testing::Values(
        Case{"group_and_server_edit", KIND_EDIT_A, false, kSystem,
             groups("<server-group><name>ops</name><config><name>ops</name><type>TACACS</type>"
                    "</config><servers><server><address>192.0.2.10</address><config><address>"
                    "192.0.2.10</address><timeout>5</timeout></config><tacacs><config><port>49"
                    "</port><secret-key>k</secret-key></config></tacacs></server></servers>"
                    "</server-group>"),
             kGroupsHead + under(kServer, {"", "/ip-address = \"192.0.2.10\"", "/timeout = \"5\"",
                                           "/port-number = \"49\"", "/key",
                                           "/key/encrypt-type = \"0\"", "/key/secret7 = \"k\""})},
        Case{"delete_of_a_servers_timeout", KIND_EDIT_A, false, kSystem,
             groups("<server-group><name>ops</name><servers><server><address>192.0.2.10"
                    "</address><config><timeout nc:operation=\"delete\"/></config></server>"
                    "</servers></server-group>"),
             kGroupsHead +
                 under(kServerByAddress, {"", "/ip-address = \"192.0.2.10\"", "/timeout @delete"})},
        // The one RADIUS counter that is not refused asks the CPU tree.
        Case{"radius_timeout_counter_reads_the_cpu_index", KIND_GET, false, kSystem,
             groups("<server-group><name>ops</name><servers><server><address>192.0.2.10"
                    "</address><radius><state><counters><timeout-access-requests/></counters>"
                    "</state></radius></server></servers></server-group>"),
             kGroupsHead + under(kServerByAddress, {"", "/ip-address = \"192.0.2.10\""}) +
                 under("/Tarvex-QV-PRIVATE-ocsystem-cpu-oper:ocsystemcpu",
                       {"", "/system", "/system/cpuses", "/system/cpuses/cpus",
                        "/system/cpuses/cpus/index"})},
        Case{"native_groups_to_openconfig", KIND_GET_CONFIG, false, kAaaCfg,
             native_groups("<tacacs-server-group><server-group-name>ops</server-group-name>"
                           "<servers><server><ip-address>192.0.2.99</ip-address></server>"
                           "</servers><private-servers><private-server><ip-address>192.0.2.10"
                           "</ip-address><port-number>49</port-number><ordering-index>3"
                           "</ordering-index><key><encrypt-type>7</encrypt-type><secret7>enc"
                           "</secret7></key><timeout>5</timeout></private-server>"
                           "</private-servers></tacacs-server-group>"),
             kOcGroupHead +
                 under(oc_group("ops"), {"/config", "/config/name = \"ops\"",
                                         "/config/type = \"openconfig-aaa:TACACS\"", "/servers"}) +
                 under(kOcServer, {"", "/address = \"192.0.2.10\"", "/config",
                                   "/config/address = \"192.0.2.10\"", "/config/timeout = \"5\"",
                                   "/tacacs", "/tacacs/config", "/tacacs/config/port = \"49\"",
                                   "/tacacs/config/secret-key = \"enc\""})},
        Case{"native_servers_oper_only_drop_the_timeout", KIND_GET, true, kAaaCfg,
             native_groups("<tacacs-server-group><server-group-name>ops</server-group-name>"
                           "<private-servers><private-server><ip-address>192.0.2.10"
                           "</ip-address><port-number>49</port-number><timeout>5</timeout>"
                           "</private-server></private-servers></tacacs-server-group>"),
             kOcGroupHead + oc_group("ops") + "/servers\n" +
                 under(kOcServer, {"", "/address = \"192.0.2.10\""})}),
    case_name);

// ---- Server state ---------------------------------------------------------------------

std::string figures(std::string_view groups_xml) {
    return test::native("Tarvex-QV-PRIVATE-ocsystem-aaa-telemetry-oper", "ocaaa",
                        "<system><aaa><server-groups>" + std::string(groups_xml) +
                            "</server-groups></aaa></system>");
}
std::string figure_group(std::string_view name, std::string_view address, std::string_view state) {
    return "<server-group><name>" + std::string(name) + "</name><servers><server><address>" +
           std::string(address) + "</address>" + std::string(state) +
           "</server></servers></server-group>";
}

// A group with one server at 192.0.2.10 that has sent `sent` messages.
std::string figures_of(std::string_view name, std::string_view sent) {
    const std::string server = oc_server(name, "192.0.2.10");
    return under(oc_group(name), {"", "/name = \"" + std::string(name) + "\"", "/servers"}) +
           under(server, {"", "/address = \"192.0.2.10\"", "/state",
                          "/state/messages-sent = \"" + std::string(sent) + "\""});
}

INSTANTIATE_TEST_SUITE_P(
    State, AaaWalk,
    ::testing::Values(
        // Zero is copied like any figure, the secret as it stands; a figure the
        // private module does not have is skipped.
        Case{
            "figures_are_copied_as_text", KIND_GET, false, kAaaOper,
            figures(figure_group("ops", "192.0.2.10",
                                 "<state><connection-opens>0</connection-opens>"
                                 "<connection-timeouts>4</connection-timeouts><messages-sent>9"
                                 "</messages-sent></state><tacacs><state><port>49</port>"
                                 "<secret-key>s</secret-key></state></tacacs>")),
            kOcGroupHead + oc_group("ops") + "/servers\n" +
                under(kOcServer,
                      {"", "/address = \"192.0.2.10\"", "/state", "/state/connection-opens = \"0\"",
                       "/state/messages-sent = \"9\"", "/tacacs", "/tacacs/state",
                       "/tacacs/state/port = \"49\"", "/tacacs/state/secret-key = \"s\""})},
        Case{"same_address_in_two_groups_stays_apart", KIND_GET, false, kAaaOper,
             figures(figure_group("a", "192.0.2.10",
                                  "<state><messages-sent>1</messages-sent></state>") +
                     figure_group("b", "192.0.2.10",
                                  "<state><messages-sent>2</messages-sent></state>")),
             chain(kOcAaa + "/server-groups") + figures_of("a", "1") + figures_of("b", "2")}),
    case_name);

// ---- Refusals ---------------------------------------------------------------------------

const std::string kOcOpsServer = oc_server("ops", "192.0.2.10");
std::string bob_config(std::string_view body) {
    return users("<user><username>bob</username><config>" + std::string(body) + "</config></user>");
}
std::string ops_server(std::string_view body) {
    return groups("<server-group><name>ops</name><servers><server><address>192.0.2.10</address>" +
                  std::string(body) + "</server></servers></server-group>");
}

INSTANTIATE_TEST_SUITE_P(
    Edits, AaaRefusal,
    ::testing::Values(
        Refused{"fifth_method",
                KIND_EDIT_A,
                aaa("<authentication><config><authentication-method>a</authentication-method>"
                    "<authentication-method>b</authentication-method><authentication-method>c"
                    "</authentication-method><authentication-method>d</authentication-method>"
                    "<authentication-method>e</authentication-method></config>"
                    "</authentication>"),
                {YFW_ERR_BAD_VALUE, "", "", "At most four authentication methods are supported"}},
        Refused{"state_of_an_event_in_an_edit",
                KIND_EDIT_A,
                aaa("<accounting><events><event><event-type>AAA_ACCOUNTING_EVENT_LOGIN"
                    "</event-type><state><record>STOP</record></state></event></events>"
                    "</accounting>"),
                {YFW_ERR_UNSUPPORTED_TAG, "state",
                 kOcAaa + "/accounting/events/event[event-type='AAA_ACCOUNTING_EVENT_LOGIN']"}},
        Refused{"ssh_key",
                KIND_EDIT_A,
                bob_config("<ssh-key>ssh-rsa AAAA</ssh-key>"),
                {YFW_ERR_UNSUPPORTED_TAG, "ssh-key", kOcBob + "/config"}},
        Refused{"admin_password",
                KIND_EDIT_A,
                aaa("<authentication><admin-user><config><admin-password>x</admin-password>"
                    "</config></admin-user></authentication>"),
                {YFW_ERR_UNSUPPORTED_TAG, "admin-password",
                 kOcAaa + "/authentication/admin-user/config"}},
        Refused{"radius_port",
                KIND_EDIT_A,
                ops_server("<radius><config><auth-port>1812</auth-port></config></radius>"),
                {YFW_ERR_UNSUPPORTED_TAG, "auth-port", kOcOpsServer + "/radius/config"}},
        Refused{"hashed_tacacs_secret",
                KIND_EDIT_A,
                ops_server("<tacacs><config><secret-key-hashed>$1$x</secret-key-hashed>"
                           "</config></tacacs>"),
                {YFW_ERR_UNSUPPORTED_TAG, "secret-key-hashed", kOcOpsServer + "/tacacs/config"}},
        Refused{"server_name",
                KIND_EDIT_A,
                ops_server("<config><name>n</name></config>"),
                {YFW_ERR_UNSUPPORTED_TAG, "name", kOcOpsServer + "/config"}}),
    case_name);

// A state leaf named in a read is refused; the walk-all pass of a bare read
// drops the same refusal.
INSTANTIATE_TEST_SUITE_P(
    Reads, AaaRefusal,
    ::testing::Values(Refused{"user_role_state",
                              KIND_GET,
                              users("<user><username>bob</username><state><role/></state></user>"),
                              {YFW_ERR_UNSUPPORTED_TAG, "role", kOcBob + "/state"}},
                      Refused{"authentication_method_state",
                              KIND_GET,
                              aaa("<authentication><state><authentication-method/></state>"
                                  "</authentication>"),
                              {YFW_ERR_UNSUPPORTED_TAG, "authentication-method",
                               kOcAaa + "/authentication/state"}}),
    case_name);

} // namespace
