# What the scripts share that run the host and look at what it says: sourced by them, in a folder of its own that goes at
# the end. The script ends with the number of failures in $failures.
# shellcheck shell=bash
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0

host() {
    "$TESSARY_WINE" "$TESSARY_BIN/drafthost.exe" "$@" >out.txt 2>err.txt </dev/null
}

# check NAME STATUS ACTUAL [out|err|not TEXT]...: about the last call of host; not: standard output is without the text.
check() {
    local name=$1 wanted=$2 status=$3 file
    shift 3
    if [ "$status" != "$wanted" ]; then
        echo "$name: status $status, expected $wanted"
        cat out.txt err.txt
        failures=$((failures + 1))
    fi
    while [ $# -gt 0 ]; do
        file=${1/not/out}
        if tr -d '\r' <"$file.txt" | grep -qF -- "$2"; then found=yes; else found=no; fi
        if { [ "$1" = not ] && [ $found = yes ]; } || { [ "$1" != not ] && [ $found = no ]; }; then
            echo "$name: expected $1 \"$2\":"
            cat out.txt err.txt
            failures=$((failures + 1))
        fi
        shift 2
    done
}
