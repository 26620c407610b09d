#!/bin/sh
# A program's --help and --version, and its manual page, agree with each other:
#   program_pages.sh PROGRAM PAGE VERSION
# --help prints the usage on standard output alone and exits 0; --version
# prints "NAME VERSION"; every command and option the usage names is in the
# page.
set -u
program=$1 page=$2 version=$3
name=$(basename "$program")
tmp=$(mktemp -d) || exit 2
trap 'rm -rf "$tmp"' EXIT
status=0
fail() { echo "$name: $*"; status=1; }

"$program" --help >"$tmp/out" 2>"$tmp/err" || fail "--help exits $?"
[ -s "$tmp/err" ] && fail "--help writes to standard error: $(cat "$tmp/err")"
grep -q "^usage: $name " "$tmp/out" || fail "--help prints no usage"

out=$("$program" --version 2>&1) || fail "--version exits $?"
[ "$out" = "$name $version" ] || fail "--version prints \"$out\", not \"$name $version\""

# Options as the page spells them: \- for each dash.
for option in $(grep -o -- '--[a-z][a-z-]*' "$tmp/out" | sort -u); do
    grep -qF -- "$(printf '%s' "$option" | sed 's/-/\\-/g')" "$page" ||
        fail "$page does not describe $option"
done
# Commands: the word after the program's name on a usage line.
for command in $(sed -n "s/^\(usage:\)\{0,1\}[[:space:]]*$name \([a-z][a-z-]*\).*/\2/p" "$tmp/out"); do
    grep -q "^\.B $name $command\$\|^\.B $name $command " "$page" ||
        fail "$page does not show the command $command"
done
exit $status
