#!/bin/sh
# Doxygen input filter: the contract headers use plain C comments; read them as
# documentation. A file's first comment describes the file, a comment above a
# declaration describes it, one after a member or a macro describes that.
# Section rulers ("/* ---- ... */") stay plain.
exec sed -e '1s|^/\*$|/** @file|' \
    -e '/^[[:space:]]*\/\*[[:space:]]*-/b' \
    -e 's|^\([[:space:]]*\)/\*\([^*]\)|\1/**\2|' \
    -e 's|^\([[:space:]]*\)/\*$|\1/**|' \
    -e 's|^\([[:space:]][^/]*[;,]\)\([[:space:]]*\)/\*\([^*]\)|\1\2/**<\3|' \
    -e 's|^\(#define[^/]*[^[:space:]/]\)\([[:space:]]*\)/\*\([^*]\)|\1\2/**<\3|' "$1"
