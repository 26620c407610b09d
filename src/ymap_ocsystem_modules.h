// The exported mappers and walkers of every module, declared from the module
// descriptions themselves.
#pragma once

#include "ymap_rows.hpp"

#define YMAP_PASS DECLARE
#include "ymap_ocsystem_openconfig_system.def"
#include "ymap_ocsystem_openconfig_system_grpc.def"
#include "ymap_ocsystem_openconfig_alarms.def"
#include "ymap_ocsystem_tarvex_qv_shellutil_cfg.def"
#include "ymap_ocsystem_tarvex_qv_infra_infra_cfg.def"
#include "ymap_ocsystem_tarvex_qv_infra_infra_clock_linux_cfg.def"
#include "ymap_ocsystem_tarvex_qv_private_oc_system_oper.def"
#include "ymap_ocsystem_tarvex_qv_private_ocsystem_cpu_oper.def"
#include "ymap_ocsystem_tarvex_qv_private_alarm_mgr_oc_oper.def"
#include "ymap_ocsystem_tarvex_qv_crypto_ssh_cfg.def"
#include "ymap_ocsystem_tarvex_qv_infra_syslog_cfg.def"
#include "ymap_ocsystem_tarvex_qv_private_ocsystem_messages_telemetry_oper.def"
#include "ymap_ocsystem_tarvex_qv_ip_ntp_cfg.def"
#include "ymap_ocsystem_tarvex_qv_private_ocsystem_ntp_telemetry_oper.def"
#include "ymap_ocsystem_tarvex_qv_man_ems_cfg.def"
#include "ymap_ocsystem_tarvex_qv_private_oc_ems_oper.def"
#include "ymap_ocsystem_tarvex_qv_aaa_lib_cfg.def"
#include "ymap_ocsystem_tarvex_qv_private_ocsystem_aaa_telemetry_oper.def"
#include "ymap_ocsystem_tarvex_qv_ip_tcp_cfg.def"
#include "ymap_ocsystem_tarvex_qv_private_octelnet_oper.def"
#include "ymap_ocsystem_tarvex_qv_private_oc_dns_oper.def"
#include "ymap_ocsystem_tarvex_qv_ip_domain_cfg.def"
#undef YMAP_PASS
