// Internals of the stand-in framework shared by its sources: node arrays and
// their process-wide index, path splitting, and the per-request bookkeeping
// behind yfw_map_ctx::session.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <forward_list>
#include <map>
#include <memory>
#include <memory_resource>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "yfw/standin.hpp"
#include "yfw_map.h"

namespace yfw::detail {

inline constexpr uint32_t kNone = UINT32_MAX;
inline constexpr std::size_t kNoDepth = SIZE_MAX;

// Heterogeneous lookup: maps keyed by std::string, searched with string_view.
struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view s) const noexcept {
        return std::hash<std::string_view>{}(s);
    }
};
template <typename V> using TextMap = std::unordered_map<std::string, V, TextHash, std::equal_to<>>;

[[noreturn]] void fail_assert(const char *what);
// The context is asserted, as the real framework does.
inline yfw_map_ctx &checked(yfw_map_ctx *ctx) {
    if (ctx == nullptr)
        fail_assert("NULL != ctx");
    return *ctx;
}

inline std::string_view text_of(const char *s) {
    return s != nullptr ? std::string_view(s) : std::string_view();
}
inline bool same_text(const char *a, const char *b) {
    return a != nullptr && b != nullptr && (a == b || std::strcmp(a, b) == 0);
}
// Whether the terminated `text` is `view`, without measuring `text` first.
inline bool is_text(const char *text, std::string_view view) {
    if (text == view.data() && text != nullptr) // the same interned text, most often
        return text[view.size()] == '\0';
    if (text == nullptr || (!view.empty() && text[0] != view[0]))
        return false;
    return std::strncmp(text, view.data(), view.size()) == 0 && text[view.size()] == '\0';
}

// ---- Paths -----------------------------------------------------------------

// The segments of a path: views into the caller's text, held inline for the
// depths the models have so that resolving a path allocates nothing.
class Segments {
public:
    void push_back(std::string_view segment) {
        if (size_ < kInline) {
            inline_[size_] = segment;
        } else {
            if (size_ == kInline)
                heap_.assign(inline_.begin(), inline_.end());
            heap_.push_back(segment);
        }
        ++size_;
    }
    const std::string_view *data() const { return size_ > kInline ? heap_.data() : inline_.data(); }
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    const std::string_view *begin() const { return data(); }
    const std::string_view *end() const { return data() + size_; }
    const std::string_view &operator[](std::size_t i) const { return data()[i]; }
    const std::string_view &back() const { return data()[size_ - 1]; }
    void clear() {
        heap_.clear();
        size_ = 0;
    }
    operator std::span<const std::string_view>() const { return {data(), size_}; }

private:
    static constexpr std::size_t kInline = 24;
    std::array<std::string_view, kInline> inline_{};
    std::vector<std::string_view> heap_;
    std::size_t size_ = 0;
};

// The segments of "/a:b/c", module prefixes stripped and empty segments skipped,
// appended to `out`.
void split_path(std::string_view path, Segments &out);
inline Segments split_path(std::string_view path) {
    Segments out;
    split_path(path, out);
    return out;
}
// A hash of a normalized schema path, extended one character or one segment
// at a time, so that each prefix of a path is looked up without building it.
struct SchemaHash {
    uint64_t value = 14695981039346656037ull;
    constexpr void add(char c) { value = (value ^ static_cast<uint8_t>(c)) * 1099511628211ull; }
    constexpr void add_segment(std::string_view segment) {
        add('/');
        for (char c : segment)
            add(c);
    }
};
// The keys of the list at a normalized path whose hash is `hash`, the path
// given as itself or as its segments.
std::span<const std::string_view> list_keys_hashed(uint64_t hash, std::string_view normalized);
std::span<const std::string_view> list_keys_hashed(uint64_t hash,
                                                   std::span<const std::string_view> segments);

// Where a module augments another: the nodes of the augmented path leading
// to its own nodes belong to the augmented module. For an add of `ns` (given
// with the augment flag) whose path starts with such a target, the number of
// leading segments that take `*base_ns`; 0 when none.
std::size_t augment_target_depth(const char *ns, std::span<const std::string_view> segments,
                                 const char **base_ns);

// "/b/c" for "/a:b//c/": the form the schema registry is keyed by.
std::string normalize_path(std::string_view path);
// The same, as `path` itself when it has that form already, else in `scratch`.
std::string_view normalized_path(std::string_view path, std::string &scratch);
// A path of at least one element, each "name" or "prefix:name".
bool well_formed_path(std::string_view path);

// ---- Node arrays -----------------------------------------------------------

// Counts the edits after which a path may lead elsewhere: nodes removed, or
// arrays copied, dropped or appended to by a host. A remembered resolution of
// a path holds while the count stays (a change of current list entry is
// checked at the list itself). One thread uses the framework.
inline uint64_t reshapes = 0;
inline void note_reshape() {
    ++reshapes;
}

// Memory that arenas gave back, for the next arenas: a framework serves
// request after request, and fresh memory costs a page fault per page. Large
// blocks only; small ones go to the heap.
std::pmr::memory_resource &chunk_pool();

// The key values of one list entry, in key order.
class KeyValues {
public:
    static constexpr std::size_t kMax = 8; // more keys than any list of the models has
    void push_back(const char *value) {
        if (size_ == kMax)
            fail_assert("list with more than 8 keys");
        values_[size_++] = value;
    }
    std::span<const char *const> values() const { return {values_.data(), size_}; }
    // A hash of the values that tells ("a", "bc") from ("ab", "c").
    uint64_t hash() const {
        uint64_t h = 14695981039346656037ull;
        for (const char *value : values()) {
            for (const char *c = value; *c != '\0'; ++c)
                h = (h ^ static_cast<uint8_t>(*c)) * 1099511628211ull;
            h = (h ^ 0xffu) * 1099511628211ull;
        }
        return h;
    }

private:
    std::array<const char *, kMax> values_{};
    std::size_t size_ = 0;
};

// The entries of one list by their key values: hashes and positions only,
// with a hit confirmed against the values in the tree. The first few inline
// (most lists inside entries are short), then open addressing, so an entry
// costs no allocation of its own.
class KeyIndex {
public:
    // The position of an entry for which `same(position)` holds, or kNone.
    template <typename Same> uint32_t find(uint64_t hash, Same same) const {
        const uint32_t print = fingerprint(hash);
        if (slots_.empty()) {
            for (std::size_t i = 0; i < few_count_; ++i)
                if (few_[i].print == print && same(few_[i].position))
                    return few_[i].position;
            return kNone;
        }
        for (std::size_t at = print & mask(); slots_[at].position != kNone; at = (at + 1) & mask())
            if (slots_[at].print == print && same(slots_[at].position))
                return slots_[at].position;
        return kNone;
    }
    // Starts loading where `hash` is looked for, ahead of a find or insert.
    void prefetch(uint64_t hash) const {
        if (!slots_.empty())
            __builtin_prefetch(&slots_[fingerprint(hash) & mask()]);
    }
    // Adds `position` unless an entry with the same keys is there already:
    // the position of that entry, or `position`.
    template <typename Same> uint32_t insert(uint64_t hash, uint32_t position, Same same) {
        if (const uint32_t found = find(hash, same); found != kNone)
            return found;
        if (slots_.empty() && few_count_ < few_.size()) {
            few_[few_count_++] = {fingerprint(hash), position};
            return position;
        }
        if (slots_.empty() || (used_ + 1) * 4 > slots_.size() * 3)
            rehash(std::max<std::size_t>(16, slots_.size() * 2));
        place({fingerprint(hash), position});
        return position;
    }
    // Entry `position` left its array and the later ones moved down by one.
    void removed(uint32_t position) {
        auto keep = [position](Slot slot) {
            if (slot.position > position)
                --slot.position;
            return slot;
        };
        if (slots_.empty()) {
            std::size_t kept = 0;
            for (std::size_t i = 0; i < few_count_; ++i)
                if (few_[i].position != position)
                    few_[kept++] = keep(few_[i]);
            few_count_ = kept;
            return;
        }
        std::pmr::vector<Slot> old(slots_.size(), &chunk_pool());
        old.swap(slots_);
        used_ = 0;
        for (const Slot &slot : old)
            if (slot.position != kNone && slot.position != position)
                place(keep(slot));
    }

private:
    struct Slot {
        uint32_t print = 0; // the hash folded: two slots to a cache line more
        uint32_t position = kNone;
    };
    std::size_t mask() const { return slots_.size() - 1; }
    static uint32_t fingerprint(uint64_t hash) { return static_cast<uint32_t>(hash ^ hash >> 32); }
    void place(Slot slot) {
        std::size_t at = slot.print & mask();
        while (slots_[at].position != kNone)
            at = (at + 1) & mask();
        slots_[at] = slot;
        ++used_;
    }
    void rehash(std::size_t size) {
        std::pmr::vector<Slot> old(size, &chunk_pool());
        old.swap(slots_);
        used_ = 0;
        for (std::size_t i = 0; i < few_count_; ++i)
            place(few_[i]);
        few_count_ = 0;
        for (const Slot &slot : old)
            if (slot.position != kNone)
                place(slot);
    }
    std::array<Slot, 4> few_{};
    std::size_t few_count_ = 0;
    std::pmr::vector<Slot> slots_{&chunk_pool()};
    std::size_t used_ = 0;
};

// Where a list's current entry is and which complete key tuples it holds.
struct ListState {
    uint32_t current = kNone;
    KeyIndex by_key;
    // The open output list whose entry was last made current here, 0 for none.
    uint64_t bound_to = 0;
};

// An input list entry that a native walker has opened an output list for: its
// key leaves by name. Adds below an output list with the same key names go to
// the entry with these values.
struct OpenEntry {
    uint64_t serial = 0;
    std::size_t count = 0;
    std::array<std::string_view, KeyValues::kMax> key_names{};
    std::array<const char *, KeyValues::kMax> key_values{};

    // Keys past the most a list has are ignored.
    void add(std::string_view name, const char *value) {
        if (count < key_names.size()) {
            key_names[count] = name;
            key_values[count++] = value;
        }
    }
    // The value of key `name`, null when it has none.
    const char *value_of(std::string_view name) const {
        for (std::size_t i = 0; i < count; ++i)
            if (key_names[i] == name)
                return key_values[i];
        return nullptr;
    }
};

// Lookup state of the children of one array, kept as positions by the
// framework's own edits and dropped when a host appends on its own.
struct NamedList {
    std::string_view tag; // lasts as long as the arena
    ListState state;
};
struct Lookups {
    // Most arrays hold one list: its state is here, any others in `more`.
    // States stay put.
    bool has_first = false;
    NamedList first;
    std::forward_list<NamedList> more;

    ListState *find_list(std::string_view tag) {
        auto named = [tag](std::string_view listed) {
            return listed.size() == tag.size() && (listed.data() == tag.data() || listed == tag);
        };
        if (has_first && named(first.tag))
            return &first.state;
        auto it = std::ranges::find_if(more, named, &NamedList::tag);
        return it == more.end() ? nullptr : &it->state;
    }
    ListState &add_list(std::string_view tag) {
        if (!has_first) {
            has_first = true;
            first.tag = tag;
            return first.state;
        }
        return more.emplace_front(NamedList{tag, ListState{}}).state;
    }
    template <typename Visit> void each_list(Visit visit) {
        if (has_first)
            visit(first.state);
        for (NamedList &named : more)
            visit(named.state);
    }

    bool tag_index_built = false;
    TextMap<uint32_t> first_by_tag;
    TextMap<uint32_t> by_tag_value;
};

// One children array owned by an arena. Its header stays put when the array
// moves, so the lookup state of the children can hang here. The nodes live in
// the arena's slabs.
struct Block {
    tidl_yfw_datatree *nodes = nullptr;
    uint32_t capacity = 0;
    uint32_t index = 0; // among the blocks of its arena
    // The parent by its place in an arena array, which holds when that array
    // moves: a growing array leaves the arrays below it alone. A parent in no
    // arena array is held by its address; null for a root.
    Block *parent_block = nullptr;
    uint32_t parent_at = 0;
    const tidl_yfw_datatree *outside_parent = nullptr;
    Arena::Impl *arena = nullptr;
    Lookups *lookups = nullptr; // the arena's; most arrays never need one

    const tidl_yfw_datatree *parent() const {
        if (parent_block == nullptr)
            return outside_parent;
        return parent_block->nodes != nullptr ? parent_block->nodes + parent_at : nullptr;
    }
    // `holder` is the block whose array holds `node`, null when none does.
    void set_parent(const tidl_yfw_datatree *node, Block *holder) {
        parent_block = holder;
        parent_at = holder != nullptr ? static_cast<uint32_t>(node - holder->nodes) : 0;
        outside_parent = holder != nullptr ? nullptr : node;
    }
    Lookups &lookup() { return lookups != nullptr ? *lookups : take_lookups(); }
    Lookups &take_lookups();
    bool tag_indexed() const { return lookups != nullptr && lookups->tag_index_built; }
    void forget_lookups();
};

// Arenas ended so far: blocks end with their arena only.
inline uint64_t arenas_ended = 0;
// A block remembered by its array. A block outlives its arrays, so one
// remembered holds while no arena has ended and it still starts there.
struct Seen {
    const tidl_yfw_datatree *array = nullptr;
    Block *block = nullptr;
    uint64_t arenas_ended = 0;
};
// The arrays a walk asked for last, and those made last, which it asks for next.
inline std::array<Seen, 64> seen_arrays;
inline Seen &seen_slot(const tidl_yfw_datatree *array) {
    // Arrays hold two nodes at least: the bits below tell none apart.
    return seen_arrays[(reinterpret_cast<std::uintptr_t>(array) >> 7) % seen_arrays.size()];
}

// The process-wide index from array address to its block (for parent_of).
Block *block_containing(const tidl_yfw_datatree *node);
Block *block_starting_at_slowly(const tidl_yfw_datatree *array);
// Inline: every append and list look-up starts here.
inline Block *block_starting_at(const tidl_yfw_datatree *array) {
    if (array == nullptr)
        return nullptr;
    const Seen &slot = seen_slot(array);
    if (slot.array == array && slot.arenas_ended == arenas_ended && slot.block->nodes == array)
        return slot.block;
    return block_starting_at_slowly(array);
}

// The node's children; a malformed pair (present, null array, count) reads as none.
// Inline: every lookup and add starts here.
inline std::span<tidl_yfw_datatree> children(const tidl_yfw_datatree *node) {
    if (node == nullptr || !node->present_subtrees || node->subtrees == nullptr)
        return {};
    return {node->subtrees, node->subtree_count};
}
// The first child with this tag, or null.
const tidl_yfw_datatree *child_with_tag(const tidl_yfw_datatree *node, std::string_view tag);

// Appends a zeroed child to `parent`, growing (or first copying) its array.
// `home` takes the array when the parent's array is in no arena. `external`
// appends come from hosts and drop the lookup state of the array.
struct Appended {
    tidl_yfw_datatree *node;
    Block *block; // the array that holds it
};
Appended append_child_slowly(tidl_yfw_datatree *parent, Arena::Impl &home, bool external);
// The array appended to last: a first child is most often made below a node
// that was just made, and leaves come one after another into one array.
inline Seen last_appended;
// Inline: most appends go to the array appended to last, which has room.
inline Appended append_child(tidl_yfw_datatree *parent, Arena::Impl &home, bool external) {
    Block *block = last_appended.block;
    const uint32_t live = parent->subtree_count;
    if (external || !parent->present_subtrees || live == 0 || parent->subtrees == nullptr ||
        parent->subtrees != last_appended.array || last_appended.arenas_ended != arenas_ended ||
        block->nodes != parent->subtrees || live == block->capacity)
        return append_child_slowly(parent, home, external);
    tidl_yfw_datatree *child = &block->nodes[live];
    *child = tidl_yfw_datatree{};
    parent->subtree_count = live + 1;
    return {child, block};
}
// Removes child `pos` of `parent` (an arena array), shifting the later ones.
void remove_child(tidl_yfw_datatree *parent, uint32_t pos);
// Frees the children array of `node` (not the arrays below it) and clears the node's children.
void release_children(tidl_yfw_datatree *node);
// Makes sure the children of `parent` sit in an arena block, and returns it (null when none).
Block *own_children(tidl_yfw_datatree *parent, Arena::Impl &home);
// After nodes were copied or shifted into slots [from, to) of `block`: their arrays get the new
// parent.
void fix_parents(Block &block, uint32_t from, uint32_t to);

// The nodes that the last add went through, for the next add on the same
// tree: most adds are leaves of the entry that the previous add reached, and
// take its nodes without resolving the shared beginning of the path again.
// Positions, not pointers, so that an array that grew keeps its levels; a
// list level holds while its list keeps that entry current.
struct AddMemo {
    enum class How : uint8_t { Child, Current, Open, Bind };
    struct Level {
        std::string_view segment; // interned
        ListState *list;          // null for a child level
        uint32_t position;
    };
    static constexpr std::size_t kLevels = 24;
    const tidl_yfw_datatree *tree = nullptr;
    uint64_t reshapes = 0;
    std::size_t depth = 0;
    std::array<Level, kLevels> levels{};
};

// Tags and namespaces: one copy per distinct text in the arena.
char *intern(Arena::Impl &arena, std::string_view text);
char *intern(Arena::Impl &arena, const char *text);
// Values: a copy of their own, as most are met once.
char *copy_text(Arena::Impl &arena, std::string_view text);
// The arena that holds `node` in one of its arrays, or null.
Arena::Impl *arena_of(const tidl_yfw_datatree *node);

} // namespace yfw::detail

// ---- The bookkeeping of one request ------------------------------------------

struct DebugSink {
    static constexpr uint32_t kMagic = 0x59444247u;
    uint32_t magic = kMagic;
    std::vector<std::string> *lines = nullptr;
    bool lines_on = true;
    // The error sink keeps the message of its last line, which the framework
    // reports to the client when the library left no error_message.
    std::string *last_message = nullptr;
};

struct RingTrace {
    static constexpr uint32_t kMagic = 0x5952494eu;
    static constexpr std::size_t kLines = 4096;
    uint32_t magic = kMagic;
    std::vector<std::string> slots;
    std::size_t next = 0;
    mutable std::vector<std::string> ordered;
    void append(std::string_view line);
    const std::vector<std::string> &lines() const;
};

struct HierarchyFrame {
    const tidl_yfw_datatree *node;
    uint32_t kind;
    uint64_t serial; // tells a frame from a later push of the same node
};

struct OutputListFrame {
    const tidl_yfw_datatree *entry;
    yfw::detail::OpenEntry keys;
};

struct yfw_map_session {
    yfw_map_ctx ctx{};
    yfw_map_state state{};
    yfw_request request{};
    yfw::Arena arena;
    tidl_yfw_datatree *output = nullptr;
    yfw::Arena::Impl *home = nullptr; // the arena behind `arena`, found through `output`

    std::vector<std::string> debug_log;
    DebugSink err_sink;
    DebugSink trace_sink;
    RingTrace ring;

    std::vector<HierarchyFrame> hierarchy;
    uint64_t next_serial = 1;
    struct CurrentRecord {
        std::size_t depth;
        uint64_t serial;
    };
    yfw::detail::TextMap<CurrentRecord> current_lists;
    struct ListPath {
        const char *source = nullptr;
        std::string text;
        std::string_view last; // its last segment
        CurrentRecord *record = nullptr;
    };
    std::array<ListPath, 8> list_paths;

    yfw::detail::AddMemo add_memo;

    std::deque<yfw_map_itree_entry> itree;
    // The node whose children each itree entry holds, null when none does.
    std::vector<const tidl_yfw_datatree *> itree_owners;
    std::vector<OutputListFrame> output_lists;
    std::string error_path;
    std::string error_line;

    // The tag path of the hierarchy up to frame `depth` (inclusive).
    std::string hierarchy_path(std::size_t depth) const;
    // The keys of the list at that path, without spelling the path out.
    std::span<const std::string_view> hierarchy_keys(std::size_t depth) const;
    // The depth of `node` on the hierarchy, innermost first; kNone when absent.
    std::size_t depth_of(const tidl_yfw_datatree *node) const;
};

namespace yfw {
struct Session::Impl : yfw_map_session {};
} // namespace yfw
