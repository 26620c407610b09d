#!/usr/bin/env bash
# Writes the seeds of the fuzz corpora from the examples and the inputs of the
# module tests' golden files: walk_fuzz inputs through walk_seeds (of the
# plain build, BUILD, default build), the device's requests with their header
# byte, the texts for parse_input_fuzz. Seeds are named after their source;
# regression inputs and other files of the corpora stay.
#
#   fuzz/seeds.sh [BUILD]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

# Each golden case's input as <kind>-<file>-<case>.xml.
python3 - "$tmp" tests/modules/golden/*.txt <<'EOF'
import os, re, sys
out = sys.argv[1]
for path in sys.argv[2:]:
    base = os.path.splitext(os.path.basename(path))[0]
    for case in re.split(r"^=== ", open(path).read(), flags=re.M)[1:]:
        name = case.split("\n", 1)[0].strip()
        kind = re.search(r"^kind: (\S+)", case, re.M)
        text = re.search(r"^input:\n(.*?)^status:", case, re.M | re.S)
        if kind and text:
            with open(f"{out}/{kind.group(1)}-{base}-{name}.xml", "w") as f:
                f.write(text.group(1))
EOF

"$build/fuzz/walk_seeds" fuzz/corpus/walk_fuzz examples/*.xml examples/*.json "$tmp"/*.xml

# The device takes OpenConfig content: one byte (0 edit, 1 get-config, 2 get),
# then the text; an edit also with default-operation replace and then a get
# (7), and with none and test-only (0x18).
python3 - fuzz/corpus/device_fuzz examples/edit-*.xml examples/delete-*.xml \
    examples/get-*.xml "$tmp"/*.xml <<'EOF'
import os, re, sys
OC = '<system xmlns="http://openconfig.net/yang/system"'
NC = 'xmlns:nc="urn:ietf:params:xml:ns:netconf:base:1.0"'
out = sys.argv[1]
for path in sys.argv[2:]:
    name = os.path.splitext(os.path.basename(path))[0]
    text = open(path).read().strip()
    if text.startswith("<config"):
        text = re.sub(r"^<config[^>]*>|</config>$", "", text).strip()
    if not text.startswith(OC):
        continue
    if NC not in text.split(">", 1)[0]:
        text = text.replace(OC, OC + " " + NC, 1)
    edit = name.startswith(("edit", "delete"))
    headers = {name: 0} if edit else {name: 1 if name.startswith("get-config") else 2}
    if edit:
        headers.update({name + "-replace-then-get": 7, name + "-none-test-only": 0x18})
    for seed, header in headers.items():
        with open(f"{out}/{seed}", "wb") as f:
            f.write(bytes([header]) + text.encode())
EOF

for f in "$tmp"/*.xml; do
    cp "$f" "fuzz/corpus/parse_input_fuzz/$(basename "$f" .xml)"
done
