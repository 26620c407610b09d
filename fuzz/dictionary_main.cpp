// Prints a libFuzzer dictionary for the targets that read text: every tag and
// namespace of the library's tables, the module names of the framework's
// registry, and the pieces of XML and JSON that join them.
#include <cstdio>
#include <string>
#include <string_view>

#include "schema_words.hpp"
#include "yfw/standin.hpp"

namespace {

void entry(std::string_view word) {
    std::string line = "\"";
    for (const char c : word) {
        if (c == '"' || c == '\\') {
            line += '\\';
        }
        line += c;
    }
    std::printf("%s\"\n", line.c_str());
}

} // namespace

int main() {
    const fuzzwords::Schema &s = fuzzwords::schema();
    for (const std::string &tag : s.tags) {
        entry(tag);
        entry("<" + tag + ">");
        entry("</" + tag + ">");
        entry("\"" + tag + "\":");
    }
    for (const std::string &ns : s.namespaces) {
        entry(" xmlns=\"" + ns + "\"");
    }
    for (const yfw::Module &m : yfw::modules()) {
        entry("\"" + std::string(m.name) + ":");
    }
    for (const std::string &value : s.values) {
        entry(value);
    }
    for (const std::string_view piece : {"<config>",
                                         "</config>",
                                         "<filter>",
                                         "<data>",
                                         "<![CDATA[",
                                         "]]>",
                                         "&amp;",
                                         "&#",
                                         " xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\"",
                                         " nc:operation=\"",
                                         "\"ietf-netconf:operation\":",
                                         "\"@\":",
                                         "[null]",
                                         "merge",
                                         "replace",
                                         "create",
                                         "delete",
                                         "remove",
                                         "\"tag\":",
                                         "\"namespace\":",
                                         "\"value\":",
                                         "\"children\":",
                                         "\"module\":",
                                         "\"operation\":",
                                         "\"is_key\":",
                                         "\"subtree_count\":",
                                         "\"node_kind\":",
                                         "\"error_kind\":"}) {
        entry(piece);
    }
    return 0;
}
