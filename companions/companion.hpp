// What the three companion libraries share: the frame of every function, the
// rules by which a value reaches the output tree, and word tables.
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string_view>

#include "yfw_map.h"
#include "yfw_map_trace.h"
#include "ymap_companions.h"
#include "ymap_namespaces.h"

namespace companion {

// A null context is the caller's programming fault, in release builds too.
[[noreturn]] inline void null_context(const char *fn) {
    std::fprintf(stderr, "%s: Assertion `NULL != ctx' failed.\n", fn);
    std::abort();
}

// Start and End around the body, inlined in every caller; a null argument is refused first.
template <typename Body>
[[gnu::always_inline]] inline cerrno framed(yfw_map_ctx *ctx, const char *fn, bool ok, Body &&run) {
    if (ctx == nullptr)
        null_context(fn);
    YFW_MAP_TRC(ctx, fn, "Start");
    if (!ok) {
        YFW_MAP_ERR(ctx, fn, "Invalid arguments passed!");
        yfw_oc_error_path(ctx);
        return YFW_ERR_INVALID_ARGS;
    }
    const cerrno rc = run();
    YFW_MAP_TRC(ctx, fn, "End");
    return rc;
}

inline uint32_t kind(const yfw_map_ctx *ctx) {
    return ctx->state->request->request_kind;
}
inline bool read_kind(const yfw_map_ctx *ctx) {
    return yfw_map_is_read_kind(kind(ctx)) != 0;
}
inline std::string_view text(const char *s) {
    return s != nullptr ? std::string_view(s) : std::string_view();
}
// Whether `s` begins with `prefix`, without measuring `s` first; a differing
// first letter settles it without a call.
inline bool begins(const char *s, std::string_view prefix) {
    if (prefix.empty())
        return true;
    return s != nullptr && s[0] == prefix[0] && std::strncmp(s, prefix.data(), prefix.size()) == 0;
}

// Refuses a value: the message goes to the client through error_message.
inline cerrno refuse(yfw_map_ctx *ctx, const char *fn, const char *message) {
    YFW_MAP_ERR(ctx, fn, "%s", message);
    if (ctx->state->error_message != nullptr)
        qvos_named_free(ctx->state->error_message);
    ctx->state->error_message = yfw_strdup(message, YFW_MAP_ALLOC_LABEL);
    return YFW_ERR_BAD_VALUE;
}

// A path built from pieces on the stack; a slot number is one digit. Only
// what the pieces fill is written, and the terminator after it.
struct Path {
    char text[200];
    std::size_t used = 0;
    Path(std::string_view a, std::string_view b, std::string_view c = {}) {
        put(a), put(b), put(c);
    }
    Path(std::string_view a, std::string_view b, int slot) {
        const char digit = static_cast<char>('0' + slot % 10);
        put(a), put(b), put({&digit, 1});
    }
    operator const char *() const { return text; }

private:
    void put(std::string_view s) {
        const std::size_t n = std::min(s.size(), sizeof text - 1 - used);
        if (n != 0) // an empty piece may have no storage at all
            std::memcpy(text + used, s.data(), n);
        used += n;
        text[used] = '\0';
    }
};

// A path joined from constant pieces when the program is compiled.
template <std::size_t N> struct Joined {
    char text[N] = {};
    constexpr operator const char *() const { return text; }
};
template <std::size_t... N> constexpr auto join(const char (&...pieces)[N]) {
    Joined<(N + ...) - sizeof...(N) + 1> out;
    std::size_t used = 0;
    ((std::copy_n(pieces, N - 1, out.text + used), used += N - 1), ...);
    return out;
}

// A path of the output model and how it is added.
struct Target {
    const char *path;
    const char *ns;
    uint32_t list_entry = 0;
    uint32_t augment = 0;
};

inline cerrno add(yfw_map_ctx *ctx, tidl_yfw_datatree *out, const Target &t, const char *value,
                  const tidl_yfw_datatree *source, tidl_yfw_datatree **made = nullptr) {
    return yfw_map_datatree_add_path_flagged(ctx, out, t.path, t.ns, value, source, made,
                                             t.list_entry, t.augment);
}

// What a value becomes on the native side. An empty leaf is set with the empty
// value; Remove deletes the native leaf, Refuse carries the client's message.
struct Native {
    enum Kind { Set, Remove, Refuse } kind = Set;
    const char *value = nullptr;
};
using ToNative = Native (*)(const char *value);
// A boolean: true sets `on`, false removes the native leaf, any other word is refused.
inline Native boolean(const char *value, const char *on, const char *message) {
    if (text(value) == "true")
        return {Native::Set, on};
    if (text(value) == "false")
        return {Native::Remove};
    return {Native::Refuse, message};
}
inline Native unchanged(const char *value) {
    return {Native::Set, value};
}

// A leaf of an edit request in three ways: a read filters by the value, a
// delete names the path with no value, any other edit writes the value.
inline cerrno write_leaf(yfw_map_ctx *ctx, const char *fn, tidl_yfw_datatree *out, const Target &t,
                         const tidl_yfw_datatree *node, ToNative conv) {
    if (read_kind(ctx)) {
        // The empty value of an empty leaf selects it rather than filters.
        const Native v = node->value != nullptr ? conv(node->value) : Native{};
        return add(ctx, out, t, v.kind == Native::Set && !text(v.value).empty() ? v.value : nullptr,
                   nullptr);
    }
    if (yfw_map_is_request_delete(node) || node->value == nullptr)
        return add(ctx, out, t, nullptr, node);
    const Native v = conv(node->value);
    if (v.kind == Native::Refuse)
        return refuse(ctx, fn, v.value);
    if (v.kind == Native::Set)
        return add(ctx, out, t, v.value, node);
    tidl_yfw_datatree *made = nullptr;
    const cerrno rc = add(ctx, out, t, nullptr, node, &made);
    if (rc == YFW_SUCCESS && made != nullptr)
        yfw_dt_set_operation(made, OP_REMOVE);
    return rc;
}

// A list key keeps its value in every kind, since it names the entry; only a
// read leaves the operation out.
inline cerrno write_key(yfw_map_ctx *ctx, tidl_yfw_datatree *out, const Target &t,
                        const tidl_yfw_datatree *node, const char *value) {
    return add(ctx, out, t, value, read_kind(ctx) ? nullptr : node);
}

// Native to OpenConfig: the config path unless the request asks for state
// alone, the state path (when there is one) in KIND_GET.
inline cerrno write_answer(yfw_map_ctx *ctx, tidl_yfw_datatree *out, const char *ns,
                           const char *config_path, const char *state_path, const char *value) {
    cerrno rc = YFW_SUCCESS;
    if (!oper_only(ctx))
        rc = add(ctx, out, {config_path, ns}, value, nullptr);
    if (state_path != nullptr && kind(ctx) == KIND_GET)
        rc = add(ctx, out, {state_path, ns}, value, nullptr);
    return rc;
}

// One word of each model. OpenConfig identities are matched with or without
// their module prefix and answered with it; a word in neither table passes on
// unchanged, since the other side judges it.
struct Word {
    const char *oc;
    const char *native;
};
inline std::string_view bare(std::string_view word) {
    const auto colon = word.find(':');
    return colon == std::string_view::npos ? word : word.substr(colon + 1);
}
inline const Word *by_oc(std::span<const Word> words, const char *value) {
    for (const Word &w : words)
        if (bare(w.oc) == bare(text(value)))
            return &w;
    return nullptr;
}
inline const char *to_native_word(std::span<const Word> words, const char *value) {
    const Word *w = by_oc(words, value);
    return w != nullptr ? w->native : value;
}
inline const char *to_oc_word(std::span<const Word> words, const char *value) {
    for (const Word &w : words)
        if (text(w.native) == text(value))
            return w.oc;
    return value;
}

} // namespace companion
