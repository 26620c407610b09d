// The logging layer: the filtered debug log, the ring trace and its sequence
// numbers, and the tree dump.
#include <atomic>
#include <cstdarg>

#include "internal.hpp"
#include "yfw_map_trace.h"

namespace {

std::atomic<uint32_t> trace_index{0};

// Handles come from the context; anything that is not one of our sinks is ignored.
DebugSink *as_debug_sink(void *handle) {
    auto *sink = static_cast<DebugSink *>(handle);
    return sink != nullptr && sink->magic == DebugSink::kMagic && sink->lines != nullptr ? sink
                                                                                         : nullptr;
}

RingTrace *as_ring(void *handle) {
    auto *ring = static_cast<RingTrace *>(handle);
    return ring != nullptr && ring->magic == RingTrace::kMagic ? ring : nullptr;
}

void dump_node(std::vector<std::string> &lines, const tidl_yfw_datatree &node, std::size_t depth,
               const char *parent_ns) {
    std::string line(2 * depth, ' ');
    line += node.tag != nullptr ? node.tag : "(no tag)";
    if (node.namespace_ != nullptr && !yfw::detail::same_text(node.namespace_, parent_ns))
        line.append(" xmlns=").append(node.namespace_);
    if (node.value != nullptr)
        line.append(" = \"").append(node.value).append("\"");
    if (node.present_operation)
        line.append(" operation=").append(std::to_string(node.operation));
    if (node.present_is_key && node.is_key)
        line.append(" key");
    lines.push_back(std::move(line));
    const char *ns = node.namespace_ != nullptr ? node.namespace_ : parent_ns;
    for (const tidl_yfw_datatree &child : yfw::detail::children(&node))
        dump_node(lines, child, depth + 1, ns);
}

} // namespace

void RingTrace::append(std::string_view line) {
    if (slots.size() < kLines) {
        slots.emplace_back(line);
    } else {
        slots[next] = line;
        next = (next + 1) % kLines;
    }
    ordered.clear();
}

const std::vector<std::string> &RingTrace::lines() const {
    if (ordered.size() != slots.size()) {
        ordered.assign(slots.begin() + static_cast<std::ptrdiff_t>(next), slots.end());
        ordered.insert(ordered.end(), slots.begin(),
                       slots.begin() + static_cast<std::ptrdiff_t>(next));
    }
    return ordered;
}

namespace yfw {
uint32_t trace_index_drawn() {
    return trace_index.load();
}
} // namespace yfw

extern "C" {

int yfw_debug_should_log(const yfw_debug_filter *filter, uint32_t level) {
    return filter != nullptr && level < 32 && ((filter->level_mask >> level) & 1u) != 0 ? 1 : 0;
}

void _qvos_dt_log_filter_adv(void *handle, int a, int b, int c, int d, int e, int32_t *cell,
                             const char *format, ...) {
    (void)a, (void)b, (void)c, (void)d, (void)e;
    DebugSink *sink = as_debug_sink(handle);
    if (sink == nullptr || format == nullptr)
        return;
    // The cell keeps this filter's decision for the statement: undecided sites are let through.
    if (cell != nullptr) {
        if (*cell == -1)
            *cell = 1;
        if (*cell == 0)
            return;
    }
    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    const int length = std::vsnprintf(nullptr, 0, format, args);
    va_end(args);
    std::string line(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    if (length > 0)
        std::vsnprintf(line.data(), line.size() + 1, format, again);
    va_end(again);
    if (sink->last_message != nullptr) {
        // What the statement said, after the "ERR: YFW: ctx=%p," before it.
        const std::size_t ctx = line.find("ctx=");
        const std::size_t comma = ctx == std::string::npos ? ctx : line.find(',', ctx);
        std::string_view said(line);
        said.remove_prefix(comma == std::string::npos ? 0 : comma + 1);
        while (!said.empty() && said.back() == '\n')
            said.remove_suffix(1);
        sink->last_message->assign(said);
    }
    if (sink->lines_on)
        sink->lines->push_back(std::move(line));
}

uint32_t ret_nc_yfw_trace_index_incr(void) {
    return ++trace_index;
}

void _lstrace(void *handle, uint64_t flags, const char *text) {
    (void)flags;
    if (RingTrace *ring = as_ring(handle); ring != nullptr && text != nullptr)
        ring->append(text);
}

void yfw_map_print_datatree_internal(yfw_map_ctx *ctx, const tidl_yfw_datatree *tree,
                                     const char *label) {
    yfw_map_ctx &context = yfw::detail::checked(ctx);
    DebugSink *sink = as_debug_sink(context.trace_log);
    if (sink == nullptr || !yfw_debug_should_log(&context.debug_filter, YFW_MAP_LEVEL_TRC))
        return;
    const std::string name = label != nullptr ? label : "tree";
    if (tree == nullptr) {
        sink->lines->push_back(name + ": (null tree)");
        return;
    }
    sink->lines->push_back(name + ":");
    dump_node(*sink->lines, *tree, 1, nullptr);
}

} // extern "C"
