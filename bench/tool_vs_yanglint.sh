#!/bin/sh
# Maps a native answer of COUNT alarms with ocsysmap, with its own writers and
# through the models (XML, checked with --validate, RFC 7951 JSON), then has
# yanglint parse and validate the OpenConfig XML that ocsysmap printed, each
# under /usr/bin/time -v, and prints time and peak memory of all:
#   tool_vs_yanglint.sh OCSYSMAP [COUNT]        (COUNT defaults to 100000)
# yanglint (Debian libyang2-tools) refuses identity values without a prefix,
# so the severities are given the alarm types' prefix before it reads them.
# The models are read from ../shared/openconfig/models-2022-12 beside the
# checkout, or from OCSYSMAP_MODELS.
set -eu
tool=$1 count=${2:-100000}
here=$(cd "$(dirname "$0")" && pwd)
models=${OCSYSMAP_MODELS:-$here/../../shared/openconfig/models-2022-12}
command -v yanglint > /dev/null || { echo "yanglint is missing: apt-get install libyang2-tools" >&2; exit 2; }
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT

measure() {
    name=$1
    shift
    if ! /usr/bin/time -v "$@" > "$dir/$name.out" 2> "$dir/$name.time"; then
        cat "$dir/$name.time" >&2
        exit 1
    fi
    awk -v name="$name" '
        /Elapsed/ { wall = $NF } /User time/ { user = $NF } /System time/ { sys = $NF }
        /Maximum resident/ { peak = $NF }
        END { printf "%-17s wall %s  user %s s  sys %s s  peak %.0f MB\n", name, wall, user, sys, peak / 1024 }
    ' "$dir/$name.time"
}

sh "$here/large_answer.sh" alarms "$count" > "$dir/answer.xml"
echo "answer: $count alarms, $(wc -c < "$dir/answer.xml") bytes"
measure ocsysmap "$tool" map --kind get --format xml "$dir/answer.xml"
sed 's|<severity>\([A-Z_]*\)</severity>|<severity xmlns:oc-alarm-types="http://openconfig.net/yang/alarms/types">oc-alarm-types:\1</severity>|' \
    "$dir/ocsysmap.out" > "$dir/openconfig.xml"
echo "printed: $(wc -c < "$dir/openconfig.xml") bytes"
measure models-xml "$tool" map --kind get --models "$models" --format xml "$dir/answer.xml"
measure models-validate "$tool" map --kind get --models "$models" --validate --format xml "$dir/answer.xml"
measure models-ietf-json "$tool" map --kind get --models "$models" --format ietf-json "$dir/answer.xml"
m=$models/release/models
measure yanglint yanglint -p "$m" -p "$m/types" -p "$m/system" -p "$m/platform" -p "$m/interfaces" \
    -p "$models/third_party/ietf" -t data "$m/system/openconfig-system.yang" \
    "$m/system/openconfig-alarm-types.yang" "$dir/openconfig.xml"
