// --validate and the models' refusals as the tool reports them, and RFC 7951
// JSON read without a schema.
#include "ocsysmap_io.hpp"
#include "yang_support.hpp"

namespace {

struct Case {
    std::string_view name;
    std::string_view kind;
    std::string_view input;
    int rc;
    std::string_view err_part; // the path the refusal names
};

const Case kCases[] = {
    {"edit value", "edit-a",
     R"(<system xmlns="http://openconfig.net/yang/system"><ntp><config>)"
     "<enabled>maybe</enabled></config></ntp></system>",
     3, "/openconfig-system:system/ntp/config/enabled: Invalid boolean value \"maybe\""},
    {"JSON edit value", "edit-a",
     R"({"openconfig-system:system": {"ntp": {"config": {"enabled": "maybe"}}}})", 3,
     "/openconfig-system:system/ntp/config/enabled"},
    {"filter match", "get",
     R"(<system xmlns="http://openconfig.net/yang/system"><ntp><servers><server>)"
     "<address>192.0.2.1</address><state><stratum>999</stratum></state>"
     "</server></servers></ntp></system>",
     3, "/state/stratum: Value \"999\" is out of type uint8"},
    {"unknown node", "get", R"(<system xmlns="http://openconfig.net/yang/system"><nope/></system>)",
     3, "/openconfig-system:system/nope: no such node"},
    {"answer value", "get",
     R"(<amfm-edt xmlns="http://tarvex.local/ns/yang/Tarvex-QV-PRIVATE-alarm-mgr-oc-oper">)"
     "<system><alarms><alarm><id>a1</id><state><id>a1</id><severity>SEVERE</severity>"
     "</state></alarm></alarms></system></amfm-edt>",
     3, "/alarm[id='a1']/state/severity: Invalid identityref \"SEVERE\""},
    {"good answer", "get",
     R"(<amfm-edt xmlns="http://tarvex.local/ns/yang/Tarvex-QV-PRIVATE-alarm-mgr-oc-oper">)"
     "<system><alarms><alarm><id>a1</id><state><id>a1</id><severity>MAJOR</severity>"
     "</state></alarm></alarms></system></amfm-edt>",
     0, ""},
};

TEST(Validate, RefusalsNameThePathAndExitThree) {
    OCSYSMAP_NEED_MODELS();
    const std::string dir = test::models_dir().string();
    for (const Case &c : kCases) {
        const test::Ran r =
            test::map(c.kind, {"--models", dir, "--validate", "--format", "xml"}, c.input);
        EXPECT_EQ(r.rc, c.rc) << c.name << "\n" << r.err;
        EXPECT_NE(r.err.find(c.err_part), std::string::npos) << c.name << "\n" << r.err;
        if (c.rc == 3) {
            EXPECT_EQ(r.out, "") << c.name;
        } else {
            // The defaults that validation adds are not printed as answers.
            EXPECT_EQ(r.out.find("<ntp>"), std::string::npos) << r.out;
        }
    }
}

TEST(Validate, NeedsTheModels) {
    const test::Ran r = test::map("get", {"--validate"}, "<a/>");
    EXPECT_EQ(r.rc, 2);
    EXPECT_NE(r.err.find("--validate needs the models"), std::string::npos) << r.err;
}

struct JsonCase {
    std::string_view input;
    std::string_view paths; // or the start of the error
};

const JsonCase kJson[] = {
    {R"({"Tarvex-QV-shellutil-cfg:host-names": {"host-name": "router-1"}})",
     "/Tarvex-QV-shellutil-cfg:host-names\n/Tarvex-QV-shellutil-cfg:host-names/host-name = "
     "\"router-1\"\n"},
    {R"({"Tarvex-QV-crypto-ssh-cfg:ssh": {"server": {"v2": [null], "rate-limit": 30,
        "@rate-limit": {"ietf-netconf:operation": "delete"}}}})",
     "/Tarvex-QV-crypto-ssh-cfg:ssh\n/Tarvex-QV-crypto-ssh-cfg:ssh/server\n"
     "/Tarvex-QV-crypto-ssh-cfg:ssh/server/v2 = \"\"\n"
     "/Tarvex-QV-crypto-ssh-cfg:ssh/server/rate-limit = \"30\" @delete\n"},
    {R"({"Tarvex-QV-ip-domain-cfg:ip-domain": {"vrfs": {"vrf": [{"vrf-name": "a"},
        {"vrf-name": "b"}]}}})",
     "[vrf-name='b']/vrf-name = \"b\"\n"},
    {R"({"nope:x": {}})", "JSON /nope:x: unknown module \"nope\""},
    {R"({"x": {}})", "JSON /x: a top-level name must be qualified"},
    {R"({"Tarvex-QV-shellutil-cfg:host-names": {"host-name": "a",
        "@host-name": {"ietf-netconf:operation": "zap"}}})",
     "JSON /Tarvex-QV-shellutil-cfg:host-names/host-name: unknown operation \"zap\""},
};

TEST(IetfJson, ReadsWithoutASchema) {
    for (const JsonCase &c : kJson) {
        yfw::Arena arena;
        std::string got;
        try {
            auto roots = ocsysmap::parse_ietf_json(arena, c.input, false);
            got = ocsysmap::to_paths(*ocsysmap::document_of(arena, roots));
        } catch (const ocsysmap::ParseError &e) {
            got = e.what();
        }
        EXPECT_NE(got.find(c.paths), std::string::npos) << c.input << "\n" << got;
    }
}

} // namespace
