#!/bin/bash
# Ten seconds of damaged statements for the SQL parser, in a native build that checks addresses and undefined behaviour.
set -euo pipefail
export CCACHE_DIR="$TESSARY_ROOT/build/ccache"
bash "$TESSARY_ROOT/tests/fuzz/sql_parser_fuzz.sh" 10 "${FUZZ_SEED:-1}"
