// Telnet: the seen flags of one answer do not outlive it; the walks of the
// Telnet trees are golden cases (golden/telnet.txt).
#include "harness.hpp"
#include "ymap_module_state.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::Request;

TEST(TelnetAnswerFlags, KeyMapperClearsTheSeenFlags) {
    Request r(KIND_GET_CONFIG);
    ASSERT_EQ(r.run(&ymap_qo_ocsystem_tarvexqviptcpcfg_lvla_ip,
                    test::native("Tarvex-QV-ip-tcp-cfg", "ip",
                                 "<tinetd><services><telnet><vrfs><vrf><vrf-name>mgmt</vrf-name>"
                                 "<ipv4><tcp><maximum-server>5</maximum-server></tcp></ipv4>"
                                 "<ipv6><tcp><maximum-server>3</maximum-server></tcp></ipv6>"
                                 "</vrf></vrfs></telnet></services></tinetd>")),
              YFW_SUCCESS);
    EXPECT_EQ(ymap::context_flags(r.ctx()).ipv4_seen, 0u);
    EXPECT_EQ(ymap::context_flags(r.ctx()).ipv6_seen, 0u);
}

} // namespace
