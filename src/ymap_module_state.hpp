// The little state of the library that outlives a call. The process-wide part
// is what the feature areas share across requests: the DNS flags that link
// the operational and the configuration tree, and the probe bytes of the
// system database. The Telnet flags belong to one context for the length of
// one native entry; the contract's context record has no field for them, so
// they are kept here, keyed by the context.
#pragma once

#include <cstdint>

#include "yfw_map.h"

namespace ymap {

struct ModuleState {
    int32_t is_ocsystem_dns_oper = 0;
    int32_t ipv4_host_is_present = 0;
    int32_t ipv6_host_is_present = 0;
    uint8_t check_grpc_server_name_probe = 0; // 1 once the system database was found
    uint8_t get_grpc_server_name_probe = 0;   // likewise, for the way back
};

ModuleState &module_state();

// The flags of one context.
struct ContextFlags {
    uint32_t ipv4_seen = 0;
    uint32_t ipv6_seen = 0;
};

// The flags of `ctx`, zero for a context not seen before. A fixed number of
// slots serves the contexts in turn, so nothing is allocated; a context that
// lost its slot starts again from zero, which is harmless since the flags
// live only for the length of one native entry.
ContextFlags &context_flags(const yfw_map_ctx *ctx);

// Everything back to its state at load: for tests, so that none depends on
// the order in which they run.
void reset_module_state();

} // namespace ymap
