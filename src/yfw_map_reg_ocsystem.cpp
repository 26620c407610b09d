// Registration of the twenty mapping trees: each pairs a native module root
// with the OpenConfig `system` root. All of them name the one OpenConfig root
// walker, since the whole OpenConfig subtree is walked from /system and the
// mappers decide per leaf which native module receives it.
#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "ymap_ocsystem_modules.h"

namespace {

struct Tree {
    const char *label;
    const char *native_namespace;
    const char *native_root;
    yfw_map_walker_fn native_to_oc;
    uint32_t flags_b;
};

// clang-format off
// Two rows share the private system module and its walker, two carry the same
// label, and "oc_am" and "oc_ems" keep their short labels: the framework knows
// the trees by these texts.
//       registration function            label                           native module               root           native-to-OpenConfig walker                                                   flags
#define YMAP_TREES(X)                                                                                                                                                                                   \
    X(yfw_map_reg_ocsystem_ssh_conf,     "OC SSH tree",                  NS_CRYPTO_SSH_CFG,          "ssh",         ymap_qo_ocsystem_tarvexqvcryptosshcfg_lvla_ssh,                                 1)  \
    X(yfw_map_reg_ocsyslog_conf,         "OC SYSLOG tree",               NS_INFRA_SYSLOG_CFG,        "syslog",      ymap_qo_ocsystem_tarvexqvinfrasyslogcfg_lvla_syslog,                            0)  \
    X(yfw_map_reg_ocsyslog_oper,         "OC SYSLOG tree",               NS_MESSAGES_TELEMETRY_OPER, "ocsyslog",    ymap_qo_ocsystem_tarvexqvprivateocsystemmessagestelemetryoper_lvla_ocsyslog,    0)  \
    X(yfw_map_reg_ocsystem_ntp_conf,     "OC NTP Config Tree",           NS_IP_NTP_CFG,              "ntp",         ymap_qo_ocsystem_tarvexqvipntpcfg_lvla_ntp,                                     0)  \
    X(yfw_map_reg_ocsystem_ntp_oper,     "OC NTP Oper Tree",             NS_NTP_TELEMETRY_OPER,      "ocntp",       ymap_qo_ocsystem_tarvexqvprivateocsystemntptelemetryoper_lvla_ocntp,            0)  \
    X(yfw_map_reg_ocsystem_grpc_conf,    "OC GRPC tree",                 NS_MAN_EMS_CFG,             "grpc",        ymap_qo_ocsystem_tarvexqvmanemscfg_lvla_grpc,                                   0)  \
    X(yfw_map_reg_ocalarmmgr_oper,       "oc_am",                        NS_ALARM_MGR_OPER,          "amfm-edt",    ymap_qo_ocsystem_tarvexqvprivatealarmmgrocoper_lvla_amfmedt,                    0)  \
    X(yfw_map_reg_ocsystem_grpc_oper,    "oc_ems",                       NS_OC_EMS_OPER,             "oc-ems",      ymap_qo_ocsystem_tarvexqvprivateocemsoper_lvla_ocems,                           0)  \
    X(yfw_map_reg_oc_shellutil_cfg,      "OC Shell util tree",           NS_SHELLUTIL_CFG,           "host-names",  ymap_qo_ocsystem_tarvexqvshellutilcfg_lvla_hostnames,                           0)  \
    X(yfw_map_reg_oc_aaa_cfg,            "OC AAA tree",                  NS_AAA_LIB_CFG,             "aaa",         ymap_qo_ocsystem_tarvexqvaaalibcfg_lvla_aaa,                                    0)  \
    X(yfw_map_reg_oc_aaa_oper,           "OC AAA Oper tree",             NS_AAA_TELEMETRY_OPER,      "ocaaa",       ymap_qo_ocsystem_tarvexqvprivateocsystemaaatelemetryoper_lvla_ocaaa,            0)  \
    X(yfw_map_reg_ocsystem_clock_cfg,    "OC system clock config tree",  NS_INFRA_CLOCK_LINUX_CFG,   "clock",       ymap_qo_ocsystem_tarvexqvinfrainfraclocklinuxcfg_lvla_clock,                    0)  \
    X(yfw_map_reg_ocsystem_clock_oper,   "OC system clock Oper tree",    NS_OC_SYSTEM_OPER,          "ocsystem",    ymap_qo_ocsystem_tarvexqvprivateocsystemoper_lvla_ocsystem,                     0)  \
    X(yfw_map_reg_ocsystem_banner_cfg,   "OC system banner config tree", NS_INFRA_INFRA_CFG,         "banners",     ymap_qo_ocsystem_tarvexqvinfrainfracfg_lvla_banners,                            0)  \
    X(yfw_map_reg_ocsystem_banner_oper,  "OC system banner Oper tree",   NS_OC_SYSTEM_OPER,          "ocsystem",    ymap_qo_ocsystem_tarvexqvprivateocsystemoper_lvla_ocsystem,                     0)  \
    X(yfw_map_reg_oc_telnet_cfg_ext,     "OC Telnet tree ext",           NS_IP_TCP_CFG,              "ip",          ymap_qo_ocsystem_tarvexqviptcpcfg_lvla_ip,                                      0)  \
    X(yfw_map_reg_oc_telnet_oper,        "OC Telnet Oper tree",          NS_OCTELNET_OPER,           "octelnet",    ymap_qo_ocsystem_tarvexqvprivateoctelnetoper_lvla_octelnet,                     0)  \
    X(yfw_map_reg_ocsystem_cpu_oper,     "OC system cpu Oper tree",      NS_CPU_OPER,                "ocsystemcpu", ymap_qo_ocsystem_tarvexqvprivateocsystemcpuoper_lvla_ocsystemcpu,               0)  \
    X(yfw_map_reg_ocsystem_dns_oper,     "OC DNS Oper Tree",             NS_OC_DNS_OPER,             "oc-dns",      ymap_qo_ocsystem_tarvexqvprivateocdnsoper_lvla_ocdns,                           0)  \
    X(yfw_map_reg_ocsystem_dns_cfg,      "OC system dns config tree",    NS_IP_DOMAIN_CFG,           "ip-domain",   ymap_qo_ocsystem_tarvexqvipdomaincfg_lvla_ipdomain,                             0)
// clang-format on

#define YMAP_TREE_STRINGS_FIT_(fn, label, ns, root, walker, flags)                                 \
    static_assert(sizeof(label) <= YFW_MAP_REG_TEXT && sizeof(ns) <= YFW_MAP_REG_TEXT &&           \
                  sizeof(root) <= YFW_MAP_REG_TEXT);
YMAP_TREES(YMAP_TREE_STRINGS_FIT_)
#undef YMAP_TREE_STRINGS_FIT_

// The public header declares the same trees in the same order: a tree left
// out of either list stops the build here, not at a host that finds no tree.
#define YMAP_TREE_NAME_(fn, ...) std::string_view(#fn),
#define YMAP_DECLARED_NAME_(fn) std::string_view(#fn),
static_assert(std::ranges::equal(std::array{YMAP_TREES(YMAP_TREE_NAME_)},
                                 std::array{YMAP_OCSYSTEM_REGISTRATIONS(YMAP_DECLARED_NAME_)}),
              "YMAP_TREES and YMAP_OCSYSTEM_REGISTRATIONS list other trees");
#undef YMAP_TREE_NAME_
#undef YMAP_DECLARED_NAME_

// A string that does not fit the record cannot be registered: a failed copy
// is fatal.
void copy(char *dest, const char *source) {
    const int rc = strcpy_s(dest, YFW_MAP_REG_TEXT, source);
    if (rc != EOK)
        ymap::assertion_failed("rc == EOK", __FILE__, __LINE__, __func__);
}

// The same steps for every tree, in this order; nothing else of the record is
// touched, so the framework's own pointers stay as it set them.
void fill(yfw_map_reg_mod_t *reg, const Tree &tree) {
    copy(reg->native_namespace, tree.native_namespace);
    copy(reg->oc_namespace, NS_OPENCONFIG_SYSTEM);
    copy(reg->label, tree.label);
    copy(reg->native_root, tree.native_root);
    copy(reg->oc_root, "system");
    reg->oc_to_native = &ymap_oq_ocsystem_openconfigsystem_lvla_system;
    reg->native_to_oc = tree.native_to_oc;
    reg->flags_a = 0;
    reg->flags_b = tree.flags_b;
}

} // namespace

#define YMAP_TREE_REGISTRATION_(fn, label, ns, root, walker, flags)                                \
    extern "C" YMAP_EXPORT void fn(yfw_map_reg_mod_t *reg) {                                       \
        fill(reg, Tree{label, ns, root, &walker, flags});                                          \
    }
YMAP_TREES(YMAP_TREE_REGISTRATION_)
#undef YMAP_TREE_REGISTRATION_

// Nothing is set up at load or torn down at unload.
extern "C" YMAP_EXPORT cerrno yfw_ocsystem_init(void) {
    return YFW_SUCCESS;
}
extern "C" YMAP_EXPORT void yfw_ocsystem_cleanup(void) {}
