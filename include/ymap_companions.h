/*
 * The companion mapping libraries: hand-written SSH, NTP and AAA functions
 * that the mapping library calls and does not contain, and the library's
 * entries that the companions call back. Every function takes the context
 * first, returns a cerrno, and answers a null node or output tree with
 * YFW_ERR_INVALID_ARGS.
 */
#ifndef YMAP_COMPANIONS_H
#define YMAP_COMPANIONS_H

#include <stdint.h>

#include "yfw_map.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- SSH companion ----------------------------------------------------- */

/* One leaf each. oc2qv_ functions write the whole native path under /ssh/server
 * (the enable leaf in a VRF of their choice) and handle reads and deletes
 * themselves; qv2oc_ functions write /system/ssh-server/config, and state in
 * KIND_GET. */
cerrno oc2qv_ssh_enable(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                        tidl_yfw_datatree *out_tree);
cerrno oc2qv_ssh_version(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                         tidl_yfw_datatree *out_tree);
cerrno oc2qv_ssh_timeout(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                         tidl_yfw_datatree *out_tree);
cerrno oc2qv_ssh_server_rate_limit(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                                   tidl_yfw_datatree *out_tree);
cerrno oc2qv_ssh_server_session_limit(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                                      tidl_yfw_datatree *out_tree);
cerrno qv2oc_ssh_enable(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                        tidl_yfw_datatree *out_tree);
cerrno qv2oc_ssh_version(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                         tidl_yfw_datatree *out_tree);
cerrno qv2oc_ssh_timeout(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                         tidl_yfw_datatree *out_tree);
cerrno qv2oc_ssh_server_rate_limit(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                                   tidl_yfw_datatree *out_tree);
cerrno qv2oc_ssh_server_session_limit(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                                      tidl_yfw_datatree *out_tree);

/* ---- NTP companion ----------------------------------------------------- */

/* OpenConfig to native leaves of /system/ntp: each writes its native leaf of
 * Tarvex-QV-ip-ntp-cfg (enabled as max-associations "101"); key type and port
 * have no native leaf and only check their value. */
cerrno oc_qv_ntp_enabled(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                         tidl_yfw_datatree *out_tree);
cerrno oc_qv_ntp_auth_enabled(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                              tidl_yfw_datatree *out_tree);
cerrno oc_qv_key_id(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);
cerrno oc_qv_keytype(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);
cerrno oc_qv_key_value(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                       tidl_yfw_datatree *out_tree);
cerrno oc_qv_server_address(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                            tidl_yfw_datatree *out_tree);
cerrno oc_qv_port(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);

/* Type-check callbacks (xpath_type_check_fn) of the server tables: they mark
 * the rows of the server's address family, both families in a read, and
 * install the value conversion of their leaf. */
cerrno oc_qv_server_list_call_back(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno oc_qv_ntp_version(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno oc_qv_ntp_assoc_type(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno oc_qv_ntp_iburst(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno oc_qv_ntp_prefer(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);

/* ---- AAA companion ----------------------------------------------------- */

/* The roots, with their subtree count: qv_aaa and qv_server_groups hand the
 * augmenting modules' children to the library's augment entries below. */
cerrno oc_aaa(yfw_map_ctx *ctx, tidl_yfw_datatree *node, uint32_t count,
              tidl_yfw_datatree *out_tree);
cerrno qv_aaa(yfw_map_ctx *ctx, tidl_yfw_datatree *node, uint32_t count,
              tidl_yfw_datatree *out_tree);
cerrno oc_server_groups(yfw_map_ctx *ctx, tidl_yfw_datatree *node, uint32_t count,
                        tidl_yfw_datatree *out_tree);
cerrno qv_server_groups(yfw_map_ctx *ctx, tidl_yfw_datatree *node, uint32_t count,
                        tidl_yfw_datatree *out_tree);

/* Method lists: one call per OpenConfig leaf-list value, which lands on one of
 * the four numbered native slots; one call per numbered native leaf back. */
cerrno oc_authenticationMethod(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                               tidl_yfw_datatree *out_tree);
cerrno oc_authMethod(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);
cerrno oc_acctMethod(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);
cerrno qv_authenticationMethod(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                               tidl_yfw_datatree *out_tree);
cerrno qv_authMethod(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);
cerrno qv_acctMethod(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);

/* Events: OpenConfig event types are the native type key of the service's
 * list entry, the accounting record its type-qv. */
cerrno oc_authorization_event(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                              tidl_yfw_datatree *out_tree);
cerrno oc_auth_type(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);
cerrno oc_accounting_event(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                           tidl_yfw_datatree *out_tree);
cerrno oc_acct_type(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);
cerrno oc_record(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);
cerrno qv_accountings_accounting(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                                 tidl_yfw_datatree *out_tree);
cerrno qv_authorizations_auth(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                              tidl_yfw_datatree *out_tree);
cerrno qv_type_qv(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);

/* Local users of Tarvex-QV-aaa-locald-cfg. */
cerrno oc_name_orderingIndex(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                             tidl_yfw_datatree *out_tree);
cerrno oc_usernameSecret(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                         tidl_yfw_datatree *out_tree);
cerrno oc_authen_user_role(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                           tidl_yfw_datatree *out_tree);
cerrno qv_username(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);
cerrno qv_authenUserPasswdHashed(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                                 tidl_yfw_datatree *out_tree);
cerrno qv_authen_user_role(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                           tidl_yfw_datatree *out_tree);

/* TACACS server groups of Tarvex-QV-aaa-tacacs-cfg. */
cerrno oc_serverType(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);
cerrno oc_ipaddress_servType(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                             tidl_yfw_datatree *out_tree);
cerrno oc_privServPortOrderingIndex(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                                    tidl_yfw_datatree *out_tree);
cerrno oc_tacacsServerSecretKey(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                                tidl_yfw_datatree *out_tree);
cerrno qv_serverGroupType(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                          tidl_yfw_datatree *out_tree);
cerrno qv_servAddress(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);
cerrno qv_tacacs_port(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);
cerrno qv_tacacsPrivServerKey(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                              tidl_yfw_datatree *out_tree);

/* ---- Library entries the companions call ------------------------------- */

/* The augment entries of the two augmenting AAA modules, walkers of the
 * native nodes that qv_aaa and qv_server_groups hand over. */
cerrno ymap_qo_ocsystem_tarvexqvaaalocaldcfg_augment_lvla_aaa(yfw_map_ctx *ctx,
                                                              tidl_yfw_datatree *node,
                                                              tidl_yfw_datatree *out_tree);
cerrno ymap_qo_ocsystem_tarvexqvaaalocaldcfg_augment_lvlb_aaa(yfw_map_ctx *ctx,
                                                              tidl_yfw_datatree *node,
                                                              tidl_yfw_datatree *out_tree);
cerrno ymap_qo_ocsystem_tarvexqvaaalocaldcfg_augment_lvlc_aaa(yfw_map_ctx *ctx,
                                                              tidl_yfw_datatree *node,
                                                              tidl_yfw_datatree *out_tree);
cerrno ymap_qo_ocsystem_tarvexqvaaalocaldcfg_augment_lvld_aaa(yfw_map_ctx *ctx,
                                                              tidl_yfw_datatree *node,
                                                              tidl_yfw_datatree *out_tree);
cerrno ymap_qo_ocsystem_tarvexqvaaalocaldcfg_augment_lvle_aaa(yfw_map_ctx *ctx,
                                                              tidl_yfw_datatree *node,
                                                              tidl_yfw_datatree *out_tree);
cerrno ymap_qo_ocsystem_tarvexqvaaalocaldcfg_augment_lvlf_aaa(yfw_map_ctx *ctx,
                                                              tidl_yfw_datatree *node,
                                                              tidl_yfw_datatree *out_tree);
cerrno ymap_qo_ocsystem_tarvexqvaaalocaldcfg_augment_lvlg_aaa(yfw_map_ctx *ctx,
                                                              tidl_yfw_datatree *node,
                                                              tidl_yfw_datatree *out_tree);
cerrno ymap_qo_ocsystem_tarvexqvaaatacacscfg_augment_lvla_aaa(yfw_map_ctx *ctx,
                                                              tidl_yfw_datatree *node,
                                                              tidl_yfw_datatree *out_tree);
cerrno ymap_qo_ocsystem_tarvexqvaaatacacscfg_augment_lvla_server_groups(
    yfw_map_ctx *ctx, tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);

/* Native-to-OpenConfig NTP callbacks a companion may reuse for the leaves the
 * native walker does not reach. */
cerrno qv_oc_ntp_prefer(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno qv_oc_ntp_iburst(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno qv_oc_server_list_call_back(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);
cerrno qv_oc_server_address(yfw_map_ctx *ctx, tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);

#ifdef __cplusplus
}
#endif

#endif /* YMAP_COMPANIONS_H */
