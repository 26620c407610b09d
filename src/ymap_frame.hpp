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

// ---- Messages of the frame --------------------------------------------------
// Literals, so that the trace statement can join them to its prefix.
#define YMAP_MSG_START "Start"
#define YMAP_MSG_END "End"
#define YMAP_MSG_INVALID_ARGS "Invalid arguments passed!"
#define YMAP_MSG_BAD_SUBTREES "Failed to get subtrees!"
#define YMAP_MSG_NO_TAG "Tag name is not available!"
#define YMAP_MSG_NO_KEYS "No keys specified with a list node."
#define YMAP_MSG_KEY_ERROR "List key node error."
#define YMAP_MSG_EMPTY_KEY "Empty list key specified."
#define YMAP_MSG_KEY_DELETE "The key node should not have delete operation."
#define YMAP_MSG_LEAFREF "leafref value check fail"
#define YMAP_MSG_DELETE_WITH_SUBTREE "Delete request with subtree present"
#define YMAP_MSG_UNSUPPORTED_TAG "Unsupported tag is specified in the request."
#define YMAP_MSG_IGNORING "Unsupported tag. Ignoring."
#define YMAP_MSG_IGNORING_NAMED "Unsupported tag `%s`. Ignoring."
#define YMAP_MSG_XPATH_ERROR "got xpath error node "
#define YMAP_MSG_PROCESSING_TAG "Processing tag '%s'"
#define YMAP_MSG_MAPPED "Mapping done for this node"
#define YMAP_MSG_NOT_MAPPED "No mapping done for this node"
#define YMAP_MSG_NO_SUBTREES "No subtrees"

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
// The companion libraries take the input node as const.
using CompanionFn = cerrno (*)(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                               tidl_yfw_datatree *out_tree);
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

// The lines that open and close every frame. Each is one trace statement
// whose writing is out of line, so that a frame with both sinks off carries no
// trace buffer. A frame asks the debug log once, at its start, and its "End"
// goes by the same answer, since the filter does not change within a call.
enum class FrameLine : uint8_t { Start, End };
[[gnu::cold]] void write_frame_line(yfw_map_ctx *ctx, const char *name, FrameLine line, bool debug);
inline bool debug_lines(yfw_map_ctx *ctx) {
    return yfw_debug_should_log(&ctx->debug_filter, YFW_MAP_LEVEL_TRC) != 0;
}
inline void frame_line(yfw_map_ctx *ctx, const char *name, FrameLine line, bool debug) {
    if (debug || ctx->trace_on != 0) [[unlikely]]
        write_frame_line(ctx, name, line, debug);
}
inline void frame_line(yfw_map_ctx *ctx, const char *name, FrameLine line) {
    frame_line(ctx, name, line, debug_lines(ctx));
}

// The frame's other fixed lines, each one trace statement, written out of line
// so that the paths that write them carry no trace buffer.
enum class Note : uint8_t {
    Mapped,            // trace "Mapping done for this node"
    NotMapped,         // trace "No mapping done for this node"
    NoSubtrees,        // trace "No subtrees"
    NoKeys,            // error "No keys specified with a list node."
    NoKeysTrace,       // trace, the same
    KeyError,          // error "List key node error."
    EmptyKey,          // error "Empty list key specified."
    KeyDelete,         // error "The key node should not have delete operation."
    Leafref,           // error "leafref value check fail"
    DeleteWithSubtree, // trace "Delete request with subtree present"
};
[[gnu::noinline]] void note(yfw_map_ctx *ctx, const char *name, Note line);

// Keeps `tag` as the tag to report (the old one is released first), records
// the error path and returns `status`.
cerrno refuse(yfw_map_ctx *ctx, const char *tag, cerrno status);

// The error report of refused arguments; false.
[[gnu::cold]] bool refuse_arguments(yfw_map_ctx *ctx, const char *name);

// The start of every mapper, walker and hand-written function: assertion,
// "Start", and the argument test with its error report. False when the
// arguments are refused; the caller then returns YFW_ERR_INVALID_ARGS.
// `debug` takes the debug log's answer, for the frame's "End".
inline bool frame_start(yfw_map_ctx *ctx, const char *name, const void *node, const void *out_tree,
                        bool &debug) {
    YMAP_ASSERT_CTX(ctx);
    debug = debug_lines(ctx);
    frame_line(ctx, name, FrameLine::Start, debug);
    if (node != nullptr && out_tree != nullptr) [[likely]]
        return true;
    return refuse_arguments(ctx, name);
}

// The whole frame around a body: its start, the body, "End".
template <class Body>
cerrno framed(yfw_map_ctx *ctx, const char *name, const void *node, const void *out_tree,
              Body &&body) {
    bool debug = false;
    if (!frame_start(ctx, name, node, out_tree, debug))
        return YFW_ERR_INVALID_ARGS;
    const cerrno status = body();
    frame_line(ctx, name, FrameLine::End, debug);
    return status;
}

// The three-way rule of a write-capable leaf: a read filters by value, a
// delete names the node without one, an edit carries value and operation.
// Inline, as the adds are most of what a leaf mapper does.
inline cerrno add_three_way(yfw_map_ctx *ctx, tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree,
                            const char *path, const char *ns, uint32_t list_entry_flag = 0,
                            uint32_t augment_flag = 0) {
    const bool read = read_kind(ctx);
    const bool del = !read && yfw_map_is_request_delete(node);
    return yfw_map_datatree_add_path_flagged(ctx, out_tree, path, ns, del ? nullptr : node->value,
                                             read ? nullptr : node, nullptr, list_entry_flag,
                                             augment_flag);
}

// Adds with value and no source: the native-to-OpenConfig direction.
inline cerrno add_value(yfw_map_ctx *ctx, tidl_yfw_datatree *out_tree, const char *path,
                        const char *ns, const char *value, uint32_t list_entry_flag = 0,
                        uint32_t augment_flag = 0) {
    return yfw_map_datatree_add_path_flagged(ctx, out_tree, path, ns, value, nullptr, nullptr,
                                             list_entry_flag, augment_flag);
}

// ---- Mapper rows ----------------------------------------------------------

enum class Family : uint8_t { Oq, Qo }; // named for OpenConfig input, for native input
enum class MapperKind : uint8_t { Container, List, Leaf };

// The forms of each kind of mapper. A form belongs to one kind, so a row that
// names a form of another kind does not compile.
enum class ContForm : uint8_t {
    Pass,        // nothing; success
    StatePickup, // with no children named, ask for the whole container
    Mapped,      // add the target when named with children or deleted
    Hand,        // a hand-written function of (ctx, node, count, out_tree)
};
enum class ListForm : uint8_t {
    Pass,      // nothing; success
    Entry,     // one add of the entry
    Stitched,  // joined to an output list entry of another tree
    Table,     // rows of an xpath list chosen by a callback
    Hand,      // a hand-written function of (ctx, node, out_tree)
    Companion, // a function of a companion library, of (ctx, const node, out_tree)
};
enum class LeafForm : uint8_t {
    None,      // accepted, with no counterpart
    Automatic, // oq: the three-way rule; qo: one add with the value
    FromXpath, // oq, a leaf of a private oper module: read kinds only
    Refuse,    // the tag is refused
    Table,     // rows of an xpath list chosen by a callback
    Hand,      // a hand-written function of (ctx, node, out_tree)
    Companion, // a function of a companion library, of (ctx, const node, out_tree)
};

// Row flags.
enum : uint16_t {
    kTwice = 1u << 0,          // the add is made a second time; its status counts
    kUnlessOperOnly = 1u << 1, // qo: no add when the request asks for state alone
    kListEntry = 1u << 2,      // list_entry_flag 1 on the add (leaf-list values)
    kAugment = 1u << 3,        // augment_flag 1 on the add
};

// The most path pieces a leaf of a private oper module has.
inline constexpr std::size_t kMaxPieces = 12;

struct XpathTable;

// One schema node's mapper.
struct MapperRow {
    const char *name; // the exported symbol, for the trace
    MapperKind kind;
    Family family;
    ContForm cont_form = ContForm::Pass;
    ListForm list_form = ListForm::Pass;
    LeafForm leaf_form = LeafForm::None;
    uint16_t flags = 0;
    const char *path = nullptr;              // target path
    const char *ns = nullptr;                // target namespace
    const char *const *components = nullptr; // path pieces, the first is the root
    uint32_t component_count = 0;
    MapperFn hand = nullptr;
    ContMapperFn hand_count = nullptr;
    CompanionFn companion = nullptr;
    const XpathTable *table = nullptr;
};

// What a row of each form must name. A row that fails it stops the build:
// the throw is not a constant expression, and the compiler shows this line.
consteval bool check_row(const MapperRow &row) {
    const bool pieces = row.components != nullptr && row.component_count >= 2 &&
                        row.component_count <= kMaxPieces && row.ns != nullptr;
    const bool target = row.path != nullptr && row.ns != nullptr;
    switch (row.kind) {
    case MapperKind::Container:
        switch (row.cont_form) {
        case ContForm::Pass:
            return true;
        case ContForm::StatePickup:
        case ContForm::Mapped:
            return target ? true : throw "a container form that adds needs a target and namespace";
        case ContForm::Hand: // the row macro takes the function
            return true;
        }
        break;
    case MapperKind::List:
        switch (row.list_form) {
        case ListForm::Pass:
            return true;
        case ListForm::Entry:
            return target ? true : throw "an entry row needs a target and namespace";
        case ListForm::Stitched:
            return pieces ? true : throw "a stitched row needs 2 to kMaxPieces pieces";
        case ListForm::Table:
            return true; // the row macro takes the table
        case ListForm::Hand:
        case ListForm::Companion:
            return true;
        }
        break;
    case MapperKind::Leaf:
        switch (row.leaf_form) {
        case LeafForm::None:
        case LeafForm::Refuse:
            return true;
        case LeafForm::Automatic:
            return target ? true : throw "an automatic leaf needs a target and namespace";
        case LeafForm::FromXpath:
            return pieces && row.family == Family::Oq
                       ? true
                       : throw "from-xpath is an OpenConfig-side form with 2 to kMaxPieces pieces";
        case LeafForm::Table:
            return true; // the row macro takes the table
        case LeafForm::Hand:
        case LeafForm::Companion:
            return true;
        }
        break;
    }
    throw "unknown mapper kind";
}

cerrno run_container_mapper(const MapperRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                            uint32_t count, tidl_yfw_datatree *out_tree);
cerrno run_mapper(const MapperRow &row, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                  tidl_yfw_datatree *out_tree);

// ---- Hand-written functions -------------------------------------------------

// A hand-written body gets its function's name from the entry point that frames
// it, so its trace lines name the function and not the body.
using HandBody = cerrno (*)(const char *name, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                            tidl_yfw_datatree *out_tree);
using HandCountBody = cerrno (*)(const char *name, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                                 uint32_t count, tidl_yfw_datatree *out_tree);
using HandCallbackBody = cerrno (*)(const char *name, yfw_map_ctx *ctx, int32_t count,
                                    xpath_list_type_t *rows);
cerrno run_hand(const char *name, HandBody body, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                tidl_yfw_datatree *out_tree);
cerrno run_hand_count(const char *name, HandCountBody body, yfw_map_ctx *ctx,
                      tidl_yfw_datatree *node, uint32_t count, tidl_yfw_datatree *out_tree);
cerrno run_hand_callback(const char *name, HandCallbackBody body, yfw_map_ctx *ctx, int32_t count,
                         xpath_list_type_t *rows);

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
    kNamedIgnore = 1u << 3,   // the "ignoring" trace names the tag
    // Behaviour apart from the name: a walker named for native input that walks
    // an OpenConfig request (key demand, leafref check, expansion, walk-all,
    // replace and delete handling), as the walkers of a private OpenConfig
    // extension do.
    kWalksOpenConfig = 1u << 4,
    // An unknown tag of the walker's own namespace is ignored with a trace,
    // whatever the request kind.
    kIgnoresOwnUnknown = 1u << 5,
    // The operational DNS root marks every walk of its tree, before anything
    // else; the configuration DNS root then stands aside for its next walk,
    // before it looks at its tree, so that the operational answer stands alone.
    kRaisesDnsOper = 1u << 6,
    kYieldsToDnsOper = 1u << 7,
    // The root of every request: when it succeeds, no error tag is left from a
    // refusal whose status a walk-all pass dropped on the way.
    kRequestRoot = 1u << 8,
};

struct WalkerRow {
    WalkerFn self; // the entry point of the row
    const char *name;
    Family family; // the direction of the name; behaviour follows it unless flags say otherwise
    WalkerKind kind;
    uint16_t flags = 0;
    const char *ns = nullptr; // the module's own namespace
    ContMapperFn cont_mapper = nullptr;
    MapperFn mapper = nullptr; // list or leaf mapper
    std::span<const Child> children = {};
    WalkerFn augment_parser = nullptr;
    const char *list_path = nullptr;
    std::array<const char *, 2> keys = {}; // key tags of a list, in key order
};

// Whether the walker carries the meaning of an OpenConfig request.
constexpr bool walks_openconfig(const WalkerRow &row) {
    return row.family == Family::Oq || (row.flags & kWalksOpenConfig) != 0;
}

// What a walker row must name. Function addresses are left out: the row
// macros take them, and a sanitizing build cannot compare them at compile time.
consteval bool check_walker(const WalkerRow &row) {
    switch (row.kind) {
    case WalkerKind::List:
        return row.list_path != nullptr && row.keys[0] != nullptr
                   ? true
                   : throw "a list walker needs its list path and its keys";
    case WalkerKind::Container: // the row macros take the mappers
    case WalkerKind::Leaf:
    case WalkerKind::LeafList:
    case WalkerKind::Augment:
    case WalkerKind::AugmentParser:
        return true;
    }
    throw "unknown walker kind";
}

// What a walker changes for the length of a pass, on its node and in the
// state: walk_all, the suppress level, the node's operation and its children.
// Each is saved when first changed and put back when the scope ends, so that
// every path out of the walker leaves them as it found them.
class WalkScope {
public:
    WalkScope(yfw_map_ctx *ctx, tidl_yfw_datatree *node) : st_(ctx->state), node_(node) {}
    ~WalkScope() {
        release_suppress();
        if ((saved_ & kWalkAll) != 0)
            st_->walk_all = 0;
        if ((saved_ & kOperation) != 0) {
            node_->operation = operation_;
            node_->present_operation = present_operation_;
        }
        if ((saved_ & kSubtrees) != 0) {
            node_->subtrees = subtrees_;
            node_->subtree_count = subtree_count_;
            node_->present_subtrees = present_subtrees_;
        }
    }
    WalkScope(const WalkScope &) = delete;
    WalkScope &operator=(const WalkScope &) = delete;

    // A walk-all pass; only the outermost walker that raises it lowers it.
    void walk_all() {
        if (st_->walk_all != 1) {
            st_->walk_all = 1;
            saved_ |= kWalkAll;
        }
    }
    void suppress(yfw_map_suppress_level level) {
        if ((saved_ & kSuppress) == 0)
            suppress_ = st_->walk_suppress;
        saved_ |= kSuppress;
        st_->walk_suppress = level;
    }
    // Ends the suppress level before the scope does.
    void release_suppress() {
        if ((saved_ & kSuppress) != 0)
            st_->walk_suppress = suppress_;
        saved_ &= ~kSuppress;
    }
    void set_operation(int32_t op) {
        if ((saved_ & kOperation) == 0) {
            operation_ = node_->operation;
            present_operation_ = node_->present_operation;
        }
        saved_ |= kOperation;
        yfw_dt_set_operation(node_, op);
    }
    // A delete walked whole: its own OP_DELETE is lowered to OP_REMOVE, so
    // that what is absent is removed without complaint.
    void lower_delete() {
        if (yfw_map_is_request_delete(node_) && node_->present_operation != 0 &&
            node_->operation == OP_DELETE)
            set_operation(OP_REMOVE);
    }
    // The node is walked bare, as if named with no children.
    void hide_subtrees() {
        if ((saved_ & kSubtrees) == 0) {
            subtrees_ = node_->subtrees;
            subtree_count_ = node_->subtree_count;
            present_subtrees_ = node_->present_subtrees;
        }
        saved_ |= kSubtrees;
        yfw_dt_clear_subtrees(node_);
    }

private:
    enum : uint8_t { kWalkAll = 1, kSuppress = 2, kOperation = 4, kSubtrees = 8 };
    yfw_map_state *st_;
    tidl_yfw_datatree *node_;
    uint8_t saved_ = 0;
    uint32_t suppress_ = 0;
    int32_t operation_ = 0;
    unsigned present_operation_ = 0;
    tidl_yfw_datatree *subtrees_ = nullptr;
    uint32_t subtree_count_ = 0;
    unsigned present_subtrees_ = 0;
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

// ---- Hand-written functions, named once ----------------------------------------
//
//     YMAP_HAND(oc_system_config_login_banner) {
//         YFW_MAP_TRC(ctx, name, "...");
//         ...
//     }
//
// defines the exported function, which asserts the context, traces "Start",
// refuses null arguments and traces "End" around the body that follows. The
// body sees `name` (the function's name, for its trace lines), `ctx`, `node`
// and `out_tree`; YMAP_HAND_COUNT adds `count`, YMAP_HAND_CALLBACK is a
// type-check callback of (ctx, count, rows).
#define YMAP_HAND_PARAMS_ [[maybe_unused]] const char *name, [[maybe_unused]] yfw_map_ctx *ctx
#define YMAP_HAND_NODE_ [[maybe_unused]] tidl_yfw_datatree *node
#define YMAP_HAND_COUNT_ [[maybe_unused]] uint32_t count
#define YMAP_HAND_OUT_ [[maybe_unused]] tidl_yfw_datatree *out_tree
#define YMAP_HAND(fn)                                                                              \
    static cerrno fn##_body_(YMAP_HAND_PARAMS_, YMAP_HAND_NODE_, YMAP_HAND_OUT_);                  \
    extern "C" YMAP_EXPORT cerrno fn(yfw_map_ctx *ctx, tidl_yfw_datatree *node,                    \
                                     tidl_yfw_datatree *out_tree) {                                \
        return ::ymap::run_hand(#fn, &fn##_body_, ctx, node, out_tree);                            \
    }                                                                                              \
    static cerrno fn##_body_(YMAP_HAND_PARAMS_, YMAP_HAND_NODE_, YMAP_HAND_OUT_)
#define YMAP_HAND_COUNT(fn)                                                                        \
    static cerrno fn##_body_(YMAP_HAND_PARAMS_, YMAP_HAND_NODE_, YMAP_HAND_COUNT_,                 \
                             YMAP_HAND_OUT_);                                                      \
    extern "C" YMAP_EXPORT cerrno fn(yfw_map_ctx *ctx, tidl_yfw_datatree *node, uint32_t count,    \
                                     tidl_yfw_datatree *out_tree) {                                \
        return ::ymap::run_hand_count(#fn, &fn##_body_, ctx, node, count, out_tree);               \
    }                                                                                              \
    static cerrno fn##_body_(YMAP_HAND_PARAMS_, YMAP_HAND_NODE_, YMAP_HAND_COUNT_, YMAP_HAND_OUT_)
#define YMAP_HAND_CALLBACK(fn)                                                                     \
    static cerrno fn##_body_(YMAP_HAND_PARAMS_, [[maybe_unused]] int32_t count,                    \
                             xpath_list_type_t *rows);                                             \
    extern "C" YMAP_EXPORT cerrno fn(yfw_map_ctx *ctx, int32_t count, xpath_list_type_t *rows) {   \
        return ::ymap::run_hand_callback(#fn, &fn##_body_, ctx, count, rows);                      \
    }                                                                                              \
    static cerrno fn##_body_(YMAP_HAND_PARAMS_, [[maybe_unused]] int32_t count,                    \
                             xpath_list_type_t *rows)
