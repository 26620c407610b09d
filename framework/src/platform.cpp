// Platform services: an in-memory system database and the probe that tells
// whether the database exists on this host.
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "internal.hpp"
#include "qv_platform.h"

struct sysdb_connection {
    std::string bind_point;
};

namespace {

// The file whose readability tells a device that it has a system database.
constexpr std::string_view kSysdbLibrary = "/pkg/lib/libsysdb.so";

struct SysdbStore {
    std::map<std::string, std::string, std::less<>> items;
    bool bind_fails = false;
    bool present = false;
};

SysdbStore &store() {
    static SysdbStore db;
    return db;
}

} // namespace

namespace yfw::sysdb {
void set_item(std::string_view path, std::string_view value) {
    store().items.insert_or_assign(std::string(path), std::string(value));
}
void erase_item(std::string_view path) {
    if (auto it = store().items.find(path); it != store().items.end())
        store().items.erase(it);
}
void clear() {
    store() = SysdbStore{};
}
void set_bind_fails(bool fails) {
    store().bind_fails = fails;
}
void set_present(bool present) {
    store().present = present;
}
bool present() {
    return store().present;
}
} // namespace yfw::sysdb

extern "C" {

int _sysdb_bind(sysdb_connection **connection, const char *bind_point, uint32_t flags) {
    (void)flags;
    if (connection == nullptr || bind_point == nullptr)
        return EINVAL;
    // An absent database refuses binds too: a caller that found the file once
    // and does not look again still sees no database.
    if (store().bind_fails || !store().present)
        return ECONNREFUSED;
    *connection = new sysdb_connection{bind_point};
    return 0;
}

int sysdb_item_get(sysdb_connection *connection, const char *key, uint32_t *type_inout,
                   void **value, uint32_t *size, uint32_t zero) {
    (void)type_inout, (void)zero;
    if (connection == nullptr || key == nullptr || value == nullptr || size == nullptr)
        return EINVAL;
    auto it = store().items.find(connection->bind_point + key);
    if (it == store().items.end())
        return ENOENT;
    const std::string &text = it->second;
    auto *copy = static_cast<char *>(std::malloc(text.size() + 1));
    if (copy == nullptr)
        return ENOMEM;
    std::memcpy(copy, text.c_str(), text.size() + 1);
    *value = copy;
    *size = static_cast<uint32_t>(text.size());
    return 0;
}

int _sysdb_unbind(sysdb_connection *connection) {
    delete connection;
    return 0;
}

// The device's library answers from the presence switch; every other path is
// the host's own. The library probes with access() exactly as on a device, so
// this definition takes the place of the C library's for the whole process.
int access(const char *path, int mode) noexcept {
    if (path == kSysdbLibrary) {
        if (store().present)
            return 0;
        errno = ENOENT;
        return -1;
    }
    return faccessat(AT_FDCWD, path, mode, 0);
}

} // extern "C"
