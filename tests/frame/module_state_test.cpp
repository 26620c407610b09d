// The state that outlives a call: process-wide values and per-context flags.
#include <gtest/gtest.h>

#include "ymap_module_state.hpp"

namespace {

TEST(ModuleState, ContextFlagsAreKeptPerContextAndResetClearsEverything) {
    yfw_map_ctx a{}, b{};
    ymap::context_flags(&a).ipv4_seen = 1;
    ymap::context_flags(&b).ipv6_seen = 1;
    EXPECT_EQ(ymap::context_flags(&a).ipv4_seen, 1u);
    EXPECT_EQ(ymap::context_flags(&a).ipv6_seen, 0u);
    EXPECT_EQ(ymap::context_flags(&b).ipv6_seen, 1u);
    ymap::module_state().is_ocsystem_dns_oper = 1;
    ymap::module_state().get_grpc_server_name_probe = 1;

    ymap::reset_module_state();
    EXPECT_EQ(ymap::context_flags(&a).ipv4_seen, 0u);
    EXPECT_EQ(ymap::module_state().is_ocsystem_dns_oper, 0);
    EXPECT_EQ(ymap::module_state().get_grpc_server_name_probe, 0u);
}

TEST(ModuleState, AContextThatLostItsSlotStartsFromZero) {
    yfw_map_ctx first{};
    ymap::context_flags(&first).ipv4_seen = 1;
    yfw_map_ctx others[8]{};
    for (yfw_map_ctx &c : others)
        ymap::context_flags(&c).ipv6_seen = 1;
    EXPECT_EQ(ymap::context_flags(&first).ipv4_seen, 0u);
    EXPECT_EQ(ymap::context_flags(&others[7]).ipv6_seen, 1u);
}

} // namespace
