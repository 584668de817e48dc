#!/bin/bash
# Opening a drawing of 100,000 lines, arcs and block insertions in the host against ezdxf, a reader in another language,
# on the same file. Starting up does not count: the time of an empty drawing is taken off. A ratio below 1 means that the
# host is faster. Environment as for every benchmark script (TESSARY_ROOT, TESSARY_BIN, TESSARY_WINE).
set -euo pipefail

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
/usr/bin/python3 - "$work" <<'PYTHON'
import sys

import ezdxf

folder = sys.argv[1]
for name, count in (("empty", 0), ("large", 100000)):
    document = ezdxf.new("R2000")
    document.blocks.new("PART").add_circle((0, 0), 1)
    space = document.modelspace()
    for i in range(count):
        x, y = i % 317 * 1.1, i // 317 * 0.7
        if i % 4 < 2:
            space.add_line((x, y), (x + 0.9, y + i % 7 * 0.1))
        elif i % 4 == 2:
            space.add_arc((x, y), 0.4, i % 360, (i * 7) % 360)
        else:
            space.add_blockref("PART", (x, y), {"rotation": i % 90})
    document.saveas("%s/%s.dxf" % (folder, name))
PYTHON
echo '(princ)' >"$work/nothing.lsp"

windows_path() { printf 'Z:%s' "${1//\//\\}"; }
open_host() {
    (cd "$TESSARY_BIN" && "$TESSARY_WINE" drafthost.exe run --open "$(windows_path "$work/$1.dxf")" \
        "$(windows_path "$work/nothing.lsp")") >/dev/null
}
open_baseline() { /usr/bin/python3 -c 'import sys, ezdxf; ezdxf.readfile(sys.argv[1])' "$work/$1.dxf"; }

# The best of three runs, in milliseconds.
best() {
    local least='' begin end
    for _ in 1 2 3; do
        begin=$(date +%s%N)
        "$@"
        end=$(date +%s%N)
        if [ -z "$least" ] || [ $((end - begin)) -lt "$least" ]; then least=$((end - begin)); fi
    done
    echo $((least / 1000000))
}

open_host empty
ours=$(($(best open_host large) - $(best open_host empty)))
theirs=$(($(best open_baseline large) - $(best open_baseline empty)))
awk -v ours="$ours" -v theirs="$theirs" \
    'BEGIN { printf "dxf/open      %5.2f times ezdxf (%d ms, ezdxf %d ms)\n", ours / theirs, ours, theirs }'
