#!/bin/bash
# Ten seconds of damaged DXF files: the reader refuses or reads each, and never crashes.
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
files=()
for file in plan/vegetation/v3 sheets/A4H; do
    file="/usr/share/librecad/library/$file.dxf"
    files+=("Z:${file//\//\\}")
done
"$TESSARY_WINE" "$TESSARY_BIN/dxf_fuzz.exe" 10 "${FUZZ_SEED:-1}" "${files[@]}"
