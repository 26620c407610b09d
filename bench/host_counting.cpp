// A framework whose operations only count: every operation the mapping library
// imports, doing the least that keeps the walks on the paths they take on the
// stand-in (the node hierarchy for key look-ups, the output-list count the
// list walkers compare, the input-tree stack). Walked against it, a tree costs
// what the library itself spends on it.
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "bench_host.hpp"
#include "qv_platform.h"
#include "yfw_map_trace.h"

struct yfw_map_session {
    static constexpr std::size_t kDepth = 128;
    yfw_map_ctx ctx{};
    yfw_map_state state{};
    yfw_request request{};
    tidl_yfw_datatree output{};
    tidl_yfw_datatree added{}; // what new_node_out receives
    uint64_t adds = 0;
    const tidl_yfw_datatree *hierarchy[kDepth]{};
    // Each frame's push number: a frame that still has its number has had
    // nothing below it change.
    uint64_t pushed[kDepth]{};
    uint64_t pushes = 0;
    std::size_t depth = 0;
    yfw_map_itree_entry itree[kDepth]{};
    std::size_t itree_size = 0;
    // What a list path asks for, kept by the text's address: the callers pass
    // the same few constant paths entry after entry.
    // The leaf last found stays the answer while its frame does: an entry's
    // rows ask for its key one after another.
    struct ListPath {
        const char *source = nullptr;
        std::string_view tag;
        bool config = false;
        const tidl_yfw_datatree *leaf = nullptr;
        std::size_t at = 0;
        uint64_t pushed = 0;
    };
    ListPath list_paths[8]{};
};

namespace bench {

const std::string_view kHostName = "counting";

struct Request::Impl : yfw_map_session {};

Request::Request(uint32_t kind) : impl_(std::make_unique<Impl>()) {
    Impl &s = *impl_;
    s.request.request_kind = kind;
    s.state.request = &s.request;
    s.state.root_node = &s.output;
    s.ctx.state = &s.state;
    s.ctx.session = &s;
}
Request::~Request() {
    std::free(impl_->state.error_tag);
    std::free(impl_->state.error_message);
}
yfw_map_ctx *Request::ctx() {
    return &impl_->ctx;
}
tidl_yfw_datatree *Request::output() {
    return &impl_->output;
}
uint64_t Request::produced() {
    return impl_->adds;
}

} // namespace bench

namespace {

yfw_map_session &session_of(yfw_map_ctx *ctx) {
    if (ctx == nullptr)
        std::abort();
    return *ctx->session;
}

cerrno count_add(yfw_map_ctx *ctx, tidl_yfw_datatree **new_node_out = nullptr) {
    yfw_map_session &s = session_of(ctx);
    ++s.adds;
    if (new_node_out != nullptr) {
        s.added = tidl_yfw_datatree{};
        *new_node_out = &s.added;
    }
    return YFW_SUCCESS;
}

// Whether the terminated `text` is `word`: most texts differ in their first
// letter, which settles it without a call.
bool is_text(const char *text, std::string_view word) {
    if (text == nullptr || word.empty())
        return text != nullptr && text[0] == '\0';
    return text[0] == word[0] && std::strncmp(text + 1, word.data() + 1, word.size() - 1) == 0 &&
           text[word.size()] == '\0';
}

bool same_text(const char *a, const char *b) {
    return a != nullptr && b != nullptr && a[0] == b[0] && std::strcmp(a, b) == 0;
}

const tidl_yfw_datatree *child(const tidl_yfw_datatree *node, const char *tag) {
    if (node == nullptr || !node->present_subtrees || node->subtrees == nullptr)
        return nullptr;
    for (uint32_t i = 0; i < node->subtree_count; ++i)
        if (same_text(node->subtrees[i].tag, tag))
            return &node->subtrees[i];
    return nullptr;
}

bool is_delete(const tidl_yfw_datatree *node) {
    // Only the node's own operation: the benchmark trees carry none below their roots.
    return node != nullptr && node->present_operation &&
           (node->operation == OP_DELETE || node->operation == OP_REMOVE);
}

} // namespace

extern "C" {

cerrno yfw_map_datatree_add_path_flagged(yfw_map_ctx *ctx, tidl_yfw_datatree *, const char *,
                                         const char *, const char *, const tidl_yfw_datatree *,
                                         tidl_yfw_datatree **new_node_out, uint32_t, uint32_t) {
    return count_add(ctx, new_node_out);
}
cerrno yfw_map_add_leaf_from_xpath(yfw_map_ctx *ctx, const tidl_yfw_datatree *, tidl_yfw_datatree *,
                                   const char *, const char *, const char *const *, uint32_t) {
    return count_add(ctx);
}
cerrno yfw_map_datatree_update_namespace(yfw_map_ctx *ctx, tidl_yfw_datatree *, const char *,
                                         const char *, uint32_t) {
    return count_add(ctx);
}
cerrno yfw_map_auto_stitch_list_to_list(yfw_map_ctx *ctx, const tidl_yfw_datatree *,
                                        tidl_yfw_datatree *, const char *, const char *const *,
                                        uint32_t) {
    return count_add(ctx);
}
cerrno yfw_map_stitch_container_to_list(yfw_map_ctx *ctx, yfw_map_stitch_record *) {
    return count_add(ctx);
}

void yfw_map_add_to_node_hierarchy(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, uint32_t) {
    yfw_map_session &s = session_of(ctx);
    if (s.depth < yfw_map_session::kDepth) {
        s.hierarchy[s.depth] = node;
        s.pushed[s.depth] = ++s.pushes;
    }
    ++s.depth;
}
void yfw_map_remove_from_node_hierarchy(yfw_map_ctx *ctx, const tidl_yfw_datatree *) {
    yfw_map_session &s = session_of(ctx);
    if (s.depth > 0)
        --s.depth;
}
cerrno yfw_map_update_current_list_node(yfw_map_ctx *, const char *) {
    return YFW_SUCCESS;
}

// The leaf of the innermost walked node whose tag ends `list_path`, or of its
// config child for a path ending in "/config".
cerrno yfw_map_get_node_info(yfw_map_ctx *ctx, const char *list_path, const char *key_name,
                             char **value_out) {
    yfw_map_session &s = session_of(ctx);
    auto &asked =
        s.list_paths[(reinterpret_cast<uintptr_t>(list_path) >> 3) % std::size(s.list_paths)];
    if (asked.source != list_path) {
        std::string_view path = list_path;
        asked = {list_path, {}, path.ends_with("/config")};
        if (asked.config)
            path.remove_suffix(7);
        asked.tag = path.substr(path.rfind('/') + 1);
    }
    *value_out = nullptr;
    for (std::size_t i = std::min(s.depth, yfw_map_session::kDepth); i-- > 0;) {
        if (i == asked.at && s.pushed[i] == asked.pushed && asked.leaf != nullptr &&
            same_text(asked.leaf->tag, key_name)) {
            *value_out = asked.leaf->value;
            break;
        }
        if (!is_text(s.hierarchy[i]->tag, asked.tag))
            continue;
        const tidl_yfw_datatree *holder =
            asked.config ? child(s.hierarchy[i], "config") : s.hierarchy[i];
        if (const tidl_yfw_datatree *leaf = child(holder, key_name)) {
            *value_out = leaf->value;
            asked.leaf = leaf;
            asked.at = i;
            asked.pushed = s.pushed[i];
        }
        break;
    }
    return YFW_SUCCESS;
}

cerrno yfw_map_get_subtrees(yfw_map_ctx *, const tidl_yfw_datatree *node,
                            tidl_yfw_datatree **subtrees_out, uint32_t *count_out) {
    *subtrees_out = node->present_subtrees ? node->subtrees : nullptr;
    *count_out = node->present_subtrees ? node->subtree_count : 0;
    return YFW_SUCCESS;
}

void yfw_add_to_output_list_ctx(yfw_map_ctx *ctx, const tidl_yfw_datatree *, tidl_yfw_datatree *) {
    if (ctx->list_index < 0 || ctx->list_index >= YFW_MAP_MAX_OUTPUT_LISTS)
        return;
    static char key[] = "";
    ctx->output_list_key[ctx->list_index++] = key;
    ++ctx->state->output_list_count;
}
void yfw_remove_from_output_list_ctx(yfw_map_ctx *ctx, const tidl_yfw_datatree *,
                                     tidl_yfw_datatree *) {
    if (ctx->list_index > 0)
        ctx->output_list_key[--ctx->list_index] = nullptr;
    if (ctx->state->output_list_count > 0)
        --ctx->state->output_list_count;
}

int yfw_map_is_request_delete(const tidl_yfw_datatree *node) {
    return is_delete(node) ? 1 : 0;
}
int yfw_map_is_request_add(yfw_map_ctx *ctx, const tidl_yfw_datatree *node) {
    return !yfw_map_is_read_kind(ctx->state->request->request_kind) && !is_delete(node) ? 1 : 0;
}
// The library mostly asks once the first letters agree: the comparison alone
// decides.
int yfw_map_do_these_match(const char *a, const char *b) {
    return a != nullptr && b != nullptr && std::strcmp(a, b) == 0 ? 1 : 0;
}
cerrno yfw_map_check_oc_leafref(yfw_map_ctx *, const char *, const char *,
                                const tidl_yfw_datatree *, const tidl_yfw_datatree *) {
    return YFW_SUCCESS;
}

uint32_t yfw_map_util_itree_stack_size(yfw_map_ctx *ctx) {
    return static_cast<uint32_t>(session_of(ctx).itree_size);
}
void yfw_map_util_itree_stack_push(yfw_map_ctx *ctx, tidl_yfw_datatree *nodes, uint32_t count,
                                   yfw_map_itree_cb callback) {
    yfw_map_session &s = session_of(ctx);
    if (s.itree_size < yfw_map_session::kDepth)
        s.itree[s.itree_size++] = {nodes, count, callback};
}
void yfw_map_util_itree_stack_peak(yfw_map_ctx *ctx, yfw_map_itree_entry **entry_out) {
    yfw_map_session &s = session_of(ctx);
    *entry_out = s.itree_size > 0 ? &s.itree[s.itree_size - 1] : nullptr;
}
void yfw_map_util_itree_stack_pop(yfw_map_ctx *ctx) {
    yfw_map_session &s = session_of(ctx);
    if (s.itree_size > 0)
        --s.itree_size;
}

void yfw_oc_error_path(yfw_map_ctx *) {}
char *yfw_strdup(const char *text, const char *) {
    return text != nullptr ? strdup(text) : nullptr;
}
void qvos_named_free(void *ptr) {
    std::free(ptr);
}

int yfw_strcpy_s(const char *, char *dest, size_t dest_size, const char *source) {
    return yfw_strncpy_s(nullptr, dest, dest_size, source, SIZE_MAX);
}
int strcpy_s(char *dest, size_t dest_size, const char *source) {
    return yfw_strncpy_s(nullptr, dest, dest_size, source, SIZE_MAX);
}
int yfw_strncpy_s(const char *, char *dest, size_t dest_size, const char *source, size_t count) {
    if (dest == nullptr || dest_size == 0 || source == nullptr)
        return EINVAL;
    const std::size_t length = strnlen(source, count);
    if (length >= dest_size)
        return ERANGE;
    std::memcpy(dest, source, length);
    dest[length] = '\0';
    return EOK;
}
int yfw_strcmp_s(const char *, const char *text, size_t text_limit, const char *other,
                 int *indicator_out) {
    const int order = std::strncmp(text, other, text_limit);
    *indicator_out = (order > 0) - (order < 0);
    return EOK;
}

int yfw_debug_should_log(const yfw_debug_filter *, uint32_t) {
    return 0;
}
void _qvos_dt_log_filter_adv(void *, int, int, int, int, int, int32_t *, const char *, ...) {}
uint32_t ret_nc_yfw_trace_index_incr(void) {
    return 0;
}
void _lstrace(void *, uint64_t, const char *) {}
void yfw_map_print_datatree_internal(yfw_map_ctx *, const tidl_yfw_datatree *, const char *) {}

int _sysdb_bind(sysdb_connection **, const char *, uint32_t) {
    return ECONNREFUSED;
}
int sysdb_item_get(sysdb_connection *, const char *, uint32_t *, void **, uint32_t *, uint32_t) {
    return ENOENT;
}
int _sysdb_unbind(sysdb_connection *) {
    return 0;
}

} // extern "C"
