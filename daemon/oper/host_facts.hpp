// What the device reads from the host it runs on: the clock, the memory and
// the CPU counters of /proc/stat. Nothing here is made up: a figure the host
// cannot give is left out.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ocsysmapd::oper {

// Nanoseconds since the epoch, now.
uint64_t now_ns();

// The current date and time as RFC 3339 with the offset of `zone` (a name of
// the host's time zone database, as /system/clock configures it); the host's
// own zone when `zone` is empty or unknown.
std::string rfc3339_now(std::string_view zone);

// MemTotal of /proc/meminfo in bytes.
std::optional<uint64_t> physical_memory();

// The eight measures of a CPU, in the order of the mapping's words: total,
// user, kernel, nice, idle, wait, hardware-interrupt, software-interrupt.
inline constexpr std::size_t kMeasures = 8;

// One measure of one CPU: percentages of the last interval and since the
// device started, and the extremes of the intervals seen with their times.
struct Measure {
    uint8_t instant = 0;
    uint8_t avg = 0;
    uint8_t min = 0;
    uint8_t max = 0;
    uint64_t min_time = 0;
    uint64_t max_time = 0;
};

struct CpuFigures {
    std::string index; // "ALL" or the CPU's number
    bool sampled = false;
    uint64_t interval_ns = 0;
    std::array<Measure, kMeasures> measures{};
};

// Samples /proc/stat when the device starts and at each read; the instant
// figures are those of the interval between two reads in which the counters
// moved.
class CpuSampler {
public:
    CpuSampler();
    const std::vector<CpuFigures> &sample();

private:
    struct Counters {
        std::string index;
        std::array<uint64_t, kMeasures> ticks{}; // measure words' order; total = busy
        uint64_t all = 0;
    };
    static std::vector<Counters> read_stat();

    std::vector<Counters> start_;
    std::vector<Counters> last_;
    uint64_t last_ns_ = 0;
    std::vector<CpuFigures> figures_;
};

} // namespace ocsysmapd::oper
