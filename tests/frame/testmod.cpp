#include "testmod.hpp"

#define YMAP_PASS AUTO
#include "testmod.def"
#undef YMAP_PASS
#define YMAP_PASS PARSER
#include "testmod.def"
#undef YMAP_PASS

namespace test {
ListMapperCall last_list_mapper_call;
Instances instances;
} // namespace test

namespace {
cerrno count_instance(yfw_map_ctx *, tidl_yfw_datatree *, tidl_yfw_datatree *, uint32_t) {
    ++test::instances.callbacks;
    return YFW_SUCCESS;
}
} // namespace

// The entry form, recording what the mapper could see.
extern "C" cerrno test_lst_mapper(yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                                  tidl_yfw_datatree *out_tree) {
    return ymap::framed(ctx, __func__, node, out_tree, [&] {
        auto &call = test::last_list_mapper_call;
        ++call.calls;
        call.walk_suppress = ctx->state->walk_suppress;
        call.deleted = yfw_map_is_request_delete(node) != 0;
        if (test::instances.nodes != nullptr)
            yfw_map_util_itree_stack_push(ctx, test::instances.nodes, test::instances.count,
                                          &count_instance);
        return yfw_map_datatree_add_path_flagged(ctx, out_tree, "/banners/banner",
                                                 NS_INFRA_INFRA_CFG, nullptr,
                                                 call.deleted ? node : nullptr, nullptr, 1, 0);
    });
}
