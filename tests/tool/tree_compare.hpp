// Field-by-field comparison of data trees for the tool's tests.
#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "ocsysmap_io.hpp"

namespace ocsysmap::testing {

// g++ 12 at -O3 sees an overlap that cannot be in "literal" + std::string.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wrestrict"
#endif
inline std::string show(const char *text) {
    return text != nullptr ? "\"" + std::string(text) + "\"" : "null";
}

inline std::string show_if(bool present, long long value) {
    return present ? std::to_string(value) : "absent";
}

// Every field of the record as text, its presence bit included.
inline std::array<std::pair<const char *, std::string>, 8> fields(const tidl_yfw_datatree &n) {
    std::string children = "absent";
    if (n.present_subtrees) {
        children = (n.subtrees == nullptr && n.subtree_count != 0 ? "null x" : "") +
                   std::to_string(n.subtree_count);
    } else if (n.subtree_count != 0) {
        children = "absent, count " + std::to_string(n.subtree_count);
    }
    return {{
        {"tag", show(n.tag)},
        {"namespace", show(n.namespace_)},
        {"value", n.present_value ? show(n.value) : "absent"},
        {"operation", show_if(n.present_operation, n.operation)},
        {"error_kind", show_if(n.present_error_kind, n.error_kind)},
        {"node_kind", show_if(n.present_node_kind, n.node_kind)},
        {"is_key", show_if(n.present_is_key, n.is_key)},
        {"children", children},
    }};
}

// Empty when equal, else where and what differs first.
inline std::string tree_diff(const tidl_yfw_datatree &a, const tidl_yfw_datatree &b,
                             const std::string &parent = "") {
    const std::string at = parent + "/" + (a.tag != nullptr ? a.tag : "(no tag)");
    auto fa = fields(a);
    auto fb = fields(b);
    for (std::size_t i = 0; i < fa.size(); ++i) {
        if (fa[i] != fb[i]) {
            return at + ": " + fa[i].first + " " + fa[i].second + " vs " + fb[i].second;
        }
    }
    for (uint32_t i = 0; a.present_subtrees && a.subtrees != nullptr && i < a.subtree_count; ++i) {
        if (auto d = tree_diff(a.subtrees[i], b.subtrees[i], at); !d.empty()) {
            return d;
        }
    }
    return {};
}

inline std::string roots_diff(const std::vector<tidl_yfw_datatree *> &a,
                              const std::vector<tidl_yfw_datatree *> &b) {
    if (a.size() != b.size()) {
        return std::to_string(a.size()) + " roots vs " + std::to_string(b.size());
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (auto d = tree_diff(*a[i], *b[i]); !d.empty()) {
            return d;
        }
    }
    return {};
}

// Parses `text` and returns the document root the writers take.
inline const tidl_yfw_datatree &parse_document(yfw::Arena &arena, std::string_view text,
                                               bool read_kind = false) {
    return *document_of(arena, parse_input(arena, text, read_kind));
}

} // namespace ocsysmap::testing
