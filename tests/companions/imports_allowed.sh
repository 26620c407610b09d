#!/bin/sh
# The undefined dynamic symbols of the mapping library and of the companion
# library stay inside what the contract headers declare and the C/C++ runtime.
#
#   imports_allowed.sh INCLUDE_DIR MAPPING_LIBRARY COMPANION_LIBRARY
#
# The allowed names come from the headers themselves: the compiler lists every
# function they declare (-aux-info), so the list cannot drift from them.
set -u
inc=$1 map=$2 companions=$3
tmp=$(mktemp -d) || exit 2
trap 'rm -rf "$tmp"' EXIT

printf '#include "yfw_map_trace.h"\n#include "qv_platform.h"\n#include "ymap_companions.h"\n' \
    >"$tmp/headers.c"
"${CC:-cc}" -fsyntax-only -aux-info "$tmp/aux" -I"$inc" "$tmp/headers.c" ||
    { echo "the contract headers do not parse"; exit 2; }

# "FILE LINE NAME" for each function with external linkage a header declares.
awk '$4 == "extern" {
    split($2, at, ":"); decl = $0; sub(/ \(.*/, "", decl)
    n = split(decl, words, /[ *]+/); print at[1], at[2], words[n]
}' "$tmp/aux" >"$tmp/declared"

# The companion header's last section holds the library's entries that the
# companions call; everything above it, the companion functions.
split=$(grep -n 'Library entries the companions call' "$inc/ymap_companions.h" | cut -d: -f1)
[ -n "$split" ] || { echo "no call-back section in ymap_companions.h"; exit 2; }
awk '$1 !~ /ymap_companions\.h$/ { print $3 }' "$tmp/declared" | sort -u >"$tmp/contract"
awk -v s="$split" '$1 ~ /ymap_companions\.h$/ && $2 < s { print $3 }' "$tmp/declared" |
    sort -u >"$tmp/companion"
awk -v s="$split" '$1 ~ /ymap_companions\.h$/ && $2 > s { print $3 }' "$tmp/declared" |
    sort -u >"$tmp/callback"
for list in contract companion callback; do
    [ -s "$tmp/$list" ] || { echo "no $list functions found in the headers"; exit 2; }
done

# What the C and C++ runtime libraries export: a sanitizing build imports some
# of their names unversioned, as its runtime intercepts them.
for lib in libc.so.6 libm.so.6 libstdc++.so.6 libgcc_s.so.1; do
    path=$("${CC:-cc}" -print-file-name="$lib")
    [ -f "$path" ] && nm -D --defined-only "$path" | awk '{ sub(/@.*/, "", $NF); print $NF }'
done | sort -u >"$tmp/runtime"

# Undefined names of LIBRARY outside the named lists and the runtime.
outside() {
    nm -D --undefined-only "$1" | awk '
        $NF ~ /@(GLIBC|GLIBCXX|CXXABI|GCC)_/ { next }
        $1 == "w" && $NF ~ /^(_ITM_|__gmon_start__|__cxa_finalize)/ { next }
        $NF ~ /^__(asan|ubsan|lsan|sanitizer)_/ { next }   # sanitizer runtime
        { print $NF }' | sort -u >"$tmp/imports"
    shift
    for list; do cat "$tmp/$list"; done | cat - "$tmp/runtime" | sort -u >"$tmp/allowed"
    comm -23 "$tmp/imports" "$tmp/allowed"
}

status=0
for check in "$map contract companion" "$companions contract callback"; do
    # shellcheck disable=SC2086
    set -- $check
    bad=$(outside "$@")
    if [ -n "$bad" ]; then
        echo "$1 imports names outside the contract:"
        echo "$bad" | sed 's/^/  /'
        status=1
    fi
done
exit $status
