// The cost of a trace statement: with both sinks off it must be one call and
// one field test; with the ring trace on, the formatting shows.
#include <benchmark/benchmark.h>

#include "yfw/standin.hpp"
#include "yfw_map_trace.h"

namespace {

void statement(yfw_map_ctx *ctx, const char *tag) {
    YFW_MAP_TRC(ctx, "bench_unit", "Processing tag '%s'", tag);
}

void BM_TraceStatementBothSinksOff(benchmark::State &state) {
    yfw::Session session(KIND_GET);
    for (auto _ : state)
        statement(session.ctx(), "hostname");
}
BENCHMARK(BM_TraceStatementBothSinksOff);

void BM_TraceStatementRingTraceOn(benchmark::State &state) {
    yfw::Session session(KIND_GET);
    session.set_ring_trace(true);
    for (auto _ : state)
        statement(session.ctx(), "hostname");
}
BENCHMARK(BM_TraceStatementRingTraceOn);

} // namespace
