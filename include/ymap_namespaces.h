/*
 * The YANG modules the ocsystem mapping library translates between, each with
 * its name and namespace: the one list that the library, its companions, the
 * programs and the tests take their namespaces from.
 *
 *   X(ID, "module-name", "namespace")
 *
 * YMAP_OPENCONFIG_MODULES are the published models the library answers in,
 * YMAP_NATIVE_MODULES the device's; YMAP_MODULES is both.
 *
 * A native module's namespace is its name below the device's URI. C++ units
 * also get each namespace as a constant, NS_<ID>.
 */
#ifndef YMAP_NAMESPACES_H
#define YMAP_NAMESPACES_H

#define YMAP_NATIVE_NS(module) "http://tarvex.local/ns/yang/" module
#define YMAP_NATIVE_MODULE_(X, id, module) X(id, module, YMAP_NATIVE_NS(module))

/* clang-format off */
#define YMAP_OPENCONFIG_MODULES(X)                                                                 \
    X(OPENCONFIG_SYSTEM,        "openconfig-system",      "http://openconfig.net/yang/system")      \
    X(OPENCONFIG_SYSTEM_GRPC,   "openconfig-system-grpc", "http://openconfig.net/yang/system-grpc") \
    X(OPENCONFIG_MESSAGES,      "openconfig-messages",    "http://openconfig.net/yang/messages")    \
    X(OPENCONFIG_ALARMS,        "openconfig-alarms",      "http://openconfig.net/yang/alarms")
#define YMAP_NATIVE_MODULES(X)                                                                     \
    /* configuration */                                                                            \
    YMAP_NATIVE_MODULE_(X, SHELLUTIL_CFG,         "Tarvex-QV-shellutil-cfg")                       \
    YMAP_NATIVE_MODULE_(X, INFRA_INFRA_CFG,       "Tarvex-QV-infra-infra-cfg")                     \
    YMAP_NATIVE_MODULE_(X, INFRA_CLOCK_LINUX_CFG, "Tarvex-QV-infra-infra-clock-linux-cfg")         \
    YMAP_NATIVE_MODULE_(X, IP_DOMAIN_CFG,         "Tarvex-QV-ip-domain-cfg")                       \
    YMAP_NATIVE_MODULE_(X, IP_NTP_CFG,            "Tarvex-QV-ip-ntp-cfg")                          \
    YMAP_NATIVE_MODULE_(X, INFRA_SYSLOG_CFG,      "Tarvex-QV-infra-syslog-cfg")                    \
    YMAP_NATIVE_MODULE_(X, CRYPTO_SSH_CFG,        "Tarvex-QV-crypto-ssh-cfg")                      \
    YMAP_NATIVE_MODULE_(X, IP_TCP_CFG,            "Tarvex-QV-ip-tcp-cfg")                          \
    YMAP_NATIVE_MODULE_(X, TERMINAL_EXT,          "Tarvex-QV-openconfig-system-terminal-ext")      \
    YMAP_NATIVE_MODULE_(X, MAN_EMS_CFG,           "Tarvex-QV-man-ems-cfg")                         \
    YMAP_NATIVE_MODULE_(X, AAA_LIB_CFG,           "Tarvex-QV-aaa-lib-cfg")                         \
    YMAP_NATIVE_MODULE_(X, AAA_LOCALD_CFG,        "Tarvex-QV-aaa-locald-cfg")                      \
    YMAP_NATIVE_MODULE_(X, AAA_TACACS_CFG,        "Tarvex-QV-aaa-tacacs-cfg")                      \
    /* private operational state */                                                                \
    YMAP_NATIVE_MODULE_(X, OC_SYSTEM_OPER,         "Tarvex-QV-PRIVATE-oc-system-oper")             \
    YMAP_NATIVE_MODULE_(X, OC_DNS_OPER,            "Tarvex-QV-PRIVATE-oc-dns-oper")                \
    YMAP_NATIVE_MODULE_(X, NTP_TELEMETRY_OPER,     "Tarvex-QV-PRIVATE-ocsystem-ntp-telemetry-oper") \
    YMAP_NATIVE_MODULE_(X, MESSAGES_TELEMETRY_OPER, "Tarvex-QV-PRIVATE-ocsystem-messages-telemetry-oper") \
    YMAP_NATIVE_MODULE_(X, OCTELNET_OPER,          "Tarvex-QV-PRIVATE-octelnet-oper")              \
    YMAP_NATIVE_MODULE_(X, OC_EMS_OPER,            "Tarvex-QV-PRIVATE-oc-ems-oper")                \
    YMAP_NATIVE_MODULE_(X, AAA_TELEMETRY_OPER,     "Tarvex-QV-PRIVATE-ocsystem-aaa-telemetry-oper") \
    YMAP_NATIVE_MODULE_(X, CPU_OPER,               "Tarvex-QV-PRIVATE-ocsystem-cpu-oper")          \
    YMAP_NATIVE_MODULE_(X, ALARM_MGR_OPER,         "Tarvex-QV-PRIVATE-alarm-mgr-oc-oper")
#define YMAP_MODULES(X) YMAP_OPENCONFIG_MODULES(X) YMAP_NATIVE_MODULES(X)
/* clang-format on */

#ifdef __cplusplus
#define YMAP_NS_CONSTANT_(id, module, ns) inline constexpr const char *NS_##id = ns;
YMAP_MODULES(YMAP_NS_CONSTANT_)
#undef YMAP_NS_CONSTANT_
#endif

#endif /* YMAP_NAMESPACES_H */
