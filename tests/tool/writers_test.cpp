// Writing trees: exact texts of the three forms, and the round trips that the
// tool and the tests rely on.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tool/tree_compare.hpp"

namespace ocsysmap {
namespace {

using testing::dump;
using testing::parse_document;

#define OC "http://openconfig.net/yang/system"
#define GRPC "http://openconfig.net/yang/system-grpc"
#define SHELL "http://tarvex.local/ns/yang/Tarvex-QV-shellutil-cfg"
#define NC "urn:ietf:params:xml:ns:netconf:base:1.0"

// An edit of two roots that uses every feature the writers show.
const char *const kEdit =
    R"(<config xmlns=")" NC R"(" xmlns:nc=")" NC R"(">
  <system xmlns=")" OC R"(" nc:operation="replace">
    <config><hostname nc:operation="merge">r1</hostname></config>
    <grpc-server xmlns=")" GRPC
    R"("><config><name nc:operation="7">"q" &amp; \</name></config></grpc-server>
  </system>
  <host-names xmlns=")" SHELL R"("><host-name nc:operation="delete"/></host-names>
</config>)";

TEST(Writers, Paths) {
    yfw::Arena arena;
    EXPECT_EQ(to_paths(parse_document(arena, kEdit)),
              "/openconfig-system:system @replace\n"
              "/openconfig-system:system/config\n"
              "/openconfig-system:system/config/hostname = \"r1\" @merge\n"
              "/openconfig-system:system/openconfig-system-grpc:grpc-server\n"
              "/openconfig-system:system/openconfig-system-grpc:grpc-server/config\n"
              "/openconfig-system:system/openconfig-system-grpc:grpc-server/config/name = "
              "\"\\\"q\\\" & \\\\\" @7\n"
              "/Tarvex-QV-shellutil-cfg:host-names\n"
              "/Tarvex-QV-shellutil-cfg:host-names/host-name = \"\" @delete\n");
    EXPECT_EQ(to_paths(parse_document(arena, R"({"tag": "a", "value": "x\ty\n\u0001\u00e9"})")),
              "/a = \"x\\ty\\n\\u0001\xC3\xA9\"\n");
    EXPECT_EQ(to_paths(parse_document(arena, "[]")), "");
}

TEST(Writers, XmlPrintsALoneRootAloneUnlessItLooksLikeAWrapper) {
    yfw::Arena arena;
    EXPECT_EQ(
        to_xml(parse_document(arena, R"(<system xmlns=")" OC R"("><config/></system>)", true)),
        "<system xmlns=\"" OC "\">\n  <config/>\n</system>\n");
    EXPECT_EQ(to_xml(parse_document(arena, R"({"tag": "data", "value": "<&>\r"})")),
              "<data xmlns=\"" NC "\">\n  <data xmlns=\"\">&lt;&amp;&gt;&#13;</data>\n</data>\n");
    EXPECT_EQ(to_xml(parse_document(arena, "[]")), "<data xmlns=\"" NC "\"/>\n");
}

TEST(Writers, XmlRefusesWhatItCannotHold) {
    yfw::Arena arena;
    EXPECT_THROW(to_xml(parse_document(arena, R"({"tag": null})")), std::invalid_argument);
    EXPECT_THROW(
        to_xml(parse_document(arena, R"({"tag": "a", "value": "v", "children": [{"tag": "b"}]})")),
        std::invalid_argument);
}

// Known modules by name, inherited namespaces left out; the layout is the JSON library's.
TEST(Writers, Json) {
    yfw::Arena arena;
    const std::string json =
        to_json(parse_document(arena, R"(<a xmlns=")" OC R"("><b xmlns="urn:b">v</b><c/></a>)"));
    EXPECT_EQ(nlohmann::json::parse(json), nlohmann::json::parse(R"([{"tag": "a",
        "module": "openconfig-system", "children": [{"tag": "b", "namespace": "urn:b",
        "value": "v"}, {"tag": "c", "value": ""}]}])"))
        << json;
}

// Each input reads back as the same tree from its JSON form, and an XML input
// from its XML form as well.
TEST(Writers, RoundTrips) {
    const std::pair<const char *, bool> inputs[] = {
        {kEdit, false},
        {kEdit, true},
        {R"(<a><b xmlns="urn:b"><c xmlns=""> </c><d/></b></a>)", true},
        {"<filter><data><x>&#13;\t&lt;]]&gt;&quot;'</x></data></filter>", false},
        {R"([{"tag": null, "value": null, "subtree_count": 4},
             {"tag": "a", "module": "openconfig-system", "operation": 9, "error_kind": 5,
              "node_kind": 6, "is_key": 1, "children": [
                {"tag": "b", "namespace": null, "value": "", "children": null, "subtree_count": 2},
                {"tag": "c", "namespace": "urn:unknown", "operation": "remove", "children": []}]}])",
         false},
        {R"({"tag": "x", "value": "\u0000\u001f\"\\"})", false},
    };
    for (const auto &[text, read_kind] : inputs) {
        yfw::Arena arena;
        auto first = parse_input(arena, text, read_kind);
        const std::string json = to_json(*document_of(arena, first));
        auto second = parse_input(arena, json, read_kind);
        EXPECT_EQ(dump(first), dump(second)) << json;
        EXPECT_EQ(to_json(*document_of(arena, second)), json);
        if (text[0] == '<') {
            const std::string xml = to_xml(*document_of(arena, first));
            EXPECT_EQ(dump(first), dump(parse_input(arena, xml, read_kind))) << xml;
        }
    }
}

} // namespace
} // namespace ocsysmap
