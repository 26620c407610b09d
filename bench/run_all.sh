#!/bin/sh
# Every figure of the speed work in one run, printed as one markdown table:
#   run_all.sh BUILD_DIR [RUNS]      (a Release build; RUNS defaults to 3)
# The tool against yanglint on 100,000 alarms (medians of RUNS whole-process
# runs, ratios taken run by run), the walk rows end to end and the library
# alone at 1k and 1M nodes, the device over SSH and in process on stores of
# 10, 1,000 and 10,000 NTP servers, and its memory over 10,000 edits. About
# ten minutes on a quiet machine; the raw outputs stay in $RUN_ALL_KEEP if set.
# The device bench needs paramiko: /usr/bin/python3 (python3-paramiko), or $DEVICE_PYTHON.
set -eu
build=${1:?usage: run_all.sh BUILD_DIR [RUNS]}
runs=${2:-3}
here=$(cd "$(dirname "$0")" && pwd)
models=${OCSYSMAP_MODELS:-$here/../../shared/openconfig/models-2022-12}
out=${RUN_ALL_KEEP:-$(mktemp -d)}
mkdir -p "$out"
for b in tools/ocsysmap daemon/ocsysmapd bench/walk_bench bench/walk_bench_library \
    bench/device_store_bench; do
    [ -x "$build/$b" ] || { echo "run_all.sh: $build/$b is missing: build it first" >&2; exit 2; }
done

step() { echo "run_all.sh: $*" >&2; }
i=1
while [ "$i" -le "$runs" ]; do
    step "tool against yanglint, run $i of $runs"
    sh "$here/tool_vs_yanglint.sh" "$build/tools/ocsysmap" 100000 > "$out/yanglint.$i"
    i=$((i + 1))
done
step "walk rows end to end"
python3 "$here/size_ratios.py" "$build/bench/walk_bench" "$runs" > "$out/walk"
step "walk rows, the library alone"
python3 "$here/size_ratios.py" "$build/bench/walk_bench_library" "$runs" > "$out/library"
step "the device in process"
"$build/bench/device_store_bench" --benchmark_min_time=0.2 --benchmark_format=json \
    > "$out/store.json"
step "the device over SSH"
"${DEVICE_PYTHON:-/usr/bin/python3}" "$here/device_bench.py" "$build/daemon/ocsysmapd" "$models" 10,1000,10000 10 10000 \
    --tool "$build/tools/ocsysmap" > "$out/device"

python3 - "$out" "$runs" <<'EOF'
import json, re, statistics, sys
out, runs = sys.argv[1], int(sys.argv[2])
med = statistics.median

def row(figure, measured, goal=""):
    print(f"| {figure} | {measured} | {goal} |")

print("| figure | measured | goal |")
print("|---|---|---|")

# name -> list per run of (cpu s, wall s, peak MB)
tool = {}
for i in range(1, runs + 1):
    for line in open(f"{out}/yanglint.{i}"):
        m = re.match(r"(\S+)\s+wall (\S+)\s+user (\S+) s\s+sys (\S+) s\s+peak (\d+) MB", line)
        if m:
            wall = sum(float(p) * 60 ** k for k, p in enumerate(reversed(m.group(2).split(":"))))
            tool.setdefault(m.group(1), []).append(
                (float(m.group(3)) + float(m.group(4)), wall, int(m.group(5))))
goals = {"ocsysmap": "", "models-xml": "at most 1.0 in time and memory",
         "models-ietf-json": "at most 1.0 in time and memory",
         "models-validate": "at most 1.2 in time, 1.0 in memory"}
names = {"ocsysmap": "`map --format xml` (no models)", "models-xml": "`--models --format xml`",
         "models-ietf-json": "`--models --format ietf-json`",
         "models-validate": "`--models --validate --format xml`"}
y = tool.get("yanglint", [])
for name, label in names.items():
    if name not in tool or not y:
        continue
    r = tool[name]
    cpu = med(a[0] / b[0] for a, b in zip(r, y))
    wall = med(a[1] / b[1] for a, b in zip(r, y))
    mem = med(a[2] / b[2] for a, b in zip(r, y))
    row(f"100,000 alarms, {label}: cpu s, wall s, peak MB; / yanglint",
        f"{med(a[0] for a in r):.2f}, {med(a[1] for a in r):.2f}, {med(a[2] for a in r):.0f}; "
        f"cpu {cpu:.2f}, wall {wall:.2f}, memory {mem:.2f}", goals[name])
if y:
    row("yanglint parsing and validating the same output: cpu s, wall s, peak MB",
        f"{med(a[0] for a in y):.2f}, {med(a[1] for a in y):.2f}, {med(a[2] for a in y):.0f}")

def walk(path):
    rows = {}
    for line in open(path):
        p = line.split()
        if len(p) == 10 and not line.startswith("row"):
            rows[p[0]] = (float(p[1]), float(p[4]), float(p[9]))
    return rows
ends, alone = walk(f"{out}/walk"), walk(f"{out}/library")
for name, (k1, m1, ratio) in ends.items():
    lib = alone.get(name)
    row(f"walk {name}: ns a node at 1k, 1M (1M/1k); library alone at 1k, 1M",
        f"{k1:.0f}, {m1:.0f} ({ratio:.2f}); " + (f"{lib[0]:.0f}, {lib[1]:.0f}" if lib else "-"),
        "at most 100, 1M/1k at most 1.15; alone at most 40")

bench = json.load(open(f"{out}/store.json"))["benchmarks"]
labels = {"BM_DeviceEditOneLeaf": "edit of one leaf", "BM_StoreWriteAlone":
          "store file written alone", "BM_DeviceGetConfig": "get-config of the NTP servers"}
for key, label in labels.items():
    cells = []
    for b in bench:
        name, _, size = b["name"].partition("/")
        if name == key and b.get("run_type", "iteration") == "iteration":
            cells.append(f"{int(size):,}: {b['real_time']:.2f} ({b['cpu_time']:.2f})")
    row(f"device in process, {label}: wall (cpu) ms by servers", "; ".join(cells),
        "grows no faster than the store")

device = {}
for line in open(f"{out}/device"):
    pair = r"([\d.]+)\s*/\s*([\d.]+)"
    m = re.match(r"\s*(\d+)\s+(\d+)\s+" + (pair + r"\s+") * 3 + r"(\d+)(?:\s+" + pair + ")?", line)
    if m:
        device[int(m.group(1))] = m.groups()
    m = re.match(r"(\d+) edits on (\d+) servers: ([\d.]+) ms each, resident (\d+) kB before, (\d+) kB after \(([+-]\d+) kB\)", line)
    if m:
        edits = m.groups()
for k, label in ((2, "edit of one leaf"), (4, "get-config of the NTP servers"), (6, "get of the NTP servers")):
    row(f"device over SSH, {label}: ms median (min) by servers",
        "; ".join(f"{n:,}: {g[k]} ({g[k + 1]})" for n, g in device.items()),
        "grows no faster than the store")
row("`ocsysmap --models` mapping the device's store file, whole process: ms median (min)",
    "; ".join(f"{n:,}: {g[9]} ({g[10]})" for n, g in device.items() if g[9]))
if 1000 in device:
    g = device[1000]
    row("device get-config of 1,000 servers over SSH / the tool mapping them, whole process (mostly loading the models)",
        f"{float(g[4]) / float(g[9]):.2f}" if g[9] else "-", "at most 3")
if "edits" in dir():
    row(f"device resident memory over {int(edits[0]):,} edits ({edits[1]} servers)",
        f"{edits[3]} kB to {edits[4]} kB ({edits[5]} kB), {edits[2]} ms an edit", "flat")
EOF
