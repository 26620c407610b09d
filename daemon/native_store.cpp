// The native store: edits and reads over plain trees, and the store's file.
#include "native_store.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <optional>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "io/io_detail.hpp"
#include "io/ocsysmap_io.hpp"

namespace ocsysmapd {
namespace {

using ocsysmap::detail::children_of;

// A node without an operation under default-operation none.
constexpr int32_t kNoOperation = -1;
constexpr int32_t kCreate = 2;

std::string text_of(const char *text) {
    return text != nullptr ? text : std::string();
}

std::string namespace_of(const tidl_yfw_datatree &node, std::string_view parent_ns) {
    return node.namespace_ != nullptr ? std::string(node.namespace_) : std::string(parent_ns);
}

const tidl_yfw_datatree *child_named(const tidl_yfw_datatree &node, std::string_view tag) {
    for (const tidl_yfw_datatree &c : children_of(node)) {
        if (c.tag != nullptr && c.tag == tag) {
            return &c;
        }
    }
    return nullptr;
}

const Node *child_named(const Node &node, std::string_view tag) {
    auto it = std::find_if(node.children.begin(), node.children.end(),
                           [tag](const Node &c) { return c.tag == tag; });
    return it == node.children.end() ? nullptr : &*it;
}

// Applies one edit subtree below `siblings`, keeping the schema path (for
// list keys) and the path shown in errors, with key predicates.
class Editor {
public:
    explicit Editor(DefaultOperation default_op)
        : default_op_(default_op == DefaultOperation::merge ? OP_MERGE : kNoOperation) {}

    void apply_roots(Forest &store, std::span<const tidl_yfw_datatree> edit) {
        for (const tidl_yfw_datatree &root : edit) {
            apply(store, root, default_op_, {}, {}, {});
        }
    }

private:
    struct Place {
        std::string ns;
        std::string schema_path;
        std::string shown_path;
        std::span<const std::string_view> keys;
        bool keys_complete = true;
    };

    Place place_of(const tidl_yfw_datatree &e, std::string_view parent_ns,
                   const std::string &schema_path, const std::string &shown_path) const {
        if (e.tag == nullptr) {
            throw EditError("malformed-message", shown_path, "a node of the edit has no tag");
        }
        Place p;
        p.ns = namespace_of(e, parent_ns);
        p.schema_path = schema_path + "/" + e.tag;
        p.shown_path = shown_path + "/" + e.tag;
        p.keys = yfw::list_keys(p.schema_path);
        for (std::string_view key : p.keys) {
            const tidl_yfw_datatree *k = child_named(e, key);
            if (k == nullptr || !k->present_value) {
                p.keys_complete = false;
                continue;
            }
            p.shown_path.append("[")
                .append(key)
                .append("='")
                .append(text_of(k->value))
                .append("']");
        }
        return p;
    }

    // An entry that agrees with every key the edit names.
    static bool matches(const Node &n, const tidl_yfw_datatree &e, const Place &p) {
        if (n.tag != e.tag || n.ns != p.ns) {
            return false;
        }
        return std::all_of(p.keys.begin(), p.keys.end(), [&](std::string_view key) {
            const tidl_yfw_datatree *k = child_named(e, key);
            if (k == nullptr || !k->present_value) {
                return true;
            }
            const Node *have = child_named(n, key);
            return have != nullptr && have->value == text_of(k->value);
        });
    }

    static std::ptrdiff_t count_matches(const std::vector<Node> &siblings,
                                        const tidl_yfw_datatree &e, const Place &p) {
        return std::count_if(siblings.begin(), siblings.end(),
                             [&](const Node &n) { return matches(n, e, p); });
    }

    static bool is_key(const Place &p, const tidl_yfw_datatree &c) {
        return std::find(p.keys.begin(), p.keys.end(), text_of(c.tag)) != p.keys.end();
    }

    static bool writes(const tidl_yfw_datatree &c) {
        return c.present_operation && c.operation != OP_REMOVE && c.operation != OP_DELETE;
    }

    void apply(std::vector<Node> &siblings, const tidl_yfw_datatree &e, int32_t inherited,
               std::string_view parent_ns, const std::string &schema_path,
               const std::string &shown_path) {
        const Place p = place_of(e, parent_ns, schema_path, shown_path);
        const int32_t op = e.present_operation ? e.operation : inherited;
        auto found = std::find_if(siblings.begin(), siblings.end(),
                                  [&](const Node &n) { return matches(n, e, p); });
        const auto children = children_of(e);
        switch (op) {
        case OP_DELETE:
            if (found == siblings.end()) {
                throw EditError("data-missing", p.shown_path,
                                "delete of " + p.shown_path + ", which does not exist");
            }
            // A client's delete names one entry: without its keys, among
            // several, it must not take them all.
            if (!p.keys_complete && count_matches(siblings, e, p) > 1) {
                throw EditError("missing-element", p.shown_path,
                                "delete of " + p.shown_path +
                                    ", which names several entries without their keys");
            }
            [[fallthrough]];
        case OP_REMOVE:
            // A list entry without all its keys names every entry it agrees with.
            std::erase_if(siblings, [&](const Node &n) { return matches(n, e, p); });
            // The walkers write a replace as the removal of the node holding
            // the new content: below it the removals are the old content's,
            // the rest the new, which builds the node anew. A key written
            // by the new content keeps the entry even with nothing else.
            if (!children.empty()) {
                build(siblings, e, p, OP_MERGE,
                      std::any_of(children.begin(), children.end(),
                                  [&](const auto &c) { return is_key(p, c) && writes(c); }),
                      true);
            }
            return;
        case kCreate:
            if (found != siblings.end()) {
                throw EditError("data-exists", p.shown_path,
                                "create of " + p.shown_path + ", which exists");
            }
            break;
        case OP_REPLACE:
            if (found != siblings.end()) {
                siblings.erase(found);
                found = siblings.end();
            }
            break;
        case OP_MERGE:
        case kNoOperation:
            break;
        default:
            throw EditError("operation-not-supported", p.shown_path,
                            "operation " + std::to_string(op) + " on " + p.shown_path);
        }
        const int32_t below = op == kNoOperation ? kNoOperation : OP_MERGE;
        if (found == siblings.end()) {
            // A leaf, an empty container or an entry named by its keys alone
            // is made for itself; anything else for what it holds.
            build(siblings, e, p, below,
                  op != kNoOperation && std::all_of(children.begin(), children.end(),
                                                    [&](const auto &c) { return is_key(p, c); }));
            return;
        }
        // Only a delete may name entries by some of their keys; anything else
        // without all of them must agree with exactly one entry.
        if (!p.keys_complete && count_matches(siblings, e, p) != 1) {
            throw missing_keys(p);
        }
        merge_into(*found, e, below, below != kNoOperation || e.present_operation, p);
        // A container emptied by the deletes below it goes too.
        if (found->children.empty() && !found->has_value && !children.empty()) {
            siblings.erase(found);
        }
    }

    static EditError missing_keys(const Place &p) {
        return EditError("missing-element", p.shown_path,
                         p.shown_path + " does not name all keys of its list");
    }

    // A node the store does not hold: its keys as the edit names them, then
    // what the edit writes below it with `below` as the inherited operation.
    // It is kept when it then holds more than its keys, or when `wanted`;
    // removals alone make nothing. A node that takes the place of one just
    // `removed` skips the deletes below it: they named the old content.
    void build(std::vector<Node> &siblings, const tidl_yfw_datatree &e, const Place &p,
               int32_t below, bool wanted, bool removed = false) {
        Node fresh{e.tag, p.ns, {}, false, {}};
        for (const tidl_yfw_datatree &c : children_of(e)) {
            if (is_key(p, c) && c.present_value) {
                fresh.children.push_back(
                    {c.tag, namespace_of(c, p.ns), text_of(c.value), true, {}});
            }
        }
        const std::size_t keys = fresh.children.size();
        merge_into(fresh, e, below, below != kNoOperation || e.present_operation, p, true, removed);
        if (fresh.children.size() == keys && !wanted) {
            return;
        }
        if (!p.keys_complete) {
            throw missing_keys(p);
        }
        siblings.push_back(std::move(fresh));
    }

    // `writes` tells whether the node's own value is written. A node of the
    // edit with neither value nor children is an empty leaf when it stays
    // without children, as the store's file reads it back. `skip_keys` when
    // the keys are in place already.
    void merge_into(Node &n, const tidl_yfw_datatree &e, int32_t below, bool writes, const Place &p,
                    bool skip_keys = false, bool skip_deletes = false) {
        if (writes && (e.present_value || (children_of(e).empty() && n.children.empty()))) {
            n.value = text_of(e.value);
            n.has_value = true;
        }
        for (const tidl_yfw_datatree &c : children_of(e)) {
            if ((!skip_keys || !is_key(p, c)) &&
                (!skip_deletes || !c.present_operation || c.operation != OP_DELETE)) {
                apply(n.children, c, below, p.ns, p.schema_path, p.shown_path);
            }
        }
        if (!n.children.empty()) {
            n.value.clear();
            n.has_value = false;
        }
    }

    int32_t default_op_;
};

bool same_namespace(const std::string &filter_ns, const std::string &data_ns) {
    return filter_ns.empty() || filter_ns == data_ns;
}

bool is_content_match(const tidl_yfw_datatree &f) {
    return children_of(f).empty() && f.present_value;
}

std::optional<Node> select_instance(const Node &d, const tidl_yfw_datatree &f,
                                    const std::string &f_ns, const std::string &schema_path);

// The selected copies of `data` for the filter nodes `filters` of one level.
std::vector<Node> select_level(const std::vector<Node> &data,
                               std::span<const tidl_yfw_datatree> filters,
                               std::string_view parent_ns, const std::string &parent_path) {
    std::vector<Node> out;
    for (const Node &d : data) {
        for (const tidl_yfw_datatree &f : filters) {
            const std::string f_ns = namespace_of(f, parent_ns);
            if (f.tag == nullptr || d.tag != f.tag || !same_namespace(f_ns, d.ns)) {
                continue;
            }
            if (is_content_match(f)) {
                if (d.has_value && d.value == text_of(f.value)) {
                    out.push_back(d);
                    break;
                }
                continue;
            }
            if (children_of(f).empty()) {
                out.push_back(d);
                break;
            }
            if (auto picked = select_instance(d, f, f_ns, parent_path + "/" + d.tag)) {
                out.push_back(std::move(*picked));
                break;
            }
        }
    }
    return out;
}

// An instance passes when all content-match children agree; then it holds
// them and what the other children select, or everything when there are none.
// A list entry keeps its keys, first, so that the answer tells entries apart.
std::optional<Node> select_instance(const Node &d, const tidl_yfw_datatree &f,
                                    const std::string &f_ns, const std::string &schema_path) {
    // A list entry named by its keys alone is the whole entry: that is how
    // the mapping asks for a list's entries.
    const auto keys = yfw::list_keys(schema_path);
    bool has_content_match = false;
    bool has_others = false;
    for (const tidl_yfw_datatree &c : children_of(f)) {
        if (!is_content_match(c)) {
            has_others =
                has_others || std::find(keys.begin(), keys.end(), text_of(c.tag)) == keys.end();
            continue;
        }
        has_content_match = true;
        const Node *have = child_named(d, text_of(c.tag));
        if (have == nullptr || !have->has_value || have->value != text_of(c.value)) {
            return std::nullopt;
        }
    }
    if (!has_others) {
        return d;
    }
    Node out{d.tag, d.ns, d.value, d.has_value,
             select_level(d.children, children_of(f), f_ns, schema_path)};
    if (out.children.empty() && !has_content_match) {
        return std::nullopt;
    }
    for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
        const Node *have = child_named(d, *key);
        if (have != nullptr && child_named(out, *key) == nullptr) {
            out.children.insert(out.children.begin(), *have);
        }
    }
    return out;
}

void fill(yfw::Arena &arena, tidl_yfw_datatree &t, const Node &n) {
    t.tag = arena.text(n.tag);
    t.namespace_ = arena.text(n.ns);
    if (n.has_value) {
        t.value = arena.copy(n.value);
        t.present_value = 1;
    }
    for (const Node &c : n.children) {
        fill(arena, *arena.append_child(&t), c);
    }
}

[[noreturn]] void fail(const std::string &what, const std::filesystem::path &path) {
    throw std::system_error(errno, std::generic_category(), what + " " + path.string());
}

// Closes the descriptor on every way out.
class Fd {
public:
    explicit Fd(int fd) : fd_(fd) {}
    ~Fd() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    Fd(const Fd &) = delete;
    Fd &operator=(const Fd &) = delete;
    int get() const { return fd_; }
    int release() { return std::exchange(fd_, -1); }

private:
    int fd_;
};

void write_all(int fd, std::string_view text, const std::filesystem::path &path) {
    while (!text.empty()) {
        const ssize_t n = ::write(fd, text.data(), text.size());
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            fail("cannot write", path);
        }
        text.remove_prefix(static_cast<std::size_t>(n));
    }
}

} // namespace

Node to_node(const tidl_yfw_datatree &tree, std::string_view parent_ns) {
    Node n{text_of(tree.tag),
           namespace_of(tree, parent_ns),
           text_of(tree.value),
           tree.present_value != 0,
           {}};
    for (const tidl_yfw_datatree &c : children_of(tree)) {
        n.children.push_back(to_node(c, n.ns));
    }
    return n;
}

tidl_yfw_datatree *to_document(yfw::Arena &arena, const Forest &forest) {
    tidl_yfw_datatree *document = arena.new_root();
    for (const Node &root : forest) {
        fill(arena, *arena.append_child(document), root);
    }
    return document;
}

Undo apply_edit(Forest &store, std::span<const tidl_yfw_datatree> edit,
                DefaultOperation default_op) {
    // Only the roots the edit names are copied and changed: the cost of an
    // edit is that of what it touches, not of the whole store.
    const auto same = [](const std::string &tag, const std::string &ns) {
        return [&](const Node &n) { return n.tag == tag && n.ns == ns; };
    };
    std::vector<RootUndo> staged; // the new roots, put in place at the end
    Editor editor(default_op);
    for (const tidl_yfw_datatree &e : edit) {
        const std::string tag = text_of(e.tag);
        const std::string ns = namespace_of(e, {});
        auto it = std::find_if(staged.begin(), staged.end(),
                               [&](const RootUndo &r) { return r.tag == tag && r.ns == ns; });
        if (it == staged.end()) {
            std::vector<Node> root;
            if (auto have = std::find_if(store.begin(), store.end(), same(tag, ns));
                have != store.end()) {
                root.push_back(*have);
            }
            it = staged.insert(staged.end(), {tag, ns, 0, std::move(root)});
        }
        editor.apply_roots(it->root, std::span(&e, 1));
    }
    for (RootUndo &r : staged) {
        auto have = std::find_if(store.begin(), store.end(), same(r.tag, r.ns));
        r.index = static_cast<std::size_t>(have - store.begin());
        if (have == store.end() && !r.root.empty()) {
            store.push_back(std::move(r.root.front()));
            r.root.clear();
        } else if (have != store.end() && r.root.empty()) {
            r.root.push_back(std::move(*have));
            store.erase(have);
        } else if (have != store.end()) {
            std::swap(*have, r.root.front());
        }
    }
    return staged;
}

void revert(Forest &store, Undo undo) {
    for (auto r = undo.rbegin(); r != undo.rend(); ++r) {
        auto have = std::find_if(store.begin(), store.end(),
                                 [&](const Node &n) { return n.tag == r->tag && n.ns == r->ns; });
        if (have != store.end() && r->root.empty()) {
            store.erase(have);
        } else if (have != store.end()) {
            *have = std::move(r->root.front());
        } else if (!r->root.empty()) {
            store.insert(store.begin() + static_cast<std::ptrdiff_t>(r->index),
                         std::move(r->root.front()));
        }
    }
}

Forest select(const Forest &store, std::span<const tidl_yfw_datatree> request) {
    return select_level(store, request, {}, {});
}

void check_private(const std::filesystem::path &path, std::string_view what) {
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0) {
        return;
    }
    if ((st.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
        std::array<char, 8> mode{};
        std::snprintf(mode.data(), mode.size(), "%04o", static_cast<unsigned>(st.st_mode & 07777));
        throw std::runtime_error(std::string(what) + " " + path.string() + " is writable by " +
                                 ((st.st_mode & S_IWOTH) != 0 ? "others" : "its group") +
                                 " (mode " + mode.data() +
                                 "): make it the owner's alone, as "
                                 "with chmod 600");
    }
}

Forest StoreFile::load() const {
    check_private(path_, "the store");
    std::error_code ec;
    if (!std::filesystem::exists(path_, ec)) {
        return {};
    }
    std::ifstream in(path_, std::ios::binary);
    if (!in) {
        fail("cannot read", path_);
    }
    const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    yfw::Arena arena;
    std::vector<tidl_yfw_datatree *> roots;
    try {
        roots = ocsysmap::parse_input(arena, text, false);
    } catch (const ocsysmap::ParseError &e) {
        throw std::runtime_error(path_.string() + ": " + e.what());
    }
    Forest forest;
    for (const tidl_yfw_datatree *root : roots) {
        forest.push_back(to_node(*root));
    }
    return forest;
}

void StoreFile::save(const Forest &forest) const {
    yfw::Arena arena;
    const std::string text = ocsysmap::to_xml(*to_document(arena, forest));
    std::filesystem::path temporary = path_;
    temporary += ".new";
    {
        Fd fd(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
        // A temporary file left by a stop keeps its mode through O_TRUNC.
        if (fd.get() < 0 || ::fchmod(fd.get(), S_IRUSR | S_IWUSR) != 0) {
            fail("cannot create", temporary);
        }
        write_all(fd.get(), text, temporary);
        if (::fsync(fd.get()) != 0 || ::close(fd.release()) != 0) {
            fail("cannot write", temporary);
        }
    }
    if (::rename(temporary.c_str(), path_.c_str()) != 0) {
        fail("cannot rename onto", path_);
    }
    // The rename lasts only once the directory that holds it is on disk.
    const std::filesystem::path dir = path_.has_parent_path() ? path_.parent_path() : ".";
    Fd dir_fd(::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dir_fd.get() < 0 || ::fsync(dir_fd.get()) != 0) {
        fail("cannot sync", dir);
    }
}

} // namespace ocsysmapd
