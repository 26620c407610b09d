// Hand-written functions of Tarvex-QV-ip-tcp-cfg, native to OpenConfig.
#include "ymap_module_state.hpp"
#include "ymap_ocsystem_modules.h"

using ymap::text_equal;

// The list mapper of a native Telnet VRF entry. The OpenConfig entries are
// opened by the key mapper, which needs to know the families the entry holds
// before its children are walked; the flags live on the context until then.
YMAP_HAND(qv_oc_vrf_list) {
    const uint32_t count = node->present_subtrees != 0 ? node->subtree_count : 0;
    YFW_MAP_TRC(ctx, name, "Subtree count is %d", static_cast<int>(count));
    if (node->subtrees == nullptr)
        return YFW_SUCCESS;
    ymap::ContextFlags &flags = ymap::context_flags(ctx);
    for (uint32_t i = 0; i < count; ++i) {
        const char *tag = node->subtrees[i].tag;
        if (tag == nullptr)
            continue;
        YFW_MAP_TRC(ctx, name, "TAG for subtree %d is %s", static_cast<int>(i), tag);
        if (text_equal(tag, "ipv4"))
            flags.ipv4_seen = 1;
        else if (text_equal(tag, "ipv6"))
            flags.ipv6_seen = 1;
    }
    return YFW_SUCCESS;
}
