#!/bin/sh
# wine_in_files.sh PROGRAM.exe ARGUMENT...: scripts/wine.sh for the tests. What a program starts and leaves running (the
# database server, Wine's services) keeps its output open; a reader of a pipe would wait for all of them. So what goes to
# pipes goes to files first, and on when the program has ended.
wine=$(CDPATH='' cd -- "$(dirname -- "$0")/../scripts" && pwd)/wine.sh
if ! [ -p /dev/stdout ] && ! [ -p /dev/stderr ]; then
    exec "$wine" "$@"
fi
files=$(mktemp -d)
trap 'rm -rf "$files"' EXIT
trap 'exit 143' TERM INT
"$wine" "$@" >"$files/out" 2>"$files/err"
status=$?
cat "$files/out"
cat "$files/err" >&2
exit $status
