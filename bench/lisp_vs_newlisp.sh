#!/bin/bash
# The evaluator against newLISP, an interpreter built for this machine: the same programs, each timed inside its own
# process so that starting up does not count. A ratio below 1 means that the host is faster. Environment as for every
# benchmark script (TESSARY_ROOT, TESSARY_BIN, TESSARY_WINE), and optionally LISP_HOST, a command that evaluates
# program files given as arguments instead of drafthost.exe under Wine.
set -euo pipefail

programs=$TESSARY_ROOT/bench/lisp_programs
windows_path() { printf 'Z:%s' "${1//\//\\}"; }

run_host() {
    if [ -n "${LISP_HOST-}" ]; then
        $LISP_HOST "$@"
    else
        local paths=()
        for file in "$@"; do paths+=("$(windows_path "$file")"); done
        (cd "$TESSARY_BIN" && "$TESSARY_WINE" drafthost.exe run "${paths[@]}")
    fi
}

# "VALUE MILLISECONDS" out of what a measuring program printed
measured() { tr -d '\r' | sed -n 's/^measured //p'; }

status=0
for program in "$programs"/*.lsp; do
    name=$(basename "$program" .lsp)
    [ "$name" = measure ] && continue
    read -r host_value host_time < <(run_host "$program" "$programs/measure.lsp" | measured) || true
    read -r base_value base_time < <(newlisp "$programs/$name.newlisp" "$programs/measure.newlisp" | measured) || true
    if [ -z "${host_value-}" ] || [ "${host_value-}" != "${base_value-}" ]; then
        echo "lisp/$name: values differ: host ${host_value:-none}, newLISP ${base_value:-none}" >&2
        status=1
        continue
    fi
    awk -v name="$name" -v ours="$host_time" -v theirs="$base_time" \
        'BEGIN { printf "lisp/%-12s %5.2f times newLISP (%.3f ms, newLISP %.3f ms)\n", name, ours / theirs, ours, theirs }'
done
exit $status
