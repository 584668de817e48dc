# Keeping Wine's server alive while programs run: starting it takes half a second, and a program whose output is a pipe
# would hold that pipe until Wine's services end. Sourced after common.sh.
# shellcheck shell=bash

# Every session holds a shared lock on file descriptor 7; programs are started without it (7>&-), because Wine's
# services would inherit it and outlive them.
begin_wine_session() {
    mkdir -p "$BUILD"
    exec 7>"$BUILD/wine.users"
    flock --shared 7
    # It ends by itself a minute after the last program. The status is not 0 when one is running already.
    if "$WINE" --server -p60 </dev/null >/dev/null 2>&1 7>&-; then
        "$WINE" cmd.exe /c exit </dev/null >/dev/null 2>&1 7>&- || true
    fi
}

# end_wine_session: stops the server of this prefix, unless another session uses it.
end_wine_session() {
    if flock --exclusive --nonblock 7; then
        "$WINE" --server -k </dev/null >/dev/null 2>&1 7>&- || true
    fi
    exec 7>&-
}

# in_pipes COMMAND...: runs a program of the target with pipes instead of a terminal, which Wine would take over to
# emulate a console (cursor movements, its own line editing, no UTF-8). Returns the program's status.
in_pipes() {
    local status=0 feeder=
    if [ -t 0 ]; then
        exec 3<&0
        exec 4< <(exec cat <&3)
        feeder=$!
        "$@" <&4 2> >(exec cat >&2) 3<&- 4<&- 7>&- | cat
        status=${PIPESTATUS[0]}
        exec 3<&- 4<&-
        kill "$feeder" 2>/dev/null || true
    else
        "$@" 2> >(exec cat >&2) 7>&- | cat
        status=${PIPESTATUS[0]}
    fi
    return "$status"
}
