#!/bin/bash
# Unusable arguments of ./tessary end with status 2 before anything is set up, and say what is wrong.
set -u
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
touch program.lsp drawing.dxf
mkdir folder.dxf
failures=0
unset DISPLAY

# rejects MESSAGE ARGUMENT...
rejects() {
    local message=$1 said status
    shift
    said=$("$TESSARY_ROOT/tessary" "$@" 2>&1 >/dev/null)
    status=$?
    if [ "$status" != 2 ] || [[ $said != *"$message"* ]]; then
        echo "tessary $*: status $status, expected 2 and \"$message\"; it said: $said"
        failures=$((failures + 1))
    fi
}

rejects './tessary VERB'
rejects 'unknown verb draw' draw
rejects 'no program to run' run
rejects 'no program to run' run --open drawing.dxf
rejects 'needs a file name' run program.lsp --save
rejects '--shaded needs a file name' run --shaded '' program.lsp
rejects 'unknown option --colour' run --colour red program.lsp
rejects 'no readable file missing.lsp' run missing.lsp
rejects '--screen needs a display' run --screen program.lsp
rejects '--screen needs a display' repl --screen
rejects 'unusable argument screen' repl screen
rejects 'no readable file missing.dxf' run --open missing.dxf program.lsp
rejects 'no readable file -odd.lsp' run -- -odd.lsp
rejects 'must end in .dxf' run --save drawing.dwg program.lsp
rejects '--picture drawing.gif: the name must end in .png or .svg' run --picture drawing.gif program.lsp
rejects 'must end in .stl, .obj or .csv' run --export drawing.step program.lsp
rejects 'must end in .png' run --shaded drawing.svg program.lsp
rejects 'needs three numbers' run --view-from up --shaded drawing.png program.lsp
rejects 'is a folder' run --save folder.dxf program.lsp
rejects 'folder of missing/a.png does not exist' run --picture missing/a.png program.lsp
rejects 'needs a folder' run program.lsp --support
rejects 'no readable folder blocks' run --support blocks program.lsp
rejects 'no readable folder drawing.dxf' repl --support drawing.dxf
rejects 'takes no arguments' build everything
rejects 'takes one filter' test one two
rejects 'unusable argument --save' repl --save drawing.dxf
exit "$((failures > 0))"
