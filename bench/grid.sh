#!/bin/bash
# The grid control with 100,000 rows of 7 columns: filling, sorting, scrolling, fitting its columns and its memory, as
# ratios against the platform's list control and plain vectors in the same process. Environment as for every benchmark
# script (TESSARY_BIN, TESSARY_WINE).
set -euo pipefail
"$TESSARY_WINE" "$TESSARY_BIN/grid_bench.exe" | tr -d '\r'
