#!/bin/bash
# What drafthost run does with its options: exit statuses, messages, and files that are written or left alone.
set -u
. "$TESSARY_ROOT/tests/host_session.sh"

fail() {
    echo "$1"
    failures=$((failures + 1))
}

cat >line.lsp <<'LISP'
(princ "drawing ")
(command "_LINE" '(0 0) '(10 5) "")
(princ (cdr (assoc 0 (entget (entlast)))))
LISP

# --- programs and results ---
host run --save first.dxf --picture first.svg line.lsp
check 'a program' 0 $? out 'LINE'
[ -s first.dxf ] && [ -s first.svg ] || fail 'a program: drawing or picture missing'

echo '(princ (sslength (ssget "X" (quote ((0 . "LINE"))))))' >count.lsp
host run --open first.dxf count.lsp
check 'the saved drawing opened again' 0 $? out '1'

host run line.lsp count.lsp
check 'programs share one drawing' 0 $? out '1'

echo '(princ "before") (car 5) (princ "after")' >bad.lsp
host run --save bad.dxf bad.lsp line.lsp
check 'a LISP error' 1 $? out '; error: bad argument type'
[ -e bad.dxf ] && fail 'a LISP error: the drawing was saved all the same'
grep -q after out.txt && fail 'a LISP error: the program went on'

echo '(load "part") (princ (findfile "part.lsp"))' >outer.lsp
mkdir support && echo '(princ "part loaded ")' >support/part.lsp
host run --support support outer.lsp
check 'programs on the support path' 0 $? out 'part loaded' out 'support\part.lsp'

# --- files that cannot be read or written ---
head -c 300 first.dxf >damaged.dxf
host run --open damaged.dxf --save other.dxf line.lsp
check 'a damaged drawing' 1 $? err 'damaged.dxf'
[ -e other.dxf ] && fail 'a damaged drawing: something was saved'

host run --open nowhere.dxf line.lsp
check 'a missing drawing' 1 $? err 'nowhere.dxf'

mkdir taken.dxf
host run --save taken.dxf line.lsp
check 'a folder in the place of the drawing' 1 $? err 'taken.dxf'
host run --save nowhere/a.dxf line.lsp
check 'a folder that does not exist' 1 $? err 'nowhere'

for file in a.stl a.obj a.csv; do
    echo old >$file
    host run --export $file line.lsp
    check "exporting no solids as $file" 1 $? err 'shows no solids'
    [ "$(cat $file)" = old ] || fail "exporting no solids as $file: the file that was there is gone"
done
host run --shaded first.png --view-from 0,0,1 --picture-size 300 --shaded 'second.png' line.lsp
check 'shaded pictures' 0 $?
for file in first.png second.png; do
    [ "$(head -c 4 $file | tail -c 3)" = PNG ] || fail "shaded pictures: $file is none"
done
cmp -s first.png second.png && fail 'shaded pictures: the second was not seen from above'
host run missing.lsp
check 'a missing program' 1 $? err 'missing.lsp cannot be read'

# --- arguments ---
host run
check 'no program' 2 $? err 'no program to run' err 'usage:'
host
check 'no verb' 2 $? err 'run or repl is missing'
host run --colour red line.lsp
check 'an unknown option' 2 $? err 'unknown option --colour'
host run line.lsp --save
check 'an option without its value' 2 $? err '--save needs a name'
host run --picture-size 8 --picture a.png line.lsp
check 'a picture that is too small' 2 $? err '--picture-size needs a number from 16 to 10000'
for view in 1,2 0,0,0 1,2,3,4 a,b,c 1e999,0,0 nan,0,0; do
    host run --view-from $view --shaded a.png line.lsp
    check "looking from $view" 2 $? err '--view-from needs three numbers X,Y,Z'
done
host run --shaded a.png --view-from 1,1,1 line.lsp
check 'a direction without a picture' 2 $? err '--view-from must stand before the --shaded that it is for'
host run --shaded a.svg line.lsp
check 'a shaded picture of another kind' 2 $? err 'must end in .png'
host run --export a.step line.lsp
check 'an export of another kind' 2 $? err 'must end in .stl, .obj or .csv'
host run --picture a.gif line.lsp
check 'a picture of another kind' 2 $? err 'must end in .png or .svg'

# --- the scripted drafter ---
echo '(prin1 (list (getpoint "From: ") (getint "Count: ") (getstring T "Text: ")))' >ask.lsp
printf 'point 1 2\nint 7\nstring two words\n' >good.answers
host run --answers good.answers ask.lsp
check 'answers' 0 $? out 'From: 1,2' out 'Count: 7' out '((1.0 2.0 0.0) 7 "two words")'
[ -s err.txt ] && fail "answers: standard error says $(cat err.txt)"

printf 'point 1 2\npoint 3 4\n' >unfit.answers
host run --answers unfit.answers --save unfit.dxf ask.lsp
check 'an answer that does not fit' 1 $? err 'unfit.answers line 2: the action "point" does not fit: the host waits for an integer'
[ -e unfit.dxf ] && fail 'an answer that does not fit: the drawing was saved'

printf 'point 1 2\n' >short.answers
host run --answers short.answers ask.lsp
check 'answers used up' 0 $? err 'short.answers is used up' out 'nil ""'
[ "$(grep -c warning err.txt)" = 1 ] || fail 'answers used up: not one warning'

printf 'point 1 2\nint 7\nstring x\nenter\n' >long.answers
host run --answers long.answers ask.lsp
check 'answers left over' 0 $? err 'from long.answers line 4 on'

printf 'point 1 2\n\n# fine so far\npoint one two\n' >wrong.answers
host run --answers wrong.answers ask.lsp
check 'an unusable line' 1 $? err 'wrong.answers line 4: the action is written: point X Y [Z]'
host run --answers none.answers ask.lsp
check 'no answers file' 1 $? err 'none.answers cannot be read'

printf 'type #12 abc\n' >dialog.answers
host run --answers dialog.answers ask.lsp
check 'an action for a dialog' 1 $? err 'no dialog is waiting'

host run ask.lsp
check 'nobody answers' 0 $? err 'nobody answers' out 'nil nil ""'

# --- message boxes ---
echo '(alert "Attention") (princ "closed")' >alert.lsp
printf 'press OK\n' >ok.answers
host run --answers ok.answers --verbose alert.lsp
check 'a message box' 0 $? out 'closed' err 'Attention'
printf 'press Never\n' >never.answers
host run --answers never.answers alert.lsp
check 'a button that is not there' 1 $? err 'There is no such button.'
printf 'point 1 2\n' >notbutton.answers
host run --answers notbutton.answers alert.lsp
check 'a point for a message box' 1 $? err 'the host waits for a button of'
host run alert.lsp
check 'a message box that nobody answers' 0 $? out 'closed' err 'is cancelled'

exit "$((failures > 0))"
