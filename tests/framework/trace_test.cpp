#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "tree_text.hpp"
#include "yfw_map_trace.h"

namespace {

std::string pointer_text(const void *p) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%p", p);
    return buffer;
}

struct Trace : testing::Test {
    yfw::Session session{KIND_GET};
    yfw_map_ctx *ctx = session.ctx();
    const std::string ctx_text = pointer_text(ctx);
};

TEST_F(Trace, DebugLogAlone) {
    session.set_debug_log(true);
    const uint32_t drawn = yfw::trace_index_drawn();
    YFW_MAP_TRC(ctx, "walker_a", "Start");
    YFW_MAP_ERR(ctx, "walker_a", "Invalid arguments passed!");
    YFW_MAP_TRC(ctx, "walker_a", "TAG is %s", "hostname");
    EXPECT_EQ(session.debug_log(),
              (std::vector<std::string>{"TRC: YFW: ctx=" + ctx_text + ",Start",
                                        "ERR: YFW: ctx=" + ctx_text + ",Invalid arguments passed!",
                                        "TRC: YFW: ctx=" + ctx_text + ",TAG is hostname"}));
    EXPECT_TRUE(session.ring_trace().empty());
    EXPECT_EQ(yfw::trace_index_drawn(), drawn) << "no sequence number without the ring trace";
}

// g++ 12 at -O3 sees an overlap that cannot be in "literal" + std::string.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wrestrict"
#endif
TEST_F(Trace, RingTraceAlone) {
    session.set_ring_trace(true);
    // clang-format off
    YFW_MAP_TRC(ctx, "walker_b", "End"); const int line = __LINE__;
    // clang-format on
    const uint32_t number = yfw::trace_index_drawn();
    ASSERT_EQ(session.ring_trace().size(), 1u);
    EXPECT_EQ(session.ring_trace()[0], "#" + std::to_string(number) + ": TRC: walker_b:" +
                                           std::to_string(line) + " ctx=" + ctx_text + ",End");
    EXPECT_TRUE(session.debug_log().empty());
    YFW_MAP_ERR(ctx, "walker_b", "List key node error.");
    EXPECT_EQ(yfw::trace_index_drawn(), number + 1);
    EXPECT_TRUE(session.ring_trace()[1].starts_with("#" + std::to_string(number + 1) + ": ERR: "));
}

TEST_F(Trace, LongLinesAreCutInTheRingOnly) {
    session.set_debug_log(true);
    session.set_ring_trace(true);
    const std::string tag(400, 'x');
    YFW_MAP_TRC(ctx, "walker_c", "Processing tag '%s'", tag.c_str());
    ASSERT_EQ(session.ring_trace().size(), 1u);
    EXPECT_EQ(session.ring_trace()[0].size(), YFW_MAP_TRACE_BUF - 1u);
    EXPECT_EQ(session.debug_log().at(0),
              "TRC: YFW: ctx=" + ctx_text + ",Processing tag '" + tag + "'");
}

TEST_F(Trace, EachLevelUsesItsOwnHandle) {
    session.set_debug_log(true);
    ctx->trace_log = nullptr;
    YFW_MAP_TRC(ctx, "walker_d", "Start");
    YFW_MAP_ERR(ctx, "walker_d", "Unsupported namespace");
    EXPECT_EQ(session.debug_log(),
              std::vector<std::string>{"ERR: YFW: ctx=" + ctx_text + ",Unsupported namespace"});
}

TEST_F(Trace, TheLastErrorLineIsKeptWithTheDebugLogOff) {
    EXPECT_EQ(session.error_line(), "");
    YFW_MAP_ERR(ctx, "walker_e", "List key node error.");
    YFW_MAP_TRC(ctx, "walker_e", "End");
    YFW_MAP_ERR(ctx, "walker_e", "names don't match, %s\n", "return error");
    EXPECT_TRUE(session.debug_log().empty());
    EXPECT_EQ(session.error_line(), "names don't match, return error");
}

TEST_F(Trace, FilterCellDecidesOnce) {
    int32_t muted = 0;
    int32_t fresh = -1;
    _qvos_dt_log_filter_adv(ctx->trace_log, 0, 0, 0, 0, 0, &muted, "muted %d", 1);
    _qvos_dt_log_filter_adv(ctx->trace_log, 0, 0, 0, 0, 0, &fresh, "kept %d", 2);
    EXPECT_EQ(fresh, 1);
    EXPECT_EQ(session.debug_log(), std::vector<std::string>{"kept 2"});
    EXPECT_EQ(yfw_debug_should_log(&ctx->debug_filter, YFW_MAP_LEVEL_TRC), 0);
}

TEST_F(Trace, RingKeepsTheNewestLines) {
    for (int i = 0; i < 5000; ++i)
        _lstrace(ctx->lstrace_handle, YFW_MAP_LSTRACE_FLAGS, std::to_string(i).c_str());
    const auto &lines = session.ring_trace();
    ASSERT_EQ(lines.size(), 4096u);
    EXPECT_EQ(lines.front(), "904");
    EXPECT_EQ(lines.back(), "4999");
}

TEST_F(Trace, TreeDumpUnderItsLabel) {
    tidl_yfw_datatree *root = fwtest::new_root(session.arena(), "system");
    root->namespace_ = session.arena().text("http://openconfig.net/yang/system");
    yfw_dt_set_operation(fwtest::add_node(session.arena(), root, "hostname", "r1"), OP_DELETE);
    yfw_map_print_datatree_internal(ctx, root, "node_data");
    EXPECT_TRUE(session.debug_log().empty()) << "written only while the debug log is on";

    session.set_debug_log(true);
    yfw_map_print_datatree_internal(ctx, root, "node_data");
    yfw_map_print_datatree_internal(ctx, nullptr, "plist");
    EXPECT_EQ(
        session.debug_log(),
        (std::vector<std::string>{"node_data:", "  system xmlns=http://openconfig.net/yang/system",
                                  "    hostname = \"r1\" operation=3", "plist: (null tree)"}));
}

} // namespace
