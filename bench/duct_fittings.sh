#!/bin/bash
# Cost of duct fittings, measured in one process. Environment as for every benchmark script: TESSARY_ROOT, TESSARY_BIN,
# TESSARY_WINE.
set -eu
windows_path() { printf 'Z:%s' "${1//\//\\}"; }
cd "$TESSARY_BIN"
"$TESSARY_WINE" drafthost.exe run --module "$(windows_path "$TESSARY_BIN/Tessary2010x64.arx")" \
    --module "$(windows_path "$TESSARY_BIN/BareWork.arx")" \
    "$(windows_path "$TESSARY_ROOT/bench/duct_fittings.lsp")"
