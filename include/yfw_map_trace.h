/*
 * The trace statement: every log statement writes a pair, one line to the
 * filtered debug log and one to the ring trace. Each sink has a cheap test
 * ahead of any formatting, so a statement with both sinks off costs one call
 * and one field test.
 */
#ifndef YFW_MAP_TRACE_H
#define YFW_MAP_TRACE_H

#include <stdint.h>
#include <stdio.h>

#include "yfw_map.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- The logging layer (imported) -------------------------------------- */

int yfw_debug_should_log(const yfw_debug_filter *filter, uint32_t level);
void _qvos_dt_log_filter_adv(void *handle, int a, int b, int c, int d, int e, int32_t *cell,
                             const char *format, ...) __attribute__((format(printf, 8, 9)));
uint32_t ret_nc_yfw_trace_index_incr(void);
void _lstrace(void *handle, uint64_t flags, const char *text);
void yfw_map_print_datatree_internal(yfw_map_ctx *ctx, const tidl_yfw_datatree *tree,
                                     const char *label);

#ifdef __cplusplus
}
#endif

#define YFW_MAP_LEVEL_ERR 0u
#define YFW_MAP_LEVEL_TRC 3u
#define YFW_MAP_TRACE_BUF 250
#define YFW_MAP_LSTRACE_FLAGS 0x10101000000ULL

/*
 * One statement. `fn` names the logical unit (a walker inlined in another
 * still writes its own name); `msg` is a literal that may carry placeholders.
 * The cell belongs to the debug log filter, which keeps its decision there.
 */
#define YFW_MAP_LOG_(ctx, fn, level, word, msg, ...)                                               \
    do {                                                                                           \
        static int32_t yfw_cell_ = -1;                                                             \
        yfw_map_ctx *const yfw_ctx_ = (ctx);                                                       \
        if (yfw_debug_should_log(&yfw_ctx_->debug_filter, (level)))                                \
            _qvos_dt_log_filter_adv(                                                               \
                (level) == YFW_MAP_LEVEL_ERR ? yfw_ctx_->err_log : yfw_ctx_->trace_log, 0, 0, 0,   \
                0, 0, &yfw_cell_, word ": YFW: ctx=%p," msg, (void *)yfw_ctx_, ##__VA_ARGS__);     \
        if (yfw_ctx_->trace_on) {                                                                  \
            char yfw_buf_[YFW_MAP_TRACE_BUF];                                                      \
            snprintf(yfw_buf_, sizeof yfw_buf_, "#%u: " word ": %s:%d ctx=%p," msg,                \
                     ret_nc_yfw_trace_index_incr(), (fn), __LINE__, (void *)yfw_ctx_,              \
                     ##__VA_ARGS__);                                                               \
            _lstrace(yfw_ctx_->lstrace_handle, YFW_MAP_LSTRACE_FLAGS, yfw_buf_);                   \
        }                                                                                          \
    } while (0)

/* A trace line (level 3) and an error line (level 0). */
#define YFW_MAP_TRC(ctx, fn, msg, ...)                                                             \
    YFW_MAP_LOG_(ctx, fn, YFW_MAP_LEVEL_TRC, "TRC", msg, ##__VA_ARGS__)
#define YFW_MAP_ERR(ctx, fn, msg, ...)                                                             \
    YFW_MAP_LOG_(ctx, fn, YFW_MAP_LEVEL_ERR, "ERR", msg, ##__VA_ARGS__)

#endif /* YFW_MAP_TRACE_H */
