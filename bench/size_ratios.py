#!/usr/bin/env python3
"""Per-node cost of each walk_bench row at 1k, 10k, 100k and 1M nodes, and
how the cost at 1M compares with that at 1k.

A shared machine changes speed from minute to minute, so the four sizes of a
row run back to back, several times over: a ratio taken inside one run is
seldom split by such a change.

    size_ratios.py WALK_BENCH [RUNS]      (RUNS defaults to 5)

Prints, per row, the median and the best of the runs in ns per input node,
and the median of the runs' 1M/1k ratios.
"""
import re
import statistics
import subprocess
import sys

SIZES = (1000, 10000, 100000, 1000000)
LINE = re.compile(r"Walk/(\S+)/(?:standin|counting)/(\d+)\s.*per_node=([\d.]+)(ns|us)")


def rows(bench):
    listed = subprocess.run([bench, "--benchmark_list_tests"], capture_output=True, text=True,
                            check=True).stdout
    seen = []
    for name in listed.split():
        m = re.match(r"Walk/(\S+)/(?:standin|counting)/\d+$", name)
        if m and m.group(1) not in seen:
            seen.append(m.group(1))
    return seen


def run(bench, row):
    sizes = "|".join(str(n) for n in SIZES)
    out = subprocess.run([bench, f"--benchmark_filter=^Walk/{row}/(standin|counting)/({sizes})$",
                          "--benchmark_min_time=0.3"], capture_output=True, text=True,
                         check=True).stdout
    costs = {}
    for m in LINE.finditer(out):
        costs[int(m.group(2))] = float(m.group(3)) * (1000 if m.group(4) == "us" else 1)
    return costs


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    bench = sys.argv[1]
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 5
    print(f"{'row':32s} {'median ns/node':>27s}   {'best ns/node':>27s}   1M/1k")
    for row in rows(bench):
        results = [run(bench, row) for _ in range(runs)]
        median = [statistics.median(r[n] for r in results) for n in SIZES]
        best = [min(r[n] for r in results) for n in SIZES]
        ratio = statistics.median(r[SIZES[-1]] / r[SIZES[0]] for r in results)
        print(f"{row:32s} " + " ".join(f"{v:6.0f}" for v in median) + "   " +
              " ".join(f"{v:6.0f}" for v in best) + f"   {ratio:.2f}", flush=True)


if __name__ == "__main__":
    main()
