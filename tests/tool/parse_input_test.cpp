// Reading trees: XML against the same tree written in the lossless JSON form,
// the JSON-only fields record by record, and refused inputs with their messages.
#include <gtest/gtest.h>

#include "tool/tree_compare.hpp"

namespace ocsysmap {
namespace {

using testing::fields;
using testing::roots_diff;

#define OC "http://openconfig.net/yang/system"
#define GRPC "http://openconfig.net/yang/system-grpc"
#define SHELL "http://tarvex.local/ns/yang/Tarvex-QV-shellutil-cfg"
#define NC "urn:ietf:params:xml:ns:netconf:base:1.0"

struct XmlCase {
    const char *name;
    bool read_kind;
    const char *xml;
    const char *json;
};

const XmlCase kXmlCases[] = {
    {"default namespace is inherited", false,
     R"(<system xmlns=")" OC R"("><config><hostname>r1</hostname></config></system>)",
     R"({"tag": "system", "module": "openconfig-system", "children": [
          {"tag": "config", "children": [{"tag": "hostname", "value": "r1"}]}]})"},
    {"prefixes, and a namespace that changes below the root", true,
     R"(<oc:system xmlns:oc=")" OC R"(" xmlns=")" GRPC R"(">
          <grpc-server><oc:config/></grpc-server></oc:system>)",
     R"({"tag": "system", "module": "openconfig-system", "children": [
          {"tag": "grpc-server", "module": "openconfig-system-grpc", "children": [
            {"tag": "config", "module": "openconfig-system"}]}]})"},
    {"no namespace, and xmlns undeclared", true, R"(<a><b xmlns="urn:x"><c xmlns=""/></b></a>)",
     R"({"tag": "a", "children": [
          {"tag": "b", "namespace": "urn:x", "children": [{"tag": "c", "namespace": null}]}]})"},
    {"operations by name and by number", false,
     R"(<system xmlns=")" OC R"(" xmlns:nc=")" NC R"(" nc:operation="replace">
          <config nc:operation="7"><hostname nc:operation="delete"/>
          <domain-name nc:operation="-1">x</domain-name><motd-banner nc:operation="create">m</motd-banner>
          <login-banner nc:operation="merge">l</login-banner></config>
          <clock nc:operation="remove"/></system>)",
     R"({"tag": "system", "module": "openconfig-system", "operation": "replace", "children": [
          {"tag": "config", "operation": 7, "children": [
            {"tag": "hostname", "operation": "delete", "value": ""},
            {"tag": "domain-name", "operation": -1, "value": "x"},
            {"tag": "motd-banner", "operation": "create", "value": "m"},
            {"tag": "login-banner", "operation": "merge", "value": "l"}]},
          {"tag": "clock", "operation": "remove", "value": ""}]})"},
    {"empty elements select in a read kind", true,
     R"(<system xmlns=")" OC
     R"("><config><hostname/><login-banner></login-banner></config></system>)",
     R"({"tag": "system", "module": "openconfig-system", "children": [
          {"tag": "config", "children": [{"tag": "hostname"}, {"tag": "login-banner"}]}]})"},
    {"empty elements carry the empty value in a write kind", false,
     R"(<system xmlns=")" OC
     R"("><config><hostname/><login-banner></login-banner></config></system>)",
     R"({"tag": "system", "module": "openconfig-system", "children": [
          {"tag": "config", "children": [
            {"tag": "hostname", "value": ""}, {"tag": "login-banner", "value": ""}]}]})"},
    {"layout between elements is dropped, a leaf's text is kept whole", false,
     "<a>\n  <b> x\n</b>\n  <!-- note -->\n  <c>&lt;&amp;&#65;&gt;<![CDATA[<d/>]]></c>\n</a>",
     R"({"tag": "a", "children": [{"tag": "b", "value": " x\n"}, {"tag": "c", "value": "<&A><d/>"}]})"},
    {"references in namespaces are resolved", true, R"(<a xmlns="urn:a&amp;b&#x2F;"/>)",
     R"({"tag": "a", "namespace": "urn:a&b/"})"},
    {"a config wrapper holds several roots", false,
     R"(<config xmlns=")" NC R"("><system xmlns=")" OC R"("/><host-names xmlns=")" SHELL
     R"("/></config>)",
     R"([{"tag": "system", "module": "openconfig-system", "value": ""},
         {"tag": "host-names", "module": "Tarvex-QV-shellutil-cfg", "value": ""}])"},
    {"a filter wrapper in any namespace", true,
     R"(<filter xmlns="urn:other"><system xmlns=")" OC R"("/></filter>)",
     R"([{"tag": "system", "module": "openconfig-system"}])"},
    {"an empty data wrapper holds no root", true, "<?xml version=\"1.0\"?>\n<data/>", "[]"},
};

void PrintTo(const XmlCase &c, std::ostream *os) {
    *os << c.name;
}

class XmlInput : public ::testing::TestWithParam<XmlCase> {};

TEST_P(XmlInput, EqualsItsJsonForm) {
    const XmlCase &c = GetParam();
    yfw::Arena arena;
    auto from_xml = parse_input(arena, c.xml, c.read_kind);
    auto from_json = parse_input(arena, c.json, c.read_kind);
    EXPECT_EQ(roots_diff(from_xml, from_json), "");
}

INSTANTIATE_TEST_SUITE_P(Cases, XmlInput, ::testing::ValuesIn(kXmlCases), [](const auto &info) {
    std::string name = info.param.name;
    for (char &ch : name) {
        ch = std::isalnum(static_cast<unsigned char>(ch)) ? ch : '_';
    }
    return name;
});

// Fields that only the JSON form can set, one record field per case.
struct FieldCase {
    const char *json;
    const char *field;
    const char *expected;
};

const FieldCase kFieldCases[] = {
    {R"({"tag": null})", "tag", "null"},
    {R"({"tag": "a", "children": null, "subtree_count": 3})", "children", "null x3"},
    {R"({"tag": "a", "subtree_count": 2})", "children", "absent, count 2"},
    {R"({"tag": "a", "children": []})", "children", "0"},
    {R"({"tag": "a", "error_kind": 5})", "error_kind", "5"},
    {R"({"tag": "a", "node_kind": 3})", "node_kind", "3"},
    {R"({"tag": "a", "is_key": true})", "is_key", "1"},
    {R"({"tag": "a", "operation": 2})", "operation", "2"},
    {R"({"tag": "a", "value": ""})", "value", "\"\""},
    {R"({"tag": "a", "value": null})", "value", "null"},
    {R"({"tag": "a", "value": "\u00e9\n"})", "value", "\"\xC3\xA9\n\""},
    {R"({"tag": "a", "namespace": "urn:unknown"})", "namespace", "\"urn:unknown\""},
    {R"({"tag": "a", "module": "Tarvex-QV-shellutil-cfg"})", "namespace", "\"" SHELL "\""},
};

TEST(JsonInput, SetsEachFieldWithItsPresence) {
    for (const FieldCase &c : kFieldCases) {
        yfw::Arena arena;
        auto roots = parse_input(arena, c.json, false);
        ASSERT_EQ(roots.size(), 1u) << c.json;
        for (const auto &[name, text] : fields(*roots[0])) {
            if (std::string_view(name) == c.field) {
                EXPECT_EQ(text, c.expected) << c.json;
            }
        }
    }
}

TEST(JsonInput, ChildrenInheritOrOverrideTheNamespace) {
    yfw::Arena arena;
    auto roots = parse_input(arena, R"([{"tag": "a", "namespace": "urn:a", "children": [
        {"tag": "b"}, {"tag": "c", "namespace": null}, {"tag": "d", "namespace": "urn:d"}]}])",
                             true);
    ASSERT_EQ(roots.size(), 1u);
    const tidl_yfw_datatree &a = *roots[0];
    ASSERT_EQ(a.subtree_count, 3u);
    EXPECT_STREQ(a.subtrees[0].namespace_, "urn:a");
    EXPECT_EQ(a.subtrees[1].namespace_, nullptr);
    EXPECT_STREQ(a.subtrees[2].namespace_, "urn:d");
}

struct BadCase {
    const char *input;
    const char *message; // a part of the message
};

std::string deep(const char *open, const char *close, int levels) {
    std::string text;
    for (int i = 0; i < levels; ++i) {
        text += open;
    }
    for (int i = 0; i < levels; ++i) {
        text += close;
    }
    return text;
}

const std::string kDeepXml = deep("<a>", "</a>", 130);
const std::string kDeepJson =
    "{\"tag\": \"a\"" + deep(", \"children\": [{\"tag\": \"a\"", "}]", 130) + "}";

const BadCase kBadCases[] = {
    {"", "the input is empty"},
    {" \n\t", "the input is empty"},
    {"hostname r1", "the input is neither XML (begins with '<') nor JSON"},
    {"<a>", "XML line 1: "},
    {"<a>\n</b>", "XML line 2: Opening and ending tag mismatch: a line 1 and b"},
    {"<a/><b/>", "XML line 1: Extra content at the end of the document"},
    {"<p:a/>", "XML line 1: Namespace prefix p on a is not defined"},
    {"<a>&e;</a>", "XML line 1: Entity 'e' not defined"},
    {"<!DOCTYPE a [<!ENTITY e SYSTEM \"file:///etc/passwd\">]><a>&e;</a>",
     "XML: document type declarations are not accepted"},
    {"<a>\n<b/>text</a>", "XML line 1: <a> mixes text with child elements"},
    {"<a operation=\"delete\"/>",
     "XML line 1: the operation attribute of <a> must be in the namespace " NC},
    {"<a xmlns:nc=\"" NC "\" nc:operation=\"erase\"/>",
     "XML line 1: unknown operation \"erase\" (merge, replace, create, delete, remove or a "
     "number)"},
    {"<a xmlns:nc=\"" NC "\" nc:operation=\"99999999999\"/>", "unknown operation \"99999999999\""},
    {"<config xmlns:nc=\"" NC "\" nc:operation=\"merge\"><a/></config>",
     "XML line 1: an operation on the <config> wrapper is not supported"},
    {kDeepXml.c_str(), "elements nest deeper than 128 levels"},
    {"{\"tag\": \"a\",", "JSON: parse error at line 1, column 13"},
    {"{\"tag\": \"a\", \"error_kind\": 1e400}", "JSON: number overflow parsing '1e400'"},
    {"{\"tag\": \"a\", \"colour\": 1}", "JSON node (top): unknown key \"colour\""},
    {"{\"value\": \"x\"}", "JSON node (top): missing \"tag\""},
    {"{\"tag\": 1}", "\"tag\" must be a string or null"},
    {"{\"tag\": \"a\", \"value\": 5}", "\"value\" must be a string or null"},
    {"{\"tag\": \"a\", \"module\": \"no-such-module\"}", "unknown module \"no-such-module\""},
    {"{\"tag\": \"a\", \"module\": \"openconfig-system\", \"namespace\": \"urn:x\"}",
     "give \"module\" or \"namespace\", not both"},
    {"{\"tag\": \"a\", \"operation\": \"erase\"}", "unknown operation \"erase\""},
    {"{\"tag\": \"a\", \"operation\": 1.5}", "\"operation\" must be a name or an integer"},
    {"{\"tag\": \"a\", \"operation\": 2147483648}", "\"operation\" is out of range"},
    {"{\"tag\": \"a\", \"is_key\": 256}", "\"is_key\" is out of range"},
    {"{\"tag\": \"a\", \"error_kind\": \"5\"}", "\"error_kind\" must be an integer"},
    {"{\"tag\": \"a\", \"children\": null}", "\"children\": null needs a \"subtree_count\""},
    {"{\"tag\": \"a\", \"children\": [], \"subtree_count\": 1}",
     "\"subtree_count\" goes with \"children\": null or without \"children\""},
    {"{\"tag\": \"a\", \"children\": {}}", "\"children\" must be an array or null"},
    {"[{\"tag\": \"a\", \"children\": [{\"tag\": \"b\"}, 5]}]",
     "JSON node /0/children/1: a node must be an object"},
    {"[1]", "JSON node /0: a node must be an object"},
    {kDeepJson.c_str(), "nodes nest deeper than 128 levels"},
};

TEST(ParseInput, RefusesMalformedInputWithAClearMessage) {
    for (const BadCase &c : kBadCases) {
        yfw::Arena arena;
        try {
            parse_input(arena, c.input, false);
            ADD_FAILURE() << "accepted: " << c.input;
        } catch (const ParseError &e) {
            EXPECT_NE(std::string(e.what()).find(c.message), std::string::npos)
                << "input: " << std::string_view(c.input).substr(0, 80)
                << "\nmessage: " << e.what();
        }
    }
}

TEST(ParseInput, SkipsAByteOrderMarkAndLeadingSpace) {
    yfw::Arena arena;
    EXPECT_EQ(parse_input(arena, "\xEF\xBB\xBF \n<a/>", true).size(), 1u);
    EXPECT_EQ(parse_input(arena, "\xEF\xBB\xBF\t[]", true).size(), 0u);
}

} // namespace
} // namespace ocsysmap
