// A request built from the bytes: its kind, a root walker of the registered
// trees and an input tree whose tags, namespaces and values come from small
// dictionaries of the names the walkers know (and a few they do not), so that
// most inputs get past the root tests into the mappers. Whatever the walk
// returns, it must return a known status and leave the context, the
// framework's bookkeeping and the named allocations as it found them.
//
// Input layout, one byte each, reads past the end give 0:
//   header   bits 0-2 request kind, 3 oper_only, 4 debug log, 5 ring trace,
//            6 print_data after the walk, 7 a system database whose
//            running gRPC server is named "router1"
//   walker   (mod 24) 0-3 the OpenConfig root, 4-23 the native root of
//            each registration in order
//   node     tag (0 at the root: the walker's own root tag; 0xff: none),
//            namespace (mod 16: 0-4 the parent's, else kNamespaces),
//            flags (bits 0-2 operation, 3-4 value, 5 xpath error mark,
//            6+7 children announced but missing), [value], [bogus count],
//            child count (mod 5), then the children, depth first
//   Set WALK_FUZZ_VERBOSE to print the input and output of each run.
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>

#include "ocsysmap_io.hpp"
#include "yfw/standin.hpp"
#include "yfw_map.h"
#include "ymap_ocsystem.h"

namespace {

constexpr std::size_t kMaxDepth = 8;
constexpr std::size_t kMaxNodes = 200;
constexpr uint32_t kMaxChildren = 4;

// 3 is no kind of the contract: a walker must still leave a known status.
constexpr std::array<uint32_t, 6> kKinds = {KIND_GET_CONFIG, KIND_GET,    KIND_EDIT_A,
                                            KIND_EDIT_B,     KIND_EDIT_C, 3};

// Index 0 is the most frequent pick (bytes past the end are 0).
constexpr auto kTags = std::to_array<std::string_view>({
    "config",
    "state",
    "system",
    "hostname",
    "login-banner",
    "motd-banner",
    "clock",
    "timezone-name",
    "memory",
    "physical",
    "reserved",
    "cpus",
    "cpu",
    "index",
    "total",
    "user",
    "kernel",
    "nice",
    "idle",
    "wait",
    "hardware-interrupt",
    "software-interrupt",
    "instant",
    "avg",
    "min",
    "max",
    "interval",
    "min-time",
    "max-time",
    "alarms",
    "alarm",
    "id",
    "resource",
    "text",
    "time-created",
    "severity",
    "type-id",
    "mount-points",
    "mount-point",
    "name",
    "domain-name",
    "current-datetime",
    "boot-time",
    "dns",
    "ntp",
    "ssh-server",
    "telnet-server",
    "logging",
    "aaa",
    "messages",
    "processes",
    "license",
    "mac-address",
    "host-names",
    "host-name",
    "banners",
    "banner",
    "banner-name",
    "banner-text",
    "time-zone",
    "area-name",
    "time-zone-name",
    "ocsystem",
    "ocsystemcpu",
    "cpuses",
    "amfm-edt",
    "grpc-servers",
    "grpc-server",
    "ssh",
    "syslog",
    "ocsyslog",
    "ocntp",
    "grpc",
    "oc-ems",
    "ocaaa",
    "ip",
    "octelnet",
    "oc-dns",
    "ip-domain",
    "vrfs",
    "vrf",
    "vrf-name",
    "lists",
    "list",
    "order",
    "list-name",
    "server-address",
    "ipv4-hosts",
    "ipv4-host",
    "ipv6-hosts",
    "ipv6-host",
    "dns-state",
    "search",
    "host-entries",
    "host-entry",
    "alias",
    "ipv4-address",
    "ipv6-address",
    "servers",
    "server",
    "address",
    "enable",
    "port",
    "console",
    "selectors",
    "selector",
    "facility",
    "remote-servers",
    "remote-server",
    "host",
    "remote-port",
    "source-address",
    "debug-entries",
    "debug-service",
    "service",
    "enabled",
    "message",
    "msg",
    "priority",
    "console-logging",
    "logging-level",
    "yang-logging",
    "host-server",
    "hosts",
    "ipv4s",
    "ipv4",
    "ipv6s",
    "ipv6",
    "host-severity-port",
    "ipv4-severity-port",
    "ipv6-severity-port",
    "peer-vrfs",
    "peer-vrf",
    "peer-ipv4s",
    "peer-ipv4",
    "address-ipv4",
    "peer-ipv6s",
    "peer-ipv6",
    "address-ipv6",
    "peer-type-ipv4",
    "peer-type-ipv6",
    "peer-type",
    "ntp-version",
    "iburst",
    "preferred-peer",
    "authentication",
    "keys",
    "key",
    "key-number",
    "authentication-key",
    "max-associations",
    "ntp-keys",
    "ntp-key",
    "key-id",
    "key-type",
    "key-value",
    "enable-ntp-auth",
    "ntp-source-address",
    "version",
    "association-type",
    "prefer",
    "stratum",
    "root-delay",
    "offset",
    "transport-security",
    "certificate-id",
    "no-tls",
    "services",
    "listen-addresses",
    "metadata-authentication",
    "network-instance",
    "tls-cipher",
    "tunnel",
    "protocol-version",
    "timeout",
    "rate-limit",
    "session-limit",
    "vrf-table",
    "v2",
    "client",
    "backup-server",
    "netconf-vrf-table",
    "usernames",
    "username",
    "server-algo",
    "trustpoint",
    "usertps",
    "usertp",
    "tp-name",
    "tinetd",
    "telnet",
    "tftp",
    "tcp",
    "udp",
    "maximum-server",
    "data",
    "filter",
    "unknown",
    "x",
    "",
    "config-x",
    "Config",
    "system ",
    "a:system",
    "state/index",
    "cpus[index='0']",
    "-",
    // AAA: the OpenConfig subtree, the native lists and the private server figures.
    "authorization",
    "accounting",
    "authentication-method",
    "authorization-method",
    "accounting-method",
    "events",
    "event",
    "event-type",
    "record",
    "admin-user",
    "users",
    "password",
    "password-hashed",
    "ssh-key",
    "role",
    "server-groups",
    "server-group",
    "tacacs",
    "radius",
    "secret-key",
    "auth-port",
    "counters",
    "timeout-access-requests",
    "connection-opens",
    "messages-sent",
    "authentications",
    "authorizations",
    "accountings",
    "type",
    "listname",
    "type-qv",
    "method1",
    "server-group-name1",
    "ordering-index",
    "secret",
    "secret5",
    "tacacs-server-groups",
    "tacacs-server-group",
    "server-group-name",
    "private-servers",
    "private-server",
    "ip-address",
    "port-number",
});

// Namespaces a node can name instead of its parent's; null means none at all.
constexpr std::array<const char *, 12> kNamespaces = {
    "http://openconfig.net/yang/system",
    "http://openconfig.net/yang/system-grpc",
    "http://openconfig.net/yang/alarms",
    "http://tarvex.local/ns/yang/Tarvex-QV-shellutil-cfg",
    "http://tarvex.local/ns/yang/Tarvex-QV-infra-infra-cfg",
    "http://tarvex.local/ns/yang/Tarvex-QV-infra-infra-clock-linux-cfg",
    "http://tarvex.local/ns/yang/Tarvex-QV-PRIVATE-oc-system-oper",
    "http://tarvex.local/ns/yang/Tarvex-QV-PRIVATE-ocsystem-cpu-oper",
    "http://tarvex.local/ns/yang/Tarvex-QV-PRIVATE-alarm-mgr-oc-oper",
    "http://tarvex.local/ns/yang/Tarvex-QV-openconfig-system-terminal-ext",
    "http://tarvex.local/ns/yang/Tarvex-QV-unknown-cfg",
    nullptr,
};

constexpr auto kValues = std::to_array<std::string_view>({
    "0",
    "1",
    "7",
    "-1",
    "4294967296",
    "router1",
    "host name",
    "login",
    "motd",
    "UTC",
    "Europe/Paris",
    "America",
    "MINOR",
    "CRITICAL",
    "equipment-failure",
    "NONE",
    "INFORMATIONAL",
    "info",
    "disable",
    "192.0.2.1",
    "::ffff:192.0.2.1",
    "65536",
    "true",
    "a'b",
    "a\"b",
    "/system",
    "cpu[0]",
    "x:y",
    "  ",
    "\xc3\xa9t\xc3\xa9",
    "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef",
    "2001:db8::1",
    "DEFAULT",
});

class Bytes {
public:
    explicit Bytes(std::span<const uint8_t> data) : data_(data) {}
    uint8_t next() { return pos_ < data_.size() ? data_[pos_++] : 0; }

private:
    std::span<const uint8_t> data_;
    std::size_t pos_ = 0;
};

// A root walker with the root tag and namespace its tree is registered with.
struct Root {
    yfw_map_walker_fn walker;
    const char *tag;
    const char *ns;
};

// The registration records, filled once as the framework fills them at load.
const std::array<yfw_map_reg_mod_t, 20> &registrations() {
    static const std::array<yfw_map_reg_mod_t, 20> records = [] {
        std::array<yfw_map_reg_mod_t, 20> r{};
        std::size_t i = 0;
#define YMAP_FUZZ_REGISTER_(fn) fn(&r[i++]);
        YMAP_OCSYSTEM_REGISTRATIONS(YMAP_FUZZ_REGISTER_)
#undef YMAP_FUZZ_REGISTER_
        return r;
    }();
    return records;
}

// Every record names the same OpenConfig walker; the native ones differ.
Root pick_root(uint8_t selector) {
    const auto &regs = registrations();
    if (selector % 24 < 4) {
        const yfw_map_reg_mod_t &reg = regs[0];
        return {reg.oc_to_native, reg.oc_root, reg.oc_namespace};
    }
    const yfw_map_reg_mod_t &reg = regs[(selector % 24 - 4) % regs.size()];
    return {reg.native_to_oc, reg.native_root, reg.native_namespace};
}

class TreeBuilder {
public:
    TreeBuilder(Bytes &bytes, yfw::Arena &arena, const Root &root)
        : bytes_(bytes), arena_(arena), root_(root) {}

    tidl_yfw_datatree *build() {
        tidl_yfw_datatree *root = arena_.new_root();
        ++nodes_;
        fill(root, root_.ns, 0);
        return root;
    }

private:
    // Children are appended one at a time and each is filled before the next
    // append, since an append may move the earlier children of the same parent.
    void fill(tidl_yfw_datatree *node, const char *parent_ns, std::size_t depth) {
        const uint8_t tag = bytes_.next();
        if (depth == 0 && tag == 0) {
            node->tag = arena_.text(root_.tag);
        } else if (tag != 0xff) {
            node->tag = arena_.text(kTags[tag % kTags.size()]);
        }

        // Mostly the parent's, as a parsed document has it.
        const uint8_t ns = bytes_.next() % 16;
        const char *chosen = ns < 5 ? parent_ns : kNamespaces[ns - 5];
        node->namespace_ = chosen != nullptr ? arena_.text(chosen) : nullptr;

        const uint8_t flags = bytes_.next();
        switch (flags & 7) {
        case 3:
            yfw_dt_set_operation(node, OP_MERGE);
            break;
        case 4:
            yfw_dt_set_operation(node, OP_REPLACE);
            break;
        case 5:
            yfw_dt_set_operation(node, OP_DELETE);
            break;
        case 6:
            yfw_dt_set_operation(node, OP_REMOVE);
            break;
        default:
            break;
        }
        switch ((flags >> 3) & 3) {
        case 1:
            node->value = arena_.text("");
            node->present_value = 1;
            break;
        case 2:
        case 3:
            node->value = arena_.text(kValues[bytes_.next() % kValues.size()]);
            node->present_value = 1;
            break;
        default:
            break;
        }
        if ((flags & 0x20) != 0) {
            node->error_kind = YFW_MAP_ERROR_KIND_XPATH;
            node->present_error_kind = 1;
        }
        if ((flags & 0xc0) == 0xc0) {
            // Children announced but not there: the framework refuses such a node.
            node->present_subtrees = 1;
            node->subtrees = nullptr;
            node->subtree_count = 1 + bytes_.next() % 3;
            return;
        }

        const uint32_t count = bytes_.next() % (kMaxChildren + 1);
        if (depth >= kMaxDepth) {
            return;
        }
        for (uint32_t i = 0; i < count && nodes_ < kMaxNodes; ++i) {
            tidl_yfw_datatree *child = arena_.append_child(node);
            ++nodes_;
            fill(child, node->namespace_, depth + 1);
        }
    }

    Bytes &bytes_;
    yfw::Arena &arena_;
    const Root &root_;
    std::size_t nodes_ = 0;
};

void require(bool holds, const char *what) {
    if (!holds) {
        std::fprintf(stderr, "walk_fuzz: broken: %s\n", what);
        std::abort();
    }
}

bool known_status(cerrno status) {
    switch (status) {
    case YFW_SUCCESS:
    case YFW_ERR_INVALID_ARGS:
    case YFW_ERR_BAD_TREE:
    case YFW_ERR_UNSUPPORTED_TAG:
    case YFW_ERR_LIST_KEY:
    case YFW_ERR_KEY_DELETE:
    case YFW_ERR_BAD_VALUE:
    case YFW_ERR_UNSUPPORTED_AUGMENT:
    case static_cast<cerrno>(-1): // a gRPC server name refused
        return true;
    default:
        return false; // YFW_MAP_SKIP_NODE included: walkers turn it into success
    }
}

void walk_once(Bytes &bytes) {
    const uint8_t header = bytes.next();
    const uint32_t kind = kKinds[(header & 7) % kKinds.size()];
    const Root root = pick_root(bytes.next());

    yfw::sysdb::clear();
    if ((header & 0x80) != 0) {
        yfw::sysdb::set_present(true);
        yfw::sysdb::set_item("/cfg/gl/ems/ord_A/grpc/running", "");
        yfw::sysdb::set_item("/cfg/gl/ems/ord_A/grpc/name", "router1");
    }
    yfw::Session session(kind, (header & 0x08) != 0);
    session.set_debug_log((header & 0x10) != 0);
    session.set_ring_trace((header & 0x20) != 0);
    tidl_yfw_datatree *input = TreeBuilder(bytes, session.arena(), root).build();
    session.note_input(input);

    const cerrno status = root.walker(session.ctx(), input, session.output());

    if (std::getenv("WALK_FUZZ_VERBOSE") != nullptr) {
        std::fprintf(stderr, "walk_fuzz: kind %u oper_only %d status 0x%x hierarchy %zu\n", kind,
                     (header & 0x08) != 0 ? 1 : 0, status, session.hierarchy_depth());
        const std::string in = ocsysmap::to_paths(*ocsysmap::document_of(
            session.arena(), std::span<tidl_yfw_datatree *const>(&input, 1)));
        const std::string out = ocsysmap::to_paths(*session.output());
        std::fprintf(stderr, "-- input\n%s-- output\n%s", in.c_str(), out.c_str());
    }
    require(known_status(status), "status is not a named status");
    const yfw_map_state *state = session.state();
    require(state->walk_all == 0, "walk_all != 0");
    require(state->walk_suppress == 0, "walk_suppress != 0");
    require((state->state_flags & ~YFW_MAP_STATE_XPATH_ERROR) == 0,
            "state_flags other than the xpath error bit");
    require(state->replace_active == 0, "replace_active != 0");
    require(state->output_list_count == 0, "output_list_count != 0");
    require(session.ctx()->list_index == 0, "ctx->list_index != 0");
    require(session.itree_depth() == 0, "input-tree stack not empty");
    // A failed leafref check leaves the hierarchy for the error path.
    require(session.hierarchy_depth() == 0 || status == YFW_ERR_LIST_KEY,
            "node hierarchy not empty");

    (void)ocsysmap::to_paths(*session.output());
    if ((header & 0x40) != 0) {
        print_data(session.ctx());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::size_t live_before = yfw::live_allocations();
    {
        Bytes bytes({data, size});
        walk_once(bytes);
    }
    require(yfw::live_allocations() == live_before, "named allocations leaked");
    return 0;
}
