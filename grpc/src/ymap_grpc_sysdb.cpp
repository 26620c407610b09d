// The system database side of the gRPC server's name.
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "ymap_grpc.hpp"

namespace ymap::grpc {
namespace {

constexpr const char kLibrary[] = "/pkg/lib/libsysdb.so";
constexpr const char kBindPoint[] = "/cfg/gl/ems/";
constexpr const char kRunningItem[] = "ord_A/grpc/running";
constexpr const char kNameItem[] = "ord_A/grpc/name";

} // namespace

bool sysdb_present(uint8_t &probe) {
    if (probe == 0 && access(kLibrary, R_OK) == 0)
        probe = 1;
    return probe != 0;
}

sysdb_connection *bind(uint8_t &probe) {
    sysdb_connection *connection = nullptr;
    if (!sysdb_present(probe) || _sysdb_bind(&connection, kBindPoint, 0) != 0)
        return nullptr;
    return connection;
}

void unbind(sysdb_connection *connection, uint8_t &probe) {
    if (connection != nullptr && sysdb_present(probe))
        (void)_sysdb_unbind(connection);
}

NameRead read_name(yfw_map_ctx *ctx, const char *fn, sysdb_connection *connection, char *name,
                   cerrno &status) {
    uint32_t type = SYSDB_TYPE_STRING;
    void *value = nullptr;
    uint32_t size = 0;
    const int got = sysdb_item_get(connection, kNameItem, &type, &value, &size, 0);
    if (got != 0) {
        status = static_cast<cerrno>(got);
        return NameRead::Failed;
    }
    NameRead read = NameRead::Empty;
    if (size != 0 && value != nullptr) {
        // The item need not be terminated: never read past its size.
        const std::size_t limit = size < kNameSize ? size : kNameSize;
        const std::size_t length = strnlen(static_cast<const char *>(value), limit);
        const std::size_t copied = length < kNameSize ? length : kNameSize - 1;
        std::memcpy(name, value, copied);
        name[copied] = '\0';
        YFW_MAP_TRC(ctx, fn, "non default server name configured %s", name);
        read = NameRead::Named;
    } else {
        YFW_MAP_ERR(ctx, fn, "ERROR: Name is configured, but NULL");
    }
    std::free(value);
    return read;
}

} // namespace ymap::grpc

extern "C" {

YMAP_EXPORT int is_grpc_configured(yfw_map_ctx *ctx, sysdb_connection *connection) {
    YMAP_ASSERT_CTX(ctx);
    uint32_t type = SYSDB_TYPE_FLAG;
    void *value = nullptr;
    uint32_t size = 0;
    if (sysdb_item_get(connection, ymap::grpc::kRunningItem, &type, &value, &size, 0) != 0)
        return 0;
    YFW_MAP_TRC(ctx, __func__, "gRPC enabled!");
    std::free(value);
    return 1;
}

YMAP_EXPORT cerrno get_cfg_svr_name(yfw_map_ctx *ctx, sysdb_connection *connection, char *name) {
    YMAP_ASSERT_CTX(ctx);
    cerrno status = YFW_SUCCESS;
    switch (ymap::grpc::read_name(ctx, __func__, connection, name, status)) {
    case ymap::grpc::NameRead::Failed:
        return status;
    case ymap::grpc::NameRead::Named:
        return YFW_SUCCESS;
    case ymap::grpc::NameRead::Empty:
        break;
    }
    return static_cast<cerrno>(-1);
}

YMAP_EXPORT int do_svr_names_match(const char *lhs, const char *rhs) {
    if (lhs == nullptr || rhs == nullptr)
        return 0;
    return std::strncmp(lhs, rhs, ymap::grpc::kNameSize) == 0 ? 1 : 0;
}
}
