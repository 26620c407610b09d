/* The contract headers are C: a C unit that includes them and uses the trace
 * statement must build with the project's warnings. */
#include "qv_platform.h"
#include "yfw_map.h"
#include "yfw_map_trace.h"
#include "ymap_namespaces.h"
#include "ymap_ocsystem.h"

cerrno c_headers_check(yfw_map_ctx *ctx, tidl_yfw_datatree *node);

cerrno c_headers_check(yfw_map_ctx *ctx, tidl_yfw_datatree *node) {
    YFW_MAP_TRC(ctx, __func__, "tag %s", node->tag);
    yfw_dt_set_operation(node, OP_REMOVE);
    return oper_only(ctx) ? YFW_SUCCESS : YFW_ERR_BAD_VALUE;
}
