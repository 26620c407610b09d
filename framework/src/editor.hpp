// Path resolution in output trees: list entries by the schema registry,
// current entries, key completion and merging of duplicate entries.
#pragma once

#include "internal.hpp"

namespace yfw::detail {

// A node and the node that holds it, valid until the next edit.
struct Placed {
    tidl_yfw_datatree *node = nullptr;
    tidl_yfw_datatree *parent = nullptr;
};

// An entry of a list, by position, and the state of its list.
struct ListEntry {
    uint32_t position;
    ListState *list;
};

// Key values wanted for one list entry: `names()[i]` has `values()[i]`
// (null: any). Holds as many as a list has keys.
class EntryKeys {
public:
    // False when full.
    bool add(std::string_view name, const char *value) {
        if (count_ == names_.size())
            return false;
        names_[count_] = name;
        values_[count_++] = value;
        return true;
    }
    // False when no key has that name.
    bool set(std::string_view name, const char *value) {
        auto it = std::ranges::find(names(), name);
        if (it == names().end())
            return false;
        values_[static_cast<std::size_t>(it - names().begin())] = value;
        return true;
    }
    std::span<const std::string_view> names() const { return {names_.data(), count_}; }
    std::span<const char *const> values() const { return {values_.data(), count_}; }
    bool any() const;

private:
    std::array<std::string_view, KeyValues::kMax> names_{};
    std::array<const char *, KeyValues::kMax> values_{};
    std::size_t count_ = 0;
};

// The path of an add, split, and with the keys of each prefix looked up: done
// once per distinct text, as the library adds by the same paths again and
// again. Its segments are interned process-wide, so equal segments are equal
// views and outlive the path.
struct AddPath {
    // How a level resolves for each kind of add, worked out once per path:
    // a How in the low bits, or kFresh when it must be resolved anew each time
    // (no memo of it can stand in); kList on a list level.
    static constexpr uint8_t kFresh = 0x10;
    static constexpr uint8_t kList = 0x20;
    // The kind of an add: whether the tree resolves by the schema, an open
    // output list is given, the add is a list entry, and a value is given.
    static constexpr std::size_t kKinds = 16;
    static constexpr std::size_t kind(bool by_schema, bool open, bool list_entry, bool value) {
        return std::size_t{by_schema} << 3 | std::size_t{open} << 2 | std::size_t{list_entry} << 1 |
               std::size_t{value};
    }
    Segments segments;
    std::vector<uint8_t> ways;                              // [level * kKinds + kind]
    std::vector<std::span<const std::string_view>> keys_at; // empty: no list
    std::vector<std::array<std::string_view, 2>> key_names; // interned, behind keys_at
    std::size_t innermost = kNoDepth;                       // the last list segment
    bool ends_in_key = false; // the last segment is a key of the list before it
};
// The path for `text`, remembered under `identity` (the caller's pointer, or
// a mix of pointers for a path given in pieces) and checked against the text.
const AddPath &add_path(uintptr_t identity, std::string_view text);
// The same for a terminated text, remembered under its own address.
const AddPath &add_path(const char *text);

class Editor {
public:
    // `home` takes arrays that belong to no arena yet; `ns` names created nodes.
    Editor(Arena::Impl &home, const char *ns) : home_(home), ns_(ns) {}

    // The add of yfw_map_datatree_add_path_flagged. A tree without a tag is a
    // document root and resolves lists by the schema; any other node takes
    // the segments as plain children. `open`, when given, is the innermost
    // open output list: the path's innermost list goes to its entry.
    // With `augment`, the created nodes of an augmented module's path that
    // leads to the augmenting module's own nodes are of the augmented module.
    // `memo`, when given, holds the resolution of the previous add.
    Placed add(tidl_yfw_datatree *tree, const AddPath &path, const char *value, bool list_entry,
               const OpenEntry *open = nullptr, bool augment = false, AddMemo *memo = nullptr);

    // The node at the path, creating nothing; null when missing.
    tidl_yfw_datatree *find(tidl_yfw_datatree *tree, std::span<const std::string_view> segments);

    // Resolves the path, creating what is missing. Segment i goes to the entry
    // with the keys `wanted[i]` (found or made) when that has a value, else a
    // list segment (one with `keys_at[i]`) goes to the current entry. The
    // entries reached become current.
    Placed place(tidl_yfw_datatree *tree, std::span<const std::string_view> segments,
                 std::span<const std::span<const std::string_view>> keys_at,
                 std::span<const EntryKeys *const> wanted);

    // Texts of a node live in the arena of its array.
    Arena::Impl &arena_for(const tidl_yfw_datatree *node);

private:
    // `interned`: the tag is a segment of an AddPath, which lasts as it is.
    tidl_yfw_datatree *new_child(tidl_yfw_datatree *parent, std::string_view tag, const char *ns,
                                 const char *value, bool interned = false);
    tidl_yfw_datatree *move_child(tidl_yfw_datatree *parent, const tidl_yfw_datatree &node);
    tidl_yfw_datatree *find_child(tidl_yfw_datatree *parent, std::string_view tag);
    tidl_yfw_datatree *find_child(tidl_yfw_datatree *parent, std::string_view tag,
                                  std::string_view value);
    void set_value(tidl_yfw_datatree *parent, tidl_yfw_datatree *node, const char *value);

    ListState *list_state(tidl_yfw_datatree *parent, std::string_view tag,
                          std::span<const std::string_view> keys);
    // The key values of `entry` in key order; false while one is missing.
    bool key_values(tidl_yfw_datatree *entry, std::span<const std::string_view> keys,
                    KeyValues &out);
    bool has_keys(tidl_yfw_datatree *entry, std::span<const std::string_view> keys);
    // Whether child `at` of `parent` is an entry of list `tag` with these keys.
    bool entry_has(tidl_yfw_datatree *parent, uint32_t at, std::string_view tag,
                   std::span<const std::string_view> keys, const KeyValues &values);
    // `known`, when given, is the list's state, found already.
    ListEntry current_entry(tidl_yfw_datatree *parent, std::string_view tag,
                            std::span<const std::string_view> keys, bool fresh,
                            ListState *known = nullptr);
    uint32_t entry_with_keys(tidl_yfw_datatree *parent, std::string_view tag,
                             std::span<const std::string_view> names,
                             std::span<const char *const> values);
    ListEntry open_entry(tidl_yfw_datatree *parent, std::string_view tag,
                         std::span<const std::string_view> keys, const OpenEntry &open);
    // Sets key `key` of entry `entry` of the list at `list_path`, whose state
    // is `known` when found already. The texts are an AddPath's.
    Placed set_key(tidl_yfw_datatree *parent, uint32_t entry,
                   std::span<const std::string_view> list_path,
                   std::span<const std::string_view> keys, std::string_view key, const char *value,
                   ListState *known);
    void merge_children(tidl_yfw_datatree *into, tidl_yfw_datatree *from, std::string &schema);
    tidl_yfw_datatree *merge_target(tidl_yfw_datatree *into, tidl_yfw_datatree *from,
                                    const tidl_yfw_datatree &child);

    Arena::Impl &home_;
    const char *ns_;
};

} // namespace yfw::detail
