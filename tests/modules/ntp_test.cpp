// NTP: the value conversions of the peer leaves, and state figures that join
// the configured server entry. The walks of one tree are golden cases
// (golden/ntp.txt).
#include "harness.hpp"
#include "ymap_ocsystem_modules.h"

extern "C" {
const char *qv_oc_ntp_version_data_fn(const tidl_yfw_datatree *node);
const char *qv_oc_peer_to_assoc_type(const tidl_yfw_datatree *node);
const char *qv_oc_ntp_iburst_data_fn(const tidl_yfw_datatree *node);
const char *qv_oc_ntp_prefer_data_fn(const tidl_yfw_datatree *node);
}

namespace {

using test::Request;
using test::under;

constexpr auto kNtpCfg = &ymap_qo_ocsystem_tarvexqvipntpcfg_lvla_ntp;
constexpr auto kNtpOper = &ymap_qo_ocsystem_tarvexqvprivateocsystemntptelemetryoper_lvla_ocntp;

const std::string kOcNtp = "/openconfig-system:system/ntp";
const std::string kAnswerHead = "/openconfig-system:system\n" + kOcNtp + "\n";

std::string server(std::string_view address) {
    return kOcNtp + "/servers/server[address='" + std::string(address) + "']";
}
const std::string kV4 = server("192.0.2.1");

std::string native(std::string_view body) {
    return test::native("Tarvex-QV-ip-ntp-cfg", "ntp", body);
}
std::string peer(std::string_view vrf, std::string_view family, std::string_view address,
                 std::string_view type, std::string_view version) {
    const std::string f(family);
    return "<peer-vrfs><peer-vrf><vrf-name>" + std::string(vrf) + "</vrf-name><peer-" + f +
           "s><peer-" + f + "><address-" + f + ">" + std::string(address) + "</address-" + f +
           "><peer-type-" + f + "><peer-type>" + std::string(type) + "</peer-type><ntp-version>" +
           std::string(version) + "</ntp-version><iburst/></peer-type-" + f + "></peer-" + f +
           "></peer-" + f + "s></peer-vrf></peer-vrfs>";
}
std::string oc(std::string_view ntp) {
    return test::oc_system("<ntp>" + std::string(ntp) + "</ntp>");
}

TEST(NtpConversions, VersionAndTypeFallBackAndEmptyLeavesReadAsPresence) {
    struct Conv {
        const char *(*fn)(const tidl_yfw_datatree *);
        const char *in;
        std::string out;
    };
    for (const Conv &c :
         {Conv{qv_oc_ntp_version_data_fn, nullptr, "4"}, Conv{qv_oc_ntp_version_data_fn, "", "4"},
          Conv{qv_oc_ntp_version_data_fn, "2", "2"}, Conv{qv_oc_ntp_version_data_fn, "22", "4"},
          Conv{qv_oc_peer_to_assoc_type, nullptr, "ERROR"},
          Conv{qv_oc_peer_to_assoc_type, "server", "SERVER"},
          Conv{qv_oc_peer_to_assoc_type, "peers", "ERROR"},
          Conv{qv_oc_ntp_iburst_data_fn, nullptr, "false"},
          Conv{qv_oc_ntp_iburst_data_fn, "", "true"},
          Conv{qv_oc_ntp_prefer_data_fn, "x", "false"}}) {
        tidl_yfw_datatree node{};
        node.value = const_cast<char *>(c.in);
        EXPECT_EQ(c.fn(&node), c.out) << (c.in != nullptr ? c.in : "(null)");
    }
}

// ---- State --------------------------------------------------------------------

std::string figures(std::string_view address, std::string_view state) {
    return test::native("Tarvex-QV-PRIVATE-ocsystem-ntp-telemetry-oper", "ocntp",
                        "<system><ntp><servers><server><address>" + std::string(address) +
                            "</address><state>" + std::string(state) +
                            "</state></server></servers></ntp></system>");
}

TEST(NtpState, FiguresLandInTheConfiguredServerEntry) {
    Request r(KIND_GET);
    ASSERT_EQ(r.run(kNtpCfg, native(peer("default", "ipv4", "192.0.2.1", "server", "3"))),
              YFW_SUCCESS);
    ASSERT_EQ(r.run(kNtpOper,
                    figures("192.0.2.1", "<stratum>2</stratum><root-delay>15</root-delay>"
                                         "<root-dispersion>30</root-dispersion><offset>-1</offset>"
                                         "<poll-interval>64</poll-interval>")),
              YFW_SUCCESS);
    const std::string out = r.paths();
    EXPECT_NE(out.find(under(kV4, {"/state/version = \"3\"", "/state/stratum = \"2\"",
                                   "/state/root-delay = \"15\"", "/state/root-dispersion = \"30\"",
                                   "/state/offset = \"-1\"", "/state/poll-interval = \"64\""})),
              std::string::npos)
        << out;
    EXPECT_EQ(test::count_lines({out}, "servers/server[address="), 1) << out;
    r.expect_state_restored();
}

TEST(NtpState, AnUnconfiguredServerGetsItsOwnEntryAndAnEmptyStateNoLeaf) {
    Request r(KIND_GET);
    ASSERT_EQ(r.run(kNtpOper, figures("192.0.2.7", "<stratum>16</stratum>")), YFW_SUCCESS);
    ASSERT_EQ(r.run(kNtpOper, figures("192.0.2.8", "")), YFW_SUCCESS);
    const std::string seven = server("192.0.2.7");
    EXPECT_EQ(r.paths(), kAnswerHead + kOcNtp + "/servers\n" +
                             under(seven, {"", "/address = \"192.0.2.7\"", "/state",
                                           "/state/stratum = \"16\""}) +
                             under(server("192.0.2.8"), {"", "/address = \"192.0.2.8\""}));
}

// State figures cannot be written: the mapper alone adds nothing in an edit.
TEST(NtpState, FigureMapperAloneAddsNothingInAnEdit) {
    Request r(KIND_EDIT_A);
    tidl_yfw_datatree *root = r.input(oc("<servers/>"));
    EXPECT_EQ(ymap_oq_ocsystem_openconfigsystem_leaf_lvla_system_state_stratum(
                  r.ctx(), root, r.session().output()),
              YFW_SUCCESS);
    EXPECT_EQ(r.paths(), "");
}

} // namespace
