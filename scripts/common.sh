# Places and messages that all scripts share. Sourced; needs bash. TESSARY_ROOT is the clone.
# shellcheck shell=bash disable=SC2034

TESSARY_ROOT=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
export TESSARY_ROOT
BUILD="$TESSARY_ROOT/build"
WINE="$TESSARY_ROOT/scripts/wine.sh"
export DEBIAN_FRONTEND=noninteractive

# Exit statuses of ./tessary.
readonly STATUS_USAGE=2 STATUS_SETUP=3

say() {
    printf '%s\n' "$*" >&2
}

# fail STATUS MESSAGE [ADVICE]: ends the script.
fail() {
    say "tessary: $2"
    [ -z "${3-}" ] || say "tessary: $3"
    exit "$1"
}

# logged NAME COMMAND...: runs a command whose output is only of interest when it fails. The log is build/logs/NAME.log;
# its end is shown on failure.
logged() {
    local log="$BUILD/logs/$1.log"
    shift
    mkdir -p "$BUILD/logs"
    "$@" >"$log" 2>&1 </dev/null && return
    tail -n 30 "$log" >&2
    say "tessary: the whole log is ${log#"$TESSARY_ROOT/"}"
    return 1
}

# as_root COMMAND...: directly, or through sudo.
as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo --preserve-env=DEBIAN_FRONTEND "$@"
    else
        say "tessary: installing packages needs root, and there is no sudo"
        return 1
    fi
}
