// Data trees as text for the tool's tests: every field of every node.
#pragma once

#include <string>
#include <vector>

#include "ocsysmap_io.hpp"

namespace ocsysmap::testing {

inline std::string show(const char *text) {
    return text != nullptr ? std::string(1, '"').append(text).append(1, '"') : "null";
}

inline std::string show_if(bool present, long long value) {
    return present ? std::to_string(value) : "-";
}

// One line per node, children indented below it: tag, namespace, value,
// operation, error_kind, node_kind, is_key and children, with "-" for a field
// whose presence bit is down.
inline void dump_node(const tidl_yfw_datatree &n, std::string &out, const std::string &indent) {
    std::string children = "-";
    if (n.present_subtrees) {
        children = n.subtrees == nullptr && n.subtree_count != 0 ? "null x" : "";
        children.append(std::to_string(n.subtree_count));
    } else if (n.subtree_count != 0) {
        children.append(" x").append(std::to_string(n.subtree_count));
    }
    out.append(indent).append(show(n.tag)).append(" ").append(show(n.namespace_));
    out.append(" ").append(n.present_value ? show(n.value) : "-");
    for (const std::string &field :
         {show_if(n.present_operation, n.operation), show_if(n.present_error_kind, n.error_kind),
          show_if(n.present_node_kind, n.node_kind), show_if(n.present_is_key, n.is_key),
          children}) {
        out.append(" ").append(field);
    }
    out.append("\n");
    for (uint32_t i = 0; n.present_subtrees && n.subtrees != nullptr && i < n.subtree_count; ++i) {
        dump_node(n.subtrees[i], out, indent + "  ");
    }
}

inline std::string dump(const std::vector<tidl_yfw_datatree *> &roots) {
    std::string out;
    for (const tidl_yfw_datatree *root : roots) {
        dump_node(*root, out, "");
    }
    return out;
}

// Parses `text` and returns the document root the writers take.
inline const tidl_yfw_datatree &parse_document(yfw::Arena &arena, std::string_view text,
                                               bool read_kind = false) {
    return *document_of(arena, parse_input(arena, text, read_kind));
}

} // namespace ocsysmap::testing
