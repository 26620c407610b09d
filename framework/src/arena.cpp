// Node arrays and texts. Arrays are cut from large slabs, and every slab
// keeps, per node slot, the block whose array holds the slot: so the block of
// any node (for its parent and its arena) is two look-ups, and growing an
// array costs no allocation of its own.
#include <algorithm>
#include <bit>
#include <cstring>
#include <list>
#ifdef __GLIBC__
#include <malloc.h>
#endif
#include <utility>

#include "internal.hpp"

namespace yfw {

namespace detail {

// A run of node slots, left unwritten until an array takes them: every slot is
// zeroed when it becomes a child, and nothing reads past a node's children.
// A dedicated slab holds one large array alone and goes back to the system
// when that array moves.
struct Slab {
    std::unique_ptr<tidl_yfw_datatree[]> nodes;
    // Per slot: 1 + the index of the block in the arena's blocks, 0 for none.
    std::unique_ptr<uint32_t[]> owner;
    uint32_t capacity = 0;
    uint32_t used = 0;
    // Slots in arrays handed out and not released; a slab let go has no nodes.
    uint32_t live = 0;
    bool dedicated = false;
    Arena::Impl *arena = nullptr;
};

} // namespace detail

namespace detail {
namespace {

// Memory given back for reuse, found by size. Past `max_bytes` the memory
// kept longest goes back to the system first, so that what the last requests
// used stays, whatever sizes earlier ones left.
template <typename Memory> class KeptMemory {
public:
    explicit KeptMemory(std::size_t max_bytes) : max_bytes_(max_bytes) {}

    std::optional<Memory> take(std::size_t size) {
        auto it = by_size_.find(size);
        if (it == by_size_.end())
            return std::nullopt;
        auto entry = it->second;
        by_size_.erase(it);
        Memory memory = std::move(entry->memory);
        bytes_ -= entry->bytes;
        order_.erase(entry);
        return memory;
    }
    // Keeps `memory` (`bytes` long); too large a block is let go at once.
    void give(std::size_t size, std::size_t bytes, Memory memory) {
        if (bytes > max_bytes_)
            return;
        while (bytes_ + bytes > max_bytes_) {
            by_size_.erase(order_.front().index);
            bytes_ -= order_.front().bytes;
            order_.pop_front();
        }
        order_.push_back({bytes, std::move(memory), {}});
        order_.back().index = by_size_.emplace(size, std::prev(order_.end()));
        bytes_ += bytes;
    }
    void clear() {
        by_size_.clear();
        order_.clear();
        bytes_ = 0;
    }

private:
    struct Entry;
    using Index = std::multimap<std::size_t, typename std::list<Entry>::iterator>;
    struct Entry {
        std::size_t bytes;
        Memory memory;
        typename Index::iterator index;
    };
    std::size_t max_bytes_;
    std::size_t bytes_ = 0;
    std::list<Entry> order_; // oldest first
    Index by_size_;
};

class ChunkPool final : public std::pmr::memory_resource {
public:
    // Smaller blocks come from the heap's own free lists.
    static constexpr std::size_t kSmallest = std::size_t{64} << 10;
    static constexpr std::size_t kMaxBytes = std::size_t{256} << 20;

private:
    static bool pooled(std::size_t bytes, std::size_t alignment) {
        return bytes >= kSmallest && alignment <= alignof(std::max_align_t);
    }
    void *do_allocate(std::size_t bytes, std::size_t alignment) override {
        if (!pooled(bytes, alignment))
            return ::operator new(bytes, std::align_val_t(alignment));
        if (auto kept = kept_.take(bytes))
            return kept->release();
        return ::operator new(bytes);
    }
    void do_deallocate(void *block, std::size_t bytes, std::size_t alignment) override {
        if (!pooled(bytes, alignment))
            ::operator delete(block, std::align_val_t(alignment));
        else
            kept_.give(bytes, bytes, Block(block));
    }
    bool do_is_equal(const std::pmr::memory_resource &other) const noexcept override {
        return this == &other;
    }

public:
    void clear() { kept_.clear(); }

private:
    struct Release {
        void operator()(void *block) const { ::operator delete(block); }
    };
    using Block = std::unique_ptr<void, Release>;
    KeptMemory<Block> kept_{kMaxBytes};
};

} // namespace

// The process-wide tables below live as long as the process: arenas in
// static storage may end after any of them.
namespace {
ChunkPool &chunks() {
    static ChunkPool &pool = *new ChunkPool;
    return pool;
}
} // namespace

std::pmr::memory_resource &chunk_pool() {
    return chunks();
}

// Objects in chunks of the pooled memory: they never move, and a request's
// many thousands of them cost neither a heap call each nor fresh pages. One
// given back is reset and handed out again.
template <typename T, std::size_t kChunk> class ChunkStore {
public:
    ChunkStore() = default;
    ChunkStore(const ChunkStore &) = delete;
    ChunkStore &operator=(const ChunkStore &) = delete;
    ~ChunkStore() {
        for (std::size_t i = 0; i < size_; ++i)
            (*this)[i].~T();
        for (T *chunk : chunks_)
            chunk_pool().deallocate(chunk, kChunk * sizeof(T), alignof(T));
    }
    T &emplace_back() {
        if (size_ == chunks_.size() * kChunk)
            chunks_.push_back(
                static_cast<T *>(chunk_pool().allocate(kChunk * sizeof(T), alignof(T))));
        T *made = new (&chunks_[size_ / kChunk][size_ % kChunk]) T();
        ++size_;
        return *made;
    }
    T &take() {
        if (given_.empty())
            return emplace_back();
        T &reused = *given_.back();
        given_.pop_back();
        return reused;
    }
    void give(T &object) {
        object = T{};
        given_.push_back(&object);
    }
    T &operator[](std::size_t i) { return chunks_[i / kChunk][i % kChunk]; }
    std::size_t size() const { return size_; }

private:
    std::vector<T *> chunks_;
    std::size_t size_ = 0;
    std::vector<T *> given_;
};

} // namespace detail

struct Arena::Impl {
    // Slabs double from the first size to the last, so that a small request
    // stays small; the large arrays get slabs of their own.
    static constexpr uint32_t kFirstSlabNodes = 256;
    static constexpr uint32_t kSlabNodes = 16384;
    static constexpr uint32_t kDedicatedFrom = kSlabNodes / 4;

    std::pmr::monotonic_buffer_resource text_memory{&detail::chunk_pool()};
    std::unordered_set<std::string_view> texts;
    // The texts interned last, by the caller's pointer: the library names the
    // same tags and namespaces from the same literals again and again.
    struct Recent {
        const char *source = nullptr;
        std::size_t size = 0;
        char *copy = nullptr;
    };
    std::array<Recent, 64> recent{};
    // The terminated text interned last: the namespace of add after add.
    const char *last_source = nullptr;
    char *last_copy = nullptr;

    // Headers stay put; a released one has no nodes.
    detail::ChunkStore<detail::Block, 4096> blocks;
    // Of the blocks whose children were looked up by tag or by key.
    detail::ChunkStore<detail::Lookups, 1024> lookups;
    std::vector<std::unique_ptr<detail::Slab>> slabs;
    detail::Slab *open_slab = nullptr;
    // Released arrays of slabs, by the log2 of their capacity; those of a
    // slab let go since are dropped when met.
    struct FreeArray {
        detail::Slab *slab;
        tidl_yfw_datatree *nodes;
    };
    std::array<std::vector<FreeArray>, 32> free_arrays;

    Impl() = default;
    Impl(const Impl &) = delete;
    Impl &operator=(const Impl &) = delete;
    ~Impl();

    // `holder`: the block whose array holds `parent`, null when none does.
    detail::Block &new_block(const tidl_yfw_datatree *parent, detail::Block *holder,
                             uint32_t capacity);
    // Points `block` at a zeroed array of `capacity` (a power of two) slots.
    void allocate(detail::Block &block, uint32_t capacity);
    // `to_system`: a slab left without arrays goes back to the system at once.
    void release(tidl_yfw_datatree *nodes, uint32_t capacity, bool to_system = false);

private:
    void let_go(detail::Slab &slab, bool to_system);
    detail::Slab &new_slab(uint32_t capacity, bool dedicated);
};

namespace detail {
namespace {

bool inside(const tidl_yfw_datatree *node, const tidl_yfw_datatree *first, std::size_t count) {
    const auto at = reinterpret_cast<std::uintptr_t>(node);
    const auto from = reinterpret_cast<std::uintptr_t>(first);
    return at >= from && at - from < count * sizeof(tidl_yfw_datatree);
}

// Slabs of every arena by their first slot. One thread uses the framework.
struct SlabIndex {
    // Sorted by start: a binary search over a few hundred contiguous entries.
    std::vector<std::pair<std::uintptr_t, Slab *>> by_start;
    // The slabs found last, most recent first: the input tree's, the output's.
    std::array<Slab *, 4> recent{};
    // The stretch between two slabs where the last miss fell: a host's own
    // tree lies there, node after node. Empty once slabs come or go.
    std::uintptr_t gap_from = 0;
    std::uintptr_t gap_to = 0;

    Slab *find(const tidl_yfw_datatree *node) {
        const auto at = reinterpret_cast<std::uintptr_t>(node);
        if (at - gap_from < gap_to - gap_from)
            return nullptr;
        for (std::size_t i = 0; i < recent.size(); ++i) {
            Slab *slab = recent[i];
            if (slab != nullptr && inside(node, slab->nodes.get(), slab->capacity)) {
                std::rotate(recent.begin(), recent.begin() + static_cast<std::ptrdiff_t>(i),
                            recent.begin() + static_cast<std::ptrdiff_t>(i) + 1);
                return slab;
            }
        }
        auto it =
            std::ranges::upper_bound(by_start, at, {}, &std::pair<std::uintptr_t, Slab *>::first);
        const std::uintptr_t next = it == by_start.end() ? UINTPTR_MAX : it->first;
        if (it == by_start.begin()) {
            gap_from = 0;
            gap_to = next;
            return nullptr;
        }
        Slab *slab = std::prev(it)->second;
        if (!inside(node, slab->nodes.get(), slab->capacity)) {
            gap_from = std::prev(it)->first + slab->capacity * sizeof(tidl_yfw_datatree);
            gap_to = next;
            return nullptr;
        }
        std::rotate(recent.begin(), recent.end() - 1, recent.end());
        recent[0] = slab;
        return slab;
    }
    void add(Slab &slab) {
        const auto start = reinterpret_cast<std::uintptr_t>(slab.nodes.get());
        auto it = std::ranges::upper_bound(by_start, start, {},
                                           &std::pair<std::uintptr_t, Slab *>::first);
        by_start.insert(it, {start, &slab});
        gap_from = gap_to = 0;
    }
    void remove(const Slab &slab) {
        const auto start = reinterpret_cast<std::uintptr_t>(slab.nodes.get());
        auto it = std::ranges::lower_bound(by_start, start, {},
                                           &std::pair<std::uintptr_t, Slab *>::first);
        if (it != by_start.end() && it->first == start)
            by_start.erase(it);
        std::ranges::replace(recent, &slab, nullptr);
        gap_from = gap_to = 0;
    }
};

SlabIndex &slab_index() {
    static SlabIndex &index = *new SlabIndex;
    return index;
}

// Slab memory that arenas gave back, for the next arenas: a framework serves
// request after request, and fresh memory costs a page fault per page.
class SlabPool {
public:
    // Kept up to this much: the output of a million-node walk fits.
    static constexpr std::size_t kMaxBytes = std::size_t{512} << 20;

    static std::size_t bytes_of(uint32_t capacity) {
        return capacity * (sizeof(tidl_yfw_datatree) + sizeof(uint32_t));
    }
    // Memory for `capacity` slots into `slab`, from the pool when it has some.
    void take(Slab &slab, uint32_t capacity) {
        if (auto kept = kept_.take(capacity)) {
            slab.nodes = std::move(kept->nodes);
            slab.owner = std::move(kept->owner);
        } else {
            slab.nodes = std::make_unique_for_overwrite<tidl_yfw_datatree[]>(capacity);
            slab.owner = std::make_unique_for_overwrite<uint32_t[]>(capacity);
        }
        slab.capacity = capacity;
    }
    void give(Slab &slab) {
        kept_.give(slab.capacity, bytes_of(slab.capacity),
                   Memory{std::move(slab.nodes), std::move(slab.owner)});
        slab.nodes.reset();
        slab.owner.reset();
        slab.capacity = 0;
    }
    void clear() { kept_.clear(); }

private:
    struct Memory {
        std::unique_ptr<tidl_yfw_datatree[]> nodes;
        std::unique_ptr<uint32_t[]> owner;
    };
    KeptMemory<Memory> kept_{kMaxBytes};
};

SlabPool &slab_pool() {
    static SlabPool &pool = *new SlabPool;
    return pool;
}

uint32_t grown_capacity(uint32_t needed) {
    if (needed > UINT32_MAX / 2)
        fail_assert("node array too large");
    return std::bit_ceil(std::max<uint32_t>(2, needed));
}

// Moves the live nodes of `block` into an array for `needed`.
void grow(Block &block, uint32_t live, uint32_t needed) {
    tidl_yfw_datatree *old = block.nodes;
    const uint32_t old_capacity = block.capacity;
    block.arena->allocate(block, grown_capacity(needed));
    std::copy_n(old, live, block.nodes);
    block.arena->release(old, old_capacity);
}

} // namespace

void fail_assert(const char *what) {
    std::fprintf(stderr, "yfw stand-in: assertion failed: %s\n", what);
    std::abort();
}

Lookups &Block::take_lookups() {
    lookups = &arena->lookups.take();
    return *lookups;
}

void Block::forget_lookups() {
    if (lookups != nullptr)
        arena->lookups.give(*std::exchange(lookups, nullptr));
}

Block *block_containing(const tidl_yfw_datatree *node) {
    Slab *slab = node != nullptr ? slab_index().find(node) : nullptr;
    if (slab == nullptr)
        return nullptr;
    const auto slot = static_cast<std::size_t>(node - slab->nodes.get());
    if (!slab->dedicated && slot >= slab->used)
        return nullptr; // never handed out
    const uint32_t owner = slab->owner[slot];
    Block *block = owner != 0 ? &slab->arena->blocks[owner - 1] : nullptr;
    return block != nullptr && inside(node, block->nodes, block->capacity) ? block : nullptr;
}

namespace {
void remember_array(Block &block) {
    seen_slot(block.nodes) = {block.nodes, &block, arenas_ended};
}
} // namespace

Block *block_starting_at_slowly(const tidl_yfw_datatree *array) {
    Block *block = block_containing(array);
    if (block == nullptr || block->nodes != array)
        return nullptr;
    seen_slot(array) = {array, block, arenas_ended};
    return block;
}

Arena::Impl *arena_of(const tidl_yfw_datatree *node) {
    const Block *block = block_containing(node);
    return block != nullptr ? block->arena : nullptr;
}

const tidl_yfw_datatree *child_with_tag(const tidl_yfw_datatree *node, std::string_view tag) {
    auto kids = children(node);
    auto it = std::ranges::find_if(
        kids, [tag](const tidl_yfw_datatree &kid) { return is_text(kid.tag, tag); });
    return it == kids.end() ? nullptr : &*it;
}

void fix_parents(Block &block, uint32_t from, uint32_t to) {
    for (uint32_t i = from; i < to; ++i) {
        const tidl_yfw_datatree &node = block.nodes[i];
        if (Block *below = node.present_subtrees ? block_starting_at(node.subtrees) : nullptr)
            below->set_parent(&node, &block);
    }
}

Block *own_children(tidl_yfw_datatree *parent, Arena::Impl &home) {
    auto kids = children(parent);
    if (kids.empty())
        return nullptr;
    if (Block *block = block_starting_at(kids.data()))
        return block;
    // A caller's own array: copy it into an arena array that can grow.
    Block *holder = block_containing(parent);
    Arena::Impl &arena = holder != nullptr ? *holder->arena : home;
    Block &block =
        arena.new_block(parent, holder, grown_capacity(static_cast<uint32_t>(kids.size())));
    note_reshape();
    std::copy(kids.begin(), kids.end(), block.nodes);
    fix_parents(block, 0, static_cast<uint32_t>(kids.size()));
    parent->subtrees = block.nodes;
    return &block;
}

namespace {
Block *holder_of(const tidl_yfw_datatree *node) {
    if (last_appended.block != nullptr && last_appended.arenas_ended == arenas_ended &&
        inside(node, last_appended.block->nodes, last_appended.block->capacity))
        return last_appended.block;
    return block_containing(node);
}
} // namespace

Appended append_child_slowly(tidl_yfw_datatree *parent, Arena::Impl &home, bool external) {
    // Leaves come one after another into the same array.
    const bool again = parent->present_subtrees && parent->subtree_count != 0 &&
                       parent->subtrees != nullptr && parent->subtrees == last_appended.array &&
                       last_appended.arenas_ended == arenas_ended &&
                       last_appended.block->nodes == parent->subtrees;
    Block *block = again ? last_appended.block : own_children(parent, home);
    const uint32_t live = block != nullptr ? parent->subtree_count : 0;
    if (block == nullptr) {
        Block *holder = holder_of(parent);
        Arena::Impl &arena = holder != nullptr ? *holder->arena : home;
        block = &arena.new_block(parent, holder, grown_capacity(1));
    } else if (live == block->capacity) {
        grow(*block, live, live + 1);
    }
    if (external) {
        block->forget_lookups();
        note_reshape();
    }
    tidl_yfw_datatree *child = &block->nodes[live];
    *child = tidl_yfw_datatree{};
    yfw_dt_set_subtrees(parent, block->nodes, live + 1);
    last_appended = {block->nodes, block, arenas_ended};
    return {child, block};
}

void remove_child(tidl_yfw_datatree *parent, uint32_t pos) {
    Block *block = block_starting_at(parent->subtrees);
    const uint32_t live = parent->subtree_count;
    if (block == nullptr || pos >= live)
        fail_assert("remove_child outside an arena array");
    note_reshape();
    tidl_yfw_datatree *nodes = block->nodes;
    std::copy(nodes + pos + 1, nodes + live, nodes + pos);
    nodes[live - 1] = tidl_yfw_datatree{};
    parent->subtree_count = live - 1;
    fix_parents(*block, pos, live - 1);

    // Positions after `pos` moved down by one.
    if (!block->lookups)
        return;
    Lookups &lookups = *block->lookups;
    lookups.tag_index_built = false;
    lookups.first_by_tag.clear();
    lookups.by_tag_value.clear();
    const bool was_last = pos == live - 1;
    lookups.each_list([pos, was_last](ListState &list) {
        if (list.current == pos)
            list.current = kNone;
        else if (list.current != kNone && list.current > pos)
            --list.current;
        if (!was_last)
            list.by_key.removed(pos);
    });
}

namespace {
void release_children(tidl_yfw_datatree *node, bool to_system) {
    if (Block *block = node->present_subtrees ? block_starting_at(node->subtrees) : nullptr) {
        block->arena->release(block->nodes, block->capacity, to_system);
        block->nodes = nullptr;
        block->capacity = 0;
        block->forget_lookups();
    }
    yfw_dt_clear_subtrees(node);
}

void release_below(tidl_yfw_datatree *node) {
    for (tidl_yfw_datatree &child : children(node))
        release_below(&child);
    release_children(node, true);
}
} // namespace

void release_children(tidl_yfw_datatree *node) {
    note_reshape();
    release_children(node, false);
}

char *copy_text(Arena::Impl &arena, std::string_view text) {
    auto *copy = static_cast<char *>(arena.text_memory.allocate(text.size() + 1, 1));
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

namespace {
Arena::Impl::Recent &recent_slot(Arena::Impl &arena, const char *text) {
    const auto source = reinterpret_cast<std::uintptr_t>(text);
    return arena.recent[(source >> 3 ^ source >> 9) % arena.recent.size()];
}
} // namespace

char *intern(Arena::Impl &arena, std::string_view text) {
    Arena::Impl::Recent &recent = recent_slot(arena, text.data());
    // The same pointer may have been filled anew since: the text decides.
    if (recent.source == text.data() && recent.size == text.size() &&
        std::memcmp(recent.copy, text.data(), text.size()) == 0)
        return recent.copy;
    char *copy;
    if (auto it = arena.texts.find(text); it != arena.texts.end()) {
        copy = const_cast<char *>(it->data());
    } else {
        copy = copy_text(arena, text);
        arena.texts.emplace(copy, text.size());
    }
    recent = {text.data(), text.size(), copy};
    return copy;
}

char *intern(Arena::Impl &arena, const char *text) {
    // The same pointer may have been filled anew since: the text decides.
    if (text == arena.last_source && std::strcmp(arena.last_copy, text) == 0)
        return arena.last_copy;
    // Adds that take turns between namespaces find theirs by the pointer
    // without measuring the text: the copy is terminated.
    if (const Arena::Impl::Recent &recent = recent_slot(arena, text);
        recent.source == text && std::strcmp(recent.copy, text) == 0) {
        arena.last_source = text;
        return arena.last_copy = recent.copy;
    }
    arena.last_source = text;
    return arena.last_copy = intern(arena, std::string_view(text));
}

void split_path(std::string_view path, Segments &segments) {
    std::size_t prefix = 0; // where the present segment's name starts, past any ':'
    for (std::size_t i = 0; i <= path.size(); ++i) {
        const char c = i < path.size() ? path[i] : '/';
        if (c == ':') {
            prefix = i + 1;
        } else if (c == '/') {
            if (i > prefix)
                segments.push_back(path.substr(prefix, i - prefix));
            prefix = i + 1;
        }
    }
}

std::string normalize_path(std::string_view path) {
    std::string out;
    for (std::string_view segment : split_path(path)) {
        out += '/';
        out += segment;
    }
    return out;
}

std::string_view normalized_path(std::string_view path, std::string &scratch) {
    bool normalized = path.starts_with('/') && !path.ends_with('/');
    for (std::size_t i = 0; normalized && i < path.size(); ++i)
        normalized = path[i] != ':' && !(path[i] == '/' && i > 0 && path[i - 1] == '/');
    if (normalized)
        return path;
    scratch = normalize_path(path);
    return scratch;
}

bool well_formed_path(std::string_view path) {
    bool any = false;
    while (!path.empty()) {
        const std::size_t slash = path.find('/');
        const std::string_view element = path.substr(0, slash);
        path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
        if (element.empty())
            continue;
        const std::size_t colon = element.find(':');
        if (colon != std::string_view::npos &&
            (colon == 0 || colon + 1 == element.size() ||
             element.find(':', colon + 1) != std::string_view::npos))
            return false;
        any = true;
    }
    return any;
}

} // namespace detail

Arena::Impl::~Impl() {
    detail::note_reshape();
    ++detail::arenas_ended;
    for (const auto &slab : slabs) {
        if (slab->nodes) {
            detail::slab_index().remove(*slab);
            detail::slab_pool().give(*slab);
        }
    }
}

detail::Slab &Arena::Impl::new_slab(uint32_t capacity, bool dedicated) {
    auto slab = std::make_unique<detail::Slab>();
    detail::slab_pool().take(*slab, capacity);
    slab->dedicated = dedicated;
    slab->arena = this;
    detail::slab_index().add(*slab);
    return *slabs.emplace_back(std::move(slab));
}

void Arena::Impl::allocate(detail::Block &block, uint32_t capacity) {
    auto &free = free_arrays[static_cast<std::size_t>(std::countr_zero(capacity))];
    tidl_yfw_datatree *nodes;
    detail::Slab *slab;
    while (!free.empty() && free.back().slab->nodes == nullptr)
        free.pop_back();
    if (!free.empty()) {
        slab = free.back().slab;
        nodes = free.back().nodes;
        free.pop_back();
        slab->live += capacity;
    } else if (capacity >= kDedicatedFrom) {
        slab = &new_slab(capacity, true);
        nodes = slab->nodes.get();
    } else {
        if (open_slab == nullptr || open_slab->capacity - open_slab->used < capacity) {
            // The rest of the full slab goes to the free arrays, largest first.
            for (uint32_t rest;
                 open_slab != nullptr && (rest = open_slab->capacity - open_slab->used) > 0;) {
                const uint32_t piece = std::bit_floor(rest);
                free_arrays[static_cast<std::size_t>(std::countr_zero(piece))].push_back(
                    {open_slab, open_slab->nodes.get() + open_slab->used});
                std::fill_n(open_slab->owner.get() + open_slab->used, piece, 0u);
                open_slab->used += piece;
            }
            const uint32_t size = open_slab == nullptr
                                      ? kFirstSlabNodes
                                      : std::min(kSlabNodes, open_slab->capacity * 2);
            open_slab = &new_slab(std::max(size, capacity), false);
        }
        slab = open_slab;
        nodes = slab->nodes.get() + slab->used;
        slab->used += capacity;
        slab->live += capacity;
    }
    std::fill_n(slab->owner.get() + (nodes - slab->nodes.get()), capacity, block.index + 1);
    block.nodes = nodes;
    block.capacity = capacity;
    detail::remember_array(block);
}

void Arena::Impl::release(tidl_yfw_datatree *nodes, uint32_t capacity, bool to_system) {
    detail::Slab *slab = nodes != nullptr ? detail::slab_index().find(nodes) : nullptr;
    if (slab == nullptr)
        return;
    if (slab->dedicated) {
        let_go(*slab, to_system);
        return;
    }
    free_arrays[static_cast<std::size_t>(std::countr_zero(capacity))].push_back({slab, nodes});
    slab->live -= capacity;
    if (to_system && slab->live == 0 && slab != open_slab)
        let_go(*slab, true);
}

void Arena::Impl::let_go(detail::Slab &slab, bool to_system) {
    // Its memory may come back as another array.
    detail::note_reshape();
    detail::slab_index().remove(slab);
    if (to_system) {
        slab.nodes.reset();
        slab.owner.reset();
        slab.capacity = 0;
    } else {
        detail::slab_pool().give(slab);
    }
}

detail::Block &Arena::Impl::new_block(const tidl_yfw_datatree *parent, detail::Block *holder,
                                      uint32_t capacity) {
    if (blocks.size() >= UINT32_MAX)
        detail::fail_assert("too many node arrays");
    detail::Block &block = blocks.emplace_back();
    block.index = static_cast<uint32_t>(blocks.size() - 1);
    block.set_parent(parent, holder);
    block.arena = this;
    allocate(block, detail::grown_capacity(capacity));
    return block;
}

Arena::Arena() : impl_(std::make_unique<Impl>()) {}
Arena::~Arena() = default;

char *Arena::text(std::string_view text) {
    return detail::intern(*impl_, text);
}

char *Arena::copy(std::string_view text) {
    return detail::copy_text(*impl_, text);
}

tidl_yfw_datatree *Arena::new_root() {
    tidl_yfw_datatree *root = impl_->new_block(nullptr, nullptr, 1).nodes;
    *root = tidl_yfw_datatree{};
    return root;
}

tidl_yfw_datatree *Arena::append_child(tidl_yfw_datatree *parent) {
    if (parent == nullptr)
        return nullptr;
    return detail::append_child(parent, *impl_, true).node;
}

void release_subtrees(tidl_yfw_datatree *node) {
    if (node == nullptr)
        return;
    detail::note_reshape();
    detail::release_below(node);
}

void release_kept_memory() {
    detail::slab_pool().clear();
    detail::chunks().clear();
#ifdef __GLIBC__
    // Freed blocks below the top of the heap go back to the system only when asked.
    malloc_trim(0);
#endif
}

const tidl_yfw_datatree *parent_of(const tidl_yfw_datatree *node) {
    const detail::Block *block = node != nullptr ? detail::block_containing(node) : nullptr;
    return block != nullptr ? block->parent() : nullptr;
}

int32_t effective_operation(const tidl_yfw_datatree *node) {
    for (; node != nullptr; node = parent_of(node))
        if (node->present_operation)
            return node->operation;
    return -1;
}

} // namespace yfw
