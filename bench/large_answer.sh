#!/bin/sh
# Writes a large native answer to standard output:
#   large_answer.sh cpus|alarms COUNT
# The CPU answer has COUNT entries of 58 counters, the alarm answer COUNT
# alarms of 7 state leaves.
set -eu
kind=$1 count=$2

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
    }'
    ;;
alarms)
    awk -v n="$count" 'BEGIN {
        print "<amfm-edt xmlns=\"http://tarvex.local/ns/yang/Tarvex-QV-PRIVATE-alarm-mgr-oc-oper\"><system><alarms>"
        for (i = 0; i < n; i++)
            printf "<alarm><id>a%d</id><state><id>a%d</id><resource>slot%d</resource><text>alarm %d</text><time-created>%d</time-created><severity>MINOR</severity><type-id>T%d</type-id></state></alarm>\n", i, i, i % 16, i, 1700000000 + i, i % 7
        print "</alarms></system></amfm-edt>"
    }'
    ;;
*)
    echo "usage: $0 cpus|alarms COUNT" >&2
    exit 2
    ;;
esac
