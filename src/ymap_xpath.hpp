// Xpath lists: tables of candidate paths from which a type-check callback
// picks at run time, and the path component arrays of private oper modules.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "ymap_frame.hpp"

namespace ymap {

// The most path pieces a leaf of a private oper module has.
inline constexpr std::size_t kMaxPieces = 12;
// The most rows a table has, its closing row included.
inline constexpr std::size_t kMaxTableRows = 5;

inline constexpr const char kNullPath[] = "NULL";
inline constexpr const char kNonePath[] = "None";

// A constant table with the callback that marks its rows.
struct XpathTable {
    const char *name;
    std::span<const xpath_list_type_t> rows; // the closing row included
    xpath_type_check_fn callback;
    std::size_t real_rows() const { return rows.size() - 1; }
};

// The identity value function of the tables: the node's value as it stands.
const char *xpath_node_value(const tidl_yfw_datatree *node);

// The row that closes every table.
#define YMAP_XPATH_CLOSING_ROW                                                                     \
    { "NULL", "NULL", nullptr, 0, 0, "None" }

// The table forms of a list and of a leaf mapper.
cerrno run_list_table(const XpathTable &table, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                      tidl_yfw_datatree *out_tree);
cerrno run_leaf_table(const XpathTable &table, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                      tidl_yfw_datatree *out_tree);

} // namespace ymap
