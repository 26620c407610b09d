// Every mapper form, row macro and walker flag, through the tests' module of
// forms: one request each, with the native or OpenConfig paths it yields.
#include "harness.hpp"
#include "testforms.hpp"

namespace {

using test::Request;

struct Case {
    const char *name;
    yfw_map_walker_fn walker;
    uint32_t kind;
    std::string input;
    std::string output;
    cerrno status = YFW_SUCCESS;
    bool oper_only = false;
    friend void PrintTo(const Case &c, std::ostream *os) { *os << c.name; }
};

constexpr auto kF = &ymap_oq_ocsystem_testforms_lvla_f;
constexpr auto kN = &ymap_qo_ocsystem_testforms_lvla_n;

std::string f(std::string_view body) {
    return "<f xmlns=\"urn:test:forms\" xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\">" +
           std::string(body) + "</f>";
}
std::string n(std::string_view body) {
    return "<n xmlns=\"urn:test:formsqo\">" + std::string(body) + "</n>";
}

class Forms : public ::testing::TestWithParam<Case> {};

TEST_P(Forms, Output) {
    const Case &c = GetParam();
    Request r(c.kind, c.oper_only);
    EXPECT_EQ(r.run(c.walker, c.input), c.status);
    EXPECT_EQ(r.paths(), c.output);
    r.expect_state_restored();
}

const std::string kNtp = "/Tarvex-QV-ip-ntp-cfg:ntp";
const std::string kKey = kNtp + "/authentication/keys/key[key-number='1']";
const std::string kKeys = test::chain(kNtp + "/authentication/keys");
const std::string kAuth = kNtp + "/authentication";
const std::string kHostName =
    test::chain("/Tarvex-QV-PRIVATE-oc-system-oper:ocsystem/system/state/host-name");
const std::string kSys = "/openconfig-system:system";

INSTANTIATE_TEST_SUITE_P(
    Rows, Forms,
    ::testing::Values(
        // Containers
        Case{"state_pickup_named_bare_asks_for_the_whole_container", kF, KIND_GET, f("<pick/>"),
             kHostName},
        Case{"state_pickup_with_children_leaves_them_to_their_mappers", kF, KIND_GET,
             f("<pick><s/></pick>"), kHostName},
        Case{"from_xpath_adds_nothing_in_an_edit", kF, KIND_EDIT_A, f("<pick><s>x</s></pick>"), ""},
        Case{"mapped_with_children_adds_target", kF, KIND_EDIT_A, f("<peers><t>5</t></peers>"),
             test::chain(kAuth) + kNtp + "/max-associations = \"5\"\n"},
        Case{"mapped_bare_delete_deletes_target_and_walks_leaves", kF, KIND_EDIT_A,
             f("<peers nc:operation=\"delete\"/>"),
             kNtp + "\n" + kAuth + " @delete\n" + kNtp + "/max-associations @remove\n"},
        Case{"mapped_bare_merge_adds_nothing", kF, KIND_EDIT_A, f("<peers/>"), ""},
        Case{"hand_written_container_sees_its_count", kF, KIND_EDIT_A, f("<hand><h>1</h></hand>"),
             kNtp + "\n" + kNtp + "/passive = \"named\"\n" + kNtp + "/dscp-ipv4 = \"1\"\n"},
        Case{"own_container_skips_a_read_with_its_children", kF, KIND_GET_CONFIG,
             f("<own><o/></own>"), ""},
        // Leaves
        Case{"companion_leaf_writes_its_own_native_path", kF, KIND_EDIT_A,
             f("<hand><c>30</c></hand>"),
             kNtp + "\n" + kNtp + "/passive = \"named\"\n" +
                 test::chain("/Tarvex-QV-crypto-ssh-cfg:ssh/server") +
                 "/Tarvex-QV-crypto-ssh-cfg:ssh/server/timeout = \"30\"\n"},
        Case{"duck_leaf_of_a_passing_module_accepts", kF, KIND_EDIT_A, f("<hand><d>1</d></hand>"),
             kNtp + "\n" + kNtp + "/passive = \"named\"\n"},
        Case{"own_leaf_in_an_edit", kF, KIND_EDIT_A, f("<own><o>2</o></own>"),
             kNtp + "\n" + kNtp + "/dscp-ipv6 = \"2\"\n"},
        Case{"leaf_table_edit_takes_its_row_without_second_path", kF, KIND_EDIT_A,
             f("<own><tb>v</tb></own>"), kNtp + "\n" + kNtp + "/dscp-ipv6 = \"v\"\n"},
        // Lists
        Case{"list_pass_walks_the_key_alone", kF, KIND_EDIT_A, f("<l1><k>1</k></l1>"),
             kKeys + kKey + "\n" + kKey + "/key-number = \"1\"\n"},
        Case{"list_entry_carries_the_delete", kF, KIND_EDIT_A,
             f("<l2 nc:operation=\"delete\"><k>1</k></l2>"),
             kKeys + kNtp + "/authentication/keys/key @delete\n" + kNtp +
                 "/authentication/keys/key/key-number @delete\n"},
        Case{"list_table_read_takes_the_first_row", kF, KIND_GET_CONFIG, f("<l3><k/></l3>"),
             test::chain(kNtp + "/authentication/keys/key/key-number")},
        Case{"list_table_edit_takes_the_second_row", kF, KIND_EDIT_A, f("<l3><k>1</k></l3>"),
             kNtp + "\n" + kNtp + "/peer-vrfs\n" + kNtp + "/peer-vrfs/peer-vrf\n" + kNtp +
                 "/authentication\n" + kNtp + "/authentication/keys\n" + kKey + "\n" + kKey +
                 "/key-number = \"1\"\n"},
        Case{"list_mapper_that_skips_drops_the_entry", kF, KIND_EDIT_A, f("<l4><k>1</k></l4>"), ""},
        Case{"duck_list_walks_its_children", kF, KIND_GET, f("<l5><k/></l5>"),
             test::chain(kNtp + "/authentication/keys/key/key-number")},
        // Walkers
        Case{"unmatched_own_tag_at_a_root_goes_to_the_augment_parser", kF, KIND_EDIT_A,
             f("<zz>1</zz>"), "", YFW_ERR_UNSUPPORTED_AUGMENT},
        Case{"augment_walker_takes_its_child", &ymap_oq_ocsystem_testforms_augment_lvla_f, KIND_GET,
             "<pick xmlns=\"urn:test:forms\"><s/></pick>", kHostName},
        Case{"walked_as_openconfig_ignores_its_own_unknown_tags",
             &ymap_qo_ocsystem_testforms_lvla_n_vrf, KIND_EDIT_A,
             "<vrf xmlns=\"urn:test:formsqo\"><name>red</name><zz>1</zz></vrf>",
             test::chain("/Tarvex-QV-ip-tcp-cfg:ip/tinetd/services/telnet/vrfs/vrf")},
        Case{"walked_as_openconfig_demands_keys", &ymap_qo_ocsystem_testforms_lvla_n_vrf,
             KIND_EDIT_A, "<vrf xmlns=\"urn:test:formsqo\"/>", "", YFW_ERR_BAD_TREE},
        // The native side
        Case{"unless_oper_only_in_get_config", kN, KIND_GET_CONFIG, n("<oo>d</oo>"),
             kSys + "\n" + kSys + "/config\n" + kSys + "/config/domain-name = \"d\"\n"},
        Case{"unless_oper_only_drops_it", kN, KIND_GET, n("<oo>d</oo>"), "", YFW_SUCCESS, true},
        Case{"stitched_list", kN, KIND_GET, n("<e><index>0</index></e>"),
             test::chain(kSys + "/cpus/cpu[index='0']") + kSys +
                 "/cpus/cpu[index='0']/index = \"0\"\n"},
        Case{"get_only_children_outside_get", kN, KIND_GET_CONFIG, n("<g><v>x</v></g>"), ""},
        Case{"get_only_children_in_get", kN, KIND_GET, n("<g><v>x</v></g>"),
             kSys + "\n" + kSys + "/state\n" + kSys + "/state/motd-banner = \"x\"\n"}),
    test::case_name);

TEST(Forms, RefusalsReportTagPathAndMessage) {
    Request leaf(KIND_EDIT_A);
    test::expect_refused(leaf, leaf.run(kF, f("<hand><r>1</r></hand>")),
                         {YFW_ERR_UNSUPPORTED_TAG, "r", "/urn:test:forms:f/hand"});
    Request key(KIND_EDIT_A);
    test::expect_refused(
        key,
        key.run(&ymap_qo_ocsystem_testforms_lvla_n_vrf,
                "<vrf xmlns=\"urn:test:formsqo\" xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:"
                "1.0\"><name nc:operation=\"delete\">red</name></vrf>"),
        {YFW_ERR_KEY_DELETE, "", "/urn:test:formsqo:vrf",
         "The key node should not have delete operation."});
}

TEST(Forms, IgnoringTraceNamesTheTagWhenTheRowSaysSo) {
    Request r(KIND_GET);
    ASSERT_EQ(r.run(kN, n("<zz>1</zz>")), YFW_SUCCESS);
    EXPECT_EQ(test::count_lines(r.session().debug_log(), "Unsupported tag `zz`. Ignoring."), 1);
}

} // namespace
