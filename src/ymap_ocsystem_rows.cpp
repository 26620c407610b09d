// Every mapper and walker row of the library, listed from the descriptions.
#include "ymap_ocsystem_modules.h"

namespace ymap {
namespace {

constexpr const MapperRow *kMappers[] = {
#define YMAP_PASS MAPPER_LIST
#include "ymap_ocsystem_modules.def"
#undef YMAP_PASS
};

constexpr const WalkerRow *kWalkers[] = {
#define YMAP_PASS WALKER_LIST
#include "ymap_ocsystem_modules.def"
#undef YMAP_PASS
};

} // namespace

std::span<const MapperRow *const> all_mapper_rows() {
    return kMappers;
}
std::span<const WalkerRow *const> all_walker_rows() {
    return kWalkers;
}

} // namespace ymap
