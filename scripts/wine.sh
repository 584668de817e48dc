#!/bin/sh
# wine.sh PROGRAM.exe ARGUMENT...: runs a Windows program in the clone's own Wine prefix, without a display, and returns
# its exit status. Used by hand, by ctest and by ./tessary. Nothing is written to the user's home: the home that Wine
# sees lies in the prefix. A missing prefix is made first.
#
# With TESSARY_SCREEN=yes the program's windows are shown on DISPLAY, and the prefix is another one: a prefix is made for
# the display or for none.
#
# wine.sh --server OPTION...: the Wine server of that prefix.
root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
screen="${TESSARY_SCREEN-}"
export WINEPREFIX="${TESSARY_WINEPREFIX:-$root/build/wine${screen:+-screen}}"
export WINEARCH=win64
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES='winemenubuilder.exe=d;mscoree=;mshtml='
# While the prefix is made, nothing shall appear on the display.
if [ "$screen" = yes ] && [ "${TESSARY_MAKING_PREFIX-}" != yes ]; then
    export XAUTHORITY="${XAUTHORITY:-$HOME/.Xauthority}"
else
    unset DISPLAY XAUTHORITY
fi
export HOME="$WINEPREFIX/home"
unset WAYLAND_DISPLAY
unset XDG_CACHE_HOME XDG_CONFIG_HOME XDG_CONFIG_DIRS XDG_DATA_HOME XDG_DESKTOP_DIR XDG_RUNTIME_DIR XDG_STATE_HOME

if [ "${1-}" = --server ]; then
    shift
    exec wineserver "$@"
fi
if [ "${TESSARY_MAKING_PREFIX-}" != yes ] && ! [ -f "$WINEPREFIX/ready" ]; then
    "$root/scripts/wine-prefix.sh" </dev/null >&2 || exit 3
fi
# Where the system lays a program's memory at random, it hits the page that Windows programs share once in some thousand
# starts, and Wine ends the program with status 1 before it runs. Some sandboxes do not allow to turn that off.
if setarch -R true 2>/dev/null; then
    exec setarch -R wine "$@"
fi
exec wine "$@"
