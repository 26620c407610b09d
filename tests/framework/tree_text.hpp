// Compact text of a tree for assertions: "tag=value!op{child child}".
#pragma once

#include <string>
#include <string_view>

#include "yfw/standin.hpp"

namespace fwtest {

inline std::string tree_text(const tidl_yfw_datatree &node) {
    std::string out = node.tag != nullptr ? node.tag : "";
    if (node.value != nullptr)
        out.append("=").append(node.value);
    if (node.present_operation)
        out.append("!").append(std::to_string(node.operation));
    if (node.present_subtrees && node.subtree_count != 0) {
        out += '{';
        for (uint32_t i = 0; i < node.subtree_count; ++i)
            out.append(i != 0 ? " " : "").append(tree_text(node.subtrees[i]));
        out += '}';
    }
    return out;
}

// The children of a document root, as text.
inline std::string doc_text(const tidl_yfw_datatree &document) {
    std::string text = tree_text(document);
    return text.size() >= 2 ? text.substr(1, text.size() - 2) : text;
}

// A node with a tag (and value) appended under `parent` in `arena`.
inline tidl_yfw_datatree *add_node(yfw::Arena &arena, tidl_yfw_datatree *parent,
                                   std::string_view tag, const char *value = nullptr) {
    tidl_yfw_datatree *node = arena.append_child(parent);
    node->tag = arena.text(tag);
    if (value != nullptr) {
        node->value = arena.text(value);
        node->present_value = 1;
    }
    return node;
}

inline tidl_yfw_datatree *new_root(yfw::Arena &arena, std::string_view tag) {
    tidl_yfw_datatree *root = arena.new_root();
    root->tag = arena.text(tag);
    return root;
}

} // namespace fwtest
