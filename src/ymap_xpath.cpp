// The table forms of list and leaf mappers, on the one primitive.
#include "ymap_xpath.hpp"

#include <cstddef>
#include <cstring>

namespace ymap {

const char *xpath_node_value(const tidl_yfw_datatree *node) {
    return node->value;
}

SelectedRows::SelectedRows(const XpathTable &table, yfw_map_ctx *ctx) : real_(table.real_rows) {
    // A text field's bytes past its terminator are left as they are: the copy
    // is made per call and most of each row is unused space. The namespace,
    // the words between and the second path are one stretch of the record.
    constexpr std::size_t kMiddle = offsetof(xpath_list_type_t, second_xpath);
    constexpr std::size_t kNs = offsetof(xpath_list_type_t, namespace_);
    for (uint32_t i = 0; i <= real_; ++i) {
        const auto *from = reinterpret_cast<const char *>(&table.rows[i]);
        auto *to = reinterpret_cast<char *>(&rows_[i]);
        std::memcpy(to, from, table.sizes[i].xpath);
        std::memcpy(to + kNs, from + kNs, kMiddle - kNs + table.sizes[i].second);
    }
    callback_status_ = table.callback(ctx, static_cast<int32_t>(real_), rows_.data());
}

cerrno run_list_table(const XpathTable &table, yfw_map_ctx *ctx, tidl_yfw_datatree *node,
                      tidl_yfw_datatree *out_tree) {
    const SelectedRows selected(table, ctx);
    if (selected.callback_status() != YFW_SUCCESS)
        return selected.callback_status();
    const tidl_yfw_datatree *source = yfw_map_is_request_delete(node) ? node : nullptr;
    const bool read = read_kind(ctx);
    return selected.each([&](uint32_t, const xpath_list_type_t &row) {
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
    // A leaf goes on whatever the callback says and reports its last add.
    const SelectedRows selected(table, ctx);
    if (read_kind(ctx))
        return selected.each([&](uint32_t, const xpath_list_type_t &row) {
            const char *value = row.value_fn(node);
            cerrno status =
                add_value(ctx, out_tree, row.xpath, row.namespace_, value, 0, row.augment_flag);
            if (has_second(row))
                status = add_value(ctx, out_tree, row.second_xpath, row.namespace_, value, 0,
                                   row.augment_flag);
            return status;
        });
    const bool del = yfw_map_is_request_delete(node) != 0;
    return selected.each([&](uint32_t, const xpath_list_type_t &row) {
        return yfw_map_datatree_add_path_flagged(ctx, out_tree, row.xpath, row.namespace_,
                                                 del ? nullptr : row.value_fn(node), node, nullptr,
                                                 0, row.augment_flag);
    });
}

} // namespace ymap
