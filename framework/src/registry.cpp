// The schema knowledge of the framework: the modules of both models and the
// keys of every list, which is what path resolution and the error path need.
#include <algorithm>
#include <array>

#include "internal.hpp"
#include "ymap_namespaces.h"

namespace yfw {
namespace {

// The modules the mapping library names, from its own list: the stand-in
// knows exactly the schema the library is built for.
#define YFW_MODULE_(id, name, ns) Module{name, ns},
constexpr std::array kModules = {YMAP_MODULES(YFW_MODULE_)};
#undef YFW_MODULE_

// Registration records copy namespaces into 81 bytes.
static_assert(std::ranges::all_of(kModules, [](const Module &m) { return m.ns.size() <= 80; }));
static_assert(std::ranges::all_of(kModules, [](const Module &m) {
    return !m.name.starts_with("Tarvex-QV-") ||
           (m.ns.ends_with(m.name) &&
            m.ns.substr(0, m.ns.size() - m.name.size()).ends_with("/ns/yang/"));
}));

struct ListRow {
    std::string_view path;
    std::array<std::string_view, 2> keys;
    constexpr std::size_t key_count() const { return keys[1].empty() ? 1 : 2; }
};

// clang-format off
constexpr std::array kLists = {
    // openconfig-system, with the gRPC and terminal extension augments
    ListRow{"/system/mount-points/mount-point",                                   {"name"}},
    ListRow{"/system/dns/servers/server",                                         {"address"}},
    ListRow{"/system/dns/host-entries/host-entry",                                {"hostname"}},
    ListRow{"/system/ntp/ntp-keys/ntp-key",                                       {"key-id"}},
    ListRow{"/system/ntp/servers/server",                                         {"address"}},
    ListRow{"/system/logging/console/selectors/selector",                         {"facility", "severity"}},
    ListRow{"/system/logging/remote-servers/remote-server",                       {"host"}},
    ListRow{"/system/logging/remote-servers/remote-server/selectors/selector",    {"facility", "severity"}},
    ListRow{"/system/aaa/authentication/users/user",                              {"username"}},
    ListRow{"/system/aaa/authorization/events/event",                             {"event-type"}},
    ListRow{"/system/aaa/accounting/events/event",                                {"event-type"}},
    ListRow{"/system/aaa/server-groups/server-group",                             {"name"}},
    ListRow{"/system/aaa/server-groups/server-group/servers/server",              {"address"}},
    ListRow{"/system/cpus/cpu",                                                   {"index"}},
    ListRow{"/system/processes/process",                                          {"pid"}},
    ListRow{"/system/alarms/alarm",                                               {"id"}},
    ListRow{"/system/messages/debug-entries/debug-service",                       {"service"}},
    ListRow{"/system/license/licenses/license",                                   {"license-id"}},
    ListRow{"/system/grpc-servers/grpc-server",                                   {"name"}},
    ListRow{"/system/telnet-server/ipv4/vrf",                                     {"vrf-name"}},
    ListRow{"/system/telnet-server/ipv6/vrf",                                     {"vrf-name"}},
    // openconfig-messages
    ListRow{"/messages/debug-entries/debug-service",                              {"service"}},
    // Tarvex-QV-infra-infra-cfg
    ListRow{"/banners/banner",                                                    {"banner-name"}},
    // Tarvex-QV-ip-domain-cfg
    ListRow{"/ip-domain/vrfs/vrf",                                                {"vrf-name"}},
    ListRow{"/ip-domain/vrfs/vrf/lists/list",                                     {"order", "list-name"}},
    ListRow{"/ip-domain/vrfs/vrf/servers/server",                                 {"order", "server-address"}},
    ListRow{"/ip-domain/vrfs/vrf/ipv4-hosts/ipv4-host",                           {"host-name"}},
    ListRow{"/ip-domain/vrfs/vrf/ipv6-hosts/ipv6-host",                           {"host-name"}},
    // Tarvex-QV-PRIVATE-oc-dns-oper
    ListRow{"/oc-dns/system/dns/servers/server",                                  {"address"}},
    ListRow{"/oc-dns/system/dns/host-entries/host-entry",                         {"host-name"}},
    // Tarvex-QV-ip-ntp-cfg
    ListRow{"/ntp/peer-vrfs/peer-vrf",                                            {"vrf-name"}},
    ListRow{"/ntp/peer-vrfs/peer-vrf/peer-ipv4s/peer-ipv4",                       {"address-ipv4"}},
    ListRow{"/ntp/peer-vrfs/peer-vrf/peer-ipv6s/peer-ipv6",                       {"address-ipv6"}},
    ListRow{"/ntp/peer-vrfs/peer-vrf/peer-ipv4s/peer-ipv4/peer-type-ipv4",        {"peer-type"}},
    ListRow{"/ntp/peer-vrfs/peer-vrf/peer-ipv6s/peer-ipv6/peer-type-ipv6",        {"peer-type"}},
    ListRow{"/ntp/authentication/keys/key",                                       {"key-number"}},
    ListRow{"/ntp/authentication/trusted-keys/trusted-key",                      {"key-number"}},
    // Tarvex-QV-PRIVATE-ocsystem-ntp-telemetry-oper
    ListRow{"/ocntp/system/ntp/servers/server",                                   {"address"}},
    // Tarvex-QV-infra-syslog-cfg
    ListRow{"/syslog/host-server/vrfs/vrf",                                       {"vrf-name"}},
    ListRow{"/syslog/host-server/vrfs/vrf/hosts/host",                            {"host-name"}},
    ListRow{"/syslog/host-server/vrfs/vrf/ipv4s/ipv4",                            {"address"}},
    ListRow{"/syslog/host-server/vrfs/vrf/ipv6s/ipv6",                            {"address"}},
    ListRow{"/syslog/files/file",                                                {"file-name"}},
    // Tarvex-QV-crypto-ssh-cfg
    ListRow{"/ssh/server/vrf-table/vrf",                                          {"vrf-name"}},
    ListRow{"/ssh/server/netconf-vrf-table/vrf",                                  {"vrf-name"}},
    ListRow{"/ssh/server/trustpoint/usertps/usertp",                              {"tp-name"}},
    ListRow{"/ssh/server/usernames/username",                                     {"name"}},
    // Tarvex-QV-ip-tcp-cfg
    ListRow{"/ip/tinetd/services/telnet/vrfs/vrf",                                {"vrf-name"}},
    ListRow{"/ip/tinetd/services/tftp/vrfs/vrf",                                  {"vrf-name"}},
    ListRow{"/ip-tcp/ao/keychains/keychain",                                      {"name"}},
    ListRow{"/ip-tcp/ao/keychains/keychain/keys/key",                             {"key-id"}},
    // Tarvex-QV-PRIVATE-octelnet-oper
    ListRow{"/octelnet/system/telnet-server/ipv4s/ipv4",                          {"vrf-name"}},
    ListRow{"/octelnet/system/telnet-server/ipv6s/ipv6",                          {"vrf-name"}},
    // Tarvex-QV-man-ems-cfg
    ListRow{"/grpc/tunnel/destinations/destination",                              {"address", "port"}},
    // Tarvex-QV-PRIVATE-oc-ems-oper
    ListRow{"/oc-ems/system/grpc-servers/grpc-server",                            {"name"}},
    // Tarvex-QV-aaa-lib-cfg
    ListRow{"/aaa/accountings/accounting",                                        {"type", "listname"}},
    ListRow{"/aaa/authorizations/authorization",                                  {"type", "listname"}},
    ListRow{"/aaa/authentications/authentication",                                {"type", "listname"}},
    ListRow{"/aaa/authorization-nacms/authorization-nacm",                        {"listname"}},
    // Tarvex-QV-aaa-locald-cfg
    ListRow{"/aaa/usernames/username",                                            {"ordering-index", "name"}},
    ListRow{"/aaa/usernames/username/usergroup-under-usernames/usergroup-under-username", {"name"}},
    ListRow{"/aaa/password-policies/password-policy",                             {"name"}},
    ListRow{"/aaa/taskgroups/taskgroup",                                          {"name"}},
    ListRow{"/aaa/taskgroups/taskgroup/taskgroup-under-taskgroups/taskgroup-under-taskgroup", {"name"}},
    ListRow{"/aaa/taskgroups/taskgroup/tasks/task",                               {"task-id"}},
    ListRow{"/aaa/usergroups/usergroup",                                          {"name"}},
    ListRow{"/aaa/usergroups/usergroup/taskgroup-under-usergroups/taskgroup-under-usergroup", {"name"}},
    ListRow{"/aaa/usergroups/usergroup/usergroup-under-usergroups/usergroup-under-usergroup", {"name"}},
    // Tarvex-QV-aaa-tacacs-cfg
    ListRow{"/aaa/server-groups/tacacs-server-groups/tacacs-server-group",        {"server-group-name"}},
    ListRow{"/aaa/server-groups/tacacs-server-groups/tacacs-server-group/private-servers/private-server", {"ip-address", "port-number"}},
    ListRow{"/aaa/server-groups/tacacs-server-groups/tacacs-server-group/servers/server", {"ip-address"}},
    ListRow{"/aaa/tacacs/hosts/host",                                             {"ip-address", "port-number"}},
    ListRow{"/aaa/tacacs/vrfs/vrf",                                               {"vrf-name"}},
    // Tarvex-QV-PRIVATE-ocsystem-aaa-telemetry-oper
    ListRow{"/ocaaa/system/aaa/server-groups/server-group",                       {"name"}},
    ListRow{"/ocaaa/system/aaa/server-groups/server-group/servers/server",        {"address"}},
    // Tarvex-QV-PRIVATE-ocsystem-cpu-oper
    ListRow{"/ocsystemcpu/system/cpuses/cpus",                                    {"index"}},
    // Tarvex-QV-PRIVATE-alarm-mgr-oc-oper
    ListRow{"/amfm-edt/system/alarms/alarm",                                      {"id"}},
};
// clang-format on

// Every add resolves each prefix of its path against this table, so it is
// looked up by a hash of the path that the caller extends segment by segment.
constexpr std::size_t kListSlots = 256;
static_assert(kLists.size() < kListSlots / 2, "keep the table sparse");

struct ListSlot {
    uint64_t hash = 0;
    uint16_t row = 0; // 1 + the row's index; 0 for an empty slot
};

constexpr uint64_t hash_of(std::string_view normalized) {
    detail::SchemaHash hash;
    for (char c : normalized)
        hash.add(c);
    return hash.value;
}

constexpr auto kListTable = [] {
    std::array<ListSlot, kListSlots> slots{};
    for (uint16_t i = 0; i < kLists.size(); ++i) {
        const uint64_t hash = hash_of(kLists[i].path);
        std::size_t at = hash % kListSlots;
        while (slots[at].row != 0)
            at = (at + 1) % kListSlots;
        slots[at] = {hash, static_cast<uint16_t>(i + 1)};
    }
    return slots;
}();

constexpr bool unique_paths() {
    for (std::size_t i = 0; i < kLists.size(); ++i)
        for (std::size_t j = i + 1; j < kLists.size(); ++j)
            if (kLists[i].path == kLists[j].path)
                return false;
    return true;
}
static_assert(unique_paths(), "a list path appears twice");
static_assert(std::ranges::all_of(kLists, [](const ListRow &row) {
    return row.path.starts_with('/') && !row.keys[0].empty() && row.path.find(':') == row.path.npos;
}));

} // namespace

std::span<const Module> modules() {
    return kModules;
}

const Module *module_by_name(std::string_view name) {
    auto it = std::ranges::find(kModules, name, &Module::name);
    return it == kModules.end() ? nullptr : &*it;
}

const Module *module_by_namespace(std::string_view ns) {
    auto it = std::ranges::find(kModules, ns, &Module::ns);
    return it == kModules.end() ? nullptr : &*it;
}

namespace detail {
namespace {
constexpr std::size_t module_index(std::string_view name) {
    for (std::size_t i = 0; i < kModules.size(); ++i)
        if (kModules[i].name == name)
            return i;
    throw "a module the table does not hold"; // fails the constant evaluation
}

// Augments whose target lies in another module's tree, by module: the
// augmented node's path without prefixes, segment by segment.
struct AugmentRow {
    std::size_t module;
    std::array<std::string_view, 2> target;
    std::size_t depth; // the segments of the target
    std::size_t base;  // the module that holds the target
    constexpr AugmentRow(std::string_view name, std::array<std::string_view, 2> steps,
                         std::string_view base_name)
        : module(module_index(name)), target(steps), depth(steps[1].empty() ? 1 : 2),
          base(module_index(base_name)) {}
};
constexpr std::array kAugments = {
    AugmentRow{"openconfig-system-grpc", {"system"}, "openconfig-system"},
    AugmentRow{"Tarvex-QV-openconfig-system-terminal-ext",
               {"system", "telnet-server"},
               "openconfig-system"},
};
static_assert(
    [] {
        for (std::size_t i = 0; i < kAugments.size(); ++i)
            for (std::size_t j = i + 1; j < kAugments.size(); ++j)
                if (kAugments[i].module == kAugments[j].module)
                    return false;
        return true;
    }(),
    "one augment row a module");

const AugmentRow *augment_of(const Module *module) {
    auto it = std::ranges::find_if(kAugments, [module](const AugmentRow &row) {
        return module != nullptr && &kModules[row.module] == module;
    });
    return it == kAugments.end() ? nullptr : &*it;
}
} // namespace

std::size_t augment_target_depth(const char *ns, std::span<const std::string_view> segments,
                                 const char **base_ns) {
    // Asked with the same namespace add after add: the last module's augment,
    // while that pointer still holds that module's text.
    static const char *last_ns = nullptr;
    static const Module *last_module = nullptr;
    static const AugmentRow *last_row = nullptr;
    if (ns == nullptr)
        return 0;
    if (ns != last_ns || last_module == nullptr || !same_text(ns, last_module->ns.data())) {
        last_ns = ns;
        last_module = module_by_namespace(ns);
        last_row = augment_of(last_module);
    }
    const AugmentRow *row = last_row;
    if (row == nullptr || segments.size() < row->depth || segments[0] != row->target[0] ||
        (row->depth == 2 && segments[1] != row->target[1]))
        return 0;
    *base_ns = kModules[row->base].ns.data();
    return row->depth;
}
} // namespace detail

namespace detail {
namespace {
template <typename Same> std::span<const std::string_view> keys_by_hash(uint64_t hash, Same same) {
    for (std::size_t at = hash % kListSlots; kListTable[at].row != 0; at = (at + 1) % kListSlots) {
        const ListRow &row = kLists[kListTable[at].row - 1u];
        if (kListTable[at].hash == hash && same(row.path))
            return {row.keys.data(), row.key_count()};
    }
    return {};
}
} // namespace

std::span<const std::string_view> list_keys_hashed(uint64_t hash, std::string_view normalized) {
    return keys_by_hash(hash, [normalized](std::string_view path) { return path == normalized; });
}

std::span<const std::string_view> list_keys_hashed(uint64_t hash,
                                                   std::span<const std::string_view> segments) {
    return keys_by_hash(hash, [segments](std::string_view path) {
        for (std::string_view segment : segments) {
            if (!path.starts_with('/') || !path.substr(1).starts_with(segment))
                return false;
            path.remove_prefix(1 + segment.size());
        }
        return path.empty();
    });
}
} // namespace detail

std::span<const std::string_view> list_keys(std::string_view schema_path) {
    std::string scratch;
    const std::string_view path = detail::normalized_path(schema_path, scratch);
    return detail::list_keys_hashed(hash_of(path), path);
}

std::string describe_segment(const tidl_yfw_datatree &node, std::string_view schema_path,
                             const char *parent_ns) {
    std::string out;
    append_segment(out, node, schema_path, parent_ns);
    return out;
}

void append_segment(std::string &out, const tidl_yfw_datatree &node, std::string_view schema_path,
                    const char *parent_ns) {
    if (node.namespace_ != nullptr && !detail::same_text(node.namespace_, parent_ns)) {
        const Module *module = module_by_namespace(node.namespace_);
        out += module != nullptr ? module->name : std::string_view(node.namespace_);
        out += ':';
    }
    out += detail::text_of(node.tag);
    for (std::string_view key : list_keys(schema_path)) {
        auto kids = detail::children(&node);
        auto leaf = std::ranges::find_if(kids, [key](const tidl_yfw_datatree &kid) {
            return kid.tag != nullptr && key == kid.tag && kid.value != nullptr;
        });
        if (leaf == kids.end())
            continue;
        const std::string_view value = leaf->value;
        const char quote = value.find('\'') == std::string_view::npos ? '\'' : '"';
        out.append("[").append(key).append("=");
        out.append(1, quote).append(value).append(1, quote).append("]");
    }
}

} // namespace yfw
