// The lossless JSON form: every field whose presence bit is raised, the
// namespace only where it changes (as a module name where one is known).
#include <nlohmann/json.hpp>

#include "io_detail.hpp"
#include "ocsysmap_io.hpp"

namespace ocsysmap {
namespace {

using nlohmann::ordered_json;

ordered_json text_or_null(const char *text) {
    return text != nullptr ? ordered_json(text) : ordered_json(nullptr);
}

ordered_json node_json(const tidl_yfw_datatree &n, const char *parent_ns) {
    ordered_json out = ordered_json::object();
    out["tag"] = text_or_null(n.tag);
    if (!detail::same_text(n.namespace_, parent_ns)) {
        const yfw::Module *m =
            n.namespace_ != nullptr ? yfw::module_by_namespace(n.namespace_) : nullptr;
        if (m != nullptr) {
            out["module"] = m->name;
        } else {
            out["namespace"] = text_or_null(n.namespace_);
        }
    }
    if (n.present_value) {
        out["value"] = text_or_null(n.value);
    }
    if (n.present_operation) {
        auto name = detail::operation_name(n.operation);
        out["operation"] = name ? ordered_json(*name) : ordered_json(n.operation);
    }
    if (n.present_error_kind) {
        out["error_kind"] = n.error_kind;
    }
    if (n.present_node_kind) {
        out["node_kind"] = n.node_kind;
    }
    if (n.present_is_key) {
        out["is_key"] = n.is_key;
    }
    if (n.present_subtrees && n.subtrees == nullptr && n.subtree_count != 0) {
        out["children"] = nullptr;
        out["subtree_count"] = n.subtree_count;
    } else if (n.present_subtrees) {
        ordered_json children = ordered_json::array();
        for (const tidl_yfw_datatree &child : detail::children_of(n)) {
            children.push_back(node_json(child, n.namespace_));
        }
        out["children"] = std::move(children);
    } else if (n.subtree_count != 0) {
        out["subtree_count"] = n.subtree_count;
    }
    return out;
}

constexpr auto kReplaceInvalidUtf8 = ordered_json::error_handler_t::replace;

} // namespace

namespace detail {

std::string json_quote(std::string_view text) {
    return ordered_json(text).dump(-1, ' ', false, kReplaceInvalidUtf8);
}

} // namespace detail

std::string to_json(const tidl_yfw_datatree &document) {
    ordered_json roots = ordered_json::array();
    for (const tidl_yfw_datatree &root : detail::children_of(document)) {
        roots.push_back(node_json(root, nullptr));
    }
    return roots.dump(2, ' ', false, kReplaceInvalidUtf8) + "\n";
}

} // namespace ocsysmap
