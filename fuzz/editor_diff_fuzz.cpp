// The stand-in's path adds against a reference: the same adds of the
// library's own target paths (cut short at times, or ending in a list key)
// go to an output document through yfw_map_datatree_add_path_flagged and to
// a naive editor of plain nodes that scans for everything the stand-in keeps
// in caches, memos and key indexes. After every add both trees must be equal
// and the add must answer the same node; the current list entries each keeps
// show in where the next adds land.
//
// Input layout, four bytes an add (at most kMaxAdds):
//   two bytes  the path: from 0x8000 one of every path the mapper and walker
//              rows name, else the path of an earlier add (so that adds meet)
//   one byte   bits 0-2 segments cut from its end, 3 the list-entry flag,
//              4-7 the value (below 6 none, else one of a few that collide)
//   one byte   bit 0 the namespace of created nodes
// Set EDITOR_DIFF_VERBOSE to print each add.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "schema_words.hpp"
#include "yfw/standin.hpp"

namespace {

constexpr std::size_t kMaxAdds = 64;
constexpr std::size_t kNone = static_cast<std::size_t>(-1);
constexpr std::array<const char *, 2> kNamespaces = {"urn:fuzz:a", "urn:fuzz:b"};
constexpr std::array<const char *, 10> kValues = {"1", "2", "a", "b", "", "1", "2", "x", "a", "3"};

std::vector<std::string> split(std::string_view path) {
    std::vector<std::string> out;
    std::size_t prefix = 0;
    for (std::size_t i = 0; i <= path.size(); ++i) {
        const char c = i < path.size() ? path[i] : '/';
        if (c == ':') {
            prefix = i + 1;
        } else if (c == '/') {
            if (i > prefix) {
                out.emplace_back(path.substr(prefix, i - prefix));
            }
            prefix = i + 1;
        }
    }
    return out;
}

std::string join(std::span<const std::string> segments) {
    std::string out;
    for (const std::string &s : segments) {
        out += '/' + s;
    }
    return out;
}

// Every path the rows add by, each of its prefixes, and each list key below
// a list prefix, all without predicates.
const std::vector<std::string> &paths() {
    static const std::vector<std::string> all = [] {
        std::vector<std::string> found;
        auto add = [&](const char *text) {
            if (text == nullptr) {
                return;
            }
            std::string plain;
            for (int depth = 0; const char c : std::string_view(text)) {
                depth += c == '[' ? 1 : c == ']' ? -1 : 0;
                if (depth == 0 && c != ']') {
                    plain += c;
                }
            }
            const std::vector<std::string> segments = split(plain);
            for (std::size_t n = 1; n <= segments.size(); ++n) {
                const std::string prefix = join(std::span(segments).first(n));
                fuzzwords::detail::add_unique(found, prefix);
                for (std::string_view key : yfw::list_keys(prefix)) {
                    fuzzwords::detail::add_unique(found, prefix + "/" + std::string(key));
                }
            }
        };
        for (const ymap::MapperRow *row : ymap::all_mapper_rows()) {
            add(row->path);
        }
        for (const ymap::WalkerRow *row : ymap::all_walker_rows()) {
            add(row->list_path);
        }
        return found;
    }();
    return all;
}

// ---- The reference ----------------------------------------------------------

struct RNode {
    std::string tag;
    std::string ns;
    std::optional<std::string> value;
    std::vector<RNode> kids;
    // The current entry of each list met below this node (kNone: none yet).
    std::map<std::string, std::size_t, std::less<>> current;
};

class Reference {
public:
    // The add; answers the positions that lead from the root to the node.
    std::vector<std::size_t> add(std::span<const std::string> segments, const char *ns,
                                 const char *value, bool list_entry) {
        ns_ = ns;
        const std::size_t count = segments.size();
        std::vector<std::vector<std::string_view>> keys_at(count);
        std::string schema;
        for (std::size_t i = 0; i < count; ++i) {
            schema += '/' + segments[i];
            for (std::string_view k : yfw::list_keys(schema)) {
                keys_at[i].push_back(k);
            }
        }
        const bool ends_in_key = count >= 2 && keys_at[count - 1].empty() &&
                                 std::find(keys_at[count - 2].begin(), keys_at[count - 2].end(),
                                           segments.back()) != keys_at[count - 2].end();
        std::vector<std::size_t> at;
        RNode *node = &root_;
        RNode *parent = nullptr;
        bool made_leaf = false;
        for (std::size_t i = 0; i < count; ++i) {
            const std::string &segment = segments[i];
            const bool last = i + 1 == count;
            if (!keys_at[i].empty()) {
                const std::size_t entry =
                    current_entry(*node, segment, keys_at[i], last && list_entry);
                at.push_back(entry);
                parent = node;
                node = &node->kids[entry];
                continue;
            }
            if (last && ends_in_key) {
                const std::size_t entry = at.back();
                at.pop_back();
                return set_key(*parent, at, entry, segments.first(i), keys_at[i - 1], segment,
                               value);
            }
            std::size_t next = kNone;
            if (last && list_entry && value != nullptr) {
                next = find(*node, segment, value);
                if (next == kNone) {
                    next = new_child(*node, segment, ns_, value);
                    made_leaf = true;
                }
            } else if ((next = find(*node, segment)) == kNone) {
                next = new_child(*node, segment, ns_, last ? value : nullptr);
                made_leaf = last;
            }
            at.push_back(next);
            parent = node;
            node = &node->kids[next];
        }
        if (value != nullptr && !made_leaf) {
            node->value = value;
        }
        return at;
    }

    const RNode &root() const { return root_; }

private:
    static std::size_t find(const RNode &parent, std::string_view tag) {
        for (std::size_t i = 0; i < parent.kids.size(); ++i) {
            if (parent.kids[i].tag == tag) {
                return i;
            }
        }
        return kNone;
    }
    static std::size_t find(const RNode &parent, std::string_view tag, std::string_view value) {
        for (std::size_t i = 0; i < parent.kids.size(); ++i) {
            if (parent.kids[i].tag == tag && parent.kids[i].value == value) {
                return i;
            }
        }
        return kNone;
    }
    static std::size_t new_child(RNode &parent, std::string_view tag, std::string_view ns,
                                 const char *value) {
        RNode &child = parent.kids.emplace_back();
        child.tag = tag;
        child.ns = ns;
        if (value != nullptr) {
            child.value = value;
        }
        return parent.kids.size() - 1;
    }

    // A list is first met with its last entry current; an array with no
    // entries holds no list yet.
    static std::size_t *list_state(RNode &parent, std::string_view tag) {
        if (parent.kids.empty()) {
            return nullptr;
        }
        auto it = parent.current.find(tag);
        if (it == parent.current.end()) {
            std::size_t last = kNone;
            for (std::size_t i = 0; i < parent.kids.size(); ++i) {
                if (parent.kids[i].tag == tag) {
                    last = i;
                }
            }
            it = parent.current.emplace(std::string(tag), last).first;
        }
        return &it->second;
    }

    static std::optional<std::vector<std::string>>
    key_values(const RNode &entry, std::span<const std::string_view> keys) {
        std::vector<std::string> values;
        for (std::string_view key : keys) {
            const std::size_t leaf = find(entry, key);
            if (leaf == kNone || !entry.kids[leaf].value) {
                return std::nullopt;
            }
            values.push_back(*entry.kids[leaf].value);
        }
        return values;
    }

    static std::size_t entry_with(const RNode &parent, std::string_view tag,
                                  std::span<const std::string_view> keys,
                                  const std::vector<std::string> &values, std::size_t besides) {
        for (std::size_t i = 0; i < parent.kids.size(); ++i) {
            if (i != besides && parent.kids[i].tag == tag &&
                key_values(parent.kids[i], keys) == values) {
                return i;
            }
        }
        return kNone;
    }

    std::size_t current_entry(RNode &parent, std::string_view tag,
                              std::span<const std::string_view> keys, bool fresh) {
        if (std::size_t *current = list_state(parent, tag); current && *current != kNone) {
            if (!fresh || !key_values(parent.kids[*current], keys)) {
                return *current;
            }
        }
        const std::size_t made = new_child(parent, tag, ns_, nullptr);
        *list_state(parent, tag) = made;
        return made;
    }

    static void remove(RNode &parent, std::size_t pos) {
        parent.kids.erase(parent.kids.begin() + static_cast<std::ptrdiff_t>(pos));
        for (auto &[tag, current] : parent.current) {
            if (current == pos) {
                current = kNone;
            } else if (current != kNone && current > pos) {
                --current;
            }
        }
    }

    std::vector<std::size_t> set_key(RNode &parent, std::vector<std::size_t> at, std::size_t entry,
                                     std::span<const std::string> list_path,
                                     std::span<const std::string_view> keys, std::string_view key,
                                     const char *value) {
        std::size_t &current = *list_state(parent, list_path.back());
        RNode *node = &parent.kids[entry];
        std::size_t leaf = find(*node, key);
        if (value == nullptr) {
            at.push_back(entry);
            at.push_back(leaf != kNone ? leaf : new_child(*node, key, ns_, nullptr));
            return at;
        }
        std::vector<std::string> values;
        bool complete = true;
        for (std::string_view k : keys) {
            const std::size_t held = k == key ? kNone : find(*node, k);
            if (k == key) {
                values.emplace_back(value);
            } else if (held != kNone && node->kids[held].value) {
                values.push_back(*node->kids[held].value);
            } else {
                complete = false;
                break;
            }
        }
        const bool was_complete = complete && leaf != kNone && node->kids[leaf].value;
        if (was_complete && *node->kids[leaf].value == value) {
            at.push_back(entry);
            at.push_back(leaf);
            return at;
        }
        if (was_complete) {
            // Another value for a complete key is another entry, with the other keys kept.
            std::vector<RNode> kept;
            for (std::string_view other : keys) {
                if (other != key) {
                    const RNode &held = node->kids[find(*node, other)];
                    kept.push_back({held.tag, held.ns, held.value, {}, {}});
                }
            }
            entry = new_child(parent, list_path.back(), ns_, nullptr);
            node = &parent.kids[entry];
            for (RNode &other : kept) {
                node->kids.push_back(std::move(other));
            }
            leaf = new_child(*node, key, ns_, value);
        } else if (leaf == kNone) {
            leaf = new_child(*node, key, ns_, value);
        } else {
            node->kids[leaf].value = value;
        }
        current = entry;
        std::size_t kept_entry =
            complete ? entry_with(parent, list_path.back(), keys, values, entry) : kNone;
        if (kept_entry == kNone) {
            at.push_back(entry);
            at.push_back(leaf);
            return at;
        }
        // The keys now equal an earlier entry's: that entry takes this one in.
        std::string schema = join(list_path);
        RNode from = std::move(parent.kids[entry]);
        merge(parent.kids[kept_entry], from, schema);
        remove(parent, entry);
        if (kept_entry > entry) {
            --kept_entry;
        }
        *list_state(parent, list_path.back()) = kept_entry;
        at.push_back(kept_entry);
        at.push_back(find(parent.kids[kept_entry], key));
        return at;
    }

    static std::size_t count(const RNode &parent, std::string_view tag) {
        return static_cast<std::size_t>(std::count_if(
            parent.kids.begin(), parent.kids.end(), [&](const RNode &n) { return n.tag == tag; }));
    }

    void merge(RNode &into, RNode &from, std::string &schema) {
        const std::size_t length = schema.size();
        for (RNode &child : from.kids) {
            schema += '/' + child.tag;
            const auto keys = yfw::list_keys(schema);
            std::size_t target = kNone;
            if (!keys.empty()) {
                const auto values = key_values(child, keys);
                if (values && list_state(into, child.tag) != nullptr) {
                    target = entry_with(into, child.tag, keys, *values, kNone);
                }
                if (target == kNone) {
                    into.kids.push_back(child);
                    if (values) {
                        list_state(into, child.tag);
                    }
                }
            } else {
                if (!child.value) {
                    target = find(into, child.tag);
                } else if ((target = find(into, child.tag, *child.value)) == kNone &&
                           count(into, child.tag) == 1 && count(from, child.tag) == 1) {
                    target = find(into, child.tag);
                }
                if (target == kNone) {
                    into.kids.push_back(child);
                }
            }
            if (target != kNone) {
                if (child.value) {
                    into.kids[target].value = child.value;
                }
                merge(into.kids[target], child, schema);
            }
            schema.resize(length);
        }
    }

    RNode root_;
    const char *ns_ = nullptr;
};

// ---- The comparison ---------------------------------------------------------

[[noreturn]] void broken(const std::string &where, const char *what) {
    std::fprintf(stderr, "editor_diff_fuzz: %s: %s\n", where.c_str(), what);
    std::abort();
}

void compare(const tidl_yfw_datatree &real, const RNode &ref, const std::string &where) {
    const std::string_view tag = real.tag != nullptr ? real.tag : "";
    if (tag != ref.tag) {
        broken(where, "tags differ");
    }
    if ((real.namespace_ != nullptr ? std::string_view(real.namespace_) : "") != ref.ns) {
        broken(where, "namespaces differ");
    }
    if ((real.value != nullptr) != ref.value.has_value() ||
        (real.value != nullptr) != (real.present_value != 0) ||
        (real.value != nullptr && *ref.value != real.value)) {
        broken(where, "values differ");
    }
    if (real.subtree_count != ref.kids.size()) {
        broken(where, "child counts differ");
    }
    for (std::size_t i = 0; i < ref.kids.size(); ++i) {
        compare(real.subtrees[i], ref.kids[i],
                where + "/" + ref.kids[i].tag + "#" + std::to_string(i));
    }
}

std::vector<std::size_t> positions_of(const tidl_yfw_datatree *node,
                                      const tidl_yfw_datatree *root) {
    std::vector<std::size_t> out;
    while (node != root && node != nullptr) {
        const tidl_yfw_datatree *parent = yfw::parent_of(node);
        if (parent == nullptr) {
            break;
        }
        out.insert(out.begin(), static_cast<std::size_t>(node - parent->subtrees));
        node = parent;
    }
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const auto &all = paths();
    const bool verbose = std::getenv("EDITOR_DIFF_VERBOSE") != nullptr;
    if (static bool listed = false; verbose && !listed) {
        listed = true;
        for (std::size_t i = 0; i < all.size(); ++i) {
            std::fprintf(stderr, "path %zu %s\n", i, all[i].c_str());
        }
    }
    yfw::Session session(KIND_GET);
    tidl_yfw_datatree *out = session.output();
    Reference reference;
    std::vector<std::size_t> used;
    for (std::size_t op = 0; op < kMaxAdds && (op + 1) * 4 <= size; ++op) {
        const uint8_t *b = data + op * 4;
        const std::size_t chosen = (std::size_t{b[0]} << 8) | b[1];
        const std::size_t index = chosen >= 0x8000 || used.empty() ? (chosen & 0x7fff) % all.size()
                                                                   : used[chosen % used.size()];
        used.push_back(index);
        const std::string &path = all[index];
        std::vector<std::string> segments = split(path);
        const std::size_t cut = std::min<std::size_t>(b[2] & 7, segments.size() - 1);
        segments.resize(segments.size() - cut);
        // Cut paths are texts of their own: the stand-in remembers paths by pointer.
        const std::string cut_text = cut == 0 ? std::string() : join(segments);
        const std::string &text = cut == 0 ? path : cut_text;
        const bool list_entry = (b[2] & 8) != 0;
        const unsigned pick = b[2] >> 4;
        const char *value = pick < 6 ? nullptr : kValues[(pick - 6 + b[3]) % kValues.size()];
        const char *ns = kNamespaces[b[3] & 1];
        if (verbose) {
            std::fprintf(stderr, "add %s value %s list_entry %d ns %s\n", text.c_str(),
                         value != nullptr ? value : "(none)", list_entry ? 1 : 0, ns);
        }
        tidl_yfw_datatree *placed = nullptr;
        if (yfw_map_datatree_add_path_flagged(session.ctx(), out, text.c_str(), ns, value, nullptr,
                                              &placed, list_entry ? 1 : 0, 0) != YFW_SUCCESS) {
            broken(text, "the add failed");
        }
        const std::vector<std::size_t> expected = reference.add(segments, ns, value, list_entry);
        compare(*out, reference.root(), "add " + std::to_string(op));
        if (positions_of(placed, out) != expected) {
            broken("add " + std::to_string(op), "the adds answer different nodes");
        }
    }
    return 0;
}
