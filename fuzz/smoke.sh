#!/usr/bin/env bash
# Builds every fuzz target with clang, libFuzzer, ASan and UBSan in build-fuzz
# and runs each for FUZZ_SECONDS (30) on a copy of its corpus; any crash, leak
# or undefined behaviour fails the run and leaves the input in
# build-fuzz/fuzz/crash-*. Prints the executions of each target and the sum.
#
#   fuzz/smoke.sh                   the CI smoke
#   FUZZ_SECONDS=3600 fuzz/smoke.sh a long run (README.md)
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${FUZZ_SECONDS:-30}
dir=${FUZZ_BUILD:-build-fuzz}
jobs=$(nproc)

targets=()
for src in fuzz/*_fuzz.cpp; do
    targets+=("$(basename "$src" .cpp)")
done

cmake -S . -B "$dir" -G Ninja -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DOCSYSMAP_FUZZ=ON -DOCSYSMAP_SANITIZE=ON -DOCSYSMAP_TESTS=OFF -DOCSYSMAP_BENCH=OFF \
    -DOCSYSMAP_WERROR=ON >/dev/null
cmake --build "$dir" -j"$jobs" --target fuzz_dictionary "${targets[@]}"
"$dir/fuzz/fuzz_dictionary" >"$dir/fuzz/words.dict"

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1}
total=0
for t in "${targets[@]}"; do
    work="$dir/fuzz/work/$t"
    mkdir -p "$work"
    seeds=("fuzz/corpus/$t")
    options=(-max_total_time="$seconds" -timeout=20 -print_final_stats=1
             -artifact_prefix="$dir/fuzz/crash-$t-")
    case $t in
    walk_fuzz | editor_diff_fuzz) ;; # inputs are choices, not text
    parse_input_fuzz)
        options+=(-dict="$dir/fuzz/words.dict")
        seeds+=(examples)
        ;;
    *) options+=(-dict="$dir/fuzz/words.dict") ;;
    esac
    log="$dir/fuzz/$t.log"
    echo "== $t: ${seconds}s"
    if ! "$dir/fuzz/$t" "${options[@]}" "$work" "${seeds[@]}" >"$log" 2>&1; then
        tail -n 60 "$log"
        echo "fuzz smoke: $t failed; the input is in $dir/fuzz/crash-$t-*" >&2
        exit 1
    fi
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    echo "$t: $runs executions"
    total=$((total + runs))
done
echo "fuzz smoke: $total executions over ${#targets[@]} targets, no finding"
