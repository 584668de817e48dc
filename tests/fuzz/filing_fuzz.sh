#!/usr/bin/env bash
# Builds the database, the files and the leader natively with the address and undefined-behaviour sanitizers and changes
# drawings at random.
#     tests/fuzz/filing_fuzz.sh [SECONDS [SEED]]
# Objects go to build/fuzz. Each drawing has a seed of its own, which is printed: the last one is the one that failed.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
seconds=${1:-120}
folder=$root/build/fuzz
mkdir -p "$folder/filing"

export compiler='g++' folder root
command -v ccache > /dev/null && compiler='ccache g++'

# compile SOURCE: unless its object is newer than all that it was made of.
compile() {
    local source=$1 object
    object=$folder/filing/$(printf '%s' "${source#"$root"/}" | tr / _).o
    if [ -e "$object" ] && [ -z "$(find "$root/host" "$root/module" "$root/tests/fuzz" -newer "$object" \
        \( -name '*.h' -o -path "$source" \) -print -quit)" ]; then
        return
    fi
    $compiler -std=c++20 -O1 -g1 -DDRAFTHOST_BUILD -fsanitize=address,undefined -fno-sanitize-recover=undefined "-I$root" \
        -include "$root/cmake/standard_headers.h" -c "$source" -o "$object"
}
export -f compile

sources=$(find "$root"/host/{database,geometry,exchange,text} -name '*.cpp' ! -name 'truetype_font.cpp')
for name in class curve drawing entity filing points; do
    sources+=" $root/module/leader/leader_$name.cpp"
done
sources+=" $root/host/graphics/world_draw.cpp $root/module/drawing/geometry_helpers.cpp"
sources+=" $root/module/binding/value_list.cpp $root/tests/fuzz/filing_fuzz.cpp"
# shellcheck disable=SC2016,SC2086
printf '%s\n' $sources | xargs -P "$(nproc)" -I{} bash -c 'compile "$1"' _ {}
objects=$(for source in $sources; do echo "$folder/filing/$(printf '%s' "${source#"$root"/}" | tr / _).o"; done)
# shellcheck disable=SC2086
g++ -fsanitize=address,undefined $objects -o "$folder/filing_fuzz"

cd "$folder"
./filing_fuzz "$seconds" "${2:-1}"
