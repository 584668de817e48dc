# Which database server the programs in a Wine prefix find: TessaryServer.exe as a process of its own (local), or
# TessaryServer.dll inside the program (inproc). Sourced after common.sh.
# shellcheck shell=bash

SERVER_CHOICE="$BUILD/server-choice"

# The server that ./tessary setup --server chose.
chosen_server() {
    local choice
    choice=$(cat "$SERVER_CHOICE" 2>/dev/null) || choice=local
    printf '%s\n' "$choice"
}

choose_server() {
    case $1 in
    local | inproc) ;;
    *) fail "$STATUS_USAGE" "there is no server \"$1\"" "./tessary setup --server local|inproc" ;;
    esac
    mkdir -p "$BUILD"
    printf '%s\n' "$1" >"$SERVER_CHOICE"
}

# register_server PREFIX FOLDER local|inproc: the server in a build's bin folder is the one for programs in the prefix,
# which exists. A stamp beside the prefix's other files tells what is registered, so that mostly nothing is to be done.
register_server() {
    local prefix=$1 program="$2/TessaryServer.exe" kind=$3 stamp="$1/registered-server" arguments=(/RegServer)
    [ "$(cat "$stamp" 2>/dev/null)" != "$kind $program" ] || return 0
    [ "$kind" = local ] || arguments+=("$kind")
    rm -f "$stamp"
    TESSARY_WINEPREFIX="$prefix" logged register-server without_sessions "$WINE" "$program" "${arguments[@]}" ||
        fail "$STATUS_SETUP" "the database server could not be registered in $prefix" \
            "remove $prefix and try again"
    printf '%s\n' "$kind $program" >"$stamp"
}
