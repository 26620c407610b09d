// The nine operational roots. Each takes the OpenConfig configuration as
// get-config answers it and writes what a device reports once that is
// applied, in the shape of its private module; the mapping then renames it.
#include "oper_state.hpp"

#include <algorithm>
#include <cctype>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "ocsysmap_io.hpp"
#include "ymap_cpu_words.hpp"
#include "ymap_namespaces.h"

namespace ocsysmapd::oper {
namespace {

// ---- Reading the configuration --------------------------------------------

const Node *child(const Node *n, std::string_view tag) {
    if (n == nullptr) {
        return nullptr;
    }
    for (const Node &c : n->children) {
        if (c.tag == tag) {
            return &c;
        }
    }
    return nullptr;
}

// A descendant by its tags, "a/b/c".
const Node *at(const Node *n, std::string_view path) {
    while (n != nullptr && !path.empty()) {
        const std::size_t slash = path.find('/');
        n = child(n, path.substr(0, slash));
        path = slash == std::string_view::npos ? std::string_view{} : path.substr(slash + 1);
    }
    return n;
}

std::vector<const Node *> each(const Node *n, std::string_view tag) {
    std::vector<const Node *> out;
    if (n != nullptr) {
        for (const Node &c : n->children) {
            if (c.tag == tag) {
                out.push_back(&c);
            }
        }
    }
    return out;
}

const Node *value_at(const Node *n, std::string_view path) {
    const Node *leaf = at(n, path);
    return leaf != nullptr && leaf->has_value ? leaf : nullptr;
}

// ---- Writing the native roots ----------------------------------------------

Node root(std::string_view tag, std::string_view ns) {
    return Node{std::string(tag), std::string(ns), {}, false, {}};
}

// The container at the end of `tags`, made where missing.
Node &inner(Node &n, std::initializer_list<std::string_view> tags) {
    Node *cur = &n;
    for (std::string_view tag : tags) {
        auto found = std::find_if(cur->children.begin(), cur->children.end(),
                                  [&](const Node &c) { return c.tag == tag; });
        if (found == cur->children.end()) {
            cur->children.push_back(Node{std::string(tag), cur->ns, {}, false, {}});
            found = cur->children.end() - 1;
        }
        cur = &*found;
    }
    return *cur;
}

// A new list entry (entries of one list share their tag).
Node &entry(Node &list_parent, std::string_view tag) {
    list_parent.children.push_back(Node{std::string(tag), list_parent.ns, {}, false, {}});
    return list_parent.children.back();
}

void leaf(Node &parent, std::string_view tag, std::string value) {
    parent.children.push_back(Node{std::string(tag), parent.ns, std::move(value), true, {}});
}

// A configured leaf's value into the state leaf `to`, when configured.
void mirror(Node &state, std::string_view to, const Node *config, std::string_view from) {
    if (const Node *v = value_at(config, from)) {
        leaf(state, to, v->value);
    }
}

// ---- The roots ---------------------------------------------------------------

Node system_root(const Node *sys, uint64_t boot_ns) {
    Node r = root("ocsystem", NS_OC_SYSTEM_OPER);
    Node &state = inner(r, {"system", "state"});
    const Node *config = child(sys, "config");
    mirror(state, "host-name", config, "hostname");
    mirror(state, "login-banner", config, "login-banner");
    mirror(state, "motd-banner", config, "motd-banner");
    const Node *zone = value_at(sys, "clock/config/timezone-name");
    // The device keeps its clock in the zone it was given.
    leaf(state, "current-datetime", rfc3339_now(zone != nullptr ? zone->value : ""));
    leaf(state, "boot-time", std::to_string(boot_ns));
    if (zone != nullptr) {
        leaf(inner(r, {"system", "clock", "state"}), "timezone-name", zone->value);
    }
    if (const auto physical = physical_memory()) {
        leaf(inner(r, {"system", "memory", "state"}), "physical", std::to_string(*physical));
    }
    return r;
}

Node dns_root(const Node *sys) {
    Node r = root("oc-dns", NS_OC_DNS_OPER);
    Node &system = inner(r, {"system"});
    if (const Node *domain = value_at(sys, "config/domain-name")) {
        leaf(inner(system, {"state"}), "domain-name", domain->value);
    }
    const Node *dns = child(sys, "dns");
    Node &out = inner(system, {"dns"});
    const auto search = each(child(dns, "config"), "search");
    if (!search.empty()) {
        Node &state = inner(out, {"dns-state"});
        for (const Node *s : search) {
            leaf(state, "search", s->value);
        }
    }
    for (const Node *server : each(child(dns, "servers"), "server")) {
        const Node *address = value_at(server, "address");
        if (address == nullptr) {
            continue;
        }
        Node &e = entry(inner(out, {"servers"}), "server");
        leaf(e, "address", address->value);
        Node &state = inner(e, {"state"});
        leaf(state, "address", address->value);
        // A resolver asks port 53 unless told otherwise.
        const Node *port = value_at(server, "config/port");
        leaf(state, "port", port != nullptr ? port->value : "53");
    }
    for (const Node *host : each(child(dns, "host-entries"), "host-entry")) {
        const Node *name = value_at(host, "hostname");
        if (name == nullptr) {
            continue;
        }
        Node &e = entry(inner(out, {"host-entries"}), "host-entry");
        leaf(e, "host-name", name->value);
        Node &state = inner(e, {"state"});
        leaf(state, "host-name", name->value);
        for (std::string_view family : {"ipv4-address", "ipv6-address"}) {
            for (const Node *a : each(child(host, "config"), family)) {
                leaf(state, family, a->value);
            }
        }
    }
    return r;
}

// Stratum, offset, delay and the like come from talking to a server, which
// this device never does: each configured server is listed without them.
Node ntp_root(const Node *sys) {
    Node r = root("ocntp", NS_NTP_TELEMETRY_OPER);
    Node &servers = inner(r, {"system", "ntp", "servers"});
    for (const Node *server : each(at(sys, "ntp/servers"), "server")) {
        if (const Node *address = value_at(server, "address")) {
            leaf(entry(servers, "server"), "address", address->value);
        }
    }
    return r;
}

Node messages_root(const Node *sys, const Events &events) {
    Node r = root("ocsyslog", NS_MESSAGES_TELEMETRY_OPER);
    Node &state = inner(r, {"system", "messages", "state"});
    // The state speaks the remote-server words: the OpenConfig word in lower
    // case, and no "disable".
    if (const Node *severity = value_at(sys, "messages/config/severity")) {
        std::string word = severity->value.substr(severity->value.find(':') + 1);
        std::transform(word.begin(), word.end(), word.begin(),
                       [](unsigned char ch) { return static_cast<char>(std::tolower(ch)); });
        if (word != "disable") {
            leaf(state, "severity", word);
        }
    }
    if (const auto &m = events.last_message()) {
        Node &message = inner(state, {"message"});
        leaf(message, "msg", m->msg);
        if (m->priority) {
            leaf(message, "priority", std::to_string(*m->priority));
        }
        for (const auto &[tag, text] :
             {std::pair{"app-name", &m->app_name}, std::pair{"procid", &m->procid},
              std::pair{"msgid", &m->msgid}}) {
            if (!text->empty()) {
                leaf(message, tag, *text);
            }
        }
    }
    return r;
}

// A VRF that has Telnet configured serves it.
Node telnet_root(const Node *sys) {
    Node r = root("octelnet", NS_OCTELNET_OPER);
    Node &server = inner(r, {"system", "telnet-server"});
    for (std::string_view family : {"ipv4", "ipv6"}) {
        const std::string list = std::string(family) + "s";
        for (const Node *vrf :
             each(at(sys, std::string("telnet-server/") + std::string(family)), "vrf")) {
            const Node *name = value_at(vrf, "vrf-name");
            if (name == nullptr) {
                continue;
            }
            Node &e = entry(inner(server, {list}), family);
            leaf(e, "vrf-name", name->value);
            Node &state = inner(e, {"state"});
            leaf(state, "enable", "true");
            mirror(state, "session-limit", vrf, "config/session-limit");
        }
    }
    return r;
}

Node grpc_root(const Node *sys) {
    Node r = root("oc-ems", NS_OC_EMS_OPER);
    Node &servers = inner(r, {"system", "grpc-servers"});
    for (const Node *server : each(child(sys, "grpc-servers"), "grpc-server")) {
        const Node *name = value_at(server, "name");
        if (name == nullptr) {
            continue;
        }
        Node &e = entry(servers, "grpc-server");
        leaf(e, "name", name->value);
        Node &state = inner(e, {"state"});
        const Node *config = child(server, "config");
        for (std::string_view word :
             {"name", "enable", "port", "transport-security", "certificate-id"}) {
            mirror(state, word, config, word);
        }
    }
    return r;
}

// The servers as configured; the connection and message counters need a
// TACACS exchange, which this device never makes, and are left out.
Node aaa_root(const Node *sys) {
    Node r = root("ocaaa", NS_AAA_TELEMETRY_OPER);
    Node &groups = inner(r, {"system", "aaa", "server-groups"});
    for (const Node *group : each(at(sys, "aaa/server-groups"), "server-group")) {
        const Node *name = value_at(group, "name");
        const auto servers = each(child(group, "servers"), "server");
        if (name == nullptr || servers.empty()) {
            continue;
        }
        Node &g = entry(groups, "server-group");
        leaf(g, "name", name->value);
        Node &list = inner(g, {"servers"});
        for (const Node *server : servers) {
            const Node *address = value_at(server, "address");
            if (address == nullptr) {
                continue;
            }
            Node &e = entry(list, "server");
            leaf(e, "address", address->value);
            Node &state = inner(e, {"state"});
            leaf(state, "address", address->value);
            mirror(state, "timeout", server, "config/timeout");
            const Node *tacacs = at(server, "tacacs/config");
            if (value_at(tacacs, "port") != nullptr || value_at(tacacs, "secret-key") != nullptr) {
                Node &t = inner(e, {"tacacs", "state"});
                mirror(t, "port", tacacs, "port");
                mirror(t, "secret-key", tacacs, "secret-key");
            }
        }
    }
    return r;
}

constexpr std::string_view kMeasureWords[] = {
#define YMAP_CPU_WORD_(m, mw) mw,
    YMAP_CPU_MEASURES(YMAP_CPU_WORD_)
#undef YMAP_CPU_WORD_
};
static_assert(std::size(kMeasureWords) == kMeasures);

Node cpu_root(const std::vector<CpuFigures> &cpus) {
    Node r = root("ocsystemcpu", NS_CPU_OPER);
    Node &list = inner(r, {"system", "cpuses"});
    for (const CpuFigures &cpu : cpus) {
        Node &e = entry(list, "cpus");
        leaf(e, "index", cpu.index);
        Node &state = inner(e, {"state"});
        leaf(state, "index", cpu.index);
        if (!cpu.sampled) {
            continue;
        }
        for (std::size_t m = 0; m < kMeasures; ++m) {
            const Measure &x = cpu.measures[m];
            Node &measure = inner(state, {kMeasureWords[m]});
            leaf(measure, "instant", std::to_string(x.instant));
            leaf(measure, "avg", std::to_string(x.avg));
            leaf(measure, "min", std::to_string(x.min));
            leaf(measure, "max", std::to_string(x.max));
            leaf(measure, "interval", std::to_string(cpu.interval_ns));
            leaf(measure, "min-time", std::to_string(x.min_time));
            leaf(measure, "max-time", std::to_string(x.max_time));
        }
    }
    return r;
}

Node alarm_root(const Events &events) {
    Node r = root("amfm-edt", NS_ALARM_MGR_OPER);
    Node &list = inner(r, {"system", "alarms"});
    for (const Alarm &a : events.alarms()) {
        Node &e = entry(list, "alarm");
        leaf(e, "id", a.id);
        Node &state = inner(e, {"state"});
        leaf(state, "id", a.id);
        for (const auto &[tag, text] :
             {std::pair{"resource", &a.resource}, std::pair{"text", &a.text}}) {
            if (!text->empty()) {
                leaf(state, tag, *text);
            }
        }
        leaf(state, "time-created", std::to_string(a.time_created));
        leaf(state, "severity", a.severity);
        if (!a.type_id.empty()) {
            leaf(state, "type-id", a.type_id);
        }
    }
    return r;
}

} // namespace

Forest parse_config(std::string_view data_xml) {
    if (data_xml.find('<') == std::string_view::npos) {
        return {};
    }
    yfw::Arena arena;
    const std::string text = "<data>" + std::string(data_xml) + "</data>";
    Forest out;
    for (const tidl_yfw_datatree *r : ocsysmap::parse_input(arena, text, false)) {
        out.push_back(to_node(*r));
    }
    return out;
}

void end_dns_walk(Forest &answer) {
    auto is = [](std::string_view tag, std::string_view ns) {
        return [=](const Node &n) { return n.tag == tag && n.ns == ns; };
    };
    const auto oper = std::find_if(answer.begin(), answer.end(), is("oc-dns", NS_OC_DNS_OPER));
    if (oper != answer.end() &&
        std::find_if(oper, answer.end(), is("ip-domain", NS_IP_DOMAIN_CFG)) == answer.end()) {
        answer.push_back(root("ip-domain", NS_IP_DOMAIN_CFG));
    }
}

OperState::OperState() : boot_ns_(now_ns()) {}

Forest OperState::build(const Forest &config) {
    const auto found =
        std::find_if(config.begin(), config.end(), [](const Node &n) { return n.tag == "system"; });
    const Node *sys = found != config.end() ? &*found : nullptr;
    Forest out;
    // The DNS root comes first: its walk silences the configuration's DNS
    // walk that follows it.
    out.push_back(dns_root(sys));
    out.push_back(system_root(sys, boot_ns_));
    out.push_back(ntp_root(sys));
    out.push_back(messages_root(sys, events_));
    out.push_back(telnet_root(sys));
    out.push_back(grpc_root(sys));
    out.push_back(aaa_root(sys));
    out.push_back(cpu_root(cpus_.sample()));
    out.push_back(alarm_root(events_));
    return out;
}

} // namespace ocsysmapd::oper
