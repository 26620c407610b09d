// Node arrays and texts, and the process-wide index that tells for any node in
// an arena array which node holds the array (operation inheritance needs it).
#include <algorithm>
#include <cstring>

#include "internal.hpp"

namespace yfw {

struct Arena::Impl {
    std::pmr::monotonic_buffer_resource text_memory;
    std::unordered_set<std::string_view> texts;
    std::deque<detail::Block> blocks; // headers stay put; a released one has no nodes

    Impl() = default;
    Impl(const Impl &) = delete;
    Impl &operator=(const Impl &) = delete;
    ~Impl();

    detail::Block &new_block(const tidl_yfw_datatree *parent, uint32_t capacity);
};

namespace detail {
namespace {

// Blocks by the address of their first node. One thread uses the framework.
std::map<const tidl_yfw_datatree *, Block *, std::less<>> &block_index() {
    static std::map<const tidl_yfw_datatree *, Block *, std::less<>> index;
    return index;
}

void register_block(Block &block) {
    block_index().emplace(block.nodes.get(), &block);
}

void unregister_block(const Block &block) {
    if (block.nodes)
        block_index().erase(block.nodes.get());
}

uint32_t grown_capacity(uint32_t needed) {
    if (needed > UINT32_MAX / 2)
        fail_assert("node array too large");
    return std::max<uint32_t>(4, needed * 2);
}

// Moves the live nodes of `block` into a larger array.
void grow(Block &block, uint32_t live, uint32_t needed) {
    auto fresh = std::make_unique<tidl_yfw_datatree[]>(grown_capacity(needed));
    std::copy_n(block.nodes.get(), live, fresh.get());
    unregister_block(block);
    block.nodes = std::move(fresh);
    block.capacity = grown_capacity(needed);
    register_block(block);
    fix_parents(block, 0, live);
}

} // namespace

void fail_assert(const char *what) {
    std::fprintf(stderr, "yfw stand-in: assertion failed: %s\n", what);
    std::abort();
}

Block *block_starting_at(const tidl_yfw_datatree *array) {
    auto &index = block_index();
    auto it = index.find(array);
    return it == index.end() ? nullptr : it->second;
}

Block *block_containing(const tidl_yfw_datatree *node) {
    auto &index = block_index();
    auto it = index.upper_bound(node);
    if (it == index.begin())
        return nullptr;
    Block *block = std::prev(it)->second;
    const tidl_yfw_datatree *first = block->nodes.get();
    return std::less<>{}(node, first + block->capacity) ? block : nullptr;
}

Arena::Impl *arena_of(const tidl_yfw_datatree *node) {
    const Block *block = block_containing(node);
    return block != nullptr ? block->arena : nullptr;
}

std::span<tidl_yfw_datatree> children(const tidl_yfw_datatree *node) {
    if (node == nullptr || !node->present_subtrees || node->subtrees == nullptr)
        return {};
    return {node->subtrees, node->subtree_count};
}

const tidl_yfw_datatree *child_with_tag(const tidl_yfw_datatree *node, std::string_view tag) {
    auto kids = children(node);
    auto it = std::ranges::find_if(
        kids, [tag](const tidl_yfw_datatree &kid) { return kid.tag != nullptr && tag == kid.tag; });
    return it == kids.end() ? nullptr : &*it;
}

void fix_parents(Block &block, uint32_t from, uint32_t to) {
    for (uint32_t i = from; i < to; ++i) {
        const tidl_yfw_datatree &node = block.nodes[i];
        if (Block *below = node.present_subtrees ? block_starting_at(node.subtrees) : nullptr)
            below->parent = &node;
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
    Block &block = arena.new_block(parent, grown_capacity(static_cast<uint32_t>(kids.size())));
    std::copy(kids.begin(), kids.end(), block.nodes.get());
    fix_parents(block, 0, static_cast<uint32_t>(kids.size()));
    parent->subtrees = block.nodes.get();
    return &block;
}

tidl_yfw_datatree *append_child(tidl_yfw_datatree *parent, Arena::Impl &home, bool external) {
    Block *block = own_children(parent, home);
    const uint32_t live = block != nullptr ? parent->subtree_count : 0;
    if (block == nullptr) {
        Block *holder = block_containing(parent);
        Arena::Impl &arena = holder != nullptr ? *holder->arena : home;
        block = &arena.new_block(parent, grown_capacity(1));
    } else if (live == block->capacity) {
        grow(*block, live, live + 1);
    }
    if (external)
        block->forget_lookups();
    tidl_yfw_datatree *child = &block->nodes[live];
    *child = tidl_yfw_datatree{};
    yfw_dt_set_subtrees(parent, block->nodes.get(), live + 1);
    return child;
}

void remove_child(tidl_yfw_datatree *parent, uint32_t pos) {
    Block *block = block_starting_at(parent->subtrees);
    const uint32_t live = parent->subtree_count;
    if (block == nullptr || pos >= live)
        fail_assert("remove_child outside an arena array");
    tidl_yfw_datatree *nodes = block->nodes.get();
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
    for (auto &[tag, list] : lookups.lists) {
        if (list.current == pos)
            list.current = kNone;
        else if (list.current != kNone && list.current > pos)
            --list.current;
        if (was_last)
            continue;
        std::erase_if(list.by_key, [pos](const auto &entry) { return entry.second == pos; });
        for (auto &entry : list.by_key)
            if (entry.second > pos)
                --entry.second;
    }
}

void release_children(tidl_yfw_datatree *node) {
    if (Block *block = node->present_subtrees ? block_starting_at(node->subtrees) : nullptr) {
        unregister_block(*block);
        block->nodes.reset();
        block->capacity = 0;
        block->forget_lookups();
    }
    yfw_dt_clear_subtrees(node);
}

char *intern(Arena::Impl &arena, std::string_view text) {
    if (auto it = arena.texts.find(text); it != arena.texts.end())
        return const_cast<char *>(it->data());
    auto *copy = static_cast<char *>(arena.text_memory.allocate(text.size() + 1, 1));
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    arena.texts.emplace(copy, text.size());
    return copy;
}

std::vector<std::string_view> split_path(std::string_view path) {
    std::vector<std::string_view> segments;
    while (!path.empty()) {
        const std::size_t slash = path.find('/');
        std::string_view segment = path.substr(0, slash);
        path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
        if (const std::size_t colon = segment.rfind(':'); colon != std::string_view::npos)
            segment.remove_prefix(colon + 1);
        if (!segment.empty())
            segments.push_back(segment);
    }
    return segments;
}

std::string normalize_path(std::string_view path) {
    std::string out;
    for (std::string_view segment : split_path(path)) {
        out += '/';
        out += segment;
    }
    return out;
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
    for (const detail::Block &block : blocks)
        detail::unregister_block(block);
}

detail::Block &Arena::Impl::new_block(const tidl_yfw_datatree *parent, uint32_t capacity) {
    detail::Block &block = blocks.emplace_back();
    block.nodes = std::make_unique<tidl_yfw_datatree[]>(capacity);
    block.capacity = capacity;
    block.parent = parent;
    block.arena = this;
    detail::register_block(block);
    return block;
}

Arena::Arena() : impl_(std::make_unique<Impl>()) {}
Arena::~Arena() = default;

char *Arena::text(std::string_view text) {
    return detail::intern(*impl_, text);
}

tidl_yfw_datatree *Arena::new_root() {
    return impl_->new_block(nullptr, 1).nodes.get();
}

tidl_yfw_datatree *Arena::append_child(tidl_yfw_datatree *parent) {
    if (parent == nullptr)
        return nullptr;
    return detail::append_child(parent, *impl_, true);
}

const tidl_yfw_datatree *parent_of(const tidl_yfw_datatree *node) {
    const detail::Block *block = node != nullptr ? detail::block_containing(node) : nullptr;
    return block != nullptr ? block->parent : nullptr;
}

int32_t effective_operation(const tidl_yfw_datatree *node) {
    for (; node != nullptr; node = parent_of(node))
        if (node->present_operation)
            return node->operation;
    return -1;
}

} // namespace yfw
