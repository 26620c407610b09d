// Reading trees: XML against the same tree written in the lossless JSON form,
// the fields only JSON can set, and refused inputs with their messages.
#include <gtest/gtest.h>

#include "tool/tree_compare.hpp"

namespace ocsysmap {
namespace {

using testing::dump;

#define OC "http://openconfig.net/yang/system"
#define GRPC "http://openconfig.net/yang/system-grpc"
#define SHELL "http://tarvex.local/ns/yang/Tarvex-QV-shellutil-cfg"
#define NC "urn:ietf:params:xml:ns:netconf:base:1.0"

TEST(XmlInput, EqualsItsJsonForm) {
    struct Case {
        const char *name;
        bool read_kind;
        const char *xml;
        const char *json;
    };
    const Case cases[] = {
        {"prefixes, and a namespace that changes below the root", true,
         R"(<oc:system xmlns:oc=")" OC R"(" xmlns=")" GRPC R"(">
              <grpc-server><oc:config/></grpc-server></oc:system>)",
         R"({"tag": "system", "module": "openconfig-system", "children": [
              {"tag": "grpc-server", "module": "openconfig-system-grpc", "children": [
                {"tag": "config", "module": "openconfig-system"}]}]})"},
        {"operations by name and by number", false,
         R"(<system xmlns=")" OC R"(" xmlns:nc=")" NC R"(" nc:operation="replace">
              <config nc:operation="7"><hostname nc:operation="delete"/>
              <domain-name nc:operation="-1">x</domain-name></config>
              <clock nc:operation="remove"/></system>)",
         R"({"tag": "system", "module": "openconfig-system", "operation": "replace", "children": [
              {"tag": "config", "operation": 7, "children": [
                {"tag": "hostname", "operation": "delete", "value": ""},
                {"tag": "domain-name", "operation": -1, "value": "x"}]},
              {"tag": "clock", "operation": "remove", "value": ""}]})"},
        {"empty elements carry the empty value in a write kind", false,
         R"(<system xmlns=")" OC R"("><config><hostname/></config></system>)",
         R"({"tag": "system", "module": "openconfig-system", "children": [
              {"tag": "config", "children": [{"tag": "hostname", "value": ""}]}]})"},
        {"no namespace, and xmlns undeclared", true, R"(<a><b xmlns="urn:x"><c xmlns=""/></b></a>)",
         R"({"tag": "a", "children": [
              {"tag": "b", "namespace": "urn:x", "children": [
                {"tag": "c", "namespace": null}]}]})"},
        {"layout between elements is dropped, a leaf's text is kept whole", false,
         "<a>\n  <b> x\n</b>\n  <!-- note -->\n  <c>&lt;&amp;&#65;&gt;<![CDATA[<d/>]]></c>\n</a>",
         R"({"tag": "a", "children": [{"tag": "b", "value": " x\n"}, {"tag": "c", "value": "<&A><d/>"}]})"},
        {"references in namespaces are resolved", false, R"(<a xmlns="urn:a&amp;b&#x2F;"/>)",
         R"({"tag": "a", "namespace": "urn:a&b/", "value": ""})"},
        {"in a read kind empty elements select, except under a native root, always an answer", true,
         R"(<filter xmlns="urn:other"><system xmlns=")" OC R"("><config><hostname/>
              <motd-banner></motd-banner></config></system>
              <host-names xmlns=")" SHELL R"("><host-name/></host-names></filter>)",
         R"([{"tag": "system", "module": "openconfig-system", "children": [
              {"tag": "config", "children": [{"tag": "hostname"}, {"tag": "motd-banner"}]}]},
             {"tag": "host-names", "module": "Tarvex-QV-shellutil-cfg", "children": [
               {"tag": "host-name", "value": ""}]}])"},
        {"an empty data wrapper holds no root", true, "<?xml version=\"1.0\"?>\n<data/>", "[]"},
    };
    for (const Case &c : cases) {
        yfw::Arena arena;
        EXPECT_EQ(dump(parse_input(arena, c.xml, c.read_kind)),
                  dump(parse_input(arena, c.json, c.read_kind)))
            << c.name;
    }
}

TEST(JsonInput, SetsEachFieldWithItsPresence) {
    yfw::Arena arena;
    auto roots = parse_input(arena, R"([
        {"tag": null, "value": null, "children": null, "subtree_count": 3},
        {"tag": "a", "module": "Tarvex-QV-shellutil-cfg", "value": "\u00e9\n", "operation": 2,
         "error_kind": 5, "node_kind": 3, "is_key": true, "subtree_count": 2},
        {"tag": "b", "namespace": "urn:unknown", "value": "", "children": []}])",
                             false);
    EXPECT_EQ(dump(roots), "null null null - - - - null x3\n"
                           "\"a\" \"" SHELL "\" \"\xC3\xA9\n\" 2 5 3 1 - x2\n"
                           "\"b\" \"urn:unknown\" \"\" - - - - 0\n");
}

std::string deep(const char *open, const char *close, int levels) {
    std::string text;
    for (int i = 0; i < levels; ++i) {
        text.insert(0, open).append(close);
    }
    return text;
}

TEST(ParseInput, RefusesMalformedInputWithAClearMessage) {
    const std::string deep_xml = deep("<a>", "</a>", 130);
    const std::string deep_json = deep("{\"tag\": \"a\", \"children\": [", "]}", 130);
    const std::pair<const char *, const char *> cases[] = {
        {" \n\t", "the input is empty"},
        {"hostname r1", "the input is neither XML (begins with '<') nor JSON"},
        {"<a>\n</b>", "XML line 2: Opening and ending tag mismatch: a line 1 and b"},
        {"<p:a/>", "XML line 1: Namespace prefix p on a is not defined"},
        {"<!DOCTYPE a [<!ENTITY e SYSTEM \"file:///etc/passwd\">]><a>&e;</a>",
         "XML: document type declarations are not accepted"},
        {"<a>\n<b/>text</a>", "XML line 1: <a> mixes text with child elements"},
        {"<a operation=\"delete\"/>",
         "XML line 1: the operation attribute of <a> must be in the namespace " NC},
        {"<a xmlns:nc=\"" NC "\" nc:operation=\"erase\"/>",
         "XML line 1: unknown operation \"erase\" (merge, replace, create, delete, remove or a "
         "number)"},
        {"<a xmlns:nc=\"" NC "\" nc:operation=\"99999999999\"/>",
         "unknown operation \"99999999999\""},
        {"<config xmlns:nc=\"" NC "\" nc:operation=\"merge\"><a/></config>",
         "XML line 1: an operation on the <config> wrapper is not supported"},
        {deep_xml.c_str(), "elements nest deeper than 128 levels"},
        {"{\"tag\": \"a\",", "JSON: parse error at line 1, column 13"},
        {"{\"tag\": \"a\", \"colour\": 1}", "JSON node (top): unknown key \"colour\""},
        {"{\"value\": \"x\"}", "JSON node (top): missing \"tag\""},
        {"{\"tag\": 1}", "\"tag\" must be a string or null"},
        {"{\"tag\": \"a\", \"module\": \"no-such-module\"}", "unknown module \"no-such-module\""},
        {"{\"tag\": \"a\", \"module\": \"openconfig-system\", \"namespace\": \"urn:x\"}",
         "give \"module\" or \"namespace\", not both"},
        {"{\"tag\": \"a\", \"operation\": \"erase\"}", "unknown operation \"erase\""},
        {"{\"tag\": \"a\", \"operation\": 1.5}", "\"operation\" must be a name or an integer"},
        {"{\"tag\": \"a\", \"operation\": 2147483648}", "\"operation\" is out of range"},
        {"{\"tag\": \"a\", \"error_kind\": \"5\"}", "\"error_kind\" must be an integer"},
        {"{\"tag\": \"a\", \"is_key\": 256}", "\"is_key\" is out of range"},
        {"{\"tag\": \"a\", \"children\": null}", "\"children\": null needs a \"subtree_count\""},
        {"{\"tag\": \"a\", \"children\": [], \"subtree_count\": 1}",
         "\"subtree_count\" goes with \"children\": null or without \"children\""},
        {"{\"tag\": \"a\", \"children\": {}}", "\"children\" must be an array or null"},
        {"[{\"tag\": \"a\", \"children\": [{\"tag\": \"b\"}, 5]}]",
         "JSON node /0/children/1: a node must be an object"},
        {"[1]", "JSON node /0: a node must be an object"},
        {deep_json.c_str(), "nodes nest deeper than 128 levels"},
    };
    for (const auto &[input, message] : cases) {
        yfw::Arena arena;
        try {
            parse_input(arena, input, false);
            ADD_FAILURE() << "accepted: " << input;
        } catch (const ParseError &e) {
            EXPECT_NE(std::string(e.what()).find(message), std::string::npos)
                << "input: " << std::string_view(input).substr(0, 80) << "\nmessage: " << e.what();
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
