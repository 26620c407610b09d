// The device's request logic in process, without the protocol: an edit of
// one leaf (mapping, store update and the store file written), the store
// file written alone, and a get-config of the NTP servers, on stores of 10 to
// 10,000 servers. The edit minus the write is the mapping's share.
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include <benchmark/benchmark.h>

#include "device.hpp"
#include "registered_trees.hpp"
#include "ymap_namespaces.h"

namespace {

constexpr const char *kOc = NS_OPENCONFIG_SYSTEM;

std::string address(int i) {
    return "10." + std::to_string(i >> 16 & 255) + "." + std::to_string(i >> 8 & 255) + "." +
           std::to_string(i & 255);
}

std::string ntp_config(int count, int first_version) {
    std::string out = std::string("<system xmlns=\"") + kOc + "\"><ntp><servers>";
    for (int i = 0; i < count; ++i) {
        const std::string a = address(i);
        out += "<server><address>" + a + "</address><config><address>" + a + "</address><version>" +
               std::to_string(first_version) +
               "</version><association-type>SERVER</association-type></config></server>";
    }
    return out + "</servers></ntp></system>";
}

// One device with a store of `count` servers in a folder of its own.
struct Store {
    explicit Store(int count)
        : folder(std::filesystem::temp_directory_path() /
                 ("device_store_bench." + std::to_string(count))),
          models(OCSYSMAP_BENCH_MODELS) {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        device = std::make_unique<ocsysmapd::Device>(trees, models,
                                                     ocsysmapd::StoreFile(folder / "store.xml"));
        if (device->edit(ntp_config(count, 4), {})) {
            throw std::runtime_error("the device refused the servers");
        }
    }
    ~Store() {
        device.reset();
        std::filesystem::remove_all(folder);
    }
    std::filesystem::path folder;
    decltype(ocsysmap::registered_trees()) trees = ocsysmap::registered_trees();
    ocsysmap::yang::Models models;
    std::unique_ptr<ocsysmapd::Device> device;
};

void BM_DeviceEditOneLeaf(benchmark::State &state) {
    Store store(static_cast<int>(state.range(0)));
    const std::string a = address(static_cast<int>(state.range(0)) / 2);
    // Each edit changes the value, so that the store is written every time.
    std::string versions[2];
    for (int v = 0; v < 2; ++v) {
        versions[v] = std::string("<system xmlns=\"") + kOc + "\"><ntp><servers><server><address>" +
                      a + "</address><config><address>" + a + "</address><version>" +
                      (v == 0 ? "3" : "4") +
                      "</version></config></server></servers></ntp></system>";
    }
    int v = 0;
    for (auto _ : state) {
        if (store.device->edit(versions[v], {})) {
            state.SkipWithError("the device refused the edit");
            break;
        }
        v ^= 1;
    }
}

void BM_StoreWriteAlone(benchmark::State &state) {
    Store store(static_cast<int>(state.range(0)));
    const ocsysmapd::StoreFile file(store.folder / "copy.xml");
    for (auto _ : state) {
        file.save(store.device->store());
    }
}

void BM_DeviceGetConfig(benchmark::State &state) {
    Store store(static_cast<int>(state.range(0)));
    const std::string filter =
        std::string("<system xmlns=\"") + kOc + "\"><ntp><servers/></ntp></system>";
    std::string answer;
    for (auto _ : state) {
        if (store.device->read(KIND_GET_CONFIG, filter, answer)) {
            state.SkipWithError("the device refused the read");
            break;
        }
        benchmark::DoNotOptimize(answer.data());
    }
    state.counters["answer_bytes"] = static_cast<double>(answer.size());
}

#define SIZES ->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)
BENCHMARK(BM_DeviceEditOneLeaf) SIZES;
BENCHMARK(BM_StoreWriteAlone) SIZES;
BENCHMARK(BM_DeviceGetConfig) SIZES;

} // namespace
