#!/bin/bash
# Clients that come, go and die: what a dead client had open is closed, and the server's process ends when nobody uses
# it. Where the server's process is watched, nobody else may use it: that is done in a Wine prefix of the script's own.
set -u
prefix=$TESSARY_WINEPREFIX
work=$(mktemp -d)
client=

# shellcheck disable=SC2317 # Called by trap.
end() {
    [ -z "$client" ] || kill -9 "$client" 2>/dev/null
    if [ "$prefix" = "$work/wine" ]; then
        "$TESSARY_WINE" --server -k
        "$TESSARY_WINE" --server -w
    fi
    rm -rf "$work"
}
trap end EXIT
cd "$work" || exit 1
folder="Z:${work//\//\\}"
failures=0

fail() {
    echo "$1"
    failures=$((failures + 1))
}

# The processes of the server in this prefix, one a line.
servers() {
    local process
    for process in /proc/[0-9]*; do
        if tr '\0' ' ' <"$process/cmdline" | grep -q 'TessaryServer\.exe' &&
            tr '\0' '\n' <"$process/environ" | grep -qx "WINEPREFIX=$prefix"; then
            echo "${process#/proc/}"
        fi
    done 2>/dev/null
}

# within SECONDS COMMAND...: waits until the command succeeds.
within() {
    local tries=$(($1 * 5))
    shift
    until "$@"; do
        tries=$((tries - 1))
        [ $tries -gt 0 ] || return 1
        sleep 0.2
    done
}

no_server() {
    [ -z "$(servers)" ]
}

deleted() {
    "$TESSARY_WINE" cmd.exe /c "del $folder\\plan.qn" </dev/null >/dev/null 2>&1
    [ ! -e plan.qn ]
}

# shellcheck disable=SC2317 # Called by within.
begun() {
    [ -e begun.txt ]
}

# Holds a database and a started service until it is killed.
cat >hold.vbs <<SCRIPT
Set service = CreateObject("Tessary.DatabaseService")
service.Start
Set connection = CreateObject("Tessary.DatabaseConnection")
connection.CreateDatabase "$folder\\plan.qn"
connection.OpenDatabase "$folder\\plan.qn", False, False
connection.CreateDatabase "$folder\\begun.txt"
Do
    open = connection.IsOpen
Loop
SCRIPT

cat >short.vbs <<'SCRIPT'
Set connection = CreateObject("Tessary.DatabaseConnection")
WScript.Echo "version " & connection.Version
SCRIPT

# Its output goes to a file: a pipe would stay open as long as the server.
short_client() {
    "$TESSARY_WINE" cscript.exe //nologo "$folder\\short.vbs" </dev/null >short.txt 2>&1
    grep -q 'version 1' short.txt
}

# quick_clients COUNT: so many clients that come and go, three at a time, until one fails or waits in vain: that is printed.
quick_clients() {
    # shellcheck disable=SC2016 # Expanded by the shells of the clients.
    seq "$1" | xargs -P 3 -I{} sh -c '
        timeout 20 "$TESSARY_WINE" "$TESSARY_BIN/server_client.exe" </dev/null || { echo "client {}: status $?"; exit 255; }' 2>/dev/null
}

if [ "${TESSARY_SERVER:-local}" = inproc ]; then
    short_client || fail 'the library does not serve'
    no_server || fail 'a server process runs although the library is registered'
    exit $failures
fi

prefix=$work/wine
export TESSARY_WINEPREFIX=$prefix
"$TESSARY_WINE" "$TESSARY_BIN/TessaryServer.exe" /RegServer </dev/null >/dev/null 2>&1

"$TESSARY_WINE" cscript.exe //nologo "$folder\\hold.vbs" </dev/null >hold.txt 2>&1 &
client=$!
within 30 begun || fail "the client did not begin: $(cat hold.txt)"
[ "$(servers | wc -l)" = 1 ] || fail 'not one server runs for a client'
short_client || fail 'a second client is not served'
[ "$(servers | wc -l)" = 1 ] || fail 'the second client has a server of its own'
sleep 7
[ "$(servers | wc -l)" = 1 ] || fail 'the server ended although a client uses it'
if deleted; then fail 'an open database could be deleted'; fi

kill -9 "$client"
wait "$client" 2>/dev/null
client=
within 5 deleted || fail 'the database of a dead client stays open'
within 20 no_server || fail 'the server of a dead client does not end'

# The last client's leaving meets the next one's coming again and again.
failed=$(quick_clients 250)
[ -z "$failed" ] || fail "clients that come and go are not served: $failed"

# Programs that begin around the moment at which the server withdraws its classes. The add-in asks a second time when it
# meets that moment.
echo '(princ (if (ts_create_db "new.qn") "served" "refused"))' >new.lsp
for delay in 4.3 4.5 4.7 4.9; do
    rm -f new.qn
    "$TESSARY_WINE" "$TESSARY_BIN/drafthost.exe" run --module "$TESSARY_BIN/Tessary2010x64.arx" new.lsp \
        </dev/null >new.txt 2>&1
    grep -q 'served' new.txt || fail "no service for the add-in: $(cat new.txt)"
    sleep $delay
done
within 20 no_server || fail 'the server does not end after its last client'
exit $failures
