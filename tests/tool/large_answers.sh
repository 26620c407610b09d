#!/bin/sh
# Maps a large native answer with the ocsysmap tool and counts what comes out:
#   large_answers.sh OCSYSMAP cpus|alarms COUNT
set -eu
tool=$1 kind=$2 count=$3
file=$(mktemp) out=$(mktemp)
trap 'rm -f "$file" "$out"' EXIT

case $kind in
cpus)
    awk -v n="$count" 'BEGIN {
        split("total user kernel nice idle wait hardware-interrupt software-interrupt", m, " ")
        split("instant avg min max interval min-time max-time", c, " ")
        print "<ocsystemcpu xmlns=\"http://tarvex.local/ns/yang/Tarvex-QV-PRIVATE-ocsystem-cpu-oper\"><system><cpuses>"
        for (i = 0; i < n; i++) {
            printf "<cpus><index>%d</index><state><index>%d</index>", i, i
            for (j = 1; j <= 8; j++) {
                printf "<%s>", m[j]
                for (k = 1; k <= 7; k++) printf "<%s>%d</%s>", c[k], (i + j + k) % 100, c[k]
                printf "</%s>", m[j]
            }
            print "</state></cpus>"
        }
        print "</cpuses></system></ocsystemcpu>"
    }' > "$file"
    entry="^/openconfig-system:system/cpus/cpu\[index='[0-9]*'\]\$"
    leaves_per_entry=58
    ;;
alarms)
    awk -v n="$count" 'BEGIN {
        print "<amfm-edt xmlns=\"http://tarvex.local/ns/yang/Tarvex-QV-PRIVATE-alarm-mgr-oc-oper\"><system><alarms>"
        for (i = 0; i < n; i++)
            printf "<alarm><id>a%d</id><state><id>a%d</id><resource>slot%d</resource><text>alarm %d</text><time-created>%d</time-created><severity>MINOR</severity><type-id>T%d</type-id></state></alarm>\n", i, i, i % 16, i, 1700000000 + i, i % 7
        print "</alarms></system></amfm-edt>"
    }' > "$file"
    entry="^/openconfig-system:system/alarms/alarm\[id='a[0-9]*'\]\$"
    leaves_per_entry=7
    ;;
esac

"$tool" map --kind get "$file" > "$out"
entries=$(grep -c "$entry" "$out")
leaves=$(grep -c ' = "' "$out")
echo "$kind: $entries entries, $leaves leaves"
test "$entries" -eq "$count"
test "$leaves" -eq $((count * leaves_per_entry))
