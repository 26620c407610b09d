// Requests and answers that succeed leave no error behind: a refusal inside a
// walk-all pass, whose status is dropped, keeps no tag; and a native Telnet
// VRF entry with neither address family is empty state, not a malformed tree.
#include "harness.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

struct Quiet {
    const char *name;
    yfw_map_walker_fn walker;
    uint32_t kind;
    std::string input;
};

constexpr auto kSystem = &ymap_oq_ocsystem_openconfigsystem_lvla_system;

const Quiet kCases[] = {
    {"dns_server_named_by_its_key", kSystem, KIND_GET_CONFIG,
     test::oc_system(
         "<dns><servers><server><address>192.0.2.1</address></server></servers></dns>")},
    {"bare_remote_servers_delete", kSystem, KIND_EDIT_A,
     test::oc_system("<logging><remote-servers nc:operation=\"delete\"/></logging>")},
    {"selector_named_by_its_keys", kSystem, KIND_GET_CONFIG,
     test::oc_system(
         "<logging><console><selectors><selector><facility>LOCAL7</facility>"
         "<severity>INFORMATIONAL</severity></selector></selectors></console></logging>")},
    {"telnet_vrf_with_neither_family", &ymap_qo_ocsystem_tarvexqviptcpcfg_lvla_ip, KIND_GET,
     test::native("Tarvex-QV-ip-tcp-cfg", "ip",
                  "<tinetd><services><telnet><vrfs><vrf><vrf-name>a</vrf-name></vrf></vrfs>"
                  "</telnet></services></tinetd>")},
};

class QuietSuccess : public testing::TestWithParam<Quiet> {};

TEST_P(QuietSuccess, LeavesNoErrorTag) {
    test::Request r(GetParam().kind);
    EXPECT_EQ(r.run(GetParam().walker, GetParam().input), YFW_SUCCESS);
    EXPECT_EQ(r.error_tag(), "");
    r.expect_state_restored();
}

INSTANTIATE_TEST_SUITE_P(Requests, QuietSuccess, testing::ValuesIn(kCases), test::case_name);

} // namespace
