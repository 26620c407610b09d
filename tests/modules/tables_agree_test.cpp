// The facts that the library and the stand-in framework each need: the
// framework resolves paths and names the error path by its own list keys and
// modules, the walkers by their rows. Where they disagree an edit adds an entry
// the walker never names, and nothing else notices.
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "yfw/standin.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

std::vector<std::string_view> row_keys(const ymap::WalkerRow &row) {
    std::vector<std::string_view> keys;
    for (const char *key : row.keys)
        if (key != nullptr)
            keys.emplace_back(key);
    return keys;
}

TEST(TablesAgree, EveryListWalkerHasTheFrameworksKeysInOrder) {
    int lists = 0;
    for (const ymap::WalkerRow *row : ymap::all_walker_rows()) {
        if (row->kind != ymap::WalkerKind::List)
            continue;
        ++lists;
        const auto keys = yfw::list_keys(row->list_path);
        EXPECT_EQ(std::vector<std::string_view>(keys.begin(), keys.end()), row_keys(*row))
            << row->name << " " << row->list_path;
    }
    EXPECT_GT(lists, 40);
}

TEST(TablesAgree, EveryNamespaceOfTheRowsIsAModuleTheFrameworkKnows) {
    const auto known = [](const char *ns) {
        return ns == nullptr || yfw::module_by_namespace(ns) != nullptr;
    };
    for (const ymap::WalkerRow *row : ymap::all_walker_rows())
        EXPECT_TRUE(known(row->ns)) << row->name << " " << row->ns;
    for (const ymap::MapperRow *row : ymap::all_mapper_rows())
        EXPECT_TRUE(known(row->ns)) << row->name << " " << row->ns;
}

} // namespace
