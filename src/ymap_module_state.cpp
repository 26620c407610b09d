// The state of the library that outlives a call.
#include "ymap_module_state.hpp"

#include <array>

namespace ymap {
namespace {

// Requests run one at a time, so a few slots serve every context that can be
// inside one native entry.
constexpr std::size_t kContextSlots = 8;

struct ContextSlot {
    const yfw_map_ctx *ctx = nullptr;
    ContextFlags flags;
};

struct State {
    ModuleState module;
    std::array<ContextSlot, kContextSlots> slots{};
    std::size_t next_slot = 0;
};

State &state() {
    static State s;
    return s;
}

} // namespace

ModuleState &module_state() {
    return state().module;
}

ContextFlags &context_flags(const yfw_map_ctx *ctx) {
    State &s = state();
    for (ContextSlot &slot : s.slots)
        if (slot.ctx == ctx)
            return slot.flags;
    ContextSlot &slot = s.slots[s.next_slot];
    s.next_slot = (s.next_slot + 1) % kContextSlots;
    slot = ContextSlot{ctx, {}};
    return slot.flags;
}

void reset_module_state() {
    state() = State{};
}

} // namespace ymap
