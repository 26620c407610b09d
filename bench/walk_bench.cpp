// Walking large trees through the library, both directions, one row per
// feature area's largest list (and CPUs and alarms), at 1k to 1M input nodes.
// Built twice: against the stand-in (end to end) and against the counting
// host (the library alone). Reports input nodes per second and the time per
// input node, which should stay flat as the tree grows.
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench_host.hpp"
#include "bench_trees.hpp"
#include "ymap_cpu_words.hpp"
#include "ymap_namespaces.h"
#include "ymap_ocsystem_modules.h"

namespace {

struct Row {
    const char *name;
    uint32_t kind;
    yfw_map_walker_fn walker;
    const char *ns;
    std::string outer; // `*` marks the list's entries
    std::string entry;
};

// A CPU's state: eight measures of seven counters, with or without values.
std::string cpu_measures(bool values) {
    std::string out;
    for (const char *m : {
#define YMAP_WORD_(m, mw) mw,
             YMAP_CPU_MEASURES(YMAP_WORD_)
#undef YMAP_WORD_
         }) {
        out += out.empty() ? "" : ",";
        out += std::string(m) + "(";
        const char *sep = "";
        for (const char *c : {"instant", "avg", "min", "max", "interval", "min-time", "max-time"}) {
            out += std::string(sep) + c + (values ? "=7" : "");
            sep = ",";
        }
        out += ")";
    }
    return out;
}

constexpr auto oq = ymap_oq_ocsystem_openconfigsystem_lvla_system;

// clang-format off
const std::vector<Row> &rows() {
    static const std::vector<Row> table{
        {"Cpus/native", KIND_GET, ymap_qo_ocsystem_tarvexqvprivateocsystemcpuoper_lvla_ocsystemcpu, NS_CPU_OPER,
         "ocsystemcpu(system(cpuses(*)))", "cpus(index=$,state(index=$," + cpu_measures(true) + "))"},
        {"Cpus/openconfig", KIND_GET, oq, NS_OPENCONFIG_SYSTEM,
         "system(cpus(*))", "cpu(index=$,state(" + cpu_measures(false) + "))"},
        {"Alarms/native", KIND_GET, ymap_qo_ocsystem_tarvexqvprivatealarmmgrocoper_lvla_amfmedt, NS_ALARM_MGR_OPER,
         "amfm-edt(system(alarms(*)))",
         "alarm(id=a$,state(id=a$,resource=slot1,text=alarm $,time-created=1700000000,severity=MINOR,type-id=T1))"},
        {"Alarms/openconfig", KIND_GET, oq, NS_OPENCONFIG_SYSTEM,
         "system(alarms(*))", "alarm(id=a$,state(id,resource,text,time-created,severity,type-id))"},
        {"NtpServers/native", KIND_GET_CONFIG, ymap_qo_ocsystem_tarvexqvipntpcfg_lvla_ntp, NS_IP_NTP_CFG,
         "ntp(peer-vrfs(peer-vrf(vrf-name=default,peer-ipv4s(*))))",
         "peer-ipv4(address-ipv4=%4,peer-type-ipv4(peer-type=server,ntp-version=4))"},
        {"NtpServers/openconfig", KIND_EDIT_A, oq, NS_OPENCONFIG_SYSTEM,
         "system(ntp(servers(*)))",
         "server(address=%4,config(address=%4,version=4,association-type=SERVER,iburst=true,prefer=false))"},
        {"DnsServers/native", KIND_GET_CONFIG, ymap_qo_ocsystem_tarvexqvipdomaincfg_lvla_ipdomain, NS_IP_DOMAIN_CFG,
         "ip-domain(vrfs(vrf(vrf-name=default,servers(*))))", "server(order=$,server-address=%4)"},
        {"DnsServers/openconfig", KIND_EDIT_A, oq, NS_OPENCONFIG_SYSTEM,
         "system(dns(servers(*)))", "server(address=%4,config(address=%4))"},
        {"LoggingRemoteServers/native", KIND_GET_CONFIG, ymap_qo_ocsystem_tarvexqvinfrasyslogcfg_lvla_syslog, NS_INFRA_SYSLOG_CFG,
         "syslog(host-server(vrfs(vrf(vrf-name=default,ipv4s(*)))))",
         "ipv4(address=%4,ipv4-severity-port(severity=informational,port=514))"},
        {"LoggingRemoteServers/openconfig", KIND_EDIT_A, oq, NS_OPENCONFIG_SYSTEM,
         "system(logging(remote-servers(*)))",
         "remote-server(host=%4,config(host=%4,remote-port=514),selectors(selector(facility=NONE,severity=WARNING,"
         "config(facility=NONE,severity=WARNING))))"},
        {"AaaUsers/native", KIND_GET_CONFIG, ymap_qo_ocsystem_tarvexqvaaalibcfg_lvla_aaa, NS_AAA_LIB_CFG,
         "aaa(usernames@locald(*))", "username(ordering-index=$,name=u$,password=s3cret)"},
        {"AaaUsers/openconfig", KIND_EDIT_A, oq, NS_OPENCONFIG_SYSTEM,
         "system(aaa(authentication(users(*))))",
         "user(username=u$,config(username=u$,password=s3cret,role=SYSTEM_ROLE_ADMIN))"},
        {"GrpcServers/native", KIND_GET, ymap_qo_ocsystem_tarvexqvprivateocemsoper_lvla_ocems, NS_OC_EMS_OPER,
         "oc-ems(system(grpc-servers(*)))",
         "grpc-server(name=g$,state(name=g$,enable=true,port=57400,transport-security=false,certificate-id=c$))"},
        {"GrpcServers/openconfig", KIND_GET, oq, NS_OPENCONFIG_SYSTEM,
         "system(grpc-servers@grpc(*))", "grpc-server(name=g$,state(name,enable,port,transport-security))"},
        {"TelnetVrfs/native", KIND_GET, ymap_qo_ocsystem_tarvexqvprivateoctelnetoper_lvla_octelnet, NS_OCTELNET_OPER,
         "octelnet(system(telnet-server(ipv4s(*))))", "ipv4(vrf-name=v$,state(enable=true,session-limit=5))"},
        {"TelnetVrfs/openconfig", KIND_EDIT_A, oq, NS_OPENCONFIG_SYSTEM,
         "system(telnet-server(ipv4@ext(*)))", "vrf(vrf-name=v$,config(session-limit=5))"},
    };
    return table;
}
// clang-format on

// The input tree of the last benchmark, kept across the runs Google Benchmark
// makes of one benchmark while it sizes the iterations.
struct Input {
    const Row *row = nullptr;
    std::size_t wanted = 0;
    std::unique_ptr<bench::TreeStore> store;
    tidl_yfw_datatree *root = nullptr;
    std::size_t nodes = 0;
};

const Input &input_for(const Row &row, std::size_t wanted) {
    static Input input;
    if (input.row != &row || input.wanted != wanted) {
        input = Input{&row, wanted, std::make_unique<bench::TreeStore>()};
        const std::size_t entries =
            std::max<std::size_t>(1, wanted / bench::TreeStore::nodes_per_entry(row.entry));
        input.root = input.store->build(row.outer, row.entry, row.ns, entries, input.nodes);
    }
    return input;
}

void walk(benchmark::State &state, const Row &row) {
    const Input &input = input_for(row, static_cast<std::size_t>(state.range(0)));
    uint64_t produced = 0;
    {
        // Once untimed: a framework serves request after request, and the
        // first one alone would pay for faulting its memory in. Its output is
        // counted here too, as every timed walk makes the same.
        bench::Request warm(row.kind);
        (void)row.walker(warm.ctx(), input.root, warm.output());
        produced = warm.produced();
    }
    for (auto _ : state) {
        bench::Request request(row.kind);
        const cerrno status = row.walker(request.ctx(), input.root, request.output());
        if (status != YFW_SUCCESS) {
            char text[64];
            std::snprintf(text, sizeof text, "walk failed: 0x%08x", static_cast<unsigned>(status));
            state.SkipWithError(text);
            break;
        }
        benchmark::DoNotOptimize(request.output()->subtrees);
    }
    const auto nodes = static_cast<double>(input.nodes);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * input.nodes));
    state.counters["nodes"] = nodes;
    state.counters["produced"] = static_cast<double>(produced);
    state.counters["per_node"] = benchmark::Counter(
        nodes, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

const bool registered = [] {
    for (const Row &row : rows()) {
        const std::string name =
            "Walk/" + std::string(row.name) + "/" + std::string(bench::kHostName);
        benchmark::RegisterBenchmark(name.c_str(), walk, row)
            ->RangeMultiplier(10)
            ->Range(1000, 1000000)
            ->Unit(benchmark::kMillisecond);
    }
    return true;
}();

} // namespace
