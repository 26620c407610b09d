// The host's clock, memory and CPU counters.
#include "host_facts.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace ocsysmapd::oper {
namespace {

// The zone is switched for one conversion and put back: the device answers
// one request at a time.
class ZoneScope {
public:
    explicit ZoneScope(std::string_view zone) {
        if (zone.empty() || zone.find("..") != std::string_view::npos ||
            !std::filesystem::exists(std::filesystem::path("/usr/share/zoneinfo") / zone)) {
            return;
        }
        if (const char *old = std::getenv("TZ")) {
            saved_ = old;
        }
        active_ = true;
        setenv("TZ", std::string(zone).c_str(), 1);
        tzset();
    }
    ~ZoneScope() {
        if (!active_) {
            return;
        }
        if (saved_) {
            setenv("TZ", saved_->c_str(), 1);
        } else {
            unsetenv("TZ");
        }
        tzset();
    }
    ZoneScope(const ZoneScope &) = delete;
    ZoneScope &operator=(const ZoneScope &) = delete;

private:
    bool active_ = false;
    std::optional<std::string> saved_;
};

// A counter may step back (iowait does): that interval counts as none.
uint64_t since(uint64_t now, uint64_t before) {
    return now > before ? now - before : 0;
}

uint8_t percent(uint64_t part, uint64_t whole) {
    if (whole == 0) {
        return 0;
    }
    if (part >= whole) {
        return 100;
    }
    return static_cast<uint8_t>((part * 200 + whole) / (2 * whole)); // rounded
}

} // namespace

uint64_t now_ns() {
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                     std::chrono::system_clock::now().time_since_epoch())
                                     .count());
}

std::string rfc3339_now(std::string_view zone) {
    const ZoneScope scope(zone);
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[40];
    if (std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S%z", &local) == 0) {
        return {};
    }
    // %z says +hhmm; the models want +hh:mm.
    std::string out(text);
    out.insert(out.size() - 2, 1, ':');
    return out;
}

std::optional<uint64_t> physical_memory() {
    std::ifstream in("/proc/meminfo");
    std::string key;
    uint64_t kib = 0;
    std::string unit;
    while (in >> key >> kib >> unit) {
        if (key == "MemTotal:") {
            return kib * 1024;
        }
    }
    return std::nullopt;
}

CpuSampler::CpuSampler() : start_(read_stat()), last_(start_), last_ns_(now_ns()) {}

std::vector<CpuSampler::Counters> CpuSampler::read_stat() {
    std::vector<Counters> out;
    std::ifstream in("/proc/stat");
    std::string line;
    while (std::getline(in, line)) {
        if (!line.starts_with("cpu")) {
            continue;
        }
        std::istringstream fields(line);
        std::string name;
        // user nice system idle iowait irq softirq steal
        std::array<uint64_t, 8> t{};
        fields >> name;
        for (uint64_t &v : t) {
            fields >> v;
        }
        if (!fields) {
            continue;
        }
        Counters c;
        c.index = name == "cpu" ? "ALL" : name.substr(3);
        const auto [user, nice, system, idle, iowait, irq, softirq, steal] = t;
        c.all = user + nice + system + idle + iowait + irq + softirq + steal;
        c.ticks = {c.all - idle - iowait, user, system, nice, idle, iowait, irq, softirq};
        out.push_back(c);
    }
    return out;
}

const std::vector<CpuFigures> &CpuSampler::sample() {
    const std::vector<Counters> now = read_stat();
    const uint64_t at = now_ns();
    auto find = [](const std::vector<Counters> &in, const std::string &index) {
        return std::find_if(in.begin(), in.end(),
                            [&](const Counters &c) { return c.index == index; });
    };
    // Figures only move on when the ALL counters did: an interval without a
    // tick says nothing.
    const auto all_now = find(now, "ALL");
    const auto all_last = find(last_, "ALL");
    const bool moved =
        all_now != now.end() && all_last != last_.end() && all_now->all > all_last->all;
    std::vector<CpuFigures> figures;
    for (const Counters &c : now) {
        CpuFigures f;
        f.index = c.index;
        const auto before = std::find_if(figures_.begin(), figures_.end(),
                                         [&](const CpuFigures &g) { return g.index == c.index; });
        if (before != figures_.end()) {
            f = *before;
        }
        const auto last = find(last_, c.index);
        const auto start = find(start_, c.index);
        if (moved && last != last_.end() && start != start_.end() && c.all > last->all) {
            f.interval_ns = at - last_ns_;
            for (std::size_t m = 0; m < kMeasures; ++m) {
                Measure &x = f.measures[m];
                x.instant = percent(since(c.ticks[m], last->ticks[m]), c.all - last->all);
                x.avg = percent(since(c.ticks[m], start->ticks[m]), since(c.all, start->all));
                if (!f.sampled || x.instant < x.min) {
                    x.min = x.instant;
                    x.min_time = at;
                }
                if (!f.sampled || x.instant > x.max) {
                    x.max = x.instant;
                    x.max_time = at;
                }
            }
            f.sampled = true;
        }
        figures.push_back(f);
    }
    figures_ = std::move(figures);
    if (moved) {
        last_ = now;
        last_ns_ = at;
    }
    return figures_;
}

} // namespace ocsysmapd::oper
