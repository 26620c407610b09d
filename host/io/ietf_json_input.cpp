// RFC 7951 JSON into data trees without a schema: a member "module:name" is a
// node in that module's namespace (an unqualified one keeps its parent's), an
// object is an inner node, an array of objects a list, an array of values a
// leaf-list, [null] an empty leaf. The ietf-netconf:operation annotation
// (RFC 7952, "@name" beside a leaf, "@" inside an object) is the operation.
#include <nlohmann/json.hpp>

#include "io_detail.hpp"
#include "ocsysmap_io.hpp"

namespace ocsysmap {
namespace {

using nlohmann::ordered_json;

constexpr std::string_view kOperationAnnotation = "ietf-netconf:operation";

class IetfJsonBuilder {
public:
    IetfJsonBuilder(yfw::Arena &arena, bool read_kind) : arena_(arena), read_kind_(read_kind) {}

    std::vector<tidl_yfw_datatree *> roots(const ordered_json &top) {
        if (!top.is_object()) {
            fail("/", "the document must be an object");
        }
        std::vector<tidl_yfw_datatree *> out;
        for (const auto &[name, value] : top.items()) {
            if (name.starts_with('@')) {
                fail("/", "annotations of the document are not supported");
            }
            if (name.find(':') == std::string::npos) {
                fail("/" + name, "a top-level name must be qualified with its module");
            }
            // A list or leaf-list at the top gives one root per member.
            const std::size_t count = value.is_array() && !is_empty_leaf(value) ? value.size() : 1;
            for (std::size_t i = 0; i < count; ++i) {
                out.push_back(arena_.new_root());
            }
            Context context{nullptr, "", false, 1};
            fill_member(out.data() + (out.size() - count), name, value, top, context);
        }
        return out;
    }

private:
    struct Context {
        char *parent_ns;
        std::string path;
        bool selects; // an empty leaf is a selection node
        int depth;
    };

    [[noreturn]] static void fail(const std::string &path, std::string_view what) {
        throw ParseError("JSON " + path + ": " + std::string(what));
    }

    static bool is_empty_leaf(const ordered_json &value) {
        return value.is_array() && value.size() == 1 && value[0].is_null();
    }

    // The namespace of a member name, and the name without its module.
    std::pair<char *, std::string> qualified(const std::string &name, const Context &c) {
        const auto colon = name.find(':');
        if (colon == std::string::npos) {
            return {c.parent_ns, name};
        }
        const std::string module = name.substr(0, colon);
        const yfw::Module *m = yfw::module_by_name(module);
        if (m == nullptr) {
            fail(c.path + "/" + name, "unknown module \"" + module + "\"");
        }
        return {arena_.text(m->ns), name.substr(colon + 1)};
    }

    // `slots` holds one node per instance of the member: one, or one per
    // array element of a list or leaf-list. `parent` holds the member's
    // annotations.
    void fill_member(tidl_yfw_datatree *const *slots, const std::string &name,
                     const ordered_json &value, const ordered_json &parent, const Context &c) {
        if (c.depth > detail::kMaxDepth) {
            fail(c.path, "nodes nest deeper than " + std::to_string(detail::kMaxDepth) + " levels");
        }
        auto [ns, tag] = qualified(name, c);
        // Whether empty leaves select is the root's to say.
        const bool selects = c.depth == 1 ? read_kind_ && !is_native(ns) : c.selects;
        Context inner{ns, c.path + "/" + name, selects, c.depth + 1};
        const ordered_json *annotations =
            parent.contains("@" + name) ? &parent["@" + name] : nullptr;
        if (value.is_array() && !is_empty_leaf(value)) {
            if (annotations != nullptr && !annotations->is_array()) {
                fail(inner.path, "the annotations of a list must be an array");
            }
            for (std::size_t i = 0; i < value.size(); ++i) {
                const ordered_json *a = annotations != nullptr && i < annotations->size()
                                            ? &(*annotations)[i]
                                            : nullptr;
                fill_one(*slots[i], tag, value[i], a, inner);
            }
            return;
        }
        fill_one(*slots[0], tag, value, annotations, inner);
    }

    void fill_one(tidl_yfw_datatree &node, const std::string &tag, const ordered_json &value,
                  const ordered_json *annotations, const Context &c) {
        node.tag = arena_.text(tag);
        node.namespace_ = c.parent_ns;
        if (value.is_object()) {
            fill_object(node, value, c);
            return;
        }
        set_operation(node, annotations, c.path);
        if (is_empty_leaf(value) ||
            (value.is_string() && value.get_ref<const std::string &>().empty())) {
            // An empty value, as an empty XML element, selects in a read request.
            if (!c.selects) {
                set_value(node, "");
            }
            return;
        }
        if (value.is_string()) {
            set_value(node, value.get_ref<const std::string &>());
        } else if (value.is_number() || value.is_boolean()) {
            set_value(node, value.dump());
        } else {
            fail(c.path, "a value must be a string, a number, a boolean or [null]");
        }
    }

    void fill_object(tidl_yfw_datatree &node, const ordered_json &object, const Context &c) {
        if (object.contains("@")) {
            set_operation(node, &object["@"], c.path);
        }
        for (const auto &[name, value] : object.items()) {
            if (name.starts_with('@')) {
                const std::string target = name.substr(1);
                if (!target.empty() && !object.contains(target)) {
                    fail(c.path + "/" + name, "annotations of a member that is not there");
                }
                continue;
            }
            const std::size_t count = value.is_array() && !is_empty_leaf(value) ? value.size() : 1;
            std::vector<tidl_yfw_datatree *> slots;
            for (std::size_t i = 0; i < count; ++i) {
                slots.push_back(arena_.append_child(&node));
            }
            // Appending moves the children: take their places afresh.
            const std::size_t first = node.subtree_count - count;
            for (std::size_t i = 0; i < count; ++i) {
                slots[i] = &node.subtrees[first + i];
            }
            fill_member(slots.data(), name, value, object, c);
        }
    }

    void set_value(tidl_yfw_datatree &node, std::string_view text) {
        node.value = arena_.text(text);
        node.present_value = 1;
    }

    static void set_operation(tidl_yfw_datatree &node, const ordered_json *annotations,
                              const std::string &path) {
        if (annotations == nullptr || annotations->is_null()) {
            return;
        }
        if (!annotations->is_object()) {
            fail(path, "annotations must be an object");
        }
        auto it = annotations->find(kOperationAnnotation);
        if (it == annotations->end()) {
            return;
        }
        const auto op =
            it->is_string() ? detail::operation_by_name(it->get<std::string>()) : std::nullopt;
        if (!op) {
            fail(path,
                 "unknown operation " + it->dump() + " (merge, replace, create, delete or remove)");
        }
        yfw_dt_set_operation(&node, *op);
    }

    // A native root is always a device's answer, never a selection.
    static bool is_native(const char *ns) {
        const yfw::Module *m = ns != nullptr ? yfw::module_by_namespace(ns) : nullptr;
        return m != nullptr && !m->name.starts_with("openconfig-");
    }

    yfw::Arena &arena_;
    bool read_kind_;
};

} // namespace

std::vector<tidl_yfw_datatree *> parse_ietf_json(yfw::Arena &arena, std::string_view text,
                                                 bool read_kind) {
    detail::require_utf8(text, "JSON");
    ordered_json top;
    try {
        top = ordered_json::parse(text);
    } catch (const ordered_json::exception &e) { // a syntax error, or a number out of range
        throw ParseError(std::string("JSON: ") + e.what());
    }
    return IetfJsonBuilder(arena, read_kind).roots(top);
}

} // namespace ocsysmap
