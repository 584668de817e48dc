#!/bin/sh
# ccache.sh COMPILER ARGUMENT...: compiles through ccache. The cache lies in the clone: a build writes nothing to the
# user's home. A precompiled header changes the compiler's inputs in ways that the cache has to be told to look past.
root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
export CCACHE_DIR="$root/build/ccache"
export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
exec ccache "$@"
