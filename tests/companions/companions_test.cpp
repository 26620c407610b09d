// The companion stand-ins called as the library's mappers call them: a leaf of
// a request, walked down to, and the exact output or refusal.
#include <algorithm>
#include <array>
#include <vector>

#include "harness.hpp"
#include "ymap_companions.h"

namespace {

using test::Request;
using NodeFn = cerrno (*)(yfw_map_ctx *, const tidl_yfw_datatree *, tidl_yfw_datatree *);

tidl_yfw_datatree *child(tidl_yfw_datatree *n, std::string_view tag) {
    for (uint32_t i = 0; n->present_subtrees && i < n->subtree_count; ++i)
        if (n->subtrees[i].tag != nullptr && n->subtrees[i].tag == tag)
            return &n->subtrees[i];
    return nullptr;
}

// The nodes from the root down `path` ("ntp/servers/server/config/port"),
// each pushed on the hierarchy as a walker would have.
std::vector<tidl_yfw_datatree *> walk_to(Request &r, tidl_yfw_datatree *root,
                                         std::string_view path) {
    std::vector<tidl_yfw_datatree *> nodes{root};
    for (size_t at = 0; at < path.size();) {
        const size_t slash = std::min(path.find('/', at), path.size());
        nodes.push_back(child(nodes.back(), path.substr(at, slash - at)));
        EXPECT_NE(nodes.back(), nullptr) << path;
        at = slash + 1;
    }
    for (tidl_yfw_datatree *n : nodes)
        yfw_map_add_to_node_hierarchy(r.ctx(), n, n->tag == std::string_view("server") ? 2 : 1);
    return nodes;
}

struct Case {
    const char *name;
    NodeFn fn;
    uint32_t kind;
    bool oper_only;
    std::string input; // a whole tree; the leaf is at `path`
    const char *path;
    cerrno status;
    std::string output;
    friend void PrintTo(const Case &c, std::ostream *os) { *os << c.name; }
};

// The leaves of a `paths` output: lines that no later line extends.
std::string leaves(const std::string &paths) {
    std::vector<std::string> lines;
    for (size_t at = 0, nl; (nl = paths.find('\n', at)) != std::string::npos; at = nl + 1)
        lines.push_back(paths.substr(at, nl - at));
    std::string out;
    for (size_t i = 0; i < lines.size(); ++i) {
        const std::string &next = i + 1 < lines.size() ? lines[i + 1] : "";
        if (!next.starts_with(lines[i] + "/") && !next.starts_with(lines[i] + "["))
            out += lines[i] + "\n";
    }
    return out;
}

const std::string kSsh = "/Tarvex-QV-crypto-ssh-cfg:ssh/server";
const std::string kVrf = kSsh + "/vrf-table/vrf[vrf-name='default']";
const std::string kOcSsh = "/openconfig-system:system/ssh-server";
const std::string kAuthen = "/Tarvex-QV-aaa-lib-cfg:aaa/authentications/"
                            "authentication[type='login'][listname='default']";
const std::string kAuthenKeys =
    kAuthen + "/type = \"login\"\n" + kAuthen + "/listname = \"default\"\n";
std::string every_slot(const std::string &rest) {
    std::string out;
    for (char n = '1'; n <= '4'; ++n) {
        out += kAuthen + "/method" + n + rest + kAuthen + "/server-group-name" + n + rest;
    }
    return out;
}
std::string ssh(std::string_view body) {
    return test::oc_system("<ssh-server><config>" + std::string(body) + "</config></ssh-server>");
}
std::string native_ssh(std::string_view body) {
    return test::native("Tarvex-QV-crypto-ssh-cfg", "ssh",
                        "<server>" + std::string(body) + "</server>");
}
std::string ntp_server(std::string_view address, std::string_view config = "") {
    return test::oc_system("<ntp><servers><server><address>" + std::string(address) +
                           "</address><config>" + std::string(config) +
                           "</config></server></servers></ntp>");
}
std::string authen(std::string_view methods) {
    return test::oc_system("<aaa><authentication><config>" + std::string(methods) +
                           "</config></authentication></aaa>");
}

class Companion : public ::testing::TestWithParam<Case> {};

TEST_P(Companion, Output) {
    const Case &c = GetParam();
    Request r(c.kind, c.oper_only);
    const auto nodes = walk_to(r, r.input(c.input), c.path);
    EXPECT_EQ(c.fn(r.ctx(), nodes.back(), r.session().output()), c.status);
    EXPECT_EQ(leaves(r.paths()), c.output);
    EXPECT_EQ(r.state()->error_message != nullptr, c.status == YFW_ERR_BAD_VALUE);
}

const char kTimeout[] = "ssh-server/config/timeout";
const char kEnable[] = "ssh-server/config/enable";
const char kMethod[] = "aaa/authentication/config/authentication-method";

INSTANTIATE_TEST_SUITE_P(
    Leaves, Companion,
    ::testing::Values(
        // OpenConfig to native, three ways: a read filters, a delete names the
        // path, an edit writes; false of an empty leaf removes it.
        Case{"ssh_read_filters", oc2qv_ssh_timeout, KIND_GET_CONFIG, false,
             ssh("<timeout>60</timeout>"), kTimeout, YFW_SUCCESS, kSsh + "/timeout = \"60\"\n"},
        Case{"ssh_delete_has_no_value", oc2qv_ssh_timeout, KIND_EDIT_A, false,
             ssh("<timeout nc:operation=\"delete\">60</timeout>"), kTimeout, YFW_SUCCESS,
             kSsh + "/timeout @delete\n"},
        Case{"ssh_edit_carries_operation", oc2qv_ssh_server_session_limit, KIND_EDIT_B, false,
             ssh("<session-limit nc:operation=\"merge\">9</session-limit>"),
             "ssh-server/config/session-limit", YFW_SUCCESS,
             kSsh + "/session-limit = \"9\" @merge\n"},
        Case{"ssh_enable_false_removes", oc2qv_ssh_enable, KIND_EDIT_A, false,
             ssh("<enable>false</enable>"), kEnable, YFW_SUCCESS,
             kVrf + "/vrf-name = \"default\"\n" + kVrf + "/enable @remove\n"},
        Case{"ssh_version_1_refused", oc2qv_ssh_version, KIND_EDIT_A, false,
             ssh("<protocol-version>V1</protocol-version>"), "ssh-server/config/protocol-version",
             YFW_ERR_BAD_VALUE, ""},
        // Native to OpenConfig: config unless state alone, state only in KIND_GET.
        Case{"ssh_answer_get", qv2oc_ssh_enable, KIND_GET, false,
             native_ssh("<vrf-table><vrf><vrf-name>v</vrf-name><enable/></vrf></vrf-table>"),
             "server/vrf-table/vrf/enable", YFW_SUCCESS,
             kOcSsh + "/config/enable = \"true\"\n" + kOcSsh + "/state/enable = \"true\"\n"},
        Case{"ssh_answer_state_alone", qv2oc_ssh_version, KIND_GET, true, native_ssh("<v2/>"),
             "server/v2", YFW_SUCCESS, kOcSsh + "/state/protocol-version = \"V2\"\n"},
        // NTP and AAA leaves; the walks of their modules show the rest.
        Case{"ntp_address_of_no_family_refused", oc_qv_server_address, KIND_EDIT_A, false,
             ntp_server("ntp.example"), "ntp/servers/server/address", YFW_ERR_BAD_VALUE, ""},
        Case{"ntp_port_other_refused", oc_qv_port, KIND_EDIT_A, false,
             ntp_server("192.0.2.1", "<port>124</port>"), "ntp/servers/server/config/port",
             YFW_ERR_BAD_VALUE, ""},
        Case{"ntp_keytype_prefixed_accepted", oc_qv_keytype, KIND_EDIT_A, false,
             test::oc_system("<ntp><ntp-keys><ntp-key><config><key-type>"
                             "openconfig-system:NTP_AUTH_MD5</key-type></config></ntp-key>"
                             "</ntp-keys></ntp>"),
             "ntp/ntp-keys/ntp-key/config/key-type", YFW_SUCCESS, ""},
        // A delete without a value takes the whole list: every slot.
        Case{"aaa_delete_never_fails", oc_authenticationMethod, KIND_EDIT_A, false,
             authen("<authentication-method nc:operation=\"delete\"/>"), kMethod, YFW_SUCCESS,
             kAuthenKeys + every_slot(" @delete\n")}),
    test::case_name);

// Values fill the four numbered slots in order; the same value keeps its slot,
// and a fifth is refused with nothing written.
TEST(AaaMethods, FourSlotsThenRefused) {
    Request r(KIND_EDIT_A);
    tidl_yfw_datatree *config =
        walk_to(r,
                r.input(authen("<authentication-method>TACACS_ALL</authentication-method>"
                               "<authentication-method>g1</authentication-method>"
                               "<authentication-method>LOCAL</authentication-method>"
                               "<authentication-method>g2</authentication-method>"
                               "<authentication-method>RADIUS_ALL</authentication-method>")),
                "aaa/authentication/config")
            .back();
    for (uint32_t i = 0; i < 4; ++i)
        ASSERT_EQ(oc_authenticationMethod(r.ctx(), &config->subtrees[i], r.session().output()),
                  YFW_SUCCESS);
    const std::string four = leaves(r.paths());
    EXPECT_EQ(oc_authenticationMethod(r.ctx(), &config->subtrees[1], r.session().output()),
              YFW_SUCCESS);
    EXPECT_EQ(oc_authenticationMethod(r.ctx(), &config->subtrees[4], r.session().output()),
              YFW_ERR_BAD_VALUE);
    EXPECT_EQ(leaves(r.paths()), four);
    EXPECT_EQ(four, kAuthenKeys + kAuthen + "/method1 = \"tacacs\"\n" + kAuthen +
                        "/server-group-name2 = \"g1\"\n" + kAuthen + "/method3 = \"local\"\n" +
                        kAuthen + "/server-group-name4 = \"g2\"\n");
    ASSERT_NE(r.state()->error_message, nullptr);
}

// The NTP callbacks: the rows of the server's family in an edit, both in a
// read (and the operational row in KIND_GET), and the value conversions.
struct Pick {
    const char *name;
    uint32_t kind;
    const char *address;
    std::array<uint32_t, 3> selected;
};
class NtpRows : public ::testing::TestWithParam<Pick> {};

TEST_P(NtpRows, Selected) {
    const Pick &p = GetParam();
    Request r(p.kind);
    walk_to(r, r.input(ntp_server(p.address)), "ntp/servers/server");
    xpath_list_type_t rows[4] = {};
    ASSERT_EQ(oc_qv_server_list_call_back(r.ctx(), 3, rows), YFW_SUCCESS);
    EXPECT_EQ((std::array{rows[0].selected, rows[1].selected, rows[2].selected}), p.selected);
    EXPECT_EQ(rows[3].selected, 0u);
}

INSTANTIATE_TEST_SUITE_P(
    Families, NtpRows,
    ::testing::Values(Pick{"edit_ipv4", KIND_EDIT_A, "192.0.2.1", {1, 0, 0}},
                      Pick{"edit_ipv6", KIND_EDIT_C, "2001:db8::1", {0, 1, 0}},
                      Pick{"edit_name_selects_none", KIND_EDIT_A, "ntp.example", {0, 0, 0}},
                      Pick{"get_config_both", KIND_GET_CONFIG, "192.0.2.1", {1, 1, 0}},
                      Pick{"get_both_and_oper", KIND_GET, "2001:db8::1", {1, 1, 1}}),
    test::case_name);

TEST(NtpRows, ValueConversions) {
    Request r(KIND_EDIT_A);
    walk_to(r, r.input(ntp_server("192.0.2.1")), "ntp/servers/server");
    auto value_of = [&](xpath_type_check_fn fn, const char *word) {
        xpath_list_type_t rows[3] = {};
        EXPECT_EQ(fn(r.ctx(), 2, rows), YFW_SUCCESS);
        tidl_yfw_datatree leaf{};
        leaf.value = const_cast<char *>(word);
        const char *v = rows[0].value_fn(&leaf);
        return v != nullptr ? std::string(v) : std::string("(null)");
    };
    EXPECT_EQ(value_of(oc_qv_ntp_assoc_type, "PEER"), "peer");
    EXPECT_EQ(value_of(oc_qv_ntp_assoc_type, "SERVER"), "server");
    EXPECT_EQ(value_of(oc_qv_ntp_iburst, "false"), "(null)");
    EXPECT_EQ(value_of(oc_qv_ntp_prefer, "true"), "");
}

// Every function answers a null node or output with the invalid-arguments status.
TEST(Companions, NullArgumentsRefused) {
    Request r(KIND_EDIT_A);
    tidl_yfw_datatree node{};
    for (NodeFn fn : {oc2qv_ssh_enable, qv2oc_ssh_timeout, oc_qv_key_id, oc_qv_port, oc_acctMethod,
                      qv_tacacs_port, oc_usernameSecret}) {
        EXPECT_EQ(fn(r.ctx(), nullptr, r.session().output()), YFW_ERR_INVALID_ARGS);
        EXPECT_EQ(fn(r.ctx(), &node, nullptr), YFW_ERR_INVALID_ARGS);
    }
    EXPECT_EQ(qv_aaa(r.ctx(), nullptr, 0, r.session().output()), YFW_ERR_INVALID_ARGS);
    EXPECT_EQ(oc_qv_ntp_version(r.ctx(), 2, nullptr), YFW_ERR_INVALID_ARGS);
}

} // namespace
