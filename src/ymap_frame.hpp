// The mapping frame: the rows that describe a module's schema nodes, and the
// one body per form that runs them. A mapper or walker of the library is a
// thin exported function that hands its row to the body of its form.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>

#include "yfw_map.h"
#include "yfw_map_trace.h"
#include "ymap_ocsystem.h"

// Every function of the library begins with this assertion; it stays on in
// release builds, since a null context is a programming fault of the caller.
#define YMAP_ASSERT_CTX(ctx)                                                                       \
    do {                                                                                           \
        if ((ctx) == nullptr)                                                                      \
            ::ymap::assertion_failed("NULL != ctx", __FILE__, __LINE__, __func__);                 \
    } while (0)

namespace ymap {

[[noreturn]] void assertion_failed(const char *expr, const char *file, int line, const char *fn);

using ContMapperFn = cerrno (*)(yfw_map_ctx *ctx, tidl_yfw_datatree *node, uint32_t count,
                                tidl_yfw_datatree *out_tree);
using MapperFn = cerrno (*)(yfw_map_ctx *ctx, tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree);
using WalkerFn = yfw_map_walker_fn;

inline uint32_t request_kind(const yfw_map_ctx *ctx) {
    return ctx->state->request->request_kind;
}
inline bool read_kind(const yfw_map_ctx *ctx) {
    return yfw_map_is_read_kind(request_kind(ctx));
}
inline bool text_equal(const char *a, const char *b) {
    return yfw_map_do_these_match(a, b) != 0;
}

// ---- The frame --------------------------------------------------------------

// Keeps `tag` as the tag to report (the old one is released first), records
// the error path and returns `status`.
cerrno refuse(yfw_map_ctx *ctx, const char *tag, cerrno status);

// The start of every mapper, walker and hand-written function: assertion,
// "Start", and the argument test with its error report. False when the
// arguments are refused; the caller then returns YFW_ERR_INVALID_ARGS.
bool frame_start(yfw_map_ctx *ctx, const char *name, const void *node, const void *out_tree);

// The whole frame around a body: its start, the body, "End".
template <class Body>
cerrno framed(yfw_map_ctx *ctx, const char *name, const void *node, const void *out_tree,
              Body &&body) {
    if (!frame_start(ctx, name, node, out_tree))
        return YFW_ERR_INVALID_ARGS;
    const cerrno status = body();
    YFW_MAP_TRC(ctx, name, "End");
    return status;
}

// The three-way rule of a write-capable leaf: a read filters by value, a
// delete names the node without one, an edit carries value and operation.
cerrno add_three_way(yfw_map_ctx *ctx, tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree,
                     const char *path, const char *ns, uint32_t list_entry_flag = 0,
                     uint32_t augment_flag = 0);

// Adds with value and no source: the native-to-OpenConfig direction.
cerrno add_value(yfw_map_ctx *ctx, tidl_yfw_datatree *out_tree, const char *path, const char *ns,
                 const char *value, uint32_t list_entry_flag = 0, uint32_t augment_flag = 0);

// ---- Mapper rows ----------------------------------------------------------

enum class Family : uint8_t { Oq, Qo }; // OpenConfig input, native input
enum class MapperKind : uint8_t { Container, List, Leaf };

enum class Form : uint8_t {
    Pass,        // nothing; success
    None,        // leaf: accepted, with no counterpart
    StatePickup, // container: with no children named, ask for the whole container
    Mapped,      // container: add the target when named with children or deleted
    Hand,        // a hand-written function of (ctx, node, out_tree)
    HandCount,   // a hand-written function of (ctx, node, count, out_tree)
    Entry,       // list: one add of the entry
    Stitched,    // list: joined to an output list entry of another tree
    Table,       // list or leaf: rows of an xpath list chosen by a callback
    Automatic,   // leaf: oq three-way rule; qo one add with the value
    ConfigState, // qo leaf: `config` path unless oper_only, `state` path in KIND_GET
    FromXpath,   // oq leaf of a private oper module: read kinds only
    Refuse,      // leaf with no counterpart: the tag is refused
};

// Row flags.
enum : uint16_t {
    kTwice = 1u << 0,          // the add is made a second time; its status counts
    kUnlessOperOnly = 1u << 1, // qo: no add when the request asks for state alone
    kListEntry = 1u << 2,      // list_entry_flag 1 on the add (leaf-list values)
    kAugment = 1u << 3,        // augment_flag 1 on the add
};

struct XpathTable;

// One schema node's mapper.
struct MapperRow {
    const char *name; // the exported symbol, for the trace
    MapperKind kind;
    Family family;
    Form form;
    uint16_t flags = 0;
    const char *path = nullptr;   // target path
    const char *ns = nullptr;     // target namespace
    const char *second = nullptr; // the state path, or the fixed key path of a Mapped container
    const char *second_value = nullptr;      // the fixed key value
    const char *const *components = nullptr; // path pieces, the first is the root
    uint32_t component_count = 0;
    MapperFn hand = nullptr;
    ContMapperFn hand_count = nullptr;
    const XpathTable *table = nullptr;
};

cerrno run_container_mapper(const MapperRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                            uint32_t count, tidl_yfw_datatree *out_tree);
cerrno run_mapper(const MapperRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                  tidl_yfw_datatree *out_tree);

// ---- Walker rows ----------------------------------------------------------

enum class WalkerKind : uint8_t {
    Container,
    List,
    Leaf,
    LeafList,
    Augment,       // entered with one node of an augmenting module
    AugmentParser, // a node of a foreign namespace
};

// Child flags.
enum : uint8_t {
    kStateOnly = 1u << 0, // matches only in KIND_GET; walked last in a walk-all pass
};

// A child of a walker row: a walker of its own, or a native leaf walked inline
// by its parent under the leaf walker's name.
struct Child {
    const char *tag;
    WalkerFn walk = nullptr;
    const char *leaf_name = nullptr;
    MapperFn leaf_mapper = nullptr;
    uint8_t flags = 0;
};

// Walker flags.
enum : uint16_t {
    kGetOnly = 1u << 0,       // qo: every child is dispatched only in KIND_GET
    kNoOwnNsTest = 1u << 1,   // oq root: an unmatched tag goes straight to the augment parser
    kStateOnlyList = 1u << 2, // a list of state alone: a malformed entry is tolerated in reads
    kNamedIgnore = 1u << 3,   // qo: the "ignoring" trace names the tag
};

struct WalkerRow {
    WalkerFn self; // the entry point of the row
    const char *name;
    Family family;
    WalkerKind kind;
    uint16_t flags = 0;
    const char *ns = nullptr; // the module's own namespace
    ContMapperFn cont_mapper = nullptr;
    MapperFn mapper = nullptr; // list or leaf mapper
    std::span<const Child> children = {};
    WalkerFn augment_parser = nullptr;
    const char *list_path = nullptr;
    std::array<const char *, 2> keys = {}; // key tags of a list, in key order
    void (*on_enter)() = nullptr;          // a root walker's own step ahead of the walk
};

cerrno run_walker(const WalkerRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                  tidl_yfw_datatree *out_tree);

// The catch-all mappers of a module.
cerrno duck_container(const char *name, yfw_map_ctx *ctx, tidl_yfw_datatree *node, uint32_t count,
                      tidl_yfw_datatree *out_tree);
cerrno duck_pass(const char *name, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                 tidl_yfw_datatree *out_tree);
cerrno duck_refuse(const char *name, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                   tidl_yfw_datatree *out_tree);

// ---- Every row of every module, for checks over the whole library ------------

std::span<const MapperRow *const> all_mapper_rows();
std::span<const WalkerRow *const> all_walker_rows();

} // namespace ymap
