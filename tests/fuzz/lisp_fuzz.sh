#!/usr/bin/env bash
# Builds the language natively with the address and undefined-behaviour sanitizers and feeds it mutated programs.
#     tests/fuzz/lisp_fuzz.sh [SECONDS [SEED]]
# Objects go to build/fuzz; ends with 1 and the offending text in build/fuzz/lisp_fuzz_input.lsp when something is found.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
seconds=${1:-120}
folder=$root/build/fuzz
mkdir -p "$folder/lisp"

compiler=(g++)
command -v ccache > /dev/null && compiler=(ccache g++)
flags=(-std=c++20 -O1 -g -fsanitize=address,undefined -fno-sanitize-recover=undefined "-I$root")

# The language only: what drives drawings and prompts needs the rest of the host.
sources=$(find "$root/host/lisp" -maxdepth 1 -name '*.cpp' ! -name 'drawing_*' ! -name 'input_*' | sort)
objects=()
for source in $sources "$root/tests/fuzz/lisp_fuzz.cpp"; do
    object=$folder/lisp/$(basename "$source").o
    [ "$object" -nt "$source" ] || "${compiler[@]}" "${flags[@]}" -c "$source" -o "$object"
    objects+=("$object")
done
"${compiler[@]}" "${flags[@]}" "${objects[@]}" -o "$folder/lisp_fuzz"

cd "$folder"
./lisp_fuzz "$seconds" ${2:+"$2"}
