/*
 * Platform services of the device that the mapping library imports besides
 * the framework: the system database client and the address functions.
 */
#ifndef QV_PLATFORM_H
#define QV_PLATFORM_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

struct addrinfo;

/* ---- System database client -------------------------------------------- */

typedef struct sysdb_connection sysdb_connection;

/* Item types of sysdb_item_get. */
#define SYSDB_TYPE_FLAG 1u
#define SYSDB_TYPE_STRING 3u

/* 0 on success. */
int _sysdb_bind(sysdb_connection **connection, const char *bind_point, uint32_t flags);
/* 0 on success; `*value` is allocated by the call and released with free(). */
int sysdb_item_get(sysdb_connection *connection, const char *key, uint32_t *type_inout,
                   void **value, uint32_t *size, uint32_t zero);
int _sysdb_unbind(sysdb_connection *connection);

/* ---- Address functions: the meaning of the standard calls -------------- */

int qv_inet_pton(int family, const char *text, void *out);
int getaddrinfo_qv(const char *node, const char *service, const struct addrinfo *hints,
                   struct addrinfo **result);
void freeaddrinfo_qv(struct addrinfo *result);

#ifdef __cplusplus
}
#endif

#endif /* QV_PLATFORM_H */
