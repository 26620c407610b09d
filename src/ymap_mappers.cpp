// The mapper forms: one body per form, run with the row of the node.
#include <algorithm>
#include <array>
#include <cstring>

#include "ymap_frame.hpp"
#include "ymap_xpath.hpp"

namespace ymap {

void assertion_failed(const char *expr, const char *file, int line, const char *fn) {
    std::fprintf(stderr, "%s:%d: %s: Assertion `%s' failed.\n", file, line, fn, expr);
    std::abort();
}

void write_frame_line(yfw_map_ctx *ctx, const char *name, FrameLine line, bool debug) {
    // The two sinks of the trace statement, for a question already asked.
    static int32_t cells[2] = {-1, -1};
    const bool start = line == FrameLine::Start;
    if (debug) {
        if (start)
            _qvos_dt_log_filter_adv(ctx->trace_log, 0, 0, 0, 0, 0, &cells[0],
                                    "TRC: YFW: ctx=%p," YMAP_MSG_START, (void *)ctx);
        else
            _qvos_dt_log_filter_adv(ctx->trace_log, 0, 0, 0, 0, 0, &cells[1],
                                    "TRC: YFW: ctx=%p," YMAP_MSG_END, (void *)ctx);
    }
    if (ctx->trace_on != 0) {
        char buf[YFW_MAP_TRACE_BUF];
        snprintf(buf, sizeof buf, "#%u: TRC: %s:%d ctx=%p,%s", ret_nc_yfw_trace_index_incr(), name,
                 __LINE__, (void *)ctx, start ? YMAP_MSG_START : YMAP_MSG_END);
        _lstrace(ctx->lstrace_handle, YFW_MAP_LSTRACE_FLAGS, buf);
    }
}

void note(yfw_map_ctx *ctx, const char *name, Note line) {
    switch (line) {
    case Note::Mapped:
        YFW_MAP_TRC(ctx, name, YMAP_MSG_MAPPED);
        return;
    case Note::NotMapped:
        YFW_MAP_TRC(ctx, name, YMAP_MSG_NOT_MAPPED);
        return;
    case Note::NoSubtrees:
        YFW_MAP_TRC(ctx, name, YMAP_MSG_NO_SUBTREES);
        return;
    case Note::NoKeys:
        YFW_MAP_ERR(ctx, name, YMAP_MSG_NO_KEYS);
        return;
    case Note::NoKeysTrace:
        YFW_MAP_TRC(ctx, name, YMAP_MSG_NO_KEYS);
        return;
    case Note::KeyError:
        YFW_MAP_ERR(ctx, name, YMAP_MSG_KEY_ERROR);
        return;
    case Note::EmptyKey:
        YFW_MAP_ERR(ctx, name, YMAP_MSG_EMPTY_KEY);
        return;
    case Note::KeyDelete:
        YFW_MAP_ERR(ctx, name, YMAP_MSG_KEY_DELETE);
        return;
    case Note::Leafref:
        YFW_MAP_ERR(ctx, name, YMAP_MSG_LEAFREF);
        return;
    case Note::DeleteWithSubtree:
        YFW_MAP_TRC(ctx, name, YMAP_MSG_DELETE_WITH_SUBTREE);
        return;
    }
}

bool refuse_arguments(yfw_map_ctx *ctx, const char *name) {
    YFW_MAP_ERR(ctx, name, YMAP_MSG_INVALID_ARGS);
    yfw_oc_error_path(ctx);
    return false;
}

cerrno refuse(yfw_map_ctx *ctx, const char *tag, cerrno status) {
    yfw_map_state *st = ctx->state;
    qvos_named_free(st->error_tag);
    st->error_tag = yfw_strdup(tag, YFW_MAP_ALLOC_LABEL);
    yfw_oc_error_path(ctx);
    return status;
}

namespace {

uint32_t flag(const MapperRow &row, uint16_t bit) {
    return (row.flags & bit) != 0 ? 1u : 0u;
}

// Path pieces go to the framework from the stack, as the framework may keep
// the array only for the call. A row has 2 to kMaxPieces of them (check_row),
// so two overlapping moves of a fixed size copy them, with no call.
using Pieces = std::array<const char *, kMaxPieces>;
template <std::size_t K> void copy_ends(Pieces &to, const char *const *from, uint32_t n) {
    std::memcpy(to.data(), from, K * sizeof *from);
    std::memcpy(to.data() + n - K, from + n - K, K * sizeof *from);
}
[[gnu::always_inline]] inline void copy_pieces(const MapperRow &row, Pieces &to) {
    static_assert(kMaxPieces <= 16);
    const uint32_t n = row.component_count;
    if (n <= 4)
        copy_ends<2>(to, row.components, n);
    else if (n <= 8)
        copy_ends<4>(to, row.components, n);
    else
        copy_ends<8>(to, row.components, n);
}

cerrno add_from_pieces(const MapperRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                       tidl_yfw_datatree *out_tree) {
    Pieces pieces;
    copy_pieces(row, pieces);
    return yfw_map_add_leaf_from_xpath(ctx, node, out_tree, pieces[0], row.ns, pieces.data(),
                                       row.component_count);
}

cerrno stitch(const MapperRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
              tidl_yfw_datatree *out_tree) {
    Pieces pieces;
    copy_pieces(row, pieces);
    return yfw_map_auto_stitch_list_to_list(ctx, node, out_tree, row.ns, pieces.data(),
                                            row.component_count);
}

cerrno container_body(const MapperRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                      uint32_t count, tidl_yfw_datatree *out_tree) {
    switch (row.cont_form) {
    case ContForm::Pass:
        return YFW_SUCCESS;
    case ContForm::StatePickup:
        // Named without children, the client wants the whole container, and the
        // other tree has all of it under one path.
        if (count != 0) {
            note(ctx, row.name, Note::NotMapped);
            return YFW_SUCCESS;
        }
        note(ctx, row.name, Note::NoSubtrees);
        return add_value(ctx, out_tree, row.path, row.ns, nullptr);
    case ContForm::Mapped:
        if (count != 0) {
            note(ctx, row.name, Note::Mapped);
            return add_value(ctx, out_tree, row.path, row.ns, nullptr);
        }
        note(ctx, row.name, Note::NoSubtrees);
        if (read_kind(ctx) || !yfw_map_is_request_delete(node))
            return YFW_SUCCESS;
        return yfw_map_datatree_add_path_flagged(ctx, out_tree, row.path, row.ns, nullptr, node,
                                                 nullptr, 0, 0);
    case ContForm::Hand:
        return row.hand_count(ctx, node, count, out_tree);
    }
    return YFW_SUCCESS; // not reached: every form is a case
}

cerrno list_body(const MapperRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                 tidl_yfw_datatree *out_tree) {
    switch (row.list_form) {
    case ListForm::Pass:
        return YFW_SUCCESS;
    case ListForm::Entry:
        return yfw_map_datatree_add_path_flagged(ctx, out_tree, row.path, row.ns, nullptr,
                                                 yfw_map_is_request_delete(node) ? node : nullptr,
                                                 nullptr, 1, flag(row, kAugment));
    case ListForm::Stitched:
        return stitch(row, ctx, node, out_tree);
    case ListForm::Table:
        return run_list_table(*row.table, ctx, node, out_tree);
    case ListForm::Hand:
        return row.hand(ctx, node, out_tree);
    case ListForm::Companion:
        return row.companion(ctx, node, out_tree);
    }
    return YFW_SUCCESS; // not reached: every form is a case
}

cerrno leaf_body(const MapperRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                 tidl_yfw_datatree *out_tree) {
    const uint32_t list_entry = flag(row, kListEntry);
    const uint32_t augment = flag(row, kAugment);
    switch (row.leaf_form) {
    case LeafForm::None:
        return YFW_SUCCESS;
    case LeafForm::Automatic: {
        if (row.family == Family::Oq) { // a write-capable leaf
            cerrno status =
                add_three_way(ctx, node, out_tree, row.path, row.ns, list_entry, augment);
            if ((row.flags & kTwice) != 0)
                status = add_three_way(ctx, node, out_tree, row.path, row.ns, list_entry, augment);
            return status;
        }
        // Native to OpenConfig: answers carry no operation.
        cerrno status = YFW_SUCCESS;
        const int repeats = (row.flags & kTwice) != 0 ? 2 : 1;
        for (int i = 0; i < repeats; ++i)
            if ((row.flags & kUnlessOperOnly) == 0 || !oper_only(ctx))
                status =
                    add_value(ctx, out_tree, row.path, row.ns, node->value, list_entry, augment);
        return status;
    }
    case LeafForm::FromXpath:
        // State lives in a private module that only reads reach.
        if (!read_kind(ctx))
            return YFW_SUCCESS;
        return add_from_pieces(row, ctx, node, out_tree);
    case LeafForm::Refuse:
        return refuse(ctx, node->tag, YFW_ERR_UNSUPPORTED_TAG);
    case LeafForm::Table:
        return run_leaf_table(*row.table, ctx, node, out_tree);
    case LeafForm::Hand:
        return row.hand(ctx, node, out_tree);
    case LeafForm::Companion:
        return row.companion(ctx, node, out_tree);
    }
    return YFW_SUCCESS; // not reached: every form is a case
}

} // namespace

cerrno run_container_mapper(const MapperRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                            uint32_t count, tidl_yfw_datatree *out_tree) {
    return framed(ctx, row.name, node, out_tree,
                  [&] { return container_body(row, ctx, node, count, out_tree); });
}

cerrno run_mapper(const MapperRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                  tidl_yfw_datatree *out_tree) {
    return framed(ctx, row.name, node, out_tree, [&] {
        return row.kind == MapperKind::List ? list_body(row, ctx, node, out_tree)
                                            : leaf_body(row, ctx, node, out_tree);
    });
}

cerrno run_hand(const char *name, HandBody body, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                tidl_yfw_datatree *out_tree) {
    return framed(ctx, name, node, out_tree, [&] { return body(name, ctx, node, out_tree); });
}

cerrno run_hand_count(const char *name, HandCountBody body, yfw_map_ctx *ctx,
                      tidl_yfw_datatree *node, uint32_t count, tidl_yfw_datatree *out_tree) {
    return framed(ctx, name, node, out_tree,
                  [&] { return body(name, ctx, node, count, out_tree); });
}

cerrno run_hand_callback(const char *name, HandCallbackBody body, yfw_map_ctx *ctx, int32_t count,
                         xpath_list_type_t *rows) {
    return framed(ctx, name, rows, rows, [&] { return body(name, ctx, count, rows); });
}

cerrno duck_container(const char *name, yfw_map_ctx *ctx, tidl_yfw_datatree *node, uint32_t,
                      tidl_yfw_datatree *out_tree) {
    return framed(ctx, name, node, out_tree, [] { return YFW_SUCCESS; });
}

cerrno duck_pass(const char *name, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                 tidl_yfw_datatree *out_tree) {
    return framed(ctx, name, node, out_tree, [] { return YFW_SUCCESS; });
}

cerrno duck_refuse(const char *name, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                   tidl_yfw_datatree *out_tree) {
    return framed(ctx, name, node, out_tree,
                  [&] { return refuse(ctx, node->tag, YFW_ERR_UNSUPPORTED_TAG); });
}

} // namespace ymap
