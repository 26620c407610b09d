// What the framework keeps about a walk: the node hierarchy, current list
// entries, open output lists, the input-tree stack, and the tests on requests.
#include <algorithm>
#include <cstring>

#include "internal.hpp"

using namespace yfw::detail;

namespace {

yfw_map_session *session_of(yfw_map_ctx *ctx) {
    return checked(ctx).session;
}

bool is_delete(int32_t op) {
    return op == OP_DELETE || op == OP_REMOVE;
}

// The node of the walk at `path`: the recorded current entry while it is on
// the hierarchy, else the hierarchy node whose tag path is `path`.
const tidl_yfw_datatree *walk_node(const yfw_map_session &session, std::string_view path) {
    const auto &frames = session.hierarchy;
    if (auto it = session.current_lists.find(path); it != session.current_lists.end()) {
        const auto &[depth, serial] = it->second;
        if (depth < frames.size() && frames[depth].serial == serial)
            return frames[depth].node;
    }
    const auto segments = split_path(path);
    if (segments.empty() || segments.size() > frames.size())
        return nullptr;
    for (std::size_t i = 0; i < segments.size(); ++i)
        if (frames[i].node->tag == nullptr || segments[i] != frames[i].node->tag)
            return nullptr;
    return frames[segments.size() - 1].node;
}

// The children of a node of the walk, also while a walker has set them aside
// on the itree stack (an entry named by its keys alone is walked bare).
std::span<const tidl_yfw_datatree> walk_children(const yfw_map_session &session,
                                                 const tidl_yfw_datatree *node) {
    if (auto kids = children(node); !kids.empty() || node == nullptr)
        return kids;
    for (std::size_t i = session.itree.size(); i-- > 0;)
        if (session.itree_owners[i] == node && session.itree[i].nodes != nullptr)
            return {session.itree[i].nodes, session.itree[i].count};
    return {};
}

const tidl_yfw_datatree *walk_child(const yfw_map_session &session, const tidl_yfw_datatree *node,
                                    std::string_view tag) {
    auto kids = walk_children(session, node);
    auto it = std::ranges::find_if(
        kids, [tag](const tidl_yfw_datatree &kid) { return is_text(kid.tag, tag); });
    return it == kids.end() ? nullptr : &*it;
}

// The node whose children array starts at `nodes`: the array's holder in an
// arena, else a node of the walk that holds it.
const tidl_yfw_datatree *holder_of(const yfw_map_session &session, const tidl_yfw_datatree *nodes) {
    if (nodes == nullptr)
        return nullptr;
    if (const Block *block = block_starting_at(nodes))
        return block->parent();
    for (std::size_t i = session.hierarchy.size(); i-- > 0;) {
        const tidl_yfw_datatree *node = session.hierarchy[i].node;
        if (node->present_subtrees && node->subtrees == nodes)
            return node;
    }
    return nullptr;
}

// The child that carries the entry's key: one marked as key, else the first schema key.
const tidl_yfw_datatree *key_child(const yfw_map_session &session, const tidl_yfw_datatree *entry) {
    auto kids = children(entry);
    auto marked = std::ranges::find_if(
        kids, [](const tidl_yfw_datatree &kid) { return kid.present_is_key && kid.is_key; });
    if (marked != kids.end())
        return &*marked;
    const std::size_t depth = session.depth_of(entry);
    if (depth == kNoDepth)
        return nullptr;
    auto keys = session.hierarchy_keys(depth);
    return keys.empty() ? nullptr : child_with_tag(entry, keys.front());
}

// `open` takes the keys of an input entry by name: the children the walker marked as keys,
// wherever they stand among the others, else the schema's keys of its list.
void open_entry(yfw_map_session &session, const tidl_yfw_datatree *entry, OpenEntry &open) {
    open.serial = session.next_serial++;
    for (const tidl_yfw_datatree &child : children(entry))
        if (child.present_is_key && child.is_key && child.tag != nullptr)
            open.add(child.tag, child.value);
    if (const std::size_t depth = session.depth_of(entry); open.count == 0 && depth != kNoDepth) {
        for (std::string_view key : session.hierarchy_keys(depth)) {
            const tidl_yfw_datatree *leaf = child_with_tag(entry, key);
            open.add(key, leaf != nullptr ? leaf->value : nullptr);
        }
    }
}

void close_output_list(yfw_map_ctx &ctx, yfw_map_session &session) {
    session.output_lists.pop_back();
    if (ctx.list_index > 0)
        ctx.output_list_key[--ctx.list_index] = nullptr;
    if (ctx.state != nullptr && ctx.state->output_list_count > 0)
        --ctx.state->output_list_count;
}

} // namespace

extern "C" {

void yfw_map_add_to_node_hierarchy(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, uint32_t kind) {
    yfw_map_session *session = session_of(ctx);
    if (session != nullptr && node != nullptr)
        session->hierarchy.push_back({node, kind, session->next_serial++});
}

void yfw_map_remove_from_node_hierarchy(yfw_map_ctx *ctx, const tidl_yfw_datatree *node) {
    yfw_map_session *session = session_of(ctx);
    if (session == nullptr)
        return;
    // A pop of a node below the top also pops what a walker forgot to pop.
    const std::size_t depth = session->depth_of(node);
    if (depth != kNoDepth)
        session->hierarchy.resize(depth);
}

cerrno yfw_map_update_current_list_node(yfw_map_ctx *ctx, const char *path) {
    yfw_map_session *session = session_of(ctx);
    if (session == nullptr || path == nullptr)
        return YFW_ERR_INVALID_ARGS;
    // Walkers name the same few list paths entry after entry: what a text
    // resolved to is kept by its pointer, and holds while the text is the same.
    auto &slot =
        session->list_paths[(reinterpret_cast<uintptr_t>(path) >> 3) % session->list_paths.size()];
    if (slot.source != path || std::strcmp(slot.text.c_str(), path) != 0) {
        if (!well_formed_path(path))
            return YFW_ERR_INVALID_ARGS;
        std::string scratch;
        const std::string_view normalized = normalized_path(path, scratch);
        auto it = session->current_lists.find(normalized);
        if (it == session->current_lists.end())
            it = session->current_lists.emplace(normalized, yfw_map_session::CurrentRecord{}).first;
        slot.source = path;
        slot.text = path;
        slot.last = split_path(slot.text).back();
        slot.record = &it->second;
    }
    if (session->hierarchy.empty())
        return YFW_ERR_BAD_TREE;
    // In a walk-all pass the top is an ancestor of the list: nothing to record then.
    const HierarchyFrame &top = session->hierarchy.back();
    if (!is_text(top.node->tag, slot.last))
        return YFW_SUCCESS;
    *slot.record = {session->hierarchy.size() - 1, top.serial};
    return YFW_SUCCESS;
}

cerrno yfw_map_get_node_info(yfw_map_ctx *ctx, const char *list_path, const char *key_name,
                             char **value_out) {
    yfw_map_session *session = session_of(ctx);
    if (session == nullptr || list_path == nullptr || key_name == nullptr || value_out == nullptr ||
        !well_formed_path(list_path))
        return YFW_ERR_INVALID_ARGS;
    std::string scratch;
    const std::string_view path = normalized_path(list_path, scratch);
    const tidl_yfw_datatree *holder = nullptr;
    if (path.ends_with("/config")) {
        // A key mirrored in the entry's config container.
        if (const tidl_yfw_datatree *entry = walk_node(*session, path.substr(0, path.size() - 7)))
            holder = walk_child(*session, entry, "config");
        else if ((holder = walk_node(*session, path)) == nullptr)
            return YFW_ERR_BAD_TREE;
    } else if ((holder = walk_node(*session, path)) == nullptr) {
        return YFW_ERR_BAD_TREE;
    }
    const tidl_yfw_datatree *leaf = walk_child(*session, holder, key_name);
    *value_out = leaf != nullptr ? leaf->value : nullptr;
    return YFW_SUCCESS;
}

cerrno yfw_map_get_subtrees(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                            tidl_yfw_datatree **subtrees_out, uint32_t *count_out) {
    checked(ctx);
    if (node == nullptr || subtrees_out == nullptr || count_out == nullptr)
        return YFW_ERR_INVALID_ARGS;
    if (!node->present_subtrees) {
        *subtrees_out = nullptr;
        *count_out = 0;
        return YFW_SUCCESS;
    }
    if (node->subtrees == nullptr && node->subtree_count != 0)
        return YFW_ERR_BAD_TREE;
    *subtrees_out = node->subtrees;
    *count_out = node->subtree_count;
    return YFW_SUCCESS;
}

void yfw_add_to_output_list_ctx(yfw_map_ctx *ctx, const tidl_yfw_datatree *input_node,
                                tidl_yfw_datatree *out_tree) {
    (void)out_tree;
    yfw_map_ctx &context = checked(ctx);
    yfw_map_session *session = context.session;
    if (session == nullptr || input_node == nullptr || context.list_index < 0 ||
        context.list_index >= YFW_MAP_MAX_OUTPUT_LISTS)
        return;
    const tidl_yfw_datatree *key = key_child(*session, input_node);
    if (key == nullptr)
        return;
    static char no_value[] = "";
    context.output_list_key[context.list_index++] = key->value != nullptr ? key->value : no_value;
    if (context.state != nullptr)
        ++context.state->output_list_count;
    // Filled where it stays: an entry's keys are a few hundred bytes.
    OutputListFrame &frame = session->output_lists.emplace_back();
    frame.entry = input_node;
    open_entry(*session, input_node, frame.keys);
}

void yfw_remove_from_output_list_ctx(yfw_map_ctx *ctx, const tidl_yfw_datatree *input_node,
                                     tidl_yfw_datatree *out_tree) {
    (void)out_tree;
    yfw_map_ctx &context = checked(ctx);
    yfw_map_session *session = context.session;
    if (session == nullptr)
        return;
    auto &open = session->output_lists;
    auto it = std::ranges::find(open, input_node, &OutputListFrame::entry);
    if (it == open.end())
        return;
    const auto keep = static_cast<std::size_t>(it - open.begin());
    while (open.size() > keep)
        close_output_list(context, *session);
}

int yfw_map_is_request_delete(const tidl_yfw_datatree *node) {
    return node != nullptr && is_delete(yfw::effective_operation(node)) ? 1 : 0;
}

int yfw_map_is_request_add(yfw_map_ctx *ctx, const tidl_yfw_datatree *node) {
    const yfw_map_ctx &context = checked(ctx);
    if (node == nullptr || context.state == nullptr || context.state->request == nullptr)
        return 0;
    const uint32_t kind = context.state->request->request_kind;
    return !yfw_map_is_read_kind(kind) && !is_delete(yfw::effective_operation(node)) ? 1 : 0;
}

int yfw_map_do_these_match(const char *a, const char *b) {
    return same_text(a, b) ? 1 : 0;
}

cerrno yfw_map_check_oc_leafref(yfw_map_ctx *ctx, const char *list_path, const char *container_name,
                                const tidl_yfw_datatree *key_node,
                                const tidl_yfw_datatree *list_node) {
    (void)list_path;
    checked(ctx);
    if (container_name == nullptr || key_node == nullptr || list_node == nullptr ||
        key_node->tag == nullptr)
        return YFW_ERR_INVALID_ARGS;
    const tidl_yfw_datatree *mirror =
        child_with_tag(child_with_tag(list_node, container_name), key_node->tag);
    // Only two values can disagree: a leaf that selects has nothing to compare.
    if (mirror != nullptr && mirror->value != nullptr && key_node->value != nullptr &&
        !same_text(mirror->value, key_node->value))
        return YFW_ERR_LIST_KEY;
    return YFW_SUCCESS;
}

uint32_t yfw_map_util_itree_stack_size(yfw_map_ctx *ctx) {
    yfw_map_session *session = session_of(ctx);
    return session != nullptr ? static_cast<uint32_t>(session->itree.size()) : 0;
}

void yfw_map_util_itree_stack_push(yfw_map_ctx *ctx, tidl_yfw_datatree *nodes, uint32_t count,
                                   yfw_map_itree_cb callback) {
    if (yfw_map_session *session = session_of(ctx)) {
        session->itree_owners.push_back(holder_of(*session, nodes));
        session->itree.push_back({nodes, count, callback});
    }
}

void yfw_map_util_itree_stack_peak(yfw_map_ctx *ctx, yfw_map_itree_entry **entry_out) {
    yfw_map_session *session = session_of(ctx);
    if (entry_out != nullptr)
        *entry_out =
            session != nullptr && !session->itree.empty() ? &session->itree.back() : nullptr;
}

void yfw_map_util_itree_stack_pop(yfw_map_ctx *ctx) {
    yfw_map_session *session = session_of(ctx);
    if (session != nullptr && !session->itree.empty()) {
        session->itree.pop_back();
        session->itree_owners.pop_back();
    }
}

void yfw_oc_error_path(yfw_map_ctx *ctx) {
    yfw_map_session *session = session_of(ctx);
    if (session == nullptr)
        return;
    std::string path;
    const char *parent_ns = nullptr;
    for (std::size_t depth = 0; depth < session->hierarchy.size(); ++depth) {
        const tidl_yfw_datatree &node = *session->hierarchy[depth].node;
        path += '/';
        path += yfw::describe_segment(node, session->hierarchy_path(depth), parent_ns);
        if (node.namespace_ != nullptr)
            parent_ns = node.namespace_;
    }
    session->error_path = path.empty() ? "/" : path;
}

} // extern "C"
