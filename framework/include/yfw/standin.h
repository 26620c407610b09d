/*
 * The stand-in framework for a host written in C: one mapping run (its
 * context and output tree) and input trees built in the run's own memory.
 * A C++ host uses yfw/standin.hpp, which offers more.
 */
#ifndef YFW_STANDIN_H
#define YFW_STANDIN_H

#include "yfw_map.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct yfw_standin_session yfw_standin_session;

/* A run of the request kind (KIND_GET_CONFIG ...); null when out of memory. */
yfw_standin_session *yfw_standin_session_new(uint32_t request_kind);
/* Releases the run, its trees and what the walkers left in its state. */
void yfw_standin_session_free(yfw_standin_session *session);

/* What a walker is called with: the context and the output document root,
 * whose children are the module roots the walker wrote. */
yfw_map_ctx *yfw_standin_ctx(yfw_standin_session *session);
tidl_yfw_datatree *yfw_standin_output(yfw_standin_session *session);

/* An input root, alive as long as the run; null when out of memory. */
tidl_yfw_datatree *yfw_standin_new_root(yfw_standin_session *session, const char *tag,
                                        const char *namespace_);
/* Appends a child in the parent's namespace, with `value` unless it is null.
 * Pointers to earlier children of `parent` are invalid afterwards. */
tidl_yfw_datatree *yfw_standin_append_child(yfw_standin_session *session, tidl_yfw_datatree *parent,
                                            const char *tag, const char *value);

#ifdef __cplusplus
}
#endif

#endif /* YFW_STANDIN_H */
