// Xpath lists: tables of candidate paths from which a type-check callback
// picks at run time. Each table is one constant with its callback, checked
// when it is built; a mapper copies it to the stack for each call, since the
// callback marks rows in the copy.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "ymap_frame.hpp"

namespace ymap {

// The most rows a table has, its closing row included.
inline constexpr std::size_t kMaxTableRows = 5;

inline constexpr const char kNullPath[] = "NULL";
inline constexpr const char kNonePath[] = "None";

// The bytes of a row's paths, terminators included: what the stack copy takes
// of each, the rest of a field being beyond its text.
struct TextSizes {
    uint16_t xpath;
    uint16_t second;
};

struct XpathTable {
    const char *name;
    const xpath_list_type_t *rows; // the closing row included
    uint32_t real_rows;            // rows before the closing row
    xpath_type_check_fn callback;
    std::array<TextSizes, kMaxTableRows> sizes;
};

// The identity value function of the tables: the node's value as it stands.
const char *xpath_node_value(const tidl_yfw_datatree *node);

// Whether a row has a second path to add ("NULL" and "None" are none). Both
// words fit the field with their terminators, so a fixed-size comparison is
// the text comparison.
inline bool has_second(const xpath_list_type_t &row) {
    return std::memcmp(row.second_xpath, kNonePath, sizeof kNonePath) != 0 &&
           std::memcmp(row.second_xpath, kNullPath, sizeof kNullPath) != 0;
}

// The checks of a table's constant: it ends with its closing row, no data row
// looks like one, it fits the stack copy, and no row starts selected. (Value
// functions are not looked at: a sanitizing build cannot compare function
// addresses at compile time.)
template <std::size_t N> consteval bool check_table(const std::array<xpath_list_type_t, N> &rows) {
    const auto is = [](const char *text, std::string_view word) { return word == text; };
    if (N < 2 || N > kMaxTableRows)
        throw "a table has one to four data rows and its closing row";
    const xpath_list_type_t &closing = rows[N - 1];
    if (!is(closing.xpath, kNullPath) || !is(closing.namespace_, kNullPath) ||
        !is(closing.second_xpath, kNonePath) || closing.value_fn != nullptr)
        throw "the last row of a table is its closing row";
    for (std::size_t i = 0; i + 1 < N; ++i)
        if (rows[i].xpath[0] != '/' || rows[i].selected != 0 || is(rows[i].second_xpath, kNonePath))
            throw "a data row has a path and starts unselected";
    return true;
}

// A row as written: its texts are copied into the record's fixed fields when
// the table is built, so a row may name the namespace constants; a text that
// does not fit stops the build.
struct XpathRow {
    const char *xpath;
    const char *ns;
    xpath_value_fn value_fn;
    uint32_t selected;
    uint32_t augment_flag;
    const char *second_xpath;
};

template <std::size_t N> consteval void copy_text(char (&to)[N], std::string_view text) {
    if (text.size() >= N)
        throw "a text of a table row does not fit its field";
    std::copy(text.begin(), text.end(), to);
}

template <std::size_t N>
consteval std::array<TextSizes, kMaxTableRows>
text_sizes(const std::array<xpath_list_type_t, N> &rows) {
    const auto size = [](const char *text) {
        return static_cast<uint16_t>(std::string_view(text).size() + 1);
    };
    std::array<TextSizes, kMaxTableRows> out{};
    for (std::size_t i = 0; i < N && i < kMaxTableRows; ++i)
        out[i] = {size(rows[i].xpath), size(rows[i].second_xpath)};
    return out;
}

template <std::size_t N>
consteval std::array<xpath_list_type_t, N> table_records(const XpathRow (&rows)[N]) {
    std::array<xpath_list_type_t, N> out{};
    for (std::size_t i = 0; i < N; ++i) {
        copy_text(out[i].xpath, rows[i].xpath);
        copy_text(out[i].namespace_, rows[i].ns);
        copy_text(out[i].second_xpath, rows[i].second_xpath);
        out[i].value_fn = rows[i].value_fn;
        out[i].selected = rows[i].selected;
        out[i].augment_flag = rows[i].augment_flag;
    }
    return out;
}

// A table's constant: `user` (its rows closed by the closing row, checked at
// compile time) with the callback that marks them. The callback of a table
// may live in another library; nothing references it until a mapper uses the
// table.
#define YMAP_XPATH_CLOSING_ROW                                                                     \
    { "NULL", "NULL", nullptr, 0, 0, "None" }
#define YMAP_XPATH_TABLE(user_, callback_, ...)                                                    \
    inline constexpr auto user_##_rows =                                                           \
        ::ymap::table_records({__VA_ARGS__, YMAP_XPATH_CLOSING_ROW});                              \
    static_assert(::ymap::check_table(user_##_rows));                                              \
    inline constexpr ::ymap::XpathTable user_ {                                                    \
#user_, user_##_rows.data(), static_cast < uint32_t>(user_##_rows.size() - 1),             \
            &(callback_), ::ymap::text_sizes(user_##_rows)                                         \
    }

// The one primitive of the table forms, for generated and hand-written
// mappers alike: copies the table to the stack (each text to its terminator)
// and runs its callback on the copy with the count of real rows. Then `each` visits the real rows
// that the callback selected, in table order, so a mark on the closing row has no effect.
class SelectedRows {
public:
    SelectedRows(const XpathTable &table, yfw_map_ctx *ctx);

    // What the callback returned.
    cerrno callback_status() const { return callback_status_; }

    // Calls each(index, row) for every selected real row and returns the
    // status of the last call; 0 when none is selected.
    template <class Each> cerrno each(Each &&each) const {
        cerrno status = YFW_SUCCESS;
        for (uint32_t i = 0; i < real_; ++i)
            if (rows_[i].selected != 0)
                status = each(i, rows_[i]);
        return status;
    }

private:
    std::array<xpath_list_type_t, kMaxTableRows> rows_;
    uint32_t real_;
    cerrno callback_status_;
};

// The table forms of a list and of a leaf mapper.
cerrno run_list_table(const XpathTable &table, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                      tidl_yfw_datatree *out_tree);
cerrno run_leaf_table(const XpathTable &table, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                      tidl_yfw_datatree *out_tree);

} // namespace ymap
