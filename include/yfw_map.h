/*
 * The mapping contract between a YANG management framework and a mapping
 * library: the records a walker receives, the status values it returns, and
 * every framework operation the library imports.
 *
 * The framework owns contexts, trees and node values. The library reads and
 * writes the fields named here and nothing else.
 */
#ifndef YFW_MAP_H
#define YFW_MAP_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Status ------------------------------------------------------------ */

typedef uint32_t cerrno;

#define YFW_SUCCESS ((cerrno)0u)
#define YFW_ERR_INVALID_ARGS ((cerrno)0xaaf2a000u)
#define YFW_ERR_BAD_TREE ((cerrno)0xaaf29e00u)
#define YFW_ERR_UNSUPPORTED_TAG ((cerrno)0xaaf2ee00u)
#define YFW_ERR_LIST_KEY ((cerrno)0xaaf2f000u)
#define YFW_ERR_KEY_DELETE ((cerrno)0xaaf2f200u)
#define YFW_ERR_BAD_VALUE ((cerrno)0xaaf2f400u)
/* Not an error: the node is not to be mapped. Walkers turn it into success. */
#define YFW_MAP_SKIP_NODE ((cerrno)0xaaf2f600u)
#define YFW_ERR_UNSUPPORTED_AUGMENT ((cerrno)0xaaf2f800u)

/* Result of the safe-string functions. */
#define EOK 0

/* ---- Edit operations, request kinds, node kinds ------------------------ */

enum yfw_map_operation {
    OP_MERGE = 0,
    OP_REPLACE = 1,
    /* 2 belongs to the framework; the library neither tests nor writes it. */
    OP_DELETE = 3,
    OP_REMOVE = 4,
};

enum yfw_map_request_kind {
    KIND_GET_CONFIG = 0,
    KIND_EDIT_A = 1,
    KIND_EDIT_B = 8,
    KIND_GET = 10,
    KIND_EDIT_C = 15,
};

/* What a walker saw, written on the input node for the framework. */
enum yfw_map_node_kind {
    NODE_LEAF = 1,
    NODE_LEAF_LIST = 2,
    NODE_CONTAINER = 3,
    NODE_LIST = 4,
    NODE_CONTENT_MATCH = 6,
};

/* Kinds pushed on the node hierarchy. */
enum yfw_map_hierarchy_kind {
    YFW_MAP_HIER_CONTAINER = 1,
    YFW_MAP_HIER_LIST_ENTRY = 2,
};

/* The xpath error mark the framework leaves on a node of a failed validation. */
#define YFW_MAP_ERROR_KIND_XPATH 5

/* ---- Data tree --------------------------------------------------------- */

/* The framework's text type: a terminated char string. */
typedef char *tidl_string_t;

/*
 * One node. Children are one contiguous array. Every optional field has a
 * presence bit, and a writer of a field raises its bit: `subtrees` is only
 * meaningful with `present_subtrees`.
 */
typedef struct tidl_yfw_datatree {
    tidl_string_t tag;
    tidl_string_t value;
    tidl_string_t namespace_;
    int32_t operation;
    struct tidl_yfw_datatree *subtrees;
    uint32_t subtree_count;
    int32_t node_kind;
    uint8_t is_key;
    int32_t error_kind;
    unsigned int present_value : 1;
    unsigned int present_operation : 1;
    unsigned int present_subtrees : 1;
    unsigned int present_is_key : 1;
    unsigned int present_error_kind : 1;
    unsigned int present_node_kind : 1;
} tidl_yfw_datatree;

static inline void yfw_dt_set_operation(tidl_yfw_datatree *n, int32_t op) {
    n->operation = op;
    n->present_operation = 1;
}

static inline void yfw_dt_set_node_kind(tidl_yfw_datatree *n, int32_t kind) {
    n->node_kind = kind;
    n->present_node_kind = 1;
}

static inline void yfw_dt_set_is_key(tidl_yfw_datatree *n) {
    n->is_key = 1;
    n->present_is_key = 1;
}

static inline void yfw_dt_set_subtrees(tidl_yfw_datatree *n, tidl_yfw_datatree *subtrees,
                                       uint32_t count) {
    n->subtrees = subtrees;
    n->subtree_count = count;
    n->present_subtrees = 1;
}

static inline void yfw_dt_clear_subtrees(tidl_yfw_datatree *n) {
    n->subtrees = NULL;
    n->subtree_count = 0;
    n->present_subtrees = 0;
}

/* ---- Request ----------------------------------------------------------- */

/* Per-request options. The library only asks whether any is set. */
typedef struct yfw_request_options {
    uint32_t depth : 9;
    uint32_t with_defaults : 3;
    uint32_t config_only : 1;
    uint32_t nonconfig_only : 1;
    uint32_t origin_filter : 2;
    uint32_t suppress_empty : 1;
    uint32_t paths_only : 1;
    uint32_t updates_only : 1;
    uint32_t subscribe_mode : 2;
    uint32_t encoding : 3;
    uint32_t max_elements_set : 1;
    uint32_t sync_on_start : 1;
    uint32_t heartbeat : 1;
    uint32_t streaming : 1;
} yfw_request_options;

/* The options are tested as one word. */
#ifdef __cplusplus
static_assert(sizeof(yfw_request_options) == sizeof(uint32_t), "options fit one word");
#else
_Static_assert(sizeof(yfw_request_options) == sizeof(uint32_t), "options fit one word");
#endif

/* The datastore selector of a request for operational data. */
#define YFW_DATASTORE_OPERATIONAL 2u

typedef struct yfw_request {
    uint32_t request_kind;
    uint32_t datastore_selector;
    yfw_request_options option_bits;
} yfw_request;

/* ---- Context and state ------------------------------------------------- */

/* The debug log filter, embedded in the context; only its address is used. */
typedef struct yfw_debug_filter {
    uint32_t level_mask; /* bit n set: level n is logged */
    uint32_t reserved;
} yfw_debug_filter;

typedef struct yfw_map_node_data {
    struct tidl_yfw_datatree *tree;
} yfw_map_node_data;

#define YFW_MAP_MAX_NODE_DATA 8
#define YFW_MAP_MAX_OUTPUT_LISTS 16

/* state_flags */
#define YFW_MAP_STATE_REPLACE_DELETE 0x40u /* inside the delete pass of a replace */
#define YFW_MAP_STATE_REPLACE_MERGE 0x80u  /* inside the merge pass of a replace */
#define YFW_MAP_STATE_XPATH_ERROR 0x100u
/* filter_flags */
#define YFW_MAP_FILTER_EXPAND 0x1u           /* expand the present container whole */
#define YFW_MAP_FILTER_SELECTION 0x2u        /* a selection leaf was seen */
#define YFW_MAP_FILTER_CONTENT_MATCH 0x4u    /* a content-match leaf was seen */
#define YFW_MAP_FILTER_CONTENT_SEEN 0x10000u /* ... anywhere in the request */
/* The mask the walkers apply when they enter a node; it keeps bit 16. */
#define YFW_MAP_FILTER_ENTRY_MASK 0x11111110u

/* walk_suppress: what an outer list walker has already decided for the walkers
   below it. The field stays a plain 32-bit word; these are its values. */
enum yfw_map_suppress_level {
    YFW_MAP_SUPPRESS_NONE = 0u,        /* a walk as the request names it */
    YFW_MAP_SUPPRESS_ENTRY_GONE = 1u,  /* inside the walk-all pass of a list entry deleted
                                          whole: no key scan, no key demand below */
    YFW_MAP_SUPPRESS_KEYS_DELETE = 2u, /* the list mapper's call for a delete that names
                                          the keys alone: the whole entry goes */
};

typedef struct yfw_map_state {
    yfw_request *request;
    tidl_yfw_datatree *reg_dup_datatree; /* dump only */
    tidl_yfw_datatree *root_node;        /* dump only */
    tidl_yfw_datatree *parent_node;      /* dump only */
    tidl_yfw_datatree *current_node;     /* dump only */
    char *error_tag;                     /* from yfw_strdup */
    uint32_t state_flags;
    uint8_t output_list_count;
    tidl_yfw_datatree *plist; /* dump only */
    uint32_t node_data_count;
    yfw_map_node_data node_data[YFW_MAP_MAX_NODE_DATA]; /* dump only */
    uint32_t walk_suppress;                             /* an enum yfw_map_suppress_level */
    uint32_t walk_all;
    uint32_t filter_flags;
    char *error_message; /* from yfw_strdup */
    uint32_t replace_active;
} yfw_map_state;

struct yfw_map_session; /* the framework's own bookkeeping */

typedef struct yfw_map_ctx {
    yfw_map_state *state;
    yfw_debug_filter debug_filter;
    void *err_log;
    void *trace_log;
    void *lstrace_handle;
    uint32_t trace_on;
    int32_t list_index;
    char *output_list_key[YFW_MAP_MAX_OUTPUT_LISTS];
    uint32_t list_op;
    uint32_t map_dump_on[2];
    struct yfw_map_session *session;
} yfw_map_ctx;

static inline int yfw_map_is_read_kind(uint32_t kind) {
    return kind == KIND_GET_CONFIG || kind == KIND_GET;
}

/* Kinds 1, 8 and 15: the kinds below 16 whose bit is set in 0x8102. */
static inline int yfw_map_is_key_demanding_kind(uint32_t kind) {
    return kind < 16u && ((0x8102u >> kind) & 1u) != 0u;
}

/* A request for state alone: operational datastore with any option set. */
static inline int oper_only(const yfw_map_ctx *ctx) {
    const yfw_request *r = ctx->state->request;
    uint32_t word = 0;
    memcpy(&word, &r->option_bits, sizeof word);
    return r->datastore_selector == YFW_DATASTORE_OPERATIONAL && word != 0u;
}

/* ---- Registration record ---------------------------------------------- */

typedef cerrno (*yfw_map_walker_fn)(yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                                    tidl_yfw_datatree *out_tree);

#define YFW_MAP_REG_TEXT 81

typedef struct yfw_map_reg_mod_t {
    char label[YFW_MAP_REG_TEXT];
    char native_namespace[YFW_MAP_REG_TEXT];
    char oc_namespace[YFW_MAP_REG_TEXT];
    char native_root[YFW_MAP_REG_TEXT];
    char oc_root[YFW_MAP_REG_TEXT];
    yfw_map_walker_fn oc_to_native;
    yfw_map_walker_fn framework_fn_a; /* not written by the library */
    yfw_map_walker_fn framework_fn_b; /* not written by the library */
    yfw_map_walker_fn native_to_oc;
    uint32_t flags_a;
    uint32_t flags_b;
} yfw_map_reg_mod_t;

/* ---- Xpath lists, path components, stitching --------------------------- */

#define XPATH_LIST_PATH_SIZE 250
#define XPATH_LIST_NS_SIZE 74 /* the longest namespace of the tables has 73 */

typedef const char *(*xpath_value_fn)(const tidl_yfw_datatree *node);

/* A row of a table of candidate paths; a table ends with a closing row. */
typedef struct xpath_list_type_t {
    char xpath[XPATH_LIST_PATH_SIZE];
    char namespace_[XPATH_LIST_NS_SIZE];
    xpath_value_fn value_fn;
    uint32_t selected;
    uint32_t augment_flag;
    char second_xpath[XPATH_LIST_PATH_SIZE];
} xpath_list_type_t;

typedef cerrno (*xpath_type_check_fn)(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows);

typedef struct yfw_map_stitch_record {
    tidl_yfw_datatree *out_tree;
    uint32_t mode_a;
    uint32_t mode_b;
    char namespace_[250];
    char entry_path[1000];
    char list_path[1000];
} yfw_map_stitch_record;

/* ---- Input-tree stack -------------------------------------------------- */

typedef cerrno (*yfw_map_itree_cb)(yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                                   tidl_yfw_datatree *out_tree, uint32_t zero);

typedef struct yfw_map_itree_entry {
    tidl_yfw_datatree *nodes;
    uint32_t count;
    yfw_map_itree_cb callback;
} yfw_map_itree_entry;

/* ---- Imported framework operations ------------------------------------- */

/* Tree writing */
cerrno yfw_map_datatree_add_path_flagged(yfw_map_ctx *ctx, tidl_yfw_datatree *out_tree,
                                         const char *path, const char *namespace_,
                                         const char *value, const tidl_yfw_datatree *source_node,
                                         tidl_yfw_datatree **new_node_out, uint32_t list_entry_flag,
                                         uint32_t augment_flag);
cerrno yfw_map_add_leaf_from_xpath(yfw_map_ctx *ctx, const tidl_yfw_datatree *input_node,
                                   tidl_yfw_datatree *out_tree, const char *root_path,
                                   const char *namespace_, const char *const *path_components,
                                   uint32_t component_count);
cerrno yfw_map_datatree_update_namespace(yfw_map_ctx *ctx, tidl_yfw_datatree *out_tree,
                                         const char *path, const char *namespace_, uint32_t zero);
cerrno yfw_map_auto_stitch_list_to_list(yfw_map_ctx *ctx, const tidl_yfw_datatree *input_node,
                                        tidl_yfw_datatree *out_tree, const char *namespace_,
                                        const char *const *path_components,
                                        uint32_t component_count);
cerrno yfw_map_stitch_container_to_list(yfw_map_ctx *ctx, yfw_map_stitch_record *record);

/* Node hierarchy and current list */
void yfw_map_add_to_node_hierarchy(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, uint32_t kind);
void yfw_map_remove_from_node_hierarchy(yfw_map_ctx *ctx, const tidl_yfw_datatree *node);
cerrno yfw_map_update_current_list_node(yfw_map_ctx *ctx, const char *path);
cerrno yfw_map_get_node_info(yfw_map_ctx *ctx, const char *list_path, const char *key_name,
                             char **value_out);
cerrno yfw_map_get_subtrees(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                            tidl_yfw_datatree **subtrees_out, uint32_t *count_out);
void yfw_add_to_output_list_ctx(yfw_map_ctx *ctx, const tidl_yfw_datatree *input_node,
                                tidl_yfw_datatree *out_tree);
void yfw_remove_from_output_list_ctx(yfw_map_ctx *ctx, const tidl_yfw_datatree *input_node,
                                     tidl_yfw_datatree *out_tree);

/* Requests and tests */
int yfw_map_is_request_delete(const tidl_yfw_datatree *node);
int yfw_map_is_request_add(yfw_map_ctx *ctx, const tidl_yfw_datatree *node);
int yfw_map_do_these_match(const char *a, const char *b);
cerrno yfw_map_check_oc_leafref(yfw_map_ctx *ctx, const char *list_path, const char *container_name,
                                const tidl_yfw_datatree *key_node,
                                const tidl_yfw_datatree *list_node);

/* Input-tree stack */
uint32_t yfw_map_util_itree_stack_size(yfw_map_ctx *ctx);
void yfw_map_util_itree_stack_push(yfw_map_ctx *ctx, tidl_yfw_datatree *nodes, uint32_t count,
                                   yfw_map_itree_cb callback);
void yfw_map_util_itree_stack_peak(yfw_map_ctx *ctx, yfw_map_itree_entry **entry_out);
void yfw_map_util_itree_stack_pop(yfw_map_ctx *ctx);

/* Errors and text */
void yfw_oc_error_path(yfw_map_ctx *ctx);
char *yfw_strdup(const char *text, const char *label);
void qvos_named_free(void *ptr);
int yfw_strcpy_s(const char *caller, char *dest, size_t dest_size, const char *source);
int yfw_strncpy_s(const char *caller, char *dest, size_t dest_size, const char *source,
                  size_t count);
int yfw_strcmp_s(const char *caller, const char *text, size_t text_limit, const char *other,
                 int *indicator_out);
int strcpy_s(char *dest, size_t dest_size, const char *source);

/* The allocation label of every text the library duplicates. */
#define YFW_MAP_ALLOC_LABEL "YFW MAP"

#ifdef __cplusplus
}
#endif

#endif /* YFW_MAP_H */
