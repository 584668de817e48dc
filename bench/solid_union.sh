#!/bin/bash
# Unions of solids' meshes in the program of the target, checked and with their triangles' kinds, against CGAL's bare
# union of the same meshes in a native program, in the same run. Both are optimized and without CGAL's own checks.
# Environment as for every benchmark script (TESSARY_ROOT, TESSARY_BIN, TESSARY_WINE).
set -euo pipefail

folder="$TESSARY_ROOT/build/native_bench"
program="$folder/native_union"
mkdir -p "$folder"
if [ -z "$(find "$program" -newer "$TESSARY_ROOT/bench/solids/native_union.cpp" \
    -newer "$TESSARY_ROOT/bench/solids/union_times.h" -newer "$TESSARY_ROOT/bench/solids/union_cases.h" 2>/dev/null)" ]; then
    echo "building the native program of CGAL's unions (about 40 seconds)" >&2
    g++ -std=c++20 -O2 -frounding-math -DCGAL_NDEBUG -DCGAL_USE_GMP=1 -DCGAL_USE_MPFR=1 "-I$TESSARY_ROOT" \
        "$TESSARY_ROOT/bench/solids/native_union.cpp" -o "$program" -lmpfr -lgmp
fi

# Lines "ours|theirs MICROSECONDS CASE"; in turns, and the best counts, since the machine is seldom quiet.
measure() {
    local ours theirs
    for _ in 1 2 3; do
        ours=$("$TESSARY_WINE" "$TESSARY_BIN/solid_union.exe" | tr -d '\r')
        theirs=$("$program")
        printf '%s\n' "$ours" | sed 's/^/ours /'
        printf '%s\n' "$theirs" | sed 's/^/theirs /'
    done
}
measure | awk '
    { time = $2; name = $0; sub(/^[a-z]+ [0-9]+ /, "", name) }
    !(($1, name) in best) || time < best[$1, name] { best[$1, name] = time }
    !(name in known) { known[name]; names[++cases] = name }
    END {
        for (i = 1; i <= cases; i++) {
            ours = best["ours", names[i]]; theirs = best["theirs", names[i]]
            printf "solids/union  %5.2f times CGAL alone: %s (%.1f ms, CGAL %.1f ms%s)\n",
                ours / theirs, names[i], ours / 1000, theirs / 1000,
                names[i] ~ /cylinders/ ? "; at most 2 wanted" : ""
        }
    }'
