// The tree-writing operations: adds, namespaces and the two stitches.
#include <algorithm>
#include <cstring>

#include "editor.hpp"

namespace {

using namespace yfw::detail;

// The session behind a context; ops without one have nowhere to keep state.
yfw_map_session *session_of(yfw_map_ctx *ctx) {
    return checked(ctx).session;
}

// The path of an add given in pieces ("/ocsystem", "/system/state" ...): the
// pieces joined, remembered under a mix of their pointers. Null when a piece
// is missing or the whole names nothing.
const AddPath *joined_path(const char *const *components, uint32_t count) {
    if (components == nullptr || count == 0)
        return nullptr;
    std::array<char, 1024> text;
    std::size_t used = 0;
    uintptr_t identity = count;
    for (uint32_t i = 0; i < count; ++i) {
        if (components[i] == nullptr)
            return nullptr;
        const std::size_t length = std::strlen(components[i]);
        if (used + length + 1 > text.size())
            return nullptr;
        text[used++] = '/';
        std::memcpy(text.data() + used, components[i], length);
        used += length;
        identity = identity * 31 + reinterpret_cast<uintptr_t>(components[i]);
    }
    const AddPath &path = add_path(identity, {text.data(), used});
    return path.segments.empty() ? nullptr : &path;
}

void note_add(yfw_map_session &session, tidl_yfw_datatree *tree, const Placed &at,
              const tidl_yfw_datatree *source, tidl_yfw_datatree **new_node_out) {
    // The later of two adds with a source sets the operation, also when its
    // source has none: the node then ends as that add alone would leave it.
    if (const int32_t op = yfw::effective_operation(source); source != nullptr && op >= 0) {
        yfw_dt_set_operation(at.node, op);
    } else if (source != nullptr) {
        at.node->operation = 0;
        at.node->present_operation = 0;
    }
    if (new_node_out != nullptr)
        *new_node_out = at.node;
    if (tree->tag == nullptr)
        session.state.root_node = tree;
    session.state.current_node = at.node;
    session.state.parent_node = at.parent;
}

cerrno add_segments(yfw_map_session &session, tidl_yfw_datatree *tree, const AddPath &path,
                    const char *ns, const char *value, const tidl_yfw_datatree *source,
                    tidl_yfw_datatree **new_node_out, bool list_entry, bool augment) {
    Editor editor(*session.home, ns);
    const OpenEntry *open =
        session.output_lists.empty() ? nullptr : &session.output_lists.back().keys;
    note_add(session, tree,
             editor.add(tree, path, value, list_entry, open, augment, &session.add_memo), source,
             new_node_out);
    return YFW_SUCCESS;
}

// The key values of an input list entry in key order: by the schema when the
// entry is on the hierarchy, else its children marked as keys (as many as a
// list can have).
struct InputKeys {
    std::array<const char *, KeyValues::kMax> values{};
    std::size_t count = 0;
    void add(const char *value) {
        if (count < values.size())
            values[count++] = value;
    }
    bool any() const {
        return std::any_of(values.begin(), values.begin() + count,
                           [](const char *v) { return v != nullptr; });
    }
};

InputKeys input_key_values(const yfw_map_session &session, const tidl_yfw_datatree *entry) {
    InputKeys keys;
    if (const std::size_t depth = session.depth_of(entry); depth != kNoDepth) {
        for (std::string_view key : session.hierarchy_keys(depth)) {
            const tidl_yfw_datatree *leaf = child_with_tag(entry, key);
            keys.add(leaf != nullptr ? leaf->value : nullptr);
        }
    }
    if (keys.any())
        return keys;
    keys = {};
    for (const tidl_yfw_datatree &child : children(entry))
        if (child.present_is_key && child.is_key)
            keys.add(child.value);
    return keys;
}

// The keys `names` with the values of `input` in order; the missing ones null.
EntryKeys entry_keys(std::span<const std::string_view> names, const InputKeys &input) {
    EntryKeys keys;
    for (std::size_t i = 0; i < names.size(); ++i)
        keys.add(names[i], i < input.count ? input.values[i] : nullptr);
    return keys;
}

// A path of entries, "/a/b[k=v][k2='w']/", read: each segment, the keys of
// its list, and the key values its predicates ask for, in the list's key
// order (the others null). No deeper than an add goes.
struct EntryPath {
    std::size_t count = 0;
    std::array<std::string_view, AddMemo::kLevels> segments;
    std::array<std::span<const std::string_view>, AddMemo::kLevels> keys_at;
    std::array<EntryKeys, AddMemo::kLevels> keys;
    std::array<const EntryKeys *, AddMemo::kLevels> wanted{};
};

// The predicates "[k=v][k2='w']" at `i` of `path` into `keys`, each value
// ended in place in `path`, so that its values need no copy of their own.
// Where they end; npos when malformed, or when a predicate names a key the
// list (`names`, empty for no list) lacks or is one too many.
std::size_t read_predicates(std::span<char> path, std::size_t i,
                            std::span<const std::string_view> names, EntryKeys &keys) {
    const std::string_view text(path.data(), path.size());
    if (!names.empty())
        keys = entry_keys(names, {});
    while (i < text.size() && text[i] == '[') {
        const std::size_t eq = text.find('=', i);
        if (eq == std::string_view::npos)
            return std::string_view::npos;
        const std::string_view name = text.substr(i + 1, eq - i - 1);
        std::size_t value_end;
        std::size_t close;
        if (eq + 1 < text.size() && (text[eq + 1] == '\'' || text[eq + 1] == '"')) {
            value_end = text.find(text[eq + 1], eq + 2);
            if (value_end == std::string_view::npos || value_end + 1 >= text.size() ||
                text[value_end + 1] != ']')
                return std::string_view::npos;
            close = value_end + 1;
        } else {
            close = value_end = text.find(']', eq);
            if (close == std::string_view::npos)
                return std::string_view::npos;
        }
        const char *value = path.data() + eq + 1 + (value_end != close ? 1 : 0);
        if (name.empty() || !(names.empty() ? keys.add(name, value) : keys.set(name, value)))
            return std::string_view::npos;
        path[value_end] = '\0';
        i = close + 1;
    }
    return i;
}

// Reads `path`, whose values are ended in place; false when malformed.
bool read_entry_path(std::span<char> path, EntryPath &out) {
    const std::string_view text(path.data(), path.size());
    SchemaHash hash;
    std::size_t i = 0;
    while (i < text.size()) {
        if (text[i] == '/') {
            ++i;
            continue;
        }
        if (out.count == out.segments.size())
            return false;
        const std::size_t end = text.find_first_of("/[", i);
        std::string_view tag = text.substr(i, end - i);
        if (const std::size_t colon = tag.rfind(':'); colon != std::string_view::npos)
            tag.remove_prefix(colon + 1);
        const std::size_t at = out.count++;
        out.segments[at] = tag;
        hash.add_segment(tag);
        out.keys_at[at] = list_keys_hashed(hash.value, std::span(out.segments).first(out.count));
        i = end == std::string_view::npos ? text.size() : end;
        if (i < text.size() && text[i] == '[') {
            i = read_predicates(path, i, out.keys_at[at], out.keys[at]);
            if (i == std::string_view::npos)
                return false;
            out.wanted[at] = &out.keys[at];
        }
        if (tag.empty() || (i < text.size() && text[i] != '/'))
            return false;
    }
    return out.count != 0;
}

} // namespace

extern "C" {

cerrno yfw_map_datatree_add_path_flagged(yfw_map_ctx *ctx, tidl_yfw_datatree *out_tree,
                                         const char *path, const char *namespace_,
                                         const char *value, const tidl_yfw_datatree *source_node,
                                         tidl_yfw_datatree **new_node_out, uint32_t list_entry_flag,
                                         uint32_t augment_flag) {
    yfw_map_session *session = session_of(ctx);
    if (session == nullptr || out_tree == nullptr || path == nullptr)
        return YFW_ERR_INVALID_ARGS;
    const AddPath &segments = add_path(path);
    if (segments.segments.empty())
        return YFW_ERR_INVALID_ARGS;
    return add_segments(*session, out_tree, segments, namespace_, value, source_node, new_node_out,
                        list_entry_flag != 0, augment_flag != 0);
}

cerrno yfw_map_add_leaf_from_xpath(yfw_map_ctx *ctx, const tidl_yfw_datatree *input_node,
                                   tidl_yfw_datatree *out_tree, const char *root_path,
                                   const char *namespace_, const char *const *path_components,
                                   uint32_t component_count) {
    (void)root_path; // the first component repeats it
    yfw_map_session *session = session_of(ctx);
    const AddPath *path = session != nullptr && input_node != nullptr && out_tree != nullptr
                              ? joined_path(path_components, component_count)
                              : nullptr;
    if (path == nullptr)
        return YFW_ERR_INVALID_ARGS;
    return add_segments(*session, out_tree, *path, namespace_, input_node->value, input_node,
                        nullptr, false, false);
}

cerrno yfw_map_datatree_update_namespace(yfw_map_ctx *ctx, tidl_yfw_datatree *out_tree,
                                         const char *path, const char *namespace_, uint32_t zero) {
    (void)zero;
    yfw_map_session *session = session_of(ctx);
    if (session == nullptr || out_tree == nullptr || path == nullptr || namespace_ == nullptr)
        return YFW_ERR_INVALID_ARGS;
    const auto segments = split_path(path);
    if (segments.empty())
        return YFW_ERR_INVALID_ARGS;
    Editor editor(*session->home, namespace_);
    tidl_yfw_datatree *node = editor.find(out_tree, segments);
    // A node that was never added has no namespace to change: a native Telnet
    // VRF entry with neither family adds none, and is empty state, not a fault.
    if (node == nullptr)
        return YFW_SUCCESS;
    node->namespace_ = intern(editor.arena_for(node), namespace_);
    return YFW_SUCCESS;
}

cerrno yfw_map_auto_stitch_list_to_list(yfw_map_ctx *ctx, const tidl_yfw_datatree *input_node,
                                        tidl_yfw_datatree *out_tree, const char *namespace_,
                                        const char *const *path_components,
                                        uint32_t component_count) {
    yfw_map_session *session = session_of(ctx);
    const AddPath *path = session != nullptr && input_node != nullptr && out_tree != nullptr
                              ? joined_path(path_components, component_count)
                              : nullptr;
    // The last segment must be a list.
    if (path == nullptr || path->innermost + 1 != path->segments.size())
        return YFW_ERR_INVALID_ARGS;

    const InputKeys own = input_key_values(*session, input_node);
    if (!own.any())
        return YFW_MAP_SKIP_NODE;

    // Enclosing output lists take the entries of the open output lists,
    // innermost last: the n-th list outward from the path's own takes the n-th
    // open entry inward from the last.
    // Keys only for the list segments: no path of the schema crosses more
    // than three lists, and the rest of an entry's keys is never read.
    std::array<EntryKeys, 4> keys;
    std::size_t lists = 0;
    std::array<const EntryKeys *, AddMemo::kLevels> wanted{};
    if (path->segments.size() > wanted.size())
        return YFW_ERR_INVALID_ARGS;
    auto open = session->output_lists.rbegin();
    for (std::size_t i = path->segments.size(); i-- > 0;) {
        const auto names = path->keys_at[i];
        if (names.empty())
            continue;
        if (lists == keys.size())
            return YFW_ERR_INVALID_ARGS;
        if (i == path->innermost) {
            keys[lists] = entry_keys(names, own);
        } else {
            while (open != session->output_lists.rend() && open->entry == input_node)
                ++open;
            if (open == session->output_lists.rend())
                continue;
            keys[lists] = entry_keys(names, input_key_values(*session, open->entry));
            ++open;
        }
        wanted[i] = &keys[lists++];
    }
    Editor editor(*session->home, namespace_);
    note_add(*session, out_tree,
             editor.place(out_tree, path->segments, path->keys_at,
                          std::span(wanted).first(path->segments.size())),
             nullptr, nullptr);
    return YFW_SUCCESS;
}

cerrno yfw_map_stitch_container_to_list(yfw_map_ctx *ctx, yfw_map_stitch_record *record) {
    yfw_map_session *session = session_of(ctx);
    if (session == nullptr || record == nullptr || record->out_tree == nullptr)
        return YFW_ERR_INVALID_ARGS;
    const std::size_t path_length = strnlen(record->entry_path, sizeof record->entry_path);
    const std::size_t ns_length = strnlen(record->namespace_, sizeof record->namespace_);
    if (path_length == sizeof record->entry_path || ns_length == sizeof record->namespace_)
        return YFW_ERR_INVALID_ARGS;
    // A copy whose values are ended in place: the record stays as given.
    std::array<char, sizeof record->entry_path> text;
    std::memcpy(text.data(), record->entry_path, path_length);
    EntryPath path;
    if (!read_entry_path(std::span(text).first(path_length), path))
        return YFW_ERR_INVALID_ARGS;
    Editor editor(*session->home, ns_length != 0 ? record->namespace_ : nullptr);
    const std::size_t n = path.count;
    note_add(*session, record->out_tree,
             editor.place(record->out_tree, std::span(path.segments).first(n),
                          std::span(path.keys_at).first(n), std::span(path.wanted).first(n)),
             nullptr, nullptr);
    return YFW_SUCCESS;
}

} // extern "C"
