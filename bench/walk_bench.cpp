// Walking large trees through the frame, both directions: native answers with
// many CPUs or alarms mapped to OpenConfig, and OpenConfig reads naming as
// many entries mapped to native requests. Reported as input nodes per second;
// the cost per node should stay flat as the tree grows.
#include <string>

#include <benchmark/benchmark.h>

#include "yfw/standin.hpp"
#include "ymap_cpu_words.hpp"
#include "ymap_namespaces.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

// Builds a tree in an arena, counting the nodes.
class Builder {
public:
    explicit Builder(yfw::Arena &arena) : arena_(arena) {}

    tidl_yfw_datatree *root(const char *tag, const char *ns) {
        tidl_yfw_datatree *n = arena_.new_root();
        set(n, tag, ns, nullptr);
        return n;
    }
    tidl_yfw_datatree *add(tidl_yfw_datatree *parent, const char *tag,
                           const char *value = nullptr) {
        tidl_yfw_datatree *n = arena_.append_child(parent);
        set(n, tag, parent->namespace_, value);
        return n;
    }
    std::size_t nodes() const { return nodes_; }

private:
    void set(tidl_yfw_datatree *n, const char *tag, const char *ns, const char *value) {
        n->tag = arena_.text(tag);
        n->namespace_ = const_cast<char *>(ns);
        if (value != nullptr) {
            n->value = arena_.text(value);
            n->present_value = 1;
        }
        ++nodes_;
    }
    yfw::Arena &arena_;
    std::size_t nodes_ = 0;
};

constexpr const char *kMeasures[] = {
#define YMAP_WORD_(m, mw) mw,
    YMAP_CPU_MEASURES(YMAP_WORD_)
#undef YMAP_WORD_
};
constexpr const char *kCounters[] = {"instant",  "avg",      "min",     "max",
                                     "interval", "min-time", "max-time"};
constexpr std::size_t kNodesPerCpu = 4 + 8 * 8;
constexpr std::size_t kNodesPerAlarm = 9;

// A native CPU answer: /ocsystemcpu/system/cpuses/cpus[index]/state/<measure>/<counter>.
tidl_yfw_datatree *native_cpus(Builder &b, std::size_t cpus) {
    tidl_yfw_datatree *root = b.root("ocsystemcpu", NS_CPU_OPER);
    tidl_yfw_datatree *cpuses = b.add(b.add(root, "system"), "cpuses");
    for (std::size_t i = 0; i < cpus; ++i) {
        // The entry is appended before its children: later appends move siblings.
        tidl_yfw_datatree *cpu = b.add(cpuses, "cpus");
        const std::string index = std::to_string(i);
        b.add(cpu, "index", index.c_str());
        tidl_yfw_datatree *st = b.add(cpu, "state");
        b.add(st, "index", index.c_str());
        for (const char *m : kMeasures) {
            tidl_yfw_datatree *measure = b.add(st, m);
            for (const char *c : kCounters)
                b.add(measure, c, "7");
        }
    }
    return root;
}

// A native alarm answer: /amfm-edt/system/alarms/alarm[id]/state/...
tidl_yfw_datatree *native_alarms(Builder &b, std::size_t alarms) {
    tidl_yfw_datatree *root = b.root("amfm-edt", NS_ALARM_MGR_OPER);
    tidl_yfw_datatree *list = b.add(b.add(root, "system"), "alarms");
    for (std::size_t i = 0; i < alarms; ++i) {
        tidl_yfw_datatree *alarm = b.add(list, "alarm");
        const std::string id = "alarm-" + std::to_string(i);
        b.add(alarm, "id", id.c_str());
        tidl_yfw_datatree *st = b.add(alarm, "state");
        b.add(st, "id", id.c_str());
        b.add(st, "resource", "linecard0");
        b.add(st, "text", "fan failure");
        b.add(st, "time-created", "1700000000");
        b.add(st, "severity", "MAJOR");
        b.add(st, "type-id", "FAN");
    }
    return root;
}

// An OpenConfig read naming every alarm by its key and every state leaf.
tidl_yfw_datatree *oc_alarms_read(Builder &b, std::size_t alarms) {
    tidl_yfw_datatree *root = b.root("system", NS_OPENCONFIG_SYSTEM);
    tidl_yfw_datatree *list = b.add(root, "alarms");
    for (std::size_t i = 0; i < alarms; ++i) {
        tidl_yfw_datatree *alarm = b.add(list, "alarm");
        const std::string id = "alarm-" + std::to_string(i);
        b.add(alarm, "id", id.c_str());
        tidl_yfw_datatree *st = b.add(alarm, "state");
        for (const char *leaf : {"id", "resource", "text", "time-created", "severity", "type-id"})
            b.add(st, leaf);
    }
    return root;
}

// An OpenConfig read naming every CPU by its key and every counter.
tidl_yfw_datatree *oc_cpus_read(Builder &b, std::size_t cpus) {
    tidl_yfw_datatree *root = b.root("system", NS_OPENCONFIG_SYSTEM);
    tidl_yfw_datatree *list = b.add(root, "cpus");
    for (std::size_t i = 0; i < cpus; ++i) {
        tidl_yfw_datatree *cpu = b.add(list, "cpu");
        b.add(cpu, "index", std::to_string(i).c_str());
        // state/index is refused in a request: the key names the CPU.
        tidl_yfw_datatree *st = b.add(cpu, "state");
        for (const char *m : kMeasures) {
            tidl_yfw_datatree *measure = b.add(st, m);
            for (const char *c : kCounters)
                b.add(measure, c);
        }
    }
    return root;
}

using Make = tidl_yfw_datatree *(*)(Builder &, std::size_t);

void walk(benchmark::State &state, Make make, std::size_t nodes_per_entry,
          yfw_map_walker_fn walker) {
    yfw::Arena arena;
    Builder b(arena);
    tidl_yfw_datatree *input = make(b, static_cast<std::size_t>(state.range(0)) / nodes_per_entry);
    for (auto _ : state) {
        yfw::Session session(KIND_GET);
        const cerrno status = walker(session.ctx(), input, session.output());
        if (status != YFW_SUCCESS)
            state.SkipWithError("walk failed");
        benchmark::DoNotOptimize(session.output());
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * b.nodes()));
    state.counters["nodes"] = static_cast<double>(b.nodes());
}

void BM_NativeCpusToOpenConfig(benchmark::State &state) {
    walk(state, native_cpus, kNodesPerCpu,
         ymap_qo_ocsystem_tarvexqvprivateocsystemcpuoper_lvla_ocsystemcpu);
}
void BM_NativeAlarmsToOpenConfig(benchmark::State &state) {
    walk(state, native_alarms, kNodesPerAlarm,
         ymap_qo_ocsystem_tarvexqvprivatealarmmgrocoper_lvla_amfmedt);
}
void BM_OpenConfigCpusToNative(benchmark::State &state) {
    walk(state, oc_cpus_read, kNodesPerCpu - 2, ymap_oq_ocsystem_openconfigsystem_lvla_system);
}
void BM_OpenConfigAlarmsToNative(benchmark::State &state) {
    walk(state, oc_alarms_read, kNodesPerAlarm, ymap_oq_ocsystem_openconfigsystem_lvla_system);
}

#define YMAP_SIZES ->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)
BENCHMARK(BM_NativeCpusToOpenConfig) YMAP_SIZES;
BENCHMARK(BM_NativeAlarmsToOpenConfig) YMAP_SIZES;
BENCHMARK(BM_OpenConfigCpusToNative) YMAP_SIZES;
BENCHMARK(BM_OpenConfigAlarmsToNative) YMAP_SIZES;

} // namespace
