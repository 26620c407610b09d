// The namespaces that the mapping tables name, by module. The OpenConfig ones
// are the published URIs; a native module's URI ends in /ns/yang/<module>.
#pragma once

#define YMAP_NATIVE_NS(module) "http://tarvex.local/ns/yang/" module

// OpenConfig
#define NS_OPENCONFIG_SYSTEM "http://openconfig.net/yang/system"
#define NS_OPENCONFIG_SYSTEM_GRPC "http://openconfig.net/yang/system-grpc"
#define NS_OPENCONFIG_MESSAGES "http://openconfig.net/yang/messages"
#define NS_OPENCONFIG_ALARMS "http://openconfig.net/yang/alarms"

// Native configuration
#define NS_SHELLUTIL_CFG YMAP_NATIVE_NS("Tarvex-QV-shellutil-cfg")
#define NS_INFRA_INFRA_CFG YMAP_NATIVE_NS("Tarvex-QV-infra-infra-cfg")
#define NS_INFRA_CLOCK_LINUX_CFG YMAP_NATIVE_NS("Tarvex-QV-infra-infra-clock-linux-cfg")
#define NS_IP_DOMAIN_CFG YMAP_NATIVE_NS("Tarvex-QV-ip-domain-cfg")
#define NS_IP_NTP_CFG YMAP_NATIVE_NS("Tarvex-QV-ip-ntp-cfg")
#define NS_INFRA_SYSLOG_CFG YMAP_NATIVE_NS("Tarvex-QV-infra-syslog-cfg")
#define NS_CRYPTO_SSH_CFG YMAP_NATIVE_NS("Tarvex-QV-crypto-ssh-cfg")
#define NS_IP_TCP_CFG YMAP_NATIVE_NS("Tarvex-QV-ip-tcp-cfg")
#define NS_MAN_EMS_CFG YMAP_NATIVE_NS("Tarvex-QV-man-ems-cfg")
#define NS_AAA_LIB_CFG YMAP_NATIVE_NS("Tarvex-QV-aaa-lib-cfg")
#define NS_AAA_LOCALD_CFG YMAP_NATIVE_NS("Tarvex-QV-aaa-locald-cfg")
#define NS_AAA_TACACS_CFG YMAP_NATIVE_NS("Tarvex-QV-aaa-tacacs-cfg")
#define NS_TERMINAL_EXT YMAP_NATIVE_NS("Tarvex-QV-openconfig-system-terminal-ext")

// Private operational modules
#define NS_OC_SYSTEM_OPER YMAP_NATIVE_NS("Tarvex-QV-PRIVATE-oc-system-oper")
#define NS_OC_DNS_OPER YMAP_NATIVE_NS("Tarvex-QV-PRIVATE-oc-dns-oper")
#define NS_NTP_TELEMETRY_OPER YMAP_NATIVE_NS("Tarvex-QV-PRIVATE-ocsystem-ntp-telemetry-oper")
#define NS_MESSAGES_TELEMETRY_OPER                                                                 \
    YMAP_NATIVE_NS("Tarvex-QV-PRIVATE-ocsystem-messages-telemetry-oper")
#define NS_OCTELNET_OPER YMAP_NATIVE_NS("Tarvex-QV-PRIVATE-octelnet-oper")
#define NS_OC_EMS_OPER YMAP_NATIVE_NS("Tarvex-QV-PRIVATE-oc-ems-oper")
#define NS_AAA_TELEMETRY_OPER YMAP_NATIVE_NS("Tarvex-QV-PRIVATE-ocsystem-aaa-telemetry-oper")
#define NS_CPU_OPER YMAP_NATIVE_NS("Tarvex-QV-PRIVATE-ocsystem-cpu-oper")
#define NS_ALARM_MGR_OPER YMAP_NATIVE_NS("Tarvex-QV-PRIVATE-alarm-mgr-oc-oper")
