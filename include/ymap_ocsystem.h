/*
 * The entry points of the ocsystem mapping library that a framework calls by
 * name: load and unload, and one registration function per mapping tree.
 */
#ifndef YMAP_OCSYSTEM_H
#define YMAP_OCSYSTEM_H

#include "yfw_map.h"

#if defined(__GNUC__)
#define YMAP_EXPORT __attribute__((visibility("default")))
#else
#define YMAP_EXPORT
#endif

#ifdef __cplusplus
extern "C" {
#endif

YMAP_EXPORT cerrno yfw_ocsystem_init(void);
YMAP_EXPORT void yfw_ocsystem_cleanup(void);

/* A debug dump of the whole mapping state to the trace. */
YMAP_EXPORT void print_data(yfw_map_ctx *ctx);

/* The twenty mapping trees, in registration order. */
#define YMAP_OCSYSTEM_REGISTRATIONS(X)                                                             \
    X(yfw_map_reg_ocsystem_ssh_conf)                                                               \
    X(yfw_map_reg_ocsyslog_conf)                                                                   \
    X(yfw_map_reg_ocsyslog_oper)                                                                   \
    X(yfw_map_reg_ocsystem_ntp_conf)                                                               \
    X(yfw_map_reg_ocsystem_ntp_oper)                                                               \
    X(yfw_map_reg_ocsystem_grpc_conf)                                                              \
    X(yfw_map_reg_ocalarmmgr_oper)                                                                 \
    X(yfw_map_reg_ocsystem_grpc_oper)                                                              \
    X(yfw_map_reg_oc_shellutil_cfg)                                                                \
    X(yfw_map_reg_oc_aaa_cfg)                                                                      \
    X(yfw_map_reg_oc_aaa_oper)                                                                     \
    X(yfw_map_reg_ocsystem_clock_cfg)                                                              \
    X(yfw_map_reg_ocsystem_clock_oper)                                                             \
    X(yfw_map_reg_ocsystem_banner_cfg)                                                             \
    X(yfw_map_reg_ocsystem_banner_oper)                                                            \
    X(yfw_map_reg_oc_telnet_cfg_ext)                                                               \
    X(yfw_map_reg_oc_telnet_oper)                                                                  \
    X(yfw_map_reg_ocsystem_cpu_oper)                                                               \
    X(yfw_map_reg_ocsystem_dns_oper)                                                               \
    X(yfw_map_reg_ocsystem_dns_cfg)

#define YMAP_DECLARE_REGISTRATION_(fn) YMAP_EXPORT void fn(yfw_map_reg_mod_t *reg);
YMAP_OCSYSTEM_REGISTRATIONS(YMAP_DECLARE_REGISTRATION_)
#undef YMAP_DECLARE_REGISTRATION_

#ifdef __cplusplus
}
#endif

#endif /* YMAP_OCSYSTEM_H */
