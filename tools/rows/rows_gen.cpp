// Writes the table of the mapping rows that `ocsysmap rows` prints: one line
// per schema node the walkers reach from each registered root, in walk order,
// with the node's mapper, the form of its row and what the row targets; then
// the walkers entered through an augment parser, and any mapper row that no
// walker reaches. A change of one row is a change of one line.
//
// usage: ocsysmap_rowsgen OUTPUT_CPP
#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "registered_trees.hpp"
#include "ymap_frame.hpp"
#include "ymap_xpath.hpp"

namespace {

std::string symbol_of(const void *fn) {
    Dl_info info{};
    if (fn == nullptr) {
        return "-";
    }
    // A symbol that is not exported would lend the name of the one before it.
    if (dladdr(fn, &info) == 0 || info.dli_sname == nullptr || info.dli_saddr != fn) {
        return "?";
    }
    return info.dli_sname;
}

template <class Fn> const void *address(Fn fn) {
    return reinterpret_cast<const void *>(fn);
}

// The module a namespace names: the last piece of its URI.
std::string_view module_of(std::string_view ns) {
    return ns.substr(ns.rfind('/') + 1);
}

// Switches rather than name arrays, so that a form added or removed is a
// compile error here instead of a shifted name.
#define YMAP_FORM_NAME_(Enum, v)                                                                   \
    case ymap::Enum::v:                                                                            \
        return #v;
constexpr const char *form_name(ymap::ContForm f) {
    switch (f) {
        YMAP_FORM_NAME_(ContForm, Pass)
        YMAP_FORM_NAME_(ContForm, StatePickup)
        YMAP_FORM_NAME_(ContForm, Mapped)
        YMAP_FORM_NAME_(ContForm, Hand)
    }
    return "?";
}
constexpr const char *form_name(ymap::ListForm f) {
    switch (f) {
        YMAP_FORM_NAME_(ListForm, Pass)
        YMAP_FORM_NAME_(ListForm, Entry)
        YMAP_FORM_NAME_(ListForm, Stitched)
        YMAP_FORM_NAME_(ListForm, Table)
        YMAP_FORM_NAME_(ListForm, Hand)
        YMAP_FORM_NAME_(ListForm, Companion)
    }
    return "?";
}
constexpr const char *form_name(ymap::LeafForm f) {
    switch (f) {
        YMAP_FORM_NAME_(LeafForm, None)
        YMAP_FORM_NAME_(LeafForm, Automatic)
        YMAP_FORM_NAME_(LeafForm, FromXpath)
        YMAP_FORM_NAME_(LeafForm, Refuse)
        YMAP_FORM_NAME_(LeafForm, Table)
        YMAP_FORM_NAME_(LeafForm, Hand)
        YMAP_FORM_NAME_(LeafForm, Companion)
    }
    return "?";
}
#undef YMAP_FORM_NAME_

const char *form_of(const ymap::MapperRow &m) {
    switch (m.kind) {
    case ymap::MapperKind::Container:
        return form_name(m.cont_form);
    case ymap::MapperKind::List:
        return form_name(m.list_form);
    case ymap::MapperKind::Leaf:
        return form_name(m.leaf_form);
    }
    return "?";
}

// What a row writes or reads: its path and module, its pieces, its table or
// the function it hands the node to.
std::string target_of(const ymap::MapperRow &m) {
    std::string out;
    if (m.components != nullptr) {
        for (uint32_t i = 0; i < m.component_count; ++i) {
            out += m.components[i];
        }
    } else if (m.path != nullptr) {
        out = m.path;
    }
    if (m.ns != nullptr) {
        out.append(" @").append(module_of(m.ns));
    }
    if (m.table != nullptr) {
        out.append("table ").append(m.table->name);
    }
    const void *fn = m.companion != nullptr ? address(m.companion)
                     : m.hand != nullptr    ? address(m.hand)
                                            : address(m.hand_count);
    if (fn != nullptr) {
        const std::string name = symbol_of(fn);
        out.append(name == m.name ? "own body" : name);
    }
    for (const auto &[flag, word] : {std::pair{ymap::kTwice, " twice"},
                                     {ymap::kUnlessOperOnly, " unless-oper-only"},
                                     {ymap::kListEntry, " list-entry"},
                                     {ymap::kAugment, " augment"}}) {
        if ((m.flags & flag) != 0) {
            out += word;
        }
    }
    return out.empty() ? "-" : out;
}

// The node word of a walker's name: what follows its level.
std::string_view node_word(std::string_view name) {
    const std::size_t level = name.find("_lvl");
    return level == std::string_view::npos ? name : name.substr(level + 6);
}

class Table {
public:
    Table() {
        for (const ymap::WalkerRow *row : ymap::all_walker_rows()) {
            walkers_[address(row->self)] = row;
        }
        for (const ymap::MapperRow *row : ymap::all_mapper_rows()) {
            mappers_[row->name] = row;
        }
    }

    void roots() {
        std::set<const void *> seen;
        for (const yfw_map_reg_mod_t &tree : ocsysmap::registered_trees()) {
            for (const auto &[fn, tag] : {std::pair{tree.oc_to_native, tree.oc_root},
                                          {tree.native_to_oc, tree.native_root}}) {
                if (fn != nullptr && seen.insert(address(fn)).second) {
                    walk(find(address(fn)), std::string("/") + tag);
                }
            }
        }
    }

    // An augment walker stands under the one walker of its direction that bears
    // the node word of its name (what follows the level); the word alone when
    // more than one does.
    void augments() {
        for (const ymap::WalkerRow *row : ymap::all_walker_rows()) {
            if (row->kind != ymap::WalkerKind::Augment || visited_.contains(row)) {
                continue;
            }
            const std::string_view word = node_word(row->name);
            std::string at = "(" + std::string(word) + ")";
            int found = 0;
            for (const auto &[walker, path] : paths_) {
                if (walker->family == row->family && walker->kind != ymap::WalkerKind::Augment &&
                    node_word(walker->name) == word && ++found == 1) {
                    at = path;
                }
            }
            walk(row, (found == 1 ? at : "(" + std::string(word) + ")") + " +" +
                          std::string(module_of(row->ns)));
        }
    }

    void unwalked() {
        std::set<const void *> children;
        for (const ymap::WalkerRow *row : ymap::all_walker_rows()) {
            for (const ymap::Child &c : row->children) {
                children.insert(address(c.walk));
            }
        }
        for (const ymap::WalkerRow *row : ymap::all_walker_rows()) {
            if (!visited_.contains(row) && !children.contains(address(row->self)) &&
                row->kind != ymap::WalkerKind::AugmentParser) {
                walk(row, "(" + std::string(node_word(row->name)) + ")");
            }
        }
        for (const ymap::MapperRow *row : ymap::all_mapper_rows()) {
            if (!used_.contains(row->name)) {
                line("(no walker)", *row);
            }
        }
    }

    std::string text() const { return out_.str(); }

private:
    const ymap::WalkerRow *find(const void *fn) const {
        const auto found = walkers_.find(fn);
        return found != walkers_.end() ? found->second : nullptr;
    }

    void walk(const ymap::WalkerRow *row, const std::string &path) {
        if (row == nullptr) {
            out_ << path << "  (no walker row)\n";
            return;
        }
        visited_.insert(row);
        paths_.emplace_back(row, path);
        if (row->kind != ymap::WalkerKind::Augment) {
            mapper(path,
                   row->cont_mapper != nullptr ? address(row->cont_mapper) : address(row->mapper));
        }
        for (const ymap::Child &c : row->children) {
            const std::string child = path + "/" + c.tag;
            if (c.walk != nullptr) {
                walk(find(address(c.walk)), child);
            } else {
                mapper(child, address(c.leaf_mapper));
            }
        }
    }

    void mapper(const std::string &path, const void *fn) {
        const std::string name = symbol_of(fn);
        const auto found = mappers_.find(name);
        if (found == mappers_.end()) {
            columns(path, name, "duck", "-"); // a catch-all mapper of the module
            return;
        }
        used_.insert(name);
        line(path, *found->second);
    }

    void line(const std::string &path, const ymap::MapperRow &m) {
        columns(path, m.name, form_of(m), target_of(m));
    }

    // Fixed widths, so that one row's change moves no other line.
    void columns(std::string_view path, std::string_view fn, std::string_view form,
                 std::string_view target) {
        pad(path, 64);
        pad(fn, 80);
        pad(form, 12);
        out_ << target << '\n';
    }
    void pad(std::string_view text, std::size_t width) {
        out_ << text << std::string(text.size() < width ? width - text.size() : 1, ' ');
    }

    std::map<const void *, const ymap::WalkerRow *> walkers_;
    std::map<std::string, const ymap::MapperRow *, std::less<>> mappers_;
    std::set<std::string> used_;
    std::set<const ymap::WalkerRow *> visited_;
    std::vector<std::pair<const ymap::WalkerRow *, std::string>> paths_;
    std::ostringstream out_;
};

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::cerr << "usage: ocsysmap_rowsgen OUTPUT_CPP\n";
        return 2;
    }
    Table table;
    table.roots();
    table.augments();
    table.unwalked();
    std::ofstream out(argv[1]);
    out << "// Made by ocsysmap_rowsgen from the mapping rows when the project is built.\n"
           "#include \"rows_table.hpp\"\n\n"
           "std::string_view ocsysmap::rows_table() {\n    return R\"rows("
        << table.text() << ")rows\";\n}\n";
    return out ? 0 : 1;
}
