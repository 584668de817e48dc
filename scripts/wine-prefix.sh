#!/bin/sh
# Makes the Wine prefix that programs of the target run in (build/wine), once; later calls return at once. With
# TESSARY_SCREEN=yes it is one for programs that are shown on a display (build/wine-screen).
set -eu

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
prefix="${TESSARY_WINEPREFIX:-$root/build/wine${TESSARY_SCREEN:+-screen}}"
if [ "${TESSARY_SCREEN-}" = yes ]; then graphics=x11; else graphics=null; fi
# Raised when the settings below change: an older prefix is then made anew.
settings=1

export TESSARY_MAKING_PREFIX=yes
wine="$root/scripts/wine.sh"
log="$prefix.log"

ready() {
    [ -f "$prefix/ready" ] && [ "$(cat "$prefix/ready")" = "$settings" ]
}

fail() {
    echo "tessary: making the Wine prefix failed: $1" >&2
    echo "tessary: the log is $log; remove $prefix and try again (./tessary setup)" >&2
    exit 3
}

# AeDebug: a crash must end the program with a status other than 0, not wait in a debugger's dialog.
# Graphics null: windows, dialogs and messages work without a display.
# Replacements: the faces that programs ask for, by free fonts of the same widths.
write_registry() {
    cat <<REGISTRY
REGEDIT4

[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows NT\CurrentVersion\AeDebug]
"Debugger"="false"

[HKEY_CURRENT_USER\Software\Wine\Drivers]
"Graphics"="$graphics"
"Audio"=""

[HKEY_CURRENT_USER\Software\Wine\Fonts\Replacements]
"Arial"="Liberation Sans"
"Courier New"="Liberation Mono"
"Times New Roman"="Liberation Serif"
REGISTRY
}

copy_fonts() {
    fonts="$prefix/drive_c/windows/Fonts"
    mkdir -p "$fonts"
    cp /usr/share/wine/fonts/*.ttf "$fonts/" || fail "no fonts of Wine (package fonts-wine)"
    cp /usr/share/fonts/truetype/liberation/Liberation*.ttf "$fonts/" ||
        fail "no Liberation fonts (package fonts-liberation)"
}

make_prefix() {
    rm -rf "$prefix"
    mkdir -p "$prefix/home"
    : >"$log"
    "$wine" wineboot.exe --init >>"$log" 2>&1 || fail "wineboot did not succeed"
    "$wine" --server -w
    copy_fonts
    write_registry >"$prefix/settings.reg"
    # Wine's regedit also takes the Unix path.
    "$wine" regedit.exe /S "$prefix/settings.reg" >>"$log" 2>&1 ||
        fail "the registry settings were not accepted"
    "$wine" --server -w
    grep -q '"Debugger"="false"' "$prefix/system.reg" || fail "the registry settings were not kept"
    echo "$settings" >"$prefix/ready"
}

if ! ready; then
    mkdir -p "$(dirname -- "$prefix")"
    # Programs that start at the same time wait for the first one's prefix.
    exec 8>"$prefix.lock"
    flock 8
    ready || make_prefix 8>&-
fi
