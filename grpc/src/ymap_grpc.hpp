// The gRPC server's name in the system database, shared by both directions:
// the probe of the database library, the bind and the read of the name.
#pragma once

#include <cstddef>
#include <cstdint>

#include "qv_platform.h"
#include "ymap_ocsystem_modules.h"

// Names are kept and compared in buffers of this size.
#define YMAP_GRPC_NAME_SIZE 64

extern "C" {
YMAP_EXPORT int is_grpc_configured(yfw_map_ctx *ctx, sysdb_connection *connection);
YMAP_EXPORT cerrno get_cfg_svr_name(yfw_map_ctx *ctx, sysdb_connection *connection, char *name);
YMAP_EXPORT int do_svr_names_match(const char *lhs, const char *rhs);
}

namespace ymap::grpc {

inline constexpr std::size_t kNameSize = YMAP_GRPC_NAME_SIZE;
inline constexpr const char kDefaultName[] = "DEFAULT";

// Whether the database library is there. A success is kept in `probe`; a
// failure is not, so the next call looks again.
bool sysdb_present(uint8_t &probe);

// A bound connection, or null when the database is missing or the bind fails.
sysdb_connection *bind(uint8_t &probe);
// Unbinds, unless the library has gone (then the connection is only dropped).
void unbind(sysdb_connection *connection, uint8_t &probe);

enum class NameRead : uint8_t { Failed, Named, Empty };

// Reads the configured server name into `name` (kNameSize bytes, always
// terminated), tracing under `fn`. `status` gets the failed read's status.
NameRead read_name(yfw_map_ctx *ctx, const char *fn, sysdb_connection *connection, char *name,
                   cerrno &status);

} // namespace ymap::grpc
