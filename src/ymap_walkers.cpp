// The two walker families. A native-input walker descends a native tree
// simply; an OpenConfig-input walker carries the meaning of a request that
// names less than a whole subtree: filters, walk-all passes, replace, key
// validation. A row's flags may give a walker the behaviour of the other
// family than its name says.
#include <cstring>

#include "ymap_frame.hpp"
#include "ymap_module_state.hpp"

namespace ymap {
namespace {

constexpr uint32_t kReplaceBits = YFW_MAP_STATE_REPLACE_DELETE | YFW_MAP_STATE_REPLACE_MERGE;

bool own_operation_is(const tidl_yfw_datatree *node, int32_t op) {
    return node->present_operation != 0 && node->operation == op;
}

// The children of a node; the malformed pair (array missing, count given) is
// reported by the caller.
struct Subtrees {
    tidl_yfw_datatree *items = nullptr;
    uint32_t count = 0;
    bool malformed = false;

    explicit Subtrees(const tidl_yfw_datatree *node) {
        if (node->present_subtrees == 0)
            return;
        items = node->subtrees;
        count = node->subtree_count;
        malformed = items == nullptr && count != 0;
        if (malformed)
            count = 0;
    }
};

// The first letters are compared before the whole texts, since most tags of a
// row differ there.
bool same_tag(const char *tag, const char *schema_tag) {
    return tag[0] == schema_tag[0] && text_equal(tag, schema_tag);
}

const Child *find_child(const WalkerRow &row, const char *tag) {
    for (const Child &c : row.children)
        if (same_tag(tag, c.tag))
            return &c;
    return nullptr;
}

bool is_key_tag(const WalkerRow &row, const char *tag) {
    for (const char *k : row.keys)
        if (k != nullptr && same_tag(tag, k))
            return true;
    return false;
}

std::size_t key_count(const WalkerRow &row) {
    return (row.keys[0] != nullptr ? 1 : 0) + (row.keys[1] != nullptr ? 1 : 0);
}

// A walker's "End", by the answer its start had from the debug log.
cerrno end(const WalkerRow &row, yfw_map_ctx *ctx, cerrno status, bool debug) {
    frame_line(ctx, row.name, FrameLine::End, debug);
    return status;
}

// The paths of malformed input and unknown tags are out of line, so that the
// walkers' common paths carry no trace buffer of theirs.
[[gnu::cold, gnu::noinline]] cerrno bad_subtrees(const char *name, yfw_map_ctx *ctx) {
    YFW_MAP_ERR(ctx, name, YMAP_MSG_BAD_SUBTREES);
    frame_line(ctx, name, FrameLine::End);
    return YFW_ERR_BAD_TREE;
}

cerrno skip_is_success(cerrno status) {
    return status == YFW_MAP_SKIP_NODE ? YFW_SUCCESS : status;
}

// ---- One classification of a child, for every family --------------------------

enum class ChildClass : uint8_t {
    NoTag,      // malformed: the walk stops
    Known,      // a child of the schema: its walker
    OwnUnknown, // the walker's own namespace with no mapping
    Foreign,    // another namespace: the augment parser
};

struct Classified {
    ChildClass what;
    const Child *child = nullptr;
};

// State-only children, and every child of a walker that dispatches only in
// KIND_GET, are known only in KIND_GET; otherwise their tag falls through as
// if unknown.
// `c` is the schema child of the node's tag, or null.
Classified classify_found(const WalkerRow &row, yfw_map_ctx *ctx, const tidl_yfw_datatree &node,
                          const Child *c) {
    const bool get = request_kind(ctx) == KIND_GET;
    if (c != nullptr && ((c->flags & kStateOnly) == 0 || get) &&
        ((row.flags & kGetOnly) == 0 || get))
        return {ChildClass::Known, c};
    if ((row.flags & kNoOwnNsTest) == 0 && text_equal(node.namespace_, row.ns))
        return {ChildClass::OwnUnknown};
    return {ChildClass::Foreign};
}

Classified classify(const WalkerRow &row, yfw_map_ctx *ctx, const tidl_yfw_datatree &node) {
    if (node.tag == nullptr)
        return {ChildClass::NoTag};
    return classify_found(row, ctx, node, find_child(row, node.tag));
}

// An own-namespace tag with no mapping: a native answer drops it, and so does
// a walker that ignores such tags; an OpenConfig request passes over it in a
// read and refuses it in a write.
[[gnu::noinline]] cerrno own_unknown(const WalkerRow &row, yfw_map_ctx *ctx,
                                     const tidl_yfw_datatree *child) {
    if (!walks_openconfig(row) || (row.flags & kIgnoresOwnUnknown) != 0) {
        if ((row.flags & kNamedIgnore) != 0)
            YFW_MAP_TRC(ctx, row.name, YMAP_MSG_IGNORING_NAMED, child->tag);
        else
            YFW_MAP_TRC(ctx, row.name, YMAP_MSG_IGNORING);
        return YFW_SUCCESS;
    }
    YFW_MAP_ERR(ctx, row.name, YMAP_MSG_UNSUPPORTED_TAG);
    if (read_kind(ctx))
        return YFW_SUCCESS;
    return refuse(ctx, child->tag, YFW_ERR_UNSUPPORTED_TAG);
}

[[gnu::cold, gnu::noinline]] void mark_xpath_error(yfw_map_ctx *ctx, const char *name) {
    YFW_MAP_TRC(ctx, name, YMAP_MSG_XPATH_ERROR);
    ctx->state->state_flags |= YFW_MAP_STATE_XPATH_ERROR;
}

[[gnu::cold, gnu::noinline]] cerrno no_tag(const WalkerRow &row, yfw_map_ctx *ctx) {
    YFW_MAP_ERR(ctx, row.name, YMAP_MSG_NO_TAG);
    return YFW_ERR_BAD_TREE;
}

// A native leaf, walked inline under its own walker's name.
cerrno inline_leaf(const Child &c, yfw_map_ctx *ctx, tidl_yfw_datatree *leaf,
                   tidl_yfw_datatree *out_tree) {
    const bool debug = debug_lines(ctx);
    frame_line(ctx, c.leaf_name, FrameLine::Start, debug);
    if (Subtrees(leaf).malformed)
        return bad_subtrees(c.leaf_name, ctx);
    if (leaf->present_error_kind != 0 && leaf->error_kind == YFW_MAP_ERROR_KIND_XPATH)
        mark_xpath_error(ctx, c.leaf_name);
    const cerrno status = c.leaf_mapper(ctx, leaf, out_tree);
    frame_line(ctx, c.leaf_name, FrameLine::End, debug);
    return status;
}

// Visits one child by its class.
cerrno visit(const WalkerRow &row, yfw_map_ctx *ctx, const Classified &cls,
             tidl_yfw_datatree *child, tidl_yfw_datatree *out_tree) {
    switch (cls.what) {
    case ChildClass::NoTag:
        return no_tag(row, ctx);
    case ChildClass::Known:
        return cls.child->walk != nullptr ? cls.child->walk(ctx, child, out_tree)
                                          : inline_leaf(*cls.child, ctx, child, out_tree);
    case ChildClass::OwnUnknown:
        return own_unknown(row, ctx, child);
    case ChildClass::Foreign:
        return row.augment_parser(ctx, child, out_tree);
    }
    return YFW_SUCCESS; // not reached: every class is a case
}

// The children named under a container, in array order, until one fails.
// They come mostly in schema order, so the schema child after the one found
// last is tried first; a row's tags are unique, so the match is the same.
cerrno visit_children(const WalkerRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *items,
                      uint32_t count, tidl_yfw_datatree *out_tree) {
    cerrno status = YFW_SUCCESS;
    const Child *likely = row.children.data();
    const Child *const past = likely + row.children.size();
    for (uint32_t i = 0; i < count && status == YFW_SUCCESS; ++i) {
        const char *tag = items[i].tag;
        Classified cls{ChildClass::NoTag};
        if (tag != nullptr) {
            const Child *c =
                likely != past && same_tag(tag, likely->tag) ? likely : find_child(row, tag);
            if (c != nullptr)
                likely = c + 1;
            cls = classify_found(row, ctx, items[i], c);
        }
        status = visit(row, ctx, cls, &items[i], out_tree);
    }
    return status;
}

const Child *walked_child(const WalkerRow &row, const char *tag) {
    const Child *c = find_child(row, tag);
    return c != nullptr && c->walk != nullptr ? c : nullptr;
}

// ---- Native input ---------------------------------------------------------------

cerrno qo_container(const WalkerRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                    tidl_yfw_datatree *out_tree, bool debug) {
    const Subtrees subs(node);
    if (subs.malformed)
        return bad_subtrees(row.name, ctx);
    yfw_map_add_to_node_hierarchy(ctx, node, YFW_MAP_HIER_CONTAINER);
    cerrno status = row.cont_mapper(ctx, node, subs.count, out_tree);
    if (status == YFW_SUCCESS)
        status = visit_children(row, ctx, subs.items, subs.count, out_tree);
    yfw_map_remove_from_node_hierarchy(ctx, node);
    return end(row, ctx, skip_is_success(status), debug);
}

cerrno qo_list(const WalkerRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
               tidl_yfw_datatree *out_tree, bool debug) {
    const Subtrees subs(node);
    if (subs.malformed && !((row.flags & kStateOnlyList) != 0 && read_kind(ctx)))
        return bad_subtrees(row.name, ctx);
    if (subs.count == 0)
        note(ctx, row.name, Note::NoKeys);
    yfw_map_add_to_node_hierarchy(ctx, node, YFW_MAP_HIER_LIST_ENTRY);
    if (yfw_map_update_current_list_node(ctx, row.list_path) == YFW_SUCCESS)
        for (uint32_t i = 0; i < subs.count; ++i)
            if (subs.items[i].tag != nullptr && is_key_tag(row, subs.items[i].tag))
                yfw_dt_set_is_key(&subs.items[i]);
    cerrno status = row.mapper(ctx, node, out_tree);
    if (status != YFW_SUCCESS) {
        // A skipped entry is dropped whole, with success.
        yfw_map_remove_from_node_hierarchy(ctx, node);
        return end(row, ctx, skip_is_success(status), debug);
    }
    const uint8_t lists_before = ctx->state->output_list_count;
    yfw_add_to_output_list_ctx(ctx, node, out_tree);
    const bool list_opened = ctx->state->output_list_count > lists_before;
    status = visit_children(row, ctx, subs.items, subs.count, out_tree);
    yfw_map_remove_from_node_hierarchy(ctx, node);
    if (list_opened)
        yfw_remove_from_output_list_ctx(ctx, node, out_tree);
    return end(row, ctx, skip_is_success(status), debug);
}

// ---- OpenConfig input ------------------------------------------------------------

cerrno oq_leaf(const WalkerRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
               tidl_yfw_datatree *out_tree, bool debug) {
    const cerrno status = row.mapper(ctx, node, out_tree);
    yfw_map_state *st = ctx->state;
    // In a walk-all pass the node is an ancestor: it is not this leaf to mark.
    if (st->walk_all != 1 && st->walk_suppress == YFW_MAP_SUPPRESS_NONE) {
        if (row.kind == WalkerKind::LeafList) {
            yfw_dt_set_node_kind(node, NODE_LEAF_LIST);
        } else {
            yfw_dt_set_node_kind(node, NODE_LEAF);
            if (read_kind(ctx)) {
                if (node->present_value != 0) {
                    st->filter_flags |= YFW_MAP_FILTER_CONTENT_MATCH | YFW_MAP_FILTER_CONTENT_SEEN;
                    yfw_dt_set_node_kind(node, NODE_CONTENT_MATCH);
                } else {
                    st->filter_flags |= YFW_MAP_FILTER_SELECTION;
                }
            }
        }
    }
    return end(row, ctx, skip_is_success(status), debug);
}

// The walk-all pass of a container: every child in schema order with the
// container's own node, state-only children in KIND_GET, then the augment
// parser. The children's statuses are dropped: a walk-all pass reads or
// deletes what exists, and a subtree with no mapping must not fail it.
void oq_walk_all(const WalkerRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                 tidl_yfw_datatree *out_tree) {
    yfw_map_state *st = ctx->state;
    {
        WalkScope scope(ctx, node);
        scope.walk_all();
        {
            WalkScope lowered(ctx, node);
            lowered.lower_delete();
            for (const Child &c : row.children)
                if ((c.flags & kStateOnly) == 0 && c.walk != nullptr)
                    (void)c.walk(ctx, node, out_tree);
        }
        if (request_kind(ctx) == KIND_GET)
            for (const Child &c : row.children)
                if ((c.flags & kStateOnly) != 0 && c.walk != nullptr)
                    (void)c.walk(ctx, node, out_tree);
        (void)row.augment_parser(ctx, node, out_tree);
    }
    st->filter_flags &= YFW_MAP_FILTER_ENTRY_MASK;
    st->filter_flags &= ~(YFW_MAP_FILTER_CONTENT_MATCH | YFW_MAP_FILTER_SELECTION);
}

// A replace: the first pass deletes the bare node whole, the second merges the
// content. Starts the first pass.
void begin_replace(yfw_map_state *st, tidl_yfw_datatree *node) {
    yfw_dt_set_operation(node, OP_REMOVE);
    st->state_flags |= YFW_MAP_STATE_REPLACE_DELETE;
    st->replace_active = 1;
}
void begin_merge_pass(yfw_map_state *st, tidl_yfw_datatree *node) {
    yfw_dt_set_operation(node, OP_MERGE);
    st->state_flags |= YFW_MAP_STATE_REPLACE_MERGE;
    st->state_flags &= ~YFW_MAP_STATE_REPLACE_DELETE;
}
void end_replace(yfw_map_state *st) {
    st->state_flags &= ~kReplaceBits;
    st->replace_active = 0;
}

cerrno oq_container(const WalkerRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                    tidl_yfw_datatree *out_tree, bool debug) {
    yfw_map_state *st = ctx->state;
    const Subtrees subs(node);
    if (subs.malformed)
        return bad_subtrees(row.name, ctx);
    const bool walk_all = st->walk_all == 1;
    const bool read = read_kind(ctx);

    // A delete names a container alone.
    if (!walk_all && subs.count != 0 && st->walk_suppress == YFW_MAP_SUPPRESS_NONE &&
        yfw_map_is_request_delete(node)) {
        note(ctx, row.name, Note::DeleteWithSubtree);
        return end(row, ctx, YFW_ERR_INVALID_ARGS, debug);
    }
    // In a walk-all pass with the expand bit raised, named children do not filter.
    uint32_t working =
        ((st->filter_flags & YFW_MAP_FILTER_EXPAND) != 0 && walk_all) ? 0 : subs.count;
    if (!walk_all) {
        yfw_map_add_to_node_hierarchy(ctx, node, YFW_MAP_HIER_CONTAINER);
        yfw_dt_set_node_kind(node, NODE_CONTAINER);
        if (read)
            st->filter_flags &= YFW_MAP_FILTER_ENTRY_MASK;
    }

    const bool replace = own_operation_is(node, OP_REPLACE);
    if (replace) {
        begin_replace(st, node);
        yfw_dt_clear_subtrees(node);
        working = 0;
    }

    cerrno status = YFW_SUCCESS;
    for (int pass = 0; pass < (replace ? 2 : 1); ++pass) {
        const cerrno mapped = row.cont_mapper(ctx, node, working, out_tree);
        if (mapped == YFW_MAP_SKIP_NODE && (st->state_flags & YFW_MAP_STATE_REPLACE_DELETE) == 0) {
            // The node is not to be mapped: its children are not seen.
            if (replace)
                end_replace(st);
            if (!walk_all)
                yfw_map_remove_from_node_hierarchy(ctx, node);
            return YFW_SUCCESS;
        }
        if (mapped != YFW_MAP_SKIP_NODE) {
            status = mapped;
            if (working != 0 && status == YFW_SUCCESS)
                status = visit_children(row, ctx, node->subtrees, working, out_tree);
            // Content-match leaves and no selection leaf: expand the container whole.
            if ((st->filter_flags & (YFW_MAP_FILTER_SELECTION | YFW_MAP_FILTER_CONTENT_MATCH)) ==
                YFW_MAP_FILTER_CONTENT_MATCH) {
                st->filter_flags |= YFW_MAP_FILTER_EXPAND;
                st->filter_flags &= ~(YFW_MAP_FILTER_SELECTION | YFW_MAP_FILTER_CONTENT_MATCH);
            }
            const bool named = working != 0 && (st->filter_flags & YFW_MAP_FILTER_EXPAND) == 0;
            if (!named && (read || yfw_map_is_request_delete(node)))
                oq_walk_all(row, ctx, node, out_tree);
        }
        if (replace && pass == 0) {
            begin_merge_pass(st, node);
            yfw_dt_set_subtrees(node, subs.items, subs.count);
            working = subs.count;
            if (status != YFW_SUCCESS)
                break;
        }
    }
    if (replace)
        end_replace(st);
    if (!walk_all)
        yfw_map_remove_from_node_hierarchy(ctx, node);
    return end(row, ctx, status, debug);
}

// ---- The OpenConfig list walker, step by step -------------------------------------

// What the key scan found among the entry's children.
struct KeyScan {
    uint32_t keys = 0;
    uint32_t keys_with_value = 0;
    bool key_without_value = false;
    bool other_children = false;
};

// Key scan: marks the keys, counts them, and in a key-demanding kind checks
// each against its twin under `config`. A failed check is returned at once.
cerrno scan_keys(const WalkerRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                 const Subtrees &subs, KeyScan &scan) {
    const bool demanding = yfw_map_is_key_demanding_kind(request_kind(ctx)) != 0;
    for (uint32_t i = 0; i < subs.count; ++i) {
        tidl_yfw_datatree *child = &subs.items[i];
        if (child->tag == nullptr || !is_key_tag(row, child->tag)) {
            scan.other_children = true;
            continue;
        }
        if (demanding) {
            const cerrno checked =
                yfw_map_check_oc_leafref(ctx, row.list_path, "config", child, node);
            if (checked != YFW_SUCCESS) {
                note(ctx, row.name, Note::Leafref);
                return checked;
            }
        }
        ++scan.keys;
        yfw_dt_set_is_key(child);
        if (child->present_value != 0)
            ++scan.keys_with_value;
        else
            scan.key_without_value = true;
    }
    return YFW_SUCCESS;
}

// Key validation by request kind; a two-key list needs both counts non-zero.
bool keys_valid(const WalkerRow &row, uint32_t kind, const KeyScan &scan) {
    const uint32_t k = scan.keys;
    const uint32_t v = scan.keys_with_value;
    if (key_count(row) > 1)
        return k != 0 && v != 0;
    if (kind == KIND_EDIT_A || kind == KIND_EDIT_C)
        return v == 1 && k < 2;
    return v < 2 && k < 2 && (kind != KIND_EDIT_B || v != 0);
}

// The list mapper's call, with the suppress protocol around it: a delete that
// names the keys alone shows the mapper that the whole entry goes; a bare
// delete inside a walk-all pass holds the entry-gone level in the walker's
// scope, for the rest of the walker, so that nested lists demand no keys.
struct MapperCall {
    cerrno status;
    bool deleted_whole;
};
MapperCall call_list_mapper(const WalkerRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                            const Subtrees &subs, const KeyScan &scan, WalkScope &walker_scope,
                            tidl_yfw_datatree *out_tree) {
    const yfw_map_state *st = ctx->state;
    const bool del = yfw_map_is_request_delete(node) != 0;
    const bool unsuppressed = st->walk_suppress == YFW_MAP_SUPPRESS_NONE;
    if (del && scan.keys != 0 && !scan.other_children && unsuppressed) {
        WalkScope call(ctx, node);
        call.suppress(YFW_MAP_SUPPRESS_KEYS_DELETE);
        return {row.mapper(ctx, node, out_tree), true};
    }
    if (del && subs.count == 0 && st->walk_all == 1 && unsuppressed) {
        walker_scope.suppress(YFW_MAP_SUPPRESS_ENTRY_GONE);
        return {row.mapper(ctx, node, out_tree), true};
    }
    return {row.mapper(ctx, node, out_tree), false};
}

// An entry named by its keys alone (or, `bare`, an entry or list named with no
// children at all) is read or deleted whole: its `config`, in KIND_GET its
// `state`, and the augment parser, as one walk-all pass.
void expand_entry(const WalkerRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *target,
                  bool deleted_whole, bool bare, tidl_yfw_datatree *out_tree) {
    {
        WalkScope scope(ctx, target);
        scope.walk_all();
        if (bare || deleted_whole)
            scope.suppress(YFW_MAP_SUPPRESS_ENTRY_GONE);
        if (!bare) {
            if (yfw_map_is_request_delete(target))
                scope.set_operation(OP_REMOVE);
            // The named keys stay reachable for the framework while the entry is walked bare.
            const Subtrees subs(target);
            yfw_map_util_itree_stack_push(ctx, subs.items, subs.count, nullptr);
            scope.hide_subtrees();
        }
        scope.lower_delete();
        if (bare)
            if (const Child *key = walked_child(row, row.keys[0]))
                (void)key->walk(ctx, target, out_tree);
        if (const Child *config = walked_child(row, "config"))
            (void)config->walk(ctx, target, out_tree);
        if (request_kind(ctx) == KIND_GET)
            if (const Child *state = walked_child(row, "state"))
                (void)state->walk(ctx, target, out_tree);
        (void)row.augment_parser(ctx, target, out_tree);
    }
    if (!bare)
        yfw_map_util_itree_stack_pop(ctx);
}

// The children named in one instance of a list entry: keys (refused when
// empty in a key-demanding kind or carrying a delete), then the rest by class.
// The first pass of a replace visits the keys alone.
cerrno entry_children(const WalkerRow &row, yfw_map_ctx *ctx, const Subtrees &subs, KeyScan &scan,
                      tidl_yfw_datatree *out_tree) {
    const bool demanding = yfw_map_is_key_demanding_kind(request_kind(ctx)) != 0;
    const bool replace_delete = (ctx->state->state_flags & YFW_MAP_STATE_REPLACE_DELETE) != 0;
    cerrno status = YFW_SUCCESS;
    for (uint32_t i = 0; i < subs.count && status == YFW_SUCCESS; ++i) {
        tidl_yfw_datatree *child = &subs.items[i];
        const Classified cls = classify(row, ctx, *child);
        if (cls.what != ChildClass::NoTag && is_key_tag(row, child->tag)) {
            if (demanding && child->present_value == 0) {
                note(ctx, row.name, Note::EmptyKey);
                status = refuse(ctx, child->tag, YFW_ERR_LIST_KEY);
            } else if (own_operation_is(child, OP_DELETE) || own_operation_is(child, OP_REMOVE)) {
                note(ctx, row.name, Note::KeyDelete);
                yfw_oc_error_path(ctx);
                status = YFW_ERR_KEY_DELETE;
            } else {
                if (cls.what == ChildClass::Known)
                    status = visit(row, ctx, cls, child, out_tree);
                yfw_dt_set_is_key(child);
            }
        } else if (!replace_delete || cls.what == ChildClass::NoTag) {
            status = visit(row, ctx, cls, child, out_tree);
            if (cls.what == ChildClass::Known || cls.what == ChildClass::Foreign)
                scan.other_children = true;
        }
    }
    return status;
}

// The instance loop: the entry itself, or each node of an itree entry that the
// list mapper pushed. While the status (the mapper's, at first) is good, each
// instance's children are visited and, named by its keys alone or bare in a
// read or a delete, the instance is walked whole.
cerrno walk_instances(const WalkerRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                      const Subtrees &subs, const yfw_map_itree_entry *entry, bool deleted_whole,
                      KeyScan &scan, cerrno status, tidl_yfw_datatree *out_tree) {
    const bool del = yfw_map_is_request_delete(node) != 0;
    const bool read_or_delete = read_kind(ctx) || del;
    const uint32_t instances = entry != nullptr ? entry->count : 1;
    for (uint32_t i = 0; i < instances; ++i) {
        tidl_yfw_datatree *inst = entry != nullptr ? &entry->nodes[i] : node;
        const Subtrees isubs = entry != nullptr ? Subtrees(inst) : subs;
        if (i > 0) {
            yfw_map_add_to_node_hierarchy(ctx, inst, YFW_MAP_HIER_LIST_ENTRY);
            (void)yfw_map_update_current_list_node(ctx, row.list_path);
        }
        if (entry != nullptr && entry->callback != nullptr) {
            if (del)
                yfw_dt_set_operation(inst, OP_REMOVE);
            (void)entry->callback(ctx, inst, out_tree, 0);
        }
        if (status == YFW_SUCCESS)
            status = entry_children(row, ctx, isubs, scan, out_tree);
        if (status == YFW_SUCCESS && read_or_delete) {
            if (isubs.count == 0)
                expand_entry(row, ctx, inst, deleted_whole, true, out_tree);
            else if (!scan.key_without_value && !scan.other_children && scan.keys != 0)
                expand_entry(row, ctx, inst, deleted_whole, false, out_tree);
        }
        if (i > 0)
            yfw_map_remove_from_node_hierarchy(ctx, inst);
    }
    return status;
}

// A read that names other children and no key: the output entry needs a key,
// so the walker adds the key to the input entry itself.
void add_missing_key(const WalkerRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node) {
    tidl_yfw_datatree *key = nullptr;
    (void)yfw_map_datatree_add_path_flagged(ctx, node, row.keys[0], node->namespace_, nullptr,
                                            nullptr, &key, 0, 0);
    if (key != nullptr)
        yfw_dt_set_is_key(key);
}

cerrno oq_list(const WalkerRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
               tidl_yfw_datatree *out_tree, bool debug) {
    yfw_map_state *st = ctx->state;
    const uint32_t kind = request_kind(ctx);
    const bool read = read_kind(ctx);
    Subtrees subs(node);
    if (subs.malformed && !((row.flags & kStateOnlyList) != 0 && read))
        return bad_subtrees(row.name, ctx);
    const bool walk_all = st->walk_all == 1;

    const bool unsuppressed = st->walk_suppress == YFW_MAP_SUPPRESS_NONE;
    if (subs.count == 0 && !walk_all && unsuppressed) {
        note(ctx, row.name, Note::NoKeys);
        if (yfw_map_is_key_demanding_kind(kind)) {
            note(ctx, row.name, Note::NoKeysTrace);
            return end(row, ctx, YFW_ERR_BAD_TREE, debug);
        }
    }
    if (!walk_all) {
        yfw_map_add_to_node_hierarchy(ctx, node, YFW_MAP_HIER_LIST_ENTRY);
        yfw_dt_set_node_kind(node, NODE_LIST);
        if (read)
            st->filter_flags &= YFW_MAP_FILTER_ENTRY_MASK;
    }
    cerrno status = yfw_map_update_current_list_node(ctx, row.list_path);

    KeyScan scan;
    if (subs.count != 0 && status == YFW_SUCCESS && !walk_all && unsuppressed) {
        const cerrno checked = scan_keys(row, ctx, node, subs, scan);
        // The hierarchy stays as it is: the framework reads it for the answer.
        if (checked != YFW_SUCCESS)
            return end(row, ctx, checked, debug);
    }
    // A bad key: the walk goes on to the end with the status, doing no work.
    if (!walk_all && subs.count != 0 && unsuppressed && status == YFW_SUCCESS &&
        !keys_valid(row, kind, scan)) {
        note(ctx, row.name, Note::KeyError);
        status = refuse(ctx, row.keys[0], YFW_ERR_LIST_KEY);
    }

    const bool replace = own_operation_is(node, OP_REPLACE);
    if (replace) {
        begin_replace(st, node);
        scan.other_children = false;
        scan.key_without_value = false;
    }

    WalkScope scope(ctx, node);
    for (int pass = 0; pass < (replace ? 2 : 1) && status == YFW_SUCCESS; ++pass) {
        subs = Subtrees(node); // an earlier pass may have added a key to the entry
        const uint32_t stack_before = yfw_map_util_itree_stack_size(ctx);
        const MapperCall mapped = call_list_mapper(row, ctx, node, subs, scan, scope, out_tree);
        if (mapped.status == YFW_MAP_SKIP_NODE) {
            scope.release_suppress();
        } else {
            status = mapped.status;
            yfw_map_itree_entry *entry = nullptr;
            if (yfw_map_util_itree_stack_size(ctx) > stack_before)
                yfw_map_util_itree_stack_peak(ctx, &entry);
            if (status == YFW_SUCCESS)
                ctx->list_op = node->present_operation != 0 ? (uint32_t)node->operation : 0u;
            status = walk_instances(row, ctx, node, subs, entry, mapped.deleted_whole, scan, status,
                                    out_tree);
            if (entry != nullptr && entry->count != 0)
                yfw_map_util_itree_stack_pop(ctx);
            if (status == YFW_SUCCESS && read && !walk_all && scan.other_children && scan.keys == 0)
                add_missing_key(row, ctx, node);
        }
        if (replace && pass == 0) {
            yfw_dt_set_operation(node, OP_MERGE);
            st->state_flags &= ~YFW_MAP_STATE_REPLACE_DELETE;
        }
    }
    scope.release_suppress();
    if (replace)
        end_replace(st);
    if (!walk_all)
        yfw_map_remove_from_node_hierarchy(ctx, node);
    return end(row, ctx, skip_is_success(status), debug);
}

[[gnu::noinline]] void processing_tag(const WalkerRow &row, yfw_map_ctx *ctx, const char *tag) {
    YFW_MAP_TRC(ctx, row.name, YMAP_MSG_PROCESSING_TAG, tag);
}

// A walker of an augmenting module, entered with one node: the augmented
// child's tag goes to its walker; named bare in a read or a delete, the
// augmented subtree is walked whole.
cerrno oq_augment(const WalkerRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                  tidl_yfw_datatree *out_tree, bool debug) {
    const Subtrees subs(node);
    if (subs.malformed)
        return bad_subtrees(row.name, ctx);
    const Classified cls = classify(row, ctx, *node);
    if (cls.what != ChildClass::NoTag)
        processing_tag(row, ctx, node->tag);
    const cerrno status = visit(row, ctx, cls, node, out_tree);
    if (subs.count == 0 && status == YFW_SUCCESS &&
        (read_kind(ctx) || yfw_map_is_request_delete(node))) {
        WalkScope scope(ctx, node);
        scope.walk_all();
        scope.lower_delete();
        for (const Child &c : row.children)
            if (c.walk != nullptr && ((c.flags & kStateOnly) == 0 || request_kind(ctx) == KIND_GET))
                (void)c.walk(ctx, node, out_tree);
        (void)row.augment_parser(ctx, node, out_tree);
    }
    return end(row, ctx, status, debug);
}

// The generated augment parser. OpenConfig: a foreign node in an edit has no
// place to go and is refused; anything else passes. Native: dropped.
cerrno augment_parser(const WalkerRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node, bool debug) {
    cerrno status = YFW_SUCCESS;
    if (walks_openconfig(row) && yfw_map_is_request_add(ctx, node))
        status = refuse(ctx, node->tag, YFW_ERR_UNSUPPORTED_AUGMENT);
    return end(row, ctx, status, debug);
}

cerrno walk(const WalkerRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
            tidl_yfw_datatree *out_tree) {
    bool debug = false;
    if (!frame_start(ctx, row.name, node, out_tree, debug))
        return YFW_ERR_INVALID_ARGS;
    if ((row.flags & (kRaisesDnsOper | kYieldsToDnsOper)) != 0) {
        int32_t &oper_walked = module_state().is_ocsystem_dns_oper;
        if ((row.flags & kRaisesDnsOper) != 0) {
            oper_walked = 1;
        } else if (oper_walked != 0) {
            oper_walked = 0;
            return end(row, ctx, YFW_SUCCESS, debug);
        }
    }
    const bool oc = walks_openconfig(row);
    switch (row.kind) {
    case WalkerKind::Container:
        return oc ? oq_container(row, ctx, node, out_tree, debug)
                  : qo_container(row, ctx, node, out_tree, debug);
    case WalkerKind::List:
        return oc ? oq_list(row, ctx, node, out_tree, debug)
                  : qo_list(row, ctx, node, out_tree, debug);
    case WalkerKind::Leaf:
    case WalkerKind::LeafList:
        return oq_leaf(row, ctx, node, out_tree, debug);
    case WalkerKind::Augment:
        return oq_augment(row, ctx, node, out_tree, debug);
    case WalkerKind::AugmentParser:
        return augment_parser(row, ctx, node, debug);
    }
    return end(row, ctx, YFW_SUCCESS, debug); // not reached: every kind is a case
}

} // namespace

cerrno run_walker(const WalkerRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                  tidl_yfw_datatree *out_tree) {
    const cerrno status = walk(row, ctx, node, out_tree);
    yfw_map_state *st = ctx->state;
    if ((row.flags & kRequestRoot) != 0 && status == YFW_SUCCESS && st->error_tag != nullptr) {
        qvos_named_free(st->error_tag);
        st->error_tag = nullptr;
    }
    return status;
}

} // namespace ymap
