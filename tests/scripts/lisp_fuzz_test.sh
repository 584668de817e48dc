#!/bin/bash
# Ten seconds of damaged programs for the language, in a native build that checks addresses and undefined behaviour.
set -euo pipefail
export CCACHE_DIR="$TESSARY_ROOT/build/ccache"
bash "$TESSARY_ROOT/tests/fuzz/lisp_fuzz.sh" 10 "${FUZZ_SEED:-1}"
