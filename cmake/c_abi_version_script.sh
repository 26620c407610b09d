#!/bin/sh
# Writes the linker version script of a shared library from its objects: the C
# names they define with default visibility (what the sources mark exported),
# in one version node, and everything else local. So the export mark in the
# sources stays the one list, and no C++ name of the inside can leak out.
#
#   c_abi_version_script.sh READELF NODE OUT OBJECT...
set -eu
readelf=$1 node=$2 out=$3
shift 3
{
    printf '%s {\n  global:\n' "$node"
    "$readelf" -sW "$@" | awk '
        ($5 == "GLOBAL" || $5 == "WEAK") && $6 == "DEFAULT" && $7 != "UND" &&
            $4 != "SECTION" && $4 != "FILE" && $8 !~ /^_Z/ && $8 != "" { print "    " $8 ";" }' |
        sort -u
    printf '  local:\n    *;\n};\n'
} >"$out.tmp"
# An unchanged list leaves the file alone, so the library is not linked again.
if cmp -s "$out.tmp" "$out"; then rm -f "$out.tmp"; else mv "$out.tmp" "$out"; fi
