#!/bin/sh
# Maps a large native answer with the ocsysmap tool and counts what comes out:
#   large_answers.sh OCSYSMAP cpus|alarms COUNT
set -eu
tool=$1 kind=$2 count=$3
file=$(mktemp) out=$(mktemp)
trap 'rm -f "$file" "$out"' EXIT

sh "$(dirname "$0")/../../bench/large_answer.sh" "$kind" "$count" > "$file"
case $kind in
cpus)
    entry="^/openconfig-system:system/cpus/cpu\[index='[0-9]*'\]\$"
    leaves_per_entry=58
    tag=cpu
    ;;
alarms)
    entry="^/openconfig-system:system/alarms/alarm\[id='a[0-9]*'\]\$"
    leaves_per_entry=7
    tag=alarm
    ;;
esac

"$tool" map --kind get "$file" > "$out"
entries=$(grep -c "$entry" "$out")
leaves=$(grep -c ' = "' "$out")
echo "$kind: $entries entries, $leaves leaves"
test "$entries" -eq "$count"
test "$leaves" -eq $((count * leaves_per_entry))

# The other two forms are written in pieces: every entry must come out whole.
"$tool" map --kind get --format xml "$file" > "$out"
test "$(grep -c "^    <$tag>\$" "$out")" -eq "$count"
test "$(grep -c "^    </$tag>\$" "$out")" -eq "$count"
"$tool" map --kind get --format json "$file" > "$out"
test "$(grep -c "^ *\"tag\": \"$tag\",\$" "$out")" -eq "$count"
