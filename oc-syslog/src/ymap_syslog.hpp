// What the logging sources share: the severity and facility vocabulary of the
// two models, and the frame of the table-driven logging mappers.
#pragma once

#include <span>
#include <string_view>

#include "ymap_ocsystem_modules.h"
#include "ymap_xpath_tables.hpp"

extern "C" {
// Word conversions: a constant word, or NULL (traced) when there is none.
YMAP_EXPORT const char *oc_syslog_severity_conversion(yfw_map_ctx *ctx, const char *value);
YMAP_EXPORT const char *oc_syslog_console_severity_conversion(yfw_map_ctx *ctx, const char *value);
YMAP_EXPORT const char *oc_syslog_facility_conversion(yfw_map_ctx *ctx, const char *value);
YMAP_EXPORT const char *qv_oc_syslog_severity_conversion(yfw_map_ctx *ctx, const char *value);
YMAP_EXPORT const char *qv_oc_syslog_console_severity_conversion(yfw_map_ctx *ctx,
                                                                 const char *value);
YMAP_EXPORT const char *qv_oc_syslog_facility_conversion(yfw_map_ctx *ctx, const char *value);

// "ipv4", "ipv6" or "NULL": the family of an address literal; a name is never
// looked up.
YMAP_EXPORT const char *oc_syslog_check_ipv4_ipv6(const char *host);
}

namespace ymap::syslog {

struct WordPair {
    std::string_view oc;
    std::string_view native;
};

// The vocabularies, each with the wording of its failure traces.
enum class Words : uint8_t { Severity, ConsoleSeverity, Facility };
enum class Direction : uint8_t { ToNative, ToOpenConfig };

const char *convert(yfw_map_ctx *ctx, const char *name, Words words, Direction direction,
                    const char *value);

// Whether `value` is exactly `word`, through the safe-string compare; a
// compare that fails itself is reported as `on_failure`.
bool same_word(const char *caller, std::string_view word, const char *value, bool on_failure);

} // namespace ymap::syslog

// The table-driven logging mappers leave the argument test to their table
// and trace only their end: the frame is the assertion and "End".
#define YMAP_SYSLOG_TABLE_HAND(fn)                                                                 \
    static cerrno fn##_body_(YMAP_HAND_PARAMS_, YMAP_HAND_NODE_, YMAP_HAND_OUT_);                  \
    extern "C" YMAP_EXPORT cerrno fn(yfw_map_ctx *ctx, tidl_yfw_datatree *node,                    \
                                     tidl_yfw_datatree *out_tree) {                                \
        YMAP_ASSERT_CTX(ctx);                                                                      \
        const cerrno status = fn##_body_(#fn, ctx, node, out_tree);                                \
        YFW_MAP_TRC(ctx, #fn, YMAP_MSG_END);                                                       \
        return status;                                                                             \
    }                                                                                              \
    static cerrno fn##_body_(YMAP_HAND_PARAMS_, YMAP_HAND_NODE_, YMAP_HAND_OUT_)
