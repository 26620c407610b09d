// The table forms of list and leaf mappers.
#include "ymap_xpath.hpp"

#include <algorithm>
#include <cstring>

namespace ymap {

const char *xpath_node_value(const tidl_yfw_datatree *node) {
    return node->value;
}

namespace {

bool has_second(const xpath_list_type_t &row) {
    return std::strcmp(row.second_xpath, kNonePath) != 0 &&
           std::strcmp(row.second_xpath, kNullPath) != 0;
}

// The table is copied to the stack for each call, since the callback marks it.
struct LocalTable {
    std::array<xpath_list_type_t, kMaxTableRows> rows;
    std::size_t real;

    LocalTable(const XpathTable &table) : real(table.real_rows()) {
        std::copy(table.rows.begin(), table.rows.end(), rows.begin());
    }
};

// One pass over the rows that the callback selected; only the real rows count,
// so a mark on the closing row has no effect.
template <class Add> cerrno add_selected(const LocalTable &local, Add &&add) {
    cerrno status = YFW_SUCCESS;
    for (std::size_t i = 0; i < local.real; ++i)
        if (local.rows[i].selected != 0)
            status = add(local.rows[i]);
    return status;
}

} // namespace

cerrno run_list_table(const XpathTable &table, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                      tidl_yfw_datatree *out_tree) {
    LocalTable local(table);
    const cerrno checked = table.callback(ctx, static_cast<int32_t>(local.real), local.rows.data());
    if (checked != YFW_SUCCESS)
        return checked;
    const tidl_yfw_datatree *source = yfw_map_is_request_delete(node) ? node : nullptr;
    const bool read = read_kind(ctx);
    return add_selected(local, [&](const xpath_list_type_t &row) {
        cerrno status =
            yfw_map_datatree_add_path_flagged(ctx, out_tree, row.xpath, row.namespace_, nullptr,
                                              source, nullptr, 1, row.augment_flag);
        if (read && has_second(row))
            status =
                yfw_map_datatree_add_path_flagged(ctx, out_tree, row.second_xpath, row.namespace_,
                                                  nullptr, nullptr, nullptr, 1, row.augment_flag);
        return status;
    });
}

cerrno run_leaf_table(const XpathTable &table, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                      tidl_yfw_datatree *out_tree) {
    LocalTable local(table);
    // A leaf goes on whatever the callback says and reports its last add.
    (void)table.callback(ctx, static_cast<int32_t>(local.real), local.rows.data());
    if (read_kind(ctx))
        return add_selected(local, [&](const xpath_list_type_t &row) {
            const char *value = row.value_fn(node);
            cerrno status =
                add_value(ctx, out_tree, row.xpath, row.namespace_, value, 0, row.augment_flag);
            if (has_second(row))
                status = add_value(ctx, out_tree, row.second_xpath, row.namespace_, value, 0,
                                   row.augment_flag);
            return status;
        });
    if (yfw_map_is_request_delete(node))
        return add_selected(local, [&](const xpath_list_type_t &row) {
            return yfw_map_datatree_add_path_flagged(ctx, out_tree, row.xpath, row.namespace_,
                                                     nullptr, node, nullptr, 0, row.augment_flag);
        });
    return add_selected(local, [&](const xpath_list_type_t &row) {
        return yfw_map_datatree_add_path_flagged(ctx, out_tree, row.xpath, row.namespace_,
                                                 row.value_fn(node), node, nullptr, 0,
                                                 row.augment_flag);
    });
}

} // namespace ymap
