// The lossless JSON form of the tree record: one object per node, each
// presence bit told by the presence of its key.
#include <limits>

#include <nlohmann/json.hpp>

#include "io_detail.hpp"
#include "ocsysmap_io.hpp"

namespace ocsysmap::detail {
namespace {

using nlohmann::json;

constexpr std::array<std::string_view, 10> kKeys{
    "tag",        "module",   "namespace",     "value",     "operation",
    "error_kind", "children", "subtree_count", "node_kind", "is_key"};

class TreeBuilder {
public:
    explicit TreeBuilder(yfw::Arena &arena) : arena_(arena) {}

    tidl_yfw_datatree *root(const json &object, std::string_view where) {
        where_ = where;
        tidl_yfw_datatree *node = arena_.new_root();
        fill(*node, object, nullptr, 1);
        return node;
    }

private:
    [[noreturn]] void fail(std::string_view what) const {
        throw ParseError("JSON node " + (where_.empty() ? std::string("(top)") : where_) + ": " +
                         std::string(what));
    }

    void fill(tidl_yfw_datatree &node, const json &object, char *parent_ns, int depth) {
        if (!object.is_object()) {
            fail("a node must be an object");
        }
        if (depth > kMaxDepth) {
            fail("nodes nest deeper than " + std::to_string(kMaxDepth) + " levels");
        }
        for (const auto &item : object.items()) {
            if (std::find(kKeys.begin(), kKeys.end(), item.key()) == kKeys.end()) {
                fail("unknown key \"" + item.key() + "\"");
            }
        }
        if (!object.contains("tag")) {
            fail("missing \"tag\"");
        }
        node.tag = text_or_null(object, "tag");
        node.namespace_ = namespace_of(object, parent_ns);
        if (object.contains("value")) {
            node.value = text_or_null(object, "value");
            node.present_value = 1;
        }
        if (object.contains("operation")) {
            yfw_dt_set_operation(&node, operation(object["operation"]));
        }
        if (object.contains("error_kind")) {
            node.error_kind = integer<int32_t>(object, "error_kind");
            node.present_error_kind = 1;
        }
        if (object.contains("node_kind")) {
            yfw_dt_set_node_kind(&node, integer<int32_t>(object, "node_kind"));
        }
        if (object.contains("is_key")) {
            const json &v = object["is_key"];
            node.is_key = v.is_boolean() ? v.get<bool>() : integer<uint8_t>(object, "is_key");
            node.present_is_key = 1;
        }
        children(node, object, depth);
    }

    void children(tidl_yfw_datatree &node, const json &object, int depth) {
        bool has_count = object.contains("subtree_count");
        uint32_t count = has_count ? integer<uint32_t>(object, "subtree_count") : 0;
        if (!object.contains("children")) {
            // A count without its presence bit: no children, the count unread.
            node.subtree_count = count;
            return;
        }
        const json &list = object["children"];
        if (list.is_null()) {
            if (!has_count) {
                fail("\"children\": null needs a \"subtree_count\"");
            }
            yfw_dt_set_subtrees(&node, nullptr, count);
            return;
        }
        if (!list.is_array()) {
            fail("\"children\" must be an array or null");
        }
        if (has_count) {
            fail("\"subtree_count\" goes with \"children\": null or without \"children\"");
        }
        yfw_dt_set_subtrees(&node, nullptr, 0);
        std::size_t mark = where_.size();
        for (std::size_t i = 0; i < list.size(); ++i) {
            where_ += "/children/" + std::to_string(i);
            fill(*arena_.append_child(&node), list[i], node.namespace_, depth + 1);
            where_.resize(mark);
        }
    }

    char *text_or_null(const json &object, const char *key) {
        const json &v = object[key];
        if (v.is_null()) {
            return nullptr;
        }
        if (!v.is_string()) {
            fail(std::string("\"") + key + "\" must be a string or null");
        }
        return arena_.text(v.get_ref<const std::string &>());
    }

    char *namespace_of(const json &object, char *parent_ns) {
        bool by_module = object.contains("module");
        if (by_module && object.contains("namespace")) {
            fail("give \"module\" or \"namespace\", not both");
        }
        if (by_module) {
            const json &name = object["module"];
            if (!name.is_string()) {
                fail("\"module\" must be a module name");
            }
            const yfw::Module *m = yfw::module_by_name(name.get_ref<const std::string &>());
            if (m == nullptr) {
                fail("unknown module \"" + name.get<std::string>() + "\"");
            }
            return arena_.text(m->ns);
        }
        if (object.contains("namespace")) {
            return text_or_null(object, "namespace");
        }
        // Inherited: the parent's text serves the child as well.
        return parent_ns;
    }

    int32_t operation(const json &v) const {
        if (v.is_string()) {
            if (auto op = operation_by_name(v.get_ref<const std::string &>())) {
                return *op;
            }
            fail("unknown operation \"" + v.get<std::string>() +
                 "\" (merge, replace, create, delete, remove or a number)");
        }
        if (!v.is_number_integer()) {
            fail("\"operation\" must be a name or an integer");
        }
        return in_range<int32_t>(v, "operation");
    }

    template <typename T> T integer(const json &object, const char *key) const {
        const json &v = object[key];
        if (!v.is_number_integer()) {
            fail(std::string("\"") + key + "\" must be an integer");
        }
        return in_range<T>(v, key);
    }

    template <typename T> T in_range(const json &v, const char *key) const {
        bool fits =
            v.is_number_unsigned()
                ? v.get<uint64_t>() <= static_cast<uint64_t>(std::numeric_limits<T>::max())
                : v.get<int64_t>() >= static_cast<int64_t>(std::numeric_limits<T>::min()) &&
                      v.get<int64_t>() <= static_cast<int64_t>(std::numeric_limits<T>::max());
        if (!fits) {
            fail(std::string("\"") + key + "\" is out of range");
        }
        return static_cast<T>(v.get<int64_t>());
    }

    yfw::Arena &arena_;
    std::string where_;
};

} // namespace

std::vector<tidl_yfw_datatree *> parse_json(yfw::Arena &arena, std::string_view text) {
    json doc;
    try {
        doc = json::parse(text);
    } catch (const json::exception &e) {
        // Syntax errors and numbers too large for any type; the library's
        // "[json.exception.parse_error.101] " prefix is dropped.
        std::string_view what = e.what();
        auto at = what.find("] ");
        throw ParseError("JSON: " +
                         std::string(at == std::string_view::npos ? what : what.substr(at + 2)));
    }
    TreeBuilder builder(arena);
    if (doc.is_object()) {
        return {builder.root(doc, "")};
    }
    if (!doc.is_array()) {
        throw ParseError("JSON: the top level must be a node object or an array of them");
    }
    std::vector<tidl_yfw_datatree *> roots;
    roots.reserve(doc.size());
    for (std::size_t i = 0; i < doc.size(); ++i) {
        std::string where = "/"; // appended, not concatenated: g++ 12 -O3 misreads the latter
        where += std::to_string(i);
        roots.push_back(builder.root(doc[i], where));
    }
    return roots;
}

} // namespace ocsysmap::detail
