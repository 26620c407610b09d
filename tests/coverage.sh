#!/usr/bin/env bash
# Line and branch coverage of the shipped code (everything but tests/, fuzz/,
# bench/) under the whole ctest run, per folder and in total.
#
#   tests/coverage.sh [BUILD_DIR] [-- CTEST_ARGS...]
#
# BUILD_DIR defaults to build-cov beside this checkout's sources; it is
# configured with -DOCSYSMAP_COVERAGE=ON (gcc --coverage) and built there, so
# the normal build is left alone. Needs gcovr (Debian package gcovr); run by
# hand, not in CI. Old counters are reset before ctest runs. Per-file figures
# end up in BUILD_DIR/coverage.json.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
dir=$root/build-cov
if [ $# -gt 0 ] && [ "$1" != "--" ]; then
    dir=$(realpath -m "$1")
    shift
fi
[ "${1:-}" = "--" ] && shift
command -v gcovr >/dev/null || {
    echo "coverage.sh: needs gcovr (apt-get install gcovr)" >&2
    exit 2
}
jobs=${JOBS:-2}

cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DOCSYSMAP_COVERAGE=ON \
    -DOCSYSMAP_BENCH=OFF >/dev/null
# A target that fails to build leaves its tests failing; the rest still counts.
cmake --build "$dir" -j"$jobs" -- -k 0 || echo "coverage.sh: some targets did not build" >&2
find "$dir" -name '*.gcda' -delete
ctest --test-dir "$dir" -j"$jobs" --output-on-failure "$@" || echo "coverage.sh: some tests failed" >&2

gcovr -r "$root" -j"$jobs" --exclude-throw-branches --exclude-unreachable-branches \
    -e "$root/tests/" -e "$root/fuzz/" -e "$root/bench/" -e "$dir/" \
    --json-summary-pretty -o "$dir/coverage.json" "$dir"

python3 - "$dir/coverage.json" <<'EOF'
import json, sys
from collections import defaultdict
files = json.load(open(sys.argv[1]))["files"]
sums = defaultdict(lambda: [0, 0, 0, 0])
for f in files:
    top = f["filename"].split("/")[0]
    for key in (top, "total"):
        s = sums[key]
        s[0] += f["line_covered"]; s[1] += f["line_total"]
        s[2] += f["branch_covered"]; s[3] += f["branch_total"]
pct = lambda a, b: 100.0 * a / b if b else 100.0
print(f"{'folder':<12} {'lines':>15} {'%':>6} {'branches':>15} {'%':>6}")
for key in sorted(sums, key=lambda k: (k == "total", k)):
    lc, lt, bc, bt = sums[key]
    print(f"{key:<12} {lc:>7}/{lt:<7} {pct(lc, lt):6.1f} {bc:>7}/{bt:<7} {pct(bc, bt):6.1f}")
EOF
