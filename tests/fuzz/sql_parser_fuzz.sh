#!/usr/bin/env bash
# Builds the SQL parser natively with the address and undefined-behaviour sanitizers and feeds it mutated statements.
#     tests/fuzz/sql_parser_fuzz.sh [SECONDS [SEED]]
# Objects go to build/fuzz; ends with 1 and the offending statement in build/fuzz/sql_parser_fuzz_input.sql when something
# is found.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
seconds=${1:-120}
folder=$root/build/fuzz
mkdir -p "$folder/sql_parser"

compiler=(g++)
command -v ccache > /dev/null && compiler=(ccache g++)
flags=(-std=c++20 -O1 -g -fsanitize=address,undefined -fno-sanitize-recover=undefined "-I$root")

objects=()
for source in "$root"/server/{values,schema,sql}/*.cpp "$root"/tests/{server/sql_text,fuzz/sql_parser_fuzz}.cpp; do
    object=$folder/sql_parser/$(basename "$source").o
    "${compiler[@]}" "${flags[@]}" -c "$source" -o "$object"
    objects+=("$object")
done
"${compiler[@]}" "${flags[@]}" "${objects[@]}" -o "$folder/sql_parser_fuzz"

cd "$folder"
./sql_parser_fuzz "$seconds" ${2:+"$2"}
