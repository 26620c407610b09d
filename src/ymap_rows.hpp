// The row language of the module descriptions (`ymap_ocsystem_<module>.def`).
//
// A description holds one aligned row per schema node: mapper rows (the form
// of the node's mapper and its target) and walker rows (a container or list
// and its children in schema order). The same rows expand three times, chosen
// by YMAP_PASS before the description is included:
//   DECLARE  the exported prototypes (the module's header),
//   AUTO     the mapper rows and their entry points (`_auto.cpp`),
//   PARSER   the walker rows and their entry points (`_parser.cpp`).
// Every entry point is a thin exported function that hands its row to the one
// body of its form, and bears the name that the naming rule gives:
//   ymap_<dir>_ocsystem_<module>_<kind>_<level>_<path>.
// A description sets YMAP_DIR (oq or qo), YMAP_MOD (the module word) and
// YMAP_NS (its own namespace) first and undefines them at its end. Its rows
// may stand in any order, since the module header (DECLARE) names every entry
// point and row before a pass defines one: a description reads top-down.
#pragma once

#include "ymap_companions.h"
#include "ymap_frame.hpp"
#include "ymap_namespaces.h"

// The macros keep their hand alignment.
// clang-format off

#define YMAP_PASTE_(a, b) a##b
#define YMAP_PASTE(a, b) YMAP_PASTE_(a, b)
#define YMAP_STR_(x) #x
#define YMAP_STR(x) YMAP_STR_(x)
#define YMAP_UNPAREN(...) __VA_ARGS__

#define YMAP_FAMILY_oq Oq
#define YMAP_FAMILY_qo Qo
#define YMAP_FAMILY YMAP_PASTE(YMAP_FAMILY_, YMAP_DIR)

// ymap_<dir>_ocsystem_<module>_
#define YMAP_PREFIX YMAP_PASTE(YMAP_PASTE(YMAP_PASTE(ymap_, YMAP_DIR), _ocsystem_), YMAP_MOD)
// A mapper: <prefix>_<kind>_<level>_<path>
#define YMAP_MAPPER(kind, level, path) \
    YMAP_PASTE(YMAP_PREFIX, YMAP_PASTE(YMAP_PASTE(_##kind##_, level), _##path))
// A walker: <prefix>_<level>_<path>
#define YMAP_WALKER(level, path) YMAP_PASTE(YMAP_PREFIX, YMAP_PASTE(YMAP_PASTE(_, level), _##path))
// A walker's augment parser.
#define YMAP_PARSER(level, path) YMAP_PASTE(YMAP_WALKER(level, path), _parse_augments)
// An augment walker: <prefix>_augment_<level>_<path>
#define YMAP_AUGMENT(level, path) YMAP_MAPPER(augment, level, path)
#define YMAP_DUCK(kind) YMAP_PASTE(YMAP_PREFIX, _duck_map_##kind)
// The row behind an entry point.
#define YMAP_ROW(fn) YMAP_PASTE(row_, fn)

#define YMAP_CONT_SIG (yfw_map_ctx * ctx, tidl_yfw_datatree * node, uint32_t count, tidl_yfw_datatree * out_tree)
#define YMAP_NODE_SIG (yfw_map_ctx * ctx, tidl_yfw_datatree * node, tidl_yfw_datatree * out_tree)

// Each row macro dispatches on the pass: YMAP_CONT -> YMAP_CMAP_AUTO, ... A
// row belongs to a group (ducks, mappers or walkers); a pass expands the
// groups it marks with YMAP_EXPANDS_<PASS>_<GROUP> and defines the macros of
// those alone: a row of another group expands to nothing.
#define YMAP_DISPATCH(macro) \
    YMAP_PASTE(YMAP_CHOOSE_, YMAP_MARKED(YMAP_PASTE(YMAP_PASTE(YMAP_EXPANDS_, YMAP_PASS), \
                                                     YMAP_GROUP_##macro)))(YMAP_PASTE(macro##_, YMAP_PASS))
#define YMAP_GROUP_YMAP_DUCKS       _DUCKS
#define YMAP_GROUP_YMAP_CMAP        _MAPPERS
#define YMAP_GROUP_YMAP_CMAP_HAND   _MAPPERS
#define YMAP_GROUP_YMAP_CMAP_OWN    _MAPPERS
#define YMAP_GROUP_YMAP_NMAP        _MAPPERS
#define YMAP_GROUP_YMAP_NMAP_PIECES _MAPPERS
#define YMAP_GROUP_YMAP_NMAP_HAND   _MAPPERS
#define YMAP_GROUP_YMAP_NMAP_OWN    _MAPPERS
#define YMAP_GROUP_YMAP_LWALK       _WALKERS
#define YMAP_GROUP_YMAP_WALK        _WALKERS
// 1 when `marker` is defined as YMAP_MARK, else 0.
#define YMAP_MARK ~, 1
#define YMAP_MARKED(marker) YMAP_SECOND_(marker, 0, )
#define YMAP_SECOND_(...) YMAP_SECOND__(__VA_ARGS__)
#define YMAP_SECOND__(a, b, ...) b
#define YMAP_CHOOSE_1(pass_macro) pass_macro
#define YMAP_CHOOSE_0(pass_macro) YMAP_SKIP
#define YMAP_SKIP(...)

// ---- Row macros of the descriptions -----------------------------------------

// Catch-all mappers of a module; the second form refuses leaves.
#define YMAP_DUCKS() YMAP_DISPATCH(YMAP_DUCKS)(duck_pass)
#define YMAP_DUCKS_REFUSING_LEAVES() YMAP_DISPATCH(YMAP_DUCKS)(duck_refuse)

// Container mappers.
#define YMAP_CONT(lv_, node_, form_) \
    YMAP_DISPATCH(YMAP_CMAP)(YMAP_MAPPER(cont, lv_, node_), .cont_form = ::ymap::ContForm::form_)
#define YMAP_CONT_TO(lv_, node_, form_, target_, ns_) \
    YMAP_DISPATCH(YMAP_CMAP)(YMAP_MAPPER(cont, lv_, node_), .cont_form = ::ymap::ContForm::form_, \
                             .path = target_, .ns = ns_)
// A hand-written function of another name that the generated mapper calls.
#define YMAP_CONT_HAND(lv_, node_, fn_) \
    YMAP_DISPATCH(YMAP_CMAP_HAND)(YMAP_MAPPER(cont, lv_, node_), fn_)
// A hand-written function that bears the mapper's own name (YMAP_HAND_COUNT in
// the module's `_man` source): no generated entry point, no second frame.
#define YMAP_CONT_OWN(lv_, node_) \
    YMAP_DISPATCH(YMAP_CMAP_OWN)(YMAP_MAPPER(cont, lv_, node_))

// List and leaf mappers.
#define YMAP_LIST(lv_, node_, form_) \
    YMAP_DISPATCH(YMAP_NMAP)(YMAP_MAPPER(list, lv_, node_), List, .list_form = ::ymap::ListForm::form_)
#define YMAP_LIST_TO(lv_, node_, form_, target_, ns_, fl_) \
    YMAP_DISPATCH(YMAP_NMAP)(YMAP_MAPPER(list, lv_, node_), List, .list_form = ::ymap::ListForm::form_, \
                             .flags = (fl_), .path = target_, .ns = ns_)
#define YMAP_LIST_STITCH(lv_, node_, ns_, ...) \
    YMAP_DISPATCH(YMAP_NMAP_PIECES)(YMAP_MAPPER(list, lv_, node_), List, \
                                    .list_form = ::ymap::ListForm::Stitched, ns_, __VA_ARGS__)
#define YMAP_LIST_HAND(lv_, node_, fn_) \
    YMAP_DISPATCH(YMAP_NMAP_HAND)(YMAP_MAPPER(list, lv_, node_), List, .list_form = ::ymap::ListForm::Hand, fn_)
// A function of a companion library (ymap_companions.h) that the generated
// mapper calls inside its frame.
#define YMAP_LIST_COMPANION(lv_, node_, fn_) \
    YMAP_DISPATCH(YMAP_NMAP)(YMAP_MAPPER(list, lv_, node_), List, \
                             .list_form = ::ymap::ListForm::Companion, .companion = &(fn_))
#define YMAP_LIST_TABLE(lv_, node_, table_) \
    YMAP_DISPATCH(YMAP_NMAP)(YMAP_MAPPER(list, lv_, node_), List, \
                             .list_form = ::ymap::ListForm::Table, .table = &(table_))
#define YMAP_LEAF(lv_, node_, form_) \
    YMAP_DISPATCH(YMAP_NMAP)(YMAP_MAPPER(leaf, lv_, node_), Leaf, .leaf_form = ::ymap::LeafForm::form_)
#define YMAP_LEAF_TO(lv_, node_, form_, target_, ns_, fl_) \
    YMAP_DISPATCH(YMAP_NMAP)(YMAP_MAPPER(leaf, lv_, node_), Leaf, .leaf_form = ::ymap::LeafForm::form_, \
                             .flags = (fl_), .path = target_, .ns = ns_)
#define YMAP_LEAF_XPATH(lv_, node_, ns_, ...) \
    YMAP_DISPATCH(YMAP_NMAP_PIECES)(YMAP_MAPPER(leaf, lv_, node_), Leaf, \
                                    .leaf_form = ::ymap::LeafForm::FromXpath, ns_, __VA_ARGS__)
#define YMAP_LEAF_HAND(lv_, node_, fn_) \
    YMAP_DISPATCH(YMAP_NMAP_HAND)(YMAP_MAPPER(leaf, lv_, node_), Leaf, .leaf_form = ::ymap::LeafForm::Hand, fn_)
#define YMAP_LEAF_COMPANION(lv_, node_, fn_) \
    YMAP_DISPATCH(YMAP_NMAP)(YMAP_MAPPER(leaf, lv_, node_), Leaf, \
                             .leaf_form = ::ymap::LeafForm::Companion, .companion = &(fn_))
#define YMAP_LEAF_OWN(lv_, node_) \
    YMAP_DISPATCH(YMAP_NMAP_OWN)(YMAP_MAPPER(leaf, lv_, node_), Leaf, .leaf_form = ::ymap::LeafForm::Hand)
#define YMAP_LEAF_TABLE(lv_, node_, table_) \
    YMAP_DISPATCH(YMAP_NMAP)(YMAP_MAPPER(leaf, lv_, node_), Leaf, \
                             .leaf_form = ::ymap::LeafForm::Table, .table = &(table_))

// Walkers. `aug` is GEN (the generated augment parser) or HAND (one written in
// the module's `_man` source under the same name).
#define YMAP_LEAF_WALKER(lv_, node_) \
    YMAP_DISPATCH(YMAP_LWALK)(YMAP_WALKER(lv_, node_), YMAP_MAPPER(leaf, lv_, node_), Leaf)
#define YMAP_LEAFLIST_WALKER(lv_, node_) \
    YMAP_DISPATCH(YMAP_LWALK)(YMAP_WALKER(lv_, node_), YMAP_MAPPER(leaf, lv_, node_), LeafList)
#define YMAP_CONT_WALKER(lv_, node_, fl_, aug_, ...)                                          \
    YMAP_DISPATCH(YMAP_WALK)(YMAP_WALKER(lv_, node_), YMAP_PARSER(lv_, node_), aug_,        \
                             Container, fl_, &YMAP_MAPPER(cont, lv_, node_), nullptr,         \
                             nullptr, (), __VA_ARGS__)
#define YMAP_LIST_WALKER(lv_, node_, fl_, aug_, list_path_, keys_, ...)                         \
    YMAP_DISPATCH(YMAP_WALK)(YMAP_WALKER(lv_, node_), YMAP_PARSER(lv_, node_), aug_, List,  \
                             fl_, nullptr, &YMAP_MAPPER(list, lv_, node_), list_path_, keys_,   \
                             __VA_ARGS__)
#define YMAP_AUGMENT_WALKER(lv_, node_, fl_, aug_, ...)                                       \
    YMAP_AUGMENT_WALKER_PARSED_BY(lv_, node_, fl_, aug_,                                      \
                                  YMAP_PASTE(YMAP_AUGMENT(lv_, node_), _parse_augments),      \
                                  __VA_ARGS__)
// An augment walker whose augment parser bears another name, such as that of
// the augmented node's walker.
#define YMAP_AUGMENT_WALKER_PARSED_BY(lv_, node_, fl_, aug_, parser_, ...)                    \
    YMAP_DISPATCH(YMAP_WALK)(YMAP_AUGMENT(lv_, node_), parser_, aug_, Augment, fl_, nullptr, \
                             nullptr, nullptr, (), __VA_ARGS__)

// A leaf whose walker only restates its mapper: the mapper row gives the
// walker too. YMAP_LEAF_NODE(LEAF_TO, lv, node, ...) is YMAP_LEAF_TO(lv, node,
// ...) with YMAP_LEAF_WALKER(lv, node).
#define YMAP_LEAF_NODE(form_, lv_, node_, ...) \
    YMAP_##form_(lv_, node_ __VA_OPT__(,) __VA_ARGS__) YMAP_LEAF_WALKER(lv_, node_)
#define YMAP_LEAFLIST_NODE(form_, lv_, node_, ...) \
    YMAP_##form_(lv_, node_ __VA_OPT__(,) __VA_ARGS__) YMAP_LEAFLIST_WALKER(lv_, node_)

// Walkers whose node has no mapper of its own use a catch-all mapper.
#define YMAP_LEAF_WALKER_WITH(lv_, node_, mapper_fn_) \
    YMAP_DISPATCH(YMAP_LWALK)(YMAP_WALKER(lv_, node_), mapper_fn_, Leaf)
#define YMAP_LIST_WALKER_WITH(lv_, node_, fl_, aug_, mapper_fn_, list_path_, keys_, ...)           \
    YMAP_DISPATCH(YMAP_WALK)(YMAP_WALKER(lv_, node_), YMAP_PARSER(lv_, node_), aug_, List,  \
                             fl_, nullptr, &mapper_fn_, list_path_, keys_, __VA_ARGS__)

// Native nodes with no OpenConfig face: walked all the way down with the
// module's catch-all mappers, so that an answer holding them is checked node
// by node and adds nothing.
#define YMAP_DUCK_CONT_WALKER(lv_, node_, ...)                                                 \
    YMAP_DISPATCH(YMAP_WALK)(YMAP_WALKER(lv_, node_), YMAP_PARSER(lv_, node_), GEN, Container, \
                             0, &YMAP_DUCK(container), nullptr, nullptr, (), __VA_ARGS__)
#define YMAP_DUCK_LIST_WALKER(lv_, node_, list_path_, keys_, ...) \
    YMAP_LIST_WALKER_WITH(lv_, node_, 0, GEN, YMAP_DUCK(list), list_path_, keys_, __VA_ARGS__)
#define YMAP_DUCK_LEAF(tag_, lv_, node_) \
    ::ymap::Child{tag_, nullptr, YMAP_STR(YMAP_WALKER(lv_, node_)), &YMAP_DUCK(leaf)},

// Children of a walker row, in schema order, one after the other with no
// separator (each expands with its own comma).
#define YMAP_CHILD(tag_, lv_, node_) ::ymap::Child{tag_, &YMAP_WALKER(lv_, node_)},
#define YMAP_STATE_CHILD(tag_, lv_, node_) \
    ::ymap::Child{tag_, &YMAP_WALKER(lv_, node_), nullptr, nullptr, ::ymap::kStateOnly},
// A native leaf, walked inline under the leaf walker's name.
#define YMAP_INLINE(tag_, lv_, node_) \
    ::ymap::Child{tag_, nullptr, YMAP_STR(YMAP_WALKER(lv_, node_)), &YMAP_MAPPER(leaf, lv_, node_)},

// ---- DECLARE ------------------------------------------------------------------

#define YMAP_EXPANDS_DECLARE_DUCKS YMAP_MARK
#define YMAP_EXPANDS_DECLARE_MAPPERS YMAP_MARK
#define YMAP_EXPANDS_DECLARE_WALKERS YMAP_MARK

#define YMAP_DUCKS_DECLARE(body)                                  \
    extern "C" YMAP_EXPORT cerrno YMAP_DUCK(container) YMAP_CONT_SIG; \
    extern "C" YMAP_EXPORT cerrno YMAP_DUCK(list) YMAP_NODE_SIG;      \
    extern "C" YMAP_EXPORT cerrno YMAP_DUCK(leaf) YMAP_NODE_SIG;
#define YMAP_MAPPER_ROW_DECLARE_(fn) \
    namespace ymap::rows { extern const ::ymap::MapperRow YMAP_ROW(fn); }
#define YMAP_WALKER_ROW_DECLARE_(fn) \
    namespace ymap::rows { extern const ::ymap::WalkerRow YMAP_ROW(fn); }
#define YMAP_CMAP_DECLARE(fn, ...) \
    extern "C" YMAP_EXPORT cerrno fn YMAP_CONT_SIG; YMAP_MAPPER_ROW_DECLARE_(fn)
#define YMAP_CMAP_HAND_DECLARE(fn, hand) \
    YMAP_CMAP_DECLARE(fn) extern "C" YMAP_EXPORT cerrno hand YMAP_CONT_SIG;
#define YMAP_NMAP_DECLARE(fn, ...) \
    extern "C" YMAP_EXPORT cerrno fn YMAP_NODE_SIG; YMAP_MAPPER_ROW_DECLARE_(fn)
#define YMAP_NMAP_PIECES_DECLARE(fn, ...) YMAP_NMAP_DECLARE(fn)
#define YMAP_NMAP_HAND_DECLARE(fn, kind, form, hand) \
    YMAP_NMAP_DECLARE(fn) extern "C" YMAP_EXPORT cerrno hand YMAP_NODE_SIG;
#define YMAP_NMAP_OWN_DECLARE(fn, ...) YMAP_NMAP_DECLARE(fn)
#define YMAP_CMAP_OWN_DECLARE(fn) YMAP_CMAP_DECLARE(fn)
#define YMAP_LWALK_DECLARE(fn, ...) \
    extern "C" YMAP_EXPORT cerrno fn YMAP_NODE_SIG; YMAP_WALKER_ROW_DECLARE_(fn)
#define YMAP_AUG_DECLARE_GEN(parser) YMAP_WALKER_ROW_DECLARE_(parser)
#define YMAP_AUG_DECLARE_HAND(parser)
#define YMAP_WALK_DECLARE(fn, parser, aug, ...)                                  \
    extern "C" YMAP_EXPORT cerrno fn YMAP_NODE_SIG; YMAP_WALKER_ROW_DECLARE_(fn)     \
    extern "C" YMAP_EXPORT cerrno parser YMAP_NODE_SIG; YMAP_AUG_DECLARE_##aug(parser)

// ---- AUTO: mapper rows and entry points --------------------------------------

#define YMAP_EXPANDS_AUTO_DUCKS YMAP_MARK
#define YMAP_EXPANDS_AUTO_MAPPERS YMAP_MARK

#define YMAP_DUCKS_AUTO(leaf_body)                                                           \
    extern "C" YMAP_EXPORT cerrno YMAP_DUCK(container) YMAP_CONT_SIG {                       \
        return ::ymap::duck_container(YMAP_STR(YMAP_DUCK(container)), ctx, node, count, out_tree); \
    }                                                                                        \
    extern "C" YMAP_EXPORT cerrno YMAP_DUCK(list) YMAP_NODE_SIG {                            \
        return ::ymap::duck_pass(YMAP_STR(YMAP_DUCK(list)), ctx, node, out_tree);            \
    }                                                                                        \
    extern "C" YMAP_EXPORT cerrno YMAP_DUCK(leaf) YMAP_NODE_SIG {                            \
        return ::ymap::leaf_body(YMAP_STR(YMAP_DUCK(leaf)), ctx, node, out_tree);            \
    }
#define YMAP_CMAP_ROW_(fn, ...)                                                              \
    namespace ymap::rows {                                                                   \
    constexpr ::ymap::MapperRow YMAP_ROW(fn){                                                \
        .name = YMAP_STR(fn), .kind = ::ymap::MapperKind::Container,                    \
        .family = ::ymap::Family::YMAP_FAMILY, __VA_ARGS__};                    \
    static_assert(::ymap::check_row(YMAP_ROW(fn)));                                          \
    }
#define YMAP_CMAP_AUTO(fn, ...)                                                              \
    YMAP_CMAP_ROW_(fn, __VA_ARGS__)                                                          \
    extern "C" YMAP_EXPORT cerrno fn YMAP_CONT_SIG {                                         \
        return ::ymap::run_container_mapper(::ymap::rows::YMAP_ROW(fn), ctx, node, count, out_tree);       \
    }
#define YMAP_CMAP_HAND_AUTO(fn, hand_fn) \
    YMAP_CMAP_AUTO(fn, .cont_form = ::ymap::ContForm::Hand, .hand_count = &hand_fn)
#define YMAP_CMAP_OWN_AUTO(fn) YMAP_CMAP_ROW_(fn, .cont_form = ::ymap::ContForm::Hand, .hand_count = &fn)
#define YMAP_NMAP_ROW_(fn, mkind, ...)                                                       \
    namespace ymap::rows {                                                                   \
    constexpr ::ymap::MapperRow YMAP_ROW(fn){                                                \
        .name = YMAP_STR(fn), .kind = ::ymap::MapperKind::mkind,                        \
        .family = ::ymap::Family::YMAP_FAMILY, __VA_ARGS__};                        \
    static_assert(::ymap::check_row(YMAP_ROW(fn)));                                          \
    }
#define YMAP_NMAP_AUTO(fn, mkind, ...)                                                       \
    YMAP_NMAP_ROW_(fn, mkind, __VA_ARGS__)                                                   \
    extern "C" YMAP_EXPORT cerrno fn YMAP_NODE_SIG {                                         \
        return ::ymap::run_mapper(::ymap::rows::YMAP_ROW(fn), ctx, node, out_tree);                        \
    }
#define YMAP_NMAP_PIECES_AUTO(fn, mkind, mform, ns_, ...)                                    \
    namespace {                                                                              \
    constexpr const char *YMAP_PASTE(pieces_, fn)[] = {__VA_ARGS__};                         \
    }                                                                                        \
    YMAP_NMAP_AUTO(fn, mkind, mform, .ns = ns_,                                              \
                   .components = YMAP_PASTE(pieces_, fn),                                    \
                   .component_count = std::size(YMAP_PASTE(pieces_, fn)))
#define YMAP_NMAP_HAND_AUTO(fn, mkind, mform, hand_fn) YMAP_NMAP_AUTO(fn, mkind, mform, .hand = &hand_fn)
#define YMAP_NMAP_OWN_AUTO(fn, mkind, mform) YMAP_NMAP_ROW_(fn, mkind, mform, .hand = &fn)

// ---- PARSER: walker rows and entry points ------------------------------------

#define YMAP_EXPANDS_PARSER_WALKERS YMAP_MARK

#define YMAP_WALKER_ENTRY_(fn)                                                               \
    extern "C" YMAP_EXPORT cerrno fn YMAP_NODE_SIG {                                         \
        return ::ymap::run_walker(::ymap::rows::YMAP_ROW(fn), ctx, node, out_tree);                        \
    }
#define YMAP_LWALK_PARSER(fn, mapper_fn, wkind)                                              \
    namespace ymap::rows {                                                                   \
    constexpr ::ymap::WalkerRow YMAP_ROW(fn){.self = &fn,                                    \
                                             .name = YMAP_STR(fn),                           \
                                             .family = ::ymap::Family::YMAP_FAMILY,          \
                                             .kind = ::ymap::WalkerKind::wkind,              \
                                             .ns = YMAP_NS,                                  \
                                             .mapper = &mapper_fn};                          \
    static_assert(::ymap::check_walker(YMAP_ROW(fn)));                                       \
    }                                                                                        \
    YMAP_WALKER_ENTRY_(fn)

// The generated augment parser of a walker, or none when a hand-written one
// of the same name stands in the module's `_man` source.
#define YMAP_AUG_GEN(parser)                                                                 \
    namespace ymap::rows {                                                                   \
    constexpr ::ymap::WalkerRow YMAP_ROW(parser){.self = &parser,                            \
                                                 .name = YMAP_STR(parser),                   \
                                                 .family = ::ymap::Family::YMAP_FAMILY,      \
                                                 .kind = ::ymap::WalkerKind::AugmentParser,  \
                                                 .ns = YMAP_NS};                             \
    }                                                                                        \
    YMAP_WALKER_ENTRY_(parser)
#define YMAP_AUG_HAND(parser)

#define YMAP_WALK_PARSER(fn, parser, aug, wkind, fl, cmapper, lmapper, lpath, keys_, ...)    \
    YMAP_AUG_##aug(parser) namespace {                                                       \
        constexpr ::ymap::Child YMAP_PASTE(children_, fn)[] = {__VA_ARGS__::ymap::Child{nullptr}}; \
    }                                                                                        \
    namespace ymap::rows {                                                                   \
        constexpr ::ymap::WalkerRow YMAP_ROW(fn){                                            \
            .self = &fn,                                                                     \
            .name = YMAP_STR(fn),                                                                     \
            .family = ::ymap::Family::YMAP_FAMILY,                                           \
            .kind = ::ymap::WalkerKind::wkind,                                               \
            .flags = (fl),                                                                   \
            .ns = YMAP_NS,                                                                   \
            .cont_mapper = (cmapper),                                                        \
            .mapper = (lmapper),                                                             \
            .children = std::span(YMAP_PASTE(children_, fn),                                 \
                                  std::size(YMAP_PASTE(children_, fn)) - 1),                 \
            .augment_parser = &parser,                                                       \
            .list_path = (lpath),                                                            \
            .keys = {YMAP_UNPAREN keys_}};                                                    \
        static_assert(::ymap::check_walker(YMAP_ROW(fn)));                                   \
    }                                                                                        \
    YMAP_WALKER_ENTRY_(fn)

// ---- MAPPER_LIST and WALKER_LIST: every row, for checks over the library -------

#define YMAP_EXPANDS_MAPPER_LIST_MAPPERS YMAP_MARK
#define YMAP_CMAP_MAPPER_LIST(fn, ...) &::ymap::rows::YMAP_ROW(fn),
#define YMAP_CMAP_HAND_MAPPER_LIST(fn, ...) &::ymap::rows::YMAP_ROW(fn),
#define YMAP_NMAP_MAPPER_LIST(fn, ...) &::ymap::rows::YMAP_ROW(fn),
#define YMAP_NMAP_PIECES_MAPPER_LIST(fn, ...) &::ymap::rows::YMAP_ROW(fn),
#define YMAP_NMAP_HAND_MAPPER_LIST(fn, ...) &::ymap::rows::YMAP_ROW(fn),
#define YMAP_NMAP_OWN_MAPPER_LIST(fn, ...) &::ymap::rows::YMAP_ROW(fn),
#define YMAP_CMAP_OWN_MAPPER_LIST(fn) &::ymap::rows::YMAP_ROW(fn),

#define YMAP_EXPANDS_WALKER_LIST_WALKERS YMAP_MARK
#define YMAP_LWALK_WALKER_LIST(fn, ...) &::ymap::rows::YMAP_ROW(fn),
#define YMAP_AUG_LIST_GEN(parser) &::ymap::rows::YMAP_ROW(parser),
#define YMAP_AUG_LIST_HAND(parser)
#define YMAP_WALK_WALKER_LIST(fn, parser, aug, ...) &::ymap::rows::YMAP_ROW(fn), YMAP_AUG_LIST_##aug(parser)
// clang-format on
