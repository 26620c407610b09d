// Logging and messages: the severity and facility words, remote servers and
// console in both directions, and the messages subtree.
#include "../../oc-syslog/src/ymap_syslog.hpp"
#include "harness.hpp"

namespace {

using test::chain;
using test::Request;
using test::under;

constexpr auto kSystem = &ymap_oq_ocsystem_openconfigsystem_lvla_system;
constexpr auto kSyslog = &ymap_qo_ocsystem_tarvexqvinfrasyslogcfg_lvla_syslog;
constexpr auto kMessages =
    &ymap_qo_ocsystem_tarvexqvprivateocsystemmessagestelemetryoper_lvla_ocsyslog;

const std::string kN = "/Tarvex-QV-infra-syslog-cfg:syslog";
const std::string kVrf = kN + "/host-server/vrfs/vrf[vrf-name='default']";
const std::string kVrfHead = test::chain(kVrf) + kVrf + "/vrf-name = \"default\"\n";
const std::string kOcSys = "/openconfig-system:system";
const std::string kSel = "/selectors/selector[facility='NONE']";

std::string servers(std::string_view body) {
    return test::oc_system("<logging><remote-servers>" + std::string(body) +
                           "</remote-servers></logging>");
}
std::string native(std::string_view body) {
    return test::native("Tarvex-QV-infra-syslog-cfg", "syslog", body);
}
std::string errors(Request &r) {
    std::string out;
    for (const std::string &line : r.session().debug_log())
        if (line.starts_with("ERR: "))
            out += line.substr(line.find(',') + 1) + "\n";
    return out;
}

// Native list, key leaf and severity-port container of each host form.
struct Family {
    const char *list;
    const char *entry;
    const char *key;
    const char *sp;
};
constexpr Family kHosts{"hosts", "host", "host-name", "host-severity-port"};
constexpr Family kIpv4{"ipv4s", "ipv4", "address", "ipv4-severity-port"};
constexpr Family kIpv6{"ipv6s", "ipv6", "address", "ipv6-severity-port"};

// The native rows of one server: its entry and key, then a leaf beside the port.
std::string server_rows(const Family &f, const std::string &host, const std::string &key_tail,
                        const std::string &leaf) {
    const std::string e = kVrf + "/" + f.list + "/" + f.entry + "[" + f.key + "='" + host + "']";
    std::string out = kVrf + "/" + f.list + "\n" + e + "\n" + e + "/" + f.key + key_tail + "\n";
    if (!leaf.empty())
        out += e + "/" + f.sp + "\n" + e + "/" + f.sp + "/" + leaf + "\n";
    return out;
}

// ---- The vocabulary ---------------------------------------------------------------------

using Conversion = const char *(*)(yfw_map_ctx *, const char *);
constexpr Conversion kSev = oc_syslog_severity_conversion,
                     kQvSev = qv_oc_syslog_severity_conversion,
                     kCon = oc_syslog_console_severity_conversion,
                     kQvCon = qv_oc_syslog_console_severity_conversion,
                     kFac = oc_syslog_facility_conversion,
                     kQvFac = qv_oc_syslog_facility_conversion;

// The words that tell the dialects apart, and each table's ends.
TEST(LoggingWords, WordsConvertBothWays) {
    const struct {
        Conversion to_native, to_oc;
        const char *oc, *native;
    } cases[] = {
        {kSev, kQvSev, "EMERGENCY", "emergency"},  {kSev, kQvSev, "INFORMATIONAL", "informational"},
        {kCon, kQvCon, "INFORMATIONAL", "info"},   {kCon, kQvCon, "DISABLE", "disable"},
        {kCon, kQvCon, "DEBUG", "debug"},          {kFac, kQvFac, "KERNEL", "kern"},
        {kFac, kQvFac, "SYSTEM_DAEMON", "daemon"}, {kFac, kQvFac, "SYSLOG", "syslog"}};
    Request r(KIND_GET_CONFIG);
    for (const auto &c : cases) {
        EXPECT_STREQ(c.to_native(r.ctx(), c.oc), c.native) << c.oc;
        EXPECT_STREQ(c.to_oc(r.ctx(), c.native), c.oc) << c.native;
    }
    EXPECT_EQ(errors(r), "");
    EXPECT_STREQ(oc_syslog_check_ipv4_ipv6(nullptr), "NULL");
}

// A bad word is traced and passes on as NULL, with no refusal.
TEST(LoggingWords, OnlyWholeWordsOfTheirOwnDialectConvert) {
    const std::string sev = "severity", con = "console severity", fac = "or Unsupported facility";
    const struct {
        Conversion fn;
        const char *word;
        std::string what;
    } cases[] = {
        {kSev, "DISABLE", sev},         {kSev, "EMERG", sev},  {kSev, "emergency", sev},
        {kSev, "ERRORS", sev},          {kQvSev, "info", sev}, {kQvSev, "disable", sev},
        {kQvCon, "informational", con}, {kCon, "Info", con},   {kFac, "NONE", fac},
        {kQvFac, "KERNEL", fac},        {kSev, nullptr, sev},  {kCon, nullptr, con},
        {kQvFac, nullptr, sev}, // the facility's null trace names the severity
    };
    for (const auto &c : cases) {
        Request r(KIND_GET_CONFIG);
        EXPECT_EQ(c.fn(r.ctx(), c.word), nullptr) << (c.word ? c.word : "(null)");
        EXPECT_EQ(errors(r),
                  c.word != nullptr
                      ? "Invalid " + c.what + " leaf value '" + c.word + "' specified in OC model\n"
                      : "Null " + c.what + " leaf specified in OC model\n");
        EXPECT_EQ(r.state()->error_message, nullptr);
    }
}

// ---- OpenConfig to native ----------------------------------------------------------------

TEST(LoggingToNative, AnEditedServerLandsInTheListOfItsHostForm) {
    const std::pair<const char *, const Family *> cases[] = {
        {"192.0.2.1", &kIpv4},        {"2001:db8::1", &kIpv6}, {"::ffff:192.0.2.1", &kIpv6},
        {"log.example.net", &kHosts}, {"1.2.3", &kHosts},      {"192.0.2.1.example", &kHosts}};
    for (const auto &[host, family] : cases) {
        Request r(KIND_EDIT_A);
        const std::string h(host);
        ASSERT_EQ(r.run(kSystem, servers("<remote-server nc:operation=\"merge\"><host>" + h +
                                         "</host><config><remote-port>514</remote-port></config>"
                                         "</remote-server>")),
                  YFW_SUCCESS);
        EXPECT_EQ(r.paths(), kVrfHead + server_rows(*family, h, " = \"" + h + "\" @merge",
                                                    "port = \"514\" @merge"))
            << host;
        r.expect_state_restored();
    }
}

TEST(LoggingToNative, AReadAsksAllThreeListsWithTheSameKey) {
    Request r(KIND_GET_CONFIG);
    ASSERT_EQ(r.run(kSystem, servers("<remote-server><host>192.0.2.1</host><selectors><selector>"
                                     "<facility>NONE</facility><severity>ERROR</severity>"
                                     "</selector></selectors></remote-server>")),
              YFW_SUCCESS);
    std::string want = kVrfHead;
    for (const Family *f : {&kHosts, &kIpv4, &kIpv6})
        want += server_rows(*f, "192.0.2.1", " = \"192.0.2.1\"", "severity = \"ERROR\"");
    // The entry named by its keys is read whole: its facility, with no word of
    // its own, asks for the shared native facility.
    EXPECT_EQ(r.paths(),
              want + kN + "/logging-facilities\n" + kN + "/logging-facilities/facility-level\n");
    r.expect_state_restored();
}

TEST(LoggingToNative, DeletesTakeOneServerOrTheWholeVrf) {
    Request one(KIND_EDIT_A);
    ASSERT_EQ(one.run(kSystem, servers("<remote-server nc:operation=\"delete\"><host>192.0.2.1"
                                       "</host></remote-server>")),
              YFW_SUCCESS);
    // The VRF stays; the server's key goes without a value, so the entry is
    // named by its list alone, and the delete reaches its port too.
    EXPECT_EQ(one.paths(), kVrfHead + kVrf + "/ipv4s\n" +
                               under(kVrf + "/ipv4s/ipv4",
                                     {" @delete", "/address @remove", "/ipv4-severity-port",
                                      "/ipv4-severity-port/port @remove"}));
    one.expect_state_restored();

    Request all(KIND_EDIT_A);
    ASSERT_EQ(all.run(kSystem, test::oc_system("<logging><remote-servers nc:operation=\"delete\"/>"
                                               "</logging>")),
              YFW_SUCCESS);
    EXPECT_EQ(all.paths(), chain(kN + "/host-server/vrfs") +
                               under(kVrf, {" @delete", "/vrf-name = \"default\" @delete", "/hosts",
                                            "/hosts/host @remove", "/hosts/host/host-name @remove",
                                            "/hosts/host/host-severity-port",
                                            "/hosts/host/host-severity-port/port = \"\" @remove"}));
    // The deleted container leaves its tag behind in error_tag.
    EXPECT_EQ(all.error_tag(), "remote-servers");
    all.expect_state_restored();
}

TEST(LoggingToNative, ASelectorOfAnotherFacilityIsRefusedInEditsOnly) {
    const std::string sel = "<remote-server><host>192.0.2.1</host><selectors><selector>"
                            "<facility>KERNEL</facility><severity>ERROR</severity></selector>"
                            "</selectors></remote-server>";
    Request edit(KIND_EDIT_A);
    test::expect_refused(
        edit, edit.run(kSystem, servers(sel)),
        {YFW_ERR_BAD_VALUE, "", "", "Invalid value for SYSLOG facility only NONE supported."});
    Request console(KIND_EDIT_C);
    test::expect_refused(
        console,
        console.run(kSystem, test::oc_system("<logging><console><selectors><selector>"
                                             "<facility>NON</facility><severity>ERROR</severity>"
                                             "</selector></selectors></console></logging>")),
        {YFW_ERR_BAD_VALUE, "", "", "Invalid value for SYSLOG facility only NONE supported."});
    Request read(KIND_GET_CONFIG);
    EXPECT_EQ(read.run(kSystem, servers(sel)), YFW_SUCCESS);
}

TEST(LoggingToNative, ThePortIsCheckedOnItsLow32Bits) {
    const std::pair<const char *, cerrno> cases[] = {
        {"65535", YFW_SUCCESS},      {"65536", YFW_ERR_BAD_VALUE},      {"-1", YFW_ERR_BAD_VALUE},
        {"4294967296", YFW_SUCCESS}, {"4295032832", YFW_ERR_BAD_VALUE}, {"abc", YFW_SUCCESS}};
    // A read with a value reads the container whole, and reports the refusal there.
    const std::string config =
        "/openconfig-system:system/logging/remote-servers/remote-server[host='h']/config";
    for (uint32_t kind : {KIND_EDIT_A, KIND_GET_CONFIG})
        for (const auto &[port, status] : cases) {
            Request r(kind);
            const cerrno got = r.run(kSystem, servers("<remote-server><host>h</host><config>"
                                                      "<remote-port>" +
                                                      std::string(port) +
                                                      "</remote-port></config></remote-server>"));
            if (status == YFW_SUCCESS) {
                EXPECT_EQ(got, YFW_SUCCESS) << port;
                continue;
            }
            test::expect_refused(r, got,
                                 {YFW_ERR_BAD_VALUE, kind == KIND_GET_CONFIG ? "config" : "",
                                  kind == KIND_GET_CONFIG ? config : "",
                                  "Invalid remote-port leaf value specified in OC model supported "
                                  "range is (0 - 65535)"});
            EXPECT_EQ(r.paths().find("port"), std::string::npos) << r.paths();
        }
}

TEST(LoggingToNative, ConsoleAndMessagesLevelsSpeakTheConsoleDialect) {
    test::expect_walk(
        kSystem, KIND_EDIT_A,
        test::oc_system("<logging><console><selectors><selector><facility>NONE</facility>"
                        "<severity>DISABLE</severity><config><severity>DISABLE"
                        "</severity></config></selector></selectors></console></logging>"
                        "<messages><config><severity>DISABLE</severity></config></messages>"),
        under(kN, {"", "/console-logging", "/console-logging/logging-level = \"disable\"",
                   "/yang-logging", "/yang-logging/logging-level = \"disable\""}));
    // A read through the key filters by the OpenConfig word itself. Not
    // expect_walk: the read leaves the selector's tag in error_tag.
    Request read(KIND_GET_CONFIG);
    ASSERT_EQ(read.run(kSystem, test::oc_system("<logging><console><selectors><selector>"
                                                "<facility>NONE</facility><severity>INFORMATIONAL"
                                                "</severity></selector></selectors></console>"
                                                "</logging>")),
              YFW_SUCCESS);
    EXPECT_EQ(read.paths(), chain(kN + "/console-logging") + kN +
                                "/console-logging/logging-level = \"INFORMATIONAL\"\n");
}

TEST(LoggingToNative, LeavesWithoutCounterpartAreRefusedInReadsAndEdits) {
    const std::string server = "/openconfig-system:system/logging/remote-servers/"
                               "remote-server[host='h']";
    const std::string selector = "/openconfig-system:system/logging/console/selectors/"
                                 "selector[facility='NONE'][severity='ERROR']/config";
    const std::string debug = "/openconfig-system:system/messages/debug-entries/"
                              "debug-service[service='X']/config";
    const struct {
        std::string body;
        const char *tag;
        std::string path;
    } cases[] = {
        {"<logging><remote-servers><remote-server><host>h</host><config><source-address>"
         "%V%</source-address></config></remote-server></remote-servers></logging>",
         "source-address", server + "/config"},
        {"<logging><console><selectors><selector><facility>NONE</facility><severity>ERROR"
         "</severity><config><facility>%V%</facility></config></selector></selectors></console>"
         "</logging>",
         "facility", selector},
        {"<messages><debug-entries><debug-service><service>X</service><config><enabled>true"
         "</enabled></config></debug-service></debug-entries></messages>",
         "service", debug.substr(0, debug.size() - 7)},
    };
    for (uint32_t kind : {KIND_GET_CONFIG, KIND_EDIT_A})
        for (const auto &c : cases) {
            Request r(kind);
            // A read names the leaf bare; a value would read the container whole.
            std::string body = c.body;
            if (const auto at = body.find("%V%"); at != std::string::npos)
                body.replace(at, 3, kind == KIND_GET_CONFIG ? "" : "NONE");
            test::expect_refused(r, r.run(kSystem, test::oc_system(body)),
                                 {YFW_ERR_UNSUPPORTED_TAG, c.tag, c.path});
        }
}

// ---- Native to OpenConfig ----------------------------------------------------------------

const std::string kRs = kOcSys + "/logging/remote-servers/remote-server[host='192.0.2.1']";

std::string native_server(std::string_view severity) {
    return "<host-server><vrfs><vrf><vrf-name>blue</vrf-name><ipv4s><ipv4><address>192.0.2.1"
           "</address><ipv4-severity-port><severity>" +
           std::string(severity) +
           "</severity><port>514</port></ipv4-severity-port></ipv4></ipv4s></vrf></vrfs>"
           "</host-server><logging-facilities><facility-level>local7</facility-level>"
           "</logging-facilities><archive><size>4</size></archive>";
}

TEST(LoggingFromNative, AServerOfAnyVrfReadsBackAsOneSelectorOfFacilityNone) {
    const std::string sel = kRs + kSel + "[severity='INFORMATIONAL']";
    const std::string head = chain(kRs) + kRs + "/host = \"192.0.2.1\"\n";
    const std::string state =
        under(kRs, {"/state", "/state/host = \"192.0.2.1\"", "/state/remote-port = \"514\""}) +
        kRs + "/selectors\n" +
        under(sel, {"", "/facility = \"NONE\"", "/severity = \"INFORMATIONAL\""});
    test::expect_walk(kSyslog, KIND_GET, native(native_server("informational")),
                      head +
                          under(kRs, {"/config", "/config/host = \"192.0.2.1\"",
                                      "/config/remote-port = \"514\""}) +
                          state +
                          under(sel, {"/config", "/config/severity = \"INFORMATIONAL\"", "/state",
                                      "/state/severity = \"INFORMATIONAL\""}));
    test::expect_walk(kSyslog, KIND_GET, native(native_server("informational")),
                      head + state + under(sel, {"/state", "/state/severity = \"INFORMATIONAL\""}),
                      true);
}

TEST(LoggingFromNative, AnEditKindWritesFirstPathsOnlyAndABadWordNoValue) {
    Request r(KIND_EDIT_A);
    ASSERT_EQ(r.run(kSyslog, native(native_server("info"))), YFW_SUCCESS);
    EXPECT_EQ(r.paths(),
              chain(kRs) +
                  under(kRs, {"/host = \"192.0.2.1\"", "/config", "/config/host = \"192.0.2.1\"",
                              "/config/remote-port = \"514\"", "/selectors", "/selectors/selector",
                              "/selectors/selector/severity", "/selectors/selector/config",
                              "/selectors/selector/config/severity"}));
    EXPECT_EQ(errors(r), "Invalid severity leaf value 'info' specified in OC model\n"
                         "Invalid severity leaf value 'info' specified in OC model\n");
}

TEST(LoggingFromNative, ConsoleDisableHasNoSelectorWhereYangLoggingShowsIt) {
    const std::string sel = kOcSys + "/logging/console" + kSel + "[severity='INFORMATIONAL']";
    const std::string messages =
        under(kOcSys, {"/messages", "/messages/config", "/messages/config/severity = \"DISABLE\""});
    const std::pair<const char *, std::string> cases[] = {
        {"disable", kOcSys + "\n" + messages},
        {"info", chain(kOcSys + "/logging/console/selectors") +
                     under(sel, {"", "/facility = \"NONE\"", "/severity = \"INFORMATIONAL\"",
                                 "/config", "/config/severity = \"INFORMATIONAL\""}) +
                     messages},
    };
    for (const auto &[console, want] : cases)
        test::expect_walk(kSyslog, KIND_GET_CONFIG,
                          native("<console-logging><logging-level>" + std::string(console) +
                                 "</logging-level></console-logging><yang-logging>"
                                 "<logging-level>disable</logging-level></yang-logging>"),
                          want);
    test::expect_walk(kSyslog, KIND_GET,
                      native("<yang-logging><logging-level>info</logging-level></yang-logging>"),
                      "", true);
}

// ---- Messages --------------------------------------------------------------------------------

TEST(Messages, NativeStateSpeaksTheServersDialectInGetOnly) {
    const auto answer = [](std::string_view state) {
        return test::native("Tarvex-QV-PRIVATE-ocsystem-messages-telemetry-oper", "ocsyslog",
                            "<system><messages><state>" + std::string(state) +
                                "</state></messages></system>");
    };
    const std::string good = answer("<severity>informational</severity><message><msg>up</msg>"
                                    "<priority>189</priority></message>");
    const std::string s = kOcSys + "/messages/state";
    test::expect_walk(kMessages, KIND_GET, good,
                      chain(s) +
                          under(s, {"/severity = \"INFORMATIONAL\"", "/message",
                                    "/message/msg = \"up\"", "/message/priority = \"189\""}));
    test::expect_walk(kMessages, KIND_GET, answer("<severity>info</severity>"),
                      chain(s + "/severity"));
    test::expect_walk(kMessages, KIND_GET_CONFIG, good, "");
}

TEST(Messages, TheStandAloneModelRefusesEveryLeafAndSyslogServiceIsDropped) {
    const auto standalone = [](std::string_view body) {
        return "<messages xmlns=\"http://openconfig.net/yang/messages\">" + std::string(body) +
               "</messages>";
    };
    const std::pair<const char *, const char *> cases[] = {
        {"<config><severity>DEBUG</severity></config>", "severity"},
        {"<debug-entries><debug-service><service>X</service></debug-service></debug-entries>",
         "service"},
    };
    for (const auto &[body, tag] : cases) {
        Request r(KIND_EDIT_A);
        EXPECT_EQ(r.run(&ymap_oq_ocsystem_openconfigmessages_lvla_messages, standalone(body)),
                  YFW_ERR_UNSUPPORTED_TAG);
        EXPECT_EQ(r.error_tag(), tag);
    }
    test::expect_walk(&ymap_qo_ocsystem_tarvexqvinfrasyslogcfg_lvla_syslogservice, KIND_GET,
                      test::native("Tarvex-QV-infra-syslog-cfg", "syslog-service",
                                   "<timestamps><log><log-datetime><msec/></log-datetime></log>"
                                   "</timestamps>"),
                      "");
}

} // namespace
