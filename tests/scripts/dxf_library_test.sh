#!/bin/bash
# Drawings of another program survive reading and writing: nothing of them is lost, the second output is the same as the
# first, and an independent reader has nothing to correct. Every tenth of the library's files.
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
windows_path() { printf 'Z:%s' "${1//\//\\}"; }

number=0
while IFS= read -r file; do
    number=$((number + 1))
    printf '%s\t%s\n' "$file" "$work/$number.dxf" >>"$work/list"
    printf '%s\t%s\n' "$(windows_path "$file")" "$(windows_path "$work/$number.dxf")" >>"$work/windows-list"
done < <(find /usr/share/librecad -name '*.dxf' | LC_ALL=C sort | awk 'NR % 10 == 1')
[ "$number" -gt 0 ] || { echo 'no drawings: package librecad-data'; exit 1; }

"$TESSARY_WINE" "$TESSARY_BIN/dxf_roundtrip.exe" "$(windows_path "$work/windows-list")"
"$PYTHON" -B "$TESSARY_ROOT/tests/fuzz/dxf_library.py" "$work/list"
