// The names the fuzz targets build their inputs from, read at start-up from
// the registration records and the library's own mapper and walker rows: a
// module added to the library is fuzzed, and its words are in the
// dictionaries, without a change here.
#pragma once

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "registered_trees.hpp"
#include "ymap_frame.hpp"

namespace fuzzwords {

// A root walker with the root tag and namespace its tree is registered with.
struct Root {
    yfw_map_walker_fn walker;
    const ymap::WalkerRow *row;
    std::string tag;
    std::string ns;
};

// A tag a node may take below a walker row, and the row that walks it (none
// for a leaf walked inline).
struct Pick {
    const char *tag;
    const ymap::WalkerRow *row;
};

struct Schema {
    std::vector<Root> roots;             // every registered root, both directions
    std::vector<std::string> tags;       // every name the rows and their paths hold
    std::vector<std::string> namespaces; // every namespace they name
    std::vector<std::string> values;     // the fixed key values of the rows
    // The children of each row, and of every augment row for a row that parses augments.
    std::map<const ymap::WalkerRow *, std::vector<Pick>> picks;
    std::map<std::string, const ymap::WalkerRow *, std::less<>> row_by_tag;

    const ymap::WalkerRow *row_of(yfw_map_walker_fn fn) const {
        for (const ymap::WalkerRow *row : ymap::all_walker_rows()) {
            if (row->self == fn) {
                return row;
            }
        }
        return nullptr;
    }
    const std::vector<Pick> &picks_of(const ymap::WalkerRow *row) const {
        static const std::vector<Pick> none;
        auto it = picks.find(row);
        return it == picks.end() ? none : it->second;
    }
};

namespace detail {

inline void add_unique(std::vector<std::string> &to, std::string_view word) {
    if (!word.empty() && std::find(to.begin(), to.end(), word) == to.end()) {
        to.emplace_back(word);
    }
}

// The node names of a path: "/a1:aaa/x[k='v']/y" gives aaa, x and y.
inline void add_path_words(std::vector<std::string> &to, const char *path) {
    if (path == nullptr) {
        return;
    }
    std::string_view rest(path);
    while (!rest.empty()) {
        const std::size_t slash = rest.find('/');
        std::string_view step = rest.substr(0, slash);
        rest = slash == std::string_view::npos ? std::string_view() : rest.substr(slash + 1);
        step = step.substr(0, step.find('['));
        if (const std::size_t colon = step.find(':'); colon != std::string_view::npos) {
            step = step.substr(colon + 1);
        }
        add_unique(to, step);
    }
}

} // namespace detail

// Built once; everything it points to is static data of the library.
inline const Schema &schema() {
    static const Schema built = [] {
        Schema s;
        using detail::add_path_words;
        using detail::add_unique;
        const auto trees = ocsysmap::registered_trees();
        for (const yfw_map_reg_mod_t &reg : trees) {
            const auto add_root = [&](yfw_map_walker_fn fn, const char *tag, const char *ns) {
                if (std::none_of(s.roots.begin(), s.roots.end(),
                                 [&](const Root &r) { return r.walker == fn && r.tag == tag; })) {
                    s.roots.push_back({fn, s.row_of(fn), tag, ns});
                }
                add_unique(s.tags, tag);
                add_unique(s.namespaces, ns);
            };
            add_root(reg.oc_to_native, reg.oc_root, reg.oc_namespace);
            add_root(reg.native_to_oc, reg.native_root, reg.native_namespace);
        }
        std::vector<Pick> augments;
        for (const ymap::WalkerRow *row : ymap::all_walker_rows()) {
            if (row->ns != nullptr) {
                add_unique(s.namespaces, row->ns);
            }
            add_path_words(s.tags, row->list_path);
            for (const ymap::Child &child : row->children) {
                add_unique(s.tags, child.tag);
                const Pick pick{child.tag, child.walk != nullptr ? s.row_of(child.walk) : nullptr};
                s.picks[row].push_back(pick);
                if (row->kind == ymap::WalkerKind::Augment) {
                    augments.push_back(pick);
                }
                if (pick.row != nullptr) {
                    s.row_by_tag.try_emplace(child.tag, pick.row);
                }
            }
        }
        for (const ymap::WalkerRow *row : ymap::all_walker_rows()) {
            if (row->augment_parser != nullptr) {
                auto &own = s.picks[row];
                own.insert(own.end(), augments.begin(), augments.end());
            }
        }
        for (const ymap::MapperRow *row : ymap::all_mapper_rows()) {
            add_path_words(s.tags, row->path);
            for (uint32_t i = 0; i < row->component_count; ++i) {
                add_path_words(s.tags, row->components[i]);
            }
            if (row->ns != nullptr) {
                add_unique(s.namespaces, row->ns);
            }
        }
        return s;
    }();
    return built;
}

} // namespace fuzzwords
