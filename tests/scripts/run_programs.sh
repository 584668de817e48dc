#!/bin/bash
# Programs given to drafthost run that are damaged, empty, of odd encoding or interrupted, and prompts of theirs that
# are answered badly or not at all.
set -u
. "$TESSARY_ROOT/tests/host_session.sh"

# --- what a program file may look like ---
printf '(princ "first ")\n(defun draw ()\n  (princ "x")\n(princ "second")\n' >open.lsp
host run --save open.dxf open.lsp
check 'a list that is not closed' 1 $? out '; error: malformed list on input' out 'in open.lsp, line 2'
[ -e open.dxf ] && { echo 'a list that is not closed: the drawing was saved'; failures=$((failures + 1)); }

printf '\n\n(princ "first ")\n(princ "never closed)\n' >text.lsp
host run text.lsp
check 'a text that is not closed' 1 $? out 'first' out '; error: malformed string on input' out 'in text.lsp, line 4'

printf '(princ "first ")\n(princ "second "))\n(princ "third")\n' >closed.lsp
host run closed.lsp
check 'a parenthesis too many' 1 $? out 'second' out 'extra right paren on input' out 'in closed.lsp, line 2' not third

printf '\xef\xbb\xbf(princ "marked \xc3\xa4")\r\n(princ (strlen "\xc3\xa4"))\r\n' >mark.lsp
host run mark.lsp
check 'a byte order mark' 0 $? out 'marked ä1'

: >empty.lsp
printf '; only a comment\n;| and\nanother |;' >comment.lsp
host run empty.lsp comment.lsp
check 'programs without a form' 0 $? not error

mkdir folder.lsp
host run folder.lsp
check 'a folder' 1 $? err 'folder.lsp cannot be read'

printf '(princ "caf\xe9")' >ansi.lsp
host run ansi.lsp
check 'a program in an old encoding' 0 $? out 'caf'

# --- several programs ---
echo '(princ "one ") (car 5)' >fails.lsp
echo '(princ "two")' >second.lsp
host run --save failed.dxf fails.lsp second.lsp
check 'the first of two fails' 1 $? out 'one' out '; error: bad argument type: consp 5' not two
[ -e failed.dxf ] && { echo 'the first of two fails: the drawing was saved'; failures=$((failures + 1)); }
echo '(setq shared 42) (defun *error* (text) (princ (strcat "handled " text)))' >shares.lsp
echo '(princ shared) (exit)' >uses.lsp
host run shares.lsp uses.lsp second.lsp
check 'programs share what they set; exit fails the run' 1 $? out '42' out 'handled quit / exit abort' not two
host run second.lsp missing.lsp
check 'the second is missing' 1 $? err 'missing.lsp cannot be read'

# --- answers ---
# answered NAME STATUS ANSWERS PROGRAM [out|err|not TEXT]...
answered() {
    local name=$1 status=$2
    printf '%b' "$3" >given.answers
    printf '%s\n' "$4" >ask.lsp
    shift 4
    host run --answers given.answers ask.lsp
    check "$name" "$status" $? "$@"
}

for prompt in '(getpoint "? ")' '(getcorner (list 0 0) "? ")' '(getdist "? ")' '(getangle "? ")' '(getorient "? ")' \
    '(getint "? ")' '(getreal "? ")' '(getstring "? ")' '(entsel "? ")' '(ssget)' '(progn (initget 1 "A") (getkword "? "))'; do
    answered "a cancelled $prompt" 1 'cancel\n' "$prompt (princ \"went on\")" out '; error: Function cancelled' not 'went on'
    answered "a caught cancel of $prompt" 0 'cancel\n' \
        "(princ (vl-catch-all-error-message (vl-catch-all-apply '(lambda () $prompt))))" out 'Function cancelled'
done
answered 'a cancelled command' 0 'cancel\n' '(command "_.CIRCLE" (list 0 0) pause) (prin1 (list (getvar "CMDNAMES") (entlast)))' \
    out '("" nil)'

# An answer that does not fit ends the run even where the program catches errors.
caught='(vl-catch-all-apply (quote getint) (list "? ")) (princ "went on")'
answered 'a text for an integer' 1 'string abc\n' "$caught" err 'given.answers line 1' err 'waits for an integer' not 'went on'
answered 'a fraction for an integer' 1 'real 1.5\n' "$caught" err 'line 1' not 'went on'
answered 'a number beyond 16 bits' 1 'int 40000\n' "$caught" err 'line 1' err '32767' not 'went on'
answered 'an integer for a real' 0 'int 5\n' '(prin1 (getreal "? "))' out '5.0'
answered 'zero where it is forbidden' 1 'int 0\n' '(initget 2) (getint "? ")' err 'nonzero'
answered 'enter where it is forbidden' 1 'enter\n' '(initget 1) (getint "? ")' err 'line 1'
answered 'a keyword that is not offered' 1 'keyword Maybe\n' '(initget "Yes No") (getkword "? ")' err 'Yes'
answered 'a keyword for a text' 1 'keyword Yes\n' '(initget "Yes No") (getstring "? ")' err 'line 1'
answered 'used up where an answer is needed' 1 '' '(initget 1) (getint "? ") (princ "went on")' err 'used up' not 'went on'
answered 'a cancelled handler' 1 'cancel\ncancel\n' '(defun *error* (text) (getint "again? ")) (getint "? ")' out '*error* function'
answered 'a message box with a prompt' 0 'press OK\nint 3\n' '(alert "Stop") (prin1 (getint "? "))' out '3'
answered 'a prompt after a box that nobody closed' 1 'int 3\n' '(alert "Stop") (prin1 (getint "? "))' err 'line 1'

# --- the drafter's Ctrl-C ---
# The interrupted program handles it as any error, restores what it changed, and the session goes on to its end.
cat >endless.lsp <<'LISP'
(defun c:endless ( / *error*)
    (defun *error* (text) (setvar "OSMODE" 7) (princ (strcat "handled " text)))
    (close (open "running" "w"))
    (while T (vl-catch-all-apply '(lambda () (car 5)))))
(c:endless)
LISP
timeout 120 "$TESSARY_WINE" "$TESSARY_BIN/drafthost.exe" run --save late.dxf endless.lsp >out.txt 2>err.txt </dev/null &
runner=$!
# A signal before the program runs would be lost. On a busy machine its start may take long.
for _ in $(seq 300); do
    [ -e running ] && break
    sleep 0.2
done
[ -e running ] || { echo 'an interrupted program: it did not start within a minute'; failures=$((failures + 1)); }
child=$(pgrep -P "$runner" | head -1)
kill -INT "${child:-$runner}"
wait "$runner"
check 'an interrupted program' 1 $? out 'handled Function cancelled'
[ -e late.dxf ] && { echo 'an interrupted program: the drawing was saved'; failures=$((failures + 1)); }

exit "$((failures > 0))"
