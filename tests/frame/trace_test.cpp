// Trace pairs of the frame: both sinks, each on its own, with the unit's name.
#include <regex>

#include "harness.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::Request;

const char kResponse[] = "<host-names xmlns=\"http://tarvex.local/ns/yang/"
                         "Tarvex-QV-shellutil-cfg\"><host-name>r1</host-name></host-names>";

TEST(Trace, StartAndEndReachBothSinksInTheirFormats) {
    Request r(KIND_GET_CONFIG);
    r.session().set_debug_log(true);
    r.session().set_ring_trace(true);
    ASSERT_EQ(r.run(&ymap_qo_ocsystem_tarvexqvshellutilcfg_lvla_hostnames, kResponse), YFW_SUCCESS);
    const auto &debug = r.session().debug_log();
    const auto &ring = r.session().ring_trace();
    ASSERT_FALSE(debug.empty());
    ASSERT_EQ(debug.size(), ring.size());
    EXPECT_TRUE(std::regex_match(debug.front(), std::regex("TRC: YFW: ctx=0x[0-9a-f]+,Start")))
        << debug.front();
    EXPECT_TRUE(std::regex_match(
        ring.front(), std::regex("#[0-9]+: TRC: ymap_qo_ocsystem_tarvexqvshellutilcfg_lvla_"
                                 "hostnames:[0-9]+ ctx=0x[0-9a-f]+,Start")))
        << ring.front();
    // The inline leaf writes under its own walker's name, and its mapper under the mapper's.
    EXPECT_EQ(test::count_lines(ring, " ymap_qo_ocsystem_tarvexqvshellutilcfg_lvla_hostnames_"
                                      "hostname:"),
              2);
    EXPECT_EQ(test::count_lines(ring, " ymap_qo_ocsystem_tarvexqvshellutilcfg_leaf_lvla_"
                                      "hostnames_hostname:"),
              2);
}

TEST(Trace, EachSinkAloneAndNoSequenceNumberWhenTheRingIsOff) {
    Request debug_only(KIND_GET_CONFIG);
    debug_only.session().set_debug_log(true);
    const uint32_t drawn = yfw::trace_index_drawn();
    ASSERT_EQ(debug_only.run(&ymap_qo_ocsystem_tarvexqvshellutilcfg_lvla_hostnames, kResponse),
              YFW_SUCCESS);
    EXPECT_FALSE(debug_only.session().debug_log().empty());
    EXPECT_TRUE(debug_only.session().ring_trace().empty());
    EXPECT_EQ(yfw::trace_index_drawn(), drawn);

    Request ring_only(KIND_GET_CONFIG);
    ring_only.session().set_ring_trace(true);
    ASSERT_EQ(ring_only.run(&ymap_qo_ocsystem_tarvexqvshellutilcfg_lvla_hostnames, kResponse),
              YFW_SUCCESS);
    EXPECT_TRUE(ring_only.session().debug_log().empty());
    EXPECT_EQ(yfw::trace_index_drawn(), drawn + ring_only.session().ring_trace().size());
}

TEST(Trace, ErrorLinesUseTheErrorWord) {
    Request r(KIND_GET_CONFIG);
    r.session().set_debug_log(true);
    r.session().set_ring_trace(true);
    EXPECT_EQ(ymap_qo_ocsystem_tarvexqvshellutilcfg_lvla_hostnames(r.ctx(), nullptr,
                                                                   r.session().output()),
              YFW_ERR_INVALID_ARGS);
    EXPECT_TRUE(
        std::regex_match(r.session().debug_log().back(),
                         std::regex("ERR: YFW: ctx=0x[0-9a-f]+,Invalid arguments passed!")));
    EXPECT_TRUE(std::regex_match(r.session().ring_trace().back(),
                                 std::regex("#[0-9]+: ERR: [a-z_]+:[0-9]+ ctx=0x[0-9a-f]+,"
                                            "Invalid arguments passed!")));
}

// A long line is cut by the bounded formatting, with no error.
void long_statement(yfw_map_ctx *ctx) {
    YFW_MAP_TRC(ctx, "unit", "%s", std::string(400, 'x').c_str());
}

TEST(Trace, RingLineIsCutAt249Characters) {
    Request r(KIND_GET);
    r.session().set_debug_log(true);
    r.session().set_ring_trace(true);
    long_statement(r.ctx());
    EXPECT_EQ(r.session().ring_trace().back().size(), 249u);
    EXPECT_GT(r.session().debug_log().back().size(), 400u);
}

} // namespace
