// One mapping run as a host sets it up: context, state, request, output root
// and sinks, and the framework's own bookkeeping behind ctx->session.
#include "internal.hpp"
#include "yfw_map_trace.h"

namespace {
// Error lines always reach the framework: it reports the last one's message.
constexpr uint32_t kErrorLevel = 1u << YFW_MAP_LEVEL_ERR;
} // namespace

std::string yfw_map_session::hierarchy_path(std::size_t depth) const {
    std::string path;
    for (std::size_t i = 0; i <= depth && i < hierarchy.size(); ++i) {
        path += '/';
        path += yfw::detail::text_of(hierarchy[i].node->tag);
    }
    return path;
}

namespace {
// The keys of the last hierarchy asked about: a list walk asks for every
// entry, and its entries differ only by the innermost frame. The frames below
// it are the same pushes while the one under it keeps its serial; the
// innermost frame's tag is checked by its text. The keys are rows of the
// schema table, so they outlast any session.
struct HierarchyKeysMemo {
    std::size_t levels = 0; // 0: nothing remembered
    uint64_t below = 0;     // the serial of the frame under the innermost, 0 for none
    std::array<char, 256> tag;
    std::string_view tag_text;
    std::span<const std::string_view> keys;

    static uint64_t serial_below(const std::vector<HierarchyFrame> &frames, std::size_t count) {
        return count >= 2 ? frames[count - 2].serial : 0;
    }
    bool holds(const std::vector<HierarchyFrame> &frames, std::size_t count) const {
        return count == levels && count != 0 && serial_below(frames, count) == below &&
               yfw::detail::is_text(frames[count - 1].node->tag, tag_text);
    }
    void keep(const std::vector<HierarchyFrame> &frames, std::size_t count,
              std::span<const std::string_view> found) {
        levels = 0;
        const char *innermost = count != 0 ? frames[count - 1].node->tag : nullptr;
        if (innermost == nullptr)
            return; // no text to check later
        const std::size_t length = std::strlen(innermost);
        if (length >= tag.size())
            return;
        std::memcpy(tag.data(), innermost, length + 1);
        tag_text = {tag.data(), length};
        below = serial_below(frames, count);
        keys = found;
        levels = count;
    }
};
HierarchyKeysMemo hierarchy_keys_memo;
} // namespace

std::span<const std::string_view> yfw_map_session::hierarchy_keys(std::size_t depth) const {
    const std::size_t count = depth < hierarchy.size() ? depth + 1 : hierarchy.size();
    if (hierarchy_keys_memo.holds(hierarchy, count))
        return hierarchy_keys_memo.keys;
    yfw::detail::Segments segments;
    for (std::size_t i = 0; i < count; ++i)
        yfw::detail::split_path(yfw::detail::text_of(hierarchy[i].node->tag), segments);
    std::span<const std::string_view> keys;
    if (!segments.empty()) {
        yfw::detail::SchemaHash hash;
        for (std::string_view segment : segments)
            hash.add_segment(segment);
        keys = yfw::detail::list_keys_hashed(hash.value, segments);
    }
    hierarchy_keys_memo.keep(hierarchy, count, keys);
    return keys;
}

std::size_t yfw_map_session::depth_of(const tidl_yfw_datatree *node) const {
    for (std::size_t i = hierarchy.size(); i-- > 0;)
        if (hierarchy[i].node == node)
            return i;
    return yfw::detail::kNoDepth;
}

namespace yfw {

Session::Session(uint32_t request_kind, bool oper_only) : impl_(std::make_unique<Impl>()) {
    Impl &s = *impl_;
    // The serials of two sessions never meet, so a push is known by its
    // serial across requests too (a session makes far fewer than 2^40).
    static uint64_t sessions = 0;
    s.next_serial = (++sessions << 40) + 1;
    s.request.request_kind = request_kind;
    if (oper_only) {
        s.request.datastore_selector = YFW_DATASTORE_OPERATIONAL;
        s.request.option_bits.nonconfig_only = 1;
    }
    s.output = s.arena.new_root();
    s.home = detail::arena_of(s.output);
    s.state.request = &s.request;
    s.state.root_node = s.output;
    s.err_sink.lines = &s.debug_log;
    s.err_sink.lines_on = false;
    s.err_sink.last_message = &s.error_line;
    s.ctx.debug_filter.level_mask = kErrorLevel;
    s.trace_sink.lines = &s.debug_log;
    s.ctx.state = &s.state;
    s.ctx.err_log = &s.err_sink;
    s.ctx.trace_log = &s.trace_sink;
    s.ctx.lstrace_handle = &s.ring;
    s.ctx.session = &s;
}

Session::~Session() {
    // The framework reports these to the client after the walk, then releases them.
    qvos_named_free(impl_->state.error_tag);
    qvos_named_free(impl_->state.error_message);
}

yfw_map_ctx *Session::ctx() {
    return &impl_->ctx;
}
yfw_map_state *Session::state() {
    return &impl_->state;
}
yfw_request *Session::request() {
    return &impl_->request;
}
tidl_yfw_datatree *Session::output() {
    return impl_->output;
}
Arena &Session::arena() {
    return impl_->arena;
}

void Session::note_input(tidl_yfw_datatree *root) {
    yfw_map_state &state = impl_->state;
    if (root == nullptr || state.node_data_count >= YFW_MAP_MAX_NODE_DATA)
        return;
    state.node_data[state.node_data_count++].tree = root;
    if (state.reg_dup_datatree == nullptr)
        state.reg_dup_datatree = root;
}

void Session::set_debug_log(bool on) {
    impl_->ctx.debug_filter.level_mask = on ? kErrorLevel | (1u << YFW_MAP_LEVEL_TRC) : kErrorLevel;
    impl_->err_sink.lines_on = on;
}

void Session::set_ring_trace(bool on) {
    impl_->ctx.trace_on = on ? 1u : 0u;
}

const std::vector<std::string> &Session::debug_log() const {
    return impl_->debug_log;
}
const std::vector<std::string> &Session::ring_trace() const {
    return impl_->ring.lines();
}
const std::string &Session::error_path() const {
    return impl_->error_path;
}
const std::string &Session::error_line() const {
    return impl_->error_line;
}

std::size_t Session::hierarchy_depth() const {
    return impl_->hierarchy.size();
}
std::size_t Session::itree_depth() const {
    return impl_->itree.size();
}
std::size_t Session::output_lists_open() const {
    return impl_->output_lists.size();
}

} // namespace yfw
