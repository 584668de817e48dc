#!/bin/bash
# Dialogs and message boxes answered from a file: every action, what a dialog is told by it, and every error.
set -u
. "$TESSARY_ROOT/tests/host_session.sh"
export CCACHE_DISABLE=1

fixtures=$TESSARY_ROOT/tests/fixtures
libraries=$TESSARY_BIN/../lib
x86_64-w64-mingw32-windres "$fixtures/dialog_module.rc" resources.o || exit 1
x86_64-w64-mingw32-g++-posix -std=c++20 -O1 -I"$TESSARY_ROOT" -I"$TESSARY_BIN/../server/generated" \
    -DUNICODE -D_UNICODE -DNOMINMAX -shared \
    -fsanitize=undefined -fsanitize-undefined-trap-on-error -fno-sanitize=vptr \
    "$fixtures/dialog_module.cpp" resources.o \
    "$libraries/libtessary_module.a" "$libraries/libserver_interface.a" "$libraries/libframework.a" \
    "$libraries/libdrafthost.dll.a" \
    -lole32 -loleaut32 -loleacc -luuid -lshell32 -lcomctl32 -luxtheme -lmsimg32 -lgdi32 -luser32 -o dialogs.arx || exit 1

fail() {
    echo "$1"
    failures=$((failures + 1))
}

echo '(princ (dlg_show))' >show.lsp
echo '(princ (dlg_stubborn)) (princ "went on")' >stubborn.lsp
echo '(dlg_again) (princ "went on")' >again.lsp

# answered PROGRAM ACTION...: runs the program with these answers.
answered() {
    local program=$1
    shift
    printf '%s\n' "$@" >a.answers
    host run --module dialogs.arx --answers a.answers "$program.lsp"
}

# told NAME WANTED: what the dialog printed in the last run.
told() {
    local printed
    printed=$(tr -d '\r' <out.txt | sed '/^$/d')
    if [ "$2" != "$printed" ]; then
        echo "$1:"
        diff <(printf '%s\n' "$2") <(printf '%s\n' "$printed")
        cat err.txt
        failures=$((failures + 1))
    fi
}

# --- controls ---
answered show 'type #101 hi' 'type #101' 'type #112 typed' 'check #105 on' 'check #105 on' 'check #105 off' \
    'check #106 on' 'check #106 off' 'check #107 on' 'check #108 on' 'choose #109 entry 30' 'choose #110 entry 2' \
    'choose #110 entry 2' 'choose #110 entry 3' 'choose #111 entry 25' 'choose #113 Entry 5' 'type #101 x' 'press OK'
check 'controls' 0 $?
told 'controls' '#101 is before
#101 is h
#101 is hi
#101 is 
#105 state 1
#105 state 0
#106 state 1
#106 state 2
#106 state 0
#108 state 1
#109 entry 30 on
#110 entry 2 on
#110 entry 3 on
#111 picks 25
#113 picks 5
#101 is x
OK x typed entry 51'
answered show 'choose #112 entry 39' 'press #1'
check 'an editable drop-down, and a button by its number' 0 $?
told 'an editable drop-down, and a button by its number' '#101 is before
#112 picks 39
OK before entry 39 1'

# --- grids ---
answered show 'row #120 3' 'row #120 1500' 'cell #120 5 0 new name' 'cell #120 5 1 1' 'cell #120 5 1 1' 'cell #120 5 1 0' \
    'cell #120 5 2 red' 'cell #120 6 2 pink' 'cell #120 7 3 square' 'cell #120 8 5 not asked for' 'cell #120 9 6 far' \
    'double #120 10 0' 'key F2' 'key Escape' 'cell #120 0 0 not edited' 'press OK'
check 'grids' 0 $?
told 'grids' '#101 is before
row 3
row 1500
row 5
begin 5,0
end 5,0 new name
row 6
row 5
end 5,1 -1
end 5,1 0
begin 5,2
pick 5,2 red
end 5,2 red
row 6
begin 6,2
end 6,2 pink
row 7
begin 7,3
pick 7,3 square
end 7,3 square
row 8
begin 8,5
row 9
begin 9,6
end 9,6 far
row 10
begin 10,0
end 10,0 row 10
OK before  1'

# --- dialogs in dialogs: the answers that follow are theirs, and the action goes on afterwards ---
answered show 'press Ask' 'press Yes' 'press Ask' 'enter' 'press Ask' 'cancel' 'cell #120 6 2 Pick. . .' 'press No' \
    'cell #120 7 0 bad' 'press OK' 'row #120 3' 'press OK'
check 'dialogs in dialogs' 0 $?
told 'dialogs in dialogs' '#101 is before
asked 6
asked 6
asked 7
row 6
begin 6,2
pick 6,2 Pick. . .
asked 7
end 6,2 Pick. . .
row 7
begin 7,0
end 7,0 bad
row 8
row 3
OK before  1'

# An editor ends because a button is pressed; what its owner asks then comes before the button's own click.
answered show 'row #120 4' 'key B' 'key A' 'key D' 'press Ask' 'press OK' 'press Yes' 'press OK'
check 'a question before a click is done' 0 $? out 'end 4,0 bad' out 'asked 6' out 'OK before'

# --- keys and the window ---
answered show 'key Tab' 'key Shift+Tab' 'key a' 'resize 500 480' 'screenshot shot.png' 'enter'
check 'keys and the window' 0 $? out '#101 is a' out 'size 500 480' out 'OK a'
[ "$(head -c 4 shot.png | tail -c 3)" = PNG ] || fail 'keys and the window: no picture'
answered show 'cancel'
check 'cancel' 0 $? out 'cancelled2'
answered show 'key Alt+A' 'press No' 'key Escape'
check 'a button by its letter' 0 $? out 'asked 7' out 'cancelled2'

# --- errors: the line and the reason; the dialog is cancelled and the run fails ---
refused() {
    answered show 'type #101 x' "$1"
    check "$1" 1 $? err "a.answers line 2: the action \"${1%% *}\"" err "$2" out 'cancelled'
}
refused 'type #999 x' 'There is no control #999.'
refused 'type #102 x' 'The control #102 is read-only.'
refused 'type #103 x' 'The control #103 is disabled.'
refused 'type #104 x' 'The control #104 is hidden.'
refused 'type #105 x' 'The control #105 takes no text.'
refused 'type #111 x' 'The control #111 takes no text.'
refused 'check #101 on' 'The control #101 is no check box or radio button.'
refused 'check #114 on' 'The control #114 is no check box or radio button.'
refused 'check #107 off' 'only cleared by another one'
refused 'choose #109 nothing' 'There is no entry "nothing".'
refused 'choose #111 nothing' 'There is no entry "nothing".'
refused 'choose #101 x' 'The control #101 is no list.'
refused 'press Never' 'The button "Never" is disabled.'
refused 'press Nothing' 'There is no such button.'
refused 'press #101' 'The control #101 is no button.'
refused 'row #101 1' 'The control #101 is no grid.'
refused 'row #120 2001' 'There is no row 2001; the grid has 2001 with its header.'
refused 'row #120 -1' 'There is no row -1'
refused 'cell #120 1 7 x' 'There is no column 7; the grid has 7.'
refused 'cell #120 1 4 x' 'The column 4 is hidden.'
refused 'cell #120 1 1 yes' 'A check box takes 1 or 0.'
refused 'cell #120 1 3 oval' 'The drop-down has no entry "oval".'
refused 'double #120 1 4' 'The column 4 is hidden.'
refused 'point 1 2' 'the host waits for the dialog "Sample"'
refused 'screenshot nowhere/shot.png' 'The picture cannot be saved'
answered show 'press Ask' 'resize 300 300'
check 'resize a message box' 1 $? err 'size is fixed' out 'asked 7' out 'cancelled2'
answered show 'press Ask' 'type #101 x'
check 'a control of the dialog behind' 1 $? err 'the host waits for a button of "Ask" (There is no control #101.)'
answered show 'cell #120 2 5 x'
check 'a dialog that closes before' 1 $? err 'line 1' err 'closed before the action was done' out '8'
answered again 'press Yes' 'type #101 x'
check 'an answer that no dialog took' 0 $? err 'nothing asked for the answers from a.answers line 2 on'
echo '(getint)' >ask.lsp
answered ask 'row #120 1'
check 'a dialog action without a dialog' 1 $? err 'line 1: the action "row" needs a dialog, and no dialog is waiting'

# --- what a dialog shows ---
answered show 'row #120 3' 'choose #109 entry 30' 'show #109' 'show' 'show #120' 'press Cancel'
check 'what a dialog shows' 0 $? out ' entry 29' out '*entry 30' out '#101 text: "before"' \
    out '#115 button "Never" (disabled)' out '#120 grid: 2000 rows, columns 0 Name, 1 On, 2 Colour, 3 Kind, 5 Refused, 6 Far' \
    out '       0         1   2       3      5        6' out '*3     row 3     0           round' out ' 2000  row 2000'
refused 'show #999' 'There is no control #999.'

# --- the file is used up, or nobody answers ---
answered show 'press Ask'
check 'used up in a dialog of a dialog' 0 $? err 'a.answers is used up' out 'asked 7' out 'cancelled2'
host run --module dialogs.arx show.lsp
check 'nobody answers' 0 $? err 'the dialog "Sample" is cancelled' out 'cancelled2'
answered stubborn 'key Escape'
check 'a dialog that does not close' 1 $? err 'the dialog "Stubborn" does not close' not 'went on'
answered again 'press No'
check 'a dialog that comes again and again' 1 $? err 'again and again' not 'went on'
exit "$((failures > 0))"
