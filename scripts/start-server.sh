#!/bin/sh
# start-server.sh PROGRAM.exe ARGUMENT...: what COM starts as the database server in this project's Wine prefixes. A
# program that Wine starts keeps the error output of the one that asked for it; the server outlives its clients by some
# seconds, and whoever reads a client's output through a pipe would wait as long.
exec wine "$@" </dev/null >/dev/null 2>&1
