#include "editor.hpp"

#include <algorithm>
#include <cstring>

namespace yfw::detail {
namespace {

// Below this many children a scan beats keeping an index.
constexpr uint32_t kIndexedWidth = 16;

uint32_t position(const tidl_yfw_datatree *parent, const tidl_yfw_datatree *node) {
    return static_cast<uint32_t>(node - parent->subtrees);
}

std::string tag_value_key(std::string_view tag, std::string_view value) {
    std::string key(tag);
    key += '\0';
    key += value;
    return key;
}

bool has_tag(const tidl_yfw_datatree &node, std::string_view tag) {
    return is_text(node.tag, tag);
}

// The array of `kids`, wide enough to want a tag index, with its index.
Block *wide_block(std::span<tidl_yfw_datatree> kids) {
    Block *block = block_starting_at(kids.data());
    if (block == nullptr || block->tag_indexed())
        return block;
    Lookups &lookups = block->lookup();
    for (uint32_t i = 0; i < kids.size(); ++i) {
        if (kids[i].tag == nullptr)
            continue;
        lookups.first_by_tag.try_emplace(kids[i].tag, i);
        if (kids[i].value != nullptr)
            lookups.by_tag_value.try_emplace(tag_value_key(kids[i].tag, kids[i].value), i);
    }
    lookups.tag_index_built = true;
    return block;
}

// The array of `parent` with its tag index, when it is wide enough to want one.
inline Block *indexed_block(const tidl_yfw_datatree *parent) {
    auto kids = children(parent);
    return kids.size() < kIndexedWidth ? nullptr : wide_block(kids);
}

std::size_t count_tag(const tidl_yfw_datatree *parent, std::string_view tag) {
    auto kids = children(parent);
    return static_cast<std::size_t>(
        std::ranges::count_if(kids, [tag](const auto &kid) { return has_tag(kid, tag); }));
}

// Segment texts, one copy each for the life of the process: the schema's
// names, so the store stays small. Nodes take them as tags without a copy.
class SegmentStore {
public:
    std::string_view intern(std::string_view text) {
        if (auto it = index_.find(text); it != index_.end())
            return *it;
        if (chunks_.empty() || kChunk - used_ < text.size() + 1) {
            chunks_.push_back(std::make_unique<char[]>(std::max(kChunk, text.size() + 1)));
            used_ = 0;
        }
        char *copy = chunks_.back().get() + used_;
        std::memcpy(copy, text.data(), text.size());
        copy[text.size()] = '\0';
        used_ += text.size() + 1;
        return *index_.emplace(copy, text.size()).first;
    }
    // Whether `text` is a whole terminated text of the store.
    bool holds(std::string_view text) const {
        const char *at = text.data();
        for (const auto &chunk : chunks_)
            if (at >= chunk.get() && at < chunk.get() + kChunk)
                return at[text.size()] == '\0';
        return false;
    }

private:
    static constexpr std::size_t kChunk = 16384;
    std::unordered_set<std::string_view> index_;
    std::vector<std::unique_ptr<char[]>> chunks_;
    std::size_t used_ = 0;
};

SegmentStore &segments() {
    static SegmentStore &store = *new SegmentStore;
    return store;
}

// A tag or list name for a node array: the text itself when it lasts.
const char *lasting_text(Arena::Impl &arena, std::string_view text) {
    return segments().holds(text) ? text.data() : intern(arena, text);
}

} // namespace

namespace {
// How level `i` of `path` resolves for an add of `kind` (see AddPath::kind).
uint8_t way_of(const AddPath &path, std::size_t i, std::size_t kind) {
    using How = AddMemo::How;
    const bool by_schema = (kind & 8) != 0, open = (kind & 4) != 0;
    const bool list_entry = (kind & 2) != 0, value = (kind & 1) != 0;
    const std::size_t count = path.segments.size();
    const bool last = i + 1 == count;
    const bool ends_in_key = by_schema && path.ends_in_key;
    const bool innermost = by_schema && i == path.innermost;
    auto way = [](How how) { return static_cast<uint8_t>(how); };
    if (!by_schema || path.keys_at[i].empty()) {
        if (last && (ends_in_key || (list_entry && value)))
            return AddPath::kFresh;
        return way(How::Child);
    }
    // An add that sets a list's key picks the entry by that value.
    const bool sets_key = i + 2 == count && value && ends_in_key;
    if (open && innermost && !(last && list_entry) && !sets_key)
        return AddPath::kList | way(How::Open);
    if (last && list_entry)
        return AddPath::kList | AddPath::kFresh;
    return AddPath::kList | way(open && innermost ? How::Bind : How::Current);
}

struct PathSlot {
    uintptr_t identity = 0;
    uint64_t used = 0; // when last asked for
    std::string text;
    AddPath path;
};
// Eight ways a set: with four, the 58 leaf paths of the CPU answer put more
// than four in a set, rebuilt on every entry.
constexpr std::size_t kWays = 8;
uint64_t path_clock = 0;

// At namespace scope, made before anything runs: a function's own static
// would be checked for being made on every add. Not constinit: clang 14
// cannot make libstdc++ 12 strings at compile time.
std::array<std::array<PathSlot, kWays>, 64> path_sets;

inline std::array<PathSlot, kWays> &path_set(uintptr_t identity) {
    ++path_clock;
    return path_sets[(identity * 0x9e3779b97f4a7c15ull) >> 58];
}
} // namespace

const AddPath &add_path(const char *text) {
    const auto identity = reinterpret_cast<uintptr_t>(text);
    // The same pointer may hold another text by now: the text decides, read
    // once, without measuring it first.
    for (PathSlot &slot : path_set(identity)) {
        if (slot.identity == identity && std::strcmp(slot.text.c_str(), text) == 0) {
            slot.used = path_clock;
            return slot.path;
        }
    }
    return add_path(identity, text);
}

const AddPath &add_path(uintptr_t identity, std::string_view text) {
    auto &set = path_set(identity);
    for (PathSlot &slot : set) {
        if (slot.identity == identity && slot.text == text) {
            slot.used = path_clock;
            return slot.path;
        }
    }
    PathSlot &slot = *std::ranges::min_element(set, {}, &PathSlot::used);
    slot.identity = identity;
    slot.used = path_clock;
    slot.text = text;
    AddPath &path = slot.path;
    path.segments.clear();
    Segments split;
    split_path(text, split);
    path.keys_at.assign(split.size(), {});
    path.key_names.assign(split.size(), {});
    path.innermost = kNoDepth;
    path.ends_in_key = false;
    SchemaHash hash;
    for (std::size_t i = 0; i < split.size(); ++i) {
        path.segments.push_back(segments().intern(split[i]));
        hash.add_segment(split[i]);
        const auto keys = list_keys_hashed(hash.value, std::span(split).first(i + 1));
        auto &names = path.key_names[i];
        if (keys.size() > names.size())
            fail_assert("list with more keys than a path holds");
        for (std::size_t k = 0; k < keys.size(); ++k)
            names[k] = segments().intern(keys[k]);
        path.keys_at[i] = std::span(names).first(keys.size());
        if (!path.keys_at[i].empty())
            path.innermost = i;
    }
    if (const std::size_t n = split.size(); n >= 2 && path.keys_at[n - 1].empty())
        path.ends_in_key =
            std::ranges::find(path.keys_at[n - 2], split[n - 1]) != path.keys_at[n - 2].end();
    path.ways.assign(split.size() * AddPath::kKinds, 0);
    for (std::size_t i = 0; i < split.size(); ++i)
        for (std::size_t kind = 0; kind < AddPath::kKinds; ++kind)
            path.ways[i * AddPath::kKinds + kind] = way_of(path, i, kind);
    return path;
}

bool EntryKeys::any() const {
    return std::ranges::any_of(values(), [](const char *v) { return v != nullptr; });
}

Arena::Impl &Editor::arena_for(const tidl_yfw_datatree *node) {
    Arena::Impl *arena = arena_of(node);
    return arena != nullptr ? *arena : home_;
}

tidl_yfw_datatree *Editor::new_child(tidl_yfw_datatree *parent, std::string_view tag,
                                     const char *ns, const char *value, bool interned) {
    const auto [child, block] = append_child(parent, home_, false);
    Arena::Impl &texts = *block->arena;
    child->tag = const_cast<char *>(interned ? tag.data() : lasting_text(texts, tag));
    child->namespace_ = ns != nullptr ? intern(texts, ns) : nullptr;
    if (value != nullptr) {
        child->value = copy_text(texts, value);
        child->present_value = 1;
    }
    if (block->tag_indexed()) {
        block->lookups->first_by_tag.try_emplace(child->tag, position(parent, child));
        if (value != nullptr)
            block->lookups->by_tag_value.try_emplace(tag_value_key(tag, value),
                                                     position(parent, child));
    }
    return child;
}

tidl_yfw_datatree *Editor::move_child(tidl_yfw_datatree *parent, const tidl_yfw_datatree &node) {
    tidl_yfw_datatree *slot = new_child(parent, text_of(node.tag), node.namespace_, node.value);
    *slot = node;
    Block *block = block_starting_at(parent->subtrees);
    fix_parents(*block, position(parent, slot), position(parent, slot) + 1);
    return slot;
}

tidl_yfw_datatree *Editor::find_child(tidl_yfw_datatree *parent, std::string_view tag) {
    if (Block *block = indexed_block(parent)) {
        auto &first = block->lookups->first_by_tag;
        auto it = first.find(tag);
        return it == first.end() ? nullptr : &parent->subtrees[it->second];
    }
    auto kids = children(parent);
    auto it = std::ranges::find_if(kids, [tag](const auto &kid) { return has_tag(kid, tag); });
    return it == kids.end() ? nullptr : &*it;
}

tidl_yfw_datatree *Editor::find_child(tidl_yfw_datatree *parent, std::string_view tag,
                                      std::string_view value) {
    if (Block *block = indexed_block(parent)) {
        auto &valued = block->lookups->by_tag_value;
        auto it = valued.find(tag_value_key(tag, value));
        return it == valued.end() ? nullptr : &parent->subtrees[it->second];
    }
    auto kids = children(parent);
    auto it = std::ranges::find_if(kids, [tag, value](const auto &kid) {
        return has_tag(kid, tag) && kid.value != nullptr && value == kid.value;
    });
    return it == kids.end() ? nullptr : &*it;
}

void Editor::set_value(tidl_yfw_datatree *parent, tidl_yfw_datatree *node, const char *value) {
    if (node->value != nullptr && std::strcmp(node->value, value) == 0) {
        node->present_value = 1;
        return;
    }
    Block *block = parent != nullptr ? block_starting_at(parent->subtrees) : nullptr;
    auto *valued = block != nullptr && block->tag_indexed() && node->tag != nullptr
                       ? &block->lookups->by_tag_value
                       : nullptr;
    // The index answers as a scan would: the first sibling with the tag and value.
    const uint32_t at = parent != nullptr ? position(parent, node) : 0;
    if (valued != nullptr && node->value != nullptr) {
        auto it = valued->find(tag_value_key(node->tag, node->value));
        if (it != valued->end() && it->second == at) {
            valued->erase(it);
            auto kids = children(parent);
            for (uint32_t i = at + 1; i < kids.size(); ++i) {
                if (has_tag(kids[i], node->tag) && same_text(kids[i].value, node->value)) {
                    valued->try_emplace(tag_value_key(node->tag, node->value), i);
                    break;
                }
            }
        }
    }
    node->value = copy_text(arena_for(node), value);
    node->present_value = 1;
    if (valued != nullptr) {
        auto [it, fresh] = valued->try_emplace(tag_value_key(node->tag, value), at);
        if (!fresh && it->second > at)
            it->second = at;
    }
}

ListState *Editor::list_state(tidl_yfw_datatree *parent, std::string_view tag,
                              std::span<const std::string_view> keys) {
    Block *block = own_children(parent, home_);
    if (block == nullptr)
        return nullptr;
    Lookups &lookups = block->lookup();
    ListState *known = lookups.find_list(tag);
    const bool fresh = known == nullptr;
    ListState &list = fresh ? lookups.add_list(lasting_text(*block->arena, tag)) : *known;
    if (fresh) {
        // First use here (or the array was touched by a host): the last entry is current.
        note_reshape();
        auto kids = children(parent);
        for (uint32_t i = 0; i < kids.size(); ++i) {
            if (!has_tag(kids[i], tag))
                continue;
            list.current = i;
            if (KeyValues values; key_values(&kids[i], keys, values))
                list.by_key.insert(values.hash(), i, [&](uint32_t at) {
                    return entry_has(parent, at, tag, keys, values);
                });
        }
    } else if (list.current != kNone && (list.current >= parent->subtree_count ||
                                         !has_tag(parent->subtrees[list.current], tag))) {
        list.current = kNone;
    }
    return &list;
}

bool Editor::key_values(tidl_yfw_datatree *entry, std::span<const std::string_view> keys,
                        KeyValues &out) {
    for (std::string_view key : keys) {
        const tidl_yfw_datatree *leaf = find_child(entry, key);
        if (leaf == nullptr || leaf->value == nullptr)
            return false;
        out.push_back(leaf->value);
    }
    return true;
}

bool Editor::has_keys(tidl_yfw_datatree *entry, std::span<const std::string_view> keys) {
    KeyValues values;
    return key_values(entry, keys, values);
}

bool Editor::entry_has(tidl_yfw_datatree *parent, uint32_t at, std::string_view tag,
                       std::span<const std::string_view> keys, const KeyValues &values) {
    if (at >= parent->subtree_count || !has_tag(parent->subtrees[at], tag))
        return false;
    for (std::size_t k = 0; k < keys.size(); ++k) {
        const tidl_yfw_datatree *leaf = find_child(&parent->subtrees[at], keys[k]);
        if (leaf == nullptr || !same_text(leaf->value, values.values()[k]))
            return false;
    }
    return true;
}

ListEntry Editor::current_entry(tidl_yfw_datatree *parent, std::string_view tag,
                                std::span<const std::string_view> keys, bool fresh,
                                ListState *known) {
    ListState *list = known != nullptr ? known : list_state(parent, tag, keys);
    if (list != nullptr && list->current != kNone) {
        if (!fresh || !has_keys(&parent->subtrees[list->current], keys))
            return {list->current, list};
    }
    const uint32_t made = position(parent, new_child(parent, tag, ns_, nullptr));
    // A state found before holds: the array's header, which keeps it, stays
    // put when the array grows.
    if (list == nullptr)
        list = list_state(parent, tag, keys);
    list->current = made;
    return {made, list};
}

uint32_t Editor::entry_with_keys(tidl_yfw_datatree *parent, std::string_view tag,
                                 std::span<const std::string_view> names,
                                 std::span<const char *const> values) {
    ListState *list = list_state(parent, tag, names);
    // Named by more keys than a list has: not a list of the schema, found by a scan.
    const bool indexed = names.size() <= KeyValues::kMax;
    uint32_t found = kNone;
    if (list != nullptr && indexed && std::ranges::none_of(values, [](auto v) { return !v; })) {
        KeyValues wanted;
        for (const char *value : values)
            wanted.push_back(value);
        found = list->by_key.find(
            wanted.hash(), [&](uint32_t at) { return entry_has(parent, at, tag, names, wanted); });
    } else if (list != nullptr) {
        auto kids = children(parent);
        for (uint32_t i = 0; i < kids.size() && found == kNone; ++i) {
            bool match = has_tag(kids[i], tag);
            for (std::size_t k = 0; match && k < names.size(); ++k) {
                const tidl_yfw_datatree *leaf = find_child(&kids[i], names[k]);
                match =
                    values[k] == nullptr || (leaf != nullptr && same_text(leaf->value, values[k]));
            }
            if (match)
                found = i;
        }
    }
    if (found == kNone) {
        tidl_yfw_datatree *entry = new_child(parent, tag, ns_, nullptr);
        found = position(parent, entry);
        for (std::size_t k = 0; k < names.size(); ++k)
            if (values[k] != nullptr)
                new_child(&parent->subtrees[found], names[k], ns_, values[k]);
        if (list == nullptr)
            list = list_state(parent, tag, names);
        if (KeyValues made; indexed && key_values(&parent->subtrees[found], names, made))
            list->by_key.insert(made.hash(), found, [&](uint32_t at) {
                return entry_has(parent, at, tag, names, made);
            });
    }
    list->current = found;
    return found;
}

ListEntry Editor::open_entry(tidl_yfw_datatree *parent, std::string_view tag,
                             std::span<const std::string_view> keys, const OpenEntry &open) {
    ListState *list = list_state(parent, tag, keys);
    // Its entry is current already: the common case, with no keys to gather.
    if (list != nullptr && list->bound_to == open.serial)
        return current_entry(parent, tag, keys, false, list);
    KeyValues wanted;
    for (std::string_view key : keys) {
        const char *value = open.value_of(key);
        if (value == nullptr) { // another list than the input entry's
            // Its keys stay what they are while it is open, so its next adds
            // take the current entry at once.
            const ListEntry entry = current_entry(parent, tag, keys, false, list);
            entry.list->bound_to = open.serial;
            return entry;
        }
        wanted.push_back(value);
    }
    uint32_t entry;
    if (list != nullptr && list->current != kNone &&
        !has_keys(&parent->subtrees[list->current], keys))
        entry = list->current; // formed by the list mapper, its key still to come
    else
        entry = entry_with_keys(parent, tag, keys, wanted.values());
    if (list == nullptr) // made by the entry
        list = list_state(parent, tag, keys);
    list->bound_to = open.serial;
    return {entry, list};
}

Placed Editor::set_key(tidl_yfw_datatree *parent, uint32_t entry,
                       std::span<const std::string_view> list_path,
                       std::span<const std::string_view> keys, std::string_view key,
                       const char *value, ListState *known) {
    const std::string_view list_tag = list_path.back();
    // First: it may move the array.
    ListState &list = known != nullptr ? *known : *list_state(parent, list_tag, keys);
    tidl_yfw_datatree *node = &parent->subtrees[entry];
    tidl_yfw_datatree *leaf = find_child(node, key);
    if (value == nullptr) {
        // Names the key without setting it: the entry stays as it is.
        return {leaf != nullptr ? leaf : new_child(node, key, ns_, nullptr, true), node};
    }
    // The key values the entry is about to have: in a long list their index
    // slot is far away, and loads while the leaf is made.
    KeyValues values;
    bool complete = true;
    for (std::size_t k = 0; k < keys.size() && complete; ++k) {
        const tidl_yfw_datatree *held = keys[k] == key ? nullptr : find_child(node, keys[k]);
        const char *held_value = keys[k] == key ? value : held != nullptr ? held->value : nullptr;
        if ((complete = held_value != nullptr))
            values.push_back(held_value);
    }
    const bool was_complete = complete && leaf != nullptr && leaf->value != nullptr;
    if (was_complete && same_text(leaf->value, value))
        return {leaf, node};
    const uint64_t hash = complete ? values.hash() : 0;
    if (complete)
        list.by_key.prefetch(hash);
    if (was_complete) {
        // Another value for a complete key is another entry, with the other keys kept.
        std::vector<tidl_yfw_datatree> kept;
        for (std::string_view other : keys)
            if (other != key)
                kept.push_back(*find_child(node, other));
        entry = position(parent, new_child(parent, list_tag, ns_, nullptr, true));
        node = &parent->subtrees[entry];
        for (const tidl_yfw_datatree &other : kept)
            new_child(node, text_of(other.tag), other.namespace_, other.value);
        leaf = new_child(node, key, ns_, value, true);
    } else if (leaf == nullptr) {
        leaf = new_child(node, key, ns_, value, true);
    } else {
        set_value(node, leaf, value);
    }
    list.current = entry;
    if (!complete)
        return {leaf, node};
    uint32_t kept_entry = list.by_key.insert(
        hash, entry, [&](uint32_t at) { return entry_has(parent, at, list_tag, keys, values); });
    if (kept_entry == entry)
        return {leaf, node};

    // The keys now equal those of an earlier entry: that entry takes this one in.
    std::string entry_schema;
    for (std::string_view step : list_path)
        entry_schema.append("/").append(step);
    merge_children(&parent->subtrees[kept_entry], node, entry_schema);
    if (node->present_operation)
        yfw_dt_set_operation(&parent->subtrees[kept_entry], node->operation);
    remove_child(parent, entry);
    if (kept_entry > entry)
        --kept_entry;
    list.current = kept_entry;
    node = &parent->subtrees[kept_entry];
    return {find_child(node, key), node};
}

tidl_yfw_datatree *Editor::merge_target(tidl_yfw_datatree *into, tidl_yfw_datatree *from,
                                        const tidl_yfw_datatree &child) {
    const std::string_view tag = child.tag;
    if (child.value == nullptr)
        return find_child(into, tag);
    if (tidl_yfw_datatree *same = find_child(into, tag, child.value))
        return same;
    // One leaf on each side is a leaf whose value changes; more are leaf-list values.
    if (count_tag(into, tag) == 1 && count_tag(from, tag) == 1)
        return find_child(into, tag);
    return nullptr;
}

void Editor::merge_children(tidl_yfw_datatree *into, tidl_yfw_datatree *from, std::string &schema) {
    const std::size_t schema_length = schema.size();
    for (tidl_yfw_datatree &child : children(from)) {
        if (child.tag == nullptr) {
            move_child(into, child);
            continue;
        }
        schema.append("/").append(child.tag);
        const auto keys = list_keys(schema);
        tidl_yfw_datatree *target = nullptr;
        if (!keys.empty()) {
            KeyValues values;
            const bool complete = key_values(&child, keys, values);
            auto same = [&](uint32_t at) { return entry_has(into, at, child.tag, keys, values); };
            if (ListState *list = complete ? list_state(into, child.tag, keys) : nullptr) {
                if (const uint32_t found = list->by_key.find(values.hash(), same); found != kNone)
                    target = &into->subtrees[found];
            }
            if (target == nullptr) {
                const uint32_t moved = position(into, move_child(into, child));
                if (complete)
                    list_state(into, child.tag, keys)->by_key.insert(values.hash(), moved, same);
            }
        } else if ((target = merge_target(into, from, child)) == nullptr) {
            move_child(into, child);
        }
        if (target != nullptr) {
            if (child.value != nullptr)
                set_value(into, target, child.value);
            if (child.present_operation)
                yfw_dt_set_operation(target, child.operation);
            merge_children(target, &child, schema);
        }
        schema.resize(schema_length);
    }
    release_children(from);
}

Placed Editor::add(tidl_yfw_datatree *tree, const AddPath &path, const char *value, bool list_entry,
                   const OpenEntry *open, bool augment, AddMemo *memo) {
    using How = AddMemo::How;
    const Segments &segments = path.segments;
    const std::size_t count = segments.size();
    const bool by_schema = tree->tag == nullptr;
    const bool ends_in_key = by_schema && path.ends_in_key;
    const std::size_t kind =
        AddPath::kind(by_schema, open != nullptr, list_entry, value != nullptr);
    // How segment `i` resolves; a memo of it stands in while the tree has not
    // been reshaped since, unless it is kFresh.
    const uint8_t *ways = path.ways.data() + kind; // read once: stores may alias
    auto way_at = [ways](std::size_t i) { return ways[i * AddPath::kKinds]; };
    auto keys_at = [&](std::size_t i) {
        return by_schema ? path.keys_at[i] : std::span<const std::string_view>();
    };

    const uint64_t serial = open != nullptr ? open->serial : 0;
    Placed at{tree, nullptr};
    ListState *above = nullptr; // the list of the entry `at` is, if it is one
    std::size_t i = 0;
    if (memo != nullptr && memo->tree == tree && memo->reshapes == reshapes) {
        // A level with the same segments above it on the same tree has the
        // same keys, so a memo level is a list level when the path's is.
        const std::string_view *named = segments.data();
        for (const std::size_t reach = std::min(memo->depth, count); i < reach; ++i) {
            const AddMemo::Level &level = memo->levels[i];
            if (level.segment.data() != named[i].data() || level.position >= at.node->subtree_count)
                break;
            const uint8_t way = way_at(i);
            if (level.list == nullptr) {
                // A key that has this value already: setting it leaves the entry as it is.
                if ((way & AddPath::kFresh) != 0 &&
                    !(ends_in_key && same_text(at.node->subtrees[level.position].value, value)))
                    break;
            } else if ((way & AddPath::kFresh) != 0 || (way & AddPath::kList) == 0) {
                break;
            } else {
                ListState *list = level.list;
                const auto how = static_cast<How>(way & 3);
                // The entry stays while the list keeps it current; an open
                // output list takes it once bound to it.
                if (list->current != level.position ||
                    (how == How::Open && list->bound_to != serial))
                    break;
                if (how == How::Bind)
                    list->bound_to = serial;
            }
            above = level.list;
            at = {&at.node->subtrees[level.position], at.node};
        }
    }
    std::size_t remembered = i;
    // An entry reached is remembered however it was reached: a later add
    // takes it only when its own way to the list would lead there too.
    auto remember = [&](std::size_t level, bool keep, ListState *list) {
        if (memo != nullptr && remembered == level && keep && level < AddMemo::kLevels) {
            // Field by field: a whole-struct copy through the stack stalls here.
            AddMemo::Level &kept = memo->levels[remembered++];
            kept.segment = segments[level];
            kept.list = list;
            kept.position = position(at.parent, at.node);
        }
    };
    auto seal = [&] {
        if (memo == nullptr)
            return;
        memo->tree = tree;
        memo->reshapes = reshapes;
        memo->depth = remembered;
    };

    // The namespace a node made at level `i` takes: the augmented module's
    // down to the augment's target, asked for only once a node is made.
    const char *base_ns = nullptr;
    std::size_t base_depth = augment && by_schema ? kNoDepth : 0;
    auto ns_at = [&](std::size_t i) {
        if (base_depth == kNoDepth)
            base_depth = augment_target_depth(ns_, segments, &base_ns);
        return i < base_depth ? base_ns : ns_;
    };
    bool made_leaf = false;
    for (; i < count; ++i) {
        const std::string_view segment = segments[i];
        const bool last = i + 1 == count;
        const uint8_t way = way_at(i);
        if ((way & AddPath::kList) != 0) {
            const auto keys = path.keys_at[i];
            // A list level's own way, kFresh or not.
            const auto how = static_cast<How>(way & 3);
            ListEntry entry;
            if (way == (AddPath::kList | static_cast<uint8_t>(How::Open))) {
                entry = open_entry(at.node, segment, keys, *open);
            } else {
                entry = current_entry(at.node, segment, keys, last && list_entry);
                if (how == How::Bind)
                    entry.list->bound_to = open->serial;
            }
            at = {&at.node->subtrees[entry.position], at.node};
            above = entry.list;
            remember(i, true, entry.list);
            continue;
        }
        if (last && ends_in_key && at.parent != nullptr) {
            seal();
            const Placed key =
                set_key(at.parent, position(at.parent, at.node), std::span(segments).first(i),
                        keys_at(i - 1), segment, value, above);
            // The same entry, keyed: the memo takes the key leaf, for the same key again.
            if (key.parent == at.node && value != nullptr && memo != nullptr &&
                memo->reshapes == reshapes && remembered == i && i < AddMemo::kLevels) {
                memo->levels[i] = {segment, nullptr, position(key.parent, key.node)};
                memo->depth = i + 1;
            }
            return key;
        }
        tidl_yfw_datatree *next = nullptr;
        if (last && list_entry && value != nullptr) {
            // A leaf-list value: one sibling per distinct value.
            next = find_child(at.node, segment, value);
            if (next == nullptr) {
                next = new_child(at.node, segment, ns_, value, true);
                made_leaf = true;
            }
        } else if ((next = find_child(at.node, segment)) == nullptr) {
            next = new_child(at.node, segment, ns_at(i), last ? value : nullptr, true);
            made_leaf = last;
        }
        at = {next, at.node};
        above = nullptr;
        remember(i, (way & AddPath::kFresh) == 0, nullptr);
    }
    seal();
    if (value != nullptr && !made_leaf)
        set_value(at.parent, at.node, value);
    return at;
}

tidl_yfw_datatree *Editor::find(tidl_yfw_datatree *tree,
                                std::span<const std::string_view> segments) {
    const bool by_schema = tree->tag == nullptr;
    std::string schema;
    tidl_yfw_datatree *node = tree;
    for (std::string_view segment : segments) {
        schema.append("/").append(segment);
        auto keys = by_schema ? list_keys(schema) : std::span<const std::string_view>();
        if (keys.empty()) {
            node = find_child(node, segment);
        } else {
            ListState *list = list_state(node, segment, keys);
            node = list == nullptr || list->current == kNone ? nullptr
                                                             : &node->subtrees[list->current];
        }
        if (node == nullptr)
            return nullptr;
    }
    return node;
}

Placed Editor::place(tidl_yfw_datatree *tree, std::span<const std::string_view> segments,
                     std::span<const std::span<const std::string_view>> keys_at,
                     std::span<const EntryKeys *const> wanted) {
    Placed at{tree, nullptr};
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const std::string_view segment = segments[i];
        const auto keys = tree->tag == nullptr ? keys_at[i] : std::span<const std::string_view>();
        uint32_t entry = kNone;
        if (i < wanted.size() && wanted[i] != nullptr && wanted[i]->any())
            entry = entry_with_keys(at.node, segment, wanted[i]->names(), wanted[i]->values());
        else if (!keys.empty())
            entry = current_entry(at.node, segment, keys, false).position;
        tidl_yfw_datatree *next =
            entry != kNone ? &at.node->subtrees[entry] : find_child(at.node, segment);
        at = {next != nullptr ? next : new_child(at.node, segment, ns_, nullptr), at.node};
    }
    return at;
}

} // namespace yfw::detail
