# Configuring and building a preset. Sourced after common.sh.
# shellcheck shell=bash

# show_progress TITLE: passes the output of ninja on to standard error. On a terminal one line is kept up to date,
# otherwise every twentieth step is a line; messages of the compiler are shown whole. Silent when there was nothing to
# do.
show_progress() {
    local title=$1 line status='^\[([0-9]+)/([0-9]+)\] ' open=
    while IFS= read -r line; do
        case $line in
        *'Re-checking globbed directories...' | 'ninja: no work'* | 'ninja: Entering'* | '-- '*) continue ;;
        esac
        [ -z "$title" ] || say "$title"
        title=
        if [[ ! $line =~ $status ]]; then
            [ -z "$open" ] || say ''
            open=
            say "$line"
        elif [ -t 2 ]; then
            printf '\r\033[K%.100s' "$line" >&2
            open=yes
        elif ((BASH_REMATCH[1] % 20 == 0 || BASH_REMATCH[1] == BASH_REMATCH[2])); then
            say "$line"
        fi
    done
    [ -z "$open" ] || say ''
}

# configure_preset PRESET OPTION...: only when it never succeeded, or with other options, or for a clone that lay
# elsewhere; changes of CMake files are ninja's affair.
configure_preset() {
    local preset=$1 folder="$BUILD/$1" key
    shift
    key="$TESSARY_ROOT $* $(cksum <"$TESSARY_ROOT/CMakePresets.json")"
    if [ -f "$folder/build.ninja" ] && [ "$(cat "$folder/configured" 2>/dev/null)" = "$key" ]; then
        return
    fi
    if [ -f "$folder/CMakeCache.txt" ] &&
        ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$TESSARY_ROOT" "$folder/CMakeCache.txt"; then
        rm -rf "$folder"
    fi
    say "[3/4] configuring the $preset build"
    (cd "$TESSARY_ROOT" && logged "configure-$preset" cmake --preset "$preset" "$@") ||
        fail "$STATUS_SETUP" "configuring the $preset build failed" "remove build/$preset and try again"
    printf '%s\n' "$key" >"$folder/configured"
}

# build_preset PRESET [TARGET...]: brings the targets (default: all) up to date. Two builds of one preset wait for each
# other.
build_preset() {
    local preset=$1 folder="$BUILD/$1"
    shift
    local NINJA_STATUS='[%f/%t] '
    export NINJA_STATUS
    (
        flock 9
        ninja -C "$folder" "$@" 2>&1 </dev/null 9>&- | show_progress "[4/4] building ($preset)"
    ) 9>"$folder/building.lock" ||
        fail "$STATUS_SETUP" "the $preset build failed" "the compiler's messages are above"
}
