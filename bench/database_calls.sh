#!/bin/bash
# Cost of database work from LISP, with the server in its own process and in the host's. Environment as for every
# benchmark script: TESSARY_ROOT, TESSARY_BIN, TESSARY_WINE.
set -eu
windows_path() { printf 'Z:%s' "${1//\//\\}"; }
work=$(mktemp -d)
cd "$work"
# Whichever way the measuring ends, what was registered before is registered again.
registered=${TESSARY_SERVER:-local}
register() {
    if [ "$1" = inproc ]; then
        "$TESSARY_WINE" "$TESSARY_BIN/TessaryServer.exe" /RegServer inproc
    else
        "$TESSARY_WINE" "$TESSARY_BIN/TessaryServer.exe" /RegServer
    fi
}
trap 'register "$registered"; rm -rf "$work"' EXIT
for server in local inproc; do
    register "$server"
    printf '\nserver: %s' "$server"
    "$TESSARY_WINE" "$TESSARY_BIN/drafthost.exe" run --module "$(windows_path "$TESSARY_BIN/Tessary2010x64.arx")" \
        --module "$(windows_path "$TESSARY_BIN/BareWork.arx")" \
        "$(windows_path "$TESSARY_ROOT/bench/database_calls.lsp")"
done
