// The two text forms of the OpenConfig side say the same: an RFC 7951 JSON
// request maps as its XML twin does, and an answer printed as JSON reads
// back in libyang as the same data as its XML print.
#include <fstream>
#include <iterator>

#include <libyang/libyang.h>

#include "yang_support.hpp"

namespace {

namespace yang = ocsysmap::yang;

constexpr std::string_view kOc = R"(xmlns="http://openconfig.net/yang/system")";

struct Twin {
    std::string_view kind;
    std::string xml;
    std::string_view json;
    bool needs_models; // identities differ by prefix in the schema-less reading
};

const Twin kTwins[] = {
    {"edit-a",
     std::string("<system ") + std::string(kOc) +
         R"( xmlns:nc="urn:ietf:params:xml:ns:netconf:base:1.0"><config>)"
         R"(<hostname nc:operation="replace">r1</hostname></config></system>)",
     R"({"openconfig-system:system": {"config": {"hostname": "r1",
        "@hostname": {"ietf-netconf:operation": "replace"}}}})",
     false},
    {"edit-a",
     std::string("<system ") + std::string(kOc) +
         "><dns><host-entries><host-entry><hostname>ns1</hostname><config><hostname>ns1</hostname>"
         "<ipv4-address>192.0.2.53</ipv4-address></config></host-entry></host-entries></dns></"
         "system>",
     R"({"openconfig-system:system": {"dns": {"host-entries": {"host-entry": [{"hostname": "ns1",
        "config": {"hostname": "ns1", "ipv4-address": ["192.0.2.53"]}}]}}}})",
     false},
    {"get-config",
     std::string("<system ") + std::string(kOc) + "><config><hostname/></config></system>",
     R"({"openconfig-system:system": {"config": {"hostname": [null]}}})", false},
    {"edit-a",
     std::string("<system ") + std::string(kOc) +
         R"( xmlns:t="http://openconfig.net/yang/aaa/types"><aaa><authentication><config>)"
         "<authentication-method>t:TACACS_ALL</authentication-method>"
         "<authentication-method>t:LOCAL</authentication-method>"
         "</config></authentication></aaa></system>",
     R"({"openconfig-system:system": {"aaa": {"authentication": {"config":
        {"authentication-method": ["openconfig-aaa-types:TACACS_ALL",
                                   "openconfig-aaa-types:LOCAL"]}}}}})",
     true},
};

TEST(RoundTrip, JsonRequestMapsAsItsXmlTwin) {
    OCSYSMAP_NEED_MODELS();
    const std::string dir = test::models_dir().string();
    for (const Twin &t : kTwins) {
        for (bool with_models : {true, false}) {
            if (t.needs_models && !with_models) {
                continue;
            }
            std::vector<std::string_view> args{"--format", "json"};
            if (with_models) {
                args.insert(args.end(), {"--models", dir});
            }
            const test::Ran from_xml = test::map(t.kind, args, t.xml);
            const test::Ran from_json = test::map(t.kind, args, t.json);
            EXPECT_EQ(from_xml.rc, 0) << from_xml.err;
            EXPECT_NE(from_xml.out, "[]");
            EXPECT_EQ(from_json.out, from_xml.out) << t.json << "\n" << from_json.err;
        }
    }
}

TEST(RoundTrip, AnswerPrintedAsJsonReadsBackAsTheXmlPrint) {
    OCSYSMAP_NEED_MODELS();
    const std::string dir = test::models_dir().string();
    for (std::string_view file : {"native-alarms.xml", "native-cpus.xml", "native-dns.xml",
                                  "native-ntp.xml", "native-messages.xml"}) {
        std::ifstream in(test::source_dir() / "examples" / file);
        const std::string native{std::istreambuf_iterator<char>(in), {}};
        const test::Ran xml = test::map("get", {"--models", dir, "--format", "xml"}, native);
        const test::Ran json = test::map("get", {"--models", dir, "--format", "ietf-json"}, native);
        ASSERT_EQ(xml.rc, 0) << file << xml.err;
        ASSERT_EQ(json.rc, 0) << file << json.err;
        auto a =
            yang::parse(*test::models(), xml.out, yang::Format::xml, yang::Content::operational);
        auto b =
            yang::parse(*test::models(), json.out, yang::Format::json, yang::Content::operational);
        ASSERT_NE(a, nullptr) << file;
        EXPECT_EQ(lyd_compare_siblings(a.get(), b.get(), LYD_COMPARE_FULL_RECURSION), LY_SUCCESS)
            << file << "\n"
            << xml.out << "\n"
            << json.out;
    }
}

} // namespace
