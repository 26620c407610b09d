// print_data: a dump of the whole mapping state to the trace, for developers.
#include "ymap_frame.hpp"

extern "C" YMAP_EXPORT void print_data(yfw_map_ctx *ctx) {
    YMAP_ASSERT_CTX(ctx);
    const yfw_map_state *st = ctx->state;
    ctx->map_dump_on[0] = 1;
    ctx->map_dump_on[1] = 1;
    for (uint32_t i = 0; i < st->node_data_count && i < YFW_MAP_MAX_NODE_DATA; ++i) {
        YFW_MAP_TRC(ctx, __func__, "iteration %d", (int)i);
        yfw_map_print_datatree_internal(ctx, st->node_data[i].tree, "node_data");
    }
    yfw_map_print_datatree_internal(ctx, st->root_node, "root_node");
    yfw_map_print_datatree_internal(ctx, st->parent_node, "parent_node");
    yfw_map_print_datatree_internal(ctx, st->current_node, "current_node");
    yfw_map_print_datatree_internal(ctx, st->reg_dup_datatree, "reg_dup_datatree");
    yfw_map_print_datatree_internal(ctx, st->plist, "plist");
    YFW_MAP_TRC(ctx, __func__, "ctx->list_index %d", ctx->list_index);
    for (int32_t i = 0; i < ctx->list_index && i < YFW_MAP_MAX_OUTPUT_LISTS; ++i)
        YFW_MAP_TRC(ctx, __func__, "output_list_key[%d] = %s", i,
                    ctx->output_list_key[i] != nullptr ? ctx->output_list_key[i] : "");
}
