// Every OpenConfig answer the library makes must be data of the published
// models: the shipped device answers, and a corpus generated from the
// library's own walker rows that reaches every OpenConfig leaf a native walker
// writes, read as `get` and as `get-config`.
#include <array>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ocsysmap_io.hpp"
#include "registered_trees.hpp"
#include "yang_support.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

namespace yang = ocsysmap::yang;

// Answers the models refuse for reasons outside the tool, each still made so
// that a fix shows here. None is left: the device's deviation module gives
// the "NONE" facility and lets a selector's key stand without config/facility.
struct Known {
    std::string_view path_part;
    std::string_view message_part;
};
constexpr std::array<Known, 0> kKnownRefusals{};
std::set<std::size_t> g_known_seen;

std::vector<yang::Diagnostic> unexplained(const std::vector<yang::Diagnostic> &found) {
    std::vector<yang::Diagnostic> left;
    for (const auto &d : found) {
        bool known = false;
        for (std::size_t i = 0; i < kKnownRefusals.size() && !known; ++i) {
            known = d.path.find(kKnownRefusals[i].path_part) != std::string::npos &&
                    d.message.find(kKnownRefusals[i].message_part) != std::string::npos;
            if (known) {
                g_known_seen.insert(i);
            }
        }
        if (!known) {
            left.push_back(d);
        }
    }
    return left;
}

// Calls `leaf(path, node)` for each node with a value, by schema path
// ("/system/config/hostname").
template <typename F>
void each_leaf(const tidl_yfw_datatree &node, const std::string &above, F leaf) {
    const std::string path = node.tag != nullptr ? above + "/" + node.tag : above;
    if (node.present_value) {
        leaf(path, node);
    }
    for (const auto &c : std::span(node.subtrees, node.present_subtrees ? node.subtree_count : 0)) {
        each_leaf(c, path, leaf);
    }
}

struct Answer {
    cerrno status = YFW_SUCCESS;
    std::size_t leaves = 0;
    std::set<std::string> paths;
    std::vector<yang::Diagnostic> refused; // not explained by kKnownRefusals
};

// Maps a native answer and checks what comes out against the models.
Answer map_answer(std::string_view native_text, uint32_t kind) {
    Answer a;
    if (native_text.empty()) {
        return a;
    }
    yfw::Session session(kind);
    for (tidl_yfw_datatree *root : ocsysmap::parse_input(session.arena(), native_text, true)) {
        if (const auto mapping = ocsysmap::mapping_of(test::trees(), *root);
            mapping && !mapping.from_openconfig) {
            session.note_input(root);
            a.status = mapping.walker(session.ctx(), root, session.output());
        }
    }
    each_leaf(*session.output(), "", [&a](const std::string &path, const tidl_yfw_datatree &) {
        ++a.leaves;
        a.paths.insert(path);
    });
    try {
        yang::Data data = yang::to_lyd(*test::models(), *session.output());
        a.refused = unexplained(
            yang::validate(*test::models(), data,
                           kind == KIND_GET ? yang::Content::operational : yang::Content::config));
    } catch (const yang::YangError &e) {
        a.refused = unexplained(e.diagnostics);
    }
    return a;
}

std::string read_file(const std::filesystem::path &path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

TEST(Conformance, ShippedAnswersAreDataOfTheModels) {
    OCSYSMAP_NEED_MODELS();
    const auto examples = test::source_dir() / "examples";
    std::ifstream job(examples / "main-job.txt");
    std::string kind, file;
    int checked = 0;
    while (job >> kind >> file) {
        if (!file.starts_with("native-")) {
            continue;
        }
        const Answer a =
            map_answer(read_file(examples / file), kind == "get" ? KIND_GET : KIND_GET_CONFIG);
        EXPECT_EQ(a.status, YFW_SUCCESS) << file;
        EXPECT_GT(a.leaves, 0u) << file;
        EXPECT_TRUE(a.refused.empty()) << file << ":\n" << test::describe(a.refused);
        ++checked;
    }
    EXPECT_GE(checked, 15);
}

// ---- The generated corpus ---------------------------------------------------

// A native schema node as the walker rows describe it, with the value chosen
// for a leaf.
struct Shape {
    std::string tag;
    const char *ns = nullptr;
    bool leaf = false;
    std::vector<Shape> children;
    bool key = false; // a list key: kept even where it adds nothing alone
    std::optional<std::string> value;
};

const ymap::WalkerRow *row_of(ymap::WalkerFn fn) {
    for (const ymap::WalkerRow *row : ymap::all_walker_rows()) {
        if (row->self == fn) {
            return row;
        }
    }
    return nullptr;
}

// The node a walker is named for: "ymap_qo_..._lvla_server_groups" gives
// "servergroups", as the name of the walker that another module's augment
// walker joins.
std::string node_of(std::string_view name) {
    const auto at = name.find("_lvl");
    std::string id(at == std::string_view::npos ? name : name.substr(at + 6));
    std::erase(id, '_');
    return id;
}

void grow(Shape &shape, const ymap::WalkerRow &row, int depth) {
    std::vector<std::pair<const ymap::Child *, const char *>> children;
    for (const ymap::Child &c : row.children) {
        children.emplace_back(&c, row.ns);
    }
    for (const ymap::WalkerRow *a : ymap::all_walker_rows()) {
        if (row.augment_parser != nullptr && a->kind == ymap::WalkerKind::Augment &&
            a->family == ymap::Family::Qo && node_of(a->name) == node_of(row.name)) {
            for (const ymap::Child &c : a->children) {
                children.emplace_back(&c, a->ns);
            }
        }
    }
    for (const auto &[cp, ns] : children) {
        const ymap::Child &c = *cp;
        Shape child{c.tag, ns, false, {}, false, std::nullopt};
        const ymap::WalkerRow *r = c.walk != nullptr ? row_of(c.walk) : nullptr;
        if (r == nullptr || r->kind == ymap::WalkerKind::Leaf ||
            r->kind == ymap::WalkerKind::LeafList) {
            child.leaf = c.walk != nullptr || c.leaf_mapper != nullptr;
        } else if (r->kind == ymap::WalkerKind::Container || r->kind == ymap::WalkerKind::List) {
            child.ns = r->ns != nullptr ? r->ns : ns;
            if (depth < 24) {
                grow(child, *r, depth + 1);
            }
        }
        shape.children.push_back(std::move(child));
    }
    // A key the walker reads through its list mapper rather than a child.
    for (const char *key : row.keys) {
        if (key != nullptr && std::none_of(shape.children.begin(), shape.children.end(),
                                           [key](const Shape &s) { return s.tag == key; })) {
            shape.children.push_back({key, row.ns, true, {}, true, std::nullopt});
        }
    }
    // Keys first, so that an entry has them when its other leaves are tried.
    for (Shape &s : shape.children) {
        s.key = s.leaf && ((row.keys[0] != nullptr && s.tag == row.keys[0]) ||
                           (row.keys[1] != nullptr && s.tag == row.keys[1]));
    }
    std::stable_partition(shape.children.begin(), shape.children.end(),
                          [](const Shape &s) { return s.key; });
}

std::string render(const Shape &s, const char *parent_ns) {
    std::string body;
    if (s.leaf) {
        if (!s.value) {
            return {};
        }
        for (char c : *s.value) {
            body += c == '<' ? "&lt;" : c == '&' ? "&amp;" : std::string(1, c);
        }
    } else {
        for (const Shape &c : s.children) {
            body += render(c, s.ns);
        }
        if (body.empty()) {
            return {};
        }
    }
    const std::string ns = parent_ns == nullptr || std::string_view(parent_ns) != s.ns
                               ? " xmlns=\"" + std::string(s.ns) + "\""
                               : std::string();
    return "<" + s.tag + ns + ">" + body + "</" + s.tag + ">";
}

void leaves_of(Shape &s, std::vector<Shape *> &out) {
    if (s.leaf) {
        out.push_back(&s);
    }
    for (Shape &c : s.children) {
        leaves_of(c, out);
    }
}

// Leaf values by tag, as the shipped device answers have them, then values
// of common types; all XML-safe.
std::vector<std::string> candidates(const std::string &tag) {
    static const std::map<std::string, std::set<std::string>> seen = [] {
        std::map<std::string, std::set<std::string>> out;
        for (const auto &entry :
             std::filesystem::directory_iterator(test::source_dir() / "examples")) {
            const std::string name = entry.path().filename().string();
            if (!name.starts_with("native-") || !name.ends_with(".xml")) {
                continue;
            }
            yfw::Arena arena;
            for (auto *root : ocsysmap::parse_input(arena, read_file(entry.path()), false)) {
                each_leaf(*root, "", [&out](const std::string &, const tidl_yfw_datatree &n) {
                    out[n.tag].insert(n.value);
                });
            }
        }
        return out;
    }();
    std::vector<std::string> out;
    if (auto it = seen.find(tag); it != seen.end()) {
        out.assign(it->second.begin(), it->second.end());
    }
    // The last are words of the device that no shipped answer has.
    for (const char *v : {"1", "", "true", "192.0.2.1", "2001:db8::1", "example.net", "commands",
                          "config-commands", "exec", "start-stop"}) {
        out.emplace_back(v);
    }
    return out;
}

TEST(Conformance, GeneratedAnswersReachEveryMappedLeafAndAreDataOfTheModels) {
    OCSYSMAP_NEED_MODELS();
    std::set<std::string> covered;
    for (const auto &tree : test::trees()) {
        const ymap::WalkerRow *root_row = row_of(tree.native_to_oc);
        ASSERT_NE(root_row, nullptr) << tree.label;
        Shape root{tree.native_root, tree.native_namespace, false, {}, false, std::nullopt};
        grow(root, *root_row, 0);
        std::vector<Shape *> leaves;
        leaves_of(root, leaves);
        // Each leaf takes the first value whose answer grows and is accepted.
        // An OpenConfig key may come from a leaf further on, so the leaves
        // left without a value are tried again while that helps.
        std::map<Shape *, std::vector<yang::Diagnostic>> refused;
        for (bool progress = true; progress;) {
            progress = false;
            refused.clear();
            for (Shape *leaf : leaves) {
                if (leaf->value) {
                    continue;
                }
                const std::size_t before = map_answer(render(root, nullptr), KIND_GET).leaves;
                for (const std::string &value : candidates(leaf->tag)) {
                    leaf->value = value;
                    const Answer a = map_answer(render(root, nullptr), KIND_GET);
                    if (a.status == YFW_SUCCESS && (a.leaves > before || leaf->key) &&
                        a.refused.empty()) {
                        progress = true;
                        break;
                    }
                    if (a.leaves > before && !a.refused.empty()) {
                        refused[leaf] = a.refused;
                    }
                    leaf->value.reset();
                }
                if (leaf->value) {
                    refused.erase(leaf);
                }
            }
        }
        for (const auto &[leaf, found] : refused) {
            ADD_FAILURE() << tree.native_root << " .../" << leaf->tag
                          << ": no value maps to data of the models:\n"
                          << test::describe(found);
        }
        const std::string corpus = render(root, nullptr);
        // A get-config answer comes from the configuration modules only.
        const bool oper = std::string_view(tree.native_namespace).ends_with("-oper");
        for (uint32_t kind : {KIND_GET, KIND_GET_CONFIG}) {
            if (kind == KIND_GET_CONFIG && oper) {
                continue;
            }
            const Answer a = map_answer(corpus, kind);
            EXPECT_EQ(a.status, YFW_SUCCESS) << tree.label;
            EXPECT_TRUE(a.refused.empty()) << tree.label << ":\n" << test::describe(a.refused);
            covered.insert(a.paths.begin(), a.paths.end());
        }
    }
    // Every OpenConfig leaf that a native leaf mapper writes is in the corpus.
    std::string missing;
    for (const ymap::MapperRow *row : ymap::all_mapper_rows()) {
        if (row->family == ymap::Family::Qo && row->kind == ymap::MapperKind::Leaf &&
            row->path != nullptr && row->ns != nullptr &&
            std::string_view(row->ns).starts_with("http://openconfig.net/") &&
            !covered.contains(row->path)) {
            missing += std::string(row->path) + "\n";
        }
    }
    EXPECT_EQ(missing, "") << "not reached by the corpus";
    // A known refusal that no longer happens is a stale entry.
    for (std::size_t i = 0; i < kKnownRefusals.size(); ++i) {
        EXPECT_TRUE(g_known_seen.contains(i))
            << "no longer refused: " << kKnownRefusals[i].path_part;
    }
}

} // namespace
