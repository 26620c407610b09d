// The twenty mapping trees as the framework receives them.
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "ymap_ocsystem_modules.h"

namespace {

const std::string kNative = "http://tarvex.local/ns/yang/";

struct Row {
    void (*reg)(yfw_map_reg_mod_t *);
    const char *label;
    const char *module;
    const char *root;
    yfw_map_walker_fn native_to_oc;
    uint32_t flags_b;
};

#define ROW(fn, label, module, root, walker, flags)                                                \
    Row {                                                                                          \
        &fn, label, module, root, &walker, flags                                                   \
    }
// clang-format off
const Row kRows[] = {
    ROW(yfw_map_reg_ocsystem_ssh_conf,    "OC SSH tree",                  "Tarvex-QV-crypto-ssh-cfg",                           "ssh",         ymap_qo_ocsystem_tarvexqvcryptosshcfg_lvla_ssh, 1),
    ROW(yfw_map_reg_ocsyslog_conf,        "OC SYSLOG tree",               "Tarvex-QV-infra-syslog-cfg",                         "syslog",      ymap_qo_ocsystem_tarvexqvinfrasyslogcfg_lvla_syslog, 0),
    ROW(yfw_map_reg_ocsyslog_oper,        "OC SYSLOG tree",               "Tarvex-QV-PRIVATE-ocsystem-messages-telemetry-oper", "ocsyslog",    ymap_qo_ocsystem_tarvexqvprivateocsystemmessagestelemetryoper_lvla_ocsyslog, 0),
    ROW(yfw_map_reg_ocsystem_ntp_conf,    "OC NTP Config Tree",           "Tarvex-QV-ip-ntp-cfg",                               "ntp",         ymap_qo_ocsystem_tarvexqvipntpcfg_lvla_ntp, 0),
    ROW(yfw_map_reg_ocsystem_ntp_oper,    "OC NTP Oper Tree",             "Tarvex-QV-PRIVATE-ocsystem-ntp-telemetry-oper",      "ocntp",       ymap_qo_ocsystem_tarvexqvprivateocsystemntptelemetryoper_lvla_ocntp, 0),
    ROW(yfw_map_reg_ocsystem_grpc_conf,   "OC GRPC tree",                 "Tarvex-QV-man-ems-cfg",                              "grpc",        ymap_qo_ocsystem_tarvexqvmanemscfg_lvla_grpc, 0),
    ROW(yfw_map_reg_ocalarmmgr_oper,      "oc_am",                        "Tarvex-QV-PRIVATE-alarm-mgr-oc-oper",                "amfm-edt",    ymap_qo_ocsystem_tarvexqvprivatealarmmgrocoper_lvla_amfmedt, 0),
    ROW(yfw_map_reg_ocsystem_grpc_oper,   "oc_ems",                       "Tarvex-QV-PRIVATE-oc-ems-oper",                      "oc-ems",      ymap_qo_ocsystem_tarvexqvprivateocemsoper_lvla_ocems, 0),
    ROW(yfw_map_reg_oc_shellutil_cfg,     "OC Shell util tree",           "Tarvex-QV-shellutil-cfg",                            "host-names",  ymap_qo_ocsystem_tarvexqvshellutilcfg_lvla_hostnames, 0),
    ROW(yfw_map_reg_oc_aaa_cfg,           "OC AAA tree",                  "Tarvex-QV-aaa-lib-cfg",                              "aaa",         ymap_qo_ocsystem_tarvexqvaaalibcfg_lvla_aaa, 0),
    ROW(yfw_map_reg_oc_aaa_oper,          "OC AAA Oper tree",             "Tarvex-QV-PRIVATE-ocsystem-aaa-telemetry-oper",      "ocaaa",       ymap_qo_ocsystem_tarvexqvprivateocsystemaaatelemetryoper_lvla_ocaaa, 0),
    ROW(yfw_map_reg_ocsystem_clock_cfg,   "OC system clock config tree",  "Tarvex-QV-infra-infra-clock-linux-cfg",              "clock",       ymap_qo_ocsystem_tarvexqvinfrainfraclocklinuxcfg_lvla_clock, 0),
    ROW(yfw_map_reg_ocsystem_clock_oper,  "OC system clock Oper tree",    "Tarvex-QV-PRIVATE-oc-system-oper",                   "ocsystem",    ymap_qo_ocsystem_tarvexqvprivateocsystemoper_lvla_ocsystem, 0),
    ROW(yfw_map_reg_ocsystem_banner_cfg,  "OC system banner config tree", "Tarvex-QV-infra-infra-cfg",                          "banners",     ymap_qo_ocsystem_tarvexqvinfrainfracfg_lvla_banners, 0),
    ROW(yfw_map_reg_ocsystem_banner_oper, "OC system banner Oper tree",   "Tarvex-QV-PRIVATE-oc-system-oper",                   "ocsystem",    ymap_qo_ocsystem_tarvexqvprivateocsystemoper_lvla_ocsystem, 0),
    ROW(yfw_map_reg_oc_telnet_cfg_ext,    "OC Telnet tree ext",           "Tarvex-QV-ip-tcp-cfg",                               "ip",          ymap_qo_ocsystem_tarvexqviptcpcfg_lvla_ip, 0),
    ROW(yfw_map_reg_oc_telnet_oper,       "OC Telnet Oper tree",          "Tarvex-QV-PRIVATE-octelnet-oper",                    "octelnet",    ymap_qo_ocsystem_tarvexqvprivateoctelnetoper_lvla_octelnet, 0),
    ROW(yfw_map_reg_ocsystem_cpu_oper,    "OC system cpu Oper tree",      "Tarvex-QV-PRIVATE-ocsystem-cpu-oper",                "ocsystemcpu", ymap_qo_ocsystem_tarvexqvprivateocsystemcpuoper_lvla_ocsystemcpu, 0),
    ROW(yfw_map_reg_ocsystem_dns_oper,    "OC DNS Oper Tree",             "Tarvex-QV-PRIVATE-oc-dns-oper",                      "oc-dns",      ymap_qo_ocsystem_tarvexqvprivateocdnsoper_lvla_ocdns, 0),
    ROW(yfw_map_reg_ocsystem_dns_cfg,     "OC system dns config tree",    "Tarvex-QV-ip-domain-cfg",                            "ip-domain",   ymap_qo_ocsystem_tarvexqvipdomaincfg_lvla_ipdomain, 0),
};
// clang-format on
#undef ROW

cerrno framework_walker(yfw_map_ctx *, tidl_yfw_datatree *, tidl_yfw_datatree *) {
    return 0;
}

TEST(Registration, EveryRowFillsItsRecordAndLeavesTheFrameworksPointers) {
    for (const Row &row : kRows) {
        SCOPED_TRACE(row.label);
        yfw_map_reg_mod_t reg;
        std::memset(&reg, 0x5a, sizeof reg);
        reg.framework_fn_a = &framework_walker;
        reg.framework_fn_b = &framework_walker;
        row.reg(&reg);
        EXPECT_STREQ(reg.label, row.label);
        EXPECT_EQ(reg.native_namespace, kNative + row.module);
        EXPECT_STREQ(reg.oc_namespace, "http://openconfig.net/yang/system");
        EXPECT_STREQ(reg.native_root, row.root);
        EXPECT_STREQ(reg.oc_root, "system");
        EXPECT_EQ(reg.oc_to_native, &ymap_oq_ocsystem_openconfigsystem_lvla_system);
        EXPECT_EQ(reg.native_to_oc, row.native_to_oc);
        EXPECT_EQ(reg.flags_a, 0u);
        EXPECT_EQ(reg.flags_b, row.flags_b);
        EXPECT_EQ(reg.framework_fn_a, &framework_walker);
        EXPECT_EQ(reg.framework_fn_b, &framework_walker);
        // Registering again rewrites the same values.
        yfw_map_reg_mod_t again = reg;
        row.reg(&again);
        EXPECT_EQ(std::memcmp(&again, &reg, sizeof reg), 0);
    }
}

TEST(Registration, LoadAndUnloadDoNothing) {
    EXPECT_EQ(yfw_ocsystem_init(), YFW_SUCCESS);
    yfw_ocsystem_cleanup();
}

} // namespace
