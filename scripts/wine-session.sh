# Keeping Wine's server alive while programs run: starting it takes half a second, and a program whose output is a pipe
# would hold that pipe until Wine's services end. Sourced after common.sh.
# shellcheck shell=bash

# Every session holds a shared lock on a file descriptor from 10 up; programs of the target are started without it,
# because Wine's services would inherit it and outlive them.
declare -A WINE_SESSIONS=()

# without_sessions COMMAND...
without_sessions() {
    (
        local lock
        for lock in "${WINE_SESSIONS[@]}"; do
            exec {lock}>&-
        done
        exec "$@"
    )
}

# begin_wine_session PREFIX: the prefix exists.
begin_wine_session() {
    local prefix=$1 lock
    exec {lock}>"$prefix.users"
    flock --shared "$lock"
    WINE_SESSIONS[$prefix]=$lock
    # It ends by itself a minute after the last program. The status is not 0 when one is running already.
    if TESSARY_WINEPREFIX="$prefix" without_sessions "$WINE" --server -p60 </dev/null >/dev/null 2>&1; then
        TESSARY_WINEPREFIX="$prefix" without_sessions "$WINE" cmd.exe /c exit </dev/null >/dev/null 2>&1 || true
    fi
}

# end_wine_sessions: stops the servers of this script's prefixes, but not those that another session uses.
end_wine_sessions() {
    local prefix lock
    for prefix in "${!WINE_SESSIONS[@]}"; do
        lock=${WINE_SESSIONS[$prefix]}
        if flock --exclusive --nonblock "$lock"; then
            TESSARY_WINEPREFIX="$prefix" without_sessions "$WINE" --server -k </dev/null >/dev/null 2>&1 || true
        fi
        exec {lock}>&-
    done
    WINE_SESSIONS=()
}

# in_pipes COMMAND...: runs a program of the target with pipes instead of a terminal, which Wine would take over to
# emulate a console (cursor movements, its own line editing, no UTF-8). Returns the program's status.
#
# Ctrl-C is the program's: it cancels what is running there, and what stands around it goes on.
#
# What the program starts (the database server, Wine's desktop) keeps its error output open and lives on for some
# seconds. So whoever copies it is told where it ends, by a line with the control character for the end of a text; else
# a reader of this script's error output would wait as long.
in_pipes() {
    local status=0 feeder='' errors copier
    trap : INT
    exec {errors}> >(trap '' INT; exec sed -u '/\x04$/{s///;/^$/Q;q}' >&2)
    copier=$!
    if [ -t 0 ]; then
        exec 3<&0
        exec 4< <(trap '' INT; exec cat <&3)
        feeder=$!
        without_sessions "$@" <&4 2>&"$errors" 3<&- 4<&- | (trap '' INT; exec cat)
        status=${PIPESTATUS[0]}
        exec 3<&- 4<&-
        kill "$feeder" 2>/dev/null || true
    else
        without_sessions "$@" 2>&"$errors" | (trap '' INT; exec cat)
        status=${PIPESTATUS[0]}
    fi
    printf '\004\n' >&"$errors" || true
    exec {errors}>&-
    wait "$copier" || true
    trap - INT
    return "$status"
}
