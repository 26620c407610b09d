// The gRPC server both ways: the name judged against the system database on
// an edit, enable and transport-security against the native empty leaves, the
// native answer keyed by the database's name, and the private state module.
#include <string>

#include "../../grpc/src/ymap_grpc.hpp"
#include "harness.hpp"
#include "ymap_module_state.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::Request;

constexpr auto kSystem = &ymap_oq_ocsystem_openconfigsystem_lvla_system;
constexpr auto kEmsCfg = &ymap_qo_ocsystem_tarvexqvmanemscfg_lvla_grpc;
constexpr auto kEmsOper = &ymap_qo_ocsystem_tarvexqvprivateocemsoper_lvla_ocems;

constexpr const char kRunning[] = "/cfg/gl/ems/ord_A/grpc/running";
constexpr const char kName[] = "/cfg/gl/ems/ord_A/grpc/name";
constexpr const char kGrpcNs[] = "http://openconfig.net/yang/system-grpc";
const std::string kNative = "/Tarvex-QV-man-ems-cfg:grpc";
const cerrno kRefused = static_cast<cerrno>(-1);

std::string oc(std::string_view server) {
    return test::oc_system("<grpc-servers xmlns=\"" + std::string(kGrpcNs) + "\">" +
                           std::string(server) + "</grpc-servers>");
}
std::string server(std::string_view name, std::string_view rest = "") {
    return oc("<grpc-server><name>" + std::string(name) + "</name><config><name>" +
              std::string(name) + "</name>" + std::string(rest) + "</config></grpc-server>");
}
std::string named(std::string_view name) {
    return kNative + "\n" + kNative + "/name = \"" + std::string(name) + "\"\n";
}
std::string oc_entry(std::string_view name) {
    return "/openconfig-system:system/openconfig-system-grpc:grpc-servers/grpc-server[name='" +
           std::string(name) + "']";
}

// Every test starts on a host without the database.
class Grpc : public ::testing::Test {
protected:
    void SetUp() override { yfw::sysdb::clear(); }
    void TearDown() override { yfw::sysdb::clear(); }
};

// ---- The name of an edit against the running server ---------------------------

enum class Db { Absent, BindFails, Present };
struct NameCase {
    const char *name;
    Db db;
    bool running;
    const char *configured; // null: no item
    std::string requested;
    cerrno status;
    std::string output;
    friend void PrintTo(const NameCase &c, std::ostream *os) { *os << c.name; }
};

class GrpcName : public Grpc, public ::testing::WithParamInterface<NameCase> {};

TEST_P(GrpcName, Edit) {
    const NameCase &c = GetParam();
    yfw::sysdb::set_present(c.db != Db::Absent);
    yfw::sysdb::set_bind_fails(c.db == Db::BindFails);
    if (c.running)
        yfw::sysdb::set_item(kRunning, "");
    if (c.configured != nullptr)
        yfw::sysdb::set_item(kName, c.configured);
    Request r(KIND_EDIT_A);
    EXPECT_EQ(r.run(kSystem, server(c.requested)), c.status);
    EXPECT_EQ(r.paths(), c.output);
}

const std::string kLong(70, 'n');
const std::string kCut(63, 'n'); // what a 64-byte buffer keeps of it

INSTANTIATE_TEST_SUITE_P(
    Branches, GrpcName,
    ::testing::Values(
        NameCase{"no_database_takes_any_name", Db::Absent, true, "a", "b", YFW_SUCCESS, named("b")},
        NameCase{"no_database_default_writes_nothing", Db::Absent, true, "a", "DEFAULT",
                 YFW_SUCCESS, ""},
        NameCase{"bind_failure_takes_any_name", Db::BindFails, true, "a", "b", YFW_SUCCESS,
                 named("b")},
        NameCase{"not_running_ignores_the_item", Db::Present, false, "a", "b", YFW_SUCCESS,
                 named("b")},
        NameCase{"running_same_name", Db::Present, true, "a", "a", YFW_SUCCESS, named("a")},
        NameCase{"running_other_name_is_refused", Db::Present, true, "a", "b", kRefused, ""},
        NameCase{"running_other_name_default_writes_nothing", Db::Present, true, "a", "DEFAULT",
                 YFW_SUCCESS, ""},
        NameCase{"running_named_default_writes_it", Db::Present, true, "DEFAULT", "DEFAULT",
                 YFW_SUCCESS, named("DEFAULT")},
        NameCase{"running_empty_name_counts_as_none", Db::Present, true, "", "b", YFW_SUCCESS,
                 named("b")},
        NameCase{"running_without_name_item", Db::Present, true, nullptr, "b", YFW_SUCCESS,
                 named("b")},
        NameCase{"long_name_is_cut_to_the_buffer", Db::Present, true, kLong.c_str(), kCut,
                 YFW_SUCCESS, named(kCut)},
        NameCase{"long_name_whole_no_longer_matches", Db::Present, true, kLong.c_str(), kLong,
                 kRefused, ""}));

TEST_F(Grpc, DeletingTheServerByNameIsRefused) {
    yfw::sysdb::set_present(true);
    Request r(KIND_EDIT_A);
    EXPECT_EQ(r.run(kSystem, oc("<grpc-server nc:operation=\"delete\"><name>a</name>"
                                "</grpc-server>")),
              kRefused);
    EXPECT_EQ(r.paths(), "");
}

TEST_F(Grpc, NamesMatchOverTheBufferOnly) {
    EXPECT_EQ(do_svr_names_match(nullptr, "a"), 0);
    EXPECT_EQ(do_svr_names_match("a", nullptr), 0);
    EXPECT_EQ(do_svr_names_match("a", "b"), 0);
    EXPECT_EQ(do_svr_names_match((kCut + "x").c_str(), (kCut + "y").c_str()), 0);
    // Past the 64th character, names are not told apart.
    EXPECT_EQ(do_svr_names_match((kCut + "xy").c_str(), (kCut + "xz").c_str()), 1);
}

// A found database is not probed again; a missing one is, on every call.
TEST_F(Grpc, ProbeIsStickyOnSuccessAndRetriedOnFailure) {
    auto &state = ymap::module_state();
    auto edit = [] {
        Request r(KIND_EDIT_A);
        (void)r.run(kSystem, server("a"));
    };
    auto answer = [] {
        Request r(KIND_GET_CONFIG);
        (void)r.run(kEmsCfg, test::native("Tarvex-QV-man-ems-cfg", "grpc", ""));
    };
    edit();
    answer();
    EXPECT_EQ(state.check_grpc_server_name_probe, 0u);
    EXPECT_EQ(state.get_grpc_server_name_probe, 0u);
    yfw::sysdb::set_present(true);
    edit();
    EXPECT_EQ(state.check_grpc_server_name_probe, 1u);
    EXPECT_EQ(state.get_grpc_server_name_probe, 0u);
    answer();
    EXPECT_EQ(state.get_grpc_server_name_probe, 1u);
    yfw::sysdb::set_present(false);
    edit();
    answer();
    EXPECT_EQ(state.check_grpc_server_name_probe, 1u);
    EXPECT_EQ(state.get_grpc_server_name_probe, 1u);
}

// ---- enable and transport-security, both ways ------------------------------------

struct BoolCase {
    const char *name;
    std::string leaf;
    std::string output;
    friend void PrintTo(const BoolCase &c, std::ostream *os) { *os << c.name; }
};

class GrpcBoolToNative : public Grpc, public ::testing::WithParamInterface<BoolCase> {};

TEST_P(GrpcBoolToNative, Edit) {
    const BoolCase &c = GetParam();
    test::expect_walk(kSystem, KIND_EDIT_A, server("a", c.leaf), named("a") + c.output);
}

INSTANTIATE_TEST_SUITE_P(
    Values, GrpcBoolToNative,
    ::testing::Values(
        BoolCase{"enable_true_sets_the_empty_leaf", "<enable>true</enable>", kNative + "/enable\n"},
        BoolCase{"enable_delete", "<enable nc:operation=\"delete\"/>",
                 kNative + "/enable @delete\n"},
        BoolCase{"enable_other_is_dropped", "<enable>yes</enable>", ""},
        BoolCase{"tls_false_sets_no_tls", "<transport-security>false</transport-security>",
                 kNative + "/no-tls\n"},
        BoolCase{"tls_true_removes_no_tls", "<transport-security>true</transport-security>",
                 kNative + "/no-tls @remove\n"},
        BoolCase{"tls_delete", "<transport-security nc:operation=\"delete\"/>",
                 kNative + "/no-tls @delete\n"},
        BoolCase{"tls_other_is_dropped", "<transport-security>1</transport-security>", ""},
        BoolCase{"plain_leaves_and_dropped_ones",
                 "<port>57400</port><certificate-id>c</certificate-id>"
                 "<listen-addresses>ANY</listen-addresses><network-instance>m</network-instance>",
                 kNative + "/port = \"57400\"\n" + kNative + "/certificate-id = \"c\"\n"}));

TEST_F(Grpc, EnableFalseRemovesTheWholeContainer) {
    test::expect_walk(kSystem, KIND_EDIT_A, server("a", "<enable>false</enable>"),
                      kNative + " @remove\n" + kNative + "/name = \"a\"\n");
}

TEST_F(Grpc, NativeBooleansBecomeOpenConfigOnes) {
    yfw::sysdb::set_present(true);
    Request r(KIND_GET_CONFIG);
    ASSERT_EQ(r.run(kEmsCfg, test::native("Tarvex-QV-man-ems-cfg", "grpc", "<enable/><no-tls/>")),
              YFW_SUCCESS);
    const std::string e = oc_entry("DEFAULT");
    EXPECT_NE(r.paths().find(e + "/config/enable = \"true\"\n" + e +
                             "/config/transport-security = \"false\"\n"),
              std::string::npos)
        << r.paths();
    // A leaf that the tree holds without a value reads as the other boolean.
    tidl_yfw_datatree leaf{};
    EXPECT_EQ(grpc_enable_to_high_bool_conv(r.ctx(), &leaf, r.session().output()), YFW_SUCCESS);
    EXPECT_EQ(grpc_config_tls_to_high_bool_conv(r.ctx(), &leaf, r.session().output()), YFW_SUCCESS);
    EXPECT_NE(r.paths().find(e + "/config/enable = \"false\"\n" + e +
                             "/config/transport-security = \"true\"\n"),
              std::string::npos)
        << r.paths();
}

// ---- The native answer, keyed by the database's name --------------------------------

struct AnswerCase {
    const char *name;
    Db db;
    const char *configured;
    std::string key;
    friend void PrintTo(const AnswerCase &c, std::ostream *os) { *os << c.name; }
};

class GrpcAnswer : public Grpc, public ::testing::WithParamInterface<AnswerCase> {};

TEST_P(GrpcAnswer, KeyAndConfig) {
    const AnswerCase &c = GetParam();
    yfw::sysdb::set_present(c.db != Db::Absent);
    yfw::sysdb::set_bind_fails(c.db == Db::BindFails);
    if (c.configured != nullptr)
        yfw::sysdb::set_item(kName, c.configured);
    Request r(KIND_GET_CONFIG);
    // The answer's own name is stale: the database's wins. Native-only subtrees go.
    ASSERT_EQ(r.run(kEmsCfg, test::native("Tarvex-QV-man-ems-cfg", "grpc",
                                          "<port>1</port><name>stale</name>"
                                          "<tls-cipher><default/></tls-cipher>"
                                          "<aaa><authentication/></aaa>")),
              YFW_SUCCESS);
    const std::string e = oc_entry(c.key), name = " = \"" + c.key + "\"";
    EXPECT_EQ(r.paths(),
              test::chain(e) + test::under(e, {"/name" + name, "/config", "/config/name" + name,
                                               "/config/port = \"1\""}));
    r.expect_state_restored();
}

INSTANTIATE_TEST_SUITE_P(
    Database, GrpcAnswer,
    ::testing::Values(AnswerCase{"absent_gives_an_empty_key", Db::Absent, "g", ""},
                      AnswerCase{"bind_failure_gives_an_empty_key", Db::BindFails, "g", ""},
                      AnswerCase{"missing_item_is_default", Db::Present, nullptr, "DEFAULT"},
                      AnswerCase{"configured_name", Db::Present, "g", "g"},
                      AnswerCase{"empty_item_gives_an_empty_key", Db::Present, "", ""},
                      AnswerCase{"long_name_is_cut", Db::Present, kLong.c_str(), kCut}));

TEST_F(Grpc, OperOnlyAnswerStitchesTheEntryAlone) {
    yfw::sysdb::set_present(true);
    yfw::sysdb::set_item(kName, "g");
    Request r(KIND_GET, true);
    ASSERT_EQ(
        r.run(kEmsCfg, test::native("Tarvex-QV-man-ems-cfg", "grpc", "<port>1</port><enable/>")),
        YFW_SUCCESS);
    const std::string e = "/openconfig-system-grpc:system/grpc-servers/grpc-server[name='g']";
    EXPECT_EQ(r.paths(), test::chain(e) + e + "/name = \"g\"\n");
}

// ---- State, both ways --------------------------------------------------------------

const char kStateLeaves[] = "<name/><services/><enable/><port/><transport-security/>"
                            "<certificate-id/><listen-addresses/>";

TEST_F(Grpc, StateAnswerPassesValuesUnchanged) {
    const std::string e =
        "/openconfig-system:system/openconfig-system-grpc:grpc-servers/grpc-server[name='a']";
    test::expect_walk(kEmsOper, KIND_GET,
                      test::native("Tarvex-QV-PRIVATE-oc-ems-oper", "oc-ems",
                                   "<system><grpc-servers><grpc-server><name>a</name><state>"
                                   "<name>a</name><enable>true</enable><services>GNMI</services>"
                                   "</state></grpc-server></grpc-servers></system>"),
                      test::chain(e) +
                          test::under(e, {"/name = \"a\"", "/state", "/state/name = \"a\"",
                                          "/state/enable = \"true\""}));
}

// ---- The root augment parser's dispatch ------------------------------------------------

struct DispatchCase {
    const char *name;
    uint32_t kind;
    std::string body;
    cerrno status;
    std::string output;
    friend void PrintTo(const DispatchCase &c, std::ostream *os) { *os << c.name; }
};

class GrpcDispatch : public Grpc, public ::testing::WithParamInterface<DispatchCase> {};

TEST_P(GrpcDispatch, Root) {
    const DispatchCase &c = GetParam();
    Request r(c.kind);
    EXPECT_EQ(r.run(kSystem, test::oc_system(c.body)), c.status);
    EXPECT_EQ(r.paths(), c.output);
}

const std::string kForeign = "<x xmlns=\"urn:example:other\"><y>1</y></x>";
const std::string kServers = "<grpc-servers xmlns=\"http://openconfig.net/yang/system-grpc\">";

INSTANTIATE_TEST_SUITE_P(
    Kinds, GrpcDispatch,
    ::testing::Values(
        DispatchCase{"read_foreign_dropped", KIND_GET_CONFIG, kForeign, YFW_SUCCESS, ""},
        DispatchCase{"edit_foreign_dropped", KIND_EDIT_A, kForeign, YFW_SUCCESS, ""},
        DispatchCase{"read_grpc_servers", KIND_GET_CONFIG,
                     kServers + "<grpc-server><name>a</name><config><port/></config>"
                                "</grpc-server></grpc-servers>",
                     YFW_SUCCESS, named("a") + kNative + "/port\n"},
        DispatchCase{"read_unknown_grpc_tag_passes", KIND_GET_CONFIG,
                     "<bogus xmlns=\"http://openconfig.net/yang/system-grpc\"><z/></bogus>",
                     YFW_SUCCESS, ""},
        // Named bare, an augment node reads the whole server.
        DispatchCase{
            "read_bare_grpc_node_reads_all", KIND_GET_CONFIG,
            "<bogus xmlns=\"http://openconfig.net/yang/system-grpc\"/>", YFW_SUCCESS,
            test::under(kNative, {"", "/name", "/enable", "/port", "/no-tls", "/certificate-id"})},
        DispatchCase{"edit_unknown_grpc_tag_refused", KIND_EDIT_A,
                     "<bogus xmlns=\"http://openconfig.net/yang/system-grpc\">1</bogus>",
                     YFW_ERR_UNSUPPORTED_TAG, ""}));

} // namespace
